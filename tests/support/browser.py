"""Chromium without a window, driven as a person would: keys, clicks, and looks at what stands on the page."""
import json
import os
import re
import shutil
import subprocess
import tempfile
import time
import urllib.request

FLAGS = ["--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run", "--hide-scrollbars",
         "--disable-background-networking", "--disable-component-update", "--disable-sync"]
KEYS = {"ArrowLeft": "\ue012", "ArrowRight": "\ue014", "Home": "\ue011", "End": "\ue010"}
ELEMENT = "element-6066-11e4-a52e-4f735466cecf"
HERE = shutil.which("chromium") and shutil.which("chromedriver")


class Browser:
    def __init__(self):
        self.folder = tempfile.TemporaryDirectory()
        self.driver = subprocess.Popen(["chromedriver", "--port=0"], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        for line in self.driver.stdout:
            if port := re.search(rb"successfully on port (\d+)", line):
                break
        self.url = f"http://127.0.0.1:{int(port[1])}/session"
        options = {"args": [*FLAGS, "--user-data-dir=" + self.folder.name]}
        capabilities = {"alwaysMatch": {"goog:chromeOptions": options, "goog:loggingPrefs": {"browser": "ALL"}}}
        self.url += "/" + self.ask("", {"capabilities": capabilities})["sessionId"]

    def ask(self, path, data):
        body = json.dumps(data).encode()
        request = urllib.request.Request(self.url + path, body, {"Content-Type": "application/json"})
        with urllib.request.urlopen(request, timeout=60) as answer:
            return json.load(answer)["value"]

    def command(self, name, **parameters):
        return self.ask("/goog/cdp/execute", {"cmd": name, "params": parameters})

    def open(self, path, width=1280, scheme="light"):
        self.command("Emulation.setDeviceMetricsOverride", width=width, height=900, deviceScaleFactor=1,
                     mobile=width < 600)
        self.command("Emulation.setEmulatedMedia", features=[{"name": "prefers-color-scheme", "value": scheme}])
        self.ask("/url", {"url": "file://" + os.path.abspath(path)})

    def value(self, expression):
        return self.ask("/execute/sync", {"script": "return " + expression, "args": []})

    def texts(self, selector):
        return self.value(f"[...document.querySelectorAll({json.dumps(selector)})].map(e => e.textContent)")

    def press(self, *keys):
        self.ask("/actions", {"actions": [{"type": "key", "id": "keys", "actions": [
            {"type": way, "value": KEYS[key]} for key in keys for way in ("keyDown", "keyUp")]}]})

    def click(self, selector, right=0, down=0):
        """Clicks so far from the middle of the element."""
        element = self.ask("/element", {"using": "css selector", "value": selector})
        self.ask("/actions", {"actions": [{"type": "pointer", "id": "mouse", "actions": [
            {"type": "pointerMove", "origin": {ELEMENT: element[ELEMENT]}, "x": right, "y": down},
            {"type": "pointerDown", "button": 0}, {"type": "pointerUp", "button": 0}]}]})

    def complaints(self):
        return [entry["message"] for entry in self.ask("/se/log", {"type": "browser"})]

    def close(self):
        request = urllib.request.Request(self.url, method="DELETE")
        urllib.request.urlopen(request, timeout=60).close()
        self.driver.terminate()
        self.driver.wait()
        self.driver.stdout.close()
        for _ in range(50):
            try:
                self.folder.cleanup()
                return
            except OSError:  # a process of the browser writes on
                time.sleep(0.1)

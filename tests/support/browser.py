"""Chromium without a window, driven as a person would: keys, clicks, and looks at what stands on the page."""
import base64
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
KEYS = {"ArrowLeft": "\ue012", "ArrowUp": "\ue013", "ArrowRight": "\ue014", "ArrowDown": "\ue015", "Home": "\ue011",
        "End": "\ue010", "Enter": "\ue007", "Escape": "\ue00c", "Tab": "\ue004"}
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

    def look(self, width=1280, height=900, scheme="light"):
        self.command("Emulation.setDeviceMetricsOverride", width=width, height=height, deviceScaleFactor=1,
                     mobile=width < 600)
        self.command("Emulation.setEmulatedMedia", features=[{"name": "prefers-color-scheme", "value": scheme}])

    def open(self, place, **look):
        """An address, or the path of a file."""
        self.look(**look)
        self.ask("/url", {"url": place if "://" in place else "file://" + os.path.abspath(place)})

    def value(self, expression):
        return self.ask("/execute/sync", {"script": "return " + expression, "args": []})

    def wait(self, expression, seconds=60):
        """The value of the expression as soon as there is one."""
        end = time.monotonic() + seconds
        while not (value := self.value(expression)):
            if time.monotonic() > end:
                raise AssertionError(f"in {seconds} seconds there was no {expression}")
            time.sleep(0.02)
        return value

    def picture(self, path):
        with open(path, "wb") as file:
            file.write(base64.b64decode(self.command("Page.captureScreenshot", format="png")["data"]))

    def tabs(self):
        with urllib.request.urlopen(self.url + "/window/handles", timeout=60) as answer:
            return json.load(answer)["value"]

    def new_tab(self):
        self.to_tab(self.ask("/window/new", {"type": "tab"})["handle"])

    def to_tab(self, handle):
        self.ask("/window", {"handle": handle})

    def close_tab(self):
        urllib.request.urlopen(urllib.request.Request(self.url + "/window", method="DELETE"), timeout=60).close()

    def texts(self, selector):
        return self.value(f"[...document.querySelectorAll({json.dumps(selector)})].map(e => e.textContent)")

    def press(self, *keys):
        self.ask("/actions", {"actions": [{"type": "key", "id": "keys", "actions": [
            {"type": way, "value": KEYS.get(key, key)} for key in keys for way in ("keyDown", "keyUp")]}]})

    def element(self, selector):
        return {ELEMENT: self.ask("/element", {"using": "css selector", "value": selector})[ELEMENT]}

    def point(self, pointer, *actions):
        """What a "mouse", "touch" or "pen" does."""
        self.ask("/actions", {"actions": [{"type": "pointer", "id": pointer, "parameters": {"pointerType": pointer},
                                           "actions": actions}]})

    def drag(self, start, end, pointer="mouse"):
        """From the middle of one element to that of another."""
        self.point(pointer, {"type": "pointerMove", "origin": self.element(start), "x": 0, "y": 0},
                   {"type": "pointerDown", "button": 0},
                   {"type": "pointerMove", "duration": 30, "origin": self.element(end), "x": 0, "y": 0},
                   {"type": "pointerUp", "button": 0})

    def click(self, selector, right=0, down=0, pointer="mouse"):
        """Clicks so far from the middle of the element."""
        self.point(pointer, {"type": "pointerMove", "origin": self.element(selector), "x": right, "y": down},
                   {"type": "pointerDown", "button": 0}, {"type": "pointerUp", "button": 0})

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

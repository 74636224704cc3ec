"""The built site, served to a browser of this machine by a thread of the test."""
import functools
import http.server
import os
import threading
import unittest

import browser
from program import ROOT

FOLDER = os.environ.get("VREL_SITE", os.path.join(ROOT, "build/web/site"))
HERE = os.path.exists(os.path.join(FOLDER, "index.html"))
ISOLATION = {"Cross-Origin-Opener-Policy": "same-origin", "Cross-Origin-Embedder-Policy": "require-corp"}


class Handler(http.server.SimpleHTTPRequestHandler):
    extensions_map = {**http.server.SimpleHTTPRequestHandler.extensions_map, ".js": "text/javascript",
                      ".wasm": "application/wasm"}

    def __init__(self, *arguments, headers, missing, place):
        self.more, self.missing, self.place = headers, missing, place
        super().__init__(*arguments, directory=FOLDER)

    def end_headers(self):
        for name, value in self.more.items():
            self.send_header(name, value)
        super().end_headers()

    def do_GET(self):
        name = self.path.split("?")[0].removeprefix(self.place)
        if name == self.path.split("?")[0] or name in self.missing:
            self.send_error(404)
            return
        self.path = "/" + name
        super().do_GET()

    def log_message(self, *_):
        pass


class Site:
    """`shared`: with the headers that shared memory needs; `missing`: files that the host doesn't have; `place`: where
    it has the others."""

    def __init__(self, shared=True, missing=(), place="/"):
        handler = functools.partial(Handler, headers=ISOLATION if shared else {}, missing=missing, place=place)
        self.server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), handler)
        self.address = f"http://127.0.0.1:{self.server.server_port}{place}"
        threading.Thread(target=self.server.serve_forever, daemon=True).start()

    def stop(self):
        """No more answers, as without a network."""
        self.server.shutdown()
        self.server.socket.close()

    def close(self):
        self.server.shutdown()
        self.server.server_close()


class Visit(unittest.TestCase):
    """Tests that share a site and a browser."""
    host = {}  # how the site is served

    @classmethod
    def setUpClass(cls):
        cls.site = Site(**cls.host)
        cls.browser = browser.Browser()

    @classmethod
    def tearDownClass(cls):
        cls.browser.close()
        cls.site.close()

"""The built site, served to a browser of this machine by a thread of the test."""
import functools
import http.server
import os
import threading

from program import ROOT

FOLDER = os.environ.get("VREL_SITE", os.path.join(ROOT, "build/web/site"))
HERE = os.path.exists(os.path.join(FOLDER, "index.html"))
ISOLATION = {"Cross-Origin-Opener-Policy": "same-origin", "Cross-Origin-Embedder-Policy": "require-corp"}


class Handler(http.server.SimpleHTTPRequestHandler):
    extensions_map = {**http.server.SimpleHTTPRequestHandler.extensions_map, ".js": "text/javascript",
                      ".wasm": "application/wasm"}

    def __init__(self, *arguments, headers, missing):
        self.more, self.missing = headers, missing
        super().__init__(*arguments, directory=FOLDER)

    def end_headers(self):
        for name, value in self.more.items():
            self.send_header(name, value)
        super().end_headers()

    def do_GET(self):
        if self.path.lstrip("/").split("?")[0] in self.missing:
            self.send_error(404)
        else:
            super().do_GET()

    def log_message(self, *_):
        pass


class Site:
    """`shared`: with the headers that shared memory needs; `missing`: files that the host doesn't have."""

    def __init__(self, shared=True, missing=()):
        handler = functools.partial(Handler, headers=ISOLATION if shared else {}, missing=missing)
        self.server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), handler)
        self.address = f"http://127.0.0.1:{self.server.server_port}/"
        threading.Thread(target=self.server.serve_forever, daemon=True).start()

    def close(self):
        self.server.shutdown()
        self.server.server_close()

"""Serves a folder on this machine, with the headers that shared memory needs."""
import functools
import http.server
import sys

HEADERS = {"Cross-Origin-Opener-Policy": "same-origin", "Cross-Origin-Embedder-Policy": "require-corp",
           "Cache-Control": "no-cache"}


class Handler(http.server.SimpleHTTPRequestHandler):
    extensions_map = {**http.server.SimpleHTTPRequestHandler.extensions_map, ".js": "text/javascript",
                      ".wasm": "application/wasm", ".webmanifest": "application/manifest+json"}

    def end_headers(self):
        for name, value in HEADERS.items():
            self.send_header(name, value)
        super().end_headers()

    def log_message(self, *_):
        pass


folder, port = sys.argv[1], int(sys.argv[2]) if len(sys.argv) > 2 else 0
with http.server.ThreadingHTTPServer(("127.0.0.1", port), functools.partial(Handler, directory=folder)) as server:
    print(f"http://127.0.0.1:{server.server_port}/", flush=True)
    try:
        server.serve_forever()
    except KeyboardInterrupt:
        pass

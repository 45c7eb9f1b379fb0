"""The web server of the suite, which serves all hosts on port 443 of the loopback interface."""

import collections
import http.server
import re
import socket
import ssl
import struct
import threading
import urllib.parse

from environment import wait_until

BOOKMARKS = {
    "Apple": "https://www.apple.com/",
    "DuckDuckGo": "https://duckduckgo.com/",
    "Wikipedia": "https://www.wikipedia.org/",
    "Hacker News": "https://news.ycombinator.com/",
    "GitHub": "https://github.com/",
    "Keyloft": "https://keyloft.orvane.velde/",
}
SEARCH_ENGINE = "duckduckgo.com"
PLAIN, RESETTING, UNTRUSTED = "pages.example", "resetting.example", "untrusted.example"
HOSTS = [urllib.parse.urlsplit(url).hostname for url in BOOKMARKS.values()] + [PLAIN, RESETTING, UNTRUSTED]

STYLE = "<style>html { font: 20px sans-serif; height: 100% } a { display: block; height: 300px }</style>"
BODIES = {
    "/image-held": '<img src="/held-image">',
    "/link-to-new-window": '<a target="_blank" href="/linked">Open</a>',
    "/script-opens-window": '<a href="#" onclick="window.open(\'/opened\')">Open</a>',
    "/panels": """<a href="#" onclick="alert('The first text');
        document.title = confirm('Are you sure?') ? 'agreed' : 'declined'">Ask</a>""",
}


class Web:
    """Counts the requests for each URL in `requests`. Does not send a page whose path begins with "/held" until the
    scenario releases it."""

    def __init__(self, identity, strangers_identity):
        self.requests = collections.Counter()
        self.released = collections.defaultdict(threading.Event)
        trusted, untrusted = (self.context(file) for file in (identity, strangers_identity))

        def choose(connection, host, _):
            connection.context = untrusted if host == UNTRUSTED else trusted

        trusted.sni_callback = choose
        web = self

        class Server(http.server.ThreadingHTTPServer):
            def get_request(self):
                connection, address = super().get_request()
                # Perform the handshake on the connection's thread.
                return trusted.wrap_socket(connection, server_side=True, do_handshake_on_connect=False), address

            def shutdown_request(self, request):
                self.close_request(request)  # the default first sends a FIN, which prevents a reset

            def handle_error(self, request, address):
                pass  # the browser has refused the certificate or closed the connection

        class Handler(http.server.BaseHTTPRequestHandler):
            def do_GET(self):
                web.answer(self)

            def log_message(self, *arguments):
                pass

        self.server = Server(("127.0.0.1", 443), Handler)
        threading.Thread(target=self.server.serve_forever, daemon=True).start()

    @staticmethod
    def context(identity):
        context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        context.load_cert_chain(identity)
        return context

    def answer(self, request):
        host = request.headers["Host"]
        url = f"https://{host}{request.path}"
        self.requests[url] += 1
        if host == RESETTING:
            request.connection.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
            return
        address = urllib.parse.urlsplit(url)
        if address.path.startswith("/held"):
            self.released[url].wait()
        title = host + address.path
        if host == SEARCH_ENGINE and address.query:
            title = f"Results for {urllib.parse.parse_qs(address.query)['q'][0]}"
        body = f"<!doctype html><title>{title}</title>{STYLE}<h1>{title}</h1>{BODIES.get(address.path, '')}".encode()
        request.send_response(200)
        request.send_header("Content-Type", "text/html; charset=utf-8")
        request.send_header("Cache-Control", "no-store")
        request.send_header("Content-Length", str(len(body)))
        request.end_headers()
        request.wfile.write(body)

    def wait_for(self, url, count=1):
        wait_until(lambda: self.requests[url] >= count, lambda: f"{count} requests for {url}: {dict(self.requests)}")

    def release(self, url):
        self.released[url].set()

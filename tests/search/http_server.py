"""http_server.py PORT: a web server for one test, on a free port of the loopback, that knows how to lie.

It connects to PORT of the loopback first, says there "PORT FOLDER" in one line, and ends when that connection does.
It serves what lies in the folder as /WAY/NAME, and WAY says how (see Handler); /var/NAME goes the way that was set
last. Questions on the connection:
  way WAY   sets it
  count     how many requests there were since the last time
  last      the request before: its line and its lines, with blanks between them
  down, up  stops listening, and listens again
  release   lets those answer that wait for it
"""
import hashlib
import http.server
import os
import socket
import sys
import tempfile
import threading
import time

state = {"count": 0, "last": "", "folder": "", "way": "file"}
released = threading.Event()


class Handler(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"

    def log_message(self, *_):
        pass

    def head(self, status, *lines):
        self.send_response_only(status)
        for name, value in lines:
            self.send_header(name, value)
        self.send_header("Connection", "close")
        self.end_headers()
        self.close_connection = True

    def whole(self, body, *lines):
        self.head(200, ("Content-Length", len(body)), *lines)
        self.wfile.write(body)

    def redirect(self, status, target):
        self.head(status, ("Location", target), ("Content-Length", 0))

    def body(self, name):
        with open(os.path.join(state["folder"], name.split("?")[0]), "rb") as file:
            return file.read()

    def marks(self, body):
        return (("ETag", '"%s"' % hashlib.md5(body).hexdigest()),
                ("Last-Modified", "Sun, 22 Nov 2026 07:40:%02d GMT" % (len(body) % 60)))

    def pieces(self, piece, pause):
        try:
            while not released.is_set():
                self.wfile.write(piece)
                self.wfile.flush()
                time.sleep(pause)
        except OSError:
            pass

    def do_GET(self):
        state["count"] += 1
        state["last"] = " ".join([self.requestline] + [f"{k}:{v}" for k, v in self.headers.items()])
        way, _, name = self.path[1:].partition("/")
        try:
            getattr(self, "way_" + way)(name)
        except (FileNotFoundError, AttributeError):
            page = b"<html>There is no such file.</html>"
            self.head(404, ("Content-Type", "text/html"), ("Content-Length", len(page)))
            self.wfile.write(page)

    def way_var(self, name):
        way, _, rest = state["way"].partition("/")
        getattr(self, "way_" + way)(f"{rest}/{name}" if rest else name)

    # ---- As it should be ----
    def way_file(self, name):
        body = self.body(name)
        etag, modified = self.marks(body)
        if self.headers.get("If-None-Match") == etag[1]:
            self.head(304, etag)
        else:
            self.whole(body, etag, modified)

    def way_dated(self, name):
        body = self.body(name)
        stamp = self.marks(body)[1]
        if self.headers.get("If-Modified-Since") == stamp[1]:
            self.head(304)
        else:
            self.whole(body, stamp)

    def way_bare(self, name):
        self.whole(self.body(name))

    def way_chunked(self, name):
        self.head(200, ("Transfer-Encoding", "chunked"))
        body = self.body(name)
        self.wfile.write(b"%x\r\n%s\r\n0\r\n\r\n" % (len(body), body))

    def way_close(self, name):
        self.head(200)
        self.wfile.write(self.body(name))

    def way_wait(self, name):
        released.wait(60)
        self.way_file(name)

    def way_login(self, name):
        if self.headers.get("Authorization") == "Basic dTpwOkBw":  # u, p:@p
            self.way_file(name)
        else:
            self.head(401, ("WWW-Authenticate", 'Basic realm="x"'), ("Content-Length", 0))

    def way_to(self, name):  # CODE/URL
        code, _, target = name.partition("/")
        self.redirect(int(code), target.replace("%3A", ":"))

    def way_hops(self, name):  # COUNT/NAME
        count, _, rest = name.partition("/")
        self.redirect(302, f"/hops/{int(count) - 1}/{rest}" if int(count) > 1 else f"/file/{rest}")

    # ---- Lies ----
    def way_short(self, name):
        body = self.body(name)
        self.head(200, ("Content-Length", len(body) + 100), *self.marks(body))
        self.wfile.write(body)

    def way_long(self, name):
        body = self.body(name)
        self.head(200, ("Content-Length", len(body) - 3))
        self.wfile.write(body)

    def way_length(self, name):  # LENGTH/NAME
        length, _, rest = name.partition("/")
        self.head(200, ("Content-Length", length))
        self.wfile.write(self.body(rest))

    def way_status(self, name):  # CODE/NAME
        self.head(int(name.split("/")[0]), ("Content-Length", 3))
        self.wfile.write(b"no\n")

    def way_page(self, name):
        self.whole(b"<html>Please log in.</html>", ("Content-Type", "Text/HTML; charset=utf-8"))

    def way_same(self, name):
        self.head(304)

    def way_marks(self, name):
        self.whole(self.body(name), ("ETag", '"' + "x" * 5000 + '"'), ("Last-Modified", "\x80\xff"))

    def way_loop(self, name):
        self.redirect(302, "/loop/" + name)

    def way_nowhere(self, name):
        self.head(302, ("Content-Length", 0))

    def way_endless(self, name):
        self.head(200)
        self.pieces(b"x" * 65536, 0.002)

    def way_drip(self, name):
        self.head(200)
        self.pieces(b"x", 0.02)

    def way_lengths(self, name):
        body = self.body(name)
        self.head(200, ("Content-Length", len(body)), ("Content-Length", len(body) - 1))
        self.wfile.write(body)

    def way_coded(self, name):
        self.whole(self.body(name), ("Content-Encoding", "gzip"))

    def way_slowhead(self, name):
        self.wfile.write(b"HTTP/1.1 200 OK\r\nX: ")
        self.pieces(b"x", 0.1)
        self.close_connection = True

    def way_hang(self, name):
        released.wait(60)
        self.close_connection = True

    def way_halfhead(self, name):
        self.wfile.write(b"HTTP/1.1 200 OK\r\nContent-Le")
        self.close_connection = True

    def way_noise(self, name):
        self.wfile.write(os.urandom(4096))
        self.close_connection = True


class Server(http.server.ThreadingHTTPServer):
    daemon_threads = True

    def handle_error(self, *_):
        pass


def start(port):
    server = Server(("127.0.0.1", port), Handler)
    threading.Thread(target=server.serve_forever, args=(0.02,), daemon=True).start()
    return server


def answer(question, server):
    if question == "down":
        server.shutdown()
        server.server_close()
    elif question == "up":
        server.__init__(server.server_address, Handler)
        threading.Thread(target=server.serve_forever, args=(0.02,), daemon=True).start()
    elif question.startswith("way "):
        state["way"] = question[4:]
    elif question == "release":
        released.set()
    elif question == "last":
        return state["last"]
    elif question == "count":
        count, state["count"] = state["count"], 0
        return str(count)
    return "done"


def main():
    control = socket.create_connection(("127.0.0.1", int(sys.argv[1])))
    with tempfile.TemporaryDirectory(prefix="zo_http_", ignore_cleanup_errors=True) as folder:
        state["folder"] = folder
        server = start(0)
        control.sendall(f"{server.server_address[1]} {folder}\n".encode())
        try:
            for line in control.makefile():
                control.sendall((answer(line.strip(), server) + "\n").encode())
        except OSError:
            pass  # the test was killed


main()

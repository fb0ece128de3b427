"""ftp_server.py PORT: an FTP server for one test, on a free port of the loopback, over a fresh folder.

It connects to PORT of the loopback first, says there "PORT FOLDER" in one line (nothing when it cannot serve), and
ends when that connection does. The user is "u" with the password "p"; anonymous users may only read. A file whose
name begins with "broken" ends in the middle when it is fetched; no folder can be made whose name ends in "refused".
"""
import logging
import socket
import sys
import tempfile
import threading


def main():
    control = socket.create_connection(("127.0.0.1", int(sys.argv[1])))
    try:
        from pyftpdlib import handlers
        from pyftpdlib.authorizers import DummyAuthorizer
        from pyftpdlib.servers import FTPServer
    except ImportError:
        return

    class Producer(handlers.FileProducer):
        pieces = 0

        def more(self):
            self.pieces += 1
            if self.pieces > 1 and "broken" in self.file.name:
                raise handlers._FileReadWriteError("broken off")
            return super().more()

    class Handler(handlers.FTPHandler):
        def ftp_MKD(self, path):
            if path.endswith("refused"):
                self.respond("550 Refused.")
            else:
                return super().ftp_MKD(path)

        use_sendfile = False
        auth_failed_timeout = 0

    handlers.FileProducer = Producer
    logging.disable()
    with tempfile.TemporaryDirectory(prefix="zo_ftp_", ignore_cleanup_errors=True) as folder:
        authorizer = DummyAuthorizer()
        authorizer.add_user("u", "p", folder, perm="elradfmwMT")
        authorizer.add_anonymous(folder)
        Handler.authorizer = authorizer
        server = FTPServer(("127.0.0.1", 0), Handler)
        threading.Thread(target=server.serve_forever, daemon=True).start()
        control.sendall(f"{server.socket.getsockname()[1]} {folder}\n".encode())
        try:
            control.recv(1)
        except OSError:
            pass  # the test was killed


main()

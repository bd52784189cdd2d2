"""A time stamp service (RFC 3161) on a free port of this machine.

    timestamp_service.py FOLDER

FOLDER holds the key and the certificate of the service, key.pem and cert.pem. Prints the address
when it listens. `openssl ts` makes the answers.
"""

import http.server
import pathlib
import subprocess
import sys

CONFIGURATION = """
[tsa]
default_tsa = service
[service]
serial = {folder}/serial
default_policy = 1.2.3.4.1
digests = sha256
signer_digest = sha256
"""


class Handler(http.server.BaseHTTPRequestHandler):
    folder = None

    def do_POST(self):
        query = self.folder / "query"
        query.write_bytes(self.rfile.read(int(self.headers["Content-Length"])))
        reply = subprocess.run(["openssl", "ts", "-reply", "-config", "tsa.cnf", "-queryfile", "query",
                                "-inkey", "key.pem", "-signer", "cert.pem"], cwd=self.folder, check=True,
                               stdout=subprocess.PIPE).stdout
        self.send_response(200)
        self.send_header("Content-Type", "application/timestamp-reply")
        self.send_header("Content-Length", str(len(reply)))
        self.end_headers()
        self.wfile.write(reply)

    def log_message(self, *_):
        pass


def main(folder):
    Handler.folder = pathlib.Path(folder)
    (Handler.folder / "serial").write_text("01\n", encoding="ascii")
    (Handler.folder / "tsa.cnf").write_text(CONFIGURATION.format(folder=folder), encoding="ascii")
    with http.server.HTTPServer(("127.0.0.1", 0), Handler) as server:
        print(f"http://127.0.0.1:{server.server_port}", flush=True)
        server.serve_forever()


if __name__ == "__main__":
    main(*sys.argv[1:])

"""Updates over https from the real nginx: the header requests share HTTP/2 connections, few of them.

The service's certificate is one of its own. The program trusts it in a mount namespace where it stands in the place
of the system's certificates; where such a namespace cannot be had, the tests are skipped.
"""
import collections
import queue
import socket
import subprocess
import sys
import threading
import time
import unittest

from service_support import Nginx, ServiceCase

NGINX = None
TRUSTED = "/etc/ssl/certs/ca-certificates.crt"
INDEX = "Orv_Core_Content_Index.txt"
NAMESPACE = ["unshare", "--map-root-user", "--mount", "sh", "-c",
             'mount --bind "$1" ' + TRUSTED + ' && shift && exec "$@"', "sh"]
CONFIG = """
pid run/nginx.pid;
error_log run/error.log;
events { worker_connections 512; }
http {
    log_format requests "$connection $server_protocol $request_method $arg_library $status";
    access_log run/access.log requests;
    client_body_temp_path run/body;
    server {
        listen 127.0.0.1:1;
        listen 127.0.0.1:TLS ssl http2;
        ssl_certificate certificate.pem;
        ssl_certificate_key key.pem;
        root content;
        location = /redirect { absolute_redirect off; return 302 "/content?"; }
        location = /content { try_files /$arg_library =204; }
    }
}
"""


def can_trust(certificate):
    return subprocess.run([*NAMESPACE, certificate, "true"], capture_output=True).returncode == 0


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


class SlowLink:
    """Passes connections on to a port and holds every byte back for a while, in both directions."""

    def __init__(self, target, seconds):
        self.target, self.seconds = target, seconds
        self.listener = socket.create_server(("127.0.0.1", 0))
        self.port = self.listener.getsockname()[1]
        self.sockets = []
        threading.Thread(target=self.accept, daemon=True).start()

    def close(self):
        self.listener.shutdown(socket.SHUT_RDWR)
        for end in [self.listener, *self.sockets]:
            end.close()

    def accept(self):
        while True:
            try:
                client = self.listener.accept()[0]
            except OSError:
                return
            server = socket.create_connection(("127.0.0.1", self.target))
            self.sockets += [client, server]
            for source, sink in ((client, server), (server, client)):
                source.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
                pieces = queue.Queue()
                threading.Thread(target=self.read, args=(source, pieces), daemon=True).start()
                threading.Thread(target=self.write, args=(sink, pieces), daemon=True).start()

    def read(self, source, pieces):
        try:
            while data := source.recv(65536):
                pieces.put((time.monotonic() + self.seconds, data))
        except OSError:
            pass
        pieces.put((time.monotonic() + self.seconds, b""))

    @staticmethod
    def write(sink, pieces):
        try:
            while True:
                due, data = pieces.get()
                time.sleep(max(due - time.monotonic(), 0))
                if not data:
                    sink.shutdown(socket.SHUT_WR)
                    return
                sink.sendall(data)
        except OSError:
            pass


class HttpsService(ServiceCase):
    def setUp(self):
        super().setUp()
        self.source = self.service
        self.certificate = self.path("service", "certificate.pem")
        self.write("run/nginx.pid", b"")
        subprocess.run(["openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "2", "-subj",
                        "/CN=127.0.0.1", "-addext", "subjectAltName=IP:127.0.0.1", "-keyout",
                        self.path("service", "key.pem"), "-out", self.certificate], check=True, capture_output=True)
        if not can_trust(self.certificate):
            self.skipTest("no mount namespace to trust the certificate in")

    def offer(self, count):
        """Catalogs of less than 1,000 bytes: they are asked for, and not fetched."""
        self.names = [f"catalog{number:03}.orvlib" for number in range(count)]
        for name in self.names:
            self.write("content/" + name, b"x" * 900)
        self.write("content/" + INDEX, "\n".join(self.names).encode())

    def served(self):
        self.tls_port = free_port()
        self.write("config", CONFIG.replace("TLS", str(self.tls_port)).encode())
        return Nginx(NGINX, self.path("service", "config"), self.service)

    def update(self, port):
        """Runs a core-only update; returns the header requests that it made, as (connection, name)."""
        with open(self.path("service", "run", "access.log")) as log:
            before = len(log.readlines())
        result = subprocess.run(
            [*NAMESPACE, self.certificate, self.program, "--root", self.path("root"), "update", "--core-only",
             "--url", f"https://127.0.0.1:{port}/redirect", "--product", "P", "--product-version", "1"],
            text=True, capture_output=True, timeout=120)
        # All of the catalogs are new, and none has a kilobyte: they are asked for, and not fetched.
        self.assertEqual(result.returncode, 1, result.stderr)
        self.assertIn("less than a kilobyte has changed in all", result.stderr)
        self.assertEqual(result.stdout, "Nothing was updated.\n")
        with open(self.path("service", "run", "access.log")) as log:
            requests = [line.split() for line in log.readlines()[before:]]
        self.assertEqual({request[1] for request in requests}, {"HTTP/2.0"})
        return [(request[0], request[3]) for request in requests if request[2] == "HEAD"]

    def far_port(self):
        link = SlowLink(self.tls_port, 0.05)
        self.addCleanup(link.close)
        return link.port

    def expect_each_once(self, asked):
        self.assertEqual(collections.Counter(name for _, name in asked), collections.Counter(self.names))

    def test_near_service_is_asked_on_one_connection(self):
        self.offer(300)
        with self.served():
            asked = self.update(self.tls_port)
        self.expect_each_once(asked)
        self.assertEqual(len({connection for connection, _ in asked}), 1)

    def test_far_service_is_asked_on_a_few_connections_at_once(self):
        self.offer(300)
        with self.served():
            start = time.monotonic()
            asked = self.update(self.far_port())
            seconds = time.monotonic() - start
        self.expect_each_once(asked)
        connections = {connection for connection, _ in asked}
        self.assertGreater(len(connections), 1)
        self.assertLessEqual(len(connections), 8)
        self.assertLess(seconds, 10)  # 30 in turn

    def test_short_list_is_asked_on_one_connection_however_far_the_service(self):
        self.offer(60)
        with self.served():
            asked = self.update(self.far_port())
        self.expect_each_once(asked)
        self.assertEqual(len({connection for connection, _ in asked}), 1)


if __name__ == "__main__":
    ServiceCase.program, NGINX = sys.argv[1:3]
    unittest.main(argv=sys.argv[:1])

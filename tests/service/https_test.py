"""Updates over https from the real nginx: the header requests share a few HTTP/2 connections.

The service has a self-signed certificate. The program trusts it in a mount namespace in which it replaces the system's
certificates. Without such a namespace the tests are skipped.
"""
import collections
import json
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
    """Forwards connections to a port and delays every byte in both directions."""

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


class HttpsCase(ServiceCase):
    def setUp(self):
        super().setUp()
        self.source = self.service
        self.certificate = self.path("service", "certificate.pem")
        self.write("run/nginx.pid", b"")
        subprocess.run(["openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "2", "-subj",
                        "/CN=127.0.0.1", "-addext", "subjectAltName=IP:127.0.0.1", "-keyout",
                        self.path("service", "key.pem"), "-out", self.certificate], check=True, capture_output=True)

    def offer(self, count, size=900):
        """Puts catalogs on the service. By default they have less than 1,000 bytes, so that an update requests only
        their headers."""
        self.names = [f"catalog{number:03}.orvlib" for number in range(count)]
        for name in self.names:
            self.write("content/" + name, b"x" * size)
        self.write("content/" + INDEX, "\n".join(self.names).encode())

    def served(self):
        self.tls_port = free_port()
        self.write("config", CONFIG.replace("TLS", str(self.tls_port)).encode())
        return Nginx(NGINX, self.path("service", "config"), self.service)

    def far_port(self):
        link = SlowLink(self.tls_port, 0.05)
        self.addCleanup(link.close)
        return link.port


class HttpsService(HttpsCase):
    def setUp(self):
        super().setUp()
        if not can_trust(self.certificate):
            self.skipTest("no mount namespace to trust the certificate in")

    def update(self, port):
        """Runs a core-only update. Returns its header requests as (connection, name)."""
        with open(self.path("service", "run", "access.log")) as log:
            before = len(log.readlines())
        result = subprocess.run(
            [*NAMESPACE, self.certificate, self.program, "--root", self.path("root"), "update", "--core-only",
             "--url", f"https://127.0.0.1:{port}/redirect", "--product", "P", "--product-version", "1"],
            text=True, capture_output=True, timeout=120)
        # All catalogs are new, but together smaller than a kilobyte, so only their headers are requested.
        self.assertEqual(result.returncode, 1, result.stderr)
        self.assertIn("less than a kilobyte has changed in all", result.stderr)
        self.assertEqual(result.stdout, "Nothing was updated.\n")
        with open(self.path("service", "run", "access.log")) as log:
            requests = [line.split() for line in log.readlines()[before:]]
        self.assertEqual({request[1] for request in requests}, {"HTTP/2.0"})
        return [(request[0], request[3]) for request in requests if request[2] == "HEAD"]

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
        self.assertLessEqual(len(connections), 16)
        self.assertLess(seconds, 10)  # 30 s one after the other

    def test_short_list_is_asked_on_one_connection_however_far_the_service(self):
        self.offer(60)
        with self.served():
            asked = self.update(self.far_port())
        self.expect_each_once(asked)
        self.assertEqual(len({connection for connection, _ in asked}), 1)


class CheckAndDoctor(HttpsCase):
    """`check` and `doctor` over https with a near and a far service; --cacert names the authority."""

    def run_json(self, command, port, *options, status=0):
        result = subprocess.run([self.program, "--root", self.path("root"), "--json", command, "--url",
                                 f"https://127.0.0.1:{port}/redirect", *options], text=True, capture_output=True, timeout=120)
        self.assertEqual(result.returncode, status, result.stdout + result.stderr)
        return json.loads(result.stdout)

    def steps(self, port, *options, status=0):
        return {step["step"]: step for step in self.run_json("doctor", port, *options, status=status)["steps"]}

    def requests(self):
        with open(self.path("service", "run", "access.log")) as log:
            return len(log.readlines())

    def make_root(self):
        subprocess.run([self.program, "--root", self.path("root"), "paths", "--create"], check=True, capture_output=True)

    def test_doctor_takes_every_step_near_and_far(self):
        self.make_root()
        self.offer(3, 200000)
        with self.served():
            for port in (self.tls_port, self.far_port()):
                steps = self.steps(port, "--cacert", self.certificate)
                self.assertEqual({name for name, step in steps.items() if step["ok"] is not True}, set())
                self.assertEqual(steps["certificate"]["text"], "the service's certificate is good")
            # At least one round trip.
            for name in ("certificate", "redirect", "index", "header", "body"):
                self.assertGreaterEqual(steps[name]["ms"], 100, name)

    def test_doctor_names_a_certificate_that_nobody_vouches_for(self):
        self.make_root()
        self.offer(3)
        with self.served():
            steps = self.steps(self.tls_port, status=1)
            self.assertEqual(steps["connection"]["ok"], True)
            self.assertEqual(steps["certificate"]["ok"], False)
            self.assertIn("self-signed certificate", steps["certificate"]["text"])
            self.assertIn("--cacert", steps["certificate"]["advice"])
            for name in ("redirect", "index", "header", "body"):
                self.assertIsNone(steps[name]["ok"], name)
            self.assertEqual(self.requests(), 0)

    def test_check_tells_what_waits_near_and_far(self):
        self.make_root()
        self.offer(100, 2000)
        trusted = ("--cacert", self.certificate)
        with self.served():
            for port in (self.tls_port, self.far_port()):
                document = self.run_json("check", port, *trusted, status=3)
                self.assertEqual((document["outcome"], document["bytes"]), ("waiting", 200000))
                self.assertEqual({entry["state"] for entry in document["catalogs"]}, {"missing"})
            self.run_json("update", port, *trusted, "--no-database-check")
            self.assertEqual(self.run_json("check", port, *trusted)["outcome"], "current")
            asked = self.requests()
            kept = self.run_json("check", port, *trusted, "--max-age", "24h")
            self.assertEqual((kept["outcome"], kept["asked"]), ("current", False))
            self.assertEqual(self.requests(), asked)
            self.assertIn("self-signed certificate", self.run_json("check", port, status=1)["error"])


if __name__ == "__main__":
    ServiceCase.program, NGINX = sys.argv[1:3]
    unittest.main(argv=sys.argv[:1])

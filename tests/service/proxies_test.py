"""Clients reach the service through a caching proxy, through a proxy that cuts connections, or through both. All
clients end with the current content."""
import hashlib
import itertools
import json
import os
import signal
import socket
import subprocess
import sys
import threading
import time
import unittest

from service_support import Nginx, ServiceCase

NGINX = None

CACHING_PROXY = """
daemon on;
worker_processes 1;
pid run/nginx.pid;
error_log run/error.log warn;
events { worker_connections 256; }
http {
    client_body_temp_path run/body;  proxy_temp_path run/proxy;  fastcgi_temp_path run/fcgi;
    uwsgi_temp_path run/uwsgi;       scgi_temp_path run/scgi;
    access_log off;
    proxy_cache_path run/cache keys_zone=catalogs:1m;
    server {
        listen 127.0.0.1:1;
        location / {
            proxy_pass UPSTREAM;
            proxy_http_version 1.1;
            proxy_set_header Connection "";
            proxy_redirect UPSTREAM/ /;
            proxy_cache catalogs;
            proxy_cache_revalidate on;
            proxy_cache_valid 200 302 1s;
            proxy_ignore_headers Cache-Control Expires;
        }
    }
}
"""


class CuttingProxy:
    """Forwards connections. Of every three connections it cuts one after 700 bytes of the response and one after
    300,000."""

    def __init__(self, upstream_port):
        self.upstream_port = upstream_port
        self.listener = socket.create_server(("127.0.0.1", 0))
        self.port = self.listener.getsockname()[1]
        self.limits = itertools.cycle([700, 300_000, None])
        self.cuts = 0
        threading.Thread(target=self.accept, daemon=True).start()

    def accept(self):
        while True:
            try:
                client, _ = self.listener.accept()
            except OSError:
                return
            threading.Thread(target=self.serve, args=(client, next(self.limits)), daemon=True).start()

    def serve(self, client, limit):
        upstream = socket.create_connection(("127.0.0.1", self.upstream_port))
        requests = threading.Thread(target=self.pump, args=(client, upstream, None), daemon=True)
        requests.start()
        self.pump(upstream, client, limit)
        requests.join()
        client.close()
        upstream.close()

    def pump(self, source, target, limit):
        sent = 0
        try:
            while data := source.recv(65536):
                if limit is not None and sent + len(data) > limit:
                    target.sendall(data[:limit - sent])
                    self.cuts += 1
                    break
                target.sendall(data)
                sent += len(data)
        except OSError:
            pass
        for end in (source, target):
            try:
                end.shutdown(socket.SHUT_RDWR)
            except OSError:
                pass

    def close(self):
        self.listener.close()


class Proxies(ServiceCase):
    def setUp(self):
        super().setUp()
        self.run_program("sample", self.source)
        self.server = subprocess.Popen([self.program, "serve", self.source], stdout=subprocess.PIPE, text=True)
        self.addCleanup(self.end_server)
        self.upstream = json.loads(self.server.stdout.readline())["redirect"].removesuffix("/redirect")

    def end_server(self):
        self.server.send_signal(signal.SIGTERM)
        self.server.wait(20)
        self.server.stdout.close()

    def update(self, port):
        result = subprocess.run(
            [self.program, "--json", "--progress", "none", "--root", self.path("root"), "update", "--url",
             f"http://127.0.0.1:{port}/redirect", "--product", "Test", "--product-version", "1"],
            text=True, capture_output=True, timeout=120)
        return json.loads(result.stdout)["outcome"]

    def update_until_current(self, port, runs):
        outcomes = []
        while len(outcomes) < runs and outcomes[-1:] != ["current"]:
            outcomes.append(self.update(port))
        self.assertEqual(outcomes[-1], "current", outcomes)

    def catalogs(self, folder):
        found = {}
        for name in os.listdir(folder):
            if name.endswith(".orvlib"):
                with open(os.path.join(folder, name), "rb") as stream:
                    found[name] = hashlib.sha1(stream.read()).hexdigest()
        return found

    def core_equals_source(self):
        return self.catalogs(self.path("root", "core")) == self.catalogs(os.path.join(self.source, "content"))

    def assert_core_equals_source(self):
        self.assertGreaterEqual(len(self.catalogs(self.path("root", "core"))), 12)
        self.assertTrue(self.core_equals_source())

    def caching_proxy(self):
        os.makedirs(self.path("service", "run"))
        config = self.path("proxy.conf")
        with open(config, "w") as stream:
            stream.write(CACHING_PROXY.replace("UPSTREAM", self.upstream))
        return Nginx(NGINX, config, self.service)

    def cutting_proxy(self, port):
        proxy = CuttingProxy(port)
        self.addCleanup(proxy.close)
        return proxy

    def change_a_catalog(self):
        changed = next(name for name in sorted(os.listdir(self.path("root", "core"))) if name.endswith(".orvlib"))
        with open(os.path.join(self.source, "content", changed), "ab") as stream:
            stream.write(b"\0" * 4096)

    def test_clients_behind_a_caching_proxy_converge(self):
        with self.caching_proxy() as proxy:
            self.update_until_current(proxy.port, 3)
            self.assert_core_equals_source()
            self.change_a_catalog()
            deadline = time.monotonic() + 20
            while self.update(proxy.port) != "updated":  # until the proxy's copy is too old
                self.assertLess(time.monotonic(), deadline)
            self.update_until_current(proxy.port, 5)
            self.assert_core_equals_source()

    def test_clients_behind_a_proxy_that_cuts_connections_converge(self):
        proxy = self.cutting_proxy(int(self.upstream.rsplit(":", 1)[1]))
        self.update_until_current(proxy.port, 60)
        self.assertGreater(proxy.cuts, 0)
        self.assert_core_equals_source()

    def test_clients_behind_both_in_a_row_converge(self):
        with self.caching_proxy() as caching:
            cutting = self.cutting_proxy(caching.port)
            self.update_until_current(cutting.port, 60)
            self.assert_core_equals_source()
            self.change_a_catalog()
            deadline = time.monotonic() + 30
            while True:  # until the proxy's copy is too old and a response arrives whole
                self.assertLess(time.monotonic(), deadline)
                self.update(cutting.port)
                if self.core_equals_source():
                    break
            self.assertGreater(cutting.cuts, 0)
            self.update_until_current(cutting.port, 60)


if __name__ == "__main__":
    ServiceCase.program, NGINX = sys.argv[1:3]
    del sys.argv[1:3]
    unittest.main(verbosity=1)

"""Helpers of the service tests: the program, content folders, and a real nginx on a free port."""
import json
import os
import re
import shutil
import socket
import subprocess
import tempfile
import time
import unittest


class ServiceCase(unittest.TestCase):
    program = None  # path of orv-library, set by the test program

    def setUp(self):
        self.work = tempfile.mkdtemp(prefix="orv-service-")
        os.chmod(self.work, 0o755)  # nginx's workers may be another user
        self.addCleanup(shutil.rmtree, self.work, ignore_errors=True)
        self.source = self.path("source")
        self.service = self.path("service")

    def path(self, *parts):
        return os.path.join(self.work, *parts)

    def write(self, name, content):
        path = os.path.join(self.source, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "wb") as stream:
            stream.write(content)

    def run_program(self, *arguments, status=0):
        result = subprocess.run([self.program, "--json", *arguments], text=True, errors="replace",
                                capture_output=True, timeout=120)
        self.assertEqual(result.returncode, status, result.stdout + result.stderr)
        return json.loads(result.stdout)

    def publish(self, status=0):
        return self.run_program("publish", self.source, self.service, status=status)

    def map_of(self, name):
        with open(os.path.join(self.service, "catalog.d", name), "rb") as stream:
            return dict(re.findall(rb'^"(.*)" ([0-9a-f]{40});$', stream.read(), re.M))


class Nginx:
    """The real server for a published folder, running inside a with block."""

    def __init__(self, nginx, config, service):
        self.nginx, self.service = nginx, service
        with socket.socket() as probe:
            probe.bind(("127.0.0.1", 0))
            self.port = probe.getsockname()[1]
        with open(config) as stream:
            text = re.sub(r"listen 127\.0\.0\.1:\d+;", f"listen 127.0.0.1:{self.port};", stream.read())
        with open(self.file("nginx.conf"), "w") as stream:
            stream.write(text)

    def file(self, *parts):
        return os.path.join(self.service, *parts)

    def signal(self, *arguments):
        subprocess.run([self.nginx, "-p", self.service, "-c", self.file("nginx.conf"), *arguments], check=True,
                       capture_output=True, timeout=30)

    def __enter__(self):
        self.signal()
        self.wait_until_served()
        return self

    def __exit__(self, *unused):
        self.signal("-s", "stop")

    def wait_until_served(self):
        deadline = time.monotonic() + 10
        while time.monotonic() < deadline:
            try:
                socket.create_connection(("127.0.0.1", self.port), 1).close()
                return
            except OSError:
                time.sleep(0.02)
        raise TimeoutError("nginx does not answer")

    def reload(self):
        """Returns after all workers of the old configuration have ended."""
        before = self.workers()
        self.signal("-s", "reload")
        deadline = time.monotonic() + 10
        while time.monotonic() < deadline:
            now = self.workers()
            if now and not now & before:
                return
            time.sleep(0.02)
        raise TimeoutError("nginx kept its old workers")

    def workers(self):
        with open(self.file("run", "nginx.pid")) as stream:
            master = stream.read().strip()
        with open(f"/proc/{master}/task/{master}/children") as stream:
            return set(stream.read().split())

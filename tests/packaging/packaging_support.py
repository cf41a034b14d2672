"""Helpers of the packaging tests: running commands, the embedded service, and a consumer project."""
import contextlib
import glob
import json
import os
import shlex
import signal
import subprocess


def run(*command, **options):
    result = subprocess.run(command, text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=300, **options)
    if result.returncode:
        raise AssertionError(f"{shlex.join(command)}\n{result.stdout}")
    return result.stdout


@contextlib.contextmanager
def service(program, folder):
    """Serves sample content on a free port and returns the redirect address."""
    run(program, "sample", folder)
    server = subprocess.Popen([program, "serve", folder], stdout=subprocess.PIPE, text=True)
    try:
        yield json.loads(server.stdout.readline())["redirect"]
    finally:
        server.send_signal(signal.SIGTERM)
        server.wait(20)
        server.stdout.close()


def everything(folder):
    """The consumer's output after it has fetched every core catalog and referenced archive of the content."""
    count = sum(len(glob.glob(os.path.join(folder, "content", "*" + ending))) for ending in (".orvlib", ".zip"))
    return f"updated, {count} new"


class Consumer:
    """A project outside the source tree that uses the library, and a fresh root to run its program on."""

    def __init__(self, project, work):
        self.project, self.work = project, work

    def build(self, name, *options):
        folder = os.path.join(self.work, name)
        run("cmake", "-S", self.project, "-B", folder, "-DCMAKE_BUILD_TYPE=Debug", *options)
        run("cmake", "--build", folder)
        return os.path.join(folder, "consumer")

    def output(self, program, address, **environment):
        return run(program, address, env=self.environment(program, environment)).strip()

    def failure(self, program, address):
        """The program's output; expects that it ends with status 1."""
        result = subprocess.run([program, address], text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                                env=self.environment(program, {}))
        assert result.returncode == 1, result
        return result.stdout

    @staticmethod
    def environment(program, more):
        return dict(os.environ, ORV_LIBRARY_ROOT=program + "-root", **more)

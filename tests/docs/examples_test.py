"""Every manual page has examples. Each example runs unchanged and succeeds, on a library that was updated twice
and in a folder with the files that the examples name."""
import json
import os
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import unittest

from docs_support import free_port, read

PROGRAM, SOURCE = sys.argv[1:3]  # and the build tree
MAN = os.path.join(SOURCE, "docs", "man")
ADDRESS = "https://content.example/redirect"
# Pages of the window and of commands that run until they are ended.
NOT_RUN = {"orv-browser", "orv-library-serve"}
# Examples whose exit status is a result. The value is the status that each has here.
STATUS = {"orv-library list | grep damaged": 1}


def blocks(page):
    examples = read(os.path.join(MAN, page + ".1.scd")).split("\n# EXAMPLES\n")[1].split("\n# ")[0]
    return re.findall(r"^```\n(.*?)^```$", examples, re.M | re.S)


def pages():
    return sorted(name[:-len(".1.scd")] for name in os.listdir(MAN) if name.endswith(".1.scd"))


class Service:
    """Sample content that changes step by step."""

    def __init__(self, folder):
        self.content = os.path.join(folder, "content")
        subprocess.run([PROGRAM, "sample", self.content], check=True, capture_output=True)
        self.process = subprocess.Popen([PROGRAM, "serve", self.content, "--port", str(free_port())], text=True,
                                        stdout=subprocess.PIPE)
        self.addresses = json.loads(self.process.stdout.readline())

    def change(self, name):
        """Puts a newer version of a catalog on the service: the content of another catalog."""
        core = os.path.join(self.content, "content")
        shutil.copy(os.path.join(core, "Floors.orvlib"), os.path.join(core, name + ".new"))
        os.replace(os.path.join(core, name + ".new"), os.path.join(core, name))

    def end(self):
        self.process.send_signal(signal.SIGINT)
        self.process.wait(20)
        self.process.stdout.close()


class Examples(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.work = tempfile.mkdtemp(prefix="orv-examples-")
        cls.addClassCleanup(shutil.rmtree, cls.work, ignore_errors=True)
        cls.service = Service(cls.work)
        cls.addClassCleanup(cls.service.end)
        cls.prepared = os.path.join(cls.work, "prepared")
        cls.run_program("settings", "set", "url", cls.service.addresses["redirect"])
        cls.run_program("update")
        cls.service.change("Doors.orvlib")
        cls.run_program("update")
        cls.run_program("check")
        bonus = os.path.join(cls.prepared, "bonus")
        shutil.copy(os.path.join(cls.prepared, "core", "Stairs.orvlib"), os.path.join(bonus, "Sauna.orvlib"))
        for name in ("Garden Party.orvlibz", "Holiday Décor.orvlibz"):
            cls.run_program("import", os.path.join(cls.service.content, "content", name))

    @classmethod
    def run_program(cls, *arguments):
        subprocess.run([PROGRAM, "--root", cls.prepared, *arguments], check=True, capture_output=True, text=True, timeout=60,
                       env=dict(os.environ, LC_ALL="C.UTF-8"))

    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="example-", dir=self.work)
        self.root = os.path.join(self.folder, "root")
        content = os.path.join(self.service.content, "content")
        for name in ("Doors.orvlib", "Garden Party.orvlibz"):
            shutil.copy(os.path.join(content, name), self.folder)
        for name in ("oak.png", "beech.png"):
            shutil.copy(os.path.join(self.service.content, "manufacturers", "Oakline.png"), os.path.join(self.folder, name))

    def here(self, line):
        """Replaces the parts of an example that differ in this test."""
        line = line.replace(ADDRESS, self.service.addresses["redirect"])
        for name in ("manufacturers", "logos"):
            line = line.replace(f"https://content.example/{name}?", self.service.addresses[name])
        if re.search(r"\b[0-9a-f]{40}\b", line):
            listed = subprocess.run([PROGRAM, "--root", self.root, "--json", "history", "Doors"], check=True, text=True,
                                    stdout=subprocess.PIPE).stdout
            line = re.sub(r"\b[0-9a-f]{40}\b", json.loads(listed)["versions"][-1]["version"], line)
        return line

    def run_example(self, page, block):
        shutil.copytree(self.prepared, self.root)
        path = os.pathsep.join([os.path.dirname(PROGRAM), os.environ["PATH"]])
        # The other examples read or publish the sample content; "sample" writes new content.
        if page == "orv-library-publish":
            shutil.copytree(self.service.content, os.path.join(self.folder, "content"))
        if page == "orv-library-log":
            os.makedirs(os.path.join(self.root, "user"), exist_ok=True)
        for line in block.strip("\n").split("\n"):
            result = subprocess.run(["bash", "-c", "set -o pipefail; " + self.here(line)], cwd=self.folder, text=True,
                                    timeout=120, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                                    env=dict(os.environ, PATH=path, ORV_LIBRARY_ROOT=self.root, LC_ALL="C.UTF-8",
                                             HOME=self.folder, DBUS_SYSTEM_BUS_ADDRESS="unix:path=/nonexistent"))
            self.assertEqual(result.returncode, STATUS.get(line, 0), f"{page}: {line}\n{result.stdout}")
        shutil.rmtree(self.root)

    def test_every_page_has_examples_that_name_its_command(self):
        for page in pages():
            self.assertTrue(blocks(page), page)
            self.assertIn(page.replace("orv-library-", "orv-library "), "".join(blocks(page)), page)

    def test_examples_work(self):
        for page in sorted(set(pages()) - NOT_RUN):
            for block in blocks(page):
                with self.subTest(page):
                    self.run_example(page, block)
                shutil.rmtree(self.root, ignore_errors=True)

    def test_the_served_folder_is_that_of_the_example(self):
        [block] = blocks("orv-library-serve")
        line = block.strip().replace("8480", str(free_port())).replace("orv-library", PROGRAM, 1)
        server = subprocess.Popen(["bash", "-c", "exec " + line], cwd=self.work, text=True, stdout=subprocess.PIPE)
        self.assertEqual(set(json.loads(server.stdout.readline())), {"redirect", "manufacturers", "logos"})
        server.send_signal(signal.SIGINT)
        self.assertEqual(server.wait(20), 0)
        server.stdout.close()


if __name__ == "__main__":
    del sys.argv[1:4]
    unittest.main(verbosity=1)

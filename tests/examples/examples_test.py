"""Runs every example, the updates against the real service, and checks the results."""
import glob
import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

from packaging_support import run, service

PROGRAMS, ORV_LIBRARY, SOURCES = sys.argv[1:4]
A_PAGE = 90  # lines


class Examples(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        work = cls.enterClassContext(tempfile.TemporaryDirectory())
        cls.work, cls.content = work, os.path.join(work, "content")
        cls.redirect = cls.enterClassContext(service(ORV_LIBRARY, cls.content))

    def setUp(self):
        self.root = os.path.join(self.work, self.id())

    def output(self, name, *arguments):
        return run(os.path.join(PROGRAMS, "example_" + name), *arguments,
                   env=dict(os.environ, ORV_LIBRARY_ROOT=self.root))

    def assert_core_arrived(self):
        served = glob.glob(os.path.join(self.content, "content", "*.orvlib"))
        self.assertTrue(served)
        for path in served:
            with open(path, "rb") as theirs, open(os.path.join(self.root, "core", os.path.basename(path)), "rb") as ours:
                self.assertEqual(ours.read(), theirs.read(), path)

    def test_each_is_under_a_page(self):
        for path in glob.glob(os.path.join(SOURCES, "*.cpp")):
            with open(path) as stream:
                self.assertLess(len(stream.readlines()), A_PAGE, path)

    def test_update_without_window(self):
        output = self.output("UpdateWithoutWindow", self.redirect)
        self.assertIn("Result 2;", output)
        self.assertIn("Türen und Fenster.orvlib", output)
        self.assert_core_arrived()
        self.assertIn("Result 3;", self.output("UpdateWithoutWindow", self.redirect))

    def test_update_with_panel(self):
        self.assertRegex(self.output("UpdateWithPanel", self.redirect), r"Updated \d\d catalogs, result 2")
        self.assert_core_arrived()
        self.assertIn("Updated 0 catalogs, result 3", self.output("UpdateWithPanel", self.redirect))

    def test_unpack(self):
        archive = os.path.join(self.work, "Garden Party.orvlibz")
        shutil.copy(os.path.join(self.content, "content", "Garden Party.orvlibz"), archive)
        output = self.output("UnpackWithCancel", archive)
        for label, ending in (("database:        ", ".orvlib"), ("referenced files:", ".zip")):
            path = re.search(rf"^{label} (.*{ending})$", output, re.M)[1]
            self.assertGreater(os.path.getsize(path), 0)

    def test_unsound_archive_is_told_and_leaves_nothing(self):
        archive = os.path.join(self.work, "Broken.orvlibz")
        with open(archive, "wb") as stream:
            stream.write(b"no archive")
        result = subprocess.run([os.path.join(PROGRAMS, "example_UnpackWithCancel"), archive], text=True,
                                capture_output=True, timeout=60, env=dict(os.environ, ORV_LIBRARY_ROOT=self.root))
        self.assertEqual(result.returncode, 1)
        self.assertNotEqual(result.stderr, "")
        self.assertEqual(glob.glob(os.path.join(self.work, "Broken*")), [archive])

    def test_own_host(self):
        self.assertEqual(self.output("OwnHost"), "Style 10000 is called Shaker, style 10001 Contemporary\n")

    def test_filters(self):
        self.assertIn("In force: Kitchen; fixtures-7 is in it", self.output("Filters"))
        self.assertTrue(os.path.exists(os.path.join(self.root, "core", "catalog_filters.json")))

    def test_manufacturers(self):
        self.assertRegex(self.output("Manufacturers"), "^Northern Windows, phone: Ask your dealer, logo: .*windows.png")
        self.assertTrue(os.path.exists(os.path.join(self.root, "manufacturer-data", "manufacturer_data.json")))


if __name__ == "__main__":
    del sys.argv[1:4]
    unittest.main(verbosity=1)

"""Builds and runs a host project against the install tree, the build tree and the pkg-config file."""
import os
import shlex
import subprocess
import sys
import tempfile
import unittest

from packaging_support import Consumer, everything, run, service

BUILD_TREE, PROJECT, PROGRAM = sys.argv[1:4]


class InstalledLibrary(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.folder.cleanup)
        work = cls.folder.name
        first = os.path.join(work, "first")
        for component in ("runtime", "development"):
            run("cmake", "--install", BUILD_TREE, "--prefix", first, "--component", component)
        cls.prefix = os.path.join(work, "moved prefix")  # an installed tree must work at any path
        os.rename(first, cls.prefix)
        cls.library_folder = next(path for path, _, names in os.walk(cls.prefix) if "libOrvLibrary.so" in names)
        cls.consumer = Consumer(PROJECT, work)
        cls.content = os.path.join(work, "content")
        cls.redirect = cls.enterClassContext(service(PROGRAM, cls.content))
        cls.installed = cls.consumer.build("installed", f"-DCMAKE_PREFIX_PATH={cls.prefix}")

    def updates(self, program):
        self.assertEqual(self.consumer.output(program, self.redirect), everything(self.content))
        self.assertEqual(self.consumer.output(program, self.redirect), "current, 0 new")

    def test_the_install_tree_is_found(self):
        self.updates(self.installed)

    def test_the_build_tree_is_found(self):
        self.updates(self.consumer.build("built", f"-DOrvLibrary_DIR={BUILD_TREE}"))

    def test_another_major_version_is_refused(self):
        project = os.path.join(self.folder.name, "other")
        os.mkdir(project)
        with open(os.path.join(project, "CMakeLists.txt"), "w") as stream:
            stream.write("cmake_minimum_required(VERSION 3.22)\nproject(Other LANGUAGES CXX)\n"
                         "find_package(OrvLibrary 2 REQUIRED)\n")
        with self.assertRaisesRegex(AssertionError, "version: 1.0.0"):
            Consumer(project, self.folder.name).build("refused", f"-DCMAKE_PREFIX_PATH={self.prefix}")

    def test_pkg_config_knows_it(self):
        sources = os.path.join(self.folder.name, "by-pkg-config")
        os.mkdir(sources)
        flags = shlex.split(run("pkg-config", "--cflags", "--libs", "orvhost", env=dict(
            os.environ, PKG_CONFIG_PATH=os.path.join(self.library_folder, "pkgconfig"))))
        moc = subprocess.run(["moc", *[flag for flag in flags if flag.startswith("-I")],
                              os.path.join(PROJECT, "main.cpp"), "-o", os.path.join(sources, "main.moc")],
                             text=True, capture_output=True)
        self.assertEqual(moc.returncode, 0, moc.stderr)
        program = os.path.join(sources, "consumer")
        run("g++", "-std=c++17", "-fPIC", "-pthread", f"-I{sources}", os.path.join(PROJECT, "main.cpp"), "-o", program,
            *flags, f"-Wl,-rpath,{self.library_folder}")
        self.updates(program)

    def test_the_library_is_named_by_its_major_version(self):
        dynamic = run("readelf", "-d", os.path.join(self.library_folder, "libOrvLibrary.so"))
        self.assertIn("[libOrvLibrary.so.1]", dynamic)
        with open(os.path.join(self.prefix, "include", "OrvLibrary", "OrvLibraryVersion.h")) as stream:
            self.assertIn("1.0.0", stream.read())

    def test_an_update_that_finds_no_service_says_so(self):
        output = self.consumer.failure(self.installed, "http://127.0.0.1:1/redirect")
        self.assertIn("failed, 0 new", output)
        self.assertIn("127.0.0.1 port 1", output)


if __name__ == "__main__":
    del sys.argv[1:4]
    unittest.main(verbosity=1)

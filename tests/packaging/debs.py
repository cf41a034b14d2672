"""Makes the Debian packages, installs them into an empty tree, and uses the installed files."""
import glob
import os
import re
import sys
import tempfile
import unittest

from packaging_support import Consumer, everything, run, service

BUILD_TREE, PROJECT, SOURCE = sys.argv[1:4]


class DebianPackages(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.work = folder.name
        debs = os.path.join(cls.work, "debs")
        run("cpack", "--config", os.path.join(BUILD_TREE, "CPackConfig.cmake"), "-B", debs)
        cls.packages = {re.match(r"[^_]+", os.path.basename(path))[0]: path
                        for path in glob.glob(os.path.join(debs, "*.deb"))}
        cls.tree = os.path.join(cls.work, "tree")
        for path in cls.packages.values():
            cls.install(path)

    @classmethod
    def install(cls, path):
        """Installs a package. As root it uses dpkg with its own database, which also finds files that two packages own.

        The package is unpacked and not configured, because the script that renews the loader's cache would need a shell
        in the tree.
        """
        if os.geteuid() != 0:
            run("dpkg", "-x", path, cls.tree)
            return
        state = os.path.join(cls.tree, "var", "lib", "dpkg")
        for name in ("info", "updates", "triggers"):
            os.makedirs(os.path.join(state, name), exist_ok=True)
        with open(os.path.join(state, "status"), "a"):
            pass
        run("dpkg", f"--root={cls.tree}", "--log=/dev/null", "--force-depends", "--unpack", path)

    def in_tree(self, *parts):
        return os.path.join(self.tree, *parts)

    def field(self, package, name):
        return run("dpkg-deb", "--field", self.packages[package], name).strip()

    def test_there_are_three(self):
        self.assertEqual(set(self.packages), {"liborvlibrary1", "liborvlibrary-dev", "orv-library"})

    def test_they_depend_on_each_other_and_on_what_they_need(self):
        runtime, programs = self.field("liborvlibrary1", "Depends"), self.field("orv-library", "Depends")
        for package in ("libc6", "libqt5core5a", "libqt5widgets5", "libcurl4", "libssl3", "zlib1g"):
            self.assertRegex(runtime, rf"(^|, ){re.escape(package)}( |,|$)")
        self.assertIn("liborvlibrary1 (= 1.0.0)", programs)
        self.assertIn("libqt5sql5-sqlite", programs)
        for package in ("liborvlibrary1 (= 1.0.0)", "qtbase5-dev", "libboost-dev"):
            self.assertIn(package, self.field("liborvlibrary-dev", "Depends"))

    def test_each_holds_its_own_files(self):
        listing = {name: run("dpkg-deb", "--contents", path) for name, path in self.packages.items()}
        self.assertRegex(listing["liborvlibrary1"], r"/libOrvLibrary\.so\.1 ->")
        for text in ("include/", "cmake/", "libOrvLibrary.so ->", "/bin/"):
            self.assertNotIn(text, listing["liborvlibrary1"])
        for text in ("/OrvLibrary/LibraryCatalogUpdater.h", "OrvLibraryConfig.cmake", "orvlibrary.pc",
                     "libOrvLibrary.so ->"):
            self.assertIn(text, listing["liborvlibrary-dev"])
        for text in ("_p.h", "/impl/", "/json/"):
            self.assertNotIn(text, listing["liborvlibrary-dev"])

    def test_the_programs_run_from_the_tree(self):
        self.assertEqual(run(self.in_tree("usr", "bin", "orv-library"), "--version").strip(), "orv-library 1.0.0")
        run(self.in_tree("usr", "bin", "orv-browser"), "--version", env=dict(os.environ, QT_QPA_PLATFORM="offscreen"))

    def test_manual_and_completion_are_there(self):
        pages = {os.path.basename(path)[:-len(".scd")]
                 for path in glob.glob(os.path.join(SOURCE, "docs", "man", "*.1.scd"))}
        self.assertGreater(len(pages), 10)
        self.assertEqual(set(os.listdir(self.in_tree("usr", "share", "man", "man1"))), pages)
        self.assertTrue(os.path.exists(
            self.in_tree("usr", "share", "bash-completion", "completions", "orv-library")))

    def test_the_timer_is_there_and_off(self):
        units = self.in_tree("usr", "lib", "systemd", "user")
        self.assertEqual(sorted(os.listdir(units)), ["orv-library-check.service", "orv-library-check.timer"])

    def test_schemas_and_pages_of_the_documents_are_there(self):
        for name in ("troubleshooting.md", os.path.join("service", "behind-a-proxy.md")):
            self.assertTrue(os.path.exists(self.in_tree("usr", "share", "doc", "orv-library", name)), name)
        schemas = os.listdir(os.path.join(SOURCE, "docs", "schemas"))
        self.assertGreater(len(schemas), 10)
        self.assertEqual(set(os.listdir(self.in_tree("usr", "share", "doc", "orv-library", "schemas"))), set(schemas))

    def test_a_consumer_builds_and_runs_against_the_tree(self):
        consumer = Consumer(PROJECT, self.work)
        program = consumer.build("consumer", f"-DCMAKE_PREFIX_PATH={self.in_tree('usr')}",
                                 "-DCMAKE_EXPORT_COMPILE_COMMANDS=ON")
        with open(os.path.join(os.path.dirname(program), "compile_commands.json")) as stream:
            self.assertIn(self.in_tree("usr", "include"), stream.read())
        content = os.path.join(self.work, "content")
        with service(self.in_tree("usr", "bin", "orv-library"), content) as redirect:
            self.assertEqual(consumer.output(program, redirect), everything(content))


if __name__ == "__main__":
    del sys.argv[1:4]
    unittest.main(verbosity=1)

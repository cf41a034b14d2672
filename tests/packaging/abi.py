"""Compares the binary interface of a library with the kept description of the version that hosts are linked with:
`abi.py LIBRARY SOURCE KEPT ROOM`, where ROOM is the folder of its headers.

Additions are allowed; changes that break a host which is already linked are not. Run with --update to write a new
description.
"""
import lzma
import os
import re
import subprocess
import sys
import tempfile
import unittest

LIBRARY, SOURCE, KEPT, ROOM = sys.argv[1:5]
SUPPRESSIONS = os.path.join(os.path.dirname(KEPT), "suppressions.ini")


def link_public_headers(target):
    """Links the headers that are installed. Types of other headers are not part of the interface."""
    for folder, folders, names in os.walk(os.path.join(SOURCE, ROOM)):
        folders[:] = [name for name in folders if name not in ("json", "impl")]
        for name in names:
            if name.endswith(".h") and not name.endswith("_p.h"):
                os.symlink(os.path.join(folder, name), os.path.join(target, name))


def description():
    with tempfile.TemporaryDirectory() as headers:
        link_public_headers(headers)
        text = subprocess.run(
            ["abidw", "--suppressions", SUPPRESSIONS, "--headers-dir", headers, "--drop-private-types",
             "--exported-interfaces-only", "--no-corpus-path", "--no-comp-dir-path", "--no-show-locs",
             "--no-elf-needed", "--no-parameter-names", LIBRARY],
            text=True, check=True, stdout=subprocess.PIPE).stdout
    # The location of the sources depends on the build folder.
    return re.sub(rf"path='[^']*?({ROOM}/[^']*)'", r"path='\1'", text)


def breaks(kept, found):
    """abidiff's report of all changes except additions; empty if there are none."""
    with tempfile.TemporaryDirectory() as work:
        paths = [os.path.join(work, name) for name in ("kept.abi", "found.abi")]
        for path, text in zip(paths, (kept, found)):
            with open(path, "w") as stream:
                stream.write(text)
        result = subprocess.run(["abidiff", "--no-added-syms", *paths], text=True, stdout=subprocess.PIPE,
                                stderr=subprocess.STDOUT)
    return result.stdout if result.returncode else ""


def without(text, symbol):
    """The description of the library without one function."""
    lines = [line for line in text.split("\n") if f"<elf-symbol name='{symbol}'" not in line]
    start = next(index for index, line in enumerate(lines) if f"mangled-name='{symbol}'" in line)
    end = next(index for index in range(start, len(lines)) if "</function-decl>" in lines[index])
    return "\n".join(lines[:start] + lines[end + 1:])


class BinaryInterface(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        with lzma.open(KEPT, "rt") as stream:
            cls.kept = stream.read()
        cls.found = description()

    def test_nothing_is_broken(self):
        report = breaks(self.kept, self.found)
        self.assertEqual(report, "", report + "CONTRIBUTING.md says what to do.")


@unittest.skipUnless(ROOM == "OrvLibrary", "the comparison is tried on one library")
class Comparison(unittest.TestCase):
    kill_download = "_ZN20LibraryCatalogUpdate21LibraryCatalogUpdater12killDownloadEv"

    @classmethod
    def setUpClass(cls):
        with lzma.open(KEPT, "rt") as stream:
            cls.kept = stream.read()

    def test_an_added_function_is_fine(self):
        self.assertEqual(breaks(without(self.kept, self.kill_download), self.kept), "")

    def test_a_lost_function_is_noticed(self):
        self.assertIn("killDownload", breaks(self.kept, without(self.kept, self.kill_download)))

    def test_a_moved_member_is_noticed(self):
        member = re.search(r"<data-member [^>]*layout-offset-in-bits='(320)'>\s*<var-decl name='localHash'", self.kept)
        moved = self.kept[:member.start(1)] + "384" + self.kept[member.end(1):]
        self.assertIn("localHash", breaks(self.kept, moved))


if "--update" in sys.argv:
    with lzma.open(KEPT, "wt", preset=9) as stream:
        stream.write(description())
    sys.exit()
del sys.argv[1:5]
unittest.main(verbosity=1)

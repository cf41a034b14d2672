"""The commands that are disturbed. Each has a sandbox: `root/` for the program, `input/` for what it is given, `work/`
as its current folder, and `sentinel/`, which nothing may touch."""
import os
import random
import zipfile


def write(path, content):
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "wb") as file:
        file.write(content)


def noise(seed, size):
    return random.Random(seed).randbytes(size)


def archive(path, members):
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with zipfile.ZipFile(path, "w") as file:
        for number, (name, content) in enumerate(members.items()):
            method = zipfile.ZIP_DEFLATED if number % 2 else zipfile.ZIP_STORED
            file.writestr(zipfile.ZipInfo(name, (2026, 1, 2, 3, 4, 6)), content, method)


class Scenario:
    """One command. `prepare` builds the sandbox, `arguments` follow the program's name."""

    name = ""
    # Deliberate: files that a failed run takes away, because they are guarded before anything is written.
    consumed_by_failure = ()
    # Deliberate: archives in which a member that could not be copied is left out, while the run is done.
    may_lack_members = ()

    def prepare(self, sandbox):
        for folder in ("root", "input", "work"):
            os.makedirs(os.path.join(sandbox, folder))
        write(os.path.join(sandbox, "sentinel/deep/file"), b"sentinel")
        os.symlink("deep", os.path.join(sandbox, "sentinel/link"))
        self.fill(sandbox)

    def fill(self, sandbox):
        raise NotImplementedError

    def arguments(self, sandbox):
        raise NotImplementedError


def library_members(seed):
    return {"Kitchen.orvlib": noise(seed, 150000), "textures/oak.jpg": noise(seed + 1, 40000),
            "textures/tile.png": b"tile" * 5000, "Th\u00fcr.txt": b"text" * 10}


class UnpackBeside(Scenario):
    """Unpacks where both targets stand already: an older database and an older archive."""

    name = "unpack-beside"
    consumed_by_failure = ("input/Kitchen.orvlib", "input/Kitchen.zip")
    may_lack_members = ("input/Kitchen.zip",)

    def fill(self, sandbox):
        archive(os.path.join(sandbox, "input/Kitchen.orvlibz"), library_members(1))
        write(os.path.join(sandbox, "input/Kitchen.orvlib"), noise(9, 90000))
        archive(os.path.join(sandbox, "input/Kitchen.zip"), {"textures/oak.jpg": b"old", "kept.txt": b"kept"})

    def arguments(self, sandbox):
        return ["unpack", "--beside", os.path.join(sandbox, "input/Kitchen.orvlibz")]


class ImportOverOld(Scenario):
    """Imports a library that is there already: the database is replaced and its textures are merged."""

    name = "import"
    may_lack_members = ("root/textures/Kitchen.zip",)

    def fill(self, sandbox):
        archive(os.path.join(sandbox, "input/Kitchen.orvlibz"), library_members(1))
        write(os.path.join(sandbox, "root/user/Kitchen.orvlib"), noise(9, 90000))
        archive(os.path.join(sandbox, "root/textures/Kitchen.zip"),
                {"textures/oak.jpg": b"old", "kept.txt": b"kept"})

    def arguments(self, sandbox):
        return ["import", os.path.join(sandbox, "input/Kitchen.orvlibz")]


class ImportNew(Scenario):
    """Imports a manufacturer's library for the first time, into a root without folders."""

    name = "import-new"
    may_lack_members = ("root/referenced/Kitchen.zip",)

    def fill(self, sandbox):
        archive(os.path.join(sandbox, "input/Kitchen.orvlibz"), library_members(1))

    def arguments(self, sandbox):
        return ["import", "--proprietary", os.path.join(sandbox, "input/Kitchen.orvlibz")]


ALL = [UnpackBeside(), ImportOverOld(), ImportNew()]

"""The commands that are disturbed. Each runs in a sandbox with `root/` for the program, `input/` for its input, `work/`
as the current folder, and `sentinel/`, which must stay unchanged."""
import hashlib
import json
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


# The folders below a root, which any command creates that works on it.
WELL_KNOWN = ("user", "core", "bonus", "manufacturer", "manufacturer-data", "referenced", "textures", "temp")


class Window(list):
    """Steps for the window; other lists are arguments of the command-line host."""


class Scenario:
    """One command. `prepare` creates the sandbox, `before` returns the commands that produce the old state, and
    `arguments` those of the command that is disturbed."""

    name = ""
    # Deliberate: files that a failed run removes, because they are guarded before anything is written.
    consumed_by_failure = ()
    # Deliberate: archives that lack a member that could not be copied although the run succeeds.
    may_lack_members = ()
    # Deliberate: files whose write failures are not reported. They keep their old content, or lines of it.
    may_stay_old = ()
    # Deliberate: files that are removed before their successors arrive. After a disturbed run they may be missing.
    removed_before_replaced = ()
    # Temporary files with fixed names that a run removes.
    working_files = ()
    # Copies of unreadable files that a run keeps.
    kept_copies = ()
    # Files that a run changes together or, if it fails, not at all.
    all_or_nothing = ()
    # Deliberate: files that stay missing after a failure until the service has a newer version.
    may_stay_out = ()
    # Deliberate: files that are saved after another file. A run that is killed between the two leaves their old content.
    may_lag = ()
    # Files that a run does not write if there is nothing to do. Unfinished copies of them may stay until then.
    seldom_written = ()
    # Whether files that fail for ever may leave something that only `verify --repair` finds.
    mended_by_verify = False
    # The message with which a repeated run ends with status 1; empty if repeating succeeds.
    refused_when_done = ""
    # Files of the old state whose contents must exist at every moment, under any name.
    never_lost = ()
    # Whether the run announces its end to a host object, once.
    has_closing = False
    # The least number of parallel downloads of an undisturbed run with a far service, which delays every response. None
    # for a service without delay.
    far_bodies = None

    def prepare(self, sandbox):
        for folder in ("root", "input", "work"):
            os.makedirs(os.path.join(sandbox, folder))
        for folder in WELL_KNOWN:
            os.makedirs(os.path.join(sandbox, "root", folder))
        write(os.path.join(sandbox, "sentinel/deep/file"), b"sentinel")
        os.symlink("deep", os.path.join(sandbox, "sentinel/link"))
        self.fill(sandbox)

    def fill(self, sandbox):
        pass

    def content(self, folder, version):
        """Writes the content of the web service: version 1 for the old state, 2 for the new one. Returns False if the
        scenario needs no service."""
        return False

    def before(self, sandbox, service):
        return []

    def ready(self, sandbox, service):
        """Tells the programs in their old state where the new content is."""

    def between(self, sandbox, service):
        """The commands that bring the old state to one through which a run passes, and with which one that is done
        again after a kill may end."""
        return []

    def arguments(self, sandbox, service):
        raise NotImplementedError


def library_members(seed):
    return {"Kitchen.orvlib": noise(seed, 150000), "textures/oak.jpg": noise(seed + 1, 40000),
            "textures/tile.png": b"tile" * 5000, "Th\u00fcr.txt": b"text" * 10}


class UnpackBeside(Scenario):
    """Unpacks when both targets exist: an older database and an older archive."""

    name = "unpack-beside"
    consumed_by_failure = ("input/Kitchen.orvlib", "input/Kitchen.zip")
    may_lack_members = ("input/Kitchen.zip",)

    def fill(self, sandbox):
        archive(os.path.join(sandbox, "input/Kitchen.orvlibz"), library_members(1))
        write(os.path.join(sandbox, "input/Kitchen.orvlib"), noise(9, 90000))
        archive(os.path.join(sandbox, "input/Kitchen.zip"), {"textures/oak.jpg": b"old", "kept.txt": b"kept"})

    def arguments(self, sandbox, service):
        return ["unpack", "--beside", os.path.join(sandbox, "input/Kitchen.orvlibz")]


class UnpackOut(Scenario):
    """Unpacks into a folder that has an older database."""

    name = "unpack-out"
    may_lack_members = ("out/Kitchen.zip",)

    def fill(self, sandbox):
        archive(os.path.join(sandbox, "input/Kitchen.orvlibz"), library_members(1))
        write(os.path.join(sandbox, "out/Kitchen.orvlib"), noise(9, 90000))

    def arguments(self, sandbox, service):
        return ["unpack", "--output-dir", os.path.join(sandbox, "out"), os.path.join(sandbox, "input/Kitchen.orvlibz")]


class ImportOverOld(Scenario):
    """Imports an existing library: the database is replaced and its textures are merged."""

    name = "import"
    may_lack_members = ("root/textures/Kitchen.zip",)
    all_or_nothing = ("root/textures/Kitchen.zip", "root/user/Kitchen.orvlib", "root/user/Kitchen.orvlib.bak")

    def fill(self, sandbox):
        archive(os.path.join(sandbox, "input/Kitchen.orvlibz"), library_members(1))
        write(os.path.join(sandbox, "root/user/Kitchen.orvlib"), noise(9, 90000))
        archive(os.path.join(sandbox, "root/textures/Kitchen.zip"),
                {"textures/oak.jpg": b"old", "kept.txt": b"kept"})

    def arguments(self, sandbox, service):
        return ["import", "--no-database-check", os.path.join(sandbox, "input/Kitchen.orvlibz")]


class ImportNew(Scenario):
    """Imports a manufacturer's library for the first time, into a root without folders."""

    name = "import-new"
    may_lack_members = ("root/referenced/Kitchen.zip",)

    def fill(self, sandbox):
        archive(os.path.join(sandbox, "input/Kitchen.orvlibz"), library_members(1))

    def arguments(self, sandbox, service):
        return ["import", "--no-database-check", "--proprietary", os.path.join(sandbox, "input/Kitchen.orvlibz")]


class Undo(Scenario):
    """Undoes the last of three imports."""

    name = "undo"

    def fill(self, sandbox):
        for version in (1, 2, 3):
            members = {**library_members(10 * version), f"only-{version}.txt": b"only"}
            archive(os.path.join(sandbox, f"input/{version}/Kitchen.orvlibz"), members)
        write(os.path.join(sandbox, "root/user/Kitchen.orvlib"), noise(9, 90000))

    def before(self, sandbox, service):
        return [["import", "--no-database-check", os.path.join(sandbox, f"input/{version}/Kitchen.orvlibz")]
                for version in (1, 2, 3)]

    def arguments(self, sandbox, service):
        return ["undo"]


class FilterAdd(Scenario):
    """Adds a filter to the existing ones."""

    name = "filter-add"
    kept_copies = ("root/core/catalog_filters.json.unreadable",)
    refused_when_done = "another filter has the name Garden"

    def before(self, sandbox, service):
        return [["filters", "add", "Kitchen", "db-1", "db-2"], ["filters", "add", "B\u00e4der", "db-3"]]

    def arguments(self, sandbox, service):
        return ["filters", "add", "Garden", "db-4"]


class FilterRemoveLast(Scenario):
    """Removes the only filter, so that an empty list is stored."""

    name = "filter-remove"
    kept_copies = ("root/core/catalog_filters.json.unreadable",)

    def before(self, sandbox, service):
        return [["filters", "add", "Kitchen", "db-1", "--id", "5"], ["filters", "add", "Bath", "db-2", "--id", "6"],
                ["filters", "remove", "6"]]

    def arguments(self, sandbox, service):
        return ["filters", "drop-database", "db-1"]


class FilterMerge(Scenario):
    """Merges with a second filter file; both files change. The files have no names in common, because a merge that is
    repeated after a failure would find the filters that it renamed and rename them again."""

    name = "filter-merge"
    kept_copies = ("root/core/catalog_filters.json.unreadable", "other/core/catalog_filters.json.unreadable")

    def before(self, sandbox, service):
        other = os.path.join(sandbox, "other")
        return [["filters", "add", "Kitchen", "db-1", "--id", "5"],
                ["--root", other, "paths", "--create"],
                ["--root", other, "filters", "add", "Office", "db-9", "--id", "3"],
                ["--root", other, "filters", "add", "Bath", "db-2", "--id", "6"]]

    def arguments(self, sandbox, service):
        return ["filters", "merge", os.path.join(sandbox, "other/core/catalog_filters.json")]


class ManufacturerRefresh(Scenario):
    """Fetches a newer manufacturer file with logos that are changed, new and removed."""

    name = "manufacturers"
    removed_before_replaced = ("root/manufacturer-data/Oakline.png", "root/manufacturer-data/Nordfenster.png")
    working_files = ("root/manufacturer-data/manufacturer_data_temp.json",)
    may_stay_old = (*removed_before_replaced, "root/manufacturer-data/Lumi\u00e8re.png")
    may_stay_out = may_stay_old

    def content(self, folder, version):
        names = ["Oakline", "Nordfenster"] if version == 1 else ["Oakline", "Nordfenster", "Lumi\u00e8re"]
        records = [self.record(number, name, version) for number, name in enumerate(names, 101)]
        text = ('{"Last_Modified": "2030010%dT000000", "Default_Text": "Ask version %d"%s}'
                % (version, version, "".join(', "Manufacturer": ' + json.dumps(each, ensure_ascii=False)
                                             for each in records)))
        write(os.path.join(folder, "manufacturers/manufacturer_data.json"), text.encode())
        for name in names:
            write(os.path.join(folder, f"manufacturers/{name}.png"), noise(version * 100 + len(name), 5000))
        os.makedirs(os.path.join(folder, "content"))
        return True

    @staticmethod
    def record(number, name, version):
        return {"Id": number, "Last_Modified": f"2030010{version}T000000", "Name": f"{name} {version}",
                "Url": "https://maker.example", "Phone": "default", "Fax": "default", "Email": "default",
                "Logo": f"{name}.png", "Lock": False, "Deleted": False}

    def before(self, sandbox, service):
        return [self.arguments(sandbox, service)]

    def arguments(self, sandbox, service):
        return ["manufacturers", "refresh", "--data-url", service["manufacturers"], "--logo-url", service["logos"]]


class Update(Scenario):
    """Updates core catalogs, of which two changed and one is new, their archive, and one packed catalog each of bonus
    and manufacturer content."""

    name = "update"
    has_closing = True
    # An archive that is not replaced has no former version.
    may_lack_members = ("root/referenced/Party.zip", "root/referenced/Maker.zip",
                        "root/history/referenced/Party.zip/version 0.zip",
                        "root/history/referenced/Maker.zip/version 0.zip")
    may_stay_out = may_lack_members
    # A line that is old or missing causes one more download.
    may_stay_old = ("root/core/catalog_hash.txt", "root/bonus/catalog_hash.txt", "root/manufacturer/catalog_hash.txt",
                    "root/update-history.json", "root/runs.json", "root/last-check.json")

    @staticmethod
    def core(version):
        """The core catalogs of the service: name -> (seed, size) of their content."""
        core = {"Doors.orvlib": (version, 30000), "T\u00fcren 2.orvlib": (version, 30000), "Same.orvlib": (1, 30000)}
        return {**core, **({"Stairs.orvlib": (1, 30000)} if version == 2 else {})}

    def content(self, folder, version):
        core = self.core(version)
        for name, (seed, size) in core.items():
            write(os.path.join(folder, "content", name), noise(10 * len(name) + seed, size))
        archive(os.path.join(folder, "content/Textures.zip"), {"a.jpg": noise(version, 5000), "b.jpg": b"same"})
        for name in ("Party", "Maker"):
            archive(os.path.join(folder, f"content/{name}.orvlibz"),
                    {f"{name}.orvlib": noise(version + 50, 40000), "pictures/one.jpg": noise(version + 60, 9000),
                     f"pictures/{version}.png": b"picture" * 100})
        index = "".join(name + "\n" for name in [*core, "Textures.zip"])
        write(os.path.join(folder, "content/Orv_Core_Content_Index.txt"), index.encode())
        os.makedirs(os.path.join(folder, "manufacturers"))
        return True

    def before(self, sandbox, service):
        return [self.arguments(sandbox, service)]

    def arguments(self, sandbox, service):
        return ["update", "--url", service["redirect"], "--product", "P", "--product-version", "1", "--no-database-check",
                "--bonus", "Party.orvlib", "--manufacturer", "Maker.orvlib"]


class UpdateFirst(Update):
    """The first update, into a root without folders."""

    name = "update-first"

    def before(self, sandbox, service):
        return []


class UpdateFar(Update):
    """The same with a far service, so that bodies are fetched ahead of their turn into files beside their targets. One
    body is written in several pieces, and one catalog is missing on the service, so its error page is fetched."""

    name = "update-far"
    far_bodies = 3

    @staticmethod
    def core(version):
        core = {**Update.core(version), "Windows.orvlib": (version, 600000)}
        return {**core, **({"Gone.orvlib": (1, 30000)} if version == 1 else {})}


class Restore(Scenario):
    """Restores a former core catalog."""

    name = "restore"
    # A line that is missing causes one more request.
    may_stay_old = ("root/core/catalog_hash.txt",)

    def fill(self, sandbox):
        versions = [noise(seed, 30000) for seed in (1, 2)]
        tags = [hashlib.sha1(content).hexdigest() for content in versions]
        write(os.path.join(sandbox, "root/core/Doors.orvlib"), versions[1])
        write(os.path.join(sandbox, "root/core/catalog_hash.txt"), f"Doors.orvlib:{tags[1]}\nSame.orvlib:1\n".encode())
        write(os.path.join(sandbox, "root/core/Same.orvlib"), b"same")
        folder = os.path.join(sandbox, "root/history/core/Doors.orvlib")
        write(os.path.join(folder, f"20260101T000000000={tags[0]}.orvlib"), versions[0])

    def arguments(self, sandbox, service):
        return ["restore", "Doors.orvlib"]


class RestorePacked(Restore):
    """Restores a former bonus catalog with the archive of referenced files that belongs to it. The catalog is held."""

    name = "restore-packed"
    may_stay_old = ("root/bonus/catalog_hash.txt",)
    # The archive is put into place before its catalog.
    removed_before_replaced = ("root/history/bonus/Garden.orvlib/version 0.zip",)

    def fill(self, sandbox):
        write(os.path.join(sandbox, "root/bonus/Garden.orvlib"), noise(2, 30000))
        write(os.path.join(sandbox, "root/bonus/catalog_hash.txt"), b"Garden.orvlib:v2\n")
        archive(os.path.join(sandbox, "root/referenced/Garden.zip"), {"oak.jpg": noise(4, 9000)})
        folder = os.path.join(sandbox, "root/history/bonus/Garden.orvlib")
        write(os.path.join(folder, "20260101T000000000=v1.orvlib"), noise(1, 30000))
        archive(os.path.join(folder, "20260101T000000000=v1.zip"), {"oak.jpg": noise(3, 9000)})

    def before(self, sandbox, service):
        return [["hold", "Garden.orvlib"]]

    def arguments(self, sandbox, service):
        return ["restore", "Garden.orvlib"]


class Hold(Scenario):
    """Holds a second catalog."""

    name = "hold"

    def fill(self, sandbox):
        for name in ("Doors", "Roofs"):
            write(os.path.join(sandbox, f"root/core/{name}.orvlib"), name.encode())

    def before(self, sandbox, service):
        return [["hold", "Roofs"]]

    def arguments(self, sandbox, service):
        return ["hold", "Doors"]


class Release(Hold):
    """Releases one of two held catalogs."""

    name = "release"

    def before(self, sandbox, service):
        return [["hold", "Roofs"], ["hold", "Doors"]]

    def arguments(self, sandbox, service):
        return ["release", "Doors"]


ALL = [UnpackBeside(), UnpackOut(), ImportOverOld(), ImportNew(), Undo(), FilterAdd(), FilterRemoveLast(), FilterMerge(),
       ManufacturerRefresh(), Update(), UpdateFirst(), UpdateFar(), Restore(), RestorePacked(),
       Hold(), Release()]

"""Reads the contents of a folder tree and checks whether a disturbed run left it sound."""
import ast
import filecmp
import hashlib
import json
import os
import re
import sqlite3
import urllib.parse
import zipfile

# The error log is written in place and reports the faults themselves. The record of former imports contains times; the
# scenarios that undo imports check it.
VOLATILE = re.compile(r"^root/user/errors\.log$|^root/former-imports(/|$)|^root/temp/partial(/|$)")
# Files with time stamps that differ in every run. The rest of their content is compared.
STAMPED = re.compile(r"^root/manufacturer-data/manufacturer_data(_temp)?\.json(\.bak)?$")
STAMP = re.compile(rb"\d{8}T\d{6}(\.\d+)?")
# Files with times in them, so their contents differ between runs. The check only requires them to be sound.
HISTORIES = ("root/update-history.json", "root/runs.json", "root/last-check.json", "root/catalog-news.json")
# The size and place of the window. They may differ between runs, but the file must be sound.
REMEMBERED = "root/browser-state.json"
# The favourites of the window are compared. Its recent items depend on the time and are not.
LISTS = "root/browser-lists.json"
# The bin of the desktop gives its files free names, and keeps a note with the time for each.
BIN = re.compile(r"^home/data/Trash/(?P<kind>files|info)/[^/]+$")
IN_BIN = "in the bin: "
UUID = re.compile(r"^[0-9a-f]{8}(-[0-9a-f]{4}){3}-[0-9a-f]{12}$")
# A disturbed run may leave such files for the next run to remove. A host never takes these names for data.
LEFTOVER = re.compile(r"^root/temp/|(^|/)\.[^/]+$")
# A former version of a catalog: the time of its replacement and its tag.
FORMER = re.compile(r"^\d{8}T\d{9}=[^/]*$")
# What a run says of a catalog that it refused while no file could be read.
STILL_LISTED = re.compile(r"the hash file still lists [^\n]*?/([^/\n]+\.orvlib)")
# Temporary files of a run.
UNFINISHED = re.compile(r"(^|/)\.[^/]+\.orv-new$")


def digest(path, relative):
    """A text that is equal for equal contents. For an archive only the members count, not their positions."""
    with open(path, "rb") as file:
        content = file.read()
    if STAMPED.match(relative):
        content = STAMP.sub(b"stamp", content)
    if relative in (*HISTORIES, REMEMBERED) and is_json(content):
        return "sound history"
    if relative == LISTS and is_json(content):
        return "favourites " + repr(sorted(map(repr, json.loads(content)["favourites"])))
    if content.startswith(b"SQLite format 3\0"):
        return database_digest(path)
    if relative.endswith("/catalog_hash.txt"):
        return "parts " + repr(content.decode(errors="replace").splitlines())
    # The bin may give an archive a name with another ending.
    if path.endswith(".zip") or (BIN.match(relative) and content.startswith(b"PK")):
        try:
            with zipfile.ZipFile(path) as archive:
                members = sorted((info.filename, info.CRC, info.file_size) for info in archive.infolist())
                return "damaged" if archive.testzip() else "parts " + repr(members)
        except (zipfile.BadZipFile, OSError, EOFError):
            pass
    return hashlib.sha1(content).hexdigest()


def database_digest(path):
    """A text that is equal for databases that hold the same; of a library that the window made, the id is random."""
    database = sqlite3.connect(f"file:{urllib.parse.quote(path)}?immutable=1", uri=True)
    try:
        if database.execute("PRAGMA integrity_check").fetchall() != [("ok",)]:
            return "damaged database"
        rows = sorted(map(repr, database.execute("SELECT name, sql FROM sqlite_master")))
        for table, in database.execute("SELECT name FROM sqlite_master WHERE type = 'table' ORDER BY name").fetchall():
            for row in database.execute(f'SELECT * FROM "{table}"'):
                rows.append(repr((table, *("id" if isinstance(each, str) and UUID.match(each) else each for each in row))))
        return "database " + hashlib.sha1("\n".join(sorted(rows)).encode()).hexdigest()
    except sqlite3.DatabaseError:
        return "damaged database"
    finally:
        database.close()


def is_json(content):
    try:
        json.loads(content)
        return True
    except ValueError:
        return False


def former_versions(top):
    """Names the files of a history independently of the clock. Maps each path to its new name, or to None if it is not
    a former version, because it equals the current file or lacks its catalog."""
    names = {}
    for folder, _, files in os.walk(os.path.join(top, "root/history")):
        place = os.path.relpath(folder, os.path.join(top, "root/history"))
        current = os.path.join(top, "root", place)
        number = 0
        for name in sorted(files):
            stem, extension = os.path.splitext(name)
            if FORMER.match(name) and f"{stem}{os.path.splitext(place)[1]}" not in files:
                names[os.path.relpath(os.path.join(folder, name), top)] = None  # its catalog is missing
            if FORMER.match(name) is None or extension != os.path.splitext(place)[1]:
                continue
            is_current = os.path.exists(current) and filecmp.cmp(current, os.path.join(folder, name), shallow=False)
            for each in (extension, ".zip"):
                path = os.path.relpath(os.path.join(folder, stem + each), top)
                names[path] = None if is_current else f"root/history/{place}/version {number}{each}"
            number += not is_current
    return names


def snapshot(top):
    """Relative path -> content of every file, link and folder."""
    found = {}
    former = former_versions(top)
    for folder, folders, files in os.walk(top):
        for name in folders + files:
            path = os.path.join(folder, name)
            relative = os.path.relpath(path, top)
            if VOLATILE.match(relative) or former.get(relative, relative) is None:
                continue
            relative = former.get(relative, relative)
            if os.path.islink(path):
                found[relative] = "link " + os.readlink(path)
            elif os.path.isdir(path) and relative.startswith("root/history"):
                continue  # exists only while it contains something
            elif os.path.isdir(path):
                found[relative] = "folder"
            elif BIN.match(relative):
                if BIN.match(relative)["kind"] == "files":
                    found[IN_BIN + digest(path, relative)] = digest(path, relative)
            else:
                found[relative] = digest(path, relative)
    if found.get(LISTS) == "favourites []":
        del found[LISTS]
    return found


def is_made_of(now, states):
    """Whether `now` consists of parts (members or lines), all of which occur in one of the states."""
    if not now or not now.startswith("parts "):
        return False
    known = [part for state in states if state and state.startswith("parts ")
             for part in ast.literal_eval(state[6:])]
    return all(part in known for part in ast.literal_eval(now[6:]))


def judge_disturbed(now, states, may_be_missing=(), may_be_parts=(), may_be_left=()):
    """Complaints about the tree right after disturbed runs: every file must be as in one of the states, and there must
    be no other files."""
    complaints = []
    known = {path for state in states for path in state}
    for path in sorted(known):
        contents = [state.get(path) for state in states]
        if now.get(path) in contents or (path not in now and (path in may_be_missing or "folder" in contents)):
            continue
        if path in may_be_parts and is_made_of(now.get(path), contents):
            continue
        complaints.append(f"{path} is {'missing' if path not in now else 'neither old nor new'}")
    for path in sorted(set(now) - known):
        if not LEFTOVER.search(path) and path not in may_be_left:
            complaints.append(f"{path} should not be there")
    return complaints


def without_unfinished(now, working_files=()):
    """Without files that whoever makes such a change next removes."""
    return {path: content for path, content in now.items()
            if not UNFINISHED.search(path) and not path.startswith("root/temp/") and path not in working_files}


def begun_of(now, files):
    """What killed runs began of these files."""
    starts = tuple(os.path.join(os.path.dirname(file), f".{os.path.basename(file)}.") for file in files)
    return tuple(path for path in now if files and path.startswith(starts) and UNFINISHED.search(path))


def judge_lost(now, old, never_lost):
    """Complaints about contents that are nowhere any more."""
    return [f"{path} is lost" for path in never_lost if old[path] not in now.values()]


def judge_ended(now):
    """Complaints about a run that ended, even with a failure: it must have removed its unfinished files."""
    return [f"{path} was not removed" for path in sorted(now) if UNFINISHED.search(path)]


def judge_done(now, new, may_differ=(), said="is done"):
    """Complaints about a run that reported success, after which everything must be new, or a failure, after which
    everything must be old."""
    return [f"{path} is not what a run that {said} leaves" for path in sorted(new)
            if now.get(path) != new[path] and path not in may_differ]


# What a run says of files beside the archive that it could not write.
LEFT_BESIDE = re.compile(r"orv-library: ([^\n]*): cannot be written and was left as it was")


def left_beside(said, sandbox):
    """The files that a run named because it left them as they were."""
    return tuple(os.path.relpath(path, sandbox) for names in LEFT_BESIDE.findall(said) for path in names.split(" and "))


def still_listed(said, finals):
    """The files of the catalogs of which a run said that their hash file still lists the version that it refused. No
    update fetches them again before that version has a successor; `verify` finds only those with a SHA-1."""
    names = STILL_LISTED.findall(said)
    return tuple(path for final in finals for path in final if any(name in path.split("/") for name in names))


def judge_recovered(now, finals, may_be_left=(), may_stay_out=(), old=None):
    """Complaints about the tree after an undisturbed run: every file must be as such runs leave it, and there must be
    no other files. A file that may stay out may also be missing, be as in the old state, or consist of known parts. Files
    may be missing from the bin, because `judge_lost` checks them."""
    old = old or {}
    complaints = []
    allowed = {path for final in finals for path in final}
    for path in sorted(allowed):
        contents = [final.get(path) for final in finals]
        stays_out = path in may_stay_out and (now.get(path) == old.get(path) or path not in now
                                              or is_made_of(now[path], contents))
        if now.get(path) not in contents and not stays_out and not path.startswith(IN_BIN):
            complaints.append(f"{path} did not recover")
    complaints += [f"{path} was left over" for path in sorted(set(now) - allowed - set(may_be_left))]
    return complaints

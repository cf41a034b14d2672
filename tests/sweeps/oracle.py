"""What a folder tree holds, and whether what a disturbed run left of it is sound."""
import ast
import hashlib
import os
import re
import zipfile

# The error log is written in place and tells of the faults themselves.
VOLATILE = re.compile(r"^root/user/errors\.log$")
# Where a disturbed run may leave files that the next one removes: never under a name that a host takes for data.
LEFTOVER = re.compile(r"^root/temp/|(^|/)\.[^/]+$")


def digest(path):
    """A text that is equal for equal contents. Of an archive it is the members that count, not their places."""
    with open(path, "rb") as file:
        content = file.read()
    if path.endswith(".zip"):
        try:
            with zipfile.ZipFile(path) as archive:
                members = sorted((info.filename, info.CRC, info.file_size) for info in archive.infolist())
                return "zip " + repr(members) + (" damaged" if archive.testzip() else "")
        except (zipfile.BadZipFile, OSError, EOFError):
            pass
    return hashlib.sha1(content).hexdigest()


def snapshot(top):
    """Relative path -> content of every file, link and empty or full folder."""
    found = {}
    for folder, folders, files in os.walk(top):
        for name in folders + files:
            path = os.path.join(folder, name)
            relative = os.path.relpath(path, top)
            if VOLATILE.match(relative):
                continue
            if os.path.islink(path):
                found[relative] = "link " + os.readlink(path)
            elif os.path.isdir(path):
                found[relative] = "folder"
            else:
                found[relative] = digest(path)
    return found


def lacks_members(now, states):
    """Whether it is an archive that holds nothing but members of the others."""
    if not now or not now.startswith("zip ") or now.endswith(" damaged"):
        return False
    known = [member for state in states if state and state.startswith("zip ")
             for member in ast.literal_eval(state[4:])]
    return all(member in known for member in ast.literal_eval(now[4:]))


def judge_disturbed(now, states, may_be_missing=(), may_lack_members=()):
    """Complaints about the tree right after disturbed runs: every file is as in one of the states, and nothing else
    is there."""
    complaints = []
    known = {path for state in states for path in state}
    for path in sorted(known):
        contents = [state.get(path) for state in states]
        if now.get(path) in contents or (path not in now and path in may_be_missing):
            continue
        if path in may_lack_members and lacks_members(now.get(path), contents):
            continue
        complaints.append(f"{path} is {'missing' if path not in now else 'neither old nor new'}")
    for path in sorted(set(now) - known):
        if not LEFTOVER.search(path):
            complaints.append(f"{path} should not be there")
    return complaints


def judge_done(now, new, may_differ=()):
    """Complaints about a run that said it was done: everything is new."""
    return [f"{path} is not what a run that is done leaves" for path in sorted(new)
            if now.get(path) != new[path] and path not in may_differ]


def judge_recovered(now, finals):
    """Complaints about the tree after an undisturbed run: it is one that such runs leave, to the last name."""
    complaints = []
    allowed = {path for final in finals for path in final}
    for path in sorted(allowed):
        if now.get(path) not in [final.get(path) for final in finals]:
            complaints.append(f"{path} did not recover")
    complaints += [f"{path} was left over" for path in sorted(set(now) - allowed)]
    return complaints

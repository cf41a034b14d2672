"""The contents that a file may have after commands of several programs, some of which were killed.

A command is a `Step` with the times of its start and its end. Of two commands that ran at the same time either may have
come first. A command that was killed or that failed may have done all of its work, a part of it, or nothing.
"""
import math


class Step:
    """One command. `version` is the version that it installs, `names` are the names that it adds, `gone` those that it
    removes."""

    def __init__(self, kind, arguments, version=None, names=(), gone=(), fault=None):
        self.kind, self.arguments, self.version = kind, arguments, version
        self.names, self.gone, self.fault = frozenset(names), frozenset(gone), fault
        self.start, self.end, self.status, self.said = math.inf, math.inf, None, ""

    def __str__(self):
        kill = f", {self.fault[1]} at {self.fault[0]}" if self.fault else ""
        return f"[{self.start:.3f} {self.end:.3f}] {self.kind} {self.version or ''}{kill}: {self.status} {self.said.strip()}"

    def is_done(self):
        return self.status == 0


def possible_versions(steps, old, has_tags=False):
    """The versions that a file may have if each of the steps replaces it. `old` is the version before all steps. The
    version of a step is possible if no successful step began after the end of that step.

    A file is not replaced while its tag matches the service. A killed step may leave its file with the tag of the version
    before: later steps that bring that earlier version then do not replace the file, but any other version does."""
    done = [step for step in steps if step.is_done()]
    last = max((step.start for step in done), default=-math.inf)
    versions = {step.version for step in steps if step.end >= last}
    if has_tags:
        versions |= {step.version for step in steps if not step.is_done()
                     and len({later.version for later in done if later.start >= step.end}) == 1}
    return versions if done else versions | {old}


def needed_names(steps):
    """The names that must exist: successful steps added them, and no step can have removed them."""
    gone = {name for step in steps for name in step.gone}
    return {name for step in steps if step.is_done() for name in step.names} - gone


def possible_names(steps):
    """The names that may exist: those of all steps except those that successful steps removed. Each name is added once."""
    gone = {name for step in steps if step.is_done() for name in step.gone}
    return {name for step in steps for name in step.names} - gone


def judge_names(what, found, steps, before=()):
    """Complaints about a set of names; `before` existed before the steps."""
    found, before = set(found), set(before)
    complaints = [f"{what} {name} is lost" for name in sorted((needed_names(steps) | before) - found)]
    extra = found - possible_names(steps) - before
    return complaints + [f"{what} {name} should not be there" for name in sorted(extra)]


def judge_version(path, found, steps, old=None, has_tags=False):
    """A complaint about the version of a file; None means a missing file."""
    possible = possible_versions(steps, old, has_tags)
    said = sorted(str(version) for version in possible)
    return [] if found in possible else [f"{path} is version {found}, not one of {', '.join(said)}"]

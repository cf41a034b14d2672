"""What a file may hold after commands of several programs, some of which were killed.

A command is a `Step` with the moments when it was started and when it had ended. Of two commands that ran at the same time
either may have come first; one that was killed or that failed has done all, a part or nothing of its work.
"""
import math


class Step:
    """One command. `version` is what it brings, `names` what it adds, `gone` what it takes away."""

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
    """The versions that a file may have which each of the steps replaces; `old` is that from before them all. One is
    possible as long as no other step that was done began after its end.

    A file with a tag is not replaced where the tag is right. That of a step which did not end may still be the one from
    before it: the file is believed to be of that version until another one comes."""
    done = [step for step in steps if step.is_done()]
    last = max((step.start for step in done), default=-math.inf)
    versions = {step.version for step in steps if step.end >= last}
    if has_tags:
        versions |= {step.version for step in steps if not step.is_done()
                     and len({later.version for later in done if later.start >= step.end}) == 1}
    return versions if done else versions | {old}


def needed_names(steps):
    """The names that must be there: added by a step that was done, and that no step can have taken away."""
    gone = {name for step in steps for name in step.gone}
    return {name for step in steps if step.is_done() for name in step.names} - gone


def possible_names(steps):
    """The names that may be there: those of all steps, but what a done step took away. A name is added once."""
    gone = {name for step in steps if step.is_done() for name in step.gone}
    return {name for step in steps for name in step.names} - gone


def judge_names(what, found, steps, before=()):
    """Complaints about a set of names, of which some were there before."""
    found, before = set(found), set(before)
    complaints = [f"{what} {name} is lost" for name in sorted((needed_names(steps) | before) - found)]
    extra = found - possible_names(steps) - before
    return complaints + [f"{what} {name} should not be there" for name in sorted(extra)]


def judge_version(path, found, steps, old=None, has_tags=False):
    """A complaint about the version of a file; None stands for a missing one."""
    possible = possible_versions(steps, old, has_tags)
    said = sorted(str(version) for version in possible)
    return [] if found in possible else [f"{path} is version {found}, not one of {', '.join(said)}"]

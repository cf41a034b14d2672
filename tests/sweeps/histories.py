#!/usr/bin/env python3
"""Two processes run scripts of commands on one root, and some of the commands are killed.

    histories.py --program ORV_LIBRARY --shim SHIM [--held N] [--histories N] [--seed S] [--seconds T] [--only HISTORY]

First come pairs of commands. The first command of a pair is held at each of N calls until the second one has ended or
waits (see held.py).

The seed determines each history: the commands of both processes, which commands are killed and at which call, and which
are delayed. How the two processes interleave depends on the machine. While they run, the script reads all files
repeatedly: each must be complete and of a version that the services have or had. After both have ended, each file must
be one that the commands can have left in some order (see history_model.py). Then one command of each kind runs alone;
after them everything must be new and sound, and no other files may be left. If the environment variable ORV_SWEEP is
"full", there are 200 histories, and the pairs are held at every call.
"""
import argparse
import hashlib
import json
import os
import random
import re
import shutil
import sys
import tempfile
import threading
import time
import zipfile

import history_model
import oracle
import scenarios
from held import Held
from history_model import Step
from sweep import CHANGING, Sweep, is_full

VERSIONS = (1, 2)  # versions that the services have during a history
LAST = 3  # and after it
IMPORTS = 6
FILTERS = "root/core/catalog_filters.json"
MAKERS = "root/manufacturer-data/manufacturer_data.json"
TEXTURES = "root/textures/Kitchen.zip"
KITCHEN = "root/user/Kitchen.orvlib"
# Each fault with the calls that it disturbs. "late" delays a call, so that the other program runs in between.
FAULTS = {"kill": CHANGING, "torn": "write", "late": "fsync,rename,link,truncate"}
# Messages of a command that is refused because another program does the same. They are not faults.
BUSY = re.compile(r"another program|is being|in use|locked", re.IGNORECASE)


class World(scenarios.Scenario):
    """A root after one update, with a library and a filter of the user."""

    name = "histories"

    def fill(self, sandbox):
        for number in range(1, IMPORTS + 1):
            scenarios.archive(os.path.join(sandbox, f"input/{number}/Kitchen.orvlibz"), self.members(number))
        scenarios.write(os.path.join(sandbox, KITCHEN), scenarios.noise(999, 90000))
        scenarios.archive(os.path.join(sandbox, TEXTURES), {"kept.txt": b"kept"})

    @staticmethod
    def members(number):
        return {**scenarios.library_members(10 * number), f"only-{number}.txt": b"only %d" % number}


class Commands:
    """Creates the steps of histories."""

    def __init__(self, services, makers):
        self.services, self.makers = services, makers
        self.added = 0

    def update(self, version):
        scenario = scenarios.Update()
        return Step("update", scenario.arguments(None, self.services[version]), version)

    def refresh(self, version):
        scenario = scenarios.ManufacturerRefresh()
        return Step("refresh", scenario.arguments(None, self.makers[version]), version)

    @staticmethod
    def importing(number):
        # The current folder is the sandbox's "work".
        return Step("import", ["import", "--no-database-check", f"../input/{number}/Kitchen.orvlibz"], number,
                    names={f"only-{number}.txt"})

    def add(self):
        self.added += 1
        name = f"Filter {self.added}"
        return Step("add", ["filters", "add", name, f"db-{self.added}", "--id", str(100 + self.added)], names={name})

    @staticmethod
    def remove(number):
        return Step("remove", ["filters", "remove", str(100 + number)], gone={f"Filter {number}"})

    def script(self, chance, length, kinds):
        """The commands of one program."""
        steps, own = [], []
        for _ in range(length):
            kind = chance.choice(kinds)
            if kind == "update":
                steps.append(self.update(chance.choice(VERSIONS)))
            elif kind == "refresh":
                steps.append(self.refresh(chance.choice(VERSIONS)))
            elif kind == "import":
                steps.append(self.importing(chance.randint(1, IMPORTS - 1)))
            elif kind == "remove" and own:
                steps.append(self.remove(own.pop(chance.randrange(len(own)))))
            elif kind == "look":
                steps.append(Step("look", chance.choice((["status"], ["list"], ["filters", "list"]))))
            else:
                steps.append(self.add())
                own.append(self.added)
            if steps[-1].kind != "look" and chance.random() < 0.35:
                steps[-1].fault = (int(2 ** chance.uniform(0, 7)), chance.choice(("kill", "kill", "torn")))
            elif chance.random() < 0.5:
                steps[-1].fault = (1, "late")
        return steps


def digest(content):
    return hashlib.sha1(content).hexdigest()


class Files:
    """Reads the files of a sandbox: the version of each, or "broken"."""

    def __init__(self, top, core, packed):
        self.top = top
        self.versions = {**core, **packed}
        self.versions[KITCHEN] = {digest(scenarios.noise(999, 90000)): 0}
        for number in range(1, IMPORTS + 1):
            self.versions[KITCHEN][digest(World.members(number)["Kitchen.orvlib"])] = number

    def content(self, path):
        try:
            with open(os.path.join(self.top, path), "rb") as file:
                return file.read()
        except FileNotFoundError:
            return None

    def version(self, path):
        content = self.content(path)
        if content is None:
            return None
        return self.versions[path].get(digest(content), "broken")

    def members(self, path):
        """Name -> content of an archive's members; empty for a missing archive."""
        if self.content(path) is None:
            return {}
        try:
            with zipfile.ZipFile(os.path.join(self.top, path)) as archive:
                names = archive.namelist()
                if len(set(names)) != len(names):
                    return {"broken": "a name twice"}
                return {name: archive.read(name) for name in names}
        except (zipfile.BadZipFile, OSError, EOFError) as error:
            return {"broken": str(error)}

    def document(self, path):
        content = self.content(path)
        try:
            return {} if content is None else json.loads(content)
        except ValueError as error:
            return {"broken": str(error)}

    def makers_version(self):
        """The version of the text and of the records, which must be the same."""
        content = self.content(MAKERS)
        if content is None:
            return None
        texts = set(re.findall(rb"Ask version (\d)", content)) | set(re.findall(rb'"Name"\s*:\s*"\S+ (\d)"', content))
        return int(next(iter(texts))) if len(texts) == 1 and "broken" not in self.document(MAKERS) else "broken"

    def look(self):
        """Complaints about files that are incomplete at this moment."""
        broken = [path for path in self.versions if self.version(path) == "broken"]
        broken += [path for path in (TEXTURES, "root/referenced/Party.zip") if "broken" in self.members(path)]
        broken += [FILTERS] if "broken" in self.document(FILTERS) else []
        broken += [MAKERS] if self.makers_version() == "broken" else []
        return [f"{path} was not whole for a moment" for path in broken]


class Histories:
    def __init__(self, program, shim, folder, seed):
        self.sweep = Sweep(program, shim, folder)
        self.seed, self.folder, self.world = seed, folder, World()
        self.counts = {"steps": 0, "killed": 0, "turned away": 0}

    def prepare(self):
        """Creates the old state: the first version of the services and one import. Starts the services."""
        update, makers = scenarios.Update(), scenarios.ManufacturerRefresh()
        services = {version: self.sweep.serve(update, version) for version in (*VERSIONS, LAST)}
        logos = {version: self.sweep.serve(makers, version) for version in (*VERSIONS, LAST)}
        self.services, self.logos = services, logos
        core, packed = {}, {}
        for version in (*VERSIONS, LAST):
            for name, (seed, size) in update.core(version).items():
                content = digest(scenarios.noise(10 * len(name) + seed, size))
                core.setdefault(f"root/core/{name}", {})[content] = version
            for path in ("root/bonus/Party.orvlib", "root/manufacturer/Maker.orvlib"):
                packed.setdefault(path, {})[digest(scenarios.noise(version + 50, 40000))] = version
        self.core, self.packed = core, packed
        self.template = os.path.join(self.folder, "template")
        self.world.prepare(self.template)
        commands = self.commands()
        for step in (commands.update(1), commands.refresh(1)):
            self.execute(step, self.template)
            if not step.is_done():
                sys.exit(f"the first {step}")
        self.needed = self.reference([])
        self.known = self.needed | self.reference([commands.update(2)])

    def commands(self):
        return Commands(self.services, self.logos)

    def reference(self, steps):
        """The paths that undisturbed commands leave."""
        sandbox = self.copy("reference")
        for step in steps + self.last_steps(self.commands()):
            self.execute(step, sandbox)
            if not step.is_done():
                sys.exit(f"alone: {step}")
        known = set(oracle.snapshot(sandbox))
        shutil.rmtree(sandbox)
        return known

    def last_steps(self, commands):
        return [commands.update(LAST), commands.refresh(LAST), commands.importing(IMPORTS), commands.add()]

    def copy(self, name):
        sandbox = os.path.join(self.folder, name)
        shutil.copytree(self.template, sandbox, symlinks=True)
        return sandbox

    def files(self, sandbox):
        return Files(sandbox, self.core, self.packed)

    def execute(self, step, sandbox):
        settings = None
        if step.fault:
            at, what = step.fault
            settings = {"ORV_FAULT_CALLS": FAULTS[what], "ORV_FAULT_AT": str(at), "ORV_FAULT_DO": what}
            settings.update({"ORV_FAULT_EVER": "1"} if what == "late" else {})
        step.start = time.monotonic()
        step.status, step.said = self.sweep.execute(step.arguments, sandbox, settings)
        step.end = time.monotonic()

    def history(self, number):
        """Runs one history. Returns its steps and complaints."""
        chance = random.Random(f"{self.seed} {number}")
        commands = self.commands()
        # Only a few kinds, so that the two programs collide.
        themes = chance.sample((["add", "add", "remove"], ["import"], ["update"], ["refresh"]), chance.randint(1, 2))
        kinds = sum(themes, []) + ["look"] * chance.randint(0, 1)
        length = chance.randint(3, 7)
        scripts = [commands.script(chance, length, kinds) for _ in range(2)]
        sandbox = self.copy(f"history{number}")
        files = self.files(sandbox)
        complaints, stop = [], threading.Event()

        # In two of three histories the programs start each command together, or one of them a moment later.
        together = threading.Barrier(2 if chance.random() < 0.67 else 1)
        delay = chance.choice((0, 0, 0.01, 0.03))

        def run(script, wait=0):
            for step in script:
                together.wait()
                time.sleep(wait)
                self.execute(step, sandbox)

        def look():
            while not stop.is_set():
                complaints.extend(files.look())
                stop.wait(0.02)

        programs = [threading.Thread(target=run, args=each) for each in ((scripts[0],), (scripts[1], delay))]
        watcher = threading.Thread(target=look)
        for thread in [*programs, watcher]:
            thread.start()
        for thread in programs:
            thread.join()
        stop.set()
        watcher.join()
        steps = sorted((step for script in scripts for step in script), key=lambda step: step.start)
        complaints = sorted(set(complaints)) + files.look() + self.judge_ends(steps) + self.judge(files, steps)
        last = self.last_steps(commands)
        for step in last:
            self.execute(step, sandbox)
        complaints += self.judge_recovered(sandbox, files, steps, last)
        shutil.rmtree(sandbox)
        if os.path.exists(sandbox + ".trace"):
            os.remove(sandbox + ".trace")
        self.count(steps)
        return steps + last, complaints

    def count(self, steps):
        self.counts["steps"] += len(steps)
        self.counts["killed"] += sum(step.status == -9 for step in steps)
        self.counts["turned away"] += sum(step.status == 1 for step in steps)

    @staticmethod
    def judge_ends(steps):
        """A command that is not killed must succeed, or report that another program is running. Removing a filter may
        fail if the filter was never added."""
        complaints = []
        for step in steps:
            killed = {-9} if step.fault and step.fault[1] in ("kill", "torn") else set()
            turned_away = step.status == 1 and step.kind in ("update", "refresh") and BUSY.search(step.said)
            nothing_there = step.status == 1 and step.kind in ("remove", "look")
            if step.status not in killed | {0} and not turned_away and not nothing_there:
                complaints.append(f"ended badly: {step}")
        return complaints

    def judge(self, files, steps, old=1):
        """Complaints about the files that both programs left."""
        of = {kind: [step for step in steps if step.kind == kind] for kind in ("update", "refresh", "import")}
        complaints = []
        for path, versions in {**self.core, **self.packed}.items():
            found = files.version(path)
            # Versions can be told apart only if each has its own content. A file with the same content in all versions
            # must exist; one that some version lacks may be missing.
            if len(versions) == len((*VERSIONS, LAST)):
                complaints += history_model.judge_version(path, found, of["update"], old, has_tags=True)
            elif found is None and path.endswith("Same.orvlib"):
                complaints.append(f"{path} is lost")
        complaints += history_model.judge_version(MAKERS, files.makers_version(), of["refresh"], old)
        complaints += history_model.judge_version(KITCHEN, files.version(KITCHEN), of["import"], 0)
        members = files.members(TEXTURES)
        own = [name for name in members if name.startswith("only-")] + (["kept.txt"] if "kept.txt" in members else [])
        complaints += history_model.judge_names("texture", own, of["import"], {"kept.txt"})
        filters = [each.get("Name", each.get("name")) for each in self.filters(files.top)]
        complaints += history_model.judge_names("filter", filters, [step for step in steps
                                                                   if step.kind in ("add", "remove")])
        return complaints

    def filters(self, sandbox):
        status, document = self.sweep.ask(sandbox, "filters", "list")
        return document.get("filters", [{"name": f"filters list ended with {status}"}])

    def judge_recovered(self, sandbox, files, steps, last):
        """Complaints about the files after one undisturbed command of each kind."""
        complaints = [f"alone: {step}" for step in last if not step.is_done()]
        complaints += [complaint + ", in the end" for complaint in self.judge(files, steps + last)]
        complaints += self.sweep.judge_health(sandbox)
        found = set(oracle.snapshot(sandbox))
        complaints += [f"{path} is missing" for path in sorted(self.needed - found) if not path.startswith("root/temp/")]
        of_imports = {f"{KITCHEN}.bak"}
        complaints += [f"{path} was left over" for path in sorted(found - self.known - of_imports)
                       if not path.startswith("root/history/")]
        complaints += [f"{path} is not finished" for path in sorted(found) if oracle.UNFINISHED.search(path)]
        return complaints


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--program", required=True, type=os.path.abspath)
    parser.add_argument("--shim", required=True, type=os.path.abspath)
    parser.add_argument("--held", type=int, default=6)
    parser.add_argument("--histories", type=int, default=8)
    parser.add_argument("--seed", default="1")
    parser.add_argument("--seconds", type=float, default=3600)
    parser.add_argument("--only", type=int, action="append", metavar="HISTORY")
    options = parser.parse_args()
    if is_full():
        options.histories, options.held = 200, 0

    end = time.monotonic() + options.seconds
    ran = failed = 0
    with tempfile.TemporaryDirectory(prefix="orv-histories-") as folder:
        histories = Histories(options.program, options.shim, os.path.realpath(folder), options.seed)
        try:
            histories.prepare()
            held = Held(histories)
            complaints = held.run(options.held) if not options.only else []
            failed += len(complaints)
            print(*complaints, f"held: {held.ran} pairs, {held.waited} of the second ones waited", sep="\n", flush=True)
            for number in options.only or range(options.histories):
                if time.monotonic() > end:
                    break
                steps, complaints = histories.history(number)
                ran += 1
                if complaints:
                    failed += 1
                    print(f"history {number} of seed {options.seed}:", *complaints, *steps, sep="\n  ", flush=True)
        finally:
            histories.sweep.stop()
    told = ", ".join(f"{count} {what}" for what, count in histories.counts.items())
    print(f"histories: {ran} of seed {options.seed}, {told}, {failed} failed")
    return 1 if failed or not ran else 0


if __name__ == "__main__":
    sys.exit(main())

#!/usr/bin/env python3
"""Runs two programs on one root at the same time and checks the files that they leave.

    pairs.py --program ORV_LIBRARY [--rounds N]    300 rounds if the environment variable ORV_SWEEP is "full"

The pairs: two updates, one of which is refused; an update and an import, also of the same name, which may exist or not;
two imports of one name, which merge or not; an import and an undo; a filter that is added while its file is merged into
another one. Neither program may lose what the other writes, and the files must be as if the programs had run one after
the other.
"""
import argparse
import os
import random
import shutil
import sys
import tempfile
import threading
import time

import oracle
import scenarios
from sweep import Sweep, is_full


class Pair:
    """Two commands. `first` and `second` return the arguments of the program; `allowed` are the pairs of exit statuses."""

    name = ""
    scenario = None
    allowed = ((0, 0),)

    def first(self, sandbox, service):
        return self.scenario.arguments(sandbox, service)

    def second(self, sandbox, service):
        raise NotImplementedError

    def judge(self, pairs, sandbox):
        """Complaints about the files that both commands left."""
        raise NotImplementedError


class TwoUpdates(Pair):
    """The second update is refused while the first runs. Both succeed if they run one after the other."""

    name = "update beside update"
    scenario = scenarios.Update()
    allowed = ((0, 0), (0, 1), (1, 0))

    def second(self, sandbox, service):
        return self.scenario.arguments(sandbox, service)

    def judge(self, pairs, sandbox):
        return oracle.judge_recovered(oracle.snapshot(sandbox), pairs.sweep.finals[self.scenario])


class UpdateAndImportScenario(scenarios.Update):
    name = "update-import"

    def fill(self, sandbox):
        scenarios.archive(os.path.join(sandbox, "input/Kitchen.orvlibz"), scenarios.library_members(1))
        scenarios.write(os.path.join(sandbox, "root/user/Kitchen.orvlib"), scenarios.noise(9, 90000))
        scenarios.archive(os.path.join(sandbox, "root/textures/Kitchen.zip"), {"kept.txt": b"kept"})

    @staticmethod
    def importing(sandbox):
        return ["import", "--no-database-check", os.path.join(sandbox, "input/Kitchen.orvlibz")]


class UpdateAndImport(Pair):
    name = "update beside import"
    scenario = UpdateAndImportScenario()

    def second(self, sandbox, service):
        return self.scenario.importing(sandbox)

    def judge(self, pairs, sandbox):
        return oracle.judge_recovered(oracle.snapshot(sandbox), pairs.one_by_one(self))


class TwoImportsScenario(scenarios.Scenario):
    """Imports two archives of one library, each with a file of its own. The library does not exist before."""

    name = "two-imports"

    def fill(self, sandbox):
        for version in (1, 2):
            members = {**scenarios.library_members(10 * version), f"only-{version}.txt": b"only"}
            scenarios.archive(self.source(sandbox, version), members)

    @staticmethod
    def source(sandbox, version):
        return os.path.join(sandbox, f"input/{version}/Kitchen.orvlibz")

    def arguments(self, sandbox, service):
        return ["import", "--no-database-check", self.source(sandbox, 1)]


class TwoImports(Pair):
    """Both are first imports of the same name. The later import merges with the files of the earlier one."""

    name = "import beside import"
    scenario = TwoImportsScenario()

    def second(self, sandbox, service):
        return ["import", "--no-database-check", self.scenario.source(sandbox, 2)]

    def judge(self, pairs, sandbox):
        found = oracle.snapshot(sandbox)
        textures = found.get("root/textures/Kitchen.zip", "")
        lost = [f"only-{version}.txt is lost" for version in (1, 2) if f"only-{version}.txt" not in textures]
        return lost + oracle.judge_recovered(found, pairs.one_by_one(self))


class MergesScenario(TwoImportsScenario):
    """The same, but a library and its textures exist, so both imports merge."""

    name = "two-merges"

    def fill(self, sandbox):
        super().fill(sandbox)
        scenarios.write(os.path.join(sandbox, "root/user/Kitchen.orvlib"), scenarios.noise(9, 90000))
        scenarios.archive(os.path.join(sandbox, "root/textures/Kitchen.zip"), {"kept.txt": b"kept"})


class TwoMerges(TwoImports):
    """Both commands merge their textures into the same archive."""

    name = "merge beside merge of one name"
    scenario = MergesScenario()

    def judge(self, pairs, sandbox):
        found = oracle.snapshot(sandbox)
        kept = "kept.txt" in found.get("root/textures/Kitchen.zip", "")
        return super().judge(pairs, sandbox) + ([] if kept else ["kept.txt is lost"])


class ImportAndUndoScenario(TwoImportsScenario):
    name = "import-undo"

    def before(self, sandbox, service):
        return [self.arguments(sandbox, service)]


class ImportAndUndo(Pair):
    """An import is undone while another import of the same name runs. The undo takes back either the
    earlier or the later import."""

    name = "import beside undo"
    scenario = ImportAndUndoScenario()

    def first(self, sandbox, service):
        return ["import", "--no-database-check", self.scenario.source(sandbox, 2)]

    def second(self, sandbox, service):
        return ["undo"]

    def judge(self, pairs, sandbox):
        return oracle.judge_recovered(oracle.snapshot(sandbox), pairs.one_by_one(self))


class SameNameScenario(scenarios.Update):
    """An update fetches a manufacturer's catalog while a library of the same name is imported."""

    name = "update-import-same"

    def fill(self, sandbox):
        members = {"Maker.orvlib": scenarios.noise(7, 40000), "pictures/mine.jpg": scenarios.noise(8, 9000)}
        scenarios.archive(os.path.join(sandbox, "input/Maker.orvlibz"), members)


class SameName(Pair):
    """The update replaces the archive of referenced files while the import merges into it. The result must contain the
    files of the update in either order."""

    name = "import beside update of one name"
    scenario = SameNameScenario()

    def second(self, sandbox, service):
        return ["import", "--no-database-check", "--proprietary", os.path.join(sandbox, "input/Maker.orvlibz")]

    def judge(self, pairs, sandbox):
        found = oracle.snapshot(sandbox)
        textures = found.get("root/referenced/Maker.zip", "")
        return [f"{name} is lost" for name in ("pictures/one.jpg", "pictures/2.png")
                if f"'{name}'" not in textures]


class FirstOfNameScenario(scenarios.UpdateFirst):
    """The same, but neither the catalog nor its archive exists before."""

    name = "first-update-import-same"
    fill = SameNameScenario.fill


class FirstOfName(SameName):
    name = "first import beside first update of one name"
    scenario = FirstOfNameScenario()


class AddAndMerge(Pair):
    """The merge changes the filters of both roots. It must not lose the filter that is added meanwhile, and the
    addition must not lose merged filters."""

    name = "filter save beside merge"
    scenario = scenarios.FilterAdd()

    def second(self, sandbox, service):
        return ["--root", os.path.join(sandbox, "other"), "filters", "merge",
                os.path.join(sandbox, "root/core/catalog_filters.json")]

    def judge(self, pairs, sandbox):
        found = {}
        for root in ("root", "other"):
            status, document = pairs.sweep.ask(sandbox, "--root", os.path.join(sandbox, root), "filters", "list")
            found[root] = sorted(each["name"] for each in document.get("filters", []))
        own = ["B\u00e4der", "Garden", "Kitchen"]
        complaints = []
        if found["root"] != sorted([*own, "Office"]):
            complaints.append(f"the root's filters are {found['root']}")
        # The merge may have read the filters before the new one was added.
        if found["other"] not in (sorted([*own, "Office"]), ["B\u00e4der", "Kitchen", "Office"]):
            complaints.append(f"the other's filters are {found['other']}")
        left = [path for path in oracle.snapshot(sandbox) if "/." in path or path.endswith(".lock")]
        return complaints + [f"{path} was left over" for path in left]


ALL = [TwoUpdates(), UpdateAndImport(), TwoImports(), TwoMerges(), ImportAndUndo(), SameName(), FirstOfName(), AddAndMerge()]


class Pairs:
    def __init__(self, program, folder):
        self.sweep = Sweep(program, "", folder)
        self.ordered = {}
        self.random = random.Random(1)

    def prepare(self, pair):
        self.sweep.prepare(pair.scenario)
        if isinstance(pair, AddAndMerge):
            template = self.sweep.templates[pair.scenario]
            self.sweep.execute(["--root", os.path.join(template, "other"), "paths", "--create"], template)
            self.sweep.execute(["--root", os.path.join(template, "other"), "filters", "add", "Office", "db-9"], template)

    def one_by_one(self, pair):
        """The files after running both commands one after the other, in either order."""
        if pair not in self.ordered:
            self.ordered[pair] = []
            for turned in (False, True):
                sandbox = self.sweep.copy(pair.scenario, f"ordered{turned}")
                for arguments in self.commands(pair, sandbox)[::-1 if turned else 1]:
                    self.sweep.execute(arguments, sandbox)
                self.ordered[pair].append(oracle.snapshot(sandbox))
                shutil.rmtree(sandbox)
        return self.ordered[pair]

    def commands(self, pair, sandbox):
        service = self.sweep.services.get(pair.scenario)
        return [pair.first(sandbox, service), pair.second(sandbox, service)]

    def round(self, pair, number):
        """Runs both commands in parallel, the second with a small delay. Returns complaints."""
        sandbox = self.sweep.copy(pair.scenario, f"round{number}")
        delay = self.random.choice((0, 0, self.random.random() * 0.05))
        outcomes = [None, None]

        def run(index, arguments):
            if index:
                time.sleep(delay)
            outcomes[index] = self.sweep.execute(arguments, sandbox)

        both = [threading.Thread(target=run, args=each) for each in enumerate(self.commands(pair, sandbox))]
        for thread in both:
            thread.start()
        for thread in both:
            thread.join()
        complaints = []
        if tuple(status for status, _ in outcomes) not in pair.allowed:
            complaints.append(f"ended with {outcomes}")
        complaints += pair.judge(self, sandbox) + self.sweep.judge_health(sandbox)
        shutil.rmtree(sandbox)
        if os.path.exists(sandbox + ".trace"):
            os.remove(sandbox + ".trace")
        return [f"{pair.name}, round {number}: {complaint}" for complaint in complaints]


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--program", required=True, type=os.path.abspath)
    parser.add_argument("--rounds", type=int, default=10)
    parser.add_argument("--pair", action="append", help="only pairs whose names hold this text")
    options = parser.parse_args()
    if is_full():
        options.rounds = 300

    chosen = [pair for pair in ALL if not options.pair or any(part in pair.name for part in options.pair)]
    complaints = []
    with tempfile.TemporaryDirectory(prefix="orv-pairs-") as folder:
        pairs = Pairs(options.program, os.path.realpath(folder))
        try:
            for pair in chosen:
                pairs.prepare(pair)
                for number in range(options.rounds):
                    found = pairs.round(pair, number)
                    for complaint in found:
                        print(complaint, flush=True)
                    complaints += found
                print(f"{pair.name}: {options.rounds} rounds", flush=True)
        finally:
            pairs.sweep.stop()
    print(f"pairs: {len(chosen) * options.rounds} rounds, {len(complaints)} complaints")
    return 1 if complaints or not chosen or options.rounds < 1 else 0


if __name__ == "__main__":
    sys.exit(main())

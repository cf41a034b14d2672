#!/usr/bin/env python3
"""The window beside another program on one root, and what both leave.

    browser_pairs.py --program ORV_LIBRARY --window DRIVER --shim SHIM [--rounds N] [--points N]

Some rounds of each pair are left to the machine; 100 where the environment variable ORV_SWEEP is "full". In the others
one of the two is stopped at a call that changes files until the other one has ended or waits for it: at so many calls of
each pair, evenly spread, or at all of them. Whatever happens, the files end as if one program had come after the other.
"""
import argparse
import concurrent.futures
import os
import shutil
import signal
import sys
import tempfile
import threading
import time

import browser_scenarios as window
import oracle
from held import has_stopped, is_waiting
from pairs import Pairs
from scenarios import Window, archive, noise
from sweep import CHANGING, DEADLOCK_SECONDS, Sweep, is_full, remove, spread


class Beside:
    """Two commands; `steps` and `others` make them of the sandbox and the web service. They may end as they do one after
    the other. Or one is turned away, as `allowed` says; the other one is then that of the scenario."""

    def __init__(self, name, scenario, steps, others, allowed=()):
        self.name, self.scenario, self.allowed = name, scenario, allowed
        self.steps, self.others = steps, others

    def first(self, sandbox, service):
        return self.steps(sandbox, service)

    def second(self, sandbox, service):
        return self.others(sandbox, service)


def source(sandbox, version):
    return os.path.join(sandbox, f"input/{version}/Mine.orvlibz")


class Kitchens(window.InWindow):
    """Two archives of one library, each with an item and a file of its own, and an older library of that name."""

    name = "kitchens"

    def fill(self, sandbox):
        super().fill(sandbox)
        for version in (1, 2):
            database = window.content_of(os.path.join(sandbox, "input"), "kitchen", [f"Table {version}"])
            archive(os.path.join(sandbox, f"input/{version}/Mine.orvlibz"),
                    {"Mine.orvlib": database, f"textures/only-{version}.jpg": noise(version, 9000)})

    def arguments(self, sandbox, service):
        return Window(["import", source(sandbox, 1)])


class NewKitchens(Kitchens):
    """The same without the older library."""

    name = "new-kitchens"

    def fill(self, sandbox):
        super().fill(sandbox)
        for path in ("user/Mine.orvlib", "user/Mine.orvlib.bak", "textures/Mine.zip"):
            os.remove(os.path.join(sandbox, "root", path))


class Filters(window.FilterSave):
    """Filters, of which one is chosen."""

    name = "filters"
    steps = ("filter-save", "Garden", "Oak")

    def before(self, sandbox, service):
        return [*super().before(sandbox, service), ["filters", "use", "0"]]


def window_import(version):
    return lambda sandbox, service: Window(["import", source(sandbox, version)])


def program_import(version):
    return lambda sandbox, service: ["import", source(sandbox, version)]


def steps(*texts):
    return lambda sandbox, service: Window(texts)


def command(*texts):
    return lambda sandbox, service: list(texts)


def refresh(sandbox, service):
    return ["manufacturers", "refresh", "--data-url", service["manufacturers"], "--logo-url", service["logos"]]


def update(sandbox, service):
    return window.UpdateInWindow.before(UPDATE, sandbox, service)[0]


UPDATE, REFRESH, FILTERS, MINE = window.UpdateInWindow(), window.Refresh(), Filters(), window.Copy()
KITCHENS, NEW_KITCHENS, SETTINGS = Kitchens(), NewKitchens(), window.Preferences()
# Each of them may be turned away while the other one runs.
BUSY = ((0, 1), (1, 0))
ALL = [
    Beside("filter save beside filters add", FILTERS, steps(*Filters.steps),
           command("filters", "add", "Office", "doors")),
    Beside("filter edit beside filters remove", FILTERS, steps("filter-rename", "Kitchen", "Cellar"),
           command("filters", "remove", "1")),
    Beside("filter removal beside filters add", FILTERS, steps("filter-remove", "Kitchen"),
           command("filters", "add", "Office", "doors")),
    Beside("import beside import of one name", KITCHENS, window_import(1), program_import(2)),
    Beside("first import beside first import of one name", NEW_KITCHENS, window_import(1), program_import(2)),
    Beside("import beside import in two windows", NEW_KITCHENS, window_import(1), window_import(2)),
    Beside("item copied beside import of its library", KITCHENS, steps("copy", "Oak door", "Mine"), program_import(2)),
    Beside("item copied beside item copied in two windows", MINE, steps("copy", "Oak door", "Mine"),
           steps("copy", "Torch", "Mine")),
    Beside("refresh beside refresh", REFRESH, steps("refresh"), refresh),
    Beside("update beside update", UPDATE, steps("update"), update, BUSY),
    Beside("preferences beside settings", SETTINGS, steps("prefer", "product", "Planner"),
           command("settings", "set", "retries", "7")),
    Beside("favourite beside favourite in two windows", MINE, steps("favourite", "Oak door"),
           steps("favourite", "Torch")),
]


class WindowPairs(Pairs):
    def __init__(self, options, folder):
        super().__init__(options.program, folder)
        self.sweep = Sweep(options.program, options.shim, folder, options.window)
        self.statuses = {}
        self.waited = 0

    def one_by_one(self, pair):
        """The states that the two leave one after the other; notes how they end."""
        if pair not in self.ordered:
            found, ends = [], set(pair.allowed)
            for turned in (False, True):
                sandbox = self.sweep.copy(pair.scenario, f"ordered{turned}")
                both = self.commands(pair, sandbox)[::-1 if turned else 1]
                statuses = [self.sweep.execute(arguments, sandbox)[0] for arguments in both]
                ends.add(tuple(statuses[::-1 if turned else 1]))
                found.append(oracle.snapshot(sandbox))
                shutil.rmtree(sandbox)
                remove(sandbox + ".trace")
            self.ordered[pair], self.statuses[pair] = found, ends
        return self.ordered[pair]

    def judge(self, pair, sandbox, outcomes, where):
        states = list(self.one_by_one(pair))
        if pair.allowed:
            states += self.sweep.finals[pair.scenario]  # one of them alone
        complaints = []
        if tuple(status for status, _ in outcomes) not in self.statuses[pair]:
            complaints.append(f"ended with {outcomes}")
        complaints += oracle.judge_recovered(oracle.snapshot(sandbox), states) + self.sweep.judge_health(sandbox)
        shutil.rmtree(sandbox)
        remove(sandbox + ".trace")
        return [f"{pair.name}, {where}: {complaint}" for complaint in complaints]

    def race(self, pair, number):
        """Both at once, one of them a little later."""
        sandbox = self.sweep.copy(pair.scenario, f"round{number}")
        delays = [0, self.random.random() * 0.2][::-1 if number % 2 else 1]
        outcomes = [None, None]

        def run(index, arguments):
            time.sleep(delays[index])
            outcomes[index] = self.sweep.execute(arguments, sandbox)

        both = [threading.Thread(target=run, args=each) for each in enumerate(self.commands(pair, sandbox))]
        for thread in both:
            thread.start()
        for thread in both:
            thread.join()
        return self.judge(pair, sandbox, outcomes, f"round {number}")

    def cells(self, pair):
        """At which calls which of the two is stopped."""
        found = []
        for index in (0, 1):
            sandbox = self.sweep.copy(pair.scenario, "count")
            log = sandbox + ".log"
            self.sweep.execute(self.commands(pair, sandbox)[index], sandbox,
                               {"ORV_FAULT_CALLS": CHANGING, "ORV_FAULT_LOG": log})
            with open(log, errors="surrogateescape") as file:
                found += [(pair, index, at) for at in range(1, len(file.read().splitlines()) + 1)]
            remove(log)
            shutil.rmtree(sandbox)
        return found

    def hold(self, pair, index, at):
        """Stops one of them at a call until the other one has ended or waits for it."""
        sandbox = self.sweep.copy(pair.scenario, f"held{index}.{at}")
        both = self.commands(pair, sandbox)
        log = sandbox + ".log"
        held = self.sweep.start(both[index], sandbox,
                                {"ORV_FAULT_CALLS": CHANGING, "ORV_FAULT_AT": str(at), "ORV_FAULT_DO": "stop"})
        stands = has_stopped(held)
        other = self.sweep.start(both[1 - index], sandbox, {"ORV_FAULT_CALLS": "flock", "ORV_FAULT_LOG": log})
        end = time.monotonic() + DEADLOCK_SECONDS
        while stands and other.poll() is None and time.monotonic() < end:
            if is_waiting(log):
                self.waited += 1
                break
            time.sleep(0.002)
        if stands:
            held.send_signal(signal.SIGCONT)
        outcomes = [self.sweep.finish(process)[:2] for process in (held, other)][::-1 if index else 1]
        remove(log)
        return self.judge(pair, sandbox, outcomes, f"{'second' if index else 'first'} held at call {at}")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    for name in ("--program", "--window", "--shim"):
        parser.add_argument(name, required=True, type=os.path.abspath)
    parser.add_argument("--rounds", type=int, default=1)
    parser.add_argument("--points", type=int, default=0)
    parser.add_argument("--pair", action="append", help="only pairs whose names hold this text")
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    options = parser.parse_args()
    if is_full():
        options.rounds, options.points = 100, 0

    chosen = [pair for pair in ALL if not options.pair or any(part in pair.name for part in options.pair)]
    complaints, done = [], 0
    with tempfile.TemporaryDirectory(prefix="orv-window-pairs-") as folder:
        pairs = WindowPairs(options, os.path.realpath(folder))
        try:
            for pair in chosen:
                if pair.scenario not in pairs.sweep.templates:
                    pairs.prepare(pair)
                pairs.one_by_one(pair)
                cells = spread(pairs.cells(pair), options.points)
                with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
                    found = [pool.submit(pairs.hold, *cell) for cell in cells]
                    found += [pool.submit(pairs.race, pair, number) for number in range(options.rounds)]
                    for future in found:
                        for complaint in future.result():
                            print(complaint, flush=True)
                            complaints.append(complaint)
                print(f"{pair.name}: held at {len(cells)} calls, {options.rounds} rounds", flush=True)
                done += len(found)
        finally:
            pairs.sweep.stop()
    print(f"window pairs: {done} runs, {pairs.waited} of them waited, {len(complaints)} complaints")
    return 1 if complaints or not done else 0


if __name__ == "__main__":
    sys.exit(main())

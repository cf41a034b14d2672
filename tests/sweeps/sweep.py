#!/usr/bin/env python3
"""Disturbs the command-line program, or the window, at every system call in turn and checks the files that it leaves.

    sweep.py kill    --program ORV_LIBRARY --shim SHIM [--points N]    killed before a call that changes files, or in
                                                                       the middle of a write
    sweep.py kills   --program ORV_LIBRARY --shim SHIM [--points N]    killed, and the run after it killed too, at
                                                                       every pair of calls
    sweep.py errors  --program ORV_LIBRARY --shim SHIM [--points N]    a call fails, once or from then on

After each disturbed run every file must be old or new. A run that was not killed must have removed its unfinished files,
and a run that reports success must have done its work. The next, undisturbed run must end as if nothing had happened and
leave no other files. After every tenth kill of the first sweep the recovery is killed too. After every tenth point the
commands that report the library's health run: they may find only catalogs with old tags, repair them, and then find
nothing. Without --points every point is swept; with it, N points, spread evenly. If the environment variable ORV_SWEEP is
"full", the option --full gives their number instead.
"""
import argparse
import concurrent.futures
import errno
import json
import os
import re
import shutil
import subprocess
import sys
import tempfile
import threading

import browser_scenarios
import oracle
import scenarios

CHANGING = "open,write,rename,unlink,mkdir,chmod,fsync,truncate,copy,link,times"
ERRORS = {
    "open": ["ENOSPC", "EACCES", "EROFS", "EMFILE", "EIO", "EINTR"],
    "openread": ["EACCES", "EMFILE", "EIO", "EINTR"],
    "read": ["EIO", "EINTR", "short"],
    "write": ["ENOSPC", "EIO", "EINTR", "short"],
    "copy": ["ENOSPC", "EIO", "EINTR"],
    "truncate": ["ENOSPC", "EIO", "EINTR"],
    "fsync": ["EIO", "ENOSPC"],
    "rename": ["EIO", "EACCES", "EROFS", "ENOSPC"],
    "link": ["EIO", "EACCES", "EROFS", "ENOSPC"],
    "unlink": ["EIO", "EACCES", "EROFS"],
    "mkdir": ["ENOSPC", "EACCES", "EROFS"],
    "chmod": ["EIO", "EPERM", "EROFS"],
    "times": ["EIO", "EPERM", "EROFS"],
    "flock": ["EIO", "ENOLCK", "EINTR"],
    "close": ["EIO", "EINTR"],
    "mmap": ["ENOMEM", "EACCES"],
    "connect": ["EACCES", "ECONNREFUSED", "EINTR"],
}
# A far service delays the receipt of every request.
LATE = {"ORV_FAULT_CALLS": "recv", "ORV_FAULT_AT": "1", "ORV_FAULT_DO": "late", "ORV_FAULT_EVER": "1"}
DEADLOCK_SECONDS = 120
# A body that is incomplete or waits for its turn.
DOWNLOAD = re.compile(r"\.downloads\.\w+/\.[^/]+\.orv-new$")
ENVIRONMENT = {**os.environ, "LC_ALL": "C.UTF-8", "TZ": "UTC", "QT_QPA_PLATFORM": "offscreen",
               "DBUS_SYSTEM_BUS_ADDRESS": "unix:path=/nonexistent"}


def remove(path):
    if os.path.exists(path):
        os.remove(path)


def most_at_once(calls):
    """The largest number of download files that existed at the same time."""
    under_way, most = set(), 0
    for kind, path in calls:
        if DOWNLOAD.search(path):
            (under_way.add if kind == "open" else under_way.discard)(path)
            most = max(most, len(under_way))
    return most


class Cell:
    """One disturbed run: the place and the kind of the disturbance."""

    def __init__(self, scenario, number, kinds, at, what, ever=False, again=0):
        self.scenario, self.number, self.kinds = scenario, number, kinds
        self.at, self.what, self.ever = at, what, ever
        self.again = again  # the call at which the recovery is killed; 0 for none

    def __str__(self):
        again = f", then at call {self.again}" if self.again else ""
        return (f"{self.scenario.name}: {self.what} at call {self.at} of {self.kinds}"
                f"{' for ever' if self.ever else ''}{again}")

    def settings(self):
        what = self.what if self.what in ("kill", "torn", "short") else str(getattr(errno, self.what))
        settings = {"ORV_FAULT_CALLS": self.kinds, "ORV_FAULT_AT": str(self.at), "ORV_FAULT_DO": what}
        return {**settings, **({"ORV_FAULT_EVER": "1"} if self.ever else {})}


def is_well(scenario, status, said):
    """Whether an undisturbed run succeeded, or found that an earlier run had finished the work."""
    return status == 0 or (status == 1 and scenario.refused_when_done and scenario.refused_when_done in said)


class Sweep:
    def __init__(self, program, shim, folder, window=None):
        self.program, self.shim, self.folder, self.window = program, shim, folder, window
        self.templates, self.old, self.finals = {}, {}, {}
        self.between = {}
        self.services, self.servers = {}, []
        self.missed = 0  # kills planned after the run's last call

    def execute(self, arguments, sandbox, settings=None):
        """Runs a command. Returns its exit status, or 'deadlock' if it did not end, and its standard error."""
        status, said, _ = self.speak(arguments, sandbox, settings)
        return status, said

    def speak(self, arguments, sandbox, settings=None):
        """Runs a command. Returns its exit status, standard error and standard output."""
        return self.finish(self.start(arguments, sandbox, settings))

    def start(self, arguments, sandbox, settings=None):
        """Starts a command. The caller finishes the process."""
        root, home = os.path.join(sandbox, "root"), os.path.join(sandbox, "home")
        environment = {**ENVIRONMENT, "ORV_LIBRARY_ROOT": root}
        command = [self.program, "--progress", "none", "--trace", sandbox + ".trace"]
        if isinstance(arguments, scenarios.Window):
            command = [self.window, root]
            environment.update(HOME=home, XDG_DATA_HOME=os.path.join(home, "data"),
                               XDG_CONFIG_HOME=os.path.join(home, "config"),
                               XDG_CACHE_HOME=os.path.join(self.folder, "cache"))
        if settings:
            environment.update(settings, LD_PRELOAD=self.shim, ORV_FAULT_ROOT=sandbox)
        return subprocess.Popen(command + list(arguments), cwd=os.path.join(sandbox, "work"), env=environment,
                                stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE)

    @staticmethod
    def finish(process):
        """Waits for a process. Returns its exit status, standard error and standard output."""
        try:
            said, told = process.communicate(timeout=DEADLOCK_SECONDS)
        except subprocess.TimeoutExpired:
            process.kill()
            process.communicate()
            return "deadlock", "", ""
        return process.returncode, told.decode(errors="replace"), said.decode(errors="replace")

    def run(self, scenario, sandbox, settings=None):
        remove(sandbox + ".trace")
        return self.execute(scenario.arguments(sandbox, self.services.get(scenario)), sandbox, settings)

    def serve(self, scenario, version):
        """Starts a web service with this version of the scenario's content. Returns its addresses, or none if the
        scenario needs no service."""
        folder = os.path.join(self.folder, f"{scenario.name}.content{version}")
        if not scenario.content(folder, version):
            return None
        late = {"LD_PRELOAD": self.shim, **LATE} if scenario.far_bodies else {}
        server = subprocess.Popen([self.program, "serve", folder], env={**ENVIRONMENT, **late}, stdout=subprocess.PIPE)
        self.servers.append(server)
        return json.loads(server.stdout.readline())

    def stop(self):
        for server in self.servers:
            server.terminate()
            server.wait()
            server.stdout.close()
        self.servers.clear()

    def prepare(self, scenario):
        """Records the initial state and the states after one, two and three undisturbed runs, and after a run that
        follows a failure which removed files."""
        template = os.path.join(self.folder, scenario.name + ".template")
        scenario.prepare(template)
        for arguments in scenario.before(template, self.serve(scenario, 1)):
            status, said = self.execute(arguments, template)
            if status != 0:
                sys.exit(f"{scenario.name}: {' '.join(arguments)} failed: {status} {said}")
        self.services[scenario] = self.serve(scenario, 2)
        scenario.ready(template, self.services[scenario])
        self.templates[scenario] = template
        self.old[scenario] = oracle.snapshot(template)
        sandbox = self.copy(scenario, "clean")
        self.finals[scenario] = [self.run_undisturbed(scenario, sandbox) for _ in range(3)]
        shutil.rmtree(sandbox)
        self.between[scenario] = self.state_between(scenario)
        self.finals[scenario] += self.between[scenario]
        if scenario.far_bodies:
            self.expect_far(scenario)
        if scenario.consumed_by_failure:
            sandbox = self.copy(scenario, "consumed")
            for path in scenario.consumed_by_failure:
                os.remove(os.path.join(sandbox, path))
            self.finals[scenario].append(self.run_undisturbed(scenario, sandbox))
            shutil.rmtree(sandbox)

    def state_between(self, scenario):
        """The states through which a run passes, once and done again, and that after an undisturbed run; none for most."""
        sandbox = self.copy(scenario, "between")
        found = []
        for arguments in scenario.between(sandbox, self.services[scenario]) * 2:
            status, said = self.execute(arguments, sandbox)
            if not is_well(scenario, status, said):
                sys.exit(f"{scenario.name}: {' '.join(arguments)} failed: {status} {said}")
            found.append(oracle.snapshot(sandbox))
        if found:
            found.append(self.run_undisturbed(scenario, sandbox))
        shutil.rmtree(sandbox)
        return found

    def run_undisturbed(self, scenario, sandbox):
        status, said = self.run(scenario, sandbox)
        if not is_well(scenario, status, said):
            sys.exit(f"{scenario.name}: the undisturbed run failed: {status} {said}")
        return oracle.snapshot(sandbox)

    def copy(self, scenario, name):
        sandbox = os.path.join(self.folder, f"{scenario.name}.{name}")
        shutil.copytree(self.templates[scenario], sandbox, symlinks=True)
        return sandbox

    def calls(self, scenario, kinds):
        """The calls of an undisturbed run in order: (kind, path)."""
        sandbox = self.copy(scenario, "count")
        log = sandbox + ".log"
        self.run(scenario, sandbox, {"ORV_FAULT_CALLS": kinds, "ORV_FAULT_LOG": log})
        shutil.rmtree(sandbox)
        if not os.path.exists(log):
            return []
        with open(log, errors="surrogateescape") as file:
            calls = [tuple(line.rstrip("\n").split(" ", 1)) for line in file]
        os.remove(log)
        return calls

    def kinds_of_calls(self, scenario, kinds):
        return [kind for kind, _ in self.calls(scenario, kinds)]

    def expect_far(self, scenario):
        """Expects that the undisturbed run fetches bodies ahead. It has three tries, because a busy machine may delay
        it."""
        found = [most_at_once(self.calls(scenario, "open,rename")) for _ in range(3)]
        print(f"{scenario.name}: up to {max(found)} downloads at once")
        if max(found) < scenario.far_bodies:
            sys.exit(f"{scenario.name}: no more than {found} downloads at once")

    def kill_cells(self, scenario):
        cells = []
        for at, kind in enumerate(self.kinds_of_calls(scenario, CHANGING), 1):
            for what in ("kill", "torn") if kind == "write" else ("kill",):
                again = 1 + at * 7 % (at + 20) if len(cells) % 10 == 9 else 0
                cells.append(Cell(scenario, len(cells), CHANGING, at, what, again=again))
        return cells

    def double_kill_cells(self, scenario):
        cells = []
        kinds = self.kinds_of_calls(scenario, CHANGING)
        for at, kind in enumerate(kinds, 1):
            for again in range(1, len(kinds) + 1):
                what = "torn" if kind == "write" and again % 2 else "kill"
                cells.append(Cell(scenario, len(cells), CHANGING, at, what, again=again))
        return cells

    def error_cells(self, scenario):
        cells = []
        made = self.kinds_of_calls(scenario, ",".join(ERRORS))
        for kind, names in ERRORS.items():
            for at in range(1, made.count(kind) + 1):
                for name in names:
                    # An interrupted call is repeated, so an interrupt at every call would never end.
                    for ever in (False,) if name == "EINTR" else (False, True):
                        cells.append(Cell(scenario, len(cells), kind, at, name, ever))
        return cells

    def judge(self, cell):
        """Runs a cell. Returns its complaints."""
        scenario = cell.scenario
        sandbox = self.copy(scenario, f"{cell.kinds[:8]}{cell.number}")
        try:
            return self.judge_in(cell, scenario, sandbox)
        finally:
            shutil.rmtree(sandbox, ignore_errors=True)
            remove(sandbox + ".trace")

    def judge_in(self, cell, scenario, sandbox):
        old, new = self.old[scenario], self.finals[scenario][0]
        status, said = self.run(scenario, sandbox, cell.settings())
        listed = oracle.still_listed(said, self.finals[scenario]) if scenario.mended_by_verify else ()
        now = oracle.snapshot(sandbox)
        is_kill = cell.what in ("kill", "torn")
        complaints = self.judge_status(status, said, is_kill)
        if is_kill and status == 0:
            self.missed += 1
        missing = scenario.removed_before_replaced + (() if is_kill else scenario.consumed_by_failure)
        parts = scenario.may_stay_old + (() if is_kill else scenario.may_lack_members)
        left = scenario.working_files + scenario.kept_copies
        complaints += oracle.judge_disturbed(now, [old, new] + self.between[scenario], missing, parts, left)
        complaints += oracle.judge_lost(now, old, scenario.never_lost)
        if scenario.has_closing and not is_kill:
            complaints += self.judge_closing(status, sandbox + ".trace")
        if not is_kill and cell.kinds != "unlink":
            complaints += oracle.judge_ended(now)
        if status == 0:
            named = oracle.left_beside(said, sandbox)
            complaints += oracle.judge_done(now, new, scenario.may_lack_members + scenario.may_stay_old + named)
        # If files cannot be removed or renamed, a failed run cannot restore the old state.
        if status == 1 and not (cell.ever and cell.kinds in ("unlink", "rename")):
            complaints += oracle.judge_done(now, {path: old.get(path) for path in scenario.all_or_nothing},
                                            said="failed")
        if cell.again:
            self.run(scenario, sandbox, Cell(scenario, 0, CHANGING, cell.again, "kill").settings())
            complaints += oracle.judge_disturbed(oracle.snapshot(sandbox), [old] + self.finals[scenario],
                                                 missing, parts, left)
        is_examined = cell.number % 10 == 5 or (scenario.mended_by_verify and cell.ever)
        if is_examined:
            complaints += self.examine(sandbox)
        status, said = self.run(scenario, sandbox)
        if not is_well(scenario, status, said):
            complaints.append(f"the run after it ended with {status}: {said.strip()}")
        now = oracle.snapshot(sandbox)
        if status == 1:  # refused, so it wrote nothing, and did not come to clear away what others began
            now = oracle.without_unfinished(now, scenario.working_files)
        if is_examined:
            complaints += self.judge_health(sandbox)
        complaints += oracle.judge_lost(now, old, scenario.never_lost)
        stays_out = () if is_kill else scenario.may_stay_out
        stays_out += scenario.may_lag + listed
        left = scenario.kept_copies + oracle.begun_of(now, scenario.seldom_written)
        complaints += oracle.judge_recovered(now, self.finals[scenario], left, stays_out,
                                             self.old[scenario])
        return complaints

    def ask(self, sandbox, *command):
        """Runs a command that prints a JSON document. Returns its exit status and the document, or an empty one if
        there is none."""
        status, said, document = self.speak([*command, "--json"], sandbox)
        try:
            return status, json.loads(document)
        except ValueError:
            return f"{status}, no document: {said}", {}

    def examine(self, sandbox):
        """Checks the reports after a disturbed run: at most catalogs with older tags count as damaged, and a repair
        removes those tags."""
        complaints = []
        status, told = self.ask(sandbox, "status")
        if status not in (0, 1) or (status == 1) != bool(told.get("warnings")):
            complaints.append(f"status ended with {status}: {told}")
        _, found = self.ask(sandbox, "verify")
        complaints += [f"{name} is damaged" for name in found.get("damaged", ["all"]) if not name.endswith(".orvlib")]
        status, repaired = self.ask(sandbox, "verify", "--repair")
        if status != 0 or sorted(repaired.get("repaired", [])) != sorted(found.get("damaged", [])):
            complaints.append(f"verify --repair ended with {status}: {repaired}, after {found}")
        return complaints + self.judge_health(sandbox)

    def judge_health(self, sandbox):
        status, found = self.ask(sandbox, "verify")
        return [f"verify ended with {status}: {found}"] if status != 0 or found.get("damaged") else []

    @staticmethod
    def judge_closing(status, trace):
        """Expects that a host object that received any call also received the end of the run, once and as the last
        call."""
        events = []
        if os.path.exists(trace):
            with open(trace) as file:
                events = [json.loads(line)["event"] for line in file]
        closing = [event for event in events if event in ("closeCatalogUpdateEvent", "onClose")]
        if (events or status == 0) and (len(closing) != 1 or events[-1] != closing[0]):
            return [f"closing calls: {closing} among {len(events)}"]
        return []

    @staticmethod
    def judge_status(status, said, is_kill):
        allowed = (0, -9) if is_kill else (0, 1)
        if status not in allowed:
            return [f"ended with {status}: {said.strip()}"]
        if status == 1 and not said.strip():
            return ["failed without a word"]
        return [f"sanitizer: {said}"] if "Sanitizer" in said else []


def is_full():
    return os.environ.get("ORV_SWEEP") == "full"


def spread(cells, points):
    """`points` of the cells, spread evenly."""
    if not points or points >= len(cells):
        return cells
    return [cells[index * len(cells) // points] for index in range(points)]


def sweep_all(sweep, options, failed):
    cells = []
    for scenario in browser_scenarios.ALL if options.window else scenarios.ALL:
        if options.scenario and scenario.name not in options.scenario:
            continue
        sweep.prepare(scenario)
        make = {"kill": sweep.kill_cells, "kills": sweep.double_kill_cells, "errors": sweep.error_cells}
        found = make[options.sweep](scenario)
        print(f"{scenario.name}: {len(found)} points", flush=True)
        cells += found
    lock = threading.Lock()

    def judge(cell):
        complaints = sweep.judge(cell)
        with lock:
            for complaint in complaints:
                print(f"{cell}: {complaint}", flush=True)
            if complaints:
                failed.append(cell)

    swept = spread(cells, options.points)
    with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
        list(pool.map(judge, swept))
    return swept, cells


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("sweep", choices=["kill", "kills", "errors"])
    parser.add_argument("--program", required=True, type=os.path.abspath)
    parser.add_argument("--shim", required=True, type=os.path.abspath)
    parser.add_argument("--window", type=os.path.abspath, help="disturb this instead; see BrowserSteps.cpp")
    parser.add_argument("--points", type=int, default=0)
    parser.add_argument("--full", type=int, default=0)
    parser.add_argument("--scenario", action="append")
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    options = parser.parse_args()
    if is_full():
        options.points = options.full

    failed = []
    with tempfile.TemporaryDirectory(prefix="orv-sweep-") as folder:
        sweep = Sweep(options.program, options.shim, os.path.realpath(folder), options.window)
        try:
            swept, cells = sweep_all(sweep, options, failed)
        finally:
            sweep.stop()
    print(f"{options.sweep}: {len(swept)} of {len(cells)} points swept, {len(failed)} failed")
    if sweep.missed > len(swept) // 20:
        print(f"{sweep.missed} runs were not killed: the calls of a run differ too much from one time to the next")
        return 1
    return 1 if failed or not swept else 0


if __name__ == "__main__":
    sys.exit(main())

"""Pairs of commands. The first is held at a call between its reading and its writing, and goes on when the second has ended
or waits for it.

Programs that lack a lock lose data at such moments. Without holding them, these moments are too rare to test.
"""
import os
import shutil
import signal
import subprocess
import time

from sweep import CHANGING, DEADLOCK_SECONDS, remove, spread

# A program that waits for a lock tries it this many times in a row.
TRIES = 3


def has_stopped(process):
    """Whether a program is stopped; False if it has ended."""
    while process.poll() is None:
        with open(f"/proc/{process.pid}/stat", encoding="latin-1") as file:
            if file.read().rpartition(")")[2].split()[0] == "T":
                return True
        time.sleep(0.002)
    return False


def is_waiting(log):
    """Whether the last calls in the log try the same lock repeatedly."""
    if not os.path.exists(log):
        return False
    with open(log, errors="surrogateescape") as file:
        last = file.read().splitlines()[-TRIES:]
    return len(last) == TRIES and len(set(last)) == 1


class Held:
    """Runs pairs of commands in the world of `Histories`."""

    def __init__(self, histories):
        self.histories, self.sweep = histories, histories.sweep
        self.ran = self.waited = 0

    # The preceding commands, the command that is held, and the other command.
    PAIRS = (lambda made: ([], made.add(), made.add()),
             lambda made: ([made.add()], made.remove(1), made.add()),
             lambda made: ([made.add()], made.add(), made.remove(1)),
             lambda made: ([], made.importing(1), made.importing(2)),
             lambda made: ([], made.refresh(2), made.refresh(1)),
             lambda made: ([], made.update(2), made.update(2)))

    def cells(self):
        """For each pair the calls at which the first command is held."""
        found = []
        for make in self.PAIRS:
            before, first, _ = make(self.histories.commands())
            sandbox = self.histories.copy("count")
            for step in before:
                self.histories.execute(step, sandbox)
            log = sandbox + ".log"
            self.sweep.execute(first.arguments, sandbox, {"ORV_FAULT_CALLS": CHANGING, "ORV_FAULT_LOG": log})
            with open(log, errors="surrogateescape") as file:
                found.append([(make, at) for at in range(1, len(file.read().splitlines()) + 1)])
            remove(log)
            self.clear(sandbox)
        return found

    def run(self, points):
        """Runs `points` points of each pair, spread evenly. Returns the complaints."""
        complaints = []
        for cells in self.cells():
            for make, at in spread(cells, points):
                complaints += self.judge(*make(self.histories.commands()), at)
        return complaints

    def judge(self, before, first, second, at):
        sandbox = self.histories.copy("held")
        files = self.histories.files(sandbox)
        for step in before:
            self.histories.execute(step, sandbox)
        looked = self.run_both(first, second, at, sandbox, files)
        steps = [*before, first, second]
        complaints = looked + self.histories.judge_ends(steps) + self.histories.judge(files, steps)
        complaints += self.sweep.judge_health(sandbox)
        self.clear(sandbox)
        self.ran += 1
        return [f"{first.kind} held at call {at}, beside {second.kind}: {complaint}" for complaint in complaints]

    def run_both(self, first, second, at, sandbox, files):
        log = sandbox + ".log"
        first.fault = (at, "stop")
        first.start = time.monotonic()
        held = self.sweep.start(first.arguments, sandbox,
                                {"ORV_FAULT_CALLS": CHANGING, "ORV_FAULT_AT": str(at), "ORV_FAULT_DO": "stop"})
        stands = has_stopped(held)
        second.start = time.monotonic()
        other = self.sweep.start(second.arguments, sandbox, {"ORV_FAULT_CALLS": "flock", "ORV_FAULT_LOG": log})
        while stands and other.poll() is None and time.monotonic() < second.start + DEADLOCK_SECONDS:
            if is_waiting(log):
                self.waited += 1
                break
            time.sleep(0.002)
        looked = files.look()
        if stands:
            held.send_signal(signal.SIGCONT)
        for step, process in ((second, other), (first, held)):
            step.status, step.said, _ = self.sweep.finish(process)
            step.end = time.monotonic()
        remove(log)
        return looked

    @staticmethod
    def clear(sandbox):
        shutil.rmtree(sandbox)
        remove(sandbox + ".trace")

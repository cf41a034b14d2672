"""The systemd units of the package are valid, run what the manual page says, and start only when the user enables them."""
import configparser
import os
import shutil
import subprocess
import sys
import tempfile
import unittest

PROGRAM, SOURCE = sys.argv[1:3]
UNITS = os.path.join(SOURCE, "packaging", "systemd")
NAMES = ("orv-library-check.service", "orv-library-check.timer")
COMMAND = "orv-library check --quiet --max-age 24h"


def parsed(name):
    parser = configparser.ConfigParser(delimiters=("=",), comment_prefixes=("#",), strict=True, interpolation=None)
    parser.optionxform = str
    with open(os.path.join(UNITS, name)) as stream:
        parser.read_file(stream)
    return parser


class Units(unittest.TestCase):
    def test_the_service_asks_quietly_and_takes_waiting_updates_for_an_answer(self):
        unit = parsed("orv-library-check.service")
        self.assertEqual(set(unit.sections()), {"Unit", "Service"})  # without [Install]: only the timer starts it
        self.assertEqual(unit["Service"]["Type"], "oneshot")
        self.assertEqual(unit["Service"]["ExecStart"], COMMAND)
        self.assertEqual(unit["Service"]["SuccessExitStatus"], "3")

    def test_the_timer_is_spread_and_makes_up_for_what_was_missed(self):
        unit = parsed("orv-library-check.timer")
        self.assertEqual(set(unit.sections()), {"Unit", "Timer", "Install"})
        self.assertEqual(unit["Timer"]["OnCalendar"], "*-*-* 00/6:00:00")
        self.assertEqual(unit["Timer"]["RandomizedDelaySec"], "6h")
        self.assertEqual(unit["Timer"]["Persistent"], "true")
        self.assertEqual(unit["Install"]["WantedBy"], "timers.target")

    def test_the_program_takes_the_command_of_the_service(self):
        with tempfile.TemporaryDirectory() as root:
            arguments = COMMAND.split()[1:]
            result = subprocess.run([PROGRAM, "--root", root, *arguments, "--url", "http://127.0.0.1:9/"], text=True,
                                    capture_output=True, timeout=60)
            self.assertEqual(result.returncode, 1, result.stderr)
            self.assertEqual(result.stdout, "")
            self.assertEqual(result.stderr.count("\n"), 1, result.stderr)

    @unittest.skipUnless(shutil.which("systemd-analyze"), "systemd is not here; the tests above read the files themselves")
    def test_systemd_takes_them(self):
        with tempfile.TemporaryDirectory() as folder:
            for name in NAMES:
                with open(os.path.join(UNITS, name)) as stream:
                    text = stream.read().replace("ExecStart=orv-library", "ExecStart=" + PROGRAM)
                with open(os.path.join(folder, name), "w") as stream:
                    stream.write(text)
            result = subprocess.run(["systemd-analyze", "--user", "--man=no", "verify",
                                     *(os.path.join(folder, name) for name in NAMES)], text=True, capture_output=True,
                                    timeout=60, env=dict(os.environ, XDG_RUNTIME_DIR=folder, HOME=folder))
            self.assertEqual((result.returncode, result.stderr), (0, ""))
            calendar = parsed("orv-library-check.timer")["Timer"]["OnCalendar"]
            subprocess.run(["systemd-analyze", "calendar", calendar], check=True, capture_output=True, timeout=60)


if __name__ == "__main__":
    del sys.argv[1:3]
    unittest.main(verbosity=1)

"""The manual pages and the shell completion name exactly the commands and options that the program has."""
import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

PROGRAM, SOURCE = sys.argv[1:3]  # and the build tree
MAN = os.path.join(SOURCE, "docs", "man")


def output(*command):
    return subprocess.run(command, text=True, check=True, stdout=subprocess.PIPE, timeout=30).stdout


def options_of(text):
    return set(re.findall(r"(?<![\w-])--[a-z][a-z-]*", text))


def command_names():
    section = re.split(r"^\s*(?:Commands|Subcommands):?\s*$", output(PROGRAM, "--help"), flags=re.M | re.I)[1]
    return re.findall(r"^\s{2}([a-z]+)\s", section, re.M)


def actions(command):
    text = output(PROGRAM, command, "--help")
    return re.findall(r"^\s{2}([a-z-]+)\s", text.split("ommands:")[-1], re.M) if "ommands:" in text else []


def helps(command):
    """The help texts of the command and of each of its actions."""
    return [output(PROGRAM, command, "--help")] + [output(PROGRAM, command, action, "--help")
                                                   for action in actions(command)]


def command_options(command):
    """The options of the command and of its actions, without the global ones."""
    return set().union(*map(options_of, helps(command))) - options_of(output(PROGRAM, "--help"))


def arguments(command):
    """Names of the positional arguments, in capitals."""
    sections = [text.split("\nArguments:\n")[1].split("\n\n")[0] for text in helps(command) if "\nArguments:\n" in text]
    return set(re.findall(r"^\s{2}([A-Z][A-Z|a-z-]*)", "\n".join(sections), re.M))


def page(command):
    name = f"orv-library-{command}.1.scd" if command else "orv-library.1.scd"
    with open(os.path.join(MAN, name)) as stream:
        return stream.read()


def completions(*words):
    script = os.path.join(SOURCE, "packaging", "completion", "orv-library.bash")
    quoted = " ".join(f"'{word}'" for word in words)
    return output("bash", "-c", f"source '{script}'; COMP_WORDS=({quoted}); COMP_CWORD={len(words) - 1}; "
                                "_orv_library; printf '%s\\n' \"${COMPREPLY[@]}\"").splitlines()


class Manual(unittest.TestCase):
    def test_every_command_has_a_page_and_every_page_a_command(self):
        pages = {name[len("orv-library-"):-len(".1.scd")] for name in os.listdir(MAN)
                 if name.startswith("orv-library-")}
        self.assertGreater(len(pages), 10)
        self.assertEqual(pages, set(command_names()))

    def test_pages_name_the_options_that_there_are(self):
        for command in command_names():
            # Options after "systemctl" are not options of this program.
            own = re.sub(r"\bsystemctl\b[^\n*]*", "", page(command))
            self.assertEqual(options_of(own), command_options(command), command)
        self.assertEqual(options_of(page(None)), options_of(output(PROGRAM, "--help")))

    def test_pages_name_the_arguments_and_actions_that_there_are(self):
        found = 0
        for command in command_names():
            synopsis = page(command).split("# SYNOPSIS")[1].split("# DESCRIPTION")[0]
            for argument in arguments(command):
                for name in argument.split("|"):
                    self.assertIn(name, synopsis, command)
                    found += 1
            for action in actions(command):
                self.assertIn(f"*{action}*", synopsis, command)
                self.assertRegex(page(command), rf"(?m)^(\*[^\n]*)?\*{action}\*", command)
        self.assertGreater(found, 10)

    def test_the_first_page_names_every_command(self):
        commands = page(None).split("# COMMANDS")[1].split("# EXIT STATUS")[0]
        self.assertEqual(set(re.findall(r"\*([a-z]+)\*(?=[,\n])", commands)), set(command_names()))
        self.assertEqual(set(re.findall(r"\*orv-library-([a-z]+)\*\(1\)", commands)), set(command_names()))

    def test_commands_that_documents_name_are_there(self):
        listed = subprocess.run(["git", "-C", SOURCE, "ls-files", "-co", "--exclude-standard", "*.md", "*.scd"], text=True,
                                check=True, stdout=subprocess.PIPE).stdout.split()
        found = 0
        for name in listed:
            with open(os.path.join(SOURCE, name)) as stream:
                text = stream.read()
            for line in re.findall(r"`orv-library ([a-z][^`]*)`", text):
                words = line.split()
                self.assertIn(words[0], command_names(), f"{name}: {line}")
                if actions(words[0]) and len(words) > 1:
                    self.assertIn(words[1], actions(words[0]), f"{name}: {line}")
                self.assertLessEqual(options_of(line), command_options(words[0]) | options_of(output(PROGRAM, "--help")),
                                     f"{name}: {line}")
                found += 1
        self.assertGreater(found, 10)

    def test_pages_are_well_formed(self):
        self.assertTrue(shutil.which("scdoc"), "scdoc is missing")
        for name in os.listdir(MAN):
            with open(os.path.join(MAN, name)) as stream:
                subprocess.run(["scdoc"], stdin=stream, stdout=subprocess.DEVNULL, check=True)

    def test_completion_offers_the_commands(self):
        self.assertEqual(set(completions("orv-library", "")), set(command_names()))

    def test_completion_offers_the_options_of_each_command(self):
        common = options_of(output(PROGRAM, "--help"))
        self.assertEqual(set(completions("orv-library", "--")), common)
        for command in command_names():
            self.assertEqual(set(completions("orv-library", command, "--")), command_options(command) | common, command)

    def test_completion_offers_the_actions_of_each_command(self):
        for command in command_names():
            if actions(command):
                self.assertEqual(set(completions("orv-library", command, "")), set(actions(command)), command)


class Values(unittest.TestCase):
    """Completion offers the names in the library: catalogs, versions, filters, makers, runs."""

    def setUp(self):
        self.work = tempfile.mkdtemp(prefix="orv-completion-")
        self.addCleanup(shutil.rmtree, self.work)
        self.root = os.path.join(self.work, "my root")
        for name in ("core/Doors.orvlib", "core/Türen und Fenster.orvlib", "bonus/Sauna.orvlib",
                     "history/core/Doors.orvlib/20261121T211635000=v17%3Agreen.orvlib",
                     "history/core/Doors.orvlib/20261014T070002000=3f2a0c5b.orvlib"):
            self.write(name, name * 100)
        self.write("manufacturer-data/manufacturer_data.json", '{"Manufacturer": {"Id": 17, "Name": "Möbelwerk"}}')
        self.write("runs.json", '{"runs": [{"number": 1, "outcome": "current"}, {"number": 2, "outcome": "updated"}]}')
        for name in ("Kitchen", "My Bath"):
            output(PROGRAM, "--root", self.root, "filters", "add", name, "d")

    def write(self, name, text):
        path = os.path.join(self.root, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "w") as stream:
            stream.write(text)

    def offered(self, *words):
        return sorted(completions(PROGRAM, "--root", self.root, *words))

    def test_catalogs(self):
        for command in ("info", "history", "restore", "hold"):
            self.assertEqual(self.offered(command, ""), ["Doors.orvlib", "Sauna.orvlib", "Türen und Fenster.orvlib"])
        self.assertEqual(self.offered("--json", "info", "Tür"), ["Türen und Fenster.orvlib"])
        self.assertEqual(self.offered("info", r"Türen\ u"), ["Türen und Fenster.orvlib"])

    def test_held_catalogs(self):
        self.assertEqual(self.offered("release", ""), [""])
        output(PROGRAM, "--root", self.root, "hold", "Sauna")
        self.assertEqual(self.offered("release", ""), ["Sauna.orvlib"])

    def test_versions(self):
        self.assertEqual(self.offered("restore", "Doors", ""), ["3f2a0c5b", "v17:green"])
        self.assertEqual(self.offered("restore", "Doors.orvlib", "3"), ["3f2a0c5b"])

    def test_filters(self):
        self.assertEqual(self.offered("filters", "use", ""), ["Kitchen", "My Bath", "none"])
        self.assertEqual(self.offered("filters", "remove", ""), ["0", "1"])

    def test_records(self):
        self.assertEqual(self.offered("manufacturers", "show", ""), ["17"])
        self.assertIn("10003", self.offered("styles", "show", ""))
        self.assertEqual(self.offered("runs", "show", ""), ["1", "2"])
        self.assertEqual(self.offered("news", "--since", ""), ["1", "2"])

    def test_nothing_where_there_is_no_library(self):
        self.root = os.path.join(self.work, "none")
        self.assertEqual(self.offered("info", ""), [""])
        self.assertFalse(os.path.exists(self.root))


if __name__ == "__main__":
    del sys.argv[1:4]
    unittest.main(verbosity=1)

"""The manual pages and the shell completion name the commands and options that the program has, and no others."""
import os
import re
import shutil
import subprocess
import sys
import unittest

PROGRAM, SOURCE = sys.argv[1:3]
MAN = os.path.join(SOURCE, "docs", "man")


def output(*command):
    return subprocess.run(command, text=True, check=True, stdout=subprocess.PIPE, timeout=30).stdout


def options_of(text):
    return set(re.findall(r"(?<![\w-])--[a-z][a-z-]*", text))


def command_names():
    section = re.split(r"^\s*(?:Commands|Subcommands):?\s*$", output(PROGRAM, "--help"), flags=re.M | re.I)[1]
    return re.findall(r"^\s{2}([a-z]+)\s", section, re.M)


def command_options(command):
    """Options of the command and of its actions, without the global ones."""
    texts = [output(PROGRAM, command, "--help")]
    for action in re.findall(r"^\s{2}([a-z-]+)\s", texts[0].split("ommands:")[-1], re.M) if "ommands:" in texts[0] else []:
        texts.append(output(PROGRAM, command, action, "--help"))
    return set().union(*map(options_of, texts)) - options_of(output(PROGRAM, "--help"))


def completions(*words):
    script = os.path.join(SOURCE, "packaging", "completion", "orv-library.bash")
    quoted = " ".join(f"'{word}'" for word in words)
    return output("bash", "-c", f"source '{script}'; COMP_WORDS=({quoted}); COMP_CWORD={len(words) - 1}; "
                                "_orv_library; printf '%s\\n' \"${COMPREPLY[@]}\"").split()


class Manual(unittest.TestCase):
    def test_every_command_has_a_page_and_every_page_a_command(self):
        pages = {name[len("orv-library-"):-len(".1.scd")] for name in os.listdir(MAN)
                 if name.startswith("orv-library-")}
        self.assertGreater(len(pages), 10)
        self.assertEqual(pages, set(command_names()))

    def test_pages_name_the_options_that_there_are(self):
        for command in command_names():
            with open(os.path.join(MAN, f"orv-library-{command}.1.scd")) as stream:
                self.assertEqual(options_of(stream.read()), command_options(command), command)

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


if __name__ == "__main__":
    del sys.argv[1:3]
    unittest.main(verbosity=1)

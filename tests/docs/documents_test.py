"""Links in the documents lead somewhere, their code is part of a file that is built, their commands run."""
import os
import re
import subprocess
import sys
import tempfile
import unittest

PROGRAM, SOURCE = sys.argv[1:3]
CODE_FOLDERS = {"cpp": ["examples", "apps", "OrvLibrary"], "cmake": ["tests/packaging/consumer"]}


def documents():
    listed = subprocess.run(["git", "-C", SOURCE, "ls-files", "-co", "--exclude-standard", "*.md"], text=True,
                            check=True, stdout=subprocess.PIPE).stdout.split("\n")
    return [name for name in listed if name]


def read(name):
    with open(os.path.join(SOURCE, name)) as stream:
        return stream.read()


def blocks(language):
    for name in documents():
        for block in re.findall(rf"^```{language}\n(.*?)^```", read(name), re.M | re.S):
            yield name, block


def sources(language):
    for folder in CODE_FOLDERS[language]:
        for path, _, names in os.walk(os.path.join(SOURCE, folder)):
            for name in names:
                if name.endswith((".cpp", ".h", "CMakeLists.txt")):
                    yield read(os.path.join(path, name))


class Documents(unittest.TestCase):
    def test_links_lead_to_files(self):
        for name in documents():
            for target in re.findall(r"\]\(([^)#\s]+)[^)]*\)", read(name)):
                if not re.match(r"[a-z]+:", target):
                    path = os.path.normpath(os.path.join(SOURCE, os.path.dirname(name), target))
                    self.assertTrue(os.path.exists(path), f"{name}: {target}")

    def test_code_is_part_of_what_is_built(self):
        for language in CODE_FOLDERS:
            texts = list(sources(language))
            for name, block in blocks(language):
                for part in re.split(r"\n{2,}", block.strip("\n")):
                    self.assertTrue(any(part in text for text in texts), f"{name}:\n{part}")

    def test_commands_run(self):
        with tempfile.TemporaryDirectory() as work:
            environment = dict(os.environ, ORV_LIBRARY_ROOT=os.path.join(work, "root"),
                               PATH=os.path.dirname(PROGRAM) + os.pathsep + os.environ["PATH"])
            subprocess.run([PROGRAM, "sample", os.path.join(work, "CONTENT")], check=True, capture_output=True)
            for name, block in blocks("sh"):
                if block.startswith(("script/", "git clone", "cmake", "cpack")):
                    continue  # run by the build itself
                result = subprocess.run(["bash", "-euc", block], cwd=work, env=environment, text=True, timeout=120,
                                        stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
                self.assertEqual(result.returncode, 0, f"{name}:\n{block}\n{result.stdout}")

    def test_scripts_that_documents_name_are_there(self):
        for name in documents():
            for script in re.findall(r"^(script/[\w-]+)", read(name), re.M):
                self.assertTrue(os.access(os.path.join(SOURCE, script), os.X_OK), f"{name}: {script}")


if __name__ == "__main__":
    del sys.argv[1:3]
    unittest.main(verbosity=1)

"""Checks that every document can be reached and that its links have targets. Also checks the code blocks: C++
and CMake are part of what is built, commands run as a reader would run them, and the programs read and write the
example files."""
import fnmatch
import glob
import json
import os
import re
import shutil
import signal
import sqlite3
import subprocess
import sys
import tempfile
import unittest

from docs_support import Page, free_port, read

PROGRAM, SOURCE, BUILD = sys.argv[1:4]
CODE = {"cpp": (["examples", "apps", "OrvLibrary"], (".cpp", ".h")), "cmake": (["examples"], ("CMakeLists.txt",))}
# Commands that build everything or measure for a long time. .ci/run runs them with its own options.
RUN_BY_CI = re.compile(r"(script/(demo|test)|cmake (--build )?--preset \w+|bench/[\w-]+ build/release)")
# These commands change the tree that they run in. The test only checks that the target exists.
RENEWS = re.compile(r"cmake --build build/dev --target (\w+)$")


def documents():
    listed = subprocess.run(["git", "-C", SOURCE, "ls-files", "-co", "--exclude-standard", "*.md"], text=True,
                            check=True, stdout=subprocess.PIPE).stdout.split("\n")
    return [Page(SOURCE, name) for name in listed if name]


class Documents(unittest.TestCase):
    def test_links_lead_to_files(self):
        for page in documents():
            for target in page.links():
                self.assertTrue(os.path.exists(os.path.join(SOURCE, target)), f"{page.name}: {target}")

    def test_every_page_can_be_reached_from_the_index(self):
        pages = {page.name: page for page in documents()}
        # The main page of the API pages and the sources of the manual are not documents for readers.
        wanted = {name for name in pages if name.startswith("docs/") and not name.startswith("docs/api/")}
        linked = {target for target in pages["docs/README.md"].links()}
        self.assertEqual(wanted - linked, {"docs/README.md"})
        for name in ("docs/README.md", "CONTRIBUTING.md", "CHANGELOG.md"):
            self.assertIn(name, pages["README.md"].links())

    def test_no_code_hides_from_the_tests(self):
        for page in documents():
            self.assertEqual(page.indented_code(), [], page.name)
            for language, block in page.blocks():
                self.assertIn(language, {*CODE, "sh", "json", "sql", "text"}, f"{page.name}:\n{block}")

    def test_code_is_part_of_what_is_built(self):
        for language, (folders, endings) in CODE.items():
            texts = [read(os.path.join(path, name)) for folder in folders
                     for path, _, names in os.walk(os.path.join(SOURCE, folder)) for name in names
                     if name.endswith(endings)]
            for page in documents():
                for block in page.blocks(language):
                    for part in re.split(r"\n{2,}", block.strip("\n")):
                        self.assertTrue(any(part in text for text in texts), f"{page.name}:\n{part}")

    def test_scripts_that_documents_name_are_there(self):
        for page in documents():
            for script in re.findall(r"(?:^|[`(])((?:script|bench|\.ci)/[\w-]+)(?![\w./-])", page.text, re.M):
                path = os.path.join(SOURCE, script)
                self.assertTrue(os.access(path, os.X_OK) or os.path.isdir(path), f"{page.name}: {script}")


class Commands(unittest.TestCase):
    """Runs the sh blocks of a page one after the other in one folder, which looks like a clone that was
    built."""

    def setUp(self):
        self.work = tempfile.mkdtemp(prefix="orv-docs-")
        os.chmod(self.work, 0o755)  # nginx's workers may be another user
        self.addCleanup(shutil.rmtree, self.work, ignore_errors=True)
        for name in ("docs", "examples", "script", "bench"):
            os.symlink(os.path.join(SOURCE, name), os.path.join(self.work, name))
        os.mkdir(os.path.join(self.work, "build"))
        for preset in ("package", "release", "dev"):
            os.symlink(BUILD, os.path.join(self.work, "build", preset))
        self.servers = []
        self.ports = {"8480": str(free_port())}
        self.environment = dict(
            os.environ, HOME=self.work, QT_QPA_PLATFORM="offscreen", DBUS_SYSTEM_BUS_ADDRESS="unix:path=/nonexistent",
            PATH=os.pathsep.join([os.path.dirname(PROGRAM), os.environ["PATH"], "/usr/sbin"]))
        subprocess.run([PROGRAM, "sample", os.path.join(self.work, "CONTENT")], check=True, capture_output=True)

    def tearDown(self):
        for server in self.servers:
            server.send_signal(signal.SIGINT)
            server.wait(20)
            server.stdout.close()

    def serve(self, line):
        """Starts a command that runs until Control-C. Returns after it has printed its address."""
        server = subprocess.Popen(["bash", "-c", "exec " + line], cwd=self.work, env=self.environment, text=True,
                                  stdout=subprocess.PIPE)
        self.servers.append(server)
        self.assertIn("redirect", json.loads(server.stdout.readline()))

    def run_block(self, page, block):
        for documented, free in self.ports.items():
            block = block.replace(documented, free)
        lines = block.strip("\n").split("\n")
        for line in filter(RENEWS.match, lines):
            target = RENEWS.match(line)[1]
            self.assertIn(f"{target}: ", subprocess.run(["ninja", "-C", BUILD, "-t", "targets", "all"], text=True,
                                                        check=True, capture_output=True).stdout)
        here = [line for line in lines if not RUN_BY_CI.match(line) and not RENEWS.match(line)]
        if not here:
            return
        last = here.pop() if re.search(r"orv-library\"? serve ", here[-1]) else None
        # Variables that one block exports stay set for the next block.
        kept = os.path.join(self.work, "environment")
        text = f"[ ! -e '{kept}' ] || . '{kept}'\n" + "\n".join(here) + f"\nexport -p >'{kept}'\n"
        result = subprocess.run(["bash", "-euc", text], cwd=self.work, env=self.environment, text=True, timeout=300,
                                stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        self.assertEqual(result.returncode, 0, f"{page.name}:\n{block}\n{result.stdout}")
        self.output += result.stdout
        if last:
            self.serve(last)

    def run_page(self, name):
        page = Page(SOURCE, name)
        self.output = ""
        for block in page.blocks("sh"):
            self.run_block(page, block)
        return self.output

    def test_integrating(self):
        output = self.run_page("docs/integrating.md")
        self.assertIn("\nupdated, 15 new\ncurrent, 0 new\n", output)
        self.assertIn("Türen und Fenster.orvlib", output)

    def test_service(self):
        self.assertIn('ETag: "', self.run_page("docs/service/README.md"))

    def test_other_pages(self):
        for page in documents():
            if page.name not in ("docs/integrating.md", "docs/service/README.md"):
                self.run_page(page.name)

    @staticmethod
    def demo():
        """The commands that .ci/run covers by running the demo."""
        return read(os.path.join(SOURCE, "script", "demo"))

    def test_what_is_left_to_ci_is_run_there(self):
        ci = read(os.path.join(SOURCE, ".ci", "run"))
        for page in documents():
            for block in page.blocks("sh"):
                for line in block.strip("\n").split("\n"):
                    command = RUN_BY_CI.match(line)
                    if command:
                        # .ci/run measures in the build folder of the packages, which has the options of the release
                        # preset.
                        there = command[0].replace("release", "package")
                        self.assertRegex(ci + self.demo(), rf"(?m)^{re.escape(there)}\b", f"{page.name}: {line}")


class Tour(unittest.TestCase):
    """script/tour passes with the program, and fails at the first step with an unexpected result."""

    def take(self, folder):
        work = tempfile.mkdtemp(prefix="orv-tour-")
        self.addCleanup(shutil.rmtree, work)
        path = os.pathsep.join([folder, os.environ["PATH"]])
        return subprocess.run([os.path.join(SOURCE, "script", "tour"), os.path.join(work, "tour")], text=True, timeout=120,
                              capture_output=True, env=dict(os.environ, PATH=path))

    def test_all_steps(self):
        result = self.take(os.path.dirname(PROGRAM))
        self.assertEqual(result.returncode, 0, result.stdout + result.stderr)
        lines = result.stdout.splitlines()
        self.assertEqual(len(lines), 16)
        self.assertEqual(lines[-1], "15 steps, all as expected")

    def test_ends_at_the_first_step_that_is_not_as_expected(self):
        folder = tempfile.mkdtemp(prefix="orv-tour-")
        self.addCleanup(shutil.rmtree, folder)
        forgetful = os.path.join(folder, "orv-library")
        with open(forgetful, "w") as script:
            script.write(f'#!/bin/sh\ncase " $* " in *" hold "*) echo "{{\\"held\\":[]}}"; exit;; esac\nexec "{PROGRAM}" "$@"\n')
        os.chmod(forgetful, 0o755)
        result = self.take(folder)
        self.assertEqual(result.returncode, 1, result.stdout + result.stderr)
        lines = result.stdout.splitlines()
        self.assertEqual(len(lines), 9)
        self.assertRegex(lines[-1], r"^ 9  hold: NOT AS EXPECTED: .*Doors\.orvlib")


class Formats(unittest.TestCase):
    """The examples on the pages of the file formats are what the programs read and write."""

    def setUp(self):
        self.work = tempfile.mkdtemp(prefix="orv-docs-")
        self.addCleanup(shutil.rmtree, self.work)
        self.root = os.path.join(self.work, "root")

    def examples(self, name, language="text"):
        return Page(SOURCE, f"docs/formats/{name}.md").blocks(language)

    def write(self, name, text):
        path = os.path.join(self.work, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "w") as stream:
            stream.write(text)

    def program(self, *arguments, status=0):
        result = subprocess.run([PROGRAM, "--json", "--progress", "none", "--root", self.root, *arguments], text=True,
                                timeout=60, capture_output=True)
        self.assertEqual(result.returncode, status, result.stdout + result.stderr)
        return json.loads(result.stdout)

    def update_against(self, content, *options):
        server = subprocess.Popen([PROGRAM, "serve", content], text=True, stdout=subprocess.PIPE)
        try:
            redirect = json.loads(server.stdout.readline())["redirect"]
            result = subprocess.run([PROGRAM, "--json", "--progress", "none", "--root", self.root, "update", "--url",
                                     redirect, "--product", "P", "--product-version", "1", "--no-database-check", *options],
                                    text=True, timeout=60, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
            return json.loads(result.stdout)
        finally:
            server.send_signal(signal.SIGTERM)
            server.wait(20)
            server.stdout.close()

    def test_pages_with_examples(self):
        found = {name for path in glob.glob(os.path.join(SOURCE, "docs", "formats", "*.md"))
                 for name in [os.path.basename(path)[:-3]]
                 if any(kind != "sh" for kind, _ in Page(SOURCE, f"docs/formats/{name}.md").blocks())}
        by_their_rooms = {"catalog_filters", "manufacturer_data"}
        self.assertEqual(found - by_their_rooms, {
            "browser-lists", "browser-settings", "browser-state", "catalog-database", "catalog-news", "catalog-pins",
            "catalog_hash", "content-index", "errors-log", "former-imports", "history", "last-check", "preferences",
            "runs", "service-maps", "settings", "update-history"})

    def test_every_file_has_a_page(self):
        """The index names every file that the programs leave in a root and in a service."""
        content = os.path.join(self.work, "content")
        subprocess.run([PROGRAM, "sample", content], check=True, capture_output=True)
        self.program("publish", content, os.path.join(self.work, "service"))
        self.update_against(content)
        self.program("filters", "add", "Kitchen", "a")
        self.program("import", os.path.join(content, "content", "Garden Party.orvlibz"))
        self.program("log", "show")
        self.update_against(self.work)  # leaves an error log, because there is nothing to fetch
        index = read(os.path.join(SOURCE, "docs", "README.md"))
        patterns = re.findall(r"`([*\w.-]+\.\w+)`", index)
        found = set()
        for top in ("root", "service/catalog.d"):
            for folder, folders, names in os.walk(os.path.join(self.work, top)):
                folders[:] = [name for name in folders if name != "temp"]
                for name in names:
                    found.add(name)
                    self.assertTrue(any(fnmatch.fnmatch(name, pattern) for pattern in patterns), (folder, name))
        self.assertLessEqual({"errors.log", "catalog_filters.json", "catalog_hash.txt", "names.map",
                              "update-history.json"}, found)

    def test_preferences(self):
        [text] = self.examples("preferences", "json")
        self.write("root/preferences.json", text)
        content = os.path.join(self.work, "content")
        subprocess.run([PROGRAM, "sample", content], check=True, capture_output=True)
        self.assertEqual(self.update_against(content)["updatedCatalogs"], [])  # 273: without the core
        self.assertGreater(len(self.update_against(content, "--core-only")["updatedCatalogs"]), 10)
        self.assertEqual(read(os.path.join(self.root, "preferences.json")), text)

    def test_update_history(self):
        [text] = self.examples("update-history", "json")
        self.write("root/update-history.json", text)
        document = self.program("status", status=1)
        self.assertEqual(document["lastAttempt"], "2026-11-21T08:04:16Z")
        self.assertEqual(document["lastGoodCheck"], "2026-11-20T17:30:00Z")
        self.assertEqual([warning["catalog"] for warning in document["warnings"]], [None, "Doors.orvlib"])
        content = os.path.join(self.work, "content")
        subprocess.run([PROGRAM, "sample", content], check=True, capture_output=True)
        self.update_against(content)
        with open(os.path.join(self.root, "update-history.json")) as stream:
            written = json.load(stream)
        described = json.loads(text)
        # The two members that report a failure are missing after a successful update.
        self.assertEqual(set(written) | {"error"}, set(described))
        self.assertEqual(set(written["answers"]["Doors.orvlib"]) | {"reason"},
                         set(described["answers"]["Doors.orvlib"]))

    def test_former_imports(self):
        [text] = self.examples("former-imports", "json")
        content = os.path.join(self.work, "content")
        subprocess.run([PROGRAM, "sample", content], check=True, capture_output=True)
        self.program("import", os.path.join(content, "content", "Garden Party.orvlibz"))
        folder = os.path.join(self.root, "former-imports")
        with open(os.path.join(folder, "imports.json")) as stream:
            [written] = json.load(stream)["imports"]
        [described] = json.loads(text)["imports"]
        self.assertEqual(set(written), set(described))
        self.assertEqual([set(file) for file in written["files"]], [set(file) for file in described["files"]])
        self.assertEqual(written["name"], "Garden%20Party")
        # The program reads the example unchanged: files that no longer exist can be undone.
        self.write("root/former-imports/imports.json", text)
        self.assertTrue(self.program("undo")["library"].endswith("/user/Küche.orvlib"))

    def test_catalog_news(self):
        [text] = self.examples("catalog-news", "json")
        self.write("root/catalog-news.json", text)
        self.assertEqual(self.program("news")["catalogs"], [
            {"name": "Türen.orvlib", "added": [{"id": 7, "name": "Ash"}], "changed": [], "gone": [{"id": 3, "name": "Oak"}]}])
        content = os.path.join(self.work, "content")
        subprocess.run([PROGRAM, "sample", content], check=True, capture_output=True)
        self.update_against(content)
        with open(os.path.join(self.root, "catalog-news.json")) as stream:
            former, written = json.load(stream)["runs"]
        [described] = json.loads(text)["runs"]
        self.assertEqual(former, described)
        self.assertEqual(set(written), set(described))
        self.assertEqual(set(written["catalogs"][0]), set(described["catalogs"][0]))

    def test_catalog_pins(self):
        [text] = self.examples("catalog-pins", "json")
        self.write("root/catalog-pins.json", text)
        self.write("root/core/Doors.orvlib", "d" * 2000)
        self.assertEqual(self.program("hold", "Doors.orvlib")["held"], ["Doors.orvlib", "Türen.orvlib"])
        with open(os.path.join(self.root, "catalog-pins.json")) as stream:
            written = json.load(stream)
        described = json.loads(text)
        self.assertIn(described["held"][0], written["held"])
        self.assertEqual(written["restored"], described["restored"])

    def test_history(self):
        [text] = self.examples("history")
        for line in text.strip("\n").split("\n"):
            self.write("root/" + line, line)
        self.write("root/core/Doors.orvlib", "d" * 2000)
        versions = self.program("history", "Doors.orvlib")["versions"]
        self.assertEqual([(each["version"], each["replaced"]) for each in versions],
                         [("3f2a0c5be1d27f70b3d2a1d5a7c1b9e04c6f8d21", "2026-11-21T21:16:35Z"),
                          ("v17:green", "2026-10-14T07:00:02Z")])
        self.write("content/content/Doors.orvlib", "e" * 2000)
        self.write("content/content/Orv_Core_Content_Index.txt", "Doors.orvlib\n")
        os.mkdir(os.path.join(self.work, "content", "manufacturers"))
        self.update_against(os.path.join(self.work, "content"))
        written = sorted(os.listdir(os.path.join(self.root, "history", "core", "Doors.orvlib")))
        self.assertEqual(len(written), 3)
        self.assertRegex(written[-1], r"^\d{8}T\d{9}=\.orvlib$")

    def test_runs(self):
        [text] = self.examples("runs", "json")
        self.write("root/runs.json", text)
        [run] = json.loads(text)["runs"]
        self.assertEqual(self.program("runs", "show", "1"), run)
        del run["catalogs"]
        self.assertEqual(self.program("runs"), {"runs": [run]})

    def test_last_check(self):
        [text] = self.examples("last-check", "json")
        self.write("root/last-check.json", text)
        document = self.program("check", "--max-age", "1000000", status=3)
        self.assertEqual(document, {**json.loads(text)["document"], "asked": False})

    def test_settings(self):
        [text] = self.examples("settings", "json")
        self.write("root/settings.json", text)
        document = self.program("settings")
        self.assertEqual(document["settings"], json.loads(text))
        self.assertEqual(set(document["settings"]), set(document["defaults"]))
        self.program("settings", "set", "retries", "3")
        self.assertEqual(read(os.path.join(self.root, "settings.json")), text)

    def test_browser_lists_and_state(self):
        for page, source in [("browser-lists", "models/ListFile.cpp"), ("browser-state", "WindowState.cpp")]:
            [text] = self.examples(page, "json")
            written = read(os.path.join(SOURCE, "apps", "orv-browser", source))
            for member in json.loads(text):
                self.assertIn(f'document["{member}"]', written)
                self.assertIn(f'{{"{member}",', written)

    def test_browser_settings(self):
        [text] = self.examples("browser-settings", "json")
        source = read(os.path.join(SOURCE, "apps", "orv-browser", "BrowserSettings.cpp"))
        self.assertEqual(set(json.loads(text)), set(re.findall(r'document\["(\w+)"\]', source)))

    def test_service_maps(self):
        [text] = self.examples("service-maps")
        for name in ("Doors.orvlib", 'Türen "alt".orvlib', "default"):
            self.write("content/content/" + name, name * 200)
        self.program("publish", os.path.join(self.work, "content"), os.path.join(self.work, "service"))
        form = re.sub("[0-9a-f]{40}", "[0-9a-f]{40}", re.sub(r'[\\"]', r"\\\g<0>", text).replace(".orvlib", r"\.orvlib"))
        self.assertRegex(read(os.path.join(self.work, "service", "catalog.d", "names.map")), rf"\A{form}\Z")

    def test_errors_log(self):
        [text] = self.examples("errors-log")
        self.write("root/user/errors.log", text)
        self.assertEqual(self.program("log", "show")["entries"], [{
            "time": "2026-11-21T03:35:12Z", "thread": "0x7f3a5c7fe6c0",
            "message": "Failed To Download File:  /home/ann/.local/share/orv-library/core/Doors.orvlib   Reason:  HTTP 503"}])

    def test_content_index_and_request(self):
        request, index = self.examples("content-index")
        self.write("content/content/Orv_Core_Content_Index.txt", index)
        for name in index.strip("\n").split("\n"):
            self.write("content/content/" + name, "x" * 2000)
        os.mkdir(os.path.join(self.work, "content", "manufacturers"))
        document = self.update_against(os.path.join(self.work, "content"))
        self.assertEqual(document["outcome"], "updated")
        self.assertEqual(len(document["updatedCatalogs"]), 3)
        for name in ("core/Bath_Fixtures.orvlib", "core/Türen und Tore.orvlib", "referenced/Core_Textures.zip"):
            self.assertTrue(os.path.exists(os.path.join(self.root, name)), name)
        template = read(os.path.join(SOURCE, "OrvLibrary", "catalog", "CatalogSources_p.cpp"))
        for part in re.findall(r"&\w+=", request):
            self.assertIn(part, template)

    def test_catalog_hash(self):
        [text] = self.examples("catalog_hash")
        self.write("root/core/catalog_hash.txt", text)
        self.write("root/core/Bath_Fixtures.orvlib", "x" * 2000)
        self.write("root/referenced/Tex.zip", "x" * 2000)
        # Neither file has the hash in the example.
        self.assertEqual(len(self.program("verify", status=1)["damaged"]), 2)
        # Writes the file again in the same form, with the tags of the service.
        for name in ("Bath_Fixtures.orvlib", "Tex.zip"):
            self.write("content/content/" + name, "y" * 2000)
        self.write("content/content/Orv_Core_Content_Index.txt", "Bath_Fixtures.orvlib\nTex.zip\n")
        os.mkdir(os.path.join(self.work, "content", "manufacturers"))
        self.update_against(os.path.join(self.work, "content"))
        form = re.sub(r"[0-9a-f]{40}", "[0-9a-f]{40}", text)
        self.assertRegex(read(os.path.join(self.root, "core", "catalog_hash.txt")), rf"\A{form}\Z")

    def test_catalog_database(self):
        [block] = self.examples("catalog-database", "sql")
        subprocess.run([PROGRAM, "sample", os.path.join(self.work, "content")], check=True, capture_output=True)
        written = sqlite3.connect(os.path.join(self.work, "content", "content", "Doors.orvlib"))
        described = sqlite3.connect(":memory:")
        described.executescript(block)
        self.assertEqual(self.columns(written), self.columns(described))
        written.close()
        described.close()

    @staticmethod
    def columns(database):
        tables = [row[0] for row in database.execute("SELECT name FROM sqlite_master WHERE type = 'table' ORDER BY name")
                  if not row[0].startswith("sqlite_")]
        return {table: [row[1:3] for row in database.execute(f"PRAGMA table_info({table})")] for table in tables}


if __name__ == "__main__":
    del sys.argv[1:4]
    unittest.main(verbosity=1)

#!/usr/bin/env python3
"""Gives the programs hostile names: in a content index, a hash file, as logos, as members of archives and as filters.

    hostile.py --program ORV_LIBRARY

The web service serves a file for every name. Nothing outside the root may change, every written file must be in the
folder for its kind, and no program may crash. By default all names are given at once; if the environment variable
ORV_SWEEP is "full", each name is also given alone.
"""
import argparse
import http.server
import json
import os
import re
import shutil
import subprocess
import sys
import tempfile
import threading
import urllib.parse
import zipfile

import oracle
import scenarios
from sweep import is_full

CLIMB = "../" * 12
RESULT = re.compile(r"/sandbox/(input|work)/Kitchen\.(orvlib|zip)$")


def names(outside):
    """The hostile names without extensions. `outside` is a folder that must stay unchanged."""
    return [
        "../escape", "../../escape", CLIMB + outside.lstrip("/") + "/escape", outside + "/escape",
        "..\\escape", "..\\..\\escape", "C:\\escape", "C:/escape", "C:escape", "\\\\host\\share\\escape",
        "//host/share/escape", "file://" + outside + "/escape", "http://127.0.0.1:1/escape", ".", "..", "/", "\\",
        "", " ", "...", "a/../../escape", "a/../../../escape", "./escape", "a//escape", "deep/escape",
        "%2e%2e%2fescape", "..%2fescape", "%00", "%", "\udcc0\udcae\udcc0\udcae/escape", "\udcff\udcfe", "a\0escape",
        "tab\tbell\x07", "cr\rescape", "\x1b[31mescape", "\u202eescape", "e\u0301scape", "\U0001f3e0",
        "CON", "name.", "-rf", "--help", "~", "~/escape", "$HOME", "`escape`", "$(escape)", "a&library=b", "a?b", "a#b",
        "a\"b", "*", "catalog_hash", "../core/catalog_filters", "x" * 255, "x" * 300, "x" * 5000, "y/" * 3000 + "escape",
    ]


def in_bytes(name):
    return name.encode("utf-8", "surrogateescape")


class LyingService(http.server.ThreadingHTTPServer):
    """Serves every file that is requested."""

    daemon_threads = True

    def __init__(self):
        super().__init__(("127.0.0.1", 0), Handler)
        self.pages = {}
        self.asked = 0
        threading.Thread(target=self.serve_forever, daemon=True).start()

    def handle_error(self, request, client_address):
        pass  # the client has read enough and closes the connection

    def url(self, path):
        return f"http://127.0.0.1:{self.server_address[1]}{path}"


class Handler(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"

    def log_message(self, *arguments):
        pass

    def do_HEAD(self):
        self.answer(False)

    def do_GET(self):
        self.answer(True)

    def answer(self, has_body):
        self.server.asked += 1
        if self.path == "/redirect":
            self.send_response(302)
            self.send_header("Location", "/content?")
            self.send_header("Content-Length", "0")
            self.end_headers()
            return
        body = self.body()
        self.send_response(200)
        self.send_header("ETag", '"tag"')
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        if has_body:
            self.wfile.write(body)

    def body(self):
        if self.path.startswith("/makers"):
            return self.server.pages["makers"]
        found = re.search(r"library=(.*?)&product=", self.path)
        name = urllib.parse.unquote(found.group(1)) if found else ""
        return self.server.pages["index"] if name.endswith("_Core_Content_Index.txt") else b"hostile" * 400


class Hostile:
    def __init__(self, program, folder):
        self.program, self.folder = program, folder
        self.service = LyingService()
        # Deep enough for all "../" names to end inside the folder.
        self.sandbox = os.path.join(folder, "deep/" * 9 + "sandbox")
        self.outside = os.path.join(folder, "outside")
        self.complaints = []

    def prepare(self):
        shutil.rmtree(os.path.join(self.folder, "deep"), ignore_errors=True)
        shutil.rmtree(self.outside, ignore_errors=True)
        os.makedirs(self.outside)
        for name in ("root", "input", "work"):
            os.makedirs(os.path.join(self.sandbox, name))
        scenarios.write(os.path.join(self.sandbox, "sentinel/file"), b"sentinel")
        for folder in (self.outside, self.sandbox, os.path.join(self.sandbox, "root/user")):
            scenarios.write(os.path.join(folder, "escape.orvlib"), b"sentinel")
            scenarios.write(os.path.join(folder, "escape.png"), b"sentinel")

    def run(self, *arguments):
        """Runs the program. Complains about a crash and about any change outside the root. Returns the exit status."""
        before = self.around()
        environment = {**os.environ, "LC_ALL": "C.UTF-8", "QT_QPA_PLATFORM": "offscreen", "HOME": self.outside,
                       "ORV_LIBRARY_ROOT": os.path.join(self.sandbox, "root")}
        done = subprocess.run([self.program, "--progress", "none", *arguments], env=environment, timeout=120,
                              cwd=os.path.join(self.sandbox, "work"), stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        said = done.stderr.decode(errors="replace")
        if done.returncode not in (0, 1, 2) or "Sanitizer" in said:
            self.complain(f"{arguments[:2]} ended with {done.returncode}: {said}")
        after = self.around()
        for path in sorted(set(before.items()) ^ set(after.items())):
            self.complain(f"{arguments[:2]} changed {path[0]}")
        return done.returncode

    def around(self):
        """All files except those in the root and the results of unpacking."""
        root = os.path.relpath(os.path.join(self.sandbox, "root"), self.folder)
        return {path: content for path, content in oracle.snapshot(self.folder).items()
                if not path.startswith(root + "/") and not RESULT.search(path)}

    def complain(self, text):
        self.complaints.append(text)
        print(text[:600], flush=True)

    def expect_flat(self, *folders):
        """Complains about files that are not directly in one of these folders of the root."""
        for path, content in oracle.snapshot(os.path.join(self.sandbox, "root")).items():
            folder = os.path.dirname(path)
            if content != "folder" and folder not in ("", "user", *folders) and not path.startswith("temp/"):
                self.complain(f"{path} should not be there")

    def expect_sentinels(self):
        for name in ("escape.orvlib", "escape.png"):
            with open(os.path.join(self.sandbox, "root/user", name), "rb") as file:
                if file.read() != b"sentinel":
                    self.complain(f"user/{name} was written over")

    def update(self):
        return ["update", "--url", self.service.url("/redirect"), "--product", "P", "--product-version", "1",
                "--no-database-check"]

    def index(self, hostile):
        self.prepare()
        lines = [in_bytes(name + extension) for name in hostile for extension in (".orvlib", ".zip")]
        self.service.pages["index"] = b"\n".join(lines + [b"Good.orvlib", b""])
        for _ in range(2):
            self.run(*self.update())
            self.expect_flat("core", "bonus", "manufacturer", "referenced", "history/core/Good.orvlib")
            self.expect_sentinels()
        if not os.path.exists(os.path.join(self.sandbox, "root/core/Good.orvlib")):
            self.complain("the good catalog did not come")

    def hash_file(self, hostile):
        self.prepare()
        lines = [in_bytes(name + extension) + b":tag" for name in hostile for extension in (".orvlib", ".zip")
                 if "\n" not in name]
        scenarios.write(os.path.join(self.sandbox, "root/core/catalog_hash.txt"), b"\n".join(lines + [b""]))
        self.service.pages["index"] = b"Good.orvlib\n"
        scenarios.write(os.path.join(self.sandbox, "root/core/Good.orvlib"), b"good")
        for command in (["status"], ["verify"], ["verify", "--repair"],
                        self.update()):
            self.run(*command)
            self.expect_flat("core", "bonus", "manufacturer", "referenced", "history/core/Good.orvlib")
            self.expect_sentinels()

    def logos(self, hostile):
        self.prepare()
        for date in (1, 2):
            records = [self.record(number, name, date) for number, name in enumerate(hostile, 1)]
            # JSON escapes cannot express names that are not valid Unicode, so the bytes are written unchanged.
            text = ('{"Last_Modified": "2030010%dT000000", "Default_Text": ""%s}'
                    % (date, "".join(', "Manufacturer": ' + record for record in records)))
            self.service.pages["makers"] = in_bytes(text)
            self.run("manufacturers", "refresh", "--data-url", self.service.url("/makers?"), "--logo-url",
                     self.service.url("/logos?"))
            self.expect_sentinels()
            for path in oracle.snapshot(os.path.join(self.sandbox, "root")):
                if "escape" in path and not path.startswith(("manufacturer-data/", "user/")):
                    self.complain(f"{path} should not be there")
            self.run("manufacturers", "list", "--json")

    @staticmethod
    def record(number, name, date):
        return json.dumps({"Id": number, "Last_Modified": f"2030010{date}T000000", "Name": name,
                           "Logo": name + ".png"}, ensure_ascii=False)

    def members(self, hostile):
        self.prepare()
        path = os.path.join(self.sandbox, "input/Kitchen.orvlibz")
        with zipfile.ZipFile(path, "w") as file:
            for name in [*hostile, "good"]:
                for extension in (".orvlib", ".png"):
                    info = zipfile.ZipInfo("placeholder")
                    info.filename = (name + extension).encode("utf-8", "replace").decode()[:60000]
                    file.writestr(info, b"hostile")
        for command in (["unpack", "--beside", path], ["unpack", path], ["import", "--no-database-check", path],
                        ["import", "--no-database-check", "--proprietary", path], ["import", "--no-database-check", path]):
            self.run(*command)
            self.expect_flat("manufacturer", "textures", "referenced", "former-imports")
            self.expect_sentinels()

    def filters(self, hostile):
        self.prepare()
        for name in hostile:
            if "\0" in name:
                continue
            self.run("filters", "add", "--", os.fsencode(name), os.fsencode(name))
        self.run("filters", "list")
        self.run("filters", "merge", os.path.join(self.sandbox, "root/core/catalog_filters.json"))
        self.expect_flat("core")
        self.expect_sentinels()


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--program", required=True, type=os.path.abspath)
    options = parser.parse_args()

    with tempfile.TemporaryDirectory(prefix="orv-hostile-") as folder:
        hostile = Hostile(options.program, os.path.realpath(folder))
        all_names = names(hostile.outside)
        rounds = [all_names] + ([[name] for name in all_names] if is_full() else [])
        for place in (hostile.index, hostile.hash_file, hostile.logos, hostile.members, hostile.filters):
            for chosen in rounds:
                place(chosen)
            print(f"{place.__name__}: {len(all_names)} names, {len(rounds)} rounds", flush=True)
        asked = hostile.service.asked
        hostile.service.shutdown()
    print(f"hostile: {len(all_names)} names, {asked} requests, {len(hostile.complaints)} complaints")
    return 1 if hostile.complaints or asked < len(all_names) else 0


if __name__ == "__main__":
    sys.exit(main())

"""Publishes a folder, serves it with the real nginx, updates, publishes again, updates, and rolls back."""
import hashlib
import os
import shutil
import sys
import unittest
import urllib.error
import urllib.parse
import urllib.request

from service_support import Nginx, ServiceCase

NGINX = CONFIG = None


class NginxService(ServiceCase):
    def update(self):
        return self.run_program("--root", self.path("root"), "update", "--url",
                                f"http://127.0.0.1:{self.server.port}/redirect", "--product", "Test",
                                "--product-version", "1", "--core-only")

    def content(self, folder, name):
        with open(os.path.join(folder, name), "rb") as stream:
            return stream.read()

    def test_clients_follow_publication_and_roll_back(self):
        self.run_program("sample", self.source)
        self.publish()
        core, published = self.path("root", "core"), os.path.join(self.source, "content")
        with Nginx(NGINX, CONFIG, self.service) as self.server:
            first = self.update()
            self.assertEqual(first["outcome"], "updated")
            catalogs = [name for name in os.listdir(core) if name.endswith(".orvlib")]
            self.assertGreaterEqual(len(catalogs), 12)
            for name in catalogs:
                self.assertEqual(self.content(core, name), self.content(published, name), name)
            self.assertEqual(self.update()["outcome"], "current")

            changed = sorted(catalogs)[0]
            former = self.content(published, changed)
            shutil.copytree(self.source, self.path("former"))
            self.write("content/" + changed, former + b"\0" * 4096)
            self.publish()
            self.server.reload()
            second = self.update()
            self.assertEqual(len(second["updatedCatalogs"]), 1)
            self.assertEqual(self.content(core, changed), former + b"\0" * 4096)

            self.source = self.path("former")
            self.publish()
            self.server.reload()
            self.assertEqual(len(self.update()["updatedCatalogs"]), 1)
            self.assertEqual(self.content(core, changed), former)

    def test_manufacturer_data_and_logos_are_served(self):
        self.run_program("sample", self.source)
        self.publish()
        with Nginx(NGINX, CONFIG, self.service) as self.server:
            base = f"http://127.0.0.1:{self.server.port}"
            root = self.path("root")
            self.run_program("--root", root, "paths", "--create")
            self.run_program("--root", root, "manufacturers", "refresh", "--data-url",
                             base + "/content?&library=manufacturer_data.json", "--logo-url", base + "/logo?")
            records = self.run_program("--root", root, "manufacturers", "list")["manufacturers"]
            logos = [record["logo"] for record in records if record["logo"]]
            self.assertTrue(logos)
            for logo in logos:
                self.assertEqual(self.content(os.path.join(root, "manufacturer-data"), logo),
                                 self.content(os.path.join(self.source, "manufacturers"), logo))

    def test_odd_names_are_served(self):
        names = ["Türen und Fenster.orvlib", 'a"b\\c.orvlib', "~tilde.orvlib", "default", "hostnames", "a$b.orvlib",
                 "a;b{c}.orvlib", "it's?.orvlib", "[x] (y)=z,!*@.orvlib", "\u65e5\u672c.orvlib", "n" * 240 + ".orvlib"]
        for index, name in enumerate(names):
            self.write("content/" + name, b"%4d" % index * 500)
        self.publish()
        with Nginx(NGINX, CONFIG, self.service) as self.server:
            for index, name in enumerate(names):
                answer = urllib.request.urlopen(f"http://127.0.0.1:{self.server.port}/content?&library=" +
                                                urllib.parse.quote(name) + "&product=P&version=1")
                self.assertEqual(answer.read(), b"%4d" % index * 500, name)

    def test_tags_are_hashes_and_answer_conditional_requests(self):
        self.write("content/Doors.orvlib", b"doors" * 1000)
        self.publish()
        tag = '"' + hashlib.sha1(b"doors" * 1000).hexdigest() + '"'
        with Nginx(NGINX, CONFIG, self.service) as self.server:
            address = f"http://127.0.0.1:{self.server.port}/content?&library=Doors.orvlib"
            with urllib.request.urlopen(urllib.request.Request(address, method="HEAD")) as answer:
                self.assertEqual((answer.headers["ETag"], answer.headers["Content-Length"]), (tag, "5000"))
            for sent in (tag, "W/" + tag, '"other", ' + tag, "*"):
                with self.assertRaises(urllib.error.HTTPError) as raised:
                    urllib.request.urlopen(urllib.request.Request(address, headers={"If-None-Match": sent}))
                self.assertEqual((raised.exception.code, raised.exception.headers["ETag"]), (304, tag), sent)
            with urllib.request.urlopen(urllib.request.Request(address, headers={"If-None-Match": '""'})) as answer:
                self.assertEqual(answer.read(), b"doors" * 1000)

    def test_unpublished_names_answer_404_and_nothing_outside_is_served(self):
        self.run_program("sample", self.source)
        self.publish()
        with Nginx(NGINX, CONFIG, self.service) as self.server:
            for name in ("Nothing.orvlib", "../catalog.d/names.map", "..%2f..%2fetc%2fpasswd", "%00"):
                with self.assertRaises(urllib.error.HTTPError) as raised:
                    urllib.request.urlopen(f"http://127.0.0.1:{self.server.port}/content?&library={name}")
                self.assertEqual(raised.exception.code, 404)


if __name__ == "__main__":
    ServiceCase.program, NGINX, CONFIG = sys.argv[1:4]
    del sys.argv[1:4]
    unittest.main(verbosity=1)

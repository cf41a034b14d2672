"""The files that `orv-library publish` writes, and the folders that it refuses."""
import hashlib
import os
import re
import shutil
import subprocess
import sys
import unittest

from service_support import ServiceCase

CATALOG = b"catalog " * 500


class Publish(ServiceCase):
    def setUp(self):
        super().setUp()
        os.makedirs(os.path.join(self.source, "manufacturers"))
        self.write("content/Doors.orvlib", CATALOG)

    def refusal(self, name):
        document = self.publish(status=1)
        reasons = {entry["name"]: entry["why"] for entry in document["refused"]}
        self.assertEqual(list(reasons), [name] if isinstance(name, str) else list(name))
        return list(reasons.values())[0]

    def test_blobs_are_named_by_their_content_and_maps_point_to_them(self):
        self.write("content/Türen und Fenster.txt", b"text")
        self.write("manufacturers/Löwe.png", b"picture")
        self.write("manufacturers/manufacturer_data.json", b'{"Manufacturer":{"Id":2147483647}}')
        self.assertEqual(self.publish(), {"published": 4, "refused": []})
        names, logos = self.map_of("names.map"), self.map_of("logos.map")
        self.assertEqual(set(names), {b"Doors.orvlib", "Türen und Fenster.txt".encode(), b"manufacturer_data.json"})
        self.assertEqual(set(logos), {"Löwe.png".encode(), "Löwe.png".encode("cp1252")})
        for digest in {*names.values(), *logos.values()}:
            with open(self.path("service", "blobs", digest.decode()), "rb") as stream:
                self.assertEqual(hashlib.sha1(stream.read()).hexdigest(), digest.decode())

    def test_blobs_are_written_first_and_maps_last(self):
        self.write("content/Windows.orvlib", CATALOG * 2)
        self.write("manufacturers/logo.png", b"picture")
        trace = self.path("trace")
        subprocess.run(["strace", "-f", "-e", "trace=rename,renameat,renameat2,link,linkat", "-o", trace, self.program,
                        "publish", self.source, self.service], check=True, capture_output=True, timeout=60)
        with open(trace) as stream:
            targets = [re.findall(r'"([^"]*)"', line)[-1] for line in stream if "= 0" in line and '"' in line]
        kinds = [os.path.basename(os.path.dirname(target)) for target in targets]
        self.assertEqual(kinds, ["blobs"] * 3 + ["catalog.d"] * 2)
        # The records refer to the logos, so their map is written last.
        self.assertEqual([os.path.basename(target) for target in targets[-2:]], ["logos.map", "names.map"])

    def test_a_blob_that_cannot_be_written_leaves_the_maps_as_they_were(self):
        self.publish()
        former = self.map_of("names.map")
        self.write("content/Windows.orvlib", CATALOG * 2)
        blobs = self.path("service", "blobs")
        shutil.rmtree(blobs)
        os.symlink("/proc/self", blobs)  # nobody can create a file there
        result = subprocess.run([self.program, "publish", self.source, self.service], text=True, capture_output=True,
                                timeout=60)
        self.assertEqual(result.returncode, 1)
        self.assertRegex(result.stderr, r"^orv-library: .*/blobs/[0-9a-f]{40}: cannot be written\n$")
        self.assertEqual(self.map_of("names.map"), former)

    def test_a_damaged_blob_is_written_anew(self):
        self.publish()
        blob = self.path("service", "blobs", hashlib.sha1(CATALOG).hexdigest())
        with open(blob, "wb") as stream:
            stream.write(CATALOG[:100])
        self.publish()
        with open(blob, "rb") as stream:
            self.assertEqual(stream.read(), CATALOG)

    def test_a_source_may_lack_manufacturers_but_no_content(self):
        os.rmdir(os.path.join(self.source, "manufacturers"))
        self.assertEqual(self.publish(), {"published": 1, "refused": []})
        self.assertEqual(self.map_of("logos.map"), {})
        shutil.rmtree(os.path.join(self.source, "content"))
        former = self.map_of("names.map")
        self.run_program("publish", self.source, self.service, status=1)
        self.assertEqual(self.map_of("names.map"), former)

    def test_quotes_and_words_of_the_map_language_are_escaped(self):
        self.write('content/a"b\\c.txt', b"1")
        self.write("content/~x.txt", b"2")
        self.write("content/default", b"3")
        self.publish()
        self.assertEqual(set(self.map_of("names.map")),
                         {b"Doors.orvlib", rb'a\"b\\c.txt', rb"\~x.txt", rb"\default"})
        self.assertEqual(self.publish()["published"], 4)

    def test_empty_file_is_refused_and_the_rest_is_published(self):
        self.write("content/Empty.orvlib", b"")
        self.assertIn("empty", self.refusal("Empty.orvlib"))
        self.assertEqual(set(self.map_of("names.map")), {b"Doors.orvlib"})

    def test_names_that_no_client_can_ask_for_are_refused(self):
        for character in ":&#+%\t\x7f":
            with self.subTest(character=character):
                name = f"a{character}b.orvlib"
                self.write("content/" + name, CATALOG)
                self.assertIn("request cannot carry", self.refusal(name))
                os.remove(os.path.join(self.source, "content", name))

    def test_names_that_are_not_utf8_are_refused_and_hidden_files_passed_over(self):
        with open(os.fsencode(self.source) + b"/content/T\xfcren.orvlib", "wb") as stream:
            stream.write(CATALOG)
        self.write("content/.hidden.orvlib", CATALOG)
        self.assertIn("not UTF-8", self.refusal("T\ufffdren.orvlib"))
        self.assertEqual(set(self.map_of("names.map")), {b"Doors.orvlib"})

    def test_logos_that_no_client_can_ask_for_are_refused(self):
        self.write("manufacturers/a&b.png", b"picture")
        self.assertIn('"&"', self.refusal("a&b.png"))
        self.assertEqual(self.map_of("logos.map"), {})

    def test_names_that_differ_in_letter_case_only_are_both_refused(self):
        self.write("content/Türen.orvlib", CATALOG)
        self.write("content/TÜREN.orvlib", CATALOG)
        self.assertIn("letter case", self.refusal(["TÜREN.orvlib", "Türen.orvlib"]))

    def test_index_with_a_packed_archive_is_refused(self):
        self.write("content/Orv_Core_Content_Index.txt", b"Doors.orvlib\r\nPack.orvlibz\r\n")
        self.assertIn("Pack.orvlibz", self.refusal("Orv_Core_Content_Index.txt"))

    def test_changes_that_are_all_small_are_refused_and_the_former_stays(self):
        self.publish()
        former = self.map_of("names.map")
        self.write("content/Doors.orvlib", b"x" * 999)
        self.assertIn("1,000 bytes", self.refusal("Doors.orvlib"))
        self.assertEqual(self.map_of("names.map"), former)

    def test_a_small_change_beside_a_counted_one_is_published(self):
        self.write("content/Small.orvlib", b"x" * 999)
        self.assertEqual(self.publish()["published"], 2)

    def test_manufacturer_ids_beyond_32_bits_are_refused(self):
        for number in ("2147483648", "-2147483649", "99999999999999999999"):
            with self.subTest(number=number):
                self.write("manufacturers/manufacturer_data.json",
                           b'{"Manufacturer":{"Id":1},"Manufacturer":{"Id" : %s}}' % number.encode())
                self.assertIn(number, self.refusal("manufacturer_data.json"))
        for number in (b"2147483647", b"-2147483648"):
            self.write("manufacturers/manufacturer_data.json", b'{"Manufacturer":{"Id":%s}}' % number)
            self.assertEqual(self.publish()["refused"], [])

    def test_a_refused_name_keeps_what_was_published_before(self):
        self.publish()
        former = self.map_of("names.map")
        self.write("content/Doors.orvlib", b"")
        document = self.publish(status=1)
        self.assertEqual(document["published"], 0)
        self.assertEqual([entry["name"] for entry in document["refused"]], ["Doors.orvlib"])
        self.assertEqual(self.map_of("names.map"), former)

    def test_refusals_are_lines_on_standard_error_too(self):
        self.write("content/Empty.orvlib", b"")
        result = subprocess.run([self.program, "publish", self.source, self.service], text=True, capture_output=True,
                                timeout=60)
        self.assertEqual(result.returncode, 1)
        self.assertEqual(result.stdout, f"Published 1 names in {self.service}.\n")
        self.assertRegex(result.stderr, r"^orv-library: Empty\.orvlib: is empty; .*\n$")

    def test_a_missing_source_changes_nothing(self):
        command = [self.program, "publish", self.path("nowhere"), self.service]
        result = subprocess.run(command, text=True, capture_output=True, timeout=60)
        self.assertEqual(result.returncode, 1)
        self.assertIn("nowhere", result.stderr)
        self.assertFalse(os.path.exists(self.service))


if __name__ == "__main__":
    ServiceCase.program = sys.argv.pop(1)
    unittest.main(verbosity=1)

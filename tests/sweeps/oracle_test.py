#!/usr/bin/env python3
"""The oracle finds the faults that it must find."""
import os
import tempfile
import unittest
import zipfile

import oracle


class DisturbedTest(unittest.TestCase):
    states = [{"a": "old", "b": "old"}, {"a": "new", "b": "old", "c": "new"}]

    def judge(self, now, *exceptions):
        return oracle.judge_disturbed(now, self.states, *exceptions)

    def test_old_and_new_files_are_sound_each_for_itself(self):
        self.assertEqual(self.judge({"a": "old", "b": "old"}), [])
        self.assertEqual(self.judge({"a": "old", "b": "old", "c": "new"}), [])

    def test_half_and_lost_files_are_found(self):
        self.assertEqual(self.judge({"a": "half", "b": "old"}), ["a is neither old nor new"])
        self.assertEqual(self.judge({"a": "new"}), ["b is missing"])
        self.assertEqual(self.judge({"a": "new"}, ["b"]), [])

    def test_only_files_with_private_names_may_be_left(self):
        sound = {"a": "old", "b": "old"}
        self.assertEqual(self.judge({**sound, ".c.orv-new": "x", "root/temp/x": "x"}), [])
        self.assertEqual(self.judge({**sound, "root/core/x.orvlib": "x"}), ["root/core/x.orvlib should not be there"])

    def test_parts_may_be_left_out_but_not_changed(self):
        states = [{"z": "parts [('a', 1)]"}, {"z": "parts [('a', 2), ('b', 3)]"}]
        for content, sound in (("parts [('a', 1), ('b', 3)]", True), ("parts []", True), ("parts [('a', 9)]", False),
                               ("damaged", False)):
            complaints = oracle.judge_disturbed({"z": content}, states, (), ["z"])
            self.assertEqual(not complaints, sound, content)


class OtherJudgementsTest(unittest.TestCase):
    def test_a_run_that_ended_leaves_nothing_unfinished(self):
        self.assertEqual(oracle.judge_ended({"root/temp/x": "x", "root/core/.hidden": "x", "a.orv-new": "x"}), [])
        self.assertEqual(oracle.judge_ended({"root/temp/.c.0a.orv-new": "x"}), ["root/temp/.c.0a.orv-new was not removed"])

    def test_a_run_that_says_it_is_done_has_done_it(self):
        self.assertEqual(oracle.judge_done({"a": "new"}, {"a": "new"}), [])
        self.assertEqual(len(oracle.judge_done({"a": "old"}, {"a": "new", "b": "new"})), 2)

    def test_what_did_not_recover_or_was_left_over_is_found(self):
        finals = [{"a": "1"}, {"a": "2"}]
        self.assertEqual(oracle.judge_recovered({"a": "2"}, finals), [])
        self.assertEqual(oracle.judge_recovered({"a": "3", ".x": "x"}, finals),
                         ["a did not recover", ".x was left over"])
        self.assertEqual(oracle.judge_recovered({"a": "3", ".x": "x"}, finals, [".x"], ["a"]), ["a did not recover"])
        self.assertEqual(oracle.judge_recovered({}, finals, (), ["a"]), [])


class SnapshotTest(unittest.TestCase):
    def test_files_links_folders_and_archives_are_told_apart(self):
        with tempfile.TemporaryDirectory() as top:
            os.makedirs(os.path.join(top, "root/user"))
            for name in ("root/user/errors.log", "root/user/data"):
                with open(os.path.join(top, name), "w") as file:
                    file.write(name)
            os.symlink("data", os.path.join(top, "root/link"))
            for name in ("one.zip", "two.zip"):
                with zipfile.ZipFile(os.path.join(top, name), "w") as archive:
                    archive.writestr("a", b"same", zipfile.ZIP_DEFLATED if name == "one.zip" else zipfile.ZIP_STORED)
            with open(os.path.join(top, "bad.zip"), "w") as file:
                file.write("no archive")
            found = oracle.snapshot(top)
        self.assertNotIn("root/user/errors.log", found)
        self.assertEqual(found["root/link"], "link data")
        self.assertEqual(found["root/user"], "folder")
        self.assertEqual(found["one.zip"], found["two.zip"])
        self.assertEqual(len(found["bad.zip"]), 40)
        self.assertEqual(len(found["root/user/data"]), 40)

    def digest(self, name, text):
        with tempfile.TemporaryDirectory() as top:
            path = os.path.join(top, name)
            os.makedirs(os.path.dirname(path))
            with open(path, "w") as file:
                file.write(text)
            return oracle.snapshot(top)[name]

    def test_stamps_do_not_count_and_all_else_does(self):
        texts = ['{"Last_Modified": "20261121T053909.101635", "a": 1}', '{"Last_Modified": "20300101T000000", "a": 1}',
                 '{"Last_Modified": "20261121T053909.101635", "a": 2}', '{"Last_Modified": "20261121T053909.101635"']
        found = [self.digest("root/manufacturer-data/manufacturer_data.json", text) for text in texts]
        self.assertEqual(found[0], found[1])
        self.assertEqual(len(set(found)), 3)

    def test_a_history_is_sound_or_not(self):
        for name in oracle.HISTORIES:
            self.assertEqual(self.digest(name, '{"a": 1}'), self.digest(name, "{}"))
            self.assertNotEqual(self.digest(name, "{}"), self.digest(name, "{"))

    def test_hash_files_are_made_of_lines(self):
        self.assertEqual(self.digest("root/core/catalog_hash.txt", "a:1\nb:2\n"), "parts ['a:1', 'b:2']")


if __name__ == "__main__":
    unittest.main()

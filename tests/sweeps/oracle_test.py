#!/usr/bin/env python3
"""The oracle finds what it is there for."""
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

    def test_members_may_be_left_out_but_not_changed(self):
        states = [{"z.zip": "zip [('a', 1, 1)]"}, {"z.zip": "zip [('a', 2, 1), ('b', 3, 1)]"}]
        for content, sound in (("zip [('a', 1, 1), ('b', 3, 1)]", True), ("zip []", True), ("zip [('a', 9, 1)]", False),
                               ("zip [('a', 1, 1)] damaged", False), ("0123", False)):
            complaints = oracle.judge_disturbed({"z.zip": content}, states, (), ["z.zip"])
            self.assertEqual(not complaints, sound, content)


class OtherJudgementsTest(unittest.TestCase):
    def test_a_run_that_says_it_is_done_has_done_it(self):
        self.assertEqual(oracle.judge_done({"a": "new"}, {"a": "new"}), [])
        self.assertEqual(len(oracle.judge_done({"a": "old"}, {"a": "new", "b": "new"})), 2)

    def test_what_did_not_recover_or_was_left_over_is_found(self):
        finals = [{"a": "1"}, {"a": "2"}]
        self.assertEqual(oracle.judge_recovered({"a": "2"}, finals), [])
        self.assertEqual(oracle.judge_recovered({"a": "3", ".x": "x"}, finals),
                         ["a did not recover", ".x was left over"])


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


if __name__ == "__main__":
    unittest.main()

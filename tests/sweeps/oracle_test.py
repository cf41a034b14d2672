#!/usr/bin/env python3
"""The oracle finds the faults that it must find."""
import os
import sqlite3
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


    def test_file_beside_that_was_named_may_stay_old(self):
        said = "reading\norv-library: /x/in/a.orvlib and /x/in/a.zip: cannot be written and was left as it was\n"
        self.assertEqual(oracle.left_beside(said, "/x"), ("in/a.orvlib", "in/a.zip"))
        self.assertEqual(oracle.left_beside("orv-library: /x/in/a.orvlib: damaged\n", "/x"), ())

    def test_only_a_catalog_that_was_named_may_stay_old(self):
        final = {"root/bonus/Party.orvlib": "2", "root/history/bonus/Party.orvlib/version 0.zip": "1", "root/core/a.orvlib": "2"}
        said = "Party.orvlib: cannot read /x/runs.json the hash file still lists /x/root/bonus/Party.orvlib cannot read /y"
        listed = oracle.still_listed(said, [final])
        self.assertEqual(listed, tuple(final)[:2])
        self.assertEqual(oracle.still_listed("Party.orvlib: cannot read /x", [final]), ())
        old = {"root/bonus/Party.orvlib": "1", "root/core/a.orvlib": "1"}
        self.assertEqual(oracle.judge_recovered(old, [final], (), listed, old), ["root/core/a.orvlib did not recover"])
        half = {**final, "root/bonus/Party.orvlib": "half"}
        self.assertEqual(oracle.judge_recovered(half, [final], (), listed, old), ["root/bonus/Party.orvlib did not recover"])


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

    def test_favourites_count_and_what_was_looked_at_does_not(self):
        texts = ['{"favourites": [1], "recent": [1]}', '{"favourites": [1], "recent": [2]}', '{"favourites": [2], "recent": [1]}']
        found = [self.digest(oracle.LISTS, text) for text in texts]
        self.assertEqual(found[0], found[1])
        self.assertNotEqual(found[0], found[2])

    def test_hash_files_are_made_of_lines(self):
        self.assertEqual(self.digest("root/core/catalog_hash.txt", "a:1\nb:2\n"), "parts ['a:1', 'b:2']")


class DatabaseTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.path = os.path.join(folder.name, "a b?.orvlib")

    def digest(self, identifier, *names):
        if os.path.exists(self.path):
            os.remove(self.path)
        database = sqlite3.connect(self.path)
        database.execute("CREATE TABLE item (id INTEGER PRIMARY KEY, name TEXT)")
        database.execute("CREATE TABLE catalog (key TEXT, value TEXT)")
        database.execute("INSERT INTO catalog VALUES ('id', ?)", (identifier,))
        database.executemany("INSERT INTO item (name) VALUES (?)", [(name,) for name in names])
        database.commit()
        database.close()
        return oracle.digest(self.path, "root/user/a.orvlib")

    def test_rows_count_and_a_random_id_does_not(self):
        ids = ["0b1c2d3e-1111-4222-8333-444455556666", "9b1c2d3e-1111-4222-8333-444455556667"]
        first = self.digest(ids[0], "Chair", "Stool")
        self.assertEqual(first, self.digest(ids[1], "Chair", "Stool"))
        self.assertNotEqual(first, self.digest(ids[0], "Chair"))
        self.assertNotEqual(first, self.digest("mine", "Chair", "Stool"))

    def test_a_torn_one_is_damaged(self):
        self.digest("mine", "Chair")
        with open(self.path, "r+b") as file:
            file.truncate(5000)
        self.assertEqual(oracle.digest(self.path, "root/user/a.orvlib"), "damaged database")


class BinTest(unittest.TestCase):
    def test_files_in_the_bin_are_known_by_their_contents(self):
        with tempfile.TemporaryDirectory() as top:
            for path, text in (("files/Mine 2.orvlib", "mine"), ("info/Mine 2.orvlib.trashinfo", "now")):
                os.makedirs(os.path.join(top, "home/data/Trash", os.path.dirname(path)))
                with open(os.path.join(top, "home/data/Trash", path), "w") as file:
                    file.write(text)
            old = {"root/user/Mine.orvlib": oracle.digest(os.path.join(top, "home/data/Trash/files/Mine 2.orvlib"), "")}
            now = oracle.snapshot(top)
            self.assertEqual(oracle.judge_lost(now, old, old.keys()), [])
            self.assertEqual(len([path for path in now if path.startswith(oracle.IN_BIN)]), 1)
            self.assertFalse([path for path in now if "trashinfo" in path or "Mine" in path])
            os.remove(os.path.join(top, "home/data/Trash/files/Mine 2.orvlib"))
            self.assertEqual(oracle.judge_lost(oracle.snapshot(top), old, old.keys()), ["root/user/Mine.orvlib is lost"])

    def test_an_archive_in_the_bin_is_known_by_its_members_whatever_its_name(self):
        with tempfile.TemporaryDirectory() as top:
            folder = os.path.join(top, "home/data/Trash/files")
            os.makedirs(folder)
            for name, content in (("Mine.zip-0001", "oak"), ("Other.zip-0001", "pine")):
                with zipfile.ZipFile(os.path.join(folder, name), "w") as archive:
                    archive.writestr("oak.jpg", content)
            os.rename(os.path.join(folder, "Mine.zip-0001"), os.path.join(top, "Mine.zip"))
            old = {"Mine.zip": oracle.digest(os.path.join(top, "Mine.zip"), "Mine.zip")}
            os.rename(os.path.join(top, "Mine.zip"), os.path.join(folder, "Mine.zip-0001"))
            self.assertEqual(oracle.judge_lost(oracle.snapshot(top), old, old.keys()), [])
            os.remove(os.path.join(folder, "Mine.zip-0001"))
            self.assertEqual(oracle.judge_lost(oracle.snapshot(top), old, old.keys()), ["Mine.zip is lost"])

    def test_what_is_gone_from_the_bin_is_for_the_judge_of_lost_files(self):
        final = {"a": "1", oracle.IN_BIN + "2": "2"}
        self.assertEqual(oracle.judge_recovered({"a": "1"}, [final]), [])
        self.assertEqual(oracle.judge_recovered({oracle.IN_BIN + "2": "2"}, [final]), ["a did not recover"])

    def test_what_was_begun_of_a_file_is_known_by_its_name(self):
        now = {"root/.a.json.12.orv-new": "x", "root/.b.json.12.orv-new": "x", "root/.a.json.12": "x", "root/a.json": "x"}
        self.assertEqual(oracle.begun_of(now, ["root/a.json"]), ("root/.a.json.12.orv-new",))
        self.assertEqual(oracle.begun_of(now, []), ())

    def test_a_refused_run_clears_nothing_away(self):
        now = {"root/core/.a.orv-new": "x", "root/temp/a.lock": "x", "w": "x", "a": "1"}
        self.assertEqual(oracle.without_unfinished(now, ["w"]), {"a": "1"})


if __name__ == "__main__":
    unittest.main()

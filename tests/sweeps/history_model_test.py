#!/usr/bin/env python3
"""The model of histories allows what may happen, and nothing else."""
import unittest

import history_model
from history_model import Step


def step(start, end, version=None, status=0, **more):
    made = Step("step", [], version, **more)
    made.start, made.end, made.status = start, end, status
    return made


class VersionTest(unittest.TestCase):
    def possible(self, *steps):
        return history_model.possible_versions(steps, "old")

    def test_without_a_step_the_old_version_stays(self):
        self.assertEqual(self.possible(), {"old"})

    def test_the_later_of_two_done_steps_counts(self):
        self.assertEqual(self.possible(step(0, 1, "a"), step(2, 3, "b")), {"b"})

    def test_either_of_two_at_the_same_time_may_have_come_last(self):
        self.assertEqual(self.possible(step(0, 2, "a"), step(1, 3, "b")), {"a", "b"})

    def test_what_was_killed_may_have_done_its_work_or_not(self):
        self.assertEqual(self.possible(step(0, 1, "a", -9)), {"a", "old"})
        self.assertEqual(self.possible(step(0, 1, "a"), step(2, 3, "b", -9)), {"a", "b"})
        self.assertEqual(self.possible(step(0, 1, "a", -9), step(2, 3, "b")), {"b"})

    def test_a_tag_from_before_a_kill_is_believed_until_another_version_comes(self):
        killed, after, other = step(0, 1, "b", -9), step(2, 3, "a"), step(4, 5, "c")
        self.assertEqual(history_model.possible_versions([killed, after], "a", has_tags=True), {"a", "b"})
        self.assertEqual(history_model.possible_versions([killed, after, other], "a", has_tags=True), {"c"})

    def test_a_wrong_version_is_told(self):
        steps = [step(0, 1, "a"), step(2, 3, "b")]
        self.assertEqual(history_model.judge_version("x", "b", steps), [])
        self.assertEqual(history_model.judge_version("x", "a", steps), ["x is version a, not one of b"])
        self.assertEqual(history_model.judge_version("x", None, steps), ["x is version None, not one of b"])


class NamesTest(unittest.TestCase):
    def test_done_additions_must_stay_and_killed_ones_may(self):
        steps = [step(0, 1, names={"a"}), step(0, 1, names={"b"}, status=-9)]
        self.assertEqual(history_model.judge_names("name", {"a"}, steps), [])
        self.assertEqual(history_model.judge_names("name", {"a", "b"}, steps), [])
        self.assertEqual(history_model.judge_names("name", {"b"}, steps), ["name a is lost"])
        self.assertEqual(history_model.judge_names("name", {"a", "c"}, steps), ["name c should not be there"])

    def test_done_removals_must_hold_and_killed_ones_may(self):
        steps = [step(0, 1, names={"a", "b"}), step(2, 3, gone={"a"}), step(4, 5, gone={"b"}, status=-9)]
        self.assertEqual(history_model.judge_names("name", {"b"}, steps), [])
        self.assertEqual(history_model.judge_names("name", set(), steps), [])
        self.assertEqual(history_model.judge_names("name", {"a"}, steps), ["name a should not be there"])

    def test_what_was_there_before_stays(self):
        self.assertEqual(history_model.judge_names("name", {"x"}, [], {"x"}), [])
        self.assertEqual(history_model.judge_names("name", set(), [], {"x"}), ["name x is lost"])


if __name__ == "__main__":
    unittest.main()

"""Every document that the end-to-end tests collected matches its schema, and each schema was tested."""
import glob
import json
import os
import re
import subprocess
import sys
import unittest

from jsonschema import Draft202012Validator

SCHEMAS, DOCUMENTS, PROGRAM = sys.argv[1:4]
WITH_VALUE = {"--root", "--progress", "--trace"}
# Commands that cannot fail: they need no root, no file and no service.
NEVER_FAIL = {"help"}
# Members whose name has another type in another schema. The contract with scripts fixes both.
OTHER_SHAPE = {
    ("library", "unpack"),      # an object that tells whether it was found; elsewhere the path
    ("referenced", "unpack"),   # likewise; elsewhere the path of the folder
    ("held", "status"), ("held", "hold"), ("held", "release"),  # the names; elsewhere whether the catalog is held
    ("replaced", "history"),    # a time; elsewhere a number
    ("added", "import"),        # a number; elsewhere the added items
    ("asked", "check"),         # whether the check asked the service; elsewhere the number of catalogs
    ("bonus", "paths"), ("manufacturer", "paths"),  # the folder; in the settings the names of catalogs
    ("filters", "paths"),       # the file; elsewhere the filters
    ("manufacturers", "serve"),  # the address; elsewhere the records
}


def schema_names():
    return sorted(os.path.basename(path)[:-len(".json")] for path in glob.glob(os.path.join(SCHEMAS, "*.json")))


def schema(name):
    with open(os.path.join(SCHEMAS, name + ".json")) as stream:
        return json.load(stream)


def words_of(arguments):
    """The arguments without options."""
    words = []
    rest = iter(arguments)
    for argument in rest:
        if argument in WITH_VALUE:
            next(rest, None)
        elif not argument.startswith("-"):
            words.append(argument)
    return words


def schema_of(arguments):
    words = words_of(arguments)
    both = "-".join(words[:2])
    return both if both in schema_names() else words[0]


def runs():
    paths = glob.glob(os.path.join(DOCUMENTS, "*.json"))
    for path in sorted(paths, key=lambda path: int(os.path.basename(path)[:-len(".json")])):
        with open(path) as stream:
            yield json.load(stream)


class Documents(unittest.TestCase):
    def test_each_matches_its_schema(self):
        validators = {name: Draft202012Validator(schema(name)) for name in schema_names()}
        well, failed = set(), set()
        for run in runs():
            shown = f"{run['arguments']} ended with {run['status']}: {run['out'][:2000]}"
            if run["status"] == 2 or "--help" in run["arguments"] or "--version" in run["arguments"]:
                self.assertFalse(run["status"] == 2 and run["out"], shown)
                continue
            if run["status"] == -1:
                continue  # a test killed it
            name = schema_of(run["arguments"])
            self.assertIn(name, validators, shown)
            with self.subTest(shown):
                document = json.loads(run["out"])
                self.assertEqual([error.message for error in validators[name].iter_errors(document)], [])
                self.assertFalse(run["status"] == 0 and "error" in document)
                (failed if "error" in document else well).add(name)
        self.assertEqual(set(validators) - well, set(), "no test collected a document of a successful run")
        self.assertEqual(set(validators) - failed, NEVER_FAIL, "no test collected a document of a failed run")


class Schemas(unittest.TestCase):
    def test_are_schemas(self):
        for name in schema_names():
            Draft202012Validator.check_schema(schema(name))

    def test_every_command_has_one(self):
        listed = subprocess.run([PROGRAM, "--help"], text=True, check=True, stdout=subprocess.PIPE, timeout=30).stdout
        commands = set(re.findall(r"^  ([a-z]+) ", listed.split("\nCommands:\n")[1], re.M))
        self.assertEqual({name.split("-")[0] for name in schema_names()}, commands)
        self.assertLessEqual(commands, set(schema_names()))

    def test_definitions_of_one_name_are_the_same(self):
        known = {}
        for name in schema_names():
            for word, definition in schema(name).get("$defs", {}).items():
                self.assertEqual(known.setdefault(word, definition), definition, f"{word} in {name}")

    def test_members_of_one_name_have_one_shape(self):
        shapes = {}
        for name in schema_names():
            definitions = schema(name).get("$defs", {})
            for word, kind in members(schema(name), definitions):
                if (word, name) not in OTHER_SHAPE:
                    shapes.setdefault(word, {}).setdefault(kind, name)
        different = {word: kinds for word, kinds in shapes.items() if len(kinds) > 1}
        self.assertEqual(different, {})
        self.assertEqual([pair for pair in OTHER_SHAPE if pair[0] not in shapes], [])


def members(node, definitions):
    """All members with the kind of their values: "string", "integer", "array" …"""
    if isinstance(node, list):
        for each in node:
            yield from members(each, definitions)
    if not isinstance(node, dict):
        return
    for word, value in node.get("properties", {}).items():
        kind = kind_of(value, definitions)
        if kind:
            yield word, kind
    for key, value in node.items():
        if key == "properties":
            value = list(value.values())
        if key not in ("then", "if"):
            yield from members(value, definitions)


def kind_of(value, definitions):
    if "$ref" in value:
        return kind_of(definitions[value["$ref"].split("/")[-1]], definitions)
    if "anyOf" in value:
        [kind] = {kind_of(each, definitions) for each in value["anyOf"]} - {"null"}
        return kind
    if "const" in value:
        return type(value["const"]).__name__.replace("bool", "boolean")
    kinds = value.get("type")
    if isinstance(kinds, list):
        [kinds] = set(kinds) - {"null"}
    return kinds


if __name__ == "__main__":
    del sys.argv[1:4]
    unittest.main(verbosity=1)

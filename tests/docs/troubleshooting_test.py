"""Each message on the page of messages occurs in the sources, or in the named libraries. Each text with which a
program throws or complains occurs on the page."""
import ctypes
import errno
import glob
import os
import re
import sys
import unittest

from docs_support import Page, read

SOURCE = sys.argv[2]  # after the program, before the build tree
PLACEHOLDERS = r"\b(?:ADDRESS|COMMAND|FILE|FOLDER|HOST|KEY|N|NAME|REASON|VERSION)\b"
OF_LIBRARIES = "Names, connections, certificates, proxies"
LIBRARIES = ("libcurl.so.4", "libcrypto.so.3")
SYSTEM = {os.strerror(number) for number in errno.errorcode}
# Texts that only a programming error of a host can cause, or that span two lines.
NOT_FOR_USERS = {"no pipe for signals", "the content index", "update from "}


def sections():
    """Pairs of a heading and the messages in its table."""
    for part in Page(SOURCE, "docs/troubleshooting.md").text.split("\n## ")[1:]:
        yield part.split("\n")[0], re.findall(r"^\| `([^`]+)` \|", part, re.M)


def fragments(message):
    """The parts of a message between its placeholders."""
    return [part.strip(" :;,'()") for part in re.split(PLACEHOLDERS, message) if re.search(r"\w{2}", part)]


def literals(text):
    """The string literals of a source; adjacent literals are joined as the compiler does."""
    joined = re.sub(r'"\s*\n\s*"', "", text)
    return [literal.replace('\\"', '"') for literal in re.findall(r'"((?:[^"\\\n]|\\.)*)"', joined)]


def sources(*folders):
    for folder in folders:
        for path in glob.glob(os.path.join(SOURCE, folder, "**", "*.cpp"), recursive=True):
            yield read(path)


def texts_of(library):
    """The texts in a library that this process can load."""
    ctypes.CDLL(library)
    with open("/proc/self/maps") as maps:
        path = re.search(rf"\S+/{re.escape(library.split('.so')[0])}\.so\S*", maps.read())[0]
    with open(path, "rb") as stream:
        return [text.decode() for text in re.findall(rb"[\x20-\x7e]{12,}", stream.read())]


def pattern(text):
    """A pattern for messages composed from a format such as "Could not resolve %s: %s"."""
    return ".+".join(re.escape(part) for part in re.split(r"%[0-9.*]*[a-zA-Z]+", text))


class Troubleshooting(unittest.TestCase):
    def test_messages_stand_in_the_sources(self):
        known = "\n".join(literal for text in sources("OrvLibrary", "OrvHost", "apps") for literal in literals(text))
        found = 0
        for heading, messages in sections():
            for message in messages if heading != OF_LIBRARIES else []:
                if message not in SYSTEM:
                    for fragment in fragments(message):
                        self.assertIn(fragment, known, message)
                found += 1
        self.assertGreater(found, 80)

    def test_messages_of_libraries_stand_there(self):
        known = [text for library in LIBRARIES for text in texts_of(library)]
        messages = dict(sections())[OF_LIBRARIES]
        for message in messages:
            parts = fragments(message)
            self.assertTrue(any(all(part in text for part in parts) or re.match(pattern(text) + "$", message)
                                for text in known if len(re.sub(r"%\w+", "", text)) > 10), message)
        self.assertGreater(len(messages), 5)

    def test_what_programs_fail_with_is_on_the_page(self):
        page = "\n".join(" ".join(fragments(message)) for _, messages in sections() for message in messages)
        missing = []
        for text in sources("OrvHost", "apps/orv-library", "apps/catalog-service"):
            for statement in re.findall(r"(?:throw (?:CommandFailure|std::runtime_error)|complain)\(([^;]*);", text):
                for literal in literals(statement):
                    words = literal.strip(" :;,'()")
                    if " " in words and words not in page and literal not in NOT_FOR_USERS:
                        missing.append(literal)
        self.assertEqual(missing, [])

    def test_pages_lead_to_it(self):
        for name in ("README.md", "docs/man/orv-library.1.scd", "docs/man/orv-library-update.1.scd",
                     "docs/man/orv-library-doctor.1.scd", "docs/man/orv-library-status.1.scd"):
            self.assertIn("troubleshooting.md", read(os.path.join(SOURCE, name)), name)


if __name__ == "__main__":
    del sys.argv[1:4]
    unittest.main(verbosity=1)

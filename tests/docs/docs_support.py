"""Parses a document."""
import os
import re
import socket


def read(path):
    with open(path) as stream:
        return stream.read()


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


class Page:
    def __init__(self, source, name):
        self.name = name
        self.text = read(os.path.join(source, name))

    def blocks(self, language=None):
        """The contents of the fenced blocks of a language; without a language, pairs of language and
        content."""
        found = re.findall(r"^```(\w*)\n(.*?)^```$", self.text, re.M | re.S)
        return found if language is None else [block for kind, block in found if kind == language]

    def indented_code(self):
        """Lines that Markdown treats as code without a fence: indented by four, after a blank line, outside of
        lists."""
        prose = re.sub(r"^```.*?^```$", "", self.text, flags=re.M | re.S)
        paragraphs = re.split(r"\n\s*\n", prose)
        return [paragraph for before, paragraph in zip(paragraphs, paragraphs[1:])
                if re.match(r" {4}\S", paragraph) and not re.match(r"\s*([-*]|\d+\.) ", before)]

    def links(self):
        """The files that the document links, relative to the top of the tree."""
        return [os.path.normpath(os.path.join(os.path.dirname(self.name), target))
                for target in re.findall(r"\]\(([^)#\s]+)[^)]*\)", self.text) if not re.match(r"[a-z]+:", target)]

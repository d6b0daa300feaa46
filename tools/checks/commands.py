#!/usr/bin/env python3
"""Complains about commands in tools/ and packaging/ that tools/README.md does not name, and about those that it names and
that are not there. A command is a file that begins with "#!"."""

import re

import source_tree

PAGE = "tools/README.md"
FOLDERS = ("tools/", "packaging/")


def find(root):
    commands = {path for path in source_tree.files(root)
                if path.startswith(FOLDERS) and source_tree.text(root, path).startswith("#!")}
    lines = source_tree.text(root, PAGE).splitlines()
    named = {}
    for number, line in enumerate(lines, 1):
        if found := re.match(r"\| `((?:tools|packaging)/[^` ]+)", line):
            named[found.group(1)] = number
    for path in sorted(commands - named.keys()):
        yield f"{path}:1: has no line in {PAGE}"
    for path in sorted(named.keys() - commands):
        yield f"{PAGE}:{named[path]}: {path} is no command"


TREES = [
    ("complete", {PAGE: "| `tools/a` | a | b |\n", "tools/a": "#!/bin/sh\n", "tools/b": "sourced\n"}, None),
    ("not named", {PAGE: "", "packaging/a": "#!/bin/sh\n"}, "packaging/a:1: has no line"),
    ("gone", {PAGE: "| `tools/a FILE` | a | b |\n"}, "tools/a is no command"),
]

if __name__ == "__main__":
    source_tree.main(find, TREES)

#!/usr/bin/env python3
"""Complains about the program's version outside CMakeLists.txt, from where everything else has it. Only
the changelog names versions, too."""

import re

import source_tree

SOURCE = "CMakeLists.txt"
ALLOWED = ("CHANGELOG.md",)


def find(root):
    declared = re.search(r"project\(\w+ VERSION ([\d.]+)", source_tree.text(root, SOURCE))
    if not declared:
        yield f"{SOURCE}:1: the project has no version"
        return
    dotted = re.compile(rf"(?<![\d.]){re.escape(declared[1])}(?!\d)")
    with_commas = re.compile(r"\s*,\s*".join(declared[1].split(".")))
    for path in source_tree.files(root):
        if path in ALLOWED:
            continue
        for number, line in enumerate(source_tree.text(root, path).splitlines(), 1):
            found = dotted.search(line) or path.endswith(".rc") and with_commas.search(line)
            if found and not (path == SOURCE and "project(" in line):
                yield f"{path}:{number}: the version comes from {SOURCE} (korvane::program_version, KORVANE_VERSION)"


PROJECT = {SOURCE: "project(Korvane VERSION 9.8.7 LANGUAGES CXX)\n"}
TREES = [
    ("one place", {**PROJECT, "a.cpp": "0.9.8.7; 9.8.70; {9, 8, 7}\n", "CHANGELOG.md": "9.8.7a\n"}, None),
    ("a text", {**PROJECT, "a.cpp": '"Korvane 9.8.7a"\n'}, "comes from"),
    ("a resource", {**PROJECT, "a.rc": "FILEVERSION 9, 8, 7, 0\n"}, "comes from"),
    ("a second line there", {SOURCE: PROJECT[SOURCE] + "set(V 9.8.7)\n"}, "comes from"),
    ("none", {SOURCE: "project(Korvane)\n"}, "no version"),
]

if __name__ == "__main__":
    source_tree.main(find, TREES)

#!/usr/bin/env python3
"""Runs the pinned clang-format over every source and complains where it would change something."""

import os
import re
import shutil
import subprocess

import source_tree

VERSION = "14"
STYLE = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", ".clang-format")


def formatter():
    for name in (f"clang-format-{VERSION}", "clang-format"):
        if shutil.which(name):
            version = subprocess.run([name, "--version"], capture_output=True, text=True, check=True).stdout
            if re.search(rf"version {VERSION}\.", version):
                return name
    return None


def find(root):
    program = formatter()
    if not program:
        yield f"clang-format {VERSION} is not installed; run ./setup"
        return
    paths = source_tree.files(root, source_tree.CPP_ENDINGS)
    result = subprocess.run([program, "--dry-run", "-Werror", f"--style=file:{STYLE}", *paths], cwd=root,
                            capture_output=True, text=True, check=False)
    places = re.findall(r"^(\S+:\d+):\d+: error", result.stderr, re.MULTILINE)
    for path in sorted({place.rsplit(":", 1)[0] for place in places}):
        first = next(place for place in places if place.startswith(path + ":"))
        yield f"{first}: clang-format would change this: clang-format -i {path}"
    if result.returncode != 0 and not places:
        yield "clang-format: " + (result.stderr.strip() or f"exit status {result.returncode}")


TREES = [
    ("formatted", {"a.cpp": "int f(int a)\n{\n    return a;\n}\n"}, None),
    ("not formatted", {"a.cpp": "int f(int a) {\n  return a;\n}\n"}, "clang-format would change"),
]

if __name__ == "__main__":
    source_tree.main(find, TREES)

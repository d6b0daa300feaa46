#!/usr/bin/env python3
"""Complains about relative links in the documents, and about files named in comments ("docs/…md"), that lead nowhere."""

import os
import posixpath
import re

import source_tree

LINK = re.compile(r"!?\[[^\]]*\]\(([^)\s]+)\)")
FENCE = re.compile(r"^```.*?^```", re.MULTILINE | re.DOTALL)
NAMED = re.compile(r"(?<![\w/])docs/[\w/.]+\.md\b")


def anchors(text):
    """The anchors of a document's headings, as the common renderers make them."""
    result = set()
    for heading in re.findall(r"^#+\s+(.*?)\s*$", FENCE.sub("", text), re.MULTILINE):
        plain = re.sub(r"[`*]", "", heading).lower()
        result.add(re.sub(r"[^\w\- ]", "", plain).replace(" ", "-"))
    return result


def find(root):
    for path in source_tree.files(root, (".md",)):
        text = source_tree.text(root, path)
        for match in LINK.finditer(re.sub(r"`[^`\n]*`", lambda code: " " * len(code[0]), text)):
            target, _, anchor = match[1].partition("#")
            if re.match(r"[a-z]+:", target):
                continue
            place = f"{path}:{text.count(chr(10), 0, match.start()) + 1}"
            file = posixpath.normpath(posixpath.join(posixpath.dirname(path), target)) if target else path
            if not os.path.exists(os.path.join(root, file)):
                yield f"{place}: the link leads to {file}, which does not exist"
            elif anchor and anchor not in anchors(source_tree.text(root, file)):
                yield f"{place}: {file} has no heading #{anchor}"
    for path in source_tree.files(root, source_tree.CPP_ENDINGS + (".md", "CMakeLists.txt", "setup", "test", "run")):
        text = source_tree.text(root, path)
        for match in NAMED.finditer(text):
            if not os.path.exists(os.path.join(root, match[0])):
                yield f"{path}:{text.count(chr(10), 0, match.start()) + 1}: {match[0]} does not exist"


TREES = [
    ("good links", {"docs/a.md": "# One thing\n[b](../b.md#two-things) [up](#one-thing) ![x](https://x.example/x)\n",
                    "b.md": "## Two *things*\n"}, None),
    ("missing file", {"a.md": "[b](docs/b.md)\n"}, "does not exist"),
    ("missing picture", {"a.md": "![b](b.png)\n"}, "does not exist"),
    ("missing heading", {"a.md": "# One\n[two](#two)\n"}, "no heading"),
    ("comment", {"a.cpp": "// docs/" "formats/x.md\n"}, "does not exist"),
]

if __name__ == "__main__":
    source_tree.main(find, TREES)

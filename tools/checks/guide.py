#!/usr/bin/env python3
"""Complains about a guide that cannot be built (a missing picture, a link that leads nowhere), and about places that the
program's help names and the guide does not have."""

import os
import re
import subprocess

import source_tree

BUILDER = os.path.join(os.path.dirname(os.path.abspath(__file__)), "../../packaging/guide")
TOPICS = "Korvane/presenters/help_topics.cpp"
ANCHOR = re.compile(r'"#([^"]*)"')


def find(root):
    built = subprocess.run([BUILDER, "--anchors", root], capture_output=True, text=True)
    if built.returncode != 0:
        yield from built.stderr.splitlines()
        return
    anchors = set(built.stdout.split())
    if os.path.exists(os.path.join(root, TOPICS)):
        for number, line in enumerate(source_tree.text(root, TOPICS).splitlines(), 1):
            for anchor in ANCHOR.findall(line):
                if anchor not in anchors:
                    yield f"{TOPICS}:{number}: the guide has no place \"{anchor}\"; packaging/guide --anchors prints all"


GUIDE = {"docs/guide/README.md": "# G\n[u](unit.md)\n", "docs/guide/unit.md": "# Unit\n## Open it\n[s](README.md#g) [o](#open-it)\n"}
TREES = [
    ("good", {**GUIDE, "docs/guide/README.md": "# G\n[u](unit.md#open-it)\n", TOPICS: 'f("#unit-open-it", "Unit");\n',
              "docs/guide/unit.md": "# Unit\n## Open it\n[s](README.md) [o](#open-it)\n"}, None),
    ("unknown section", GUIDE, "#start-g, which is nowhere"),
    ("missing page", {**GUIDE, "docs/guide/README.md": "# G\n[u](unit.md) [o](other.md)\n"}, "no page"),
    ("page without a link", {**GUIDE, "docs/guide/other.md": "# O\n"}, "no link to it"),
    ("out of the guide", {**GUIDE, "docs/guide/unit.md": "# U\n[w](../window.md)\n"}, "out of the guide"),
    ("missing picture", {**GUIDE, "docs/guide/unit.md": "# U\n![p](p.png)\n"}, "no picture"),
    ("unknown place in the program", {"docs/guide/README.md": "# G\n", TOPICS: 'f("#alpha");\n'}, "no place \"alpha\""),
]

if __name__ == "__main__":
    source_tree.main(find, TREES)

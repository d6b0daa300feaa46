#!/usr/bin/env python3
"""Complains about commits whose titles are too long for a list, or say from which branch somebody merged instead of what
changed. It reads the commits since the one that brought this check."""

import re
import subprocess
import sys

import source_tree

LONGEST_TITLE = 72
MERGE = re.compile(r"^Merge\b.*\b(branch|into|pull request|of)\b|^Merge \S+$", re.IGNORECASE)

TITLES = [
    ("build: " + "x" * (LONGEST_TITLE - 7), None),
    ("build: " + "x" * (LONGEST_TITLE - 6), "characters"),
    ("Merge branch 'fast' into main", "merged"),
    ("Merge remote-tracking branch 'origin/main'", "merged"),
    ("Merge fast", "merged"),
    ("jobs: merge of entries counts each once", None),
]


def complaint(title):
    if len(title) > LONGEST_TITLE:
        return f"{len(title)} characters; at most {LONGEST_TITLE}"
    return "says what was merged, not what changed" if MERGE.search(title) else None


def git(root, *arguments):
    done = subprocess.run(["git", "-C", root, *arguments], capture_output=True, text=True, check=False)
    return done.stdout.splitlines() if done.returncode == 0 else []


def find(root):
    begin = git(root, "log", "--diff-filter=A", "--format=%H", "--", "tools/checks/titles.py")
    for line in git(root, "log", "--format=%h %s", f"{begin[-1]}..HEAD") if begin else []:
        commit, _, title = line.partition(" ")
        if complaint(title):
            yield f"commit {commit}: \"{title}\": {complaint(title)}"


if __name__ == "__main__":
    for text, expected in TITLES:
        found = complaint(text)
        if (found is None) != (expected is None) or expected and expected not in found:
            sys.exit(f"self-test \"{text}\": expected {expected!r}, got {found!r}")
    source_tree.main(find, TITLES, has_trees=False)

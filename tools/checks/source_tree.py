"""What the checks share: the files of a source tree, and how a check is run and tested.

A check is a function find(root) that yields complaints, "path:line: text". Its self-test is a list of small trees,
each with the complaint that it must bring; a check that finds nothing in them is broken."""

import os
import sys
import tempfile

IGNORED_FOLDERS = {"build", ".git", ".cache", "__pycache__"}
BINARY_ENDINGS = (".png", ".ico", ".cso", ".dds", ".rigid_model_v2", ".pyc")
CPP_ENDINGS = (".h", ".cpp")
only = None  # a set of paths: files() gives none but these


def files(root, endings=None):
    """The tree's text files, relative to its root, with '/' and sorted."""
    result = []
    for folder, folders, names in os.walk(root):
        folders[:] = [name for name in folders if name not in IGNORED_FOLDERS]
        for name in set(names) - {".git"}:  # a file in a work tree of its own
            path = os.path.relpath(os.path.join(folder, name), root).replace(os.sep, "/")
            if not path.endswith(BINARY_ENDINGS) and (endings is None or path.endswith(endings)) and (
                    only is None or path in only):
                result.append(path)
    return sorted(result)


def text(root, path):
    with open(os.path.join(root, path), encoding="utf-8", errors="replace") as file:
        return file.read()


def self_test(find, trees):
    """Each tree is (name, {path: text}, the text that one complaint must hold or None for a tree without fault)."""
    for name, content, expected in trees:
        with tempfile.TemporaryDirectory() as root:
            for path, body in content.items():
                target = os.path.join(root, path)
                os.makedirs(os.path.dirname(target), exist_ok=True)
                with open(target, "w", encoding="utf-8") as file:
                    file.write(body)
            complaints = list(find(root))
        is_right = not complaints if expected is None else any(expected in line for line in complaints)
        if not is_right:
            print(f"self-test \"{name}\": expected {expected!r}, got {complaints}")
            return False
    return True


def main(find, trees, has_trees=True):
    """CHECK [ROOT [FILE...]]: the exit status is 1 when the self-test fails or the tree, or those files of it, have a
    fault. has_trees: false for a check that has tested itself on something else."""
    global only
    if has_trees and not self_test(find, trees):
        sys.exit(1)
    only = set(sys.argv[2:]) or None
    root = sys.argv[1] if len(sys.argv) > 1 else os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..")
    complaints = list(find(os.path.realpath(root)))
    for complaint in complaints:
        print(complaint)
    name = os.path.basename(sys.argv[0])
    print(f"{name}: {len(trees)} self-tests passed, {len(complaints)} complaints")
    sys.exit(1 if complaints else 0)

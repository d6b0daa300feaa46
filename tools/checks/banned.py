#!/usr/bin/env python3
"""Complains about what must not stand in the repository: waits that hang under Wine, library parts that one of the
compilers lacks, paths of one machine, work left undone, and files that have grown too long."""

import os
import re

import source_tree

LONGEST_FILE_LINES = 600

CODE = [
    (re.compile(r"\b(counting_semaphore|binary_semaphore|condition_variable_any)\b|\bstd::(latch|barrier)\b"
                r"|#\s*include\s*<(semaphore|latch|barrier)>|\batomic_(wait|notify_one|notify_all)\b"),
     "hangs at random under Wine (use a mutex and a condition_variable)"),
    (re.compile(r"\bstd::(format|vformat)\b|#\s*include\s*<format>"), "is not in the compilers' libraries"),
    (re.compile(r"#\s*include\s*\"\.\.?/"), "includes start at the root of the repository"),
    (re.compile(r"\bspecifications?\b", re.IGNORECASE), "say which page of docs/ it is"),
    (re.compile(r"^TEST(_F|_P)?\((?![a-z][a-z0-9_]*, [a-z][A-Za-z0-9]*\))[^)]*\)"),
     "tests are named TEST(lower_case, lowerCamelCase)"),
]
EVERYWHERE = [
    (re.compile(r"(?<![\w.}$)])/(home|root|work|Users)/\w|\b[A-Za-z]:\\+Users\\"), "a path of one machine"),
    (re.compile(r"https?://[^\s\"'<>]*\b(registry|mirror|proxy|artifactory|nexus)\b", re.IGNORECASE),
     "the address of a package registry"),
    (re.compile(r"\b(TO" r"DO|FIX" r"ME|XX" r"X|HA" r"CK)\b|\bplace" r"holder\b|\bst" r"ub(bed|s)?\b"),
     "work left undone"),
    (re.compile(r"\blegacy|\bthe originals?\b(?! (order|file|bytes|model|name)s?\b)|\boriginal (program|tool|author)|\bpredecessor|"
                r"\b(as it|it has) always\b|\balways had\b|\bas (it|they) used to\b|\breverse[- ]engineer|"
                r"\bre-?implement|\bported from\b|\bthese very words\b|\b(known to|that) users (by|know)\b|"
                r"\b(product|program)'s own (text|word|slip|spelling)|\bspellings? (is|are) the product's",
                re.IGNORECASE),
     "a hint at something older; say why it is so"),
    (re.compile(r"\b(Part|Issue|issue) #?\d"), "a note that is not in the repository"),
]
ALLOWED = [  # (the text, in lower case, where): terms of the fields that these files are about
    ("legacy", ("DDSTextureLoader/", "docs/formats/dds.md", "tests/dds/", "setup")),  # DDS headers; an option of LZ4
    ("specification", ("Korvane/textures/block_bits.h",)),  # of the compressed formats
]
ATOMIC = re.compile(r"\bstd::atomic(?:<[^;=(){}]*>|_\w+)\s+(\w+)\s*[;{=(]")
WAIT = re.compile(r"\b(\w+)(?:\.|->)(wait|notify_one|notify_all)\s*\(")


def is_allowed(text, path):
    return any(text.lower() == word and path.startswith(places) for word, places in ALLOWED)


def find(root):
    code = {path: source_tree.text(root, path) for path in source_tree.files(root, source_tree.CPP_ENDINGS)}
    atomics = {path: set(ATOMIC.findall(text)) for path, text in code.items()}
    this_file = "tools/checks/" + os.path.basename(__file__)
    for path in source_tree.files(root):
        if path == this_file:
            continue
        lines = source_tree.text(root, path).splitlines()
        if len(lines) > LONGEST_FILE_LINES:
            yield f"{path}:{len(lines)}: more than {LONGEST_FILE_LINES} lines; split the file"
        names = atomics.get(path, set()) | atomics.get(path.rsplit(".", 1)[0] + ".h", set())
        for number, line in enumerate(lines, 1):
            for pattern, reason in EVERYWHERE + (CODE if path in code else []):
                match = pattern.search(line)
                if match and not is_allowed(match[0], path):
                    yield f"{path}:{number}: \"{match[0]}\": {reason}"
            for match in WAIT.finditer(line):
                if match[1] in names:
                    yield f"{path}:{number}: \"{match[0]})\": waiting on an atomic hangs at random under Wine"


TREES = [
    ("a wait on an atomic", {"a.h": "std::atomic<bool> m_ready{false};\n", "a.cpp": "m_ready.wait(false);\n"}, "atomic"),
    ("a wait on a condition variable", {"a.cpp": "std::condition_variable ready;\nready.wait(lock);\n"}, None),
    ("semaphore", {"a.cpp": "std::counting_semaphore<4> s(4);\n"}, "hangs"),
    ("latch", {"a.h": "#include <latch>\n"}, "hangs"),
    ("format", {"a.cpp": "std::format(\"{}\", 1);\n"}, "compilers"),
    ("home folder", {"docs/a.md": "see /home/" "someone/notes\n"}, "one machine"),
    ("user's folder", {"a.cpp": "\"C:\\\\Users\\\\me\"\n"}, "one machine"),
    ("variable before the path", {"run": "cp x \"$prefix/root/y\"\n"}, None),
    ("registry", {"setup": "curl https://proxy.example/x\n"}, "registry"),
    ("undone", {"a.cpp": "// TO" "DO later\n"}, "undone"),
    ("outside note", {"a.cpp": "// see Part 2" ".1\n"}, "not in the repository"),
    ("something older", {"a.h": "// as it always" " was\n"}, "older"),
    ("words that somebody knows", {"docs/a.md": "the product's " "own text\n"}, "older"),
    ("a term of DDS", {"DDSTextureLoader/a.h": "// the legacy header\n", "a.cpp": "// the original order\n"}, None),
    ("the same elsewhere", {"a.h": "// the legacy header\n"}, "older"),
    ("a test named otherwise", {"a.cpp": "TEST(PackFile, ReadsIt)\n"}, "lowerCamelCase"),
    ("a test with its sentence", {"a.cpp": "TEST_F(pack_file, readsIt)\n"}, None),
    ("a page that nobody has", {"a.cpp": "// as the speci" "fication says\n"}, "which page"),
    ("of a compressed format", {"Korvane/textures/block_bits.h": "// the speci" "fication\n"}, None),
    ("too long", {"a.cpp": "\n" * (LONGEST_FILE_LINES + 1)}, "split"),
    ("as long as allowed", {"a.cpp": "\n" * LONGEST_FILE_LINES}, None),
]

if __name__ == "__main__":
    source_tree.main(find, TREES)

#!/usr/bin/env python3
"""Compiles every header alone: portable ones with the native compiler, those for Windows with the cross-compiler. A
header that leans on what its users happen to include first does not pass."""

import concurrent.futures
import os
import shutil
import subprocess

import includes
import source_tree

WARNINGS = ["-Wall", "-Wextra", "-Wconversion", "-Wsign-conversion", "-Werror"]
WINDOWS = ["-DUNICODE", "-D_UNICODE", "-DNOMINMAX", "-DWIN32_LEAN_AND_MEAN", "-D_WIN32_WINNT=0x0A00"]
# Compiled to objects, which are thrown away: syntax alone is not what the compiler cache keeps.
CACHE = [path] if (path := shutil.which("ccache")) else []
HERE = os.path.dirname(os.path.abspath(__file__))


def compile_alone(root, header, is_windows):
    deps = os.path.join(HERE, "..", "..", "build", "deps", "windows" if is_windows else "native", "include")
    stem = os.path.join(root, "build", "header-checks", header.replace("/", "-"))
    with open(stem + ".cpp", "w", encoding="utf-8") as file:
        file.write(f'#include "{header}"\n')
    command = (["x86_64-w64-mingw32-g++-posix"] + WINDOWS) if is_windows else ["g++"]
    command += ["-std=c++20", "-O0", "-I.", "-isystem", os.path.realpath(deps), "-c", stem + ".cpp", "-o", stem + ".o"]
    result = subprocess.run(CACHE + command + WARNINGS, cwd=root, env=dict(os.environ, CCACHE_BASEDIR=root),
                            capture_output=True, text=True, check=False)
    if result.returncode == 0:
        os.remove(stem + ".o")
        return None
    lines = [line for line in result.stderr.splitlines() if "error" in line]
    return f"{header}:1: does not compile alone: {(lines or result.stderr.splitlines() or ['?'])[0]}"


def find(root):
    stems = includes.windows_sources(root)
    os.makedirs(os.path.join(root, "build", "header-checks"), exist_ok=True)
    headers = [path for path in source_tree.files(root, (".h",))]
    with concurrent.futures.ThreadPoolExecutor(max_workers=os.cpu_count() or 2) as pool:
        jobs = [pool.submit(compile_alone, root, path, includes.is_windows(root, path, stems)) for path in headers]
        yield from filter(None, (job.result() for job in jobs))


TREES = [
    ("complete", {"Korvane/models/a.h": "#pragma once\n#include <string>\nstd::string name();\n"}, None),
    ("missing include", {"Korvane/models/a.h": "#pragma once\nstd::string name();\n"}, "does not compile alone"),
    ("missing Windows include", {"Korvane/app/a.h": "#pragma once\nHWND window();\n"}, "does not compile alone"),
]

if __name__ == "__main__":
    source_tree.main(find, TREES)

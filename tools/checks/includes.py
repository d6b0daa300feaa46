#!/usr/bin/env python3
"""Reads every #include and complains about one that runs upward or sideways between the floors, and about a portable
file that includes a Windows file or a platform header (CONTRIBUTING.md, "Floors")."""

import os
import posixpath
import re

import source_tree

# The floors, lowest first. A folder may include from itself and from the rows above its own in this list.
FLOORS = [
    {"EASY_GUI/services"},
    {"EASY_GUI/win32"},
    {"Korvane/models", "Korvane/archives", "DDSTextureLoader"},
    {"Korvane/animation", "Korvane/game", "Korvane/textures"},
    {"Korvane/posing", "Korvane/scene"},
    {"Korvane/document", "D3D11_RENDER_LIB", "tools/demo_data"},
    {"Korvane/fbx/container"},
    {"Korvane/fbx/scene"},
    {"Korvane/fbx/export"},
    {"Korvane/fbx/convert", "Korvane/gltf"},
    {"Korvane/jobs"},
    {"Korvane/presenters"},
    {"Korvane/viewer"},
    {"Korvane/cli"},
    {"Korvane/app"},
]
BESIDE = ("tests", "fuzz", "bench", "tools")  # may include everything; nothing of the program includes them
WINDOWS = ("EASY_GUI/win32/", "Korvane/app/", "tests/windows/", "tools/shader_compiler/shader_compiler.cpp")

INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*(["<])([^">]+)[">]', re.MULTILINE)
WINDOWS_HEADER = re.compile(
    r"^(windows|windowsx|winuser|winbase|commctrl|commdlg|objbase|objidl|ole2|oleidl|shobjidl|shobjidl_core|shlobj|"
    r"shellapi|shlwapi|shellscalingapi|richedit|uxtheme|dwmapi|combaseapi|unknwn|psapi|tlhelp32|io|conio|direct\.h|"
    r"d3d\w*|dxgi\w*|dxguid|directx\w*)(\.h)?$|^wrl/", re.IGNORECASE)
POSIX_HEADER = re.compile(r"^(unistd|fcntl|dirent|dlfcn|pthread|sys/\w+)\.h$")


def floor(folder):
    for number, row in enumerate(FLOORS):
        if folder in row:
            return number
    return None


def windows_sources(root):
    """Sources that a CMakeLists.txt names for Windows only, without their endings and "_win"."""
    stems = set()
    for path in source_tree.files(root, ("CMakeLists.txt",)):
        folder = posixpath.dirname(path)
        blocks = []  # True inside if(WIN32), False inside its else(), None in other blocks
        for line in source_tree.text(root, path).splitlines():
            word = re.match(r"\s*(if|else|endif)\s*\(\s*(.*?)\s*\)", line)
            if word and word[1] == "if":
                blocks.append({"WIN32": True, "NOT WIN32": False}.get(word[2]))
            elif word and word[1] == "else" and blocks:
                blocks[-1] = None if blocks[-1] is None else not blocks[-1]
            elif word and word[1] == "endif" and blocks:
                blocks.pop()
            elif True in blocks:
                for source in re.findall(r"[\w/.]+\.cpp", line):
                    stems.add(stem(posixpath.join(folder, source)))
    return stems


def stem(path):
    base = path.rsplit(".", 1)[0]
    return base[:-4] if base.endswith("_win") else base


def is_windows(root, path, stems):
    if path.startswith(WINDOWS) or path.endswith(("_win.cpp", "_win.h")):
        return True
    if path.endswith("_posix.cpp") or stem(path) not in stems:
        return False
    # "x_win.cpp" is the Windows half of a portable "x.cpp" and header, unless there is no portable half.
    has_portable_half = path.endswith(".h") and os.path.exists(os.path.join(root, stem(path) + "_posix.cpp"))
    is_half = os.path.exists(os.path.join(root, stem(path) + "_win.cpp"))
    has_other = os.path.exists(os.path.join(root, stem(path) + ".cpp"))
    return not has_portable_half and not (is_half and has_other)


def find(root):
    stems = windows_sources(root)
    for path in source_tree.files(root, source_tree.CPP_ENDINGS):
        folder = posixpath.dirname(path)
        here = floor(folder)
        is_beside = path.startswith(tuple(name + "/" for name in BESIDE)) and here is None
        if here is None and not is_beside:
            yield f"{path}:1: the folder {folder} has no floor: add it to tools/checks/includes.py"
            continue
        source = source_tree.text(root, path)
        for match in INCLUDE.finditer(source):
            kind, name = match[1], match[2]
            place = f"{path}:{source.count(chr(10), 0, match.start(2)) + 1}"
            if kind == "<":
                if WINDOWS_HEADER.match(name) and not is_windows(root, path, stems):
                    yield f"{place}: a portable file includes the Windows header <{name}>"
                if POSIX_HEADER.match(name) and not (
                        path.endswith("_posix.cpp") or path.startswith("fuzz/") or is_windows(root, path, stems)):
                    yield f"{place}: a portable file includes the platform header <{name}>"
                continue
            if not os.path.exists(os.path.join(root, name)) or ".." in name:
                yield f"{place}: \"{name}\" is no path from the root of the repository"
                continue
            target = posixpath.dirname(name)
            there = floor(target)
            if not is_beside and target != folder and (there is None or there >= here):
                direction = "outside the floors" if there is None else "sideways" if there == here else "upward"
                yield f"{place}: \"{name}\" runs {direction} from {folder}"
            if is_windows(root, name, stems) and not is_windows(root, path, stems):
                yield f"{place}: a portable file includes \"{name}\", which is for Windows only"


MIXED = "korvane_library(a\n  mesh.cpp)\nif(WIN32)\n  korvane_library(b\n    device.cpp)\nendif()\n"
TREES = [
    ("downward", {"EASY_GUI/services/a.h": "", "Korvane/models/b.h": '#include "EASY_GUI/services/a.h"\n'}, None),
    ("upward", {"Korvane/models/b.h": "", "EASY_GUI/services/a.h": '#include "Korvane/models/b.h"\n'}, "upward"),
    ("sideways", {"Korvane/models/b.h": "", "Korvane/archives/a.h": '#include "Korvane/models/b.h"\n'}, "sideways"),
    ("program includes tests", {"tests/support/b.h": "", "Korvane/cli/a.cpp": '#include "tests/support/b.h"\n'},
     "outside the floors"),
    ("not from the root", {"Korvane/models/b.h": "", "Korvane/models/a.h": '#include "b.h"\n'}, "no path from the root"),
    ("Windows header", {"Korvane/models/a.cpp": "# include <windows.h>\n"}, "Windows header"),
    ("Direct3D header in a test", {"tests/models/a.cpp": "#include <d3d11.h>\n"}, "Windows header"),
    ("Windows half", {"EASY_GUI/services/a_win.cpp": "#include <windows.h>\n"}, None),
    ("POSIX header", {"EASY_GUI/services/a.cpp": "#include <unistd.h>\n"}, "platform header"),
    ("source for Windows", {"D3D11_RENDER_LIB/CMakeLists.txt": MIXED,
                            "D3D11_RENDER_LIB/device.cpp": "#include <d3d11.h>\n"}, None),
    ("portable source beside it", {"D3D11_RENDER_LIB/CMakeLists.txt": MIXED,
                                   "D3D11_RENDER_LIB/mesh.cpp": "#include <d3d11.h>\n"}, "Windows header"),
    ("Windows file behind a portable one", {"D3D11_RENDER_LIB/CMakeLists.txt": MIXED,
                                            "D3D11_RENDER_LIB/device.h": "#include <d3d11.h>\n",
                                            "D3D11_RENDER_LIB/mesh.cpp": '#include "D3D11_RENDER_LIB/device.h"\n'},
     "for Windows only"),
    ("unknown folder", {"Korvane/new_folder/a.h": ""}, "has no floor"),
]

if __name__ == "__main__":
    source_tree.main(find, TREES)

#!/usr/bin/env python3
"""compare_scenes.py PROGRAM FOLDER: compares `PROGRAM fbx --scene` with values of an independent reader.

FOLDER/expected.json names the files in FOLDER/good and what each must hold, and those in FOLDER/broken, which must be
refused with one line. Sample files do not lie in this tree; a run by hand, not part of ./test.
"""

import json
import math
import os
import subprocess
import sys

TOLERANCE = 1e-4
SCENE_KEYS = ("unit_meters", "axes", "fps", "node_count", "mesh_count")
MESH_KEYS = ("name", "node", "instances", "control_points", "corners", "faces", "triangles", "has_normals", "uv_sets",
             "first_points", "last_point", "skins")
TAKE_KEYS = ("name", "time_begin", "time_end", "layers", "curve_count", "animated_nodes")


def run(program, *arguments):
    return subprocess.run([program, "--quiet", "fbx", *arguments], stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                          timeout=60, check=False)


def is_equal(got, want):
    if isinstance(want, bool) or not isinstance(want, (int, float)):
        if isinstance(want, list):
            return isinstance(got, list) and len(got) == len(want) and all(map(is_equal, got, want))
        if isinstance(want, dict):
            return isinstance(got, dict) and all(key in got and is_equal(got[key], want[key]) for key in want)
        return got == want
    if not isinstance(got, (int, float)):
        return False
    return abs(got - want) <= TOLERANCE * max(1, abs(want))


def radians(degrees):
    return [math.radians(angle) for angle in degrees]


def is_same_rotation(got, want):
    return is_equal(got, want) or is_equal([-number for number in got], want)


class comparison:
    def __init__(self):
        self.differences = []
        self.count = 0

    def check(self, what, got, want, equal=is_equal):
        self.count += 1
        if not equal(got, want):
            self.differences.append(f"{what}: {json.dumps(got)[:300]}, expected {json.dumps(want)[:300]}")

    def transform(self, what, got, want):
        self.check(what + " t", got["t"], want["t"])
        self.check(what + " r", got["r"], want["r"], is_same_rotation)
        self.check(what + " s", got["s"], want["s"])

    def nodes(self, got, want):
        """The order of the nodes may differ, those of equal path must come in the same one."""
        self.check("paths", sorted(node["path"] for node in got), sorted(node["path"] for node in want))
        left = {}
        for node in got:
            left.setdefault(node["path"], []).append(node)
        for node in want:
            if not left.get(node["path"]):
                continue
            found = left[node["path"]].pop(0)
            what = "node " + node["path"]
            for key in ("type", "order", "inherit"):
                self.check(f"{what} {key}", found.get(key), node[key])
            self.transform(what, found["local"], node["local"])
            self.check(what + " world", found["world"], node["world"])
            self.check(what + " geometric", "geometric" in found, "geometric" in node)
            if "geometric" in found and "geometric" in node:
                self.transform(what + " geometric", found["geometric"], node["geometric"])

    def samples(self, what, got, want):
        found = {(entry["node"], round(key["time"], 9)): key for entry in got for key in entry["keys"]}
        for entry in want:
            for key in entry["keys"]:
                mine = found.get((entry["node"], round(key["time"], 9)))
                place = f"{what}, {entry['node']} at {key['time']}"
                if mine is None:
                    self.differences.append(place + ": no sample")
                    continue
                self.transform(place, mine, key)
                self.check(place + " lcl_rot", radians(mine["lcl_rot"]), radians(key["lcl_rot"]))

    def takes(self, got, want):
        self.check("takes", [take["name"] for take in got], [take["name"] for take in want])
        for mine, take in zip(got, want):
            what = f"take {take['name']}"
            for key in TAKE_KEYS:
                if key in take:
                    self.check(f"{what} {key}", mine.get(key), take[key])
            if "key_begin" in take:
                self.check(what + " keys", [mine["key_begin"], mine["key_end"]], [take["key_begin"], take["key_end"]])
            self.samples(what, mine.get("samples", []), take.get("samples", []))

    def scene(self, got, want):
        for key in SCENE_KEYS:
            self.check(key, got.get(key), want[key])
        self.check("bones", sorted(got["bones"]), sorted(want["bones"]))
        order = lambda entry: (entry["name"], entry.get("control_points", 0))
        self.check("top_level", sorted(got["top_level"], key=order), sorted(want["top_level"], key=order))
        self.nodes(got["nodes"], want["nodes"])
        self.check("meshes", len(got["meshes"]), len(want["meshes"]))
        for index, (mine, mesh) in enumerate(zip(got["meshes"], want["meshes"])):
            for key in MESH_KEYS:
                if key in mesh:
                    self.check(f"mesh {index} {key}", mine.get(key), mesh[key])
        self.check("poses", got["poses"], want["poses"])
        self.takes(got["takes"], want["takes"])


def compare_good(program, path, want):
    result = comparison()
    times = {key["time"] for take in want["takes"] for entry in take.get("samples", []) for key in entry["keys"]}
    arguments = [word for time in sorted(times) for word in ("--at", repr(time))]
    done = run(program, path, "--scene", *arguments)
    if done.returncode != 0:
        result.differences.append("is not read: " + done.stderr.decode().strip())
        return result
    result.scene(json.loads(done.stdout), want)
    imported = run(program, path, "--json")
    names = [mesh["name"] for mesh in json.loads(imported.stdout)["meshes"]]
    result.check("imported meshes", len(names), want["top_level_meshes"])
    return result


def compare_broken(program, path):
    result = comparison()
    for options in ((), ("--scene",)):
        done = run(program, path, *options)
        lines = done.stderr.decode().splitlines()
        result.check(f"exit status {options}", done.returncode, 1)
        result.check(f"one line {options}", len(lines), 1)
        result.check(f"no output {options}", done.stdout.decode(), "")
    print(f"     {os.path.basename(path)}: {lines[0] if lines else ''}".replace(path, "..."))
    return result


def main():
    program, folder = sys.argv[1:3]
    with open(os.path.join(folder, "expected.json"), encoding="utf-8") as file:
        expected = json.load(file)
    bad = checks = 0
    for kind in ("good", "broken"):
        for name in sorted(expected[kind]):
            path = os.path.join(folder, kind, name)
            result = (compare_good(program, path, expected[kind][name]) if kind == "good" else
                      compare_broken(program, path))
            checks += result.count
            bad += bool(result.differences)
            print(("FAIL " if result.differences else "ok   ") + f"{kind}/{name}: {result.count} values")
            for difference in result.differences[:12]:
                print("       " + difference)
    print(f"{len(expected['good']) + len(expected['broken'])} files, {checks} values compared, {bad} files differ")
    return 1 if bad else 0


if __name__ == "__main__":
    sys.exit(main())

#!/usr/bin/env python3
"""korvane anim sample against an evaluation of its own in Python; called as cli_tests.py is."""

import json
import os
import random
import struct
import unittest

import anim_oracle
import cli_tests
from anim_oracle import NONE, quantised
from cli_tests import korvane

BONES = [(b"root", -1), (b"spine", 0), (b"arm", 1), (b"hand", 2), (b"leg", 0), (b"sword", -1)]


def turn(random_numbers):
    return quantised([random_numbers.uniform(-1, 1) for _ in range(3)], random_numbers.uniform(-180, 180))


def move(random_numbers):
    return tuple(random_numbers.uniform(-2, 2) for _ in range(3))


def rig(version=5, bones=BONES, seed=1):
    numbers = random.Random(seed)
    everything = range(len(bones))
    pose = [move(numbers) for _ in everything], [turn(numbers) for _ in everything]
    return anim_oracle.make(version, bones, everything, everything, [pose], end=0.0)


def clip(version, seed, frames=5, **options):
    """Tracks for some bones; rotations turn far, hardly at all, and by way of the negative quaternion."""
    numbers = random.Random(seed)
    translation_map, rotation_map = [0, NONE, 8999, 9000, NONE, 1], [0, 1, 2, NONE, 0xFFFF0000, NONE]
    still = quantised((1, 2, 3), 30)
    list_of_frames = []
    for frame in range(frames):
        small = quantised((1, 0, 0), 40 + 0.2 * frame)
        if frame % 2:
            small = tuple(-c for c in small)
        list_of_frames.append(([move(numbers) for _ in range(3)], [turn(numbers), still, small, turn(numbers)]))
    return anim_oracle.make(version, BONES, translation_map, rotation_map, list_of_frames, **options)


class anim_sample(cli_tests.cli_case):
    def compare(self, actual, expected, where):
        self.assertEqual(len(actual), len(expected), where)
        for a, e in zip(actual, expected):
            self.assertEqual(a["name"], e["name"], where)
            for key in ("translation", "rotation", "world_translation", "world_rotation"):
                self.assertEqual(len(a[key]), len(e[key]), where)
                for x, y in zip(a[key], e[key]):
                    self.assertLess(abs(x - y), 1e-5, "%s, %s, %s: %s != %s" % (where, a["name"], key, a[key], e[key]))

    def check(self, skeleton, anim, times=(), frames=(), options=()):
        skeleton_path, anim_path = self.write("rig01.anim", skeleton), self.write("clip.anim", anim)
        skeleton, anim = anim_oracle.Anim(skeleton), anim_oracle.Anim(anim)
        calls = [[part for time in times for part in ("--time", repr(time))]] if times else []
        calls += [["--frame", str(frame), "--fraction", repr(fraction)] for frame, fraction in frames]
        expected = [[anim_oracle.place(time, anim) for time in times]] if times else []
        expected += [[pair] for pair in frames]
        for arguments, places in zip(calls, expected):
            out = korvane("anim", "sample", anim_path, "--skeleton", skeleton_path, "--json", *arguments, *options,
                          check=0)[1]
            poses = json.loads(out)
            self.assertEqual(len(poses), len(places))
            for pose, (frame, fraction) in zip(poses, places):
                where = "frame %d + %g" % (frame, fraction)
                self.assertEqual(pose["frame"], frame, where)
                self.assertLess(abs(pose["fraction"] - fraction), 1e-5, where)
                self.compare(pose["bones"], anim_oracle.sample(skeleton, anim, frame, fraction), where)

    def test_poses_equal_an_independent_evaluation(self):
        times = (0.0, 0.01, 0.05, 0.0625, 0.125, 0.16, 0.1999)
        frames = [(0, 0.0), (1, 0.5), (2, 1.0), (3, 0.999), (4, 0.0), (4, 0.25), (4, 1.0)]
        statics = [(1.0, 2.0, 3.0)] * 12, [quantised((0, 1, 0), 80)] * 2
        for name, skeleton, anim in (
                ("version 5", rig(), clip(5, 11)),
                ("version 7, with static values", rig(7), clip(7, 12, statics=statics)),
                ("version 7, with a second name", rig(7, seed=5), clip(7, 13, sub_name=b"variant")),
                ("versions mixed", rig(7), clip(5, 14))):
            with self.subTest(name):
                self.check(skeleton, anim, times, frames)

    def test_times_go_round(self):
        self.check(rig(), clip(7, 21, end=0.25), (0.25, 0.26, 1.3125, 1e6 + 0.0625, -0.0625, -0.25, -7.1))
        # An end time beyond the last frame: from there the last frame blends into the first.
        self.check(rig(), clip(5, 22, frames=3, end=0.5), (0.0625, 0.11, 0.1125, 0.4))
        self.check(rig(), clip(5, 23, frames=9, rate=24.5), (0.1, 0.3, 0.32))

    def test_one_frame_stands_still_and_none_is_the_bind_pose(self):
        self.check(rig(), clip(7, 31, frames=1, end=0.0625), (0.0, 0.03125), [(0, 0.5)])
        self.check(rig(), clip(5, 32, frames=0, end=1.0), (0.0,), [(0, 0.0)])
        # An end time of 0 leaves only frame 0.
        self.write("clip.anim", clip(5, 33, end=0.0))
        self.write("rig01.anim", rig())
        poses = json.loads(korvane("anim", "sample", self.path("clip.anim"), "--skeleton", self.path("rig01.anim"),
                                   "--time", "0.125", "--json", check=0)[1])
        self.assertEqual((poses[0]["frame"], poses[0]["fraction"]), (0, 0))

    def test_damaged_trees_are_posed_as_far_as_they_hang_together(self):
        for parents in ((-1, 0, 7, 2, -5, 4), (-1, 1, 1, 2, 0, 4), (-1, 2, 3, 1, 3, 4), (5, 0, 1, 2, 3, 4),
                        (3, -1, 0, 5, 1, 0)):
            with self.subTest(parents=parents):
                bones = [(name, parent) for (name, _), parent in zip(BONES, parents)]
                self.check(rig(bones=bones), clip(5, 41), (0.06,))
                self.check(rig(bones=bones), clip(5, 41), (0.06,), options=["--quiet"])
        err = korvane("anim", "sample", self.path("clip.anim"), "--skeleton", self.path("rig01.anim"), check=0)[2]
        self.assertEqual(err.count(b"\n"), 1, err)
        self.assertIn(b"tree", err)

    def test_skeletons_smaller_and_larger_than_the_animation(self):
        self.check(rig(bones=BONES[:3]), clip(5, 51), (0.06,))
        self.check(rig(bones=BONES + [(b"cape", 1), (b"t\xc3\xa4schchen", 6)]), clip(7, 52), (0.06,))

    def test_the_bind_pose(self):
        skeleton = rig(7)
        path = self.write("rig01.anim", skeleton)
        expected = anim_oracle.sample(anim_oracle.Anim(skeleton), None, 0, 0)
        for arguments in (["--bind"], []):
            poses = json.loads(korvane("anim", "sample", "--skeleton", path, "--json", *arguments, check=0)[1])
            self.assertEqual((len(poses), poses[0]["frame"], poses[0]["fraction"]), (1, 0, 0))
            self.compare(poses[0]["bones"], expected, "bind pose")

    def test_text(self):
        skeleton = anim_oracle.make(5, BONES[:3] + [(b"cl\xc3\xb3ak", -1)], range(4), range(4), [
            ([(0, 1, 0), (0, 0.5, 0), (-0.25, 0, 0), (-1e30, 0.0001, -0.0001)],
             [(0, 0, 0, 32767), quantised((0, 0, 1), -90), (0, 0, 0, 32767), (0, 0, 0, 32767)])])
        anim = anim_oracle.make(5, BONES[:1], [0], [NONE], [([(0, 1, 0)], []), ([(-2, 1, 0)], [])], end=0.05)
        skeleton, anim = self.write("rig.anim", skeleton), self.write("walk.anim", anim)
        out = korvane("anim", "sample", anim, "--skeleton", skeleton, "--time", "0.0125", "--time", "0.0875",
                      check=0)[1].decode("utf-8")
        lines = out.split("\n")
        self.assertEqual(lines[0], "frame 0 + 0.25 of 0 to 1, at 0.0125 s of 0.05 s, 20 frames a second")
        self.assertEqual(lines[8], "frame 0 + 0.75 of 0 to 1, at 0.0875 s of 0.05 s, 20 frames a second")
        self.assertEqual([line.rstrip() for line in lines[3:7]], [
            "root         0.500    1.000    0.000      0.0     0.0     0.0    0.500    1.000    0.000",
            "\u2514\u2500 spine     0.000    0.500    0.000      0.0     0.0    90.0    0.500    1.500    0.000",
            "   \u2514\u2500 arm    0.250    0.000    0.000      0.0     0.0     0.0    0.500    1.750    0.000",
            "cl\u00f3ak        1e+30    0.000    0.000      0.0     0.0     0.0    1e+30    0.000    0.000"])
        for frames, end, time, head in ((4, 4.0, 3.99999, "frame 3 + 0.9998 of 0 to 3 (79 is behind the last), at 3.99999"),
                                        (20, 2.0, 0.1500001, "frame 3 of 0 to 19, at 0.15 s of 2 s"),
                                        (0, 1.0, 0.5, "bind pose, for there are no frames, at 0.5 s of 1 s")):
            path = self.write("odd.anim", anim_oracle.make(5, BONES[:1], [0], [NONE], [([(0, 1, 0)], [])] * frames, end=end))
            out = korvane("anim", "sample", path, "--skeleton", skeleton, "--time", repr(time), check=0)[1]
            self.assertTrue(out.decode("utf-8").startswith(head), out)
        out = korvane("anim", "sample", "--bind", "--skeleton", skeleton, check=0)[1]
        self.assertTrue(out.startswith(b"bind pose\nbone "), out)

    def test_wrong_command_lines_and_files(self):
        skeleton, anim = self.write("rig01.anim", rig()), self.write("clip.anim", clip(5, 61))
        both = [anim, "--skeleton", skeleton]
        for arguments in ([], ["--bind"], both + ["--bind"], ["--skeleton", skeleton, "--time", "0"],
                          ["--skeleton", skeleton, "--frame", "0"], both + ["--fraction", "0.5"],
                          both + ["--frame", "1", "--fraction", "1.5"], both + ["--frame", "1", "--fraction", "nan"],
                          both + ["--frame", "-1"], both + ["--time", "inf"], both + ["--time", "soon"],
                          both + ["--time"], both + [anim], both + ["--skeleton", ""]):
            with self.subTest(arguments=arguments):
                self.expect_failure(["anim", "sample"] + arguments, 2)
        self.expect_failure(["anim"], 2)
        self.expect_failure(["anim", "sample"] + both + ["--frame", "5"], 1, "clip.anim", "frame 5", "4")
        self.expect_failure(["anim", "sample", self.path("none.anim"), "--skeleton", skeleton], 1, "none.anim")
        self.expect_failure(["anim", "sample", anim, "--skeleton", self.path("none.anim")], 1, "none.anim")
        self.write("cut.anim", clip(5, 61)[:-1])
        self.expect_failure(["anim", "sample", self.path("cut.anim"), "--skeleton", skeleton], 1, "cut.anim", "byte")
        self.write("empty.cfg", b"")
        self.expect_failure(["anim", "sample", anim, "--config", self.path("empty.cfg")], 1, "rig01.anim", "--skeleton")

    def pack(self, name, path, data):
        index = struct.pack("<I", len(data)) + path + b"\0"
        self.write(name, b"PFH4" + struct.pack("<5I", 0, 1, 2, 1, len(index)) + bytes(4) + b"x\0" + index + data)

    def test_the_skeleton_comes_out_of_the_archives(self):
        skeleton, anim = rig(), clip(5, 71, skeleton=b"Rig01")
        self.pack("base.pack", b"animations\\skeletons\\rig01.anim", skeleton)
        os.mkdir(self.path("more"))
        self.pack(os.path.join("more", "more.pack"), b"animations\\walk.anim", anim)
        data = ["--data", self.folder, "--data", self.path("more"), "--json", "--quiet"]
        disk = self.write("walk.anim", anim)
        named = korvane("anim", "sample", disk, "--skeleton", "pack:animations/skeletons/RIG01.anim", *data, check=0)[1]
        for operand in (disk, "pack:animations/walk.anim"):
            self.assertEqual(korvane("anim", "sample", operand, *data, check=0)[1], named)
        other = self.write("other.anim", clip(5, 72, skeleton=b"beast01"))
        self.expect_failure(["anim", "sample", other] + data, 1, "other.anim", "beast01.anim", "--skeleton")
        err = korvane("anim", "sample", other, "--skeleton", disk, check=0)[2]
        self.assertIn(b"beast01", err)


if __name__ == "__main__":
    cli_tests.main()

#!/usr/bin/env python3
"""korvane anim info, dump, bone-table and search; called as cli_tests.py is."""

import json
import math
import os
import shutil
import struct
import tempfile
import unittest

import anim_oracle
import cli_tests
import pack_oracle
from anim_oracle import NONE, quantised
from cli_tests import korvane, same

BONES = [(b"root", -1), (b"spine", 0), (b"arm \xfc", 1), (b"leg", 0)]
TRANSLATIONS = [[(0.5, 1.25, -2.0), (float("nan"), 3.0, 4.0)], [(0.75, 1.5, -2.5), (float("inf"), 3.5, 4.5)]]
ROTATIONS = [[(0, 0, 0, 32767), quantised((1, 2, 3), 50)], [quantised((0, 1, 0), 90), quantised((-1, 0, 2), -120)]]


def clip(version, **options):
    """Two bones move, two turn; in version 7 a third of each stands still."""
    statics = ([(1.0, 2.0, 3.0)], [(0, 16384, 0, 28377)]) if version == 7 else ((), ())
    frames = list(zip(TRANSLATIONS, ROTATIONS))
    return anim_oracle.make(version, BONES, [0, 10000, 1, NONE], [0, NONE, 10000, 8999], frames, statics=statics,
                            **options)


def mirrored(rotation):
    x, y, z, w = (c / 32767.0 for c in rotation)
    return [x, -y, -z, w]


def euler(rotation):
    x, y, z, w = rotation
    pitch = 2 * (w * y - z * x)
    return [math.degrees(angle) for angle in
            (math.atan2(2 * (z * y + w * x), 1 - 2 * (x * x + y * y)),
             math.copysign(math.pi / 2, pitch) if abs(pitch) >= 1 else math.asin(pitch),
             math.atan2(2 * (y * x + w * z), 1 - 2 * (z * z + y * y)))]


class anim_info(cli_tests.cli_case):
    def info(self, path, *options):
        return json.loads(korvane("anim", "info", path, "--json", *options, check=0)[1])

    def near(self, actual, expected, limit=1e-4):
        self.assertEqual(len(actual), len(expected))
        for a, e in zip(actual, expected):
            self.assertLess(abs(a - e), limit, (actual, expected))

    def test_a_text_never_replaces_its_animation(self):
        path = self.write("own.anim", clip(5))
        for command in ("dump", "bone-table"):
            self.expect_failure(["anim", command, path, "-o", path], 1, "replace")
        with open(path, "rb") as file:
            self.assertEqual(file.read(), clip(5))

    def test_what_the_file_says_is_reported(self):
        for version, options in ((5, {}), (7, {}), (7, {"sub_name": b"second"})):
            data = bytearray(clip(version, rate=24.5, end=2.25, **options))
            data[4:8] = struct.pack("<I", 0xFEDCBA98)
            path = self.write("clip%d.anim" % version, data)
            has_statics = version == 7
            expected = {"path": path, "version": version, "header_word": 0xFEDCBA98, "frame_rate": 24.5,
                        "skeleton_name": "rig01", "end_time": 2.25, "bone_count": 4,
                        "translation_map": [0, 10000, 1, NONE], "rotation_map": [0, NONE, 10000, 8999],
                        "animated_translations": [0, 2], "animated_rotations": [0, 3],
                        "static_translations": [[1.0, 2.0, 3.0]] if has_statics else [],
                        "translation_track_count": 2, "rotation_track_count": 2, "frame_count": 2}
            actual = self.info(path)
            if cli_tests.is_windows:
                expected["path"] = actual["path"]
            for key, value in expected.items():
                self.assertTrue(same(actual[key], value), "%s: %s" % (key, actual[key]))
            self.assertEqual([(bone["index"], bone["name"], bone["parent"]) for bone in actual["bones"]],
                             [(0, "root", -1), (1, "spine", 0), (2, "arm \u00fc", 1), (3, "leg", 0)])
            self.assertEqual(len(actual["static_rotations"]), 1 if has_statics else 0)
            for rotation in actual["static_rotations"]:  # as the file has it, not mirrored
                self.near(rotation, [0, 16384 / 32767, 0, 28377 / 32767], 1e-6)
            self.assertEqual(actual.get("sub_name"), options.get("sub_name", b"").decode() if has_statics else None)
            self.assertNotIn("frames", actual)
            self.assertNotIn("bind", actual)

    def test_frames_are_mirrored_and_have_angles(self):
        for version in (5, 7):
            frames = self.info(self.write("clip.anim", clip(version)), "--frames")["frames"]
            self.assertEqual(len(frames), 2)
            for frame, translations, rotations in zip(frames, TRANSLATIONS, ROTATIONS):
                self.assertTrue(same(frame["translations"], [[-x, y, z] for x, y, z in translations]))
                self.assertEqual([len(frame["rotations"]), len(frame["eulers"])], [2, 2])
                for actual, angles, rotation in zip(frame["rotations"], frame["eulers"], map(mirrored, rotations)):
                    self.near(actual, rotation, 1e-6)
                    self.near(angles, euler(rotation), 0.02 if abs(rotation[1]) > 0.7 else 1e-3)

    def test_a_skeleton_has_a_bind_pose_and_a_template_no_frames(self):
        translations, rotations = [(1.0, 2.0, 3.0)] * 4, [quantised((0, 0, 1), 30 * (i + 1)) for i in range(4)]
        for version in (5, 7):
            path = self.write("rig.anim", anim_oracle.make(version, BONES, range(4), range(4),
                                                           [(translations, rotations)]))
            bind = self.info(path, "--as", "skeleton")["bind"]
            self.assertEqual([bone["translation"] for bone in bind], [[-1.0, 2.0, 3.0]] * 4)
            for bone, rotation in zip(bind, rotations):
                self.near(bone["rotation"], mirrored(rotation), 1e-6)
                self.near(bone["euler"], euler(mirrored(rotation)), 1e-3)
            template = self.info(path, "--as", "template")
            self.assertEqual((template["bone_count"], template["frame_count"]), (4, 1))
        cut = anim_oracle.make(5, BONES, range(4), range(4), [(translations, rotations)])[:-16]
        path = self.write("cut.anim", cut)
        self.expect_failure(["anim", "info", path], 1, "cut.anim", "byte")
        self.assertEqual(self.info(path, "--as", "template")["rotation_track_count"], 4)

    def test_the_text_is_a_tree(self):
        path = self.write("clip.anim", clip(7, rate=30.0, end=0.5))
        text = korvane("anim", "info", path, check=0)[1].decode("utf-8")
        self.assertEqual(text.splitlines()[1:], [
            "  made for the skeleton rig01, version 7, header word 1",
            "  2 frames, 30 a second, 0.5 s",
            "  4 bones; 2 translation tracks, 2 rotation tracks",
            "  static: 1 translation, 1 rotation (poses leave such bones in the bind pose)",
            "",
            "  #  bone         translation    rotation track",
            "  0  root         0              0",
            "  1  \u251c\u2500 spine     static 0       -",
            "  2  \u2502  \u2514\u2500 arm \u00fc  1              static 0",
            "  3  \u2514\u2500 leg       -              1"])
        frames = korvane("anim", "info", path, "--frames", check=0)[1].decode("utf-8")
        self.assertTrue(frames.startswith(text + "\nframe 0, 0 s\n"))
        self.assertIn("\nframe 1, 0.0333333 s\n  root                     translation   -0.7500    1.5000   -2.5000\n", frames)

    def test_the_text_of_odd_files(self):
        lost = [(b"a", -1), (b"b", 7), (b"c", 3), (b"d", 2), (b"e\x1b", -1), (b"f", 2)]
        huge = anim_oracle.make(5, lost, range(6), range(6), [([(-1e38, float("nan"), 99999.0)] * 6,
                                                               [(0, 0, 0, 32767)] * 6)], skeleton=b"")
        path = self.write("lost.anim", huge)
        labels = ["a", "e\\x1b", "b (its parent 7 is none of the bones)", "c (its parent 3 leads back to it)",
                  "\u2514\u2500 f", "d (its parent 2 leads back to it)"]
        info, pose = (korvane("anim", *arguments, check=0)[1].decode("utf-8").splitlines() for arguments in
                      (("info", path, "--as", "skeleton"), ("sample", "--skeleton", path)))
        self.assertIn("skeleton without a name", info[1])
        for lines, start in (info[6:], 5), (pose[3:], 0):
            self.assertEqual([line[start:].split("  ")[0] for line in lines], labels)
            for line in lines:  # apart and in line
                self.assertEqual(line[start + len(max(labels, key=len)):].split()[:3], ["1e+38", "nan", "99999"])
                self.assertEqual(len(line), len(lines[0]))
        # Tracks are counted as frames have them; T is smaller than the map says, and R larger.
        odd = anim_oracle.make(7, BONES, [8999, 20, 10001, 9000], [NONE, 5, NONE, NONE],
                               [([(1, 2, 3)], [(0, 0, 0, 32767)] * 3)], statics=([(1, 2, 3)], []), skeleton=b"")
        text = korvane("anim", "info", self.write("odd.anim", odd), check=0)[1].decode("utf-8").splitlines()
        self.assertIn("names no skeleton", text[1])
        self.assertEqual(text[3], "  4 bones; 1 translation track, 3 rotation tracks (2 of no bone)")
        self.assertEqual([line[17:].split("  ", 1)[0].strip() + "|" + line[33:] for line in text[7:]],
                         ["0|-", "cut off|0", "no 10001|-", "no 9000|-"])

    def test_wrong_command_lines_and_files(self):
        path = self.write("clip.anim", clip(5))
        for arguments, text in ((["anim"], "subcommand"), (["anim", "bogus"], "anim bogus"), (["anim", "info"], "ANIM"),
                                (["anim", "info", path, "--as", "model"], "model"), (["anim", "dump", path], "-o"),
                                (["anim", "info", path, "--as", "template", "--frames"], "--frames"),
                                (["anim", "search", ""], "empty")):
            self.expect_failure(arguments, 2, text)
        other = self.write("other.anim", struct.pack("<I", 6) + clip(5)[4:])
        self.expect_failure(["anim", "info", other], 1, "other.anim", "6", "version")
        self.expect_failure(["anim", "info", self.path("none.anim")], 1, "none.anim")
        self.expect_failure(["anim", "info", "pack:none.anim", "--data", self.folder], 1)


class anim_texts(cli_tests.cli_case):
    end = property(lambda self: b"\r\n" if cli_tests.is_windows else b"\n")

    def read(self, name):
        with open(self.path(name), "rb") as file:
            return file.read()

    def test_a_bone_table_has_a_line_for_every_bone(self):
        bones = [(b"root", -1), (b"Left_Thumb", 1), (b"jaw", 1)]
        path = self.write("rig.anim", anim_oracle.make(7, bones, range(3), range(3), [([(0.0, 0.0, 0.0)] * 3,
                                                                                    [(0, 0, 0, 32767)] * 3)]))
        korvane("anim", "bone-table", path, "-o", self.path("rig.bone_table"), check=0)
        lines = self.read("rig.bone_table").split(self.end)
        self.assertEqual(lines[4], b'// Skeleton:"rig01"')
        self.assertEqual(lines[13:], [b"root,         BT_ROOT,                 \t\t\t0",
                                      b"Left_Thumb,   BT_LEFT_HAND,            \t\t\t1",
                                      b"jaw,          BT_FACE,                 \t\t\t2", b""])

    def test_what_stood_there_survives_a_failure(self):
        self.write("kept.txt", b"kept")
        bad = self.write("bad.anim", clip(5)[:-1])
        for command in ("dump", "bone-table"):
            self.expect_failure(["anim", command, bad if command == "dump" else self.path("none"), "-o",
                                 self.path("kept.txt")], 1)
            self.assertEqual(self.read("kept.txt"), b"kept")
            self.expect_failure(["anim", command, self.write("clip.anim", clip(5)), "-o",
                                 self.path(os.path.join("no", "folder"))], 1, "folder")


class demo_animations(cli_tests.cli_case):
    @classmethod
    def setUpClass(cls):
        cls.demo = tempfile.mkdtemp(prefix="korvane-demo-")
        cls.addClassCleanup(shutil.rmtree, cls.demo)
        cli_tests.make_demo(cls.demo)
        cls.data = ["--data", cls.demo, "--quiet"]

    def loose(self, path):
        with open(os.path.join(self.demo, *path.split("\\")), "rb") as file:
            return file.read()

    def test_the_search_finds_what_a_reader_of_its_own_finds_in_the_same_order(self):
        skeletons, animations, copies = [], {"humanoid01": [], "beast01": []}, {}
        for name in ("data_1.pack", "data.pack", "a_demo_mod.pack"):
            with open(os.path.join(self.demo, name), "rb") as file:
                entries = pack_oracle.archive(file.read()).entries
            for entry in entries:
                path = entry.path.lower()
                if not path.endswith(".anim"):
                    continue
                content = pack_oracle.content(entry) if entry.flag == 0 or name != "data.pack" else self.loose(path)
                row = (path, name)
                copies.setdefault(path, []).append(name)
                animations[anim_oracle.Anim(content or self.loose(path)).skeleton.decode()].append(row)
                if path == "animations\\skeletons\\humanoid01.anim":
                    skeletons.append(row)

        def rows(found):
            return [(row["path"], row["archive"].replace("\\", "/").rsplit("/", 1)[-1]) for row in found]
        for name in animations:
            found = json.loads(korvane("anim", "search", name, "--json", *self.data, check=0)[1])
            self.assertEqual(rows(found["animations"]), animations[name])
            self.assertTrue(all(row["overridden"] == (copies[row["path"]][-1] != archive) for row, (_, archive)
                                in zip(found["animations"], rows(found["animations"]))))
            if name == "humanoid01":
                self.assertEqual(rows(found["skeletons"]), skeletons)
        self.assertEqual(len(skeletons), 2)
        self.assertEqual(len(animations["humanoid01"]), 79)
        text = korvane("anim", "search", "humanoid01", *self.data, check=0)[1].decode("utf-8").splitlines()
        self.assertEqual([line for line in text if not line.startswith("  ")],
                         ["skeletons: 2", "animations: 79"])
        self.assertIn("hu1_wave.anim", text[-1])
        self.assertTrue(text[-1].endswith("a_demo_mod.pack"), text[-1])

    def test_letter_case_counts_for_animations(self):
        found = json.loads(korvane("anim", "search", "Humanoid01", "--json", *self.data, check=0)[1])
        self.assertEqual((len(found["skeletons"]), found["animations"]), (2, []))
        self.assertEqual(json.loads(korvane("anim", "search", "no01", "--json", *self.data, check=0)[1]),
                         {"skeletons": [], "animations": []})

    def test_poses_are_those_of_an_evaluation_of_its_own(self):
        folder = "animations\\battle\\"
        for path in ("humanoid01\\walk\\hu1_walk_forward.anim", "humanoid01\\die\\hu1_die_back_v5.anim",
                     "beast01\\run\\be1_gallop.anim"):
            anim = anim_oracle.Anim(self.loose(folder + path))
            skeleton = anim_oracle.Anim(self.loose("animations\\skeletons\\" + path.split("\\")[0] + ".anim"))
            times = [0.0, 0.21, 0.4375]
            out = korvane("anim", "sample", "pack:" + folder + path, "--json", *self.data,
                          *[part for time in times for part in ("--time", repr(time))], check=0)[1]
            for pose, time in zip(json.loads(out), times):
                wanted = anim_oracle.sample(skeleton, anim, *anim_oracle.place(time, anim))
                for bone, expected in zip(pose["bones"], wanted):
                    self.assertEqual(bone["name"], expected["name"])
                    for key in ("world_translation", "world_rotation"):
                        for a, e in zip(bone[key], expected[key]):
                            self.assertLess(abs(a - e), 1e-5, (path, time, bone["name"], key))

    def test_a_dump_names_the_archive(self):
        korvane("anim", "dump", "pack:animations/battle/humanoid01/gesture/hu1_wave.anim", "-o", self.path("wave.txt"),
                *self.data, check=0)
        with open(self.path("wave.txt"), "rb") as file:
            lines = file.read().replace(b"\r", b"").split(b"\n")
        self.assertEqual(lines[1], b"Parent Pack File: a_demo_mod.pack")
        self.assertEqual(lines[2], b"File: animations\\battle\\humanoid01\\gesture\\hu1_wave.anim")
        self.assertEqual(lines[4], b"frame_count: 115")


if __name__ == "__main__":
    cli_tests.main()

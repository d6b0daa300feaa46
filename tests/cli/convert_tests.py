#!/usr/bin/env python3
"""korvane convert as a user types it: animations that were exported come back, files of different programs' spaces give
the same result, which is worked out by hand, and damaged files are refused. Same usage as cli_tests.py."""

import json
import math
import os
import struct
import unittest

import anim_oracle
import cli_tests
import fbx_text
from cli_tests import korvane

NO_TURN = (0, 0, 0, 32767)
ONE = (1, 1, 1)
BONES = ((b"root", -1), (b"arm", 0), (b"prop", 1))
MATCHES_NOTHING = "ERROR: Skeletons do not match, have you selected right files"


def skeleton(bones=BONES, version=5, **more):
    """Every bone has both tracks; bone i stands at (i, 0.5, 0), the last one is turned upside down about X."""
    count = len(bones)
    frame = ([(float(i), 0.5, 0.0) for i in range(count)], [NO_TURN] * (count - 1) + [(32767, 0, 0, 0)])
    return anim_oracle.make(version, bones, range(count), range(count), [frame], rate=30.0, **more)


# In metres, Y up: the root moves a metre along X in a second, the arm two metres above it turns a quarter about Z, the
# prop stands half a metre along the arm's X.
def figure(metre=1.0, **more):
    nodes = [("root", "LimbNode", None, (0, 0, 0), (0, 0, 0), ONE),
             ("arm", "LimbNode", 0, (0, 2 * metre, 0), (0, 0, 0), ONE),
             ("prop", "LimbNode", 1, (0.5 * metre, 0, 0), (0, 0, 0), ONE)]
    keys = {(0, "T"): [(0, (0, 0, 0)), (1, (metre, 0, 0))], (1, "R"): [(0, (0, 0, 0)), (1, (0, 0, 90))]}
    return fbx_text.text(nodes, keys, unit=100 / metre, **more)


def wanted(frame, count=21):
    """As files have it: per bone translation and rotation, relative to the parent."""
    half = math.radians(90 * frame / (count - 1)) / 2
    still = (0, 0, 0, 1)
    return [((frame / (count - 1), 0, 0), still), ((0, 2, 0), (0, 0, math.sin(half), math.cos(half))),
            ((0.5, 0, 0), still)]


# The same motion as other programs would save it: (what, file).
def spaces():
    yield "inches", figure(39.37007874)
    yield "centimetres, a take that begins at two seconds", None
    nodes = [("Armature", "Null", None, (0, 0, 0), (-90, 0, 0), (100, 100, 100)),
             ("root", "LimbNode", 0, (0, 0, 0), (90, 0, 0), ONE),
             ("arm", "LimbNode", 1, (0, 2, 0), (0, 0, 0), ONE), ("prop", "LimbNode", 2, (0.5, 0, 0), (0, 0, 0), ONE)]
    keys = {(1, "T"): [(0, (0, 0, 0)), (1, (1, 0, 0))], (2, "R"): [(0, (0, 0, 0)), (1, (0, 0, 90))]}
    yield "a node above that turns and scales", fbx_text.text(nodes, keys)
    z_up = (("Coord", 0, 1), ("Up", 2, 1), ("Front", 1, -1))
    nodes = [("root", "LimbNode", None, (0, 0, 0), (90, 0, 0), ONE)] + [
        (name, kind, parent - 1, *rest) for name, kind, parent, *rest in nodes[2:]]
    keys = {(node - 1, channel): value for (node, channel), value in keys.items()}
    yield "metres, Z up", fbx_text.text(nodes, keys, unit=100, axes=z_up)
    nodes = [("root", "LimbNode", None, (0, 0, 0), (0, 0, 0), (2, 2, 2)),
             ("prop", "LimbNode", 0, (0.25, 1, 0), (0, 0, 0), ONE),
             ("arm", "LimbNode", 0, (0, 1, 0), (0, 0, 0), (0, 3, 0.001))]
    arc = [(i / 20, math.radians(90 * i / 20)) for i in range(21)]
    keys = {(0, "T"): [(0, (0, 0, 0)), (1, (1, 0, 0))], (2, "R"): [(0, (0, 0, 0)), (1, (0, 0, 90))],
            (1, "T"): [(t, (0.25 * math.cos(a), 1 + 0.25 * math.sin(a), 0)) for t, a in arc],
            (1, "R"): [(0, (0, 0, 0)), (1, (0, 0, 90))]}
    yield "another hierarchy, a scale of nothing", fbx_text.text(nodes, keys, unit=100)
    mirrored = (("Coord", 0, -1), ("Up", 1, 1), ("Front", 2, 1))
    nodes = [("root", "LimbNode", None, (0, 0, 0), (0, 0, 0), ONE), ("arm", "LimbNode", 0, (0, 2, 0), (0, 0, 0), ONE),
             ("prop", "LimbNode", 1, (-0.5, 0, 0), (0, 0, 0), ONE)]
    keys = {(0, "T"): [(0, (0, 0, 0)), (1, (-1, 0, 0))], (1, "R"): [(0, (0, 0, 0)), (1, (0, 0, -90))]}
    yield "left-handed", fbx_text.text(nodes, keys, unit=100, axes=mirrored)


class convert(cli_tests.cli_case):
    def setUp(self):
        super().setUp()
        self.config = self.path("config.cfg")
        self.template = self.write("skeleton.anim", skeleton())
        self.fbx = self.write("figure.fbx", figure())
        self.out = self.path("out.anim")

    def convert(self, *options, fbx=None, template=None, check=0):
        return korvane("convert", fbx or self.fbx, "--template", template or self.template, "-o", self.out,
                       "--config", self.config, *options, check=check)

    def read_out(self):
        with open(self.out, "rb") as file:
            return file.read()

    def made(self):
        return anim_oracle.Anim(self.read_out())

    def assert_near(self, actual, expected, tolerance):
        for a, b in zip(actual, expected):
            self.assertLessEqual(abs(a - b), tolerance, (actual, expected))

    def assert_motion(self, anim, frames):
        self.assertEqual(len(anim.frames), frames)
        for i, (translations, rotations) in enumerate(anim.frames):
            for (moved, turned), (x, y, z), (a, b, c, w) in zip(wanted(i), translations, rotations):
                self.assert_near((-x, y, z), moved, 1e-6)  # the oracle reads into the program's space
                self.assert_near((a, -b, -c, w), turned, 1.01 / 32767)

    def test_the_same_motion_comes_out_of_every_space(self):
        for what, data in spaces():
            with self.subTest(space=what):
                if data is None:
                    late = figure(100).decode().replace("a: 0,%d\n" % fbx_text.TICKS, "a: %d,%d\n" % (
                        2 * fbx_text.TICKS, 3 * fbx_text.TICKS))
                    data = late.encode()
                self.convert(fbx=self.write("space.fbx", data))
                anim = self.made()
                self.assertEqual((anim.version, anim.rate, anim.end, anim.bones), (5, 20.0, 1.0, list(BONES)))
                self.assert_motion(anim, 21)

    def test_what_was_exported_comes_back(self):
        cli_tests.make_demo(self.path("demo"))
        model = self.path("demo/rigidmodels/demo/demo_barrel.rigid_model_v2")
        for name in ("humanoid01/gesture/hu1_wave", "humanoid01/die/hu1_die_back", "humanoid01/stand/hu1_pose_parade",
                     "beast01/run/be1_gallop_v5"):  # static values, all tracks, a single frame, few tracks
            with self.subTest(name=name):
                source = self.path("demo/animations/battle/%s.anim" % name)
                rig = self.path("demo/animations/skeletons/%s.anim" % name.split("/")[0])
                korvane("export", model, "-o", self.path("e.fbx"), "--skeleton", rig, "--anim", source, check=0)
                _, _, err = self.convert("--version", "5", fbx=self.path("e.fbx"), template=source)
                self.assertNotIn(b"no track", err)
                with open(source, "rb") as file:
                    old = anim_oracle.Anim(file.read())
                new = self.made()
                self.assertEqual((new.rate, new.skeleton, new.word, new.bones, new.maps, len(new.frames)),
                                 (old.rate, old.skeleton, old.word, old.bones, old.maps, len(old.frames)))
                for before, after in zip(old.frames, new.frames):
                    for a, b in zip(before[0], after[0]):
                        self.assert_near(a, b, 2e-7)
                    for a, b in zip(before[1], after[1]):
                        self.assert_near(a, b, 1.01 / 32767)

    def test_rate_and_length(self):
        for options, rate, frames, end in (
                ([], 20.0, 21, 1.0), (["--rate", "30", "--end-time", "1.0"], 30.0, 31, 1.0), (["--rate", "29.97"], 29.97, 30, 1.0),
                (["--frames", "5"], 20.0, 5, 0.2), (["--rate", "10", "--end-time", "0.35"], 10.0, 4, 0.35),
                (["--end-time", "0"], 20.0, 1, 0), (["--start-time", "0.75"], 20.0, 6, 0.25),
                (["--rate", "30", "--end-time", "0.7"], 30.0, 22, 0.7)):
            with self.subTest(options=options):
                _, out, _ = self.convert("--json", *options)
                anim = self.made()
                self.assertEqual(len(anim.frames), frames)
                self.assert_near((anim.rate, anim.end), (rate, end), 1e-6)
                report = json.loads(out)
                self.assertEqual((report["frame_count"], report["bone_count"], report["unmatched"], report["log"][-1]),
                                 (frames, 3, [], "Sucess!"))
        self.convert("--start-time", "0.75")
        self.assert_near(self.made().frames[0][0][0], (-0.75, 0, 0), 1e-6)

    def test_the_log_and_the_list_of_converted_files(self):
        data = figure(takes=("walk", "run"))
        _, out, err = self.convert(fbx=self.write("two.fbx", data))
        self.assertEqual(len(out.splitlines()), 1)
        lines = err.decode().splitlines()
        listed = ["Starting new Anim File....", "Reading .FBX file: " + self.path("two.fbx"), "Importimg Scene... ",
                  "Performing unit/scale calculation...", "2 number of animation stacks/takes...",
                  "FBBX Animation Take 0: walk", "Converting FBX bone hierachy (tree) to linear data",
                  "FBX conversion process completed", "Sucess!"]
        self.assertEqual([line for line in lines if line in listed], listed)
        self.assertIn("run", [line for line in lines if "Only the first take" in line][0])
        self.convert("--quiet")  # the same file is listed once
        values = json.loads(korvane("config", "--json", "--config", self.config, check=0)[1])
        self.assertEqual(len(values["fbx_converted_files"]), 1)
        self.assertTrue(values["fbx_converted_files"][0].replace("\\", "/").endswith(self.out.lower()), values)
        damaged = b"data_paths = \"d\"; - lost = \"x\";"
        self.write("config.cfg", damaged)
        _, _, err = self.convert("--quiet")
        with open(self.config, "rb") as file:
            self.assertEqual(file.read(), damaged)

    def test_bones_without_a_match(self):
        bones = (*BONES, (b"horn", 1))
        template = self.write("horned.anim", skeleton(bones))
        _, out, err = self.convert("--json", template=template)
        self.assertEqual(json.loads(out)["unmatched"], ["horn"])
        self.assertIn("EROOR: .ANMIM. Bone 'horn' does not match any bones in FBX file: " + self.fbx, err.decode())
        anim = self.made()
        self.assert_motion(anim, 21)
        for translations, rotations in anim.frames:  # as in the template's first frame
            self.assert_near(translations[3], (-3, 0.5, 0), 1e-6)
            self.assert_near(rotations[3], (1, 0, 0, 0), 1e-6)
        others = tuple((name + b"_x", parent) for name, parent in BONES)
        before = self.read_out()
        _, out, err = self.convert("--json", template=self.write("others.anim", skeleton(others)), check=1)
        lines = err.decode().splitlines()
        self.assertEqual((out, lines[-3:-1]), (b"", [MATCHES_NOTHING, "Failure"]))
        self.assertTrue(lines[-1].startswith("korvane: ") and lines[-1].endswith(MATCHES_NOTHING), lines[-1])
        self.assertEqual(self.read_out(), before)

    def test_a_take_is_chosen_by_name_or_number(self):
        def of_second(data):  # what moves, moves in the second take
            return data.replace(b",300\n", b",301\n").replace(b'"OO",301,200', b'"OO",301,201')
        fbx = self.write("two.fbx", of_second(figure(takes=("walk", "0"))))
        for take, name, frames in ((None, "walk", 1), ("walk", "walk", 1), ("1", "0", 21), ("0", "0", 21)):
            with self.subTest(take=take):
                _, out, _ = self.convert("--json", *(("--take", take) if take else ()), fbx=fbx)
                report = json.loads(out)
                self.assertEqual((report["take"], report["frame_count"]), (name, frames))
        for take in ("2", "run", "-1"):
            self.assertIn(b'only: walk, 0', self.convert("--take=" + take, fbx=fbx, check=1)[2].splitlines()[-1])

    def test_a_prefix_that_all_bones_have_is_taken_off(self):
        def named(before, **more):
            data = figure(**more)
            for name, _ in BONES:
                data = data.replace(b'"Model::%s"' % name, b'"Model::%s%s"' % (before, name))
            return self.write("named.fbx", data)
        for before in (b"rig:", b"mixamorig:", b"a:b:", b"Bip01_", b"rig.|"):
            with self.subTest(before=before):
                _, out, err = self.convert("--json", fbx=named(before))
                report = json.loads(out)
                self.assertEqual((report["prefix"], report["unmatched"]), (before.decode(), []))
                self.assertIn(b'The prefix "%s" is taken off' % before, err)
                self.assert_motion(self.made(), 21)
                self.assertIn(MATCHES_NOTHING.encode(), self.convert("--prefix", "none", fbx=named(before), check=1)[2])
        for before, options, status in ((b"rig", (), 1), (b"rig", ("--prefix", "rig"), 0), (b"", (), 0), (b"", ("--prefix", "x:"), 0)):
            _, out, err = self.convert("--json", *options, fbx=named(before), check=status)
            self.assertEqual(b"begins with the prefix" in err, "x:" in options)
        template = self.write("named.anim", skeleton(tuple((b"rig:" + name, parent) for name, parent in BONES)))
        _, out, _ = self.convert("--json", fbx=named(b"rig:"), template=template)  # it is part of the names
        self.assertEqual((json.loads(out)["prefix"], json.loads(out)["unmatched"]), ("", []))

    def test_a_file_in_which_hardly_anything_moves_is_told(self):
        few = "Less than half of the bones that move match: 1 of 4; the others stand still"
        lost = "Less than half of the bones that move in the FBX file match: 0 of 1; what the others do is lost"
        turns = figure().replace(b"a: 0,1.0", b"a: 0,0").replace(b"a: 0,1\n", b"a: 0,0\n")
        renamed = turns.replace(b'"Model::arm"', b'"Model::Arm_L"')
        horns = tuple((b"horn%d" % i, 0) for i in range(3))
        for what, fbx, bones, warning in (
                ("all match", figure(), BONES, None), ("half", figure(), (*BONES, *horns), None),
                ("few", figure(), (BONES[0], *horns), few), ("what moves does not match", renamed, BONES, lost),
                ("what moves besides", figure(), BONES[:1], None)):
            with self.subTest(what=what):
                _, out, err = self.convert("--json", fbx=self.write("f.fbx", fbx),
                                           template=self.write("t.anim", skeleton(bones)))
                report = json.loads(out)
                self.assertEqual(report["warning"], warning)
                self.assertEqual([line for line in report["log"] if "Less than half" in line],
                                 [warning] if warning else [])
                self.assertEqual(report["log"][-2:], [warning or "FBX conversion process completed", "Sucess!"])
        near = self.write("near.fbx", renamed.replace(b'"Model::root"', b'"Model::a:Root"').replace(
            b'"Model::prop"', b'"Model::prop_01"'))
        lines = self.convert(fbx=near, check=1)[2].decode().splitlines()
        self.assertIn("Nearest names, in the template and in the FBX file: 'root' and 'a:Root', 'arm' and 'Arm_L', "
                      "'prop' and 'prop_01'", lines)

    def test_the_games_layout_reads_back(self):
        none = anim_oracle.NONE
        template = self.write("seven.anim", anim_oracle.make(
            7, BONES, (0, 10000, none), (10001, 0, none), [([(0.0, 0.0, 0.0)], [NO_TURN])],
            statics=([(0.0, 9.0, 0.0)], [NO_TURN, (0, 32767, 0, 0)])))
        _, out, err = self.convert("--layout", "games", "--json", template=template)
        self.assertEqual((json.loads(out)["version"], json.loads(out)["layout"]), (7, "games"))
        self.assertNotIn(b"read them back", err)
        anim = self.made()  # which knows the games' order alone
        self.assertEqual((anim.maps, anim.statics), ([[0, 10000, none], [10001, 0, none]],
                                                     struct.pack("<3f8h", 0, 9, 0, *NO_TURN, 0, 32767, 0, 0)))
        for i, (translations, rotations) in enumerate(anim.frames):
            self.assert_near(translations[0], (-i / 20, 0, 0), 1e-6)
            self.assert_near((rotations[0][2], rotations[0][3]), (-wanted(i)[1][1][2], wanted(i)[1][1][3]), 1.01 / 32767)
        korvane("anim", "sample", self.out, "--skeleton", self.template, "--time", "0.5", check=0)
        self.convert("--layout", "tools", template=template)
        before = self.read_out()
        self.convert(template=template)
        self.assertEqual(self.read_out(), before)
        self.assertEqual(korvane("anim", "info", self.out)[0], 1)

    def test_only_the_template_s_tracks_are_written(self):
        none = anim_oracle.NONE
        template = self.write("few.anim", anim_oracle.make(
            7, BONES, (none, 10000, none), (10001, 0, none), [([], [NO_TURN])],
            statics=([(0.0, 9.0, 0.0)], [NO_TURN, NO_TURN])))
        _, _, err = self.convert("--version", "5", template=template)
        anim = self.made()
        self.assertEqual(anim.maps, [[none, 10000, none], [10001, 0, none]])
        self.assertEqual([len(part) for part in anim.frames[0]], [0, 1])
        self.assertIn(b"no track for it: root\n", err)
        _, _, err = self.convert(template=template)  # of the template's version, 7
        self.assertIn(b"does not read them back", err)
        self.assertEqual(self.read_out()[0], 7)

    def test_a_bone_table_selects_and_orders(self):
        table = self.path("rig.bone_table")
        korvane("anim", "bone-table", self.template, "-o", table, check=0)
        self.convert("--bone-table", table)
        self.assertEqual(self.made().bones, list(BONES))
        self.write("rig.bone_table", b"// two\nversion=1\r\n\n prop ,\tBT_CORE,\t\t0\nghost, BT_CORE, 1\n"
                                     b"root,BT_ROOT,2\nprop, BT_CORE, 3")
        _, _, err = self.convert("--bone-table", table)
        self.assertIn(b"though in the bone table: ghost\n", err)
        anim = self.made()
        self.assertEqual((anim.bones, anim.maps), ([(b"prop", 1), (b"root", -1)], [[0, 1], [0, 1]]))
        self.assert_near(anim.frames[20][0][0], (0, 2.5, 0), 1e-6)  # up, once the arm is: half a metre above it
        self.assert_near(anim.frames[20][0][1], (-1, 0, 0), 1e-6)
        for text, what in ((b"root BT_ROOT 0\n", "line 1"), (b"// nothing\n", "no bone")):
            self.write("rig.bone_table", text)
            self.assertIn(what, self.convert("--bone-table", table, check=1)[2].decode())

    def test_names_of_other_alphabets_match(self):
        cli_tests.make_demo(self.path("demo"))
        template = self.write("latin.anim", skeleton(((b"root", -1), (b"H\xfcfte", 0), (b"Fu\xdf", 1))))
        korvane("export", self.path("demo/rigidmodels/demo/demo_barrel.rigid_model_v2"), "-o", self.path("e.fbx"),
                "--skeleton", template, check=0)
        _, out, _ = self.convert("--json", fbx=self.path("e.fbx"), template=template)
        self.assertEqual(json.loads(out)["unmatched"], [])
        self.assertEqual([name for name, _ in self.made().bones], [b"root", b"H\xfcfte", b"Fu\xdf"])

    def test_turning_on_and_on_stays_on_one_side(self):
        self.convert(fbx=self.write("spin.fbx", figure().replace(b"a: 0,90", b"a: 0,700")))
        turns = [frame[1][1] for frame in self.made().frames]
        for i, (before, after) in enumerate(zip(turns, turns[1:])):
            half = math.radians(35 * (i + 1)) / 2
            self.assert_near(after, (0, 0, -math.sin(half), math.cos(half)), 1.01 / 32767)
            self.assertGreater(sum(a * b for a, b in zip(before, after)), 0.9)

    def test_damaged_and_odd_files(self):
        ring = (*BONES[:1], (b"arm", 2), (b"prop", 1))
        for bones, text in ((ring, b"bone 1 (arm) is among its own descendants (at byte "),
                            ((*BONES[:2], (b"prop", 7)), b"bone 2 (prop) has the parent 7, but there are 3 bones (at byte ")):
            _, _, err = self.convert(template=self.write("ring.anim", skeleton(bones)), check=1)
            self.assertIn(b"ring.anim: " + text, err.splitlines()[-1])
        nodes = [("root", "LimbNode", None, (0, 0, 0), (0, 0, 0), ONE), ("arm", "LimbNode", 0, (0, 2, 0), (0, 0, 0), ONE),
                 ("x", "Null", 0, (0, 0, 0), (0, 0, 0), ONE), ("arm", "LimbNode", 2, (0, 7, 0), (0, 0, 0), ONE)]
        still = self.write("still.fbx", fbx_text.text(nodes, {}, unit=100, has_layers=False))
        _, _, err = self.convert(fbx=still)  # a take without layers, and two arms
        self.assertEqual(len(self.made().frames), 1)
        self.assert_near(self.made().frames[0][0][1], (0, 2, 0), 1e-6)
        for line in (b"ERROR: bone : arm has no parent", b"the first one is taken: arm", b"The take has no keys"):
            self.assertIn(line, err)
        os.unlink(self.out)
        huge = {(0, "T"): [(0, (0, 0, 0)), (1e8, (1, 0, 0))]}
        for what, data, text in (
                ("a key that is no number", figure().replace(b"a: 0,90", b"a: 0,nan"), "bone arm"),
                ("a key beyond 32 bits", figure().replace(b"a: 0,1.0\n", b"a: 0,1e300\n"), "bone root"),
                ("a span of years", fbx_text.text(nodes[:2], huge), "frames are more than"),
                ("nodes in a ring", figure().replace(b'"OO",100,0', b'"OO",100,102'), "its own ancestor"),
                ("no FBX file", b"hello", "figure")):
            with self.subTest(what=what):
                _, out, err = self.convert(fbx=self.write("bad figure.fbx", data), check=1)
                self.assertEqual(out, b"")
                self.assertIn(text, err.decode().splitlines()[-1])
                self.assertFalse(os.path.exists(self.out))

    def test_wrong_command_lines_and_refusals(self):
        for options in (("--rate", "nan"), ("--rate", "inf"), ("--rate", "-1"), ("--rate", "0"), ("--frames", "0"),
                        ("--frames", "1.5"), ("--frames", "5", "--end-time", "1"), ("--end-time", "-1"),
                        ("--version", "6"), ("--start-time", "x"), ("--layout", "1"), ("--take", "")):
            with self.subTest(options=options):
                self.convert(*options, check=2)
        for options in (("--frames", "2000000"), ("--rate", "1000000", "--end-time", "3")):
            self.assertIn(b"frames are more than", self.convert(*options, check=1)[2])
        self.assertIn(b"behind the end of the take", self.convert("--start-time", "7", "--frames", "2")[2])
        os.unlink(self.out)
        for target, status, text in ((self.template, 1, b"would replace"), (self.fbx, 2, b".anim")):
            code, _, err = korvane("convert", self.fbx, "--template", self.template, "-o", target, "--config",
                                   self.config)
            self.assertEqual((code, text in err), (status, True))
        self.assertFalse(os.path.exists(self.out))


    def test_a_rider_and_his_horse_are_told_apart(self):
        demo = self.path("demo")
        cli_tests.make_demo(demo)
        for rig, name in (("humanoid01", "humanoid01/ride/hu1_ride_gallop"), ("beast01", "beast01/run/be1_gallop")):
            clip = "pack:animations/battle/%s.anim" % name
            skeleton = "pack:animations/skeletons/%s.anim" % rig
            korvane("--data", demo, "export", "pack:variantmeshes/variantmeshdefinitions/demo_rider.variantmeshdefinition",
                    "-o", self.path("r.fbx"), "--anim", clip, "--no-materials", check=0)
            korvane("--data", demo, "convert", self.path("r.fbx"), "--template", skeleton, "-o", self.path("r.anim"),
                    "--layout", "games", check=0)
            poses = [json.loads(korvane("--data", demo, "anim", "sample", path, "--skeleton", skeleton, "--frame", "5",
                                        "--json", check=0)[1])[0]["bones"] for path in (self.path("r.anim"), clip)]
            for got, wanted_bone in list(zip(*poses))[1:]:  # the rider's root says where he sits
                cosine = sum(a * b for a, b in zip(got["rotation"], wanted_bone["rotation"]))
                self.assertGreater(abs(cosine), 0.999, got["name"])
                for a, b in zip(got["translation"], wanted_bone["translation"]):
                    self.assertLess(abs(a - b), 5e-3, got["name"])


if __name__ == "__main__":
    cli_tests.main()

#!/usr/bin/env python3
"""korvane export, judged by readers that share nothing with the program: the assimp tools, and where it is installed
the npm package fbx2gltf. What they must find is worked out from the model and the .anim files in Python. Called as
cli_tests.py is."""

import json
import math
import os
import shutil
import subprocess
import unittest

import anim_oracle
import cli_tests
import model_oracle
from cli_tests import korvane, read

INCH = 39.37008  # inches a metre
MODEL = "variantmeshes/wh_variantmodels/hu1/demo/demo_guard.rigid_model_v2"
SKELETON = "animations/skeletons/humanoid01.anim"
CLIP = "animations/battle/humanoid01/gesture/hu1_wave.anim"
OTHER_CLIP = "animations/battle/humanoid01/walk/hu1_walk_forward_v5.anim"
CONVERTER = os.path.join(os.path.dirname(__file__), "../../build/fbx2gltf/node_modules/fbx2gltf/bin/Linux/FBX2glTF")


def mirrored(vector):
    return [-vector[0], vector[1], vector[2]]


def inches(vector):
    return [c * INCH for c in mirrored(vector)]


def unit(rotation):
    length = math.sqrt(sum(c * c for c in rotation))
    return [c / length for c in rotation]


def product(a, b):
    """Of 4x4 matrices as lists of rows."""
    return [[sum(a[i][k] * b[k][j] for k in range(4)) for j in range(4)] for i in range(4)]


def rows(numbers):
    return [list(numbers[i:i + 4]) for i in range(0, 16, 4)]


def placed(translation, rotation):
    x, y, z, w = rotation
    return [[1 - 2 * (y * y + z * z), 2 * (x * y - z * w), 2 * (x * z + y * w), translation[0]],
            [2 * (x * y + z * w), 1 - 2 * (x * x + z * z), 2 * (y * z - x * w), translation[1]],
            [2 * (x * z - y * w), 2 * (y * z + x * w), 1 - 2 * (x * x + y * y), translation[2]], [0, 0, 0, 1]]


def interpolated(keys, time):
    """The value of the latest key that is not behind the time, which lies on a key."""
    return min(keys, key=lambda key: abs(key[0] - time))


class read_scene:
    """What assimp makes of a file."""

    def __init__(self, path, out):
        done = subprocess.run(["assimp", "export", path, out, "-fassjson", "-raw"], stdin=subprocess.DEVNULL,
                              capture_output=True, timeout=120)
        if done.returncode != 0 or not os.path.exists(out):
            raise AssertionError("assimp refuses %s: %s" % (path, done.stdout.decode(errors="replace")))
        with open(out, encoding="utf-8") as file:
            scene = json.load(file)
        self.meshes = scene.get("meshes", [])
        self.materials = scene.get("materials", [])
        self.animations = scene.get("animations", [])
        self.nodes = {}
        self.root = rows(scene["rootnode"]["transformation"])
        self.visit(scene["rootnode"], None)

    def visit(self, node, parent):
        self.nodes[node["name"]] = {"parent": parent, "local": rows(node["transformation"]),
                                    "meshes": node.get("meshes", [])}
        for child in node.get("children", []):
            self.visit(child, node["name"])

    def world(self, name, locals_now=None):
        """Below the root, to which the reader gives the unit of a Collada file."""
        node = self.nodes[name]
        local = (locals_now or {}).get(name, node["local"])
        above = self.nodes[node["parent"]]["parent"]
        return local if above is None else product(self.world(node["parent"], locals_now), local)

    def mesh(self, name):
        numbers = self.nodes[name]["meshes"]
        if len(numbers) != 1:
            raise AssertionError("%s has %d meshes" % (name, len(numbers)))
        return self.meshes[numbers[0]]


def corners(mesh):
    points = mesh["vertices"]
    return [[points[3 * i:3 * i + 3] for i in face] for face in mesh["faces"]]


class export_case(cli_tests.cli_case):
    @classmethod
    def setUpClass(cls):
        cls.demo = os.path.join(os.environ.get("TMPDIR", "/tmp"), "korvane export %d" % os.getpid())
        cli_tests.make_demo(cls.demo)
        cls.model = model_oracle.model(read(cls.at(MODEL)))
        cls.skeleton = anim_oracle.Anim(read(cls.at(SKELETON)))

    @classmethod
    def tearDownClass(cls):
        shutil.rmtree(cls.demo)

    @classmethod
    def at(cls, internal_path):
        return os.path.join(cls.demo, *internal_path.split("/"))

    def export(self, name, *options, model=MODEL):
        path = self.path(name)
        _, out, _ = korvane("export", self.at(model), "-o", path, "--json", *options, check=0)
        return path, json.loads(out)

    def scene(self, name, *options, model=MODEL):
        if not shutil.which("assimp"):
            self.skipTest("the assimp tools are not installed")
        path, _ = self.export(name, *options, model=model)
        return read_scene(path, self.path("scene.json"))

    def near(self, actual, expected, tolerance, where):
        self.assertEqual(len(actual), len(expected), where)
        for a, e in zip(actual, expected):
            self.assertLess(abs(a - e), tolerance, "%s: %s, not %s" % (where, actual, expected))

    def mesh_names(self, lod):
        return ["%s_group_0%d_lod%d" % (g["group_name"], i + 1, lod)
                for i, g in enumerate(self.model["lods"][lod]["groups"])]

    def bone_names(self):
        return [name.decode() for name, _ in self.skeleton.bones]


class independent_readers(export_case):
    def check_meshes(self, scene, lod):
        for group, name in zip(self.model["lods"][lod]["groups"], self.mesh_names(lod)):
            expected = [[inches(group["vertices"][group["indices"][i + j]]["position"]) for j in (0, 2, 1)]
                        for i in range(0, len(group["indices"]), 3)]
            actual = corners(scene.mesh(name))
            self.assertEqual(len(actual), len(expected), name)
            for a, e in zip(actual[::7], expected[::7]):
                for point, wanted in zip(a, e):
                    self.near(point, wanted, 2e-3, name)

    def check_skins(self, scene):
        """The bind pose moves nothing, and weights add up to one."""
        for name in self.mesh_names(0):
            mesh = scene.mesh(name)
            sums = [0.0] * (len(mesh["vertices"]) // 3)
            for bone in mesh["bones"]:
                moved = product(scene.world(bone["name"]), rows(bone["offsetmatrix"]))
                for i in range(4):
                    self.near(moved[i], [1.0 if i == j else 0.0 for j in range(4)], 2e-3, bone["name"])
                for vertex, weight in bone["weights"]:
                    sums[vertex] += weight
            self.assertLess(max(abs(total - 1) for total in sums), 1e-4, name)

    def check_tree(self, scene):
        names = self.bone_names()
        for (name, parent), world in zip(self.skeleton.bones, anim_oracle.world_pose(
                self.skeleton, [[t, unit(r)] for t, r in anim_oracle.bind_pose(self.skeleton)])):
            found = scene.nodes[name.decode()]
            if parent >= 0:
                self.assertEqual(found["parent"], names[parent])
            matrix = scene.world(name.decode())
            self.near([matrix[i][3] for i in range(3)], inches(world[0]), 1e-3, name)
        known = set(names) | set(self.mesh_names(0))
        self.assertEqual(len([name for name in scene.nodes if name not in known]), 1, "the root, and nothing else")

    def test_the_model_alone_has_the_groups_of_a_lod_as_meshes(self):
        for name, lod in (("a.fbx", 0), ("b.fbx", 2), ("c.dae", 1)):
            with self.subTest(name):
                scene = self.scene(name, "--lod", str(lod))
                self.assertEqual(set(scene.nodes) - {"RootNode", "MyScene"}, set(self.mesh_names(lod)))
                self.check_meshes(scene, lod)
                self.assertFalse(any("bones" in mesh for mesh in scene.meshes))

    def test_the_bind_pose_is_the_rest_pose_of_the_skin_the_right_way_round(self):
        for name in ("bind.fbx", "bind.dae"):
            with self.subTest(name):
                scene = self.scene(name, "--skeleton", self.at(SKELETON))
                self.assertAlmostEqual(scene.root[1][1], 0.0254 if name.endswith("dae") else 1, 6)
                self.check_tree(scene)
                self.check_meshes(scene, 0)
                self.check_skins(scene)
                self.check_sides(scene)
                self.assertEqual(scene.animations, [])

    def check_sides(self, scene):
        """Faces look outwards and left is left."""
        volume = agree = total = 0
        for mesh in scene.meshes:
            normals = mesh["normals"]
            for face, (a, b, c) in zip(mesh["faces"], corners(mesh)):
                u, v = [[q - p for p, q in zip(a, other)] for other in (b, c)]
                cross = [u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2], u[0] * v[1] - u[1] * v[0]]
                volume += sum(p * q for p, q in zip(a, cross)) / 6
                agree += sum(cross[i] * normals[3 * corner + i] for corner in face for i in range(3)) > 0
                total += 1
        self.assertGreater(agree / total, 0.99)
        self.assertGreater(volume, 1000)  # cubic inches of a man

        def place(bone):
            return [scene.world(bone)[i][3] for i in range(3)]
        toes, foot = place("toe_l"), place("foot_l")
        forward = [toes[0] - foot[0], 0, toes[2] - foot[2]]
        left = [forward[2], 0, -forward[0]]  # up x forward, in a right-handed space
        for bone in ("hand_l", "foot_l"):
            self.assertGreater(sum(p * q for p, q in zip(place(bone), left)), 0, bone)
        self.assertLess(sum(p * q for p, q in zip(place("hand_r"), left)), 0)

    def check_animation(self, scene, clip, frames, ticks):
        """World places of all bones at those frames, from the keys that the reader found."""
        self.assertEqual(len(scene.animations), 1)
        channels = {channel["name"]: channel for channel in scene.animations[0]["channels"]}
        moved = {self.bone_names()[bone] for which in (0, 1) for bone in clip.tracks(which)}
        self.assertEqual(set(channels), moved)
        for frame in frames:
            local = {}
            for name, channel in channels.items():
                position = interpolated(channel["positionkeys"], frame * ticks)
                rotation = interpolated(channel["rotationkeys"], frame * ticks)
                w, x, y, z = rotation[1]
                local[name] = placed(position[1], (x, y, z, w))
            pose = [[t, unit(r)] for t, r in anim_oracle.frame_pose(self.skeleton, clip, frame)]
            for (name, _), (place, _) in zip(self.skeleton.bones, anim_oracle.world_pose(self.skeleton, pose)):
                matrix = scene.world(name.decode(), local)
                self.near([matrix[i][3] for i in range(3)], inches(place), 5e-3, "%s, frame %d" % (name, frame))

    def test_keys_are_those_of_the_animation(self):
        for internal_path in (CLIP, OTHER_CLIP):
            clip = anim_oracle.Anim(read(self.at(internal_path)))
            last = len(clip.frames) - 1
            for name in ("a.fbx", "a.dae"):
                with self.subTest(internal_path + " " + name):
                    scene = self.scene(name, "--skeleton", self.at(SKELETON), "--anim", self.at(internal_path),
                                       "--full-span", "--lod", "2")
                    ticks = 1 if name.endswith("fbx") else 1000 / clip.rate
                    self.check_animation(scene, clip, (0, 1, last // 3, last // 2, last), ticks)
                    if name.endswith("fbx"):
                        self.assertAlmostEqual(scene.animations[0]["tickspersecond"], clip.rate, 3)

    def test_the_time_span_ends_after_half_of_the_frames(self):
        clip = anim_oracle.Anim(read(self.at(CLIP)))
        options = ("--skeleton", self.at(SKELETON), "--anim", self.at(CLIP), "--lod", "2")
        self.assertAlmostEqual(self.scene("half.fbx", *options).animations[0]["duration"], len(clip.frames) / 2, 3)
        _, report = self.export("half.dae", *options)
        self.assertAlmostEqual(report["files"][0]["take_stop"], len(clip.frames) / 2 / clip.rate, 5)

    def test_textures_lie_where_the_file_says(self):
        for name in ("t/a.fbx", "t/a.dae"):
            with self.subTest(name):
                os.makedirs(self.path("t"), exist_ok=True)
                scene = self.scene(name, "--textures", self.path("t/tex"))
                files = {p["value"] for m in scene.materials for p in m["properties"] if p["key"] == "$tex.file"}
                self.assertGreater(len(files), 10)
                for file in files:
                    self.assertEqual(read(self.path("t/" + file))[:4], b"DDS ", file)
                names = {p["value"] for m in scene.materials for p in m["properties"] if p["key"] == "?mat.name"}
                self.assertIn("cuirass", names)


class converter(export_case):
    def test_the_vendors_reader_finds_every_node(self):
        """The converter ends with 0 and writes a lone root when the reader refuses a file: nodes are counted."""
        if not os.path.exists(CONVERTER):
            self.skipTest("npm's fbx2gltf is not installed")
        path, _ = self.export("wave.fbx", "--skeleton", self.at(SKELETON), "--anim", self.at(CLIP))
        subprocess.run([CONVERTER, "-i", path, "-o", self.path("wave")], stdin=subprocess.DEVNULL, capture_output=True,
                       timeout=120, check=False)
        with open(self.path("wave_out/wave.gltf"), encoding="utf-8") as file:
            gltf = json.load(file)
        names = [node.get("name") for node in gltf["nodes"]]
        self.assertEqual(set(self.bone_names() + self.mesh_names(0)) - set(names), set())
        self.assertEqual(len(gltf["meshes"]), len(self.mesh_names(0)))
        self.assertEqual(len(gltf["skins"]), len(self.mesh_names(0)))
        clip = anim_oracle.Anim(read(self.at(CLIP)))
        moved = {gltf["nodes"][c["target"]["node"]]["name"] for c in gltf["animations"][0]["channels"]}
        self.assertTrue(moved <= {self.bone_names()[bone] for which in (0, 1) for bone in clip.tracks(which)})
        self.assertGreater(len(moved), 10)
        tallest = max(gltf["accessors"][p["attributes"]["POSITION"]]["max"][1]
                      for mesh in gltf["meshes"] for p in mesh["primitives"])
        highest = max(v["position"][1] for g in self.model["lods"][0]["groups"] for v in g["vertices"])
        self.assertAlmostEqual(tallest * 2.54, highest, 3)  # centimetres as metres below a node of scale 2.54


class command(export_case):
    def test_several_animations_give_one_file_each(self):
        twin = os.path.join(self.demo, "hu1_wave.anim")
        shutil.copyfile(self.at(OTHER_CLIP), twin)
        broken = self.write("broken.anim", read(self.at(CLIP))[:5000])
        clips = [part for path in (self.at(CLIP), broken, twin) for part in ("--anim", path)]
        code, out, err = korvane("export", self.at(MODEL), "-o", self.path("out/"), "--skeleton", self.at(SKELETON),
                                 "--json", *clips)
        lines = err.decode().splitlines()
        self.assertEqual(code, 1)
        self.assertEqual(lines[-1].split(": ", 2)[2], "1 of 3 animations could not be exported")
        self.assertIn("Exporting File: hu1_wave.fbx   (1 / 3 )", lines)
        self.assertIn("Exporting File: hu1_wave_2.fbx   (3 / 3 )", lines)
        self.assertIn("Done. Files Exported: 2", lines)
        self.assertTrue(any("broken.anim" in line and "at byte" in line for line in lines), lines)
        self.assertEqual(sorted(os.listdir(self.path("out"))), ["hu1_wave.fbx", "hu1_wave_2.fbx"])
        report = json.loads(out)
        self.assertEqual([file["frames"] for file in report["files"]],
                         [len(anim_oracle.Anim(read(self.at(path))).frames) for path in (CLIP, OTHER_CLIP)])
        self.assertEqual(len(report["failed"]), 1)

    def test_folders_give_files_their_names(self):
        os.mkdir(self.path("out"))
        _, report = self.export("out", "--skeleton", self.at(SKELETON), "--format", "dae")
        self.assertEqual(report["files"][0]["path"].replace("\\", "/").rsplit("/", 1)[-1], "demo_guard__BIND_POSE.dae")
        _, report = self.export("out")
        self.assertEqual(os.listdir(self.path("out")).count("demo_guard.fbx"), 1)

    def test_bare_names_lie_in_the_folder_where_one_is(self):
        for name, options in (("a.fbx", ["--textures", "tex"]), ("b.dae", [])):
            done = subprocess.run(cli_tests.program + ["export", self.at(MODEL), "-o", name] + options, cwd=self.folder,
                                  stdin=subprocess.DEVNULL, capture_output=True, timeout=120, check=False)
            self.assertEqual(done.returncode, 0, done.stderr)
            self.assertIn(name, os.listdir(self.folder))
        self.assertIn(b"tex/variantmeshes/", read(self.path("a.fbx")))

    def test_operands_come_out_of_the_archives(self):
        _, out, err = korvane("export", "pack:" + MODEL, "-o", self.path("a.fbx"), "--skeleton", "pack:" + SKELETON,
                              "--anim", "pack:" + CLIP, "--textures", self.path("tex"), "--json", "--data", self.demo,
                              check=0)
        report = json.loads(out)
        self.assertEqual(report["files"][0]["bones"], len(self.skeleton.bones))
        self.assertTrue(all(texture["path"] for texture in report["textures"]), err)
        self.assertIn(b"FBX file format version 7.4.0\n", err)

    def test_the_same_input_gives_the_same_bytes(self):
        options = ("--skeleton", self.at(SKELETON), "--anim", self.at(CLIP))
        for ending in ("fbx", "dae"):
            first, second = [read(self.export(name + "." + ending, *options)[0]) for name in ("a", "b")]
            self.assertEqual(first, second, ending)

    def test_without_materials_there_are_none(self):
        for ending in ("fbx", "dae"):
            data = read(self.export("plain." + ending, "--no-materials")[0])
            for word in (b"Texture", b"Material", b"material", b"image"):
                self.assertNotIn(word, data, ending)

    def test_wrong_command_lines(self):
        model, out = self.at(MODEL), self.path("out.fbx")
        for arguments in ([model], [model, "-o", self.path("out.obj")], [model, "-o", out, "--as", "png"],
                          [model, "-o", out, "--skeleton", "s", "--anim", "a", "--anim", "b"],
                          [model, "-o", out, "--lod", "x"], [model, "-o", out, "--lod", "-1"],
                          [model, "-o", out, "--format", "dae"], [model, "-o", self.folder, "--format", "obj"]):
            with self.subTest(arguments=arguments):
                self.expect_failure(["export"] + arguments, 2)

    def test_what_is_read_is_never_replaced(self):
        model = os.path.join(self.folder, "m.fbx")
        shutil.copyfile(self.at(MODEL), model)
        skeleton, clip = self.write("s.fbx", read(self.at(SKELETON))), self.write("c.fbx", read(self.at(CLIP)))
        os.mkdir(self.path("d"))
        twin = self.write("d/c.fbx.fbx", read(self.at(CLIP)))  # what the first animation's file would be called
        for link, target in (("l.fbx", skeleton), ("h.fbx", clip)):
            (os.symlink if link == "l.fbx" else os.link)(target, self.path(link))
        before = {name: read(self.path(name)) for name in ("m.fbx", "s.fbx", "c.fbx", "d/c.fbx.fbx")}
        for out, clips in ((model, [clip]), (skeleton, []), (self.path("l.fbx"), []), (self.path("h.fbx"), [clip]),
                           (self.path("d/"), [clip, twin])):
            options = [part for path in clips for part in ("--anim", path)]
            with self.subTest(out):
                self.expect_failure(["export", model, "-o", out, "--skeleton", skeleton] + options, 1, "would replace")
        self.assertEqual(before, {name: read(self.path(name)) for name in before})

    def test_one_texture_has_one_file_and_names_are_harmless(self):
        data = read(self.at(MODEL))
        path = [t["path"] for g in self.model["lods"][0]["groups"] for t in g["textures"] if t["type"] == 0]
        twin = next(p for p in path if path.count(p) > 1).encode()
        odd = data.replace(twin, twin.upper(), 1)
        self.assertNotEqual(odd, data)
        odd = self.write("odd.rigid_model_v2", odd)
        _, out, _ = korvane("export", odd, "-o", self.path("a.fbx"), "--textures", self.path("tex"), "--json", "--data",
                            self.demo, check=0)
        textures = json.loads(out)["textures"]
        files = [os.path.join(folder, f) for folder, _, names in os.walk(self.path("tex")) for f in names]
        self.assertEqual(len(textures), len(files))
        self.assertEqual(sorted(t["path"].replace("\\", "/") for t in textures), sorted(files))
        self.assertTrue(all(t["internal_path"] == t["internal_path"].lower() for t in textures))
        evil = read(self.at(SKELETON)).replace(b"humanoid01", b"a\x1b[31m\nbcd")
        _, _, err = korvane("export", self.at(MODEL), "-o", self.path("b.fbx"), "--skeleton",
                            self.write("evil.anim", evil), check=0)
        self.assertIn(b"not for a\\x1b[31m\\x0abcd\n", err)

    def test_failures_say_what_and_leave_nothing(self):
        model, out = self.at(MODEL), self.path("out.fbx")
        cut = self.write("cut.anim", read(self.at(SKELETON))[:900])
        for arguments, words in (
                ([self.path("none"), "-o", out], ["none"]),
                ([model, "-o", out, "--lod", "9"], ["there is no LOD 9, the model has 3"]),
                ([model, "-o", out, "--skeleton", cut], ["cut.anim", "at byte"]),
                ([model, "-o", out, "--skeleton", "pack:nothing.anim", "--data", self.demo], ["nothing.anim"])):
            with self.subTest(arguments=arguments):
                self.expect_failure(["export"] + arguments, 1, *words)
        ring = self.write("ring.anim", anim_oracle.make(5, ((b"a", 1), (b"b", 0)), (0, 1), (0, 1), [([(0.0, 0.0, 0.0)] * 2, [(0, 0, 0, 32767)] * 2)]))
        self.assertIn(b"bone 0 (a) is among its own descendants (at byte ",
                      korvane("export", model, "-o", out, "--skeleton", ring, check=1)[2].splitlines()[-1])
        code, _, err = korvane("export", model, "-o", self.path("missing/out.fbx"))
        lines = err.decode().splitlines()
        self.assertEqual((code, lines[-3]), (1, "Call to FbxExporter::Initialize() failed."))
        self.assertTrue(lines[-2].startswith("Error returned: ") and lines[-1].startswith("korvane: "), lines)
        code = korvane("export", model, "-o", self.path("new/"), "--textures", self.path("tex"), "--skeleton",
                       self.at(SKELETON), "--anim", cut, "--anim", cut)[0]
        self.assertEqual((code, sorted(os.listdir(self.folder))), (1, ["cut.anim", "ring.anim"]))


if __name__ == "__main__":
    cli_tests.main()

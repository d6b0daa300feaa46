#!/usr/bin/env python3
"""korvane export to glTF, and of whole figures: judged by the format's own validator (npm gltf-validator) and by the
assimp tools, each where it is installed. Called as cli_tests.py is."""

import json
import os
import shutil
import struct
import subprocess

import cli_tests
import export_tests
from cli_tests import korvane, read

FIGURES = "pack:variantmeshes/variantmeshdefinitions/demo_%s.variantmeshdefinition"
FOOT = "pack:animations/battle/humanoid01/"
MARCH, WAVE = FOOT + "walk/hu1_march.anim", FOOT + "gesture/hu1_wave.anim"
GALLOPS = (FOOT + "ride/hu1_ride_gallop.anim", "pack:animations/battle/beast01/run/be1_gallop.anim")
VALIDATOR = os.path.join(os.path.dirname(__file__), "../../build/gltf-validator/node_modules/gltf-validator")
# Vertex formats without tangents: readers make their own.
EXPLAINED = {"MESH_PRIMITIVE_GENERATED_TANGENT_SPACE"}


def document(path):
    data = read(path)
    if path.endswith(".gltf"):
        return json.loads(data)
    size, = struct.unpack_from("<I", data, 12)
    return json.loads(data[20:20 + size])


class gltf_case(export_tests.export_case):
    def figure(self, name, file, *animations, options=()):
        clips = [part for path in animations for part in ("--anim", path)]
        path = self.path(file)
        _, out, _ = korvane("export", FIGURES % name, "-o", path, "--data", self.demo, "--json", *clips, *options,
                            check=0)
        return path, json.loads(out)


class validator(gltf_case):
    def test_the_formats_own_validator_finds_no_fault(self):
        if not os.path.exists(VALIDATOR) or not shutil.which("node"):
            self.skipTest("npm's gltf-validator is not installed")
        files = [self.figure("guard", "guard.glb", MARCH, WAVE)[0], self.figure("champion", "champion.gltf", MARCH)[0],
                 self.figure("rider", "rider.glb", *GALLOPS)[0],
                 self.figure("guard", "plain.glb", options=("--no-materials", "--lod", "all"))[0]]
        for model in ("demo_formats", "demo_grass", "demo_column_shape"):
            files.append(self.export(model + ".gltf", "--textures", self.path("tex ü"), "--data", self.demo,
                                     model="rigidmodels/demo/%s.rigid_model_v2" % model)[0])
        done = subprocess.run(["node", os.path.join(os.path.dirname(__file__), "validate_gltf.js"), VALIDATOR] + files,
                              stdin=subprocess.DEVNULL, capture_output=True, timeout=300, check=True)
        for file, messages in zip(files, json.loads(done.stdout)):
            faults = [m for m in messages if m["severity"] < 2 and m["code"] not in EXPLAINED]
            self.assertEqual(faults, [], file)


class figures(gltf_case):
    def test_every_format_shows_the_same_figure(self):
        """assimp's world places of bones and of what hangs on them, in metres; a sword's node below the hand's, in
        Collada as a skin of that one bone."""
        if not shutil.which("assimp"):
            self.skipTest("the assimp tools are not installed")
        scenes = {}
        for ending, unit in (("fbx", 0.0254), ("dae", 0.0254), ("glb", 1)):
            path, report = self.figure("champion", "a." + ending, MARCH)
            self.assertEqual(report["warnings"], [])
            scenes[ending] = (export_tests.read_scene(path, self.path("scene.json")), unit)
        nodes = scenes["fbx"][0].nodes
        names = [name for name, node in nodes.items() if node["parent"] in self.bone_names()]
        for name in names:
            places = [[self.place(scene, name)[i][3] * unit for i in range(3)] for scene, unit in scenes.values()]
            self.near(places[1], places[0], 1e-4, name)
            self.near(places[2], places[0], 1e-4, name)
        hanging = [name for name in names if nodes[name]["meshes"]]
        self.assertTrue(hanging)
        for name in hanging:
            self.assertEqual(scenes["glb"][0].nodes[name]["parent"], nodes[name]["parent"])
            self.assertEqual([bone["name"] for bone in scenes["dae"][0].mesh(name)["bones"]], [nodes[name]["parent"]])

    def place(self, scene, name):
        bones = scene.mesh(name).get("bones", []) if scene.nodes[name]["meshes"] else []
        if len(bones) != 1:
            return scene.world(name)
        return export_tests.product(scene.world(bones[0]["name"]), export_tests.rows(bones[0]["offsetmatrix"]))

    def test_a_rider_and_his_horse_move_each_by_its_own_animation(self):
        path, report = self.figure("rider", "rider.glb", *GALLOPS)
        self.assertEqual(report["files"][0]["animations"], list(GALLOPS))
        if shutil.which("assimp"):  # refuses skins with two bones of one name
            self.assertEqual(len(export_tests.read_scene(path, self.path("scene.json")).animations), 2)
            subprocess.run(["assimp", "info", path], stdin=subprocess.DEVNULL, capture_output=True, check=True)
        gltf = document(path)
        self.assertEqual([a["name"] for a in gltf["animations"]], ["hu1_ride_gallop", "be1_gallop"])
        rider, horse = [{c["target"]["node"] for c in a["channels"]} for a in gltf["animations"]]
        self.assertEqual(rider & horse, set())
        names = [node["name"] for node in gltf["nodes"]]
        parents = {child: i for i, node in enumerate(gltf["nodes"]) for child in node.get("children", [])}

        def above(node):
            return [] if node not in parents else [names[parents[node]]] + above(parents[node])
        self.assertTrue(all("humanoid01_mount" in above(node) for node in rider))
        self.assertFalse(any("humanoid01_mount" in above(node) for node in horse))

    def test_pictures_lie_in_the_file_or_beside_it(self):
        gltf = document(self.figure("guard", "a.glb")[0])
        self.assertTrue(gltf["images"] and all("bufferView" in image for image in gltf["images"]))
        path, report = self.figure("guard", "b.gltf")
        for image in document(path)["images"]:
            self.assertTrue(image["uri"].startswith("b_textures/"), image)
            self.assertEqual(read(self.path(image["uri"]))[:4], b"\x89PNG")
        self.assertTrue(all(t["path"] is None or t["path"].endswith(".png") for t in report["textures"]))


class command(gltf_case):
    def test_the_skeleton_is_found_when_there_is_a_reason(self):
        for options, bones in (((), 0), (("--bind",), 67), (("--anim", MARCH), 67)):
            _, report = self.export("a.fbx", "--data", self.demo, *options)
            self.assertEqual(report["files"][0]["bones"], bones, options)
        barrel = self.at("rigidmodels/demo/demo_barrel.rigid_model_v2")
        self.expect_failure(["export", barrel, "-o", self.path("b.fbx"), "--bind"], 1, "names no skeleton")
        lost = self.write("lost.rigid_model_v2", read(self.at(export_tests.MODEL)).replace(b"humanoid01", b"humanoid99"))
        self.expect_failure(["export", lost, "-o", self.path("b.fbx"), "--bind", "--data", self.demo], 1, "humanoid99")

    def test_all_levels_of_detail_go_into_one_file(self):
        _, report = self.export("a.fbx", "--lod", "all")
        self.assertEqual(report["files"][0]["meshes"], sum(len(lod["groups"]) for lod in self.model["lods"]))

    def test_pictures_take_the_place_of_dds_files(self):
        path, report = self.export("a.fbx", "--textures", self.path("tex"), "--as", "png", "--normal", "blue")
        self.assertTrue(report["textures"])
        for texture in report["textures"]:
            self.assertEqual(read(texture["path"].replace("\\", "/"))[:4], b"\x89PNG")
        self.assertIn(b"tex/variantmeshes/", read(path))
        self.assertTrue(all(b".png" in part[:120] for part in read(path).split(b"tex/variantmeshes/")[1:]))

    def test_of_several_animations_the_bad_one_is_named(self):
        broken = self.write("broken.anim", read(self.at(export_tests.CLIP))[:5000])
        code, out, err = korvane("export", "pack:" + export_tests.MODEL, "-o", self.path("a.glb"), "--data", self.demo,
                                 "--json", "--anim", MARCH, "--anim", broken, "--anim", WAVE)
        self.assertEqual(code, 1)
        self.assertIn(b"1 of 3 animations could not be exported", err)
        self.assertEqual([a["name"] for a in document(self.path("a.glb"))["animations"]], ["hu1_march", "hu1_wave"])
        self.assertEqual(len(json.loads(out)["failed"]), 1)

    def test_bad_places_are_one_failure(self):
        clips = [part for path in (MARCH, WAVE) for part in ("--anim", path)]
        file = self.write("file", b"x")
        code, _, err = korvane("export", FIGURES % "guard", "-o", os.path.join(file, "out"), "--data", self.demo, *clips)
        self.assertEqual((code, read(file)), (1, b"x"))
        self.assertEqual(len([line for line in err.splitlines() if line.startswith(b"korvane: ")]), 1, err)
        self.assertNotIn(b"Exporting", err)


if __name__ == "__main__":
    cli_tests.main()

#!/usr/bin/env python3
"""korvane fbx as a user types it: what a model import reads, the scene, failures. Same usage as cli_tests.py."""

import json
import unittest

import cli_tests
from cli_tests import korvane

FIGURE = """; FBX 7.4.0 project file
FBXHeaderExtension: {
    FBXVersion: 7400
}
GlobalSettings: {
    Properties70: {
        P: "UnitScaleFactor", "double", "Number", "",2.54
    }
}
Objects: {
    Geometry: 10, "Geometry::mesh", "Mesh" {
        Vertices: *9 {
            a: 0.1,0,0,1,0,0,0,2,0
        }
        PolygonVertexIndex: *3 {
            a: 0,1,-3
        }
    }
    Model: 1, "Model::\u8449 leaf", "Mesh" {
    }
    Model: 2, "Model::root", "LimbNode" {
        Properties70: {
            P: "Lcl Translation", "Lcl Translation", "", "A",0,3,0
        }
    }
    Model: 3, "Model::tip", "LimbNode" {
    }
    AnimationStack: 20, "AnimStack::walk", "" {
    }
    AnimationLayer: 21, "AnimLayer::base", "" {
    }
    AnimationCurveNode: 22, "AnimCurveNode::T", "" {
        Properties70: {
            P: "d|Y", "Number", "", "A",5
        }
    }
    AnimationCurve: 23, "AnimCurve::", "" {
        KeyTime: *2 {
            a: 0,46186158000
        }
        KeyValueFloat: *2 {
            a: 0,8
        }
        KeyAttrFlags: *1 {
            a: 4
        }
        KeyAttrDataFloat: *4 {
            a: 0,0,0,0
        }
        KeyAttrRefCount: *1 {
            a: 2
        }
    }
}
Connections: {
    C: "OO",1,0
    C: "OO",10,1
    C: "OO",2,0
    C: "OO",3,2
    C: "OO",21,20
    C: "OO",22,21
    C: "OP",22,3, "Lcl Translation"
    C: "OP",23,22, "d|X"
    C: "OO",99,0
}
"""


class fbx(cli_tests.cli_case):
    def setUp(self):
        super().setUp()
        self.figure = self.write("figure.fbx", FIGURE.encode())

    def test_the_import_reads_the_top_level(self):
        _, out, err = korvane("fbx", self.figure, "--json", check=0)
        self.assertEqual(json.loads(out), {
            "meshes": [{"name": "\u8449 leaf", "control_points": [[0.1, 0, 0, 1], [1, 0, 0, 1], [0, 2, 0, 1]]}],
            "skeletons": ["root"]})
        self.assertEqual(err, b"")
        _, out, _ = korvane("fbx", self.figure, check=0)
        self.assertEqual(out.decode(), "mesh \u8449 leaf: 3 control points\nskeleton root\n")

    def test_the_scene_is_whole_and_moves(self):
        _, out, err = korvane("fbx", self.figure, "--scene", "--at", "0.25", "--at", "2", check=0)
        scene = json.loads(out)
        self.assertEqual(scene["unit_meters"], 0.0254)
        self.assertEqual([node["path"] for node in scene["nodes"]], ["\u8449 leaf", "root", "root|tip"])
        self.assertEqual(scene["nodes"][2]["world"], [1, 0, 0, 0, 0, 1, 0, 3, 0, 0, 1, 0])
        samples = scene["takes"][0]["samples"]
        self.assertEqual(samples[0]["node"], "root|tip")
        self.assertEqual([key["t"] for key in samples[0]["keys"]], [[2, 5, 0], [8, 5, 0]])
        self.assertIn(b"1 connections name objects that are not there", err)

    def test_the_geometry_is_shown_as_json_and_as_text(self):
        element = "LayerElement%s: 0 { Name: \"%s\" MappingInformationType: \"%s\" ReferenceInformationType: \"%s\" %s }\n"
        elements = (element % ("Normal", "n", "AllSame", "Direct", "Normals: *3 { a: 0,0,1 }") +
                    element % ("UV", "map", "ByPolygonVertex", "IndexToDirect",
                               "UV: *4 { a: 0,0.5,1,0 } UVIndex: *3 { a: 1,0,-1 }") +
                    element % ("Material", "", "ByPolygon", "IndexToDirect", "Materials: *1 { a: 1 }"))
        skin = ("Material: 30, \"Material::red\", \"\" { }\nMaterial: 31, \"Material::blue\", \"\" { }\n"
                "Deformer: 32, \"Deformer::skin\", \"Skin\" { }\n"
                "Deformer: 33, \"SubDeformer::\", \"Cluster\" { Indexes: *2 { a: 2,0 } Weights: *2 { a: 0.25,1 } }\n")
        connections = "".join("C: \"OO\",%d,%d\n" % pair for pair in ((30, 1), (31, 1), (32, 10), (33, 32), (3, 33)))
        path = self.write("dressed.fbx", FIGURE.replace("PolygonVertexIndex", elements + "PolygonVertexIndex")
                          .replace("AnimationStack: 20", skin + "AnimationStack: 20")
                          .replace('C: "OO",99,0', connections).encode())
        expected = {
            "points": [[0.1, 0, 0], [1, 0, 0], [0, 2, 0]], "polygons": [[0, 1, 2]],
            "normals": [{"name": "n", "mapping": "all same", "values": [[0, 0, 1]] * 3}],
            "uv_sets": [{"name": "map", "mapping": "corner", "values": [[1, 0], [0, 0.5], None]}],
            "materials": ["red", "blue"], "polygon_materials": [1],
            "weights": [{"skin": "skin", "bone": "root|tip", "points": [2, 0], "weights": [0.25, 1]}]}
        whole = json.loads(korvane("fbx", path, "--scene", check=0)[1])
        for options in (("--scene", "--geometry"), ("--geometry", "--json")):
            scene = json.loads(korvane("fbx", path, *options, check=0)[1])
            self.assertEqual(scene["meshes"][0].pop("geometry"), expected)
            self.assertEqual(scene, whole)
        text = korvane("fbx", path, "--geometry", check=0)[1].decode()
        self.assertEqual(text.splitlines(), [
            "mesh mesh: 3 control points, 1 polygons, 3 corners", "  node \u8449 leaf", "  normals n by all same: 1 entries",
            "  uv map by corner: 2 entries", "  material red", "  material blue", "  point 0: 0.1 0 0, tip 1",
            "  point 1: 1 0 0", "  point 2: 0 2 0, tip 0.25", "  polygon 0: material 1", "    point 0, normal 0 0 1, uv 1 0",
            "    point 1, normal 0 0 1, uv 0 0.5", "    point 2, normal 0 0 1, uv"])

    def test_failures_are_one_line_and_no_output(self):
        cycle = self.write("circle.fbx", FIGURE.replace('"OO",2,0', '"OO",2,3').encode())
        cut = self.write("cut.fbx", FIGURE[:900].encode())
        missing = self.path("missing.fbx")
        for path, text in ((cycle, "is its own ancestor: the parents of the nodes run in a circle (at byte %d, Objects/Model)" %
                            FIGURE.encode().index(b"Model: 3,")), (cut, "at byte"), (missing, "does not exist")):
            for options in ((), ("--json",), ("--scene",)):
                _, out, err = korvane("fbx", path, *options, check=1)
                self.assertEqual(out, b"")
                lines = err.decode().splitlines()
                self.assertEqual(len(lines), 1, lines)
                self.assertIn(text, lines[0])
                self.assertIn(path, lines[0])
                if "--scene" not in options:
                    self.assertTrue(lines[0].startswith("korvane: Error loading FBX fil file: " + path), lines[0])

    def test_wrong_options_are_wrong_command_lines(self):
        for options in (("--at", "1"), ("--scene", "--at", "nan"), ("--scene", "--dump"), ("--numbers", "3")):
            korvane("fbx", self.figure, *options, check=2)


if __name__ == "__main__":
    cli_tests.main()

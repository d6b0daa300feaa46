#!/usr/bin/env python3
"""korvane fbx --dump, the records of a file as text; called as cli_tests.py is."""

import json

import cli_tests
from cli_tests import korvane


class fbx_dump(cli_tests.cli_case):
    TEXT = ("; FBX 7.5.0 project file\nFBXHeaderExtension:  {\n\tFBXVersion: 7500\n}\nObjects:  {\n"
            "\tGeometry: 5000000001, \"Geometry::K\u00f6rper\", \"Mesh\" {\n"
            "\t\tVertices: *3 {\n\t\t\ta: 0,0.5,-1\n\t\t}\n\t}\n}\n").encode()

    def test_a_line_for_each_record(self):
        path = self.write("scene.fbx", self.TEXT)
        out = korvane("fbx", path, "--dump", check=0)[1].decode()
        self.assertEqual(out.splitlines(), [
            "FBX 7500, text", "FBXHeaderExtension:", "  FBXVersion: I 7500", "Objects:",
            "  Geometry: L 5000000001, S \"K\u00f6rper\\x00\\x01Geometry\", S \"Mesh\"",
            "    Vertices: d[3] 0 0.5 -1"])
        self.assertEqual(json.loads(korvane("fbx", path, "--dump", "--json", check=0)[1]), {"lines": out.splitlines()})
        out = korvane("fbx", path, "--dump", "--numbers", "2", check=0)[1].decode()
        self.assertIn("    Vertices: d[3] 0 0.5 ...\n", out)

    def test_what_is_larger_than_its_parts_is_printed_in_parts(self):
        numbers = ",".join(str(number) for number in range(40000))
        path = self.write("large.fbx", self.TEXT.replace(b"*3 {\n\t\t\ta: 0,0.5,-1", b"*40000 {\n\t\t\ta: " +
                                                         numbers.encode()))
        out = korvane("fbx", path, "--dump", check=0)[1].decode()
        self.assertEqual(out.splitlines()[-1], "    Vertices: i[40000] " + numbers.replace(",", " "))
        self.assertEqual(json.loads(korvane("fbx", path, "--dump", "--json", check=0)[1]), {"lines": out.splitlines()})

    def test_damage_is_said_with_its_place(self):
        path = self.write("cut.fbx", self.TEXT[:-20])
        self.expect_failure(["fbx", path, "--dump"], 1, path, "byte %d" % (len(self.TEXT) - 20),
                            "line 8, Objects/Geometry/Vertices")
        self.expect_failure(["fbx", path, "--dump", "--numbers", "-1"], 2, "whole number")
        self.expect_failure(["fbx", self.write("empty.fbx", b""), "--dump"], 1, "empty.fbx")
        self.expect_failure(["fbx", self.path("none.fbx"), "--dump"], 1, "none.fbx")


if __name__ == "__main__":
    cli_tests.main()

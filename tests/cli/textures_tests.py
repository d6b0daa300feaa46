#!/usr/bin/env python3
"""korvane normal-map, dds and textures, on pictures made here and on the demo data; called as cli_tests.py is."""

import json
import os
import struct

import cli_tests
from cli_tests import korvane, read


def targa(width, height, pixels):
    """32 bits, from the bottom; pixels are (red, green, blue, alpha)."""
    return struct.pack("<BBBHHBHHHHBB", 0, 0, 2, 0, 0, 0, 0, 0, width, height, 32, 8) + b"".join(
        bytes((blue, green, red, alpha)) for red, green, blue, alpha in pixels)


def written(width, height, pixels):
    plain = targa(width, height, pixels)
    return b"\x15" + plain[1:18] + b"written with libtarga" + plain[18:]


class normal_map(cli_tests.cli_case):
    def test_both_ways_to_the_byte(self):
        blue = self.write("blue.tga", targa(1, 2, [(200, 100, 255, 255), (0, 255, 7, 9)]))
        out = self.path("orange.tga")
        self.assertEqual(korvane("normal-map", "to-orange", blue, "-o", out, check=0)[1], b"1 picture converted\n")
        self.assertEqual(read(out), written(1, 2, [(255, 100, 0, 200), (255, 255, 0, 0)]))
        orange = self.write("orange2.tga", targa(2, 1, [(255, 128, 0, 128), (255, 255, 0, 255)]))
        korvane("normal-map", "to-blue", orange, "-o", out, check=0)
        self.assertEqual(read(out), written(2, 1, [(128, 128, 254, 255), (255, 255, 127, 255)]))

    def test_many_go_into_a_folder_and_a_bad_one_is_named(self):
        one = self.write("one.tga", targa(1, 1, [(1, 2, 3, 4)]))
        os.mkdir(self.path("b"))
        two = self.write("b/one.tga", targa(1, 1, [(5, 6, 7, 8)]))
        bad = self.write("bad.tga", b"\0\0\x20" + bytes(15))
        status, out, err = korvane("normal-map", "to-orange", one, bad, two, "-o", self.path("out"), "--json")
        self.assertEqual(status, 1)
        self.assertIn("image type 32", err.decode())
        self.assertIn("1 of 3 pictures", err.decode())
        self.assertEqual([os.path.basename(file["path"]) for file in json.loads(out)["files"]], ["one.tga", "one_2.tga"])
        self.assertEqual(read(self.path("out/one_2.tga")), written(1, 1, [(255, 6, 0, 5)]))

    def test_an_input_is_never_written_over(self):
        one = self.write("one.tga", targa(1, 1, [(1, 2, 3, 4)]))
        self.expect_failure(["normal-map", "to-blue", one, "-o", one], 1, "one.tga", "replace")
        self.expect_failure(["normal-map", "to-blue", one, "-o", self.path("")], 1, "one.tga", "replace")
        self.expect_failure(["normal-map", "to-blue", one, "-o", self.path("one.bmp")], 2, "one.bmp")
        self.expect_failure(["normal-map", "to-blue", self.path("none.tga"), "-o", self.path("x.tga")], 1, "none.tga")
        self.assertEqual(read(one), targa(1, 1, [(1, 2, 3, 4)]))


    def test_what_is_no_normal_map_is_left_out(self):
        blue = self.write("blue.tga", targa(8, 8, [(128, 128, 255, 255)] * 64))
        wood = self.write("wood.tga", targa(8, 8, [(120, 80, 50, 255)] * 64))
        self.expect_failure(["normal-map", "to-orange", wood, "-o", self.path("x.tga")], 1, "wood.tga", "no normal map",
                            "--force")
        self.expect_failure(["normal-map", "to-blue", blue, "-o", self.path("x.tga")], 1, "blue.tga", "already")
        status, out, err = korvane("normal-map", "to-orange", self.path("*.tga"), "-o", self.path("out"), "--json")
        self.assertEqual((status, len(json.loads(out)["files"]), len(json.loads(out)["failed"])), (1, 1, 1))
        self.assertIn("wood.tga: this is no normal map", err.decode())
        korvane("normal-map", "to-orange", wood, "-o", self.path("x.tga"), "--force", check=0)
        self.assertEqual(read(self.path("x.tga")), written(8, 8, [(255, 80, 0, 120)] * 64))


class dds(cli_tests.cli_case):
    def header(self, name):
        """Mip maps, code, DXGI format."""
        file = read(self.path(name))
        return struct.unpack_from("<I", file, 28)[0], file[84:88], struct.unpack_from("<I", file, 128)[0]

    def test_format_mips_and_header_are_as_asked_or_as_in_like(self):
        self.write("a.tga", targa(8, 8, [(120, 80, 50, 255)] * 64))
        old = self.path("old.dds")
        rows = [([], (4, b"DX10", 99)), (["--linear", "--mips", "2"], (2, b"DX10", 98)),
                (["--format", "bc1", "--mips", "none"], (1, b"DX10", 72)),
                (["--format", "bc5"], (4, b"ATI2", None)), (["--format", "bc3", "--linear"], (4, b"DXT5", None)),
                (["--like", old], (1, b"DX10", 72)), (["--like", old, "--mips", "all"], (4, b"DX10", 72)),
                (["--like", old, "--linear"], (1, b"DXT1", None)), (["--like", old, "--format", "bc7"], (1, b"DX10", 99))]
        korvane("dds", self.path("a.tga"), "-o", old, "--format", "bc1", "--mips", "none", check=0)
        for options, expected in rows:
            with self.subTest(options=options):
                out = korvane("dds", self.path("a.tga"), "-o", self.path("b.dds"), "--json", *options, check=0)[1]
                found = self.header("b.dds")
                self.assertEqual(found[:2] + (found[2] if expected[2] else None,), expected)
                made = json.loads(out)["files"][0]
                self.assertEqual((made["width"], made["height"], made["mips"]), (8, 8, expected[0]))
        self.write("bc2.dds", read(old)[:128] + struct.pack("<I", 74) + read(old)[132:])
        self.expect_failure(["dds", self.path("a.tga"), "-o", self.path("b.dds"), "--like", self.path("bc2.dds")], 1,
                            "bc2.dds", "BC2", "--format")
        self.expect_failure(["dds", self.path("a.tga"), "-o", self.path("b.png")], 2, "b.png", ".dds")
        self.expect_failure(["dds", self.path("a.tga"), "-o", self.path("b.dds"), "--mips", "0"], 2, "--mips")

    def test_many_keep_their_folders_and_painted_work_is_not_lost(self):
        for name in ("in/a.tga", "in/deep/b.tga"):
            os.makedirs(os.path.dirname(self.path(name)), exist_ok=True)
            self.write(name, targa(8, 8, [(120, 80, 50, 255)] * 64))
        self.write("in/bad.png", b"\x89PNG\r\n\x1a\n")
        status, out, err = korvane("dds", self.path("in"), "-o", self.path("out"))
        self.assertEqual((status, out), (1, b"2 DDS files written\n"), err)
        self.assertIn("bad.png", err.decode())
        os.remove(self.path("in/bad.png"))
        first = read(self.path("out/deep/b.dds"))
        text = korvane("dds", self.path("in"), "-o", self.path("out"), "--format", "rgba8", check=0)
        self.assertIn("2 files that differ were left", text[1].decode())
        self.assertEqual(read(self.path("out/deep/b.dds")), first)
        korvane("dds", self.path("in"), "-o", self.path("out"), "--format", "rgba8", "--overwrite", check=0)
        self.assertNotEqual(read(self.path("out/deep/b.dds")), first)

    def test_normal_maps_change_their_form(self):
        blue = self.write("n.tga", targa(8, 8, [(218, 128, 218, 255)] * 64))
        wood = self.write("wood.tga", targa(8, 8, [(120, 80, 50, 255)] * 64))
        for form, back in (("bgra8", "bgra8"), ("bc7", "bc7"), ("bc5", "bgra8")):
            korvane("dds", blue, "-o", self.path("n.dds"), "--normal", "orange", "--format", form, check=0)
            out = korvane("dds", self.path("n.dds"), "-o", self.path("back.dds"), "--normal", "blue", "--format", back,
                          "--json", check=0)[1]
            self.assertEqual([json.loads(out)["files"][0][key] for key in ("srgb", "normal")], [False, "blue"])
        pixel = read(self.path("back.dds"))[128:132] # blue first
        for byte, wanted in zip(pixel, (218, 128, 218, 255)):
            self.assertAlmostEqual(byte, wanted, delta=2)
        self.expect_failure(["dds", wood, "-o", self.path("n.dds"), "--normal", "orange"], 1, "wood.tga", "--force")


class textures(cli_tests.cli_case):
    MODEL = "pack:variantmeshes/variantmeshdefinitions/demo_guard.variantmeshdefinition"

    def test_what_the_models_name_is_what_info_says(self):
        demo = self.path("demo")
        cli_tests.make_demo(demo)
        models = json.loads(korvane("variant", self.MODEL, "--data", demo, "--json", check=0)[1])["models"]
        named = set()
        for model in models:
            for lod in json.loads(korvane("info", "pack:" + model, "--data", demo, "--json", check=0)[1])["lods"]:
                for group in lod["groups"]:
                    named |= {texture["path"].lower().replace("\\", "/") for texture in group["textures"]}
        out = self.path("tex")
        status, text, err = korvane("textures", self.MODEL, "-o", out, "--data", demo)
        self.assertEqual((status, text.decode()), (0, "%d DDS files extracted.\n" % len(named)), err)
        for name in named:
            korvane("extract", name, "-o", self.path("one.dds"), "--data", demo, check=0)
            self.assertEqual(read(self.path("one.dds")), read(os.path.join(out, name)), name)
        painted = self.write(os.path.join("tex", sorted(named)[0]), b"painted")
        result = json.loads(korvane("textures", self.MODEL, "-o", out, "--data", demo, "--json", check=0)[1])
        self.assertEqual([row["path"].replace("\\", "/") for row in result["kept"]], [painted])
        self.assertEqual((result["count"], read(painted)), (len(named) - 1, b"painted"))
        korvane("textures", self.MODEL, "-o", out, "--data", demo, "--overwrite", check=0)
        self.assertNotEqual(read(painted), b"painted")
        missing = self.path("none.rigid_model_v2")
        status, text, err = korvane("textures", missing, "pack:" + models[0], "-o", self.path("png"), "--data", demo,
                                    "--flat", "--as", "png", "--json")
        result = json.loads(text)
        self.assertEqual((status, result["failed"][0]["path"]), (1, missing))
        self.assertGreater(result["count"], 0)
        for file in result["files"]:
            self.assertEqual(read(file["path"].replace("\\", "/"))[:8], b"\x89PNG\r\n\x1a\n")
        self.expect_failure(["textures", "pack:" + models[0], "-o", out, "--as", "bmp"], 2, "bmp")
        self.assertEqual(korvane("textures", missing, "-o", out)[2].decode().count("does not exist"), 1)

        normal = sorted(name for name in named if name.endswith("_normal.dds"))[0]
        korvane("normal-map", "to-blue", "pack:" + normal, "-o", self.path("packed.tga"), "--data", demo, check=0)
        korvane("normal-map", "to-blue", os.path.join(out, normal), "-o", self.path("loose.tga"), check=0)
        self.assertEqual(read(self.path("packed.tga")), read(self.path("loose.tga")))
        # Without archives: what lies on the disk around the model.
        korvane("extract", models[0], "-o", os.path.join(out, "m.rigid_model_v2"), "--data", demo, check=0)
        text = korvane("textures", os.path.join(out, "m.rigid_model_v2"), "-o", self.path("again"), check=0)[1]
        self.assertNotEqual(text.split()[0], b"0")


if __name__ == "__main__":
    cli_tests.main()

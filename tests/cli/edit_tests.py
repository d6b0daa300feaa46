#!/usr/bin/env python3
"""edit and patch as a user types them; every written file is compared with what edit_oracle computes.

Usage: edit_tests.py PROGRAM [--emulator COMMAND] [unittest options]"""

import glob
import json
import os
import shutil
import tempfile
import unittest

import cli_tests
import edit_oracle
from cli_tests import korvane, read
from model_oracle import u32


class edit_case(cli_tests.cli_case):
    @classmethod
    def setUpClass(cls):
        cls.demo = tempfile.mkdtemp(prefix="korvane-edit-")
        cls.addClassCleanup(shutil.rmtree, cls.demo)
        cli_tests.make_demo(cls.demo)
        found = sorted(glob.glob(os.path.join(cls.demo, "**", "*.rigid_model_v2"), recursive=True))
        cls.models = {os.path.basename(path).split(".")[0]: path for path in found}

    def setUp(self):
        super().setUp()
        self.out = self.path("out.rigid_model_v2")

    def edit(self, *arguments, check=0):
        """Runs edit; returns standard output and standard error."""
        return [text.decode() for text in korvane("edit", *arguments, check=check)[1:]]

    def same(self, path, expected, where=""):
        actual = read(path)
        self.assertEqual(len(actual), len(expected), where)
        if actual != expected:
            first = next(i for i, (a, e) in enumerate(zip(actual, expected)) if a != e)
            self.fail("%s: byte %d is %d instead of %d" % (where, first, actual[first], expected[first]))


class saving(edit_case):
    def test_without_an_edit_the_file_is_the_same(self):
        for name, path in self.models.items():
            out, err = self.edit(path, "-o", self.out)
            self.same(self.out, read(path), name)
            self.assertEqual((out.count("0 changes"), err), (1, ""))

    def test_every_texture_and_alpha_mode_of_every_model_is_written_where_it_stands(self):
        versions, without_textures = set(), 0
        for name, path in self.models.items():
            data = read(path)
            paths, alphas, arguments = {}, {}, []
            for i, groups in enumerate(edit_oracle.places(data)):
                for j, (textures, _) in enumerate(groups):
                    for k in range(len(textures)):
                        paths[i, j, k] = "mod/%s/\u00fc=%d,%d,%d.dds" % ("x" * (37 * k), i, j, k)
                        arguments += ["--texture", "%d:%d:%d=%s" % (i, j, k, paths[i, j, k])]
                    alphas[i, j] = (-1, 7, 0x40000000)[(i + j) % 3]
                    arguments += ["--alpha", "%d:%d=%s" % (i, j, ("-1", "7", "0x40000000")[(i + j) % 3])]
                    without_textures += not textures
            err = self.edit(path, "-o", self.out, *arguments)[1]
            self.same(self.out, edit_oracle.edited(data, paths, alphas), name)
            self.assertEqual("has no textures" in err, not all(t for g in edit_oracle.places(data) for t, _ in g))
            versions.add(u32(data, 4))
        self.assertEqual(versions, {5, 6, 7, 8})

    def test_an_alpha_mode_without_textures_is_said_to_be_lost(self):
        data = bytearray(cli_tests.small_model(0, 32, 3, bytes(96), b"bare"))
        textures = 168 + 48 + 12 + 736
        data[textures:textures + 4] = bytes(4)  # the texture entry's bytes are the words now, and a gap
        path = self.write("bare.rigid_model_v2", bytes(data))
        out, err = self.edit(path, "-o", self.out, "--alpha", "0:0=1")
        self.assertIn("LOD 0, group 0 has no textures: its alpha mode is not written", err)
        self.assertIn("0 changes", out)
        self.same(self.out, bytes(data))

    def test_a_long_path_is_cut_to_255_characters_and_a_zero(self):
        path = self.models["demo_guard"]
        err = self.edit(path, "-o", self.out, "--texture", "0:0:1=" + "p" * 300)[1]
        self.assertIn("300 bytes and is cut to 255", err)
        self.same(self.out, edit_oracle.edited(read(path), {(0, 0, 1): "p" * 300}, {}))
        at = edit_oracle.places(read(path))[0][0][0][1]
        self.assertEqual(read(self.out)[at + 254:at + 256], b"p\0")
        for name, cut in (("demo_guard", "400 bytes and is cut to 254"),
                          ("demo_guard_v5", "300 characters of 16 bits and is cut to 254")):
            character = "\u00fc" if name == "demo_guard" else "\U00010348"  # two units of the field each
            wanted = "0:0:1=" + character * (200 if name == "demo_guard" else 150)
            out, err = self.edit(self.models[name], "--dry-run", "--texture", wanted)
            self.assertIn(cut, err)
            self.assertIn(" -> " + character * 127 + "\n", out)

    def test_the_output_may_be_the_model_itself(self):
        path = self.write("in place.rigid_model_v2", read(self.models["demo_guard"]))
        before = read(path)
        self.edit(path, "-o", path, "--alpha", "0:1=1")
        self.same(path, edit_oracle.edited(before, {}, {(0, 1): 1}))
        self.assertEqual(os.listdir(self.folder), ["in place.rigid_model_v2"])

    def test_all_lods_changes_the_groups_of_the_same_name(self):
        path = self.models["demo_guard"]
        lods = json.loads(korvane("info", path, "--json", check=0)[1])["lods"]
        name = lods[0]["groups"][0]["group_name"]
        kind = lods[0]["groups"][0]["textures"][1]["type"]
        alphas, paths = {}, {}
        for i, lod in enumerate(lods):
            for j, group in enumerate(lod["groups"]):
                if group["group_name"] == name:
                    alphas[i, j] = 5
                    for k, texture in enumerate(group["textures"]):
                        if texture["type"] == kind:
                            paths[i, j, k] = "all.dds"
        self.assertGreater(len(alphas), 1)
        self.edit(path, "-o", self.out, "--all-lods", "--alpha", "0:0=5", "--texture", "0:0:1=all.dds")
        self.same(self.out, edit_oracle.edited(read(path), paths, alphas))

    def test_a_prefix_is_replaced_in_every_texture_that_has_it(self):
        model = read(self.models["demo_guard"])
        old = {(i, j, k): model[at:at + 256].split(b"\0")[0].decode()
               for i, groups in enumerate(edit_oracle.places(model)) for j, (textures, _) in enumerate(groups)
               for k, at in enumerate(textures)}
        prefix = "variantmeshes/wh_variantmodels/"
        self.assertTrue(all(path.startswith(prefix) for path in old.values()))
        first = min(old)
        wanted = {place: "My\\Mod/" + path[len(prefix):] for place, path in old.items()}
        wanted[first] = "other.dds"
        self.edit(self.models["demo_guard"], "-o", self.out, "--replace", "VariantMeshes\\WH_variantmodels/=My\\Mod/",
                  "--texture", "%d:%d:%d=other.dds" % first)
        self.same(self.out, edit_oracle.edited(model, wanted, {}))
        out, err = self.edit(self.models["demo_guard"], "--dry-run", "--replace", "nowhere/=x")
        self.assertIn("0 changes", out)
        self.assertIn("no texture path begins with nowhere/", err)

    def test_a_dry_run_lists_and_writes_nothing(self):
        path = self.models["demo_guard"]
        out = self.edit(path, "-o", self.out, "--dry-run", "--alpha", "1:0=-1", "--texture", "0:0:0=new.dds")[0]
        self.assertIn("2 changes", out)
        self.assertIn("LOD 0, group 0, texture 0: variantmeshes/", out)
        self.assertIn(" -> new.dds\n", out)
        self.assertIn("LOD 1, group 0, alpha mode: 0 (Alpha Off) -> 0xFFFFFFFF (Metal/Reflections)", out)
        self.edit(path, self.models["demo_column"], "-o", self.path("folder"), "--dry-run", "--replace", "a=b")
        self.assertEqual(os.listdir(self.folder), [])
        self.edit(path, "-o", self.path("none/x.rigid_model_v2"), "--dry-run", check=1)  # as the run would
        twin = self.write("demo_guard.rigid_model_v2", read(path))
        before = os.stat(twin)
        rows = json.loads(self.edit(twin, "-o", twin, "--json")[0])["files"]
        self.assertEqual([(row["outcome"], row["changes"]) for row in rows], [("unchanged", [])])
        self.assertEqual((os.stat(twin).st_ino, os.stat(twin).st_mtime_ns), (before.st_ino, before.st_mtime_ns))
        err = self.edit(path, twin, "-o", self.path("folder"), "--dry-run", check=1)[1]
        self.assertIn("the same path on the disk", err)
        name = json.loads(korvane("info", path, "--json", check=0)[1])["lods"][0]["groups"][0]["textures"][0]["path"]
        data = bytearray(read(path))
        same = ["--dry-run", "--texture", "0:0:0=" + name]
        self.assertIn("0 changes", self.edit(path, *same)[0])
        data[edit_oracle.places(data)[0][0][0][0] + 200] = 7
        self.assertRegex(self.edit(self.write("junk", bytes(data)), *same)[0], r"1 change\n.* \(the path stays")

    def test_several_models_go_into_a_folder_and_a_bad_one_does_not_stop_the_rest(self):
        good = [self.models[name] for name in ("demo_guard", "demo_column")]
        bad = self.write("bad.rigid_model_v2", read(good[0])[:500])
        twin = self.write("demo_guard.rigid_model_v2", read(good[0]))
        folder = self.path("new/folder")
        err = self.edit(good[0], bad, twin, good[1], "-o", folder, "--alpha", "0:0=1", check=1)[1]
        for text in ("bad.rigid_model_v2", "byte ", "the same path", "korvane: ", "2 of 4 models failed"):
            self.assertIn(text, err)
        self.assertEqual(sorted(os.listdir(folder)), ["demo_column.rigid_model_v2", "demo_guard.rigid_model_v2"])
        for path in good:
            self.same(os.path.join(folder, os.path.basename(path)), edit_oracle.edited(read(path), {}, {(0, 0): 1}))

    def test_a_model_comes_out_of_an_archive(self):
        operand = "pack:variantmeshes/wh_variantmodels/hu1/demo/demo_guard.rigid_model_v2"
        korvane("extract", operand, "-o", self.path("plain"), "--data", self.demo, check=0)
        self.edit(operand, "-o", self.folder, "--alpha", "0:0=5", "--data", self.demo)
        self.same(self.path("demo_guard.rigid_model_v2"),
                  edit_oracle.edited(read(self.path("plain")), {}, {(0, 0): 5}))

    def test_what_is_wrong_is_told_and_nothing_is_written(self):
        model = self.models["demo_guard"]
        output = ["-o", self.out]
        rows = [(2, [model], "-o"), (2, output, "MODEL"), (2, [model, "-o", ""], "-o"),
                (2, [model] + output + ["--texture", "0:0=x"], "0:0=x"),
                (2, [model] + output + ["--texture", "0:0:-1=x"], "0:0:-1=x"),
                (2, [model] + output + ["--texture", "0:0:0"], "0:0:0"),
                (2, [model] + output + ["--alpha", "0:0=on"], "on"),
                (2, [model] + output + ["--alpha", "0:0=4294967296"], "4294967296"),
                (2, [model] + output + ["--alpha", "0:0=-2147483649"], "-2147483649"),
                (2, [model] + output + ["--alpha", "0:0=0x"], "0x"),
                (2, [model] + output + ["--replace", "=x"], "=x"),
                (1, [model] + output + ["--texture", "4:0:0=x"], "there is no LOD 4"),
                (1, [model] + output + ["--texture", "0:99:0=x"], "there is no group 99: LOD 0 has "),
                (1, [model] + output + ["--texture", "0:0:99=x"], "there is no texture 99: LOD 0, group 0 has "),
                (1, [model] + output + ["--alpha", "0:99=1"], "there is no group 99"),
                (1, [self.path("none")] + output, "none"),
                (1, [model, "-o", self.path("no folder/out")], "no folder"),
                (1, [self.write("cut", read(model)[:1000])] + output, "byte ")]
        for status, arguments, text in rows:
            with self.subTest(arguments=arguments):
                self.expect_failure(["edit"] + arguments, status, text)
        self.assertEqual(os.listdir(self.folder), ["cut"])


class patching(edit_case):
    def patch(self, data, *options, check=0):
        out = korvane("patch", self.write("in.rigid_model_v2", data), "-o", self.out, *options, check=check)
        return out[2].decode()

    def test_version_6_becomes_version_7(self):
        data = read(self.models["demo_guard_v6"])
        self.patch(data)
        self.same(self.out, edit_oracle.patched(data))
        self.assertEqual(len(read(self.out)) - len(data), 8 * u32(data, 8))
        count = 0
        for name, path in self.models.items():
            if u32(read(path), 4) == 7:
                self.patch(edit_oracle.unpatched(read(path)))
                self.same(self.out, read(path), name)
                count += 1
        self.assertGreater(count, 5)

    def test_other_versions_are_refused_with_the_sentences_that_users_know(self):
        for name, text in (("demo_guard", "This RigidModel file is already version 7!"),
                           ("demo_guard_v8", "This RigidModel file is version 8 (Three Kingdoms), and cannot be patched!"),
                           ("demo_guard_v5", "This RigidModel file is version 5, and cannot be patched: its texts")):
            self.expect_failure(["patch", self.models[name], "-o", self.out], 1, text, name)
            self.assertFalse(os.path.exists(self.out))
        self.expect_failure(["patch", self.models["demo_guard_v6"]], 2, "-o")

    def test_version_7_over_version_6_headers_is_told_edited_by_force_and_repaired(self):
        original = read(self.models["demo_guard_v6"])
        mixed = edit_oracle.with_version_word(original, 7)
        path = self.write("mixed.rigid_model_v2", mixed)
        edits = ["--texture", "2:0:0=x.dds", "--alpha", "0:0=1"]
        self.expect_failure(["edit", path, "-o", self.out] + edits, 1, "LOD headers are those of version 6", "--force")
        self.expect_failure(["patch", path, "-o", self.out], 1, "already version 7!", "--repair")
        self.expect_failure(["info", path], 1, "headers are those of version 6", "--repair")
        alone = edit_oracle.unpatched(cli_tests.small_model(0, 32, 3, bytes(96), b"one"))
        alone = self.write("alone", edit_oracle.with_version_word(alone, 7))
        self.assertIn(b"headers are those of version 6", korvane("info", alone, check=0)[2])
        self.assertFalse(os.path.exists(self.out))
        self.edit(path, "-o", self.out, "--force", *edits)
        self.same(self.out, edit_oracle.edited(mixed, {(2, 0, 0): "x.dds"}, {(0, 0): 1}, 6))
        self.patch(mixed, "--repair")
        self.same(self.out, edit_oracle.patched(original))

    def test_several_models_go_into_a_folder(self):
        data = edit_oracle.unpatched(read(self.models["demo_column"]))
        column = self.write("column.rigid_model_v2", data)
        err = korvane("patch", self.models["demo_guard_v6"], column, self.models["demo_guard_v8"], "-o",
                      self.path("out/"), check=1)[2]
        self.assertIn(b"1 of 3 models failed", err)
        self.same(self.path("out/demo_guard_v6.rigid_model_v2"), edit_oracle.patched(read(self.models["demo_guard_v6"])))
        self.same(self.path("out/column.rigid_model_v2"), edit_oracle.patched(data))


if __name__ == "__main__":
    cli_tests.main()

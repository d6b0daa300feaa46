#!/usr/bin/env python3
"""The archives that korvane demo-data makes, and variant mesh definitions; called as cli_tests.py is."""

import json
import os
import shutil
import tempfile

import cli_tests
import pack_oracle
from cli_tests import korvane


class demo_archives(cli_tests.cli_case):
    """The archives of the demo data, as the program and a reader that is not its own see them."""

    @classmethod
    def setUpClass(cls):
        cls.demo = tempfile.mkdtemp(prefix="korvane-demo-")
        cls.addClassCleanup(shutil.rmtree, cls.demo)
        cls.written = json.loads(korvane("demo-data", cls.demo, "--json", "--quiet", check=0)[1])
        cls.data = ["--data", cls.demo, "--quiet"]
        cls.archives = {}
        for name in os.listdir(cls.demo):
            if name.endswith(".pack"):
                with open(os.path.join(cls.demo, name), "rb") as file:
                    cls.archives[name] = pack_oracle.archive(file.read())
        cls.order = sorted(cls.archives, reverse=True)
        cls.copies = {}  # of each path: archive and entry, the winner last
        for name in cls.order:
            for entry in cls.archives[name].entries:
                cls.copies.setdefault(entry.path.lower(), []).append((name, entry))

    def loose(self, path):
        try:
            with open(os.path.join(self.demo, *path.split("\\")), "rb") as file:
                return file.read()
        except FileNotFoundError:
            return None

    def test_a_check_finds_the_faults_of_the_faulty_model_and_no_others(self):
        folder = os.path.join(self.demo, "variantmeshes")
        found = json.loads(korvane("check", folder, "--json", *self.data, check=1)[1])
        self.assertEqual({row["file"].replace("\\", "/").rsplit("/", 1)[-1] for row in found},
                         {"demo_guard_faulty.rigid_model_v2"})
        self.assertEqual(sorted((row["severity"], row["kind"], row["lod"], row["group"], row["texture"]) for row in found
                                if row["lod"] == 0),
                         [("error", "bones", 0, 0, None), ("error", "index_range", 0, 0, None),
                          ("error", "texture_missing", 0, 0, 0), ("error", "texture_path", 0, 0, 1),
                          ("error", "texture_path", 0, 0, 2), ("warning", "material", 0, 0, None),
                          ("warning", "texture_type", 0, 0, 3), ("warning", "weights", 0, 0, None)])
        self.assertEqual([(row["severity"], row["kind"], row["lod"]) for row in found if row["lod"] != 0],
                         [("warning", "lod_order", 1), ("error", "lod_empty", 2)])
        self.assertIn("guard_shield_diffuse.dds\"?", found[1]["text"])
        status, text, error = korvane("check", "pack:*", *self.data)
        self.assertEqual((status, error), (0, b""))
        self.assertIn(b"0 errors, 1 warning, 0 notes", text)  # of the group in a format that is not decoded

    def test_what_is_said_to_be_written_is_there(self):
        found = {os.path.relpath(os.path.join(where, name), self.demo).replace(os.sep, "/"):
                 os.path.getsize(os.path.join(where, name)) for where, _, names in os.walk(self.demo) for name in names}
        self.assertEqual({row["path"]: row["size"] for row in self.written}, found)
        self.assertTrue(all(row["about"] for row in self.written))

    def test_the_order_and_the_index_are_those_of_the_oracle(self):
        self.assertEqual(self.order, ["data_1.pack", "data.pack", "a_demo_mod.pack"])
        rows = json.loads(korvane("archives", "--json", *self.data, check=0)[1])
        self.assertEqual([(row["name"], row["format"], row["files"]) for row in rows],
                         [(name, self.archives[name].format, len(self.archives[name].entries)) for name in self.order])
        rows = json.loads(korvane("list", "--json", *self.data, check=0)[1])
        expected = []
        for path in sorted(self.copies):
            name, entry = self.copies[path][-1]
            expected.append((path, name, entry.size, entry.offset, entry.flag != 0,
                             [other for other, _ in self.copies[path][:-1]]))

        def base(path):
            return path.replace("\\", "/").rsplit("/", 1)[-1]
        self.assertEqual([(row["path"], base(row["archive"]), row["size"], row["offset"], row["compressed"],
                           [base(other) for other in row["hides"]]) for row in rows], expected)
        self.assertGreaterEqual(sum(len(each) == 3 for each in self.copies.values()), 2)
        self.assertGreaterEqual(sum(len(each) == 2 for each in self.copies.values()), 3)

    def test_the_demo_definition_is_whole_and_the_mod_changes_the_weapon(self):
        shown = json.loads(korvane("variant", "pack:variantmeshes/variantmeshdefinitions/demo_guard.variantmeshdefinition",
                                   "--json", *self.data, check=0)[1])
        self.assertEqual(shown["models"], [
            "variantmeshes\\wh_variantmodels\\hu1\\demo\\demo_guard_%s.rigid_model_v2" % part
            for part in ("body", "cape", "head", "spear", "shield")])
        self.assertEqual((shown["missing"], shown["problems"]), ([], []))

    def test_extracted_bytes_are_the_winners(self):
        target = self.path("out")
        korvane("extract", "--match", "*", "-o", target, *self.data, check=0)
        kinds = {}
        for path, copies in self.copies.items():
            entry = copies[-1][1]
            with open(os.path.join(target, *path.split("\\")), "rb") as file:
                actual = file.read()
            kind = pack_oracle.compression(entry)
            kinds[kind] = kinds.get(kind, 0) + 1
            self.assertEqual(len(actual), pack_oracle.unpacked_size(entry), path)
            loose, expected = self.loose(path), pack_oracle.content(entry)
            if expected is None and copies[-1][0] == "data.pack":
                expected = loose  # which is what went into the archive
            if expected is not None:
                self.assertTrue(actual == expected, path)
            if loose is not None and copies[-1][0] == "a_demo_mod.pack" and len(copies) > 1:
                self.assertFalse(actual == loose, path + " is not overridden")
        self.assertEqual(sum(len(names) for _, _, names in os.walk(target)), len(self.copies))
        self.assertEqual(sorted(kinds), ["lz4", "lzma", "none", "zstd"])
        with open(os.path.join(target, "demo", "readme.txt"), "rb") as file:
            self.assertIn(b"a_demo_mod.pack, the archive that is read last", file.read())


class variant(cli_tests.cli_case):
    pack = cli_tests.archives.pack
    BODY = "man\\body.rigid_model_v2"

    def setUp(self):
        super().setUp()
        self.pack("data.pack", [
            (b"man\\body.rigid_model_v2", b"model", 0), (b"man\\hat.rigid_model_v2", b"model", 0),
            (b"sets\\hats.variantmeshdefinition", b"<VARIANT_MESH model='man/HAT.rigid_model_v2'/>", 0),
            (b"sets\\ring.variantmeshdefinition", b"<VARIANT_MESH_REFERENCE definition='sets/ring.variantmeshdefinition'/>",
             0), (b"sets\\cut.variantmeshdefinition", b"<VARIANT_MESH>", 0)], b"PFH5", 0x40)
        self.guard = self.write("guard.variantmeshdefinition", b"""<?xml version="1.0" encoding="latin1"?>
            <variant_mesh model="Man\\\\BODY.rigid_model_v2">
              <SLOT name="K\xf6pfe" attach_point="be_head" probability="0.5">
                <VARIANT_MESH model="man/lost.rigid_model_v2"/>
                <VARIANT_MESH_REFERENCE definition="sets\\\\HATS.variantmeshdefinition"/>
              </SLOT>
              <EXTRA size="1"/>
            </variant_mesh>""")
        self.none = ["--config", self.path("none.cfg")]
        self.data = ["--data", self.folder]

    def models(self, *arguments):
        out, err = korvane("variant", *arguments, "--json", check=0)[1:]
        self.assertEqual(out.count(b"\n"), 1)
        return json.loads(out), err.decode()

    def test_models_are_listed_in_document_order_with_references_followed(self):
        shown, err = self.models(self.guard, *self.data)
        self.assertEqual(shown["models"], [self.BODY, "man\\lost.rigid_model_v2", "man\\hat.rigid_model_v2"])
        self.assertEqual((shown["missing"], shown["problems"], err), (["man\\lost.rigid_model_v2"], [], ""))
        slot = shown["tree"]["children"][0]
        self.assertEqual((slot["kind"], slot["attributes"]["name"]), ("slot", "K\u00f6pfe"))
        self.write("c.cfg", b'data_paths = "' + os.path.join(self.folder, "").encode() + b'";')
        self.assertEqual(self.models(self.guard, "--config", self.path("c.cfg"))[0], shown)

    def test_without_data_folders_a_definition_shows_what_it_holds_itself(self):
        shown, err = self.models(self.guard, *self.none)
        self.assertEqual(shown["models"], [self.BODY, "man\\lost.rigid_model_v2"])
        self.assertIsNone(shown["missing"])
        self.assertEqual(shown["problems"], ["variant_mesh_def::fillTag(): pack_file::sm_poPathTree == nullptr"])
        self.assertIn("no data folders", err)
        plain = self.write("plain", b"<VARIANT_MESH model='a'/><VARIANT_MESH model='b'/>")
        shown, err = self.models(plain, *self.none)
        self.assertEqual((shown["models"], shown["problems"], err), (["a", "b"], [], ""))

    def test_the_text_is_a_tree(self):
        out = korvane("variant", self.guard, *self.data, check=0)[1].decode()
        self.assertEqual(out.splitlines(), [
            "mesh " + self.BODY,
            "  slot K\u00f6pfe, at be_head, probability 0.5",
            "    mesh man\\lost.rigid_model_v2  [in no archive]",
            "    reference sets\\hats.variantmeshdefinition",
            "      mesh man\\hat.rigid_model_v2",
            "  (EXTRA size=\"1\")",
            "", "3 models, 1 slot, 1 reference; 1 of the models in no archive"])

    def test_problems_are_notes_and_failures_one_line(self):
        shown, err = self.models("pack:Sets/Ring.variantmeshdefinition", *self.data)
        self.assertEqual(shown["models"], [])
        self.assertIn("circle", shown["problems"][0])
        self.assertEqual(err, shown["problems"][0] + "\n")
        self.assertEqual(self.models("pack:sets/ring.variantmeshdefinition", "--quiet", *self.data)[1], "")
        for operand, text in (("pack:sets/cut.variantmeshdefinition", "byte 13"), ("pack:sets", "folder"),
                              ("pack:none", "none"), (self.path("none"), "none"),
                              (self.write("bad", b"<a>\n</b>"), "bad: ")):
            self.expect_failure(["variant", operand] + self.data, 1, text)
        self.expect_failure(["variant", "pack:sets/hats.variantmeshdefinition"] + self.none, 1, "no data folders")
        self.expect_failure(["variant"], 2)


if __name__ == "__main__":
    cli_tests.main()

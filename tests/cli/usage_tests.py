#!/usr/bin/env python3
"""korvane refs and needs on the demo data, against a plain walk with the commands that read one file each; called as
cli_tests.py is."""

import collections
import json
import os
import shutil
import struct
import tempfile
import xml.etree.ElementTree as tree

import cli_tests
from cli_tests import korvane


def normal(path):
    return path.strip().replace("/", "\\").lower()


def told(*arguments, check=0):
    return json.loads(korvane(*arguments, "--json", check=check)[1])


class usage(cli_tests.cli_case):
    @classmethod
    def setUpClass(cls):
        cls.data = tempfile.mkdtemp(prefix="korvane-demo-")
        cls.addClassCleanup(shutil.rmtree, cls.data)
        cli_tests.make_demo(cls.data)

    def walk(self):
        """Who names what: {path: {(user, as)}}, by reading each file that counts."""
        users = collections.defaultdict(set)
        for entry in told("--data", self.data, "list"):
            path = entry["path"]
            if path.endswith(".rigid_model_v2"):
                model = told("--data", self.data, "info", "pack:" + path)
                for lod in model["lods"]:
                    for group in lod["groups"]:
                        for texture in group["textures"]:
                            users[normal(texture["path"])].add((path, texture["type_name"]))
                if model["skeleton_id"]:
                    users["animations\\skeletons\\" + model["skeleton_id"] + ".anim"].add((path, "skeleton"))
            elif path.endswith(".variantmeshdefinition"):
                korvane("--data", self.data, "extract", path, "-o", self.path("d.xml"), "--overwrite", check=0)
                self.names_of(path, self.path("d.xml"), users)
        users.pop("", None)
        return users

    def names_of(self, user, file, users):
        for element in tree.parse(file).iter():
            if element.tag == "VARIANT_MESH" and element.get("model"):
                users[normal(element.get("model"))].add((user, "model"))
            elif element.tag == "VARIANT_MESH_REFERENCE":
                users[normal(element.get("definition"))].add((user, "reference"))

    def test_the_index_says_what_a_plain_walk_finds(self):
        users = self.walk()
        self.assertGreater(len(users), 60)
        spelled = [path.upper().replace("\\", "/") for path in users]
        found = told("--data", self.data, "refs", *spelled, "no/such.dds")
        self.assertEqual([each["path"] for each in found], list(users) + ["no\\such.dds"])
        for each in found[:-1]:
            with self.subTest(path=each["path"]):
                self.assertEqual([(use["path"], use["as"]) for use in each["used_by"]], sorted(users[each["path"]]))
        self.assertEqual(found[-1]["used_by"], [])
        # What a figure needs is what its files name, and what those name in turn.
        figure = "variantmeshes\\variantmeshdefinitions\\demo_rider.variantmeshdefinition"
        needed, before = {figure}, set()
        while needed != before:
            before = set(needed)
            needed |= {path for path, names in users.items() if any(user in before for user, _ in names)}
        told_needs = told("--data", self.data, "needs", "pack:" + figure)
        self.assertEqual([each["path"] for each in told_needs], sorted(needed - {figure}))
        self.assertFalse([each for each in told_needs if each["missing"]])

    def test_what_is_kept_follows_the_archives(self):
        data = self.path("data")
        shutil.copytree(self.data, data)
        config = self.write("config.cfg", ('data_paths = "%s/";\n' % data).encode())
        texture = "variantmeshes\\wh_variantmodels\\hu1\\demo\\tex\\guard_steel_diffuse.dds"
        ask = ("--config", config, "refs", texture)
        fresh = told("--no-cache", *ask)
        self.assertFalse(os.path.exists(self.path("usage.cache")))
        self.assertEqual(told(*ask), fresh)
        kept = cli_tests.read(self.path("usage.cache"))
        self.assertEqual(told(*ask), fresh)
        for damage in (b"", kept[:-1], kept[:100] + b"\xff" + kept[101:], b"Korvane usage cache 1" + b"\xff" * 40):
            self.write("usage.cache", damage)
            self.assertEqual(told(*ask), fresh)
        # Models that an archive of a mod hides are not counted; a broken one is named and hides as well.
        models = [use["path"] for use in fresh[0]["used_by"]]
        index = struct.pack("<I", 11) + models[0].encode() + b"\0"
        self.write("data/a_first.pack", b"PFH4" + struct.pack("<6I", 3, 0, 0, 1, len(index), 0) + index + b"RMV2 broken")
        status, out, err = korvane(*ask, "--json")
        self.assertEqual(status, 0)
        self.assertEqual([use["path"] for use in json.loads(out)[0]["used_by"]], models[1:])
        self.assertIn(models[0], err.decode())

    def test_what_is_missing_is_said(self):
        definition = self.write("unit.variantmeshdefinition", b'<VARIANT_MESH model="no\\such.rigid_model_v2">'
                                b'<SLOT name="s"><VARIANT_MESH_REFERENCE definition="no/such.variantmeshdefinition"/>'
                                b'</SLOT></VARIANT_MESH>')
        status, out, err = korvane("--data", self.data, "needs", definition, "--json")
        self.assertEqual(status, 1)
        self.assertIn("2 of 2 files are missing", err.decode())
        self.assertEqual([(each["path"], each["kind"], each["archive"], each["missing"]) for each in json.loads(out)],
                         [("no\\such.rigid_model_v2", "model", None, True),
                          ("no\\such.variantmeshdefinition", "definition", None, True)])
        self.expect_failure(["--data", self.data, "needs", "pack:no/such.rigid_model_v2"], 1, "no archive holds")
        self.expect_failure(["needs", self.write("x.rigid_model_v2", b"no model")], 1, "x.rigid_model_v2")


if __name__ == "__main__":
    cli_tests.main()

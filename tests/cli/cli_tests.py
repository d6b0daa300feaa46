#!/usr/bin/env python3
"""Drives the console program as a user does: arguments, exit status, both outputs, what is left on disk.

Usage: cli_tests.py PROGRAM [--emulator COMMAND] [unittest options]"""

import argparse
import glob
import json
import math
import os
import platform
import shutil
import struct
import subprocess
import sys
import tempfile
import unittest

import model_oracle

sys.path.insert(0, os.path.join(os.path.dirname(__file__), "..", "support"))
from project_version import VERSION  # noqa: E402

program = []
is_windows = False
is_sanitized = False


def korvane(*arguments, check=None):
    """Runs the program; returns exit status, standard output and standard error."""
    done = subprocess.run(program + list(arguments), stdin=subprocess.DEVNULL, capture_output=True, timeout=300)
    if check is not None and done.returncode != check:
        raise AssertionError("exit status %d instead of %d: %s" % (done.returncode, check, done.stderr.decode()))
    return done.returncode, done.stdout, done.stderr


def make_demo(folder):
    """The demo data, of which the program makes one for all tests: a sanitizer makes that slow."""
    made = os.stat(program[-1])
    kept = os.path.join(os.path.dirname(os.path.abspath(program[-1])), "..",
                        "demo-of-tests-%x-%x" % (made.st_mtime_ns, made.st_size))
    if not os.path.isdir(kept):
        fresh = tempfile.mkdtemp(dir=os.path.dirname(kept))
        korvane("demo-data", os.path.join(fresh, "demo"), "--quiet", check=0)
        for old in glob.glob(os.path.join(os.path.dirname(kept), "demo-of-tests-*")):
            if os.path.basename(old) != os.path.basename(kept):
                shutil.rmtree(old, ignore_errors=True)
        try:
            os.rename(os.path.join(fresh, "demo"), kept)
        except OSError:  # another test was faster
            pass
        shutil.rmtree(fresh)
    shutil.copytree(kept, folder, dirs_exist_ok=True)


def limited(kibibytes):
    """The program in an address space of that size."""
    return ["sh", "-c", "ulimit -v %d; exec \"$@\"" % kibibytes, "sh"] + program


def read(path):
    with open(path, "rb") as file:
        return file.read()


def same(actual, expected):
    """Equal, where floats are compared as binary32 values and NaN and infinities are texts."""
    if isinstance(expected, float):
        if math.isnan(expected):
            return actual == "nan"
        if math.isinf(expected):
            return actual == ("inf" if expected > 0 else "-inf")
        return isinstance(actual, (int, float)) and model_oracle.f32(actual) == model_oracle.f32(expected)
    if isinstance(expected, list):
        return len(actual) == len(expected) and all(map(same, actual, expected))
    return actual == expected


class cli_case(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="korvane cli \u00fc ")  # a blank and a letter beyond ASCII
        self.addCleanup(shutil.rmtree, self.folder)

    def path(self, name):
        return os.path.join(self.folder, name)

    def write(self, name, data):
        with open(self.path(name), "wb") as out:
            out.write(data)
        return self.path(name)

    def expect_failure(self, arguments, status, *texts):
        code, out, err = korvane(*arguments)
        message = err.decode("utf-8")
        self.assertEqual(code, status, message)
        self.assertEqual(out, b"")
        self.assertTrue(message.startswith("korvane: "), message)
        self.assertEqual(message.count("\n"), 1, message)
        for text in texts:
            self.assertIn(text, message)


class command_line(cli_case):
    def test_wrong_command_lines_end_with_2_and_one_line(self):
        for arguments in ([], ["no-such-command"], ["info"], ["variant", "a", "b"], ["info", "a", "--no-such-option"],
                          ["--config"]):
            with self.subTest(arguments=arguments):
                self.expect_failure(arguments, 2)

    def test_an_unknown_command_is_named(self):
        self.expect_failure(["bogus"], 2, "bogus")
        self.expect_failure(["exprot"], 2, "did you mean export?")
        self.expect_failure(["info", "a", "--verticies"], 2, "--verticies", "did you mean --vertices?")
        for arguments in (["convert", "a", "--template", "b", "--output", "c.fbx"], ["export", "a", "-o", "two.obj"],
                          ["export", "a", "--skeleton", "s", "--anim", "b", "--anim", "c", "-o", "two.obj"],
                          ["textures", "a", "-o", "x.png"], ["extract", "--match", "*", "-o", "x.pack"]):
            self.expect_failure(arguments, 2, "-o")
        if not is_windows:
            self.expect_failure(["render", "a", "-o", "b.png"], 2, "korvane-cli.exe")
        self.expect_failure(["demo-data", ""], 2, "empty")

    def test_what_cannot_be_written_or_read_is_said(self):
        if is_windows:
            self.skipTest("needs /dev/full and pipes")
        for arguments in (["--version"], ["info", "--help"]):
            with open("/dev/full", "wb") as full:
                done = subprocess.run(program + arguments, stdout=full, stderr=subprocess.PIPE, timeout=60)
            self.assertEqual((done.returncode, done.stderr.count(b"\n")), (1, 1), done.stderr)
        os.mkfifo(self.path("pipe"))
        self.expect_failure(["info", self.path("pipe")], 1, "regular file")
        os.symlink(self.path("real.cfg"), self.path("link.cfg"))
        self.write("real.cfg", b"a = \"1\";")
        korvane("config", "add", "b", "2", "--config", self.path("link.cfg"), check=0)
        self.assertTrue(os.path.islink(self.path("link.cfg")))
        self.assertIn(b"b = ", read(self.path("real.cfg")))
        model = self.write("model", small_model(0, 32, 3, bytes(96), b"name"))
        os.symlink("later", self.path("dangling"))  # leads to a file that is not there yet
        korvane("edit", model, "-o", self.path("dangling"), check=0)
        self.assertTrue(os.path.islink(self.path("dangling")))
        self.assertEqual(read(self.path("later")), read(model))
        os.symlink("circle", self.path("circle"))
        self.expect_failure(["edit", model, "-o", self.path("circle")], 1, "leads in a circle")

    def test_a_large_file_is_refused_by_its_first_bytes(self):
        if is_windows or is_sanitized:
            self.skipTest("needs a limit of address space and sparse files")
        for start, text in ((b"no model", "does not begin with \"RMV2\""), (b"RMV2\7\0\0\0", "4294967295")):
            path = self.write("large.rigid_model_v2", start)
            os.truncate(path, 5 << 30)
            for command in (["info"], ["check"], ["edit", "--dry-run"], ["patch", "-o", self.path("x")]):
                done = subprocess.run(limited(1 << 20) + [command[0], path, *command[1:]], capture_output=True)
                self.assertEqual(done.returncode, 1)
                self.assertIn(text, (done.stdout + done.stderr).decode())

    def test_when_memory_runs_out_the_file_is_named(self):
        if is_windows or is_sanitized:
            self.skipTest("needs a limit of address space")
        path = self.write("much.rigid_model_v2", small_model(0, 32, 500000, bytes(16000000), b"name"))
        for command in (["info", path], ["edit", path, "--dry-run"], ["check", path]):
            done = subprocess.run(limited(60000) + command, capture_output=True, timeout=60)
            self.assertEqual(done.returncode, 1)
            self.assertIn("not enough memory", (done.stdout + done.stderr).decode())
            self.assertIn(path, (done.stdout + done.stderr).decode())

    def test_help_and_version(self):
        for arguments in (["--help"], ["info", "--help"]):
            out = korvane(*arguments, check=0)[1]
            self.assertIn(b"info", out)
            self.assertNotIn(b"\r", out)
        self.assertEqual(korvane("--version", check=0)[1], b"Korvane %s\n" % VERSION.encode())

    def test_a_missing_file_is_named(self):
        missing = self.path("\u674e\u660e.rigid_model_v2")
        self.expect_failure(["info", missing], 1, missing if not is_windows else "\u674e\u660e.rigid_model_v2")
        self.expect_failure(["info", self.folder], 1, "folder")


class info(cli_case):
    @classmethod
    def setUpClass(cls):
        cls.demo = tempfile.mkdtemp(prefix="korvane-demo-")
        cls.addClassCleanup(shutil.rmtree, cls.demo)
        make_demo(cls.demo)
        cls.models = sorted(glob.glob(os.path.join(cls.demo, "**", "*.rigid_model_v2"), recursive=True))

    def compare(self, actual, expected, where):
        for key, value in expected.items():
            if key == "lods" or key == "groups":
                self.assertEqual(len(actual[key]), len(value), where)
                for i, (a, e) in enumerate(zip(actual[key], value)):
                    self.compare(a, e, "%s, %s %d" % (where, key, i))
            elif key == "vertices":
                self.assertEqual(len(actual[key]), len(value), where)
                for i, (a, e) in enumerate(zip(actual[key], value)):
                    for field in e:
                        if not same(a[field], e[field]):
                            self.fail("%s, vertex %d, %s: %s != %s" % (where, i, field, a[field], e[field]))
            elif key in ("attachments", "textures"):
                self.assertEqual(len(actual[key]), len(value), where)
                for a, e in zip(actual[key], value):
                    self.assertTrue(all(same(a[field], e[field]) for field in e), "%s: %s != %s" % (where, a, e))
            else:
                self.assertTrue(same(actual[key], value), "%s, %s: %s != %s" % (where, key, actual[key], value))

    def test_every_demo_model_reads_as_the_oracle_reads_it(self):
        versions, formats = set(), set()
        for path in self.models:
            with open(path, "rb") as file:
                data = file.read()
            out = korvane("info", path, "--json", "--vertices", check=0)[1]
            self.assertEqual(out.count(b"\n"), 1)
            actual, expected = json.loads(out), model_oracle.model(data)
            self.compare(actual, expected, os.path.basename(path))
            versions.add(actual["version"])
            formats |= {g["vertex_format"] for lod in actual["lods"] for g in lod["groups"]}
        self.assertEqual(versions, {5, 6, 7, 8})
        self.assertEqual(formats & set(range(8)), set(range(8)))

    def test_the_text_names_what_a_modder_looks_for(self):
        path = next(p for p in self.models if os.path.basename(p) == "demo_guard.rigid_model_v2")
        out = korvane("info", path, check=0)[1].decode()
        for text in ("WH/WH2", "humanoid01", "LOD 0", "Diffuse", "Normal Map", "Cinematic"):
            self.assertIn(text, out)
        self.assertNotIn("\r", out)

    def test_every_vertex_bit_pattern_and_odd_names(self):
        """Random bytes as vertices of every format: NaN, infinities, denormals and every byte value occur."""
        state = 12345
        for format_id, stride in ((0, 32), (1, 16), (2, 24), (3, 28), (4, 32), (5, 20), (6, 27), (7, 40), (9, 8)):
            vertices = bytearray()
            step = stride + (4 if format_id == 1 else 0)
            for _ in range(step * 300):
                state = (state * 1103515245 + 12345) & 0x7FFFFFFF
                vertices.append((state >> 16) & 255)
            data = small_model(format_id, stride, 300, bytes(vertices), b"Sch\xfctze \"1\"")
            out = korvane("info", self.write("odd.rigid_model_v2", data), "--json", "--vertices", check=0)[1]
            actual = json.loads(out)
            self.compare(actual, model_oracle.model(data), "format %d" % format_id)
            self.assertEqual(actual["lods"][0]["groups"][0]["group_name"], "Sch\u00fctze \"1\"")


class configuration(cli_case):
    def config(self, *arguments, check=0):
        return korvane("--config", self.path("c.cfg"), "config", *arguments, check=check)[1]

    def shown(self):
        return json.loads(self.config("--json").decode("utf-8"))

    def read(self):
        with open(self.path("c.cfg"), "rb") as file:
            return file.read()

    def test_values_are_added_in_lower_case_and_cleared(self):
        self.assertEqual(self.shown(), {})  # a missing file is an empty configuration
        self.config("add", "Data_Paths", "C:\\Games\\Data\\", "d:\\\u00c4 b\\")
        self.config("add", "DATA_PATHS", "c:\\games\\DATA", "x/", "y/z", "--front")
        expected = ["y/z/", "x/", "c:\\games\\data\\", "d:\\\u00c4 b\\"]
        self.assertEqual(self.shown(), {"data_paths": expected})
        self.assertEqual(self.read(), b"data_paths = " + b", ".join(
            b'\r"' + value.encode("utf-8") + b'"' for value in expected) + b";\r\n\r\n")
        self.config("clear", "Data_paths")
        self.assertEqual(self.shown(), {"data_paths": []})

    def test_what_cannot_be_stored_is_refused_and_nothing_is_written(self):
        before = b'a = \r"1";\r\n\r\n'
        self.write("c.cfg", before)
        option = ["--config", self.path("c.cfg"), "config"]
        self.expect_failure(option + ["add", "two-words", "x"], 2, "two-words")
        self.expect_failure(option + ["add", "k"], 2)
        self.expect_failure(option + ["add", "k", "good", 'say "x"'], 1, "c.cfg")
        self.expect_failure(["--config", self.folder, "config", "add", "k", "x"], 1)  # a folder
        self.expect_failure(["--config", self.path("none/c.cfg"), "config", "add", "k", "x"], 1, "c.cfg")
        self.assertEqual(self.read(), before)
        self.assertEqual(os.listdir(self.folder), ["c.cfg"])

    def test_a_damaged_file_gives_what_stands_before_the_damage_and_a_note(self):
        self.write("c.cfg", b"A = One;\n- = two;b=three;")
        code, out, err = korvane("config", "--json", "--config", self.path("c.cfg"), check=0)
        self.assertEqual(json.loads(out), {"a": ["one"]})
        self.assertIn(b"c.cfg", err)


PEAK_SCRIPT = """
import os, sys
quiet = [(os.POSIX_SPAWN_OPEN, 2, os.devnull, os.O_WRONLY, 0)]
_, status, usage = os.wait4(os.posix_spawn(sys.argv[1], sys.argv[1:], os.environ, file_actions=quiet), 0)
print(os.waitstatus_to_exitcode(status), usage.ru_maxrss)
"""


class damage(cli_case):
    def test_cut_and_lying_files_end_with_1_and_one_line(self):
        data = small_model(4, 32, 300, bytes(32 * 300), b"group")
        for size in (0, 3, 11, 100, 167, 500, len(data) - 1):
            self.expect_failure(["info", self.write("cut", data[:size])], 1, "cut")
        group = 168
        for at in (8, 140, 152, group + 4, group + 8, group + 12, group + 16, group + 20, group + 792, group + 796):
            lie = data[:at] + b"\xff\xff\xff\xff" + data[at + 4:]
            self.expect_failure(["info", self.write("lie", lie), "--json"], 1, "lie", "byte")

    def test_lying_counts_take_little_memory(self):
        if is_windows or is_sanitized:
            self.skipTest("other allocators: measured in the plain native run")
        data = small_model(4, 32, 300, bytes(32 * 300), b"group")
        files = [data[:at] + b"\xff\xff\xff\xff" + data[at + 4:] + bytes(8 << 20)
                 for at in (8, 140, 168 + 12, 168 + 20, 168 + 792, 168 + 796)]
        # 200 groups with 255 textures each, honest but for the missing end.
        texture = struct.pack("<I", 0) + b"x".ljust(256, b"x")
        head = 168 + 60 + 880
        group = bytearray(data[168:head])
        size = len(group) + 255 * 260 + 8
        struct.pack_into("<5I", group, 4, size, size, 0, size, 0)
        struct.pack_into("<II", group, 60 + 732, 0, 255)
        textured = bytearray(data[:168]) + (bytes(group) + texture * 255 + bytes(8)) * 200
        struct.pack_into("<I", textured, 140, 200)
        self.assertEqual(korvane("info", self.write("whole", bytes(textured)), "--quiet")[0], 0)
        files.append(bytes(textured[:-100]))
        for content in files:
            # A small process in between: a child's peak begins with its parent's.
            done = subprocess.run([sys.executable, "-c", PEAK_SCRIPT] + program + ["info", self.write("lie", content)],
                                  capture_output=True, timeout=60, check=True)
            status, peak_kib = map(int, done.stdout.split())
            self.assertEqual(status, 1)
            self.assertLess(peak_kib - len(content) // 1024, 32 * 1024, "KiB beyond the file")


class archives(cli_case):
    """Archives made here, byte by byte; compressed entries by Python's own LZMA."""

    def pack(self, name, entries, magic=b"PFH4", flags=0):
        index, data = b"", b""
        for path, content, compression in entries:
            index += struct.pack("<I", len(content)) + (bytes([compression]) if magic == b"PFH5" else b"")
            index += (b"\xaa" * 4 if flags & 0x40 else b"") + path + b"\0"
            data += content
        names = b"base.pack\0"
        header = magic + struct.pack("<5I", flags, 1, len(names), len(entries), len(index)) + b"\x01\x02\x03\x04"
        return self.write(name, header + names + index + data)

    def setUp(self):
        super().setUp()
        import lzma
        self.text = b"".join(b"line %d\n" % (i * i) for i in range(3000))
        filters = {"id": lzma.FILTER_LZMA1, "preset": 6}
        packed = lzma.compress(self.text, format=lzma.FORMAT_ALONE, filters=[filters])
        stored = struct.pack("<I", len(self.text)) + packed[:5] + packed[13:]  # without the size of eight bytes
        self.pack("a.pack", [(b"Shared\\File.TXT", b"from a", 0), (b"only\\a.txt", b"1", 0)])
        self.pack("B.pack", [(b"shared\\file.txt", b"from B", 0), (b"packed.bin", stored, 1),
                             (b"sch\xfctze.txt", b"2", 0)], b"PFH5", 0x40)
        self.pack("c.pack", [(b"shared\\FILE.txt", b"from c", 0), (b"..\\..\\escape.txt", b"3", 0),
                             (b"con.txt", b"4", 0)], b"PFH5")
        self.data = ["--data", self.folder, "--quiet"]

    def test_archives_are_listed_in_their_order(self):
        rows = json.loads(korvane("archives", "--json", *self.data, check=0)[1])
        self.assertEqual([(r["position"], r["name"], r["format"], r["files"]) for r in rows],
                         [(0, "c.pack", "PFH5", 3), (1, "a.pack", "PFH4", 2), (2, "B.pack", "PFH5", 3)])

    def test_files_are_listed_by_path_with_what_they_hide(self):
        rows = json.loads(korvane("list", "--json", *self.data, check=0)[1])
        self.assertEqual([r["path"] for r in rows], ["..\\..\\escape.txt", "con.txt", "only\\a.txt", "packed.bin",
                                                     "sch\u00fctze.txt", "shared\\file.txt"])
        shared = rows[-1]
        self.assertTrue(shared["archive"].endswith("B.pack"))
        self.assertEqual([os.path.basename(p.replace("\\", "/")) for p in shared["hides"]], ["c.pack", "a.pack"])
        self.assertTrue(rows[3]["compressed"])
        with open(self.path("B.pack"), "rb") as file:
            file.seek(shared["offset"])
            self.assertEqual(file.read(shared["size"]), b"from B")
        out = korvane("list", "/*/FILE.*", *self.data, check=0)[1]
        self.assertEqual(out, b"shared\\file.txt\n")

    def test_extracting_gives_the_winning_and_unpacked_bytes(self):
        for operand, content in (("Shared/FILE.txt", b"from B"), ("packed.bin", self.text)):
            korvane("extract", operand, "-o", self.path("out"), *self.data, check=0)
            with open(self.path("out"), "rb") as file:
                self.assertEqual(file.read(), content)
        self.expect_failure(["extract", "no/such", "-o", self.path("none")] + self.data, 1, "no/such")
        self.assertFalse(os.path.exists(self.path("none")))
        self.expect_failure(["extract", "-o", self.path("none")] + self.data, 2)

    def test_extraction_stays_below_its_folder(self):
        target = self.path("deep/er")
        code, out, err = korvane("extract", "--match", "*", "-o", target, *self.data)
        self.assertEqual((code, out), (1, b"4 files extracted\n"))
        for text in (b"escape.txt: refused", b"con.txt: refused", b"2 of 6"):  # also with --quiet
            self.assertIn(text, err)
        found = sorted(os.path.relpath(os.path.join(where, name), self.folder)
                       for where, _, names in os.walk(self.folder) for name in names if name.endswith(".txt"))
        self.assertEqual([f.replace(os.sep, "/") for f in found][:1], ["deep/er/only/a.txt"])
        self.assertFalse(any("escape" in f or "con.txt" in f for f in found))

    def test_what_differs_is_written_over_only_when_told(self):
        def extract(*options):
            out, err = korvane("extract", "--match", "only*", "-o", self.path("x"), "--data", self.folder, *options,
                               check=0)[1:]
            return out.decode(), err.decode(), read(self.path("x/only/a.txt"))
        self.assertEqual(extract()[2], b"1")
        self.assertEqual(extract()[::2], ("1 file extracted\n", b"1"))  # the same bytes
        self.write("x/only/a.txt", b"painted")
        out, err, content = extract()
        self.assertIn("0 files extracted; 1 file that differs was left as it is (--overwrite", out)
        self.assertIn("a.txt", err)
        self.assertEqual(content, b"painted")
        self.assertEqual(json.loads(extract("--json")[0])["files"][0]["outcome"], "kept")
        self.assertEqual(extract("--overwrite")[2], b"1")
        self.write("x/only/a.txt", b"painted")
        korvane("extract", "only/a.txt", "-o", self.path("x/only/a.txt"), *self.data, check=0)  # named itself
        self.assertEqual(read(self.path("x/only/a.txt")), b"1")

    def test_models_open_out_of_archives(self):
        model = small_model(4, 32, 3, bytes(32 * 3), b"group")
        self.pack("m.pack", [(b"Models\\x.rigid_model_v2", model, 0), (b"models\\bad.rigid_model_v2", model[:200], 0)])
        out = json.loads(korvane("info", "pack:models/X.rigid_model_v2", "--json", *self.data, check=0)[1])
        self.assertEqual(out["lods"][0]["groups"][0]["vertex_count"], 3)
        self.expect_failure(["info", "pack:models/bad.rigid_model_v2"] + self.data, 1, "byte")
        self.expect_failure(["info", "pack:onl?"] + self.data, 1, "no file of the archives matches")
        self.expect_failure(["info", "pack:only"] + self.data, 1, "none of the 1 file", ".rigid_model_v2")

    def test_operands_are_files_folders_and_patterns(self):
        model = small_model(4, 32, 3, bytes(32 * 3), b"group")
        self.pack("m.pack", [(b"units\%s.rigid_model_v2" % name, model, 0) for name in (b"a", b"b", b"x\c")])
        for name in ("in/a", "in/x/b", "in/y/c"):
            os.makedirs(os.path.dirname(self.path(name)), exist_ok=True)
            self.write(name + ".rigid_model_v2", model)
        self.write("in/x/readme.txt", b"text")
        for number, (operands, expected) in enumerate((
                (["in"], "a x/b y/c"), (["in/*"], "a x/b y/c"), (["in/?/*.RIGID*"], "x/b y/c"),
                (["in/x/b.rigid_model_v2", "in/y"], "b c"), (["in/x", "in/x/../x/b.rigid_model_v2"], "b"),
                (["pack:units"], "a b x/c"), (["pack:/UNITS/*"], "a b x/c"), (["pack:un*/?.*"], "units/a units/b units/x/c"),
                (["pack:units/x/c.rigid_model_v2", "in/a.rigid_model_v2"], "a c"))):
            with self.subTest(operands=operands):
                out = self.path("in/out%d" % number)  # in the folder itself: not read the next time
                korvane("edit", *[operand if operand.startswith("pack:") else self.path(operand) for operand in operands],
                        "-o", out, *self.data, check=0)
                found = sorted(os.path.relpath(os.path.join(where, name), out).replace(os.sep, "/")
                               for where, _, names in os.walk(out) for name in names)
                self.assertEqual(found, [name + ".rigid_model_v2" for name in expected.split()])
                shutil.rmtree(out)
        self.expect_failure(["edit", self.path("in/*.txt"), "-o", self.path("none")], 1, "in/*.txt", "no file matches")
        self.assertFalse(os.path.exists(self.path("none")))
        self.expect_failure(["patch", self.path("in"), "-o", self.path("one.rigid_model_v2")], 2, "folder")
        listed = json.loads(korvane("info", self.path("in/x"), "--json", check=0)[1])
        self.assertEqual([os.path.basename(each["path"].replace("\\", "/")) for each in listed], ["b.rigid_model_v2"])
        code, out, err = korvane("check", "pack:nothing*", *self.data)
        self.assertEqual((code, err.count(b"no file of the archives matches")), (1, 1))
        if not is_windows:
            korvane("info", self.write("in/a*b", model), check=0)  # its own name

    def test_bad_archives_do_not_lock_the_others_out(self):
        self.write("d.pack", b"PFH1" + bytes(100))
        self.write("e.pack", b"PFH5" + b"\xff" * 200)
        for quiet in [], ["--quiet"]:  # what cannot be read is named in either case
            code, out, err = korvane("list", "only*", "--data", self.folder, *quiet)
            self.assertEqual((code, out), (0, b"only\\a.txt\n"), err)
            self.assertIn(b"Unknown .PACK file format", err)
        self.expect_failure(["list", "--data", self.path("nowhere")], 1, "findValidPakFiles")


    def test_nothing_is_lost_without_a_word(self):
        other = tempfile.mkdtemp(dir=self.folder)
        self.pack(os.path.join(other, "x.pack"), [(b"one/two", b"1", 0), (b"one\\two", b"22", 0), (b"cut", b"3", 0)])
        with open(os.path.join(other, "x.pack"), "r+b") as file:
            file.truncate(os.path.getsize(file.name) - 1)
        self.pack(os.path.join(other, "y.pack"), [(b"lost%d" % i, b"12345", 0) for i in range(103)])
        os.truncate(os.path.join(other, "y.pack"), os.path.getsize(os.path.join(other, "y.pack")) - 5 * 102)
        both = ["--data", self.folder, "--data", other]
        code, out, err = korvane("list", "o*", *both, check=0)
        self.assertEqual(out, b"one/two\none\\two\nonly\\a.txt\n")
        self.assertIn(b"its data is not inside the archive: cut", err)
        self.assertEqual((err.count(b"y.pack"), err.count(b"99 more files")), (4, 1))  # the first three, and how many more
        code, out, err = korvane("extract", "--match", "one?two", "-o", self.path("out"), "--quiet", "--json", *both)
        outcomes = [(row["internal_path"], row["outcome"], row["reason"]) for row in json.loads(out)["files"]]
        self.assertEqual((code, [row[:2] for row in outcomes]), (1, [("one/two", "written"), ("one\\two", "failed")]))
        self.assertIn("the same path", outcomes[1][2])
        self.assertIn(b"1 of 2", err)
        korvane("extract", "one/two", "-o", self.path("two"), *both, check=0)
        with open(self.path("two"), "rb") as file:
            self.assertEqual(file.read(), b"1")  # as list spells it
        if not is_windows:
            self.expect_failure(["extract", "one/two", "-o", "/dev/full", "--quiet"] + both, 1, "device")

    def cached_entries(self):
        """What another program reads in the cache: the part that stands by itself."""
        with open(self.path("packs.cache"), "rb") as file:
            data = file.read()
        at = 0

        def u32():
            nonlocal at
            at += 4
            return struct.unpack_from("<I", data, at - 4)[0]

        def text():
            nonlocal at
            length = u32()
            at += length
            self.assertEqual(data[at - 1], 0)
            return data[at - length:at - 1]
        self.assertEqual(text(), b"Korvane pack cache 1")
        return [(text(), text(), text(), text(), u32(), u32(), u32(), text(), text()) for _ in range(u32())]

    def test_the_cache_holds_what_the_archives_hold(self):
        separator = "\\" if is_windows else "/"
        config = self.write("c.cfg", ('data_paths = "%s";' % (self.folder + separator)).encode("utf-8"))
        # Paths are lower case in the configuration, so they may be spelled another way than with --data.
        options = ["--config", config, "--quiet"]
        plain = korvane("list", "--json", "--no-cache", *options, check=0)[1]
        self.assertFalse(os.path.exists(self.path("packs.cache")))
        self.assertEqual(korvane("list", "--json", *options, check=0)[1], plain)
        self.assertFalse(os.path.exists(self.path("packs.cache")), "few archives: it does not pay")
        korvane("config", "add", "cache_use", "always", *options, check=0)
        first = korvane("list", "--json", *options, check=0)[1]
        second = korvane("list", "--json", *options, check=0)[1]
        self.assertEqual([first, second], [plain, plain])
        shown = json.loads(korvane("config", "--json", *options, check=0)[1])
        self.assertEqual(shown["packs_cache"], ["packs.cache"])
        winners = {entry[2]: entry for entry in self.cached_entries()}
        self.assertEqual(len(self.cached_entries()), 8)
        for row in json.loads(plain):
            name, pack, path, extension, size, offset, compression, form, stamp = winners[row["path"].encode("latin-1")]
            self.assertEqual((name, extension), (path.rsplit(b"\\", 1)[-1], path.rsplit(b".", 1)[-1]))
            self.assertEqual((pack.decode("utf-8"), size, offset, compression != 0),
                             (row["archive"], row["size"], row["offset"], row["compressed"]))
            self.assertEqual((form, stamp), (b"PFH5", str(0xaaaaaaaa).encode()) if pack.endswith(b"B.pack")
                             else (b"PFH4" if pack.endswith(b"a.pack") else b"PFH5", b""))

        with open(self.path("packs.cache"), "rb") as file:
            cache = file.read()
        self.write("packs.cache", cache[:-1])  # damaged: it is made again
        self.assertEqual(korvane("list", "--json", *options, check=0)[1], plain)
        with open(self.path("packs.cache"), "rb") as file:
            self.assertEqual(file.read(), cache)
        self.pack("a.pack", [(b"new", b"from a changed archive", 0)])
        self.assertEqual(korvane("list", "new", *options, check=0)[1], b"new\n")


def small_model(format_id, stride, count, vertices, group_name):
    """A version 7 model of one group."""
    header = b"RMV2" + struct.pack("<II", 7, 1) + b"humanoid01".ljust(128, b"\0")
    lod = struct.pack("<4IfII", 1, 0, 0, 168, 100.0, 0, 0)
    tail = bytes(20) + struct.pack("<H", format_id) + group_name.ljust(32, b"\0") + b"tex".ljust(256, b"\0")
    tail += bytes(2 + 252 + 4) + struct.pack("<3f", 0.5, 1.25, -2.0) + bytes(144) + bytes(8)
    tail += struct.pack("<II", 0, 1) + bytes(32 + 108)
    assert len(tail) == 880
    texture = struct.pack("<I", 0) + b"tex/diffuse.dds".ljust(256, b"\0")
    words = struct.pack("<II", 0, 1)
    start = 24 + 24 + 12 + len(tail) + len(texture) + len(words)
    indices = struct.pack("<6H", 0, 1, 2, 2, 1, 0)
    size = start + len(vertices) + len(indices)
    group = struct.pack("<6I", 68, size, start, count, start + stride * count, 6) + struct.pack("<6f", *([0.0] * 6))
    return header + lod + group + b"rigid_shade\0" + tail + texture + words + vertices + indices


def main():
    global program, is_windows, is_sanitized
    parser = argparse.ArgumentParser()
    parser.add_argument("program")
    parser.add_argument("--emulator")
    parser.add_argument("--sanitized", action="store_true")
    options, rest = parser.parse_known_args()
    is_windows = options.emulator is not None or platform.system() == "Windows"
    is_sanitized = options.sanitized
    program = ([options.emulator] if options.emulator else []) + [options.program]
    unittest.main(argv=[sys.argv[0]] + rest, verbosity=1)


if __name__ == "__main__":
    main()

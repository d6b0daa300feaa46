#!/usr/bin/env python3
"""Runs the commands of the pages as they are printed there; called as cli_tests.py is. They are written for Windows: there
cmd runs each line, natively the shell does, with korvane for korvane-cli and / for \\."""

import os
import re
import shutil
import struct
import subprocess
import zlib

import cli_tests

root = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..")
shield = "variantmeshes/wh_variantmodels/hu1/demo/tex/guard_shield_diffuse"


def commands_of(page):
    with open(os.path.join(root, page), encoding="utf-8") as file:
        return re.findall(r"^    (korvane-cli .*)$", file.read(), re.MULTILINE)


def striped_png(size):
    rows = b"".join(b"\0" + (b"\xff\x20\x10" if y // 16 % 2 else b"\xff\xff\xff") * size for y in range(size))

    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", size, size, 8, 2, 0, 0, 0)) +
            chunk(b"IDAT", zlib.compress(rows, 1)) + chunk(b"IEND", b""))


class pages(cli_tests.cli_case):
    """In a folder with the program, as the pages say."""

    def setUp(self):
        super().setUp()
        name = "korvane-cli.exe" if cli_tests.is_windows else "korvane"
        shutil.copy(cli_tests.program[-1], self.path(name))

    def run_line(self, line):
        if cli_tests.is_windows:
            self.write("line.bat", b"@" + line.encode("utf-8") + b"\r\n")
            command = cli_tests.program[:1] + ["cmd", "/c", "line.bat"]
        else:
            line = "./" + line.replace("korvane-cli", "korvane", 1).replace("\\", "/")
            command = ["sh", "-c", line]
        done = subprocess.run(command, cwd=self.folder, stdin=subprocess.DEVNULL, capture_output=True, timeout=300)
        self.assertEqual(done.returncode, 0, line + "\n" + done.stderr.decode(errors="replace"))
        return done.stdout

    def runs_here(self, line):
        return cli_tests.is_windows or not ("C:\\" in line or " render " in line)

    def test_the_first_commands_do_what_they_say(self):
        lines = [line for page in ("README.md", "docs/command_line.md") for line in commands_of(page)
                 if self.runs_here(line)]
        self.assertGreater(len(lines), 19 if cli_tests.is_windows else 14)
        for line in lines:
            self.run_line(line)
        if cli_tests.is_windows:
            with open(self.path("config.cfg"), "rb") as file:
                self.assertIn(b'"c:\\games\\total war\\data\\"', file.read())

    def test_a_repaint_reaches_the_unit(self):
        self.run_line("korvane-cli demo-data demo")
        self.run_line("korvane-cli config add data_paths demo")  # the guide's first page: in the window
        self.write("shield.png", striped_png(64))
        lines = commands_of("docs/guide/repaint.md")
        after = [line for line in lines if "-o after.png" in line]
        self.assertEqual(len(after), 1)
        for line in [after[0].replace("after.png --mod my_mod", "before.png")] + lines:
            if not self.runs_here(line):
                continue
            self.run_line(line)
            if " textures " in line:
                self.write(os.path.join("paint", shield + ".png"), striped_png(512))
            if "--like pack:" in line:
                written = [os.path.relpath(os.path.join(where, name), self.path("my_mod")).replace(os.sep, "/")
                           for where, _, names in os.walk(self.path("my_mod")) for name in names]
                self.assertEqual(written, [shield + ".dds"])
        if cli_tests.is_windows:
            pictures = [cli_tests.read(self.path(name)) for name in ("before.png", "after.png")]
            self.assertNotEqual(*pictures)
        shown = self.run_line('korvane-cli list "*guard_shield_diffuse.dds" --json --mod my_mod --data demo')
        self.assertIn(b'"archive":"my_mod"', shown)

    def test_what_was_painted_is_taken_back_and_made_again_beside_its_picture(self):
        again = "korvane-cli dds paint -o my_mod --like pack: --data demo --mod my_mod --overwrite"
        inner = shield.replace("/", os.sep)
        self.run_line("korvane-cli demo-data demo")
        os.makedirs(os.path.dirname(self.path(os.path.join("paint", shield))))
        picture = self.write(os.path.join("paint", inner + ".png"), striped_png(512))
        self.run_line(again.replace("--mod my_mod ", ""))
        self.run_line("korvane-cli textures demo/variantmeshes/wh_variantmodels/hu1/demo/demo_guard_shield.rigid_model_v2 "
                      "-o game --as png --data demo")
        shutil.copy(self.path(os.path.join("game", inner + ".png")), picture)
        self.run_line(again)
        self.run_line("korvane-cli extract " + shield + ".dds -o game.dds --data demo")
        made = cli_tests.read(self.path(os.path.join("my_mod", inner + ".dds")))
        self.assertEqual(made, cli_tests.read(self.path("game.dds")))

        self.run_line("korvane-cli dds paint -o paint --format bc1")
        self.write(os.path.join("paint", inner + ".png"), striped_png(256))
        self.run_line("korvane-cli dds paint -o paint --format bc1 --overwrite")
        self.assertEqual(sorted(os.listdir(os.path.dirname(picture))),
                         ["guard_shield_diffuse.dds", "guard_shield_diffuse.png"])


if __name__ == "__main__":
    cli_tests.main()

#!/usr/bin/env python3
"""What a person sees on a terminal: progress never mixes with results; called as cli_tests.py is."""

import fcntl
import os
import struct
import subprocess
import termios

import cli_tests
from cli_tests import korvane

COLUMNS = 40


def on_terminal(*arguments):
    """What the program sends to a terminal that shows both of its outputs."""
    main, side = os.openpty()
    fcntl.ioctl(side, termios.TIOCSWINSZ, struct.pack("HHHH", 24, COLUMNS, 0, 0))
    process = subprocess.Popen(cli_tests.program + list(arguments), stdin=subprocess.DEVNULL, stdout=side, stderr=side)
    os.close(side)
    sent = b""
    try:
        while part := os.read(main, 65536):
            sent += part
    except OSError:  # the other side is closed
        pass
    os.close(main)
    process.wait(timeout=60)
    return sent.decode().replace("\r\n", "\n")


def screen(sent):
    """The lines that stand there at the end. A return without an erased line would show as it is."""
    return [line.rpartition("\r\x1b[K")[2] for line in sent.split("\n")]


class terminal(cli_tests.cli_case):
    def test_results_and_notes_stand_on_lines_of_their_own(self):
        demo = self.path("demo")
        cli_tests.make_demo(demo)
        models = [os.path.join(demo, "rigidmodels/demo", name + ".rigid_model_v2") for name in
                  ("demo_column", "demo_barrel", "demo_banner")]
        v6 = os.path.join(demo, "variantmeshes/wh_variantmodels/hu1/demo/demo_guard_v6.rigid_model_v2")
        textures = [os.path.join(path, name) for path, _, names in os.walk(demo) for name in names
                    if name.endswith(".dds")][:3]
        out = self.path("out/")
        rows = [["check", demo, "--data", demo], ["edit", *models, "none", "-o", out, "--alpha", "0:0=1"],
                ["patch", v6, *models, "-o", out], ["extract", "--match", "*demo_b*", "-o", out, "--data", demo],
                ["textures", *models, "-o", out, "--data", demo], ["archives", "--data", demo],
                ["normal-map", "to-blue", *textures, "-o", out], ["anim", "search", "humanoid01", "--data", demo],
                ["demo-data", demo]]
        for arguments in rows:
            with self.subTest(command=arguments[0]):
                status, expected, messages = korvane(*arguments)
                sent = on_terminal(*arguments, "--progress-at-once")
                self.assertIn("\r\x1b[K", sent)
                self.assertEqual(sorted(screen(sent)),
                                 sorted((expected + messages).decode().split("\n")[:-1] + [""]), sent)
                shown = [piece for piece in sent.split("\r\x1b[K") if "\n" not in piece]
                self.assertLess(max(map(len, shown)), COLUMNS)

    def test_work_of_less_than_a_second_shows_none(self):
        self.assertNotIn("\x1b", on_terminal("edit", "none", "neither", "--dry-run"))


if __name__ == "__main__":
    cli_tests.main()

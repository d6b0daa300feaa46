#!/usr/bin/env python3
"""The program is killed in the middle of saving, at random moments, again and again. What stands in the file then is the
old content or the new one, whole, and nothing else lies in the folder.

Usage: kill_tests.py PROGRAM [--emulator COMMAND] [--kills N] [unittest options]"""

import argparse
import glob
import os
import random
import shutil
import subprocess
import sys
import tempfile
import time
import unittest

import cli_tests
import edit_oracle
from cli_tests import korvane, read

kills = 200
size_bytes = 24 << 20  # large enough that most of the run is the save itself


class killed(cli_tests.cli_case):
    def setUp(self):
        super().setUp()
        demo = tempfile.mkdtemp(prefix="korvane-kill-")
        self.addCleanup(shutil.rmtree, demo)
        cli_tests.make_demo(demo)
        model = glob.glob(os.path.join(demo, "**", "demo_guard.rigid_model_v2"), recursive=True)[0]
        # Bytes behind the last group belong to no field; they are kept.
        self.old = read(model) + random.Random(1).randbytes(size_bytes)
        self.new = edit_oracle.edited(self.old, {(0, 0, 0): "killed.dds"}, {(0, 0): 7})
        self.source = os.path.join(demo, "source.rigid_model_v2")
        with open(self.source, "wb") as file:
            file.write(self.old)
        self.target = self.path("model.rigid_model_v2")

    def start(self, source):
        # Wine's own wrappers are left out: a signal must reach the program itself.
        prefix = ["wine"] if cli_tests.is_windows else []
        arguments = ["edit", source, "-o", self.target, "--texture", "0:0:0=killed.dds", "--alpha", "0:0=7", "--quiet"]
        return subprocess.Popen(prefix + [cli_tests.program[-1]] + arguments, stdin=subprocess.DEVNULL,
                                stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def check(self, source):
        """Kills the program `kills` times while it writes the target; returns what was found afterwards."""
        began = time.monotonic()
        self.assertEqual(self.start(source).wait(timeout=120), 0)
        moment = time.monotonic() - began  # when the new file appears; corrected as the machine is more or less busy
        seen = {"old": 0, "new": 0, "litter": 0}
        moments = random.Random(2)
        for _ in range(kills):
            shutil.copyfile(self.source, self.target)
            process = self.start(source)
            time.sleep(moments.uniform(0.4, 1.2) * moment)
            process.kill()
            process.wait(timeout=120)
            self.settle()
            content = read(self.target)
            self.assertIn(content, (self.old, self.new), "neither the old file nor the new one")
            is_late = content == self.new
            seen["new" if is_late else "old"] += 1
            seen["litter"] += len(os.listdir(self.folder)) - 1
            moment = max(moment * (0.9 if is_late else 1.05), 0.01)
        self.assertLessEqual(seen["litter"], 2, "only a kill in the few microseconds before the end may leave a file")
        # A kill in the few microseconds in which the whole file has its temporary name leaves that to the next save.
        self.assertEqual(self.start(source).wait(timeout=120), 0)
        self.assertEqual(os.listdir(self.folder), [os.path.basename(self.target)])
        self.assertEqual(read(self.target), self.new)
        return seen

    def settle(self):
        """Under Wine another process takes a moment to drop the files of a killed one."""
        until = time.monotonic() + 5
        while cli_tests.is_windows and len(os.listdir(self.folder)) > 1 and time.monotonic() < until:
            time.sleep(0.01)

    def test_at_any_moment_leaves_the_old_file_or_the_new_one_and_no_litter(self):
        seen = self.check(self.source)
        self.assertGreater(seen["old"], kills // 10, "the program was never killed in time")
        sys.stderr.write("killed %d times: %s\n" % (kills, seen))


def main():
    global kills
    parser = argparse.ArgumentParser(add_help=False)
    parser.add_argument("--kills", type=int, default=kills)
    options, rest = parser.parse_known_args()
    kills = options.kills
    sys.argv[1:] = rest
    cli_tests.main()


if __name__ == "__main__":
    main()

#!/usr/bin/env python3
"""Starts the real Korvane.exe on a demo model in a virtual screen, works with it as a person does, and reads what it
shows back through the window system. Expected values come from model_oracle.py, a second reader of the format.

Usage: end_to_end.py PROGRAM CONSOLE_PROGRAM PROBE EMULATOR [unittest options]

Needs a display and a prepared Wine (tools/with_wine)."""

import json
import math
import os
import shutil
import struct
import subprocess
import sys
import tempfile
import time
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(__file__), "..", "..", "cli"))
import model_oracle  # noqa: E402

sys.path.insert(0, os.path.join(os.path.dirname(__file__), "..", "..", "support"))
from project_version import VERSION  # noqa: E402

PROGRAM, CONSOLE_PROGRAM, PROBE, EMULATOR = (os.path.abspath(path) for path in sys.argv[1:5])
TITLE = "Korvane " + VERSION
VIEW = "Korvane GFX-D3D11"

DEFINITION = "variantmeshes/variantmeshdefinitions/demo_guard.variantmeshdefinition"

AT_PRESENT = 3  # device_step in D3D11_RENDER_LIB/device_faults.h

# Numbers of controls, as in Korvane/app/command_ids.h.
STATUS, SHOW_VIEW, PATH, VERSION, GAME, SKELETON, LOD, GROUP = 1001, 1002, 1100, 1101, 1102, 1103, 1200, 1201
SAVE, UNDO, REDO = 103, 116, 117  # commands
MATERIAL_ID, GROUP_NAME, SHADER_NAME, VERTEX_FORMAT, CAPTION, ALPHA = 1301, 1302, 1303, 1305, 1400, 1405
TEXTURE_DIRECTORY, TEXTURE_FILE = 1510, 1520


def windows_path(path):
    return "Z:" + path.replace("/", "\\")


def probe(*arguments):
    """The probe's answer; None when there is no such window or control."""
    done = subprocess.run([EMULATOR, PROBE] + [str(argument) for argument in arguments], stdin=subprocess.DEVNULL,
                          stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, timeout=300)
    if done.returncode == 2:
        raise AssertionError("wrong use of the probe: %r" % (arguments,))
    if done.returncode != 0:
        return None
    return json.loads(done.stdout.decode("utf-8")) if done.stdout.strip() else True


def texts(title):
    return {control["id"]: control["text"] for control in probe("texts", title)}


def press(*keys):
    subprocess.run(["xdotool", "key", *keys], check=True, timeout=30)


def wait_until(condition, seconds=120):
    end = time.monotonic() + seconds
    while not condition():
        if time.monotonic() > end:
            return False
        time.sleep(0.2)
    return True


def settled(read, pause=1.0):
    """What read() gives when it gives the same again after a pause."""
    before = read()
    for _ in range(30):
        time.sleep(pause)
        now = read()
        if now == before:
            break
        before = now
    return before


def picture(area):
    """The pixels of a part of the screen: rows of (red, green, blue)."""
    left, top, width, height = area
    crop = "%dx%d+%d+%d" % (width, height, left, top)
    data = subprocess.run(["import", "-window", "root", "-crop", crop, "-depth", "8", "rgb:-"], check=True, timeout=60,
                          stdout=subprocess.PIPE).stdout
    return [[tuple(data[3 * (y * width + x):3 * (y * width + x) + 3]) for x in range(width)] for y in range(height)]


def largest_difference(one, other):
    return max(abs(a - b) for a, b in zip(one, other))


def drawn_mask(rows, columns, lines):
    """Which cells of a coarse grid are covered by something else than the background."""
    height, width = len(rows), len(rows[0])
    background = rows[2][2]
    cells = set()
    for line in range(lines):
        for column in range(columns):
            y, x = (2 * line + 1) * height // (2 * lines), (2 * column + 1) * width // (2 * columns)
            if largest_difference(rows[y][x], background) > 10:
                cells.add((column, line))
    return cells


def projected_mask(model, aspect, columns, lines):
    """The silhouette of LOD 0 as the view shows it at the start (Korvane/viewer/camera.h)."""
    yaw, pitch, field_of_view = 0.35, -0.10, math.pi / 6
    positions = [[v["position"] for v in group["vertices"]] for group in model["lods"][0]["groups"]]
    every = [p for group in positions for p in group]
    low = [min(p[i] for p in every) for i in range(3)]
    high = [max(p[i] for p in every) for i in range(3)]
    centre = [(a + b) / 2 for a, b in zip(low, high)]
    scale = 1.8 / max(b - a for a, b in zip(low, high))
    half = [(b - a) / 2 * scale for a, b in zip(low, high)]
    tangent, radius = math.tan(field_of_view / 2), math.hypot(half[0], half[2])
    tall = (half[1] + radius * abs(math.sin(pitch))) / tangent
    distance = max(tall, radius / (tangent * aspect)) * 1.06 + radius

    def project(p):
        x, y, z = ((p[i] - centre[i]) * scale for i in range(3))
        x, z = x * math.cos(yaw) + z * math.sin(yaw), z * math.cos(yaw) - x * math.sin(yaw)
        y, z = y * math.cos(pitch) - z * math.sin(pitch), y * math.sin(pitch) + z * math.cos(pitch)
        depth = (z + distance) * tangent
        return ((x / depth / aspect + 1) / 2 * columns - 0.5, (1 - y / depth) / 2 * lines - 0.5)

    cells = set()
    for group, points in zip(model["lods"][0]["groups"], positions):
        flat = [project(p) for p in points]
        for i in range(0, len(group["indices"]) - 2, 3):
            fill([flat[index] for index in group["indices"][i:i + 3]], cells)
    return cells


def fill(corners, cells):
    """Adds the cells whose centres lie inside a triangle."""
    (ax, ay), (bx, by), (cx, cy) = corners
    area = (bx - ax) * (cy - ay) - (by - ay) * (cx - ax)
    if area == 0:
        return
    for y in range(math.ceil(min(ay, by, cy)), math.floor(max(ay, by, cy)) + 1):
        for x in range(math.ceil(min(ax, bx, cx)), math.floor(max(ax, bx, cx)) + 1):
            u = ((bx - x) * (cy - y) - (by - y) * (cx - x)) / area
            v = ((cx - x) * (ay - y) - (cy - y) * (ax - x)) / area
            if u >= 0 and v >= 0 and u + v <= 1:
                cells.add((x, y))


def share_of_colour(rows, is_wanted):
    return sum(is_wanted(*pixel) for row in rows for pixel in row) / sum(len(row) for row in rows)


class session(unittest.TestCase):
    """One installed program in a folder of its own, with demo data beside it."""

    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="korvane \u674e ")
        self.addCleanup(shutil.rmtree, self.folder)
        shutil.copy(PROGRAM, self.folder)
        self.running = None
        self.addCleanup(self.end)

    def path(self, name):
        return os.path.join(self.folder, name)

    def console(self, *arguments):
        """Standard output of the console program."""
        return subprocess.run([EMULATOR, CONSOLE_PROGRAM, "--quiet", *arguments], check=True, timeout=300,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL).stdout

    def make_demo_folder(self):
        demo = self.path("demo")
        self.console("demo-data", windows_path(demo))
        return demo

    def make_demo(self):
        """The richest demo model, moved under a name that is hard to pass around."""
        demo = self.make_demo_folder()
        models = [os.path.join(at, name) for at, _, names in os.walk(demo) for name in names
                  if name.endswith(".rigid_model_v2")]
        self.assertTrue(models, "no model in the demo data")
        chosen = max(models, key=os.path.getsize)
        renamed = os.path.join(os.path.dirname(chosen), "my f\u00efgure \u674e.rigid_model_v2")
        os.rename(chosen, renamed)
        with open(renamed, "rb") as file:
            self.oracle = model_oracle.model(file.read())
        return renamed

    def start(self, *arguments):
        with open(self.path("config.cfg"), "a", encoding="utf-8") as config:
            config.write('first_time = \r"no";\r\n\r\n')
        self.running = subprocess.Popen([EMULATOR, self.path("Korvane.exe"), *arguments], stdin=subprocess.DEVNULL,
                                        stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def end(self):
        if self.running and self.running.poll() is None:
            probe("close", TITLE)
            try:
                self.running.wait(120)
            except subprocess.TimeoutExpired:
                self.running.kill()
                self.fail("the program did not end")

    def kill(self):
        """The program itself, and not only what has started it."""
        subprocess.run(["pkill", "-KILL", "-f", os.path.basename(self.path("").rstrip("/")) + "/Korvane.exe"], check=True)
        self.running.wait(120)

    def close(self):
        """Ends the program as a person does; its exit status."""
        self.assertTrue(probe("close", TITLE))
        return self.running.wait(120)

    def log(self):
        with open(self.path("log.txt"), "rb") as file:
            return file.read().decode("utf-8")

    def expect_panels(self, lod, group):
        shown = texts(TITLE)
        expected = self.oracle["lods"][lod]["groups"][group]
        self.assertEqual(shown[LOD], "LOD %d" % (lod + 1))
        self.assertEqual(shown[GROUP], "G %d" % (group + 1))
        self.assertEqual(shown[CAPTION], "L(%d) G(%d)" % (lod, group))
        self.assertEqual(shown[MATERIAL_ID], str(expected["material_id"]))
        self.assertEqual(shown[GROUP_NAME], expected["group_name"])
        self.assertEqual(shown[SHADER_NAME], expected["shader_name"])
        self.assertEqual(shown[VERTEX_FORMAT], str(expected["vertex_format"]))
        for row in range(8):
            path = expected["textures"][row]["path"] if row < len(expected["textures"]) else ""
            joined = shown[TEXTURE_DIRECTORY + row] + shown[TEXTURE_FILE + row]
            self.assertEqual(joined.replace("\\", "/"), path.replace("\\", "/"))

    def test_a_model_of_the_command_line_is_described_and_drawn(self):
        model = self.make_demo()
        self.start(windows_path(model))
        title = TITLE + "   RMV2: [" + os.path.basename(model) + "] VMD: [no file loaded]"
        self.assertEqual(probe("wait", title, 120), title)
        self.assertTrue(probe("wait", VIEW, 120), "the view did not open: " + self.log())
        shown = texts(TITLE)
        self.assertEqual(shown[PATH], windows_path(model))
        self.assertEqual(shown[VERSION], str(self.oracle["version"]))
        self.assertEqual(shown[SKELETON], self.oracle["skeleton_id"])
        self.expect_panels(0, 0)

        last_lod = self.oracle["lod_count"] - 1
        last_group = len(self.oracle["lods"][0]["groups"]) - 1
        self.assertTrue(probe("choose", TITLE, GROUP, last_group))
        self.expect_panels(0, last_group)
        self.assertTrue(probe("choose", TITLE, LOD, last_lod))
        self.assertEqual(texts(TITLE)[LOD], "LOD %d" % (last_lod + 1))
        self.assertTrue(probe("choose", TITLE, LOD, 0))
        self.assertTrue(probe("choose", TITLE, GROUP, 0))

        self.expect_figure(self.oracle, texts(TITLE)[STATUS])
        rows = settled(lambda: picture(probe("place", VIEW)))  # the textures come after the figure
        colours = len({pixel for row in rows[::5] for pixel in row[::5]})
        self.assertGreater(colours, 200, "the figure is neither lit nor textured")

        # The graphics device is lost in the middle of drawing, and the picture comes back.
        lost_line = "d3d_window: the graphics device was lost (887A0005)"
        self.assertTrue(probe("lose", VIEW, AT_PRESENT, 1))
        self.assertTrue(wait_until(lambda: "d3d_window: the graphics device was made again" in self.log()), self.log())
        self.assertEqual(self.log().count(lost_line), 1)
        self.expect_figure(self.oracle, texts(TITLE)[STATUS])
        again = settled(lambda: picture(probe("place", VIEW)))
        differences = sum(largest_difference(a, b) > 2 for one, other in zip(rows, again) for a, b in zip(one, other))
        self.assertEqual(differences, 0, "the new device draws another picture")

        # The view closes alone and comes back; then the program ends.
        self.assertTrue(probe("close", VIEW))
        self.assertTrue(probe("gone", VIEW, 20))
        self.assertTrue(probe("click", TITLE, SHOW_VIEW))
        self.assertTrue(probe("wait", VIEW, 120))
        log = self.log()
        for line in ("Korvane 0.X debugging log", "assigning accelerators ",
                     "main_window::onCreated(). command line processed: " + windows_path(model),
                     "DirectX INIT successful!!"):
            self.assertIn(line, log)
        self.assertEqual(self.close(), 0)

    def definition_oracle(self, demo):
        """What the demo definition draws: the groups of all its models, and the status line."""
        data = ("--data", windows_path(demo))
        models = json.loads(self.console("variant", "pack:" + DEFINITION, "--json", *data))["models"]
        groups = []
        for number, model in enumerate(models):
            copy = self.path("part%d" % number)
            self.console("extract", model, "-o", windows_path(copy), *data)
            with open(copy, "rb") as file:
                groups += model_oracle.model(file.read())["lods"][0]["groups"]
        triangles = sum(len(group["indices"]) // 3 for group in groups)
        return ({"lods": [{"groups": groups}]},
                "demo_guard: %d models, %s triangles" % (len(models), format(triangles, ",")))

    def expect_figure(self, model, status):
        """Waits until the view shows the model's silhouette; the pixels."""
        area = probe("place", VIEW)
        columns, lines = 96, round(96 * area[3] / area[2])
        expected = projected_mask(model, area[2] / area[3], columns, lines)
        rows = []
        overlap = 0.0

        def figure_is_there():
            nonlocal rows, overlap
            rows = picture(area)
            drawn = drawn_mask(rows, columns, lines)
            overlap = len(drawn & expected) / max(1, len(drawn | expected))
            return overlap > 0.95 and texts(TITLE)[STATUS].endswith(status)

        self.assertTrue(wait_until(figure_is_there), "only %.2f of the silhouette agrees with the models; %s; %s" %
                        (overlap, texts(TITLE)[STATUS], self.log()))
        print("silhouette agrees by %.3f" % overlap)
        return rows

    def test_a_definition_comes_out_of_the_archives_and_follows_them(self):
        demo = self.make_demo_folder()
        model, status = self.definition_oracle(demo)
        self.console("--config", windows_path(self.path("config.cfg")), "config", "add", "data_paths",
                     windows_path(demo) + "\\")
        self.start("pack:" + DEFINITION)
        title = TITLE + "   RMV2: [no file loaded] VMD: [demo_guard.variantmeshdefinition]"
        self.assertEqual(probe("wait", title, 120), title)
        self.assertTrue(probe("wait", VIEW, 120), "the view did not open: " + self.log())
        self.expect_figure(model, status)

        def green_share():
            return share_of_colour(picture(probe("place", VIEW)), lambda r, g, b: g > r + 25 and g > b + 25)

        # The textures come after the figure.
        self.assertTrue(wait_until(lambda: green_share() > 0.005),
                        "the mod's green is not seen: its textures do not win")
        green = green_share()

        # Without the mod the guard is another one, when the archives are read again.
        os.remove(os.path.join(demo, "a_demo_mod.pack"))
        model, without_mod = self.definition_oracle(demo)
        self.assertNotEqual(without_mod, status)
        left, top, _, _ = probe("place", TITLE)
        subprocess.run(["xdotool", "mousemove", str(left + 200), str(top - 30), "click", "1"], check=True, timeout=30)
        press("alt+f")
        time.sleep(2)  # until the menu is there
        press("p")  # Re-read .pack files...
        self.expect_figure(model, without_mod)
        self.assertTrue(wait_until(lambda: green_share() < green / 10),
                        "the mod's green is still there")
        self.assertEqual(self.log().count("Initializing virtual file system (.pack reading)..."), 2)
        self.assertEqual(self.close(), 0)

    def test_a_broken_file_is_reported_and_the_open_model_stays(self):
        model = self.make_demo()
        plain = tempfile.mkdtemp(prefix="korvane_")  # the path is typed: letters of every keyboard only
        self.addCleanup(shutil.rmtree, plain)
        broken = os.path.join(plain, "broken.rigid_model_v2")
        with open(model, "rb") as whole, open(broken, "wb") as cut:
            cut.write(whole.read(1000))
        self.start(windows_path(model))
        self.assertTrue(probe("wait", TITLE + "   RMV2: [my", 120))
        self.assertTrue(probe("wait", VIEW, 120))
        before = settled(lambda: texts(TITLE))

        press("ctrl+o")
        self.assertTrue(probe("wait", "Open File", 120), "Ctrl+O shows no dialog")
        time.sleep(2)  # until the dialog's edit field has the focus
        subprocess.run(["xdotool", "type", "--delay", "5", windows_path(broken)], check=True, timeout=60)
        press("Return")
        self.assertTrue(probe("wait", "Error!", 120), "the broken file is not reported")
        message = " ".join(control["text"] for control in probe("texts", "Error!"))
        self.assertIn("broken.rigid_model_v2", message)
        self.assertIn("byte ", message)
        press("Return")
        self.assertTrue(probe("gone", "Error!", 120))
        self.assertEqual(texts(TITLE), before)
        self.assertTrue(probe("wait", TITLE + "   RMV2: [my", 1))
        self.assertEqual(self.close(), 0)

    def test_an_alpha_mode_is_edited_undone_redone_and_saved_and_a_kill_leaves_a_whole_file(self):
        model = self.make_demo()
        with open(model, "rb") as file:
            former = file.read()
        self.console("edit", windows_path(model), "-o", windows_path(self.path("expected")), "--alpha", "0:0=1")
        with open(self.path("expected"), "rb") as file:
            edited = file.read()
        self.assertNotEqual(former, edited)
        title = TITLE + "   RMV2: [" + os.path.basename(model)
        self.start(windows_path(model))
        self.assertTrue(probe("wait", title, 120))
        unedited = probe("wait", title, 1)
        self.assertTrue(probe("choose", TITLE, ALPHA, 1))
        self.assertTrue(wait_until(lambda: probe("wait", title, 1) == unedited + "*[edited]"))
        self.assertTrue(probe("command", TITLE, UNDO))
        self.assertTrue(wait_until(lambda: probe("wait", title, 1) == unedited))
        self.assertTrue(probe("command", TITLE, REDO))
        self.assertTrue(wait_until(lambda: probe("wait", title, 1) == unedited + "*[edited]"))
        self.assertTrue(probe("command", TITLE, SAVE))
        self.assertTrue(wait_until(lambda: probe("wait", title, 1) == unedited))
        with open(model, "rb") as file:
            self.assertEqual(file.read(), edited)

        # Killed somewhere in a save: the old file or the new one, whole.
        for pause in (0, 0.005, 0.01, 0.02, 0.04):
            self.assertTrue(probe("choose", TITLE, ALPHA, 0))
            self.assertTrue(probe("command", TITLE, SAVE))
            time.sleep(pause)
            self.kill()
            with open(model, "rb") as file:
                self.assertIn(file.read(), (former, edited))
            with open(model, "wb") as file:
                file.write(edited)
            self.start(windows_path(model))
            self.assertTrue(probe("wait", title, 120))
        self.assertEqual(self.close(), 0)


class executable(unittest.TestCase):
    def test_the_program_is_hardened_and_carries_manifest_icon_and_version(self):
        with open(PROGRAM, "rb") as file:
            data = file.read()
        header = struct.unpack_from("<I", data, 0x3C)[0]
        optional = header + 24
        flags = struct.unpack_from("<H", data, optional + 70)[0]
        self.assertEqual(struct.unpack_from("<H", data, optional)[0], 0x20B, "not a 64-bit program")
        self.assertEqual(struct.unpack_from("<H", data, optional + 68)[0], 2, "not a window program")
        for bit, name in ((0x20, "high-entropy addresses"), (0x40, "address randomisation"),
                          (0x100, "no execution of data")):
            self.assertTrue(flags & bit, "the program lacks " + name)
        for text in (b"Microsoft.Windows.Common-Controls", b"PerMonitorV2, system",
                     "Korvane contributors".encode("utf-16-le")):
            self.assertIn(text, data)


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0]] + sys.argv[5:], verbosity=2)

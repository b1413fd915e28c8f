#!/usr/bin/env python3
"""Runs the program `vexa` as a user would.

usage: end_to_end.py PROGRAM [LAUNCHER ...]

A Linux program is tested with the simulated cameras. A Windows program (.exe) is tested without
cameras. LAUNCHER is the command line that PROGRAM is put behind where it does not run by itself.
Exit code 77: the launcher cannot run it here, and says so with the same code.
"""
import json
import os
import pathlib
import re
import signal
import struct
import subprocess
import sys
import tempfile
import unittest

PROGRAM = pathlib.Path(sys.argv[1]).resolve()
LAUNCHER = sys.argv[2:]
WINDOWS = PROGRAM.suffix == ".exe"
WAIT = 120  # seconds; far beyond what anything here takes


def vexa(*arguments, folder=None):
    return subprocess.run([*LAUNCHER, PROGRAM, *map(str, arguments)], cwd=folder, text=True,
                          timeout=WAIT, capture_output=True, encoding="utf-8")


def read_bmp(path):
    """Width, height and a function (x, y) -> (red, green, blue); y counts from the top."""
    data = pathlib.Path(path).read_bytes()
    magic, size, offset = struct.unpack_from("<2sI4xI", data)
    header, width, height, planes, bits, compression = struct.unpack_from("<IiiHHI", data, 14)
    assert (magic, size, header, planes, compression) == (b"BM", len(data), 40, 1, 0)
    row = (width * bits // 8 + 3) // 4 * 4
    assert len(data) == offset + row * abs(height)

    def pixel(x, y):
        line = height - 1 - y if height > 0 else y
        at = offset + line * row + x * bits // 8
        if bits == 8:
            entry = 14 + header + 4 * data[at]
            return tuple(data[entry:entry + 3][::-1])
        return tuple(data[at:at + 3][::-1])

    return width, abs(height), pixel


class EndToEnd(unittest.TestCase):
    def setUp(self):
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        self.folder = pathlib.Path(temporary.name)

    def expect(self, run, code, *says):
        self.assertEqual(run.returncode, code, run.stderr)
        for text in says:
            self.assertIn(text, run.stdout if code == 0 else run.stderr)

    def capture(self, *arguments):
        """Captures into the folder. A busy machine may lose frames between the saved ones; then
        the program has to say so."""
        run = vexa("capture", "--timeout", WAIT, *arguments, folder=self.folder)
        if run.returncode == 4:
            self.assertIn("were lost", run.stderr)
        else:
            self.expect(run, 0)
        return run.stdout


@unittest.skipUnless(WINDOWS, "for the Windows program")
class WithoutCameras(EndToEnd):
    def test_arguments_and_errors_are_unicode(self):
        self.assertRegex(vexa("--version").stdout, r"^VexaAPI \d+\.\d+\.\d+\.\d+ ")
        self.expect(vexa("list"), 3, "Vexa_Open", "259 (", "driver")
        self.expect(vexa("stats", "--seconds", "nan"), 2, "--seconds", "stats --help")
        name = "Größe 日本 \U0001F4F7.bmp"
        (self.folder / name).write_text("precious")
        self.expect(vexa("capture", "-o", name, folder=self.folder), 2, name, "--overwrite")
        self.expect(vexa("capture", "-o", name, "--overwrite", folder=self.folder), 3, "Vexa_Open")
        self.assertEqual((self.folder / name).read_text(), "precious")


class Conversion(EndToEnd):
    """Needs no camera."""

    def convert(self, name, *options):
        return vexa("convert", "in.raw", name, "--width", 8, "--height", 6, *options,
                    folder=self.folder)

    def test_converts_raw_frames(self):
        raw, deep = bytes(range(1, 49)), [i * 85 for i in range(48)]  # 12 bits
        (self.folder / "in.raw").write_bytes(raw)
        self.expect(self.convert("grey.bmp"), 0)
        width, height, pixel = read_bmp(self.folder / "grey.bmp")
        self.assertEqual((width, height, pixel(3, 2)), (8, 6, (20,) * 3))
        self.expect(self.convert("color.bmp", "--color-array", "rggb", "--method", "mosaic"), 0)
        _, _, pixel = read_bmp(self.folder / "color.bmp")
        self.assertEqual([pixel(0, 0), pixel(1, 0), pixel(1, 1)], [(1, 0, 0), (0, 2, 0), (0, 0, 10)])
        self.expect(self.convert("same.raw"), 0)
        self.assertEqual((self.folder / "same.raw").read_bytes(), raw)
        self.expect(self.convert("same.raw"), 2, "same.raw", "--overwrite")
        self.expect(vexa("process", "in.raw", "--width", 8, "--height", 6, "--rotate", 180, "-o",
                         "turned.raw", folder=self.folder), 0, "turned.raw: 8 x 6 mono")
        self.assertEqual((self.folder / "turned.raw").read_bytes(), raw[::-1])

        (self.folder / "in.raw").write_bytes(struct.pack("<48H", *deep))
        self.expect(self.convert("deep.tif", "--format", "12bit"), 0)
        data = (self.folder / "deep.tif").read_bytes()[162:]
        self.assertEqual(list(struct.unpack("<48H", data)), [sample << 4 for sample in deep])
        self.expect(self.convert("deep.bmp", "--format", "12bit"), 0)
        _, _, pixel = read_bmp(self.folder / "deep.bmp")
        self.assertEqual(pixel(7, 5), (deep[47] >> 4,) * 3)
        self.expect(self.convert("color.tif", "--format", "12bit", "--color-array", "bggr",
                                 "--method", "mosaic"), 0)
        data = (self.folder / "color.tif").read_bytes()[180:]
        self.assertEqual(tuple(data[-3:]), (deep[47] >> 4, 0, 0))

    def test_what_cannot_be_converted_is_explained(self):
        (self.folder / "in.raw").write_bytes(bytes(96))
        for code, options, says in (
                (2, ["a.bmp"], ["96 bytes", "8 x 6", "8bit", "48 bytes", "--width"]),
                (2, ["a.bmp", "--format", "bgr24"], ["144 bytes"]),
                (2, ["a.bmp", "--format", "yuv422"], [".raw"]),
                (2, ["a.png"], [".png", ".tif"]),
                (2, ["a.bmp", "--format", "12bit", "--method", "nearest"], ["--color-array"]),
                (2, ["a.raw", "--format", "12bit", "--color-array", "rggb"], ["--color-array"]),
                (1, ["no/a.tif", "--format", "12bit"], ["110 ("])):
            with self.subTest(options=options):
                self.expect(self.convert(*options), code, *says)
        self.assertFalse((self.folder / "a.bmp").exists())
        (self.folder / "in.raw").unlink()
        self.expect(self.convert("a.bmp"), 1, "in.raw", "exists")


@unittest.skipIf(WINDOWS, "needs the simulated cameras")
class WithCameras(EndToEnd):
    def test_list_and_info_agree(self):
        table = vexa("list")
        self.expect(table, 0, "index", "RGGB", "mono")
        self.assertEqual(len(table.stdout.splitlines()), 5, "a heading and four cameras")
        cameras = json.loads(vexa("list", "--json").stdout)
        self.assertEqual([camera["index"] for camera in cameras], [0, 1, 2, 3])
        for camera in cameras:
            run = vexa("info", "--camera", camera["index"], "--json")
            self.expect(run, 0)
            info = json.loads(run.stdout)
            self.assertEqual(info["identity"]["model"], camera["model"])
            self.assertIn(camera["model"], table.stdout)
            timing, region = info["timing"], info["geometry"]["region"]
            self.assertEqual((region["width"], region["height"]),
                             (camera["max_width"], camera["max_height"]))
            lines, clocks = timing["lines_per_frame"], timing["clocks_per_line"]
            hertz = timing["pixel_clock_hz"]
            self.assertAlmostEqual(timing["frame_rate_hz"], hertz / (lines * clocks), places=2)
            self.assertAlmostEqual(timing["exposure_ms"], timing["exposure_clocks"] / hertz * 1e3,
                                   places=3)
            self.assertEqual(info["transfer"]["image_bytes"], region["width"] * region["height"])
        self.expect(vexa("info"), 0, "MHz", " ms (", "frames/s", "free run", "without limit")

    def test_captures_the_colours_of_the_chart(self):
        # Published values of three patches side by side, in sRGB, and where their centres are.
        patches = ((0.352, (231, 199, 31)), (0.443, (187, 86, 149)), (0.53, (8, 133, 161)))
        for method in (None, "nearest", "four-tap", "cell-centred"):
            name = f"Grüße {method}.bmp"
            option = ["--method", method] if method else []
            self.assertIn(name, self.capture("-o", name, *option))
            width, height, pixel = read_bmp(self.folder / name)
            self.assertEqual((width, height), (1280, 964))
            for place, color in patches:
                found = pixel(int(place * width), int(0.39 * height))
                self.assertLess(max(abs(a - b) for a, b in zip(found, color)), 30, (method, place))

    def test_saves_what_was_asked_for(self):
        told = self.capture("-c", 1, "--roi", "64,32,320,200", "-n", 12, "-o", "g.bmp",
                            "--exposure-ms", "2")
        self.assertIn("Saved 12 of 12 frame(s): g-0001.bmp to g-0012.bmp", told)
        for index in range(1, 13):
            width, height, pixel = read_bmp(self.folder / f"g-{index:04}.bmp")
            self.assertEqual((width, height), (320, 200))
            self.assertEqual(len(set(pixel(100, 100))), 1, "a grey image")

        self.capture("--format", "12bit", "--roi", "0,0,640,480", "-n", 2, "-o", "deep%d.raw")
        samples = struct.unpack(f"<{640 * 480}H", (self.folder / "deep2.raw").read_bytes())
        self.assertLess(max(samples), 1 << 12)
        self.assertGreater(max(samples), 1 << 8, "more than 8 bits are in use")
        self.capture("--exposure-ms", "0.1", "-o", "dark.raw")
        self.capture("--exposure-ms", "10", "-o", "bright.raw")
        dark, bright = (sum((self.folder / f"{name}.raw").read_bytes()) for name in ("dark", "bright"))
        self.assertLess(4 * dark, bright, "the first frame has the exposure already")

        self.capture("--format", "12bit", "--roi", "0,0,640,480", "-o", "deep.tif")
        tiff = (self.folder / "deep.tif").read_bytes()
        samples = struct.unpack_from(f"<{640 * 480}H", tiff, 162)
        self.assertEqual(len(tiff), 162 + 2 * 640 * 480)
        self.assertFalse(any(sample & 0xF for sample in samples), "12 bits at the top of 16")

    def test_calibrate_balances_white_and_hides_defects(self):
        # Without and with white balance in the camera, under the same lamp.
        for camera, own in ((2, False), (3, True)):
            run = vexa("calibrate", "-c", camera, "--json", "-o", f"c{camera}-%d.bmp",
                       "--timeout", WAIT, folder=self.folder)
            self.expect(run, 0)
            report = json.loads(run.stdout)
            balance, defects = report["white_balance"], report["defect_pixels"]
            self.assertEqual(balance["in_camera"], own)
            self.assertLess(balance["gains"]["red"], 100)
            self.assertGreater(balance["gains"]["blue"], 200)
            levels = balance["mean_after"].values()
            self.assertLess(max(levels) - min(levels), 2)
            before, after = (read_bmp(self.folder / f"c{camera}-{i}.bmp") for i in (1, 2))
            width, height, pixel = before
            grey = (width // 20, height - height // 5)  # the wall between the chart and the ramps
            red, _, blue = pixel(*grey)
            self.assertGreater(red, 2 * blue)
            red, _, blue = after[2](*grey)
            self.assertLess(abs(red - blue), 20)
            self.assertEqual(defects["count"], 3)
            for place in defects["positions"]:
                x, y = place["x"], place["y"]
                self.assertGreater(max(pixel(x, y)), 200, place)
                around = max(max(after[2](x + dx, y)) for dx in (-3, 3))
                self.assertLess(max(after[2](x, y)), around + 40, place)

    def test_process_takes_files_and_frames_through_the_steps(self):
        told = self.capture("-c", 2, "--format", "12bit", "-o", "lamp.raw")
        frames = ["lamp.raw", *re.search("Read with (.*)", told)[1].split()]
        self.assertEqual(frames[2::2], ["1024", "776", "12bit", "GRBG"])

        def process(*arguments):
            run = vexa("process", *arguments, "--json", folder=self.folder)
            if run.returncode == 4:  # as for capture()
                self.assertIn("lost", run.stderr)
            else:
                self.expect(run, 0)
            return json.loads(run.stdout)

        report = process("lamp.raw", *frames, "--white-balance", "once", "--gamma", 1.2, "--mirror",
                         "vertical", "--rotate", 90, "-o", "a%d.bmp")
        self.assertEqual([step.split()[0] for step in report["steps"]],
                         ["12bit", "white", "mirror", "rotate", "interpolation", "gamma"])
        first, second = report["results"]
        self.assertEqual(first["gains"], second["gains"])
        self.assertLess(first["gains"]["red"], 110)
        self.assertGreater(first["gains"]["blue"], 190)
        width, height, pixel = read_bmp(self.folder / second["output"])
        self.assertEqual((width, height), (776, 1024))
        _, _, upright = read_bmp(self.folder / process(*frames, "-o", "b.bmp", "--white-balance",
                                                       "auto", "--gamma", 1.2)["results"][0]["output"])
        differences = [abs(a - b) for x in range(50, 1000, 19) for y in range(50, 700, 19)
                       for a, b in zip(pixel(y, x), upright(x, y))]
        self.assertLess(sum(differences) / len(differences), 4, "turned, the same picture")
        red, green, blue = upright(1024 // 20, 776 - 776 // 5)  # the wall
        self.assertLess(max(red, green, blue) - min(red, green, blue), 24)

        # Through a raw file, in two steps, as in one.
        half, = process(*frames, "--rotate", 180, "--white-balance", "70,128,250", "-o",
                        "half.raw")["results"]
        self.assertEqual(half["color_array"], "GBRG")
        process("half.raw", *frames[1:5], "--color-array", half["color_array"], "--method",
                "nearest", "-o", "two.bmp")
        process(*frames, "--rotate", 180, "--white-balance", "70,128,250", "--method", "nearest",
                "-o", "one.bmp")
        self.assertEqual((self.folder / "two.bmp").read_bytes(),
                         (self.folder / "one.bmp").read_bytes())

        for options in (["-c", 3, "--format", "yuv422", "--hue", 20], ["-c", 1, "--sharpen", 100],
                        ["-n", 3, "--impulse-filter", "--white-balance", "auto"]):
            report = process(*options, "--timeout", WAIT, "-o", "live.tif", "--overwrite")
            self.assertTrue(all((self.folder / result["output"]).stat().st_size > 1e6 and
                                result["input"] is None for result in report["results"]))
        mono = frames[:-2]
        for code, arguments, says in (
                (1, [*frames, "gone.raw"], ["gone.raw", "exists"]),  # before anything is written
                (2, [*frames[:4], 775, *frames[5:]], ["1589248 bytes", "1024 x 775", "--height"]),
                (2, [*mono, "--hue", 5], ["--hue", "monochrome", "--color-array"]),
                (2, [*frames, "--impulse-filter"], ["--impulse-filter", "GRBG"]),
                (2, [*frames, "--sharpen", 5, "-o", "x.raw"], ["--sharpen", ".raw", ".bmp"]),
                (2, [*frames, "-o", "a1.bmp"], ["a1.bmp", "--overwrite"]),
                (2, [*mono, "-o", "lamp.raw", "--overwrite"], ["to read and to write"]),
                (2, [*mono, "--dark-frame", "half.raw"], ["half.raw", "dark frame"]),
                (2, [*frames, "--white-balance", "auto", "--grey-area", "1023,0,9,9"], ["2 x 2"]),
                (2, ["-c", 3, "--format", "bgr24", "--rotate", 90], ["--rotate", "bgr24"]),
                (3, [*frames, "--hue", 5, "-c", 9], ["index 9", "open camera"])):
            with self.subTest(arguments=arguments):
                run = vexa("process", *arguments, folder=self.folder)
                self.expect(run, code, *says)
        self.assertFalse((self.folder / "processed-0001.bmp").exists())

    def test_settings_by_number_and_in_files(self):
        listed = {entry["name"]: entry for entry in
                  json.loads(vexa("parameters", "--json").stdout)}
        self.assertEqual((listed["exposure-clock"]["id"], listed["exposure-clock"]["unit"]),
                         (0x0F00, "clocks"))
        for name in ("exposure-clock", "0xF00", "3840"):
            self.expect(vexa("set", name, "0x9C40"), 0, "exposure-clock = 40000 clocks")
        self.expect(vexa("set", "user-id-text", "Größe 日本"), 0, "user-id-text = Größe 日本")
        self.expect(vexa("set", "reset-counter"), 0)
        everything = vexa("get").stdout.splitlines()
        self.assertEqual(len(everything),
                         sum("read" in entry["access"] for entry in listed.values()))
        for code, arguments, says in (
                (2, ["set", "gain", "65536"], ["65536", "0 to 65535"]),
                (2, ["set", "product-id", "1"], ["product-id", "set"]),
                (2, ["get", "soft-trigger"], ["soft-trigger", "read"]),
                (2, ["get", "exposure"], ["exposure", "vexa parameters"]),
                (2, ["settings", "load", "missing.ini"], ["missing.ini"]),
                (1, ["settings", "save", "no/folder/a.ini"], ["Vexa_WriteSettingFileW"])):
            with self.subTest(arguments=arguments):
                self.expect(vexa(*arguments, folder=self.folder), code, *says)
        self.expect(vexa("settings", "save", "a.ini", folder=self.folder), 0)
        self.expect(vexa("settings", "load", "a.ini", folder=self.folder), 0)
        text = (self.folder / "a.ini").read_text()
        (self.folder / "b.ini").write_text(text.replace("CurrentGain=0", "currentgain = 12") +
                                           "[Mine]\nNote=7\n")
        self.expect(vexa("settings", "diff", "a.ini", "a.ini", folder=self.folder), 0)
        run = vexa("settings", "diff", "a.ini", "b.ini", folder=self.folder)
        self.assertEqual(run.returncode, 1)
        self.assertEqual([line.split()[1:] for line in run.stdout.splitlines()[1:]],
                         [["CurrentGain", "0", "12"], ["Note", "-", "7"]])

    def test_stats_measures(self):
        for seconds in (2, 10, 60):  # sanitizers on a busy machine take long for a frame
            run = vexa("stats", "--seconds", seconds, "--timeout", WAIT, "--json")
            report = json.loads(run.stdout)
            if report["callback_interval"]["count"] > 0:
                break
        # A loaded machine may lose frames; then the exit code has to say so.
        lost = report["stream"]["lost_frames"] or report["stream"]["receive_errors"]
        self.assertEqual(run.returncode, 4 if lost else 0, run.stderr)
        self.assertGreater(report["cpu"]["ms_per_frame"], 0)
        interval = report["callback_interval"]
        self.assertLess(interval["count"], report["stream"]["frames"])
        self.assertLessEqual(interval["deviation_p50_us"], interval["deviation_max_us"])
        self.assertNotRegex(run.stderr, r"[\r\x1b]", "no control characters outside a terminal")
        self.assertNotIn("frames/s", vexa("stats", "-s", 1.5, "--quiet").stderr)

    def test_level_settles_from_dark_and_bright(self):
        for mode, settings, column in ((2, ["--exposure-ms", "0.5"], "exposure"),
                                       (1, ["--gain", 200, "--max-exposure-ms", 2], "gain")):
            run = vexa("level", "--mode", mode, "--timeout", WAIT, "--target", 110, "--json",
                       *settings)
            self.expect(run, 0)
            report = json.loads(run.stdout)
            first, last = report["steps"][0], report["steps"][-1]
            self.assertTrue(report["settled"])
            self.assertAlmostEqual(last["level"], 110, delta=10)
            self.assertGreater(abs(first["level"] - 110), 30)
            self.assertTrue(all(step[f"{column}_changed"] for step in report["steps"][1:-1]))
            self.assertFalse(last["exposure_changed"] or last["gain_changed"])
        self.assertAlmostEqual(last["exposure_ms"], 2, places=3)
        self.expect(vexa("level", "--exposure-ms", "0.5"), 0, "changed", "settled after")
        self.expect(vexa("level", "--mode", 5, "--max-exposure-ms", "0.1"), 4, "has not settled", "limits")
        self.expect(vexa("level", "--gain", 999), 1, "31 (", "0 to 255")

    def test_a_terminal_gets_one_changing_line(self):
        import pty  # not on Windows
        terminal, program_side = pty.openpty()
        run = subprocess.run([PROGRAM, "stats", "-s", "2"], stdout=subprocess.PIPE,
                             stderr=program_side, timeout=WAIT)
        os.close(program_side)
        shown = ""
        try:
            while piece := os.read(terminal, 65536):
                shown += piece.decode()
        except OSError:  # how a terminal ends whose other side is closed
            pass
        os.close(terminal)
        self.assertIn(run.returncode, (0, 4))
        self.assertRegex(shown, r"^(\r\d+ frames [^\r\n]*)+\r\n")

    def test_interrupts_end_in_good_order(self):
        for command, codes in ((["stats", "-s", "600"], (0, 4)),  # 4: lost frames, as above
                               (["capture", "-n", "100000", "-o", "i%d.raw"], (1,))):
            with subprocess.Popen([PROGRAM, *command, "--timeout", str(WAIT)], cwd=self.folder,
                                  text=True, stdout=subprocess.PIPE,
                                  stderr=subprocess.PIPE) as process:
                line = "0 frames"
                while line.startswith("0 frames") or "saved 0/" in line:
                    line = process.stderr.readline()
                self.assertIn("frames/s", line)
                process.send_signal(signal.SIGINT)
                output, errors = process.communicate(timeout=WAIT)
                self.assertIn(process.returncode, codes, errors)
                self.assertRegex(output, r"Saved [1-9]\d* of|interrupted")

    def test_what_goes_wrong_is_explained(self):
        taken = self.folder / "taken.bmp"
        taken.write_text("precious")
        for name in ("full.raw", "full.tif"):
            (self.folder / name).symlink_to("/dev/full")
        cases = [
            (2, ["capture", "--frames", "0"], ["--frames", "capture --help"]),
            (2, ["capture", "-o", "picture.png"], [".png", ".bmp"]),
            (2, ["capture", "-o", "%d-%d.bmp"], ["two places"]),
            (2, ["capture", "-o", taken], ["taken.bmp", "--overwrite"]),
            (2, ["capture", "--format", "12bit", "-o", "a.bmp"], ["12bit", ".tif", ".raw"]),
            (2, ["capture", "--method", "nearest", "-o", "a.raw"], ["--method"]),
            (1, ["capture", "--format", "bgr30", "-o", "a.raw"], ["87 (", "8bit, 10bit, 12bit"]),
            (1, ["capture", "--roi", "0,0,9999,480"], ["Vexa_SetScanMode", "1280 x 964"]),
            (1, ["capture", "-o", "no/folder/a.bmp"], ["Vexa_SaveImageW", "110 (", "folder"]),
            (1, ["capture", "-o", "full.raw", "--overwrite"], ["incomplete", "space"]),
            (1, ["capture", "-o", "full.tif", "--overwrite"], ["incomplete", "space"]),
            (2, ["calibrate", "-c", 1, "--white-balance"], ["monochrome"]),
            (2, ["calibrate", "--format", "12bit"], ["8 bits"]),
            (2, ["calibrate", "-o", taken.parent / "taken.bmp", "--defects", "--threshold", 0],
             ["--threshold"]),
            (1, ["calibrate", "--dark-exposure-ms", 20, "--timeout", WAIT],
             ["dark frame", "table stays", "--threshold"]),
            (3, ["info", "--camera", 9], ["index 9", "4 free", "259 ("]),
        ]
        for code, arguments, says in cases:
            with self.subTest(arguments=arguments):
                run = vexa(*arguments, folder=self.folder)
                self.expect(run, code, *says)
                self.assertEqual(run.stdout if code != 1 else "", "")
        self.assertEqual(taken.read_text(), "precious")
        with open("/dev/full", "w") as no_space:
            run = subprocess.run([PROGRAM, "list"], stdout=no_space, stderr=subprocess.PIPE)
        self.assertEqual(run.returncode, 1)
        self.assertRegex(vexa("--version").stdout, r"^VexaAPI \d+\.\d+\.\d+\.\d+ ")


if __name__ == "__main__":
    if not os.access(PROGRAM, os.X_OK):
        sys.exit(f"{PROGRAM} is no program")
    probe = vexa("--version") if LAUNCHER else None
    if probe and probe.returncode == 77:
        print(probe.stderr, end="")
        sys.exit(77)
    unittest.main(argv=sys.argv[:1], verbosity=2)

#!/usr/bin/env python3
"""Runs `vexa` and the examples on Linux and, with the simulated driver, in Wine, and compares the
files that they make.

usage: same_pictures.py LINUX_BIN WINDOWS_BIN WINE_PREFIX

The folders hold the built programs. A twin's frames follow from its settings and the frame's
number, so the same program with the same cameras makes the same files, byte for byte; but for the
line ends of setting files, which are each system's own. Exit code 77: there is no Linux build, or
no 32-bit Wine.
"""
import pathlib
import subprocess
import sys
import tempfile

LINUX, WINDOWS, PREFIX = (pathlib.Path(argument).resolve() for argument in sys.argv[1:])
HERE = pathlib.Path(__file__).resolve().parent
WINE = [HERE.parent.parent / "scripts" / "wine-run", "--prefix", PREFIX]
WAIT = 300  # seconds; far beyond what anything here takes
# A busy machine loses frames, and a later one is saved. Each is compared this often.
ATTEMPTS = 5

RUNS = [
    "vexa capture --frames 3 --output four-tap-%d.bmp --method four-tap",
    "vexa capture --camera 1 --output mono.bmp",
    "vexa capture --camera 2 --roi 64,32,640,480 --format 12bit --output deep.tif",
    "vexa capture --camera 3 --format bgr24 --exposure-ms 3 --output colour.bmp",
    "vexa capture --camera 3 --format 0x1000 --output layout.raw",
    "vexa settings save settings.ini",
    "first_picture first.bmp",
    "live_view 1 view.jpg",
    "application .",
]


def run(command, folder):
    done = subprocess.run(command, cwd=folder, timeout=WAIT, capture_output=True, text=True)
    # 4: frames were lost, which shows in the files.
    if done.returncode not in (0, 4):
        sys.exit(f"{command} has failed ({done.returncode}):\n{done.stdout}{done.stderr}")


def on_linux(program, *arguments, folder):
    run([LINUX / program, *arguments], folder)


def in_wine(program, *arguments, folder):
    """With cameras as they are after power-up."""
    setup = WINDOWS / "vexa_driver_setup.exe"
    run([*WINE, setup, "clear"], folder)
    run([*WINE, setup, "plug"], folder)
    run([*WINE, WINDOWS / f"{program}.exe", *arguments], folder)


def files(runner, command):
    """What a command makes: name -> bytes."""
    with tempfile.TemporaryDirectory() as folder:
        runner(*command.split(), folder=folder)
        made = {path.name: path.read_bytes() for path in pathlib.Path(folder).iterdir()}
    return {name: data.replace(b"\r\n", b"\n") if name.endswith(".ini") else data
            for name, data in made.items()}


def differences(command):
    linux, wine = files(on_linux, command), files(in_wine, command)
    if not linux:
        sys.exit(f"{command}: no file was made")
    return sorted(name for name in linux.keys() | wine.keys()
                  if linux.get(name) != wine.get(name)), len(linux)


def main():
    if not (LINUX / "vexa").exists():
        print(f"same_pictures: NOT RUN: no Linux build in {LINUX}", file=sys.stderr)
        return 77
    loaded = subprocess.run([HERE / "with-cameras", WINDOWS, PREFIX, "-"], timeout=WAIT)
    if loaded.returncode:
        return loaded.returncode
    different = []
    try:
        for command in RUNS:
            for attempt in range(ATTEMPTS):
                names, count = differences(command)
                if not names:
                    break
                print(f"{command}: attempt {attempt + 1}: different: {' '.join(names)}")
            different += names
            print(f"{command}: {count} files, {len(names)} different")
    finally:
        subprocess.run([*WINE, "--unix", "wineserver", "-k"], timeout=WAIT)
    return 1 if different else 0


sys.exit(main())

"""Installs the library to a scratch prefix, builds the example against it through the CMake package
and through pkg-config, and (on systems where it can run) checks the picture that the example takes.
"""
import argparse
import os
import pathlib
import re
import shutil
import struct
import subprocess
import sys

HERE = pathlib.Path(__file__).resolve().parent
EXAMPLE = HERE.parent.parent / "examples" / "first_picture.c"


def run(*command, **options):
    print("+", *command, flush=True)
    done = subprocess.run([str(word) for word in command], text=True, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, timeout=300, **options)
    print(done.stdout, flush=True)
    if done.returncode != 0:
        sys.exit(f"FAILED: {command[0]} ended with {done.returncode}")
    return done.stdout


def expect(condition, what):
    if not condition:
        sys.exit(f"FAILED: {what}")


def build_with_cmake(arguments, prefix, folder):
    command = [arguments.cmake, "-S", HERE / "consumer", "-B", folder, "-G", "Ninja",
               f"-DVEXA_EXPECTED_VERSION={arguments.version}", f"-DVEXA_EXAMPLE={EXAMPLE}"]
    if arguments.toolchain:
        # A toolchain looks for packages in its own root alone.
        config = next(prefix.rglob("VexaAPIConfig.cmake"))
        command += [f"-DCMAKE_TOOLCHAIN_FILE={arguments.toolchain}",
                    f"-DVEXA_MINGW_TRIPLE={arguments.triple}", f"-DVexaAPI_DIR={config.parent}"]
    else:
        command += [f"-DCMAKE_PREFIX_PATH={prefix}", f"-DCMAKE_C_COMPILER={arguments.compiler}"]
    run(*command)
    run(arguments.cmake, "--build", folder)
    return folder / ("consumer.exe" if arguments.toolchain else "consumer")


def build_with_pkg_config(arguments, prefix, program):
    places = os.pathsep.join(str(path.parent) for path in prefix.rglob("VexaAPI.pc"))
    environment = {**os.environ, "PKG_CONFIG_LIBDIR": places}
    version = run("pkg-config", "--modversion", "VexaAPI", env=environment).strip()
    expect(version == arguments.version, f"pkg-config says version {version}")
    flags = run("pkg-config", "--cflags", "--libs", "VexaAPI", env=environment).split()
    run(arguments.compiler, "-std=c11", "-pedantic-errors", "-Wall", "-Wextra", "-Werror", EXAMPLE,
        "-o", program, *flags)
    return program


def check_picture(program, prefix, picture):
    """Runs the example and reads its bitmap: a colour picture of the size that it printed."""
    places = os.pathsep.join({str(path.parent) for path in prefix.rglob("libVexaAPI.so")})
    said = run(program, picture, env={**os.environ, "LD_LIBRARY_PATH": places})
    width, height = map(int, re.search(r"frame \d+, (\d+) x (\d+) pixels", said).groups())
    data = picture.read_bytes()
    magic, size, offset = struct.unpack_from("<2sI4xI", data)
    header = struct.unpack_from("<IiiHHI", data, 14)
    row = (3 * width + 3) // 4 * 4
    expect((magic, size, offset) == (b"BM", len(data), 54), "the bitmap's file header is wrong")
    expect(header == (40, width, height, 1, 24, 0), f"the bitmap's image header says {header}")
    expect(len(data) == 54 + row * height, f"the bitmap has {len(data)} bytes")
    lines = [data[at:at + 3 * width] for at in range(54, len(data), row)]
    channels = [b"".join(line[channel::3] for line in lines) for channel in range(3)]
    expect(all(len(set(channel)) >= 8 for channel in channels), "the picture is empty")
    expect(len(set(channels)) > 1, "the picture has no colour")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    for name in ("build", "scratch"):
        parser.add_argument(f"--{name}", type=pathlib.Path, required=True)
    for name in ("cmake", "compiler", "version"):
        parser.add_argument(f"--{name}", required=True)
    for name in ("toolchain", "triple"):
        parser.add_argument(f"--{name}", default="", help="for a Windows build")
    arguments = parser.parse_args()

    scratch = arguments.scratch
    shutil.rmtree(scratch, ignore_errors=True)
    run(arguments.cmake, "--install", arguments.build, "--prefix", scratch / "installed")
    # Nothing in the installed tree may depend on where it was installed.
    prefix = scratch / "moved"
    (scratch / "installed").rename(prefix)

    by_cmake = build_with_cmake(arguments, prefix, scratch / "consumer")
    by_pkg_config = build_with_pkg_config(arguments, prefix, scratch / f"example{by_cmake.suffix}")
    if arguments.toolchain:
        check = HERE.parent.parent / "scripts" / "check-library"
        run(check, "--client", by_cmake, "--client", by_pkg_config)
    else:
        check_picture(by_cmake, prefix, scratch / "by_cmake.bmp")
        check_picture(by_pkg_config, prefix, scratch / "by_pkg_config.bmp")
    print("ok")


main()

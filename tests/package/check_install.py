"""Makes the archive of the target `package` and unpacks it, builds the examples against it through
the CMake package and through pkg-config, and checks what they make; programs for Windows, which find
no camera, have to say so. Exit code 77: nothing runs those here, all else is right.
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
ROOT = HERE.parent.parent
EXAMPLES = ROOT / "examples"
SOURCES = sorted(EXAMPLES.glob("*.c")) + sorted(EXAMPLES.glob("*.cpp"))
SETTINGS = re.compile(r"^\[Clock-[0-9A-F]{4}\]\r?\nClockMode=\d+\r?\nClock=\d+\r?\n")


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


def unpack(arguments, scratch):
    """The unpacked archive. Nothing in it may depend on where it is."""
    run(arguments.cpack, "--config", arguments.build / "CPackConfig.cmake", "-B", scratch)
    archive, = scratch.glob(f"VexaAPI-{arguments.version}-*.*")
    shutil.unpack_archive(archive, scratch / "unpacked")
    prefix, = (scratch / "unpacked").iterdir()
    windows = bool(arguments.toolchain)
    here = {str(path.relative_to(prefix)) for path in prefix.rglob("*") if path.is_file()}
    here = {name for name in here if not re.match(r"lib/(cmake|libVexaAPI\.so\.)", name)}
    documents = [*ROOT.glob("*.md"), ROOT / "LICENSE", *ROOT.glob("docs/*.md"), *SOURCES,
                 *EXAMPLES.glob("*.py")]
    wanted = {("" if windows else "share/doc/VexaAPI/") + str(path.relative_to(ROOT))
              for path in documents}
    wanted |= {f"bin/{name}" + ".exe" * windows
               for name in ["vexa", *(path.stem for path in SOURCES)]}
    wanted |= {"include/VexaAPI.h", "lib/pkgconfig/VexaAPI.pc"}
    wanted |= ({"bin/VexaAPI.dll", "lib/libVexaAPI.dll.a", "lib/VexaAPI.lib", "lib/VexaAPI.def"}
               if windows else {"lib/libVexaAPI.so", "include/VexaHost.h"})
    expect(here == wanted, f"missing {wanted - here}, not expected {here - wanted}")
    return prefix


def check_windows(arguments, prefix, folders):
    """The files for other compilers, and what programs say that find no driver."""
    exports = (ROOT / "cmake" / "exports.txt").read_text().split()
    expect((prefix / "lib" / "VexaAPI.def").read_text().split() ==
           ["LIBRARY", "VexaAPI.dll", "EXPORTS", *exports], "the definition file is wrong")
    by_lib = prefix / "bin" / "by_lib.exe"
    run(arguments.compiler, f"-I{prefix / 'include'}", EXAMPLES / "first_picture.c",
        prefix / "lib" / "VexaAPI.lib", "-o", by_lib)
    built = [folder / f"{source.stem}.exe" for folder in folders for source in SOURCES]
    run(ROOT / "scripts" / "check-library", prefix / "bin" / "VexaAPI.dll",
        *(f"--client={program}" for program in [*built, by_lib]))

    for program in [*(prefix / "bin").glob("*.exe"), *built]:
        if program.stem == "live_view" and program in built:
            continue  # needs the compiler's run-time libraries for C++
        if not (program.parent / "VexaAPI.dll").exists():
            shutil.copy(prefix / "bin" / "VexaAPI.dll", program.parent)
        done = subprocess.run([*arguments.launcher, program, *(["list"] * (program.stem == "vexa"))],
                              text=True, capture_output=True, timeout=300)
        if done.returncode == 77:
            print(f"NOT RUN, only looked at as files: the programs\n{done.stderr}")
            sys.exit(77)
        expect(done.returncode in (1, 3) and "camera" in done.stderr and "259" in done.stderr,
               f"{program} says: {done}")


def build_with_cmake(arguments, prefix, folder):
    command = [arguments.cmake, "-S", HERE / "consumer", "-B", folder, "-G", "Ninja",
               f"-DVEXA_EXPECTED_VERSION={arguments.version}",
               f"-DVEXA_EXAMPLES={';'.join(map(str, SOURCES))}"]
    if arguments.toolchain:
        # A toolchain looks for packages in its own root alone.
        config = next(prefix.rglob("VexaAPIConfig.cmake"))
        command += [f"-DCMAKE_TOOLCHAIN_FILE={arguments.toolchain}",
                    f"-DVEXA_MINGW_TRIPLE={arguments.triple}", f"-DVexaAPI_DIR={config.parent}"]
    else:
        command += [f"-DCMAKE_PREFIX_PATH={prefix}", f"-DCMAKE_C_COMPILER={arguments.compiler}",
                    f"-DCMAKE_CXX_COMPILER={arguments.cxx_compiler}"]
    run(*command)
    run(arguments.cmake, "--build", folder)
    return folder


def build_with_pkg_config(arguments, prefix, folder):
    folder.mkdir()
    places = os.pathsep.join(str(path.parent) for path in prefix.rglob("VexaAPI.pc"))
    environment = {**os.environ, "PKG_CONFIG_LIBDIR": places}
    version = run("pkg-config", "--modversion", "VexaAPI", env=environment).strip()
    expect(version == arguments.version, f"pkg-config says version {version}")
    flags = run("pkg-config", "--cflags", "--libs", "VexaAPI", env=environment).split()
    for source in SOURCES:
        compiler, standard = ((arguments.compiler, "c11") if source.suffix == ".c" else
                              (arguments.cxx_compiler, "c++17"))
        run(compiler, f"-std={standard}", "-pedantic-errors", "-Wall", "-Wextra", "-Werror", source,
            "-o", folder / (source.stem + (".exe" if arguments.toolchain else "")), *flags)
    return folder


def check_examples(programs, prefix, results):
    """Runs the examples as their first lines say, and looks at what they leave."""
    library = next(prefix.rglob("libVexaAPI.so"))
    environment = {**os.environ, "LD_LIBRARY_PATH": str(library.parent),
                   "VEXA_LIBRARY": str(library)}
    results.mkdir()
    said = run(programs / "first_picture", results / "first.bmp", env=environment)
    check_bitmap(said, results / "first.bmp")

    for settings in ("settings made", "settings loaded"):
        said = run(programs / "application", results, env=environment)
        expect(("settings of" in said) == (settings == "settings loaded"), said)
        pictures = sorted(path.name for path in results.glob("*.tif"))
        expect(pictures == [f"picture-{i}.tif" for i in (1, 2, 3)], f"there are {pictures}")
        expect(SETTINGS.match((results / "camera.ini").read_text()), "the setting file is wrong")

    said = run(programs / "live_view", 40, results / "live.jpg", env=environment)
    expect("settled" in said, "the level control does not settle")
    said = run(sys.executable, EXAMPLES / "snapshot.py", results / "python.jpg", env=environment)
    for name in ("live.jpg", "python.jpg"):
        data = (results / name).read_bytes()
        expect(data[:4] == b"\xff\xd8\xff\xe0" and data[-2:] == b"\xff\xd9", f"{name} is no JPEG")
    expect(re.search(r"frame \d+, \d+ x \d+ pixels", said), "snapshot.py says nothing")


def check_bitmap(said, picture):
    """A colour picture of the size that the program printed."""
    width, height = map(int, re.search(r"frame \d+, (\d+) x (\d+) pixels", said).groups())
    data = picture.read_bytes()
    row = (3 * width + 3) // 4 * 4
    header = (data[:2], *struct.unpack_from("<I12xii", data, 2))
    expect(header == (b"BM", 54 + row * height, width, height) and len(data) == header[1],
           f"the bitmap has {len(data)} bytes and begins {header}")
    lines = [data[at:at + 3 * width] for at in range(54, len(data), row)]
    channels = [b"".join(line[channel::3] for line in lines) for channel in range(3)]
    expect(all(len(set(channel)) >= 8 for channel in channels), "the picture is empty")
    expect(len(set(channels)) > 1, "the picture has no colour")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    for name in ("build", "scratch"):
        parser.add_argument(f"--{name}", type=pathlib.Path, required=True)
    for name in ("cmake", "cpack", "compiler", "cxx-compiler", "version"):
        parser.add_argument(f"--{name}", required=True)
    for name in ("toolchain", "triple"):
        parser.add_argument(f"--{name}", default="", help="for a Windows build")
    parser.add_argument("--launcher", nargs="*", default=[], help="what runs a Windows program")
    arguments = parser.parse_args()

    scratch = arguments.scratch
    shutil.rmtree(scratch, ignore_errors=True)
    prefix = unpack(arguments, scratch)
    by_cmake = build_with_cmake(arguments, prefix, scratch / "consumer")
    by_pkg_config = build_with_pkg_config(arguments, prefix, scratch / "by_pkg_config")
    if arguments.toolchain:
        check_windows(arguments, prefix, (by_cmake, by_pkg_config))
    else:
        check_examples(by_cmake, prefix, scratch / "results_cmake")
        check_examples(by_pkg_config, prefix, scratch / "results_pkg_config")
    print("ok")


main()

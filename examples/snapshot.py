"""Takes one picture from Python, through ctypes and nothing else.

    snapshot.py [FILE]      saves the picture as FILE (default snapshot.jpg)

The library is found as the system finds libraries; the environment variable VEXA_LIBRARY may name
the file instead.
"""
import ctypes
import os
import sys
from ctypes import POINTER, byref, c_char_p, c_int, c_ubyte, c_uint16, c_uint32, c_void_p

WINDOWS = sys.platform == "win32"
INVALID_HANDLE = c_void_p(-1).value
TRANSFER_8BIT = 0x0001
BILINEAR = 3
BGR24 = 4


def load():
    name = os.environ.get("VEXA_LIBRARY") or ("VexaAPI.dll" if WINDOWS else "libVexaAPI.so")
    # The functions of the DLL use the standard calling convention.
    library = (ctypes.WinDLL if WINDOWS else ctypes.CDLL)(name)
    library.Vexa_Open.restype = c_void_p
    arguments = {
        "Close": [c_void_p],
        "SetTransferBitsPerPixel": [c_void_p, c_uint32],
        "GetScanMode": [c_void_p, POINTER(c_uint16)] + [POINTER(c_uint32)] * 4,
        "GetColorArray": [c_void_p, POINTER(c_uint16)],
        "TakeRawSnapShot": [c_void_p, POINTER(c_ubyte), c_uint32, POINTER(c_uint32),
                            POINTER(c_uint32), c_uint32],
        "StopTransfer": [c_void_p],
        "ColorInterpolation": [c_uint32, c_uint32, c_uint16, POINTER(c_ubyte), POINTER(c_ubyte),
                               c_ubyte, c_uint32],
        "SaveImageA": [c_uint32, c_uint32, c_uint32, POINTER(c_ubyte), c_char_p, c_uint32],
    }
    for function, types in arguments.items():
        entry = getattr(library, "Vexa_" + function)
        entry.argtypes = types
        entry.restype = None if function == "Close" else c_int
    return library


def last_error(library):
    if WINDOWS:
        return ctypes.GetLastError()
    library.GetLastError.restype = c_uint32
    return library.GetLastError()


def take(library, camera, path):
    def call(function, *arguments):
        if not getattr(library, "Vexa_" + function)(*arguments):
            sys.exit(f"snapshot: Vexa_{function} failed (error {last_error(library)})")

    mode, colors = c_uint16(), c_uint16()
    x, y, width, height, copied, number = (c_uint32() for _ in range(6))
    call("SetTransferBitsPerPixel", camera, TRANSFER_8BIT)
    call("GetScanMode", camera, byref(mode), byref(x), byref(y), byref(width), byref(height))
    call("GetColorArray", camera, byref(colors))
    pixels = width.value * height.value
    raw = (c_ubyte * pixels)()
    picture = (c_ubyte * (3 * pixels))()
    # Starts the transfer by itself, and waits for a frame.
    call("TakeRawSnapShot", camera, raw, pixels, byref(copied), byref(number), 5000)
    call("StopTransfer", camera)
    call("ColorInterpolation", width, height, colors, raw, picture, BILINEAR, BGR24)
    call("SaveImageA", width, height, BGR24, picture, os.fsencode(path), 10)
    print(f"frame {number.value}, {width.value} x {height.value} pixels: {path}")


def main():
    if len(sys.argv) > 2:
        sys.exit("usage: snapshot.py [FILE]")
    library = load()
    camera = library.Vexa_Open()
    if camera == INVALID_HANDLE:
        sys.exit(f"snapshot: no free camera found (error {last_error(library)})")
    try:
        take(library, camera, sys.argv[1] if len(sys.argv) == 2 else "snapshot.jpg")
    finally:
        library.Vexa_Close(camera)


main()

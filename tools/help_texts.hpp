/** What --help says below the options of the program and of its commands. */
#pragma once

namespace vexa::tool {

inline constexpr const char* kMainFooter = R"(Examples:
  vexa list
  vexa info --camera 1 --json
  vexa capture --output picture.bmp
  vexa capture --frames 100 --exposure-ms 5 --output run/frame-%04d.bmp
  vexa capture --format 12bit --output deep.raw
  vexa convert deep.raw deep.tif --width 1280 --height 964 --format 12bit
  vexa process --white-balance auto --gamma 1.5 --sharpen 80 --output fine.jpg
  vexa level --target 100
  vexa calibrate --output calibrate-%d.bmp
  vexa stats --seconds 30
  vexa set exposure-clock 40000
  vexa settings save camera.ini

Exit codes:
  0  success
  1  a call failed, a file could not be written, or a capture was interrupted
  2  the command line is wrong or does not fit the camera's settings
  3  no camera could be opened
  4  frames were lost, receiving failed, no frame came in time, or the level did
     not settle

Cameras have indexes from 0, in the system's order, among those that no other
program uses. Settings stay in the camera when the program ends. Ctrl-C ends a
command in good order; a second one at once.
"vexa COMMAND --help" explains a command.)";

inline constexpr const char* kCaptureFooter =
    R"(File names: %d or %04d is the place of the frame's index, from 1; %% is a percent
sign. Several frames without a place get "-0001" and so on before the extension.
The extension chooses the file type: .bmp, .tif or .jpg a picture, .raw the frame's
bytes as the camera sends them. Frames deeper than 8 bits need .tif (samples as they are)
or .raw, YUV frames .raw. Saving runs beside the camera; frames that find no free
buffer are not saved, and counted.

Methods: none (grey), mosaic, nearest, bilinear, four-tap, cell-centred.

"vexa info" shows the camera's scan modes and formats. Settings stay in the camera.
The longest wait is 5 seconds, or three frame periods where that is longer.

Examples:
  vexa capture --output picture.bmp --method four-tap
  vexa capture --frames 100 --roi 0,0,640,480 --output run/frame-%04d.bmp)";

inline constexpr const char* kConvertFooter =
    R"(INPUT holds one frame as "vexa capture" saves it in a .raw file, and nothing else.
The extension of OUTPUT chooses the file type: .bmp, .tif, .jpg or .raw (the same
bytes).
With a --color-array other than mono the frame becomes a colour picture of 8 bits
per channel. Without one, samples deeper than 8 bits stay as they are in a .tif file;
wherever 8 bits are needed, the upper 8 bits of every sample are taken.

Methods: none (grey), mosaic, nearest, bilinear, four-tap, cell-centred.

Examples:
  vexa convert deep.raw deep.tif --width 1280 --height 964 --format 12bit
  vexa convert a.raw a.bmp --width 1280 --height 964 --color-array rggb)";

inline constexpr const char* kProcessFooter =
    R"(Frames come from files, one in each as "vexa capture" saves it in a .raw file, or, when
none is named, from the camera. Those in files are taken for monochrome frames of 8 bits
unless --color-array and --format say otherwise. The steps are always taken in this order, whatever the
order of the options; a step that is not asked for is left out:

  conversion to 8 bits     samples keep their upper 8 bits; YUV and bgr30 become BGR
  --dark-frame             removes the pattern that the sensor shows in the dark: FILE
                           holds such a frame, of the same size and format
  --impulse-filter         takes single bright pixels down (mono, RGGB, BGGR)
  --white-balance          auto: gains found on every frame under which the means of
                           red, green and blue agree; once: those of the first frame
                           for all; or the gains themselves as "vexa calibrate"
                           prints them: red, green of red rows, green of blue rows,
                           blue (or red, green, blue), where 128 changes nothing
  --raw-gamma              tone curve of the raw samples, above 1 lifts the mid-tones
  --mirror, then --rotate  horizontal, vertical, diagonal, antidiagonal; 90, 180 or
                           270 degrees clockwise
  interpolation            --method: none (grey), mosaic, nearest, bilinear,
                           four-tap, cell-centred; mono frames stay grey
  --matrix                 for red, green, blue the factors of red, green and blue
                           (9 numbers), or those and an offset in levels (12)
  --hue, --saturation      degrees, above 0 from red towards magenta; per cent, where 0
                           is grey and 100 changes nothing
  --gamma, --brightness, --contrast, --negative
                           tone curve of the luminance, hues stay: above 1 lifts the
                           mid-tones; levels to add; levels cut off at each end; the
                           curve the other way round
  --sharpen                per cent; details of up to --coring levels stay

The extension of --output chooses the file type: .bmp, .tif or .jpg a picture, .raw the
bytes: of Bayer frames as they are before the interpolation, else of the picture.
File names are those of "vexa capture".

Most steps keep their settings in an open camera. Then one is opened for files, too;
nothing is changed in it.

Examples:
  vexa process --white-balance auto --gamma 1.5 --sharpen 80 -o fine.jpg
  vexa process a.raw b.raw --width 1280 --height 964 --format 12bit \
       --color-array rggb --white-balance 90,128,128,230 --rotate 90 -o out-%d.tif
  vexa process -n 20 --dark-frame dark.raw --impulse-filter -o clean-%02d.raw)";

inline constexpr const char* kLevelFooter =
    R"(Measures the mean brightness of frames (0 to 255, deeper samples scaled down) and
adjusts exposure and gain until it is near the target. Prints each step: the frame,
its level, the exposure (0 clocks: one full frame) and the gain that it was taken
with, and what was changed then. Camera and start values as they are, or as set.

Modes: 1 exposure, then gain; 2 exposure; 3 gain; 4 to 6 the same, ending by itself.
Limits: one clock to one full frame, and all gain values, where none are given.
A change takes effect some frames later: --skip leaves that many out.

Examples:
  vexa level --target 100
  vexa level --mode 2 --exposure-ms 0.05 --max-exposure-ms 40)";

inline constexpr const char* kCalibrateFooter =
    R"(White balance: finds the gains under which the means of red, green and blue agree;
point the camera at something grey. A camera with white balance of its own keeps
them in its registers, for all others the host applies them: pass them to
Vexa_SetWhiteBalanceGain().

Defect pixels: takes a dark frame, loads the camera's table with the pixels that
reach the threshold, and switches the correction on (mode 1). Cover the lens, or
rely on the exposure of the dark frame, which is the shortest if not given.

Without --white-balance and --defects both are done as far as the camera has them.
The first picture is without corrections, the second with what was found. File
names and methods are those of "vexa capture".

Examples:
  vexa calibrate
  vexa calibrate --camera 2 --white-balance --output balance-%d.bmp
  vexa calibrate --defects --threshold 40 --dark-exposure-ms 20)";

inline constexpr const char* kStatsFooter = R"(Measured:
  frames/s, MB/s   from the first frame to the last; 1 MB is 10^6 bytes of image
  lost frames      gaps in the camera's frame numbers
  interval         time from one frame's callback to the next frame's; intervals
                   across lost frames do not count
  deviation        |interval - median interval|: the values at or below which 50,
                   90 and 99 % of the intervals lie, and the largest
  CPU time         user and system time of the whole process per frame; with the
                   built-in simulated cameras this includes their work

Examples:
  vexa stats --seconds 30
  vexa stats --exposure-ms 2 --roi 0,0,640,480 --json)";

inline constexpr const char* kSetFooter = R"(Examples:
  vexa set gain 120
  vexa set 0x0F00 40000
  vexa set user-id-text "left eye"
  vexa set reset-counter

"vexa parameters" lists names, numbers, ranges and units.)";

}  // namespace vexa::tool

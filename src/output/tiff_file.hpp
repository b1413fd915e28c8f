/// \file
/// TIFF files.
#pragma once

#include <cstdio>

#include "output/image_file.hpp"
#include "platform/status.hpp"

namespace vexa::output {

/// kInvalidParameter for codes that are no pixel format, for null pixels, for sides outside 1 to
/// 65535 (the directory holds them as 16-bit numbers), and for an image whose file would not fit
/// TIFF's 32-bit offsets or the address space.
Status CheckTiff(const Image& image);

/// Writes an image that CheckTiff accepts: TIFF 6.0, little-endian, one uncompressed strip, rows
/// top first. The samples of MONO10, MONO12 and MONO14 are shifted to the top of their 16 bits.
/// kLastErrorKept, with nothing written, when memory runs out. Does not report what the file system
/// could not take.
Status WriteTiff(const Image& image, std::FILE* file);

}  // namespace vexa::output

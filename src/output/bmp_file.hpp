/// \file
/// Windows bitmaps.
#pragma once

#include <cstdio>

#include "output/image_file.hpp"
#include "platform/status.hpp"

namespace vexa::output {

/// kInvalidParameter for the 16-bit formats, for null pixels, and for an image whose file would not
/// fit the 32-bit sizes of a bitmap. Codes that are no pixel format at all pass; WriteBmp refuses
/// them.
Status CheckBmp(const Image& image);

/// Writes MONO8 with a grey palette, BGR24 or BGR32, bottom row first, rows padded to 4 bytes, all
/// in one write. kInvalidParameter for any other format (nothing is written), kNotEnoughMemory,
/// kWriteFault when the file took less than everything.
Status WriteBmp(const Image& image, std::FILE* file);

}  // namespace vexa::output

/// \file
/// JPEG files.
#pragma once

#include <cstdint>
#include <cstdio>

#include "output/image_file.hpp"
#include "platform/status.hpp"

namespace vexa::output {

/// kInvalidParameter for formats other than MONO8, BGR24 and BGR32, for null pixels, and for sides
/// that are 0 or longer than a JPEG file can tell (65535).
Status CheckJpeg(const Image& image);

/// Writes an image that CheckJpeg accepts: MONO8 as one grey component, BGR as YCbCr.
/// @param compression 0 (quality 100) to 99 (quality 1); from 100 on the unscaled typical tables.
/// @return kNotEnoughMemory (or std::bad_alloc when there is none even for the encoder itself).
/// What the file system could not take is not reported.
Status WriteJpeg(const Image& image, std::uint32_t compression, std::FILE* file);

}  // namespace vexa::output

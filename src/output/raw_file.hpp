/// \file
/// RAW files: the bare bytes of an image.
#pragma once

#include <cstdio>

#include "output/image_file.hpp"
#include "platform/status.hpp"

namespace vexa::output {

/// kInvalidParameter for formats other than MONO8, MONO16, BGR24 and BGR32, for null pixels, and
/// for an image larger than the address space.
Status CheckRaw(const Image& image);

/// Writes an image that CheckRaw accepts. Does not report what the file system could not take.
Status WriteRaw(const Image& image, std::FILE* file);

}  // namespace vexa::output

/// \file
/// Pictures that a twin can look at.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace vexa::simulator {

/// A picture in display values: three samples (red, green, blue) per pixel, 65535 is white, rows
/// top first. At the power-up exposure a camera that looks at it delivers these values.
struct Picture {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  std::vector<std::uint16_t> rgb;
};

/// A picture of one colour (samples 0 ... 65535).
std::shared_ptr<const Picture> UniformPicture(std::uint16_t red, std::uint16_t green,
                                              std::uint16_t blue);

/// The outcome of reading a picture file: the picture, or why there is none.
struct PictureFile {
  std::shared_ptr<const Picture> picture;
  std::string error;
};

/// Parses a binary PNM image: P5 (grey) or P6 (colour), maximum value 1 ... 65535, comments
/// allowed in the header. Sides up to 16384 pixels.
PictureFile ParsePnm(const std::string& bytes);

/// Reads a PNM file (ParsePnm); an error also tells a file that cannot be read.
PictureFile ReadPnm(const std::string& path);

}  // namespace vexa::simulator

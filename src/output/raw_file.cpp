#include "output/raw_file.hpp"

#include <cstddef>
#include <cstdint>

namespace vexa::output {
namespace {

std::size_t BytesPerPixel(PixelFormat format) {
  switch (format) {
    case PixelFormat::kMono8:
      return 1;
    case PixelFormat::kMono16:
      return 2;
    case PixelFormat::kBgr24:
      return 3;
    case PixelFormat::kBgr32:
      return 4;
    default:
      return 0;
  }
}

}  // namespace

Status CheckRaw(const Image& image) {
  const std::size_t pixel_size = BytesPerPixel(image.format);
  const std::uint64_t pixels = std::uint64_t{image.width} * image.height;
  if (pixel_size == 0 || pixels > PTRDIFF_MAX / pixel_size ||
      (image.pixels == nullptr && pixels != 0)) {
    return error::kInvalidParameter;
  }
  return {};
}

Status WriteRaw(const Image& image, std::FILE* file) {
  const std::size_t row_size = image.width * BytesPerPixel(image.format);
  std::fwrite(image.pixels, 1, row_size * image.height, file);
  return {};
}

}  // namespace vexa::output

#include "output/raw_file.hpp"

#include <cstddef>
#include <cstdint>

namespace vexa::output {
Status CheckRaw(const Image& image) {
  // The codes behind kBgr32 say where a word's sample stands, which a file without header cannot.
  const std::uint32_t pixel_size =
      image.format <= PixelFormat::kBgr32 ? BytesPerPixel(image.format) : 0;
  const std::uint64_t pixels = std::uint64_t{image.width} * image.height;
  if (pixel_size == 0 || pixels > PTRDIFF_MAX / pixel_size ||
      (image.pixels == nullptr && pixels != 0)) {
    return error::kInvalidParameter;
  }
  return {};
}

Status WriteRaw(const Image& image, std::FILE* file) {
  const std::size_t row_size = std::size_t{image.width} * BytesPerPixel(image.format);
  std::fwrite(image.pixels, 1, row_size * image.height, file);
  return {};
}

}  // namespace vexa::output

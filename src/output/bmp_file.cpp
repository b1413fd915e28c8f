#include "output/bmp_file.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <new>
#include <span>
#include <vector>

#include "platform/bytes.hpp"

namespace vexa::output {
namespace {

constexpr std::size_t kHeaderSize = 54;  // BITMAPFILEHEADER and BITMAPINFOHEADER
constexpr std::size_t kPaletteEntries = 256;
constexpr std::size_t kPaletteSize = 4 * kPaletteEntries;

/// Sizes of a bitmap in bytes.
struct BmpLayout {
  std::size_t pixel_size = 0;  // 0: no format
  std::uint64_t row_size = 0;  // padded
  std::uint64_t data_offset = 0;
  std::uint64_t file_size = 0;
};

BmpLayout LayOut(const Image& image) {
  BmpLayout layout;
  layout.pixel_size = BytesPerPixel(image.format);
  if (layout.pixel_size == 0) {
    return layout;
  }
  layout.row_size = (layout.pixel_size * std::uint64_t{image.width} + 3) / 4 * 4;
  layout.data_offset = kHeaderSize + (layout.pixel_size == 1 ? kPaletteSize : 0);
  layout.file_size = layout.data_offset + layout.row_size * image.height;
  return layout;
}

void FillHeader(const Image& image, const BmpLayout& layout, std::span<std::uint8_t> header) {
  const std::uint32_t colours = layout.pixel_size == 1 ? kPaletteEntries : 0;
  header[0] = 'B';
  header[1] = 'M';
  StoreLe32(header, 2, static_cast<std::uint32_t>(layout.file_size));
  StoreLe32(header, 10, static_cast<std::uint32_t>(layout.data_offset));
  StoreLe32(header, 14, 40);  // size of the BITMAPINFOHEADER
  StoreLe32(header, 18, image.width);
  StoreLe32(header, 22, image.height);  // positive: bottom row first
  StoreLe16(header, 26, 1);             // planes
  StoreLe16(header, 28, static_cast<std::uint16_t>(8 * layout.pixel_size));
  StoreLe32(header, 34, static_cast<std::uint32_t>(layout.file_size - layout.data_offset));
  StoreLe32(header, 46, colours);  // colours used
  StoreLe32(header, 50, colours);  // important colours
}

void FillGreyPalette(std::span<std::uint8_t> palette) {
  for (std::size_t i = 0; i < kPaletteEntries; ++i) {
    std::fill_n(palette.begin() + static_cast<std::ptrdiff_t>(4 * i), 3,
                static_cast<std::uint8_t>(i));
  }
}

std::vector<std::uint8_t> MakeBmp(const Image& image, const BmpLayout& layout) {
  std::vector<std::uint8_t> file(static_cast<std::size_t>(layout.file_size));
  FillHeader(image, layout, file);
  if (layout.pixel_size == 1) {
    FillGreyPalette(std::span(file).subspan(kHeaderSize));
  }
  const std::size_t source_row = layout.pixel_size * image.width;
  std::uint8_t* row = file.data() + file.size();
  for (std::uint32_t y = 0; y < image.height; ++y) {
    row -= layout.row_size;
    std::copy_n(image.pixels + y * source_row, source_row, row);
  }
  return file;
}

}  // namespace

Status CheckBmp(const Image& image) {
  const BmpLayout layout = LayOut(image);
  if (layout.pixel_size == 2) {
    return error::kInvalidParameter;  // a bitmap has no pixels of one 16-bit sample
  }
  if (layout.pixel_size == 0) {
    return {};
  }
  // Width and height are signed in a bitmap; the file must also fit into memory.
  constexpr std::uint32_t kMaxSide = std::numeric_limits<std::int32_t>::max();
  constexpr std::uint64_t kMaxFile =
      std::min<std::uint64_t>(std::numeric_limits<std::uint32_t>::max(), PTRDIFF_MAX);
  if (image.width > kMaxSide || image.height > kMaxSide || layout.file_size > kMaxFile ||
      (image.pixels == nullptr && layout.file_size > layout.data_offset)) {
    return error::kInvalidParameter;
  }
  return {};
}

Status WriteBmp(const Image& image, std::FILE* file) {
  const BmpLayout layout = LayOut(image);
  if (layout.pixel_size == 0) {
    return error::kInvalidParameter;
  }
  std::vector<std::uint8_t> bytes;
  try {
    bytes = MakeBmp(image, layout);
  } catch (const std::bad_alloc&) {
    return error::kNotEnoughMemory;
  }
  // Flushed here, so that a disk that is full shows before success is reported.
  const bool complete =
      std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size() && std::fflush(file) == 0;
  return complete ? Status() : error::kWriteFault;
}

}  // namespace vexa::output

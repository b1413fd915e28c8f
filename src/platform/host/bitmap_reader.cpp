#include "platform/host/bitmap_reader.hpp"

#include "platform/bytes.hpp"

namespace vexa::platform::host {
namespace {

constexpr std::size_t kHeaderSize = 40;  // BITMAPINFOHEADER
constexpr std::uint32_t kColorBits = 0x00FFFFFF;

}  // namespace

std::optional<BitmapReader> BitmapReader::Make(const Bitmap& bitmap) {
  BitmapReader reader;
  reader.width_ = static_cast<std::int32_t>(LoadLe32(bitmap.info, 4));
  reader.height_ = -std::int64_t{static_cast<std::int32_t>(LoadLe32(bitmap.info, 8))};
  const std::uint16_t bits = LoadLe16(bitmap.info, 14);
  if (bitmap.pixels == nullptr || reader.width_ <= 0 || reader.height_ <= 0 ||
      reader.height_ > INT32_MAX || (bits != 8 && bits != 24 && bits != 32)) {
    return std::nullopt;
  }
  // Both sides have 31 bits and a row is less than 2^33 bytes: no product exceeds 64 bits.
  const std::uint64_t row = static_cast<std::uint64_t>(reader.width_) * bits / 8;
  const std::uint64_t size = row * static_cast<std::uint64_t>(reader.height_);
  if (size > PTRDIFF_MAX) {
    return std::nullopt;
  }
  reader.palette_ = bitmap.info.subspan(kHeaderSize);
  reader.pixels_ = {bitmap.pixels, static_cast<std::size_t>(size)};
  reader.pixel_size_ = bits / 8u;
  reader.row_size_ = static_cast<std::size_t>((row + 3) / 4 * 4);
  return reader;
}

std::optional<std::uint32_t> BitmapReader::Pixel(std::size_t x, std::size_t y) const {
  const std::size_t at = y * row_size_ + x * pixel_size_;
  if (at + pixel_size_ > pixels_.size()) {
    return std::nullopt;
  }
  if (pixel_size_ == 1) {
    return LoadLe32(palette_, std::size_t{4} * pixels_[at]) & kColorBits;
  }
  return LoadLe16(pixels_, at) | static_cast<std::uint32_t>(pixels_[at + 2]) << 16;
}

}  // namespace vexa::platform::host

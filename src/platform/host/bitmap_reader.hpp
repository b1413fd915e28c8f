/// \file
/// The pixels of a device-independent bitmap.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "platform/drawing_surface.hpp"

namespace vexa::platform::host {

/// Reads pixels of a bitmap of 8, 24 or 32 bits, and nothing beyond the image's own bytes.
class BitmapReader {
 public:
  /// Nothing when there are no pixels, or when the header describes no bitmap that can be in
  /// memory.
  static std::optional<BitmapReader> Make(const Bitmap& bitmap);

  std::int64_t width() const { return width_; }
  std::int64_t height() const { return height_; }

  /// 0x00RRGGBB of the pixel in column x (below width()) of row y (below height()), counted from
  /// the top; nothing for one beyond the image's bytes.
  std::optional<std::uint32_t> Pixel(std::size_t x, std::size_t y) const;

 private:
  BitmapReader() = default;

  std::span<const std::uint8_t> palette_;
  std::span<const std::uint8_t> pixels_;
  std::int64_t width_ = 0;
  std::int64_t height_ = 0;
  std::size_t pixel_size_ = 0;  // bytes
  std::size_t row_size_ = 0;    // padded
};

}  // namespace vexa::platform::host

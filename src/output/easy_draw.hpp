/// \file
/// Drawing images into a device context.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/drawing_surface.hpp"

namespace vexa::output {

/// A camera's drawing object: keeps the bitmap header with the grey palette, so that a call only
/// fills in what differs from image to image. Not for several threads at once.
class CEasyDraw {
 public:
  /// Throws std::bad_alloc.
  CEasyDraw();
  virtual ~CEasyDraw();
  CEasyDraw(const CEasyDraw&) = delete;
  CEasyDraw& operator=(const CEasyDraw&) = delete;

  /// The image in memory: rows top first, no padding. Format codes 4 and 8 are BGR24 and BGR32, all
  /// others are drawn as 8-bit grey.
  struct Picture {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint32_t format = 0;
    const std::uint8_t* pixels = nullptr;
  };

  /// Draws a part of a picture: pixel by pixel when source and destination have the same size, else
  /// by repeating or leaving out rows and columns. The source counts from the picture's top left
  /// pixel. Result: that of the system's call, 0 on failure.
  int Draw(void* device_context, const platform::DrawArea& destination,
           const platform::DrawArea& source, const Picture& picture);

 private:
  std::vector<std::uint8_t> info_;  // BITMAPINFO
};

}  // namespace vexa::output

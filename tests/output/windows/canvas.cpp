#include "output/canvas.hpp"

#include <gtest/gtest.h>

namespace vexa::test {

Canvas::Canvas(int width, int height) : width_(width), height_(height) {
  BITMAPINFO info{};
  info.bmiHeader.biSize = sizeof info.bmiHeader;
  info.bmiHeader.biWidth = width;
  info.bmiHeader.biHeight = -height;
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  context_ = ::CreateCompatibleDC(nullptr);
  bitmap_ = ::CreateDIBSection(context_, &info, DIB_RGB_COLORS, &pixels_, nullptr, 0);
  EXPECT_NE(bitmap_, nullptr);
  ::SelectObject(context_, bitmap_);
}

Canvas::~Canvas() {
  EXPECT_TRUE(::DeleteDC(context_));
  EXPECT_TRUE(::DeleteObject(bitmap_));
}

std::vector<std::uint32_t> Canvas::Pixels() const {
  ::GdiFlush();
  const auto* first = static_cast<const std::uint32_t*>(pixels_);
  std::vector<std::uint32_t> pixels(first, first + width_ * height_);
  for (std::uint32_t& pixel : pixels) {
    pixel &= 0xFFFFFF;
  }
  return pixels;
}

int Canvas::StretchMode() const { return ::GetStretchBltMode(context_); }

void Canvas::SetStretchMode(int mode) { EXPECT_NE(::SetStretchBltMode(context_, mode), 0); }

}  // namespace vexa::test

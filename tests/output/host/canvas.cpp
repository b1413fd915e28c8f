#include "output/canvas.hpp"

#include <gtest/gtest.h>

#include "VexaHost.h"
#include "platform/bytes.hpp"

namespace vexa::test {

Canvas::Canvas(int width, int height) : width_(width), height_(height) {
  context_ = VexaHost_CreateSurface(static_cast<DWORD>(width), static_cast<DWORD>(height));
  EXPECT_NE(context_, nullptr) << GetLastError();
}

Canvas::~Canvas() { EXPECT_TRUE(VexaHost_DestroySurface(context_)); }

std::vector<std::uint32_t> Canvas::Pixels() const {
  std::vector<std::uint32_t> pixels(static_cast<std::size_t>(width_ * height_));
  std::vector<BYTE> bytes(4 * pixels.size());
  EXPECT_TRUE(VexaHost_ReadSurface(context_, bytes.data(), bytes.size()));
  for (std::size_t i = 0; i < pixels.size(); ++i) {
    pixels[i] = LoadLe32(bytes, 4 * i);
  }
  return pixels;
}

int Canvas::StretchMode() const { return VexaHost_GetStretchMode(context_); }

void Canvas::SetStretchMode(int mode) { EXPECT_NE(VexaHost_SetStretchMode(context_, mode), 0); }

}  // namespace vexa::test

// Drawing surfaces: their life, and that no argument makes them leave the image or the surface.

#include <climits>

#include "VexaHost.h"
#include "library/camera_fixture.hpp"
#include "output/canvas.hpp"

namespace vexa::test {
namespace {

using SurfaceTest = CameraTest;

TEST_F(SurfaceTest, LifeOfASurface) {
  for (const auto& [width, height] : {std::pair<DWORD, DWORD>{0, 1}, {1, 0}, {65536, 1}}) {
    EXPECT_EQ(VexaHost_CreateSurface(width, height), nullptr);
    EXPECT_EQ(GetLastError(), 87U);
  }
  HDC surface = VexaHost_CreateSurface(3, 2);
  std::vector<BYTE> pixels(25, 0xEE);
  EXPECT_FALSE(VexaHost_ReadSurface(surface, pixels.data(), 23));
  EXPECT_EQ(GetLastError(), 122U);
  EXPECT_FALSE(VexaHost_ReadSurface(surface, nullptr, 24));
  EXPECT_EQ(GetLastError(), 87U);
  EXPECT_EQ(pixels, std::vector<BYTE>(25, 0xEE));
  EXPECT_TRUE(VexaHost_ReadSurface(surface, pixels.data(), pixels.size()));
  EXPECT_EQ(pixels[23], 0);
  EXPECT_EQ(pixels[24], 0xEE);
  EXPECT_EQ(VexaHost_SetStretchMode(surface, VEXA_HOST_STRETCH_HALFTONE), VEXA_HOST_STRETCH_AND);
  for (const int mode : {0, 5, -1}) {
    EXPECT_EQ(VexaHost_SetStretchMode(surface, mode), 0);
    EXPECT_EQ(GetLastError(), 87U);
  }
  EXPECT_EQ(VexaHost_GetStretchMode(surface), VEXA_HOST_STRETCH_HALFTONE);

  EXPECT_TRUE(VexaHost_DestroySurface(surface));
  HDC other = VexaHost_CreateSurface(1, 1);
  EXPECT_NE(other, surface);
  Plug();
  HANDLE camera = Open();
  const auto refused = [](auto call) {
    SetLastError(0);
    return call() == 0 && GetLastError() == 6;
  };
  EXPECT_TRUE(refused([&] { return VexaHost_DestroySurface(surface); }));
  EXPECT_TRUE(refused([&] { return VexaHost_ReadSurface(surface, pixels.data(), 24); }));
  EXPECT_TRUE(refused([&] { return VexaHost_GetStretchMode(surface); }));
  EXPECT_TRUE(refused([&] { return VexaHost_SetStretchMode(surface, 3); }));
  EXPECT_TRUE(refused(
      [&] { return Vexa_Draw(camera, surface, 0, 0, 1, 1, 0, 0, 1, 1, 4, 1, pixels.data(), 1); }));
  EXPECT_TRUE(VexaHost_DestroySurface(other));
}

TEST_F(SurfaceTest, RowsArePaddedAndNothingBehindTheImageIsRead) {
  Plug();
  HANDLE camera = Open();
  const std::vector<BYTE> image = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};  // 5 x 3
  const Canvas canvas(5, 3);
  EXPECT_EQ(Vexa_Draw(camera, canvas.context(), 0, 0, 5, 3, 0, 0, 5, 3, 5, 3, image.data(), 1), 3);
  std::vector<std::uint32_t> expected = {1, 2, 3, 4, 5, 9, 10, 11, 12, 13, 0, 0, 0, 0, 0};
  for (std::uint32_t& pixel : expected) {
    pixel *= 0x010101;
  }
  EXPECT_EQ(canvas.Pixels(), expected);
}

TEST_F(SurfaceTest, ExtremeArguments) {
  Plug();
  HANDLE camera = Open();
  const std::vector<BYTE> image(4 * 4 * 4);  // for the sanitizer to guard
  const Canvas canvas(5, 5);
  const int kValues[] = {INT_MIN, INT_MIN + 1, -5, 0, 3, INT_MAX};
  for (const DWORD format : {1, 4, 8}) {
    for (int i = 0; i < 6 * 6 * 6 * 6; ++i) {
      const int a = kValues[i % 6];
      const int b = kValues[i / 6 % 6];
      const int c = kValues[i / 36 % 6];
      const int d = kValues[i / 216];
      for (const auto& [first, second] : {std::pair{b, b}, {b, 4}, {4, b}}) {
        const int lines = Vexa_Draw(camera, canvas.context(), a, c, first, second, c, a, second, d,
                                    4, 4, image.data(), format);
        EXPECT_TRUE(lines == 0 || lines == 4) << lines;
      }
    }
    for (const DWORD size : {0x7FFFFFFFU, 0x80000000U, 0x80000001U, 0xFFFFFFFFU}) {
      // Sizes that no memory can hold or that are negative to GDI; none of this image is read.
      EXPECT_EQ(Vexa_Draw(camera, canvas.context(), 0, 0, 4, 4, 0, 0, 4, 4, size | 0x80000000U, 4,
                          image.data(), format),
                0);
      EXPECT_GE(Vexa_Draw(camera, canvas.context(), 9, 9, 4, 4, 0, 0, 5, 4, 4, size, image.data(),
                          format),
                0);
    }
  }
}

}  // namespace
}  // namespace vexa::test

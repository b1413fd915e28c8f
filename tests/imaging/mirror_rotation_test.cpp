#include "imaging/mirror_rotation.hpp"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <utility>

#include "VexaAPI.h"
#include "imaging/frames.hpp"
#include "library/allocation_counter.hpp"

namespace vexa::imaging {
namespace {

using test::Bytes;

/// Where the operation takes a pixel, as the header says it.
std::pair<int, int> Target(int operation, int x, int y, int w, int h) {
  const std::pair<int, int> targets[] = {
      {x, y},         {w - 1 - x, y}, {x, h - 1 - y},         {w - 1 - x, h - 1 - y},
      {h - 1 - y, x}, {y, w - 1 - x}, {h - 1 - y, w - 1 - x}, {y, x}};
  return targets[operation];
}

TEST(MirrorRotation, EveryOperationMovesEveryPixelToItsPlace) {
  const auto check = [](int w, int h) {
    const Bytes frame = test::MakeFrame(static_cast<std::size_t>(w * h), 0);
    for (int operation = 0; operation < 8; ++operation) {
      const int out_width = operation < 4 ? w : h;
      Bytes expected(frame.size());
      for (int i = 0; i < w * h; ++i) {
        const auto [x, y] = Target(operation, i % w, i / w, w, h);
        expected[static_cast<std::size_t>(y * out_width + x)] = frame[static_cast<std::size_t>(i)];
      }
      for (const FrameKernels* kernels : UsableFrameKernels()) {
        test::GuardedFrame actual(frame, static_cast<std::size_t>(w + h) % 4);
        FrameShape shape{static_cast<std::uint32_t>(w), static_cast<std::uint32_t>(h), 1};
        ASSERT_TRUE(
            MirrorOrRotate(static_cast<std::uint8_t>(operation), 0, &shape, actual.data(), *kernels)
                .ok());
        ASSERT_TRUE(actual.Contents() == expected && actual.Intact())
            << w << "x" << h << " operation " << operation << " " << kernels->name;
        ASSERT_EQ(shape.width, static_cast<std::uint32_t>(out_width));
        ASSERT_EQ(shape.height, static_cast<std::uint32_t>(w + h - out_width));
      }
    }
  };
  test::ForAllSizes(check);
  for (const auto& [w, h] : {std::pair(200, 131), {131, 200}, {1, 300}, {300, 1}}) {
    ASSERT_NO_FATAL_FAILURE(check(w, h));
  }
}

/// Calls the export on a copy of a small frame of which no two operations make the same.
using Pixels = std::array<std::uint8_t, 8>;
struct Turned {
  BOOL result;
  DWORD width;
  DWORD height;
  WORD color_array;
  Pixels frame;
  friend bool operator==(const Turned&, const Turned&) = default;
};
Turned Turn(int operation, int rotation, std::uint16_t color_array = 1) {
  Turned turned{0, 4, 2, color_array, {1, 2, 3, 4, 5, 6, 7, 8}};
  turned.result =
      Vexa_MirrorRotation(static_cast<BYTE>(operation), static_cast<BYTE>(rotation), &turned.width,
                          &turned.height, &turned.color_array, turned.frame.data());
  return turned;
}

TEST(MirrorRotation, QuarterTurnsFollowTheMirrorsOfBitsZeroAndOne) {
  EXPECT_EQ(Turn(4, 0).frame, (Pixels{5, 1, 6, 2, 7, 3, 8, 4}));
  EXPECT_EQ(Turn(7, 0).frame, (Pixels{1, 5, 2, 6, 3, 7, 4, 8}));
  const int same_as[2][4] = {{4, 6, 7, 5}, {5, 7, 6, 4}};
  for (int operation = 0; operation < 256; ++operation) {
    for (int rotation = 1; rotation <= 2; ++rotation) {
      EXPECT_EQ(Turn(operation, rotation), Turn(same_as[rotation - 1][operation & 3], 0));
    }
  }
}

TEST(MirrorRotation, ColorArrayNamesTheSamePixelsAsBefore) {
  // The pattern's first two rows, with a letter for each pixel, move as the pixels do.
  const char* const patterns[] = {"RGGB", "GRBG", "GBRG", "BGGR"};
  for (int operation = 1; operation < 8; ++operation) {
    for (std::uint16_t code = 2; code <= 5; ++code) {
      std::string moved(4, ' ');
      for (int i = 0; i < 4; ++i) {
        const auto [x, y] = Target(operation, i % 2, i / 2, 2, 2);
        moved[static_cast<std::size_t>(2 * y + x)] = patterns[code - 2][i];
      }
      EXPECT_EQ(patterns[Turn(operation, 0, code).color_array - 2], moved)
          << operation << " " << code;
    }
    for (const auto code : std::to_array<std::uint16_t>({0, 1, 6, 0xFFFF})) {
      EXPECT_EQ(Turn(operation, 0, code).color_array, code);
    }
  }
}

TEST(MirrorRotation, RefusalsChangeNothing) {
  const Turned untouched = Turn(0, 0, 2);
  EXPECT_EQ(untouched, (Turned{1, 4, 2, 2, {1, 2, 3, 4, 5, 6, 7, 8}}));
  for (const int operation : {8, 9, 128, 255}) {
    EXPECT_EQ(Turn(operation, 0, 2), untouched);
  }
  Turned refused = untouched;
  refused.result = 0;
  for (const int rotation : {3, 4, 255}) {
    SetLastError(0);
    EXPECT_EQ(Turn(1, rotation, 2), refused);
    EXPECT_EQ(GetLastError(), 87U);
  }
  {
    const test::AllocationLimit limit(7);
    EXPECT_EQ(Turn(5, 0, 2), refused);
    EXPECT_EQ(GetLastError(), 8U);
    EXPECT_EQ(Turn(3, 0).frame, (Pixels{8, 7, 6, 5, 4, 3, 2, 1}));
  }
  DWORD width = 0xFFFFFFFF;
  DWORD height = 0xFFFFFFFF;
  WORD array = 2;
  EXPECT_FALSE(Vexa_MirrorRotation(1, 0, &width, &height, &array, refused.frame.data()));
  EXPECT_FALSE(Vexa_MirrorRotation(1, 0, &width, &height, &array, nullptr));
  EXPECT_FALSE(Vexa_MirrorRotation(1, 0, nullptr, &height, &array, refused.frame.data()));
  EXPECT_FALSE(Vexa_MirrorRotation(1, 0, &width, nullptr, &array, refused.frame.data()));
  EXPECT_FALSE(Vexa_MirrorRotation(1, 0, &width, &height, nullptr, refused.frame.data()));
  EXPECT_EQ(GetLastError(), 87U);
  EXPECT_EQ(array, 2);
  width = 0;
  EXPECT_TRUE(Vexa_MirrorRotation(4, 0, &width, &height, &array, nullptr));
  EXPECT_EQ(height, 0U);
}

}  // namespace
}  // namespace vexa::imaging

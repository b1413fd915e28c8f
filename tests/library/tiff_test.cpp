// TIFF files, byte by byte.

#include <gtest/gtest.h>

#include "cameras.hpp"
#include "library/allocation_counter.hpp"
#include "library/save_fixture.hpp"
#include "platform/bytes.hpp"

namespace vexa::test {
namespace {

enum Variant { kGrey8, kGrey16, kColor24, kColor32 };

constexpr DWORD kWidth = 5;
constexpr DWORD kHeight = 3;

struct Entry {
  std::uint16_t tag, type;
  int count[4], value[4];  // by variant; no count: no such entry
};
constexpr Entry kEntries[] = {
    {0x100, 3, {1, 1, 1, 1}, {5, 5, 5, 5}},         {0x101, 3, {1, 1, 1, 1}, {3, 3, 3, 3}},
    {0x102, 3, {1, 1, 3, 4}, {8, 16, 174, 186}},    {0x103, 3, {1, 1, 1, 1}, {1, 1, 1, 1}},
    {0x106, 3, {1, 1, 1, 1}, {1, 1, 2, 2}},         {0x111, 4, {1, 1, 1, 1}, {162, 162, 180, 194}},
    {0x115, 3, {0, 0, 1, 1}, {0, 0, 3, 4}},         {0x116, 3, {1, 1, 1, 1}, {3, 3, 3, 3}},
    {0x117, 4, {1, 1, 1, 1}, {15, 30, 45, 60}},     {0x11A, 5, {1, 1, 1, 1}, {146, 146, 158, 170}},
    {0x11B, 5, {1, 1, 1, 1}, {154, 154, 166, 178}}, {0x128, 3, {1, 1, 1, 1}, {2, 2, 2, 2}},
    {0x152, 3, {0, 0, 0, 1}, {0, 0, 0, 0}},
};

Bytes ExpectedHeader(Variant variant) {
  Bytes header = {'I', 'I', 42, 0, 8, 0, 0, 0};
  const auto add = [&](std::size_t size, int value) {
    header.resize(header.size() + 4);
    StoreLe32(header, header.size() - 4, static_cast<DWORD>(value));
    header.resize(header.size() - 4 + size);
  };
  add(2, variant == kColor32 ? 13 : variant == kColor24 ? 12 : 11);
  for (const Entry& entry : kEntries) {
    if (entry.count[variant] != 0) {
      add(2, entry.tag);
      add(2, entry.type);
      add(4, entry.count[variant]);
      add(4, entry.value[variant]);
    }
  }
  for (const int value : {0, 720000, 10000, 720000, 10000}) {
    add(4, value);
  }
  for (int i = variant == kColor24 ? 3 : variant == kColor32 ? 4 : 0; i > 0; --i) {
    add(2, 8);
  }
  return header;
}

using TiffTest = SaveTest;

TEST_F(TiffTest, EveryVariantByteByByte) {
  struct Case {
    DWORD format;
    Variant variant;
    std::size_t pixel_size;
    int shift;
  };
  for (const Case& test : {Case{1, kGrey8, 1, 0}, Case{2, kGrey16, 2, 0}, Case{16, kGrey16, 2, 6},
                           Case{32, kGrey16, 2, 4}, Case{64, kGrey16, 2, 2},
                           Case{4, kColor24, 3, 0}, Case{8, kColor32, 4, 0}}) {
    SCOPED_TRACE(test.format);
    const Bytes image = Ramp(kWidth * kHeight * test.pixel_size);
    const Bytes before = image;
    ASSERT_TRUE(Save(kWidth, kHeight, test.format, image, "a.tif")) << GetLastError();
    EXPECT_EQ(image, before) << "the caller's image is only read";
    Bytes expected = ExpectedHeader(test.variant);
    for (std::size_t i = 0; i < image.size(); i += test.pixel_size) {
      if (test.variant == kGrey16) {
        const int sample = (image[i] | image[i + 1] << 8) << test.shift;
        expected.push_back(static_cast<std::uint8_t>(sample & 0xFF));
        expected.push_back(static_cast<std::uint8_t>(sample >> 8 & 0xFF));
        continue;
      }
      if (test.variant != kGrey8) {
        expected.insert(expected.end(), {image[i + 2], image[i + 1]});
      }
      expected.push_back(image[i]);
      if (test.variant == kColor32) {
        expected.push_back(image[i + 3]);
      }
    }
    EXPECT_EQ(Read("a.tif"), expected);
  }
  const Bytes white = {0xFF, 0x03};
  ASSERT_TRUE(Save(1, 1, 16, white, "white.tif"));
  EXPECT_EQ(LoadLe16(Read("white.tif"), 162), 0xFFC0);
  ASSERT_TRUE(Save(65535, 1, 1, Ramp(65535), "wide.tif"));
  EXPECT_EQ(Read("wide.tif").size(), 162U + 65535);
}

#if VEXA_TESTS_LOOK_INSIDE
TEST_F(TiffTest, WithoutMemoryTheLastErrorStays) {
  const Bytes pixel(1);  // not looked at before there is memory
  const AllocationLimit limit(1 << 20);
  SetLastError(4711);
  EXPECT_EQ(ErrorOf(Save(30000, 30000, 1, pixel, "a.tif")), 4711U);
  EXPECT_EQ(std::filesystem::file_size(folder_ / "a.tif"), 0U);
  EXPECT_EQ(ErrorOf(Save(30000, 30000, 1, pixel, "a.bmp")), 8U);
  EXPECT_EQ(std::filesystem::file_size(folder_ / "a.bmp"), 0U);
}
#endif

}  // namespace
}  // namespace vexa::test

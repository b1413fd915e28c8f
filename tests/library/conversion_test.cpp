#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <vector>

#include "VexaAPI.h"

namespace vexa::test {
namespace {

using Bytes = std::vector<BYTE>;

constexpr BYTE kUntouched = 0xA5;

/// The converted image; empty when the call is refused. 12 bytes more than the picture has tell of
/// writing too far.
Bytes Converted(DWORD width, DWORD height, DWORD transfer, const Bytes& source, DWORD output) {
  Bytes image(width * height * (output == 1 ? 1 : output == 4 ? 3 : 4) + 12, kUntouched);
  const bool ok = Vexa_ConvYUVOrBGRToBGRImage(width, height, transfer, source.data(), output,
                                              image.data()) != FALSE;
  EXPECT_TRUE(std::all_of(image.end() - 12, image.end(), [](BYTE b) { return b == kUntouched; }));
  image.erase(image.end() - 12, image.end());
  return ok ? image : Bytes();
}

TEST(Conversion, OnePixelOrGroupOfEveryFormat) {
  const struct {
    const char* what;
    DWORD transfer;
    Bytes source;
    Bytes grey;
    Bytes bgr;
  } cases[] = {
      {"8 bits", 0x0001, {200}, {200}, {200, 200, 200}},
      {"8 bits", 0x0020, {200}, {200}, {200, 200, 200}},
      {"10 bits", 0x0002, {0xFF, 0x03}, {255}, {255, 255, 255}},
      {"10 bits", 0x0040, {0x03, 0x00}, {0}, {0, 0, 0}},
      {"12 bits", 0x0004, {0xFF, 0x0F}, {255}, {255, 255, 255}},
      {"12 bits", 0x0080, {16, 0}, {1}, {1, 1, 1}},
      {"12 bits, too large", 0x0004, {0x20, 0xF1}, {0x12}, {0x12, 0x12, 0x12}},
      {"14 bits", 0x0008, {0xC0, 0x20}, {0x83}, {0x83, 0x83, 0x83}},
      {"14 bits", 0x0100, {0x3F, 0x00}, {0}, {0, 0, 0}},
      {"16 bits", 0x0010, {0xFF, 0xFF}, {255}, {255, 255, 255}},
      {"16 bits", 0x0200, {0xFF, 0x00}, {0}, {0, 0, 0}},
      {"BGR24: green is the grey", 0x0400, {1, 2, 3}, {2}, {1, 2, 3}},
      {"BGR30", 0x0800, {0x57, 0x35, 0xE1, 0x3F}, {0x13}, {0x55, 0x13, 0xFF}},
      {"4:1:1", 0x1000, {128, 1, 2, 128, 3, 4}, {1, 2, 3, 4}, {1, 1, 1, 2, 2, 2, 3, 3, 3, 4, 4, 4}},
      {"4:2:2, U = 0 and V = 255",
       0x2000,
       {0, 255, 128, 240, 128, 255, 255, 0},
       {255, 240, 255, 0},
       {29, 255, 255, 14, 255, 240, 255, 165, 255, 0, 0, 178}},
      {"4:4:4",
       0x4000,
       {128, 128, 128, 0, 0, 0, 255, 255, 255, 129, 9, 127},
       {128, 0, 255, 9},
       {128, 128, 128, 0, 135, 0, 255, 122, 255, 10, 9, 8}},
  };
  for (const auto& [what, transfer, source, grey, bgr] : cases) {
    const auto width = static_cast<DWORD>(grey.size());
    EXPECT_EQ(Converted(width, 1, transfer, source, 1), grey) << what;
    EXPECT_EQ(Converted(width, 1, transfer, source, 4), bgr) << what;
    Bytes bgr32;
    for (std::size_t i = 0; i < bgr.size(); i += 3) {
      bgr32.insert(bgr32.end(), {bgr[i], bgr[i + 1], bgr[i + 2], kUntouched});
    }
    EXPECT_EQ(Converted(width, 1, transfer, source, 8), bgr32) << what;
    Bytes narrow(grey.size(), kUntouched);
    const bool is_color = transfer >= 0x0400;
    SetLastError(0);
    EXPECT_EQ(Vexa_ConvTo8BitsImage(width, 1, transfer, source.data(), narrow.data()), !is_color);
    EXPECT_EQ(GetLastError(), is_color ? 87U : 0U) << what;
    EXPECT_EQ(narrow, is_color ? Bytes(grey.size(), kUntouched) : grey) << what;
  }
}

TEST(Conversion, CodesOutsideTheLists) {
  Bytes source(64);
  std::iota(source.begin(), source.end(), BYTE{1});
  // Codes of no or several bits, and unknown ones: 8 bits here, nothing there.
  for (const DWORD transfer : {0U, 3U, 6U, 0x0401U, 0x8000U, 0x6000U, 0x10002U}) {
    Bytes image(8, kUntouched);
    EXPECT_TRUE(Vexa_ConvTo8BitsImage(4, 2, transfer, source.data(), image.data()));
    EXPECT_EQ(image, Bytes(source.begin(), source.begin() + 8)) << transfer;
    EXPECT_EQ(Converted(4, 2, transfer, source, 4), Bytes(24, kUntouched)) << transfer;
  }
  const auto refused = [&](DWORD width, DWORD transfer, DWORD output, const BYTE* from) {
    Bytes image(256, kUntouched);
    SetLastError(0);
    EXPECT_FALSE(Vexa_ConvYUVOrBGRToBGRImage(width, 2, transfer, from, output, image.data()));
    return GetLastError() == 87 && image == Bytes(256, kUntouched);
  };
  for (const DWORD output : {0U, 2U, 3U, 5U, 16U}) {
    EXPECT_TRUE(refused(4, 0x8000, output, source.data())) << output;
  }
  for (const DWORD width : {1U, 6U, 7U}) {
    EXPECT_TRUE(refused(width, 0x1000, 4, source.data()) &&
                refused(width, 0x4000, 1, source.data()));
  }
  EXPECT_TRUE(refused(4, 1, 4, nullptr));
  EXPECT_TRUE(refused(0xFFFFFFFC, 0x2000, 4, nullptr));
  EXPECT_FALSE(Vexa_ConvTo8BitsImage(4, 2, 2, source.data(), nullptr));
  EXPECT_TRUE(Vexa_ConvTo8BitsImage(0, 2, 2, nullptr, nullptr));
}

}  // namespace
}  // namespace vexa::test

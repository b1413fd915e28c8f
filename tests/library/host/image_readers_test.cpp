// What independent programs read from saved images: libtiff, and ImageMagick for bitmaps.

#include <gtest/gtest.h>
#include <tiffio.h>

#include <cstdarg>
#include <cstdio>
#include <memory>

#include "library/save_fixture.hpp"

namespace vexa::test {
namespace {

constexpr DWORD kWidth = 7;
constexpr DWORD kHeight = 4;

void Complain(const char* module, const char* format, va_list arguments) {
  char text[512];
  std::vsnprintf(text, sizeof text, format, arguments);
  ADD_FAILURE() << "libtiff: " << (module != nullptr ? module : "") << ": " << text;
}

class ImageReaders : public SaveTest {
 protected:
  ImageReaders() {
    TIFFSetErrorHandler(Complain);
    TIFFSetWarningHandler(Complain);
  }
};

TEST_F(ImageReaders, LibtiffReadsEveryVariant) {
  struct Case {
    DWORD format;
    std::uint16_t samples, bits;
    int shift;
  };
  for (const Case& test :
       {Case{1, 1, 8, 0}, Case{2, 1, 16, 0}, Case{16, 1, 16, 6}, Case{32, 1, 16, 4},
        Case{64, 1, 16, 2}, Case{4, 3, 8, 0}, Case{8, 4, 8, 0}}) {
    SCOPED_TRACE(test.format);
    const std::size_t row_size = kWidth * std::size_t{test.samples} * test.bits / 8;
    Bytes image = Ramp(row_size * kHeight);
    for (std::size_t i = 1; test.bits == 16 && i < image.size(); i += 2) {
      image[i] = static_cast<std::uint8_t>(image[i] & 0xFF >> test.shift);
    }
    ASSERT_TRUE(Save(kWidth, kHeight, test.format, image, "a.tif"));
    const std::unique_ptr<TIFF, decltype(&TIFFClose)> tiff(
        TIFFOpen((folder_ / "a.tif").c_str(), "r"), TIFFClose);
    ASSERT_NE(tiff, nullptr);
    Bytes read(image.size());
    ASSERT_EQ(TIFFScanlineSize(tiff.get()), static_cast<tmsize_t>(row_size));
    for (std::uint32_t y = 0; y < kHeight; ++y) {
      ASSERT_EQ(TIFFReadScanline(tiff.get(), &read[y * row_size], y), 1);
    }
    EXPECT_EQ(TIFFReadDirectory(tiff.get()), 0) << "one image only";
    // Back to the layout of the library's buffers.
    for (std::size_t i = 0; i < read.size(); i += test.bits == 16 ? 2 : test.samples) {
      if (test.bits == 16) {
        const int sample = (read[i] | read[i + 1] << 8) >> test.shift;
        read[i] = static_cast<std::uint8_t>(sample & 0xFF);
        read[i + 1] = static_cast<std::uint8_t>(sample >> 8);
      } else if (test.samples > 1) {
        std::swap(read[i], read[i + 2]);
      }
    }
    EXPECT_EQ(read, image);
  }
}

TEST_F(ImageReaders, ImageMagickReadsBitmaps) {
  for (const auto& [format, size] : {std::pair<DWORD, std::size_t>{1, 1}, {4, 3}, {8, 4}}) {
    const Bytes image = Ramp(kWidth * kHeight * size);
    ASSERT_TRUE(Save(kWidth, kHeight, format, image, "a.bmp"));
    const std::string command = VEXA_IMAGEMAGICK " '" + (folder_ / "a.bmp").string() +
                                "' -alpha off -depth 8 'bgr:" + (folder_ / "a.bgr").string() + "'";
    ASSERT_EQ(std::system(command.c_str()), 0) << command;
    Bytes expected;
    for (std::size_t i = 0; i < image.size(); i += size) {
      for (std::size_t channel = 0; channel < 3; ++channel) {
        expected.push_back(image[i + (size == 1 ? 0 : channel)]);
      }
    }
    EXPECT_EQ(Read("a.bgr"), expected) << "format " << format;
  }
}

}  // namespace
}  // namespace vexa::test

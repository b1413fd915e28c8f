// Saving JPEG files: the choice of the type, what is refused, and what cannot be written.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "VexaAPI.h"
#include "library/allocation_counter.hpp"
#include "output/encoding.hpp"
#include "output/pictures.hpp"

namespace vexa::test {
namespace {

class SaveJpegTest : public ::testing::Test {
 protected:
  static constexpr int kWidth = 45;
  static constexpr int kHeight = 30;

  SaveJpegTest()
      : folder_(std::filesystem::temp_directory_path() /
                ("vexa-jpeg-" + std::to_string(reinterpret_cast<std::uintptr_t>(this)))) {
    std::filesystem::create_directories(folder_);
    SetLastError(0);
  }
  ~SaveJpegTest() override { std::filesystem::remove_all(folder_); }

  BOOL Save(DWORD format, const Samples& image, const std::string& name, DWORD compression = 10,
            DWORD width = kWidth, DWORD height = kHeight) {
    SetLastError(0);
    return Vexa_SaveImageA(width, height, format, image.data(), (folder_ / name).string().c_str(),
                           compression);
  }

  Samples Read(const std::string& name) const {
    std::ifstream file(folder_ / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  static Samples Expected(const Samples& image, int channels, int quality) {
    MemoryStream stream;
    EXPECT_EQ(Encode(stream, image.data(), kWidth, kHeight, channels, quality),
              output::CodingStatus::kOk);
    return stream.bytes;
  }

  std::filesystem::path folder_;
};

TEST_F(SaveJpegTest, ExtensionFormatAndCompressionDecide) {
  const Samples image = NoisePicture(4 * kWidth * kHeight, 1);
  for (const char* name : {"a.jpg", "a.JPEG", "a.Jpe", "a.jp", "a.j"}) {
    ASSERT_TRUE(Save(VEXA_OUTPUT_MONO8, image, name)) << name;
    EXPECT_EQ(Read(name), Expected(image, 1, 90)) << name;
  }
  for (const char* name : {"a.jpgg", "a.jpx", "a.jpg.bmp"}) {
    ASSERT_TRUE(Save(VEXA_OUTPUT_MONO8, image, name)) << name;
    EXPECT_EQ(Read(name)[0], 'B') << name;
  }
  for (const auto& [compression, quality] : {std::pair<DWORD, int>{0, 100},
                                             {1, 99},
                                             {50, 50},
                                             {99, 1},
                                             {100, 0},
                                             {200, 0},
                                             {0xFFFFFFFF, 0}}) {
    ASSERT_TRUE(Save(VEXA_OUTPUT_BGR24, image, "b.jpg", compression));
    EXPECT_EQ(Read("b.jpg"), Expected(image, 3, quality)) << compression;
  }
  const Samples before = image;
  ASSERT_TRUE(Save(VEXA_OUTPUT_BGR32, image, "c.jpg"));
  EXPECT_EQ(Read("c.jpg"), Expected(image, 4, 90));
  EXPECT_EQ(image, before);
}

TEST_F(SaveJpegTest, RefusesWithoutTouchingTheFile) {
  const Samples image(4 * 65536, 9);
  ASSERT_TRUE(Save(VEXA_OUTPUT_MONO8, image, "kept.raw", 0, 2, 2));
  std::filesystem::rename(folder_ / "kept.raw", folder_ / "kept.jpg");
  struct Case {
    DWORD format, width, height;
  };
  for (const Case& test :
       {Case{2, 2, 2}, Case{16, 2, 2}, Case{32, 2, 2}, Case{64, 2, 2}, Case{0, 2, 2}, Case{3, 2, 2},
        Case{5, 2, 2}, Case{1, 0, 2}, Case{1, 2, 0}, Case{4, 0, 0}, Case{1, 65536, 1},
        Case{1, 1, 65536}, Case{8, 0xFFFFFFFF, 1}, Case{1, 1, 0x80000000}}) {
    for (const char* name : {"none.jpg", "kept.jpg"}) {
      EXPECT_FALSE(Save(test.format, image, name, 10, test.width, test.height));
      EXPECT_EQ(GetLastError(), 87U) << test.format << ": " << test.width << " x " << test.height;
    }
  }
  EXPECT_FALSE(Vexa_SaveImageA(2, 2, 1, nullptr, (folder_ / "none.jpg").string().c_str(), 0));
  EXPECT_EQ(GetLastError(), 87U);
  EXPECT_FALSE(std::filesystem::exists(folder_ / "none.jpg"));
  EXPECT_EQ(Read("kept.jpg"), Samples(4, 9));
  EXPECT_FALSE(Save(1, image, "no/such/folder.jpg", 10, 2, 2));
  EXPECT_EQ(GetLastError(), 110U);
  EXPECT_TRUE(Save(1, image, "longest.jpg", 10, 65535, 1));
  EXPECT_TRUE(Save(8, image, "longest.jpg", 10, 1, 65535));
}

TEST_F(SaveJpegTest, LackOfMemoryAndOfSpace) {
  const Samples image = NoisePicture(3 * kWidth * kHeight, 1);
  const std::string name = (folder_ / "a.jpg").string();
  int failures = 0;
  for (std::uint64_t n = 1;; ++n, ++failures) {
    SetLastError(0);
    FailAllocation(n);
    const BOOL saved =
        Vexa_SaveImageA(kWidth, kHeight, VEXA_OUTPUT_BGR24, image.data(), name.c_str(), 10);
    FailAllocation(0);
    if (saved) break;
    ASSERT_EQ(GetLastError(), 8U) << n;
  }
  EXPECT_GE(failures, 8);
  EXPECT_EQ(Read("a.jpg"), Expected(image, 3, 90));
#if defined(__linux__)
  // As little reported as for a RAW file.
  std::filesystem::create_symlink("/dev/full", folder_ / "full.jpg");
  EXPECT_TRUE(Save(VEXA_OUTPUT_BGR24, image, "full.jpg", 0));
#endif
}

}  // namespace
}  // namespace vexa::test

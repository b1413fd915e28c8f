// Saving JPEG files: the choice of the type, what is refused, and what cannot be written.

#include <string>

#include "library/allocation_counter.hpp"
#include "library/save_fixture.hpp"
#include "output/encoding.hpp"
#include "output/pictures.hpp"

namespace vexa::test {
namespace {

constexpr int kWidth = 45;
constexpr int kHeight = 30;

using SaveJpegTest = SaveTest;

Bytes Expected(const Bytes& image, int channels, int quality) {
  MemoryStream stream;
  EXPECT_EQ(Encode(stream, image.data(), kWidth, kHeight, channels, quality),
            output::CodingStatus::kOk);
  return stream.bytes;
}

TEST_F(SaveJpegTest, ExtensionFormatAndCompressionDecide) {
  const Bytes image = NoisePicture(4 * kWidth * kHeight, 1);
  for (const char* name : {"a.jpg", "a.JPEG", "a.Jpe", "a.jp", "a.j"}) {
    ASSERT_TRUE(Save(kWidth, kHeight, VEXA_OUTPUT_MONO8, image, name, 10)) << name;
    EXPECT_EQ(Read(name), Expected(image, 1, 90)) << name;
  }
  for (const char* name : {"a.jpgg", "a.jpx", "a.jpg.bmp"}) {
    ASSERT_TRUE(Save(kWidth, kHeight, VEXA_OUTPUT_MONO8, image, name)) << name;
    EXPECT_EQ(Read(name)[0], 'B') << name;
  }
  const Bytes before = image;
  for (const auto& [compression, quality] : {std::pair<DWORD, int>{0, 100},
                                             {1, 99},
                                             {50, 50},
                                             {99, 1},
                                             {100, 0},
                                             {200, 0},
                                             {0xFFFFFFFF, 0}}) {
    ASSERT_TRUE(Save(kWidth, kHeight, VEXA_OUTPUT_BGR24, image, "b.jpg", compression));
    EXPECT_EQ(Read("b.jpg"), Expected(image, 3, quality)) << compression;
    ASSERT_TRUE(Save(kWidth, kHeight, VEXA_OUTPUT_BGR32, image, "c.jpg", compression));
    EXPECT_EQ(Read("c.jpg"), Expected(image, 4, quality)) << compression;
  }
  EXPECT_EQ(image, before) << "the caller's image is only read";
}

TEST_F(SaveJpegTest, RefusesWithoutTouchingTheFile) {
  const Bytes image(4 * 65536, 9);
  ASSERT_TRUE(Save(2, 2, VEXA_OUTPUT_MONO8, image, "kept.raw"));
  std::filesystem::rename(folder_ / "kept.raw", folder_ / "kept.jpg");
  struct Case {
    DWORD format, width, height;
  };
  for (const Case& test :
       {Case{2, 2, 2}, Case{16, 2, 2}, Case{32, 2, 2}, Case{64, 2, 2}, Case{0, 2, 2}, Case{3, 2, 2},
        Case{5, 2, 2}, Case{1, 0, 2}, Case{1, 2, 0}, Case{4, 0, 0}, Case{1, 65536, 1},
        Case{1, 1, 65536}, Case{8, 0xFFFFFFFF, 1}, Case{1, 1, 0x80000000}}) {
    for (const char* name : {"none.jpg", "kept.jpg"}) {
      SetLastError(0);
      EXPECT_FALSE(Save(test.width, test.height, test.format, image, name));
      EXPECT_EQ(GetLastError(), 87U) << test.format << ": " << test.width << " x " << test.height;
    }
  }
  EXPECT_FALSE(Vexa_SaveImageA(2, 2, 1, nullptr, (folder_ / "none.jpg").string().c_str(), 0));
  EXPECT_FALSE(Exists("none.jpg"));
  EXPECT_EQ(Read("kept.jpg"), Bytes(4, 9));
  EXPECT_TRUE(Save(65535, 1, 1, image, "longest.jpg"));
  EXPECT_TRUE(Save(1, 65535, 8, image, "longest.jpg"));
}

TEST_F(SaveJpegTest, LackOfMemoryAndOfSpace) {
  const Bytes image = NoisePicture(3 * kWidth * kHeight, 1);
  const std::string name = (folder_ / "a.jpg").string();
  std::uint64_t n = 0;
  BOOL saved = FALSE;
  do {
    SetLastError(0);
    FailAllocation(++n);
    saved = Vexa_SaveImageA(kWidth, kHeight, VEXA_OUTPUT_BGR24, image.data(), name.c_str(), 10);
    FailAllocation(0);
    ASSERT_EQ(GetLastError(), saved ? 0U : 8U) << n;
  } while (!saved);
  EXPECT_GT(n, 8U);
  EXPECT_EQ(Read("a.jpg"), Expected(image, 3, 90));
#if defined(__linux__)
  // As little reported as for a RAW file.
  std::filesystem::create_symlink("/dev/full", folder_ / "full.jpg");
  EXPECT_TRUE(Save(kWidth, kHeight, VEXA_OUTPUT_BGR24, image, "full.jpg"));
#endif
}

}  // namespace
}  // namespace vexa::test

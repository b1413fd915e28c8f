// Saving JPEG files: the choice of the type and the quality, and what cannot be written.

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

TEST_F(SaveJpegTest, ByExtensionFormatAndCompression) {
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
  const std::pair<DWORD, int> qualities[] = {{0, 100}, {1, 99},  {50, 50},
                                             {99, 1},  {100, 0}, {0xFFFFFFFF, 0}};
  for (const auto& [compression, quality] : qualities) {
    ASSERT_TRUE(Save(kWidth, kHeight, VEXA_OUTPUT_BGR24, image, "b.jpg", compression));
    EXPECT_EQ(Read("b.jpg"), Expected(image, 3, quality)) << compression;
    ASSERT_TRUE(Save(kWidth, kHeight, VEXA_OUTPUT_BGR32, image, "c.jpg", compression));
    EXPECT_EQ(Read("c.jpg"), Expected(image, 4, quality)) << compression;
  }
  EXPECT_EQ(image, before) << "the caller's image is only read";
  const Bytes longest(4 * 65535, 9);
  EXPECT_TRUE(Save(65535, 1, 1, longest, "d.jpg") && Save(1, 65535, 8, longest, "d.jpg"));
}

TEST_F(SaveJpegTest, WithoutMemoryOrSpace) {
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

// Saving images: the bytes of the files, the choice of the type, and what is refused.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <string>

#include "library/save_fixture.hpp"
#include "platform/bytes.hpp"

namespace vexa::test {
namespace {

TEST_F(SaveTest, Bitmaps) {
  struct Case {
    DWORD width, height, format;
    std::size_t pixel_size, row_size, data_offset;
  };
  for (const Case& test :
       {Case{3, 2, 1, 1, 4, 1078}, Case{4, 3, 4, 3, 12, 54}, Case{5, 3, 4, 3, 16, 54},
        Case{3, 2, 8, 4, 12, 54}, Case{1, 1, 1, 1, 4, 1078}, Case{0, 0, 4, 3, 0, 54}}) {
    const Bytes image = Ramp(std::max<std::size_t>(1, test.width * test.height * test.pixel_size));
    ASSERT_TRUE(Save(test.width, test.height, test.format, image, "a.bmp")) << GetLastError();
    const Bytes file = Read("a.bmp");
    const std::size_t image_size = test.row_size * test.height;
    ASSERT_EQ(file.size(), test.data_offset + image_size);
    Bytes expected(test.data_offset);
    const DWORD colours = test.format == 1 ? 256 : 0;
    const std::pair<std::size_t, DWORD> fields[] = {
        {2, static_cast<DWORD>(file.size())},
        {10, static_cast<DWORD>(test.data_offset)},
        {14, 40},
        {18, test.width},
        {22, test.height},
        {26, 1 | static_cast<DWORD>(8 * test.pixel_size) << 16},
        {34, static_cast<DWORD>(image_size)},
        {46, colours},
        {50, colours}};
    expected[0] = 'B';
    expected[1] = 'M';
    for (const auto& [offset, value] : fields) {
      StoreLe32(expected, offset, value);
    }
    for (std::size_t i = 0; 54 + 4 * i < test.data_offset; ++i) {
      std::fill_n(expected.begin() + static_cast<std::ptrdiff_t>(54 + 4 * i), 3,
                  static_cast<std::uint8_t>(i));
    }
    for (DWORD y = test.height; y-- > 0;) {
      const auto row =
          image.begin() + static_cast<std::ptrdiff_t>(y * test.width * test.pixel_size);
      expected.insert(expected.end(), row,
                      row + static_cast<std::ptrdiff_t>(test.width * test.pixel_size));
      expected.resize(test.data_offset + test.row_size * (test.height - y));
    }
    EXPECT_EQ(file, expected) << test.width << " x " << test.height << " format " << test.format;
  }
}

TEST_F(SaveTest, RawFilesAreTheBareBytes) {
  for (const auto& [format, size] : {std::pair<DWORD, std::size_t>{1, 1}, {2, 2}, {4, 3}, {8, 4}}) {
    const Bytes image = Ramp(5 * 3 * size);
    ASSERT_TRUE(Save(5, 3, format, image, "a.raw"));
    EXPECT_EQ(Read("a.raw"), image);
  }
}

TEST_F(SaveTest, ExtensionChoosesTheType) {
  const Bytes image = Ramp(4);
  const auto size_of = [&](const std::string& name) {
    std::filesystem::create_directories((folder_ / name).parent_path());
    SetLastError(0);
    return Save(2, 2, 1, image, name) ? Read(name).size() : 0;
  };
  for (const char* name : {"a.raw", "a.RAW", "a.Ra", "a.r", "a."}) {
    EXPECT_EQ(size_of(name), 4U) << name;
  }
  // A longer extension is not the shorter name; a "." in a folder counts when the name has none.
  for (const char* name : {"a.bmp", "a.png", "a.x", "a.rawx", "a.raw.bmp", "data.1/img"}) {
    EXPECT_EQ(size_of(name), 1078U + 8) << name;
  }
  for (const char* name : {"a.tif", "a.TIFF", "a.Tif", "a.t", "a.ti"}) {
    EXPECT_EQ(size_of(name), 162U + 4) << name;
  }
}

TEST_F(SaveTest, Refusals) {
  const Bytes image = Ramp(64);
  constexpr DWORD kMost = 0xFFFFFFFF;
  struct Case {
    const char* name;
    std::vector<std::array<DWORD, 3>> images;  // width, height, format
  };
  const Case cases[] = {
      {"c.raw", {{2, 2, 16}, {2, 2, 0}, {kMost, kMost, 8}}},
      {"c.bmp",
       {{2, 2, 2},
        {2, 2, 64},
        {0x80000000, 1, 1},
        {1, 0x80000000, 1},
        {0x10000, 0x10000, 1},
        {0x7FFFFFFF, 0x7FFFFFFF, 8}}},
      {"c.tif",
       {{2, 2, 3},
        {2, 2, 128},
        {0x10000, 1, 1},
        {1, 0x10000, 1},
        {0, 2, 1},
        {2, 0, 1},
        {65535, 65535, 2}}},
      {"c.jpg",
       {{2, 2, 2},
        {2, 2, 64},
        {2, 2, 0},
        {2, 2, 3},
        {0x10000, 1, 1},
        {1, 0x10000, 1},
        {0, 2, 1},
        {2, 0, 1},
        {kMost, 1, 8}}},
  };
  for (const auto& [name, images] : cases) {
    for (const bool exists : {false, true}) {
      if (exists) {
        std::ofstream(folder_ / name) << "kept";
      }
      for (const auto& [width, height, format] : images) {
        EXPECT_EQ(ErrorOf(Save(width, height, format, image, name)), 87U)
            << name << ", " << width << " x " << height << ", " << format;
        EXPECT_EQ(Read(name), exists ? Bytes({'k', 'e', 'p', 't'}) : Bytes());
        EXPECT_EQ(Exists(name), exists);
      }
    }
  }
  EXPECT_EQ(ErrorOf(Save(2, 2, 3, image, "e.bmp")), 87U);
  EXPECT_EQ(std::filesystem::file_size(folder_ / "e.bmp"), 0U) << "found out behind the opening";
  for (const auto& [name, format] :
       {std::pair<const char*, DWORD>{".tif", 4}, {".bmp", 4}, {".bmp", 3}}) {
    EXPECT_EQ(ErrorOf(Save(2, 2, format, image, std::string("no/such/folder") + name)), 110U)
        << name;
  }
  EXPECT_EQ(ErrorOf(Vexa_SaveImageA(2, 2, 1, image.data(), "name without extension", 0)), 87U);
  for (const char* name : {"d.raw", "d.tif", "d.bmp", "d.jpg"}) {
    EXPECT_FALSE(Vexa_SaveImageA(2, 2, 1, nullptr, (folder_ / name).string().c_str(), 0)) << name;
    EXPECT_FALSE(Exists(name));
  }
  EXPECT_FALSE(Vexa_SaveImageA(2, 2, 1, image.data(), nullptr, 0));
  EXPECT_FALSE(Vexa_SaveImageW(2, 2, 1, image.data(), nullptr, 0));
}

TEST_F(SaveTest, NamesBeyondTheCodePageAndAFullDisk) {
  const Bytes image = Ramp(4);
  const std::u16string name =
      (folder_ / u"Gr\u00FC\u00DFe \u753B\u50CF \U0001F4F7.bmp").u16string();
  const std::basic_string<WCHAR> wide(name.begin(), name.end());
  EXPECT_TRUE(Vexa_SaveImageW(2, 2, 1, image.data(), wide.c_str(), 0)) << GetLastError();
  EXPECT_EQ(std::filesystem::file_size(std::filesystem::path(name)), 1086U);
#if defined(__linux__)
  const Bytes large = Ramp(100'000);  // more than the file's buffer, so that writing itself fails
  for (const char* name : {"full.bmp", "full.raw", "full.tif"}) {
    std::filesystem::create_symlink("/dev/full", folder_ / name);
    for (const Bytes& pixels : {image, large}) {
      SetLastError(0);
      const bool bitmap = std::string(name) == "full.bmp";
      EXPECT_EQ(Save(static_cast<DWORD>(pixels.size()) / 2, 2, 1, pixels, name), !bitmap) << name;
      EXPECT_EQ(GetLastError(), bitmap ? 29U : 0U);
    }
  }
#endif
}

}  // namespace
}  // namespace vexa::test

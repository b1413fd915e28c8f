#include "platform/output_file.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace vexa::platform {
namespace {

namespace fs = std::filesystem;

class OutputFileTest : public ::testing::Test {
 protected:
  OutputFileTest() { fs::create_directories(folder_); }
  ~OutputFileTest() override { fs::remove_all(folder_); }

  fs::path folder_ = fs::temp_directory_path() / u"vexa output file test \u00E9\u65E5";
};

TEST_F(OutputFileTest, CreatesAndTruncatesFilesOfAnyNameForBinaryWriting) {
  const std::u16string names[] = {u"plain.bmp", u"na\u00EFve \u0416.raw", u"\u65E5\u672C\u8A9E.tif",
                                  u"camera \U0001F4F7.jpg"};
  for (const std::u16string& name : names) {
    const fs::path path = folder_ / name;
    for (const std::string content : {"much longer than the second\n", "a\nb\r\n"}) {
      OutputFile file = CreateOutputFile(path.u16string());
      ASSERT_NE(file, nullptr) << path;
      ASSERT_EQ(std::fwrite(content.data(), 1, content.size(), file.get()), content.size());
      file.reset();
      std::ifstream reader(path, std::ios::binary);
      EXPECT_EQ(std::string(std::istreambuf_iterator<char>(reader), {}), content);
    }
  }
}

TEST_F(OutputFileTest, RefusesWhatCannotBeCreated) {
  ASSERT_NE(CreateOutputFile((folder_ / u"file").u16string()), nullptr);
  const fs::path refused[] = {folder_, folder_ / u"missing" / u"image.bmp",
                              folder_ / u"file" / u"image.bmp", fs::path()};
  for (const fs::path& path : refused) {
    EXPECT_EQ(CreateOutputFile(path.u16string()), nullptr) << path;
  }
}

}  // namespace
}  // namespace vexa::platform

#include "platform/output_file.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace vexa::platform {
namespace {

namespace fs = std::filesystem;

TEST(OutputFile, IsBinaryReplacesAnotherAndMayHaveAnyName) {
  const fs::path folder = fs::temp_directory_path();
  const fs::path path = folder / u"vexa output \u00E9 \u0416 \u65E5 \U0001F4F7.raw";
  for (const std::string content : {"much longer than the second\n", "a\nb\r\n"}) {
    OutputFile file = CreateOutputFile(path.u16string());
    ASSERT_NE(file, nullptr) << path;
    ASSERT_EQ(std::fwrite(content.data(), 1, content.size(), file.get()), content.size());
    file.reset();
    std::ifstream reader(path, std::ios::binary);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(reader), {}), content);
  }
  for (const fs::path& refused :
       {folder, folder / u"missing" / u"a.bmp", path / u"a.bmp", fs::path()}) {
    EXPECT_EQ(CreateOutputFile(refused.u16string()), nullptr) << refused;
  }
  fs::remove(path);
}

}  // namespace
}  // namespace vexa::platform

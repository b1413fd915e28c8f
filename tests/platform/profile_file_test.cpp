// Profile files by this system's functions: what both systems read and write alike.

#include "platform/profile_file.hpp"

#include <gtest/gtest.h>

#include <filesystem>

#include "platform/profile_fixture.hpp"

namespace vexa::platform {
namespace {

class ProfileFileTest : public test::ProfileTest {};

TEST_F(ProfileFileTest, ReadsIntegersAsTheSystemDoes) {
  const struct {
    const char* lines;  // of the section
    std::uint32_t value;
  } cases[] = {
      {"kEY=5", 5},
      {"  Key  =  5  ", 5},
      {"Key='5'", 5},
      {"Key= \"  5\" ", 5},
      {"Key=+5", 5},
      {"Key=5;comment", 5},
      {"Key=5.9", 5},
      {"Key=0x1fG", 31},
      {"Key=-0x10", 0xFFFFFFF0},
      {"Key=010", 10},
      {"Key=4294967301", 5},
      {"Key=apples", 0},
      {"Key=- 5", 0},
      {"Key==5", 0},
      {"Key=", 77},
      {"Key=\"\"", 77},
      {"Key", 77},
      {";Key=5", 77},
      {"Key=5\nKey=6", 5},
      {"Other=1\n\nKey=5", 5},
      {"[Else]\nKey=5", 77},
      {"[Else]\nKey=6\n[Section]\nKey=5", 77},
  };
  for (const auto& test : cases) {
    Put(std::string("[sECTION]\n") + test.lines + "\n");
    EXPECT_EQ(ProfileReader(path_).ReadInteger("Section", "Key", 77), test.value) << test.lines;
  }
  std::filesystem::remove(file_);
  EXPECT_EQ(ProfileReader(path_).ReadInteger("Section", "Key", 77), 77U);
}

TEST_F(ProfileFileTest, WritesItsKeysAndLeavesTheRest) {
  const auto write = [this](const std::string& before) {
    Put(before);
    ProfileWriter writer(path_);
    EXPECT_TRUE(writer.Write("One", "A", "-1").ok());
    EXPECT_TRUE(writer.Write("One", "B", "2").ok());
    EXPECT_TRUE(writer.Write("Two", "A", "3").ok());
    EXPECT_TRUE(writer.Commit().ok());
    return Get();
  };
  EXPECT_EQ(write(""), Lines("[One]|A=-1|B=2|[Two]|A=3|"));
  EXPECT_EQ(write(Lines("[two]|; kept|X=y|a=9|[other]|A=5|")),
            Lines("[two]|; kept|X=y|a=3|[other]|A=5|[One]|A=-1|B=2|"));
  EXPECT_EQ(write(Lines("[One]|B=1|[Two]|A=0|B=0|")), Lines("[One]|B=2|A=-1|[Two]|A=3|B=0|"));
  for (const auto& [section, key, value] :
       {std::tuple("One", "A", 0xFFFFFFFFU), std::tuple("One", "B", 2U),
        std::tuple("Two", "A", 3U)}) {
    EXPECT_EQ(ProfileReader(path_).ReadInteger(section, key, 77), value);
  }
  // UTF-16LE stays UTF-16LE.
  const std::string wide = test::Utf16Le(Lines("[One]|X=\xC4|"));
  EXPECT_EQ(write(wide), test::Utf16Le(Lines("[One]|X=\xC4|A=-1|B=2|[Two]|A=3|")));
  EXPECT_EQ(ProfileReader(path_).ReadInteger("Two", "A", 77), 3U);
}

TEST_F(ProfileFileTest, FailsWhereNoFileCanBe) {
  ProfileWriter writer(path_ + u".no/such/folder.ini");
  const Status written = writer.Write("One", "A", "1");
  EXPECT_EQ(written.ok() ? writer.Commit() : written, error::kPathNotFound);
}

}  // namespace
}  // namespace vexa::platform

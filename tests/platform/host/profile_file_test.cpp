// Profile files as this system keeps them: bytes, attributes, and writers that are killed.

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <random>
#include <thread>

#include "platform/host/profile_text.hpp"
#include "platform/profile_file.hpp"
#include "platform/profile_fixture.hpp"

namespace vexa::platform {
namespace {

namespace fs = std::filesystem;
using host::ProfileText;

class HostProfileTest : public test::ProfileTest {
 protected:
  Status Write(const std::u16string& path, const std::string& value = "1") {
    ProfileWriter writer(path);
    const Status status = writer.Write("S", "K", value);
    return status.ok() ? writer.Commit() : status;
  }
  std::uint32_t Read(const std::u16string& path) {
    return ProfileReader(path).ReadInteger("S", "K", 77);
  }
  std::size_t FilesInFolder() const {
    return static_cast<std::size_t>(
        std::distance(fs::directory_iterator(folder_), fs::directory_iterator()));
  }
};

TEST(ProfileText, ChangesOnlyItsLines) {
  using namespace std::string_literals;
  const struct {
    std::string before, after;
  } cases[] = {
      {"", "[S]\nK=1\n"},
      {"\xEF\xBB\xBF", "\xEF\xBB\xBF[S]\nK=1\n"},
      {"\xEF\xBB\xBF[s]\r\n", "\xEF\xBB\xBF[s]\r\nK=1\r\n"},
      {"[ S ] ; note\nX=1\n\n\n[T]\n", "[ S ] ; note\nX=1\nK=1\n\n\n[T]\n"},
      {"[S]", "[S]\nK=1\n"},
      {"[S]\n\nX", "[S]\n\nX\nK=1\n"},
      {"X", "X\n[S]\nK=1\n"},
      {"[S]\r\n k = 'old' ; x", "[S]\r\nk=1"},
      {"[S]\rX=2\r[T]\rK=3", "[S]\rX=2\rK=1\r[T]\rK=3"},
      {"[S]\nK=2\nK=3\n[S]\nK=4\n", "[S]\nK=1\nK=3\n[S]\nK=4\n"},
      {"[T]\n[S]\n[T]\nK=3\n", "[T]\n[S]\nK=1\n[T]\nK=3\n"},
      {"[S\nK=2\n", "[S\nK=2\n[S]\nK=1\n"},
      {"[S]\n\0K=5\n\xFF\xFE;\x80\n"s, "[S]\nK=1\n\xFF\xFE;\x80\n"},
      {"\xFF\xFE", test::Utf16Le("[S]\nK=1\n")},
      {test::Utf16Le("[S]\r\nK=2\r\n") + "x", test::Utf16Le("[S]\r\nK=1\r\n") + "x"},
      {"\xFE\xFF\0[\0S\0]\0\n\x4B\0\0=\0"
       "1"s,
       "\xFE\xFF\0[\0S\0]\0\n\x4B\0\0=\0"
       "1\0\n\0K\0=\0"
       "1\0\n"s},
  };
  for (const auto& test : cases) {
    ProfileText text(test.before);
    text.Set("S", "K", "0");
    text.Set("s", "K", "1");
    const std::string after = text.Bytes();
    EXPECT_EQ(after, test.after) << test.before;
    EXPECT_EQ(ProfileText(after).Find("S", "K"), "1");
    EXPECT_EQ(ProfileText(test.before).Bytes(), test.before);
  }
}

// What is not ours comes through any bytes; what is ours is found again.
TEST(ProfileText, BearsAnyBytes) {
  std::minstd_rand random(1);
  const std::string_view alphabet("[]=;\r\n \"'SK0x\0\xFF\xFE\xEF", 18);
  for (int i = 0; i < 20000; ++i) {
    std::string bytes(random() % 40, '\0');
    for (char& c : bytes) {
      c = alphabet[random() % alphabet.size()];
    }
    if (i % 4 == 0) {
      bytes.insert(0, "\xFF\xFE");
    }
    ProfileText text(bytes);
    ASSERT_EQ(text.Bytes(), bytes);
    text.Set("S", "K", "123");
    text.Set("New", "N", "4");
    ProfileText again(text.Bytes());
    ASSERT_EQ(again.Find("S", "K"), "123");
    ASSERT_EQ(again.Find("New", "N"), "4");
    again.Set("S", "K", "123");
    again.Set("New", "N", "4");
    ASSERT_EQ(again.Bytes(), text.Bytes()) << "writing the same again changes nothing";
  }
}

TEST_F(HostProfileTest, AFileKeepsItsModeAndItsLinks) {
  ASSERT_TRUE(Write(path_).ok());
  const mode_t mask = ::umask(0);
  ::umask(mask);
  EXPECT_EQ(static_cast<mode_t>(fs::status(file_).permissions()), 0666 & ~mask);
  fs::permissions(file_, fs::perms(0640));
  // A chain of links, relative and absolute, and a link to a file that is not there yet.
  fs::create_directory(folder_ / "sub");
  fs::create_symlink("../settings.ini", folder_ / "sub" / "near");
  fs::create_symlink(folder_ / "sub" / "near", folder_ / "far");
  fs::create_symlink("sub/new.ini", folder_ / "dangling");
  EXPECT_TRUE(Write((folder_ / "far").u16string(), "2").ok());
  EXPECT_EQ(Read(path_), 2U);
  EXPECT_EQ(fs::status(file_).permissions(), fs::perms(0640));
  EXPECT_TRUE(fs::is_symlink(folder_ / "far") && fs::is_symlink(folder_ / "sub" / "near"));
  EXPECT_TRUE(Write((folder_ / "dangling").u16string(), "3").ok());
  EXPECT_EQ(Read((folder_ / "sub" / "new.ini").u16string()), 3U);
  const fs::path before = fs::current_path();
  fs::current_path(folder_);
  EXPECT_TRUE(Write(u"settings.ini", "4").ok());
  fs::current_path(before);
  EXPECT_EQ(Read(path_), 4U);
  EXPECT_EQ(FilesInFolder(), 4U) << "no temporary file is left";
}

TEST_F(HostProfileTest, WhatCannotBeReplacedStays) {
  Put("[S]\nK=5\n");
  fs::create_symlink("loop", folder_ / "loop");
  ASSERT_EQ(::mkfifo((folder_ / "pipe").c_str(), 0600), 0);
  EXPECT_EQ(Write((folder_ / "loop").u16string()), error::kBadPathName);
  EXPECT_EQ(Write((folder_ / "pipe").u16string()), error::kAccessDenied);
  EXPECT_EQ(Write(folder_.u16string()), error::kAccessDenied);
  EXPECT_EQ(Write(std::u16string(1, 0xD800)), error::kBadPathName);
  EXPECT_EQ(Write((file_ / "x").u16string()), error::kPathNotFound);
  EXPECT_EQ(Read((folder_ / "pipe").u16string()), 77U) << "and opening it does not wait";
  fs::permissions(file_, fs::perms(0444));
  if (::geteuid() != 0) {
    EXPECT_EQ(Write(path_), error::kAccessDenied);
  }
  fs::permissions(file_, fs::perms(0644));
  Put(std::string(std::size_t{5} << 20, ';'));
  EXPECT_EQ(Write(path_), error::kFileTooLarge);
  EXPECT_EQ(fs::file_size(file_), std::size_t{5} << 20);
  // Without Commit nothing happens.
  Put("[S]\nK=5\n");
  EXPECT_TRUE(ProfileWriter(path_).Write("S", "K", "6").ok());
  EXPECT_EQ(Read(path_), 5U);
  EXPECT_EQ(FilesInFolder(), 3U);
}

// A process that rewrites a file without end is killed at any moment; the file is whole each time.
TEST_F(HostProfileTest, AKilledWriterLeavesTheOldOrTheNewFile) {
  constexpr int kKeys = 300;
  const auto write = [&](std::uint32_t generation) {
    ProfileWriter writer(path_);
    for (int key = 0; key < kKeys; ++key) {
      static_cast<void>(writer.Write("S", "Key" + std::to_string(key), std::to_string(generation)));
    }
    return writer.Commit();
  };
  ASSERT_TRUE(write(1).ok());
  std::minstd_rand random(1);
  for (int round = 0; round < 40; ++round) {
    const auto first = static_cast<std::uint32_t>(1000 * round + 2);
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      for (std::uint32_t generation = first;; ++generation) {
        if (!write(generation).ok()) ::_exit(1);
      }
    }
    int status = 0;
    while (ProfileReader(path_).ReadInteger("S", "Key0", 0) < first) {
      ASSERT_EQ(::waitpid(child, &status, WNOHANG), 0) << "the child's writing failed";
    }
    std::this_thread::sleep_for(std::chrono::microseconds(random() % 20000));
    ::kill(child, SIGKILL);
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status)) << "the child's writing failed";
    const ProfileReader reader(path_);
    const std::uint32_t generation = reader.ReadInteger("S", "Key0", 0);
    EXPECT_GE(generation, first);
    for (int key = 0; key < kKeys; ++key) {
      ASSERT_EQ(reader.ReadInteger("S", "Key" + std::to_string(key), 0), generation);
    }
  }
}

}  // namespace
}  // namespace vexa::platform

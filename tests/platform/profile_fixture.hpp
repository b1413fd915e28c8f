/// \file
/// A profile file in a folder of its own.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "platform/temporary_folder.hpp"

namespace vexa::test {

/// Latin-1 as UTF-16LE with byte-order mark.
inline std::string Utf16Le(const std::string& text) {
  std::string bytes = "\xFF\xFE";
  for (const char c : text) {
    bytes += {c, '\0'};
  }
  return bytes;
}

class TemporaryProfile : public TemporaryFolder {
 protected:
  TemporaryProfile() : file_(folder_ / "settings.ini"), path_(file_.u16string()) {}

  void Put(const std::string& bytes) { std::ofstream(file_, std::ios::binary) << bytes; }
  std::string Get() const {
    std::ifstream file(file_, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  /// Text with this system's line ends in place of "|".
  static std::string Lines(std::string text) {
#if defined(_WIN32)
    const std::string end = "\r\n";
#else
    const std::string end = "\n";
#endif
    for (std::size_t at = text.find('|'); at != std::string::npos; at = text.find('|', at)) {
      text.replace(at, 1, end);
    }
    return text;
  }

  std::filesystem::path file_;
  std::u16string path_;
};

class ProfileTest : public ::testing::Test, public TemporaryProfile {};

}  // namespace vexa::test

/// \file
/// A folder to save images in.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "VexaAPI.h"
#include "library/answers.hpp"
#include "platform/temporary_folder.hpp"

namespace vexa::test {

using Bytes = std::vector<std::uint8_t>;

class SaveTest : public ::testing::Test, public TemporaryFolder {
 protected:
  SaveTest() { SetLastError(0); }

  BOOL Save(DWORD width, DWORD height, DWORD format, const Bytes& image, const std::string& name,
            DWORD jpeg_compression = 0) {
    const std::string path = (folder_ / name).string();
    return Vexa_SaveImageA(width, height, format, image.data(), path.c_str(), jpeg_compression);
  }

  Bytes Read(const std::filesystem::path& name) const {
    std::ifstream file(folder_ / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  bool Exists(const std::string& name) const { return std::filesystem::exists(folder_ / name); }

  static Bytes Ramp(std::size_t size) {
    Bytes bytes(size);
    for (std::size_t i = 0; i < size; ++i) {
      bytes[i] = static_cast<std::uint8_t>(i * 7 + 1);
    }
    return bytes;
  }
};

}  // namespace vexa::test

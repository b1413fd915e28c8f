/// \file
/// A folder for the files of one test.
#pragma once

#include <filesystem>
#include <random>
#include <string>

namespace vexa::test {

/// A new folder, unlike that of any test that runs beside this one; goes with all that is in it.
class TemporaryFolder {
 protected:
  TemporaryFolder() {
    std::random_device random;
    do {
      folder_ = std::filesystem::temp_directory_path() / ("vexa-" + std::to_string(random()));
    } while (!std::filesystem::create_directory(folder_));
  }
  ~TemporaryFolder() { std::filesystem::remove_all(folder_); }

  std::filesystem::path folder_;
};

}  // namespace vexa::test

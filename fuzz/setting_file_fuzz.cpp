// Reads any bytes as a setting file into a camera of any model. The library must neither crash nor
// hang; a read that fails says so; one that succeeds leaves a camera whose settings can be written,
// read again, and written the same, and it does to a second camera what it did to the first.

#include <fuzzer/FuzzedDataProvider.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "VexaAPI.h"
#include "platform/driver.hpp"
#include "simulator/twin.hpp"

namespace {

using namespace vexa;

[[noreturn]] void Fail(const char* what, std::uint16_t product_id) {
  std::fprintf(stderr, "product %04X: %s, last error %u\n", product_id, what, GetLastError());
  std::abort();
}

/// A folder for the files of this process; in memory where that is possible, as every file that is
/// written goes to the disk before it takes its name.
class Folder {
 public:
  Folder() {
    const std::filesystem::path memory = "/dev/shm";
    const bool in_memory = std::filesystem::is_directory(memory);
    path_ = in_memory ? memory : std::filesystem::temp_directory_path();
    path_ /= "vexa-setting-fuzz-" + std::to_string(::getpid());
    std::filesystem::create_directories(path_);
  }
  ~Folder() { std::filesystem::remove_all(path_); }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;

  std::string File(const char* name) const { return path_ / name; }

 private:
  std::filesystem::path path_;
};

void Put(const std::string& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

std::string Get(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// An open camera of a product on a bus of its own.
class Camera {
 public:
  explicit Camera(const simulator::CameraConfig& config) {
    bus_.Add(config)->SetLogLimit(0);
    platform::InstallDriver(&bus_);
    handle_ = Vexa_Open();
    platform::InstallDriver(nullptr);
    if (handle_ == INVALID_HANDLE_VALUE) {
      Fail("cannot be opened", config.product_id);
    }
  }
  ~Camera() { Vexa_Close(handle_); }
  Camera(const Camera&) = delete;
  Camera& operator=(const Camera&) = delete;

  HANDLE handle() const { return handle_; }

 private:
  simulator::CameraBus bus_;
  HANDLE handle_ = INVALID_HANDLE_VALUE;
};

/// The file that the camera's settings make.
std::string Written(const Camera& camera, const std::string& path, std::uint16_t product_id) {
  std::filesystem::remove(path);
  if (!Vexa_WriteSettingFileA(camera.handle(), path.c_str())) {
    Fail("its settings cannot be written", product_id);
  }
  return Get(path);
}

/// The fuzzer's bytes, or a file with keys that the library knows and values of the fuzzer's.
std::string MakeFile(FuzzedDataProvider& data, const std::string& present) {
  if (data.ConsumeBool()) {
    return data.ConsumeRemainingBytesAsString();
  }
  std::string file = present;
  const int changes = data.ConsumeIntegralInRange(1, 6);
  for (int i = 0; i < changes; ++i) {
    // Most of the file are gamma tables, which is all the same; prefer what comes before them.
    const std::size_t limit =
        data.ConsumeBool() ? std::min<std::size_t>(2000, file.size()) : file.size();
    const std::size_t from = file.find('=', data.ConsumeIntegralInRange<std::size_t>(0, limit));
    const std::size_t to = file.find('\n', from);
    if (from != std::string::npos && to != std::string::npos) {
      const std::string value = data.ConsumeBool()
                                    ? std::to_string(data.ConsumeIntegral<std::int32_t>())
                                    : data.ConsumeRandomLengthString(12);
      file.replace(from + 1, to - from - 1, value);
    }
  }
  return file;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* input, std::size_t size) {
  static const Folder folder;
  static const std::string read_file = folder.File("read.ini");
  static const std::string written_file = folder.File("written.ini");
  FuzzedDataProvider data(input, size);
  simulator::CameraConfig config = simulator::ForProduct(
      data.PickValueInArray<std::uint16_t>({0x0109, 0x0211, 0x0305, 0x0510, 0x0906}));
  config.max_width = 128;  // a small sensor is made faster
  config.max_height = 96;
  if (data.ConsumeBool()) {
    config.capabilities = data.ConsumeIntegral<std::uint64_t>();
  }
  const Camera camera(config);
  const Camera twin(config);
  Put(read_file, MakeFile(data, Written(camera, written_file, config.product_id)));

  const BOOL read = Vexa_ReadSettingFileA(camera.handle(), read_file.c_str());
  const std::string after = Written(camera, written_file, config.product_id);
  if (Vexa_ReadSettingFileA(twin.handle(), read_file.c_str()) != read ||
      Written(twin, written_file, config.product_id) != after) {
    Fail("the same file does something else to an equal camera", config.product_id);
  }
  if (!read) {
    return 0;
  }
  Put(read_file, after);
  if (!Vexa_ReadSettingFileA(camera.handle(), read_file.c_str())) {
    Fail("what it has written is refused", config.product_id);
  }
  if (Written(camera, written_file, config.product_id) != after) {
    Fail("what it has written changes it", config.product_id);
  }
  return 0;
}

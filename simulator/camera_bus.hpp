/// \file
/// The bus that twins are plugged into: the driver of the digital twin.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "platform/driver.hpp"
#include "simulator/twin_camera.hpp"

namespace vexa::simulator {

/// Lists and opens the plugged cameras in the order in which they were added.
class CameraBus : public platform::Driver {
 public:
  CameraBus() = default;
  ~CameraBus() override;
  CameraBus(const CameraBus&) = delete;
  CameraBus& operator=(const CameraBus&) = delete;

  /// The bus of the process, with the standard cameras; made when first asked for.
  static CameraBus& System();

  /// Plugs in a new camera behind those that are there.
  std::shared_ptr<TwinCamera> Add(CameraConfig config);
  /// Unplugs a camera and forgets it. Devices that are open stay, dead.
  void Remove(const std::shared_ptr<TwinCamera>& camera);
  /// All cameras, plugged or not.
  std::vector<std::shared_ptr<TwinCamera>> Cameras() const;

  Status InterfacePath(std::uint32_t index, std::u16string* path) override;
  Status Open(const std::u16string& path, std::unique_ptr<platform::Device>* device) override;

 private:
  struct Entry {
    std::u16string path;
    std::shared_ptr<TwinCamera> camera;
  };

  mutable std::mutex mutex_;
  std::vector<Entry> entries_;
  unsigned added_ = 0;
};

}  // namespace vexa::simulator

#include "simulator/camera_bus.hpp"

#include <algorithm>
#include <utility>

#include "simulator/twin_device.hpp"

namespace vexa::simulator {
namespace {

constexpr Status kFileNotFound{2};  // ERROR_FILE_NOT_FOUND

std::u16string PathOf(std::uint16_t product_id, unsigned serial) {
  constexpr char16_t kDigits[] = u"0123456789abcdef";
  std::u16string path = u"\\\\?\\usb#twin&pid_";
  for (int shift = 12; shift >= 0; shift -= 4) path += kDigits[product_id >> shift & 0xF];
  path += u'#';
  for (const char digit : std::to_string(serial)) path += static_cast<char16_t>(digit);
  return path;
}

}  // namespace

CameraBus::~CameraBus() {
  for (const Entry& entry : entries_) entry.camera->Unplug();
}

CameraBus& CameraBus::System() {
  static CameraBus bus;
  static const bool filled = [] {
    for (CameraConfig& config : StandardCameras()) bus.Add(std::move(config));
    return true;
  }();
  static_cast<void>(filled);
  return bus;
}

std::shared_ptr<TwinCamera> CameraBus::Add(CameraConfig config) {
  auto camera = std::make_shared<TwinCamera>(std::move(config));
  const std::lock_guard lock(mutex_);
  entries_.push_back({PathOf(camera->config().product_id, ++added_), camera});
  return camera;
}

void CameraBus::Remove(const std::shared_ptr<TwinCamera>& camera) {
  camera->Unplug();
  const std::lock_guard lock(mutex_);
  std::erase_if(entries_, [&](const Entry& entry) { return entry.camera == camera; });
}

std::vector<std::shared_ptr<TwinCamera>> CameraBus::Cameras() const {
  const std::lock_guard lock(mutex_);
  std::vector<std::shared_ptr<TwinCamera>> cameras;
  for (const Entry& entry : entries_) cameras.push_back(entry.camera);
  return cameras;
}

Status CameraBus::InterfacePath(std::uint32_t index, std::u16string* path) {
  const std::lock_guard lock(mutex_);
  for (const Entry& entry : entries_) {
    if (!entry.camera->IsPlugged() || index-- != 0) continue;
    *path = entry.path;
    return error::kNone;
  }
  return error::kNoMoreItems;
}

Status CameraBus::Open(const std::u16string& path, std::unique_ptr<platform::Device>* device) {
  const std::lock_guard lock(mutex_);
  for (const Entry& entry : entries_) {
    if (entry.path != path || !entry.camera->IsPlugged()) continue;
    *device = std::make_unique<TwinDevice>(entry.camera);
    return error::kNone;
  }
  return kFileNotFound;
}

}  // namespace vexa::simulator

#include "device/discovery.hpp"

#include <algorithm>
#include <memory>
#include <string>
#include <utility>

#include "device/driver_requests.hpp"
#include "platform/registry.hpp"
#include "platform/system_info.hpp"

namespace vexa::device {
namespace {

constexpr int kRecoveryStages = 2;

// Tries to wake a camera that has not answered, with the stage after those already done; true when
// it is worth asking it again.
bool Recover(platform::Device& device, int stages_done) {
  DriverVersion version;
  if (stages_done == kRecoveryStages || !GetDriverVersion(device, &version).ok() ||
      !version.SupportsRecovery()) {
    return false;
  }
  // Whether the recovery helped shows in the retry, so its own result does not count.
  static_cast<void>(RecoverCamera(device, stages_done > 0));
  return true;
}

}  // namespace

Status OpenFirstFreeCamera(platform::Driver& driver, ControlChannel& channel,
                           CameraIdentity& identity) {
  int stages_done = 0;  // of the recovery of the camera at index
  for (std::uint32_t index = 0;; index += stages_done == 0 ? 1 : 0) {
    std::u16string path;
    const Status listed = driver.InterfacePath(index, &path);
    if (!listed.ok()) {
      return listed;
    }
    std::unique_ptr<platform::Device> device;
    if (!driver.Open(path, &device).ok() || !IsOnlyHandle(*device)) {
      stages_done = 0;
      continue;
    }
    channel.Attach(std::move(device));
    if (identity.Read(channel).ok()) {
      return {};
    }
    stages_done = Recover(channel.device(), stages_done) ? stages_done + 1 : 0;
    channel.Detach();
  }
}

std::uint32_t LimitTransferSize(std::uint32_t configured, std::uint32_t os_major_version) {
  const std::uint32_t largest = os_major_version < 6 ? 0x300000 : 0x80000;
  const std::uint32_t rounded = configured & ~std::uint32_t{0x1FF};
  return rounded == 0 ? largest : std::clamp<std::uint32_t>(rounded, 0x1000, largest);
}

std::uint32_t ReadMaxTransferSize() {
  std::uint32_t configured = 0;
  const platform::CwRegKey key(platform::RegistryRoot::kCurrentUser,
                               u"SOFTWARE\\Orvane\\USBCamera\\Setting", platform::kRegistryRead,
                               false);
  // A missing key or value leaves 0, which stands for the default.
  static_cast<void>(key.QueryDword(u"MaxTransferSize", &configured));
  return LimitTransferSize(configured, platform::OsMajorVersion());
}

}  // namespace vexa::device

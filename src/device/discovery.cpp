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

// Tries to wake a camera that has not answered; true when it is worth asking it again.
bool Recover(platform::Device& device, bool first_stage_done) {
  DriverVersion version;
  if (!GetDriverVersion(device, &version).ok() || !version.SupportsRecovery()) {
    return false;
  }
  // Whether the recovery helped shows in the retry, so its own result does not count.
  static_cast<void>(RecoverCamera(device, first_stage_done));
  return !first_stage_done;
}

}  // namespace

Status OpenFirstFreeCamera(platform::Driver& driver, ControlChannel& channel,
                           CameraIdentity& identity) {
  bool recovering = false;
  for (std::uint32_t index = 0;; index += recovering ? 0 : 1) {
    std::u16string path;
    const Status listed = driver.InterfacePath(index, &path);
    if (!listed.ok()) {
      return listed;
    }
    std::unique_ptr<platform::Device> device;
    if (!driver.Open(path, &device).ok() || !IsOnlyHandle(*device)) {
      recovering = false;
      continue;
    }
    channel.Attach(std::move(device));
    if (identity.Read(channel).ok()) {
      return {};
    }
    recovering = Recover(channel.device(), recovering);
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

#include "device/camera_memory.hpp"

#include <algorithm>

namespace vexa::device {
namespace {

constexpr std::uint16_t kLongestChunk = 4096;

constexpr std::uint16_t kHighRamStart = 0x4000;
constexpr std::uint16_t kLowRequestAddress = 0xE600;  // that the low request serves, too

constexpr std::uint16_t kUserIdAddress = 0x100;
constexpr std::uint16_t kUserMemoryAddress = 0x200;

// Where firmware before version 1.0 keeps the user area.
constexpr std::uint16_t kUserAreaFirmware = 0x0100;
constexpr std::uint16_t kOldUserAreaOffset = 0x6E00;
constexpr std::uint16_t kOldUserAreaIndex = 0x151;

SetupPacket MakeSetup(MemoryAccess access, Request request, std::uint16_t first) {
  return {.request_type = access == MemoryAccess::kRead ? kDeviceToHost : kHostToDevice,
          .request = static_cast<std::uint8_t>(request),
          .value = first};
}

}  // namespace

Status CameraMemory::Transfer(SetupPacket setup, std::uint16_t last, std::uint8_t* data,
                              std::uint32_t* transferred) {
  const std::uint16_t first = setup.value;
  std::uint32_t done = 0;
  while (true) {
    // Addresses and lengths are 16 bits wide: behind 0xFFFF comes 0, of which 65536 bytes are left,
    // which is 0.
    setup.value = static_cast<std::uint16_t>(first + done);
    const auto left = static_cast<std::uint16_t>(last - setup.value + 1);
    if (setup.value > last || left == 0) {
      break;
    }
    setup.length = std::min(left, kLongestChunk);
    std::uint32_t reported = 0;
    const Status status = channel_.Send(setup, data + done, &reported);
    if (!status.ok()) {
      return status;
    }
    if (reported == 0) {
      return error::kGeneralFailure;
    }
    done += std::min<std::uint32_t>(reported, setup.length);
  }
  *transferred = done;
  return {};
}

Status CameraMemory::AccessRam(MemoryAccess access, std::uint16_t first, std::uint16_t last,
                               std::uint8_t* data, std::uint32_t* transferred) {
  const bool low =
      first < kHighRamStart || (first == kLowRequestAddress && last == kLowRequestAddress);
  return Transfer(MakeSetup(access, low ? Request::kLowRam : Request::kHighRam, first), last, data,
                  transferred);
}

Status CameraMemory::AccessUserArea(MemoryAccess access, std::uint16_t address,
                                    std::span<std::uint8_t> data) {
  const bool old = identity_.firmware() < kUserAreaFirmware;
  const auto first = static_cast<std::uint16_t>(address + (old ? kOldUserAreaOffset : 0));
  SetupPacket setup = MakeSetup(access, old ? Request::kOldUserArea : Request::kUserArea, first);
  setup.index = old ? kOldUserAreaIndex : std::uint16_t{0};
  std::uint32_t transferred = 0;
  return Transfer(setup, static_cast<std::uint16_t>(first + data.size() - 1), data.data(),
                  &transferred);
}

Status CameraMemory::AccessUserMemory(MemoryAccess access, std::uint16_t offset,
                                      std::span<std::uint8_t> data) {
  if (offset + data.size() > kUserMemorySize) {
    return error::kInvalidParameter;
  }
  return AccessUserArea(access, static_cast<std::uint16_t>(kUserMemoryAddress + offset), data);
}

Status CameraMemory::AccessUserId(MemoryAccess access,
                                  std::span<std::uint8_t, kUserIdSize> record) {
  return AccessUserArea(access, kUserIdAddress, record);
}

}  // namespace vexa::device

#include "simulator/camera_memory.hpp"

#include <algorithm>

#include "platform/bytes.hpp"
#include "simulator/camera_config.hpp"

namespace vexa::simulator {
namespace {

constexpr std::uint8_t kLowRam = 0xA0;
constexpr std::uint8_t kHighRam = 0xF0;
constexpr std::uint8_t kOldUserArea = 0xF9;
constexpr std::uint8_t kNewUserArea = 0xFA;

constexpr std::size_t kRamSize = 0x10000;
constexpr std::size_t kHighRamStart = 0x4000;
constexpr std::size_t kUserAreaSize = 0x800;
constexpr std::size_t kOldUserAreaStart = 0x6E00;
constexpr std::uint16_t kOldUserAreaIndex = 0x151;
constexpr std::size_t kLongestRequest = 4096;

constexpr std::size_t kUserId = 0x100;  // record: number, flags, length, up to 250 bytes
constexpr std::size_t kLongestName = 249;

}  // namespace

CameraMemory::CameraMemory(const CameraConfig& config)
    : new_user_area_request_(config.firmware >= 0x0100), ram_(kRamSize), user_area_(kUserAreaSize) {
  StoreLe32(user_area_, kUserId, config.user_id);
  if (config.user_name.empty()) return;
  const std::size_t length = std::min(config.user_name.size(), kLongestName);
  user_area_[kUserId + 5] = static_cast<std::uint8_t>(length + 1);
  std::copy_n(config.user_name.begin(), length, user_area_.begin() + kUserId + 6);
}

bool CameraMemory::Serves(std::uint8_t request) {
  return request == kLowRam || request == kHighRam || request == kOldUserArea ||
         request == kNewUserArea;
}

std::span<std::uint8_t> CameraMemory::Locate(const ControlRequest& request) {
  const auto part = [&](std::vector<std::uint8_t>& memory, std::size_t start, std::size_t begin,
                        std::size_t end) -> std::span<std::uint8_t> {
    const std::size_t first = request.value;
    if (first < begin || first + request.length > end) return {};
    return std::span(memory).subspan(first - start, request.length);
  };
  switch (request.request) {
    case kLowRam:
      // The host picks the request by the start of a range, which may reach beyond the low RAM.
      return request.index == 0 ? part(ram_, 0, 0, kRamSize) : std::span<std::uint8_t>{};
    case kHighRam:
      return request.index == 0 ? part(ram_, 0, kHighRamStart, kRamSize)
                                : std::span<std::uint8_t>{};
    case kOldUserArea:
      if (new_user_area_request_ || request.index != kOldUserAreaIndex) return {};
      return part(user_area_, kOldUserAreaStart, kOldUserAreaStart,
                  kOldUserAreaStart + kUserAreaSize);
    default:
      if (!new_user_area_request_ || request.index != 0) return {};
      return part(user_area_, 0, 0, kUserAreaSize);
  }
}

Status CameraMemory::Transfer(const ControlRequest& request, std::span<std::uint8_t> reply,
                              std::uint32_t* returned) {
  if (request.length == 0 || request.length > kLongestRequest) return error::kGeneralFailure;
  const std::span<std::uint8_t> memory = Locate(request);
  if (memory.empty()) return error::kGeneralFailure;
  if (request.device_to_host()) {
    std::ranges::copy(memory, reply.begin());
  } else {
    std::ranges::copy(request.data, memory.begin());
  }
  *returned = request.length;
  return error::kNone;
}

void CameraMemory::LosePower() { std::ranges::fill(ram_, std::uint8_t{0}); }

}  // namespace vexa::simulator

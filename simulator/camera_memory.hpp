/// \file
/// The camera's RAM and its non-volatile user area.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "platform/status.hpp"
#include "simulator/control_request.hpp"

namespace vexa::simulator {

struct CameraConfig;

/// Answers the four memory requests. Addresses that a request does not serve fail with 31.
class CameraMemory {
 public:
  explicit CameraMemory(const CameraConfig& config);

  static bool Serves(std::uint8_t request);

  /// Carries out one request; `*returned` is the length of its data stage, in either direction.
  Status Transfer(const ControlRequest& request, std::span<std::uint8_t> reply,
                  std::uint32_t* returned);

  /// What loss of power does: the RAM is cleared, the user area stays.
  void LosePower();

 private:
  std::span<std::uint8_t> Locate(const ControlRequest& request);

  bool new_user_area_request_;
  std::vector<std::uint8_t> ram_;
  std::vector<std::uint8_t> user_area_;
};

}  // namespace vexa::simulator

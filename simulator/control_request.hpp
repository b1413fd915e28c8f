/// \file
/// The control request record: the input buffer of I/O control 0x222058.
#pragma once

#include <cstdint>
#include <span>

#include "platform/status.hpp"

namespace vexa::simulator {

/// A vendor request: the fields of a USB setup packet, the host's time limit and, for
/// host-to-device requests, the data stage.
struct ControlRequest {
  std::uint8_t type = 0;
  std::uint8_t request = 0;
  std::uint16_t value = 0;
  std::uint16_t index = 0;
  std::uint16_t length = 0;
  std::uint32_t timeout_ms = 0;
  std::span<const std::uint8_t> data;

  bool device_to_host() const { return (type & 0x80) != 0; }
};

inline constexpr std::size_t kRecordHeaderSize = 12;

/// Takes a record apart; `data` refers into it. 87 when it is not 12 bytes long (device-to-host)
/// or 12 + length (host-to-device), or when the output buffer cannot take the reply.
Status ParseRecord(std::span<const std::uint8_t> record, std::size_t output_size,
                   ControlRequest* request);

}  // namespace vexa::simulator

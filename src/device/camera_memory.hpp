/// \file
/// The camera's RAM and its non-volatile user area.
#pragma once

#include <cstdint>
#include <span>

#include "device/control_channel.hpp"
#include "device/identity.hpp"
#include "platform/status.hpp"

namespace vexa::device {

/// Direction of a memory access.
enum class MemoryAccess { kRead, kWrite };

/// Memory travels in chunks of up to 4096 bytes, one request each. An access ends at the first
/// chunk that fails; earlier ones have taken place. A chunk of which the driver reports no byte
/// fails with kGeneralFailure, since asking again would never end; after a chunk that was
/// transferred in part the access goes on where it stopped. Stateless but for the channel.
class CameraMemory {
 public:
  static constexpr std::size_t kUserMemorySize = 1024;
  static constexpr std::size_t kUserIdSize = 256;

  CameraMemory(ControlChannel& channel, const CameraIdentity& identity)
      : channel_(channel), identity_(identity) {}

  /// RAM addresses `first` to `last`; `data` holds one byte for each. `*transferred` is set on
  /// success alone, to 0 when last < first. The addresses 0 to 0xFFFF together are 0 bytes to the
  /// camera's 16-bit arithmetic, and nothing is transferred.
  Status AccessRam(MemoryAccess access, std::uint16_t first, std::uint16_t last, std::uint8_t* data,
                   std::uint32_t* transferred);

  /// Free memory for the application. kInvalidParameter beyond kUserMemorySize.
  Status AccessUserMemory(MemoryAccess access, std::uint16_t offset, std::span<std::uint8_t> data);

  /// The record with the user ID.
  Status AccessUserId(MemoryAccess access, std::span<std::uint8_t, kUserIdSize> record);

 private:
  Status AccessUserArea(MemoryAccess access, std::uint16_t address, std::span<std::uint8_t> data);
  Status Transfer(SetupPacket setup, std::uint16_t last, std::uint8_t* data,
                  std::uint32_t* transferred);

  ControlChannel& channel_;
  const CameraIdentity& identity_;
};

}  // namespace vexa::device

/// \file
/// The camera's 16-bit registers.
#pragma once

#include <cstdint>
#include <span>

#include "device/control_channel.hpp"
#include "device/identity.hpp"
#include "platform/status.hpp"

namespace vexa::device {

/// Register blocks.
enum class RegisterBlock : std::uint16_t {
  kMain = 0,
  kIoa = 16,
  kIta = 32,
  kJba = 76,
  kDefectPixels = 129,
};

/// Words of the command register.
enum class Command : std::uint16_t {
  kApply = 0x0001,  // take over the register values just written
  kResetCounter = 0x0003,
  kStartReadOut = 0x0005,
  kReadSdram = 0x0100,
  kSoftSubTrigger = 0x4000,
};

/// Register access in its two forms. Both travel as request 0x80; in the block form the index names
/// the block and bit 7 of the value a read, in the direct form the index is 0 and bit 15 of the
/// value a write. Stateless but for the channel.
class Registers {
 public:
  Registers(ControlChannel& channel, const CameraIdentity& identity)
      : channel_(channel), identity_(identity) {}

  /// Block form, registers first to last (low 7 bits of each); `data` holds two little-endian bytes
  /// per register. kInvalidParameter when last < first or the model has no register access.
  Status WriteBlock(std::uint16_t block, std::uint32_t first, std::uint32_t last,
                    std::uint8_t* data);
  Status ReadBlock(std::uint16_t block, std::uint32_t first, std::uint32_t last,
                   std::uint8_t* data);

  /// Block form, one register of the main block.
  Status Write(std::uint8_t register_number, std::uint16_t value);
  Status Read(std::uint8_t register_number, std::uint16_t* value);
  Status SendCommand(std::uint16_t word);
  Status SendCommand(Command command) { return SendCommand(static_cast<std::uint16_t>(command)); }
  /// Writes a register, and the apply command when that succeeded.
  Status WriteAndApply(std::uint8_t register_number, std::uint16_t value);

  /// Direct form, `data` of 2, 4 or 8 bytes. Sent to models without register access, too: the
  /// camera answers.
  Status WriteDirect(std::uint8_t register_number, std::span<std::uint8_t> data);
  Status ReadDirect(std::uint8_t register_number, std::span<std::uint8_t> data);

 private:
  Status Access(std::uint8_t request_type, std::uint16_t value, std::uint16_t index,
                std::span<std::uint8_t> data);
  Status AccessBlock(std::uint8_t request_type, std::uint16_t block, std::uint32_t first,
                     std::uint32_t last, std::uint8_t* data);

  ControlChannel& channel_;
  const CameraIdentity& identity_;
};

}  // namespace vexa::device

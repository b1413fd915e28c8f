/// \file
/// Trigger mode and timing, I/O pins, software status, LED.
#pragma once

#include <cstdint>

#include "device/control_channel.hpp"
#include "device/identity.hpp"
#include "device/registers.hpp"
#include "platform/status.hpp"

namespace vexa::settings {

/// Registers of 16 bits that the host passes through.
enum class IoRegister : std::uint8_t {
  kPinDirection = 0x00,
  kPinPolarity = 0x01,
  kPinStatus = 0x02,
  kPinMode0 = 0x04,  // to 0x07 for pin 3
  kLed = 0x0F,
  kSoftwareStatus = 0x66,
};

/// Bits of the trigger mode word that the host reads.
namespace trigger_mode {
inline constexpr std::uint32_t kTriggeredMask = 0x0003;
inline constexpr std::uint32_t kReadOutTriggered = 0x0002;  // of kTriggeredMask
inline constexpr std::uint32_t kAutomaticReadOut = 0x0040;
inline constexpr std::uint32_t kSeparateHeader = 0x0100;
inline constexpr std::uint32_t kSourceMask = 0x0C00;
inline constexpr std::uint32_t kSoftwareSource = 0x0400;
inline constexpr std::uint32_t kSubTriggerMask = 0x3000;
inline constexpr std::uint32_t kSubTriggerSource = 0x2000;
}  // namespace trigger_mode

/// Everything here lives in the camera; no copies are kept.
class TriggerIo {
 public:
  TriggerIo(device::ControlChannel& channel, device::Registers& registers,
            const device::CameraIdentity& identity)
      : channel_(channel), registers_(registers), identity_(identity) {}

  /// Writes the mode, then discards the frames in the camera's memory. kInvalidParameter on models
  /// without register access, and for a sub-trigger source that the model lacks.
  Status SetTriggerMode(std::uint32_t mode);
  /// 0 on failure; 0 with success on models without register access.
  Status GetTriggerMode(std::uint32_t* mode);

  /// Identifiers 0 to 5, else kInvalidParameter.
  Status SetTriggerTiming(std::uint32_t identifier, std::uint32_t value);
  Status GetTriggerTiming(std::uint32_t identifier, std::uint32_t* value);

  Status Set(IoRegister io_register, std::uint32_t value);
  /// 0 on failure.
  Status Get(IoRegister io_register, std::uint32_t* value);

  /// The low 8 bits of the pin number count; they must be 0 to 3, else kInvalidParameter.
  Status SetPinMode(std::uint32_t pin, std::uint32_t mode);
  Status GetPinMode(std::uint32_t pin, std::uint32_t* mode);

 private:
  Status WriteLong(std::uint8_t register_number, std::uint32_t value);
  Status ReadLong(std::uint8_t register_number, std::uint32_t* value);

  device::ControlChannel& channel_;
  device::Registers& registers_;
  const device::CameraIdentity& identity_;
};

}  // namespace vexa::settings

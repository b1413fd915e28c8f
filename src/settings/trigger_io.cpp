#include "settings/trigger_io.hpp"

#include <array>

#include "platform/bytes.hpp"

namespace vexa::settings {
namespace {

constexpr std::uint8_t kTriggerModeRegister = 0x30;
constexpr std::uint8_t kFirstTimingRegister = 0x32;  // two register numbers per 32-bit value
constexpr std::uint32_t kTimingCount = 6;
constexpr std::uint32_t kPinCount = 4;

std::uint8_t TimingRegister(std::uint32_t identifier) {
  return static_cast<std::uint8_t>(kFirstTimingRegister + 2 * identifier);
}

// Only the low 8 bits of a pin number count, so that parameter IDs whose low byte is the pin can be
// passed straight through.
bool PinRegister(std::uint32_t pin, IoRegister* io_register) {
  const std::uint32_t number = pin & 0xFF;
  *io_register =
      static_cast<IoRegister>(static_cast<std::uint8_t>(IoRegister::kPinMode0) + (number & 3));
  return number < kPinCount;
}

}  // namespace

Status TriggerIo::SetTriggerMode(std::uint32_t mode) {
  const bool sub_trigger =
      (mode & trigger_mode::kSubTriggerMask) == trigger_mode::kSubTriggerSource;
  if (!identity_.HasRegisterAccess() ||
      (sub_trigger && !identity_.Has(device::Function::kSoftSubTrigger))) {
    return error::kInvalidParameter;
  }
  const Status status = WriteLong(kTriggerModeRegister, mode);
  return status.ok() ? channel_.ClearBuffer() : status;
}

Status TriggerIo::GetTriggerMode(std::uint32_t* mode) {
  *mode = 0;
  return identity_.HasRegisterAccess() ? ReadLong(kTriggerModeRegister, mode) : Status();
}

Status TriggerIo::SetTriggerTiming(std::uint32_t identifier, std::uint32_t value) {
  return identifier < kTimingCount ? WriteLong(TimingRegister(identifier), value)
                                   : error::kInvalidParameter;
}

Status TriggerIo::GetTriggerTiming(std::uint32_t identifier, std::uint32_t* value) {
  if (identifier >= kTimingCount) {
    return error::kInvalidParameter;
  }
  return ReadLong(TimingRegister(identifier), value);
}

Status TriggerIo::Set(IoRegister io_register, std::uint32_t value) {
  std::array<std::uint8_t, 2> data{};
  StoreLe16(data, 0, static_cast<std::uint16_t>(value & 0xFFFF));
  return registers_.WriteDirect(static_cast<std::uint8_t>(io_register), data);
}

Status TriggerIo::Get(IoRegister io_register, std::uint32_t* value) {
  *value = 0;
  std::array<std::uint8_t, 2> data{};
  const Status status = registers_.ReadDirect(static_cast<std::uint8_t>(io_register), data);
  if (status.ok()) {
    *value = LoadLe16(data, 0);
  }
  return status;
}

Status TriggerIo::SetPinMode(std::uint32_t pin, std::uint32_t mode) {
  IoRegister io_register{};
  return PinRegister(pin, &io_register) ? Set(io_register, mode) : error::kInvalidParameter;
}

Status TriggerIo::GetPinMode(std::uint32_t pin, std::uint32_t* mode) {
  IoRegister io_register{};
  return PinRegister(pin, &io_register) ? Get(io_register, mode) : error::kInvalidParameter;
}

Status TriggerIo::WriteLong(std::uint8_t register_number, std::uint32_t value) {
  std::array<std::uint8_t, 4> data{};
  StoreLe32(data, 0, value);
  return registers_.WriteDirect(register_number, data);
}

Status TriggerIo::ReadLong(std::uint8_t register_number, std::uint32_t* value) {
  *value = 0;
  std::array<std::uint8_t, 4> data{};
  const Status status = registers_.ReadDirect(register_number, data);
  if (status.ok()) {
    *value = LoadLe32(data, 0);
  }
  return status;
}

}  // namespace vexa::settings

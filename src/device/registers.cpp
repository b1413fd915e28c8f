#include "device/registers.hpp"

#include <array>

#include "platform/bytes.hpp"

namespace vexa::device {
namespace {

constexpr std::uint8_t kCommandRegister = 0x50;
constexpr std::uint32_t kRegisterNumberMask = 0x7F;
constexpr std::uint16_t kBlockRead = 0x80;
constexpr std::uint16_t kDirectWrite = 0x8000;

}  // namespace

Status Registers::Access(std::uint8_t request_type, std::uint16_t value, std::uint16_t index,
                         std::span<std::uint8_t> data) {
  const SetupPacket setup{.request_type = request_type,
                          .request = static_cast<std::uint8_t>(Request::kRegister),
                          .value = value,
                          .index = index,
                          .length = static_cast<std::uint16_t>(data.size())};
  std::uint32_t returned = 0;
  return channel_.Send(setup, data.data(), &returned);
}

Status Registers::AccessBlock(std::uint8_t request_type, std::uint16_t block, std::uint32_t first,
                              std::uint32_t last, std::uint8_t* data) {
  first &= kRegisterNumberMask;
  last &= kRegisterNumberMask;
  if (last < first || !identity_.HasRegisterAccess()) {
    return error::kInvalidParameter;
  }
  const std::uint16_t read_bit = request_type == kDeviceToHost ? kBlockRead : std::uint16_t{0};
  return Access(request_type, static_cast<std::uint16_t>(first | read_bit), block,
                {data, 2 * (std::size_t{last} - first + 1)});
}

Status Registers::WriteBlock(std::uint16_t block, std::uint32_t first, std::uint32_t last,
                             std::uint8_t* data) {
  return AccessBlock(kHostToDevice, block, first, last, data);
}

Status Registers::ReadBlock(std::uint16_t block, std::uint32_t first, std::uint32_t last,
                            std::uint8_t* data) {
  return AccessBlock(kDeviceToHost, block, first, last, data);
}

Status Registers::Write(std::uint8_t register_number, std::uint16_t value) {
  std::array<std::uint8_t, 2> data{};
  StoreLe16(data, 0, value);
  return WriteBlock(static_cast<std::uint16_t>(RegisterBlock::kMain), register_number,
                    register_number, data.data());
}

Status Registers::Read(std::uint8_t register_number, std::uint16_t* value) {
  std::array<std::uint8_t, 2> data{};
  const Status status = ReadBlock(static_cast<std::uint16_t>(RegisterBlock::kMain), register_number,
                                  register_number, data.data());
  if (status.ok()) {
    *value = LoadLe16(data, 0);
  }
  return status;
}

Status Registers::SendCommand(std::uint16_t word) { return Write(kCommandRegister, word); }

Status Registers::WriteAndApply(std::uint8_t register_number, std::uint16_t value) {
  const Status status = Write(register_number, value);
  return status.ok() ? SendCommand(Command::kApply) : status;
}

Status Registers::WriteDirect(std::uint8_t register_number, std::span<std::uint8_t> data) {
  return Access(kHostToDevice, static_cast<std::uint16_t>(kDirectWrite | register_number), 0, data);
}

Status Registers::ReadDirect(std::uint8_t register_number, std::span<std::uint8_t> data) {
  return Access(kDeviceToHost, register_number, 0, data);
}

}  // namespace vexa::device

// Request 0x80: registers in both addressing forms, and the command register.
#include <cmath>

#include "platform/bytes.hpp"
#include "simulator/camera_state.hpp"

namespace vexa::simulator {
namespace {

constexpr std::uint16_t kDirectWrite = 0x8000;
constexpr std::uint16_t kBlockRead = 0x0080;
constexpr std::uint16_t kNumberMask = 0x007F;

// Words of the command register.
constexpr std::uint16_t kApply = 0x0001;
constexpr std::uint16_t kResetCounter = 0x0003;
constexpr std::uint16_t kReadOut = 0x0005;
constexpr std::uint16_t kResendStored = 0x0100;
constexpr std::uint16_t kSubTrigger = 0x4000;
constexpr std::uint16_t kReset0 = 0x0000;
constexpr std::uint16_t kReset1 = 0x0010;
constexpr std::uint16_t kReset2 = 0x0020;
constexpr std::uint16_t kReset3 = 0x0030;

bool HasDirectForm(std::uint16_t number) {
  return number <= reg::kPinStatus || (number >= reg::kPinMode && number < reg::kPinMode + 4) ||
         number == reg::kLed || number == reg::kDigitalGain ||
         (number >= reg::kTriggerMode && number < reg::kReadOutDelay + 2) ||
         number == reg::kSoftwareStatus || number == reg::kCapabilities;
}

bool IsReadOnly(std::uint16_t block, std::uint32_t number) {
  return block == kMainBlock &&
         (number == reg::kFrameRateFraction || number == reg::kFrameRateInteger ||
          number == reg::kSoftwareStatus ||
          (number >= reg::kCapabilities && number < reg::kCapabilities + 4u));
}

// Where a request goes. Both forms use index 0 for the main block, so the value decides: bit 15
// marks a direct write, bit 7 a block read; a read without bit 7 is direct, a write without bit
// 15 goes to a block.
struct Target {
  std::uint16_t block = 0;
  std::uint16_t first = 0;
  bool valid = false;
};

Target Locate(const ControlRequest& request) {
  const bool in = request.device_to_host();
  const bool direct = in ? (request.value & kBlockRead) == 0 : (request.value & kDirectWrite) != 0;
  Target target;
  if (direct) {
    target.first = static_cast<std::uint16_t>(in ? request.value : request.value & ~kDirectWrite);
    target.valid = request.index == 0 && HasDirectForm(target.first);
  } else {
    target.block = request.index;
    target.first = request.value & kNumberMask;
    const std::uint16_t rest = request.value & static_cast<std::uint16_t>(~kNumberMask);
    target.valid = RegisterFile::HasBlock(target.block) && rest == (in ? kBlockRead : 0);
  }
  const std::size_t end = target.first + request.length / std::size_t{2};
  if (request.length == 0 || request.length % 2 != 0 || end > RegisterFile::kBlockSize) {
    target.valid = false;
  }
  return target;
}

}  // namespace

Answer CameraState::AccessRegisters(const ControlRequest& request, std::span<std::uint8_t> reply,
                                    std::uint16_t software_status) {
  const Target target = Locate(request);
  if (!target.valid || !HasRegisterAccess(config_.product_id)) return {};
  const std::uint16_t count = request.length / 2;
  Answer answer;
  answer.status = error::kNone;
  if (request.device_to_host()) {
    for (std::uint16_t i = 0; i < count; ++i) {
      const auto number = static_cast<std::uint16_t>(target.first + i);
      StoreLe16(reply, std::size_t{2} * i, ReadRegister(target.block, number, software_status));
    }
    answer.returned = request.length;
    return answer;
  }
  for (std::uint16_t i = 0; i < count; ++i) {
    if (IsReadOnly(target.block, target.first + std::uint32_t{i})) return {};
  }
  for (std::uint16_t i = 0; i < count; ++i) {
    const auto number = static_cast<std::uint16_t>(target.first + i);
    const StreamCommand command =
        WriteRegister(target.block, number, LoadLe16(request.data, std::size_t{2} * i));
    if (command != StreamCommand::kNone) answer.command = command;
  }
  answer.settings_changed = true;
  return answer;
}

std::uint16_t CameraState::ReadRegister(std::uint16_t block, std::uint16_t number,
                                        std::uint16_t software_status) const {
  if (block == kMainBlock) {
    if (number == reg::kSoftwareStatus) return software_status;
    if (number == reg::kPinStatus) {
      // Output pins read what was written, input pins the level outside.
      const std::uint16_t outputs = set_.registers.Active(reg::kPinDirection);
      const std::uint16_t written = set_.registers.Active(reg::kPinStatus);
      return static_cast<std::uint16_t>((written & outputs) | (pin_levels_ & ~outputs));
    }
    if (number == reg::kFrameRateFraction || number == reg::kFrameRateInteger) {
      const std::chrono::duration<double> period = CurrentTiming().period;
      const auto rate = static_cast<std::uint32_t>(std::lround(65536.0 / period.count()));
      return static_cast<std::uint16_t>(number == reg::kFrameRateInteger ? rate >> 16
                                                                         : rate & 0xFFFF);
    }
  }
  return set_.registers.Get(block, number);
}

StreamCommand CameraState::WriteRegister(std::uint16_t block, std::uint16_t number,
                                         std::uint16_t value) {
  set_.registers.Set(block, number, value);
  return block == kMainBlock && number == reg::kCommand ? RunCommand(value) : StreamCommand::kNone;
}

StreamCommand CameraState::RunCommand(std::uint16_t word) {
  switch (word) {
    case kApply:
      ApplyRegisters();
      return StreamCommand::kNone;
    case kResetCounter:
      return StreamCommand::kResetCounter;
    case kReadOut:
      return StreamCommand::kReadOut;
    case kResendStored:
      return StreamCommand::kResendStored;
    case kSubTrigger: {
      const TriggerMode trigger{set_.registers.Active32(reg::kTriggerMode)};
      return trigger.sub_trigger() ? StreamCommand::kSubTrigger : StreamCommand::kNone;
    }
    case kReset0:
      return StreamCommand::kClearBuffer;
    case kReset1:
      ResetRegisters();
      return StreamCommand::kNone;
    case kReset2:
      ResetSettings();
      return StreamCommand::kNone;
    case kReset3:
      set_ = WorkingSet(config_);
      return StreamCommand::kClearBufferAndResetCounter;
    default:
      return StreamCommand::kNone;
  }
}

}  // namespace vexa::simulator

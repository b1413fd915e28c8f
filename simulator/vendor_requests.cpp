// The vendor requests and their blocks.
#include <algorithm>
#include <bit>
#include <cmath>

#include "platform/bytes.hpp"
#include "simulator/camera_state.hpp"

namespace vexa::simulator {
namespace {

constexpr std::uint8_t kOut = 0x40;  // vendor request, host to device
constexpr std::uint8_t kIn = 0xC0;   // vendor request, device to host

constexpr std::uint8_t kInformation = 0x11;
constexpr std::uint8_t kScan = 0x12;
constexpr std::uint8_t kFormat = 0x13;
constexpr std::uint8_t kClearBuffer = 0x20;
constexpr std::uint8_t kGainAndExposure = 0x21;
constexpr std::uint8_t kClock = 0x22;
constexpr std::uint8_t kWhiteBalance = 0x23;
constexpr std::uint8_t kTrigger = 0x30;
constexpr std::uint8_t kRegisters = 0x80;
constexpr std::uint8_t kSettingCommand = 0x81;

constexpr std::size_t kBlockSize = 64;
constexpr std::uint16_t kNewFirmware = 0x0100;  // knows camera-setting commands
constexpr std::uint32_t kLowestFrequency = 1'000'000;
constexpr std::uint32_t kHighestFrequency = 400'000'000;

bool HasHeader(std::span<const std::uint8_t> block, std::size_t size, std::uint8_t request) {
  return block.size() == size && block[0] == size && block[1] == request;
}

Answer Accepted(bool settings_changed, StreamCommand command = StreamCommand::kNone) {
  return {error::kNone, 0, command, settings_changed};
}

}  // namespace

Answer CameraState::Handle(const ControlRequest& request, std::span<std::uint8_t> reply,
                           std::uint16_t software_status) {
  if (request.type != kIn && request.type != kOut) return {};
  if (CameraMemory::Serves(request.request)) {
    Answer answer;
    answer.status = memory_.Transfer(request, reply, &answer.returned);
    return answer;
  }
  if (request.request == kRegisters) return AccessRegisters(request, reply, software_status);
  if (request.value != 0 || request.index != 0) return {};
  return request.device_to_host() ? ReadBlock(request, reply) : WriteBlock(request);
}

Answer CameraState::ReadBlock(const ControlRequest& request, std::span<std::uint8_t> reply) const {
  std::array<std::uint8_t, kBlockSize> block{};
  std::size_t size = kBlockSize;
  switch (request.request) {
    case kInformation:
      InformationBlock(block);
      break;
    case kScan:
      ScanBlock(block);
      break;
    case kFormat:
      FormatBlock(block);
      size = 6;
      break;
    case kGainAndExposure:
      block = set_.gain_block;
      break;
    case kClock:
      ClockBlock(block);
      size = 10;
      break;
    case kWhiteBalance:
      WhiteBalanceBlock(block);
      break;
    default:
      return {};
  }
  Answer answer = Accepted(false);
  answer.returned = static_cast<std::uint32_t>(std::min<std::size_t>(size, request.length));
  std::copy_n(block.begin(), answer.returned, reply.begin());
  return answer;
}

Answer CameraState::WriteBlock(const ControlRequest& request) {
  const auto outcome = [](Status status) {
    Answer answer = Accepted(status.ok());
    answer.status = status;
    return answer;
  };
  switch (request.request) {
    case kScan:
      return outcome(SetScan(request.data));
    case kFormat:
      return outcome(SetFormat(request.data));
    case kClock:
      return outcome(SetClock(request.data));
    case kGainAndExposure:
      return outcome(SetGainAndExposure(request.data));
    case kClearBuffer:
      return request.length == 0 ? Accepted(false, StreamCommand::kClearBuffer) : Answer{};
    case kTrigger: {
      if (request.length != 0) return {};
      const TriggerMode trigger{set_.registers.Active32(reg::kTriggerMode)};
      return Accepted(false, trigger.software() && !trigger.sub_trigger() ? StreamCommand::kTrigger
                                                                          : StreamCommand::kNone);
    }
    case kSettingCommand:
      if (config_.firmware < kNewFirmware || request.length != 2) return {};
      RunSettingCommand(LoadLe16(request.data, 0));
      return Accepted(true);
    default:
      return {};
  }
}

void CameraState::InformationBlock(std::span<std::uint8_t> block) const {
  StoreLe16(block, 0, 0x1140);  // length and request code, as in the other blocks
  StoreLe16(block, 2, config_.version_word_a);
  StoreLe16(block, 4, config_.product_id);
  StoreLe16(block, 6, config_.variant);
  StoreLe16(block, 8, config_.firmware);
  StoreLe16(block, 10, config_.colour_array);
  StoreLe16(block, 12, config_.header_size);
  StoreLe32(block, 14, config_.scan_settings_tag);
  StoreLe32(block, 18, config_.transfer_formats);
  StoreLe16(block, 26, config_.scan_modes);
  StoreLe32(block, 40, config_.clock_modes);
  StoreLe32(block, 56, config_.max_width);
  StoreLe32(block, 60, config_.max_height);
}

void CameraState::ScanBlock(std::span<std::uint8_t> block) const {
  const ScanRequest scan = set_.scan.Current();
  const LineTiming timing = set_.scan.Timing();
  block[0] = kBlockSize;
  block[1] = kScan;
  StoreLe32(block, 2, config_.scan_settings_tag);
  StoreLe32(block, 6, scan.width);
  StoreLe32(block, 10, scan.height);
  StoreLe32(block, 14, scan.offset_x);
  StoreLe32(block, 18, scan.offset_y);
  StoreLe16(block, 22, scan.mode);
  StoreLe16(block, 26, timing.lines_per_frame);
  StoreLe16(block, 28, timing.clocks_per_line);
  StoreLe16(block, 30, MaxGainValue(config_.capabilities));
  if (!Has(48)) return;
  StoreLe32(block, 36, timing.shutter_max_clock);
  StoreLe32(block, 44, timing.short_exposure_lines);
  StoreLe32(block, 52, timing.long_exposure_lines);
}

void CameraState::FormatBlock(std::span<std::uint8_t> block) const {
  block[0] = 6;
  block[1] = kFormat;
  StoreLe32(block, 2, set_.transfer_format);
}

void CameraState::ClockBlock(std::span<std::uint8_t> block) const {
  block[0] = 10;
  block[1] = kClock;
  StoreLe32(block, 2, set_.clock_mode);
  StoreLe32(block, 6, set_.frequency);
}

void CameraState::WhiteBalanceBlock(std::span<std::uint8_t> block) const {
  block[0] = kBlockSize;
  block[1] = kWhiteBalance;
  const std::array<std::uint16_t, 4> gains = BalancedGains(config_);
  for (std::size_t i = 0; i < gains.size(); ++i) StoreLe16(block, 2 + 2 * i, gains[i]);
}

Status CameraState::SetScan(std::span<const std::uint8_t> block) {
  if (!HasHeader(block, kBlockSize, kScan)) return error::kGeneralFailure;
  if (LoadLe32(block, 2) != config_.scan_settings_tag) return error::kGeneralFailure;
  return set_.scan.Set({LoadLe32(block, 6), LoadLe32(block, 10), LoadLe32(block, 14),
                        LoadLe32(block, 18), LoadLe16(block, 22)});
}

Status CameraState::SetFormat(std::span<const std::uint8_t> block) {
  if (!HasHeader(block, 6, kFormat)) return error::kGeneralFailure;
  const std::uint32_t format = LoadLe32(block, 2);
  if (!std::has_single_bit(format) || (format & config_.transfer_formats) == 0) {
    return error::kGeneralFailure;
  }
  set_.transfer_format = format;
  return error::kNone;
}

Status CameraState::SetClock(std::span<const std::uint8_t> block) {
  if (!HasHeader(block, 10, kClock)) return error::kGeneralFailure;
  const std::uint32_t mode = LoadLe32(block, 2);
  const std::uint32_t frequency = LoadLe32(block, 6);
  if (!std::has_single_bit(mode) || (mode & config_.clock_modes) == 0 ||
      frequency < kLowestFrequency || frequency > kHighestFrequency) {
    return error::kGeneralFailure;
  }
  set_.clock_mode = mode;
  set_.frequency = frequency;
  return error::kNone;
}

Status CameraState::SetGainAndExposure(std::span<const std::uint8_t> block) {
  if (block.size() != kBlockSize || LoadLe16(block, 6) > MaxGainValue(config_.capabilities)) {
    return error::kGeneralFailure;
  }
  std::ranges::copy(block, set_.gain_block.begin());
  return error::kNone;
}

}  // namespace vexa::simulator

#include "settings/white_balance.hpp"

#include <algorithm>
#include <array>
#include <mutex>

#include "imaging/auto_white_balance.hpp"
#include "platform/bytes.hpp"

namespace vexa::settings {
namespace {

constexpr std::size_t kDefaultBlockSize = 64;
constexpr std::size_t kDefaultGainsOffset = 2;

constexpr std::uint8_t kFirstGainRegister = 64;  // R, Gr, Gb, B
constexpr std::uint8_t kLastGainRegister = 67;
constexpr std::uint8_t kModeRegister = 68;
constexpr auto kMainBlock = static_cast<std::uint16_t>(device::RegisterBlock::kMain);

constexpr std::uint16_t kUnity = 128;
constexpr WhiteBalanceGains kUnityGains{kUnity, kUnity, kUnity, kUnity};

WhiteBalanceGains LoadGains(std::span<const std::uint8_t> bytes, std::size_t offset) {
  return {.red = LoadLe16(bytes, offset),
          .green_red = LoadLe16(bytes, offset + 2),
          .green_blue = LoadLe16(bytes, offset + 4),
          .blue = LoadLe16(bytes, offset + 6)};
}

void BuildTable(std::uint16_t gain, imaging::LookUpTable* table) {
  for (std::uint32_t i = 0; i < table->size(); ++i) {
    (*table)[i] = static_cast<std::uint8_t>(std::min(i * gain / kUnity, 255U));
  }
}

}  // namespace

Status WhiteBalance::SetUp() {
  std::array<std::uint8_t, kDefaultBlockSize> block{};
  Status status = channel_.Read(device::Request::kWhiteBalanceDefaults, block);
  if (!status.ok()) {
    return status;
  }
  in_camera_ = identity_.Has(device::Function::kWhiteBalance);
  if (!in_camera_) {
    status = SetGains(LoadGains(block, kDefaultGainsOffset));
    return status.ok() ? SetMode(white_balance_mode::kManual) : status;
  }
  const std::lock_guard lock(mutex_);
  status = ReadGains(&gains_);
  return status.ok() ? ReadMode(&mode_) : status;
}

Status WhiteBalance::SetGains(const WhiteBalanceGains& gains) {
  const std::lock_guard lock(mutex_);
  gains_ = gains;
  if (in_camera_) {
    std::array<std::uint8_t, 8> data{};
    StoreLe16(data, 0, gains.red);
    StoreLe16(data, 2, gains.green_red);
    StoreLe16(data, 4, gains.green_blue);
    StoreLe16(data, 6, gains.blue);
    return registers_.WriteBlock(kMainBlock, kFirstGainRegister, kLastGainRegister, data.data());
  }
  BuildTable(gains.red, &tables_[imaging::kBayerR]);
  BuildTable(gains.green_red, &tables_[imaging::kBayerGr]);
  BuildTable(gains.green_blue, &tables_[imaging::kBayerGb]);
  BuildTable(gains.blue, &tables_[imaging::kBayerB]);
  return {};
}

Status WhiteBalance::GetGains(WhiteBalanceGains* gains) {
  if (in_camera_) {
    return ReadGains(gains);
  }
  const std::lock_guard lock(mutex_);
  *gains = gains_;
  return {};
}

Status WhiteBalance::SetMode(std::uint32_t mode) {
  const auto low_byte = static_cast<std::uint8_t>(mode & 0xFF);
  if (in_camera_) {
    return registers_.WriteAndApply(kModeRegister, low_byte);
  }
  const std::lock_guard lock(mutex_);
  mode_ = low_byte;
  return {};
}

Status WhiteBalance::GetMode(std::uint8_t* mode) {
  if (in_camera_) {
    return ReadMode(mode);
  }
  const std::lock_guard lock(mutex_);
  *mode = mode_;
  return {};
}

Status WhiteBalance::Correct(std::uint32_t width, std::uint32_t height, std::uint16_t color_array,
                             std::uint8_t* frame) {
  if (in_camera_) {
    return {};
  }
  const std::lock_guard lock(mutex_);
  Status status;
  if (mode_ == white_balance_mode::kEveryFrame || mode_ == white_balance_mode::kOnce) {
    status = FindGains(width, height, color_array, frame);
    mode_ = mode_ == white_balance_mode::kOnce ? white_balance_mode::kManual : mode_;
  }
  if (mode_ != white_balance_mode::kOff && gains_ != kUnityGains) {
    imaging::ApplyBayerTables(tables_, width, height, color_array, frame);
  }
  return status;
}

Status WhiteBalance::FindGains(std::uint32_t width, std::uint32_t height, std::uint16_t color_array,
                               const std::uint8_t* frame) {
  imaging::ColorGains found;
  const Status status = imaging::FindColorGains(width, height, color_array, frame, &found);
  if (!status.ok()) {
    return status;
  }
  if (found.red != gains_.red) {
    gains_.red = found.red;
    BuildTable(found.red, &tables_[imaging::kBayerR]);
  }
  if (found.blue != gains_.blue) {
    gains_.blue = found.blue;
    BuildTable(found.blue, &tables_[imaging::kBayerB]);
  }
  return {};
}

Status WhiteBalance::ReadGains(WhiteBalanceGains* gains) {
  *gains = {};
  std::array<std::uint8_t, 8> data{};
  const Status status =
      registers_.ReadBlock(kMainBlock, kFirstGainRegister, kLastGainRegister, data.data());
  if (status.ok()) {
    *gains = LoadGains(data, 0);
  }
  return status;
}

Status WhiteBalance::ReadMode(std::uint8_t* mode) {
  *mode = 0;
  std::uint16_t word = 0;
  const Status status = registers_.Read(kModeRegister, &word);
  if (status.ok()) {
    *mode = static_cast<std::uint8_t>(word & 0xFF);
  }
  return status;
}

}  // namespace vexa::settings

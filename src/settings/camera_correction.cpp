#include "settings/camera_correction.hpp"

#include <array>

#include "platform/bytes.hpp"

namespace vexa::settings {
namespace {

using device::Function;

constexpr std::uint8_t kDefectModeRegister = 78;
constexpr auto kDefectBlock = static_cast<std::uint16_t>(device::RegisterBlock::kDefectPixels);

struct CorrectionRegister {
  Function function;
  std::uint8_t number;
  std::uint16_t max_value;
};

constexpr CorrectionRegister RegisterOf(Correction correction) {
  switch (correction) {
    case Correction::kBinningSum:
      return {Function::kBinningSum, 46, 1};
    case Correction::kGamma:
      return {Function::kCameraGamma, 77, 63};
    case Correction::kDigitalClamp:
      break;
  }
  return {Function::kDigitalClamp, 21, 255};
}

std::uint16_t LowWord(std::uint32_t value) { return static_cast<std::uint16_t>(value & 0xFFFF); }

// Two registers per entry: column, then row.
std::uint32_t ColumnRegister(std::uint16_t index) { return 2U * index; }

}  // namespace

Status CameraCorrection::Set(Correction correction, std::uint32_t value) {
  const CorrectionRegister target = RegisterOf(correction);
  if (!identity_.Has(target.function) || LowWord(value) > target.max_value) {
    return error::kInvalidParameter;
  }
  return registers_.WriteAndApply(target.number, LowWord(value));
}

Status CameraCorrection::Get(Correction correction, std::uint16_t* value) {
  *value = 0;
  const CorrectionRegister target = RegisterOf(correction);
  return identity_.Has(target.function) ? registers_.Read(target.number, value) : Status();
}

std::uint16_t CameraCorrection::DefectCount() const {
  return identity_.Has(Function::kDefectPixelCorrection) ? kDefectTableSize : std::uint16_t{0};
}

Status CameraCorrection::SetDefectMode(std::uint32_t mode) {
  return DefectCount() != 0 ? registers_.WriteAndApply(kDefectModeRegister, LowWord(mode))
                            : error::kInvalidParameter;
}

Status CameraCorrection::GetDefectMode(std::uint16_t* mode) {
  *mode = 0;
  return DefectCount() != 0 ? registers_.Read(kDefectModeRegister, mode) : Status();
}

Status CameraCorrection::SetDefect(std::uint32_t index, DefectPosition position) {
  if (LowWord(index) >= DefectCount()) {
    return error::kInvalidParameter;
  }
  const Status status = WriteDefect(LowWord(index), position);
  return status.ok() ? registers_.SendCommand(device::Command::kApply) : status;
}

Status CameraCorrection::GetDefect(std::uint32_t index, DefectPosition* position) {
  if (LowWord(index) >= DefectCount()) {
    return error::kInvalidParameter;
  }
  std::array<std::uint8_t, 4> data{};
  const std::uint32_t column = ColumnRegister(LowWord(index));
  const Status status = registers_.ReadBlock(kDefectBlock, column, column + 1, data.data());
  if (status.ok()) {
    *position = {LoadLe16(data, 0), LoadLe16(data, 2)};
  }
  return status;
}

Status CameraCorrection::LoadDefectTable(std::span<const imaging::BrightPixel> pixels) {
  if (DefectCount() == 0) {
    return error::kInvalidParameter;
  }
  Status status;
  for (std::uint16_t i = 0; i < DefectCount() && status.ok(); ++i) {
    status = WriteDefect(i, i < pixels.size()
                                ? DefectPosition{LowWord(pixels[i].x), LowWord(pixels[i].y)}
                                : kUnusedEntry);
  }
  // What was written counts, whether or not that is all.
  return registers_.SendCommand(device::Command::kApply);
}

Status CameraCorrection::WriteDefect(std::uint16_t index, DefectPosition position) {
  std::array<std::uint8_t, 4> data{};
  StoreLe16(data, 0, position.x);
  StoreLe16(data, 2, position.y);
  const std::uint32_t column = ColumnRegister(index);
  return registers_.WriteBlock(kDefectBlock, column, column + 1, data.data());
}

}  // namespace vexa::settings

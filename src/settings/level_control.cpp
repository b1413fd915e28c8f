#include "settings/level_control.hpp"

#include <array>
#include <mutex>

#include "platform/bytes.hpp"

namespace vexa::settings {
namespace {

using device::Function;

constexpr std::uint8_t kMaxExposureRegister = 69;  // 32 bits, low word first; so is the next
constexpr std::uint8_t kMinExposureRegister = 71;
constexpr std::uint8_t kModeRegister = 73;
constexpr std::uint8_t kTargetRegister = 74;
constexpr std::uint8_t kMaxGainRegister = 75;
constexpr std::uint8_t kMinGainRegister = 76;

constexpr auto kMainBlock = static_cast<std::uint16_t>(device::RegisterBlock::kMain);

Status WriteRegister(device::Registers& registers, std::uint8_t number, std::uint16_t value) {
  return registers.WriteAndApply(number, value);
}

Status WriteRegister(device::Registers& registers, std::uint8_t number, std::uint32_t value) {
  std::array<std::uint8_t, 4> data{};
  StoreLe32(data, 0, value);
  const Status status = registers.WriteBlock(kMainBlock, number, number + 1U, data.data());
  return status.ok() ? registers.SendCommand(device::Command::kApply) : status;
}

// On failure the value stays as it is.
Status ReadRegister(device::Registers& registers, std::uint8_t number, std::uint16_t* value) {
  return registers.Read(number, value);
}

Status ReadRegister(device::Registers& registers, std::uint8_t number, std::uint32_t* value) {
  std::array<std::uint8_t, 4> data{};
  const Status status = registers.ReadBlock(kMainBlock, number, number + 1U, data.data());
  if (status.ok()) {
    *value = LoadLe32(data, 0);
  }
  return status;
}

}  // namespace

bool LevelControl::CameraHasGainControl() const {
  return identity_.Has(Function::kCameraGainControl);
}

bool LevelControl::CameraHasExposureControl() const {
  return identity_.Has(Function::kCameraExposureControl);
}

bool LevelControl::CameraHasControl() const {
  return CameraHasGainControl() || CameraHasExposureControl();
}

template <typename Value>
void LevelControl::Store(Value LevelState::*field, Value value) {
  const std::lock_guard lock(mutex_);
  state_.*field = value;
}

template <typename Value>
Status LevelControl::Set(Value LevelState::*field, Value value, bool in_camera,
                         std::uint8_t register_number) {
  Store(field, value);
  return in_camera ? WriteRegister(registers_, register_number, value) : Status();
}

template <typename Value>
Status LevelControl::Get(Value LevelState::*field, Value* value, bool in_camera,
                         std::uint8_t register_number) {
  {
    const std::lock_guard lock(mutex_);
    *value = state_.*field;
  }
  return in_camera ? ReadRegister(registers_, register_number, value) : Status();
}

template <typename Value>
Status LevelControl::Load(Value LevelState::*field, std::uint8_t register_number) {
  Value value{};
  const Status status = ReadRegister(registers_, register_number, &value);
  if (status.ok()) {
    Store(field, value);
  }
  return status;
}

Status LevelControl::Reset() {
  const std::lock_guard lock(mutex_);
  state_ = {.gain = state_.gain,
            .exposure = state_.exposure,
            .max_gain = camera_.GetMaxGain(),
            .min_gain = camera_.GetMinGain()};
  return camera_.GetGainAndExposureClock(&state_.gain, &state_.exposure);
}

Status LevelControl::LoadCameraParameters() {
  Status status;
  if (CameraHasControl()) {
    status = Load(&LevelState::target, kTargetRegister);
  }
  if (status.ok() && CameraHasGainControl()) {
    status = Load(&LevelState::max_gain, kMaxGainRegister);
    if (status.ok()) {
      status = Load(&LevelState::min_gain, kMinGainRegister);
    }
  }
  if (status.ok() && CameraHasExposureControl()) {
    status = Load(&LevelState::max_exposure, kMaxExposureRegister);
    if (status.ok()) {
      status = Load(&LevelState::min_exposure, kMinExposureRegister);
    }
  }
  return status;
}

void LevelControl::NoteGain(std::uint16_t gain) { Store(&LevelState::gain, gain); }

void LevelControl::NoteExposureClock(std::uint32_t exposure_clock) {
  Store(&LevelState::exposure, exposure_clock);
}

Status LevelControl::SetMode(std::uint8_t mode) {
  const auto here = static_cast<std::uint8_t>(mode & 0xF);
  const auto in_camera = static_cast<std::uint16_t>(mode >> 4);
  if (in_camera != 0 && (here != 0 || !CameraHasControl())) {
    return error::kInvalidParameter;
  }
  const Status status =
      CameraHasControl() ? WriteRegister(registers_, kModeRegister, in_camera) : Status();
  Store(&LevelState::mode, here);
  return status;
}

Status LevelControl::GetMode(std::uint8_t* mode) {
  std::uint16_t in_camera = 0;
  {
    const std::lock_guard lock(mutex_);
    *mode = state_.mode;
  }
  const Status status =
      CameraHasControl() ? ReadRegister(registers_, kModeRegister, &in_camera) : Status();
  *mode = static_cast<std::uint8_t>((*mode | in_camera << 4) & 0xFF);
  return status;
}

Status LevelControl::SetTargetLevel(std::uint16_t level) {
  return Set(&LevelState::target, level, CameraHasControl(), kTargetRegister);
}

Status LevelControl::GetTargetLevel(std::uint16_t* level) {
  return Get(&LevelState::target, level, CameraHasControl(), kTargetRegister);
}

Status LevelControl::SetMaxGain(std::uint16_t gain) {
  return Set(&LevelState::max_gain, gain, CameraHasGainControl(), kMaxGainRegister);
}

Status LevelControl::GetMaxGain(std::uint16_t* gain) {
  return Get(&LevelState::max_gain, gain, CameraHasGainControl(), kMaxGainRegister);
}

Status LevelControl::SetMinGain(std::uint16_t gain) {
  return Set(&LevelState::min_gain, gain, CameraHasGainControl(), kMinGainRegister);
}

Status LevelControl::GetMinGain(std::uint16_t* gain) {
  return Get(&LevelState::min_gain, gain, CameraHasGainControl(), kMinGainRegister);
}

Status LevelControl::SetMaxExposureClock(std::uint32_t exposure_clock) {
  return Set(&LevelState::max_exposure, exposure_clock, CameraHasExposureControl(),
             kMaxExposureRegister);
}

Status LevelControl::GetMaxExposureClock(std::uint32_t* exposure_clock) {
  return Get(&LevelState::max_exposure, exposure_clock, CameraHasExposureControl(),
             kMaxExposureRegister);
}

Status LevelControl::SetMinExposureClock(std::uint32_t exposure_clock) {
  return Set(&LevelState::min_exposure, exposure_clock, CameraHasExposureControl(),
             kMinExposureRegister);
}

Status LevelControl::GetMinExposureClock(std::uint32_t* exposure_clock) {
  return Get(&LevelState::min_exposure, exposure_clock, CameraHasExposureControl(),
             kMinExposureRegister);
}

Status LevelControl::Step(std::uint16_t level, std::uint32_t* changed) {
  *changed = 0;
  const std::lock_guard lock(mutex_);
  if (state_.mode == 0) {
    return {};
  }
  *changed = AdjustLevel(state_, camera_, level);
  state_.adjusting = *changed != 0;
  if (state_.adjusting) {
    return camera_.SetGainAndExposureClock(state_.gain, state_.exposure);
  }
  if (EndsWhenSettled(state_.mode)) {
    state_.mode = 0;
  }
  return {};
}

}  // namespace vexa::settings

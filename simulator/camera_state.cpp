// Working set, and the settings that follow from it.
#include "simulator/camera_state.hpp"

#include <algorithm>
#include <bit>
#include <cmath>

#include "platform/bytes.hpp"

namespace vexa::simulator {
namespace {

constexpr double kBlackStep = 4.0;    // 14-bit counts per digital clamp step (12-bit counts)
constexpr double kGammaSteps = 32.0;  // camera gamma value per unit of the exponent's inverse

constexpr unsigned kTriggerPin = 0;
constexpr unsigned kSubTriggerPin = 1;
constexpr unsigned kPins = 4;
constexpr std::uint16_t kPinStandardFunction = 0;

std::uint32_t LowestBit(std::uint32_t mask) { return mask == 0 ? 1 : mask & (~mask + 1); }

std::chrono::nanoseconds Seconds(double seconds) {
  return std::chrono::duration_cast<std::chrono::nanoseconds>(
      std::chrono::duration<double>(seconds));
}

}  // namespace

CameraState::WorkingSet::WorkingSet(const CameraConfig& config)
    : scan(config),
      registers(config),
      clock_mode(LowestBit(config.clock_modes)),
      frequency(NominalFrequency(config)),
      transfer_format(LowestBit(config.transfer_formats)) {
  gain_block[0] = 0x40;
  gain_block[1] = 0x21;
  // Half a frame leaves room to go both ways.
  StoreLe16(gain_block, 2, static_cast<std::uint16_t>(scan.Timing().lines_per_frame / 2));
}

CameraState::CameraState(const CameraConfig& config)
    : config_(config), memory_(config), set_(config), stored_(set_) {
  nominal_exposure_ = set_.scan.ExposureSeconds(ExposureClock(), set_.frequency);
}

bool CameraState::Has(unsigned capability) const {
  return (config_.capabilities >> capability & 1) != 0;
}

std::uint32_t CameraState::ExposureClock() const {
  const std::uint32_t lines =
      LoadLe16(set_.gain_block, 2) | std::uint32_t{LoadLe16(set_.gain_block, 10)} << 16;
  const std::uint64_t clock =
      std::uint64_t{lines} * (set_.scan.Timing().shutter_max_clock + std::uint64_t{1}) +
      LoadLe16(set_.gain_block, 4);
  return static_cast<std::uint32_t>(std::min<std::uint64_t>(clock, 0xFFFFFFFF));
}

std::array<double, 4> CameraState::CurrentBalance() const {
  // Off leaves the samples alone, manual takes the registers, and the automatic modes find what
  // makes grey grey.
  std::array<double, 4> balance{1.0, 1.0, 1.0, 1.0};
  const std::uint16_t mode = set_.registers.Active(reg::kWhiteBalanceMode) & 0xFF;
  if (!Has(24) || config_.colour_array == 1 || mode == 0) return balance;
  const std::array<std::uint16_t, 4> balanced = BalancedGains(config_);
  for (std::uint16_t i = 0; i < 4; ++i) {
    const std::uint16_t gain =
        mode == 1 ? set_.registers.Active(static_cast<std::uint16_t>(reg::kWhiteBalanceGain + i))
                  : balanced[i];
    balance[i] = gain / 128.0;
  }
  return balance;
}

Tone CameraState::CurrentTone() const {
  Tone tone;
  const RegisterFile& registers = set_.registers;
  tone.exposure = set_.scan.ExposureSeconds(ExposureClock(), set_.frequency) / nominal_exposure_;
  const double decibels = GainDecibels(config_.capabilities, LoadLe16(set_.gain_block, 6));
  tone.gain = std::pow(10.0, decibels / 20) * registers.Active(reg::kDigitalGain) / 256.0;
  if (Has(61) && registers.Active(reg::kBinningSum) == 1) {
    const Geometry geometry = set_.scan.FrameGeometry();
    tone.gain *= double{1} * geometry.bin_x * geometry.bin_y;
  }
  tone.balance = CurrentBalance();
  if (Has(55)) tone.black_level = kBlackStep * (registers.Active(reg::kDigitalClamp) & 0xFF);
  if (Has(57)) tone.gamma = 1 / (1 + (registers.Active(reg::kGamma) & 0x3F) / kGammaSteps);
  return tone;
}

FrameTiming CameraState::CurrentTiming() const {
  const LineTiming lines = set_.scan.Timing();
  const double frequency = set_.frequency;
  const double frame = double{1} * lines.lines_per_frame * lines.clocks_per_line / frequency;
  const double exposure = set_.scan.ExposureSeconds(ExposureClock(), set_.frequency);
  // A longer exposure lengthens the frame, or keeps the sensor busy for whole frames.
  const double frames = std::max(1.0, std::ceil(exposure / frame - 1e-9));
  FrameTiming timing;
  timing.period =
      Seconds(set_.scan.ExposureLengthensFrame() ? std::max(frame, exposure) : frames * frame);
  timing.exposure = Seconds(exposure);
  timing.read_out =
      Seconds(double{1} * set_.scan.Current().height * lines.clocks_per_line / frequency);
  timing.exposure_delay = std::chrono::microseconds(set_.registers.Active32(reg::kExposureDelay));
  timing.read_out_delay = std::chrono::microseconds(set_.registers.Active32(reg::kReadOutDelay));
  return timing;
}

CameraSettings CameraState::Settings() const {
  CameraSettings settings;
  settings.image.geometry = set_.scan.FrameGeometry();
  const std::uint16_t mirror = set_.registers.Active(reg::kMirror);
  settings.image.geometry.mirror_x = Has(22) && (mirror & 1) != 0;
  settings.image.geometry.mirror_y = Has(23) && (mirror & 2) != 0;
  settings.image.tone = CurrentTone();
  settings.image.transfer_format = set_.transfer_format;
  settings.image.scene = config_.scene;
  if (Has(59) && set_.registers.Active(reg::kDefectMode) != 0) {
    settings.image.corrected_defects = set_.registers.DefectTable();
  }
  settings.timing = CurrentTiming();
  settings.trigger.word = set_.registers.Active32(reg::kTriggerMode);
  settings.exposure_clock = ExposureClock();
  settings.gain = LoadLe16(set_.gain_block, 6);
  return settings;
}

void CameraState::SetScene(std::shared_ptr<const Picture> scene) {
  config_.scene = std::move(scene);
}

std::uint16_t CameraState::PeekRegister(std::uint16_t block, std::uint16_t number) const {
  return ReadRegister(block, number, 0);
}

bool CameraState::PokeRegister(std::uint16_t block, std::uint16_t number, std::uint16_t value) {
  if (!set_.registers.Set(block, number, value)) return false;
  ApplyRegisters();
  return true;
}

StreamCommand CameraState::SetPin(unsigned pin, bool high) {
  if (pin >= kPins) return StreamCommand::kNone;
  const auto bit = static_cast<std::uint16_t>(1u << pin);
  const bool was_high = (pin_levels_ & bit) != 0;
  pin_levels_ = static_cast<std::uint16_t>(high ? pin_levels_ | bit : pin_levels_ & ~bit);
  const RegisterFile& registers = set_.registers;
  const bool output = (registers.Active(reg::kPinDirection) & bit) != 0;
  const bool falling_edge = (registers.Active(reg::kPinPolarity) & bit) != 0;
  const auto mode = registers.Active(static_cast<std::uint16_t>(reg::kPinMode + pin));
  if (output || mode != kPinStandardFunction || was_high == high || high == falling_edge) {
    return StreamCommand::kNone;
  }
  const TriggerMode trigger{registers.Active32(reg::kTriggerMode)};
  if (pin == kTriggerPin && !trigger.software() && !trigger.sub_trigger()) {
    return StreamCommand::kTrigger;
  }
  return pin == kSubTriggerPin && trigger.sub_trigger() ? StreamCommand::kSubTrigger
                                                        : StreamCommand::kNone;
}

void CameraState::LosePower() {
  memory_.LosePower();
  set_ = WorkingSet(config_);
}

void CameraState::ApplyRegisters() {
  set_.registers.Apply();
  set_.scan.SetSkipBin({set_.registers.Active(reg::kSkipBin)});
  set_.scan.SetVerticalBlanking(Has(21) ? set_.registers.Active(reg::kVerticalBlanking) : 0);
}

void CameraState::ResetRegisters() {
  set_.registers = RegisterFile(config_);
  ApplyRegisters();
}

void CameraState::ResetSettings() {
  RegisterFile registers = set_.registers;
  set_ = WorkingSet(config_);
  set_.registers = registers;
  ApplyRegisters();
}

void CameraState::RunSettingCommand(std::uint16_t command) {
  switch (command) {
    case 0:
      set_ = WorkingSet(config_);
      break;
    case 1:
      stored_ = set_;
      break;
    case 2:
      set_ = stored_;
      break;
    default:
      break;
  }
}

}  // namespace vexa::simulator

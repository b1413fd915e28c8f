#include "camera/vexa_camera.hpp"

#include <array>

#include "device/discovery.hpp"
#include "platform/bytes.hpp"
#include "settings/gain_curve.hpp"

namespace vexa::camera {
namespace {

// First firmware that knows the camera-setting command.
constexpr std::uint16_t kCameraSettingFirmware = 0x0100;

}  // namespace

CVexaCamera::CVexaCamera()
    : transfer_({.channel = channel_,
                 .identity = identity_,
                 .timing = timing_,
                 .mirror = mirror_,
                 .time_outs = time_outs_,
                 .triggers = triggers_,
                 .snapshot = snapshot_,
                 .notifier = notifier_},
                {.timing = timing_,
                 .exposure = exposure_,
                 .format = transfer_format_,
                 .trigger_io = trigger_io_}) {}

CVexaCamera::~CVexaCamera() = default;

Status CVexaCamera::Open(platform::Driver& driver) {
  Status status = device::OpenFirstFreeCamera(driver, channel_, identity_);
  if (!status.ok()) {
    return status;
  }
  transfer_.set_max_transfer_size(device::ReadMaxTransferSize());
  status = white_balance_.SetUp();
  if (!status.ok()) {
    return status;
  }
  // Reloading repeats this when the timing is known, and reports a failure.
  static_cast<void>(level_control_.Reset());
  return ReloadSettings();
}

Status CVexaCamera::ReloadSettings() {
  Status status = mirror_.Refresh();
  if (status.ok()) {
    status = timing_.Refresh();
  }
  if (status.ok()) {
    status = transfer_format_.Refresh();
  }
  if (status.ok()) {
    status = level_control_.Reset();
  }
  if (status.ok()) {
    status = level_control_.LoadCameraParameters();
  }
  return status;
}

Status CVexaCamera::SendCameraSetting(std::uint16_t command) {
  if (identity_.firmware() < kCameraSettingFirmware) {
    return error::kInvalidParameter;
  }
  std::array<std::uint8_t, 2> data{};
  StoreLe16(data, 0, command);
  const Status status = channel_.Write(device::Request::kCameraSetting, data);
  return status.ok() ? ReloadSettings() : status;
}

Status CVexaCamera::SetGain(std::uint16_t gain) {
  const Status status = exposure_.SetGain(gain);
  if (status.ok()) {
    level_control_.NoteGain(gain);
  }
  return status;
}

Status CVexaCamera::SetExposureClock(std::uint32_t exposure_clock) {
  const Status status = exposure_.SetExposureClock(exposure_clock);
  if (status.ok()) {
    level_control_.NoteExposureClock(exposure_clock);
  }
  return status;
}

output::CEasyDraw& CVexaCamera::easy_draw() {
  if (easy_draw_ == nullptr) {
    easy_draw_ = std::make_unique<output::CEasyDraw>();
  }
  return *easy_draw_;
}

imaging::CNoiseReduction& CVexaCamera::noise_reduction() {
  if (noise_reduction_ == nullptr) {
    noise_reduction_ = std::make_unique<imaging::CNoiseReduction>();
  }
  return *noise_reduction_;
}

Status CVexaCamera::SetGainAndExposureClock(std::uint16_t gain, std::uint32_t exposure_clock) {
  return exposure_.SetGainAndExposureClock(gain, exposure_clock);
}

Status CVexaCamera::GetGainAndExposureClock(std::uint16_t* gain, std::uint32_t* exposure_clock) {
  return exposure_.GetGainAndExposureClock(gain, exposure_clock);
}

std::uint16_t CVexaCamera::GetMaxGain() { return timing_.Settings().max_gain(); }

std::uint16_t CVexaCamera::GetMinGain() { return timing_.Settings().min_gain(); }

float CVexaCamera::GainToDecibel(std::uint32_t gain) {
  return settings::GainToDecibel(settings::GainCurveOf(identity_),
                                 static_cast<std::uint16_t>(gain & 0xFFFF));
}

std::uint16_t CVexaCamera::DecibelToGain(float decibel) {
  return settings::DecibelToGain(settings::GainCurveOf(identity_), decibel, GetMaxGain());
}

std::uint32_t CVexaCamera::GetMaxLongExposureClock() { return timing_.MaxLongExposureClock(); }

std::uint32_t CVexaCamera::GetMaxShortExposureClock() { return timing_.MaxShortExposureClock(); }

}  // namespace vexa::camera

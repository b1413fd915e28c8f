/// \file
/// Automatic level control: exposure and gain that keep the brightness of the image.
#pragma once

#include <cstdint>

#include "device/identity.hpp"
#include "device/registers.hpp"
#include "platform/mutex.hpp"
#include "platform/status.hpp"
#include "settings/gain_exposure_interface.hpp"
#include "settings/level_loop.hpp"

namespace vexa::settings {

/// The loop that runs here, and the settings of the one that some models run themselves (functions
/// 25 automatic gain, 26 automatic exposure), which share target and limits. Any thread may call;
/// one lock guards the state and is held during a step with its camera request.
///
/// Setters other than SetMode store the value first and keep it also when the camera's register
/// cannot be written. Getters give the register's value where the model has it, and ours when that
/// cannot be read.
class LevelControl {
 public:
  LevelControl(IUpdateGainExposureClockSetting& camera, device::Registers& registers,
               const device::CameraIdentity& identity)
      : camera_(camera), registers_(registers), identity_(identity) {}

  /// Everything to its default, and the present gain and exposure from the camera.
  Status Reset();
  /// Target and limits from the camera's registers, as far as the model has them.
  Status LoadCameraParameters();

  /// What the camera has from now on.
  void NoteGain(std::uint16_t gain);
  void NoteExposureClock(std::uint32_t exposure_clock);

  /// Low nibble: mode here, high nibble: mode of the camera. kInvalidParameter for both at once and
  /// for a camera mode that the model lacks. The mode here follows also when the camera refuses.
  Status SetMode(std::uint8_t mode);
  Status GetMode(std::uint8_t* mode);
  Status SetTargetLevel(std::uint16_t level);
  Status GetTargetLevel(std::uint16_t* level);
  Status SetMaxGain(std::uint16_t gain);
  Status GetMaxGain(std::uint16_t* gain);
  Status SetMinGain(std::uint16_t gain);
  Status GetMinGain(std::uint16_t* gain);
  Status SetMaxExposureClock(std::uint32_t exposure_clock);
  Status GetMaxExposureClock(std::uint32_t* exposure_clock);
  Status SetMinExposureClock(std::uint32_t exposure_clock);
  Status GetMinExposureClock(std::uint32_t* exposure_clock);

  /// One step of the loop; `*changed` gets the change report also when the camera then refuses the
  /// new values, which stay ours all the same.
  Status Step(std::uint16_t level, std::uint32_t* changed);

 private:
  bool CameraHasGainControl() const;
  bool CameraHasExposureControl() const;
  bool CameraHasControl() const;

  template <typename Value>
  void Store(Value LevelState::*field, Value value);
  template <typename Value>
  Status Set(Value LevelState::*field, Value value, bool in_camera, std::uint8_t register_number);
  template <typename Value>
  Status Get(Value LevelState::*field, Value* value, bool in_camera, std::uint8_t register_number);
  template <typename Value>
  Status Load(Value LevelState::*field, std::uint8_t register_number);

  IUpdateGainExposureClockSetting& camera_;
  device::Registers& registers_;
  const device::CameraIdentity& identity_;
  platform::Mutex mutex_;  // guards state_
  LevelState state_;
};

}  // namespace vexa::settings

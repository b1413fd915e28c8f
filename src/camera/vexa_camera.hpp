/// \file
/// The camera behind a handle.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>

#include "VexaAPI.h"
#include "device/camera_memory.hpp"
#include "device/control_channel.hpp"
#include "device/identity.hpp"
#include "device/registers.hpp"
#include "imaging/color_correction.hpp"
#include "imaging/gamma.hpp"
#include "imaging/noise_reduction.hpp"
#include "imaging/sharpness.hpp"
#include "output/easy_draw.hpp"
#include "platform/driver.hpp"
#include "platform/status.hpp"
#include "settings/camera_correction.hpp"
#include "settings/exposure_control.hpp"
#include "settings/gain_exposure_interface.hpp"
#include "settings/level_control.hpp"
#include "settings/mirror.hpp"
#include "settings/sensor_timing.hpp"
#include "settings/transfer_format.hpp"
#include "settings/trigger_io.hpp"
#include "settings/white_balance.hpp"
#include "transfer/notifier.hpp"
#include "transfer/snapshot.hpp"
#include "transfer/transfer_engine.hpp"
#include "transfer/trigger_waits.hpp"
#include "transfer/triggers.hpp"

namespace vexa::camera {

/// One camera: composes the parts that each own a piece of its state. The address of the object is
/// the camera handle.
///
/// Locks, outermost first: the engine's start and stop lock, the snapshot mutex with the ring's own
/// inside it (released before a callback runs), the callback mutex (held while a callback runs, so
/// every lock that the callback's own calls take nests inside it), the white balance's lock (held
/// while a frame is measured and while its gains are sent) or the level control's (held while it
/// sends), the short locks of the copies kept by parts, the control channel's request mutex
/// (innermost, around one request).
class CVexaCamera final : public settings::IUpdateGainExposureClockSetting {
 public:
  CVexaCamera();
  ~CVexaCamera();
  CVexaCamera(const CVexaCamera&) = delete;
  CVexaCamera& operator=(const CVexaCamera&) = delete;

  /// Opens the driver's first free camera and reads its settings.
  Status Open(platform::Driver& driver);
  /// Reads the camera's present settings into the copies that the parts keep.
  Status ReloadSettings();
  /// Sends a camera-setting command and reloads the settings. kInvalidParameter for firmware that
  /// does not know it.
  Status SendCameraSetting(std::uint16_t command);

  /// Sets the camera's gain or exposure; the level control goes on from there.
  Status SetGain(std::uint16_t gain);
  Status SetExposureClock(std::uint32_t exposure_clock);

  device::ControlChannel& channel() { return channel_; }
  const device::CameraIdentity& identity() const { return identity_; }
  device::Registers& registers() { return registers_; }
  device::CameraMemory& memory() { return memory_; }
  settings::SensorTiming& timing() { return timing_; }
  settings::ExposureControl& exposure() { return exposure_; }
  settings::TransferFormat& transfer_format() { return transfer_format_; }
  settings::Mirror& mirror() { return mirror_; }
  settings::CameraCorrection& correction() { return correction_; }
  settings::WhiteBalance& white_balance() { return white_balance_; }
  settings::LevelControl& level_control() { return level_control_; }
  settings::TriggerIo& trigger_io() { return trigger_io_; }
  transfer::TimeOuts& time_outs() { return time_outs_; }
  transfer::Triggers& triggers() { return triggers_; }
  transfer::RawSnapshot& snapshot() { return snapshot_; }
  transfer::Notifier& notifier() { return notifier_; }
  transfer::TransferEngine& transfer() { return transfer_; }
  imaging::Gamma& gamma() { return gamma_; }
  imaging::ColorCorrection& color_correction() { return color_correction_; }
  imaging::Sharpness& sharpness() { return sharpness_; }
  /// The noise reduction, made by the first call; throws std::bad_alloc. No lock: calls must not
  /// overlap.
  imaging::CNoiseReduction& noise_reduction();
  /// The drawing object, made by the first call; throws std::bad_alloc. No lock: calls must not
  /// overlap.
  output::CEasyDraw& easy_draw();
  /// Stored for the application; nothing in the library depends on it.
  std::atomic<std::uint32_t>& transfer_mode() { return transfer_mode_; }

  // IUpdateGainExposureClockSetting
  Status SetGainAndExposureClock(std::uint16_t gain, std::uint32_t exposure_clock) override;
  Status GetGainAndExposureClock(std::uint16_t* gain, std::uint32_t* exposure_clock) override;
  std::uint16_t GetMaxGain() override;
  std::uint16_t GetMinGain() override;
  float GainToDecibel(std::uint32_t gain) override;
  std::uint16_t DecibelToGain(float decibel) override;
  std::uint32_t GetMaxLongExposureClock() override;
  std::uint32_t GetMaxShortExposureClock() override;

 private:
  device::ControlChannel channel_;
  device::CameraIdentity identity_;
  device::Registers registers_{channel_, identity_};
  device::CameraMemory memory_{channel_, identity_};
  settings::SensorTiming timing_{channel_, registers_, identity_};
  settings::ExposureControl exposure_{channel_, registers_, identity_, timing_};
  settings::TransferFormat transfer_format_{channel_, identity_};
  settings::Mirror mirror_{registers_, identity_};
  settings::CameraCorrection correction_{registers_, identity_};
  settings::WhiteBalance white_balance_{channel_, registers_, identity_};
  settings::LevelControl level_control_{*this, registers_, identity_};
  settings::TriggerIo trigger_io_{channel_, registers_, identity_};
  transfer::TimeOuts time_outs_;
  transfer::Triggers triggers_{channel_, registers_};
  transfer::RawSnapshot snapshot_;
  transfer::Notifier notifier_{this};
  transfer::TransferEngine transfer_;
  std::atomic<std::uint32_t> transfer_mode_ = 0;
  imaging::Gamma gamma_;
  imaging::ColorCorrection color_correction_;
  imaging::Sharpness sharpness_;
  std::unique_ptr<imaging::CNoiseReduction> noise_reduction_;
  std::unique_ptr<output::CEasyDraw> easy_draw_;
};

}  // namespace vexa::camera

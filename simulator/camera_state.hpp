/// \file
/// The camera's control side: what it holds and how it answers vendor requests.
#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "simulator/camera_config.hpp"
#include "simulator/camera_memory.hpp"
#include "simulator/camera_settings.hpp"
#include "simulator/control_request.hpp"
#include "simulator/register_file.hpp"
#include "simulator/scan.hpp"

namespace vexa::simulator {

/// What an accepted request asks of the image stream.
enum class StreamCommand {
  kNone,
  kClearBuffer,
  kTrigger,
  kSubTrigger,
  kReadOut,
  kResendStored,
  kResetCounter,
  kClearBufferAndResetCounter,
};

/// The answer to a vendor request.
struct Answer {
  Status status = error::kGeneralFailure;  // a stalled control pipe
  std::uint32_t returned = 0;              // bytes that the driver reports
  StreamCommand command = StreamCommand::kNone;
  bool settings_changed = false;
};

/// Identity, settings, registers and memory of one camera. Not synchronised.
///
/// Camera-setting commands (request 0x81): 0 loads the factory settings, 1 stores the present
/// settings, 2 loads the stored ones; others are accepted and change nothing. Reset commands: mode
/// 0 empties the frame memory, 1 sets the registers to their power-up values, 2 the scan, clock,
/// format, gain and exposure settings, 3 does all of it.
class CameraState {
 public:
  explicit CameraState(const CameraConfig& config);

  /// Answers a request; reply holds at least request.length bytes. `software_status` is what
  /// register 0x66 reads at this moment.
  Answer Handle(const ControlRequest& request, std::span<std::uint8_t> reply,
                std::uint16_t software_status);

  void SetScene(std::shared_ptr<const Picture> scene);

  /// Settings in force.
  CameraSettings Settings() const;

  std::uint16_t PeekRegister(std::uint16_t block, std::uint16_t number) const;
  /// Stores a register and applies it at once; false when it does not exist.
  bool PokeRegister(std::uint16_t block, std::uint16_t number, std::uint16_t value);

  /// What a pin's change means for the exposure.
  StreamCommand SetPin(unsigned pin, bool high);

  /// Everything back to power-up, but the user area and the stored settings.
  void LosePower();

 private:
  // What power-up and the camera-setting commands replace as a whole.
  struct WorkingSet {
    explicit WorkingSet(const CameraConfig& config);

    Scan scan;
    RegisterFile registers;
    std::array<std::uint8_t, 64> gain_block{};
    std::uint32_t clock_mode = 1;
    std::uint32_t frequency = 0;
    std::uint32_t transfer_format = 1;
  };

  bool Has(unsigned capability) const;

  void InformationBlock(std::span<std::uint8_t> block) const;
  void ScanBlock(std::span<std::uint8_t> block) const;
  void FormatBlock(std::span<std::uint8_t> block) const;
  void ClockBlock(std::span<std::uint8_t> block) const;
  void WhiteBalanceBlock(std::span<std::uint8_t> block) const;
  Answer ReadBlock(const ControlRequest& request, std::span<std::uint8_t> reply) const;
  Answer WriteBlock(const ControlRequest& request);
  Status SetScan(std::span<const std::uint8_t> block);
  Status SetFormat(std::span<const std::uint8_t> block);
  Status SetClock(std::span<const std::uint8_t> block);
  Status SetGainAndExposure(std::span<const std::uint8_t> block);

  Answer AccessRegisters(const ControlRequest& request, std::span<std::uint8_t> reply,
                         std::uint16_t software_status);
  std::uint16_t ReadRegister(std::uint16_t block, std::uint16_t number,
                             std::uint16_t software_status) const;
  StreamCommand WriteRegister(std::uint16_t block, std::uint16_t number, std::uint16_t value);
  StreamCommand RunCommand(std::uint16_t word);
  void ApplyRegisters();
  void ResetRegisters();
  void ResetSettings();
  void RunSettingCommand(std::uint16_t command);

  std::uint32_t ExposureClock() const;
  Tone CurrentTone() const;
  std::array<double, 4> CurrentBalance() const;
  FrameTiming CurrentTiming() const;

  CameraConfig config_;
  CameraMemory memory_;
  WorkingSet set_;
  WorkingSet stored_;
  double nominal_exposure_;  // seconds, at power-up
  std::uint16_t pin_levels_ = 0;
};

}  // namespace vexa::simulator

/// \file
/// White balance: the camera's own, or gains that the host applies to raw frames.
#pragma once

#include <cstdint>

#include "device/control_channel.hpp"
#include "device/identity.hpp"
#include "device/registers.hpp"
#include "imaging/bayer_tables.hpp"
#include "platform/mutex.hpp"
#include "platform/status.hpp"

namespace vexa::settings {

/// Gains of the four positions of the filter pattern; 128 is unity. Green pixels of red rows and of
/// blue rows have gains of their own.
struct WhiteBalanceGains {
  std::uint16_t red = 0;
  std::uint16_t green_red = 0;
  std::uint16_t green_blue = 0;
  std::uint16_t blue = 0;

  friend bool operator==(const WhiteBalanceGains&, const WhiteBalanceGains&) = default;
};

/// What the mode says on the host; a camera with its own white balance interprets it itself.
namespace white_balance_mode {
inline constexpr std::uint8_t kOff = 0;
inline constexpr std::uint8_t kManual = 1;  // apply the current gains
inline constexpr std::uint8_t kEveryFrame = 2;
inline constexpr std::uint8_t kOnce = 3;  // becomes manual
}  // namespace white_balance_mode

/// Gains and mode. On models with white balance in the camera they are its registers; on all others
/// they are kept here, with the look-up tables by which the host applies the gains. Thread-safe.
class WhiteBalance {
 public:
  WhiteBalance(device::ControlChannel& channel, device::Registers& registers,
               const device::CameraIdentity& identity)
      : channel_(channel), registers_(registers), identity_(identity) {}

  /// Reads the camera's default gains; with them the host's white balance starts in manual mode,
  /// while for the camera's own gains and mode are read from it. Fails when the camera does not
  /// answer.
  Status SetUp();

  Status SetGains(const WhiteBalanceGains& gains);
  /// All 0 on failure.
  Status GetGains(WhiteBalanceGains* gains);
  /// The low 8 bits count.
  Status SetMode(std::uint32_t mode);
  /// 0 on failure.
  Status GetMode(std::uint8_t* mode);

  /// Corrects an 8-bit raw frame of a colour camera in place: in the automatic modes finds the
  /// gains of red and blue first, in every mode but off applies all gains. Does nothing on models
  /// with white balance in the camera. kInvalidParameter when the colour array is none that gains
  /// can be found for; the frame is corrected with the present gains all the same.
  Status Correct(std::uint32_t width, std::uint32_t height, std::uint16_t color_array,
                 std::uint8_t* frame);

 private:
  Status FindGains(std::uint32_t width, std::uint32_t height, std::uint16_t color_array,
                   const std::uint8_t* frame);
  Status ReadGains(WhiteBalanceGains* gains);
  Status ReadMode(std::uint8_t* mode);

  device::ControlChannel& channel_;
  device::Registers& registers_;
  const device::CameraIdentity& identity_;
  bool in_camera_ = false;  // set at open, before the camera is shared
  platform::Mutex mutex_;   // guards what follows; may be held during a request
  WhiteBalanceGains gains_;
  std::uint8_t mode_ = white_balance_mode::kOff;
  imaging::BayerTables tables_{};
};

}  // namespace vexa::settings

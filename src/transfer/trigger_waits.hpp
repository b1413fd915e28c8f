/// \file
/// What the trigger mode means for the transfer thread, and its time-outs.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

#include "platform/event.hpp"
#include "platform/status.hpp"
#include "settings/trigger_io.hpp"

namespace vexa::transfer {

/// Receive errors of the library's own.
namespace receive_error {
inline constexpr Status kHeaderSize{0xE0000001};
inline constexpr Status kFrameSize{0xE0000002};
inline constexpr Status kTimeoutSoftwareTrigger{0xE0000003};
inline constexpr Status kTimeoutHardwareTrigger{0xE0000004};
inline constexpr Status kTimeoutImage{0xE0000005};
inline constexpr Status kTimeoutReadOut{0xE0000006};
}  // namespace receive_error

/// Indexes of the time-outs.
enum class TimeOut : std::uint32_t {
  kST2EE,  // software trigger to the first transfer of the frame
  kTE2EE,  // arming for a hardware trigger to the first transfer
  kEE2TE,  // exposure end to the image
  kRO2TE,  // read-out trigger to the image
};

/// The four time-outs in milliseconds; kInfinite is no limit. Read and written from any thread.
class TimeOuts {
 public:
  static constexpr std::size_t kCount = 4;

  /// Indexes 0 to 3, else kInvalidParameter.
  Status Set(std::uint32_t index, std::uint32_t milliseconds);
  Status Get(std::uint32_t index, std::uint32_t* milliseconds) const;

  std::uint32_t of(TimeOut index) const { return values_[static_cast<std::size_t>(index)]; }

 private:
  std::array<std::atomic<std::uint32_t>, kCount> values_{platform::kInfinite, platform::kInfinite,
                                                         5000, 5000};
};

/// Both time-outs one after the other: no limit when either has none, otherwise their sum, at most
/// the largest finite time-out.
constexpr std::uint32_t CombineTimeOuts(std::uint32_t first, std::uint32_t second) {
  if (first == platform::kInfinite || second == platform::kInfinite) {
    return platform::kInfinite;
  }
  const std::uint64_t sum = std::uint64_t{first} + second;
  return sum < platform::kInfinite ? static_cast<std::uint32_t>(sum) : platform::kInfinite - 1;
}

/// The trigger mode as the transfer thread sees it.
struct TriggerFlags {
  explicit TriggerFlags(std::uint32_t mode)
      : triggered((mode & settings::trigger_mode::kTriggeredMask) != 0),
        software_source((mode & settings::trigger_mode::kSourceMask) ==
                        settings::trigger_mode::kSoftwareSource),
        separate_header((mode & settings::trigger_mode::kSeparateHeader) != 0),
        read_out_trigger((mode & settings::trigger_mode::kTriggeredMask) ==
                             settings::trigger_mode::kReadOutTriggered &&
                         (mode & settings::trigger_mode::kAutomaticReadOut) == 0) {}

  bool triggered;         // time-outs and recovery apply
  bool software_source;   // a software trigger starts each frame
  bool separate_header;   // header and image are two transfers
  bool read_out_trigger;  // the image comes only after a read-out trigger
};

}  // namespace vexa::transfer

/// \file
/// What the control device understands.
#pragma once

#include <cstdint>

namespace vexa::simulator {

/// A command is its number, then its arguments (archive.hpp); the answer is its result. All but the
/// first two begin with the number of a camera, and those from kFailReads on are functions of
/// TwinCamera with their arguments and results.
enum class Command : std::uint32_t {
  kAdd,     ///< CameraConfig; plugs a camera in behind the others, gives its number
  kReset,   ///< unplugs and forgets all cameras
  kRemove,  ///< unplugs a camera for good; it can still be asked what it remembers
  kForget,  ///< the camera's number is not used any more
  kUnplug,
  kReplug,
  kFailReads,
  kRefuseReads,
  kRefuseReset,
  kShortenFrames,
  kLengthenFrames,
  kShortenHeaders,
  kDropFrames,
  kStall,
  kFailControl,
  kDelayControl,
  kLimitControl,
  kSetUnanswering,
  kSetAnswering,
  kSetBusyElsewhere,
  kSetDriverVersion,
  kPulsePin,
  kSetPin,
  kSetScene,
  kLog,
  kClearLog,
  kSetLogLimit,
  kPeekRegister,
  kPokeRegister,
  kFramesMade,
  kFramesDropped,
  kReadsFilled,
  kOpenHandles,
  kPendingReads,
  kStreaming,
};

}  // namespace vexa::simulator

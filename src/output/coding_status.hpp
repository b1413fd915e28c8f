/// \file
/// How the output streams and the JPEG encoder report failure.
#pragma once

#include <cstdint>

namespace vexa::output {

/// Result of a coding or stream operation.
enum class [[nodiscard]] CodingStatus : std::int32_t{
    kOk = 0,
    kCodingFailed = -2,   // a coding step met something that it has no code for
    kOutOfRange = -3,     // a parameter is out of range, or an operation came out of its order
    kBufferOverrun = -4,  // the byte buffer's position lies beyond its size
    kShortWrite = -5,     // the stream accepted fewer bytes than it was given
    kNoMemory = -6,
};

}  // namespace vexa::output

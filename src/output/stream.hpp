/// \file
/// Where encoders write to.
#pragma once

#include <cstdint>

#include "output/coding_status.hpp"

namespace vexa::output {

/// A stream of bytes.
class CBaseStream {
 public:
  virtual ~CBaseStream() = default;
  /// @param argument what a stream needs to know, as its class defines it.
  virtual CodingStatus Open(void* argument) = 0;
  virtual CodingStatus Close() = 0;
};

/// A stream that takes bytes.
class CBaseStreamOutput : public CBaseStream {
 public:
  /// Appends `count` bytes. kShortWrite when fewer were accepted; `written` says how many.
  virtual CodingStatus Write(const std::uint8_t* bytes, std::int32_t count,
                             std::int32_t* written) = 0;
};

}  // namespace vexa::output

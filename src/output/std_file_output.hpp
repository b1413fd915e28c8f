/// \file
/// A stream over a file that somebody else has opened and will close.
#pragma once

#include <cstdio>

#include "output/stream.hpp"

namespace vexa::output {

/// Appends to a buffered file of the standard library, which it does not own.
class CStdFileOutput2 final : public CBaseStreamOutput {
 public:
  explicit CStdFileOutput2(std::FILE* file) : file_(file) {}

  /// Does nothing: the file is open. `argument` is not used.
  CodingStatus Open(void* argument) override;
  /// Forgets the file; whoever opened it closes it.
  CodingStatus Close() override;
  CodingStatus Write(const std::uint8_t* bytes, std::int32_t count, std::int32_t* written) override;

 private:
  std::FILE* file_;
};

}  // namespace vexa::output

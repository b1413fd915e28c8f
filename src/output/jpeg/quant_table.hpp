/// \file
/// A quantisation table of a JPEG file.
#pragma once

#include <array>
#include <cstdint>

#include "output/coding_status.hpp"
#include "output/jpeg/typical_tables.hpp"
#include "output/jpeg/zigzag.hpp"
#include "output/memory_buffer.hpp"

namespace vexa::output {

/// What quantising needs of a table, with the scale of the transform (kernels/aan_transform.hpp)
/// folded in.
struct ForwardTable {
  /// Factors of the transform's results in natural order.
  alignas(kBlockAlignment) std::array<double, kBlockSize> exact_factor;
  /// The same for the transform in single precision, by columns, as its results lie.
  alignas(kBlockAlignment) std::array<float, kBlockSize> factor;
  /// By columns: where a result in single precision lies this far or further from the integer that
  /// it was rounded to, the error of the transform may have decided about the rounding.
  alignas(kBlockAlignment) std::array<float, kBlockSize> doubt;
};

/// A table as the file carries it and as the quantiser uses it.
class CJPEGEncoderQuantTable {
 public:
  CJPEGEncoderQuantTable() = default;
  virtual ~CJPEGEncoderQuantTable() = default;
  CJPEGEncoderQuantTable(const CJPEGEncoderQuantTable&) = delete;
  CJPEGEncoderQuantTable& operator=(const CJPEGEncoderQuantTable&) = delete;

  /// Scales a base table: with quality 50 to itself, with 100 to 1 everywhere.
  /// @param identifier the table's destination, 0 to 3.
  /// @param base       8-bit values in zig-zag order.
  /// @param quality    1 to 100; 0 takes the base table as it is.
  /// @return kOutOfRange for another identifier or quality.
  CodingStatus Init(std::uint8_t identifier, const QuantValues& base, std::int32_t quality);

  std::uint8_t identifier() const { return identifier_; }
  /// 0: values of 8 bits.
  std::uint8_t precision() const { return precision_; }
  bool initialised() const { return initialised_; }
  /// In zig-zag order.
  const QuantValues& raw() const { return raw_; }
  const ForwardTable& forward() const { return forward_; }

 private:
  void BuildForwardTable();

  std::uint8_t identifier_ = 0;
  std::uint8_t precision_ = 0;
  bool initialised_ = false;
  alignas(kBlockAlignment) QuantValues raw_{};
  ForwardTable forward_{};
};

}  // namespace vexa::output

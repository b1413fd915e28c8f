/// \file
/// A colour component of a JPEG picture with its samples of one MCU row.
#pragma once

#include <cstdint>

#include "output/coding_status.hpp"
#include "output/jpeg/kernels/jpeg_kernels.hpp"
#include "output/memory_buffer.hpp"

namespace vexa::output {

/// How a component is coded.
struct ComponentSettings {
  std::uint8_t identifier = 0;  // its index
  std::uint8_t h = 1;           // sampling factors: blocks per MCU in each direction
  std::uint8_t v = 1;
  std::uint8_t horizontal_factor = 1;  // down-sampling
  std::uint8_t vertical_factor = 1;
  std::uint8_t quant_table = 0;  // selectors
  std::uint8_t dc_table = 0;
  std::uint8_t ac_table = 0;
};

/// One MCU row of a component: as converted, and sub-sampled to what is transformed.
class CJPEGColorComponent {
 public:
  CJPEGColorComponent() = default;
  virtual ~CJPEGColorComponent() = default;
  CJPEGColorComponent(const CJPEGColorComponent&) = delete;
  CJPEGColorComponent& operator=(const CJPEGColorComponent&) = delete;

  void Configure(const ComponentSettings& settings) { settings_ = settings; }
  const ComponentSettings& settings() const { return settings_; }
  std::int32_t blocks_per_mcu() const { return settings_.h * settings_.v; }

  /// Provides the planes of an MCU row; kNoMemory.
  /// @param rows  MCU height.
  /// @param width padded width of the picture in samples.
  CodingStatus Allocate(std::int32_t rows, std::int32_t width);

  /// Row of the converted plane.
  std::uint8_t* ConvertedRow(std::int32_t row);

  /// Repeats the last of `width` samples in each of `rows` rows up to the padded width, and then
  /// the last row down to the plane's end.
  void Pad(std::int32_t width, std::int32_t rows);

  /// Makes the sub-sampled plane.
  void DownSample(const JpegKernels& kernels);

  /// Row of the sub-sampled plane; the converted one itself where nothing is left out.
  const std::uint8_t* SubSampledRow(std::int32_t row) const;
  std::int32_t sub_sampled_step() const { return sub_sampled_step_; }

  /// The DC predictor and the tables in use.
  ComponentCoder& coder() { return coder_; }

 private:
  bool IsDownSampled() const { return settings_.horizontal_factor != 1; }

  ComponentSettings settings_;
  std::int32_t converted_rows_ = 0;
  std::int32_t converted_step_ = 0;
  std::int32_t sub_sampled_rows_ = 0;
  std::int32_t sub_sampled_step_ = 0;
  ComponentCoder coder_;
  CMemoryBuffer converted_;
  CMemoryBuffer sub_sampled_;
};

}  // namespace vexa::output

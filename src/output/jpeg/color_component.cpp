#include "output/jpeg/color_component.hpp"

#include <algorithm>
#include <cstddef>

namespace vexa::output {

CodingStatus CJPEGColorComponent::Allocate(std::int32_t rows, std::int32_t width) {
  converted_rows_ = rows;
  converted_step_ = width;
  sub_sampled_rows_ = rows / settings_.vertical_factor;
  sub_sampled_step_ = width / settings_.horizontal_factor;
  const CodingStatus status = converted_.Allocate(converted_rows_ * converted_step_);
  if (status != CodingStatus::kOk || !IsDownSampled()) {
    return status;
  }
  return sub_sampled_.Allocate(sub_sampled_rows_ * sub_sampled_step_);
}

std::uint8_t* CJPEGColorComponent::ConvertedRow(std::int32_t row) {
  return converted_.data() + std::ptrdiff_t{row} * converted_step_;
}

void CJPEGColorComponent::Pad(std::int32_t width, std::int32_t rows) {
  for (std::int32_t row = 0; row < rows; ++row) {
    std::uint8_t* const samples = ConvertedRow(row);
    std::fill_n(samples + width, converted_step_ - width, samples[width - 1]);
  }
  for (std::int32_t row = rows; row < converted_rows_; ++row) {
    std::copy_n(ConvertedRow(rows - 1), converted_step_, ConvertedRow(row));
  }
}

void CJPEGColorComponent::DownSample(const JpegKernels& kernels) {
  if (!IsDownSampled()) {
    return;
  }
  for (std::int32_t row = 0; row < sub_sampled_rows_; ++row) {
    kernels.halve(ConvertedRow(row), sub_sampled_.data() + std::ptrdiff_t{row} * sub_sampled_step_,
                  static_cast<std::size_t>(sub_sampled_step_));
  }
}

const std::uint8_t* CJPEGColorComponent::SubSampledRow(std::int32_t row) const {
  const CMemoryBuffer& plane = IsDownSampled() ? sub_sampled_ : converted_;
  return plane.data() + std::ptrdiff_t{row} * sub_sampled_step_;
}

}  // namespace vexa::output

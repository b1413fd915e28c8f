#include "imaging/noise_reduction.hpp"

#include <algorithm>
#include <cstring>
#include <utility>

#include "imaging/pixel_buffers.hpp"

namespace vexa::imaging {
namespace {

/// Takes the smallest sample of each place in the 2 x 2 cells from all samples in that place. An
/// incomplete cell at the right or lower border does not count for the smallest ones; samples there
/// that are smaller still become 0. A frame without a complete cell stays.
void KeepExcess(std::uint8_t* samples, std::size_t width, std::size_t height) {
  if (width < 2 || height < 2) {
    return;
  }
  std::uint8_t smallest[2][2] = {{255, 255}, {255, 255}};
  for (std::size_t y = 0; y < height / 2 * 2; ++y) {
    for (std::size_t x = 0; x < width / 2 * 2; ++x) {
      std::uint8_t& least = smallest[y % 2][x % 2];
      least = std::min(least, samples[y * width + x]);
    }
  }
  for (std::size_t y = 0; y < height; ++y) {
    for (std::size_t x = 0; x < width; ++x) {
      std::uint8_t& sample = samples[y * width + x];
      sample = static_cast<std::uint8_t>(sample - std::min(sample, smallest[y % 2][x % 2]));
    }
  }
}

}  // namespace

Status CNoiseReduction::Apply(std::uint32_t mode, const RawFrame& frame) {
  const auto code = static_cast<NoiseReductionMode>(mode);
  if (code == NoiseReductionMode::kOff) {
    return error::kNone;
  }
  if (!FrameIsPossible(frame.width, frame.height, 1, frame.samples)) {
    return error::kInvalidParameter;
  }
  switch (code) {
    case NoiseReductionMode::kImpulse:
      return ReduceImpulses(frame, kernels_);
    case NoiseReductionMode::kDarkFrame:
      return SubtractDarkFrame(frame);
    case NoiseReductionMode::kStoreDarkFrame:
      return StoreDarkFrame(frame);
    default:
      return error::kInvalidParameter;
  }
}

Status CNoiseReduction::StoreDarkFrame(const RawFrame& frame) {
  dark_ = {};
  const std::size_t size = std::size_t{frame.width} * frame.height;
  auto samples = AllocateWorkBuffer<std::uint8_t>(size);
  if (size != 0) {
    std::memcpy(samples.get(), frame.samples, size);
  }
  KeepExcess(samples.get(), frame.width, frame.height);
  dark_ = {.samples = std::move(samples),
           .width = frame.width,
           .height = frame.height,
           .color_array = frame.color_array};
  return error::kNone;
}

Status CNoiseReduction::SubtractDarkFrame(const RawFrame& frame) const {
  if (dark_.samples == nullptr || dark_.width != frame.width || dark_.height != frame.height ||
      dark_.color_array != frame.color_array) {
    return error::kInvalidParameter;
  }
  return SubtractDark(dark_.samples.get(), frame, kernels_);
}

}  // namespace vexa::imaging

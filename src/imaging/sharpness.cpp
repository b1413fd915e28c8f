#include "imaging/sharpness.hpp"

#include <mutex>

#include "imaging/interpolation.hpp"
#include "imaging/pixel_buffers.hpp"

namespace vexa::imaging {
namespace {

/// What differs between the layouts; luma is null where pixels are their own luminance.
struct Layout {
  std::size_t bytes_per_pixel;
  decltype(FrameKernels::luma_bgr24) luma;
  decltype(FrameKernels::sharpen_mono) sharpen;
};

Layout LayoutOf(std::uint32_t output_format, const FrameKernels& kernels) {
  switch (static_cast<OutputFormat>(output_format)) {
    case OutputFormat::kMono8:
      return {1, nullptr, kernels.sharpen_mono};
    case OutputFormat::kBgr24:
      return {3, kernels.luma_bgr24, kernels.sharpen_bgr24};
    case OutputFormat::kBgr32:
      return {4, kernels.luma_bgr32, kernels.sharpen_bgr32};
  }
  return {};
}

/// Walks down the image. What was taken of a row before it changed stays as long as the row below
/// needs it: sums of three rows and, of colour images, the luminance of two.
class RowWalk {
 public:
  RowWalk(const Layout& layout, std::size_t width, Sample* image, const FrameKernels& kernels)
      : layout_(layout),
        width_(width),
        image_(image),
        kernels_(kernels),
        work_(AllocateWorkBuffer<std::uint16_t>(std::uint64_t{width} * 4)) {}

  void Sharpen(std::size_t height, const BoostTable& boost) {
    Enter(0);
    Enter(1);
    for (std::size_t y = 1; y + 1 < height; ++y) {
      Enter(y + 1);
      layout_.sharpen(
          {.sums = {Sums(y - 1), Sums(y), Sums(y + 1)}, .luma = Luma(y) + 1, .boost = boost.data()},
          Pixels(y) + layout_.bytes_per_pixel, width_ - 2);
    }
  }

 private:
  Sample* Pixels(std::size_t y) { return image_ + y * width_ * layout_.bytes_per_pixel; }
  std::uint16_t* Sums(std::size_t y) { return work_.get() + y % 3 * width_; }
  Sample* Luma(std::size_t y) {
    if (layout_.luma == nullptr) {
      return Pixels(y);
    }
    return reinterpret_cast<Sample*>(work_.get() + 3 * width_) + y % 2 * width_;
  }

  void Enter(std::size_t y) {
    if (layout_.luma != nullptr) {
      layout_.luma(Pixels(y), Luma(y), width_);
    }
    kernels_.row_sums(Luma(y), Sums(y), width_ - 2);
  }

  Layout layout_;
  std::size_t width_;
  Sample* image_;
  const FrameKernels& kernels_;
  std::unique_ptr<std::uint16_t[]> work_;
};

}  // namespace

BoostTable MakeBoostTable(std::uint16_t gain, std::uint8_t coring) {
  const float factor = static_cast<float>(gain) / 100.0F;
  BoostTable table{};
  float product = 0;
  for (std::size_t i = std::size_t{coring} + 1; i < table.size(); ++i) {
    product += factor;
    table[i] = product >= 254.5F ? 255 : static_cast<std::uint8_t>(product + 0.5F);
  }
  return table;
}

Status SharpenImage(const BoostTable& boost, std::uint32_t width, std::uint32_t height,
                    std::uint32_t output_format, std::uint8_t* image, const FrameKernels& kernels) {
  const Layout layout = LayoutOf(output_format, kernels);
  if (layout.sharpen == nullptr) {
    return error::kInvalidParameter;
  }
  if (width < 3 || height < 3) {
    return error::kNone;
  }
  if (!FrameIsPossible(width, height, layout.bytes_per_pixel, image)) {
    return error::kInvalidParameter;
  }
  RowWalk(layout, width, image, kernels).Sharpen(height, boost);
  return error::kNone;
}

void Sharpness::SetMode(const Mode& mode) {
  const std::lock_guard lock(mutex_);
  mode_ = mode;
  if (mode.mode != 0) {
    boost_ = MakeBoostTable(mode.gain, mode.coring);
  }
}

Sharpness::Mode Sharpness::GetMode() const {
  const std::lock_guard lock(mutex_);
  return mode_;
}

Status Sharpness::Apply(std::uint32_t width, std::uint32_t height, std::uint32_t output_format,
                        std::uint8_t* image) const {
  const std::lock_guard lock(mutex_);
  return mode_.mode == 0 ? error::kNone : SharpenImage(boost_, width, height, output_format, image);
}

}  // namespace vexa::imaging

#include "imaging/gamma.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <mutex>
#include <numeric>

#include "imaging/color_array.hpp"
#include "imaging/interpolation.hpp"
#include "imaging/pixel_buffers.hpp"

namespace vexa::imaging {
namespace {

LookUpTable Identity() {
  LookUpTable table;
  std::iota(table.begin(), table.end(), std::uint8_t{0});
  return table;
}

LookUpTable Curve(const GammaSetting& setting) {
  const int cut = std::min<int>(setting.contrast, 127);
  const double exponent = 100.0 / setting.gamma;
  const double scale = 255.0 / (255 - 2 * cut);
  LookUpTable table;
  for (int i = 0; i < 256; ++i) {
    const int v = i + setting.brightness;
    int entry = 0;
    if (v > 255 || (v > cut && v >= 255 - cut)) {
      entry = 255;
    } else if (v > cut) {
      const double level = (v - cut) * scale;
      entry = std::min(static_cast<int>(255 * std::pow(level / 255, exponent) + 0.5), 255);
    }
    table[static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(entry);
  }
  return table;
}

bool IsKnown(std::uint8_t mode) {
  switch (static_cast<GammaMode>(mode)) {
    case GammaMode::kOff:
    case GammaMode::kCurve:
    case GammaMode::kReverse:
    case GammaMode::kTable:
      return true;
  }
  return false;
}

}  // namespace

Gamma::Gamma() : luminance_(Identity()) { raw_.fill(Identity()); }

LookUpTable& Gamma::TableOf(std::uint8_t channel) {
  return channel == kGammaY ? luminance_ : raw_[channel - 1U];
}

Status Gamma::Set(std::uint8_t channel, const GammaSetting& setting, const std::uint8_t* table) {
  if (channel >= kGammaChannels || !IsKnown(setting.mode)) {
    return error::kInvalidParameter;
  }
  const auto mode = static_cast<GammaMode>(setting.mode);
  const bool is_curve = mode == GammaMode::kCurve || mode == GammaMode::kReverse;
  if ((is_curve && setting.gamma == 0) || (mode == GammaMode::kTable && table == nullptr)) {
    return error::kInvalidParameter;
  }

  LookUpTable entries = is_curve ? Curve(setting) : Identity();
  if (mode == GammaMode::kReverse) {
    std::reverse(entries.begin(), entries.end());
  } else if (mode == GammaMode::kTable) {
    std::copy_n(table, entries.size(), entries.begin());
  }
  const std::lock_guard lock(mutex_);
  settings_[channel] = is_curve ? setting : GammaSetting{.mode = setting.mode};
  TableOf(channel) = entries;
  return error::kNone;
}

Status Gamma::Get(std::uint8_t channel, GammaSetting* setting, LookUpTable* table) const {
  if (channel >= kGammaChannels) {
    return error::kInvalidParameter;
  }
  const std::lock_guard lock(mutex_);
  *setting = settings_[channel];
  *table = channel == kGammaY ? luminance_ : raw_[channel - 1U];
  return error::kNone;
}

bool Gamma::RawIsOff() const {
  return std::all_of(settings_.begin() + 1, settings_.end(), [](const GammaSetting& setting) {
    return setting.mode == static_cast<std::uint8_t>(GammaMode::kOff);
  });
}

Status Gamma::CorrectRaw(std::uint32_t width, std::uint32_t height, std::uint16_t color_array,
                         std::uint8_t* frame, const PixelKernels& kernels) const {
  if (color_array == static_cast<std::uint16_t>(ColorArray::kMono)) {
    return error::kNone;
  }
  const std::lock_guard lock(mutex_);
  if (RawIsOff() || width == 0 || height == 0) {
    return error::kNone;
  }
  if (frame == nullptr || !IsPossibleImage(width, height, 1)) {
    return error::kInvalidParameter;
  }
  ApplyBayerTables(raw_, width, height, color_array, frame, kernels);
  return error::kNone;
}

Status Gamma::CorrectImage(std::uint32_t width, std::uint32_t height, std::uint32_t output_format,
                           std::uint8_t* image, const PixelKernels& kernels) const {
  const std::lock_guard lock(mutex_);
  if (settings_[kGammaY].mode == static_cast<std::uint8_t>(GammaMode::kOff)) {
    return error::kNone;
  }
  PixelKernels::ShiftLuma correct = nullptr;
  std::size_t bytes_per_pixel = 1;
  switch (static_cast<OutputFormat>(output_format)) {
    case OutputFormat::kMono8:
      correct = kernels.look_up;
      break;
    case OutputFormat::kBgr24:
      correct = kernels.shift_luma_bgr24;
      bytes_per_pixel = 3;
      break;
    case OutputFormat::kBgr32:
      correct = kernels.shift_luma_bgr32;
      bytes_per_pixel = 4;
      break;
    default:
      return error::kInvalidParameter;
  }
  if (width == 0 || height == 0) {
    return error::kNone;
  }
  if (image == nullptr || !IsPossibleImage(width, height, bytes_per_pixel)) {
    return error::kInvalidParameter;
  }
  correct(luminance_.data(), image, PixelCount(width, height));
  return error::kNone;
}

}  // namespace vexa::imaging

#include "imaging/color_correction.hpp"

#include <cmath>
#include <cstddef>
#include <mutex>
#include <numbers>

#include "imaging/interpolation.hpp"
#include "imaging/pixel_buffers.hpp"

namespace vexa::imaging {
namespace {

// Luminance weights in single precision, as the matrix takes them.
constexpr float kRedWeight = 0.2989F;
constexpr float kGreenWeight = 0.5866F;
constexpr float kBlueWeight = 0.1145F;

/// The user's factors and offsets as numbers.
struct UserFactors {
  ColorMatrix factors;
  std::array<float, 3> offsets;
};

UserFactors FactorsOf(const UserColorMatrix& matrix) {
  UserFactors user{};
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) {
      user.factors[i][j] = static_cast<float>(matrix[4 * i + j]) / 100.0F;
    }
    user.offsets[i] = static_cast<float>(matrix[4 * i + 3]) / 100.0F;
  }
  return user;
}

ColorMatrix Product(const ColorMatrix& a, const ColorMatrix& b) {
  ColorMatrix product{};
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) {
      product[i][j] = a[i][0] * b[0][j] + a[i][1] * b[1][j] + a[i][2] * b[2][j];
    }
  }
  return product;
}

/// Matrices name red first, pixels blue.
constexpr std::size_t InPixel(std::size_t in_matrix) { return 2 - in_matrix; }

/// Adds up the factor once per step, in single precision: the sums that the tables are defined by,
/// which are not the products everywhere.
void FillContributions(float factor, float offset, std::size_t input, std::size_t output,
                       ColorMix* mix) {
  float product = 0;
  for (auto& entry : mix->contributions[input]) {
    entry[output] = static_cast<std::int32_t>(product + offset);
    product += factor;
  }
}

}  // namespace

ColorMatrix HueSaturationMatrix(std::int16_t hue, std::uint16_t saturation) {
  constexpr double kR = kRedWeight;
  constexpr double kG = kGreenWeight;
  constexpr double kB = kBlueWeight;
  constexpr double kNotR = 1.0F - kRedWeight;
  constexpr double kNotB = 1.0F - kBlueWeight;
  const double angle = hue / 10.0 * std::numbers::pi / 180;
  const double s = saturation / 100.0;
  const double c = std::cos(angle);
  const double n = std::sin(angle);
  const auto single = [](double value) { return static_cast<float>(value); };

  ColorMatrix h{};
  h[0] = {single(kR + s * (kNotR * c + kR * n)), single(kG * (1 + s * (n - c))),
          single(kB + s * (-kNotB * n - kB * c))};
  h[2] = {single(kR + s * (kNotR * n - kR * c)), single(kG * (1 - s * (c + n))),
          single(kB + s * (kNotB * c - kB * n))};
  // What keeps the luminance of each column at the weight of its input.
  h[1] = {single((1 - h[0][0]) * kR / kG - h[2][0] * kB / kG),
          single(1 - h[0][1] * kR / kG - h[2][1] * kB / kG),
          single(kB * (1 - h[2][2]) / kG - kR * h[0][2] / kG)};
  return h;
}

void ColorCorrection::BuildTables() {
  const UserFactors user = FactorsOf(matrix_.matrix);
  const ColorMatrix matrix =
      Product(HueSaturationMatrix(hue_saturation_.hue, hue_saturation_.saturation), user.factors);
  float slopes[kPixelChannels][kPixelChannels];
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) {
      // The offset lies in the table of red.
      FillContributions(matrix[i][j], j == 0 ? user.offsets[i] : 0.0F, InPixel(j), InPixel(i),
                        &mix_);
      slopes[InPixel(i)][InPixel(j)] = matrix[i][j];
    }
  }
  FindFormulas(slopes, &mix_);
}

Status ColorCorrection::SetMatrix(std::uint8_t mode, const UserColorMatrix* matrix) {
  const bool is_user = mode == static_cast<std::uint8_t>(ColorMatrixMode::kUser);
  if (!is_user && mode != static_cast<std::uint8_t>(ColorMatrixMode::kOff)) {
    return error::kLastErrorKept;
  }
  if (is_user && matrix == nullptr) {
    return error::kInvalidParameter;
  }
  const std::lock_guard lock(mutex_);
  matrix_ = {.mode = mode, .matrix = is_user ? *matrix : kIdentityColorMatrix};
  BuildTables();
  return error::kNone;
}

ColorMatrixSetting ColorCorrection::Matrix() const {
  const std::lock_guard lock(mutex_);
  return matrix_;
}

Status ColorCorrection::SetHueSaturation(const HueSaturationSetting& setting) {
  const bool is_on = setting.mode == static_cast<std::uint8_t>(HueSaturationMode::kOn);
  if (!is_on && setting.mode != static_cast<std::uint8_t>(HueSaturationMode::kOff)) {
    return error::kLastErrorKept;
  }
  const std::lock_guard lock(mutex_);
  hue_saturation_ = is_on ? setting : HueSaturationSetting{};
  BuildTables();
  return error::kNone;
}

HueSaturationSetting ColorCorrection::HueSaturation() const {
  const std::lock_guard lock(mutex_);
  return hue_saturation_;
}

Status ColorCorrection::Correct(std::uint32_t width, std::uint32_t height,
                                std::uint32_t output_format, std::uint8_t* image,
                                const PixelKernels& kernels) const {
  const auto format = static_cast<OutputFormat>(output_format);
  if (format != OutputFormat::kBgr24 && format != OutputFormat::kBgr32) {
    return error::kNone;
  }
  const std::lock_guard lock(mutex_);
  const bool is_off = matrix_.mode == static_cast<std::uint8_t>(ColorMatrixMode::kOff) &&
                      hue_saturation_.mode == static_cast<std::uint8_t>(HueSaturationMode::kOff);
  if (is_off || width == 0 || height == 0) {
    return error::kNone;
  }
  const bool is_bgr24 = format == OutputFormat::kBgr24;
  if (image == nullptr || !IsPossibleImage(width, height, is_bgr24 ? 3 : 4)) {
    return error::kInvalidParameter;
  }
  const auto mix = is_bgr24 ? kernels.mix_bgr24 : kernels.mix_bgr32;
  mix(mix_, image, PixelCount(width, height));
  return error::kNone;
}

}  // namespace vexa::imaging

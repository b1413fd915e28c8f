#include "imaging/conversion.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <optional>

#include "imaging/interpolation.hpp"
#include "imaging/pixel_buffers.hpp"

namespace vexa::imaging {
namespace {

/// Transfer format codes, one bit each. 8 to 16 bits come in two groups with the same layouts.
constexpr std::uint32_t kLastGreyFormat = 0x0200;
constexpr std::uint32_t kBgr24Format = 0x0400;
constexpr std::uint32_t kBgr30Format = 0x0800;
constexpr std::uint32_t kYuv411Format = 0x1000;
constexpr std::uint32_t kYuv422Format = 0x2000;
constexpr std::uint32_t kYuv444Format = 0x4000;

/// The most bytes that a pixel has in any format of either side.
constexpr std::size_t kLargestPixel = 4;

bool IsGrey(std::uint32_t format) {
  return std::has_single_bit(format) && format <= kLastGreyFormat;
}

/// How far the samples of a format of 10 to 16 bits lie above 8 bits; 0 for all other codes.
unsigned ShiftOf(std::uint32_t format) {
  if (!IsGrey(format)) {
    return 0;
  }
  constexpr unsigned kDepths = 5;  // 8, 10, 12, 14, 16 bits
  return static_cast<unsigned>(std::countr_zero(format)) % kDepths * 2;
}

std::optional<SourceLayout> ColorLayoutOf(std::uint32_t format) {
  switch (format) {
    case kBgr24Format:
      return kFromBgr24;
    case kBgr30Format:
      return kFromBgr30;
    case kYuv411Format:
      return kFromYuv411;
    case kYuv422Format:
      return kFromYuv422;
    case kYuv444Format:
      return kFromYuv444;
    default:
      return std::nullopt;
  }
}

std::optional<TargetLayout> TargetLayoutOf(std::uint32_t output_format) {
  switch (static_cast<OutputFormat>(output_format)) {
    case OutputFormat::kMono8:
      return kToGrey8;
    case OutputFormat::kBgr24:
      return kToBgr24;
    case OutputFormat::kBgr32:
      return kToBgr32;
  }
  return std::nullopt;
}

std::size_t BytesPerPixel(TargetLayout layout) {
  constexpr std::array<std::size_t, kTargetLayouts> kBytes = {1, 3, 4};
  return kBytes[layout];
}

bool HasNoPixels(const ConversionRequest& request) {
  return request.width == 0 || request.height == 0;
}

bool BuffersArePossible(const ConversionRequest& request) {
  return request.source != nullptr && request.destination != nullptr &&
         IsPossibleImage(request.width, request.height, kLargestPixel);
}

/// Words to 8 bits, and these to the target's layout, a piece at a time.
void ConvertDeep(const ConversionRequest& request, unsigned shift, TargetLayout target,
                 const PixelKernels& kernels) {
  const std::size_t pixels = PixelCount(request.width, request.height);
  if (target == kToGrey8) {
    kernels.narrow(request.source, shift, request.destination, pixels);
    return;
  }
  std::array<std::uint8_t, 4096> piece;
  for (std::size_t i = 0; i < pixels; i += piece.size()) {
    const std::size_t n = std::min(piece.size(), pixels - i);
    kernels.narrow(request.source + 2 * i, shift, piece.data(), n);
    kernels.convert[kFromGrey8][target](piece.data(),
                                        request.destination + BytesPerPixel(target) * i, n);
  }
}

void ConvertGrey(const ConversionRequest& request, TargetLayout target,
                 const PixelKernels& kernels) {
  if (const unsigned shift = ShiftOf(request.transfer_format); shift != 0) {
    ConvertDeep(request, shift, target, kernels);
  } else {
    kernels.convert[kFromGrey8][target](request.source, request.destination,
                                        PixelCount(request.width, request.height));
  }
}

}  // namespace

Status ConvertTo8Bits(const ConversionRequest& request, const PixelKernels& kernels) {
  if (ColorLayoutOf(request.transfer_format)) {
    return error::kInvalidParameter;
  }
  if (HasNoPixels(request)) {
    return error::kNone;
  }
  if (!BuffersArePossible(request)) {
    return error::kInvalidParameter;
  }
  ConvertGrey(request, kToGrey8, kernels);
  return error::kNone;
}

Status ConvertToImage(const ConversionRequest& request, const PixelKernels& kernels) {
  const auto target = TargetLayoutOf(request.output_format);
  if (!target) {
    return error::kInvalidParameter;
  }
  const auto color = ColorLayoutOf(request.transfer_format);
  if ((!color && !IsGrey(request.transfer_format)) || HasNoPixels(request)) {
    return error::kNone;
  }
  constexpr std::uint32_t kYuvGroup = 4;
  const bool is_yuv = request.transfer_format >= kYuv411Format;
  if ((is_yuv && request.width % kYuvGroup != 0) || !BuffersArePossible(request)) {
    return error::kInvalidParameter;
  }
  if (color) {
    kernels.convert[*color][*target](request.source, request.destination,
                                     PixelCount(request.width, request.height));
  } else {
    ConvertGrey(request, *target, kernels);
  }
  return error::kNone;
}

}  // namespace vexa::imaging

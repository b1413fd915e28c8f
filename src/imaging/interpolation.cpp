#include "imaging/interpolation.hpp"

#include <cstddef>
#include <cstring>
#include <limits>

#include "imaging/color_array.hpp"
#include "imaging/demosaic.hpp"

namespace vexa::imaging {
namespace {

struct MinimumSize {
  std::uint32_t width;
  std::uint32_t height;
};

MinimumSize MinimumSizeOf(InterpolationMethod method) {
  switch (method) {
    case InterpolationMethod::kBilinear:
      return {2, 4};
    case InterpolationMethod::kFourTap:
      return {6, 6};
    case InterpolationMethod::kCellCentred:
      return {2, 2};
    default:
      return {0, 0};
  }
}

std::size_t BytesPerPixel(OutputFormat format) {
  switch (format) {
    case OutputFormat::kMono8:
      return 1;
    case OutputFormat::kBgr24:
      return 3;
    case OutputFormat::kBgr32:
      return 4;
  }
  return 0;
}

bool IsGrey(const InterpolationRequest& request) {
  return request.method == static_cast<std::uint8_t>(InterpolationMethod::kNone) ||
         request.color_array == static_cast<std::uint16_t>(ColorArray::kMono);
}

/// Whether the codes name something that exists (a colour array, and a method unless the picture
/// is grey in any case).
bool CodesAreKnown(const InterpolationRequest& request) {
  return request.color_array >= static_cast<std::uint16_t>(ColorArray::kMono) &&
         request.color_array <= static_cast<std::uint16_t>(ColorArray::kBggr) &&
         (IsGrey(request) ||
          request.method <= static_cast<std::uint8_t>(InterpolationMethod::kCellCentred));
}

/// Whether both buffers are there and no larger than an object can be.
bool BuffersArePossible(const InterpolationRequest& request) {
  const auto pixels = std::uint64_t{request.width} * request.height;
  const auto largest = static_cast<std::uint64_t>(std::numeric_limits<std::ptrdiff_t>::max());
  return request.source != nullptr && request.destination != nullptr &&
         pixels <= largest / BytesPerPixel(static_cast<OutputFormat>(request.output_format));
}

void Demosaic(const InterpolationRequest& request, std::size_t bytes_per_pixel,
              const RowKernels& kernels) {
  const auto array = static_cast<ColorArray>(request.color_array);
  const BayerFrame frame{
      .samples = request.source,
      .width = request.width,
      .height = request.height,
      .green_first = array == ColorArray::kGrbg || array == ColorArray::kGbrg,
  };
  const BgrImage image(request.destination, request.width, bytes_per_pixel,
                       bytes_per_pixel == 3 ? kernels.store_bgr24 : kernels.store_bgr32,
                       array == ColorArray::kGbrg || array == ColorArray::kBggr);
  switch (static_cast<InterpolationMethod>(request.method)) {
    case InterpolationMethod::kNone:
      break;
    case InterpolationMethod::kMosaic:
      return DemosaicMosaic(frame, image, kernels);
    case InterpolationMethod::kNearest:
      return DemosaicNearest(frame, image, kernels);
    case InterpolationMethod::kBilinear:
      return DemosaicBilinear(frame, image, kernels, array == ColorArray::kGrbg);
    case InterpolationMethod::kFourTap:
      return DemosaicFourTap(frame, image, kernels);
    case InterpolationMethod::kCellCentred:
      return DemosaicCellCentred(frame, image, kernels);
  }
}

/// BGR24 to BGR32 in the same buffer, from the last pixel back so that none is overwritten before
/// it has moved.
void WidenInPlace(std::uint8_t* pixels, std::size_t count) {
  for (std::size_t i = count; i-- > 0;) {
    std::uint8_t bgr[3];
    std::memcpy(bgr, pixels + 3 * i, sizeof bgr);
    std::memcpy(pixels + 4 * i, bgr, sizeof bgr);
    pixels[4 * i + 3] = 0;
  }
}

/// Methods 1 to 5, on buffers that have been checked.
void InterpolateBayer(const InterpolationRequest& request, std::size_t pixels,
                      const RowKernels& kernels) {
  const auto method = static_cast<InterpolationMethod>(request.method);
  const bool whole_cells_only =
      method == InterpolationMethod::kMosaic || method == InterpolationMethod::kNearest;
  const bool odd_size = ((request.width | request.height) & 1) != 0;
  if (static_cast<OutputFormat>(request.output_format) == OutputFormat::kBgr24) {
    Demosaic(request, 3, kernels);
  } else if (whole_cells_only && odd_size) {
    Demosaic(request, 3, kernels);
    WidenInPlace(request.destination, pixels);
  } else {
    // Every pixel gets its value: stored as BGR32 at once, the same picture takes one pass less.
    Demosaic(request, 4, kernels);
  }
}

}  // namespace

Status InterpolateColor(const InterpolationRequest& request, const RowKernels& kernels) {
  const std::size_t bytes_per_pixel =
      BytesPerPixel(static_cast<OutputFormat>(request.output_format));
  if (bytes_per_pixel == 0) {
    return error::kInvalidParameter;
  }
  const bool plain_copy = bytes_per_pixel == 1;
  if (!plain_copy && !CodesAreKnown(request)) {
    return error::kInvalidParameter;
  }
  if (!plain_copy && !IsGrey(request)) {
    if (request.height < 2) {
      return error::kNone;
    }
    const auto smallest = MinimumSizeOf(static_cast<InterpolationMethod>(request.method));
    if (request.width < smallest.width || request.height < smallest.height) {
      return error::kInvalidParameter;
    }
  }
  if (request.width == 0 || request.height == 0) {
    return error::kNone;
  }
  if (!BuffersArePossible(request)) {
    return error::kInvalidParameter;
  }

  const std::size_t pixels = std::size_t{request.width} * request.height;
  if (plain_copy) {
    std::memmove(request.destination, request.source, pixels);
  } else if (IsGrey(request)) {
    const auto store = bytes_per_pixel == 3 ? kernels.store_bgr24 : kernels.store_bgr32;
    store(request.source, request.source, request.source, request.destination, pixels);
  } else {
    InterpolateBayer(request, pixels, kernels);
  }
  return error::kNone;
}

}  // namespace vexa::imaging

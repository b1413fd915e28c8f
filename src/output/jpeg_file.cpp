#include "output/jpeg_file.hpp"

#include <algorithm>
#include <memory>

#include "output/jpeg/jpeg_encoder.hpp"
#include "output/std_file_output.hpp"

namespace vexa::output {
namespace {

/// Bytes of one sample each; 0: the format has words as samples, or is none.
std::int32_t Channels(PixelFormat format) {
  const std::uint32_t bytes = BytesPerPixel(format);
  return bytes == 2 ? 0 : static_cast<std::int32_t>(bytes);
}

bool IsSide(std::uint32_t side) { return side >= 1 && side <= kLongestJpegSide; }

CodingStatus Encode(const Image& image, std::int32_t quality, CBaseStreamOutput* stream,
                    CJPEGEncoder& encoder) {
  const std::int32_t channels = Channels(image.format);
  const auto width = static_cast<std::int32_t>(image.width);
  const bool grey = channels == 1;
  CodingStatus status = encoder.SetSource(image.pixels, width * channels, width,
                                          static_cast<std::int32_t>(image.height), channels,
                                          grey ? SourceColor::kGrey : SourceColor::kBgr, 0, 8);
  if (status == CodingStatus::kOk) {
    status = encoder.SetDestination(stream);
  }
  if (status == CodingStatus::kOk) {
    status = encoder.SetParams(JpegMode::kBaseline, grey ? JpegColor::kGrey : JpegColor::kYCbCr,
                               JpegSampling::kHalfChrominance, 0, false, quality);
  }
  if (status == CodingStatus::kOk) {
    status = encoder.WriteHeader();
  }
  return status == CodingStatus::kOk ? encoder.WriteData() : status;
}

}  // namespace

Status CheckJpeg(const Image& image) {
  const bool fits = Channels(image.format) != 0 && IsSide(image.width) && IsSide(image.height) &&
                    image.pixels != nullptr;
  return fits ? Status() : error::kInvalidParameter;
}

Status WriteJpeg(const Image& image, std::uint32_t compression, std::FILE* file) {
  const auto quality = static_cast<std::int32_t>(100 - std::min(compression, std::uint32_t{100}));
  CStdFileOutput2 stream(file);
  // On the heap: the encoder has its tables inside, and stacks of callers can be small.
  const auto encoder = std::make_unique<CJPEGEncoder>();
  const CodingStatus status = Encode(image, quality, &stream, *encoder);
  return status == CodingStatus::kNoMemory ? error::kNotEnoughMemory : Status();
}

}  // namespace vexa::output

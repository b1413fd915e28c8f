/// \file
/// Encoding to memory.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>
#include <vector>

#include "output/jpeg/jpeg_encoder.hpp"
#include "output/stream.hpp"

namespace vexa::test {

/// Keeps what it is given, up to a limit.
class MemoryStream : public output::CBaseStreamOutput {
 public:
  explicit MemoryStream(std::size_t limit = std::numeric_limits<std::size_t>::max())
      : limit_(limit) {}

  output::CodingStatus Open(void*) override { return output::CodingStatus::kOk; }
  output::CodingStatus Close() override { return output::CodingStatus::kOk; }
  output::CodingStatus Write(const std::uint8_t* from, std::int32_t count,
                             std::int32_t* written) override {
    const std::size_t accepted = std::min(static_cast<std::size_t>(count), limit_ - bytes.size());
    bytes.insert(bytes.end(), from, from + accepted);
    *written = static_cast<std::int32_t>(accepted);
    return *written == count ? output::CodingStatus::kOk : output::CodingStatus::kShortWrite;
  }

  std::vector<std::uint8_t> bytes;

 private:
  std::size_t limit_;
};

/// Encodes a picture of 1 (grey), 3 or 4 (BGR) bytes per pixel as saving does it.
/// @param line_step bytes from row to row; 0: as many as a row has.
inline output::CodingStatus Encode(output::CBaseStreamOutput& stream, const std::uint8_t* pixels,
                                   int width, int height, int channels, int quality,
                                   const output::JpegKernels& kernels = output::BestJpegKernels(),
                                   int line_step = 0) {
  using namespace output;
  CJPEGEncoder encoder(kernels);
  CodingStatus status =
      encoder.SetSource(pixels, line_step != 0 ? line_step : width * channels, width, height,
                        channels, channels == 1 ? SourceColor::kGrey : SourceColor::kBgr, 0, 8);
  if (status == CodingStatus::kOk) status = encoder.SetDestination(&stream);
  if (status == CodingStatus::kOk) {
    status =
        encoder.SetParams(JpegMode::kBaseline, channels == 1 ? JpegColor::kGrey : JpegColor::kYCbCr,
                          JpegSampling::kHalfChrominance, 0, false, quality);
  }
  if (status == CodingStatus::kOk) status = encoder.WriteHeader();
  return status == CodingStatus::kOk ? encoder.WriteData() : status;
}

}  // namespace vexa::test

// Encodes pictures of any size, content and quality with every version of the inner loops. All
// versions must write the same file, and libjpeg must read it back without a warning.

#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <random>
#include <vector>

#include "output/encoding.hpp"
#include "output/host/decode_jpeg.hpp"

namespace {

using namespace vexa;

constexpr std::size_t kMostSamples = 1U << 14;  // more would only be slower

/// What the pixels are made of besides the input's bytes.
enum class Filling { kRepeated, kNoise, kBlackAndWhite, kMaxValue = kBlackAndWhite };

struct Picture {
  int width = 0;
  int height = 0;
  int channels = 0;
  int quality = 0;
  std::vector<std::uint8_t> pixels;
};

[[noreturn]] void Fail(const char* what, const Picture& picture, const char* detail) {
  std::fprintf(stderr, "%d x %d x %d, quality %d: %s %s\n", picture.width, picture.height,
               picture.channels, picture.quality, what, detail);
  std::abort();
}

Picture MakePicture(FuzzedDataProvider& data) {
  Picture picture;
  picture.channels = data.PickValueInArray({1, 3, 4});
  picture.quality = data.ConsumeIntegralInRange(0, 100);
  // One side may have any length; the other then has what is left of the samples.
  const bool upright = data.ConsumeBool();
  const int longest = static_cast<int>(kMostSamples) / picture.channels;
  const int one = data.ConsumeIntegralInRange(1, data.ConsumeIntegralInRange(1, longest));
  const int other = data.ConsumeIntegralInRange(1, std::min(longest / one, 300));
  picture.width = upright ? other : one;
  picture.height = upright ? one : other;

  const auto filling = data.ConsumeEnum<Filling>();
  const std::vector<std::uint8_t> bytes = data.ConsumeRemainingBytes<std::uint8_t>();
  std::minstd_rand random(static_cast<std::uint32_t>(bytes.size()) + 1);
  picture.pixels.resize(static_cast<std::size_t>(picture.width) *
                        static_cast<std::size_t>(picture.height) *
                        static_cast<std::size_t>(picture.channels));
  for (std::size_t i = 0; i < picture.pixels.size(); ++i) {
    unsigned value = bytes.empty() ? 0U : bytes[i % bytes.size()];
    if (filling != Filling::kRepeated) {
      value += static_cast<unsigned>(random());
    }
    if (filling == Filling::kBlackAndWhite) {
      value = value & 8U ? 255 : 0;
    }
    picture.pixels[i] = static_cast<std::uint8_t>(value);
  }
  return picture;
}

void ReadBack(const Picture& picture, const std::vector<std::uint8_t>& file) {
  try {
    const test::DecodedJpeg decoded = test::DecodeJpeg(file);
    if (decoded.warnings != 0 || decoded.width != static_cast<unsigned>(picture.width) ||
        decoded.height != static_cast<unsigned>(picture.height) ||
        decoded.channels != std::min(picture.channels, 3)) {
      Fail("libjpeg", picture, "warns, or has read another picture");
    }
  } catch (const std::exception& error) {
    Fail("libjpeg", picture, error.what());
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* input, std::size_t size) {
  FuzzedDataProvider data(input, size);
  const Picture picture = MakePicture(data);
  std::vector<std::uint8_t> first;
  for (const output::JpegKernels* kernels : output::UsableJpegKernels()) {
    test::MemoryStream stream;
    if (test::Encode(stream, picture.pixels.data(), picture.width, picture.height, picture.channels,
                     picture.quality, *kernels) != output::CodingStatus::kOk) {
      Fail(kernels->name, picture, "has failed");
    }
    if (first.empty()) {
      first = stream.bytes;
    } else if (stream.bytes != first) {
      Fail(kernels->name, picture, "writes another file");
    }
  }
  ReadBack(picture, first);
  return 0;
}

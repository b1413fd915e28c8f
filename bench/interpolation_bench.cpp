// Colour interpolation of a 5 megapixel frame: every method with every version of the inner
// loops, beside a copy of as many bytes as the picture has and, where OpenCV is installed, its
// bilinear conversion. One thread.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "imaging/color_array.hpp"
#include "imaging/interpolation.hpp"

#if defined(VEXA_BENCH_OPENCV)
#include <opencv2/imgproc.hpp>
#endif

namespace {

using namespace vexa::imaging;

constexpr std::uint32_t kWidth = 2592;
constexpr std::uint32_t kHeight = 1944;
constexpr std::size_t kPixels = std::size_t{kWidth} * kHeight;

std::vector<std::uint8_t> NoiseFrame() {
  std::mt19937 random(1);
  std::vector<std::uint8_t> frame(kPixels);
  std::generate(frame.begin(), frame.end(), [&] { return static_cast<std::uint8_t>(random()); });
  return frame;
}

void Interpolate(benchmark::State& state, const RowKernels* kernels, InterpolationMethod method,
                 OutputFormat format) {
  const std::vector<std::uint8_t> frame = NoiseFrame();
  std::vector<std::uint8_t> image(kPixels * 4);
  const InterpolationRequest request{
      .width = kWidth,
      .height = kHeight,
      .color_array = static_cast<std::uint16_t>(ColorArray::kGrbg),
      .method = static_cast<std::uint8_t>(method),
      .output_format = static_cast<std::uint32_t>(format),
      .source = frame.data(),
      .destination = image.data(),
  };
  for (auto _ : state) {
    if (!InterpolateColor(request, *kernels).ok()) {
      state.SkipWithError("refused");
      break;
    }
    benchmark::ClobberMemory();
  }
}

void Copy(benchmark::State& state, std::size_t bytes) {
  const std::vector<std::uint8_t> from(bytes, 1);
  std::vector<std::uint8_t> to(bytes);
  for (auto _ : state) {
    std::memcpy(to.data(), from.data(), bytes);
    benchmark::ClobberMemory();
  }
}

#if defined(VEXA_BENCH_OPENCV)
void OpenCv(benchmark::State& state, int code, int channels) {
  std::vector<std::uint8_t> frame = NoiseFrame();
  const cv::Mat raw(static_cast<int>(kHeight), static_cast<int>(kWidth), CV_8UC1, frame.data());
  cv::Mat image(raw.size(), CV_MAKETYPE(CV_8U, channels));
  cv::setNumThreads(1);
  for (auto _ : state) {
    cv::cvtColor(raw, image, code, channels);
    benchmark::ClobberMemory();
  }
}
#endif

void Register() {
  constexpr auto kUnit = benchmark::kMicrosecond;
  benchmark::RegisterBenchmark("memcpy/bgr24", Copy, kPixels * 3)->Unit(kUnit);
  benchmark::RegisterBenchmark("memcpy/bgr32", Copy, kPixels * 4)->Unit(kUnit);
#if defined(VEXA_BENCH_OPENCV)
  benchmark::RegisterBenchmark("opencv/bilinear/bgr24", OpenCv, cv::COLOR_BayerGB2BGR, 3)
      ->Unit(kUnit);
  benchmark::RegisterBenchmark("opencv/bilinear/bgr32", OpenCv, cv::COLOR_BayerGB2BGRA, 4)
      ->Unit(kUnit);
#endif
  const char* const methods[] = {"none",     "mosaic",   "nearest",
                                 "bilinear", "four_tap", "cell_centred"};
  for (const RowKernels* kernels : UsableRowKernels()) {
    for (std::uint8_t method = 0; method < std::size(methods); ++method) {
      for (const auto format : {OutputFormat::kBgr24, OutputFormat::kBgr32}) {
        const std::string name = std::string(kernels->name) + "/" + methods[method] +
                                 (format == OutputFormat::kBgr24 ? "/bgr24" : "/bgr32");
        benchmark::RegisterBenchmark(name.c_str(), Interpolate, kernels,
                                     static_cast<InterpolationMethod>(method), format)
            ->Unit(kUnit);
      }
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  Register();
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}

/// \file
/// What the benchmarks of image functions share. Names are <operation>/<case>/<who>: scripts/bench
/// sets those that differ only in <who> side by side.
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <utility>
#include <vector>

#if defined(VEXA_BENCH_OPENCV)
#include <opencv2/imgproc.hpp>
#endif
#if defined(VEXA_BENCH_LIBYUV)
#include <libyuv.h>
#endif

namespace vexa::bench {

/// A 5 megapixel sensor.
inline constexpr std::uint32_t kWidth = 2592;
inline constexpr std::uint32_t kHeight = 1944;
inline constexpr std::size_t kPixels = std::size_t{kWidth} * kHeight;

using Bytes = std::vector<std::uint8_t>;

inline Bytes Noise(std::size_t size) {
  std::mt19937 random(1);
  Bytes noise(size);
  std::generate(noise.begin(), noise.end(), [&] { return static_cast<std::uint8_t>(random()); });
  return noise;
}

/// Registers work that is called again and again as <operation>/<case>/<who>. `prepare` makes it:
/// it is called when the benchmark runs, so that its buffers live no longer.
template <typename Prepare>
void Add(const std::string& operation_and_case, const std::string& who, Prepare prepare) {
  benchmark::RegisterBenchmark((operation_and_case + "/" + who).c_str(),
                               [prepare](benchmark::State& state) {
                                 auto work = prepare();
                                 for (auto _ : state) {
                                   work();
                                   benchmark::ClobberMemory();
                                 }
                               })
      ->Unit(benchmark::kMicrosecond);
}

/// The floor: as many bytes copied as the result has.
inline void AddCopy(const std::string& operation_and_case, std::size_t bytes) {
  Add(operation_and_case, "memcpy", [bytes] {
    return [from = Noise(bytes), to = Bytes(bytes)]() mutable {
      std::memcpy(to.data(), from.data(), from.size());
    };
  });
}

inline int RunAll(int argc, char** argv, void (*register_all)()) {
  benchmark::Initialize(&argc, argv);
#if defined(VEXA_BENCH_OPENCV)
  cv::setNumThreads(1);
#endif
  register_all();
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}

}  // namespace vexa::bench

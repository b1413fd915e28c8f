// Measurements on a 5 megapixel raw frame, and the white balance on the host: ours beside OpenCV,
// where it is installed, beside the same loops without any art, and beside a copy of the frame. One
// thread.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <vector>

#include "imaging/auto_white_balance.hpp"
#include "imaging/bayer_tables.hpp"
#include "imaging/bright_pixels.hpp"
#include "imaging/color_array.hpp"
#include "imaging/pattern_statistics.hpp"

#if defined(VEXA_BENCH_OPENCV)
#include <opencv2/imgproc.hpp>
#endif

namespace {

using namespace vexa::imaging;

constexpr std::uint32_t kWidth = 2592;
constexpr std::uint32_t kHeight = 1944;
constexpr std::size_t kPixels = std::size_t{kWidth} * kHeight;
constexpr auto kArray = static_cast<std::uint16_t>(ColorArray::kRggb);

using Frame = std::vector<std::uint8_t>;

Frame NoiseFrame(std::size_t bytes = kPixels) {
  std::mt19937 random(1);
  Frame frame(bytes);
  std::generate(frame.begin(), frame.end(), [&] { return static_cast<std::uint8_t>(random()); });
  return frame;
}

// The samples of one value wait for each other's counts most.
Frame GreyFrame() { return Frame(kPixels, 128); }

// What a covered lens leaves.
Frame DarkFrame() {
  Frame frame = NoiseFrame();
  std::ranges::transform(frame, frame.begin(),
                         [](std::uint8_t v) { return static_cast<std::uint8_t>(v / 32); });
  for (std::size_t i = 0; i < kPixels; i += 100'003) frame[i] = 255;
  return frame;
}

template <typename Work>
void Run(const char* name, Work work) {
  benchmark::RegisterBenchmark(name, [work](benchmark::State& state) mutable {
    for (auto _ : state) {
      work();
      benchmark::ClobberMemory();
    }
  })->Unit(benchmark::kMicrosecond);
}

void CopyBeside(const char* name, std::size_t bytes) {
  Run(name, [from = NoiseFrame(bytes), to = Frame(bytes)]() mutable {
    std::memcpy(to.data(), from.data(), from.size());
  });
}

void Average(const Frame& frame, std::uint32_t format) {
  std::array<float, kPatternPositions> mean{};
  const vexa::Status status = AveragePixelValue({.width = kWidth,
                                                 .height = kHeight,
                                                 .color_array = kArray,
                                                 .transfer_format = format,
                                                 .frame = frame.data(),
                                                 .region_width = kWidth,
                                                 .region_height = kHeight},
                                                &mean);
  benchmark::DoNotOptimize(status);
  benchmark::DoNotOptimize(mean);
}

void PlainHistograms(const Frame& frame) {
  std::array<Histogram, kPatternPositions> histograms{};
  for (std::size_t y = 0; y < kHeight; ++y) {
    for (std::size_t x = 0; x < kWidth; ++x) {
      ++histograms[2 * (y & 1) + (x & 1)][frame[y * kWidth + x]];
    }
  }
  benchmark::DoNotOptimize(histograms);
}

BayerTables GainTables() {
  BayerTables tables{};
  const unsigned gains[] = {200, 128, 128, 170};
  for (std::size_t k = 0; k < tables.size(); ++k) {
    for (unsigned i = 0; i < 256; ++i) {
      tables[k][i] = static_cast<std::uint8_t>(std::min(i * gains[k] / 128, 255U));
    }
  }
  return tables;
}

#if defined(VEXA_BENCH_OPENCV)
// The two positions of every second row as the channels of an image.
cv::Mat Rows(const Frame& frame, int first, int type) {
  const int channel_bytes = static_cast<int>(CV_ELEM_SIZE1(type));
  auto* data = const_cast<std::uint8_t*>(frame.data());
  const std::size_t row = std::size_t{kWidth} * static_cast<std::size_t>(channel_bytes);
  return {static_cast<int>(kHeight / 2), static_cast<int>(kWidth / 2), type,
          data + static_cast<std::size_t>(first) * row, 2 * row};
}

void OpenCvAverage(const Frame& frame, int type) {
  for (const int first : {0, 1}) {
    benchmark::DoNotOptimize(cv::mean(Rows(frame, first, type)));
  }
}

void OpenCvHistograms(const Frame& frame) {
  constexpr int kBins[] = {256};
  constexpr float kRange[] = {0, 256};
  const float* ranges[] = {kRange};
  for (const int first : {0, 1}) {
    const cv::Mat rows = Rows(frame, first, CV_8UC2);
    for (const int channel : {0, 1}) {
      cv::Mat histogram;
      cv::calcHist(&rows, 1, &channel, cv::noArray(), histogram, 1, kBins, ranges);
      benchmark::DoNotOptimize(histogram.data);
    }
  }
}

void OpenCvTables(Frame& frame, const BayerTables& tables) {
  for (const std::size_t first : {0, 1}) {
    cv::Mat rows = Rows(frame, static_cast<int>(first), CV_8UC2);
    cv::Mat table(1, 256, CV_8UC2);
    for (int i = 0; i < 256; ++i) {
      const auto value = static_cast<std::size_t>(i);
      table.at<cv::Vec2b>(i) = {tables[2 * first][value], tables[2 * first + 1][value]};
    }
    cv::LUT(rows, table, rows);
  }
}

void OpenCvBrightPixels(const Frame& frame) {
  const cv::Mat picture(static_cast<int>(kHeight), static_cast<int>(kWidth), CV_8UC1,
                        const_cast<std::uint8_t*>(frame.data()));
  std::vector<cv::Point> points;
  cv::findNonZero(picture >= 64, points);
  benchmark::DoNotOptimize(points.data());
}
#endif

void Register() {
  Run("average/8bit/ours", [frame = NoiseFrame()] { Average(frame, 1); });
  Run("average/16bit/ours", [frame = NoiseFrame(2 * kPixels)] { Average(frame, 16); });
  CopyBeside("average/8bit/memcpy", kPixels);
  CopyBeside("average/16bit/memcpy", 2 * kPixels);

  const auto measure = [](const Frame& frame) {
    benchmark::DoNotOptimize(MeasurePattern(kWidth, kHeight, frame.data()));
  };
  Run("histograms/noise/ours", [measure, frame = NoiseFrame()] { measure(frame); });
  Run("histograms/grey/ours", [measure, frame = GreyFrame()] { measure(frame); });
  Run("histograms/noise/reference", [frame = NoiseFrame()] { PlainHistograms(frame); });
  Run("histograms/grey/reference", [frame = GreyFrame()] { PlainHistograms(frame); });
  CopyBeside("histograms/noise/memcpy", kPixels);

  Run("white_balance_gains/noise/ours", [frame = NoiseFrame()] {
    ColorGains gains;
    const vexa::Status status = FindColorGains(kWidth, kHeight, kArray, frame.data(), &gains);
    benchmark::DoNotOptimize(status);
    benchmark::DoNotOptimize(gains);
  });
  Run("white_balance_correction/noise/ours",
      [frame = NoiseFrame(), tables = GainTables()]() mutable {
        ApplyBayerTables(tables, kWidth, kHeight, kArray, frame.data());
      });
  CopyBeside("white_balance_correction/noise/memcpy", kPixels);

  Run("bright_pixels/dark/ours", [frame = DarkFrame()] {
    benchmark::DoNotOptimize(FindBrightPixels(kWidth, kHeight, frame.data(), 64, 64));
  });
  CopyBeside("bright_pixels/dark/memcpy", kPixels);

#if defined(VEXA_BENCH_OPENCV)
  cv::setNumThreads(1);
  Run("average/8bit/opencv", [frame = NoiseFrame()] { OpenCvAverage(frame, CV_8UC2); });
  Run("average/16bit/opencv",
      [frame = NoiseFrame(2 * kPixels)] { OpenCvAverage(frame, CV_16UC2); });
  Run("histograms/noise/opencv", [frame = NoiseFrame()] { OpenCvHistograms(frame); });
  Run("histograms/grey/opencv", [frame = GreyFrame()] { OpenCvHistograms(frame); });
  Run("white_balance_correction/noise/opencv",
      [frame = NoiseFrame(), tables = GainTables()]() mutable { OpenCvTables(frame, tables); });
  Run("bright_pixels/dark/opencv", [frame = DarkFrame()] { OpenCvBrightPixels(frame); });
#endif
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  Register();
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}

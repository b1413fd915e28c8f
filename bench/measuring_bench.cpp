// Measurements on a 5 megapixel raw frame, and the white balance on the host: ours beside OpenCV,
// where it is installed, beside the same loops without any art, and beside a copy of the frame. One
// thread.
#include <algorithm>
#include <array>
#include <string>

#include "bench_support.hpp"
#include "imaging/auto_white_balance.hpp"
#include "imaging/bayer_tables.hpp"
#include "imaging/bright_pixels.hpp"
#include "imaging/color_array.hpp"
#include "imaging/pattern_statistics.hpp"

namespace {

using namespace vexa::imaging;
using namespace vexa::bench;

constexpr auto kArray = static_cast<std::uint16_t>(ColorArray::kRggb);

// The samples of one value wait for each other's counts most.
Bytes GreyFrame() { return Bytes(kPixels, 128); }

// What a covered lens leaves.
Bytes DarkFrame() {
  Bytes frame = Noise(kPixels);
  std::ranges::transform(frame, frame.begin(),
                         [](std::uint8_t v) { return static_cast<std::uint8_t>(v / 32); });
  for (std::size_t i = 0; i < kPixels; i += 100'003) frame[i] = 255;
  return frame;
}

void Average(const Bytes& frame, std::uint32_t format,
             const FrameKernels& kernels = BestFrameKernels()) {
  std::array<float, kPatternPositions> mean{};
  const vexa::Status status = AveragePixelValue({.width = kWidth,
                                                 .height = kHeight,
                                                 .color_array = kArray,
                                                 .transfer_format = format,
                                                 .frame = frame.data(),
                                                 .region_width = kWidth,
                                                 .region_height = kHeight},
                                                &mean, kernels);
  benchmark::DoNotOptimize(status);
  benchmark::DoNotOptimize(mean);
}

void PlainHistograms(const Bytes& frame) {
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
cv::Mat Rows(const Bytes& frame, int first, int type) {
  const int channel_bytes = static_cast<int>(CV_ELEM_SIZE1(type));
  auto* data = const_cast<std::uint8_t*>(frame.data());
  const std::size_t row = std::size_t{kWidth} * static_cast<std::size_t>(channel_bytes);
  return {static_cast<int>(kHeight / 2), static_cast<int>(kWidth / 2), type,
          data + static_cast<std::size_t>(first) * row, 2 * row};
}

void OpenCvAverage(const Bytes& frame, int type) {
  for (const int first : {0, 1}) {
    benchmark::DoNotOptimize(cv::mean(Rows(frame, first, type)));
  }
}

void OpenCvHistograms(const Bytes& frame) {
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

void OpenCvTables(Bytes& frame, const BayerTables& tables) {
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

void OpenCvBrightPixels(const Bytes& frame) {
  const cv::Mat picture(static_cast<int>(kHeight), static_cast<int>(kWidth), CV_8UC1,
                        const_cast<std::uint8_t*>(frame.data()));
  std::vector<cv::Point> points;
  cv::findNonZero(picture >= 64, points);
  benchmark::DoNotOptimize(points.data());
}
#endif

/// Registers work on a frame, which `make` makes.
template <typename Make, typename Work>
void AddOn(const std::string& operation_and_case, const std::string& who, Make make, Work work) {
  Add(operation_and_case, who, [=] { return [work, frame = make()]() mutable { work(frame); }; });
}

Bytes NoiseFrame() { return Noise(kPixels); }
Bytes DeepNoiseFrame() { return Noise(2 * kPixels); }

void Register() {
  for (const FrameKernels* kernels : UsableFrameKernels()) {
    AddOn("average/8bit", kernels->name, NoiseFrame,
          [kernels](Bytes& frame) { Average(frame, 1, *kernels); });
  }
  AddOn("average/8bit", "ours", NoiseFrame, [](Bytes& frame) { Average(frame, 1); });
  AddOn("average/16bit", "ours", DeepNoiseFrame, [](Bytes& frame) { Average(frame, 16); });
  AddCopy("average/8bit", kPixels);
  AddCopy("average/16bit", 2 * kPixels);

  const auto measure = [](Bytes& frame) {
    benchmark::DoNotOptimize(MeasurePattern(kWidth, kHeight, frame.data()));
  };
  AddOn("histograms/noise", "ours", NoiseFrame, measure);
  AddOn("histograms/grey", "ours", GreyFrame, measure);
  AddOn("histograms/noise", "reference", NoiseFrame, PlainHistograms);
  AddOn("histograms/grey", "reference", GreyFrame, PlainHistograms);
  AddCopy("histograms/noise", kPixels);

  AddOn("white_balance_gains/noise", "ours", NoiseFrame, [](Bytes& frame) {
    ColorGains gains;
    const vexa::Status status = FindColorGains(kWidth, kHeight, kArray, frame.data(), &gains);
    benchmark::DoNotOptimize(status);
    benchmark::DoNotOptimize(gains);
  });
  AddOn("white_balance_correction/noise", "ours", NoiseFrame,
        [tables = GainTables()](Bytes& frame) {
          ApplyBayerTables(tables, kWidth, kHeight, kArray, frame.data());
        });
  AddCopy("white_balance_correction/noise", kPixels);

  AddOn("bright_pixels/dark", "ours", DarkFrame, [](Bytes& frame) {
    benchmark::DoNotOptimize(FindBrightPixels(kWidth, kHeight, frame.data(), 64, 64));
  });
  AddCopy("bright_pixels/dark", kPixels);

#if defined(VEXA_BENCH_OPENCV)
  AddOn("average/8bit", "opencv", NoiseFrame, [](Bytes& frame) { OpenCvAverage(frame, CV_8UC2); });
  AddOn("average/16bit", "opencv", DeepNoiseFrame,
        [](Bytes& frame) { OpenCvAverage(frame, CV_16UC2); });
  AddOn("histograms/noise", "opencv", NoiseFrame, OpenCvHistograms);
  AddOn("histograms/grey", "opencv", GreyFrame, OpenCvHistograms);
  AddOn("white_balance_correction/noise", "opencv", NoiseFrame,
        [tables = GainTables()](Bytes& frame) { OpenCvTables(frame, tables); });
  AddOn("bright_pixels/dark", "opencv", DarkFrame, OpenCvBrightPixels);
#endif
}

}  // namespace

int main(int argc, char** argv) { return RunAll(argc, argv, Register); }

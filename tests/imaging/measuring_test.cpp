// Measurements on raw frames, and the white balance and defect table that follow from them.

#include <algorithm>
#include <atomic>
#include <cmath>
#include <random>
#include <thread>

#include "imaging/auto_white_balance.hpp"
#include "imaging/bright_pixels.hpp"
#include "imaging/pattern_statistics.hpp"
#include "library/transfer_fixture.hpp"

namespace vexa::test {
namespace {

using imaging::BrightPixel;
using simulator::CameraConfig;
using ::testing::ElementsAre;
using Gains = std::array<WORD, 4>;
using Pixels = std::vector<BYTE>;

Pixels RandomFrame(std::size_t size, unsigned seed, unsigned low = 0, unsigned high = 255) {
  std::mt19937 random(seed);
  std::uniform_int_distribution<unsigned> level(low, high);
  Pixels frame(size);
  std::generate(frame.begin(), frame.end(), [&] { return static_cast<BYTE>(level(random)); });
  return frame;
}

/// A frame whose cells are all alike: the four positions' values.
Pixels CellFrame(DWORD width, DWORD height, const std::array<BYTE, 4>& cell) {
  Pixels frame(std::size_t{width} * height);
  for (std::size_t i = 0; i < frame.size(); ++i) {
    frame[i] = cell[2 * (i / width % 2) + i % width % 2];
  }
  return frame;
}

TEST(AveragePixelValue, FollowsTheDefinitionOnEveryRegion) {
  const struct {
    DWORD width, height, x, y, region_width, region_height;
  } regions[] = {{37, 11, 0, 0, 37, 11}, {37, 11, 1, 0, 5, 3},     {37, 11, 3, 5, 0xFFFFFFFF, 1},
                 {64, 7, 5, 6, 9, 4},    {2100, 3, 1, 1, 2099, 2}, {5, 5, 5, 0, 3, 3},
                 {5, 5, 0, 9, 1, 1},     {5, 5, 2, 2, 0, 3},       {1, 1, 0, 0, 1, 1}};
  for (const auto& r : regions) {
    const Pixels frame = RandomFrame(std::size_t{2} * r.width * r.height, r.width);
    for (const DWORD format : {1U, 2U, 16U}) {
      double sums[4] = {}, counts[4] = {};
      for (DWORD y = r.y; y < r.height && y - r.y < r.region_height; ++y) {
        for (DWORD x = r.x; x < r.width && x - r.x < r.region_width; ++x) {
          const std::size_t i = std::size_t{y} * r.width + x;
          sums[y % 2 * 2 + x % 2] += format == 1 ? frame[i] : frame[2 * i] + 256 * frame[2 * i + 1];
          counts[y % 2 * 2 + x % 2] += 1;
        }
      }
      const auto mean = [](double sum, double count) {
        return count == 0 ? 0.0F : static_cast<float>(sum / count);
      };
      for (WORD array = 1; array <= 5; ++array) {
        std::array<float, 4> average{-1, -1, -1, -1};
        ASSERT_TRUE(Vexa_GetAveragePixelValue(r.width, r.height, array, format, frame.data(), r.x,
                                              r.y, r.region_width, r.region_height,
                                              average.data()));
        const std::array<float, 4> expected =
            array == 1 ? std::array<float, 4>{mean(sums[0] + sums[1] + sums[2] + sums[3],
                                                   counts[0] + counts[1] + counts[2] + counts[3])}
                       : std::array<float, 4>{mean(sums[0], counts[0]), mean(sums[1], counts[1]),
                                              mean(sums[2], counts[2]), mean(sums[3], counts[3])};
        EXPECT_EQ(average, expected) << r.width << " from " << r.x << " format " << format;
        for (const imaging::FrameKernels* version : imaging::UsableFrameKernels()) {
          ASSERT_TRUE(imaging::AveragePixelValue({r.width, r.height, array, format, frame.data(),
                                                  r.x, r.y, r.region_width, r.region_height},
                                                 &average, *version)
                          .ok());
          EXPECT_EQ(average, expected) << r.width << " from " << r.x << ", " << version->name;
        }
      }
    }
  }
  // Words in rows so long that narrow sums would overflow.
  const Pixels white(std::size_t{2} * 600'000, 0xFF);
  std::array<float, 4> average{};
  ASSERT_TRUE(
      Vexa_GetAveragePixelValue(600'000, 1, 1, 16, white.data(), 0, 0, 600'000, 1, average.data()));
  EXPECT_EQ(average[0], 65535.0F);
}

TEST(AveragePixelValue, RefusesWhatItCannotRead) {
  const Pixels frame(64);
  for (const auto& [array, format] : std::vector<std::pair<WORD, DWORD>>{
           {0, 1}, {6, 1}, {2, 0}, {2, 3}, {2, 0x20}, {2, 0x400}, {2, 0x10001}}) {
    std::array<float, 4> average{7, 7, 7, 7};
    SetLastError(0);
    EXPECT_FALSE(
        Vexa_GetAveragePixelValue(4, 4, array, format, frame.data(), 0, 0, 4, 4, average.data()));
    EXPECT_EQ(GetLastError(), 87U);
    EXPECT_THAT(average, ElementsAre(7, 7, 7, 7));
  }
}

// The gain of red, straight from the definition: one sample at a time.
std::uint32_t RedGain(DWORD width, DWORD height, const Pixels& frame, std::size_t red) {
  std::array<std::vector<BYTE>, 4> samples;
  for (DWORD y = 0; y < height / 2 * 2; ++y) {
    for (DWORD x = 0; x < width / 2 * 2; ++x) {
      samples[y % 2 * 2 + x % 2].push_back(frame[std::size_t{y} * width + x]);
    }
  }
  const auto mean = [&](std::size_t k) {
    double sum = 0;
    for (const BYTE sample : samples[k]) sum += sample;
    return sum / static_cast<double>(samples[k].size());
  };
  const double n = width * height / 4;
  const double target = (mean(red ^ 1) + mean(red ^ 2)) * 0.5;
  const double m = mean(red);
  if (m < 1 / n) return 128;
  const double estimate = std::trunc(128 * target / m);
  std::uint32_t gain = estimate > 65535 ? 65535 : static_cast<std::uint32_t>(estimate);
  const auto clipped = [&](std::uint32_t g) {
    const std::uint32_t limit = g == 0 ? 255 : 32640 / g;
    if (limit >= 255) return m * g * 0.0078125;
    double sum = 0;
    for (const BYTE sample : samples[red]) sum += std::min<std::uint32_t>(sample, limit);
    return sum / n * g * 0.0078125;
  };
  while (gain < 640 && clipped(gain) < target) ++gain;
  return gain;
}

TEST(AutoWhiteBalance, GainsFollowTheDefinition) {
  for (unsigned seed = 0; seed < 60; ++seed) {
    const DWORD width = 2 + seed * 7 % 40;
    const DWORD height = 2 + seed * 5 % 23;
    // Dark reds ask for large gains, bright ones saturate.
    const unsigned low = seed % 5 * 40;
    Pixels frame = RandomFrame(std::size_t{width} * height, seed, low, low + 1 + seed * 3 % 95);
    const WORD array = static_cast<WORD>(1 + seed % 5);
    const std::size_t red = array == 1 ? 0 : array - 2U;
    for (std::size_t i = 0; i < frame.size(); ++i) {
      const std::size_t position = 2 * (i / width % 2) + i % width % 2;
      if (position == (red ^ 1)) frame[i] = static_cast<BYTE>(std::min(255, frame[i] * 2));
    }
    imaging::ColorGains gains;
    ASSERT_TRUE(imaging::FindColorGains(width, height, array, frame.data(), &gains).ok());
    EXPECT_EQ(gains.red, RedGain(width, height, frame, red)) << seed;
    EXPECT_EQ(gains.blue, RedGain(width, height, frame, red ^ 3)) << seed;
  }
  const struct {
    std::array<BYTE, 4> cell;  // of an RGGB frame
    WORD red, blue;
  } cases[] = {
      {{77, 77, 77, 77}, 128, 128},     {{0, 9, 9, 1}, 128, 1152},
      {{50, 100, 100, 200}, 256, 64},   {{255, 200, 200, 200}, 101, 128},
      {{1, 255, 255, 2}, 32640, 16320}, {{5, 0, 0, 0}, 0, 128},
      {{100, 50, 151, 100}, 129, 129},  // 128.64, and one step to reach the target
  };
  for (const auto& test : cases) {
    imaging::ColorGains gains;
    ASSERT_TRUE(imaging::FindColorGains(10, 8, 2, CellFrame(10, 8, test.cell).data(), &gains).ok());
    EXPECT_EQ(gains.red, test.red);
    EXPECT_EQ(gains.blue, test.blue);
  }
  // One faint sample among 256 x 256 cells: the estimate is cut, and not refined.
  Pixels frame = CellFrame(512, 512, {0, 255, 255, 0});
  frame[0] = 1;
  imaging::ColorGains gains;
  ASSERT_TRUE(imaging::FindColorGains(512, 512, 2, frame.data(), &gains).ok());
  EXPECT_EQ(gains.red, 65535);
  EXPECT_TRUE(imaging::FindColorGains(1, 9, 2, frame.data(), &gains).ok());
  EXPECT_EQ(gains.red, 128) << "no whole cell";
}

class WhiteBalanceTest : public TransferTest {
 protected:
  void OpenColor(std::uint16_t array = 2, std::uint64_t capabilities = 1ULL << 22,
                 std::array<double, 3> illuminant = {1, 1, 1}) {
    OpenFast(kWidth, kHeight, [&](CameraConfig& config) {
      config.colour_array = array;
      config.capabilities = capabilities;
      config.illuminant = illuminant;
    });
    twin_->ClearLog();
  }
  Pixels Corrected(Pixels frame) {
    EXPECT_TRUE(Vexa_WhiteBalance(camera_, frame.data()));
    return frame;
  }
  Gains GetGains() {
    Gains g{};
    EXPECT_TRUE(Vexa_GetWhiteBalanceGain(camera_, &g[0], &g[1], &g[2], &g[3]));
    return g;
  }
  BYTE GetMode() {
    BYTE mode = 0xFF;
    EXPECT_TRUE(Vexa_GetWhiteBalanceMode(camera_, &mode));
    return mode;
  }
  static constexpr DWORD kWidth = 16, kHeight = 8;
};

TEST_F(WhiteBalanceTest, FindsAndAppliesGainsAsTheModeSays) {
  OpenColor();
  const Pixels frame = CellFrame(kWidth, kHeight, {50, 100, 100, 200});
  EXPECT_EQ(Corrected(frame), frame) << "default gains of 128 in manual mode";
  EXPECT_TRUE(Vexa_SetWhiteBalanceMode(camera_, VEXA_WHITE_BALANCE_ONCE));
  EXPECT_EQ(Corrected(frame), CellFrame(kWidth, kHeight, {100, 100, 100, 100}));
  EXPECT_EQ(GetMode(), VEXA_WHITE_BALANCE_MANUAL);
  EXPECT_EQ(GetGains(), (Gains{256, 128, 128, 64}));
  const Pixels other = CellFrame(kWidth, kHeight, {127, 60, 60, 255});
  EXPECT_EQ(Corrected(other), CellFrame(kWidth, kHeight, {254, 60, 60, 127})) << "gains stay";
  EXPECT_TRUE(Vexa_SetWhiteBalanceMode(camera_, VEXA_WHITE_BALANCE_AUTO));
  EXPECT_EQ(Corrected(CellFrame(kWidth, kHeight, {77, 77, 77, 77})),
            CellFrame(kWidth, kHeight, {77, 77, 77, 77}));
  EXPECT_EQ(GetGains(), (Gains{128, 128, 128, 128}));
  EXPECT_EQ(GetMode(), VEXA_WHITE_BALANCE_AUTO);
  EXPECT_TRUE(Vexa_SetWhiteBalanceGain(camera_, 0, 256, 64, 65535));
  EXPECT_TRUE(Vexa_SetWhiteBalanceMode(camera_, VEXA_WHITE_BALANCE_OFF));
  EXPECT_EQ(Corrected(frame), frame);
  for (const DWORD mode : {1U, 4U, 255U}) {
    EXPECT_TRUE(Vexa_SetWhiteBalanceMode(camera_, mode));
    EXPECT_EQ(Corrected(frame), CellFrame(kWidth, kHeight, {0, 200, 50, 255})) << mode;
    EXPECT_EQ(GetMode(), mode);
  }
  // Mirrored, the same cells begin with green.
  EXPECT_EQ(Wire(*twin_), std::vector<std::string>());
  EXPECT_TRUE(Vexa_SetMirrorMode(camera_, VEXA_CAMERA_MIRROR_HORIZONTAL));
  EXPECT_EQ(Corrected(CellFrame(kWidth, kHeight, {100, 50, 200, 100})),
            CellFrame(kWidth, kHeight, {200, 0, 255, 50}));
  SetLastError(0);
  EXPECT_FALSE(Vexa_WhiteBalance(camera_, nullptr));
  EXPECT_EQ(GetLastError(), 87U);
}

TEST_F(WhiteBalanceTest, AFrameHasTheGainsOfOneMoment) {
  OpenColor();
  std::atomic<bool> done = false;
  std::thread setter([&] {
    for (WORD gain = 0; !done; gain = static_cast<WORD>(256 - gain)) {
      EXPECT_TRUE(Vexa_SetWhiteBalanceGain(camera_, gain, gain, gain, gain));
    }
  });
  const Pixels frame(kWidth * kHeight, 50);
  for (int i = 0; i < 2000; ++i) {
    const Pixels corrected = Corrected(frame);
    EXPECT_EQ(std::ranges::count(corrected, corrected[0]), kWidth * kHeight);
  }
  done = true;
  setter.join();
}

TEST_F(WhiteBalanceTest, LeavesFramesOfOtherCamerasAlone) {
  const Pixels frame = CellFrame(kWidth, kHeight, {50, 100, 100, 200});
  OpenColor(1);
  EXPECT_TRUE(Vexa_SetWhiteBalanceGain(camera_, 1, 1, 1, 1));
  EXPECT_EQ(Corrected(frame), frame);
  Discard();
  OpenColor(2, 1ULL << 24);
  EXPECT_TRUE(Vexa_SetWhiteBalanceGain(camera_, 1, 1, 1, 1));
  EXPECT_TRUE(Vexa_SetWhiteBalanceMode(camera_, VEXA_WHITE_BALANCE_AUTO));
  EXPECT_EQ(Corrected(frame), frame);
  EXPECT_EQ(GetGains(), (Gains{1, 1, 1, 1}));
  Discard();
  // A colour array that nobody knows: the present gains are applied as for RGGB.
  OpenColor(7);
  EXPECT_TRUE(Vexa_SetWhiteBalanceGain(camera_, 256, 128, 128, 64));
  EXPECT_TRUE(Vexa_SetWhiteBalanceMode(camera_, VEXA_WHITE_BALANCE_ONCE));
  SetLastError(0);
  EXPECT_EQ(Corrected(frame), CellFrame(kWidth, kHeight, {100, 100, 100, 100}));
  EXPECT_EQ(GetLastError(), 87U);
  EXPECT_EQ(GetGains(), (Gains{256, 128, 128, 64}));
  EXPECT_EQ(GetMode(), VEXA_WHITE_BALANCE_MANUAL);
}

TEST(BrightPixels, AreThoseOfTheDefinitionInItsOrder) {
  for (unsigned seed = 0; seed < 80; ++seed) {
    const DWORD width = 1 + seed * 13 % 61;
    const DWORD height = 1 + seed * 7 % 29;
    // Few levels make ties; the lower half of the levels and the upper one are told apart.
    const unsigned low = seed % 4 * 63;
    const Pixels frame = RandomFrame(std::size_t{width} * height, seed, low, low + 2 + seed % 64);
    for (const unsigned threshold : {0U, low + 1, low + 40, 255U, 256U, 65535U}) {
      for (const std::size_t capacity : {1U, 5U, 64U}) {
        std::vector<BrightPixel> list;
        for (DWORD i = 0; i < frame.size(); ++i) {
          const auto lowest = std::ranges::min_element(list, {}, &BrightPixel::level);
          const bool full = list.size() == capacity;
          if (frame[i] < threshold || (full && frame[i] <= lowest->level)) continue;
          if (full) list.erase(lowest);
          list.push_back({i % width, i / width, frame[i]});
        }
        EXPECT_EQ(imaging::FindBrightPixels(width, height, frame.data(),
                                            static_cast<std::uint16_t>(threshold), capacity),
                  list)
            << seed << " " << threshold << " " << capacity;
      }
    }
  }
}

class DefectPixelTest : public TransferTest {
 protected:
  std::vector<std::pair<DWORD, DWORD>> Table() {
    std::vector<std::pair<DWORD, DWORD>> table(64);
    for (DWORD i = 0; i < 64; ++i) {
      EXPECT_TRUE(
          Vexa_GetDefectPixelCorrectionPosition(camera_, i, &table[i].first, &table[i].second));
    }
    twin_->ClearLog();
    return table;
  }
};

TEST_F(DefectPixelTest, LoadsTheWholeTable) {
  OpenFast();
  constexpr std::pair<DWORD, DWORD> kUnused{0xFFFF, 0xFFFF};
  Pixels frame(64 * 48);
  for (std::size_t i = 0; i < 100; ++i) frame[i * 30 + 7] = 255;
  twin_->ClearLog();
  EXPECT_TRUE(Vexa_DetectDefectPixel(camera_, 64, 48, frame.data(), 255));
  const std::vector<std::string> wire = Wire(*twin_);
  ASSERT_EQ(wire.size(), 65U);
  EXPECT_EQ(wire[2], "40 80 0004 0081 [03 00 01 00]") << "67 is column 3 of row 1";
  EXPECT_EQ(wire[64], "40 80 0050 0000 [01 00]");
  const auto table = Table();
  for (DWORD i = 0; i < 64; ++i) {
    EXPECT_EQ(table[i], std::make_pair((i * 30 + 7) % 64, (i * 30 + 7) / 64)) << "the first 64";
  }
  // The table ends early when a write fails; what was written is taken over all the same.
  twin_->FailControl({.value = 4, .index = 129}, 31, 1);
  EXPECT_TRUE(Vexa_DetectDefectPixel(camera_, 64, 48, frame.data(), 0xFFF00100));
  EXPECT_EQ(Wire(*twin_).size(), 4U);
  const auto cut = Table();
  EXPECT_EQ(cut[1], kUnused);
  EXPECT_EQ(cut[2], table[2]);
  twin_->FailControl({.value = 0x50, .index = 0}, 31, 1);
  EXPECT_FALSE(Vexa_DetectDefectPixel(camera_, 64, 48, frame.data(), 256));
  EXPECT_EQ(GetLastError(), 31U);
  EXPECT_THAT(Table(), ::testing::Each(kUnused));
  Discard();
  OpenFast(64, 48, [](CameraConfig& config) { config.capabilities = 0; });
  twin_->ClearLog();
  EXPECT_FALSE(Vexa_DetectDefectPixel(camera_, 64, 48, frame.data(), 1));
  EXPECT_EQ(GetLastError(), 87U);
  EXPECT_TRUE(Wire(*twin_).empty());
}

TEST_F(DefectPixelTest, ADarkFrameOfTheTwinGivesThemAway) {
  OpenFast(64, 48, [](CameraConfig& config) {
    config.max_width = 64;
    config.max_height = 48;
    config.defect_pixels = 9;  // five bright ones, four dead
    config.moving_parts = false;
  });
  const auto bright_pixels = [&] {
    Pixels frame;
    Recorder& recorder = Record();
    recorder.on_frame = [&](const Recorder::Frame& f) { frame.assign(f.image, f.image + 64 * 48); };
    EXPECT_TRUE(Vexa_ClearBuffer(camera_));
    EXPECT_TRUE(Vexa_StartTransfer(camera_));
    EXPECT_TRUE(recorder.AwaitFrames(1));
    EXPECT_TRUE(Vexa_StopTransfer(camera_));
    EXPECT_TRUE(Vexa_DetectDefectPixel(camera_, 64, 48, frame.data(), 64));
    return 64 - std::ranges::count(Table(), std::pair<DWORD, DWORD>(0xFFFF, 0xFFFF));
  };
  EXPECT_TRUE(Vexa_SetExposureClock(camera_, 1));
  EXPECT_EQ(bright_pixels(), 5);
  EXPECT_TRUE(Vexa_SetDefectPixelCorrectionMode(camera_, 1));
  EXPECT_EQ(bright_pixels(), 0);
}

}  // namespace
}  // namespace vexa::test

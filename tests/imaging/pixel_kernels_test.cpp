#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <string>
#include <vector>

#include "imaging/color_correction.hpp"
#include "imaging/conversion.hpp"
#include "imaging/frames.hpp"
#include "imaging/gamma.hpp"

namespace vexa::imaging {
namespace {

using test::Bytes;

struct Image {
  std::uint32_t width;
  std::uint32_t height;
  const std::uint8_t* source;
  std::uint8_t* target;  // read, too, by what works in place
};

/// Everything that runs on pixel kernels.
class Operations {
 public:
  using Run = std::function<Status(const Image&, const PixelKernels&)>;

  struct Operation {
    std::string name;
    std::size_t bytes;  // of four pixels of the source
    Run run;
  };

  Operations() {
    const std::pair<std::uint32_t, std::size_t> transfers[] = {
        {1, 4},      {2, 8},      {4, 8},      {8, 8},      {16, 8},
        {0x400, 12}, {0x800, 16}, {0x1000, 6}, {0x2000, 8}, {0x4000, 12}};
    for (const auto& [transfer, bytes] : transfers) {
      for (const std::uint32_t output : {1U, 4U, 8U}) {
        Add("convert " + std::to_string(transfer) + " to " + std::to_string(output), bytes,
            [=, transfer = transfer](const Image& image, const PixelKernels& kernels) {
              return ConvertToImage({.width = image.width,
                                     .height = image.height,
                                     .transfer_format = transfer,
                                     .output_format = output,
                                     .source = image.source,
                                     .destination = image.target},
                                    kernels);
            });
      }
    }
    for (std::uint8_t channel = 0; channel < kGammaChannels; ++channel) {
      EXPECT_TRUE(
          gamma_.Set(channel, {.mode = 255}, test::MakeFrame(256, channel * 4U).data()).ok());
    }
    for (const std::uint16_t array : {std::uint16_t{2}, std::uint16_t{5}}) {
      Add("raw gamma", 0, [=, this](const Image& i, const PixelKernels& kernels) {
        return gamma_.CorrectRaw(i.width, i.height, array, i.target, kernels);
      });
    }
    for (const std::uint32_t format : {1U, 4U, 8U}) {
      Add("gamma " + std::to_string(format), 0,
          [=, this](const Image& i, const PixelKernels& kernels) {
            return gamma_.CorrectImage(i.width, i.height, format, i.target, kernels);
          });
    }
    AddMatrices();
  }

  const std::vector<Operation>& all() const { return all_; }

 private:
  void Add(std::string name, std::size_t bytes, Run run) {
    all_.push_back({std::move(name), bytes, std::move(run)});
  }

  /// With formulas and without (many exceptions, numbers beyond 16 bits, a sign that changes inside
  /// the table), with whole parts on the diagonal and elsewhere, with offsets.
  void AddMatrices() {
    static constexpr UserColorMatrix kMatrices[] = {
        {100, 0, 0, 0, 0, 100, 0, 0, 0, 0, 100, 0},
        {150, -30, -20, 0, -25, 163, -38, 0, 3, -60, 157, 0},
        {110, -35, 25, 0, -5, 255, -90, 0, 15, -70, 155, 0},
        {0, 100, -200, 300, 250, -100, 7, 1000, -301, 177, 99, 12345},
        {120, -13, -7, -1050, -20, 130, -10, 33, 0, 0, 80, -50},
        {32767, -32768, 0, 0, 0, 32767, -20000, 99, 5, 4, 3, 32767},
    };
    for (std::size_t i = 0; i < corrections_.size(); ++i) {
      ColorCorrection& correction = corrections_[i];
      EXPECT_TRUE(correction.SetMatrix(255, &kMatrices[i % std::size(kMatrices)]).ok());
      if (i >= std::size(kMatrices)) {
        EXPECT_TRUE(correction.SetHueSaturation({1, -234, 137}).ok());
      }
      for (const std::uint32_t format : {4U, 8U}) {
        Add("matrix " + std::to_string(i) + " in " + std::to_string(format), 0,
            [=, &correction](const Image& image, const PixelKernels& kernels) {
              return correction.Correct(image.width, image.height, format, image.target, kernels);
            });
      }
    }
  }

  Gamma gamma_;
  std::array<ColorCorrection, 12> corrections_;
  std::vector<Operation> all_;
};

void ExpectSameFromAllVersions(const Operations& operations, std::uint32_t width,
                               std::uint32_t height) {
  constexpr std::size_t kGuard = 64;
  const std::size_t shift = (width * 5 + height) % 16;  // any alignment
  const std::size_t size = std::size_t{width} * height * 4;
  const unsigned kind = width + height;
  const Bytes before = test::MakeFrame(2 * kGuard + shift + size, kind + 2);
  for (const auto& [name, bytes, run] : operations.all()) {
    // Without a byte more than the pixels have, so that sanitizers notice reading beyond.
    const Bytes source = test::MakeFrame(shift + size / 4 * bytes / 4, kind);
    const auto result = [&](const PixelKernels& kernels) {
      Bytes target = before;
      const Status status =
          run({width, height, source.data() + shift, target.data() + kGuard + shift}, kernels);
      EXPECT_TRUE(status.ok() || width % 4 != 0) << name;
      return target;
    };
    const Bytes expected = result(*UsablePixelKernels().front());
    ASSERT_TRUE(std::equal(expected.end() - kGuard, expected.end(), before.end() - kGuard)) << name;
    for (const PixelKernels* kernels : UsablePixelKernels().subspan(1)) {
      const Bytes actual = result(*kernels);
      ASSERT_TRUE(actual == expected)
          << kernels->name << " " << name << " " << width << "x" << height << " at "
          << std::mismatch(actual.begin(), actual.end(), expected.begin()).first - actual.begin() -
                 static_cast<std::ptrdiff_t>(kGuard + shift);
    }
  }
}

TEST(PixelKernels, AllVersionsGiveTheSameForAllSizes) {
  ASSERT_GT(UsablePixelKernels().size(), 1U) << "no vector version runs on this processor";
  const Operations operations;
  test::ForAllSizes([&](int width, int height) {
    ExpectSameFromAllVersions(operations, static_cast<std::uint32_t>(width),
                              static_cast<std::uint32_t>(height));
  });
  ASSERT_FALSE(HasFatalFailure());
  ExpectSameFromAllVersions(operations, 516, 260);
}

/// Every combination that the vectors' arithmetic can meet, once.
TEST(PixelKernels, AllVersionsGiveTheSameForAllValues) {
  Bytes yuv;
  for (unsigned i = 0; i < 256 * 256; ++i) {
    yuv.insert(yuv.end(), {static_cast<std::uint8_t>(i), static_cast<std::uint8_t>(i * 131 >> 3),
                           static_cast<std::uint8_t>(i >> 8)});
  }
  for (const PixelKernels* kernels : UsablePixelKernels()) {
    Bytes expected(yuv.size());
    Bytes actual(yuv.size());
    kReferencePixelKernels.convert[kFromYuv444][kToBgr24](yuv.data(), expected.data(), 256 * 256);
    kernels->convert[kFromYuv444][kToBgr24](yuv.data(), actual.data(), 256 * 256);
    ASSERT_TRUE(actual == expected) << kernels->name;
    actual = expected = yuv;
    const Bytes table = test::MakeFrame(256, 8);
    kReferencePixelKernels.shift_luma_bgr24(table.data(), expected.data(), 256 * 256);
    kernels->shift_luma_bgr24(table.data(), actual.data(), 256 * 256);
    ASSERT_TRUE(actual == expected) << kernels->name;
  }
}

}  // namespace
}  // namespace vexa::imaging

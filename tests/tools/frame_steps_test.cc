// The steps of "vexa process" beside the library's functions, called by hand one after the other.

#include "frame_steps.hpp"

#include <VexaAPI.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>

namespace vexa::tool {
namespace {

constexpr DWORD kWidth = 1280;  // of the first simulated camera, as Vexa_WhiteBalance() takes it
constexpr DWORD kHeight = 964;

std::vector<BYTE> DeepFrame(unsigned seed, unsigned most) {
  std::mt19937 random(seed);
  std::vector<BYTE> words(std::size_t{kWidth} * kHeight * 2);
  for (std::size_t i = 0; i < words.size(); i += 2) {
    const auto sample = static_cast<std::uint32_t>(random() % most);
    words[i] = static_cast<BYTE>(sample & 0xFF);
    words[i + 1] = static_cast<BYTE>(sample >> 8);
  }
  return words;
}

std::vector<BYTE> EightBits(const std::vector<BYTE>& deep) {
  std::vector<BYTE> raw(deep.size() / 2);
  EXPECT_TRUE(Vexa_ConvTo8BitsImage(kWidth, kHeight, VEXA_TRANSFER_12BIT, deep.data(), raw.data()));
  return raw;
}

/** A whole chain, without the classes of the program. */
std::vector<BYTE> ByHand(HANDLE camera, const std::vector<BYTE>& deep,
                         const std::vector<BYTE>& dark, const short* matrix) {
  std::vector<BYTE> raw = EightBits(deep);
  std::vector<BYTE> dark_raw = EightBits(dark);
  DWORD width = kWidth;
  DWORD height = kHeight;
  WORD array = VEXA_COLOR_ARRAY_RGGB;
  std::vector<BYTE> picture(raw.size() * 3);
  EXPECT_TRUE(
      Vexa_NoiseReduction(camera, VEXA_NOISE_REDUCTION_STORE_DARK_FRAME, width, height, array,
                          dark_raw.data()) &&
      Vexa_NoiseReduction(camera, VEXA_NOISE_REDUCTION_DARK_FRAME, width, height, array,
                          raw.data()) &&
      Vexa_NoiseReduction(camera, VEXA_NOISE_REDUCTION_IMPULSE, width, height, array, raw.data()) &&
      Vexa_SetWhiteBalanceGain(camera, 90, 128, 131, 300) && Vexa_WhiteBalance(camera, raw.data()));
  for (BYTE channel = VEXA_GAMMA_CHANNEL_Y; channel <= VEXA_GAMMA_CHANNEL_B; ++channel) {
    const bool luminance = channel == VEXA_GAMMA_CHANNEL_Y;
    EXPECT_TRUE(Vexa_SetGammaModeEx(camera, channel, VEXA_GAMMA_MODE_CURVE, luminance ? 70 : 180,
                                    luminance ? -9 : 0, luminance ? 5 : 0, nullptr));
  }
  EXPECT_TRUE(
      Vexa_RawColorGamma(camera, width, height, array, raw.data()) &&
      Vexa_MirrorRotation(VEXA_MIRROR_VERTICAL, VEXA_ROTATION_CLOCKWISE, &width, &height, &array,
                          raw.data()) &&
      Vexa_ColorInterpolation(width, height, array, raw.data(), picture.data(),
                              VEXA_INTERP_FOUR_TAP, VEXA_OUTPUT_BGR24) &&
      Vexa_SetColorMatrix(camera, VEXA_COLOR_MATRIX_USER, matrix) &&
      Vexa_SetHueSaturationMode(camera, VEXA_HUE_SATURATION_ON, -125, 140) &&
      Vexa_HueSaturationColorMatrix(camera, width, height, VEXA_OUTPUT_BGR24, picture.data()) &&
      Vexa_BGRGamma(camera, width, height, VEXA_OUTPUT_BGR24, picture.data()) &&
      Vexa_SetSharpnessMode(camera, 1, 250, 6) &&
      Vexa_Sharpness(camera, width, height, VEXA_OUTPUT_BGR24, picture.data()));
  return picture;
}

TEST(FrameSteps, ComeToWhatTheLibrarysFunctionsDoOneByOne) {
  const std::filesystem::path dark_file =
      std::filesystem::path(testing::TempDir()) / "vexa_frame_steps_dark.raw";
  const std::vector<BYTE> deep = DeepFrame(1, 4096);
  const std::vector<BYTE> dark = DeepFrame(2, 700);
  std::ofstream(dark_file, std::ios::binary)
      .write(reinterpret_cast<const char*>(dark.data()), static_cast<std::streamsize>(dark.size()));
  StepOptions options;
  options.dark_frame = Utf8FromPath(dark_file);
  options.impulse_filter = true;
  options.white_balance = BalanceOptions{.gains = {90, 128, 131, 300}};
  options.raw_gamma = 1.8;
  options.mirror = VEXA_MIRROR_VERTICAL;
  options.rotate = 90;
  options.method = VEXA_INTERP_FOUR_TAP;
  options.matrix = {120, -20, 0, 500, 7, 90, 3, -200, 0, -30, 130, 100};
  options.hue = -12.5;
  options.saturation = 140;
  options.gamma = 0.7;
  options.brightness = -9;
  options.contrast = 5;
  options.sharpen = 250;
  options.coring = 6;
  StoredFrame frame;
  frame.description = {
      .index = 1, .width = kWidth, .height = kHeight, .color_array = VEXA_COLOR_ARRAY_RGGB};
  frame.size = deep.size();
  frame.pixels = deep;
  FrameInWork result;
  {
    const Camera camera = OpenCamera(0);
    const FrameSteps steps(options, {kWidth, kHeight, VEXA_TRANSFER_12BIT, VEXA_COLOR_ARRAY_RGGB},
                           FileType::kBitmap, &camera);
    result = steps.Take(frame);
    EXPECT_EQ(steps.Names().size(), 10u);
  }
  const Camera camera = OpenCamera(0);  // the same one, its settings as at first
  EXPECT_EQ(result.frame.pixels, ByHand(camera.handle(), deep, dark, options.matrix->data()));
  EXPECT_EQ(result.frame.description.width, kHeight);
  std::filesystem::remove(dark_file);
}

}  // namespace
}  // namespace vexa::tool

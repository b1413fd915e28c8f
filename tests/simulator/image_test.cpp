#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <numeric>

#include "simulator/twin_rig.hpp"

namespace vexa::simulator {
namespace {

std::uint16_t Display(unsigned value) { return static_cast<std::uint16_t>(value * 257); }

double Mean(const Bytes& picture) {
  return std::accumulate(picture.begin(), picture.end(), 0.0) / static_cast<double>(picture.size());
}

/// A colour camera with every transfer format that looks at one colour.
CameraConfig UniformCamera(unsigned red, unsigned green, unsigned blue) {
  CameraConfig config = PlainCamera();
  config.transfer_formats = 0x7FFF;
  config.scene = UniformPicture(Display(red), Display(green), Display(blue));
  return config;
}

/// The value that a display value comes out as at the power-up exposure: 1 is black, 250 white.
int Level(unsigned display) { return static_cast<int>(1 + display * 249.0 / 255); }

TEST(TwinImage, EveryTransferFormatHasItsLayout) {
  TwinRig rig(UniformCamera(200, 100, 50));
  ASSERT_TRUE(rig.SetScan(16, 8).ok());
  const int r = Level(200);
  const int g = Level(100);
  const int b = Level(50);
  const struct {
    std::uint32_t format;
    std::size_t bytes;
    unsigned bits;
  } samples[] = {{0x0001, 128, 8},  {0x0002, 256, 10}, {0x0004, 256, 12}, {0x0008, 256, 14},
                 {0x0010, 256, 16}, {0x0020, 128, 8},  {0x0040, 256, 10}, {0x0080, 256, 12},
                 {0x0100, 256, 14}, {0x0200, 256, 16}};
  for (const auto& test : samples) {
    SCOPED_TRACE(test.format);
    ASSERT_TRUE(rig.SetFormat(test.format).ok());
    const Bytes picture = rig.Picture();
    ASSERT_EQ(picture.size(), test.bytes);
    const auto value = [&](std::size_t i) {
      return test.bits == 8 ? picture[i] : LoadLe16(picture, 2 * i) >> (test.bits - 8);
    };
    EXPECT_NEAR(value(0), r, 1);
    EXPECT_NEAR(value(1), g, 1);
    EXPECT_NEAR(value(16), g, 1);
    EXPECT_NEAR(value(17), b, 1);
  }
  const auto picture_of = [&](std::uint32_t format) {
    EXPECT_TRUE(rig.SetFormat(format).ok());
    return rig.Picture();
  };
  Bytes picture = picture_of(0x0400);
  ASSERT_EQ(picture.size(), 384u);
  EXPECT_NEAR(picture[0], b, 1);
  EXPECT_NEAR(picture[1], g, 1);
  EXPECT_NEAR(picture[2], r, 1);
  picture = picture_of(0x0800);
  ASSERT_EQ(picture.size(), 512u);
  const std::uint32_t word = LoadLe32(picture, 4);
  EXPECT_NEAR(word & 0x3FF, b * 4, 6);
  EXPECT_NEAR(word >> 10 & 0x3FF, g * 4, 6);
  EXPECT_NEAR(word >> 20, r * 4, 6);
  // Y, U and V of the colour, ITU-R BT.601.
  const double y = 0.299 * r + 0.587 * g + 0.114 * b;
  const double u = 128 + (b - y) / 1.772;
  const double v = 128 + (r - y) / 1.402;
  const struct {
    std::uint32_t format;
    std::size_t bytes;
    std::string_view group;
  } layouts[] = {{0x1000, 192, "UYYVYY"}, {0x2000, 256, "UYVYUYVY"}, {0x4000, 384, "UYVUYVUYVUYV"}};
  for (const auto& test : layouts) {
    picture = picture_of(test.format);
    ASSERT_EQ(picture.size(), test.bytes);
    for (std::size_t i = 0; i < picture.size(); ++i) {
      const char component = test.group[i % test.group.size()];
      ASSERT_NEAR(picture[i],
                  component == 'Y'   ? y
                  : component == 'U' ? u
                                     : v,
                  2)
          << test.format << " at " << i;
    }
  }
}

TEST(TwinImage, ExposureMultipliesTheLightUpToSaturation) {
  TwinRig rig(UniformCamera(100, 100, 100));
  ASSERT_TRUE(rig.SetScan(64, 48).ok());
  const std::uint32_t lines = rig.Lines();
  const double nominal = Mean(rig.Picture()) - 1;
  EXPECT_NEAR(nominal, Level(100) - 1, 1);
  const auto expose = [&](std::uint32_t count) {
    rig.SetLines(count);
    return Mean(rig.Picture()) - 1;
  };
  EXPECT_NEAR(expose(lines / 2), nominal / 2, 1.5);
  EXPECT_NEAR(expose(lines * 2), nominal * 2, 1.5);
  EXPECT_GE(expose(lines * 4), 253);
  EXPECT_NEAR(expose(0), expose(LoadLe16(rig.Block(0x12, 64), 26)), 0.01) << "one full frame";
  // Twice the clock, half the time.
  rig.SetLines(lines);
  Bytes clock = rig.Block(0x22, 10);
  StoreLe32(clock, 6, LoadLe32(clock, 6) * 2);
  ASSERT_TRUE(rig.Out(0x22, 0, 0, clock).ok());
  EXPECT_NEAR(Mean(rig.Picture()) - 1, nominal / 2, 1.5);
}

TEST(TwinImage, GainFollowsTheModelsCurve) {
  const struct {
    std::uint64_t capabilities;
    std::uint16_t gain;
    double decibels;  // above gain value 0
  } cases[] = {{0, 45, 45 * 0.132},
               {std::uint64_t{1} << 16, 85, 85 * 0.07038},
               {std::uint64_t{1} << 49, 20, 20 * std::log10(3.5)},
               {std::uint64_t{1} << 49, 21, 20 * std::log10(3.9375)},
               {std::uint64_t{1} << 49 | 1 << 16, 45, 45 * 0.132}};
  for (const auto& test : cases) {
    CameraConfig config = UniformCamera(40, 40, 40);
    config.capabilities = test.capabilities;
    TwinRig rig(config);
    ASSERT_TRUE(rig.SetScan(64, 48).ok());
    const double dark = Mean(rig.Picture()) - 1;
    rig.SetLines(rig.Lines(), test.gain);
    EXPECT_NEAR(Mean(rig.Picture()) - 1, dark * std::pow(10, test.decibels / 20), 3);
    rig.SetLines(rig.Lines(), 0);
    ASSERT_TRUE(rig.Out(0x80, 0x8014, 0, TwinRig::Word(0x0280)).ok());
    EXPECT_NEAR(Mean(rig.Picture()) - 1, dark * 2.5, 2);
  }
}

TEST(TwinImage, TheFilterPatternFollowsOffsetMirrorAndSkipping) {
  // Which array the frame shows, from what its first four pixels see of a red scene with some
  // blue.
  for (std::uint16_t array = 2; array <= 5; ++array) {
    for (unsigned setting = 0; setting < 32; ++setting) {
      CameraConfig config = UniformCamera(240, 0, 120);
      config.colour_array = array;
      TwinRig rig(config);
      const bool mirror_x = (setting & 1) != 0;
      const bool mirror_y = (setting & 2) != 0;
      const unsigned x = setting >> 2 & 1;
      const unsigned y = setting >> 3 & 1;
      rig.SetRegister(63, static_cast<std::uint16_t>(setting & 3));
      rig.SetRegister(23, 1000);  // a frame this small is too short for the exposure otherwise
      if ((setting & 16) != 0) rig.SetRegister(33, 0x2121);
      const bool skips = (setting & 16) != 0;
      ASSERT_TRUE(rig.SetScan(16, 8, skips ? 0 : x, skips ? 0 : y, 0x8000).ok());
      rig.Start();
      const Bytes frame = rig.Frame();
      ASSERT_EQ(frame.size(), 64u + 128);
      const bool flip_columns = mirror_x != (x == 1 && !skips);
      const bool flip_rows = mirror_y != (y == 1 && !skips);
      const unsigned expected = ((array - 2u) ^ (flip_columns ? 1 : 0) ^ (flip_rows ? 2 : 0)) + 2;
      EXPECT_EQ(LoadLe16(frame, 30), expected);
      const std::size_t red_x = (expected - 2) & 1;
      const std::size_t red_y = (expected - 2) >> 1;
      const auto pixel = [&](std::size_t px, std::size_t py) { return frame[64 + py * 16 + px]; };
      EXPECT_GT(pixel(red_x, red_y), 200);
      EXPECT_LT(pixel(1 - red_x, red_y), 5);
      EXPECT_LT(pixel(red_x, 1 - red_y), 5);
      EXPECT_NEAR(pixel(1 - red_x, 1 - red_y), Level(120), 2);
    }
  }
}

/// A grey picture of the sensor's size whose value is a position's.
std::shared_ptr<const Picture> PositionPicture(std::uint32_t width, std::uint32_t height) {
  Picture picture{width, height, {}};
  for (std::uint32_t y = 0; y < height; ++y) {
    for (std::uint32_t x = 0; x < width; ++x) {
      picture.rgb.insert(picture.rgb.end(), 3, Display((x * 3 + y * 16) % 256));
    }
  }
  return std::make_shared<const Picture>(std::move(picture));
}

TEST(TwinImage, RegionMirrorAndBinningShowTheRightPixels) {
  CameraConfig config = PlainCamera(0x0610);
  config.max_width = 40;
  config.max_height = 12;
  config.scene = PositionPicture(40, 12);
  TwinRig rig(config);
  const auto level = [](unsigned x, unsigned y) { return Level((x * 3 + y * 16) % 256); };
  ASSERT_TRUE(rig.SetScan(20, 5, 7, 3, 0x8000).ok());
  Bytes picture = rig.Picture();
  EXPECT_NEAR(picture[0], level(7, 3), 1);
  EXPECT_NEAR(picture[4 * 20 + 19], level(26, 7), 1);
  rig.SetRegister(63, 3);
  picture = rig.Picture();
  EXPECT_NEAR(picture[0], level(26, 7), 1);
  EXPECT_NEAR(picture[19], level(7, 7), 1);
  rig.SetRegister(63, 0);
  rig.SetRegister(33, 0x1001);  // every second column, pairs of rows
  ASSERT_TRUE(rig.SetScan(20, 6, 0, 0, 0x8000).ok());
  picture = rig.Picture();
  EXPECT_NEAR(picture[1], (level(2, 0) + level(2, 1)) / 2, 1);
  EXPECT_NEAR(picture[20], (level(0, 2) + level(0, 3)) / 2, 1);
}

TEST(TwinImage, TheSameFrameIsTheSameBytesWhateverCameBefore) {
  for (const bool noise : {false, true}) {
    for (const std::uint32_t format : {0x0001u, 0x0004u, 0x0800u, 0x1000u}) {
      CameraConfig config = ForProduct(0x0209);
      config.max_width = 160;
      config.max_height = 120;
      config.pace = Pace::kFastest;
      config.noise = noise;
      const auto frame_at = [&](std::uint32_t number, std::uint64_t seed, bool busy_past) {
        config.seed = seed;
        TwinRig rig(config);
        EXPECT_TRUE(rig.SetFormat(format).ok());
        if (!busy_past) rig.camera->DropFrames(number);
        rig.Start();
        Bytes frame = rig.Frame();
        while (TwinRig::Number(frame) < number) frame = rig.Frame();
        return frame;
      };
      const Bytes frame = frame_at(30, 1, true);
      EXPECT_EQ(frame, frame_at(30, 1, false));
      EXPECT_NE(frame, frame_at(31, 1, false));
      EXPECT_NE(frame, frame_at(30, 2, false));  // other defects, other noise
    }
  }
}

TEST(TwinImage, NoiseIsThatOfPhotonsAndOfReading) {
  CameraConfig config = UniformCamera(100, 100, 100);
  config.noise = true;
  TwinRig rig(config);
  ASSERT_TRUE(rig.SetFormat(8).ok());  // 14 bits
  const auto deviation = [&] {
    const Bytes picture = rig.Picture();
    std::vector<double> values;
    for (std::size_t i = 0; i < picture.size(); i += 2) values.push_back(LoadLe16(picture, i));
    const double count = static_cast<double>(values.size());
    const double mean = std::accumulate(values.begin(), values.end(), 0.0) / count;
    double squares = 0;
    for (const double value : values) squares += (value - mean) * (value - mean);
    return std::pair(mean, std::sqrt(squares / count));
  };
  // 20000 electrons are full scale; the noise is the root of their number and 8 of reading.
  const auto expected = [](double mean) {
    const double electrons = (mean - 64) * 20000 / 16383;
    return std::sqrt(electrons + 64) * 16383 / 20000;
  };
  const std::uint32_t lines = rig.Lines();
  for (const std::uint32_t exposure : {lines, lines / 4, lines * 2}) {
    rig.SetLines(exposure);
    const auto [mean, noise] = deviation();
    EXPECT_NEAR(noise / expected(mean), 1, 0.03) << exposure;
  }
}

TEST(TwinScene, ShowsTheChartAndMovesItsParts) {
  CameraConfig config = PlainCamera(0x0209);
  config.moving_parts = true;
  TwinRig rig(config);
  ASSERT_TRUE(rig.SetFormat(0x0400).ok());
  rig.Start();
  const Bytes first = rig.Frame();
  const Bytes second = rig.Frame();
  // The chart's yellow patch, published as 231 199 31.
  const auto yellow = std::span(first).subspan(64 + (375 * 1280 + 450) * 3, 3);
  EXPECT_NEAR(yellow[0], Level(31), 2);
  EXPECT_NEAR(yellow[1], Level(199), 2);
  EXPECT_NEAR(yellow[2], Level(231), 2);
  // What changes from frame to frame is the object in its lane and a digit of the counter.
  bool lane = false;
  bool counter = false;
  for (std::size_t i = 64; i < first.size(); ++i) {
    if (first[i] == second[i]) continue;
    const double y = static_cast<double>((i - 64) / 3 / 1280) / 964;
    lane = lane || (y > 0.62 && y < 0.81);
    counter = counter || y > 0.83;
    ASSERT_TRUE((y > 0.62 && y < 0.81) || y > 0.83);
  }
  EXPECT_TRUE(lane);
  EXPECT_TRUE(counter);
}

TEST(TwinScene, FillsSensorsOfAnySize) {
  const SensorSize sizes[] = {{1, 1}, {2, 2}, {7, 5}, {64, 48}, {5001, 6}, {6, 3000}};
  for (const SensorSize& size : sizes) {
    SCOPED_TRACE(testing::Message() << size.width << "x" << size.height);
    CameraConfig config = ForProduct(0x0610);
    config.pace = Pace::kFastest;
    config.max_width = size.width;
    config.max_height = size.height;
    TwinRig rig(config);
    rig.SetRegister(63, 3);
    rig.Start();
    for (int i = 0; i < 3; ++i) {
      ASSERT_EQ(rig.Frame().size(), 64u + size.width * size.height);
    }
  }
}

TEST(TwinScene, PnmFilesAreReadOrTheirFaultNamed) {
  using namespace std::string_literals;
  const struct {
    std::string bytes;
    std::vector<std::uint16_t> rgb;
    std::string error;
  } cases[] = {
      {"P5\n# by hand\n2 1\n255\n\x00\xFF"s, {0, 0, 0, 65535, 65535, 65535}, ""},
      {"P6 1 #x\r1 100\n\x64\x32\x00"s, {65535, 32768, 0}, ""},
      {"P5 1 1 65535\n\x12\x34"s, {0x1234, 0x1234, 0x1234}, ""},
      {"P6 1 1 1023\n\x03\xFF\x00\x00\x02\x00"s, {65535, 0, 32800}, ""},
      {"P2 1 1 255\n1"s, {}, "not a binary PNM"},
      {""s, {}, "not a binary PNM"},
      {"P5 1\n"s, {}, "malformed header"},
      {"P5 1 1 255"s, {}, "malformed header"},
      {"P5 99999999999 1 255\n\x00"s, {}, "malformed header"},
      {"P5 0 1 255\n"s, {}, "sides"},
      {"P5 20000 1 255\n"s, {}, "sides"},
      {"P5 1 1 70000\n\x00\x00"s, {}, "maximum value"},
      {"P6 2 2 255\n12345678901"s, {}, "ends before"},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.bytes);
    const PictureFile file = ParsePnm(test.bytes);
    ASSERT_EQ(file.picture != nullptr, test.error.empty()) << file.error;
    EXPECT_THAT(file.error, ::testing::HasSubstr(test.error));
    if (file.picture != nullptr) {
      EXPECT_EQ(file.picture->rgb, test.rgb);
    }
  }
  EXPECT_THAT(ReadPnm("/nowhere/at.all").error, ::testing::HasSubstr("cannot be opened"));
}

TEST(TwinScene, MayBeChangedWhileStreaming) {
  TwinRig rig(UniformCamera(100, 100, 100));
  ASSERT_TRUE(rig.SetScan(64, 48).ok());
  rig.Start();
  EXPECT_NEAR(rig.Frame()[64], Level(100), 1);
  rig.camera->SetScene(UniformPicture(Display(200), Display(200), Display(200)));
  EXPECT_NEAR(rig.Frame()[64], Level(200), 1);
  rig.camera->SetScene(nullptr);
  EXPECT_EQ(rig.Frame().size(), 64u + 64 * 48);
}

}  // namespace
}  // namespace vexa::simulator

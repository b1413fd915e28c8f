// Requests, registers and settings: the exact bytes on the wire, and what is refused without them.

#include <array>
#include <cmath>
#include <functional>

#include "camera_fixture.hpp"
#include "settings/gain_curve.hpp"
#include "transfer/frame_layout.hpp"
#include "transfer/trigger_waits.hpp"

namespace vexa::test {
namespace {

using simulator::CameraConfig;
using simulator::ForProduct;
using ::testing::ElementsAre;
using Lines = std::vector<std::string>;

class SettingsTest : public CameraTest {
 protected:
  // A camera with every capability.
  HANDLE OpenComplete(std::uint16_t product_id = 0x0510) {
    CameraConfig config = ForProduct(product_id);
    config.capabilities =
        ~std::uint64_t{1ULL << 48 | 1ULL << 20};  // the host computes limits, rate
    config.transfer_formats = 0x0007;
    twin_ = Plug(config);
    HANDLE camera = Open();
    twin_->ClearLog();
    return camera;
  }

  std::shared_ptr<simulator::TwinCamera> twin_;
};

TEST_F(SettingsTest, RequestsOnTheWire) {
  HANDLE camera = OpenComplete();
  std::array<BYTE, 16> data{1, 2, 3, 4, 5, 6, 7, 8};
  DWORD value = 0;
  DWORD returned = 0;
  BYTE byte[4];
  struct Case {
    const char* name;
    std::function<BOOL()> call;
    Lines wire;
  };
  const Lines kRefresh = {"C0 12 0000 0000 +64"};
  const auto then = [](Lines lines, const Lines& more) {
    lines.insert(lines.end(), more.begin(), more.end());
    return lines;
  };
  const Case cases[] = {
      {"vendor request out",
       [&] { return Vexa_VendorRequest(camera, 0x40, 0x20, 0, 0, 0, nullptr, nullptr); },
       {"40 20 0000 0000 []"}},
      {"vendor request in",
       [&] { return Vexa_VendorRequest(camera, 0xC0, 0x22, 0, 0, 10, data.data(), &returned); },
       {"C0 22 0000 0000 +10"}},
      {"registers in, high bits ignored",
       [&] { return Vexa_GetFPGAData(camera, 0, 0x85, 0x86, data.data()); },
       {"C0 80 0085 0000 +4"}},
      {"registers out",
       [&] {
         data = {0x11, 0x22, 0x33, 0x44};
         return Vexa_SetFPGAData(camera, 16, 3, 4, data.data());
       },
       {"40 80 0003 0010 [11 22 33 44]"}},
      {"JBA",
       [&] { return Vexa_GetJBARegister(camera, 127, 127, data.data()); },
       {"C0 80 00FF 004C +2"}},
      {"IOA",
       [&] { return Vexa_GetIOARegister(camera, 0, 1, data.data()); },
       {"C0 80 0080 0010 +4"}},
      {"ITA",
       [&] {
         data = {0xAA, 0xBB};
         return Vexa_SetITARegister(camera, 9, 9, data.data());
       },
       {"40 80 0009 0020 [AA BB]"}},
      {"reset, two bits", [&] { return Vexa_ResetCamera(camera, 7); }, {"40 80 0050 0000 [30 00]"}},
      {"reset counter", [&] { return Vexa_ResetCounter(camera); }, {"40 80 0050 0000 [03 00]"}},
      {"clear", [&] { return Vexa_ClearBuffer(camera); }, {"40 20 0000 0000 []"}},
      {"clock",
       [&] { return Vexa_SetClock(camera, 1, 0x02625A00); },
       {"40 22 0000 0000 [0A 22 01 00 00 00 00 5A 62 02]"}},
      {"skipping and binning", [&] { return Vexa_SetSkippingAndBinning(camera, 1, 2, 3, 4); },
       then({"40 80 0021 0000 [24 13]", "40 80 0050 0000 [01 00]"}, kRefresh)},
      {"skipping and binning back",
       [&] {
         const BOOL read =
             Vexa_GetSkippingAndBinning(camera, &byte[0], &byte[1], &byte[2], &byte[3]);
         EXPECT_THAT(byte, ElementsAre(1, 2, 3, 4));
         return read;
       },
       {"C0 80 00A1 0000 +2"}},
      {"blanking", [&] { return Vexa_SetVBlankForFPS(camera, 0x10005); },
       then({"40 80 0017 0000 [05 00]", "40 80 0050 0000 [01 00]"}, kRefresh)},
      {"blanking back",
       [&] { return Vexa_GetVBlankForFPS(camera, &value) && value == 5 ? TRUE : FALSE; },
       {"C0 80 0097 0000 +2"}},
      {"format, unsupported bits dropped",
       [&] { return Vexa_SetTransferBitsPerPixel(camera, 0x0402); },
       {"40 13 0000 0000 [06 13 02 00 00 00]"}},
      {"mirror",
       [&] { return Vexa_SetMirrorMode(camera, 0xF0); },
       {"40 80 003F 0000 [03 00]", "40 80 0050 0000 [01 00]"}},
      {"trigger mode",
       [&] { return Vexa_SetTriggerMode(camera, 0x00012401); },
       {"40 80 8030 0000 [01 24 01 00]", "40 20 0000 0000 []"}},
      {"trigger mode back",
       [&] { return Vexa_GetTriggerMode(camera, &value) && value == 0x12401 ? TRUE : FALSE; },
       {"C0 80 0030 0000 +4"}},
      {"timing",
       [&] { return Vexa_SetTriggerTiming(camera, 5, 0x01020304); },
       {"40 80 803C 0000 [04 03 02 01]"}},
      {"timing back",
       [&] { return Vexa_GetTriggerTiming(camera, 0, &value); },
       {"C0 80 0032 0000 +4"}},
      {"direction",
       [&] { return Vexa_SetIOPinDirection(camera, 0x70003); },
       {"40 80 8000 0000 [03 00]"}},
      {"polarity", [&] { return Vexa_SetIOPinPolarity(camera, 1); }, {"40 80 8001 0000 [01 00]"}},
      {"pins", [&] { return Vexa_SetIOPinStatus(camera, 4); }, {"40 80 8002 0000 [04 00]"}},
      {"pin mode, low byte of the pin",
       [&] { return Vexa_SetIOPinMode(camera, 0x3102, 9); },
       {"40 80 8006 0000 [09 00]"}},
      {"pin mode back",
       [&] { return Vexa_GetIOPinMode(camera, 2, &value) && value == 9 ? TRUE : FALSE; },
       {"C0 80 0006 0000 +2"}},
      {"LED", [&] { return Vexa_SetLEDStatus(camera, 0x10001); }, {"40 80 800F 0000 [01 00]"}},
      {"status word", [&] { return Vexa_GetSwStatus(camera, &value); }, {"C0 80 0066 0000 +2"}},
      {"soft trigger", [&] { return Vexa_SoftTrigger(camera); }, {"40 30 0000 0000 []"}},
      {"sub-trigger", [&] { return Vexa_SoftSubTrigger(camera); }, {"40 80 0050 0000 [00 40]"}},
      {"SDRAM", [&] { return Vexa_ReadSDRAMTrigger(camera); }, {"40 80 0050 0000 [00 01]"}},
      {"read-out", [&] { return Vexa_TriggerReadOut(camera); }, {"40 80 0050 0000 [05 00]"}},
  };
  for (const Case& test : cases) {
    EXPECT_TRUE(test.call()) << test.name << ": error " << GetLastError();
    EXPECT_EQ(Wire(*twin_), test.wire) << test.name;
  }
  EXPECT_EQ(returned, 10U);
}

TEST_F(SettingsTest, LargeRequestsFollowTheRecordRules) {
  HANDLE camera = OpenComplete();
  std::vector<BYTE> data(1024);
  struct Case {
    BYTE type;
    WORD length;
    std::size_t record, output;
  };
  for (const Case& test :
       {Case{0xC0, 64, 12, 512}, Case{0x40, 511, 523, 512}, Case{0x40, 512, 524, 1024},
        Case{0xC0, 1000, 12, 1024}, Case{0xC0, 1024, 12, 1536}}) {
    twin_->ClearLog();
    Vexa_VendorRequest(camera, test.type, 0xA0, 0, 0, test.length, data.data(), nullptr);
    ASSERT_EQ(twin_->Log().size(), 1U);
    EXPECT_EQ(twin_->Log()[0].record_size, test.record);
    EXPECT_EQ(twin_->Log()[0].output_size, test.output);
  }
}

TEST_F(SettingsTest, RefusesWithoutSending) {
  CameraConfig bare = ForProduct(0x0510);
  bare.capabilities = 0;
  bare.transfer_formats = 1;
  const auto plain = Plug(bare);
  HANDLE camera = Open();
  const auto legacy_twin = Plug(0x0705);
  HANDLE legacy = Open();
  plain->ClearLog();
  legacy_twin->ClearLog();
  BYTE data[4] = {};
  DWORD value = 77;
  WORD word = 0;
  BYTE byte = 0;
  const std::vector<std::pair<const char*, std::function<BOOL()>>> refused = {
      {"reversed registers", [&] { return Vexa_GetFPGAData(camera, 0, 5, 4, data); }},
      {"null data", [&] { return Vexa_SetFPGAData(camera, 0, 5, 5, nullptr); }},
      {"JBA 128", [&] { return Vexa_SetJBARegister(camera, 128, 128, data); }},
      {"IOA 128", [&] { return Vexa_GetIOARegister(camera, 0, 128, data); }},
      {"null buffer",
       [&] { return Vexa_VendorRequest(camera, 0xC0, 0x11, 0, 0, 4, nullptr, &value); }},
      {"legacy registers", [&] { return Vexa_GetFPGAData(legacy, 0, 1, 1, data); }},
      {"legacy reset", [&] { return Vexa_ResetCamera(legacy, 0); }},
      {"legacy trigger mode", [&] { return Vexa_SetTriggerMode(legacy, 0); }},
      {"legacy binning", [&] { return Vexa_SetSkippingAndBinning(legacy, 0, 0, 0, 0); }},
      {"sub-trigger source", [&] { return Vexa_SetTriggerMode(camera, 0x2001); }},
      {"timing 6", [&] { return Vexa_SetTriggerTiming(camera, 6, 0); }},
      {"timing 6 back", [&] { return Vexa_GetTriggerTiming(camera, 6, &value); }},
      {"pin 4", [&] { return Vexa_SetIOPinMode(camera, 4, 0); }},
      {"pin 0x3104 back", [&] { return Vexa_GetIOPinMode(camera, 0x3104, &value); }},
      {"blanking", [&] { return Vexa_SetVBlankForFPS(camera, 1); }},
      {"blanking back", [&] { return Vexa_GetVBlankForFPS(camera, &value); }},
      {"format", [&] { return Vexa_SetTransferBitsPerPixel(camera, 0x0006); }},
      {"mirror", [&] { return Vexa_SetMirrorMode(camera, 0x10); }},
      {"time-out 4", [&] { return Vexa_SetTimeOut(camera, 4, 1); }},
      {"time-out 4 back", [&] { return Vexa_GetTimeOut(camera, 4, &value); }},
      {"camera setting", [&] { return Vexa_CameraSetting(legacy, 1); }},
      {"null output", [&] { return Vexa_GetShutterMaxClock(camera, nullptr); }},
  };
  for (const auto& [name, call] : refused) {
    SetLastError(0);
    EXPECT_FALSE(call()) << name;
    EXPECT_EQ(GetLastError(), 87U) << name;
  }
  // What such models answer themselves: success, and still nothing sent.
  EXPECT_TRUE(Vexa_GetTriggerMode(legacy, &value));
  EXPECT_EQ(value, 0U);
  EXPECT_TRUE(Vexa_SetMirrorMode(camera, 0x0F));
  EXPECT_TRUE(Vexa_GetMirrorMode(camera, &byte));
  EXPECT_TRUE(Vexa_GetScanMode(camera, nullptr, nullptr, nullptr, nullptr, nullptr));
  EXPECT_TRUE(Vexa_GetFrameClock(camera, &word, nullptr));
  EXPECT_EQ(Vexa_SetTransferMode(camera, 5), 5U);
  EXPECT_EQ(Vexa_SetTransferMode(camera, 0), 0U);
  EXPECT_TRUE(Vexa_GetTransferMode(camera, &value));
  EXPECT_EQ(value, 0U);
  EXPECT_TRUE(Wire(*plain).empty());
  EXPECT_TRUE(Wire(*legacy_twin).empty());
  // The other registers go to every model; the camera answers.
  Vexa_SetLEDStatus(legacy, 1);
  EXPECT_EQ(Wire(*legacy_twin).size(), 1U);
}

TEST_F(SettingsTest, FailedRequestsPassTheirCodeOnAndStopTheSequence) {
  HANDLE camera = OpenComplete();
  ASSERT_TRUE(Vexa_SetTransferBitsPerPixel(camera, 1));
  twin_->ClearLog();
  DWORD value = 5;
  twin_->FailControl({.request = 0x80}, 1167, 1);
  EXPECT_FALSE(Vexa_SetTriggerMode(camera, 1));
  EXPECT_EQ(Wire(*twin_).size(), 1U) << "the buffer is not cleared after a failed write";
  EXPECT_EQ(GetLastError(), 1167U);
  twin_->FailControl({.request = 0x80}, 121, 1);
  EXPECT_FALSE(Vexa_GetIOPinStatus(camera, &value));
  EXPECT_EQ(value, 0U);
  twin_->FailControl({.request = 0x13}, 121, 1);
  EXPECT_FALSE(Vexa_SetTransferBitsPerPixel(camera, 2));
  EXPECT_TRUE(Vexa_GetTransferBitsPerPixel(camera, &value));
  EXPECT_EQ(value, 1U);
  DWORD width = 0;
  EXPECT_TRUE(Vexa_SetScanMode(camera, 1, 0, 0, 640, 480));
  twin_->FailControl({.request = 0x12, .device_to_host = true}, 121, 1);
  EXPECT_FALSE(Vexa_SetScanMode(camera, 1, 0, 0, 320, 240));
  EXPECT_TRUE(Vexa_GetScanMode(camera, nullptr, nullptr, nullptr, &width, nullptr));
  EXPECT_EQ(width, 640U) << "the copy keeps what was read last";
  twin_->FailControl({.request = 0x80}, 31, 1);
  EXPECT_FALSE(Vexa_SetMirrorMode(camera, 0x30));
  WORD colour = 0;
  EXPECT_TRUE(Vexa_GetColorArray(camera, &colour));
  EXPECT_EQ(colour, 5) << "the colour array follows the mode asked for";
}

TEST_F(SettingsTest, ScanModeAndExposureLimits) {
  HANDLE camera = OpenComplete();
  EXPECT_TRUE(Vexa_SetScanMode(camera, 1, 16, 8, 640, 480));
  const Lines wire = Wire(*twin_);
  ASSERT_EQ(wire.size(), 2U);
  EXPECT_EQ(wire[0].substr(0, 91),
            "40 12 0000 0000 [40 12 53 43 56 31 80 02 00 00 E0 01 00 00 10 00 00 00 08 00 00 00 "
            "01 00 00");
  WORD lines = 0, clocks = 0;
  DWORD shutter = 0, shortest = 0, longest = 0;
  EXPECT_TRUE(Vexa_GetFrameClock(camera, &lines, &clocks));
  EXPECT_TRUE(Vexa_GetShutterMaxClock(camera, &shutter));
  EXPECT_TRUE(Vexa_GetMaxShortExposureClock(camera, &shortest));
  EXPECT_TRUE(Vexa_GetMaxLongExposureClock(camera, &longest));
  EXPECT_EQ(shutter, clocks - 1U);
  EXPECT_EQ(shortest, DWORD{lines} * clocks);
  EXPECT_EQ(longest, 4090U * clocks);
  // In the skipping and binning mode the longest exposure is one frame.
  EXPECT_TRUE(Vexa_SetScanMode(camera, 0x8000, 0, 0, 640, 480));
  EXPECT_TRUE(Vexa_GetFrameClock(camera, &lines, &clocks));
  EXPECT_TRUE(Vexa_GetMaxLongExposureClock(camera, &longest));
  EXPECT_EQ(longest, DWORD{lines} * clocks);
}

TEST_F(SettingsTest, ExposureTravelsAsLinesAndRemainder) {
  HANDLE camera = OpenComplete();
  DWORD shutter = 0;
  ASSERT_TRUE(Vexa_GetShutterMaxClock(camera, &shutter));
  const DWORD line = shutter + 1;
  std::array<BYTE, 64> before{};
  ASSERT_TRUE(Vexa_VendorRequest(camera, 0xC0, 0x21, 0, 0, 64, before.data(), nullptr));
  const DWORD exposure = 70000 * line + 500;  // more lines than 16 bits hold
  EXPECT_TRUE(Vexa_SetExposureClock(camera, exposure));
  const Lines wire = Wire(*twin_);
  ASSERT_EQ(wire.size(), 3U);
  std::string expected = "40 21 0000 0000 [";
  before[2] = 70000 & 0xFF;
  before[3] = (70000 >> 8) & 0xFF;
  before[10] = 1;
  before[11] = 0;
  before[4] = 500 & 0xFF;
  before[5] = 500 >> 8;
  for (std::size_t i = 0; i < before.size(); ++i) {
    char text[8];
    std::snprintf(text, sizeof text, "%s%02X", i == 0 ? "" : " ", before[i]);
    expected += text;
  }
  EXPECT_EQ(wire[2], expected + "]") << "all other bytes go back as they came";
  EXPECT_TRUE(Vexa_SetExposureClock(camera, 2 * line + 500));
  DWORD clock = 0;
  EXPECT_TRUE(Vexa_GetExposureClock(camera, &clock));
  EXPECT_EQ(clock, 2 * line + 500);
  clock = 5;
  twin_->FailControl({.request = 0x21}, 121, 1);
  EXPECT_FALSE(Vexa_GetExposureClock(camera, &clock));
  EXPECT_EQ(clock, 5U);
}

TEST_F(SettingsTest, ExposureTimesAndFrameRate) {
  HANDLE camera = OpenComplete();
  DWORD frequency = 0, longest = 0, shortest = 0, clock = 0;
  WORD lines = 0, clocks = 0;
  float seconds = -1, fps = 0;
  ASSERT_TRUE(Vexa_SetScanMode(camera, 4, 0, 0, 640, 480));
  ASSERT_TRUE(Vexa_GetClock(camera, nullptr, &frequency));
  ASSERT_TRUE(Vexa_GetMaxLongExposureClock(camera, &longest));
  ASSERT_TRUE(Vexa_GetMaxShortExposureClock(camera, &shortest));
  ASSERT_TRUE(Vexa_GetFrameClock(camera, &lines, &clocks));
  struct Case {
    float seconds;
    double clock;
  };
  for (const Case& test :
       {Case{0, 1}, Case{-1, 1}, Case{NAN, 1}, Case{1e9F, double(longest)},
        Case{INFINITY, double(longest)}, Case{0.001F, frequency * double(0.001F)}}) {
    EXPECT_TRUE(Vexa_GetExposureClockFromTime(camera, test.seconds, &clock));
    EXPECT_EQ(clock, static_cast<DWORD>(test.clock)) << test.seconds;
  }
  EXPECT_TRUE(Vexa_GetExposureTimeFromClock(camera, 0, &seconds));
  EXPECT_FLOAT_EQ(seconds, static_cast<float>(double(shortest) / frequency));
  EXPECT_TRUE(Vexa_GetExposureTimeFromClock(camera, 0xFFFFFFFF, &seconds));
  EXPECT_FLOAT_EQ(seconds, static_cast<float>(double(longest) / frequency));

  // In this mode an exposure of three frames makes the rate a third.
  ASSERT_TRUE(Vexa_SetExposureClock(camera, 10));
  EXPECT_TRUE(Vexa_GetOutputFPS(camera, &fps));
  EXPECT_FLOAT_EQ(fps, static_cast<float>(double(frequency) / shortest));
  ASSERT_TRUE(Vexa_SetExposureClock(camera, 3 * shortest));
  EXPECT_TRUE(Vexa_GetOutputFPS(camera, &fps));
  EXPECT_FLOAT_EQ(fps, static_cast<float>(double(frequency) / (3.0 * shortest)));
  twin_->FailControl({.request = 0x22}, 121, 1);
  EXPECT_FALSE(Vexa_GetOutputFPS(camera, &fps));
  EXPECT_EQ(fps, 0.0F);
  twin_->FailControl({.request = 0x22}, 121, 1);
  EXPECT_FALSE(Vexa_GetExposureClockFromTime(camera, 1, &clock));
  EXPECT_EQ(GetLastError(), 121U);
}

TEST_F(SettingsTest, ExposureOfTheLargeSensorsCountsBinnedLines) {
  HANDLE camera = OpenComplete(0x0111);
  DWORD frequency = 0, clock = 0, width = 0;
  float seconds = 0;
  ASSERT_TRUE(Vexa_GetClock(camera, nullptr, &frequency));
  struct Case {
    BYTE horizontal, vertical;
    double blanking, k;
  };
  for (const Case& test : {Case{0, 0, 450, 0}, Case{1, 0, 430, 0}, Case{0, 1, 796, 1},
                           Case{3, 2, 1458, 3}, Case{2, 5, 1458, 3}}) {
    ASSERT_TRUE(Vexa_SetSkippingAndBinning(camera, 0, 0, test.horizontal, test.vertical));
    ASSERT_TRUE(Vexa_GetScanMode(camera, nullptr, nullptr, nullptr, &width, nullptr));
    const double period = 2 * std::max(std::floor(width / 2.0) + test.blanking, 346 * test.k + 486);
    const double offset = 416 * test.k + 426;
    EXPECT_TRUE(Vexa_GetExposureClockFromTime(camera, 0.01F, &clock));
    EXPECT_EQ(clock, static_cast<DWORD>(
                         static_cast<float>((frequency * double(0.01F) + offset) / period)));
    EXPECT_TRUE(Vexa_GetExposureTimeFromClock(camera, clock, &seconds));
    EXPECT_FLOAT_EQ(seconds, static_cast<float>((period * clock - offset) / frequency));
  }
  twin_->FailControl({.request = 0x80}, 121, 1);
  EXPECT_FALSE(Vexa_GetExposureTimeFromClock(camera, 1, &seconds));
}

TEST_F(SettingsTest, FrameRateMeasuredByTheCamera) {
  CameraConfig config = ForProduct(0x0109);
  config.capabilities |= 1ULL << 20;
  const auto twin = Plug(config);
  HANDLE camera = Open();
  twin->ClearLog();
  float fps = 0;
  EXPECT_TRUE(Vexa_GetOutputFPS(camera, &fps));
  EXPECT_THAT(Wire(*twin), ElementsAre("C0 80 00D6 0000 +4"));
  EXPECT_EQ(fps,
            static_cast<float>(twin->PeekRegister(0, 87) + twin->PeekRegister(0, 86) / 65536.0));
}

TEST_F(SettingsTest, ColourArrayFollowsTheMirror) {
  for (std::uint16_t sensor = 1; sensor <= 5; ++sensor) {
    CameraConfig config = ForProduct(0x0510);
    config.colour_array = sensor;
    const auto twin = Plug(config);
    HANDLE camera = Open();
    constexpr std::uint16_t kTable[4][5] = {
        {1, 2, 3, 4, 5}, {1, 3, 2, 5, 4}, {1, 4, 5, 2, 3}, {1, 5, 4, 3, 2}};
    for (int bits = 0; bits < 4; ++bits) {
      WORD code = 0;
      BYTE mode = 0xFF;
      EXPECT_TRUE(Vexa_SetMirrorMode(camera, static_cast<BYTE>(bits << 4)));
      EXPECT_TRUE(Vexa_GetMirrorMode(camera, &mode));
      EXPECT_EQ(mode, bits << 4);
      EXPECT_TRUE(Vexa_GetColorArray(camera, &code));
      EXPECT_EQ(code, kTable[bits][sensor - 1]);
    }
    Close(camera);
    bus_.Remove(twin);
  }
}

TEST_F(SettingsTest, GainCurves) {
  using settings::GainCurve;
  struct Case {
    GainCurve curve;
    std::uint16_t gain;
    double decibel;
  };
  for (const Case& test :
       {Case{GainCurve::kLinear, 0, -2.36}, Case{GainCurve::kLinear, 100, 10.84},
        Case{GainCurve::kLinearOffset, 0, 11.00864}, Case{GainCurve::kTwoSegment, 0, 0},
        Case{GainCurve::kTwoSegment, 20, 20 * std::log10(3.5)},
        Case{GainCurve::kTwoSegment, 21, 20 * std::log10(3.9375)}}) {
    const float decibel = settings::GainToDecibel(test.curve, test.gain);
    EXPECT_NEAR(decibel, test.decibel, 1e-5);
    const int back = settings::DecibelToGain(test.curve, decibel, 1023);
    EXPECT_TRUE(back == test.gain || back == test.gain - 1) << back;
  }
  const auto decibel_of = [](double n) { return static_cast<float>(20 * std::log10(n / 64)); };
  EXPECT_EQ(settings::DecibelToGain(GainCurve::kTwoSegment, decibel_of(184.5), 1023), 15);
  EXPECT_EQ(settings::DecibelToGain(GainCurve::kTwoSegment, decibel_of(252.5), 1023), 21);
  for (const GainCurve curve :
       {GainCurve::kLinear, GainCurve::kLinearOffset, GainCurve::kTwoSegment}) {
    EXPECT_EQ(settings::DecibelToGain(curve, -200, 500), 0);
    EXPECT_EQ(settings::DecibelToGain(curve, NAN, 500), 0);
    EXPECT_EQ(settings::DecibelToGain(curve, 1e30F, 500), 500);
  }
}

TEST_F(SettingsTest, FrameSizes) {
  struct Format {
    std::uint32_t code;
    double factor;
  };
  for (const Format& format : {Format{0x0001, 1},
                               {0x0002, 2},
                               {0x0004, 2},
                               {0x0008, 2},
                               {0x0010, 2},
                               {0x0020, 1},
                               {0x0040, 2},
                               {0x0080, 2},
                               {0x0100, 2},
                               {0x0200, 2},
                               {0x0400, 3},
                               {0x0800, 4},
                               {0x1000, 1.5},
                               {0x2000, 2},
                               {0x4000, 3},
                               {0x8000, 1},
                               {0x0003, 1}}) {
    EXPECT_EQ(transfer::ImageSize(format.code, 64, 48), 64 * 48 * format.factor) << format.code;
  }
  EXPECT_EQ(transfer::ImageSize(0x1000, 3, 3), 13U);

  using device::UsbSpeed;
  struct Layout {
    std::uint32_t header, image;
    UsbSpeed speed;
    std::uint32_t limit;
    std::size_t buffer, read;
  };
  for (const Layout& test : {Layout{64, 1310720, UsbSpeed::kHigh, 0x80000, 1311232, 0x80000},
                             {0, 1000, UsbSpeed::kSuper, 0x80000, 16384, 16384},
                             {64, 448, UsbSpeed::kHigh, 0x80000, 1024, 1024},
                             {64, 449, UsbSpeed::kFull, 0x80000, 1024, 1024},
                             {64, 32704, UsbSpeed::kSuper, 4096, 33792, 4096}}) {
    const auto layout = transfer::MakeFrameLayout(test.header, test.image, test.speed, test.limit);
    EXPECT_EQ(layout.buffer, test.buffer);
    EXPECT_EQ(layout.read_length, test.read);
  }
  EXPECT_THROW(static_cast<void>(transfer::MakeFrameLayout(64, ~0ULL / 2, UsbSpeed::kHigh, 4096)),
               std::bad_alloc);
  EXPECT_EQ(transfer::CombineTimeOuts(1000, 5000), 6000U);
  EXPECT_EQ(transfer::CombineTimeOuts(0xFFFFFFF0, 0x20), 0xFFFFFFFEU);
  EXPECT_EQ(transfer::CombineTimeOuts(0xFFFFFFF0, 0x0F), 0xFFFFFFFEU);
  EXPECT_EQ(transfer::CombineTimeOuts(INFINITE, 1), INFINITE);
}

}  // namespace
}  // namespace vexa::test

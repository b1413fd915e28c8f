// Requests, registers and settings: the exact bytes on the wire, and what is refused without them.

#include <array>
#include <functional>

#include "settings_fixture.hpp"

namespace vexa::test {
namespace {

using simulator::CameraConfig;
using simulator::ForProduct;
using ::testing::ElementsAre;

class RequestTest : public SettingsTest {};

TEST_F(RequestTest, RequestsOnTheWire) {
  HANDLE camera = OpenComplete();
  std::array<BYTE, 16> data{1, 2, 3, 4, 5, 6, 7, 8};
  DWORD value = 0;
  DWORD returned = 0;
  BYTE byte[4];
  const Lines kRefresh = {"C0 12 0000 0000 +64"};
  const auto then = [](Lines lines, const Lines& more) {
    lines.insert(lines.end(), more.begin(), more.end());
    return lines;
  };
  const std::vector<WireCase> cases = {
      {[&] { return Vexa_VendorRequest(camera, 0x40, 0x20, 0, 0, 0, nullptr, nullptr); },
       {"40 20 0000 0000 []"}},
      {[&] { return Vexa_VendorRequest(camera, 0xC0, 0x22, 0, 0, 10, data.data(), &returned); },
       {"C0 22 0000 0000 +10"}},
      // Registers in, high bits ignored.
      {[&] { return Vexa_GetFPGAData(camera, 0, 0x85, 0x86, data.data()); },
       {"C0 80 0085 0000 +4"}},
      {[&] {
         data = {0x11, 0x22, 0x33, 0x44};
         return Vexa_SetFPGAData(camera, 16, 3, 4, data.data());
       },
       {"40 80 0003 0010 [11 22 33 44]"}},
      {[&] { return Vexa_GetJBARegister(camera, 127, 127, data.data()); }, {"C0 80 00FF 004C +2"}},
      {[&] { return Vexa_GetIOARegister(camera, 0, 1, data.data()); }, {"C0 80 0080 0010 +4"}},
      {[&] {
         data = {0xAA, 0xBB};
         return Vexa_SetITARegister(camera, 9, 9, data.data());
       },
       {"40 80 0009 0020 [AA BB]"}},
      // Reset, two bits.
      {[&] { return Vexa_ResetCamera(camera, 7); }, {"40 80 0050 0000 [30 00]"}},
      {[&] { return Vexa_ResetCounter(camera); }, {"40 80 0050 0000 [03 00]"}},
      {[&] { return Vexa_ClearBuffer(camera); }, {"40 20 0000 0000 []"}},
      {[&] { return Vexa_SetClock(camera, 1, 0x02625A00); },
       {"40 22 0000 0000 [0A 22 01 00 00 00 00 5A 62 02]"}},
      {[&] { return Vexa_SetSkippingAndBinning(camera, 1, 2, 3, 4); },
       then({"40 80 0021 0000 [24 13]", "40 80 0050 0000 [01 00]"}, kRefresh)},
      {[&] {
         const BOOL read =
             Vexa_GetSkippingAndBinning(camera, &byte[0], &byte[1], &byte[2], &byte[3]);
         EXPECT_THAT(byte, ElementsAre(1, 2, 3, 4));
         return read;
       },
       {"C0 80 00A1 0000 +2"}},
      {[&] { return Vexa_SetVBlankForFPS(camera, 0x10005); },
       then({"40 80 0017 0000 [05 00]", "40 80 0050 0000 [01 00]"}, kRefresh)},
      {[&] { return Get(camera, Vexa_GetVBlankForFPS) == 5; }, {"C0 80 0097 0000 +2"}},
      // Format, unsupported bits dropped.
      {[&] { return Vexa_SetTransferBitsPerPixel(camera, 0x0402); },
       {"40 13 0000 0000 [06 13 02 00 00 00]"}},
      {[&] { return Vexa_SetMirrorMode(camera, 0xF0); },
       {"40 80 003F 0000 [03 00]", "40 80 0050 0000 [01 00]"}},
      {[&] { return Vexa_SetTriggerMode(camera, 0x00012401); },
       {"40 80 8030 0000 [01 24 01 00]", "40 20 0000 0000 []"}},
      {[&] { return Get(camera, Vexa_GetTriggerMode) == 0x12401; }, {"C0 80 0030 0000 +4"}},
      {[&] { return Vexa_SetTriggerTiming(camera, 5, 0x01020304); },
       {"40 80 803C 0000 [04 03 02 01]"}},
      {[&] { return Vexa_GetTriggerTiming(camera, 0, &value); }, {"C0 80 0032 0000 +4"}},
      {[&] { return Vexa_SetDigitalGain(camera, 0x0234); }, {"40 80 8014 0000 [34 02]"}},
      {[&] { return Get(camera, Vexa_GetDigitalGain) == 0x0234; }, {"C0 80 0014 0000 +2"}},
      {[&] { return Vexa_SetIOPinDirection(camera, 0x70003); }, {"40 80 8000 0000 [03 00]"}},
      {[&] { return Vexa_SetIOPinPolarity(camera, 1); }, {"40 80 8001 0000 [01 00]"}},
      {[&] { return Vexa_SetIOPinStatus(camera, 4); }, {"40 80 8002 0000 [04 00]"}},
      // Pin mode, low byte of the pin.
      {[&] { return Vexa_SetIOPinMode(camera, 0x3102, 9); }, {"40 80 8006 0000 [09 00]"}},
      {[&] { return Vexa_GetIOPinMode(camera, 2, &value) && value == 9; }, {"C0 80 0006 0000 +2"}},
      {[&] { return Vexa_SetLEDStatus(camera, 0x10001); }, {"40 80 800F 0000 [01 00]"}},
      {[&] { return Vexa_GetSwStatus(camera, &value); }, {"C0 80 0066 0000 +2"}},
      {[&] { return Vexa_SoftTrigger(camera); }, {"40 30 0000 0000 []"}},
      {[&] { return Vexa_SoftSubTrigger(camera); }, {"40 80 0050 0000 [00 40]"}},
      {[&] { return Vexa_ReadSDRAMTrigger(camera); }, {"40 80 0050 0000 [00 01]"}},
      {[&] { return Vexa_TriggerReadOut(camera); }, {"40 80 0050 0000 [05 00]"}},
  };
  ExpectOnWire(*twin_, cases);
  EXPECT_EQ(returned, 10U);
}

TEST_F(RequestTest, LargeRequestsFollowTheRecordRules) {
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

TEST_F(RequestTest, RefusesWithoutSending) {
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
  ExpectRefused({
      [&] { return Vexa_GetFPGAData(camera, 0, 5, 4, data); },
      [&] { return Vexa_SetFPGAData(camera, 0, 5, 5, nullptr); },
      [&] { return Vexa_SetJBARegister(camera, 128, 128, data); },
      [&] { return Vexa_GetIOARegister(camera, 0, 128, data); },
      [&] { return Vexa_VendorRequest(camera, 0xC0, 0x11, 0, 0, 4, nullptr, &value); },
      [&] { return Vexa_GetFPGAData(legacy, 0, 1, 1, data); },
      [&] { return Vexa_ResetCamera(legacy, 0); },
      [&] { return Vexa_SetTriggerMode(legacy, 0); },
      [&] { return Vexa_SetSkippingAndBinning(legacy, 0, 0, 0, 0); },
      [&] { return Vexa_SetTriggerMode(camera, 0x2001); },
      [&] { return Vexa_SetTriggerTiming(camera, 6, 0); },
      [&] { return Vexa_GetTriggerTiming(camera, 6, &value); },
      [&] { return Vexa_SetIOPinMode(camera, 4, 0); },
      [&] { return Vexa_GetIOPinMode(camera, 0x3104, &value); },
      [&] { return Vexa_SetVBlankForFPS(camera, 1); },
      [&] { return Vexa_GetVBlankForFPS(camera, &value); },
      [&] { return Vexa_SetTransferBitsPerPixel(camera, 0x0006); },
      [&] { return Vexa_SetMirrorMode(camera, 0x10); },
      [&] { return Vexa_SetTimeOut(camera, 4, 1); },
      [&] { return Vexa_GetTimeOut(camera, 4, &value); },
      [&] { return Vexa_CameraSetting(legacy, 1); },
      [&] { return Vexa_GetShutterMaxClock(camera, nullptr); },
  });
  // What such models answer themselves: success, and still nothing sent.
  EXPECT_EQ(Get(legacy, Vexa_GetTriggerMode), 0U);
  EXPECT_TRUE(Vexa_SetMirrorMode(camera, 0x0F));
  EXPECT_TRUE(Vexa_GetMirrorMode(camera, &byte));
  EXPECT_TRUE(Vexa_GetScanMode(camera, nullptr, nullptr, nullptr, nullptr, nullptr));
  EXPECT_TRUE(Vexa_GetFrameClock(camera, &word, nullptr));
  EXPECT_EQ(Vexa_SetTransferMode(camera, 5), 5U);
  EXPECT_EQ(Vexa_SetTransferMode(camera, 0), 0U);
  EXPECT_EQ(Get(camera, Vexa_GetTransferMode), 0U);
  EXPECT_TRUE(Wire(*plain).empty());
  EXPECT_TRUE(Wire(*legacy_twin).empty());
  // The other registers go to every model; the camera answers.
  Vexa_SetLEDStatus(legacy, 1);
  EXPECT_EQ(Wire(*legacy_twin).size(), 1U);
}

TEST_F(RequestTest, FailedRequestsPassTheirCodeOnAndStopTheSequence) {
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
  WORD gain = 5;
  twin_->FailControl({.request = 0x80}, 121, 1);
  EXPECT_FALSE(Vexa_GetDigitalGain(camera, &gain));
  EXPECT_EQ(gain, 0);
  twin_->FailControl({.request = 0x13}, 121, 1);
  EXPECT_FALSE(Vexa_SetTransferBitsPerPixel(camera, 2));
  EXPECT_EQ(Get(camera, Vexa_GetTransferBitsPerPixel), 1U);
  DWORD width = 0;
  EXPECT_TRUE(Vexa_SetScanMode(camera, 1, 0, 0, 640, 480));
  twin_->FailControl({.request = 0x12, .device_to_host = true}, 121, 1);
  EXPECT_FALSE(Vexa_SetScanMode(camera, 1, 0, 0, 320, 240));
  EXPECT_TRUE(Vexa_GetScanMode(camera, nullptr, nullptr, nullptr, &width, nullptr));
  EXPECT_EQ(width, 640U) << "the copy keeps what was read last";
}

TEST_F(RequestTest, ColourArrayFollowsTheMirror) {
  for (std::uint16_t sensor = 1; sensor <= 5; ++sensor) {
    CameraConfig config = ForProduct(0x0510);
    config.colour_array = sensor;
    HANDLE camera = OpenOnly(config);
    constexpr std::uint16_t kTable[4][5] = {
        {1, 2, 3, 4, 5}, {1, 3, 2, 5, 4}, {1, 4, 5, 2, 3}, {1, 5, 4, 3, 2}};
    for (int bits = 0; bits < 4; ++bits) {
      EXPECT_TRUE(Vexa_SetMirrorMode(camera, static_cast<BYTE>(bits << 4)));
      EXPECT_EQ(Get(camera, Vexa_GetMirrorMode), bits << 4);
      EXPECT_EQ(Get(camera, Vexa_GetColorArray), kTable[bits][sensor - 1]);
    }
  }
}

}  // namespace
}  // namespace vexa::test

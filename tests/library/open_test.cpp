// Finding, opening, identifying and closing cameras.

#include <array>
#include <thread>

#include "camera_fixture.hpp"
#include "device/discovery.hpp"

namespace vexa::test {
namespace {

using platform::ControlCode;
using simulator::CameraConfig;
using simulator::ForProduct;
using simulator::Wakes;
using ::testing::ElementsAre;

class OpenTest : public CameraTest {};

TEST_F(OpenTest, ReadsIdentityAndSettingsInOrder) {
  const auto twin = Plug();
  HANDLE camera = Open();
  const auto log = twin->Log();
  EXPECT_EQ(log.front().code, ControlCode::kOpenCount);
  for (const auto& entry : log) {
    if (entry.code == ControlCode::kControlRequest) {
      EXPECT_EQ(entry.timeout_ms, 1000U);
      EXPECT_EQ(entry.record_size, 12 + entry.data.size());
      EXPECT_EQ(entry.output_size, 512U);
    }
  }
  EXPECT_THAT(Wire(*twin),
              ElementsAre("C0 11 0000 0000 +64", "C0 80 0068 0000 +8",
                          "C0 23 0000 0000 +64",  // white-balance defaults
                          "C0 21 0000 0000 +64",  // gain and exposure
                          "C0 80 00BF 0000 +2",   // mirror register 63
                          "C0 12 0000 0000 +64", "C0 13 0000 0000 +6", "C0 21 0000 0000 +64"));
  constexpr std::array<DWORD, 4> kDefaults = {INFINITE, INFINITE, 5000, 5000};
  for (DWORD index = 0; index < 4; ++index) {
    DWORD milliseconds = 0;
    EXPECT_TRUE(Vexa_GetTimeOut(camera, index, &milliseconds));
    EXPECT_EQ(milliseconds, kDefaults[index]);
  }
  EXPECT_EQ(GetLastError(), 0U) << "success leaves the last error alone";
}

TEST_F(OpenTest, FindsFreeCamerasOnly) {
  EXPECT_EQ(Vexa_Open(), INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), 259U);
  const auto first = Plug();
  const auto second = Plug(0x0710);
  first->SetBusyElsewhere(true);
  WORD product = 0;
  HANDLE camera = Open();
  EXPECT_TRUE(Vexa_GetCameraVersion(camera, nullptr, &product, nullptr, nullptr));
  EXPECT_EQ(product, 0x0710);
  EXPECT_EQ(Vexa_Open(), INVALID_HANDLE_VALUE);
  first->SetBusyElsewhere(false);
  EXPECT_NE(Open(), camera);
  EXPECT_EQ(first->OpenHandles(), 1U);
  EXPECT_EQ(Vexa_Open(), INVALID_HANDLE_VALUE) << "both are in use in this process";
}

TEST_F(OpenTest, RecoversACameraThatDoesNotAnswerTwice) {
  struct Case {
    Wakes wakes;
    std::array<std::uint32_t, 4> driver;
    std::vector<ControlCode> recoveries;
    bool opened;
  };
  constexpr std::array<std::uint32_t, 4> kRecovering = {0x00030000, 5, 0, 0};
  const auto kFirst = ControlCode::kRecoverFirstStage;
  const auto kSecond = ControlCode::kRecoverSecondStage;
  const Case cases[] = {
      {Wakes::kFirstStage, kRecovering, {kFirst}, true},
      {Wakes::kSecondStage, kRecovering, {kFirst, kSecond}, true},
      {Wakes::kNever, kRecovering, {kFirst, kSecond}, false},
      {Wakes::kFirstStage, {0x00030000, 4, 0, 0}, {}, false},
      {Wakes::kFirstStage, {0x00030001, 0, 0, 0}, {kFirst}, true},
  };
  for (const Case& test : cases) {
    const auto silent = Plug();
    const auto next = Plug(0x0710);
    silent->SetDriverVersion(test.driver);
    silent->SetUnanswering(test.wakes);
    HANDLE camera = Open();
    std::vector<ControlCode> recoveries;
    for (const auto& entry : silent->Log()) {
      if (entry.code == kFirst || entry.code == kSecond) {
        recoveries.push_back(entry.code);
      }
    }
    EXPECT_EQ(recoveries, test.recoveries);
    EXPECT_EQ(silent->OpenHandles(), test.opened ? 1U : 0U);
    EXPECT_EQ(next->OpenHandles(), test.opened ? 0U : 1U);
    Close(camera);
    Remove(silent);
    Remove(next);
  }
}

TEST_F(OpenTest, FailureInTheSettingsClosesTheDeviceAgain) {
  const auto twin = Plug();
  for (const std::uint8_t request : std::array<std::uint8_t, 2>{0x12, 0x13}) {
    twin->FailControl({.request = request}, 121, 1);
    EXPECT_EQ(Vexa_Open(), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), 121U);
    EXPECT_EQ(twin->OpenHandles(), 0U);
  }
  // Gain and exposure are asked for twice; only the second answer matters.
  twin->FailControl({.request = 0x21}, 121, 2);
  EXPECT_EQ(Vexa_Open(), INVALID_HANDLE_VALUE);
  SetLastError(0);
  twin->FailControl({.request = 0x21}, 121, 1);
  Open();
  EXPECT_EQ(GetLastError(), 0U);
}

TEST_F(OpenTest, CapabilitiesFollowMaskAndModel) {
  struct Case {
    std::uint16_t product, variant, colour;
    std::uint64_t mask;
    DWORD function;
    BOOL present;
  };
  const Case cases[] = {
      {0x0705, 0, 2, ~0ULL, 7, 1},    {0x0705, 0, 2, ~0ULL, 22, 0},  // no register access
      {0x0705, 0, 1, ~0ULL, 256, 0},  {0x0110, 0, 2, 1, 0, 1},
      {0x0110, 0, 2, 0, 0, 0},        {0x0111, 0, 2, 1, 0, 0},
      {0x0906, 0x000F, 2, 0, 1, 1},   {0x0906, 0x0010, 2, 0, 1, 0},
      {0x0510, 0x000F, 2, 0, 1, 0},   {0x0510, 0, 2, 2, 1, 1},
      {0x0906, 0x0010, 2, 0, 2, 1},   {0x0906, 0x0010, 2, 0, 6, 1},
      {0x0906, 0x000F, 2, 0, 6, 0},   {0x0510, 0, 2, 1ULL << 63, 63, 1},
      {0x0510, 0, 2, ~0ULL, 64, 0},   {0x0510, 0, 2, ~0ULL, 1000, 0},
      {0x0510, 0, 2, 0, 256, 1},      {0x0510, 0, 2, 0, 261, 1},
      {0x0510, 0, 1, 0, 259, 1},      {0x0510, 0, 2, ~0ULL, 259, 0},
      {0x0510, 0, 2, 0x10000, 16, 1}, {0x0510, 0, 2, 0x10000, 17, 0},
  };
  for (const Case& test : cases) {
    CameraConfig config = ForProduct(test.product);
    config.variant = test.variant;
    config.colour_array = test.colour;
    config.capabilities = test.mask;
    HANDLE camera = OpenOnly(config);
    BOOL present = -1;
    EXPECT_TRUE(Vexa_HasFunction(camera, test.function, &present));
    EXPECT_EQ(present, test.present) << std::hex << test.product << " variant " << test.variant
                                     << " function " << std::dec << test.function;
  }
}

TEST_F(OpenTest, IdentityOfEveryModel) {
  std::vector<std::u16string> names;
  std::vector<std::uint16_t> products = simulator::KnownProducts();
  products.push_back(0x1234);
  for (const std::uint16_t id : products) {
    CameraConfig config = ForProduct(id);
    const simulator::SensorSize size = simulator::ProductSensorSize(id);
    config.max_width = id % 2 == 0 ? 0 : 1024;  // either one left open replaces both
    config.max_height = 1024 - config.max_width;
    HANDLE camera = OpenOnly(config);
    DWORD width = 0, height = 0;
    EXPECT_TRUE(Vexa_GetMaximumImageSize(camera, &width, &height));
    EXPECT_EQ(width, size.width);
    EXPECT_EQ(height, size.height);
    WCHAR name[32];
    EXPECT_TRUE(Vexa_GetProductNameW(camera, name, sizeof name));
    names.emplace_back(name, std::find(name, name + 32, 0));
    CHAR narrow[32];
    EXPECT_EQ(Vexa_GetProductNameA(camera, narrow, sizeof narrow),
              static_cast<int>(names.back().size()) + 1);
    EXPECT_EQ(std::u16string(narrow, narrow + names.back().size()), names.back());
    // A buffer without room for the terminator holds an empty string.
    narrow[0] = 'x';
    EXPECT_EQ(Vexa_GetProductNameA(camera, narrow, static_cast<DWORD>(names.back().size())), 0);
    EXPECT_EQ(narrow[0], '\0');
    EXPECT_EQ(
        ErrorOf(Vexa_GetProductNameW(camera, name, static_cast<DWORD>(2 * names.back().size()))),
        122U);
  }
  EXPECT_EQ(names.back(), u"UNKNOWN");
  std::sort(names.begin(), names.end());
  const auto distinct = std::unique(names.begin(), names.end()) - names.begin();
  EXPECT_EQ(distinct, 28) << "27 names for 28 known products, and UNKNOWN";
}

TEST_F(OpenTest, UsbSpeedFollowsTheFirstBulkInEndpoint) {
  struct Case {
    std::vector<std::uint8_t> descriptor;
    BYTE speed;
  };
  const auto descriptor = [](std::vector<std::vector<std::uint8_t>> endpoints) {
    std::vector<std::uint8_t> bytes(18);
    bytes[13] = static_cast<std::uint8_t>(endpoints.size());
    for (const auto& endpoint : endpoints) {  // address, attributes, packet size low, high
      bytes.insert(bytes.end(), {7, 5, endpoint[0], endpoint[1], endpoint[2], endpoint[3], 0});
    }
    return bytes;
  };
  const Case cases[] = {
      {descriptor({{0x81, 2, 0x40, 0}}), 0},
      {descriptor({{0x81, 2, 0x41, 0}}), 1},
      {descriptor({{0x81, 2, 0x00, 2}}), 1},
      {descriptor({{0x81, 2, 0x00, 4}}), 2},
      {descriptor({{2, 2, 0, 4}, {0x81, 3, 0, 4}, {0x83, 2, 0, 2}}), 1},  // out, interrupt, in
      {descriptor({{2, 2, 0, 4}}), 0},
      {std::vector<std::uint8_t>(9), 1},
      {std::vector<std::uint8_t>(10), 0},
  };
  for (const Case& test : cases) {
    CameraConfig config = ForProduct(0x0510);
    config.descriptor_override = test.descriptor;
    HANDLE camera = OpenOnly(config);
    EXPECT_EQ(Get(camera, Vexa_GetUSBSpeed), test.speed);
    twin_->FailControl({.code = ControlCode::kConfigurationDescriptor}, 31, 1);
    BYTE speed = 9;
    EXPECT_EQ(ErrorOf(Vexa_GetUSBSpeed(camera, &speed)), 31U);
    EXPECT_EQ(speed, 0);
  }
}

#if VEXA_TESTS_LOOK_INSIDE
TEST_F(OpenTest, TransferSizeLimit) {
  struct Case {
    std::uint32_t configured, os_major, limit;
  };
  for (const Case& test :
       {Case{0, 5, 0x300000}, Case{0, 6, 0x80000}, Case{511, 6, 0x80000}, Case{1000, 6, 4096},
        Case{0x7FFFFFFF, 5, 0x300000}, Case{0x7FFFFFFF, 10, 0x80000},
        Case{0x80000 + 100, 6, 0x80000}, Case{0x12345, 6, 0x12200}, Case{0x200000, 5, 0x200000}}) {
    EXPECT_EQ(device::LimitTransferSize(test.configured, test.os_major), test.limit)
        << test.configured << " on " << test.os_major;
  }
}
#endif

TEST_F(OpenTest, CloseReleasesAndInvalidHandlesAreRefused) {
  SetLastError(7);
  Vexa_Close(INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), 7U);
  const auto twin = Plug();
  HANDLE camera = Open();
  ASSERT_TRUE(Vexa_StartTransfer(camera));
  Close(camera);
  EXPECT_EQ(twin->OpenHandles(), 0U);
  EXPECT_EQ(twin->PendingReads(), 0U);

  BOOL present = 1;
  BYTE speed = 1;
  WORD word = 1;
  DWORD size = 1;
  std::array<BYTE, 64> header;
  header.fill(1);
  HANDLE none = INVALID_HANDLE_VALUE;
  ExpectRefused({
      [&] { return Vexa_HasFunction(none, 5, &present); },
      [&] { return Vexa_GetUSBSpeed(none, &speed); },
      [&] { return Vexa_GetDefectPixelCorrectionMode(none, &word); },
      [&] { return Vexa_GetLastLostFrameDataSize(none, &size); },
      [&] { return Vexa_GetLastLostFrameHeader(none, header.data()); },
      [&] { return Vexa_StartTransfer(none); },
      [&] { return Vexa_StopTransfer(none); },
      [&] { return Vexa_TakeRawSnapShot(none, nullptr, 0, nullptr, nullptr, 0); },
      [&] { return Vexa_SetRawSnapShotBufferCount(none, 1); },
      [&] { return Vexa_SetExposureClock(none, 1); },
      [&] { return Vexa_SetGammaModeEx(none, 0, 0, 0, 0, 0, nullptr); },
      [&] { return Vexa_SetColorMatrix(none, 0, nullptr); },
      [&] { return Vexa_HueSaturationColorMatrix(none, 1, 1, 4, nullptr); },
      [&] { return Vexa_SetParamNone(none, 0x0300); },
      // A field cannot be replaced when its neighbours cannot be read.
      [&] { return Vexa_SetParamDWord(none, 0x0A03, 64); },
      [&] { return Vexa_ClearBuffer(nullptr); },
  });
  EXPECT_TRUE(present == 0 && speed == 0 && word == 0 && size == 0);
  EXPECT_THAT(header, ::testing::Each(0));
}

TEST_F(OpenTest, CameraSettingNeedsFirmwareAndReloads) {
  CameraConfig config = ForProduct(0x0510);
  config.firmware = 0x00FF;
  HANDLE camera = OpenOnly(config);
  EXPECT_EQ(ErrorOf(Vexa_CameraSetting(camera, 1)), 87U);
  EXPECT_TRUE(Wire(*twin_).empty());
  EXPECT_TRUE(Vexa_CameraSetting(OpenOnly(ForProduct(0x0510)), 0x0201));
  EXPECT_THAT(Wire(*twin_),
              ElementsAre("40 81 0000 0000 [01 02]", "C0 80 00BF 0000 +2", "C0 12 0000 0000 +64",
                          "C0 13 0000 0000 +6", "C0 21 0000 0000 +64"));
}

TEST_F(OpenTest, VersionNeedsNoCamera) {
  DWORD high = 0, low = 1, product_high = 0, product_low = 1;
  EXPECT_TRUE(Vexa_GetDllVersion(&high, &low, &product_high, &product_low));
#if !defined(_WIN32) || !VEXA_TESTS_LOOK_INSIDE  // a test program has no version resource
  EXPECT_NE(high | low, 0U);
  EXPECT_EQ(high, product_high);
#endif
}

}  // namespace
}  // namespace vexa::test

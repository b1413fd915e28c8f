// Gain: on the wire, and in decibels.

#include <array>

#include "settings_fixture.hpp"

namespace vexa::test {
namespace {

using simulator::ForProduct;
using ::testing::ElementsAre;

class GainTest : public SettingsTest {};

TEST_F(GainTest, TravelsInTheExposureBlockAndLeavesTheRestAlone) {
  HANDLE camera = OpenComplete();
  std::array<BYTE, 64> before{}, after{};
  ASSERT_TRUE(Vexa_VendorRequest(camera, 0xC0, 0x21, 0, 0, 64, before.data(), nullptr));
  WORD gain = 0, largest = 0;
  EXPECT_TRUE(Vexa_GetMaxGain(camera, &largest));
  Wire(*twin_);
  EXPECT_TRUE(Vexa_SetGain(camera, largest));
  EXPECT_TRUE(Vexa_GetGain(camera, &gain));
  EXPECT_EQ(gain, largest);
  ASSERT_TRUE(Vexa_VendorRequest(camera, 0xC0, 0x21, 0, 0, 64, after.data(), nullptr));
  before[6] = static_cast<BYTE>(largest & 0xFF);
  before[7] = static_cast<BYTE>(largest >> 8);
  EXPECT_EQ(after, before);
  const auto wire = Wire(*twin_);
  ASSERT_EQ(wire.size(), 4U);
  EXPECT_EQ(wire[0], "C0 21 0000 0000 +64");
  EXPECT_EQ(wire[1].substr(0, 17), "40 21 0000 0000 [");

  twin_->FailControl({.request = 0x21, .device_to_host = true}, 121, 2);
  EXPECT_FALSE(Vexa_GetGain(camera, &gain));
  EXPECT_EQ(gain, largest);
  EXPECT_FALSE(Vexa_SetGain(camera, 1));
  EXPECT_EQ(Wire(*twin_).size(), 2U) << "nothing is written after a failed read";
  EXPECT_EQ(GetLastError(), 121U);
}

TEST_F(GainTest, DigitalGainIsADirectRegisterOfEveryModel) {
  const auto twin = Plug(0x0705);
  HANDLE legacy = Open();
  Vexa_SetDigitalGain(legacy, 1);
  EXPECT_THAT(Wire(*twin), ::testing::Contains("40 80 8014 0000 [01 00]"));
  HANDLE camera = OpenComplete();
  WORD gain = 1;
  EXPECT_TRUE(Vexa_SetDigitalGain(camera, 0x0234));
  EXPECT_TRUE(Vexa_GetDigitalGain(camera, &gain));
  EXPECT_EQ(gain, 0x0234);
  EXPECT_THAT(Wire(*twin_), ElementsAre("40 80 8014 0000 [34 02]", "C0 80 0014 0000 +2"));
  twin_->FailControl({.request = 0x80}, 121, 1);
  EXPECT_FALSE(Vexa_GetDigitalGain(camera, &gain));
  EXPECT_EQ(gain, 0);
}

TEST_F(GainTest, CapabilitiesChooseTheCurve) {
  struct Case {
    std::uint64_t capabilities;
    DWORD value;
    float decibel;
  };
  for (const Case& test :
       {Case{0, 0x10064, 10.84F}, Case{1ULL << 16, 0, 11.00864F}, Case{1ULL << 49, 8, 6.0206F},
        Case{1ULL << 16 | 1ULL << 49, 0, -2.36F}}) {
    simulator::CameraConfig config = ForProduct(0x0510);
    config.capabilities = test.capabilities;
    const auto twin = Plug(config);
    HANDLE camera = Open();
    Wire(*twin);
    float decibel = 0;
    EXPECT_TRUE(Vexa_GetGainDBFromSettingValue(camera, test.value, &decibel));
    EXPECT_FLOAT_EQ(decibel, test.decibel);
    EXPECT_TRUE(Wire(*twin).empty());
  }
}

}  // namespace
}  // namespace vexa::test

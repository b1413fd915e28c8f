// Setting files: what is written, what is read, in which order, and what happens when it fails.

#include <algorithm>
#include <fstream>
#include <functional>
#include <random>
#include <sstream>

#include "platform/profile_fixture.hpp"
#include "settings_fixture.hpp"

namespace vexa::test {
namespace {

using simulator::CameraConfig;
using simulator::TwinCamera;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

class SettingFileTest : public SettingsTest, public TemporaryProfile {
 protected:
  BOOL Write(HANDLE camera) { return Vexa_WriteSettingFileA(camera, file_.string().c_str()); }
  BOOL Read(HANDLE camera) { return Vexa_ReadSettingFileA(camera, file_.string().c_str()); }

  // Reads a file with these lines in one section.
  BOOL ReadLines(HANDLE camera, const std::string& section, const std::string& lines) {
    Put("[" + section + "]\n" + lines + "\n");
    SetLastError(0);
    return Read(camera);
  }

  // The file that the camera's present settings make.
  std::string Written(HANDLE camera) {
    std::filesystem::remove(file_);
    EXPECT_TRUE(Write(camera)) << GetLastError();
    return Get();
  }

  static std::string Value(const std::string& file, const std::string& key) {
    const std::size_t at = file.find("\n" + key + "=");
    return at == std::string::npos
               ? "absent"
               : file.substr(at + key.size() + 2,
                             file.find_first_of("\r\n", at + 1) - at - key.size() - 2);
  }
};

// The text of a gamma section with the identity.
std::string GammaSection(const std::string& name) {
  std::string text = "[" + name + "]|GammaMode=0|Gamma=100|Brightness=0|Contrast=100|";
  for (int level = 0; level < 256; ++level) {
    text += "GammaTable_" + std::to_string(level) + "=" + std::to_string(level) + "|";
  }
  return text;
}

TEST_F(SettingFileTest, TheFileOfACameraWithEverything) {
  HANDLE camera = OpenComplete(0x0109);
  const short matrix[12] = {256, -1, 2, -32768, -4, 256, 6, 32767, -8, 9, 256, -11};
  ASSERT_TRUE(Vexa_SetClock(camera, 2, 40000000) && Vexa_SetVBlankForFPS(camera, 7));
  ASSERT_TRUE(Vexa_SetScanMode(camera, 0x8000, 8, 4, 320, 240));
  ASSERT_TRUE(Vexa_SetSkippingAndBinning(camera, 1, 2, 0, 1));
  ASSERT_TRUE(Vexa_SetExposureClock(camera, 123456) && Vexa_SetGain(camera, 33));
  ASSERT_TRUE(Vexa_SetAEMaxExposureClock(camera, 0xFFFFFFFF));
  ASSERT_TRUE(Vexa_SetAGCMaxGain(camera, 300));
  ASSERT_TRUE(Vexa_SetTimeOut(camera, 0, 0xFFFFFFFE));
  ASSERT_TRUE(Vexa_SetHueSaturationMode(camera, 1, -5, 130));
  ASSERT_TRUE(Vexa_SetColorMatrix(camera, 255, matrix));
  ASSERT_TRUE(Vexa_SetSharpnessMode(camera, 1, 500, 9));
  ASSERT_TRUE(Vexa_SetMirrorMode(camera, 0x20));
  const std::string expected =
      "[Clock-0109]|ClockMode=2|Clock=40000000|VBlankForFPS=7|"
      "[ImageSize-0109]|ScanMode=32768|Width=320|Height=240|OffsetX=8|OffsetY=4|"
      "HSkipping=1|VSkipping=2|HBinning=0|VBinning=1|BinningSumMode=0|TransferBitsPerPixel=1|"
      "[GainShutter-0109]|ALCMode=0|BrightnessTarget=128|AGCMinGain=0|AGCMaxGain=300|"
      "AEMinExposureClock=1|AEMaxExposureClock=4294967295|ExposureClock=123456|CurrentGain=33|"
      "CurrentDigitalGain=DIGITAL|"
      "[WhiteBalance-0109]|WhiteBalanceMode=WB|WBGainR=WBR|WBGainGr=WBGR|WBGainGb=WBGB|WBGainB=WBB|"
      "[Trigger-0109]|TriggerMode=0|ExposureDelay=0|StrobeStartDelay=0|StrobeEndDelay=0|"
      "TriggerPulseDelay=0|TriggerPulseDuration=0|ReadOutDelay=0|"
      "[IO-0109]|IODirection=0|IOPolarity=0|IOMode_0=0|IOMode_1=0|IOMode_2=0|IOMode_3=0|LED=0|"
      "[TimeOut-0109]|TimeOutST2EE=4294967294|TimeOutTE2EE=4294967295|TimeOutEE2TE=5000|"
      "TimeOutRO2TE=5000|"
      "[Sharpness-0109]|SharpnessMode=1|SharpnessGain=500|SharpnessCoring=9|"
      "[HueSaturation-0109]|HueSaturationMode=1|Hue=-5|Saturation=130|"
      "[ColorMatrix-0109]|ColorMatrixMode=255|ColorMatrix_0=256|ColorMatrix_1=-1|ColorMatrix_2=2|"
      "ColorMatrix_3=-32768|ColorMatrix_4=-4|ColorMatrix_5=256|ColorMatrix_6=6|"
      "ColorMatrix_7=32767|ColorMatrix_8=-8|ColorMatrix_9=9|ColorMatrix_10=256|ColorMatrix_11=-"
      "11|" +
      GammaSection("GammaY-0109") +
      "[CameraGamma-0109]|Raw=0|[DefectPixelCorrection-0109]|DefectPixelCorrectionMode=0|"
      "[Clamp-0109]|DigitalClamp=0|[Other-0109]|MirrorMode=32|";
  EXPECT_EQ(Written(camera), Lines(expected));
}

}  // namespace
}  // namespace vexa::test

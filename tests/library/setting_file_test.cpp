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

using TwinCamera = Twin;
using simulator::CameraConfig;
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

// The requests that a call has written, in order: "18" for request 0x12, "R33" for a register,
// without the words that apply them (register 0x50).
std::string Writes(TwinCamera& twin) {
  std::string writes;
  for (const simulator::LoggedRequest& entry : twin.Log()) {
    const int number = entry.value & 0x7FFF;
    if (entry.code != platform::ControlCode::kControlRequest || entry.device_to_host() ||
        (entry.request == 0x80 && number == 0x50)) {
      continue;
    }
    writes += entry.request == 0x80 ? "R" + std::to_string(number) : std::to_string(entry.request);
    writes += " ";
  }
  return writes;
}

// The text of a gamma section with the identity.
std::string GammaSection(const std::string& name) {
  std::string text = "[" + name + "]|GammaMode=0|Gamma=100|Brightness=0|Contrast=0|";
  for (int level = 0; level < 256; ++level) {
    text += "GammaTable_" + std::to_string(level) + "=" + std::to_string(level) + "|";
  }
  return text;
}

TEST_F(SettingFileTest, TheFileOfACameraWithEverything) {
  HANDLE camera = OpenComplete(0x0109);
  const short matrix[12] = {256, -1, 2, -32768, -4, 256, 6, 32767, -8, 9, 256, -11};
  ASSERT_TRUE(
      Vexa_SetClock(camera, 2, 40000000) && Vexa_SetVBlankForFPS(camera, 7) &&
      Vexa_SetScanMode(camera, 0x8000, 8, 4, 320, 120) &&
      Vexa_SetSkippingAndBinning(camera, 1, 2, 0, 1) && Vexa_SetExposureClock(camera, 123456) &&
      Vexa_SetGain(camera, 33) && Vexa_SetAEMaxExposureClock(camera, 0xFFFFFFFF) &&
      Vexa_SetAGCMaxGain(camera, 300) && Vexa_SetTimeOut(camera, 0, 0xFFFFFFFE) &&
      Vexa_SetHueSaturationMode(camera, 1, -5, 130) && Vexa_SetColorMatrix(camera, 255, matrix) &&
      Vexa_SetSharpnessMode(camera, 1, 500, 9) && Vexa_SetMirrorMode(camera, 0x20));
  const std::string expected =
      "[Clock-0109]|ClockMode=2|Clock=40000000|VBlankForFPS=7|"
      "[ImageSize-0109]|ScanMode=32768|Width=320|Height=120|OffsetX=8|OffsetY=4|"
      "HSkipping=1|VSkipping=2|HBinning=0|VBinning=1|BinningSumMode=0|TransferBitsPerPixel=1|"
      "[GainShutter-0109]|ALCMode=0|BrightnessTarget=128|AGCMinGain=0|AGCMaxGain=300|"
      "AEMinExposureClock=1|AEMaxExposureClock=4294967295|ExposureClock=123456|CurrentGain=33|"
      "CurrentDigitalGain=256|"
      "[WhiteBalance-0109]|WhiteBalanceMode=1|WBGainR=128|WBGainGr=128|WBGainGb=128|WBGainB=128|"
      "[Trigger-0109]|TriggerMode=0|ExposureDelay=0|StrobeStartDelay=0|StrobeEndDelay=0|"
      "TriggerPulseDelay=0|TriggerPulseDuration=0|ReadOutDelay=0|"
      "[IO-0109]|IODirection=12|IOPolarity=0|IOMode_0=0|IOMode_1=0|IOMode_2=0|IOMode_3=0|LED=1|"
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
      "[Clamp-0109]|DigitalClamp=16|[Other-0109]|MirrorMode=32|";
  EXPECT_EQ(Written(camera), Lines(expected));
  // Reading brings all of it back, in this order.
  twin_->ClearLog();
  ASSERT_TRUE(Read(camera)) << GetLastError();
  EXPECT_EQ(Writes(*twin_),
            "34 R23 18 R33 R46 19 "                                  // clock, geometry, format
            "R73 R74 R76 R75 R71 R69 33 33 R68 R64 R20 "             // levels, gains
            "R48 32 R50 R52 R54 R56 R58 R60 R0 R1 R4 R5 R6 R7 R15 "  // trigger, pins
            "R77 R78 R21 R63 ");                                     // the camera's functions
  EXPECT_EQ(Written(camera), Lines(expected));
}

TEST_F(SettingFileTest, KeysFollowTheModel) {
  const std::pair<unsigned, const char*> keys[] = {
      {21, "VBlankForFPS"}, {61, "BinningSumMode"},
      {57, "Raw"},          {59, "DefectPixelCorrectionMode"},
      {55, "DigitalClamp"}, {5, "LED"},
      {22, "MirrorMode"}};
  for (const unsigned lacking : {0U, 21U, 61U, 57U, 59U, 55U, 5U, 22U}) {
    CameraConfig config = simulator::ForProduct(0x0109);  // monochrome: a short file
    config.capabilities = lacking == 0 ? ~std::uint64_t{0} : ~(std::uint64_t{1} << lacking);
    HANDLE camera = OpenOnly(config);
    const std::string file = Written(camera);
    for (const auto& [function, key] : keys) {
      // Without one mirror, the other keeps the key.
      EXPECT_EQ(Value(file, key) == "absent", lacking == function && function != 22)
          << key << " without " << lacking;
    }
    EXPECT_TRUE(Read(camera)) << GetLastError();
  }
  // A model without registers, and one of a colour camera beside it in the same file.
  const auto legacy_twin = Plug(0x0305);
  HANDLE legacy = Open();
  const std::string legacy_file = Written(legacy);
  for (const char* text : {"[Trigger", "[IO", "[TimeOut", "DigitalGain", "[GammaR", "HSkipping",
                           "[Other", "[Clamp", "[CameraGamma", "[DefectPixel"}) {
    EXPECT_THAT(legacy_file, Not(HasSubstr(text)));
  }
  EXPECT_TRUE(Read(legacy)) << GetLastError();
  Plug(0x0510);
  HANDLE colour = Open();
  EXPECT_TRUE(Write(colour));
  const std::string both = Get();
  EXPECT_TRUE(both.starts_with(legacy_file));
  const std::string colour_part = both.substr(legacy_file.size());
  for (const char* name : {"Y", "R", "GR", "GB", "B"}) {
    EXPECT_THAT(colour_part, HasSubstr("[Gamma" + std::string(name) + "-0510]"));
  }
  EXPECT_EQ(Written(colour), colour_part);
}

TEST_F(SettingFileTest, ValuesAreReadAsIntegersOfTheirWidth) {
  HANDLE camera = OpenComplete(0x0109);
  ASSERT_TRUE(Vexa_SetScanMode(camera, 1, 0, 0, 640, 480));
  const DWORD line = vexa::test::Get(camera, Vexa_GetShutterMaxClock) + 1;
  ASSERT_TRUE(Vexa_SetAEMinExposureClock(camera, 5 * line + 7));
  const auto number = [](std::uint64_t value) { return std::to_string(value & 0xFFFFFFFF); };
  const struct {
    const char* section;
    std::string lines;
    const char* key;
    std::string value;
  } cases[] = {
      {"GainShutter-0109", "ALCMinShutterLine=3\nALCMinShutterClock=10", "AEMinExposureClock",
       number(3 * line + 10)},
      {"GainShutter-0109", "ALCMinShutterLine=2", "AEMinExposureClock", number(2 * line + 10)},
      {"GainShutter-0109", "ALCMinShutterClock=1", "AEMinExposureClock", number(2 * line + 1)},
      {"GainShutter-0109", "AEMinExposureClock=9\nALCMinShutterLine=3", "AEMinExposureClock", "9"},
      {"GainShutter-0109", "AEMinExposureClock=4294967295\nALCMinShutterLine=4",
       "AEMinExposureClock", number(4 * line + 9)},
      {"GainShutter-0109", "ALCMaxShutterLine=0xFFFFFFFF", "AEMaxExposureClock",
       number(0xFFFFFFFFULL * line)},
      {"GainShutter-0109", "CurrentShutterLine=20\nCurrentShutterClock=30", "ExposureClock",
       number(20 * line + 30)},
      {"GainShutter-0109", "BrightnessTarget=0x10005", "BrightnessTarget", "5"},
      {"GainShutter-0109", "brightnesstarget = \"200\" ", "BrightnessTarget", "200"},
      {"GainShutter-0109", "BrightnessTarget=apples", "BrightnessTarget", "0"},
      {"GainShutter-0109", "BrightnessTarget=-1", "BrightnessTarget", "65535"},
      {"GainShutter-0110", "BrightnessTarget=3", "BrightnessTarget", "65535"},
      {"gainshutter-0109", "BrightnessTarget=\n", "BrightnessTarget", "65535"},
      {"HueSaturation-0109", "HueSaturationMode=257\nHue=65531", "Hue", "-5"},
      {"HueSaturation-0109", "Hue=-32768", "Hue", "-32768"},
      {"ColorMatrix-0109", "ColorMatrixMode=-1\nColorMatrix_11=-7", "ColorMatrix_11", "-7"},
      {"GammaY-0109", "GammaMode=255\nGammaTable_3=0x1FE", "GammaTable_3", "254"},
      {"TimeOut-0109", "TimeOutEE2TE=-2", "TimeOutEE2TE", "4294967294"},
      {"Other-0109", "MirrorMode=48", "MirrorMode", "48"},
  };
  for (const auto& test : cases) {
    EXPECT_TRUE(ReadLines(camera, test.section, test.lines)) << test.lines << GetLastError();
    EXPECT_EQ(Value(Written(camera), test.key), test.value) << test.lines;
  }
}

TEST_F(SettingFileTest, RefusalsSendNothingAndFailuresEndTheCall) {
  HANDLE camera = OpenComplete();
  const std::string before = Written(camera);
  const std::string long_path(260, 'x');
  twin_->ClearLog();
  const auto expect_refusal = [&](DWORD code, HANDLE handle, const char* path) {
    EXPECT_EQ(ErrorOf(Vexa_WriteSettingFileA(handle, path)), code);
    EXPECT_EQ(ErrorOf(Vexa_ReadSettingFileA(handle, path)), code);
  };
  expect_refusal(87, INVALID_HANDLE_VALUE, "x");
  expect_refusal(87, camera, nullptr);
  expect_refusal(87, camera, "");
  expect_refusal(206, camera, long_path.c_str());
  EXPECT_FALSE(Vexa_ReadSettingFileW(camera, nullptr));
  EXPECT_THAT(twin_->Log(), IsEmpty());
  EXPECT_EQ(ErrorOf(Vexa_WriteSettingFileA(camera, (folder_ / "no" / "such.ini").string().c_str())),
            3U);
  // A setting that the camera does not take ends the call; what came before it is set.
  const struct {
    const char* section;
    const char* lines;
    DWORD error;
  } cases[] = {
      {"ImageSize-0510", "Width=1", 31},
      {"ImageSize-0510", "TransferBitsPerPixel=0", 87},
      {"GainShutter-0510", "ALCMode=0x21", 87},
      {"Clamp-0510", "DigitalClamp=256", 87},
      {"ColorMatrix-0510", "ColorMatrixMode=3", 0},
      {"HueSaturation-0510", "HueSaturationMode=2", 0},
  };
  for (const auto& test : cases) {
    EXPECT_FALSE(ReadLines(camera, test.section, test.lines)) << test.lines;
    EXPECT_EQ(GetLastError(), test.error) << test.lines;
  }
  // A gamma mode that there is not skips the tables behind it, not the settings.
  EXPECT_TRUE(ReadLines(camera, "GammaR-0510",
                        "GammaMode=9\n[GammaB-0510]\nGammaMode=255\n[Clamp-0510]\nDigitalClamp=9"));
  EXPECT_EQ(Value(Written(camera), "DigitalClamp"), "9");
  EXPECT_THAT(Get(), Not(HasSubstr("GammaMode=255")));
  // No file: the present settings.
  std::filesystem::remove(file_);
  EXPECT_TRUE(Read(camera));
  EXPECT_FALSE(std::filesystem::exists(file_));
  // The camera's own failure, while settings are read from it and while they are brought to it.
  Put(before);
  const simulator::RequestMatcher gain_block{.request = 0x21};
  twin_->FailControl(gain_block, 1117, 1);
  EXPECT_EQ(ErrorOf(Write(camera)), 1117U);
  EXPECT_EQ(Get(), before);
  // Not while a transfer runs, nor from its callback.
  ASSERT_TRUE(Vexa_StartTransfer(camera));
  std::filesystem::remove(file_);
  twin_->ClearLog();
  expect_refusal(0xE0000100, camera, file_.string().c_str());
  EXPECT_THAT(Wire(*twin_), IsEmpty());
  EXPECT_FALSE(std::filesystem::exists(file_));
  twin_->Unplug();
  expect_refusal(0xE0000100, camera, file_.string().c_str());
  ASSERT_TRUE(Vexa_StopTransfer(camera));
  EXPECT_EQ(ErrorOf(Read(camera)), 1167U);
}

// Sets everything that has a setter to random values; the camera refuses some.
void SetAtRandom(HANDLE camera, std::mt19937& random) {
  const auto any = [&](std::uint32_t below) { return static_cast<DWORD>(random() % below); };
  const auto whole = [&] { return static_cast<DWORD>(random()); };
  const auto byte = [&](std::uint32_t below) { return static_cast<BYTE>(any(below)); };
  const auto word = [&](std::uint32_t below) { return static_cast<WORD>(any(below)); };
  const auto signed_word = [&] { return static_cast<short>(random() & 0xFFFF); };
  Vexa_SetClock(camera, 1U << any(2), 1000000 + any(60000000));
  Vexa_SetVBlankForFPS(camera, any(1000));
  Vexa_SetScanMode(camera, static_cast<WORD>(1U << (any(2) * 15)), any(200), any(200),
                   2 * (1 + any(200)), 2 * (1 + any(200)));
  // Skipping and binning are brought back with the scan mode that has them.
  WORD scan_mode = 0;
  Vexa_GetScanMode(camera, &scan_mode, nullptr, nullptr, nullptr, nullptr);
  if (scan_mode == 0x8000) {
    Vexa_SetSkippingAndBinning(camera, byte(4), byte(4), byte(4), byte(4));
  }
  Vexa_SetBinningSumMode(camera, any(2));
  Vexa_SetTransferBitsPerPixel(camera, 1U << any(15));
  Vexa_SetALCMode(camera, any(8) << (4 * any(2)));
  Vexa_SetALCTargetLevel(camera, whole());
  Vexa_SetAGCMinGain(camera, whole());
  Vexa_SetAGCMaxGain(camera, whole());
  Vexa_SetAEMinExposureClock(camera, whole());
  Vexa_SetAEMaxExposureClock(camera, whole());
  Vexa_SetExposureClock(camera, any(4000000));
  Vexa_SetGain(camera, word(400));
  Vexa_SetWhiteBalanceMode(camera, any(4));
  Vexa_SetWhiteBalanceGain(camera, word(0x10000), word(0x10000), word(0x10000), word(0x10000));
  Vexa_SetDigitalGain(camera, word(0x10000));
  Vexa_SetTriggerMode(camera, whole() & 0x1FFF);
  for (DWORD i = 0; i < 6; ++i) Vexa_SetTriggerTiming(camera, i, whole());
  Vexa_SetIOPinDirection(camera, whole());
  Vexa_SetIOPinPolarity(camera, whole());
  for (DWORD i = 0; i < 4; ++i) Vexa_SetIOPinMode(camera, i, whole());
  BOOL has_led = FALSE;
  if (Vexa_HasFunction(camera, 5, &has_led) && has_led) Vexa_SetLEDStatus(camera, whole());
  for (DWORD i = 0; i < 4; ++i) Vexa_SetTimeOut(camera, i, whole());
  Vexa_SetSharpnessMode(camera, byte(4), word(0x10000), byte(256));
  Vexa_SetHueSaturationMode(camera, byte(2), signed_word(), word(0x10000));
  std::array<short, 12> matrix{};
  std::generate(matrix.begin(), matrix.end(), signed_word);
  Vexa_SetColorMatrix(camera, any(2) == 0 ? BYTE{0} : BYTE{255}, matrix.data());
  for (BYTE channel = 0; channel < 5; ++channel) {
    std::array<BYTE, 256> table{};
    std::generate(table.begin(), table.end(), [&] { return byte(256); });
    const BYTE modes[] = {0, 1, 2, 255};
    Vexa_SetGammaModeEx(camera, channel, modes[any(4)], word(400), signed_word(), byte(201),
                        table.data());
  }
  Vexa_SetCameraGammaValue(camera, any(64));
  Vexa_SetDefectPixelCorrectionMode(camera, any(2));
  Vexa_SetDigitalClamp(camera, any(256));
  Vexa_SetMirrorMode(camera, static_cast<BYTE>(any(4) << 4));
}

// What the camera holds: its blocks and its registers.
std::vector<std::uint16_t> Inside(HANDLE camera, const TwinCamera& twin) {
  std::vector<std::uint16_t> state;
  for (const BYTE request : {BYTE{0x12}, BYTE{0x13}, BYTE{0x21}, BYTE{0x22}}) {
    std::array<BYTE, 64> block{};
    EXPECT_TRUE(Vexa_VendorRequest(camera, 0xC0, request, 0, 0, 64, block.data(), nullptr));
    state.insert(state.end(), block.begin(), block.end());
  }
  for (std::uint16_t number = 0; number < 128; ++number) {
    state.push_back(twin.PeekRegister(0, number));
  }
  return state;
}

// Settings of one camera, saved and brought to another one of the same model that has quite other
// settings, make it an equal camera; for every model, and for models with other capabilities.
TEST_F(SettingFileTest, SavedSettingsMakeAnEqualCamera) {
  std::mt19937 random(1);
  const std::vector<std::uint16_t>& products = simulator::KnownProducts();
#if defined(_WIN32)
  // The system writes the whole file anew for each of 1400 keys.
  const std::size_t step = products.size();
#else
  const std::size_t step = 1;
#endif
  for (std::size_t round = 0; round < 3 * products.size(); round += step) {
    CameraConfig config = simulator::ForProduct(products[round % products.size()]);
    if (round >= products.size() && simulator::HasRegisterAccess(config.product_id)) {
      config.capabilities = (std::uint64_t{random()} << 32) | random();
    }
    HANDLE one = OpenOnly(config);
    const auto other_twin = Plug(config);
    HANDLE other = Open();
    SetAtRandom(one, random);
    SetAtRandom(other, random);
    Vexa_SetSkippingAndBinning(other, 0, 0, 0, 0);
    const std::string saved = Written(one);
    SetLastError(0);
    EXPECT_TRUE(Read(other)) << std::hex << config.product_id << " " << config.capabilities
                             << " error " << GetLastError();
    EXPECT_EQ(GetLastError(), 0U);
    const std::string back = Written(other);
    EXPECT_EQ(back, saved) << std::hex << config.product_id << " " << config.capabilities;
    EXPECT_EQ(Inside(one, *twin_), Inside(other, *other_twin)) << std::hex << config.product_id;
  }
}

}  // namespace
}  // namespace vexa::test

// Settings and actions by number: each identifier does what the function with its name does.

#include <algorithm>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "settings_fixture.hpp"

namespace vexa::test {
namespace {

class ParameterTest : public SettingsTest {};

using Ranges = std::vector<std::pair<DWORD, DWORD>>;

// What each function takes; everything else it refuses.
const Ranges kActions = {{0x0300, 0x0300}, {0x0400, 0x0400}, {0x1F00, 0x1F01},
                         {0x2200, 0x2200}, {0x2300, 0x2300}, {0x2400, 0x2400}};
const Ranges kBytes = {{0x1500, 0x1500}};
const Ranges kWordsRead = {{0x0800, 0x0800}, {0x0A00, 0x0A00}, {0x0E00, 0x0E01}, {0x1100, 0x1100},
                           {0x1300, 0x1303}, {0x1A00, 0x1A03}, {0x2900, 0x2900}};
const Ranges kWordsSet = {{0x0800, 0x0800}, {0x0A00, 0x0A00}, {0x1300, 0x1303}, {0x2900, 0x2900}};
const Ranges kDWordsSet = {{0x0A01, 0x0A04}, {0x0C00, 0x0C01}, {0x0F00, 0x0F00}, {0x1B00, 0x1B00},
                           {0x2000, 0x2000}, {0x2500, 0x2505}, {0x2700, 0x2703}, {0x2B00, 0x2B00},
                           {0x2D00, 0x2D00}, {0x2F00, 0x2F00}, {0x3100, 0x3103}};
const Ranges kTextsRead = {{0x1B01, 0x1B01}};
const Ranges kTextsSet = {{0x1B01, 0x1B01}, {0x3700, 0x3700}, {0x3900, 0x3900}};

bool Takes(const Ranges& ranges, DWORD id) {
  return std::any_of(ranges.begin(), ranges.end(),
                     [&](const auto& range) { return range.first <= id && id <= range.second; });
}

TEST_F(ParameterTest, EveryOtherIdentifierIsRefused) {
  HANDLE camera = OpenComplete();
  Ranges dwords_read = kDWordsSet;
  dwords_read.emplace_back(0x3300, 0x3300);
  BYTE byte = 0;
  WORD word = 0;
  DWORD dword = 0;
  void* pointer = nullptr;
  WCHAR wide[4] = {};
  CHAR narrow[4] = {};
  struct Function {
    const char* name;
    Ranges takes;
    std::function<BOOL(DWORD)> call;
  };
  const Function functions[] = {
      {"SetNone", kActions, [&](DWORD id) { return Vexa_SetParamNone(camera, id); }},
      {"SetByte", kBytes, [&](DWORD id) { return Vexa_SetParamByte(camera, id, 1); }},
      {"GetByte", kBytes, [&](DWORD id) { return Vexa_GetParamByte(camera, id, &byte); }},
      {"SetWord", kWordsSet, [&](DWORD id) { return Vexa_SetParamWord(camera, id, 1); }},
      {"GetWord", kWordsRead, [&](DWORD id) { return Vexa_GetParamWord(camera, id, &word); }},
      {"SetDWord", kDWordsSet, [&](DWORD id) { return Vexa_SetParamDWord(camera, id, 1); }},
      {"GetDWord", dwords_read, [&](DWORD id) { return Vexa_GetParamDWord(camera, id, &dword); }},
      {"SetW", kTextsSet, [&](DWORD id) { return Vexa_SetParamStringW(camera, id, wide, 8); }},
      {"GetW", kTextsRead, [&](DWORD id) { return Vexa_GetParamStringW(camera, id, wide, 8); }},
      {"SetA", kTextsSet, [&](DWORD id) { return Vexa_SetParamStringA(camera, id, narrow, 4); }},
      {"GetA", kTextsRead, [&](DWORD id) { return Vexa_GetParamStringA(camera, id, narrow, 4); }},
      {"SetPtr", {{0x1700, 0x1700}}, [&](DWORD id) { return Vexa_SetParamPtr(camera, id, &byte); }},
      {"GetPtr", {}, [&](DWORD id) { return Vexa_GetParamPtr(camera, id, &pointer); }},
  };
  for (const Function& function : functions) {
    for (DWORD id = 0; id <= 0x10000; ++id) {
      if (Takes(function.takes, id)) {
        continue;
      }
      byte = 0x5A;
      word = 0x5A;
      dword = 0x5A;
      pointer = &byte;
      ASSERT_EQ(ErrorOf(function.call(id)), 87U) << function.name << " " << id;
      // A getter clears its own output, and nothing touches another's.
      ASSERT_EQ((byte == 0) + (word == 0) + (dword == 0) + (pointer == nullptr),
                function.name[0] == 'G' && function.name[4] != '\0' ? 1 : 0)
          << function.name;
    }
  }
  EXPECT_TRUE(Wire(*twin_).empty());
}

using Wide = std::basic_string<WCHAR>;

Wide ToWide(std::u16string_view text) { return {text.begin(), text.end()}; }

TEST_F(ParameterTest, SettingsGoTheWayOfTheFunctionsNamed) {
  HANDLE camera = OpenComplete();
  ASSERT_TRUE(Vexa_WriteCameraUserIDA(camera, 5, "left eye", 9));
  ASSERT_TRUE(Vexa_SetScanMode(camera, 1, 16, 8, 640, 480));
  ASSERT_TRUE(Vexa_SetWhiteBalanceGain(camera, 130, 131, 132, 133));
  DWORD frequency = 0;
  ASSERT_TRUE(Vexa_GetClock(camera, nullptr, &frequency));
  struct Case {
    char kind;  // none, byte, word, dword
    DWORD id;
    DWORD value;
    std::function<BOOL()> named;
  };
  const Case cases[] = {
      {'w', 0x0800, 77, [&] { return Vexa_SetGain(camera, 77); }},
      {'w', 0x0A00, 0x10002, [&] { return Vexa_SetScanMode(camera, 2, 16, 8, 640, 480); }},
      {'d', 0x0A01, 32, [&] { return Vexa_SetScanMode(camera, 2, 32, 8, 640, 480); }},
      {'d', 0x0A02, 64, [&] { return Vexa_SetScanMode(camera, 2, 32, 64, 640, 480); }},
      {'d', 0x0A03, 320, [&] { return Vexa_SetScanMode(camera, 2, 32, 64, 320, 480); }},
      {'d', 0x0A04, 240, [&] { return Vexa_SetScanMode(camera, 2, 32, 64, 320, 240); }},
      {'d', 0x0C00, 2, [&] { return Vexa_SetClock(camera, 2, frequency); }},
      {'d', 0x0C01, 9000000, [&] { return Vexa_SetClock(camera, 2, 9000000); }},
      {'d', 0x0F00, 4321, [&] { return Vexa_SetExposureClock(camera, 4321); }},
      {'w', 0x1300, 140, [&] { return Vexa_SetWhiteBalanceGain(camera, 140, 131, 132, 133); }},
      {'w', 0x1301, 141, [&] { return Vexa_SetWhiteBalanceGain(camera, 140, 141, 132, 133); }},
      {'w', 0x1302, 142, [&] { return Vexa_SetWhiteBalanceGain(camera, 140, 141, 142, 133); }},
      {'w', 0x1303, 143, [&] { return Vexa_SetWhiteBalanceGain(camera, 140, 141, 142, 143); }},
      {'b', 0x1500, 1, [&] { return Vexa_SetWhiteBalanceMode(camera, 1); }},
      {'d', 0x1B00, 99,
       [&] { return Vexa_WriteCameraUserIDW(camera, 99, ToWide(u"left eye").c_str(), 18); }},
      {'n', 0x1F00, 0, [&] { return Vexa_SoftTrigger(camera); }},
      {'n', 0x1F01, 0, [&] { return Vexa_SoftSubTrigger(camera); }},
      {'n', 0x2200, 0, [&] { return Vexa_ResetCounter(camera); }},
      {'n', 0x2300, 0, [&] { return Vexa_ClearBuffer(camera); }},
      {'n', 0x2400, 0, [&] { return Vexa_TriggerReadOut(camera); }},
      {'d', 0x2000, 1, [&] { return Vexa_SetTriggerMode(camera, 1); }},
      {'d', 0x2500, 10, [&] { return Vexa_SetTriggerTiming(camera, 0, 10); }},
      {'d', 0x2505, 15, [&] { return Vexa_SetTriggerTiming(camera, 5, 15); }},
      {'w', 0x2900, 300, [&] { return Vexa_SetDigitalGain(camera, 300); }},
      {'d', 0x2B00, 3, [&] { return Vexa_SetIOPinDirection(camera, 3); }},
      {'d', 0x2D00, 2, [&] { return Vexa_SetIOPinPolarity(camera, 2); }},
      {'d', 0x2F00, 1, [&] { return Vexa_SetIOPinStatus(camera, 1); }},
      {'d', 0x3100, 1, [&] { return Vexa_SetIOPinMode(camera, 0, 1); }},
      {'d', 0x3103, 2, [&] { return Vexa_SetIOPinMode(camera, 3, 2); }},
  };
  const auto writes = [&] {
    std::vector<std::string> lines = Wire(*twin_);
    std::erase_if(lines, [](const std::string& line) { return line.starts_with("C0"); });
    return lines;
  };
  for (const Case& test : cases) {
    SCOPED_TRACE(test.id);
    const char kind = test.kind;
    writes();
    EXPECT_TRUE(kind == 'n'   ? Vexa_SetParamNone(camera, test.id)
                : kind == 'b' ? Vexa_SetParamByte(camera, test.id, test.value)
                : kind == 'w' ? Vexa_SetParamWord(camera, test.id, test.value)
                              : Vexa_SetParamDWord(camera, test.id, test.value));
    const std::vector<std::string> generic = writes();
    if (kind != 'n' && test.id != 0x2F00) {  // pins that are inputs have their own mind
      BYTE byte = 0;
      WORD word = 0;
      DWORD dword = 0;
      EXPECT_TRUE(kind == 'b'   ? Vexa_GetParamByte(camera, test.id, &byte)
                  : kind == 'w' ? Vexa_GetParamWord(camera, test.id, &word)
                                : Vexa_GetParamDWord(camera, test.id, &dword));
      EXPECT_EQ(byte + word + dword, kind == 'w' ? test.value & 0xFFFF : test.value);
    }
    writes();
    EXPECT_TRUE(test.named());
    EXPECT_EQ(generic, writes());
    EXPECT_FALSE(generic.empty());
  }
}

TEST_F(ParameterTest, TextsTimeOutsImagesAndWhatIsOnlyRead) {
  HANDLE camera = OpenComplete();
  ASSERT_TRUE(Vexa_WriteCameraUserIDA(camera, 7, "one", 4));
  const Wide green = ToWide(u"gr\u00fcn");
  WCHAR wide[32] = {};
  CHAR narrow[64] = {};
  DWORD number = 0;
  EXPECT_TRUE(Vexa_SetParamStringW(camera, 0x1B01, green.c_str(), 10));
  EXPECT_TRUE(Vexa_GetParamStringW(camera, 0x1B01, wide, sizeof wide));
  EXPECT_EQ(Wide(wide), green);
  EXPECT_TRUE(Vexa_SetParamStringA(camera, 0x1B01, "two", 4));
  EXPECT_TRUE(Vexa_GetParamStringA(camera, 0x1B01, narrow, sizeof narrow));
  EXPECT_STREQ(narrow, "two");
  EXPECT_TRUE(Vexa_GetParamDWord(camera, 0x1B00, &number));
  EXPECT_EQ(number, 7U);
  EXPECT_TRUE(Vexa_SetParamDWord(camera, 0x2703, 1234));
  EXPECT_TRUE(Vexa_GetTimeOut(camera, 3, &number));
  EXPECT_EQ(number, 1234U);

  WORD values[4] = {};
  WORD word = 0;
  ASSERT_TRUE(Vexa_GetCameraVersion(camera, &values[0], &values[1], &values[2], &values[3]));
  for (DWORD i = 0; i < 4; ++i) {
    EXPECT_TRUE(Vexa_GetParamWord(camera, 0x1A00 + i, &word));
    EXPECT_EQ(word, values[i]);
  }
  ASSERT_TRUE(Vexa_GetFrameClock(camera, &values[0], &values[1]));
  EXPECT_TRUE(Vexa_GetParamWord(camera, 0x0E01, &word));
  EXPECT_EQ(word, values[1]);
  number = Get(camera, Vexa_GetSwStatus);
  DWORD status = ~number;
  EXPECT_TRUE(Vexa_GetParamDWord(camera, 0x3300, &status) && status == number);

  EXPECT_TRUE(Vexa_SetParamNone(camera, 0x0300));
  EXPECT_FALSE(Vexa_SetParamStringA(camera, 0x3900, "never-written.ini", 0));
  EXPECT_EQ(GetLastError(), 0xE0000100U) << "no setting files while the transfer runs";
  EXPECT_TRUE(Vexa_SetParamNone(camera, 0x0400));
}

}  // namespace
}  // namespace vexa::test

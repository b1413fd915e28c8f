// Setting files between the library and the system's own functions.

#include <array>
#include <sstream>

#include "library/settings_fixture.hpp"
#include "platform/profile_fixture.hpp"
#include "platform/windows/windows_api.hpp"

namespace vexa::test {
namespace {

class SettingFileSystemTest : public SettingsTest, public TemporaryProfile {
 protected:
  SettingFileSystemTest() { file_ = folder_ / L"Gr\u00F6\u00DFe.ini"; }

  // The file's name for the functions of the ANSI code page.
  std::string NarrowName() const {
    std::array<char, MAX_PATH> name{};
    ::WideCharToMultiByte(CP_ACP, 0, file_.c_str(), -1, name.data(), MAX_PATH, nullptr, nullptr);
    return name.data();
  }
};

TEST_F(SettingFileSystemTest, TheSystemReadsWhatTheLibraryWrites) {
  HANDLE camera = OpenComplete(0x0109);
  const short matrix[12] = {-32768, 32767, -1};
  ASSERT_TRUE(Vexa_SetAEMaxExposureClock(camera, 0xFFFFFFFF) &&
              Vexa_SetHueSaturationMode(camera, 1, -5, 130) &&
              Vexa_SetColorMatrix(camera, 255, matrix));
  ASSERT_TRUE(Vexa_WriteSettingFileA(camera, NarrowName().c_str())) << GetLastError();
  const std::string narrow = Get();
  std::filesystem::remove(file_);
  // A path that is not absolute counts from the current folder, not from that of Windows.
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(folder_);
  EXPECT_TRUE(Vexa_WriteSettingFileW(camera, file_.filename().c_str())) << GetLastError();
  std::filesystem::current_path(before);
  EXPECT_EQ(Get(), narrow);

  std::array<char, 512> names{};
  const DWORD length = ::GetPrivateProfileSectionNamesA(names.data(), 512, NarrowName().c_str());
  std::istringstream file(narrow);
  std::string line, section, sections;
  std::size_t keys = 0;
  while (std::getline(file, line) && (line.pop_back(), true)) {  // without its "\r"
    const std::size_t equals = line.find('=');
    if (equals == std::string::npos) {
      section = line.substr(1, line.size() - 2);
      sections += section + '\0';
      continue;
    }
    const std::string key = line.substr(0, equals), value = line.substr(equals + 1);
    std::array<char, 32> text{};
    ::GetPrivateProfileStringA(section.c_str(), key.c_str(), "?", text.data(), 32,
                               NarrowName().c_str());
    EXPECT_EQ(text.data(), value) << line;
    EXPECT_EQ(
        ::GetPrivateProfileIntW(std::wstring(section.begin(), section.end()).c_str(),
                                std::wstring(key.begin(), key.end()).c_str(), 77, file_.c_str()),
        static_cast<UINT>(std::stoll(value)))
        << line;
    ++keys;
  }
  EXPECT_EQ(sections, std::string(names.data(), length));
  EXPECT_GT(keys, 300U);
}

TEST_F(SettingFileSystemTest, TheLibraryReadsWhatTheSystemWrites) {
  HANDLE camera = OpenComplete(0x0109);
  for (const std::string& beginning : {std::string(), Utf16Le("; kept\r\n")}) {
    std::filesystem::remove(file_);
    if (!beginning.empty()) Put(beginning);
    const DWORD maximum = beginning.empty() ? 0xFFFFFFF0 : 0xFFFFFFFE;
    EXPECT_TRUE(
        ::WritePrivateProfileStringA("gainshutter-0109", "BrightnessTarget", " \"200\" ",
                                     NarrowName().c_str()) &&
        ::WritePrivateProfileStringW(L"GainShutter-0109", L"aemaxexposureclock",
                                     std::to_wstring(maximum).c_str(), file_.c_str()) &&
        ::WritePrivateProfileStringW(L"GainShutter-0109", L"CurrentGain", L"0x21", file_.c_str()) &&
        ::WritePrivateProfileStringW(L"\u00F6", L"\u00F6", L"\u00F6", file_.c_str()))
        << GetLastError();
    ASSERT_TRUE(Vexa_SetGain(camera, 1) && Vexa_SetALCTargetLevel(camera, 1));
    ASSERT_TRUE(Vexa_ReadSettingFileA(camera, NarrowName().c_str())) << GetLastError();
    DWORD clock = 0;
    WORD target = 0, gain = 0;
    EXPECT_TRUE(Vexa_GetALCTargetLevel(camera, &target) &&
                Vexa_GetAEMaxExposureClock(camera, &clock) && Vexa_GetGain(camera, &gain));
    EXPECT_EQ(std::tuple(target, clock, gain), std::tuple(200, maximum, 0x21));
    // What the library does not know stays, in either form of text.
    EXPECT_TRUE(Vexa_WriteSettingFileW(camera, file_.c_str())) << GetLastError();
    EXPECT_TRUE(Get().starts_with(beginning));
    std::array<wchar_t, 8> kept{};
    ::GetPrivateProfileStringW(L"\u00F6", L"\u00F6", L"", kept.data(), 8, file_.c_str());
    EXPECT_EQ(kept.data(), std::wstring(L"\u00F6"));
  }
}

}  // namespace
}  // namespace vexa::test

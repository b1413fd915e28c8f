#include <gtest/gtest.h>

#include "platform/posted_message.hpp"
#include "platform/system_info.hpp"
#include "platform/text.hpp"
#include "platform/windows/windows_api.hpp"

namespace vexa::platform {
namespace {

TEST(WindowsText, ConvertsByTheAnsiCodePage) {
  // Whatever this system's code page holds of Western, Greek and Cyrillic letters.
  for (const std::u16string text : {u"", u"plain", u"caf\u00E9", u"\u03B1\u03B2", u"\u0416"}) {
    const std::wstring source = ToWideChars(text);
    char expected_narrow[64] = {};
    wchar_t expected_wide[64] = {};
    ::WideCharToMultiByte(CP_ACP, 0, source.c_str(), -1, expected_narrow, 64, nullptr, nullptr);
    ::MultiByteToWideChar(CP_ACP, 0, expected_narrow, -1, expected_wide, 64);
    std::string narrow = "left over";
    std::u16string wide = u"left over";
    EXPECT_TRUE(ToNarrow(text, &narrow).ok());
    EXPECT_EQ(narrow, expected_narrow);
    EXPECT_TRUE(ToWide(narrow, &wide).ok());
    EXPECT_EQ(ToWideChars(wide), expected_wide);
  }
}

TEST(WindowsMessage, IsPostedToTheWindow) {
  const HWND window =
      ::CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
  ASSERT_NE(window, nullptr);
  const auto wparam = static_cast<std::uintptr_t>(-2);
  PostWindowMessage(window, 0xB101, wparam, -3);
  MSG message{};
  ASSERT_TRUE(::PeekMessageA(&message, window, 0xB101, 0xB103, PM_REMOVE));
  EXPECT_EQ(message.message, 0xB101u);
  EXPECT_EQ(message.wParam, wparam);
  EXPECT_EQ(message.lParam, -3);
  ::DestroyWindow(window);
  PostWindowMessage(window, 0xB101, 0, 0);
  EXPECT_FALSE(::PeekMessageA(&message, nullptr, 0xB101, 0xB103, PM_REMOVE));
}

TEST(WindowsSystem, ReadsTheVersionOfTheRecordedModule) {
  EXPECT_GE(OsMajorVersion(), 5u);
  EXPECT_EQ(ReadModuleVersion().file_high, 0u) << "no module recorded yet";
  RecordModule(::GetModuleHandleW(L"kernel32.dll"));
  const ModuleVersion version = ReadModuleVersion();
  EXPECT_GE(version.file_high >> 16, 5u);  // kernel32 carries the system's version
  EXPECT_GE(version.product_high >> 16, 5u);
  RecordModule(::GetModuleHandleW(nullptr));
  EXPECT_EQ(ReadModuleVersion().file_high, 0u) << "a program without a version resource";
  RecordModule(nullptr);
}

}  // namespace
}  // namespace vexa::platform

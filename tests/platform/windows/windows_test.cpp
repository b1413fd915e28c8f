#include <gtest/gtest.h>

#include "platform/posted_message.hpp"
#include "platform/system_info.hpp"
#include "platform/text.hpp"
#include "platform/windows/windows_api.hpp"

namespace vexa::platform {
namespace {

TEST(WindowsText, ConvertsByTheAnsiCodePage) {
  // Every byte that is a character of its own in this system's code page, whichever that is.
  std::string narrow;
  std::wstring wide;
  for (unsigned byte = 1; byte < 256; ++byte) {
    const char text = static_cast<char>(byte);
    wchar_t unit = 0;
    char back = 0;
    if (::MultiByteToWideChar(CP_ACP, MB_ERR_INVALID_CHARS, &text, 1, &unit, 1) == 1 &&
        ::WideCharToMultiByte(CP_ACP, 0, &unit, 1, &back, 1, nullptr, nullptr) == 1 &&
        back == text) {
      narrow.push_back(text);
      wide.push_back(unit);
    }
  }
  ASSERT_GE(narrow.size(), 127u);
  std::u16string to_wide = u"left over";
  std::string to_narrow = "left over";
  EXPECT_TRUE(ToWide(narrow, &to_wide).ok());
  EXPECT_EQ(to_wide, std::u16string(wide.begin(), wide.end()));
  EXPECT_TRUE(ToNarrow(to_wide, &to_narrow).ok());
  EXPECT_EQ(to_narrow, narrow);

  EXPECT_TRUE(ToWide("", &to_wide).ok());
  EXPECT_TRUE(ToNarrow(u"", &to_narrow).ok());
  EXPECT_TRUE(to_wide.empty() && to_narrow.empty());
  if (::GetACP() != CP_UTF8) {
    EXPECT_TRUE(ToNarrow(u"a\u0E01\u05D0z", &to_narrow).ok());
    EXPECT_NE(to_narrow.find('?'), std::string::npos);  // no ANSI code page has both
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
  const auto is_zero = [](const ModuleVersion& v) {
    return (v.file_high | v.file_low | v.product_high | v.product_low) == 0;
  };
  EXPECT_TRUE(is_zero(ReadModuleVersion())) << "no module recorded yet";
  RecordModule(::GetModuleHandleW(L"kernel32.dll"));
  const ModuleVersion version = ReadModuleVersion();
  EXPECT_GE(version.file_high >> 16, 5u);  // kernel32 carries the system's version
  EXPECT_GE(version.product_high >> 16, 5u);
  RecordModule(::GetModuleHandleW(nullptr));
  EXPECT_TRUE(is_zero(ReadModuleVersion())) << "a program without a version resource";
  RecordModule(nullptr);
}

}  // namespace
}  // namespace vexa::platform

#include "system.hpp"

#include <windows.h>

#include <algorithm>
#include <atomic>

#include "text.hpp"

namespace vexa::tool {
namespace {

std::atomic<bool> interrupted{false};

HANDLE HandleOf(Stream stream) {
  return GetStdHandle(stream == Stream::kOutput ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE);
}

BOOL WINAPI OnConsoleEvent(DWORD event) {
  if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) {
    return FALSE;
  }
  // TRUE: handled. The second time the default handler ends the process.
  return interrupted.exchange(true) ? FALSE : TRUE;
}

double Seconds(const FILETIME& time) {
  const std::uint64_t ticks =
      (std::uint64_t{time.dwHighDateTime} << 32) | time.dwLowDateTime;  // of 100 ns
  return static_cast<double>(ticks) * 1e-7;
}

std::wstring WideFromUtf8(std::string_view text) {
  const int size = static_cast<int>(text.size());
  std::wstring wide(
      static_cast<std::size_t>(MultiByteToWideChar(CP_UTF8, 0, text.data(), size, nullptr, 0)),
      L'\0');
  MultiByteToWideChar(CP_UTF8, 0, text.data(), size, wide.data(), static_cast<int>(wide.size()));
  return wide;
}

bool WriteConsoleText(HANDLE console, std::wstring_view text) {
  constexpr std::size_t kPart = 8192;  // consoles refuse parts above about 32 KiB
  while (!text.empty()) {
    DWORD written = 0;
    if (!WriteConsoleW(console, text.data(), static_cast<DWORD>(std::min(text.size(), kPart)),
                       &written, nullptr) ||
        written == 0) {
      return false;
    }
    text.remove_prefix(written);
  }
  return true;
}

}  // namespace

bool IsTerminal(Stream stream) {
  DWORD mode = 0;
  return GetConsoleMode(HandleOf(stream), &mode) != 0;
}

bool Write(Stream stream, std::string_view text) {
  const HANDLE handle = HandleOf(stream);
  if (IsTerminal(stream)) {
    return WriteConsoleText(handle, WideFromUtf8(text));
  }
  while (!text.empty()) {
    DWORD written = 0;
    if (!WriteFile(handle, text.data(), static_cast<DWORD>(text.size()), &written, nullptr) ||
        written == 0) {
      return false;
    }
    text.remove_prefix(written);
  }
  return true;
}

void CatchInterrupts() { SetConsoleCtrlHandler(OnConsoleEvent, TRUE); }

bool Interrupted() { return interrupted; }

double ProcessCpuSeconds() {
  FILETIME creation{};
  FILETIME exit{};
  FILETIME kernel{};
  FILETIME user{};
  GetProcessTimes(GetCurrentProcess(), &creation, &exit, &kernel, &user);
  return Seconds(kernel) + Seconds(user);
}

std::string SystemErrorText(std::uint32_t code) {
  wchar_t buffer[512];
  DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                                code, 0, buffer, 512, nullptr);
  while (length > 0 && (buffer[length - 1] <= L' ' || buffer[length - 1] == L'.')) {
    --length;
  }
  return Utf8FromUtf16(std::u16string(buffer, buffer + length));
}

}  // namespace vexa::tool

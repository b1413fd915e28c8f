/** Small text helpers of the command-line program. All text inside the program is UTF-8. */
#pragma once

#include <cstdio>
#include <string>
#include <string_view>

// The C library of Windows has a printf() of its own, which MinGW replaces with a standard one.
#if defined(__MINGW_PRINTF_FORMAT)
#define VEXA_TOOL_PRINTF_FORMAT __MINGW_PRINTF_FORMAT
#else
#define VEXA_TOOL_PRINTF_FORMAT printf
#endif

namespace vexa::tool {

/** Formats as printf() does. */
[[gnu::format(VEXA_TOOL_PRINTF_FORMAT, 1, 2)]] std::string Format(const char* format, ...);

/** Converts UTF-16 to UTF-8; an unpaired surrogate becomes U+FFFD. */
std::string Utf8FromUtf16(std::u16string_view text);

/** Lower case of A to Z; other bytes stay. */
std::string AsciiLowerCase(std::string_view text);

}  // namespace vexa::tool

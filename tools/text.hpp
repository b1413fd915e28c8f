/** Small text helpers of the command-line program. All text inside the program is UTF-8. */
#pragma once

#include <string>
#include <string_view>

namespace vexa::tool {

/** Formats as printf() does. */
[[gnu::format(gnu_printf, 1, 2)]] std::string Format(const char* format, ...);

/** Converts UTF-16 to UTF-8; an unpaired surrogate becomes U+FFFD. */
std::string Utf8FromUtf16(std::u16string_view text);

/** Lower case of A to Z; other bytes stay. */
std::string AsciiLowerCase(std::string_view text);

}  // namespace vexa::tool

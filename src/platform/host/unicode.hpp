/// \file
/// UTF-16 and UTF-8, as the Unicode Standard defines them.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vexa::platform::host {

/// UTF-16 to UTF-8; null when the text holds an unpaired surrogate.
std::optional<std::string> EncodeUtf8(std::u16string_view utf16);

/// UTF-16 to UTF-8; each unpaired surrogate becomes U+FFFD.
std::string EncodeUtf8Lossy(std::u16string_view utf16);

/// UTF-8 to UTF-16; each maximal subpart of an ill-formed sequence becomes one U+FFFD (Unicode
/// 15.0, section 3.9, "U+FFFD Substitution of Maximal Subparts").
std::u16string DecodeUtf8Lossy(std::string_view utf8);

}  // namespace vexa::platform::host

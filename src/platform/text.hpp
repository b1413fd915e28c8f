/// \file
/// Conversion between UTF-16 and the system's narrow code page (UTF-8 where there are no code
/// pages).
#pragma once

#include <cstdint>
#include <string>

#include "platform/status.hpp"

namespace vexa::platform {

/// UTF-16 to the narrow code page; characters that it lacks become similar ones or its replacement
/// character, unpaired surrogates the latter. Fails only when the system's conversion does.
Status ToNarrow(const std::u16string& wide, std::string* narrow);

/// Narrow code page to UTF-16; malformed input becomes U+FFFD.
Status ToWide(const std::string& narrow, std::u16string* wide);

}  // namespace vexa::platform

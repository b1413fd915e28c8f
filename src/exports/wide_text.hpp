/// \file
/// Wide text of the application's as the library keeps it.
#pragma once

#include <string>

#include "VexaAPI.h"

namespace vexa::exports {

/// A copy of zero-terminated text.
inline std::u16string CopyWide(const WCHAR* text) {
  std::u16string copy;
  for (; *text != 0; ++text) {
    copy.push_back(static_cast<char16_t>(*text));
  }
  return copy;
}

}  // namespace vexa::exports

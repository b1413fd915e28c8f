#include "platform/text.hpp"

#include "platform/host/unicode.hpp"

namespace vexa::platform {

Status ToNarrow(const std::u16string& wide, std::string* narrow) {
  *narrow = host::EncodeUtf8Lossy(wide);
  return error::kNone;
}

Status ToWide(const std::string& narrow, std::u16string* wide) {
  *wide = host::DecodeUtf8Lossy(narrow);
  return error::kNone;
}

}  // namespace vexa::platform

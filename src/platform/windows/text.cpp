#include "platform/text.hpp"

#include <limits>

#include "platform/windows/windows_api.hpp"

namespace vexa::platform {
namespace {

bool FitsInt(std::size_t size) {
  return size <= static_cast<std::size_t>(std::numeric_limits<int>::max());
}

}  // namespace

Status ToNarrow(const std::u16string& wide, std::string* narrow) {
  narrow->clear();
  if (wide.empty()) {  // the system takes a length of 0 for an error
    return error::kNone;
  }
  if (!FitsInt(wide.size())) {
    return error::kInvalidParameter;
  }
  const std::wstring source = ToWideChars(wide);
  const auto convert = [&source](char* target, int capacity) {
    return ::WideCharToMultiByte(CP_ACP, 0, source.data(), static_cast<int>(source.size()), target,
                                 capacity, nullptr, nullptr);
  };
  const int length = convert(nullptr, 0);
  narrow->resize(static_cast<std::size_t>(length));
  return length != 0 && convert(narrow->data(), length) != 0 ? error::kNone : LastSystemError();
}

Status ToWide(const std::string& narrow, std::u16string* wide) {
  wide->clear();
  if (narrow.empty()) {
    return error::kNone;
  }
  if (!FitsInt(narrow.size())) {
    return error::kInvalidParameter;
  }
  const auto convert = [&narrow](wchar_t* target, int capacity) {
    return ::MultiByteToWideChar(CP_ACP, 0, narrow.data(), static_cast<int>(narrow.size()), target,
                                 capacity);
  };
  const int length = convert(nullptr, 0);
  std::wstring converted(static_cast<std::size_t>(length), L'\0');
  if (length == 0 || convert(converted.data(), length) == 0) {
    return LastSystemError();
  }
  wide->assign(converted.begin(), converted.end());
  return error::kNone;
}

}  // namespace vexa::platform

#include "text.hpp"

#include <algorithm>
#include <cstdarg>
#include <cstdint>
#include <cstdio>

namespace vexa::tool {
namespace {

void AppendUtf8(std::string& out, std::uint32_t code_point) {
  const auto append = [&out](std::uint32_t byte) { out.push_back(static_cast<char>(byte)); };
  const auto continuation = [&](unsigned shift) {
    append(0x80u | ((code_point >> shift) & 0x3Fu));
  };
  if (code_point < 0x80) {
    append(code_point);
  } else if (code_point < 0x800) {
    append(0xC0u | (code_point >> 6));
    continuation(0);
  } else if (code_point < 0x10000) {
    append(0xE0u | (code_point >> 12));
    continuation(6);
    continuation(0);
  } else {
    append(0xF0u | (code_point >> 18));
    continuation(12);
    continuation(6);
    continuation(0);
  }
}

}  // namespace

std::string Format(const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  const int length = std::vsnprintf(nullptr, 0, format, arguments);
  va_end(arguments);
  std::string text(length > 0 ? static_cast<std::size_t>(length) : 0, '\0');
  va_start(arguments, format);
  std::vsnprintf(text.data(), text.size() + 1, format, arguments);
  va_end(arguments);
  return text;
}

std::string Utf8FromUtf16(std::u16string_view text) {
  constexpr std::uint32_t kReplacement = 0xFFFD;
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const std::uint32_t unit = text[i];
    const bool high = unit >= 0xD800 && unit < 0xDC00;
    const bool low = unit >= 0xDC00 && unit < 0xE000;
    const std::uint32_t next = i + 1 < text.size() ? text[i + 1] : 0;
    if (high && next >= 0xDC00 && next < 0xE000) {
      AppendUtf8(out, 0x10000 + ((unit - 0xD800) << 10) + (next - 0xDC00));
      ++i;
    } else {
      AppendUtf8(out, high || low ? kReplacement : unit);
    }
  }
  return out;
}

std::string AsciiLowerCase(std::string_view text) {
  std::string out(text);
  std::transform(out.begin(), out.end(), out.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
  return out;
}

}  // namespace vexa::tool

#include "platform/host/unicode.hpp"

#include <cstddef>
#include <cstdint>

namespace vexa::platform::host {
namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr char32_t kFirstSupplementary = 0x10000;

constexpr bool IsHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
constexpr bool IsLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

/// Takes the next code point off the text; an unpaired surrogate comes out as itself.
char32_t TakeCodePoint(std::u16string_view& text) {
  const char32_t first = text.front();
  text.remove_prefix(1);
  if (!IsHighSurrogate(first) || text.empty() || !IsLowSurrogate(text.front())) {
    return first;
  }
  const char32_t second = text.front();
  text.remove_prefix(1);
  return kFirstSupplementary + ((first - 0xD800) << 10) + (second - 0xDC00);
}

void AppendUtf8(char32_t code_point, std::string& out) {
  const auto append = [&out](char32_t byte) { out.push_back(static_cast<char>(byte)); };
  const auto append_trail = [&](int shift) { append(0x80 | ((code_point >> shift) & 0x3F)); };
  if (code_point < 0x80) {
    append(code_point);
  } else if (code_point < 0x800) {
    append(0xC0 | (code_point >> 6));
    append_trail(0);
  } else if (code_point < kFirstSupplementary) {
    append(0xE0 | (code_point >> 12));
    append_trail(6);
    append_trail(0);
  } else {
    append(0xF0 | (code_point >> 18));
    append_trail(12);
    append_trail(6);
    append_trail(0);
  }
}

void AppendUtf16(char32_t code_point, std::u16string& out) {
  if (code_point < kFirstSupplementary) {
    out.push_back(static_cast<char16_t>(code_point));
    return;
  }
  const char32_t offset = code_point - kFirstSupplementary;
  out.push_back(static_cast<char16_t>(0xD800 + (offset >> 10)));
  out.push_back(static_cast<char16_t>(0xDC00 + (offset & 0x3FF)));
}

/// What a lead byte promises: how many bytes follow, and the range of the first of them, which
/// rules out overlong forms, surrogates and values above U+10FFFF (Unicode 15.0, table 3-7).
struct Lead {
  int trail_bytes = -1;  // -1: no lead byte
  std::uint8_t first_low = 0x80;
  std::uint8_t first_high = 0xBF;
};

constexpr Lead LeadOf(std::uint8_t byte) {
  if (byte < 0x80) return {.trail_bytes = 0};
  if (byte < 0xC2) return {};
  if (byte < 0xE0) return {.trail_bytes = 1};
  if (byte == 0xE0) return {.trail_bytes = 2, .first_low = 0xA0};
  if (byte == 0xED) return {.trail_bytes = 2, .first_high = 0x9F};
  if (byte < 0xF0) return {.trail_bytes = 2};
  if (byte == 0xF0) return {.trail_bytes = 3, .first_low = 0x90};
  if (byte < 0xF4) return {.trail_bytes = 3};
  if (byte == 0xF4) return {.trail_bytes = 3, .first_high = 0x8F};
  return {};
}

/// Takes the next code point off the text, or U+FFFD with the longest run of bytes that could have
/// begun a sequence (at least one byte).
char32_t TakeCodePoint(std::string_view& text) {
  const auto byte_at = [&text](std::size_t i) { return static_cast<std::uint8_t>(text[i]); };
  const std::uint8_t first = byte_at(0);
  Lead lead = LeadOf(first);
  if (lead.trail_bytes <= 0) {
    text.remove_prefix(1);
    return lead.trail_bytes == 0 ? first : kReplacement;
  }
  char32_t code_point = first & (0x3F >> lead.trail_bytes);
  std::size_t used = 1;
  for (int remaining = lead.trail_bytes; remaining > 0; --remaining) {
    if (used == text.size() || byte_at(used) < lead.first_low || byte_at(used) > lead.first_high) {
      text.remove_prefix(used);
      return kReplacement;
    }
    code_point = (code_point << 6) | (byte_at(used) & 0x3Fu);
    ++used;
    lead.first_low = 0x80;
    lead.first_high = 0xBF;
  }
  text.remove_prefix(used);
  return code_point;
}

}  // namespace

std::optional<std::string> EncodeUtf8(std::u16string_view utf16) {
  std::string utf8;
  while (!utf16.empty()) {
    const char32_t code_point = TakeCodePoint(utf16);
    if (IsHighSurrogate(code_point) || IsLowSurrogate(code_point)) {
      return std::nullopt;
    }
    AppendUtf8(code_point, utf8);
  }
  return utf8;
}

std::string EncodeUtf8Lossy(std::u16string_view utf16) {
  std::string utf8;
  while (!utf16.empty()) {
    const char32_t code_point = TakeCodePoint(utf16);
    const bool unpaired = IsHighSurrogate(code_point) || IsLowSurrogate(code_point);
    AppendUtf8(unpaired ? kReplacement : code_point, utf8);
  }
  return utf8;
}

std::u16string DecodeUtf8Lossy(std::string_view utf8) {
  std::u16string utf16;
  while (!utf8.empty()) {
    AppendUtf16(TakeCodePoint(utf8), utf16);
  }
  return utf16;
}

}  // namespace vexa::platform::host

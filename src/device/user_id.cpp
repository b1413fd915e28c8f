#include "device/user_id.hpp"

#include <algorithm>
#include <string>

#include "platform/bytes.hpp"
#include "platform/text.hpp"

namespace vexa::device {
namespace {

constexpr std::size_t kNumber = 0;
constexpr std::size_t kFlags = 4;
constexpr std::size_t kLength = 5;
constexpr std::size_t kText = 6;
constexpr std::size_t kTextSize = CameraMemory::kUserIdSize - kText;

constexpr std::uint8_t kWideFlag = 0x80;

std::size_t CharacterSize(TextForm form) { return form == TextForm::kWide ? 2 : 1; }

std::size_t Measure(std::span<const std::uint8_t> text, TextForm form) {
  const std::size_t size = CharacterSize(form);
  const std::size_t whole = text.size() / size * size;
  for (std::size_t i = 0; i < whole; i += size) {
    if (text[i] == 0 && text[i + size - 1] == 0) {
      return i + size;
    }
  }
  return whole;
}

// A conversion that fails otherwise has left what it could.
bool IsConversionFailure(Status status) {
  return status == error::kInvalidFlags || status == error::kInvalidParameter ||
         status == error::kInsufficientBuffer || status == error::kNoUnicodeTranslation;
}

Status ConvertToNarrow(std::span<const std::uint8_t> wide, std::span<std::uint8_t> buffer) {
  std::u16string text;
  for (std::size_t i = 0; i + 1 < wide.size(); i += 2) {
    text.push_back(static_cast<char16_t>(LoadLe16(wide, i)));
  }
  std::string narrow;
  const Status status = platform::ToNarrow(text, &narrow);
  if (status.ok() && narrow.size() > buffer.size()) {
    return error::kInsufficientBuffer;
  }
  std::ranges::transform(narrow, buffer.begin(),
                         [](char unit) { return static_cast<std::uint8_t>(unit); });
  return status;
}

Status ConvertToWide(std::span<const std::uint8_t> narrow, std::span<std::uint8_t> buffer) {
  std::u16string wide;
  const Status status = platform::ToWide({narrow.begin(), narrow.end()}, &wide);
  if (status.ok() && !wide.empty() && wide.size() + 1 > buffer.size() / 2) {
    return error::kInsufficientBuffer;
  }
  for (std::size_t i = 0; i < wide.size(); ++i) {
    StoreLe16(buffer, 2 * i, wide[i]);
  }
  return status;
}

}  // namespace

UserId::UserId(std::uint32_t number, std::span<const std::uint8_t> text, TextForm form) {
  std::size_t length = Measure(text, form);
  if (length > kTextSize) {
    length = kTextSize - CharacterSize(form);
  }
  StoreLe32(record_, kNumber, number);
  record_[kFlags] = form == TextForm::kWide ? kWideFlag : std::uint8_t{0};
  record_[kLength] = static_cast<std::uint8_t>(length);
  std::ranges::copy(text.first(length), record_.begin() + kText);
}

std::uint32_t UserId::number() const { return LoadLe32(record_, kNumber); }

TextForm UserId::form() const {
  return (record_[kFlags] & kWideFlag) != 0 ? TextForm::kWide : TextForm::kNarrow;
}

std::span<const std::uint8_t> UserId::text() const {
  const std::size_t length = record_[kLength] > kTextSize ? 0 : record_[kLength];
  return std::span(record_).subspan(kText, length);
}

Status UserId::CopyText(std::span<std::uint8_t> buffer, TextForm form) const {
  const std::span<const std::uint8_t> stored = text();
  if (stored.empty() || buffer.empty()) {
    return {};
  }
  if (form == this->form()) {
    // Whole characters, so that a zero character is left.
    const std::size_t size = CharacterSize(form);
    const std::size_t room = buffer.size() / size;
    const std::size_t cut = room == 0 ? 0 : (room - 1) * size;
    std::ranges::copy(stored.first(stored.size() <= buffer.size() ? stored.size() : cut),
                      buffer.begin());
    return {};
  }
  const Status status =
      form == TextForm::kNarrow ? ConvertToNarrow(stored, buffer) : ConvertToWide(stored, buffer);
  return IsConversionFailure(status) ? status : Status();
}

}  // namespace vexa::device

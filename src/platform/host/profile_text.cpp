#include "platform/host/profile_text.hpp"

#include <algorithm>

namespace vexa::platform::host {
namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kUtf16LeMark = "\xFF\xFE";
constexpr std::string_view kUtf16BeMark = "\xFE\xFF";
constexpr char kBeyondAscii = '\x80';

/// Space and control characters, among them the end-of-file character of DOS.
bool IsBlank(char c) { return static_cast<unsigned char>(c) <= ' '; }

std::string_view Trim(std::string_view text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

std::string_view Unquote(std::string_view text) {
  const bool quoted = text.size() >= 2 && text.front() == text.back() &&
                      (text.front() == '"' || text.front() == '\'');
  return quoted ? text.substr(1, text.size() - 2) : text;
}

std::string Fold(std::string_view name) {
  std::string folded(name);
  std::transform(folded.begin(), folded.end(), folded.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
  return folded;
}

/// The name in a section's title line; null for other lines.
std::optional<std::string_view> SectionName(std::string_view line) {
  line = Trim(line);
  const std::size_t end = line.find(']');
  if (!line.starts_with('[') || end == std::string_view::npos) {
    return std::nullopt;
  }
  return Trim(line.substr(1, end - 1));
}

/// Value of a digit in a base; -1 for characters that are none.
int DigitValue(char c, std::uint32_t base) {
  int value = -1;
  if (c >= '0' && c <= '9') value = c - '0';
  if (c >= 'a' && c <= 'f') value = c - 'a' + 10;
  if (c >= 'A' && c <= 'F') value = c - 'A' + 10;
  return value < static_cast<int>(base) ? value : -1;
}

/// Takes the prefix of another base than ten off.
std::uint32_t TakeBase(std::string_view* digits) {
  const auto base_of = [](std::string_view text) -> std::uint32_t {
    if (text.starts_with("0x")) return 16;
    if (text.starts_with("0o")) return 8;
    return text.starts_with("0b") ? 2 : 10;
  };
  const std::uint32_t base = base_of(*digits);
  digits->remove_prefix(base == 10 ? 0 : 2);
  return base;
}

}  // namespace

ProfileText::ProfileText(std::string bytes) : bytes_(std::move(bytes)) {
  Decode();
  FindSections();
}

void ProfileText::Decode() {
  big_endian_ = bytes_.starts_with(kUtf16BeMark);
  if (big_endian_ || bytes_.starts_with(kUtf16LeMark)) {
    unit_size_ = 2;
    mark_size_ = kUtf16LeMark.size();
  } else if (bytes_.starts_with(kUtf8Mark)) {
    mark_size_ = kUtf8Mark.size();
  }
  text_.resize((bytes_.size() - mark_size_) / unit_size_);
  for (std::size_t i = 0; i < text_.size(); ++i) {
    const char* unit = bytes_.data() + mark_size_ + i * unit_size_;
    const char low = unit[big_endian_ ? 1 : 0];
    const bool ascii = unit_size_ == 1 || (unit[big_endian_ ? 0 : 1] == 0 && (low & 0x80) == 0);
    text_[i] = ascii ? low : kBeyondAscii;
  }
}

ProfileText::Line ProfileText::LineAt(std::size_t begin) const {
  const std::size_t end = std::min(text_.find_first_of("\r\n", begin), text_.size());
  std::size_t next = std::min(end + 1, text_.size());
  if (text_.compare(end, 2, "\r\n") == 0) {
    next = end + 2;
  }
  return {.begin = begin, .end = end, .next = next};
}

std::string_view ProfileText::TextOf(const Line& line) const {
  return std::string_view(text_).substr(line.begin, line.end - line.begin);
}

void ProfileText::FindSections() {
  bool in_first = false;  // in the first section of its name
  for (Line line = LineAt(0); line.begin < text_.size(); line = LineAt(line.next)) {
    if (line.begin == 0 && line.next > line.end) {
      line_end_ = text_.substr(line.end, line.next - line.end);
    }
    if (const auto name = SectionName(TextOf(line))) {
      in_first = by_name_.emplace(Fold(*name), sections_.size()).second;
      if (in_first) {
        sections_.emplace_back().begin = line.next;
      }
    }
    if (in_first) {
      sections_.back().end = line.next;
    }
  }
  sections_in_file_ = sections_.size();
}

ProfileText::Section* ProfileText::FindSection(std::string_view name) {
  const auto found = by_name_.find(Fold(name));
  if (found == by_name_.end()) {
    return nullptr;
  }
  Section* section = &sections_[found->second];
  if (!section->indexed) {
    Index(section);
  }
  return section;
}

void ProfileText::Index(Section* section) const {
  section->indexed = true;
  section->insert_at = section->begin;
  for (Line line = LineAt(section->begin); line.begin < section->end; line = LineAt(line.next)) {
    const std::string_view text = Trim(TextOf(line));
    if (text.empty()) {
      continue;
    }
    section->insert_at = line.next;
    const std::size_t equals = text.find('=');
    if (text.front() != ';' && equals != std::string_view::npos) {
      section->keys.emplace(Fold(Trim(text.substr(0, equals))),
                            Key{.name = std::string(Trim(text.substr(0, equals))),
                                .begin = line.begin,
                                .end = line.end,
                                .value = std::string(Unquote(Trim(text.substr(equals + 1)))),
                                .replacement = std::nullopt});
    }
  }
}

std::optional<std::string> ProfileText::Find(std::string_view section, std::string_view key) {
  const Section* found = FindSection(section);
  if (found == nullptr) {
    return std::nullopt;
  }
  const auto entry = found->keys.find(Fold(key));
  return entry == found->keys.end() ? std::nullopt : std::optional(entry->second.value);
}

void ProfileText::Set(std::string_view section, std::string_view key, std::string_view value) {
  Section* found = FindSection(section);
  if (found == nullptr) {
    by_name_.emplace(Fold(section), sections_.size());
    found = &sections_.emplace_back();
    found->title = section;
    found->indexed = true;
  }
  const std::string name = Fold(key);
  const auto entry = found->keys.find(name);
  if (entry != found->keys.end()) {
    entry->second.replacement = entry->second.name + "=" + std::string(value);
    return;
  }
  const auto [same, is_new] = found->added_by_name.emplace(name, found->added.size());
  if (is_new) {
    found->added.emplace_back(key, value);
  } else {
    found->added[same->second].second = value;
  }
}

std::string ProfileText::Encode(std::string_view ascii) const {
  if (unit_size_ == 1) {
    return std::string(ascii);
  }
  std::string encoded;
  for (const char c : ascii) {
    encoded += big_endian_ ? std::string{'\0', c} : std::string{c, '\0'};
  }
  return encoded;
}

std::string ProfileText::AddedLines(const Section& section) const {
  std::string lines;
  for (const auto& [key, value] : section.added) {
    lines.append(key).append("=").append(value).append(line_end_);
  }
  return lines;
}

std::string_view ProfileText::Raw(std::size_t begin, std::size_t end) const {
  return std::string_view(bytes_).substr(mark_size_ + begin * unit_size_,
                                         (end - begin) * unit_size_);
}

bool ProfileText::LacksLineEnd(std::size_t position) const {
  return position > 0 && text_[position - 1] != '\n' && text_[position - 1] != '\r';
}

std::string ProfileText::Bytes() const {
  struct Edit {
    std::size_t end;
    std::string text;
  };
  std::map<std::size_t, Edit> edits;  // by the position where they begin
  std::string new_sections;
  for (std::size_t i = 0; i < sections_.size(); ++i) {
    const Section& section = sections_[i];
    if (i >= sections_in_file_) {
      new_sections += "[" + section.title + "]" + line_end_ + AddedLines(section);
      continue;
    }
    for (const auto& [name, key] : section.keys) {
      if (key.replacement) {
        edits[key.begin] = {.end = key.end, .text = *key.replacement};
      }
    }
    if (!section.added.empty()) {
      const std::string gap = LacksLineEnd(section.insert_at) ? line_end_ : "";
      edits[section.insert_at] = {.end = section.insert_at, .text = gap + AddedLines(section)};
    }
  }
  std::string result(bytes_, 0, mark_size_);
  std::size_t copied = 0;
  for (const auto& [begin, edit] : edits) {
    result.append(Raw(copied, begin)).append(Encode(edit.text));
    copied = edit.end;
  }
  result.append(Raw(copied, text_.size()));
  if (!new_sections.empty()) {
    const bool ends_open = LacksLineEnd(text_.size()) && !edits.contains(text_.size());
    result.append(Encode((ends_open ? line_end_ : "") + new_sections));
  }
  // Half a word at the end of UTF-16 is kept as well.
  return result.append(bytes_, mark_size_ + text_.size() * unit_size_, std::string::npos);
}

std::uint32_t ParseProfileInteger(std::string_view value) {
  value = Trim(value);
  const bool negative = value.starts_with('-');
  if (negative || value.starts_with('+')) {
    value.remove_prefix(1);
  }
  const std::uint32_t base = TakeBase(&value);
  std::uint32_t total = 0;
  for (const char c : value) {
    const int digit = DigitValue(c, base);
    if (digit < 0) {
      break;
    }
    total = total * base + static_cast<std::uint32_t>(digit);
  }
  return negative ? 0U - total : total;
}

}  // namespace vexa::platform::host

/// \file
/// The text of a private-profile file: finding values, and changing some without touching the rest.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vexa::platform::host {

/// A file's content. The syntax is that of platform/profile_file.hpp.
class ProfileText {
 public:
  /// Takes UTF-8 or other narrow text, or UTF-16 when it begins with a byte-order mark (also
  /// big-endian). Any bytes will do.
  explicit ProfileText(std::string bytes);

  /// A value without blanks and quotes around it; null when the key is missing.
  std::optional<std::string> Find(std::string_view section, std::string_view key);

  /// Replaces the value of a key, whose name stays as spelled, or adds the key behind the last line
  /// of the section, or the section at the end of the file.
  void Set(std::string_view section, std::string_view key, std::string_view value);

  /// The content with the changes. New lines end as the first line of the file does.
  std::string Bytes() const;

 private:
  // Positions count code units: bytes, or the words of UTF-16.
  struct Key {
    std::string name;       // as the file spells it
    std::size_t begin = 0;  // of the line
    std::size_t end = 0;    // before the line's end
    std::string value;
    std::optional<std::string> replacement;  // of the line
  };
  struct Section {
    std::string title;
    std::size_t begin = 0;  // of the first line after the title
    std::size_t end = 0;    // of the last line
    bool indexed = false;
    std::size_t insert_at = 0;  // behind the last line that is not blank
    std::map<std::string, Key> keys;
    std::vector<std::pair<std::string, std::string>> added;  // keys and values
    std::map<std::string, std::size_t> added_by_name;
  };

  /// A line from `begin` on: where it ends without and with its line end.
  struct Line {
    std::size_t begin = 0;
    std::size_t end = 0;
    std::size_t next = 0;
  };

  void Decode();
  void FindSections();
  Line LineAt(std::size_t begin) const;
  std::string_view TextOf(const Line& line) const;
  Section* FindSection(std::string_view name);
  void Index(Section* section) const;

  std::string Encode(std::string_view ascii) const;
  std::string AddedLines(const Section& section) const;
  std::string_view Raw(std::size_t begin, std::size_t end) const;
  bool LacksLineEnd(std::size_t position) const;

  std::string bytes_;
  std::size_t mark_size_ = 0;  // bytes of the byte-order mark
  std::size_t unit_size_ = 1;
  bool big_endian_ = false;
  std::string text_;  // one character for each code unit; those beyond ASCII match nothing
  std::string line_end_ = "\n";
  std::vector<Section> sections_;  // in the order of the file, then new ones
  std::size_t sections_in_file_ = 0;
  std::map<std::string, std::size_t> by_name_;  // the first of each name
};

/// The integer at the beginning of a value, as ProfileReader::ReadInteger describes it.
std::uint32_t ParseProfileInteger(std::string_view value);

}  // namespace vexa::platform::host

#include "report.hpp"

#include <algorithm>

namespace vexa::tool {
namespace {

/** Characters of UTF-8 text, as far as one code point is one column. */
std::size_t Columns(const std::string& text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
  }));
}

std::string Padded(const std::string& text, std::size_t columns) {
  const std::size_t present = Columns(text);
  return text + std::string(present < columns ? columns - present : 0, ' ');
}

}  // namespace

std::string ToJson(const std::vector<Section>& sections) {
  Json document;
  for (const Section& section : sections) {
    Json& object = document[section.key];
    for (const Fact& fact : section.facts) {
      object[fact.key] = fact.value;
    }
  }
  return Dump(document);
}

std::string ToText(const std::vector<Section>& sections) {
  std::size_t width = 0;
  for (const Section& section : sections) {
    for (const Fact& fact : section.facts) {
      width = std::max(width, Columns(fact.label));
    }
  }
  std::string text;
  for (const Section& section : sections) {
    text += (text.empty() ? "" : "\n") + section.title + "\n";
    for (const Fact& fact : section.facts) {
      if (fact.text.empty()) {
        continue;
      }
      text += "  " + Padded(fact.label, width) + "  " + fact.text + "\n";
    }
  }
  return text;
}

std::string FormatTable(const std::vector<std::vector<std::string>>& rows) {
  std::vector<std::size_t> widths;
  for (const auto& row : rows) {
    widths.resize(std::max(widths.size(), row.size()));
    for (std::size_t i = 0; i < row.size(); ++i) {
      widths[i] = std::max(widths[i], Columns(row[i]));
    }
  }
  std::string text;
  for (const auto& row : rows) {
    for (std::size_t i = 0; i < row.size(); ++i) {
      const bool last = i + 1 == row.size();
      text += last ? row[i] + "\n" : Padded(row[i], widths[i]) + "  ";
    }
  }
  return text;
}

std::string Dump(const Json& json) {
  return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace vexa::tool

/** Facts that a command prints, for people or as JSON, from one description. */
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace vexa::tool {

using Json = nlohmann::ordered_json;

/** One fact. */
struct Fact {
  std::string key;   /**< Name in JSON; a unit is part of it. */
  std::string label; /**< Name for people. */
  Json value;        /**< null when the camera does not have it, or has no limit. */
  std::string text;  /**< The value for people, with its unit; empty shows the fact in JSON only. */
};

/** Facts under one heading. */
struct Section {
  std::string key;
  std::string title;
  std::vector<Fact> facts;
};

/** One object with an object per section, indented, ending with a new line. */
std::string ToJson(const std::vector<Section>& sections);

/** One heading per section and one line per fact. */
std::string ToText(const std::vector<Section>& sections);

/** Columns of text, as wide as their widest cell, two spaces apart; the first row is the heading.
 */
std::string FormatTable(const std::vector<std::vector<std::string>>& rows);

/** A JSON document, indented, ending with a new line; bytes that are not UTF-8 are replaced. */
std::string Dump(const Json& json);

}  // namespace vexa::tool

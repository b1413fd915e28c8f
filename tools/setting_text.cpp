#include "setting_text.hpp"

#include <algorithm>
#include <map>
#include <utility>

namespace vexa::tool {
namespace {

struct Setting {
  std::string section;
  std::string key;
  std::string value;
};

std::string_view Trimmed(std::string_view text) {
  constexpr std::string_view kBlank = " \t\r";
  const std::size_t begin = text.find_first_not_of(kBlank);
  return begin == std::string_view::npos
             ? std::string_view()
             : text.substr(begin, text.find_last_not_of(kBlank) - begin + 1);
}

std::string Folded(std::string_view text) {
  std::string folded(text);
  std::transform(folded.begin(), folded.end(), folded.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
  return folded;
}

using Names = std::pair<std::string, std::string>;

Names NamesOf(const Setting& setting) { return {Folded(setting.section), Folded(setting.key)}; }

/** The settings of a file in its order, without repeated ones. */
std::vector<Setting> Parse(std::string_view text) {
  std::vector<Setting> settings;
  std::map<Names, bool> seen;
  std::string_view section;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = Trimmed(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.starts_with('[')) {
      section = Trimmed(line.substr(1, std::min(line.find(']'), line.size()) - 1));
    } else if (const std::size_t equals = line.find('=');
               !line.starts_with(';') && equals != std::string_view::npos) {
      Setting setting{std::string(section), std::string(Trimmed(line.substr(0, equals))),
                      std::string(Trimmed(line.substr(equals + 1)))};
      if (!std::exchange(seen[NamesOf(setting)], true)) {
        settings.push_back(std::move(setting));
      }
    }
  }
  return settings;
}

}  // namespace

std::vector<SettingDifference> CompareSettings(std::string_view first, std::string_view second) {
  std::map<Names, std::string> others;
  const std::vector<Setting> second_settings = Parse(second);
  for (const Setting& setting : second_settings) {
    others[NamesOf(setting)] = setting.value;
  }
  std::vector<SettingDifference> differences;
  for (const Setting& setting : Parse(first)) {
    const auto other = others.find(NamesOf(setting));
    const std::string value = other == others.end() ? std::string() : other->second;
    if (value != setting.value) {
      differences.push_back({setting.section, setting.key, setting.value, value});
    }
    if (other != others.end()) {
      others.erase(other);
    }
  }
  for (const Setting& setting : second_settings) {
    if (others.contains(NamesOf(setting))) {
      differences.push_back({setting.section, setting.key, "", setting.value});
    }
  }
  return differences;
}

}  // namespace vexa::tool

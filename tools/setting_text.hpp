/** Setting files as text: sections of "key=value" lines. */
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vexa::tool {

/** One difference between two setting files; an empty value means that the file lacks the key. */
struct SettingDifference {
  std::string section;
  std::string key;
  std::string first;
  std::string second;
};

/** Compares setting files; upper and lower case of section and key names are the same, and the
 * first of several equal keys counts, as for the library.
 *  @return the differences in the order of the first file, then of the second. */
std::vector<SettingDifference> CompareSettings(std::string_view first, std::string_view second);

}  // namespace vexa::tool

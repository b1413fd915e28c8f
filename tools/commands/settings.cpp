#include <filesystem>
#include <fstream>
#include <iterator>

#include "camera.hpp"
#include "commands.hpp"
#include "output_pattern.hpp"
#include "report.hpp"
#include "setting_text.hpp"
#include "text.hpp"

namespace vexa::tool {
namespace {

using SettingFileFunction = BOOL(VEXA_CALL*)(HANDLE, const WCHAR*);

void Call(const Camera& camera, const char* name, SettingFileFunction function,
          const std::string& file) {
  // The library's own rule for a bare name differs between systems; a whole path has one meaning.
  const std::u16string units = std::filesystem::absolute(PathFromUtf8(file)).u16string();
  const std::basic_string<WCHAR> path(units.begin(), units.end());
  if (function(camera.handle(), path.c_str()) == 0) {
    throw ApiError(std::string(name) + "(\"" + file + "\")", GetLastError());
  }
}

std::string ReadText(const std::string& file) {
  std::ifstream stream(PathFromUtf8(file), std::ios::binary);
  std::string text{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
  if (!stream.is_open() || stream.bad()) {
    throw ToolError(ExitCode::kFailure, "\"" + file + "\" cannot be read",
                    "Check that the file exists and that you may read it.");
  }
  if (text.starts_with("\xFF\xFE")) {
    std::u16string units;
    for (std::size_t i = 2; i + 1 < text.size(); i += 2) {
      units += static_cast<char16_t>(static_cast<unsigned char>(text[i]) |
                                     static_cast<unsigned char>(text[i + 1]) << 8);
    }
    return Utf8FromUtf16(units);
  }
  return text.starts_with("\xEF\xBB\xBF") ? text.substr(3) : text;
}

}  // namespace

ExitCode RunSettings(const SettingsOptions& options) {
  switch (options.action) {
    case SettingsAction::kSave:
      Call(OpenCamera(options.camera), "Vexa_WriteSettingFileW", Vexa_WriteSettingFileW,
           options.file);
      return ExitCode::kSuccess;
    case SettingsAction::kLoad: {
      std::error_code error;
      if (!std::filesystem::exists(PathFromUtf8(options.file), error)) {
        // To the library a file that is not there is one without keys.
        throw ToolError(ExitCode::kUsage, "\"" + options.file + "\" does not exist",
                        "\"vexa settings save FILE\" makes a setting file.");
      }
      Call(OpenCamera(options.camera), "Vexa_ReadSettingFileW", Vexa_ReadSettingFileW,
           options.file);
      return ExitCode::kSuccess;
    }
    case SettingsAction::kDiff:
      break;
  }
  std::vector<std::vector<std::string>> rows = {{"SECTION", "KEY", "FIRST", "SECOND"}};
  for (const SettingDifference& difference :
       CompareSettings(ReadText(options.file), ReadText(options.other_file))) {
    const auto shown = [](const std::string& value) { return value.empty() ? "-" : value; };
    rows.push_back(
        {difference.section, difference.key, shown(difference.first), shown(difference.second)});
  }
  if (rows.size() == 1) {
    return ExitCode::kSuccess;
  }
  Print(FormatTable(rows));
  return ExitCode::kFailure;
}

}  // namespace vexa::tool

#include "output_pattern.hpp"

#include <algorithm>
#include <system_error>

#include "errors.hpp"
#include "text.hpp"

namespace vexa::tool {
namespace {

constexpr const char* kPatternAdvice =
    "Write the place of the frame index as %d or %04d, once, and a percent sign as %%.";
constexpr const char* kExtensionAdvice =
    "Use .bmp, .tif or .jpg for a picture, or .raw for the frame's bytes.";

struct PatternParts {
  std::string before;
  std::string after;
  int digits = 0;
};

ToolError PatternError(const std::string& pattern, const std::string& reason) {
  return {ExitCode::kUsage, "--output \"" + pattern + "\": " + reason, kPatternAdvice};
}

/** Reads the conversion at `position`, which is behind the percent sign, and moves behind it.
 *  @return its digits, or 0 when it is none. */
int ReadIndexConversion(const std::string& pattern, std::size_t& position) {
  const auto at = [&](std::size_t i) { return i < pattern.size() ? pattern[i] : '\0'; };
  if (at(position) == 'd') {
    position += 1;
    return 1;
  }
  const char width = at(position + 1);
  if (at(position) == '0' && width >= '1' && width <= '9' && at(position + 2) == 'd') {
    position += 3;
    return width - '0';
  }
  return 0;
}

PatternParts SplitPattern(const std::string& pattern) {
  PatternParts parts;
  std::string* part = &parts.before;
  for (std::size_t i = 0; i < pattern.size();) {
    const char c = pattern[i++];
    if (c != '%') {
      part->push_back(c);
    } else if (i < pattern.size() && pattern[i] == '%') {
      part->push_back('%');
      ++i;
    } else if (const int digits = ReadIndexConversion(pattern, i); digits == 0) {
      throw PatternError(pattern, "what follows a percent sign is not understood");
    } else if (parts.digits != 0) {
      throw PatternError(pattern, "the frame index has two places");
    } else {
      parts.digits = digits;
      part = &parts.after;
    }
  }
  return parts;
}

}  // namespace

FileType FileTypeOf(const std::filesystem::path& path, const std::string& subject) {
  const std::string extension = AsciiLowerCase(Utf8FromPath(path.extension()));
  if (extension == ".raw") {
    return FileType::kRaw;
  }
  if (extension == ".bmp" || extension == ".dib") {
    return FileType::kBitmap;
  }
  if (extension == ".tif" || extension == ".tiff") {
    return FileType::kTiff;
  }
  if (extension == ".jpg" || extension == ".jpeg") {
    return FileType::kJpeg;
  }
  // The library would write a bitmap under the wrong name.
  throw ToolError(ExitCode::kUsage,
                  subject + ": " +
                      (extension.size() < 2 ? "the name has no extension to choose the file type"
                                            : "\"" + extension + "\" is no image file type"),
                  kExtensionAdvice);
}

OutputPattern::OutputPattern(const std::string& pattern, std::uint32_t frames) : frames_(frames) {
  PatternParts parts = SplitPattern(pattern);
  if (parts.digits == 0 && frames > 1) {
    const std::filesystem::path path = PathFromUtf8(parts.before);
    const std::string extension = Utf8FromPath(path.extension());
    parts.before.resize(parts.before.size() - extension.size());
    parts.before += "-";
    parts.after = extension;
    parts.digits = std::max(4, static_cast<int>(std::to_string(frames).size()));
  }
  before_ = parts.before;
  after_ = parts.after;
  digits_ = parts.digits;
  type_ = FileTypeOf(PathOf(1), "--output \"" + pattern + "\"");
}

std::filesystem::path OutputPattern::PathOf(std::uint32_t index) const {
  return PathFromUtf8(digits_ == 0 ? before_ : before_ + Format("%0*u", digits_, index) + after_);
}

std::optional<std::filesystem::path> OutputPattern::FirstExisting() const {
  for (std::uint32_t index = 1; index <= frames_; ++index) {
    const std::filesystem::path path = PathOf(index);
    std::error_code error;
    if (std::filesystem::exists(path, error)) {
      return path;
    }
  }
  return std::nullopt;
}

OutputPattern CheckedOutput(const std::string& pattern, std::uint32_t frames, bool overwrite) {
  OutputPattern checked(pattern, frames);
  if (!overwrite) {
    if (const auto existing = checked.FirstExisting()) {
      throw ToolError(ExitCode::kUsage, "\"" + Utf8FromPath(*existing) + "\" exists",
                      "Choose another --output, or replace the files with --overwrite.");
    }
  }
  return checked;
}

std::filesystem::path PathFromUtf8(const std::string& text) {
  try {
    std::filesystem::path path(std::u8string(text.begin(), text.end()));
    static_cast<void>(path.u16string());  // the library takes UTF-16
    return path;
  } catch (const std::system_error&) {
    throw ToolError(ExitCode::kUsage, "the file name is not valid UTF-8",
                    "Use a file name in the encoding UTF-8.");
  }
}

std::string Utf8FromPath(const std::filesystem::path& path) {
  const std::u8string text = path.u8string();
  return {text.begin(), text.end()};
}

}  // namespace vexa::tool

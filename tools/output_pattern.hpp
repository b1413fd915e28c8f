/** File names of captured frames. */
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace vexa::tool {

/** What a file name's extension asks Vexa_SaveImageW() for. */
enum class FileType {
  kRaw,    /**< .raw: the frame's bytes as the camera sent them. */
  kBitmap, /**< .bmp, .dib. */
  kTiff,   /**< .tif, .tiff. */
  kJpeg,   /**< .jpg, .jpeg: 8 bits per channel. */
};

/** The file type that a name's extension asks for.
 *  @param subject what the user gave, for the message.
 *  @throws ToolError (kUsage) when it is the extension of no image file type. */
FileType FileTypeOf(const std::filesystem::path& path, const std::string& subject);

/** Makes a file name for every frame from the text that the user gave.
 *
 * The text may hold one place for the frame's index, written as printf() does: %d, or %0Nd with N
 * digits (1 to 9) and leading zeros; %% is a percent sign. Indexes begin with 1. Without a place
 * and with several frames, "-0001" comes before the extension, with more digits where needed. */
class OutputPattern {
 public:
  /** @param pattern UTF-8. @param frames how many names are needed.
   *  @throws ToolError (kUsage) for a pattern that cannot name the frames. */
  OutputPattern(const std::string& pattern, std::uint32_t frames);

  /** The file name of a frame. @param index from 1. */
  std::filesystem::path PathOf(std::uint32_t index) const;

  /** The first of the names that already exists; nothing when none does. */
  std::optional<std::filesystem::path> FirstExisting() const;

  FileType type() const { return type_; }

 private:
  std::string before_; /**< What comes before the index, */
  std::string after_;  /**< and what after it. */
  int digits_ = 0;     /**< Least number of digits; 0 when there is no index. */
  std::uint32_t frames_;
  FileType type_;
};

/** The names of files to write. @param pattern,frames as for OutputPattern. @param overwrite
 * whether files may be replaced. @throws ToolError (kUsage) also for a file that exists and must
 * not be. */
OutputPattern CheckedOutput(const std::string& pattern, std::uint32_t frames, bool overwrite);

/** A UTF-8 path. @throws ToolError (kUsage) when the text is not UTF-8. */
std::filesystem::path PathFromUtf8(const std::string& text);

/** A path as UTF-8. */
std::string Utf8FromPath(const std::filesystem::path& path);

}  // namespace vexa::tool

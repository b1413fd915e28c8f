/** Frames in files, as the camera sent them. */
#pragma once

#include <VexaAPI.h>

#include <cstdint>
#include <string>
#include <vector>

namespace vexa::tool {

/** How frames in files look. */
struct FileFormat {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  std::uint32_t format = 0; /**< VEXA_TRANSFER_ code. */
};

/** Checks that a file has the size of one frame.
 *  @param file   UTF-8.
 *  @param advice what the user can do when it has another size.
 *  @throws ToolError, for a file of another size and an unknown format with kUsage. */
void CheckFrameFile(const std::string& file, const FileFormat& format, const char* advice);

/** Reads a file that holds the bytes of one frame and nothing else. @param file,format,advice as
 * for CheckFrameFile(). @throws as CheckFrameFile(). */
std::vector<BYTE> ReadFrameFile(const std::string& file, const FileFormat& format,
                                const char* advice);

}  // namespace vexa::tool

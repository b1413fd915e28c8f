/** Frames in files, as the camera sent them. */
#pragma once

#include <VexaAPI.h>

#include <cstdint>
#include <string>
#include <vector>

namespace vexa::tool {

/** Reads a file that holds the bytes of one frame and nothing else.
 *  @param file   UTF-8.
 *  @param format VEXA_TRANSFER_ code.
 *  @param advice what the user can do when the file has another size.
 *  @throws ToolError, for a file of another size with kUsage. */
std::vector<BYTE> ReadFrameFile(const std::string& file, std::uint32_t width, std::uint32_t height,
                                std::uint32_t format, const char* advice);

}  // namespace vexa::tool

#include "frame_file.hpp"

#include <filesystem>
#include <fstream>
#include <ios>
#include <system_error>

#include "errors.hpp"
#include "names.hpp"
#include "output_pattern.hpp"
#include "text.hpp"

namespace vexa::tool {

std::vector<BYTE> ReadFrameFile(const std::string& file, std::uint32_t width, std::uint32_t height,
                                std::uint32_t format, const char* advice) {
  const std::filesystem::path path = PathFromUtf8(file);
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(path, error);
  if (error) {
    throw ToolError(ExitCode::kFailure, "\"" + file + "\" cannot be read",
                    "Check that the file exists and that you may read it.");
  }
  const TransferFormat* layout = FindTransferFormat(format);
  if (layout == nullptr) {
    throw ToolError(ExitCode::kUsage, Format("0x%04X is no transfer format", format),
                    "Known: " + TransferFormatNames(~0u) + ".");
  }
  const std::uint64_t expected = ImageBytes(width, height, format);
  if (size != expected) {
    throw ToolError(
        ExitCode::kUsage,
        Format("\"%s\" has %ju bytes, but %u x %u pixels in the format %s are %ju bytes",
               file.c_str(), size, width, height, layout->name, std::uintmax_t{expected}),
        advice);
  }
  std::vector<BYTE> bytes(static_cast<std::size_t>(size));
  std::ifstream stream(path, std::ios::binary);
  if (!stream.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(size))) {
    throw ToolError(ExitCode::kFailure, "\"" + file + "\" cannot be read to its end",
                    "Check the disk, and that no other program writes the file.");
  }
  return bytes;
}

}  // namespace vexa::tool

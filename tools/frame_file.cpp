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

void CheckFrameFile(const std::string& file, const FileFormat& format, const char* advice) {
  const TransferFormat* layout = FindTransferFormat(format.format);
  if (layout == nullptr) {
    throw ToolError(ExitCode::kUsage, Format("0x%04X is no transfer format", format.format),
                    "Known: " + TransferFormatNames(~0u) + ".");
  }
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(PathFromUtf8(file), error);
  if (error) {
    throw ToolError(ExitCode::kFailure, "\"" + file + "\" cannot be read",
                    "Check that the file exists and that you may read it.");
  }
  const std::uint64_t expected = ImageBytes(format.width, format.height, format.format);
  if (size != expected) {
    throw ToolError(
        ExitCode::kUsage,
        Format("\"%s\" has %ju bytes, but %u x %u pixels in the format %s are %ju bytes",
               file.c_str(), size, format.width, format.height, layout->name,
               std::uintmax_t{expected}),
        advice);
  }
}

std::vector<BYTE> ReadFrameFile(const std::string& file, const FileFormat& format,
                                const char* advice) {
  CheckFrameFile(file, format, advice);
  std::vector<BYTE> bytes(ImageMemory(format.width, format.height, format.format));
  std::ifstream stream(PathFromUtf8(file), std::ios::binary);
  if (!stream.read(reinterpret_cast<char*>(bytes.data()),
                   static_cast<std::streamsize>(bytes.size()))) {
    throw ToolError(ExitCode::kFailure, "\"" + file + "\" cannot be read to its end",
                    "Check that you may read the file, and that no other program writes it.");
  }
  return bytes;
}

}  // namespace vexa::tool

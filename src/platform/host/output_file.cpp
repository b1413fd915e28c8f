#include "platform/output_file.hpp"

#include <optional>

#include "platform/host/unicode.hpp"

namespace vexa::platform {

void FileCloser::operator()(std::FILE* file) const { std::fclose(file); }

OutputFile CreateOutputFile(const std::u16string& path) {
  const std::optional<std::string> utf8 = host::EncodeUtf8(path);
  // "e" keeps the file out of programs that the application starts meanwhile (O_CLOEXEC).
  return OutputFile(utf8 ? std::fopen(utf8->c_str(), "wbe") : nullptr);
}

}  // namespace vexa::platform

#include "platform/output_file.hpp"

#include "platform/windows/windows_api.hpp"

namespace vexa::platform {

void FileCloser::operator()(std::FILE* file) const { std::fclose(file); }

OutputFile CreateOutputFile(const std::u16string& path) {
  return OutputFile(::_wfopen(ToWideChars(path).c_str(), L"wb"));
}

}  // namespace vexa::platform

#include "platform/output_file.hpp"

#include "platform/windows/windows_api.hpp"

namespace vexa::platform {

void FileCloser::operator()(std::FILE* file) const { std::fclose(file); }

OutputFile CreateOutputFile(const std::u16string& path) {
  // A file that is created sets the last error, too.
  const DWORD last_error = ::GetLastError();
  OutputFile file(::_wfopen(ToWideChars(path).c_str(), L"wb"));
  if (file != nullptr) {
    ::SetLastError(last_error);
  }
  return file;
}

}  // namespace vexa::platform

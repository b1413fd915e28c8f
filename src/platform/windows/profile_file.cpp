#include "platform/profile_file.hpp"

#include "platform/windows/windows_api.hpp"

namespace vexa::platform {
namespace {

std::wstring Widen(const std::string& ascii) { return {ascii.begin(), ascii.end()}; }

/// The absolute form of a path; the profile functions take others for files of the Windows folder.
/// Empty when there is none, *status is then the reason.
std::wstring AbsolutePath(const std::u16string& path, Status* status) {
  const std::wstring given = ToWideChars(path);
  const DWORD size = ::GetFullPathNameW(given.c_str(), 0, nullptr, nullptr);
  std::wstring absolute(size, L'\0');
  const DWORD length =
      size == 0 ? 0 : ::GetFullPathNameW(given.c_str(), size, absolute.data(), nullptr);
  if (length == 0 || length >= size) {
    *status = LastSystemError();
    return {};
  }
  absolute.resize(length);
  return absolute;
}

}  // namespace

struct ProfileReader::Impl {
  std::wstring path;
};

ProfileReader::ProfileReader(const std::u16string& path) : impl_(std::make_unique<Impl>()) {
  Status ignored;
  impl_->path = AbsolutePath(path, &ignored);
}

ProfileReader::~ProfileReader() = default;

std::uint32_t ProfileReader::ReadInteger(const std::string& section, const std::string& key,
                                         std::uint32_t fallback) const {
  if (impl_->path.empty()) {
    return fallback;
  }
  // A missing file or key sets the last error, too.
  const DWORD last_error = ::GetLastError();
  const UINT value = ::GetPrivateProfileIntW(Widen(section).c_str(), Widen(key).c_str(),
                                             static_cast<INT>(fallback), impl_->path.c_str());
  ::SetLastError(last_error);
  return value;
}

struct ProfileWriter::Impl {
  std::wstring path;
  Status status;
};

ProfileWriter::ProfileWriter(const std::u16string& path) : impl_(std::make_unique<Impl>()) {
  impl_->path = AbsolutePath(path, &impl_->status);
}

ProfileWriter::~ProfileWriter() = default;

Status ProfileWriter::Write(const std::string& section, const std::string& key,
                            const std::string& value) {
  if (!impl_->status.ok()) {
    return impl_->status;
  }
  const DWORD last_error = ::GetLastError();
  if (!::WritePrivateProfileStringW(Widen(section).c_str(), Widen(key).c_str(),
                                    Widen(value).c_str(), impl_->path.c_str())) {
    return LastSystemError();
  }
  ::SetLastError(last_error);
  return {};
}

Status ProfileWriter::Commit() { return impl_->status; }

}  // namespace vexa::platform

#include "platform/host/file_replacement.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <random>
#include <system_error>
#include <utility>

namespace vexa::platform::host {
namespace {

constexpr int kMostLinks = 40;      // as many as the kernel follows
constexpr int kMostAttempts = 100;  // names for the new file

/// A file descriptor with its owner.
class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() {
    if (number_ >= 0) ::close(number_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  bool is_open() const { return number_ >= 0; }
  int number() const { return number_; }

 private:
  int number_;
};

Status FromErrno(int code) {
  switch (code) {
    case ENOENT:
    case ENOTDIR:
      return error::kPathNotFound;
    case EACCES:
    case EPERM:
    case EROFS:
    case EISDIR:
      return error::kAccessDenied;
    case ENOMEM:
      return error::kNotEnoughMemory;
    case ENOSPC:
    case EDQUOT:
      return error::kDiskFull;
    case ENAMETOOLONG:
    case ELOOP:
      return error::kBadPathName;
    default:
      return error::kWriteFault;
  }
}

Status LastErrno() { return FromErrno(errno); }

/// The file that a path stands for at the end of its symbolic links, also when it does not exist.
std::filesystem::path Resolve(std::filesystem::path path) {
  std::error_code failure;
  for (int links = 0; links < kMostLinks; ++links) {
    const std::filesystem::path target = std::filesystem::read_symlink(path, failure);
    if (failure) {
      break;
    }
    path = path.parent_path() / target;
  }
  return path;
}

/// A new file in a folder; removed with the object unless it has been given its final name.
class NewFile {
 public:
  NewFile(const std::filesystem::path& folder, mode_t mode) {
    std::random_device random;
    for (int attempt = 0; attempt < kMostAttempts && number_ < 0; ++attempt) {
      std::array<char, 32> name{};
      std::snprintf(name.data(), name.size(), ".vexa-%08x.tmp", random());
      path_ = folder / name.data();
      number_ = ::open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
      status_ = number_ < 0 ? LastErrno() : Status();
      if (number_ < 0 && errno != EEXIST) {
        break;
      }
    }
  }

  ~NewFile() {
    if (number_ >= 0) {
      ::close(number_);
    }
    if (status_.ok() && !renamed_) {
      ::unlink(path_.c_str());
    }
  }
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;

  Status status() const { return status_; }

  /// Takes over owner and mode. Who may not give a file away becomes its owner.
  Status CopyAttributes(const struct stat& old) {
    [[maybe_unused]] const int given = ::fchown(number_, old.st_uid, old.st_gid);
    return ::fchmod(number_, old.st_mode & 07777) == 0 ? Status() : LastErrno();
  }

  Status Write(std::string_view content) {
    while (!content.empty()) {
      const ssize_t written = ::write(number_, content.data(), content.size());
      if (written < 0 && errno != EINTR) {
        return LastErrno();
      }
      content.remove_prefix(written > 0 ? static_cast<std::size_t>(written) : 0);
    }
    return ::fsync(number_) == 0 ? Status() : LastErrno();
  }

  Status RenameTo(const std::filesystem::path& path) {
    if (::close(std::exchange(number_, -1)) != 0 || ::rename(path_.c_str(), path.c_str()) != 0) {
      return LastErrno();
    }
    renamed_ = true;
    return {};
  }

 private:
  std::filesystem::path path_;
  int number_ = -1;
  Status status_ = error::kWriteFault;
  bool renamed_ = false;
};

/// Brings the new name to the disk. File systems that cannot do that bring it there on their own.
void SyncFolder(const std::filesystem::path& folder) {
  const Descriptor descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (descriptor.is_open()) {
    static_cast<void>(::fsync(descriptor.number()));
  }
}

}  // namespace

Status ReadWholeFile(const std::string& path, std::size_t limit, std::string* content) {
  content->clear();
  // Opening a pipe would else wait for its other end.
  const Descriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  if (!file.is_open()) {
    return errno == ENOENT ? Status() : LastErrno();
  }
  struct stat information {};
  if (::fstat(file.number(), &information) != 0) {
    return LastErrno();
  }
  if (!S_ISREG(information.st_mode)) {
    return error::kAccessDenied;
  }
  std::array<char, 16384> block;
  for (;;) {
    const ssize_t count = ::read(file.number(), block.data(), block.size());
    if (count == 0) {
      return {};
    }
    if (count < 0 && errno != EINTR) {
      return error::kReadFault;
    }
    content->append(block.data(), count > 0 ? static_cast<std::size_t>(count) : 0);
    if (content->size() > limit) {
      return error::kFileTooLarge;
    }
  }
}

Status ReplaceFile(const std::string& path, std::string_view content) {
  const std::filesystem::path target = Resolve(path);
  const std::filesystem::path folder = target.has_parent_path() ? target.parent_path() : ".";
  struct stat old {};
  const bool exists = ::stat(target.c_str(), &old) == 0;
  if (exists && (!S_ISREG(old.st_mode) || ::access(target.c_str(), W_OK) != 0)) {
    return error::kAccessDenied;
  }
  // Nobody else may look into the file before it has the old one's mode.
  NewFile file(folder, exists ? 0600 : 0666);
  Status status = file.status();
  if (status.ok() && exists) {
    status = file.CopyAttributes(old);
  }
  if (status.ok()) {
    status = file.Write(content);
  }
  if (status.ok()) {
    status = file.RenameTo(target);
  }
  if (status.ok()) {
    SyncFolder(folder);
  }
  return status;
}

}  // namespace vexa::platform::host

#include "platform/profile_file.hpp"

#include <optional>
#include <utility>

#include "platform/host/file_replacement.hpp"
#include "platform/host/profile_text.hpp"
#include "platform/host/unicode.hpp"

namespace vexa::platform {
namespace {

// Some hundred times the settings of all camera models; a larger file is none of this kind.
constexpr std::size_t kLargestFile = std::size_t{4} << 20;

/// A profile file in memory.
struct Content {
  explicit Content(const std::u16string& name) : path(host::EncodeUtf8(name)) {
    std::string bytes;
    if (path) {
      status = host::ReadWholeFile(*path, kLargestFile, &bytes);
    } else {
      status = error::kBadPathName;
    }
    text.emplace(status.ok() ? std::move(bytes) : std::string());
  }

  std::optional<std::string> path;
  Status status;  // of reading it
  std::optional<host::ProfileText> text;
};

}  // namespace

struct ProfileReader::Impl {
  explicit Impl(const std::u16string& path) : content(path) {}

  Content content;
};

ProfileReader::ProfileReader(const std::u16string& path) : impl_(std::make_unique<Impl>(path)) {}

ProfileReader::~ProfileReader() = default;

std::uint32_t ProfileReader::ReadInteger(const std::string& section, const std::string& key,
                                         std::uint32_t fallback) const {
  const std::optional<std::string> value = impl_->content.text->Find(section, key);
  return value && !value->empty() ? host::ParseProfileInteger(*value) : fallback;
}

struct ProfileWriter::Impl {
  explicit Impl(const std::u16string& path) : content(path) {}

  Content content;
};

ProfileWriter::ProfileWriter(const std::u16string& path) : impl_(std::make_unique<Impl>(path)) {}

ProfileWriter::~ProfileWriter() = default;

Status ProfileWriter::Write(const std::string& section, const std::string& key,
                            const std::string& value) {
  if (impl_->content.status.ok()) {
    impl_->content.text->Set(section, key, value);
  }
  return impl_->content.status;
}

Status ProfileWriter::Commit() {
  const Content& content = impl_->content;
  return content.status.ok() ? host::ReplaceFile(*content.path, content.text->Bytes())
                             : content.status;
}

}  // namespace vexa::platform

#include "platform/registry.hpp"

#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include "platform/bytes.hpp"
#include "platform/host/registry_store.hpp"
#include "platform/status.hpp"

namespace vexa::platform {
namespace {

// What the registry answers beside the codes that the whole library knows (winerror.h).
constexpr std::uint32_t kFileNotFound = 2;   // ERROR_FILE_NOT_FOUND
constexpr std::uint32_t kMoreData = 234;     // ERROR_MORE_DATA
constexpr std::uint32_t kKeyDeleted = 1018;  // ERROR_KEY_DELETED

constexpr std::uint32_t kQueryValue = 0x0001;  // KEY_QUERY_VALUE

struct StoredKey {
  bool deleted = false;
  std::map<std::u16string, std::vector<std::uint8_t>> values;
};

using Path = std::pair<RegistryRoot, std::u16string>;

struct Store {
  std::mutex mutex;  // guards the map, the keys and their values
  std::map<Path, std::shared_ptr<StoredKey>> keys;
};

Store& TheStore() {
  static Store store;
  return store;
}

std::u16string FoldCase(std::u16string name) {
  for (char16_t& letter : name) {
    if (letter >= u'A' && letter <= u'Z') {
      letter = static_cast<char16_t>(letter - u'A' + u'a');
    }
  }
  return name;
}

/// The form in which the store knows a key: folded, without a trailing separator.
Path PathOf(RegistryRoot root, const std::u16string& subkey) {
  Path path(root, FoldCase(subkey));
  if (path.second.ends_with(u'\\')) {
    path.second.pop_back();
  }
  return path;
}

/// Null when there is no such key. The root itself, which has the empty path, always exists. The
/// caller holds the store's mutex.
std::shared_ptr<StoredKey> FindOrCreate(Store& store, const Path& path, bool create) {
  const auto found = store.keys.find(path);
  if (found != store.keys.end()) {
    return found->second;
  }
  if (!create && !path.second.empty()) {
    return nullptr;
  }
  const std::size_t separator = path.second.rfind(u'\\');
  if (separator != std::u16string::npos) {
    FindOrCreate(store, {path.first, path.second.substr(0, separator)}, true);
  }
  return store.keys.emplace(path, std::make_shared<StoredKey>()).first->second;
}

}  // namespace

struct CwRegKey::Key {
  std::shared_ptr<StoredKey> stored;
  std::uint32_t access;
};

CwRegKey::CwRegKey(RegistryRoot root, const std::u16string& subkey, std::uint32_t access,
                   bool create) {
  Store& store = TheStore();
  const std::lock_guard lock(store.mutex);
  auto stored = FindOrCreate(store, PathOf(root, subkey), create);
  if (stored != nullptr) {
    key_ = std::make_unique<Key>(Key{std::move(stored), access});
  }
}

CwRegKey::~CwRegKey() = default;

bool CwRegKey::is_open() const { return key_ != nullptr; }

std::uint32_t CwRegKey::Close() {
  if (key_ == nullptr) {
    return error::kInvalidParameter.code();
  }
  key_.reset();
  return 0;
}

std::uint32_t CwRegKey::QueryDword(const std::u16string& name, std::uint32_t* value) const {
  if (key_ == nullptr) {
    return error::kInvalidParameter.code();
  }
  if ((key_->access & kQueryValue) == 0) {
    return error::kAccessDenied.code();
  }
  const std::lock_guard lock(TheStore().mutex);
  if (key_->stored->deleted) {
    return kKeyDeleted;
  }
  const auto found = key_->stored->values.find(FoldCase(name));
  if (found == key_->stored->values.end()) {
    return kFileNotFound;
  }
  const std::vector<std::uint8_t>& data = found->second;
  std::array<std::uint8_t, 4> buffer{};
  if (data.size() > buffer.size()) {
    return kMoreData;
  }
  StoreLe32(buffer, 0, *value);
  std::copy(data.begin(), data.end(), buffer.begin());
  *value = LoadLe32(buffer, 0);
  return 0;
}

namespace host {

void SetRegistryValue(RegistryRoot root, const std::u16string& subkey, const std::u16string& name,
                      std::span<const std::uint8_t> data) {
  Store& store = TheStore();
  const std::lock_guard lock(store.mutex);
  FindOrCreate(store, PathOf(root, subkey), true)
      ->values[FoldCase(name)]
      .assign(data.begin(), data.end());
}

void SetRegistryDword(RegistryRoot root, const std::u16string& subkey, const std::u16string& name,
                      std::uint32_t value) {
  std::array<std::uint8_t, 4> data{};
  StoreLe32(data, 0, value);
  SetRegistryValue(root, subkey, name, data);
}

void DeleteRegistryValue(RegistryRoot root, const std::u16string& subkey,
                         const std::u16string& name) {
  Store& store = TheStore();
  const std::lock_guard lock(store.mutex);
  if (const auto key = FindOrCreate(store, PathOf(root, subkey), false)) {
    key->values.erase(FoldCase(name));
  }
}

void DeleteRegistryKey(RegistryRoot root, const std::u16string& subkey) {
  Store& store = TheStore();
  const std::lock_guard lock(store.mutex);
  const Path path = PathOf(root, subkey);
  std::erase_if(store.keys, [&path](const auto& entry) {
    const auto& [entry_root, entry_path] = entry.first;
    const bool inside = entry_root == path.first &&
                        (entry_path == path.second || entry_path.starts_with(path.second + u'\\'));
    entry.second->deleted |= inside;
    return inside;
  });
}

}  // namespace host
}  // namespace vexa::platform

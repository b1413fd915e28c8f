/// \file
/// Read access to the registry; on systems without one, to an in-process store of the same shape.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace vexa::platform {

enum class RegistryRoot { kCurrentUser, kLocalMachine };

inline constexpr std::uint32_t kRegistryRead = 0x20019;  // KEY_READ

/// An open registry key.
class CwRegKey {
 public:
  /// Opens the key, or with `create` creates or opens it (non-volatile, default security). A
  /// failure leaves the object without a key.
  CwRegKey(RegistryRoot root, const std::u16string& subkey, std::uint32_t access, bool create);
  virtual ~CwRegKey();  // closes
  CwRegKey(const CwRegKey&) = delete;
  CwRegKey& operator=(const CwRegKey&) = delete;

  bool is_open() const;

  /// Closes the key and returns the registry's result; 87 when none is open.
  std::uint32_t Close();

  /// Reads a value of up to four bytes into a buffer that starts with *value. 0: *value is what
  /// the buffer then holds. 87 when no key is open, else the registry's code; *value is then
  /// unchanged. The type of the value is not checked.
  std::uint32_t QueryDword(const std::u16string& name, std::uint32_t* value) const;

 private:
  struct Key;
  std::unique_ptr<Key> key_;
};

}  // namespace vexa::platform

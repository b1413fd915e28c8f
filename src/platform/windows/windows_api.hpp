/// \file
/// windows.h and the little that all files of this back end need around it.
#pragma once

#include <windows.h>

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include "platform/event.hpp"
#include "platform/status.hpp"

namespace vexa::platform {

inline Status LastSystemError() { return Status(::GetLastError()); }

/// The two types of UTF-16 code units differ for the language though not in memory, so text is
/// copied between them.
inline std::wstring ToWideChars(const std::u16string& text) { return {text.begin(), text.end()}; }

/// Owner of a kernel object's handle; null when it owns none.
class UniqueHandle {
 public:
  UniqueHandle() = default;
  explicit UniqueHandle(HANDLE handle) : handle_(handle) {}
  ~UniqueHandle() {
    if (handle_ != nullptr) ::CloseHandle(handle_);
  }
  UniqueHandle(UniqueHandle&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  UniqueHandle& operator=(UniqueHandle&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }

  HANDLE get() const { return handle_; }

 private:
  HANDLE handle_ = nullptr;
};

struct Waitable::Impl {
  UniqueHandle handle;
};

}  // namespace vexa::platform

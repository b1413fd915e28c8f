#include "platform/mutex.hpp"

#include <new>

#include "platform/windows/windows_api.hpp"

namespace vexa::platform {

struct Mutex::Impl {
  Impl() {
    // The plain InitializeCriticalSection raises a structured exception on XP when memory is low.
    if (!::InitializeCriticalSectionAndSpinCount(&section, 0)) {
      throw std::bad_alloc();
    }
  }
  ~Impl() { ::DeleteCriticalSection(&section); }
  Impl(const Impl&) = delete;
  Impl& operator=(const Impl&) = delete;

  CRITICAL_SECTION section;
};

Mutex::Mutex() : impl_(std::make_unique<Impl>()) {}
Mutex::~Mutex() = default;

void Mutex::lock() { ::EnterCriticalSection(&impl_->section); }
void Mutex::unlock() { ::LeaveCriticalSection(&impl_->section); }

}  // namespace vexa::platform

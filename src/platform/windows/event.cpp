#include "platform/event.hpp"

#include <array>
#include <cstdlib>
#include <new>
#include <stdexcept>
#include <utility>

#include "platform/windows/windows_api.hpp"

namespace vexa::platform {

static_assert(kInfinite == INFINITE);

Waitable::Waitable(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
Waitable::~Waitable() = default;

Event::Event(Initially initially) : Waitable(std::make_unique<Impl>()) {
  constexpr BOOL kManualReset = TRUE;
  impl().handle = UniqueHandle(
      ::CreateEventW(nullptr, kManualReset, initially == Initially::kSignalled, nullptr));
  if (impl().handle.get() == nullptr) {
    throw std::bad_alloc();
  }
}

Event::~Event() = default;

void Event::Set() { ::SetEvent(impl().handle.get()); }
void Event::Reset() { ::ResetEvent(impl().handle.get()); }
bool Event::IsSet() const { return Wait(*this, 0); }

WaitResult WaitAny(std::initializer_list<const Waitable*> objects, std::uint32_t timeout_ms) {
  if (objects.size() == 0 || objects.size() > kMaxWaitObjects) {
    throw std::length_error("WaitAny takes 1 to 8 objects");
  }
  std::array<HANDLE, kMaxWaitObjects> handles{};
  DWORD count = 0;
  for (const Waitable* object : objects) {
    handles[count++] = object->impl().handle.get();
  }
  const DWORD answer = ::WaitForMultipleObjects(count, handles.data(), FALSE, timeout_ms);
  if (answer < WAIT_OBJECT_0 + count) {
    return {answer - WAIT_OBJECT_0};
  }
  if (answer != WAIT_TIMEOUT) {
    // Only a handle that somebody else has closed leads here. Going on would hand buffers to the
    // application that the driver still writes to.
    std::abort();
  }
  return {};
}

}  // namespace vexa::platform

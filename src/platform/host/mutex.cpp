#include "platform/mutex.hpp"

#include <mutex>

namespace vexa::platform {

struct Mutex::Impl {
  std::recursive_mutex mutex;
};

Mutex::Mutex() : impl_(std::make_unique<Impl>()) {}
Mutex::~Mutex() = default;

void Mutex::lock() { impl_->mutex.lock(); }
void Mutex::unlock() { impl_->mutex.unlock(); }

}  // namespace vexa::platform

#include "platform/windows/completion.hpp"

namespace vexa::platform {

Completion::Completion(Event::Initially initially)
    : done_(initially), native_(std::make_unique<Native>()) {
  native_->overlapped.hEvent = done_.impl().handle.get();
}

Completion::~Completion() = default;

}  // namespace vexa::platform

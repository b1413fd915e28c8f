#include "platform/driver.hpp"

namespace vexa::platform {

/// Drivers in process need nothing beside the event.
struct Completion::Native {};

Completion::Completion(Event::Initially initially)
    : done_(initially), native_(std::make_unique<Native>()) {}
Completion::~Completion() = default;

}  // namespace vexa::platform

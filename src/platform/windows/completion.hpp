/// \file
/// The kernel's side of a request in flight.
#pragma once

#include "platform/driver.hpp"
#include "platform/windows/windows_api.hpp"

namespace vexa::platform {

/// Bound to the completion's event for good; the rest belongs to the request in flight.
struct Completion::Native {
  OVERLAPPED overlapped{};
};

}  // namespace vexa::platform

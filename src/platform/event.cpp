#include "platform/event.hpp"

namespace vexa::platform {

bool Wait(const Waitable& object, std::uint32_t timeout_ms) {
  return !WaitAny({&object}, timeout_ms).timed_out();
}

}  // namespace vexa::platform

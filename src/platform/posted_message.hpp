/// \file
/// Posting messages to an application's window.
#pragma once

#include <cstdint>

namespace vexa::platform {

/// Posts a message to a window (PostMessageA) or, on systems without windows, to the message
/// queue behind the value. Does not wait; a queue that is full or gone swallows the message.
void PostWindowMessage(void* window, std::uint32_t message, std::uintptr_t wparam,
                       std::intptr_t lparam);

}  // namespace vexa::platform

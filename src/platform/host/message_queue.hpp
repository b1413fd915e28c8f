/// \file
/// The message queues that stand in for windows. A queue is named by a number that is never used
/// again, so that a post to a queue that is gone cannot reach another one.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/status.hpp"

namespace vexa::platform::host {

/// What a queue holds before further posts are lost: the posted-message limit of Windows.
inline constexpr std::size_t kMessageQueueCapacity = 10'000;

/// ERROR_INVALID_WINDOW_HANDLE.
inline constexpr Status kInvalidWindowHandle{1400};

struct Message {
  std::uint32_t number = 0;
  std::uintptr_t wparam = 0;
  std::intptr_t lparam = 0;
};

/// A new, empty queue. Throws std::bad_alloc.
void* CreateMessageQueue();

/// Removes a queue and releases the threads that wait for it; 1400 when there is no such queue.
Status DestroyMessageQueue(void* queue);

/// Takes the oldest message, waiting for one at most timeout_ms (kInfinite: without limit). 258
/// when the time ran out, 1400 when there is no such queue or when it is destroyed meanwhile.
Status WaitForMessage(void* queue, std::uint32_t timeout_ms, Message* message);

}  // namespace vexa::platform::host

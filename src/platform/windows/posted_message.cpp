#include "platform/posted_message.hpp"

#include <windows.h>

namespace vexa::platform {

void PostWindowMessage(void* window, std::uint32_t message, std::uintptr_t wparam,
                       std::intptr_t lparam) {
  ::PostMessageA(static_cast<HWND>(window), message, wparam, lparam);
}

}  // namespace vexa::platform

#include <new>

#include "VexaAPI.h"
#include "VexaHost.h"
#include "platform/drawing_surface.hpp"
#include "platform/host/drawing_surface.hpp"
#include "platform/host/message_queue.hpp"
#include "platform/last_error.hpp"

namespace {

namespace host = vexa::platform::host;

static_assert(VEXA_HOST_QUEUE_CAPACITY == host::kMessageQueueCapacity);

BOOL Report(vexa::Status status) {
  if (status.ok()) {
    return TRUE;
  }
  vexa::platform::SetLastErrorCode(status);
  return FALSE;
}

}  // namespace

DWORD GetLastError() { return vexa::platform::LastErrorCode().code(); }

void SetLastError(DWORD code) { vexa::platform::SetLastErrorCode(vexa::Status(code)); }

HWND VexaHost_CreateMessageQueue() {
  try {
    return static_cast<HWND>(host::CreateMessageQueue());
  } catch (const std::bad_alloc&) {
    Report(vexa::error::kNotEnoughMemory);
    return nullptr;
  }
}

BOOL VexaHost_WaitMessage(HWND queue, VexaHostMessage* message, DWORD timeout_ms) {
  if (message == nullptr) {
    return Report(vexa::error::kInvalidParameter);
  }
  host::Message taken;
  const vexa::Status status = host::WaitForMessage(queue, timeout_ms, &taken);
  if (status.ok()) {
    *message = {.message = taken.number, .wparam = taken.wparam, .lparam = taken.lparam};
  }
  return Report(status);
}

BOOL VexaHost_DestroyMessageQueue(HWND queue) { return Report(host::DestroyMessageQueue(queue)); }

HDC VexaHost_CreateSurface(DWORD width, DWORD height) {
  try {
    void* surface = host::CreateSurface(width, height);
    if (surface == nullptr) {
      Report(vexa::error::kInvalidParameter);
    }
    return static_cast<HDC>(surface);
  } catch (const std::bad_alloc&) {
    Report(vexa::error::kNotEnoughMemory);
    return nullptr;
  }
}

BOOL VexaHost_ReadSurface(HDC surface, BYTE* pixels, size_t size) {
  return Report(pixels == nullptr ? vexa::error::kInvalidParameter
                                  : host::ReadSurface(surface, {pixels, size}));
}

int VexaHost_GetStretchMode(HDC surface) { return host::StretchModeOf(surface); }

int VexaHost_SetStretchMode(HDC surface, int mode) {
  return vexa::platform::SetStretchMode(surface, mode);
}

BOOL VexaHost_DestroySurface(HDC surface) { return Report(host::DestroySurface(surface)); }

// Model, capabilities, and what follows from them.

#include <algorithm>
#include <string>
#include <string_view>

#include "VexaAPI.h"
#include "camera/vexa_camera.hpp"
#include "device/models.hpp"
#include "exports/call_frame.hpp"
#include "platform/text.hpp"

using vexa::Status;
using vexa::camera::CVexaCamera;
using namespace vexa::exports;  // NOLINT(google-build-using-namespace): the frame of every function

namespace {

// Copies a string with its terminator into a buffer of `capacity` units; an empty string when it
// does not fit.
template <typename Unit, typename Text>
Status CopyString(const Text& text, Unit* buffer, std::size_t capacity) {
  if (buffer == nullptr) {
    return vexa::error::kInvalidParameter;
  }
  if (capacity <= text.size()) {
    if (capacity > 0) {
      buffer[0] = 0;
    }
    return vexa::error::kInsufficientBuffer;
  }
  std::transform(text.begin(), text.end(), buffer,
                 [](auto unit) { return static_cast<Unit>(unit); });
  buffer[text.size()] = 0;
  return {};
}

}  // namespace

BOOL VEXA_CALL Vexa_HasFunction(HANDLE camera, DWORD function, BOOL* present) {
  Clear(present);
  return CallCamera(camera, [&](CVexaCamera& self) {
    return Give(present, self.identity().HasFunction(function) ? TRUE : FALSE);
  });
}

BOOL VEXA_CALL Vexa_GetCameraVersion(HANDLE camera, WORD* version, WORD* product_id, WORD* variant,
                                     WORD* firmware) {
  return CallCamera(camera, [&](CVexaCamera& self) {
    Store(version, self.identity().version_word_a());
    Store(product_id, self.identity().product_id());
    Store(variant, self.identity().variant());
    Store(firmware, self.identity().firmware());
    return Status();
  });
}

BOOL VEXA_CALL Vexa_GetProductNameW(HANDLE camera, WCHAR* buffer, DWORD size) {
  return CallCamera(camera, [&](CVexaCamera& self) {
    return CopyString(vexa::device::FindModel(self.identity().product_id()).name, buffer,
                      size / sizeof(WCHAR));
  });
}

int VEXA_CALL Vexa_GetProductNameA(HANDLE camera, CHAR* buffer, DWORD size) {
  int written = 0;
  CallCamera(camera, [&](CVexaCamera& self) {
    const std::u16string name(vexa::device::FindModel(self.identity().product_id()).name);
    std::string narrow;
    Status status = vexa::platform::ToNarrow(name, &narrow);
    if (status.ok()) {
      status = CopyString(narrow, buffer, size);
    }
    if (status.ok()) {
      written = static_cast<int>(narrow.size()) + 1;
    }
    return status;
  });
  return written;
}

BOOL VEXA_CALL Vexa_GetMaximumImageSize(HANDLE camera, DWORD* width, DWORD* height) {
  return CallCamera(camera, [&](CVexaCamera& self) {
    Store(width, self.identity().max_width());
    Store(height, self.identity().max_height());
    return Status();
  });
}

BOOL VEXA_CALL Vexa_GetEnableTransferBitsPerPixel(HANDLE camera, DWORD* mask) {
  return CallCamera(camera, [&](CVexaCamera& self) {
    return Give(mask, self.identity().transfer_format_mask());
  });
}

BOOL VEXA_CALL Vexa_GetEnableScanMode(HANDLE camera, WORD* mask) {
  return CallCamera(
      camera, [&](CVexaCamera& self) { return Give(mask, self.identity().scan_mode_mask()); });
}

BOOL VEXA_CALL Vexa_GetEnableClockMode(HANDLE camera, DWORD* mask) {
  return CallCamera(
      camera, [&](CVexaCamera& self) { return Give(mask, self.identity().clock_mode_mask()); });
}

BOOL VEXA_CALL Vexa_GetColorArray(HANDLE camera, WORD* color_array) {
  return CallCamera(
      camera, [&](CVexaCamera& self) { return Give(color_array, self.mirror().ColorArray()); });
}

BOOL VEXA_CALL Vexa_SetMirrorMode(HANDLE camera, BYTE mode) {
  return CallCamera(camera, [&](CVexaCamera& self) { return self.mirror().Set(mode); });
}

BOOL VEXA_CALL Vexa_GetMirrorMode(HANDLE camera, BYTE* mode) {
  Clear(mode);
  return CallCamera(camera, [&](CVexaCamera& self) {
    std::uint8_t value = 0;
    const Status status = self.mirror().Get(&value);
    return status.ok() ? Give(mode, value) : status;
  });
}

// Camera memory and user ID.

#include <algorithm>

#include "VexaAPI.h"
#include "camera/vexa_camera.hpp"
#include "device/user_id.hpp"
#include "exports/call_frame.hpp"

using vexa::Status;
using vexa::camera::CVexaCamera;
using vexa::device::MemoryAccess;
using vexa::device::TextForm;
using vexa::device::UserId;
using namespace vexa::exports;  // NOLINT(google-build-using-namespace): the frame of every function

namespace {

BOOL AccessRam(HANDLE camera, MemoryAccess access, WORD first, WORD last, BYTE* buffer,
               DWORD* transferred) {
  return CallCamera(camera, [&](CVexaCamera& self) {
    if (buffer == nullptr && first <= last) {
      return vexa::error::kInvalidParameter;
    }
    std::uint32_t total = 0;
    const Status status = self.memory().AccessRam(access, first, last, buffer, &total);
    if (status.ok()) {
      Store(transferred, total);
    }
    return status;
  });
}

BOOL AccessUserMemory(HANDLE camera, MemoryAccess access, BYTE* buffer, WORD offset, WORD length) {
  return CallCamera(camera, [&](CVexaCamera& self) {
    if (buffer == nullptr && length != 0) {
      return vexa::error::kInvalidParameter;
    }
    return self.memory().AccessUserMemory(access, offset, {buffer, length});
  });
}

// Texts of both widths are bytes from here on; wide ones are little-endian on every system that the
// library runs on.
template <typename Unit>
BOOL ReadUserId(HANDLE camera, TextForm form, DWORD* number, Unit* buffer, DWORD size) {
  return CallCamera(camera, [&](CVexaCamera& self) {
    if (buffer == nullptr && size != 0) {
      return vexa::error::kInvalidParameter;
    }
    const std::span<std::uint8_t> bytes(reinterpret_cast<std::uint8_t*>(buffer), size);
    std::ranges::fill(bytes, std::uint8_t{0});
    UserId user_id;
    const Status status = user_id.Read(self.memory());
    if (!status.ok()) {
      return status;
    }
    Store(number, user_id.number());
    return user_id.CopyText(bytes, form);
  });
}

template <typename Unit>
BOOL WriteUserId(HANDLE camera, TextForm form, DWORD number, const Unit* text, DWORD size) {
  return CallCamera(camera, [&](CVexaCamera& self) {
    const std::span<const std::uint8_t> bytes(reinterpret_cast<const std::uint8_t*>(text),
                                              text == nullptr ? 0 : size);
    return UserId(number, bytes, form).Write(self.memory());
  });
}

}  // namespace

BOOL VEXA_CALL Vexa_ReadRAM(HANDLE camera, WORD first, WORD last, BYTE* buffer,
                            DWORD* transferred) {
  return AccessRam(camera, MemoryAccess::kRead, first, last, buffer, transferred);
}

BOOL VEXA_CALL Vexa_WriteRAM(HANDLE camera, WORD first, WORD last, BYTE* buffer,
                             DWORD* transferred) {
  return AccessRam(camera, MemoryAccess::kWrite, first, last, buffer, transferred);
}

BOOL VEXA_CALL Vexa_ReadUserMemory(HANDLE camera, BYTE* buffer, WORD offset, WORD length) {
  return AccessUserMemory(camera, MemoryAccess::kRead, buffer, offset, length);
}

BOOL VEXA_CALL Vexa_WriteUserMemory(HANDLE camera, BYTE* buffer, WORD offset, WORD length) {
  return AccessUserMemory(camera, MemoryAccess::kWrite, buffer, offset, length);
}

BOOL VEXA_CALL Vexa_ReadCameraUserIDW(HANDLE camera, DWORD* user_id, WCHAR* buffer, DWORD size) {
  return ReadUserId(camera, TextForm::kWide, user_id, buffer, size);
}

BOOL VEXA_CALL Vexa_ReadCameraUserIDA(HANDLE camera, DWORD* user_id, CHAR* buffer, DWORD size) {
  return ReadUserId(camera, TextForm::kNarrow, user_id, buffer, size);
}

BOOL VEXA_CALL Vexa_WriteCameraUserIDW(HANDLE camera, DWORD user_id, const WCHAR* text,
                                       DWORD size) {
  return WriteUserId(camera, TextForm::kWide, user_id, text, size);
}

BOOL VEXA_CALL Vexa_WriteCameraUserIDA(HANDLE camera, DWORD user_id, const CHAR* text, DWORD size) {
  return WriteUserId(camera, TextForm::kNarrow, user_id, text, size);
}

// Image transfer and notifications.

#include <algorithm>
#include <span>

#include "VexaAPI.h"
#include "camera/vexa_camera.hpp"
#include "exports/call_frame.hpp"

using vexa::Status;
using vexa::camera::CVexaCamera;
using vexa::transfer::ReceiveRecord;
using namespace vexa::exports;  // NOLINT(google-build-using-namespace): the frame of every function

BOOL VEXA_CALL Vexa_StartTransfer(HANDLE camera) {
  return CallCamera(camera, [](CVexaCamera& self) { return self.transfer().Start(); });
}

BOOL VEXA_CALL Vexa_StopTransfer(HANDLE camera) {
  return CallCamera(camera, [](CVexaCamera& self) { return self.transfer().Stop(); });
}

BOOL VEXA_CALL Vexa_SetTimeOut(HANDLE camera, DWORD index, DWORD milliseconds) {
  return CallCamera(camera,
                    [&](CVexaCamera& self) { return self.time_outs().Set(index, milliseconds); });
}

BOOL VEXA_CALL Vexa_GetTimeOut(HANDLE camera, DWORD index, DWORD* milliseconds) {
  return CallCamera(camera, [&](CVexaCamera& self) {
    std::uint32_t value = 0;
    const Status status = self.time_outs().Get(index, &value);
    return status.ok() ? Give(milliseconds, value) : status;
  });
}

BOOL VEXA_CALL Vexa_SetExposureEndCallback(HANDLE camera, VEXA_EXPOSURE_END_CALLBACK callback,
                                           void* context) {
  return CallCamera(camera, [&](CVexaCamera& self) {
    self.notifier().SetExposureEndCallback(callback, context);
    return Status();
  });
}

BOOL VEXA_CALL Vexa_SetTransferEndCallback(HANDLE camera, VEXA_TRANSFER_END_CALLBACK callback,
                                           void* context) {
  return CallCamera(camera, [&](CVexaCamera& self) {
    self.notifier().SetTransferEndCallback(callback, context);
    return Status();
  });
}

BOOL VEXA_CALL Vexa_SetRcvErrorCallback(HANDLE camera, VEXA_RCV_ERROR_CALLBACK callback,
                                        void* context) {
  return CallCamera(camera, [&](CVexaCamera& self) {
    self.notifier().SetReceiveErrorCallback(callback, context);
    return Status();
  });
}

BOOL VEXA_CALL Vexa_SetRcvMsgWnd(HANDLE camera, HWND window) {
  return CallCamera(camera, [&](CVexaCamera& self) {
    self.notifier().SetWindow(window);
    return Status();
  });
}

BOOL VEXA_CALL Vexa_SetRawSnapShotBufferCount(HANDLE camera, DWORD count) {
  return CallCamera(camera, [&](CVexaCamera& self) {
    self.snapshot().SetBufferCount(count, self.transfer().ImageSize());
    return Status();
  });
}

BOOL VEXA_CALL Vexa_TakeRawSnapShot(HANDLE camera, BYTE* buffer, DWORD buffer_size,
                                    DWORD* bytes_copied, DWORD* frame_number, DWORD timeout) {
  return CallCamera(camera, [&](CVexaCamera& self) {
    if (buffer == nullptr && buffer_size != 0) {
      return vexa::error::kInvalidParameter;
    }
    vexa::transfer::TakenFrame taken;
    const Status status = self.transfer().TakeSnapshot({buffer, buffer_size}, timeout, &taken);
    if (status.ok()) {
      Store(bytes_copied, taken.size);
      Store(frame_number, taken.number);
    }
    return status;
  });
}

BOOL VEXA_CALL Vexa_GetLastLostFrameDataSize(HANDLE camera, DWORD* size) {
  Clear(size);
  CallCamera(camera,
             [&](CVexaCamera& self) { return Give(size, self.transfer().record().data_size()); });
  return FALSE;
}

BOOL VEXA_CALL Vexa_GetLastLostFrameHeader(HANDLE camera, BYTE* header) {
  if (header != nullptr) {
    std::fill_n(header, ReceiveRecord::kHeaderSize, BYTE{0});
  }
  CallCamera(camera, [&](CVexaCamera& self) {
    if (header == nullptr) {
      return vexa::error::kInvalidParameter;
    }
    self.transfer().record().CopyHeader(
        std::span<BYTE, ReceiveRecord::kHeaderSize>(header, ReceiveRecord::kHeaderSize));
    return Status();
  });
  return FALSE;
}

DWORD VEXA_CALL Vexa_SetTransferMode(HANDLE camera, DWORD mode) {
  DWORD stored = 0;
  CallCamera(camera, [&](CVexaCamera& self) {
    self.transfer_mode() = mode;
    stored = mode;
    return Status();
  });
  return stored;
}

BOOL VEXA_CALL Vexa_GetTransferMode(HANDLE camera, DWORD* mode) {
  return CallCamera(camera,
                    [&](CVexaCamera& self) { return Give(mode, self.transfer_mode().load()); });
}

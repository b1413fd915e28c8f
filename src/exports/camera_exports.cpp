// Open, close and version.

#include <memory>

#include "VexaAPI.h"
#include "camera/vexa_camera.hpp"
#include "device/driver_requests.hpp"
#include "exports/call_frame.hpp"
#include "platform/driver.hpp"
#include "platform/system_info.hpp"

using vexa::Status;
using vexa::camera::CVexaCamera;
using namespace vexa::exports;  // NOLINT(google-build-using-namespace): the frame of every function

HANDLE VEXA_CALL Vexa_Open(void) {
  HANDLE handle = INVALID_HANDLE_VALUE;
  Call([&] {
    auto camera = std::make_unique<CVexaCamera>();
    const Status status = camera->Open(vexa::platform::CurrentDriver());
    if (status.ok()) {
      handle = camera.release();  // the application owns it until Vexa_Close
    }
    return status;
  });
  return handle;
}

void VEXA_CALL Vexa_Close(HANDLE camera) {
  if (!IsValid(camera)) {
    return;
  }
  CallCamera(camera, [](CVexaCamera& self) {
    if (self.transfer().OnTransferThread()) {
      return vexa::error::kPossibleDeadlock;
    }
    const std::unique_ptr<CVexaCamera> owner(&self);
    return owner->transfer().Stop();
  });
}

BOOL VEXA_CALL Vexa_GetDllVersion(DWORD* file_high, DWORD* file_low, DWORD* product_high,
                                  DWORD* product_low) {
  const LastErrorGuard guard;
  vexa::platform::ModuleVersion version;
  try {
    version = vexa::platform::ReadModuleVersion();
  } catch (const std::bad_alloc&) {
    version = {};  // reported as zeros, like every other failure here
  }
  Store(file_high, version.file_high);
  Store(file_low, version.file_low);
  Store(product_high, version.product_high);
  Store(product_low, version.product_low);
  return TRUE;
}

BOOL VEXA_CALL Vexa_CameraSetting(HANDLE camera, WORD command) {
  return CallCamera(camera, [&](CVexaCamera& self) { return self.SendCameraSetting(command); });
}

BOOL VEXA_CALL Vexa_GetUSBSpeed(HANDLE camera, BYTE* speed) {
  Clear(speed);
  return CallCamera(camera, [&](CVexaCamera& self) {
    vexa::device::UsbSpeed value{};
    const Status status = vexa::device::GetUsbSpeed(self.channel().device(), &value);
    return status.ok() ? Give(speed, value) : status;
  });
}

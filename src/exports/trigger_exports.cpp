// Trigger and I/O settings, software triggers.

#include "VexaAPI.h"
#include "camera/vexa_camera.hpp"
#include "exports/call_frame.hpp"

using vexa::Status;
using vexa::camera::CVexaCamera;
using vexa::settings::IoRegister;
using namespace vexa::exports;  // NOLINT(google-build-using-namespace): the frame of every function

namespace {

BOOL SetIo(HANDLE camera, IoRegister io_register, DWORD value) {
  return CallCamera(camera,
                    [&](CVexaCamera& self) { return self.trigger_io().Set(io_register, value); });
}

// Runs a getter that sets a 32-bit value to 0 before it reads it.
template <typename Getter>
BOOL GetValue(HANDLE camera, DWORD* output, Getter&& getter) {
  return CallGetter<std::uint32_t>(camera, output, [&](CVexaCamera& self, std::uint32_t* value) {
    return getter(self.trigger_io(), value);
  });
}

BOOL GetIo(HANDLE camera, IoRegister io_register, DWORD* output) {
  return GetValue(camera, output, [&](vexa::settings::TriggerIo& trigger_io, std::uint32_t* value) {
    return trigger_io.Get(io_register, value);
  });
}

}  // namespace

BOOL VEXA_CALL Vexa_SetTriggerMode(HANDLE camera, DWORD mode) {
  return CallCamera(camera,
                    [&](CVexaCamera& self) { return self.trigger_io().SetTriggerMode(mode); });
}

BOOL VEXA_CALL Vexa_GetTriggerMode(HANDLE camera, DWORD* mode) {
  return GetValue(camera, mode, [](vexa::settings::TriggerIo& trigger_io, std::uint32_t* value) {
    return trigger_io.GetTriggerMode(value);
  });
}

BOOL VEXA_CALL Vexa_SetTriggerTiming(HANDLE camera, DWORD id, DWORD value) {
  return CallCamera(
      camera, [&](CVexaCamera& self) { return self.trigger_io().SetTriggerTiming(id, value); });
}

BOOL VEXA_CALL Vexa_GetTriggerTiming(HANDLE camera, DWORD id, DWORD* value) {
  return GetValue(camera, value, [&](vexa::settings::TriggerIo& trigger_io, std::uint32_t* read) {
    return trigger_io.GetTriggerTiming(id, read);
  });
}

BOOL VEXA_CALL Vexa_SetIOPinDirection(HANDLE camera, DWORD word) {
  return SetIo(camera, IoRegister::kPinDirection, word);
}

BOOL VEXA_CALL Vexa_GetIOPinDirection(HANDLE camera, DWORD* word) {
  return GetIo(camera, IoRegister::kPinDirection, word);
}

BOOL VEXA_CALL Vexa_SetIOPinPolarity(HANDLE camera, DWORD word) {
  return SetIo(camera, IoRegister::kPinPolarity, word);
}

BOOL VEXA_CALL Vexa_GetIOPinPolarity(HANDLE camera, DWORD* word) {
  return GetIo(camera, IoRegister::kPinPolarity, word);
}

BOOL VEXA_CALL Vexa_SetIOPinStatus(HANDLE camera, DWORD word) {
  return SetIo(camera, IoRegister::kPinStatus, word);
}

BOOL VEXA_CALL Vexa_GetIOPinStatus(HANDLE camera, DWORD* word) {
  return GetIo(camera, IoRegister::kPinStatus, word);
}

BOOL VEXA_CALL Vexa_SetIOPinMode(HANDLE camera, DWORD pin, DWORD mode) {
  return CallCamera(camera,
                    [&](CVexaCamera& self) { return self.trigger_io().SetPinMode(pin, mode); });
}

BOOL VEXA_CALL Vexa_GetIOPinMode(HANDLE camera, DWORD pin, DWORD* mode) {
  return GetValue(camera, mode, [&](vexa::settings::TriggerIo& trigger_io, std::uint32_t* value) {
    return trigger_io.GetPinMode(pin, value);
  });
}

BOOL VEXA_CALL Vexa_GetSwStatus(HANDLE camera, DWORD* word) {
  return GetIo(camera, IoRegister::kSoftwareStatus, word);
}

BOOL VEXA_CALL Vexa_SetLEDStatus(HANDLE camera, DWORD value) {
  return SetIo(camera, IoRegister::kLed, value);
}

BOOL VEXA_CALL Vexa_GetLEDStatus(HANDLE camera, DWORD* value) {
  return GetIo(camera, IoRegister::kLed, value);
}

BOOL VEXA_CALL Vexa_SoftTrigger(HANDLE camera) {
  return CallCamera(camera, [](CVexaCamera& self) { return self.triggers().SoftTrigger(); });
}

BOOL VEXA_CALL Vexa_SoftSubTrigger(HANDLE camera) {
  return CallCamera(camera, [](CVexaCamera& self) { return self.triggers().SoftSubTrigger(); });
}

BOOL VEXA_CALL Vexa_ReadSDRAMTrigger(HANDLE camera) {
  return CallCamera(camera, [](CVexaCamera& self) { return self.triggers().ReadSdram(); });
}

BOOL VEXA_CALL Vexa_TriggerReadOut(HANDLE camera) {
  return CallCamera(camera, [](CVexaCamera& self) { return self.triggers().TriggerReadOut(); });
}

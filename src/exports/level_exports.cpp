// Automatic level control.

#include "VexaAPI.h"
#include "camera/vexa_camera.hpp"
#include "exports/call_frame.hpp"

using vexa::Status;
using vexa::camera::CVexaCamera;
using vexa::settings::LevelControl;
using namespace vexa::exports;  // NOLINT(google-build-using-namespace): the frame of every function

namespace {

template <typename Value>
using Setter = Status (LevelControl::*)(Value);
template <typename Value>
using Getter = Status (LevelControl::*)(Value*);

template <typename Value>
BOOL Set(HANDLE camera, Setter<Value> set, DWORD value) {
  return CallCamera(camera, [&](CVexaCamera& self) {
    return (self.level_control().*set)(static_cast<Value>(value));  // the low bits count
  });
}

template <typename Value, typename Output>
BOOL Get(HANDLE camera, Getter<Value> get, Output* output) {
  return CallGetter<Value>(camera, output, [&](CVexaCamera& self, Value* value) {
    return (self.level_control().*get)(value);
  });
}

}  // namespace

BOOL VEXA_CALL Vexa_SetALCMode(HANDLE camera, DWORD mode) {
  return Set(camera, &LevelControl::SetMode, mode);
}

BOOL VEXA_CALL Vexa_GetALCMode(HANDLE camera, BYTE* mode) {
  return Get(camera, &LevelControl::GetMode, mode);
}

BOOL VEXA_CALL Vexa_SetALCTargetLevel(HANDLE camera, DWORD level) {
  return Set(camera, &LevelControl::SetTargetLevel, level);
}

BOOL VEXA_CALL Vexa_GetALCTargetLevel(HANDLE camera, WORD* level) {
  return Get(camera, &LevelControl::GetTargetLevel, level);
}

BOOL VEXA_CALL Vexa_SetAGCMaxGain(HANDLE camera, DWORD gain) {
  return Set(camera, &LevelControl::SetMaxGain, gain);
}

BOOL VEXA_CALL Vexa_GetAGCMaxGain(HANDLE camera, WORD* gain) {
  return Get(camera, &LevelControl::GetMaxGain, gain);
}

BOOL VEXA_CALL Vexa_SetAGCMinGain(HANDLE camera, DWORD gain) {
  return Set(camera, &LevelControl::SetMinGain, gain);
}

BOOL VEXA_CALL Vexa_GetAGCMinGain(HANDLE camera, WORD* gain) {
  return Get(camera, &LevelControl::GetMinGain, gain);
}

BOOL VEXA_CALL Vexa_SetAEMaxExposureClock(HANDLE camera, DWORD exposure_clock) {
  return Set(camera, &LevelControl::SetMaxExposureClock, exposure_clock);
}

BOOL VEXA_CALL Vexa_GetAEMaxExposureClock(HANDLE camera, DWORD* exposure_clock) {
  return Get(camera, &LevelControl::GetMaxExposureClock, exposure_clock);
}

BOOL VEXA_CALL Vexa_SetAEMinExposureClock(HANDLE camera, DWORD exposure_clock) {
  return Set(camera, &LevelControl::SetMinExposureClock, exposure_clock);
}

BOOL VEXA_CALL Vexa_GetAEMinExposureClock(HANDLE camera, DWORD* exposure_clock) {
  return Get(camera, &LevelControl::GetMinExposureClock, exposure_clock);
}

BOOL VEXA_CALL Vexa_ALC(HANDLE camera, DWORD level, DWORD* changed) {
  Clear(changed);
  return CallGetter<std::uint32_t>(camera, changed, [&](CVexaCamera& self, std::uint32_t* report) {
    return self.level_control().Step(static_cast<std::uint16_t>(level & 0xFFFF), report);
  });
}

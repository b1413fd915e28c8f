// Gain.

#include "VexaAPI.h"
#include "camera/vexa_camera.hpp"
#include "exports/call_frame.hpp"

using vexa::Status;
using vexa::camera::CVexaCamera;
using namespace vexa::exports;  // NOLINT(google-build-using-namespace): the frame of every function

BOOL VEXA_CALL Vexa_SetGain(HANDLE camera, WORD gain) {
  return CallCamera(camera, [&](CVexaCamera& self) { return self.SetGain(gain); });
}

BOOL VEXA_CALL Vexa_GetGain(HANDLE camera, WORD* gain) {
  return CallCamera(camera, [&](CVexaCamera& self) {
    std::uint16_t value = 0;
    std::uint32_t exposure_clock = 0;
    const Status status = self.GetGainAndExposureClock(&value, &exposure_clock);
    return status.ok() ? Give(gain, value) : status;
  });
}

BOOL VEXA_CALL Vexa_GetMaxGain(HANDLE camera, WORD* gain) {
  return CallCamera(camera, [&](CVexaCamera& self) { return Give(gain, self.GetMaxGain()); });
}

BOOL VEXA_CALL Vexa_GetGainDBFromSettingValue(HANDLE camera, DWORD value, float* decibel) {
  return CallCamera(camera,
                    [&](CVexaCamera& self) { return Give(decibel, self.GainToDecibel(value)); });
}

BOOL VEXA_CALL Vexa_SetDigitalGain(HANDLE camera, WORD gain) {
  return CallCamera(camera,
                    [&](CVexaCamera& self) { return self.exposure().SetDigitalGain(gain); });
}

BOOL VEXA_CALL Vexa_GetDigitalGain(HANDLE camera, WORD* gain) {
  Clear(gain);
  return CallCamera(camera, [&](CVexaCamera& self) {
    std::uint16_t value = 0;
    const Status status = self.exposure().GetDigitalGain(&value);
    return status.ok() ? Give(gain, value) : status;
  });
}

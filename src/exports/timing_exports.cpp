// Timing and geometry.

#include "VexaAPI.h"
#include "camera/vexa_camera.hpp"
#include "exports/call_frame.hpp"

using vexa::Status;
using vexa::camera::CVexaCamera;
using vexa::settings::PixelClock;
using vexa::settings::ScanMode;
using vexa::settings::SkippingAndBinning;
using namespace vexa::exports;  // NOLINT(google-build-using-namespace): the frame of every function

BOOL VEXA_CALL Vexa_SetClock(HANDLE camera, DWORD mode, DWORD frequency) {
  return CallCamera(camera, [&](CVexaCamera& self) {
    return self.timing().SetClock({.mode = mode, .frequency = frequency});
  });
}

BOOL VEXA_CALL Vexa_GetClock(HANDLE camera, DWORD* mode, DWORD* frequency) {
  return CallCamera(camera, [&](CVexaCamera& self) {
    PixelClock clock;
    const Status status = self.timing().GetClock(&clock);
    if (status.ok()) {
      Store(mode, clock.mode);
      Store(frequency, clock.frequency);
    }
    return status;
  });
}

BOOL VEXA_CALL Vexa_SetScanMode(HANDLE camera, WORD mode, DWORD offset_x, DWORD offset_y,
                                DWORD width, DWORD height) {
  return CallCamera(camera, [&](CVexaCamera& self) {
    return self.timing().SetScanMode({.mode = mode,
                                      .offset_x = offset_x,
                                      .offset_y = offset_y,
                                      .width = width,
                                      .height = height});
  });
}

BOOL VEXA_CALL Vexa_GetScanMode(HANDLE camera, WORD* mode, DWORD* offset_x, DWORD* offset_y,
                                DWORD* width, DWORD* height) {
  return CallCamera(camera, [&](CVexaCamera& self) {
    const ScanMode scan_mode = self.timing().Settings().scan_mode();
    Store(mode, scan_mode.mode);
    Store(offset_x, scan_mode.offset_x);
    Store(offset_y, scan_mode.offset_y);
    Store(width, scan_mode.width);
    Store(height, scan_mode.height);
    return Status();
  });
}

BOOL VEXA_CALL Vexa_SetSkippingAndBinning(HANDLE camera, BYTE horizontal_skipping,
                                          BYTE vertical_skipping, BYTE horizontal_binning,
                                          BYTE vertical_binning) {
  return CallCamera(camera, [&](CVexaCamera& self) {
    return self.timing().SetSkippingAndBinning({.horizontal_skipping = horizontal_skipping,
                                                .vertical_skipping = vertical_skipping,
                                                .horizontal_binning = horizontal_binning,
                                                .vertical_binning = vertical_binning});
  });
}

BOOL VEXA_CALL Vexa_GetSkippingAndBinning(HANDLE camera, BYTE* horizontal_skipping,
                                          BYTE* vertical_skipping, BYTE* horizontal_binning,
                                          BYTE* vertical_binning) {
  Clear(horizontal_skipping, vertical_skipping, horizontal_binning, vertical_binning);
  return CallCamera(camera, [&](CVexaCamera& self) {
    SkippingAndBinning value;
    const Status status = self.timing().GetSkippingAndBinning(&value);
    Store(horizontal_skipping, value.horizontal_skipping);
    Store(vertical_skipping, value.vertical_skipping);
    Store(horizontal_binning, value.horizontal_binning);
    Store(vertical_binning, value.vertical_binning);
    return status;
  });
}

BOOL VEXA_CALL Vexa_GetFrameClock(HANDLE camera, WORD* lines, WORD* clocks) {
  return CallCamera(camera, [&](CVexaCamera& self) {
    Store(lines, self.timing().Settings().lines_per_frame());
    Store(clocks, self.timing().Settings().clocks_per_line());
    return Status();
  });
}

BOOL VEXA_CALL Vexa_GetShutterMaxClock(HANDLE camera, DWORD* clock) {
  return CallCamera(camera, [&](CVexaCamera& self) {
    return Give(clock, self.timing().Settings().shutter_max_clock());
  });
}

BOOL VEXA_CALL Vexa_SetExposureClock(HANDLE camera, DWORD exposure_clock) {
  return CallCamera(camera,
                    [&](CVexaCamera& self) { return self.SetExposureClock(exposure_clock); });
}

BOOL VEXA_CALL Vexa_GetExposureClock(HANDLE camera, DWORD* exposure_clock) {
  return CallCamera(camera, [&](CVexaCamera& self) {
    std::uint16_t gain = 0;
    std::uint32_t clock = 0;
    const Status status = self.exposure().GetGainAndExposureClock(&gain, &clock);
    return status.ok() ? Give(exposure_clock, clock) : status;
  });
}

BOOL VEXA_CALL Vexa_GetMaxShortExposureClock(HANDLE camera, DWORD* clock) {
  return CallCamera(
      camera, [&](CVexaCamera& self) { return Give(clock, self.GetMaxShortExposureClock()); });
}

BOOL VEXA_CALL Vexa_GetMaxLongExposureClock(HANDLE camera, DWORD* clock) {
  return CallCamera(camera,
                    [&](CVexaCamera& self) { return Give(clock, self.GetMaxLongExposureClock()); });
}

BOOL VEXA_CALL Vexa_GetExposureClockFromTime(HANDLE camera, float seconds, DWORD* exposure_clock) {
  return CallCamera(camera, [&](CVexaCamera& self) {
    std::uint32_t clock = 0;
    const Status status = self.exposure().ClockFromTime(seconds, &clock);
    return status.ok() ? Give(exposure_clock, clock) : status;
  });
}

BOOL VEXA_CALL Vexa_GetExposureTimeFromClock(HANDLE camera, DWORD exposure_clock, float* seconds) {
  return CallCamera(camera, [&](CVexaCamera& self) {
    float time = 0;
    const Status status = self.exposure().TimeFromClock(exposure_clock, &time);
    return status.ok() ? Give(seconds, time) : status;
  });
}

BOOL VEXA_CALL Vexa_SetVBlankForFPS(HANDLE camera, DWORD lines) {
  return CallCamera(camera, [&](CVexaCamera& self) {
    return self.timing().SetVerticalBlanking(static_cast<std::uint16_t>(lines & 0xFFFF));
  });
}

BOOL VEXA_CALL Vexa_GetVBlankForFPS(HANDLE camera, DWORD* lines) {
  return CallCamera(camera, [&](CVexaCamera& self) {
    std::uint16_t value = 0;
    const Status status = self.timing().GetVerticalBlanking(&value);
    return status.ok() ? Give(lines, value) : status;
  });
}

BOOL VEXA_CALL Vexa_GetOutputFPS(HANDLE camera, float* fps) {
  Clear(fps);
  return CallCamera(camera, [&](CVexaCamera& self) {
    float value = 0;
    const Status status = self.exposure().OutputFrameRate(&value);
    return status.ok() ? Give(fps, value) : status;
  });
}

BOOL VEXA_CALL Vexa_SetTransferBitsPerPixel(HANDLE camera, DWORD code) {
  return CallCamera(camera, [&](CVexaCamera& self) { return self.transfer_format().Set(code); });
}

BOOL VEXA_CALL Vexa_GetTransferBitsPerPixel(HANDLE camera, DWORD* code) {
  return CallCamera(camera,
                    [&](CVexaCamera& self) { return Give(code, self.transfer_format().code()); });
}

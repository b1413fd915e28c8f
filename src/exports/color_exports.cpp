// Tone curves and colour matrices, which the host applies to frames and images.

#include <algorithm>

#include "VexaAPI.h"
#include "camera/vexa_camera.hpp"
#include "exports/call_frame.hpp"

using vexa::Status;
using vexa::camera::CVexaCamera;
using namespace vexa::imaging;  // NOLINT(google-build-using-namespace): what is wrapped here
using namespace vexa::exports;  // NOLINT(google-build-using-namespace): the frame of every function

BOOL VEXA_CALL Vexa_SetGammaModeEx(HANDLE camera, BYTE channel, BYTE mode, WORD gamma,
                                   short brightness, BYTE contrast, const BYTE* table) {
  return CallCamera(camera, [&](CVexaCamera& self) {
    return self.gamma().Set(
        channel, {.mode = mode, .gamma = gamma, .brightness = brightness, .contrast = contrast},
        table);
  });
}

BOOL VEXA_CALL Vexa_GetGammaModeEx(HANDLE camera, BYTE channel, BYTE* mode, WORD* gamma,
                                   short* brightness, BYTE* contrast, BYTE* table) {
  return CallCamera(camera, [&](CVexaCamera& self) {
    GammaSetting setting;
    LookUpTable entries;
    const Status status = self.gamma().Get(channel, &setting, &entries);
    if (status.ok()) {
      Store(mode, setting.mode);
      Store(gamma, setting.gamma);
      Store(brightness, setting.brightness);
      Store(contrast, setting.contrast);
      if (table != nullptr) {
        std::copy(entries.begin(), entries.end(), table);
      }
    }
    return status;
  });
}

BOOL VEXA_CALL Vexa_RawColorGamma(HANDLE camera, DWORD width, DWORD height, WORD color_array,
                                  BYTE* image) {
  return CallCamera(camera, [&](CVexaCamera& self) {
    return self.gamma().CorrectRaw(width, height, color_array, image);
  });
}

BOOL VEXA_CALL Vexa_BGRGamma(HANDLE camera, DWORD width, DWORD height, DWORD output_format,
                             BYTE* image) {
  return CallCamera(camera, [&](CVexaCamera& self) {
    return self.gamma().CorrectImage(width, height, output_format, image);
  });
}

BOOL VEXA_CALL Vexa_SetColorMatrix(HANDLE camera, BYTE mode, const short* matrix) {
  return CallCamera(camera, [&](CVexaCamera& self) {
    UserColorMatrix values{};
    const bool is_read = mode == static_cast<BYTE>(ColorMatrixMode::kUser) && matrix != nullptr;
    if (is_read) {
      std::copy_n(matrix, values.size(), values.begin());
    }
    return self.color_correction().SetMatrix(mode, is_read ? &values : nullptr);
  });
}

BOOL VEXA_CALL Vexa_GetColorMatrix(HANDLE camera, BYTE* mode, short* matrix) {
  return CallCamera(camera, [&](CVexaCamera& self) {
    const ColorMatrixSetting setting = self.color_correction().Matrix();
    Store(mode, setting.mode);
    if (matrix != nullptr) {
      std::copy(setting.matrix.begin(), setting.matrix.end(), matrix);
    }
    return Status();
  });
}

BOOL VEXA_CALL Vexa_SetHueSaturationMode(HANDLE camera, BYTE mode, short hue, WORD saturation) {
  return CallCamera(camera, [&](CVexaCamera& self) {
    return self.color_correction().SetHueSaturation(
        {.mode = mode, .hue = hue, .saturation = saturation});
  });
}

BOOL VEXA_CALL Vexa_GetHueSaturationMode(HANDLE camera, BYTE* mode, short* hue, WORD* saturation) {
  return CallCamera(camera, [&](CVexaCamera& self) {
    const HueSaturationSetting setting = self.color_correction().HueSaturation();
    Store(mode, setting.mode);
    Store(hue, setting.hue);
    Store(saturation, setting.saturation);
    return Status();
  });
}

BOOL VEXA_CALL Vexa_HueSaturationColorMatrix(HANDLE camera, DWORD width, DWORD height,
                                             DWORD output_format, BYTE* image) {
  return CallCamera(camera, [&](CVexaCamera& self) {
    return self.color_correction().Correct(width, height, output_format, image);
  });
}

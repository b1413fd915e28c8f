// Measurements on raw frames, and what follows from them: white balance, defect pixels.

#include <algorithm>
#include <array>

#include "VexaAPI.h"
#include "camera/vexa_camera.hpp"
#include "exports/call_frame.hpp"
#include "imaging/bright_pixels.hpp"
#include "imaging/color_array.hpp"
#include "imaging/pattern_statistics.hpp"

using vexa::Status;
using vexa::camera::CVexaCamera;
using namespace vexa::exports;  // NOLINT(google-build-using-namespace): the frame of every function

BOOL VEXA_CALL Vexa_GetAveragePixelValue(DWORD width, DWORD height, WORD color_array,
                                         DWORD transfer_format, const BYTE* frame, DWORD x, DWORD y,
                                         DWORD region_width, DWORD region_height, float* average) {
  return Call([&] {
    if (frame == nullptr || average == nullptr) {
      return vexa::error::kInvalidParameter;
    }
    std::array<float, vexa::imaging::kPatternPositions> mean{};
    const Status status = vexa::imaging::AveragePixelValue({.width = width,
                                                            .height = height,
                                                            .color_array = color_array,
                                                            .transfer_format = transfer_format,
                                                            .frame = frame,
                                                            .x = x,
                                                            .y = y,
                                                            .region_width = region_width,
                                                            .region_height = region_height},
                                                           &mean);
    if (status.ok()) {
      std::copy(mean.begin(), mean.end(), average);
    }
    return status;
  });
}

BOOL VEXA_CALL Vexa_WhiteBalance(HANDLE camera, BYTE* frame) {
  Status measured;
  const BOOL corrected = CallCamera(camera, [&](CVexaCamera& self) {
    constexpr auto kMono = static_cast<std::uint16_t>(vexa::imaging::ColorArray::kMono);
    if (frame == nullptr) {
      return vexa::error::kInvalidParameter;
    }
    if (self.identity().sensor_color_array() == kMono) {
      return Status();
    }
    const vexa::settings::ScanMode scan_mode = self.timing().Settings().scan_mode();
    measured = self.white_balance().Correct(scan_mode.width, scan_mode.height,
                                            self.mirror().ColorArray(), frame);
    return Status();
  });
  // Not a failure of the call: the frame is corrected with the gains that are.
  static_cast<void>(Report(measured));
  return corrected;
}

BOOL VEXA_CALL Vexa_DetectDefectPixel(HANDLE camera, DWORD width, DWORD height, const BYTE* frame,
                                      DWORD threshold) {
  return CallCamera(camera, [&](CVexaCamera& self) {
    const std::uint16_t count = self.correction().DefectCount();
    if (count == 0 || frame == nullptr) {
      return vexa::error::kInvalidParameter;
    }
    return self.correction().LoadDefectTable(vexa::imaging::FindBrightPixels(
        width, height, frame, static_cast<std::uint16_t>(threshold & 0xFFFF), count));
  });
}

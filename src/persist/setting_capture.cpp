// Reading a camera's settings, in the order that setting files have always had.
#include "device/models.hpp"
#include "persist/setting_file.hpp"

namespace vexa::persist {

bool CSettingFile::Capture() {
  if (!CaptureIdentity() || !CaptureTiming() || !CaptureLevels() ||
      (has_.registers && !CaptureRegisters()) || !CaptureColors()) {
    return false;
  }
  CaptureGammas();
  return CaptureCameraFunctions();
}

bool CSettingFile::CaptureIdentity() {
  if (!Vexa_GetCameraVersion(camera_, &version_, &product_id_, &variant_, &firmware_)) {
    return false;
  }
  has_.registers = device::HasRegisterAccess(product_id_);
  return Vexa_GetColorArray(camera_, &color_array_) &&
         Vexa_GetEnableScanMode(camera_, &scan_modes_) &&
         Vexa_HasFunction(camera_, 61, &has_.binning_sum) &&
         Vexa_HasFunction(camera_, 21, &has_.vertical_blanking) &&
         Vexa_HasFunction(camera_, 57, &has_.camera_gamma) &&
         Vexa_HasFunction(camera_, 22, &has_.horizontal_mirror) &&
         Vexa_HasFunction(camera_, 23, &has_.vertical_mirror) &&
         Vexa_GetEnableDefectPixelCorrectionCount(camera_, &has_.defect_pixels) &&
         Vexa_HasFunction(camera_, 55, &has_.clamp);
}

bool CSettingFile::CaptureTiming() {
  Values& v = values_;
  return Vexa_GetClock(camera_, &v.clock_mode, &v.clock) &&
         (!has_.vertical_blanking || Vexa_GetVBlankForFPS(camera_, &v.vertical_blanking)) &&
         Vexa_GetScanMode(camera_, &v.scan_mode, &v.offset_x, &v.offset_y, &v.width, &v.height) &&
         (!HasSkippingAndBinning() ||
          Vexa_GetSkippingAndBinning(camera_, &v.horizontal_skipping, &v.vertical_skipping,
                                     &v.horizontal_binning, &v.vertical_binning)) &&
         (!has_.binning_sum || Vexa_GetBinningSumMode(camera_, &v.binning_sum)) &&
         Vexa_GetTransferBitsPerPixel(camera_, &v.transfer_format) &&
         Vexa_GetShutterMaxClock(camera_, &shutter_max_clock_);
}

bool CSettingFile::CaptureLevels() {
  Values& v = values_;
  return Vexa_GetALCMode(camera_, &v.alc_mode) && Vexa_GetALCTargetLevel(camera_, &v.alc_target) &&
         Vexa_GetAGCMinGain(camera_, &v.agc_min) && Vexa_GetAGCMaxGain(camera_, &v.agc_max) &&
         Vexa_GetAEMinExposureClock(camera_, &v.ae_min) &&
         Vexa_GetAEMaxExposureClock(camera_, &v.ae_max) &&
         Vexa_GetExposureClock(camera_, &v.exposure_clock) && Vexa_GetGain(camera_, &v.gain) &&
         Vexa_GetWhiteBalanceMode(camera_, &v.white_balance_mode) &&
         Vexa_GetWhiteBalanceGain(camera_, &v.white_balance[0], &v.white_balance[1],
                                  &v.white_balance[2], &v.white_balance[3]);
}

bool CSettingFile::CaptureRegisters() {
  Values& v = values_;
  bool good = Vexa_GetDigitalGain(camera_, &v.digital_gain) &&
              Vexa_GetTriggerMode(camera_, &v.trigger_mode);
  for (DWORD i = 0; good && i < kTimings; ++i) {
    good = Vexa_GetTriggerTiming(camera_, i, &v.timings[i]);
  }
  good = good && Vexa_GetIOPinDirection(camera_, &v.pin_direction) &&
         Vexa_GetIOPinPolarity(camera_, &v.pin_polarity);
  for (DWORD i = 0; good && i < kPins; ++i) {
    good = Vexa_GetIOPinMode(camera_, i, &v.pin_modes[i]);
  }
  good = good && Vexa_HasFunction(camera_, 5, &has_.led) &&
         (!has_.led || Vexa_GetLEDStatus(camera_, &v.led));
  for (DWORD i = 0; good && i < kTimeOuts; ++i) {
    good = Vexa_GetTimeOut(camera_, i, &v.time_outs[i]);
  }
  return good;
}

bool CSettingFile::CaptureColors() {
  Values& v = values_;
  return Vexa_GetHueSaturationMode(camera_, &v.hue_saturation_mode, &v.hue, &v.saturation) &&
         Vexa_GetColorMatrix(camera_, &v.matrix_mode, v.matrix.data()) &&
         Vexa_GetSharpnessMode(camera_, &v.sharpness_mode, &v.sharpness_gain, &v.sharpness_coring);
}

void CSettingFile::CaptureGammas() {
  for (std::size_t i = 0; i < GammaCount(); ++i) {
    Gamma& gamma = values_.gammas[i];
    if (!Vexa_GetGammaModeEx(camera_, static_cast<BYTE>(i), &gamma.mode, &gamma.gamma,
                             &gamma.brightness, &gamma.contrast, gamma.table.data())) {
      return;
    }
  }
}

bool CSettingFile::CaptureCameraFunctions() {
  Values& v = values_;
  return (!has_.camera_gamma || Vexa_GetCameraGammaValue(camera_, &v.camera_gamma)) &&
         (has_.defect_pixels == 0 || Vexa_GetDefectPixelCorrectionMode(camera_, &v.defect_mode)) &&
         (!has_.clamp || Vexa_GetDigitalClamp(camera_, &v.clamp)) &&
         (!(has_.horizontal_mirror || has_.vertical_mirror) ||
          Vexa_GetMirrorMode(camera_, &v.mirror_mode));
}

}  // namespace vexa::persist

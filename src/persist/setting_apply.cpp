// Bringing settings to a camera. The order matters: the clock and the scan mode decide which gains
// and exposures there are, the limits of the level control come before the values within them.
#include "persist/setting_file.hpp"

namespace vexa::persist {

bool CSettingFile::Apply() {
  if (!ApplyTiming() || !ApplyLevels() || (has_.registers && !ApplyRegisters()) || !ApplyColors()) {
    return false;
  }
  return ApplyCameraFunctions(ApplyGammas());
}

bool CSettingFile::ApplyTiming() const {
  const Values& v = values_;
  return Vexa_SetClock(camera_, v.clock_mode, v.clock) &&
         (!has_.vertical_blanking || Vexa_SetVBlankForFPS(camera_, v.vertical_blanking)) &&
         Vexa_SetScanMode(camera_, v.scan_mode, v.offset_x, v.offset_y, v.width, v.height) &&
         ((v.scan_mode & 0x8000) == 0 ||
          Vexa_SetSkippingAndBinning(camera_, v.horizontal_skipping, v.vertical_skipping,
                                     v.horizontal_binning, v.vertical_binning)) &&
         (!has_.binning_sum || Vexa_SetBinningSumMode(camera_, v.binning_sum)) &&
         Vexa_SetTransferBitsPerPixel(camera_, v.transfer_format);
}

bool CSettingFile::ApplyLevels() const {
  const Values& v = values_;
  return Vexa_SetALCMode(camera_, v.alc_mode) && Vexa_SetALCTargetLevel(camera_, v.alc_target) &&
         Vexa_SetAGCMinGain(camera_, v.agc_min) && Vexa_SetAGCMaxGain(camera_, v.agc_max) &&
         Vexa_SetAEMinExposureClock(camera_, v.ae_min) &&
         Vexa_SetAEMaxExposureClock(camera_, v.ae_max) &&
         Vexa_SetExposureClock(camera_, v.exposure_clock) && Vexa_SetGain(camera_, v.gain) &&
         Vexa_SetWhiteBalanceMode(camera_, v.white_balance_mode) &&
         Vexa_SetWhiteBalanceGain(camera_, v.white_balance[0], v.white_balance[1],
                                  v.white_balance[2], v.white_balance[3]);
}

bool CSettingFile::ApplyRegisters() const {
  const Values& v = values_;
  bool good =
      Vexa_SetDigitalGain(camera_, v.digital_gain) && Vexa_SetTriggerMode(camera_, v.trigger_mode);
  for (DWORD i = 0; good && i < kTimings; ++i) {
    good = Vexa_SetTriggerTiming(camera_, i, v.timings[i]);
  }
  good = good && Vexa_SetIOPinDirection(camera_, v.pin_direction) &&
         Vexa_SetIOPinPolarity(camera_, v.pin_polarity);
  for (DWORD i = 0; good && i < kPins; ++i) {
    good = Vexa_SetIOPinMode(camera_, i, v.pin_modes[i]);
  }
  for (DWORD i = 0; good && i < kTimeOuts; ++i) {
    good = Vexa_SetTimeOut(camera_, i, v.time_outs[i]);
  }
  return good && (!has_.led || Vexa_SetLEDStatus(camera_, v.led));
}

bool CSettingFile::ApplyColors() const {
  const Values& v = values_;
  return Vexa_SetSharpnessMode(camera_, v.sharpness_mode, v.sharpness_gain, v.sharpness_coring) &&
         Vexa_SetHueSaturationMode(camera_, v.hue_saturation_mode, v.hue, v.saturation) &&
         Vexa_SetColorMatrix(camera_, v.matrix_mode, v.matrix.data());
}

bool CSettingFile::ApplyGammas() const {
  for (std::size_t i = 0; i < GammaCount(); ++i) {
    const Gamma& gamma = values_.gammas[i];
    if (!Vexa_SetGammaModeEx(camera_, static_cast<BYTE>(i), gamma.mode, gamma.gamma,
                             gamma.brightness, gamma.contrast, gamma.table.data())) {
      return false;
    }
  }
  return true;
}

bool CSettingFile::ApplyCameraFunctions(bool so_far) const {
  const Values& v = values_;
  bool good = so_far;
  if (has_.camera_gamma) {
    good = Vexa_SetCameraGammaValue(camera_, v.camera_gamma);
    if (!good) return false;
  }
  if (has_.defect_pixels > 0) {
    good = Vexa_SetDefectPixelCorrectionMode(camera_, v.defect_mode);
    if (!good) return false;
  }
  if (has_.clamp) {
    good = Vexa_SetDigitalClamp(camera_, v.clamp);
    if (!good) return false;
  }
  if (has_.horizontal_mirror || has_.vertical_mirror) {
    good = Vexa_SetMirrorMode(camera_, v.mirror_mode);
  }
  return good;
}

}  // namespace vexa::persist

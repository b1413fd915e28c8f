/// \file
/// All settings of a camera as a private-profile file.
#pragma once

#include <array>
#include <cstddef>
#include <string>

#include "VexaAPI.h"
#include "platform/profile_file.hpp"
#include "platform/status.hpp"

namespace vexa::persist {

/// The settings of one camera on their way between the camera and a file. Reaches the camera only
/// through the library's exported functions, whose checks, locks and last errors so hold here, too;
/// a function that returns false has left its reason in the last error.
///
/// The names of the file's sections carry the camera's product ID, so that one file holds the
/// settings of several models.
class CSettingFile {
 public:
  CSettingFile(HANDLE camera, const std::u16string& path);
  virtual ~CSettingFile();
  CSettingFile(const CSettingFile&) = delete;
  CSettingFile& operator=(const CSettingFile&) = delete;

  /// Reads identity, capabilities and present settings from the camera. Precedes all else.
  bool Capture();
  /// Writes all settings to the file. Throws std::bad_alloc.
  Status Write();
  /// Reads all settings from the file; one that it lacks keeps its value. Throws std::bad_alloc.
  void Read();
  /// Brings all settings to the camera, up to the first that fails. A gamma table that fails ends
  /// the gamma tables only; the result tells it when nothing is set after them.
  bool Apply();

 private:
  static constexpr std::size_t kTimings = 6;
  static constexpr std::size_t kPins = 4;
  static constexpr std::size_t kTimeOuts = 4;
  static constexpr std::size_t kMatrixEntries = 12;
  static constexpr std::size_t kGammas = 5;

  struct Capabilities {
    bool registers = false;
    BOOL binning_sum = FALSE;
    BOOL vertical_blanking = FALSE;
    BOOL camera_gamma = FALSE;
    BOOL horizontal_mirror = FALSE;
    BOOL vertical_mirror = FALSE;
    BOOL clamp = FALSE;
    BOOL led = FALSE;
    WORD defect_pixels = 0;
  };

  struct Gamma {
    BYTE mode = 0;
    WORD gamma = 0;
    short brightness = 0;
    BYTE contrast = 0;
    std::array<BYTE, 256> table{};
  };

  /// One member for each key, of the type that fixes its width and sign in the file.
  struct Values {
    DWORD clock_mode = 0, clock = 0, vertical_blanking = 0;
    WORD scan_mode = 0;
    DWORD width = 0, height = 0, offset_x = 0, offset_y = 0;
    BYTE horizontal_skipping = 0, vertical_skipping = 0;
    BYTE horizontal_binning = 0, vertical_binning = 0;
    WORD binning_sum = 0;
    DWORD transfer_format = 0;
    BYTE alc_mode = 0;
    WORD alc_target = 0, agc_min = 0, agc_max = 0;
    DWORD ae_min = 0, ae_max = 0, exposure_clock = 0;
    WORD gain = 0, digital_gain = 0;
    BYTE white_balance_mode = 0;
    std::array<WORD, 4> white_balance{};  // R, Gr, Gb, B
    DWORD trigger_mode = 0;
    std::array<DWORD, kTimings> timings{};
    DWORD pin_direction = 0, pin_polarity = 0;
    std::array<DWORD, kPins> pin_modes{};
    DWORD led = 0;
    std::array<DWORD, kTimeOuts> time_outs{};
    BYTE sharpness_mode = 0;
    WORD sharpness_gain = 0;
    BYTE sharpness_coring = 0;
    BYTE hue_saturation_mode = 0;
    short hue = 0;
    WORD saturation = 0;
    BYTE matrix_mode = 0;
    std::array<short, kMatrixEntries> matrix{};
    std::array<Gamma, kGammas> gammas{};
    WORD camera_gamma = 0, defect_mode = 0, clamp = 0;
    BYTE mirror_mode = 0;
  };

  bool HasSkippingAndBinning() const;
  std::size_t GammaCount() const;

  bool CaptureIdentity();
  bool CaptureTiming();
  bool CaptureLevels();
  bool CaptureRegisters();
  bool CaptureColors();
  void CaptureGammas();
  bool CaptureCameraFunctions();

  bool ApplyTiming() const;
  bool ApplyLevels() const;
  bool ApplyRegisters() const;
  bool ApplyColors() const;
  bool ApplyGammas() const;
  bool ApplyCameraFunctions(bool so_far) const;

  // Every key whose condition holds, in the order of the file.
  template <typename Visitor>
  void VisitAll(Visitor& visitor);
  template <typename Visitor>
  void VisitTiming(Visitor& visitor);
  template <typename Visitor>
  void VisitLevels(Visitor& visitor);
  template <typename Visitor>
  void VisitRegisters(Visitor& visitor);
  template <typename Visitor>
  void VisitColors(Visitor& visitor);
  template <typename Visitor>
  void VisitCameraFunctions(Visitor& visitor);

  const HANDLE camera_;
  const std::u16string path_;
  WORD version_ = 0, product_id_ = 0, variant_ = 0, firmware_ = 0;
  WORD color_array_ = 0;
  WORD scan_modes_ = 0;
  DWORD shutter_max_clock_ = 0;
  Capabilities has_;
  Values values_;
};

}  // namespace vexa::persist

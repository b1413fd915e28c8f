// The keys of a setting file, and writing and reading them.
#include "persist/setting_file.hpp"

#include <cstdint>
#include <cstdio>

namespace vexa::persist {
namespace {

// What an absent key reads as, where it has to be told from all sensible values.
constexpr std::uint32_t kAbsent = 0xFFFFFFFF;

constexpr const char* kTimingKeys[] = {"ExposureDelay",        "StrobeStartDelay",
                                       "StrobeEndDelay",       "TriggerPulseDelay",
                                       "TriggerPulseDuration", "ReadOutDelay"};
constexpr const char* kTimeOutKeys[] = {"TimeOutST2EE", "TimeOutTE2EE", "TimeOutEE2TE",
                                        "TimeOutRO2TE"};
constexpr const char* kGammaSections[] = {"GammaY", "GammaR", "GammaGR", "GammaGB", "GammaB"};

std::string SectionName(const char* prefix, WORD product_id) {
  std::array<char, 48> name{};
  std::snprintf(name.data(), name.size(), "%s-%04X", prefix, unsigned{product_id});
  return name.data();
}

std::string Numbered(const char* prefix, std::size_t number) {
  std::string key = prefix;
  return key.append(std::to_string(number));
}

/// The older form of a key for exposures, in lines and clocks beyond them.
struct LegacyKeys {
  const char* lines;
  const char* clocks;
};

/// Writes each key, until one fails.
class KeyWriter {
 public:
  KeyWriter(platform::ProfileWriter& file, WORD product_id)
      : file_(file), product_id_(product_id) {}

  Status status() const { return status_; }

  void Section(const char* prefix) { section_ = SectionName(prefix, product_id_); }

  template <typename Value>
  void Key(const std::string& key, const Value& value) {
    if (status_.ok()) {
      status_ = file_.Write(section_, key, std::to_string(value));
    }
  }

  void Exposure(const char* key, const LegacyKeys& /*legacy*/, const DWORD& value) {
    Key(key, value);
  }

 private:
  platform::ProfileWriter& file_;
  const WORD product_id_;
  std::string section_;
  Status status_;
};

/// Reads each key over the value that it has so far.
class KeyReader {
 public:
  KeyReader(const platform::ProfileReader& file, WORD product_id, DWORD shutter_max_clock)
      : file_(file), product_id_(product_id), line_clocks_(std::uint64_t{shutter_max_clock} + 1) {}

  void Section(const char* prefix) { section_ = SectionName(prefix, product_id_); }

  template <typename Value>
  void Key(const std::string& key, Value& value) {
    // What does not fit is cut to the width of the setting.
    value = static_cast<Value>(file_.ReadInteger(section_, key, static_cast<std::uint32_t>(value)));
  }

  void Exposure(const char* key, const LegacyKeys& legacy, DWORD& value) {
    const std::uint32_t newer = file_.ReadInteger(section_, key, kAbsent);
    if (newer != kAbsent) {
      value = newer;
      return;
    }
    const std::uint64_t lines =
        file_.ReadInteger(section_, legacy.lines, static_cast<std::uint32_t>(value / line_clocks_));
    const std::uint64_t clocks = file_.ReadInteger(
        section_, legacy.clocks, static_cast<std::uint32_t>(value % line_clocks_));
    value = static_cast<DWORD>(line_clocks_ * lines + clocks);
  }

 private:
  const platform::ProfileReader& file_;
  const WORD product_id_;
  const std::uint64_t line_clocks_;
  std::string section_;
};

}  // namespace

CSettingFile::CSettingFile(HANDLE camera, const std::u16string& path)
    : camera_(camera), path_(path) {}

CSettingFile::~CSettingFile() = default;

template <typename Visitor>
void CSettingFile::VisitAll(Visitor& visitor) {
  VisitTiming(visitor);
  VisitLevels(visitor);
  if (has_.registers) {
    VisitRegisters(visitor);
  }
  VisitColors(visitor);
  VisitCameraFunctions(visitor);
}

template <typename Visitor>
void CSettingFile::VisitTiming(Visitor& visitor) {
  visitor.Section("Clock");
  visitor.Key("ClockMode", values_.clock_mode);
  visitor.Key("Clock", values_.clock);
  if (has_.vertical_blanking) {
    visitor.Key("VBlankForFPS", values_.vertical_blanking);
  }
  visitor.Section("ImageSize");
  visitor.Key("ScanMode", values_.scan_mode);
  visitor.Key("Width", values_.width);
  visitor.Key("Height", values_.height);
  visitor.Key("OffsetX", values_.offset_x);
  visitor.Key("OffsetY", values_.offset_y);
  if (HasSkippingAndBinning()) {
    visitor.Key("HSkipping", values_.horizontal_skipping);
    visitor.Key("VSkipping", values_.vertical_skipping);
    visitor.Key("HBinning", values_.horizontal_binning);
    visitor.Key("VBinning", values_.vertical_binning);
  }
  if (has_.binning_sum) {
    visitor.Key("BinningSumMode", values_.binning_sum);
  }
  visitor.Key("TransferBitsPerPixel", values_.transfer_format);
}

template <typename Visitor>
void CSettingFile::VisitLevels(Visitor& visitor) {
  visitor.Section("GainShutter");
  visitor.Key("ALCMode", values_.alc_mode);
  visitor.Key("BrightnessTarget", values_.alc_target);
  visitor.Key("AGCMinGain", values_.agc_min);
  visitor.Key("AGCMaxGain", values_.agc_max);
  visitor.Exposure("AEMinExposureClock", {"ALCMinShutterLine", "ALCMinShutterClock"},
                   values_.ae_min);
  visitor.Exposure("AEMaxExposureClock", {"ALCMaxShutterLine", "ALCMaxShutterClock"},
                   values_.ae_max);
  visitor.Exposure("ExposureClock", {"CurrentShutterLine", "CurrentShutterClock"},
                   values_.exposure_clock);
  visitor.Key("CurrentGain", values_.gain);
  if (has_.registers) {
    visitor.Key("CurrentDigitalGain", values_.digital_gain);
  }
  visitor.Section("WhiteBalance");
  visitor.Key("WhiteBalanceMode", values_.white_balance_mode);
  visitor.Key("WBGainR", values_.white_balance[0]);
  visitor.Key("WBGainGr", values_.white_balance[1]);
  visitor.Key("WBGainGb", values_.white_balance[2]);
  visitor.Key("WBGainB", values_.white_balance[3]);
}

template <typename Visitor>
void CSettingFile::VisitRegisters(Visitor& visitor) {
  visitor.Section("Trigger");
  visitor.Key("TriggerMode", values_.trigger_mode);
  for (std::size_t i = 0; i < kTimings; ++i) {
    visitor.Key(kTimingKeys[i], values_.timings[i]);
  }
  visitor.Section("IO");
  visitor.Key("IODirection", values_.pin_direction);
  visitor.Key("IOPolarity", values_.pin_polarity);
  for (std::size_t i = 0; i < kPins; ++i) {
    visitor.Key(Numbered("IOMode_", i), values_.pin_modes[i]);
  }
  if (has_.led) {
    visitor.Key("LED", values_.led);
  }
  visitor.Section("TimeOut");
  for (std::size_t i = 0; i < kTimeOuts; ++i) {
    visitor.Key(kTimeOutKeys[i], values_.time_outs[i]);
  }
}

template <typename Visitor>
void CSettingFile::VisitColors(Visitor& visitor) {
  visitor.Section("Sharpness");
  visitor.Key("SharpnessMode", values_.sharpness_mode);
  visitor.Key("SharpnessGain", values_.sharpness_gain);
  visitor.Key("SharpnessCoring", values_.sharpness_coring);
  visitor.Section("HueSaturation");
  visitor.Key("HueSaturationMode", values_.hue_saturation_mode);
  visitor.Key("Hue", values_.hue);
  visitor.Key("Saturation", values_.saturation);
  visitor.Section("ColorMatrix");
  visitor.Key("ColorMatrixMode", values_.matrix_mode);
  for (std::size_t i = 0; i < kMatrixEntries; ++i) {
    visitor.Key(Numbered("ColorMatrix_", i), values_.matrix[i]);
  }
  for (std::size_t i = 0; i < GammaCount(); ++i) {
    Gamma& gamma = values_.gammas[i];
    visitor.Section(kGammaSections[i]);
    visitor.Key("GammaMode", gamma.mode);
    visitor.Key("Gamma", gamma.gamma);
    visitor.Key("Brightness", gamma.brightness);
    visitor.Key("Contrast", gamma.contrast);
    for (std::size_t level = 0; level < gamma.table.size(); ++level) {
      visitor.Key(Numbered("GammaTable_", level), gamma.table[level]);
    }
  }
}

template <typename Visitor>
void CSettingFile::VisitCameraFunctions(Visitor& visitor) {
  if (has_.camera_gamma) {
    visitor.Section("CameraGamma");
    visitor.Key("Raw", values_.camera_gamma);
  }
  if (has_.defect_pixels > 0) {
    visitor.Section("DefectPixelCorrection");
    visitor.Key("DefectPixelCorrectionMode", values_.defect_mode);
  }
  if (has_.clamp) {
    visitor.Section("Clamp");
    visitor.Key("DigitalClamp", values_.clamp);
  }
  if (has_.horizontal_mirror || has_.vertical_mirror) {
    visitor.Section("Other");
    visitor.Key("MirrorMode", values_.mirror_mode);
  }
}

Status CSettingFile::Write() {
  platform::ProfileWriter file(path_);
  KeyWriter writer(file, product_id_);
  VisitAll(writer);
  return writer.status().ok() ? file.Commit() : writer.status();
}

void CSettingFile::Read() {
  const platform::ProfileReader file(path_);
  KeyReader reader(file, product_id_, shutter_max_clock_);
  VisitAll(reader);
}

bool CSettingFile::HasSkippingAndBinning() const { return (scan_modes_ & 0x8000) != 0; }

std::size_t CSettingFile::GammaCount() const {
  return color_array_ == VEXA_COLOR_ARRAY_MONO ? 1 : kGammas;
}

}  // namespace vexa::persist

/// \file
/// Corrections that the camera's own electronics make: binning sum, gamma, digital clamp, and the
/// table of defect pixels.
#pragma once

#include <cstdint>
#include <span>

#include "device/identity.hpp"
#include "device/registers.hpp"
#include "imaging/bright_pixels.hpp"
#include "platform/status.hpp"

namespace vexa::settings {

/// A correction that is one register, for models that have it.
enum class Correction { kBinningSum, kGamma, kDigitalClamp };

/// Where a defect pixel lies in the frame: column and row.
struct DefectPosition {
  std::uint16_t x = 0;
  std::uint16_t y = 0;

  friend bool operator==(const DefectPosition&, const DefectPosition&) = default;
};

/// Everything here lives in the camera; no copies are kept. Only the low 16 bits of values and
/// indexes count, because the camera's registers have as many.
class CameraCorrection {
 public:
  /// Entries of the table of models that have one.
  static constexpr std::uint16_t kDefectTableSize = 64;
  /// Column and row of an entry that is not used.
  static constexpr DefectPosition kUnusedEntry{0xFFFF, 0xFFFF};

  CameraCorrection(device::Registers& registers, const device::CameraIdentity& identity)
      : registers_(registers), identity_(identity) {}

  /// kInvalidParameter, and nothing sent, when the model lacks the correction or the value is out
  /// of range.
  Status Set(Correction correction, std::uint32_t value);
  /// 0 on failure, and with success on models without the correction.
  Status Get(Correction correction, std::uint16_t* value);

  /// Entries of the defect table; 0 on models without.
  std::uint16_t DefectCount() const;
  /// kInvalidParameter on models without a table.
  Status SetDefectMode(std::uint32_t mode);
  /// 0 on failure, and with success on models without a table.
  Status GetDefectMode(std::uint16_t* mode);
  /// Writes an entry and has the camera take it over. kInvalidParameter unless the index is below
  /// DefectCount().
  Status SetDefect(std::uint32_t index, DefectPosition position);
  Status GetDefect(std::uint32_t index, DefectPosition* position);
  /// Writes the whole table, entries without a pixel as unused, up to the first that the camera
  /// refuses, and has the camera take it over; the result is that of the last step.
  /// kInvalidParameter on models without a table.
  Status LoadDefectTable(std::span<const imaging::BrightPixel> pixels);

 private:
  Status WriteDefect(std::uint16_t index, DefectPosition position);

  device::Registers& registers_;
  const device::CameraIdentity& identity_;
};

}  // namespace vexa::settings

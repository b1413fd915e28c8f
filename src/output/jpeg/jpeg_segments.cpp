#include "output/jpeg/jpeg_segments.hpp"

#include <cstddef>

namespace vexa::output {
namespace {

// Markers (T.81, table B.1).
constexpr std::uint16_t kSoi = 0xFFD8;
constexpr std::uint16_t kEoi = 0xFFD9;
constexpr std::uint16_t kApp0 = 0xFFE0;
constexpr std::uint16_t kDqt = 0xFFDB;
constexpr std::uint16_t kSof0 = 0xFFC0;
constexpr std::uint16_t kDht = 0xFFC4;
constexpr std::uint16_t kSos = 0xFFDA;

/// Appends the fields of a segment until one fails.
class SegmentWriter {
 public:
  SegmentWriter(CBitStreamOutput& out, std::uint16_t marker) : out_(out) { Word(marker); }
  /// @param length of what follows the marker, these two bytes included.
  SegmentWriter(CBitStreamOutput& out, std::uint16_t marker, std::size_t length)
      : SegmentWriter(out, marker) {
    Word(static_cast<std::uint16_t>(length));
  }

  SegmentWriter& Byte(std::uint8_t value) {
    if (status_ == CodingStatus::kOk) {
      status_ = out_.WriteByte(value);
    }
    return *this;
  }
  SegmentWriter& Word(std::uint16_t value) {
    if (status_ == CodingStatus::kOk) {
      status_ = out_.WriteWord(value);
    }
    return *this;
  }
  SegmentWriter& Nibbles(unsigned high, unsigned low) {
    return Byte(static_cast<std::uint8_t>(high << 4 | low));
  }
  SegmentWriter& Bytes(std::span<const std::uint8_t> values) {
    for (const std::uint8_t value : values) {
      Byte(value);
    }
    return *this;
  }

  CodingStatus status() const { return status_; }

 private:
  CBitStreamOutput& out_;
  CodingStatus status_ = CodingStatus::kOk;
};

}  // namespace

CodingStatus WriteStartOfImage(CBitStreamOutput& out) { return SegmentWriter(out, kSoi).status(); }

CodingStatus WriteEndOfImage(CBitStreamOutput& out) { return SegmentWriter(out, kEoi).status(); }

CodingStatus WriteJfifHeader(CBitStreamOutput& out) {
  constexpr std::uint8_t kName[] = {'J', 'F', 'I', 'F', 0};
  return SegmentWriter(out, kApp0, 16)
      .Bytes(kName)
      .Word(0x0102)  // version
      .Byte(0)       // units: none
      .Word(1)       // density, the same in both directions
      .Word(1)
      .Byte(0)  // thumbnail
      .Byte(0)
      .status();
}

CodingStatus WriteQuantTable(CBitStreamOutput& out, const CJPEGEncoderQuantTable& table) {
  return SegmentWriter(out, kDqt, 3 + table.raw().size())
      .Nibbles(table.precision(), table.identifier())
      .Bytes(table.raw())
      .status();
}

CodingStatus WriteFrameHeader(CBitStreamOutput& out, std::uint16_t width, std::uint16_t height,
                              std::uint8_t precision,
                              std::span<const CJPEGColorComponent> components) {
  SegmentWriter segment(out, kSof0, 8 + 3 * components.size());
  segment.Byte(precision).Word(height).Word(width).Byte(
      static_cast<std::uint8_t>(components.size()));
  for (const CJPEGColorComponent& component : components) {
    const ComponentSettings& settings = component.settings();
    segment.Byte(settings.identifier).Nibbles(settings.h, settings.v).Byte(settings.quant_table);
  }
  return segment.status();
}

CodingStatus WriteHuffmanTable(CBitStreamOutput& out, const CJPEGEncoderHuffmanTable& table) {
  return SegmentWriter(out, kDht, 3 + table.counts().size() + table.values().size())
      .Nibbles(static_cast<unsigned>(table.table_class()), table.identifier())
      .Bytes(table.counts())
      .Bytes(table.values())
      .status();
}

CodingStatus WriteScanHeader(CBitStreamOutput& out, const ScanParameters& scan,
                             std::span<const CJPEGColorComponent> components) {
  SegmentWriter segment(out, kSos, 6 + 2 * components.size());
  segment.Byte(static_cast<std::uint8_t>(components.size()));
  for (const CJPEGColorComponent& component : components) {
    const ComponentSettings& settings = component.settings();
    segment.Byte(settings.identifier).Nibbles(settings.dc_table, settings.ac_table);
  }
  return segment.Byte(scan.spectral_start)
      .Byte(scan.spectral_end)
      .Nibbles(scan.approximation_high, scan.approximation_low)
      .status();
}

}  // namespace vexa::output

/// \file
/// The JPEG encoder: baseline sequential DCT with Huffman coding (ITU-T T.81) in a JFIF file
/// (ITU-T T.871).
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "output/bit_stream_output.hpp"
#include "output/coding_status.hpp"
#include "output/jpeg/color_component.hpp"
#include "output/jpeg/huffman_table.hpp"
#include "output/jpeg/jpeg_segments.hpp"
#include "output/jpeg/kernels/dispatch.hpp"
#include "output/jpeg/quant_table.hpp"
#include "output/memory_buffer.hpp"
#include "output/stream.hpp"

namespace vexa::output {

/// Longest side of a JPEG picture in pixels.
inline constexpr std::int32_t kLongestJpegSide = 65535;

enum class SourceColor : std::int32_t { kGrey = 1, kBgr = 3 };
enum class JpegColor : std::int32_t { kGrey = 1, kYCbCr = 4 };
enum class JpegMode : std::int32_t { kBaseline = 1 };
/// Luminance at full resolution, chrominance at half of it horizontally; MCUs of 16 x 8 pixels.
enum class JpegSampling : std::int32_t { kHalfChrominance = 1 };

/// Encodes one picture: SetSource, SetDestination, SetParams, WriteHeader, WriteData. Works one row
/// of MCUs at a time, so that its memory does not grow with the height. Each operation ends with
/// the first status that is not kOk; nothing is written after it.
class CJPEGEncoder {
 public:
  explicit CJPEGEncoder(const JpegKernels& kernels = BestJpegKernels()) : kernels_(kernels) {}
  virtual ~CJPEGEncoder() = default;
  CJPEGEncoder(const CJPEGEncoder&) = delete;
  CJPEGEncoder& operator=(const CJPEGEncoder&) = delete;

  /// The picture, which is only read.
  /// @param line_step bytes from row to row.
  /// @param width,height 1 to kLongestJpegSide.
  /// @param channels  bytes per pixel: 1 for grey, 3 for BGR, 4 for BGR with a byte to skip.
  /// @param sub_sampling 0: full resolution.
  /// @param precision 8 bits per sample.
  /// @return kOk; SetParams looks at the values.
  CodingStatus SetSource(const std::uint8_t* pixels, std::int32_t line_step, std::int32_t width,
                         std::int32_t height, std::int32_t channels, SourceColor color,
                         std::int32_t sub_sampling, std::int32_t precision);

  /// Where the file goes; must live as long as the encoder writes.
  CodingStatus SetDestination(CBaseStreamOutput* stream);

  /// Fixes the frame.
  /// @param color grey for a grey source, YCbCr for BGR.
  /// @param restart_interval 0: no restart markers.
  /// @param optimise_huffman false: the typical tables.
  /// @param quality 1 to 100; 0 for the unscaled base tables.
  /// @return kOutOfRange for anything else in these or in the source.
  CodingStatus SetParams(JpegMode mode, JpegColor color, JpegSampling sampling,
                         std::int32_t restart_interval, bool optimise_huffman,
                         std::int32_t quality);

  /// Sets up memory and writes everything before the scan. kOutOfRange before SetParams.
  CodingStatus WriteHeader();

  /// Writes the scan and the end of the file. kOutOfRange before WriteHeader.
  CodingStatus WriteData();

 private:
  struct Source {
    const std::uint8_t* pixels = nullptr;
    std::int32_t line_step = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::int32_t channels = 0;
    SourceColor color = SourceColor::kGrey;
    std::int32_t sub_sampling = 0;
    std::int32_t precision = 8;
  };
  enum class Stage { kEmpty, kParametersSet, kHeaderWritten };
  static constexpr std::size_t kMostComponents = 4;
  static constexpr std::size_t kMostBlocksPerMcu = 4;

  bool IsSourceValid(JpegColor color) const;
  void SetGeometry();
  void ConfigureComponents();
  void StartScan();
  CodingStatus PrepareTables(std::int32_t quality);
  CodingStatus AllocateMemory();

  CodingStatus CodeMcuRow(std::int32_t mcu_row);
  void ConvertColours(std::int32_t mcu_row);
  void Transform();
  CodingStatus CodeCoefficients();
  CodingStatus FlushEntropyCoder();

  std::span<CJPEGColorComponent> components() {
    return std::span(components_).first(component_count_);
  }

  const JpegKernels& kernels_;
  Source source_;
  CBitStreamOutput out_;
  std::size_t component_count_ = 0;
  std::size_t table_count_ = 0;  // of each kind
  Stage stage_ = Stage::kEmpty;

  std::int32_t mcus_per_row_ = 0;
  std::int32_t mcu_rows_ = 0;
  std::int32_t padded_width_ = 0;
  std::int32_t image_rows_ = 0;  // of the current MCU row that hold image data

  ScanParameters scan_;
  CMemoryBuffer coefficients_;  // of one MCU row, in MCU order
  std::int32_t blocks_per_mcu_ = 0;
  std::array<ComponentCoder*, kMostBlocksPerMcu> mcu_coders_{};  // of each block
  std::array<CJPEGColorComponent, kMostComponents> components_;
  std::array<CJPEGEncoderQuantTable, kMostComponents> quant_tables_;
  std::array<CJPEGEncoderHuffmanTable, kMostComponents> dc_tables_;
  std::array<CJPEGEncoderHuffmanTable, kMostComponents> ac_tables_;
  CJPEGEncoderHuffmanState huffman_state_;
};

}  // namespace vexa::output

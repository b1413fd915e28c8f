/// \file
/// The marker segments of a JFIF file (ITU-T T.81, annex B; ITU-T T.871).
#pragma once

#include <cstdint>
#include <span>

#include "output/bit_stream_output.hpp"
#include "output/jpeg/color_component.hpp"
#include "output/jpeg/huffman_table.hpp"
#include "output/jpeg/quant_table.hpp"

namespace vexa::output {

/// What all components of a scan share.
struct ScanParameters {
  std::uint8_t spectral_start = 0;
  std::uint8_t spectral_end = 63;
  std::uint8_t approximation_high = 0;
  std::uint8_t approximation_low = 0;
};

// Each appends one segment to the buffer and gives the buffer's first status that is not kOk.

CodingStatus WriteStartOfImage(CBitStreamOutput& out);
/// APP0 of JFIF 1.02: no units, square pixels, no thumbnail.
CodingStatus WriteJfifHeader(CBitStreamOutput& out);
CodingStatus WriteQuantTable(CBitStreamOutput& out, const CJPEGEncoderQuantTable& table);
/// SOF0. Width and height in pixels, at most 65535.
CodingStatus WriteFrameHeader(CBitStreamOutput& out, std::uint16_t width, std::uint16_t height,
                              std::uint8_t precision,
                              std::span<const CJPEGColorComponent> components);
CodingStatus WriteHuffmanTable(CBitStreamOutput& out, const CJPEGEncoderHuffmanTable& table);
CodingStatus WriteScanHeader(CBitStreamOutput& out, const ScanParameters& scan,
                             std::span<const CJPEGColorComponent> components);
CodingStatus WriteEndOfImage(CBitStreamOutput& out);

}  // namespace vexa::output

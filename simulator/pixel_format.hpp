/// \file
/// The layouts in which a camera sends its images.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace vexa::simulator {

/// Transfer format codes beyond the ten one-sample layouts (0x0001 ... 0x0200).
inline constexpr std::uint32_t kFormatBgr24 = 0x0400;
inline constexpr std::uint32_t kFormatBgr10 = 0x0800;
inline constexpr std::uint32_t kFormatYuv411 = 0x1000;
inline constexpr std::uint32_t kFormatYuv422 = 0x2000;
inline constexpr std::uint32_t kFormatYuv444 = 0x4000;

/// Whether a frame holds one sample per pixel (raw or monochrome), not colours.
constexpr bool IsOneSample(std::uint32_t format) { return format < kFormatBgr24; }

/// Whether the samples of a one-sample format are single bytes.
constexpr bool IsEightBit(std::uint32_t format) { return format == 0x0001 || format == 0x0020; }

/// Significant bits of a one-sample format: 8, 10, 12, 14 or 16.
unsigned SampleBits(std::uint32_t format);

/// Bytes of so many pixels; an image has no gaps between its rows.
std::size_t PixelBytes(std::uint32_t format, std::size_t pixels);

/// Lays out 14-bit samples of one-sample pixels: right-aligned, 16-bit words little-endian. The 16
/// bits of the deepest format are spread from 14 so that full scale is 65535.
void PackSamples(std::uint32_t format, std::span<const std::int16_t> samples, std::uint8_t* out);

/// Lays out 14-bit red, green and blue samples of pixels in a colour format. The YUV layouts come
/// in groups of four pixels; a last group that is not full is left out.
void PackColours(std::uint32_t format, std::span<const std::int16_t> red,
                 std::span<const std::int16_t> green, std::span<const std::int16_t> blue,
                 std::uint8_t* out);

}  // namespace vexa::simulator

/** The library's codes in words, both ways, and the frame sizes that follow from them. */
#pragma once

#include <VexaAPI.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vexa::tool {

/** A code and the word for it. */
struct NamedCode {
  std::uint32_t code;
  const char* name;
};

/** One layout of the frames that a camera sends. */
struct TransferFormat {
  std::uint32_t code;              /**< VEXA_TRANSFER_ code. */
  std::uint32_t half_bytes_per_px; /**< Twice the bytes per pixel: one layout has 1.5. */
  const char* name;                /**< The word for it on the command line. */
};

/** Every transfer format, in the order of their codes. */
std::span<const TransferFormat> TransferFormats();

/** The transfer format of a code, or null. */
const TransferFormat* FindTransferFormat(std::uint32_t code);

/** A format from its name or its number (decimal or 0x...); nothing when it is neither. */
std::optional<std::uint32_t> ParseTransferFormat(std::string_view text);

/** The transfer formats of a mask as "8bit, 12bit". */
std::string TransferFormatNames(std::uint32_t mask);

/** Bytes of one image in a transfer format (1 byte per pixel for a code that is not known). */
std::uint64_t ImageBytes(std::uint32_t width, std::uint32_t height, std::uint32_t format);

/** The same as an amount of memory. @throws std::bad_alloc for more than a process can address. */
std::size_t ImageMemory(std::uint32_t width, std::uint32_t height, std::uint32_t format);

/** Whether a format has one byte per pixel, as Vexa_ColorInterpolation() takes it. */
bool IsEightBit(std::uint32_t format);

/** VEXA_OUTPUT_ code of a transfer format of one 16-bit word per pixel; 0 for the others. */
std::uint32_t DeepOutputFormat(std::uint32_t format);

/** Significant bits of a sample of a VEXA_OUTPUT_ code that DeepOutputFormat() gives. */
int DeepSampleBits(std::uint32_t output_format);

/** The colour array of a name, in upper or lower case; nothing when there is none. */
std::optional<std::uint16_t> ParseColorArray(std::string_view text);

/** The interpolation methods and their names on the command line. */
std::span<const NamedCode> InterpolationMethods();

/** The name of an interpolation method, or the number. */
std::string InterpolationName(std::uint32_t code);

/** The mirrors of Vexa_MirrorRotation() and their names on the command line. */
std::span<const NamedCode> Mirrors();

/** The name of a mirror, or the number. */
std::string MirrorName(std::uint32_t code);

/** "mono", "RGGB", "GRBG", "GBRG", "BGGR", or the number. */
std::string ColorArrayName(std::uint32_t code);

/** "full speed", "high speed", "SuperSpeed", or the number. */
std::string UsbSpeedName(std::uint32_t speed);

/** The optional functions of Vexa_HasFunction() that have a name. */
std::span<const NamedCode> CameraFunctions();

/** A trigger mode in words, for example "hardware trigger 1, separate header". */
std::string DescribeTriggerMode(std::uint32_t mode);

/** The set bits of a mask as "0x0001, 0x8000"; "none" for 0. */
std::string DescribeMask(std::uint32_t mask);

/** The set bits of a mask, each as a number. */
std::vector<std::uint32_t> BitsOf(std::uint32_t mask);

}  // namespace vexa::tool

#include "names.hpp"

#include <charconv>
#include <limits>
#include <new>

#include "text.hpp"

namespace vexa::tool {
namespace {

constexpr TransferFormat kFormats[] = {
    {VEXA_TRANSFER_8BIT, 2, "8bit"},       {VEXA_TRANSFER_10BIT, 4, "10bit"},
    {VEXA_TRANSFER_12BIT, 4, "12bit"},     {VEXA_TRANSFER_14BIT, 4, "14bit"},
    {VEXA_TRANSFER_16BIT, 4, "16bit"},     {VEXA_TRANSFER_8BIT_B, 2, "8bit-b"},
    {VEXA_TRANSFER_10BIT_B, 4, "10bit-b"}, {VEXA_TRANSFER_12BIT_B, 4, "12bit-b"},
    {VEXA_TRANSFER_14BIT_B, 4, "14bit-b"}, {VEXA_TRANSFER_16BIT_B, 4, "16bit-b"},
    {VEXA_TRANSFER_BGR24, 6, "bgr24"},     {VEXA_TRANSFER_BGR30, 8, "bgr30"},
    {VEXA_TRANSFER_YUV411, 3, "yuv411"},   {VEXA_TRANSFER_YUV422, 4, "yuv422"},
    {VEXA_TRANSFER_YUV444, 6, "yuv444"},
};

constexpr NamedCode kMethods[] = {
    {VEXA_INTERP_NONE, "none"},         {VEXA_INTERP_MOSAIC, "mosaic"},
    {VEXA_INTERP_NEAREST, "nearest"},   {VEXA_INTERP_BILINEAR, "bilinear"},
    {VEXA_INTERP_FOUR_TAP, "four-tap"}, {VEXA_INTERP_CELL_CENTRED, "cell-centred"},
};

constexpr NamedCode kMirrors[] = {
    {VEXA_MIRROR_HORIZONTAL, "horizontal"},
    {VEXA_MIRROR_VERTICAL, "vertical"},
    {VEXA_TRANSPOSE, "diagonal"},
    {VEXA_TRANSPOSE_ANTIDIAGONAL, "antidiagonal"},
};

constexpr NamedCode kColorArrays[] = {
    {VEXA_COLOR_ARRAY_MONO, "mono"}, {VEXA_COLOR_ARRAY_RGGB, "RGGB"},
    {VEXA_COLOR_ARRAY_GRBG, "GRBG"}, {VEXA_COLOR_ARRAY_GBRG, "GBRG"},
    {VEXA_COLOR_ARRAY_BGGR, "BGGR"},
};

constexpr NamedCode kSpeeds[] = {{0, "full speed"}, {1, "high speed"}, {2, "SuperSpeed"}};

constexpr NamedCode kFunctions[] = {
    {1, "software sub-trigger"},     {5, "LED"},
    {20, "measured frame rate"},     {21, "vertical blanking"},
    {22, "horizontal mirror"},       {23, "vertical mirror"},
    {24, "hardware white balance"},  {25, "automatic gain"},
    {26, "automatic exposure"},      {48, "own timing limits"},
    {55, "digital clamp"},           {57, "camera gamma"},
    {59, "defect pixel correction"}, {61, "binning sum mode"},
    {259, "monochrome sensor"},
};

std::string NameIn(std::span<const NamedCode> names, std::uint32_t code) {
  for (const NamedCode& entry : names) {
    if (entry.code == code) {
      return entry.name;
    }
  }
  return Format("code %u", code);
}

}  // namespace

std::span<const TransferFormat> TransferFormats() { return kFormats; }

const TransferFormat* FindTransferFormat(std::uint32_t code) {
  for (const TransferFormat& format : kFormats) {
    if (format.code == code) {
      return &format;
    }
  }
  return nullptr;
}

std::optional<std::uint32_t> ParseTransferFormat(std::string_view text) {
  const std::string name = AsciiLowerCase(text);
  for (const TransferFormat& format : kFormats) {
    if (name == format.name) {
      return format.code;
    }
  }
  const bool hexadecimal = name.starts_with("0x");
  const char* first = name.data() + (hexadecimal ? 2 : 0);
  const char* last = name.data() + name.size();
  std::uint32_t code = 0;
  const auto [end, error] = std::from_chars(first, last, code, hexadecimal ? 16 : 10);
  return error == std::errc() && end == last && code != 0 ? std::optional(code) : std::nullopt;
}

std::string TransferFormatNames(std::uint32_t mask) {
  std::string text;
  for (const TransferFormat& format : kFormats) {
    if ((mask & format.code) != 0) {
      text += (text.empty() ? "" : ", ") + std::string(format.name);
    }
  }
  return text.empty() ? "none" : text;
}

std::uint64_t ImageBytes(std::uint32_t width, std::uint32_t height, std::uint32_t format) {
  const TransferFormat* layout = FindTransferFormat(format);
  const std::uint64_t half_bytes = layout != nullptr ? layout->half_bytes_per_px : 2;
  return std::uint64_t{width} * height * half_bytes / 2;
}

std::size_t ImageMemory(std::uint32_t width, std::uint32_t height, std::uint32_t format) {
  const std::uint64_t bytes = ImageBytes(width, height, format);
  if (bytes > std::numeric_limits<std::size_t>::max()) {
    throw std::bad_alloc();
  }
  return static_cast<std::size_t>(bytes);
}

bool IsEightBit(std::uint32_t format) {
  return format == VEXA_TRANSFER_8BIT || format == VEXA_TRANSFER_8BIT_B;
}

std::uint32_t DeepOutputFormat(std::uint32_t format) {
  switch (format) {
    case VEXA_TRANSFER_10BIT:
    case VEXA_TRANSFER_10BIT_B:
      return VEXA_OUTPUT_MONO10;
    case VEXA_TRANSFER_12BIT:
    case VEXA_TRANSFER_12BIT_B:
      return VEXA_OUTPUT_MONO12;
    case VEXA_TRANSFER_14BIT:
    case VEXA_TRANSFER_14BIT_B:
      return VEXA_OUTPUT_MONO14;
    case VEXA_TRANSFER_16BIT:
    case VEXA_TRANSFER_16BIT_B:
      return VEXA_OUTPUT_MONO16;
    default:
      return 0;
  }
}

int DeepSampleBits(std::uint32_t output_format) {
  switch (output_format) {
    case VEXA_OUTPUT_MONO10:
      return 10;
    case VEXA_OUTPUT_MONO12:
      return 12;
    case VEXA_OUTPUT_MONO14:
      return 14;
    default:
      return 16;
  }
}

std::optional<std::uint16_t> ParseColorArray(std::string_view text) {
  const std::string name = AsciiLowerCase(text);
  for (const NamedCode& entry : kColorArrays) {
    if (name == AsciiLowerCase(entry.name)) {
      return static_cast<std::uint16_t>(entry.code);
    }
  }
  return std::nullopt;
}

std::span<const NamedCode> InterpolationMethods() { return kMethods; }

std::string InterpolationName(std::uint32_t code) { return NameIn(kMethods, code); }

std::span<const NamedCode> Mirrors() { return kMirrors; }

std::string MirrorName(std::uint32_t code) { return NameIn(kMirrors, code); }

std::string ColorArrayName(std::uint32_t code) { return NameIn(kColorArrays, code); }

std::string UsbSpeedName(std::uint32_t speed) { return NameIn(kSpeeds, speed); }

std::span<const NamedCode> CameraFunctions() { return kFunctions; }

std::string DescribeTriggerMode(std::uint32_t mode) {
  const std::uint32_t kind = mode & 0x3u;
  if (kind == 0) {
    return "free run";
  }
  const bool software = (mode & 0xC00u) == 0x400u;
  std::string text = Format("%s trigger %u", software ? "software" : "hardware", kind);
  if ((mode & 0x3000u) == 0x2000u) {
    text += ", started by the sub-trigger";
  }
  if ((mode & 0x100u) != 0) {
    text += ", separate header";
  }
  if (kind == 2 && (mode & 0x40u) == 0) {
    text += ", read out on request";
  }
  return text;
}

std::string DescribeMask(std::uint32_t mask) {
  std::string text;
  for (const std::uint32_t bit : BitsOf(mask)) {
    text += (text.empty() ? "" : ", ") + Format("0x%04X", bit);
  }
  return text.empty() ? "none" : text;
}

std::vector<std::uint32_t> BitsOf(std::uint32_t mask) {
  std::vector<std::uint32_t> bits;
  for (std::uint32_t bit = 1; bit != 0; bit <<= 1) {
    if ((mask & bit) != 0) {
      bits.push_back(bit);
    }
  }
  return bits;
}

}  // namespace vexa::tool

#include "output/tiff_file.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <new>
#include <span>
#include <utility>
#include <vector>

#include "platform/bytes.hpp"

namespace vexa::output {
namespace {

constexpr std::size_t kDirectoryOffset = 8;  // behind byte order, version and this offset
constexpr std::size_t kEntrySize = 12;
constexpr std::size_t kRationalSize = 8;
constexpr std::uint32_t kResolution[] = {720000, 10000};  // 72 pixels per inch

/// Types of directory entries (TIFF 6.0, section 2).
enum class Type : std::uint16_t { kShort = 3, kLong = 4, kRational = 5 };

/// One of the four kinds of TIFF file, and where its parts stand in bytes from the file's start:
/// directory, offset of the next one, both resolutions, bits per sample (where there are several
/// samples), strip.
struct Variant {
  std::uint16_t samples = 0;  // per pixel; 0: no pixel format
  std::uint16_t bits = 0;     // per sample
  std::uint16_t shift = 0;    // of 16-bit samples

  bool grey() const { return samples == 1; }
  std::size_t pixel_size() const { return std::size_t{samples} * bits / 8; }
  std::uint16_t entries() const {
    return static_cast<std::uint16_t>(grey() ? 11 : samples == 3 ? 12 : 13);
  }
  std::uint32_t resolution_offset() const {
    return static_cast<std::uint32_t>(kDirectoryOffset + 2 + kEntrySize * entries() + 4);
  }
  std::uint32_t bits_offset() const {
    return static_cast<std::uint32_t>(resolution_offset() + 2 * kRationalSize);
  }
  std::uint32_t strip_offset() const { return bits_offset() + (grey() ? 0 : 2u * samples); }
};

Variant VariantOf(PixelFormat format) {
  switch (format) {
    case PixelFormat::kMono8:
      return {.samples = 1, .bits = 8};
    case PixelFormat::kMono16:
      return {.samples = 1, .bits = 16};
    case PixelFormat::kMono14:
      return {.samples = 1, .bits = 16, .shift = 2};
    case PixelFormat::kMono12:
      return {.samples = 1, .bits = 16, .shift = 4};
    case PixelFormat::kMono10:
      return {.samples = 1, .bits = 16, .shift = 6};
    case PixelFormat::kBgr24:
      return {.samples = 3, .bits = 8};
    case PixelFormat::kBgr32:
      return {.samples = 4, .bits = 8};
  }
  return {};
}

std::uint64_t StripSize(const Image& image, const Variant& variant) {
  return std::uint64_t{image.width} * image.height * variant.pixel_size();
}

/// Writes the entries of the directory one behind the other.
class Directory {
 public:
  explicit Directory(std::span<std::uint8_t> header) : header_(header) {}

  void Add(std::uint16_t tag, Type type, std::uint32_t value, std::uint32_t count = 1) {
    StoreLe16(header_, at_, tag);
    StoreLe16(header_, at_ + 2, static_cast<std::uint16_t>(type));
    StoreLe32(header_, at_ + 4, count);
    StoreLe32(header_, at_ + 8, value);  // a 16-bit value thus stands in the low half
    at_ += kEntrySize;
  }

 private:
  std::span<std::uint8_t> header_;
  std::size_t at_ = kDirectoryOffset + 2;
};

void FillDirectory(const Image& image, const Variant& variant, std::span<std::uint8_t> header) {
  Directory directory(header);
  directory.Add(256, Type::kShort, image.width);   // ImageWidth
  directory.Add(257, Type::kShort, image.height);  // ImageLength
  directory.Add(258, Type::kShort, variant.grey() ? variant.bits : variant.bits_offset(),
                variant.samples);                            // BitsPerSample
  directory.Add(259, Type::kShort, 1);                       // Compression: none
  directory.Add(262, Type::kShort, variant.grey() ? 1 : 2);  // Photometric: grey from black, or RGB
  directory.Add(273, Type::kLong, variant.strip_offset());   // StripOffsets
  if (!variant.grey()) {
    directory.Add(277, Type::kShort, variant.samples);  // SamplesPerPixel
  }
  directory.Add(278, Type::kShort, image.height);  // RowsPerStrip
  directory.Add(279, Type::kLong,
                static_cast<std::uint32_t>(StripSize(image, variant)));  // StripByteCounts
  directory.Add(282, Type::kRational, variant.resolution_offset());      // XResolution
  directory.Add(283, Type::kRational,
                static_cast<std::uint32_t>(variant.resolution_offset() + kRationalSize));  // Y
  directory.Add(296, Type::kShort, 2);  // ResolutionUnit: inch
  if (variant.samples == 4) {
    directory.Add(338, Type::kShort, 0);  // ExtraSamples: unspecified
  }
}

void FillHeader(const Image& image, const Variant& variant, std::span<std::uint8_t> header) {
  header[0] = 'I';
  header[1] = 'I';
  StoreLe16(header, 2, 42);  // version
  StoreLe32(header, 4, kDirectoryOffset);
  StoreLe16(header, kDirectoryOffset, variant.entries());
  FillDirectory(image, variant, header);
  for (std::size_t i = 0; i < 4; ++i) {
    StoreLe32(header, variant.resolution_offset() + 4 * i, kResolution[i % 2]);
  }
  for (std::size_t i = 0; !variant.grey() && i < variant.samples; ++i) {
    StoreLe16(header, variant.bits_offset() + 2 * i, variant.bits);
  }
}

void FillStrip(std::span<const std::uint8_t> pixels, const Variant& variant,
               std::span<std::uint8_t> strip) {
  if (variant.bits == 16) {
    for (std::size_t i = 0; i < pixels.size(); i += 2) {
      StoreLe16(strip, i, static_cast<std::uint16_t>(LoadLe16(pixels, i) << variant.shift));
    }
    return;
  }
  std::copy(pixels.begin(), pixels.end(), strip.begin());
  if (!variant.grey()) {
    for (std::size_t i = 0; i < strip.size(); i += variant.samples) {
      std::swap(strip[i], strip[i + 2]);  // blue and red
    }
  }
}

std::vector<std::uint8_t> MakeTiff(const Image& image, const Variant& variant) {
  const auto strip_size = static_cast<std::size_t>(StripSize(image, variant));
  std::vector<std::uint8_t> file(variant.strip_offset() + strip_size);
  FillHeader(image, variant, file);
  FillStrip({image.pixels, strip_size}, variant, std::span(file).subspan(variant.strip_offset()));
  return file;
}

}  // namespace

Status CheckTiff(const Image& image) {
  const Variant variant = VariantOf(image.format);
  constexpr std::uint32_t kMaxSide = std::numeric_limits<std::uint16_t>::max();
  constexpr std::uint64_t kMaxFile =
      std::min<std::uint64_t>(std::numeric_limits<std::uint32_t>::max(), PTRDIFF_MAX);
  const auto fits = [](std::uint32_t side) { return side >= 1 && side <= kMaxSide; };
  if (variant.samples == 0 || !fits(image.width) || !fits(image.height) ||
      variant.strip_offset() + StripSize(image, variant) > kMaxFile || image.pixels == nullptr) {
    return error::kInvalidParameter;
  }
  return {};
}

Status WriteTiff(const Image& image, std::FILE* file) {
  std::vector<std::uint8_t> bytes;
  try {
    bytes = MakeTiff(image, VariantOf(image.format));
  } catch (const std::bad_alloc&) {
    return error::kLastErrorKept;
  }
  std::fwrite(bytes.data(), 1, bytes.size(), file);
  return {};
}

}  // namespace vexa::output

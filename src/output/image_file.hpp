/// \file
/// Saving an image in a file whose type follows from its name.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/status.hpp"

namespace vexa::output {

/// Pixel format codes of images to save.
enum class PixelFormat : std::uint32_t {
  kMono8 = 1,
  kMono16 = 2,
  kBgr24 = 4,
  kBgr32 = 8,
  kMono10 = 16,  // 10, 12, 14: samples in the low bits of 16-bit words
  kMono12 = 32,
  kMono14 = 64,
};

/// Bytes per pixel; 0 for a value that is none of the codes.
constexpr std::uint32_t BytesPerPixel(PixelFormat format) {
  switch (format) {
    case PixelFormat::kMono8:
      return 1;
    case PixelFormat::kMono16:
    case PixelFormat::kMono10:
    case PixelFormat::kMono12:
    case PixelFormat::kMono14:
      return 2;
    case PixelFormat::kBgr24:
      return 3;
    case PixelFormat::kBgr32:
      return 4;
  }
  return 0;
}

/// An image in the application's buffer: rows top first, no padding.
struct Image {
  std::uint32_t width = 0;   // pixels
  std::uint32_t height = 0;  // rows
  PixelFormat format{};      // possibly a value that is none of the codes
  const std::uint8_t* pixels = nullptr;
};

enum class FileType { kRaw, kTiff, kJpeg, kBmp };

/// The file type of an extension (the text behind the last "."): the first of RAW, TIF, TIFF, JPG
/// and JPEG that begins with it, without regard to the case of A to Z; BMP when none does.
FileType FileTypeOfExtension(std::u16string_view extension);

/// Saves an image. kInvalidParameter: no "." in the name, or an image that the file type cannot
/// hold; kNotSupported: a type that is not written yet; both before a file is created. kOpenFailed:
/// the file cannot be created. Afterwards whatever the writer reports.
/// @param jpeg_compression for JPEG files; see WriteJpeg.
Status SaveImage(const Image& image, const std::u16string& file_name,
                 std::uint32_t jpeg_compression);

}  // namespace vexa::output

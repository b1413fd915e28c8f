/// \file
/// Drawing bitmaps into a device context: on Windows GDI's, elsewhere a surface in memory that
/// behaves like a GDI memory device context (VexaHost.h).
#pragma once

#include <cstdint>
#include <span>

namespace vexa::platform {

/// Stretch mode in which rows and columns are repeated or left out, not blended (COLORONCOLOR).
inline constexpr int kColorOnColor = 3;

/// A device-independent bitmap, top row first, uncompressed.
struct Bitmap {
  /// BITMAPINFOHEADER with a negative height, and 256 palette entries, which count for 8 bits.
  std::span<const std::uint8_t> info;
  /// Rows, each padded to a multiple of 4 bytes for GDI. The surfaces in memory read no more than
  /// width * height * bytes per pixel bytes and leave pixels beyond these undrawn.
  const std::uint8_t* pixels = nullptr;
};

/// Corner and size of a rectangle. A negative size extends to the left or upwards and mirrors.
struct DrawArea {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
};

/// Copies pixels without scaling (SetDIBitsToDevice, all scan lines of the bitmap). The source has
/// the destination's size; source_y counts from the bitmap's bottom to the rectangle's, and
/// first_scan moves the source down by as many rows. What lies outside the bitmap or the device is
/// left out. Result: the number of scan lines, 0 on failure, with the last error where the system
/// sets one. Host: throws std::bad_alloc.
int CopyBitmap(void* device_context, const DrawArea& destination, int source_x, int source_y,
               std::uint32_t first_scan, const Bitmap& bitmap);

/// Copies pixels, stretched (StretchDIBits, SRCCOPY); source.y counts as above. Result as
/// CopyBitmap().
int StretchBitmap(void* device_context, const DrawArea& destination, const DrawArea& source,
                  const Bitmap& bitmap);

/// Sets the stretch mode and returns the earlier one (SetStretchBltMode); 0 on failure.
int SetStretchMode(void* device_context, int mode);

}  // namespace vexa::platform

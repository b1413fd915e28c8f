#include "platform/drawing_surface.hpp"

#include <windows.h>

#include "platform/bytes.hpp"

namespace vexa::platform {
namespace {

HDC ContextOf(void* device_context) { return static_cast<HDC>(device_context); }

const BITMAPINFO* InfoOf(const Bitmap& bitmap) {
  return reinterpret_cast<const BITMAPINFO*>(bitmap.info.data());
}

UINT HeightOf(const Bitmap& bitmap) { return 0U - LoadLe32(bitmap.info, 8); }

}  // namespace

int CopyBitmap(void* device_context, const DrawArea& destination, int source_x, int source_y,
               std::uint32_t first_scan, const Bitmap& bitmap) {
  return ::SetDIBitsToDevice(ContextOf(device_context), destination.x, destination.y,
                             static_cast<DWORD>(destination.width),
                             static_cast<DWORD>(destination.height), source_x, source_y, first_scan,
                             HeightOf(bitmap), bitmap.pixels, InfoOf(bitmap), DIB_RGB_COLORS);
}

int StretchBitmap(void* device_context, const DrawArea& destination, const DrawArea& source,
                  const Bitmap& bitmap) {
  return ::StretchDIBits(ContextOf(device_context), destination.x, destination.y, destination.width,
                         destination.height, source.x, source.y, source.width, source.height,
                         bitmap.pixels, InfoOf(bitmap), DIB_RGB_COLORS, SRCCOPY);
}

int SetStretchMode(void* device_context, int mode) {
  return ::SetStretchBltMode(ContextOf(device_context), mode);
}

}  // namespace vexa::platform

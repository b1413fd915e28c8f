// Image files.

#include <string>

#include "VexaAPI.h"
#include "exports/call_frame.hpp"
#include "exports/wide_text.hpp"
#include "output/image_file.hpp"
#include "platform/text.hpp"

using vexa::Status;
using namespace vexa::exports;  // NOLINT(google-build-using-namespace): the frame of every function

namespace {

Status Save(DWORD width, DWORD height, DWORD pixel_format, const BYTE* image,
            const std::u16string& file_name, DWORD jpeg_compression) {
  return vexa::output::SaveImage({.width = width,
                                  .height = height,
                                  .format = static_cast<vexa::output::PixelFormat>(pixel_format),
                                  .pixels = image},
                                 file_name, jpeg_compression);
}

}  // namespace

BOOL VEXA_CALL Vexa_SaveImageW(DWORD width, DWORD height, DWORD pixel_format, const BYTE* image,
                               const WCHAR* file_name, DWORD jpeg_compression) {
  return Call([&] {
    return file_name == nullptr
               ? vexa::error::kInvalidParameter
               : Save(width, height, pixel_format, image, CopyWide(file_name), jpeg_compression);
  });
}

BOOL VEXA_CALL Vexa_SaveImageA(DWORD width, DWORD height, DWORD pixel_format, const BYTE* image,
                               const CHAR* file_name, DWORD jpeg_compression) {
  return Call([&] {
    if (file_name == nullptr) {
      return vexa::error::kInvalidParameter;
    }
    std::u16string wide;
    const Status status = vexa::platform::ToWide(file_name, &wide);
    return status.ok() ? Save(width, height, pixel_format, image, wide, jpeg_compression) : status;
  });
}

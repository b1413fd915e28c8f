// Exported image functions that need no camera.
#include "VexaAPI.h"
#include "imaging/interpolation.hpp"
#include "platform/last_error.hpp"

BOOL VEXA_CALL Vexa_ColorInterpolation(DWORD width, DWORD height, WORD color_array,
                                       const BYTE* source, BYTE* destination, BYTE method,
                                       DWORD output_format) {
  const vexa::Status status = vexa::imaging::InterpolateColor({
      .width = width,
      .height = height,
      .color_array = color_array,
      .method = method,
      .output_format = output_format,
      .source = source,
      .destination = destination,
  });
  if (!status.ok()) {
    vexa::platform::SetLastErrorCode(status);
    return FALSE;
  }
  return TRUE;
}

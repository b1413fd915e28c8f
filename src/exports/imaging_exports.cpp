// Image functions on the application's own buffers.

#include "VexaAPI.h"
#include "exports/call_frame.hpp"
#include "imaging/interpolation.hpp"
#include "imaging/mirror_rotation.hpp"

using namespace vexa::exports;  // NOLINT(google-build-using-namespace): the frame of every function

BOOL VEXA_CALL Vexa_ColorInterpolation(DWORD width, DWORD height, WORD color_array,
                                       const BYTE* source, BYTE* destination, BYTE method,
                                       DWORD output_format) {
  return Call([&] {
    return vexa::imaging::InterpolateColor({.width = width,
                                            .height = height,
                                            .color_array = color_array,
                                            .method = method,
                                            .output_format = output_format,
                                            .source = source,
                                            .destination = destination});
  });
}

BOOL VEXA_CALL Vexa_MirrorRotation(BYTE operation, BYTE rotation, DWORD* width, DWORD* height,
                                   WORD* color_array, BYTE* frame) {
  return Call([&]() -> vexa::Status {
    if (width == nullptr || height == nullptr || color_array == nullptr) {
      return vexa::error::kInvalidParameter;
    }
    vexa::imaging::FrameShape shape{
        .width = *width, .height = *height, .color_array = *color_array};
    const vexa::Status status = vexa::imaging::MirrorOrRotate(operation, rotation, &shape, frame);
    *width = shape.width;
    *height = shape.height;
    *color_array = shape.color_array;
    return status;
  });
}

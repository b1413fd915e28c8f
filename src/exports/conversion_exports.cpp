// Pixel format conversion.

#include "VexaAPI.h"
#include "exports/call_frame.hpp"
#include "imaging/conversion.hpp"

using namespace vexa::exports;  // NOLINT(google-build-using-namespace): the frame of every function

BOOL VEXA_CALL Vexa_ConvTo8BitsImage(DWORD width, DWORD height, DWORD transfer_format,
                                     const BYTE* source, BYTE* destination) {
  return Call([&] {
    return vexa::imaging::ConvertTo8Bits({.width = width,
                                          .height = height,
                                          .transfer_format = transfer_format,
                                          .source = source,
                                          .destination = destination});
  });
}

BOOL VEXA_CALL Vexa_ConvYUVOrBGRToBGRImage(DWORD width, DWORD height, DWORD transfer_format,
                                           const BYTE* source, DWORD output_format,
                                           BYTE* destination) {
  return Call([&] {
    return vexa::imaging::ConvertToImage({.width = width,
                                          .height = height,
                                          .transfer_format = transfer_format,
                                          .output_format = output_format,
                                          .source = source,
                                          .destination = destination});
  });
}

// Showing images.

#include "VexaAPI.h"
#include "exports/call_frame.hpp"
#include "platform/last_error.hpp"

using namespace vexa::exports;  // NOLINT(google-build-using-namespace): the frame of every function

int VEXA_CALL Vexa_Draw(HANDLE camera, HDC device_context, int destination_x, int destination_y,
                        int destination_width, int destination_height, int source_x, int source_y,
                        int source_width, int source_height, DWORD image_width, DWORD image_height,
                        const BYTE* image, DWORD pixel_format) {
  int lines = 0;
  CallCamera(camera, [&](vexa::camera::CVexaCamera& object) {
    lines = object.easy_draw().Draw(
        device_context,
        {.x = destination_x,
         .y = destination_y,
         .width = destination_width,
         .height = destination_height},
        {.x = source_x, .y = source_y, .width = source_width, .height = source_height},
        {.width = image_width, .height = image_height, .format = pixel_format, .pixels = image});
    // A failed drawing call has left its reason, one that had nothing to draw what was there.
    return lines != 0 ? vexa::Status() : vexa::platform::LastErrorCode();
  });
  return lines;
}

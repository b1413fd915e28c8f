/* Takes one picture with the first free camera and saves it as a bitmap.
 *
 *   first_picture [FILE.bmp]
 *
 * C11, no library but VexaAPI. */
#if !defined(_WIN32)
#define _POSIX_C_SOURCE 199309L /* nanosleep */
#endif

#include <VexaAPI.h>
#include <stdatomic.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

enum { kLongestWaitMs = 10000, kPollMs = 5 };

/* What the callback hands to main. The callback runs on the camera's transfer thread; it fills the
 * members and then sets `arrived`, and main looks at them only afterwards. */
struct Frame {
  BYTE* pixels; /* `capacity` bytes */
  size_t capacity;
  DWORD width, height, number;
  WORD color_array;
  atomic_bool arrived;
};

static void SleepMs(long milliseconds) {
#if defined(_WIN32)
  Sleep((DWORD)milliseconds);
#else
  struct timespec time = {milliseconds / 1000, milliseconds % 1000 * 1000000L};
  nanosleep(&time, NULL);
#endif
}

static int Fail(const char* what) {
  unsigned long code = GetLastError();
  fprintf(stderr, "first_picture: %s (error %lu)\n", what, code);
  return EXIT_FAILURE;
}

/* Keeps the first frame. The raw image is the library's, so it is copied; a callback that took
 * longer would hold up the frames behind it. */
static void VEXA_CALL OnFrame(HANDLE camera, DWORD number, DWORD width, DWORD height,
                              WORD color_array, BYTE* raw_image, void* context) {
  struct Frame* frame = context;
  size_t size = (size_t)width * height;
  (void)camera;
  if (atomic_load(&frame->arrived) || size > frame->capacity) return;
  memcpy(frame->pixels, raw_image, size);
  frame->width = width;
  frame->height = height;
  frame->number = number;
  frame->color_array = color_array;
  atomic_store(&frame->arrived, 1);
}

/* Streams until one frame has arrived. */
static int ReceiveFrame(HANDLE camera, struct Frame* frame) {
  if (!Vexa_SetTransferBitsPerPixel(camera, VEXA_TRANSFER_8BIT))
    return Fail("the camera does not send 8 bits per pixel");
  if (!Vexa_SetTransferEndCallback(camera, OnFrame, frame))
    return Fail("cannot register the callback");
  if (!Vexa_StartTransfer(camera)) return Fail("cannot start the transfer");
  for (int waited = 0; !atomic_load(&frame->arrived) && waited < kLongestWaitMs; waited += kPollMs)
    SleepMs(kPollMs);
  Vexa_StopTransfer(camera); /* no callback runs from here on */
  if (!atomic_load(&frame->arrived)) {
    fprintf(stderr, "first_picture: no frame within %d s\n", kLongestWaitMs / 1000);
    return EXIT_FAILURE;
  }
  return EXIT_SUCCESS;
}

/* Turns the raw frame into a colour picture and saves it. */
static int SavePicture(const struct Frame* frame, const char* file_name) {
  BYTE* picture = malloc((size_t)frame->width * frame->height * 3);
  int result = EXIT_SUCCESS;
  if (picture == NULL) {
    fprintf(stderr, "first_picture: out of memory\n");
    return EXIT_FAILURE;
  }
  if (!Vexa_ColorInterpolation(frame->width, frame->height, frame->color_array, frame->pixels,
                               picture, VEXA_INTERP_BILINEAR, VEXA_OUTPUT_BGR24)) {
    result = Fail("cannot interpolate the colours");
  } else if (!Vexa_SaveImageA(frame->width, frame->height, VEXA_OUTPUT_BGR24, picture, file_name,
                              0)) {
    result = Fail("cannot save the picture");
  } else {
    printf("frame %lu, %lu x %lu pixels: %s\n", (unsigned long)frame->number,
           (unsigned long)frame->width, (unsigned long)frame->height, file_name);
  }
  free(picture);
  return result;
}

/* Prints who the camera is, and takes the picture. */
static int UseCamera(HANDLE camera, const char* file_name) {
  CHAR name[64];
  WORD product_id, firmware;
  DWORD width, height;
  struct Frame frame = {0};
  int result;
  if (!Vexa_GetProductNameA(camera, name, sizeof name) ||
      !Vexa_GetCameraVersion(camera, NULL, &product_id, NULL, &firmware) ||
      !Vexa_GetMaximumImageSize(camera, &width, &height))
    return Fail("cannot read the camera's identity");
  printf("%s (product 0x%04X, firmware 0x%04X), up to %lu x %lu pixels\n", name, product_id,
         firmware, (unsigned long)width, (unsigned long)height);

  frame.capacity = (size_t)width * height;
  frame.pixels = malloc(frame.capacity);
  if (frame.pixels == NULL) {
    fprintf(stderr, "first_picture: out of memory\n");
    return EXIT_FAILURE;
  }
  result = ReceiveFrame(camera, &frame);
  if (result == EXIT_SUCCESS) result = SavePicture(&frame, file_name);
  free(frame.pixels);
  return result;
}

int main(int argc, char** argv) {
  HANDLE camera;
  int result;
  if (argc > 2) {
    fprintf(stderr, "usage: first_picture [FILE.bmp]\n");
    return EXIT_FAILURE;
  }
  camera = Vexa_Open();
  if (camera == INVALID_HANDLE_VALUE) return Fail("no free camera found");
  result = UseCamera(camera, argc == 2 ? argv[1] : "first_picture.bmp");
  Vexa_Close(camera);
  return result;
}

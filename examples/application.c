/* The shape of a whole application: open, configure, receive frames in a callback, make colour
 * pictures of them, save them, keep the camera's settings in a file, close.
 *
 *   application [FOLDER]     writes picture-1.tif ... picture-3.tif and camera.ini into FOLDER
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

enum { kPictures = 3, kLongestWaitMs = 10000, kPollMs = 5, kPathSize = 512 };

/* Shared by main and the callbacks. The callback fills one frame after the other and raises
 * `received` behind each; main reads only frames below `received`. */
struct Application {
  HANDLE camera;
  DWORD width, height;
  BYTE* frames[kPictures];
  WORD color_array;
  atomic_int received;
  atomic_int error; /* the last receive error, 0 for none */
};

static int Fail(const char* what) {
  unsigned long code = GetLastError();
  fprintf(stderr, "application: %s (error %lu)\n", what, code);
  return EXIT_FAILURE;
}

static void SleepMs(long milliseconds) {
#if defined(_WIN32)
  Sleep((DWORD)milliseconds);
#else
  struct timespec time = {milliseconds / 1000, milliseconds % 1000 * 1000000L};
  nanosleep(&time, NULL);
#endif
}

/* On the camera's transfer thread: copies what is wanted and returns soon. */
static void VEXA_CALL OnFrame(HANDLE camera, DWORD number, DWORD width, DWORD height,
                              WORD color_array, BYTE* raw_image, void* context) {
  struct Application* self = context;
  int index = atomic_load(&self->received);
  (void)camera;
  (void)number;
  if (index == kPictures || width != self->width || height != self->height) return;
  memcpy(self->frames[index], raw_image, (size_t)width * height);
  self->color_array = color_array;
  atomic_store(&self->received, index + 1);
}

/* A lost frame is worth a note; VEXA_RCV_DEVICE_GONE means that no frame will come any more. */
static void VEXA_CALL OnError(HANDLE camera, DWORD error_code, void* context) {
  struct Application* self = context;
  (void)camera;
  atomic_store(&self->error, (int)error_code);
}

/* Takes up the settings of an earlier run, or makes some; the file is for the next run. */
static int Configure(HANDLE camera, const char* setting_file) {
  DWORD clock;
  FILE* file = fopen(setting_file, "r");
  if (file != NULL) {
    fclose(file);
    if (!Vexa_ReadSettingFileA(camera, setting_file)) return Fail("cannot load the settings");
    printf("settings of %s\n", setting_file);
  } else {
    /* 10 ms in units of the pixel clock. */
    if (!Vexa_GetExposureClockFromTime(camera, 0.010f, &clock) ||
        !Vexa_SetExposureClock(camera, clock) || !Vexa_SetGain(camera, 0) ||
        !Vexa_SetTransferBitsPerPixel(camera, VEXA_TRANSFER_8BIT))
      return Fail("cannot set the camera");
  }
  if (!Vexa_WriteSettingFileA(camera, setting_file)) return Fail("cannot save the settings");
  return EXIT_SUCCESS;
}

static int Receive(struct Application* self) {
  int waited;
  if (!Vexa_SetTransferEndCallback(self->camera, OnFrame, self) ||
      !Vexa_SetRcvErrorCallback(self->camera, OnError, self) || !Vexa_StartTransfer(self->camera))
    return Fail("cannot start the transfer");
  for (waited = 0; waited < kLongestWaitMs; waited += kPollMs) {
    if (atomic_load(&self->received) == kPictures ||
        atomic_load(&self->error) == VEXA_RCV_DEVICE_GONE)
      break;
    SleepMs(kPollMs);
  }
  if (!Vexa_StopTransfer(self->camera)) return Fail("cannot stop the transfer");
  if (atomic_load(&self->received) < kPictures) {
    fprintf(stderr, "application: only %d frames came, receive error %X\n",
            atomic_load(&self->received), (unsigned)atomic_load(&self->error));
    return EXIT_FAILURE;
  }
  return EXIT_SUCCESS;
}

/* White balance and tone on the raw frame, then colour, then sharpness on the picture. */
static int Process(struct Application* self, BYTE* raw, BYTE* picture) {
  if (!Vexa_WhiteBalance(self->camera, raw) ||
      !Vexa_RawColorGamma(self->camera, self->width, self->height, self->color_array, raw) ||
      !Vexa_ColorInterpolation(self->width, self->height, self->color_array, raw, picture,
                               VEXA_INTERP_BILINEAR, VEXA_OUTPUT_BGR24) ||
      !Vexa_Sharpness(self->camera, self->width, self->height, VEXA_OUTPUT_BGR24, picture))
    return Fail("cannot process the frame");
  return EXIT_SUCCESS;
}

static int Save(struct Application* self, const char* folder) {
  char path[kPathSize];
  BYTE* picture = malloc((size_t)self->width * self->height * 3);
  int result = EXIT_SUCCESS;
  int i;
  if (picture == NULL) {
    fprintf(stderr, "application: out of memory\n");
    return EXIT_FAILURE;
  }
  for (i = 0; i < kPictures && result == EXIT_SUCCESS; ++i) {
    snprintf(path, sizeof path, "%s/picture-%d.tif", folder, i + 1);
    result = Process(self, self->frames[i], picture);
    if (result == EXIT_SUCCESS &&
        !Vexa_SaveImageA(self->width, self->height, VEXA_OUTPUT_BGR24, picture, path, 0))
      result = Fail("cannot save the picture");
    if (result == EXIT_SUCCESS) printf("%s\n", path);
  }
  free(picture);
  return result;
}

static int Run(struct Application* self, const char* folder) {
  char setting_file[kPathSize];
  WORD mode;
  DWORD offset_x, offset_y;
  int i;
  int result;
  snprintf(setting_file, sizeof setting_file, "%s/camera.ini", folder);
  result = Configure(self->camera, setting_file);
  if (result != EXIT_SUCCESS) return result;
  /* The white balance measures the first frame and keeps the gains that it finds. */
  if (!Vexa_SetWhiteBalanceMode(self->camera, 3) ||
      !Vexa_SetGammaModeEx(self->camera, 0, VEXA_GAMMA_MODE_OFF, 100, 0, 0, NULL) ||
      !Vexa_SetSharpnessMode(self->camera, 1, 50, 8) ||
      !Vexa_GetScanMode(self->camera, &mode, &offset_x, &offset_y, &self->width, &self->height))
    return Fail("cannot prepare the processing");
  for (i = 0; i < kPictures; ++i) {
    self->frames[i] = malloc((size_t)self->width * self->height);
    if (self->frames[i] == NULL) {
      fprintf(stderr, "application: out of memory\n");
      result = EXIT_FAILURE;
    }
  }
  if (result == EXIT_SUCCESS) result = Receive(self);
  if (result == EXIT_SUCCESS) result = Save(self, folder);
  for (i = 0; i < kPictures; ++i) free(self->frames[i]);
  return result;
}

int main(int argc, char** argv) {
  static struct Application application;
  int result;
  if (argc > 2) {
    fprintf(stderr, "usage: application [FOLDER]\n");
    return EXIT_FAILURE;
  }
  application.camera = Vexa_Open();
  if (application.camera == INVALID_HANDLE_VALUE) return Fail("no free camera found");
  result = Run(&application, argc == 2 ? argv[1] : ".");
  Vexa_Close(application.camera);
  return result;
}

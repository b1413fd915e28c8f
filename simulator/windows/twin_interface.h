/** \file
 * What the camera driver (kernel mode, C) and the digital twin in the library beside it (C++) ask
 * of each other. Errors are Windows error codes, 0 is success. Every function may be called on any
 * thread; the twin's do not wait for anything but the end of a frame in the making.
 */
#ifndef VEXA_SIMULATOR_WINDOWS_TWIN_INTERFACE_H
#define VEXA_SIMULATOR_WINDOWS_TWIN_INTERFACE_H

#include <stdint.h>

#ifdef VEXA_BUILDING_TWIN
#define VEXA_TWIN_API __declspec(dllexport)
#else
#define VEXA_TWIN_API __declspec(dllimport)
#endif

#ifdef __cplusplus
extern "C" {
#endif

/** Places for cameras; each is a device of its own for Plug and Play. */
enum { kTwinSlots = 8 };

/** A request is kept: it ends by TwinHost.complete. */
#define TWIN_PENDING 997u

/** What the driver does for the twin. A request is the driver's own name for an I/O request. */
typedef struct TwinHost {
  /** A request will be kept; called before it can end. Answers whether it was cancelled before. */
  int (*pend)(void* request);
  /** A kept request has ended. */
  void (*complete)(void* request, uint32_t error, uint32_t bytes);
  /** A camera has been plugged into a slot, or has gone from it. */
  void (*show)(uint32_t slot, int present);
} TwinHost;

/** 0, or why there can be no cameras. */
VEXA_TWIN_API uint32_t TwinStart(const TwinHost* host);
/** Ends everything; all files are closed. */
VEXA_TWIN_API void TwinStop(void);

/** Opens the camera in a slot; *file is never 0. 2 when there is none. */
VEXA_TWIN_API uint32_t TwinOpen(uint32_t slot, uint32_t* file);
/** Ends the file's reads and closes it. Its requests have all ended, but for I/O controls that the
 * camera takes its time for. */
VEXA_TWIN_API void TwinClose(uint32_t file);
/** An I/O control; input and output may be the same memory. Kept, or answered at once with *bytes
 * in the output. */
VEXA_TWIN_API uint32_t TwinControl(uint32_t file, void* request, uint32_t code, const void* input,
                                   uint32_t input_size, void* output, uint32_t output_size,
                                   uint32_t* bytes);
/** A read: kept or refused. */
VEXA_TWIN_API uint32_t TwinRead(uint32_t file, void* request, void* buffer, uint32_t size);
/** Lets a read end soon, if it has not ended yet. */
VEXA_TWIN_API void TwinCancel(uint32_t file, void* request);
/** A command of whoever controls the cameras (commands.hpp). */
VEXA_TWIN_API uint32_t TwinCommand(const void* input, uint32_t input_size, void* output,
                                   uint32_t output_size, uint32_t* bytes);

#ifdef __cplusplus
}
#endif

#endif

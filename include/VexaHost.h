/**
 * @file VexaHost.h
 * What takes the place of windows on systems that have none: message queues, and drawing surfaces.
 *
 * An application that wants the camera's messages (VEXA_MSG_... in VexaAPI.h) instead of callbacks
 * creates a queue, registers it with Vexa_SetRcvMsgWnd(), and takes the messages from it:
 *
 * @code
 * HWND queue = VexaHost_CreateMessageQueue();
 * Vexa_SetRcvMsgWnd(camera, queue);
 * Vexa_StartTransfer(camera);
 * VexaHostMessage message;
 * while (VexaHost_WaitMessage(queue, &message, 5000)) {
 *   // message.message, message.wparam (the camera handle), message.lparam
 * }
 * @endcode
 *
 * An application that wants to look at what Vexa_Draw() draws creates a surface, passes it where
 * Windows takes a device context, and reads its pixels:
 *
 * @code
 * HDC surface = VexaHost_CreateSurface(640, 480);
 * Vexa_Draw(camera, surface, 0, 0, 640, 480, 0, 0, width, height, width, height, image,
 *           VEXA_OUTPUT_BGR24);
 * VexaHost_ReadSurface(surface, pixels, 640 * 480 * 4);
 * VexaHost_DestroySurface(surface);
 * @endcode
 *
 * @par Results and errors
 * As in VexaAPI.h: a BOOL, 1 for success and 0 for failure, with the reason in GetLastError(). A
 * successful call leaves the last error as it is.
 *
 * @par Threads
 * All functions may be called from any thread at any time. Several threads may wait for one queue;
 * each message goes to one of them. Messages keep the order in which they were posted.
 *
 * @par Life of a queue
 * A queue lives until VexaHost_DestroyMessageQueue(), no longer than the process, and independently
 * of cameras. A queue that is gone does no harm: cameras still registered with it post into the
 * void, and its handle value is never given to another queue. The same holds for surfaces.
 *
 * Plain C (C11) and C++. Not for Windows, where HWND is a window.
 */
#ifndef VEXA_HOST_H_
#define VEXA_HOST_H_

#if defined(_WIN32)
#error "VexaHost.h is for systems without windows; on Windows use a window's message queue"
#endif

#include <stddef.h>

#include "VexaAPI.h"

#ifdef __cplusplus
extern "C" {
#endif

/** A message taken from a queue. */
typedef struct VexaHostMessage {
  DWORD message;    /**< Message number. */
  uintptr_t wparam; /**< First parameter; messages of a camera carry its handle here. */
  intptr_t lparam;  /**< Second parameter: frame number or error code. */
} VexaHostMessage;

/** Number of messages that a queue holds. While it is full, further messages are lost. */
#define VEXA_HOST_QUEUE_CAPACITY 10000

/**
 * Creates an empty message queue.
 * @return the queue, to be passed to Vexa_SetRcvMsgWnd() and to be destroyed with
 *   VexaHost_DestroyMessageQueue(); NULL when memory ran out (last error 8).
 */
VEXA_API HWND VexaHost_CreateMessageQueue(void);

/**
 * Takes the oldest message from a queue, waiting for one if there is none.
 * @param queue a queue.
 * @param message receives the message; untouched on failure.
 * @param timeout_ms longest wait in milliseconds; 0 only looks, INFINITE waits without limit.
 * @return 1; 0 with last error 258 (WAIT_TIMEOUT) when no message came in time, 1400
 *   (ERROR_INVALID_WINDOW_HANDLE) when there is no such queue or it is destroyed during the wait,
 *   87 when message is NULL.
 */
VEXA_API BOOL VexaHost_WaitMessage(HWND queue, VexaHostMessage* message, DWORD timeout_ms);

/**
 * Destroys a queue with the messages in it. Threads that wait for it return with 1400.
 * @param queue a queue.
 * @return 1; 0 with last error 1400 (ERROR_INVALID_WINDOW_HANDLE) when there is no such queue.
 */
VEXA_API BOOL VexaHost_DestroyMessageQueue(HWND queue);

/** @name Stretch modes of a surface
 * Numbers of GDI. A surface keeps its mode for the application; stretching repeats or leaves out
 * pixels in every mode. */
/**@{*/
#define VEXA_HOST_STRETCH_AND 1      /**< BLACKONWHITE, the mode of a new surface. */
#define VEXA_HOST_STRETCH_OR 2       /**< WHITEONBLACK */
#define VEXA_HOST_STRETCH_DELETE 3   /**< COLORONCOLOR, the mode in which Vexa_Draw() stretches. */
#define VEXA_HOST_STRETCH_HALFTONE 4 /**< HALFTONE */
/**@}*/

/**
 * Creates a black drawing surface, which behaves like a GDI device context with a 32-bit bitmap.
 * @param width pixels per row, 1 to 65535.
 * @param height rows, 1 to 65535.
 * @return the surface, to be passed to Vexa_Draw() and to be destroyed with
 *   VexaHost_DestroySurface(); NULL with last error 87 for other sizes, 8 when memory ran out.
 */
VEXA_API HDC VexaHost_CreateSurface(DWORD width, DWORD height);

/**
 * Copies the pixels of a surface.
 * @param surface a surface.
 * @param pixels receives width * height pixels, top row first, no padding, 4 bytes each: blue,
 *   green, red, 0 (VEXA_OUTPUT_BGR32).
 * @param size bytes that pixels has room for.
 * @return 1; 0 with last error 6 (ERROR_INVALID_HANDLE) when there is no such surface, 87 when
 *   pixels is NULL, 122 (ERROR_INSUFFICIENT_BUFFER) when size is too small (nothing is copied).
 */
VEXA_API BOOL VexaHost_ReadSurface(HDC surface, BYTE* pixels, size_t size);

/**
 * The stretch mode of a surface.
 * @param surface a surface.
 * @return the mode; 0 with last error 6 when there is no such surface.
 */
VEXA_API int VexaHost_GetStretchMode(HDC surface);

/**
 * Sets the stretch mode of a surface.
 * @param surface a surface.
 * @param mode a VEXA_HOST_STRETCH_ mode.
 * @return the earlier mode; 0 with last error 6 when there is no such surface, 87 for other modes.
 */
VEXA_API int VexaHost_SetStretchMode(HDC surface, int mode);

/**
 * Destroys a surface. Drawing on it then fails with 6.
 * @param surface a surface.
 * @return 1; 0 with last error 6 (ERROR_INVALID_HANDLE) when there is no such surface.
 */
VEXA_API BOOL VexaHost_DestroySurface(HDC surface);

#ifdef __cplusplus
}
#endif

#endif /* VEXA_HOST_H_ */

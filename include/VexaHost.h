/**
 * @file VexaHost.h
 * What takes the place of windows on systems that have none: message queues.
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
 * void, and its handle value is never given to another queue.
 *
 * Plain C (C11) and C++. Not for Windows, where HWND is a window.
 */
#ifndef VEXA_HOST_H_
#define VEXA_HOST_H_

#if defined(_WIN32)
#error "VexaHost.h is for systems without windows; on Windows use a window's message queue"
#endif

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

#ifdef __cplusplus
}
#endif

#endif /* VEXA_HOST_H_ */

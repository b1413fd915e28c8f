/**
 * @file VexaAPI.h
 * Control library for Vexa industrial USB cameras: the complete public interface.
 *
 * Plain C (C11) and C++. On Windows the functions live in VexaAPI.dll and use the standard calling
 * convention; elsewhere they live in libVexaAPI.so with the platform's C convention.
 *
 * @par Results and errors
 * Unless a function says otherwise it returns a BOOL: 1 for success, 0 for failure. The reason of a
 * failure is the calling thread's last-error code (GetLastError()). The library itself sets
 *   - 87 (ERROR_INVALID_PARAMETER): the camera handle is INVALID_HANDLE_VALUE, an argument is out
 *     of range, a required pointer is null, or the camera model lacks the function;
 *   - 8 (ERROR_NOT_ENOUGH_MEMORY): memory ran out; nothing was changed;
 *   - 1131 (ERROR_POSSIBLE_DEADLOCK): a callback tried to stop or close its own camera;
 *   - the codes that a function names.
 * Every other code is that of the failing system call or of the camera's driver, with the numbers
 * of Windows on every system, for example 1167 (ERROR_DEVICE_NOT_CONNECTED) when the camera is
 * gone. A successful call leaves the last error as it is.
 *
 * @par Handles
 * A camera handle is valid from Vexa_Open() until Vexa_Close(). INVALID_HANDLE_VALUE is the only
 * value that is recognised as invalid; using a handle during or after its Vexa_Close() is
 * undefined.
 *
 * @par Threads
 * Functions may be called from any thread. Requests to one camera are carried out one after the
 * other, requests to different cameras side by side. Callbacks run on the camera's transfer thread.
 * Unless a function says otherwise it may be called from a callback. Settings that take several
 * requests (read, change, write back) are meant to be changed from one thread at a time.
 *
 * @par Numbers on the wire
 * Blocks and registers of the camera are little-endian. Clock means one period of the pixel clock;
 * frequencies are in hertz.
 */
#ifndef VEXA_API_H_
#define VEXA_API_H_

#if defined(_WIN32)
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>
#define VEXA_CALL __stdcall
#if defined(VEXA_BUILDING_LIBRARY)
#define VEXA_API
#else
#define VEXA_API __declspec(dllimport)
#endif
#else
#include <stdint.h>
#ifndef __cplusplus
#include <uchar.h>
#endif
/** Calling convention of functions and callbacks. */
#define VEXA_CALL
/** Marks what the library exports. */
#define VEXA_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

#if !defined(_WIN32)
/** @name Types of the Windows interface, with their Windows widths */
/**@{*/
typedef void* HANDLE;   /**< Camera handle. */
typedef int BOOL;       /**< 1 or 0. */
typedef uint8_t BYTE;   /**< 8 bits, unsigned. */
typedef uint16_t WORD;  /**< 16 bits, unsigned. */
typedef uint32_t DWORD; /**< 32 bits, unsigned. */
typedef char CHAR;      /**< One byte of a string; strings of `A` functions are UTF-8. */
typedef char16_t WCHAR; /**< One UTF-16 code unit, native byte order. */
typedef struct VexaHostWindow* HWND; /**< Receiver of messages: a message queue (VexaHost.h). */
typedef struct VexaHostSurface* HDC; /**< Drawing surface. */
/**@}*/

#ifndef TRUE
/** A BOOL: yes, or success. */
#define TRUE 1
#endif
#ifndef FALSE
/** A BOOL: no, or failure. */
#define FALSE 0
#endif
#ifndef INVALID_HANDLE_VALUE
/** The only invalid camera handle. */
#define INVALID_HANDLE_VALUE ((HANDLE)(intptr_t)-1)
#endif
#ifndef INFINITE
/** A time-out without limit. */
#define INFINITE 0xFFFFFFFFu
#endif

/** The calling thread's last-error code, as on Windows. @return the code, 0 at thread start. */
VEXA_API DWORD GetLastError(void);

/** Sets the calling thread's last-error code. @param code any value. */
VEXA_API void SetLastError(DWORD code);
#endif /* !_WIN32 */

/** @name Colour array codes
 * Phase of the 2 x 2 filter pattern: the first row's first two pixels, then the second row's. */
/**@{*/
#define VEXA_COLOR_ARRAY_MONO 1 /**< No filter. */
#define VEXA_COLOR_ARRAY_RGGB 2 /**< R G / G B */
#define VEXA_COLOR_ARRAY_GRBG 3 /**< G R / B G */
#define VEXA_COLOR_ARRAY_GBRG 4 /**< G B / R G */
#define VEXA_COLOR_ARRAY_BGGR 5 /**< B G / G R */
/**@}*/

/** @name Transfer format codes
 * Layout of the frames that the camera sends, one bit each. Words are little-endian with the sample
 * right-aligned. The two groups of 8 to 16 bits have the same layouts. */
/**@{*/
#define VEXA_TRANSFER_8BIT 0x0001u    /**< One byte per pixel. */
#define VEXA_TRANSFER_10BIT 0x0002u   /**< One word per pixel, 10 significant bits. */
#define VEXA_TRANSFER_12BIT 0x0004u   /**< One word per pixel, 12 significant bits. */
#define VEXA_TRANSFER_14BIT 0x0008u   /**< One word per pixel, 14 significant bits. */
#define VEXA_TRANSFER_16BIT 0x0010u   /**< One word per pixel, 16 significant bits. */
#define VEXA_TRANSFER_8BIT_B 0x0020u  /**< As VEXA_TRANSFER_8BIT. */
#define VEXA_TRANSFER_10BIT_B 0x0040u /**< As VEXA_TRANSFER_10BIT. */
#define VEXA_TRANSFER_12BIT_B 0x0080u /**< As VEXA_TRANSFER_12BIT. */
#define VEXA_TRANSFER_14BIT_B 0x0100u /**< As VEXA_TRANSFER_14BIT. */
#define VEXA_TRANSFER_16BIT_B 0x0200u /**< As VEXA_TRANSFER_16BIT. */
#define VEXA_TRANSFER_BGR24 0x0400u   /**< Three bytes per pixel: blue, green, red. */
#define VEXA_TRANSFER_BGR30 0x0800u   /**< A 32-bit word: B bits 0-9, G 10-19, R 20-29. */
#define VEXA_TRANSFER_YUV411 0x1000u  /**< 1.5 bytes per pixel. */
#define VEXA_TRANSFER_YUV422 0x2000u  /**< 2 bytes per pixel. */
#define VEXA_TRANSFER_YUV444 0x4000u  /**< 3 bytes per pixel. */
/**@}*/

/** @name Image format codes
 * Layout of images in the application's buffers: rows top first, no padding between rows. The
 * 16-bit layouts hold one little-endian word per pixel, the sample right-aligned. */
/**@{*/
#define VEXA_OUTPUT_MONO8 1u   /**< One byte per pixel. */
#define VEXA_OUTPUT_MONO16 2u  /**< 16 significant bits (saving only). */
#define VEXA_OUTPUT_BGR24 4u   /**< Three bytes per pixel: blue, green, red. */
#define VEXA_OUTPUT_BGR32 8u   /**< Four bytes per pixel: blue, green, red, and a fourth byte. */
#define VEXA_OUTPUT_MONO10 16u /**< 10 significant bits (saving only). */
#define VEXA_OUTPUT_MONO12 32u /**< 12 significant bits (saving only). */
#define VEXA_OUTPUT_MONO14 64u /**< 14 significant bits (saving only). */
/**@}*/

/** @name Interpolation methods of Vexa_ColorInterpolation() */
/**@{*/
#define VEXA_INTERP_NONE 0         /**< Raw value in all three channels (grey). */
#define VEXA_INTERP_MOSAIC 1       /**< Raw value in its filter's channel, the others 0. */
#define VEXA_INTERP_NEAREST 2      /**< Samples of the pixel's own 2 x 2 cell. */
#define VEXA_INTERP_BILINEAR 3     /**< Means of two neighbours. */
#define VEXA_INTERP_FOUR_TAP 4     /**< Separable (-1, 5, 5, -1) / 8 filter. */
#define VEXA_INTERP_CELL_CENTRED 5 /**< Bilinear at cell centres; half a pixel right and down. */
/**@}*/

/** @name Gamma channels and modes of Vexa_SetGammaModeEx() */
/**@{*/
#define VEXA_GAMMA_CHANNEL_Y 0    /**< 8-bit images, and the luminance of BGR images. */
#define VEXA_GAMMA_CHANNEL_R 1    /**< Red samples of raw frames. */
#define VEXA_GAMMA_CHANNEL_GR 2   /**< Green samples in rows with red. */
#define VEXA_GAMMA_CHANNEL_GB 3   /**< Green samples in rows with blue. */
#define VEXA_GAMMA_CHANNEL_B 4    /**< Blue samples. */
#define VEXA_GAMMA_MODE_OFF 0     /**< Every level stays. */
#define VEXA_GAMMA_MODE_CURVE 1   /**< A curve from gamma, brightness and contrast. */
#define VEXA_GAMMA_MODE_REVERSE 2 /**< The curve read from its end: a negative. */
#define VEXA_GAMMA_MODE_TABLE 255 /**< The caller's table. */
/**@}*/

/** @name Modes of Vexa_SetColorMatrix() and Vexa_SetHueSaturationMode() */
/**@{*/
#define VEXA_COLOR_MATRIX_OFF 0    /**< The identity. */
#define VEXA_COLOR_MATRIX_USER 255 /**< The caller's matrix. */
#define VEXA_HUE_SATURATION_OFF 0  /**< Colours as they are. */
#define VEXA_HUE_SATURATION_ON 1   /**< Hue and saturation as set. */
/**@}*/

/** @name Time-outs of Vexa_SetTimeOut() */
/**@{*/
#define VEXA_TIMEOUT_ST2EE 0 /**< Software trigger to the first transfer of the frame. */
#define VEXA_TIMEOUT_TE2EE 1 /**< Arming for a hardware trigger to the first transfer. */
#define VEXA_TIMEOUT_EE2TE 2 /**< Exposure end (header) to the image. */
#define VEXA_TIMEOUT_RO2TE 3 /**< Read-out trigger to the image. */
/**@}*/

/** @name Trigger timing identifiers of Vexa_SetTriggerTiming() */
/**@{*/
#define VEXA_TIMING_EXPOSURE_DELAY 0         /**< Exposure delay. */
#define VEXA_TIMING_STROBE_START_DELAY 1     /**< Start of the strobe. */
#define VEXA_TIMING_STROBE_END_DELAY 2       /**< End of the strobe. */
#define VEXA_TIMING_TRIGGER_PULSE_DELAY 3    /**< Start of the trigger pulse. */
#define VEXA_TIMING_TRIGGER_PULSE_DURATION 4 /**< Length of the trigger pulse. */
#define VEXA_TIMING_READ_OUT_DELAY 5         /**< Read-out delay. */
/**@}*/

/** @name Parameter identifiers of Vexa_SetParamDWord() and its sisters
 * In brackets the kind, which chooses the function, and what is allowed. The meaning, unit and
 * range of a value are those of the function named. */
/**@{*/
#define VEXA_PARAM_START_TRANSFER 0x0300       /**< [none, set] Vexa_StartTransfer() */
#define VEXA_PARAM_STOP_TRANSFER 0x0400        /**< [none, set] Vexa_StopTransfer() */
#define VEXA_PARAM_GAIN 0x0800                 /**< [word, set, get] Vexa_SetGain() */
#define VEXA_PARAM_SCAN_MODE 0x0A00            /**< [word, set, get] mode of Vexa_SetScanMode() */
#define VEXA_PARAM_OFFSET_X 0x0A01             /**< [dword, set, get] of Vexa_SetScanMode() */
#define VEXA_PARAM_OFFSET_Y 0x0A02             /**< [dword, set, get] of Vexa_SetScanMode() */
#define VEXA_PARAM_WIDTH 0x0A03                /**< [dword, set, get] of Vexa_SetScanMode() */
#define VEXA_PARAM_HEIGHT 0x0A04               /**< [dword, set, get] of Vexa_SetScanMode() */
#define VEXA_PARAM_CLOCK_MODE 0x0C00           /**< [dword, set, get] mode of Vexa_SetClock() */
#define VEXA_PARAM_CLOCK_FREQUENCY 0x0C01      /**< [dword, set, get] of Vexa_SetClock() */
#define VEXA_PARAM_LINES_PER_FRAME 0x0E00      /**< [word, get] of Vexa_GetFrameClock() */
#define VEXA_PARAM_CLOCKS_PER_LINE 0x0E01      /**< [word, get] of Vexa_GetFrameClock() */
#define VEXA_PARAM_EXPOSURE_CLOCK 0x0F00       /**< [dword, set, get] Vexa_SetExposureClock() */
#define VEXA_PARAM_COLOR_ARRAY 0x1100          /**< [word, get] Vexa_GetColorArray() */
#define VEXA_PARAM_WHITE_BALANCE_GAIN_R 0x1300 /**< [word, set, get] Vexa_SetWhiteBalanceGain() */
#define VEXA_PARAM_WHITE_BALANCE_GAIN_GR                   \
  0x1301 /**< [word, set, get] the same, green on red rows \
          */
#define VEXA_PARAM_WHITE_BALANCE_GAIN_GB \
  0x1302                                       /**< [word, set, get] the same, green on blue rows */
#define VEXA_PARAM_WHITE_BALANCE_GAIN_B 0x1303 /**< [word, set, get] the same, blue */
#define VEXA_PARAM_WHITE_BALANCE_MODE 0x1500   /**< [byte, set, get] Vexa_SetWhiteBalanceMode() */
#define VEXA_PARAM_WHITE_BALANCE 0x1700      /**< [pointer, set] Vexa_WhiteBalance() on the image */
#define VEXA_PARAM_CAMERA_VERSION 0x1A00     /**< [word, get] version, Vexa_GetCameraVersion() */
#define VEXA_PARAM_PRODUCT_ID 0x1A01         /**< [word, get] of Vexa_GetCameraVersion() */
#define VEXA_PARAM_VARIANT 0x1A02            /**< [word, get] of Vexa_GetCameraVersion() */
#define VEXA_PARAM_FIRMWARE_VERSION 0x1A03   /**< [word, get] of Vexa_GetCameraVersion() */
#define VEXA_PARAM_USER_ID_NUMBER 0x1B00     /**< [dword, set, get] Vexa_WriteCameraUserIDW() */
#define VEXA_PARAM_USER_ID_TEXT 0x1B01       /**< [string, set, get] Vexa_WriteCameraUserIDW() */
#define VEXA_PARAM_SOFT_TRIGGER 0x1F00       /**< [none, set] Vexa_SoftTrigger() */
#define VEXA_PARAM_SOFT_SUB_TRIGGER 0x1F01   /**< [none, set] Vexa_SoftSubTrigger() */
#define VEXA_PARAM_TRIGGER_MODE 0x2000       /**< [dword, set, get] Vexa_SetTriggerMode() */
#define VEXA_PARAM_RESET_COUNTER 0x2200      /**< [none, set] Vexa_ResetCounter() */
#define VEXA_PARAM_CLEAR_BUFFER 0x2300       /**< [none, set] Vexa_ClearBuffer() */
#define VEXA_PARAM_TRIGGER_READ_OUT 0x2400   /**< [none, set] Vexa_TriggerReadOut() */
#define VEXA_PARAM_TRIGGER_TIMING 0x2500     /**< [dword, set, get] add a VEXA_TIMING_ identifier */
#define VEXA_PARAM_TIMEOUT 0x2700            /**< [dword, set, get] add a VEXA_TIMEOUT_ index */
#define VEXA_PARAM_DIGITAL_GAIN 0x2900       /**< [word, set, get] Vexa_SetDigitalGain() */
#define VEXA_PARAM_IO_PIN_DIRECTION 0x2B00   /**< [dword, set, get] Vexa_SetIOPinDirection() */
#define VEXA_PARAM_IO_PIN_POLARITY 0x2D00    /**< [dword, set, get] Vexa_SetIOPinPolarity() */
#define VEXA_PARAM_IO_PIN_STATUS 0x2F00      /**< [dword, set, get] Vexa_SetIOPinStatus() */
#define VEXA_PARAM_IO_PIN_MODE 0x3100        /**< [dword, set, get] add the pin, 0 to 3 */
#define VEXA_PARAM_SOFTWARE_STATUS 0x3300    /**< [dword, get] Vexa_GetSwStatus() */
#define VEXA_PARAM_READ_SETTING_FILE 0x3700  /**< [string, set] Vexa_ReadSettingFileW() */
#define VEXA_PARAM_WRITE_SETTING_FILE 0x3900 /**< [string, set] Vexa_WriteSettingFileW() */
/**@}*/

/** @name Window messages of Vexa_SetRcvMsgWnd()
 * wParam is the camera handle. */
/**@{*/
#define VEXA_MSG_TRANSFER_END 0xB101u /**< A frame has arrived; lParam is the frame number. */
#define VEXA_MSG_EXPOSURE_END 0xB102u /**< An exposure has ended; lParam is the frame number. */
#define VEXA_MSG_RCV_ERROR 0xB103u    /**< Receiving failed; lParam is the error code. */
/**@}*/

/** @name Receive errors
 * Error codes of the receive-error callback and message, beside system error codes. */
/**@{*/
#define VEXA_RCV_HEADER_SIZE 0xE0000001u   /**< A header transfer had the wrong size. */
#define VEXA_RCV_FRAME_SIZE 0xE0000002u    /**< A frame had the wrong size and is lost. */
#define VEXA_RCV_TIMEOUT_ST2EE 0xE0000003u /**< Time-out after a software trigger. */
#define VEXA_RCV_TIMEOUT_TE2EE 0xE0000004u /**< Time-out after arming for a hardware trigger. */
#define VEXA_RCV_TIMEOUT_EE2TE 0xE0000005u /**< Time-out between header and image. */
#define VEXA_RCV_TIMEOUT_RO2TE 0xE0000006u /**< Time-out after the read-out trigger. */
#define VEXA_RCV_DEVICE_GONE 5u            /**< The camera is gone; the transfer has ended. */
/**@}*/

/** @name Mirror mode bits of Vexa_SetMirrorMode() */
/**@{*/
#define VEXA_CAMERA_MIRROR_HORIZONTAL 0x10 /**< Left and right exchanged. */
#define VEXA_CAMERA_MIRROR_VERTICAL 0x20   /**< Top and bottom exchanged. */
/**@}*/

/** @name Operations of Vexa_MirrorRotation()
 * Where pixel (x, y) of a frame of width W and height H goes. */
/**@{*/
#define VEXA_MIRROR_NONE 0             /**< Stays. */
#define VEXA_MIRROR_HORIZONTAL 1       /**< (W - 1 - x, y) */
#define VEXA_MIRROR_VERTICAL 2         /**< (x, H - 1 - y) */
#define VEXA_ROTATE_180 3              /**< (W - 1 - x, H - 1 - y) */
#define VEXA_ROTATE_CLOCKWISE 4        /**< (H - 1 - y, x); the frame becomes H x W. */
#define VEXA_ROTATE_COUNTERCLOCKWISE 5 /**< (y, W - 1 - x); H x W. */
#define VEXA_TRANSPOSE_ANTIDIAGONAL 6  /**< (H - 1 - y, W - 1 - x); H x W. */
#define VEXA_TRANSPOSE 7               /**< (y, x); H x W. */
/**@}*/

/** @name Modes of Vexa_NoiseReduction() */
/**@{*/
#define VEXA_NOISE_REDUCTION_OFF 0u        /**< Nothing happens. */
#define VEXA_NOISE_REDUCTION_IMPULSE 1u    /**< Bright impulses are taken down. */
#define VEXA_NOISE_REDUCTION_DARK_FRAME 2u /**< The stored dark frame is subtracted. */
#define VEXA_NOISE_REDUCTION_STORE_DARK_FRAME 0x80000000u /**< The frame is stored as such. */
/**@}*/

/** @name Quarter turns after the mirrors of Vexa_MirrorRotation() */
/**@{*/
#define VEXA_ROTATION_NONE 0             /**< None. */
#define VEXA_ROTATION_CLOCKWISE 1        /**< To the right. */
#define VEXA_ROTATION_COUNTERCLOCKWISE 2 /**< To the left. */
/**@}*/

/** @name White-balance modes of Vexa_SetWhiteBalanceMode() */
/**@{*/
#define VEXA_WHITE_BALANCE_OFF 0    /**< Frames stay as they are. */
#define VEXA_WHITE_BALANCE_MANUAL 1 /**< The current gains. */
#define VEXA_WHITE_BALANCE_AUTO 2   /**< Gains found anew on every frame. */
#define VEXA_WHITE_BALANCE_ONCE 3   /**< Gains found on the next frame; then manual. */
/**@}*/

/**
 * Called when an exposure has ended: in separate-header trigger modes, when a frame's header has
 * arrived and its image has not.
 * @param camera       the camera.
 * @param frame_number the camera's frame number from the header.
 * @param context      as registered.
 * Runs on the transfer thread. Must not call Vexa_StartTransfer(), Vexa_StopTransfer() or
 * Vexa_Close() on this camera (they fail with 1131).
 */
typedef void(VEXA_CALL* VEXA_EXPOSURE_END_CALLBACK)(HANDLE camera, DWORD frame_number,
                                                    void* context);

/**
 * Called for every complete frame.
 * @param camera       the camera.
 * @param frame_number the camera's frame number; a gap means that the camera dropped frames.
 * @param width        pixels per row, of the present scan settings.
 * @param height       rows, of the present scan settings.
 * @param color_array  colour array code of the frame (Vexa_GetColorArray()).
 * @param raw_image    the image in the transfer format that was set when the transfer was started;
 *                     valid only until the callback returns. The application may change it.
 * @param context      as registered.
 * Runs on the transfer thread; while it runs, three further frames are buffered. Must not call
 * Vexa_StartTransfer(), Vexa_StopTransfer() or Vexa_Close() on this camera (they fail with 1131).
 */
typedef void(VEXA_CALL* VEXA_TRANSFER_END_CALLBACK)(HANDLE camera, DWORD frame_number, DWORD width,
                                                    DWORD height, WORD color_array, BYTE* raw_image,
                                                    void* context);

/**
 * Called when receiving a frame failed.
 * @param camera     the camera.
 * @param error_code a receive error (VEXA_RCV_...), or a system error code of the driver. After
 *                   VEXA_RCV_DEVICE_GONE the transfer has ended; after all others it goes on.
 * @param context    as registered.
 * Runs on the transfer thread. Must not call Vexa_StartTransfer(), Vexa_StopTransfer() or
 * Vexa_Close() on this camera (they fail with 1131).
 */
typedef void(VEXA_CALL* VEXA_RCV_ERROR_CALLBACK)(HANDLE camera, DWORD error_code, void* context);

/** @defgroup life Open, close, version */
/**@{*/

/**
 * Opens the first camera that no handle, of this or another process, is using.
 *
 * Cameras are tried in the order in which the system lists them. One that does not answer is
 * recovered twice, where its driver can do that, before the next is tried. Reads the camera's
 * identity and its present settings.
 * @return the camera handle, or INVALID_HANDLE_VALUE. The last error is then 8 when memory ran out,
 *         else whatever the failing system call left: 259 (ERROR_NO_MORE_ITEMS) after a list of
 *         cameras with no free one.
 */
VEXA_API HANDLE VEXA_CALL Vexa_Open(void);

/**
 * Stops the transfer as Vexa_StopTransfer() does, closes the camera and frees everything.
 *
 * No callback runs after it has returned. The handle must not be used by any thread during or after
 * the call.
 * @param camera the camera; INVALID_HANDLE_VALUE does nothing and sets no last error. From a
 *               callback of the same camera nothing is closed and the last error is 1131.
 */
VEXA_API void VEXA_CALL Vexa_Close(HANDLE camera);

/**
 * The library's version, from its version resource.
 * @param[out] file_high    file version, high word pair: major << 16 | minor.
 * @param[out] file_low     file version, low word pair: patch << 16 | build.
 * @param[out] product_high product version, high word pair.
 * @param[out] product_low  product version, low word pair.
 *             All four are 0 when the version cannot be read; each pointer may be null.
 * @return always 1.
 */
VEXA_API BOOL VEXA_CALL Vexa_GetDllVersion(DWORD* file_high, DWORD* file_low, DWORD* product_high,
                                           DWORD* product_low);

/**
 * Sends a camera-setting command and reads the camera's settings again.
 * @param camera  the camera; its firmware version must be 0x0100 or above, else 87.
 * @param command passed to the camera unchanged.
 * @return 1 when the command and the reading of the settings succeeded.
 */
VEXA_API BOOL VEXA_CALL Vexa_CameraSetting(HANDLE camera, WORD command);

/**
 * Speed of the USB link, from the maximum packet size of the first bulk-in endpoint in the
 * configuration descriptor (USB 2.0 chapter 9.6).
 * @param camera     the camera.
 * @param[out] speed 0 full speed (packets up to 64 bytes) or no such endpoint, 1 high speed (up to
 *                   512 bytes, or no endpoint descriptors), 2 SuperSpeed. 0 on failure.
 */
VEXA_API BOOL VEXA_CALL Vexa_GetUSBSpeed(HANDLE camera, BYTE* speed);
/**@}*/

/** @defgroup request Control requests, registers, commands */
/**@{*/

/**
 * Sends one vendor request over the control pipe (USB 2.0 chapter 9.3), with a time-out of 1000 ms
 * in the driver.
 * @param camera              the camera.
 * @param request_type        bmRequestType: 0x40 host to device, 0xC0 device to host; bit 7 decides
 *                            the direction of the data stage.
 * @param request             bRequest.
 * @param value               wValue.
 * @param index               wIndex.
 * @param length              wLength: bytes of the data stage.
 * @param[in,out] buffer      `length` bytes: sent, or filled with up to `length` bytes of the
 * reply. May be null when `length` is 0.
 * @param[out] bytes_returned bytes that the driver reports; may be null.
 */
VEXA_API BOOL VEXA_CALL Vexa_VendorRequest(HANDLE camera, BYTE request_type, BYTE request,
                                           WORD value, WORD index, WORD length, BYTE* buffer,
                                           DWORD* bytes_returned);

/**
 * Writes the 16-bit registers `first` to `last` of a register block.
 * @param camera the camera; models without register access (product IDs 0x0305, 0x0605, 0x0705 and
 *               0x0805) give 87.
 * @param block  register block, low 16 bits.
 * @param first  first register, low 7 bits count.
 * @param last   last register, low 7 bits count; below `first` gives 87.
 * @param data   2 * (last - first + 1) bytes, little-endian words.
 */
VEXA_API BOOL VEXA_CALL Vexa_SetFPGAData(HANDLE camera, DWORD block, DWORD first, DWORD last,
                                         BYTE* data);

/**
 * Reads the 16-bit registers `first` to `last` of a register block.
 * @param camera    the camera; see Vexa_SetFPGAData().
 * @param block     register block, low 16 bits.
 * @param first     first register, low 7 bits count.
 * @param last      last register, low 7 bits count; below `first` gives 87.
 * @param[out] data 2 * (last - first + 1) bytes, little-endian words.
 */
VEXA_API BOOL VEXA_CALL Vexa_GetFPGAData(HANDLE camera, DWORD block, DWORD first, DWORD last,
                                         BYTE* data);

/** Writes registers of the JBA block (76). @param camera,first,last,data as Vexa_SetFPGAData();
 * registers of 128 and above give 87. */
VEXA_API BOOL VEXA_CALL Vexa_SetJBARegister(HANDLE camera, DWORD first, DWORD last, BYTE* data);
/** Reads registers of the JBA block (76). @param camera,first,last,data as Vexa_GetFPGAData();
 * registers of 128 and above give 87. */
VEXA_API BOOL VEXA_CALL Vexa_GetJBARegister(HANDLE camera, DWORD first, DWORD last, BYTE* data);
/** Writes registers of the IOA block (16). @param camera,first,last,data as Vexa_SetFPGAData();
 * registers of 128 and above give 87. */
VEXA_API BOOL VEXA_CALL Vexa_SetIOARegister(HANDLE camera, DWORD first, DWORD last, BYTE* data);
/** Reads registers of the IOA block (16). @param camera,first,last,data as Vexa_GetFPGAData();
 * registers of 128 and above give 87. */
VEXA_API BOOL VEXA_CALL Vexa_GetIOARegister(HANDLE camera, DWORD first, DWORD last, BYTE* data);
/** Writes registers of the ITA block (32). @param camera,first,last,data as Vexa_SetFPGAData();
 * registers of 128 and above give 87. */
VEXA_API BOOL VEXA_CALL Vexa_SetITARegister(HANDLE camera, DWORD first, DWORD last, BYTE* data);
/** Reads registers of the ITA block (32). @param camera,first,last,data as Vexa_GetFPGAData();
 * registers of 128 and above give 87. */
VEXA_API BOOL VEXA_CALL Vexa_GetITARegister(HANDLE camera, DWORD first, DWORD last, BYTE* data);

/**
 * Resets the camera.
 * @param camera the camera; a model without register access gives 87.
 * @param mode   reset mode 0 to 3, low two bits count.
 */
VEXA_API BOOL VEXA_CALL Vexa_ResetCamera(HANDLE camera, DWORD mode);

/** Resets the camera's frame counter. @param camera the camera; a model without register access
 * gives 87. */
VEXA_API BOOL VEXA_CALL Vexa_ResetCounter(HANDLE camera);

/** Discards the frames that wait in the camera's memory. @param camera the camera. */
VEXA_API BOOL VEXA_CALL Vexa_ClearBuffer(HANDLE camera);
/**@}*/

/** @defgroup identity Model and capabilities */
/**@{*/

/**
 * Whether the camera has an optional function.
 * @param camera       the camera.
 * @param function     function ID: below 64 a bit of the camera's capability mask, with rules per
 *                     model for 0, 1, 2 and 6; 256 to 258, 260 and 261 present on every model with
 *                     register access; 259 monochrome sensor; any other ID of 64 and above absent.
 * @param[out] present 1 or 0; 0 also for an invalid handle.
 */
VEXA_API BOOL VEXA_CALL Vexa_HasFunction(HANDLE camera, DWORD function, BOOL* present);

/**
 * The identity words of the camera.
 * @param camera          the camera.
 * @param[out] version    version word A.
 * @param[out] product_id product ID.
 * @param[out] variant    variant of the product.
 * @param[out] firmware   firmware version.
 *                        Each pointer may be null.
 */
VEXA_API BOOL VEXA_CALL Vexa_GetCameraVersion(HANDLE camera, WORD* version, WORD* product_id,
                                              WORD* variant, WORD* firmware);

/**
 * The camera's model name, UTF-16; "UNKNOWN" for a product ID that the library does not know.
 * @param camera      the camera.
 * @param[out] buffer receives the name and its terminator.
 * @param size        size of the buffer in bytes. A buffer that does not hold the whole name
 *                    receives an empty string (when it holds one character) and the call fails with
 *                    122 (ERROR_INSUFFICIENT_BUFFER). 64 bytes hold every name.
 */
VEXA_API BOOL VEXA_CALL Vexa_GetProductNameW(HANDLE camera, WCHAR* buffer, DWORD size);

/**
 * The camera's model name in the ANSI code page (UTF-8 where there are no code pages).
 * @param camera      the camera.
 * @param[out] buffer receives the name and its terminator.
 * @param size        size of the buffer in bytes; one that is too small gives 122.
 * @return bytes written, terminator included, or 0 on failure.
 */
VEXA_API int VEXA_CALL Vexa_GetProductNameA(HANDLE camera, CHAR* buffer, DWORD size);

/** The largest image that the camera makes. @param camera the camera. @param[out] width pixels.
 * @param[out] height lines. Each pointer may be null. */
VEXA_API BOOL VEXA_CALL Vexa_GetMaximumImageSize(HANDLE camera, DWORD* width, DWORD* height);
/** Mask of the transfer formats that the camera supports. @param camera the camera.
 * @param[out] mask VEXA_TRANSFER_ codes, combined. */
VEXA_API BOOL VEXA_CALL Vexa_GetEnableTransferBitsPerPixel(HANDLE camera, DWORD* mask);
/** Mask of the scan modes that the camera supports. @param camera the camera.
 * @param[out] mask scan mode codes, combined. */
VEXA_API BOOL VEXA_CALL Vexa_GetEnableScanMode(HANDLE camera, WORD* mask);
/** Mask of the clock modes that the camera supports. @param camera the camera.
 * @param[out] mask the camera's clock modes. */
VEXA_API BOOL VEXA_CALL Vexa_GetEnableClockMode(HANDLE camera, DWORD* mask);

/**
 * The colour array of the frames that the camera sends now: that of its sensor, changed by the
 * in-camera mirror (horizontal mirroring exchanges the columns of the pattern, vertical mirroring
 * its rows).
 * @param camera            the camera.
 * @param[out] color_array  a VEXA_COLOR_ARRAY_ code.
 */
VEXA_API BOOL VEXA_CALL Vexa_GetColorArray(HANDLE camera, WORD* color_array);

/**
 * Sets the mirroring that the camera does itself.
 * @param camera the camera.
 * @param mode   VEXA_CAMERA_MIRROR_ bits; other bits are ignored. Horizontal needs function 22,
 * vertical function 23, else 87. On a model with neither, a mode without both bits succeeds and
 * sends nothing. The colour array follows also when the camera refuses.
 */
VEXA_API BOOL VEXA_CALL Vexa_SetMirrorMode(HANDLE camera, BYTE mode);
/** Reads the mirroring from the camera. @param camera the camera. @param[out] mode
 * VEXA_CAMERA_MIRROR_ bits; 0 on failure and on a model without mirroring. */
VEXA_API BOOL VEXA_CALL Vexa_GetMirrorMode(HANDLE camera, BYTE* mode);
/**@}*/

/** @defgroup memory Camera memory and user ID
 *
 * Memory travels in requests of up to 4096 bytes. A request that fails ends the call with its code;
 * what came before it has taken place. A request of which the driver reports 0 bytes fails with 31
 * (ERROR_GEN_FAILURE). The user memory and the user ID stay in the camera when it is switched off.
 */
/**@{*/

/**
 * Reads the camera's RAM, whose meaning is the camera's.
 * @param camera           the camera.
 * @param first            first address. Below 0x4000, and for 0xE600 alone, another request is
 *                         used than above.
 * @param last             last address; below `first` reads nothing and succeeds. So do the
 *                         addresses 0 to 0xFFFF together, since lengths have 16 bits.
 * @param[out] buffer      last - first + 1 bytes.
 * @param[out] transferred bytes read; untouched on failure; may be null.
 */
VEXA_API BOOL VEXA_CALL Vexa_ReadRAM(HANDLE camera, WORD first, WORD last, BYTE* buffer,
                                     DWORD* transferred);
/** Writes the camera's RAM. @param camera,first,last as Vexa_ReadRAM(). @param buffer
 * last - first + 1 bytes. @param[out] transferred bytes written; untouched on failure; may be null.
 */
VEXA_API BOOL VEXA_CALL Vexa_WriteRAM(HANDLE camera, WORD first, WORD last, BYTE* buffer,
                                      DWORD* transferred);

/** Reads from the 1024 bytes that the camera keeps for the application. @param camera the camera.
 * @param[out] buffer `length` bytes. @param offset first byte. @param length bytes;
 * offset + length above 1024 gives 87. */
VEXA_API BOOL VEXA_CALL Vexa_ReadUserMemory(HANDLE camera, BYTE* buffer, WORD offset, WORD length);
/** Writes to the 1024 bytes that the camera keeps for the application. @param camera the camera.
 * @param buffer `length` bytes. @param offset first byte. @param length bytes; offset + length
 * above 1024 gives 87. */
VEXA_API BOOL VEXA_CALL Vexa_WriteUserMemory(HANDLE camera, BYTE* buffer, WORD offset, WORD length);

/**
 * Reads the camera's user ID: a number and a text.
 * @param camera       the camera.
 * @param[out] user_id the number; untouched when the camera does not answer; may be null.
 * @param[out] buffer  receives the text, UTF-16, with zeros up to the buffer's end. A text that was
 *                     written as UTF-16 and is too long is cut to leave a terminating zero. One
 *                     that was written in the ANSI code page is converted, with malformed bytes
 *                     replaced. No text, or a record that makes no sense, gives zeros.
 * @param size         size of the buffer in bytes; of a half character nothing is used. 0 reads the
 *                     number alone. A converted text that leaves no room for a zero character
 *                     behind it, the one that was stored with it included, gives 122
 *                     (ERROR_INSUFFICIENT_BUFFER): 502 bytes hold every text.
 */
VEXA_API BOOL VEXA_CALL Vexa_ReadCameraUserIDW(HANDLE camera, DWORD* user_id, WCHAR* buffer,
                                               DWORD size);
/**
 * Reads the camera's user ID with its text in the ANSI code page (UTF-8 where there are no code
 * pages).
 * @param camera       the camera.
 * @param[out] user_id as Vexa_ReadCameraUserIDW().
 * @param[out] buffer  as Vexa_ReadCameraUserIDW(), with the forms exchanged.
 * @param size         size of the buffer in bytes. A converted text that does not fit gives 122;
 * one that was stored without a zero and fills the buffer has none. 376 bytes hold every text and a
 * zero.
 */
VEXA_API BOOL VEXA_CALL Vexa_ReadCameraUserIDA(HANDLE camera, DWORD* user_id, CHAR* buffer,
                                               DWORD size);
/**
 * Writes the camera's user ID.
 * @param camera  the camera.
 * @param user_id any number.
 * @param text    UTF-16; may be null for no text.
 * @param size    size of the text's buffer in bytes; of a half character nothing is used. The text
 *                ends at its first zero character, which is stored with it, or with the buffer. Of
 *                more than 250 bytes the first 248 are stored.
 */
VEXA_API BOOL VEXA_CALL Vexa_WriteCameraUserIDW(HANDLE camera, DWORD user_id, const WCHAR* text,
                                                DWORD size);
/** Writes the camera's user ID with a text in the ANSI code page (UTF-8 where there are no code
 * pages). @param camera,user_id,size as Vexa_WriteCameraUserIDW(). @param text stored as it is; of
 * more than 250 bytes the first 249. */
VEXA_API BOOL VEXA_CALL Vexa_WriteCameraUserIDA(HANDLE camera, DWORD user_id, const CHAR* text,
                                                DWORD size);
/**@}*/

/** @defgroup timing Timing and geometry */
/**@{*/

/**
 * Sets the pixel clock.
 * @param camera    the camera.
 * @param mode      clock mode, a bit of Vexa_GetEnableClockMode(); the camera checks it.
 * @param frequency pixel clock in hertz; the camera checks it.
 * Limits and times that depend on the clock follow at the next change of the scan mode or start of
 * a transfer.
 */
VEXA_API BOOL VEXA_CALL Vexa_SetClock(HANDLE camera, DWORD mode, DWORD frequency);
/** Reads the pixel clock. @param camera the camera. @param[out] mode clock mode; may be null.
 * @param[out] frequency hertz; may be null. */
VEXA_API BOOL VEXA_CALL Vexa_GetClock(HANDLE camera, DWORD* mode, DWORD* frequency);

/**
 * Sets the scan mode and the region of interest, and reads the resulting timing.
 * @param camera   the camera; it checks the values.
 * @param mode     scan mode code, a bit of Vexa_GetEnableScanMode().
 * @param offset_x left edge in pixels.
 * @param offset_y top edge in lines.
 * @param width    pixels per line.
 * @param height   lines.
 * The size of frames changes with the next Vexa_StartTransfer().
 */
VEXA_API BOOL VEXA_CALL Vexa_SetScanMode(HANDLE camera, WORD mode, DWORD offset_x, DWORD offset_y,
                                         DWORD width, DWORD height);
/** The scan mode and region of interest, from the library's copy of the camera's settings.
 * @param camera the camera. @param[out] mode scan mode code. @param[out] offset_x pixels.
 * @param[out] offset_y lines. @param[out] width pixels. @param[out] height lines. Each pointer may
 * be null. */
VEXA_API BOOL VEXA_CALL Vexa_GetScanMode(HANDLE camera, WORD* mode, DWORD* offset_x,
                                         DWORD* offset_y, DWORD* width, DWORD* height);

/**
 * Sets skipping and binning (scan mode 0x8000), and reads the resulting timing.
 * @param camera             the camera; a model without register access gives 87.
 * @param horizontal_skipping 0 to 15, low 4 bits count; so for the others.
 * @param vertical_skipping   0 to 15.
 * @param horizontal_binning  0 to 15.
 * @param vertical_binning    0 to 15.
 */
VEXA_API BOOL VEXA_CALL Vexa_SetSkippingAndBinning(HANDLE camera, BYTE horizontal_skipping,
                                                   BYTE vertical_skipping, BYTE horizontal_binning,
                                                   BYTE vertical_binning);
/** Reads skipping and binning. @param camera the camera. @param[out] horizontal_skipping 0 to 15.
 * @param[out] vertical_skipping 0 to 15. @param[out] horizontal_binning 0 to 15.
 * @param[out] vertical_binning 0 to 15. All are 0 on failure; each pointer may be null. */
VEXA_API BOOL VEXA_CALL Vexa_GetSkippingAndBinning(HANDLE camera, BYTE* horizontal_skipping,
                                                   BYTE* vertical_skipping,
                                                   BYTE* horizontal_binning,
                                                   BYTE* vertical_binning);

/** Frame timing, from the library's copy. @param camera the camera. @param[out] lines lines per
 * frame. @param[out] clocks clocks per line. Each pointer may be null. */
VEXA_API BOOL VEXA_CALL Vexa_GetFrameClock(HANDLE camera, WORD* lines, WORD* clocks);
/** Shutter maximum clock: clocks per line - 1, from the library's copy. @param camera the camera.
 * @param[out] clock clocks. */
VEXA_API BOOL VEXA_CALL Vexa_GetShutterMaxClock(HANDLE camera, DWORD* clock);

/**
 * Sets the exposure.
 * @param camera         the camera.
 * @param exposure_clock clocks; 0 means one full frame. Sent as lines of (shutter maximum clock +
 * 1) clocks and a remainder. 87 when the camera reports 0 clocks per line.
 */
VEXA_API BOOL VEXA_CALL Vexa_SetExposureClock(HANDLE camera, DWORD exposure_clock);
/** Reads the exposure. @param camera the camera. @param[out] exposure_clock clocks; untouched on
 * failure. */
VEXA_API BOOL VEXA_CALL Vexa_GetExposureClock(HANDLE camera, DWORD* exposure_clock);
/** Longest exposure that does not lengthen the frame. @param camera the camera. @param[out] clock
 * clocks. */
VEXA_API BOOL VEXA_CALL Vexa_GetMaxShortExposureClock(HANDLE camera, DWORD* clock);
/** Longest exposure. @param camera the camera. @param[out] clock clocks. */
VEXA_API BOOL VEXA_CALL Vexa_GetMaxLongExposureClock(HANDLE camera, DWORD* clock);

/**
 * Exposure clocks of an exposure time: frequency * seconds, truncated; on product IDs 0x0111 and
 * 0x0211, whose exposures count lines of a length that depends on binning,
 * (frequency * seconds + K) / P with K and P of their line timing.
 * @param camera              the camera.
 * @param seconds             exposure time. Not a number counts as 0.
 * @param[out] exposure_clock clocks, 1 to the longest exposure.
 */
VEXA_API BOOL VEXA_CALL Vexa_GetExposureClockFromTime(HANDLE camera, float seconds,
                                                      DWORD* exposure_clock);
/**
 * Exposure time of exposure clocks, the inverse of Vexa_GetExposureClockFromTime().
 * @param camera         the camera.
 * @param exposure_clock clocks, limited to the longest exposure; 0 means one full frame.
 * @param[out] seconds   exposure time; 0 when the camera reports a pixel clock of 0.
 */
VEXA_API BOOL VEXA_CALL Vexa_GetExposureTimeFromClock(HANDLE camera, DWORD exposure_clock,
                                                      float* seconds);

/** Sets the vertical blanking that slows the frame rate, and reads the resulting timing.
 * @param camera the camera; it needs function 21, else 87. @param lines low 16 bits count. */
VEXA_API BOOL VEXA_CALL Vexa_SetVBlankForFPS(HANDLE camera, DWORD lines);
/** Reads the vertical blanking. @param camera the camera; it needs function 21, else 87.
 * @param[out] lines 0 to 65535. */
VEXA_API BOOL VEXA_CALL Vexa_GetVBlankForFPS(HANDLE camera, DWORD* lines);

/**
 * The frame rate: measured by the camera (function 20), else frequency / frame length. In scan
 * modes 0x0004 and 0x0020 an exposure of more lines than the frame lengthens it.
 * @param camera   the camera.
 * @param[out] fps frames per second; 0 on failure and when the frame length is 0.
 */
VEXA_API BOOL VEXA_CALL Vexa_GetOutputFPS(HANDLE camera, float* fps);

/** Sets the transfer format. @param camera the camera. @param code a VEXA_TRANSFER_ code; bits that
 * the camera does not support are dropped, none left gives 87. Frames change with the next
 * Vexa_StartTransfer(). */
VEXA_API BOOL VEXA_CALL Vexa_SetTransferBitsPerPixel(HANDLE camera, DWORD code);
/** The transfer format, from the library's copy. @param camera the camera. @param[out] code a
 * VEXA_TRANSFER_ code. */
VEXA_API BOOL VEXA_CALL Vexa_GetTransferBitsPerPixel(HANDLE camera, DWORD* code);
/**@}*/

/** @defgroup camera_functions Image functions of the camera
 *
 * Corrections that the camera's own electronics make on models that have them
 * (Vexa_HasFunction()). The setters refuse what a model lacks with 87 and send nothing; the getters
 * then give 0 with success. Only the low 16 bits of values and indexes count. What a value means
 * beyond the ranges named here is the camera's. Mirroring stands with the identity functions,
 * because the colour array depends on it. */
/**@{*/

/** Sets how binned pixels are put together. @param camera the camera; needs function 61. @param
 * mode 0 or 1, else 87. */
VEXA_API BOOL VEXA_CALL Vexa_SetBinningSumMode(HANDLE camera, DWORD mode);
/** Reads the binning sum mode. @param camera the camera. @param[out] mode 0 on failure and on a
 * model without it. */
VEXA_API BOOL VEXA_CALL Vexa_GetBinningSumMode(HANDLE camera, WORD* mode);

/** Sets the camera's gamma. @param camera the camera; needs function 57. @param value 0 to 63, else
 * 87. */
VEXA_API BOOL VEXA_CALL Vexa_SetCameraGammaValue(HANDLE camera, DWORD value);
/** Reads the camera's gamma. @param camera the camera. @param[out] value 0 on failure and on a
 * model without it. */
VEXA_API BOOL VEXA_CALL Vexa_GetCameraGammaValue(HANDLE camera, WORD* value);

/** Sets the digital clamp (black level). @param camera the camera; needs function 55. @param value
 * 0 to 255, else 87. */
VEXA_API BOOL VEXA_CALL Vexa_SetDigitalClamp(HANDLE camera, DWORD value);
/** Reads the digital clamp. @param camera the camera. @param[out] value 0 on failure and on a model
 * without it. */
VEXA_API BOOL VEXA_CALL Vexa_GetDigitalClamp(HANDLE camera, WORD* value);

/** Entries of the camera's defect pixel table. @param camera the camera. @param[out] count 64 on a
 * model with function 59, else 0. */
VEXA_API BOOL VEXA_CALL Vexa_GetEnableDefectPixelCorrectionCount(HANDLE camera, WORD* count);
/** Sets the defect pixel correction mode. @param camera the camera; needs function 59. @param mode
 * the camera's mode, low 16 bits count. */
VEXA_API BOOL VEXA_CALL Vexa_SetDefectPixelCorrectionMode(HANDLE camera, DWORD mode);
/** Reads the defect pixel correction mode. @param camera the camera. @param[out] mode 0 on failure
 * and on a model without it. */
VEXA_API BOOL VEXA_CALL Vexa_GetDefectPixelCorrectionMode(HANDLE camera, WORD* mode);
/**
 * Sets an entry of the defect pixel table.
 * @param camera the camera; needs function 59.
 * @param index  entry, from 0; not below Vexa_GetEnableDefectPixelCorrectionCount() gives 87.
 * @param x,y    column and row of the pixel in the frame, low 16 bits count; 0xFFFF and 0xFFFF mark
 *               an unused entry.
 */
VEXA_API BOOL VEXA_CALL Vexa_SetDefectPixelCorrectionPosition(HANDLE camera, DWORD index, DWORD x,
                                                              DWORD y);
/** Reads an entry of the defect pixel table. @param camera the camera. @param index as for the
 * setter. @param[out] x column. @param[out] y row. Each pointer may be null; untouched on
 * failure. */
VEXA_API BOOL VEXA_CALL Vexa_GetDefectPixelCorrectionPosition(HANDLE camera, DWORD index, DWORD* x,
                                                              DWORD* y);

/**
 * Sets the white-balance gains: of the camera itself on models with function 24, else those that
 * Vexa_WhiteBalance() applies on the host. There a sample i becomes min(255, i * gain / 128).
 *
 * At Vexa_Open() the camera's default gains are in force on the host, and those in the camera's
 * registers in the camera.
 * @param camera     the camera.
 * @param red        gain of red pixels; 128 is unity.
 * @param green_red  gain of green pixels in red rows.
 * @param green_blue gain of green pixels in blue rows.
 * @param blue       gain of blue pixels.
 *
 * Frames are corrected with all four old gains or all four new ones; the call waits for a running
 * Vexa_WhiteBalance().
 */
VEXA_API BOOL VEXA_CALL Vexa_SetWhiteBalanceGain(HANDLE camera, WORD red, WORD green_red,
                                                 WORD green_blue, WORD blue);
/** The white-balance gains; on models with function 24 read from the camera. @param camera the
 * camera. @param[out] red,green_red,green_blue,blue as for the setter; 0 on failure. Each pointer
 * may be null. */
VEXA_API BOOL VEXA_CALL Vexa_GetWhiteBalanceGain(HANDLE camera, WORD* red, WORD* green_red,
                                                 WORD* green_blue, WORD* blue);
/**
 * Sets the white-balance mode.
 * @param camera the camera.
 * @param mode   VEXA_WHITE_BALANCE_ code, low 8 bits count; not checked. On models with function 24
 *               the camera interprets it, elsewhere Vexa_WhiteBalance(), for which codes above 3
 *               are as VEXA_WHITE_BALANCE_MANUAL. On the host the mode is manual after Vexa_Open().
 */
VEXA_API BOOL VEXA_CALL Vexa_SetWhiteBalanceMode(HANDLE camera, DWORD mode);
/** The white-balance mode; on models with function 24 read from the camera. @param camera the
 * camera. @param[out] mode 0 on failure. */
VEXA_API BOOL VEXA_CALL Vexa_GetWhiteBalanceMode(HANDLE camera, BYTE* mode);
/**@}*/

/** @defgroup gain Gain */
/**@{*/

/**
 * Sets the analog gain: reads the camera's gain and exposure block, changes it and writes it back.
 * @param camera the camera.
 * @param gain   setting value, usually 0 to Vexa_GetMaxGain(). The library does not check it: a
 *               value that the camera refuses fails with the driver's code, and nothing changes.
 * The present gain of the level control (Vexa_ALC()) follows.
 */
VEXA_API BOOL VEXA_CALL Vexa_SetGain(HANDLE camera, WORD gain);
/** Reads the analog gain. @param camera the camera. @param[out] gain setting value; untouched on
 * failure. */
VEXA_API BOOL VEXA_CALL Vexa_GetGain(HANDLE camera, WORD* gain);
/** The highest analog gain of the present scan settings, from the library's copy. @param camera the
 * camera. @param[out] gain setting value. */
VEXA_API BOOL VEXA_CALL Vexa_GetMaxGain(HANDLE camera, WORD* gain);

/**
 * Decibels of an analog gain.
 *
 * The curve is the model's. With function 49 and without 16 the amplification is linear in two
 * segments: 20 * log10(a / 64) with a = 8 * (v + 8) below v = 21, else 28 * (v - 12). With function
 * 16 and without 49: (v + 128) * 0.07038 + 2. All others: v * 0.132 - 2.36.
 * @param camera       the camera; nothing is sent.
 * @param value        setting value v, low 16 bits count; it may lie above Vexa_GetMaxGain().
 * @param[out] decibel decibels.
 */
VEXA_API BOOL VEXA_CALL Vexa_GetGainDBFromSettingValue(HANDLE camera, DWORD value, float* decibel);

/** Sets the digital gain, a factor that the camera applies to its samples. @param camera the
 * camera. @param gain in the camera's units; the camera checks it. */
VEXA_API BOOL VEXA_CALL Vexa_SetDigitalGain(HANDLE camera, WORD gain);
/** Reads the digital gain. @param camera the camera. @param[out] gain in the camera's units; 0 on
 * failure. */
VEXA_API BOOL VEXA_CALL Vexa_GetDigitalGain(HANDLE camera, WORD* gain);
/**@}*/

/** @defgroup level Automatic level control
 *
 * Keeps the brightness of the image at a target level, by exposure (AE) and analog gain (AGC)
 * within limits. Two loops exist. The library's makes one step with every Vexa_ALC(); the camera's
 * own runs by itself on models with function 25 (gain) or 26 (exposure). Mode, target and limits
 * are for both: where the model has the function, the library also writes them to the camera's
 * registers. Vexa_Open() and Vexa_CameraSetting() set mode 0, target 128, exposure 1 clock to one
 * full frame and the whole gain range, then read target and limits from such a camera.
 *
 * No range is checked. An exposure of 0 clocks stands for one full frame
 * (Vexa_GetMaxShortExposureClock()) also in the limits. Setters other than Vexa_SetALCMode() keep
 * the value in the library also when writing it to the camera fails. Getters give the camera's
 * value where the model has it; when reading it fails they fail and give the library's. Functions
 * of this group may run on different threads. */
/**@{*/

/** @name Change report of Vexa_ALC() */
/**@{*/
#define VEXA_ALC_EXPOSURE_CHANGED 1u /**< The exposure has changed. */
#define VEXA_ALC_GAIN_CHANGED 2u     /**< The gain has changed. */
/**@}*/

/**
 * Sets the modes of both loops.
 * @param camera the camera.
 * @param mode   low 8 bits count. Bits 0-3, the library's loop: 0 off; 1 exposure and gain, the
 * gain only where the exposure is at its maximum; 2 exposure; 3 gain; 4 to 6 as 1 to 3, but the
 * mode becomes 0 with the first step that changes nothing; 7 to 15 as 3 without bringing the gain
 * into its limits first. Bits 4-7, the camera's loop (its own modes). 87, nothing changes: both
 * loops at once, or the camera's on a model without functions 25 and 26. The library's mode follows
 * also when the camera fails to take its own.
 */
VEXA_API BOOL VEXA_CALL Vexa_SetALCMode(HANDLE camera, DWORD mode);
/** Reads the modes of both loops. @param camera the camera. @param[out] mode as Vexa_SetALCMode().
 */
VEXA_API BOOL VEXA_CALL Vexa_GetALCMode(HANDLE camera, BYTE* mode);
/** Sets the target level. @param camera the camera. @param level brightness on the scale of the
 * levels that Vexa_ALC() is given, low 16 bits count. */
VEXA_API BOOL VEXA_CALL Vexa_SetALCTargetLevel(HANDLE camera, DWORD level);
/** Reads the target level. @param camera the camera. @param[out] level brightness. */
VEXA_API BOOL VEXA_CALL Vexa_GetALCTargetLevel(HANDLE camera, WORD* level);
/** Sets the upper limit of the gain. @param camera the camera. @param gain setting value, low 16
 * bits count. */
VEXA_API BOOL VEXA_CALL Vexa_SetAGCMaxGain(HANDLE camera, DWORD gain);
/** Reads the upper limit of the gain. @param camera the camera. @param[out] gain setting value. */
VEXA_API BOOL VEXA_CALL Vexa_GetAGCMaxGain(HANDLE camera, WORD* gain);
/** Sets the lower limit of the gain. @param camera the camera. @param gain setting value, low 16
 * bits count. */
VEXA_API BOOL VEXA_CALL Vexa_SetAGCMinGain(HANDLE camera, DWORD gain);
/** Reads the lower limit of the gain. @param camera the camera. @param[out] gain setting value. */
VEXA_API BOOL VEXA_CALL Vexa_GetAGCMinGain(HANDLE camera, WORD* gain);
/** Sets the upper limit of the exposure. @param camera the camera. @param exposure_clock clocks; 0
 * means one full frame. */
VEXA_API BOOL VEXA_CALL Vexa_SetAEMaxExposureClock(HANDLE camera, DWORD exposure_clock);
/** Reads the upper limit of the exposure. @param camera the camera. @param[out] exposure_clock
 * clocks. */
VEXA_API BOOL VEXA_CALL Vexa_GetAEMaxExposureClock(HANDLE camera, DWORD* exposure_clock);
/** Sets the lower limit of the exposure. @param camera the camera. @param exposure_clock clocks; 0
 * means one full frame. */
VEXA_API BOOL VEXA_CALL Vexa_SetAEMinExposureClock(HANDLE camera, DWORD exposure_clock);
/** Reads the lower limit of the exposure. @param camera the camera. @param[out] exposure_clock
 * clocks. */
VEXA_API BOOL VEXA_CALL Vexa_GetAEMinExposureClock(HANDLE camera, DWORD* exposure_clock);

/**
 * One step of the library's loop: brings gain and exposure into their limits or, when they are
 * there, closer to the target, and writes both to the camera in one request.
 *
 * Nothing changes while the level is within 5 of the target, or within 10 when the step before
 * changed nothing. One step at most doubles the exposure, or amplifies the present gain's picture
 * twofold. Best called with the level of a frame that was exposed after the step before.
 * @param camera       the camera; in mode 0 nothing is sent.
 * @param level        measured brightness of a frame, low 16 bits count.
 * @param[out] changed VEXA_ALC_ bits; 0 when nothing changed. Also set when writing to the camera
 *                     fails; the loop then goes on from the values that it tried to write.
 * May be called from a callback.
 */
VEXA_API BOOL VEXA_CALL Vexa_ALC(HANDLE camera, DWORD level, DWORD* changed);
/**@}*/

/** @defgroup trigger Trigger and I/O */
/**@{*/

/**
 * Sets the trigger mode and discards the frames in the camera's memory.
 *
 * The transfer engine's waits follow at the next Vexa_StartTransfer().
 * @param camera the camera; a model without register access gives 87.
 * @param mode   bits 0-1: 0 free run, 1 to 3 triggered; 2 with bit 6 clear: images are read out
 *               only after Vexa_TriggerReadOut(). Bit 8: the header comes at the end of the
 * exposure, the image after it. Bits 10-11: 0x400 software trigger. Bits 12-13: 0x2000
 *               Vexa_SoftSubTrigger() starts the frame (needs function 1, else 87). Other bits are
 *               the camera's.
 */
VEXA_API BOOL VEXA_CALL Vexa_SetTriggerMode(HANDLE camera, DWORD mode);
/** Reads the trigger mode. @param camera the camera. @param[out] mode as Vexa_SetTriggerMode(); 0
 * on failure and, with success, on a model without register access. */
VEXA_API BOOL VEXA_CALL Vexa_GetTriggerMode(HANDLE camera, DWORD* mode);
/** Sets a trigger timing value. @param camera the camera. @param id VEXA_TIMING_ identifier 0 to 5,
 * else 87. @param value in the camera's units. */
VEXA_API BOOL VEXA_CALL Vexa_SetTriggerTiming(HANDLE camera, DWORD id, DWORD value);
/** Reads a trigger timing value. @param camera the camera. @param id VEXA_TIMING_ identifier 0 to
 * 5, else 87. @param[out] value in the camera's units; 0 on failure. */
VEXA_API BOOL VEXA_CALL Vexa_GetTriggerTiming(HANDLE camera, DWORD id, DWORD* value);
/** Sets the directions of the I/O pins. @param camera the camera. @param word the camera's word,
 * low 16 bits count. */
VEXA_API BOOL VEXA_CALL Vexa_SetIOPinDirection(HANDLE camera, DWORD word);
/** Reads the directions of the I/O pins. @param camera the camera. @param[out] word 0 on failure.
 */
VEXA_API BOOL VEXA_CALL Vexa_GetIOPinDirection(HANDLE camera, DWORD* word);
/** Sets the polarities of the I/O pins. @param camera the camera. @param word the camera's word,
 * low 16 bits count. */
VEXA_API BOOL VEXA_CALL Vexa_SetIOPinPolarity(HANDLE camera, DWORD word);
/** Reads the polarities of the I/O pins. @param camera the camera. @param[out] word 0 on failure.
 */
VEXA_API BOOL VEXA_CALL Vexa_GetIOPinPolarity(HANDLE camera, DWORD* word);
/** Sets the levels of the I/O pins. @param camera the camera. @param word the camera's word, low 16
 * bits count. */
VEXA_API BOOL VEXA_CALL Vexa_SetIOPinStatus(HANDLE camera, DWORD word);
/** Reads the levels of the I/O pins. @param camera the camera. @param[out] word 0 on failure. */
VEXA_API BOOL VEXA_CALL Vexa_GetIOPinStatus(HANDLE camera, DWORD* word);
/** Sets the mode of an I/O pin. @param camera the camera. @param pin 0 to 3 (low 8 bits count),
 * else
 * 87. @param mode the camera's pin mode, low 16 bits count. */
VEXA_API BOOL VEXA_CALL Vexa_SetIOPinMode(HANDLE camera, DWORD pin, DWORD mode);
/** Reads the mode of an I/O pin. @param camera the camera. @param pin 0 to 3 (low 8 bits count),
 * else
 * 87. @param[out] mode 0 on failure. */
VEXA_API BOOL VEXA_CALL Vexa_GetIOPinMode(HANDLE camera, DWORD pin, DWORD* mode);
/** Reads the software status word. @param camera the camera. @param[out] word 0 on failure. */
VEXA_API BOOL VEXA_CALL Vexa_GetSwStatus(HANDLE camera, DWORD* word);
/** Sets the LED. @param camera the camera. @param value the camera's value, low 16 bits count. */
VEXA_API BOOL VEXA_CALL Vexa_SetLEDStatus(HANDLE camera, DWORD value);
/** Reads the LED. @param camera the camera. @param[out] value 0 on failure. */
VEXA_API BOOL VEXA_CALL Vexa_GetLEDStatus(HANDLE camera, DWORD* value);

/** Software trigger. @param camera the camera. Starts the wait of VEXA_TIMEOUT_ST2EE, unless the
 * trigger mode at the start of the transfer had the sub-trigger source. */
VEXA_API BOOL VEXA_CALL Vexa_SoftTrigger(HANDLE camera);
/** Software sub-trigger. @param camera the camera; a model without register access gives 87. Starts
 * the wait of VEXA_TIMEOUT_ST2EE when the trigger mode at the start of the transfer had the
 * sub-trigger source. */
VEXA_API BOOL VEXA_CALL Vexa_SoftSubTrigger(HANDLE camera);
/** Has the frame in the camera's SDRAM sent. @param camera the camera; a model without register
 * access gives 87. */
VEXA_API BOOL VEXA_CALL Vexa_ReadSDRAMTrigger(HANDLE camera);
/** Starts the read-out of the exposed image. @param camera the camera; a model without register
 * access gives 87. Starts the wait of VEXA_TIMEOUT_RO2TE. */
VEXA_API BOOL VEXA_CALL Vexa_TriggerReadOut(HANDLE camera);
/**@}*/

/** @defgroup transfer Image transfer */
/**@{*/

/**
 * Starts the transfer of frames; a running one is stopped first.
 *
 * Reads the scan settings and the trigger mode from the camera: frame size, format and waits stay
 * as they are now until the next start. Two threads run per transferring camera.
 * @param camera the camera. From a callback of the same camera: 1131, nothing changes.
 */
VEXA_API BOOL VEXA_CALL Vexa_StartTransfer(HANDLE camera);

/**
 * Stops the transfer. When it returns, no thread of the camera runs and no notification follows.
 * @param camera the camera. From a callback of the same camera: 1131, nothing changes.
 * @return 1, also when no transfer runs.
 */
VEXA_API BOOL VEXA_CALL Vexa_StopTransfer(HANDLE camera);

/**
 * Sets a time-out of the trigger modes; it counts from the transfer thread's next wait.
 * @param camera       the camera.
 * @param index        VEXA_TIMEOUT_ index 0 to 3, else 87.
 * @param milliseconds INFINITE waits without limit. Vexa_Open() sets INFINITE for 0 and 1, 5000 for
 *                     2 and 3.
 */
VEXA_API BOOL VEXA_CALL Vexa_SetTimeOut(HANDLE camera, DWORD index, DWORD milliseconds);
/** Reads a time-out. @param camera the camera. @param index VEXA_TIMEOUT_ index 0 to 3, else 87.
 * @param[out] milliseconds the time-out. */
VEXA_API BOOL VEXA_CALL Vexa_GetTimeOut(HANDLE camera, DWORD index, DWORD* milliseconds);

/**
 * Registers the function to call at the end of an exposure, in place of the earlier one.
 * @param camera   the camera.
 * @param callback the function; null removes the registration.
 * @param context  passed to it unchanged.
 * Waits while a callback of this camera runs; inside one it takes effect at once.
 */
VEXA_API BOOL VEXA_CALL Vexa_SetExposureEndCallback(HANDLE camera,
                                                    VEXA_EXPOSURE_END_CALLBACK callback,
                                                    void* context);
/** Registers the function to call for every frame. @param camera,callback,context as
 * Vexa_SetExposureEndCallback(). */
VEXA_API BOOL VEXA_CALL Vexa_SetTransferEndCallback(HANDLE camera,
                                                    VEXA_TRANSFER_END_CALLBACK callback,
                                                    void* context);
/** Registers the function to call for receive errors. @param camera,callback,context as
 * Vexa_SetExposureEndCallback(). */
VEXA_API BOOL VEXA_CALL Vexa_SetRcvErrorCallback(HANDLE camera, VEXA_RCV_ERROR_CALLBACK callback,
                                                 void* context);
/** Sets the window to which the VEXA_MSG_ messages are posted, each after the callback of the same
 * event has returned. @param camera the camera. @param window null posts none. */
VEXA_API BOOL VEXA_CALL Vexa_SetRcvMsgWnd(HANDLE camera, HWND window);

/**
 * Sets how many frames are kept for Vexa_TakeRawSnapShot(), and forgets those kept so far.
 *
 * The transfer thread copies every frame into a ring of this length, where a new frame takes the
 * place of the oldest one. Until this call or the first Vexa_TakeRawSnapShot() there is no ring,
 * and frames are not copied.
 * @param camera the camera.
 * @param count  frames of the present image size; 0 frees the ring, and the next
 *               Vexa_TakeRawSnapShot() makes one of 2.
 * @return 1, also when memory ran out; the next Vexa_TakeRawSnapShot() then tries again.
 *
 * Not while another thread waits in Vexa_TakeRawSnapShot(): that one would wait in vain.
 */
VEXA_API BOOL VEXA_CALL Vexa_SetRawSnapShotBufferCount(HANDLE camera, DWORD count);

/**
 * Takes the oldest raw frame that has been kept, or waits for the next one. Starts the transfer
 * when none runs, and leaves it running.
 *
 * Makes a ring of the length set with Vexa_SetRawSnapShotBufferCount(), at least 2, when there is
 * none, and a new one when the image size has changed. Each Vexa_StartTransfer() empties it. Frames
 * reach the ring before their transfer-end callback runs.
 * @param camera            the camera.
 * @param[out] buffer       receives the image in the transfer format, without header, cut to the
 *                          buffer; may be null when buffer_size is 0.
 * @param buffer_size       bytes that the buffer has room for.
 * @param[out] bytes_copied bytes put into the buffer; may be null. Unchanged on failure.
 * @param[out] frame_number the camera's frame number; may be null. Unchanged on failure.
 * @param timeout           longest wait in milliseconds; 0 only looks, INFINITE waits without
 *                          limit.
 * @return 0 with 258 (WAIT_TIMEOUT) when no frame came in time; 5 when the transfer has ended
 *         because the camera is gone, or is stopped during the wait; 8 when memory for the ring ran
 *         out; 170 (ERROR_BUSY) when another thread waits here for this camera; else the error of
 *         Vexa_StartTransfer().
 *
 * One thread at a time may wait on a camera. In a callback of the same camera the time-out counts
 * as 0, because the frame waited for could not come.
 */
VEXA_API BOOL VEXA_CALL Vexa_TakeRawSnapShot(HANDLE camera, BYTE* buffer, DWORD buffer_size,
                                             DWORD* bytes_copied, DWORD* frame_number,
                                             DWORD timeout);

/** Bytes of the most recently received transfer, accepted or lost. @param camera the camera.
 * @param[out] size bytes; 0 for an invalid handle.
 * @return always 0; the last error is set (87) only for an invalid handle. */
VEXA_API BOOL VEXA_CALL Vexa_GetLastLostFrameDataSize(HANDLE camera, DWORD* size);
/** The first 64 bytes of the most recently accepted frame header. @param camera the camera.
 * @param[out] header 64 bytes; zeros for an invalid handle.
 * @return always 0; the last error is set (87) only for an invalid handle. */
VEXA_API BOOL VEXA_CALL Vexa_GetLastLostFrameHeader(HANDLE camera, BYTE* header);

/** Stores the transfer mode, which the library itself does not use. @param camera the camera.
 * @param mode any value. @return the stored mode (0 also for an invalid handle, with 87). */
VEXA_API DWORD VEXA_CALL Vexa_SetTransferMode(HANDLE camera, DWORD mode);
/** The stored transfer mode. @param camera the camera. @param[out] mode 0 until set. */
VEXA_API BOOL VEXA_CALL Vexa_GetTransferMode(HANDLE camera, DWORD* mode);
/**@}*/

/** @defgroup parameters Settings and actions by number
 *
 * For applications that drive a camera from a table: most settings and actions under a number, a
 * VEXA_PARAM_ identifier. Each leads to the function that the identifier names, with that
 * function's ranges, errors and threading; the handle is checked there. An identifier that is
 * unknown, or of another kind than the function takes, gives 0 with 87, and nothing is sent.
 *
 * Where an identifier stands for one value of several (a coordinate of the region of interest, a
 * white-balance gain, the clock's mode or frequency, the number or text of the user ID), setting it
 * reads the present values, replaces the one and writes all of them; a failed reading ends the
 * call. Two threads that set values of the same setting can undo each other's change. */
/**@{*/

/** Carries out an action. @param camera the camera. @param id identifier of kind none. */
VEXA_API BOOL VEXA_CALL Vexa_SetParamNone(HANDLE camera, DWORD id);
/** Sets a value of 8 bits. @param camera the camera. @param id identifier of kind byte.
 * @param value the low 8 bits count. */
VEXA_API BOOL VEXA_CALL Vexa_SetParamByte(HANDLE camera, DWORD id, DWORD value);
/** Reads a value of 8 bits. @param camera the camera. @param id identifier of kind byte.
 * @param[out] value 0 on failure. */
VEXA_API BOOL VEXA_CALL Vexa_GetParamByte(HANDLE camera, DWORD id, BYTE* value);
/** Sets a value of 16 bits. @param camera the camera. @param id identifier of kind word.
 * @param value the low 16 bits count. */
VEXA_API BOOL VEXA_CALL Vexa_SetParamWord(HANDLE camera, DWORD id, DWORD value);
/** Reads a value of 16 bits. @param camera the camera. @param id identifier of kind word.
 * @param[out] value 0 on failure. */
VEXA_API BOOL VEXA_CALL Vexa_GetParamWord(HANDLE camera, DWORD id, WORD* value);
/** Sets a value of 32 bits. @param camera the camera. @param id identifier of kind dword.
 * @param value in the unit of the function that the identifier names. */
VEXA_API BOOL VEXA_CALL Vexa_SetParamDWord(HANDLE camera, DWORD id, DWORD value);
/** Reads a value of 32 bits. @param camera the camera. @param id identifier of kind dword.
 * @param[out] value 0 on failure. */
VEXA_API BOOL VEXA_CALL Vexa_GetParamDWord(HANDLE camera, DWORD id, DWORD* value);
/** Passes a string. @param camera the camera. @param id identifier of kind string.
 * @param text the user ID's text, or the path of a setting file.
 * @param size of the user ID's text, bytes; not used for a path. */
VEXA_API BOOL VEXA_CALL Vexa_SetParamStringW(HANDLE camera, DWORD id, const WCHAR* text,
                                             DWORD size);
/** Reads a string. @param camera the camera. @param id identifier of kind string.
 * @param[out] text as Vexa_ReadCameraUserIDW() fills it. @param size of text, bytes. */
VEXA_API BOOL VEXA_CALL Vexa_GetParamStringW(HANDLE camera, DWORD id, WCHAR* text, DWORD size);
/** Vexa_SetParamStringW() in the ANSI code page. @param camera,id,text,size as there. */
VEXA_API BOOL VEXA_CALL Vexa_SetParamStringA(HANDLE camera, DWORD id, const CHAR* text, DWORD size);
/** Vexa_GetParamStringW() in the ANSI code page. @param camera,id,text,size as there. */
VEXA_API BOOL VEXA_CALL Vexa_GetParamStringA(HANDLE camera, DWORD id, CHAR* text, DWORD size);
/** Passes a pointer. @param camera the camera. @param id identifier of kind pointer.
 * @param pointer the image of Vexa_WhiteBalance(). */
VEXA_API BOOL VEXA_CALL Vexa_SetParamPtr(HANDLE camera, DWORD id, void* pointer);
/** No identifier can be read as a pointer. @param camera,id not used.
 * @param[out] pointer null. @return always 0, with 87. */
VEXA_API BOOL VEXA_CALL Vexa_GetParamPtr(HANDLE camera, DWORD id, void** pointer);
/**@}*/

/** @defgroup power Processor idle state */
/**@{*/

/**
 * Allows or forbids the machine's processors their idle states in the active power scheme. Waking
 * from an idle state can take longer than a camera's buffer lasts.
 *
 * Acts on the whole machine and lasts beyond the program. Windows Vista (version 6.0, as
 * GetVersionEx() tells it to the program) changes the idle-state policies that the scheme refers
 * to, later versions the setting "processor idle disable", earlier ones the permission to move to
 * deeper idle states in the processor power scheme. Elsewhere than on Windows the state is kept in
 * the process and has no effect.
 * @param ac_enabled 0 forbids idle states on mains power; any other value allows them (before
 *                   Windows Vista the lowest bit counts).
 * @param dc_enabled the same for battery power.
 * @return 0 with the reason why PowrProf.dll could not be loaded or lacks a function (126, 127); 13
 *         (ERROR_INVALID_DATA) when an idle-state policy is too short; else the code of the power
 *         function that failed. What was changed before the failure stays.
 *
 * Calls of several threads or processes are not coordinated.
 */
VEXA_API BOOL VEXA_CALL Vexa_SetProcessorIdleState(BOOL ac_enabled, BOOL dc_enabled);

/**
 * Reads whether the machine's processors may use their idle states.
 * @param[out] ac_enabled 1 or 0 for mains power; may be null. Unchanged on failure.
 * @param[out] dc_enabled the same for battery power.
 * @return as Vexa_SetProcessorIdleState().
 */
VEXA_API BOOL VEXA_CALL Vexa_GetProcessorIdleState(BOOL* ac_enabled, BOOL* dc_enabled);
/**@}*/

/** @defgroup imaging Image processing */
/**@{*/

/**
 * Turns an 8-bit raw frame into a colour image.
 *
 * @param width         pixels per row.
 * @param height        rows.
 * @param color_array   VEXA_COLOR_ARRAY_ code of the frame. A monochrome frame becomes grey,
 * whatever the method.
 * @param source        width * height bytes.
 * @param destination   width * height * 1, 3 or 4 bytes for VEXA_OUTPUT_MONO8, _BGR24 and _BGR32;
 * must not overlap the source. The fourth byte of BGR32 becomes 0.
 * @param method        VEXA_INTERP_ code.
 * @param output_format VEXA_OUTPUT_MONO8 (the source is copied unchanged whatever the method and
 *                      colour array), VEXA_OUTPUT_BGR24 or VEXA_OUTPUT_BGR32.
 * @return 0 with 87 for an unknown output format (destination untouched), method or colour array,
 *         for null pointers, and for images too small for the method: VEXA_INTERP_BILINEAR needs 2
 *         columns and 4 rows, VEXA_INTERP_FOUR_TAP 6 and 6, VEXA_INTERP_CELL_CENTRED 2 columns. A
 *         height below 2 writes nothing and succeeds for the methods above VEXA_INTERP_NONE.
 *
 * Width and height should be even. With an odd size VEXA_INTERP_MOSAIC and VEXA_INTERP_NEAREST
 * leave the last column or row unwritten. Starts no thread, keeps no state, allocates nothing.
 */
VEXA_API BOOL VEXA_CALL Vexa_ColorInterpolation(DWORD width, DWORD height, WORD color_array,
                                                const BYTE* source, BYTE* destination, BYTE method,
                                                DWORD output_format);

/**
 * Reduces a raw or monochrome frame to 8 bits per pixel.
 *
 * @param width           pixels per row.
 * @param height          rows.
 * @param transfer_format VEXA_TRANSFER_ code of the frame. Samples of 10, 12, 14 and 16 bits lose
 *                        their lowest 2, 4, 6 and 8 bits; of words with more significant bits than
 *                        the format has, the low byte of what remains counts. Every other code,
 *                        several bits at once too, is taken for 8 bits: a copy.
 * @param source          width * height bytes or words.
 * @param destination     width * height bytes; must not overlap the source.
 * @return 0 with 87 for VEXA_TRANSFER_BGR24, _BGR30, _YUV411, _YUV422 and _YUV444, and for null
 *         pointers.
 *
 * Starts no thread, keeps no state, allocates nothing.
 */
VEXA_API BOOL VEXA_CALL Vexa_ConvTo8BitsImage(DWORD width, DWORD height, DWORD transfer_format,
                                              const BYTE* source, BYTE* destination);

/**
 * Turns a frame of any transfer format into an image, without interpolating colours.
 *
 * Raw and monochrome samples become 8 bits as in Vexa_ConvTo8BitsImage(), for BGR images in all
 * three channels. VEXA_TRANSFER_BGR30 gives the high 8 bits of its fields. YUV groups hold, in this
 * order, U Y0 Y1 V Y2 Y3 (4:1:1, four pixels), U Y0 V Y1 (4:2:2, two pixels) and U Y V (4:4:4, one
 * pixel), U and V offset by 128; with u = U - 128 and v = V - 128
 *   B = Y + 1.7718 u,  G = Y - 0.3441 u - 0.7139 v,  R = Y + 1.402 v
 * (the full-range weights of ITU-R BT.601), each product truncated toward zero and each sum limited
 * to 0..255.
 *
 * @param width           pixels per row; for the YUV formats a multiple of 4.
 * @param height          rows.
 * @param transfer_format VEXA_TRANSFER_ code of the frame. Every other code, several bits at once
 *                        too, writes nothing and succeeds.
 * @param source          the frame: rows top first, no padding.
 * @param output_format   VEXA_OUTPUT_MONO8 (colour frames give their green or Y), VEXA_OUTPUT_BGR24
 *                        or VEXA_OUTPUT_BGR32.
 * @param destination     width * height pixels; must not overlap the source. The fourth byte of
 *                        BGR32 keeps its value.
 * @return 0 with 87 for an unknown output format, a YUV frame whose width is not a multiple of 4
 *         (nothing is written: its rows would end inside a group), and for null pointers.
 *
 * Starts no thread, keeps no state, allocates nothing.
 */
VEXA_API BOOL VEXA_CALL Vexa_ConvYUVOrBGRToBGRImage(DWORD width, DWORD height,
                                                    DWORD transfer_format, const BYTE* source,
                                                    DWORD output_format, BYTE* destination);

/**
 * Sets one of the camera object's tone curves (the camera itself does not know of them). The curve
 * is, with v = i + brightness and c = contrast up to 127, 0 for v <= c, 255 for v >= 255 - c, and
 * between them
 *   255 * ((v - c) / (255 - 2 c)) ^ (100 / gamma), rounded.
 *
 * @param camera     the camera.
 * @param channel    VEXA_GAMMA_CHANNEL_ code.
 * @param mode       VEXA_GAMMA_MODE_ code. Modes _OFF and _TABLE store gamma 100, brightness 0 and
 *                   contrast 0 whatever is passed.
 * @param gamma      hundredths, from 1; above 100 lifts the mid-tones.
 * @param brightness levels, -32768 to 32767.
 * @param contrast   levels cut off at each end; above 127 works as 127 and is read back as passed.
 * @param table      256 bytes, read in mode VEXA_GAMMA_MODE_TABLE only.
 * @return 0 with 87 for an unknown channel or mode, gamma 0 in the two curve modes, and a null
 * table in VEXA_GAMMA_MODE_TABLE; the channel stays as it was.
 *
 * Any thread may call it; a frame that is being corrected meanwhile is finished first.
 */
VEXA_API BOOL VEXA_CALL Vexa_SetGammaModeEx(HANDLE camera, BYTE channel, BYTE mode, WORD gamma,
                                            short brightness, BYTE contrast, const BYTE* table);

/**
 * Reads a tone curve.
 * @param camera          the camera.
 * @param channel         VEXA_GAMMA_CHANNEL_ code; others give 87.
 * @param[out] mode       as set, 0 at first. Each pointer may be null.
 * @param[out] gamma      as stored, 100 at first.
 * @param[out] brightness as stored.
 * @param[out] contrast   as stored.
 * @param[out] table      the 256 entries.
 */
VEXA_API BOOL VEXA_CALL Vexa_GetGammaModeEx(HANDLE camera, BYTE channel, BYTE* mode, WORD* gamma,
                                            short* brightness, BYTE* contrast, BYTE* table);

/**
 * Applies the tone curves R, GR, GB and B to an 8-bit raw frame, in place.
 *
 * @param camera      the camera whose curves are used.
 * @param width       pixels per row; the last column of an odd width stays.
 * @param height      rows; the last row of an odd height stays.
 * @param color_array VEXA_COLOR_ARRAY_ code. A monochrome frame stays as it is; codes outside 1 to
 * 5 are taken for VEXA_COLOR_ARRAY_RGGB.
 * @param image       width * height bytes.
 * @return 0 with 87 for a null image. Nothing is done while all four channels are off.
 */
VEXA_API BOOL VEXA_CALL Vexa_RawColorGamma(HANDLE camera, DWORD width, DWORD height,
                                           WORD color_array, BYTE* image);

/**
 * Applies the tone curve Y to an image, in place. In BGR images it moves the luminance
 * 0.2989 R + 0.5866 G + 0.1145 B of each pixel and with it the three channels by the same number of
 * levels, limited to 0..255: the hue stays.
 *
 * @param camera        the camera whose curve is used.
 * @param width         pixels per row.
 * @param height        rows.
 * @param output_format VEXA_OUTPUT_MONO8, VEXA_OUTPUT_BGR24 or VEXA_OUTPUT_BGR32 (whose fourth byte
 *                      stays).
 * @param image         width * height pixels.
 * @return 0 with 87 for another format and for a null image. While the channel is off nothing is
 *         done, and any format succeeds.
 */
VEXA_API BOOL VEXA_CALL Vexa_BGRGamma(HANDLE camera, DWORD width, DWORD height, DWORD output_format,
                                      BYTE* image);

/**
 * Sets the camera object's colour matrix, which Vexa_HueSaturationColorMatrix() applies before hue
 * and saturation.
 *
 * @param camera the camera.
 * @param mode   VEXA_COLOR_MATRIX_OFF (the matrix becomes the identity) or VEXA_COLOR_MATRIX_USER.
 * @param matrix 12 values in hundredths, read in mode VEXA_COLOR_MATRIX_USER only: for output red,
 *               then green, then blue the factors of input red, green and blue (100 is 1.0) and an
 *               offset (100 is one level).
 * @return 0 for another mode, with the last error left as it is, and with 87 for a null matrix in
 *         VEXA_COLOR_MATRIX_USER; nothing is changed then.
 */
VEXA_API BOOL VEXA_CALL Vexa_SetColorMatrix(HANDLE camera, BYTE mode, const short* matrix);

/** The colour matrix. @param camera the camera. @param[out] mode as set; may be null.
 * @param[out] matrix 12 values, see Vexa_SetColorMatrix(); may be null. */
VEXA_API BOOL VEXA_CALL Vexa_GetColorMatrix(HANDLE camera, BYTE* mode, short* matrix);

/**
 * Sets the camera object's turn of hues and scale of saturation. Luminance and greys stay.
 *
 * @param camera     the camera.
 * @param mode       VEXA_HUE_SATURATION_OFF (stores hue 0 and saturation 100) or
 *                   VEXA_HUE_SATURATION_ON.
 * @param hue        tenths of a degree, -32768 to 32767; above 0 red turns towards magenta.
 * @param saturation hundredths: 0 makes grey, 100 changes nothing.
 * @return 0 for another mode; nothing is changed, the last error neither.
 */
VEXA_API BOOL VEXA_CALL Vexa_SetHueSaturationMode(HANDLE camera, BYTE mode, short hue,
                                                  WORD saturation);

/** Hue and saturation. @param camera the camera. @param[out] mode as set; each pointer may be null.
 * @param[out] hue tenths of a degree. @param[out] saturation hundredths. */
VEXA_API BOOL VEXA_CALL Vexa_GetHueSaturationMode(HANDLE camera, BYTE* mode, short* hue,
                                                  WORD* saturation);

/**
 * Corrects the colours of a BGR image in place, by the product of the hue and saturation matrix and
 * the colour matrix. Each of the nine products is truncated toward zero, that of red together with
 * the offset; sums are limited to 0..255.
 *
 * @param camera        the camera whose matrices are used.
 * @param width         pixels per row.
 * @param height        rows.
 * @param output_format VEXA_OUTPUT_BGR24 or VEXA_OUTPUT_BGR32 (whose fourth byte stays); with other
 *                      formats nothing is done, successfully.
 * @param image         width * height pixels.
 * @return 0 with 87 for a null image. Nothing is done while both modes are off.
 *
 * Any thread may call it; changed settings wait until an image is finished.
 */
VEXA_API BOOL VEXA_CALL Vexa_HueSaturationColorMatrix(HANDLE camera, DWORD width, DWORD height,
                                                      DWORD output_format, BYTE* image);

/**
 * Mirrors, turns or transposes an 8-bit frame, raw or monochrome, in its buffer, and brings its
 * size and colour array up to date, so that Vexa_ColorInterpolation() takes the right phase. The
 * camera's own mirroring is Vexa_SetMirrorMode().
 *
 * @param operation   VEXA_MIRROR_, VEXA_ROTATE_ or VEXA_TRANSPOSE_ operation; 8 and above do
 *                    nothing and succeed.
 * @param rotation    VEXA_ROTATION_NONE leaves it at the operation. With a quarter turn only bits 0
 *                    (horizontal mirror) and 1 (vertical mirror) of the operation count, also of 8
 *                    and above: the mirrors come first, the turn after them.
 * @param[in,out] width  pixels per row; the height after a quarter turn or transpose.
 * @param[in,out] height rows; the width after a quarter turn or transpose.
 * @param[in,out] color_array VEXA_COLOR_ARRAY_ code of the frame. What becomes of the four Bayer
 *                    codes is exact for even sizes: an odd width or height moves the pixels in the
 *                    same way, but shifts the pattern. Other codes stay.
 * @param[in,out] frame  width * height bytes.
 * @return 0 with 87 for rotation codes above 2, for null pointers and for a frame larger than the
 *         address space; 0 with 8 when there is no memory for the copy of the frame that quarter
 *         turns and transposes work from. Frame, size and colour array are then unchanged.
 *
 * Starts no thread, keeps no state.
 */
VEXA_API BOOL VEXA_CALL Vexa_MirrorRotation(BYTE operation, BYTE rotation, DWORD* width,
                                            DWORD* height, WORD* color_array, BYTE* frame);

/**
 * Sets the camera's sharpness settings, which Vexa_Sharpness() goes by from its next call on.
 * @param camera the camera; nothing is sent to it.
 * @param mode   0 off, every other value on.
 * @param gain   hundredths: 100 moves a pixel as far again from its neighbours' mean.
 * @param coring levels: pixels no farther from the mean than this stay.
 * Waits while an image of this camera is being sharpened.
 */
VEXA_API BOOL VEXA_CALL Vexa_SetSharpnessMode(HANDLE camera, BYTE mode, WORD gain, BYTE coring);
/** The sharpness settings; 0, 0 and 0 until set. @param camera the camera. @param[out]
 * mode,gain,coring as Vexa_SetSharpnessMode(); each may be null. */
VEXA_API BOOL VEXA_CALL Vexa_GetSharpnessMode(HANDLE camera, BYTE* mode, WORD* gain, BYTE* coring);

/**
 * Sharpens an image in its buffer by the camera's sharpness settings.
 *
 * A pixel farther than `coring` levels from the mean m of its eight neighbours in the unsharpened
 * image (their sum plus 4, divided by 8) moves away from m by gain / 100 for each level beyond
 * `coring`, rounded, and stays in 0 to 255. In colour images luminance decides (0.2989 R + 0.5866 G
 * + 0.1145 B, the red and the blue part each rounded, green what remains of a grey pixel's level),
 * and blue, green and red move by the same step.
 * @param camera        the camera.
 * @param width         pixels per row.
 * @param height        rows. The outermost rows and columns do not change; an image below 3 x 3
 *                      does not change at all, with success.
 * @param output_format VEXA_OUTPUT_MONO8, VEXA_OUTPUT_BGR24 or VEXA_OUTPUT_BGR32 (whose fourth byte
 *                      stays).
 * @param[in,out] image width * height pixels.
 * @return 1, without looking at the other arguments, while the mode is 0. 0 with 87 for another
 *         format, for a null pointer and for an image larger than the address space; 0 with 8 when
 *         there is no memory for 8 bytes per column. The image is then unchanged.
 *
 * Calls with one camera run one after the other. Starts no thread.
 */
VEXA_API BOOL VEXA_CALL Vexa_Sharpness(HANDLE camera, DWORD width, DWORD height,
                                       DWORD output_format, BYTE* image);

/**
 * Reduces the noise of an 8-bit raw frame in its buffer.
 *
 * VEXA_NOISE_REDUCTION_IMPULSE, for VEXA_COLOR_ARRAY_MONO, _RGGB and _BGGR: every sample becomes
 * the smaller of itself and the median of itself and its neighbours in the frame as it came. Those
 * are the four diagonal ones for monochrome and green samples, for red and blue ones the four of
 * the same colour at distance 2 in row and column; what lies outside the frame is left out. On the
 * border of a monochrome frame they are the ones to the left, right, above and below that there
 * are. The median of an even number is the mean of the middle two, rounded down.
 *
 * VEXA_NOISE_REDUCTION_STORE_DARK_FRAME, for any colour array: keeps a copy of a frame taken in the
 * dark until the next one is stored or the camera is closed. From every sample the smallest one in
 * the same place of the 2 x 2 cells is taken away, so that what a pixel has more than the darkest
 * one of its colour remains. An odd last column or row does not count for the smallest ones, and
 * its samples stay at 0 or above; a frame without a complete cell is kept as it is.
 *
 * VEXA_NOISE_REDUCTION_DARK_FRAME: subtracts the stored frame (results below 0 become 0), then, for
 * VEXA_COLOR_ARRAY_MONO and _RGGB, repairs samples of 253 and more that have fallen below: such a
 * sample becomes the larger of itself and the median of itself and its four neighbours, chosen as
 * for impulses, in the frame as it is by then. Rows follow each other from the top, samples from
 * the left. A border of 1 (monochrome) or 2 (RGGB) is not repaired.
 *
 * @param camera      the camera, whose dark frame is used; nothing is sent to it.
 * @param mode        VEXA_NOISE_REDUCTION_ mode.
 * @param width       pixels per row.
 * @param height      rows; frames of one column or row are fine.
 * @param color_array VEXA_COLOR_ARRAY_ code, low 16 bits count.
 * @param[in,out] frame width * height bytes; unchanged when stored as the dark frame.
 * @return 0 with 87 for other modes and colour arrays than those above, when the stored dark frame
 *         has another size or colour array or there is none, for a null pointer, and for a frame
 *         larger than the address space; 0 with 8 when there is no memory for three rows or, to
 *         store one, for the dark frame (then none is stored any more). The frame is then
 *         unchanged, with one exception: colour arrays that cannot be repaired give 87 although
 *         the dark frame has been subtracted.
 *
 * Calls with the same camera handle must not overlap. Starts no thread.
 */
VEXA_API BOOL VEXA_CALL Vexa_NoiseReduction(HANDLE camera, DWORD mode, DWORD width, DWORD height,
                                            DWORD color_array, BYTE* frame);
/**@}*/

/** @defgroup measuring Measurements on raw frames */
/**@{*/

/**
 * Mean values of a part of a raw frame, for each position of the 2 x 2 filter pattern.
 *
 * @param width,height    of the frame, pixels and rows.
 * @param color_array     VEXA_COLOR_ARRAY_ code.
 * @param transfer_format VEXA_TRANSFER_8BIT: bytes; _10BIT to _16BIT: 16-bit words. The codes with
 *                        _B and the colour formats are not taken.
 * @param frame           width * height samples.
 * @param x,y             first column and row of the part.
 * @param region_width,region_height of the part, cut at the frame's edges.
 * @param[out] average    four values in the samples' own units: the mean of the pixels at even
 *                        columns of even rows, odd columns of even rows, even columns of odd rows,
 *                        odd columns of odd rows, counted from the frame's first pixel wherever the
 *                        part begins. 0 where the part has no such pixel. Of a monochrome frame the
 *                        mean of all pixels and three times 0.
 *
 * Which colours these are:
 *
 *     color_array   RGGB, MONO   GRBG   GBRG   BGGR
 *     red           0            1      2      3
 *     green         1, 2         0, 3   3, 0   2, 1
 *     blue          3            2      1      0
 *
 * @return 0 with 87 for another colour array or transfer format and for null pointers; the output
 *         is untouched then. Sums are exact for frames of any size.
 *
 * Starts no thread, keeps no state, allocates nothing.
 */
VEXA_API BOOL VEXA_CALL Vexa_GetAveragePixelValue(DWORD width, DWORD height, WORD color_array,
                                                  DWORD transfer_format, const BYTE* frame, DWORD x,
                                                  DWORD y, DWORD region_width, DWORD region_height,
                                                  float* average);

/**
 * White balance on the host, for models without function 24. On those with it, and on monochrome
 * cameras, the call succeeds and does nothing.
 *
 * @param camera the camera.
 * @param frame  an 8-bit raw frame of the size (Vexa_GetScanMode()) and colour array
 *               (Vexa_GetColorArray()) that the camera has now; corrected in place.
 *
 * In the modes VEXA_WHITE_BALANCE_AUTO and _ONCE the gains of red and blue are first found anew
 * (the green ones stay), after which _ONCE becomes _MANUAL. The frame's whole 2 x 2 cells count.
 * With T the mean of the two green positions' means and m the colour's mean, the gain is 128 * T /
 * m, truncated, at most 65535, or 128 when all samples of the colour are 0. Saturated samples keep
 * the mean of the corrected colour below T; up to 639 the gain is therefore raised, in steps of 1,
 * until that mean reaches T. A mean T of 0 gives the gain 0.
 *
 * In every mode but VEXA_WHITE_BALANCE_OFF the frame's whole cells are then corrected with the four
 * gains (Vexa_SetWhiteBalanceGain()); with all of them at 128 nothing is done.
 *
 * @return 1; the last error becomes 87 when gains were to be found and the camera's colour array is
 *         none of the five codes. The gains then stay, and the frame is corrected with them. 0 with
 *         87 for an invalid handle or a null frame.
 *
 * Calls for one camera run one after the other; gains that another thread sets come into force
 * between frames. Starts no thread, allocates nothing.
 */
VEXA_API BOOL VEXA_CALL Vexa_WhiteBalance(HANDLE camera, BYTE* frame);

/**
 * Finds the brightest pixels of a dark frame and loads their positions into the camera's defect
 * pixel table, replacing all entries; those without a pixel become 0xFFFF, 0xFFFF. The correction
 * takes place when Vexa_SetDefectPixelCorrectionMode() has switched it on.
 *
 * @param camera       the camera; without function 59 87 and nothing is sent.
 * @param width,height of the frame, pixels and rows.
 * @param frame        width * height bytes, taken in the dark and uncorrected.
 * @param threshold    the least level of a defect pixel, low 16 bits count; above 255 none is
 * found.
 *
 * When more pixels are bright enough than the table has entries, the brightest are taken, among
 * equally bright ones the first from the top and, in a row, from the left.
 *
 * @return the result of the command by which the camera takes the table over. It is sent even when
 *         an entry could not be written; the rest of the table is then as it was.
 */
VEXA_API BOOL VEXA_CALL Vexa_DetectDefectPixel(HANDLE camera, DWORD width, DWORD height,
                                               const BYTE* frame, DWORD threshold);
/**@}*/

/** @defgroup drawing Drawing */
/**@{*/

/**
 * Draws a part of an image into a device context: pixel by pixel when source and destination have
 * the same size, else stretched by repeating or leaving out rows and columns (the stretch mode of
 * the device context is the same afterwards). What lies outside the image or the device is left
 * out.
 *
 * @param camera             the camera, whose drawing object is used; it need not be transferring.
 * @param device_context     on Windows GDI's, elsewhere a drawing surface (VexaHost.h).
 * @param destination_x      left edge in the device context, logical units.
 * @param destination_y      top edge.
 * @param destination_width  negative draws to the left of destination_x, mirrored (stretched only).
 * @param destination_height negative draws upwards from destination_y, mirrored (stretched only).
 * @param source_x           left edge in the image, pixels from the image's left.
 * @param source_y           top edge, rows from the image's top.
 * @param source_width,source_height pixels; negative as for the destination.
 * @param image_width,image_height size of the whole image, pixels.
 * @param image              rows top first, no padding. GDI takes each row to be padded to 4 bytes:
 *                           width * bytes per pixel has to be a multiple of 4, else the picture is
 *                           skewed and, on Windows, bytes behind the image are read.
 * @param pixel_format       VEXA_OUTPUT_BGR24, VEXA_OUTPUT_BGR32; every other value draws one byte
 *                           per pixel as grey.
 * @return the number of scan lines, as GDI counts them; 0 on failure: with 87 for the invalid
 *         handle, with 8 when memory runs out, else with what the system sets, if anything.
 *         Elsewhere than on Windows: 6 (ERROR_INVALID_HANDLE) when there is no such surface, 87 for
 *         an image that is null or without pixels; no error when the source lies outside the image.
 *
 * Calls with the same camera handle must not overlap; other calls may run meanwhile.
 */
VEXA_API int VEXA_CALL Vexa_Draw(HANDLE camera, HDC device_context, int destination_x,
                                 int destination_y, int destination_width, int destination_height,
                                 int source_x, int source_y, int source_width, int source_height,
                                 DWORD image_width, DWORD image_height, const BYTE* image,
                                 DWORD pixel_format);
/**@}*/

/** @defgroup files Image files */
/**@{*/

/**
 * Saves an image; the file name's extension (after the last ".") chooses the file type: "RAW" (also
 * a shorter beginning of it, or nothing after the ".") the bare bytes; "TIF" and "TIFF" (and
 * shorter beginnings) an uncompressed TIFF; "JPG" and "JPEG" (and shorter beginnings) a baseline
 * JPEG, grey or with chrominance at half the horizontal resolution; every other extension a Windows
 * bitmap. Upper and lower case of A to Z are the same.
 *
 * @param width        pixels per row.
 * @param height       rows.
 * @param pixel_format VEXA_OUTPUT_ code: 1, 2, 4 or 8 for RAW; any for TIFF; 1, 4 or 8 for BMP and
 *                     JPEG. A TIFF holds the samples of 10, 12 and 14 bits shifted to the top of 16
 *                     bits.
 * @param image        the pixels, rows top first, no padding. Not changed.
 * @param file_name    path of the file; an existing file is replaced.
 * @param jpeg_compression for JPEG only: 0 (quality 100) to 99 (quality 1, the smallest files); 100
 *                     and above take the tables of quality 50.
 * @return 0 with 87 when the name has no ".", the type does not take the format, a pointer is null
 *         or the file type cannot hold the image: too large, or, for TIFF and JPEG, a side of 0 or
 *         above 65535 pixels (no file is created); with 87 for any other code for a BMP (a file of
 *         length 0 stays); 110 (ERROR_OPEN_FAILED) when the file cannot be created; 8 when memory
 *         for a bitmap or JPEG runs out and 29 (ERROR_WRITE_FAULT) when a bitmap could not be
 *         written whole. When memory for a TIFF runs out the last error stays as it was (a file of
 *         length 0 stays). Writing RAW, TIFF and JPEG files is not checked: a full disk shows in
 * the size of the file alone.
 */
VEXA_API BOOL VEXA_CALL Vexa_SaveImageW(DWORD width, DWORD height, DWORD pixel_format,
                                        const BYTE* image, const WCHAR* file_name,
                                        DWORD jpeg_compression);
/** Vexa_SaveImageW() with the file name in the ANSI code page (UTF-8 where there are no code
 * pages).
 * @param width,height,pixel_format,image,jpeg_compression as Vexa_SaveImageW().
 * @param file_name path of the file. @return as Vexa_SaveImageW(). */
VEXA_API BOOL VEXA_CALL Vexa_SaveImageA(DWORD width, DWORD height, DWORD pixel_format,
                                        const BYTE* image, const CHAR* file_name,
                                        DWORD jpeg_compression);
/**@}*/

/** @defgroup setting_file Setting files */
/**@{*/

/**
 * Writes all settings of a camera, also those that the library keeps for it, into a text file.
 *
 * The file is a private-profile (INI) file. The names of its sections end with the camera's product
 * ID, so that one file can hold the settings of several models; sections of other models, keys that
 * the library does not know, and comments stay as they are. On Windows each key is written by the
 * system's own function. Elsewhere the file is replaced as a whole, so that it is never half
 * written; a new file is UTF-8, an existing one keeps its encoding (also UTF-16LE with byte-order
 * mark), its line ends and its mode bits.
 * @param camera    the camera; it must not transfer.
 * @param file_name path of the file, at most 259 characters; relative paths count from the current
 *                  folder.
 * @return 0 with 0xE0000100 while a transfer runs, or has ended by itself and not been stopped; 87
 *         for a null or empty path and 206 (ERROR_FILENAME_EXCED_RANGE) for a longer one; else the
 *         error of the setting that could not be read (the file is untouched), or of writing the
 *         file: 3 no such folder, 5 no permission or no regular file, 112 disk full, 161 a name
 *         that the system cannot express, 223 an existing file of more than 4 MiB.
 *
 * No transfer may be started while it runs.
 */
VEXA_API BOOL VEXA_CALL Vexa_WriteSettingFileW(HANDLE camera, const WCHAR* file_name);
/** Vexa_WriteSettingFileW() with the path in the ANSI code page (UTF-8 where there are no code
 * pages). @param camera,file_name as Vexa_WriteSettingFileW(). @return as there. */
VEXA_API BOOL VEXA_CALL Vexa_WriteSettingFileA(HANDLE camera, const CHAR* file_name);

/**
 * Reads the settings of the camera's model from a file that Vexa_WriteSettingFileW() has written,
 * and brings them to the camera.
 *
 * A setting that the file lacks keeps its present value; with no file at all, all do. Values are
 * integers, decimal or hexadecimal after "0x", cut to the width of the setting. The settings are
 * applied in a fixed order, from the clock to the mirror mode; the first that is refused ends the
 * call, those before it stay set. Only a gamma table that is refused skips just the remaining gamma
 * tables; the result tells it when no setting comes after them.
 *
 * Exposures are also read in their older form of lines ("ALCMinShutterLine", "ALCMaxShutterLine",
 * "CurrentShutterLine") and clocks ("...Clock") when the newer key is missing or 4294967295.
 * @param camera    the camera; it must not transfer.
 * @param file_name path of the file, as Vexa_WriteSettingFileW(). What cannot be read counts as no
 *                  file.
 * @return 0 with 0xE0000100, 87 and 206 as Vexa_WriteSettingFileW(); else the error of the setting
 *         that could not be read from the camera (nothing is changed) or was refused. A hue or
 *         colour matrix mode that does not exist is refused without setting the last error.
 *
 * No transfer may be started while it runs.
 */
VEXA_API BOOL VEXA_CALL Vexa_ReadSettingFileW(HANDLE camera, const WCHAR* file_name);
/** Vexa_ReadSettingFileW() with the path in the ANSI code page (UTF-8 where there are no code
 * pages). @param camera,file_name as Vexa_ReadSettingFileW(). @return as there. */
VEXA_API BOOL VEXA_CALL Vexa_ReadSettingFileA(HANDLE camera, const CHAR* file_name);
/**@}*/

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif /* VEXA_API_H_ */

/** \file
 * The driver's second way in: the device through which tests and tools plug cameras and order
 * faults.
 */
#ifndef VEXA_SIMULATOR_WINDOWS_CONTROL_DEVICE_H
#define VEXA_SIMULATOR_WINDOWS_CONTROL_DEVICE_H

#define VEXA_CONTROL_DEVICE_NAME L"\\Device\\VexaCameraControl"
#define VEXA_CONTROL_DEVICE_LINK L"\\DosDevices\\VexaCameraControl"
/** As programs open it. */
#define VEXA_CONTROL_DEVICE_PATH L"\\\\.\\VexaCameraControl"

/** The I/O control that carries a command (commands.hpp) and its answer: device type 0x22,
 * function 0x900, METHOD_BUFFERED, FILE_ANY_ACCESS. */
#define VEXA_CONTROL_DEVICE_COMMAND 0x222400u
/** The next function: how many slots Plug and Play has started (u32). Before that a camera that is
 * plugged into one is not found. */
#define VEXA_CONTROL_DEVICE_SLOTS 0x222404u

#endif

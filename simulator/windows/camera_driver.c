/* The simulated cameras' kernel-mode driver: Plug and Play devices whose I/O requests go to the
 * digital twin in the library beside this file, and a control device for whoever plugs the cameras.
 * Only Wine can load such a driver: its kernel mode is a process that takes ordinary libraries. */
#include <ntddk.h>

#include "control_device.h"
#include "twin_interface.h"

/* The device interface class by which the library finds cameras
 * (src/platform/windows/device_interface.hpp). */
static const GUID kCameraInterfaceClass = {
    0x2F95CB8C, 0x37EB, 0x4B7F, {0xB6, 0x77, 0x69, 0x64, 0x01, 0x66, 0xA0, 0x4C}};

enum { kErrorOperationAborted = 995 };

typedef struct {
  BOOLEAN is_control; /* the control device, which has none of the rest */
  ULONG slot;
  DEVICE_OBJECT* physical; /* the bus's device, which the interface is registered for */
  DEVICE_OBJECT* lower;
  UNICODE_STRING interface_name;
} Extension;

static DEVICE_OBJECT* control_device;
static DEVICE_OBJECT* slots[kTwinSlots];

static Extension* ExtensionOf(DEVICE_OBJECT* device) { return (Extension*)device->DeviceExtension; }

/* A Windows error code as the status that the system turns back into the same code. */
static NTSTATUS StatusOf(uint32_t error) {
  const ULONG kFailure = 0xC0070000; /* severity error, facility "Windows error code" */
  if (error == 0) return STATUS_SUCCESS;
  /* The system itself looks for this one. */
  if (error == kErrorOperationAborted) return STATUS_CANCELLED;
  return (NTSTATUS)(kFailure | (error & 0xFFFF));
}

static NTSTATUS Complete(IRP* irp, NTSTATUS status, ULONG bytes) {
  irp->IoStatus.Status = status;
  irp->IoStatus.Information = bytes;
  IoCompleteRequest(irp, IO_NO_INCREMENT);
  return status;
}

static uint32_t FileOf(const IO_STACK_LOCATION* stack) {
  return (uint32_t)(ULONG_PTR)stack->FileObject->FsContext;
}

/* The twin ends the read, and that completes the request. */
static VOID NTAPI CancelRead(DEVICE_OBJECT* device, IRP* irp) {
  const uint32_t file = FileOf(IoGetCurrentIrpStackLocation(irp));
  UNREFERENCED_PARAMETER(device);
  IoReleaseCancelSpinLock(irp->CancelIrql);
  TwinCancel(file, irp);
}

static int Pend(void* request) {
  IRP* irp = (IRP*)request;
  IoMarkIrpPending(irp);
  /* I/O controls run to their end. */
  if (IoGetCurrentIrpStackLocation(irp)->MajorFunction != IRP_MJ_READ) return 0;
  IoSetCancelRoutine(irp, CancelRead);
  return irp->Cancel && IoSetCancelRoutine(irp, NULL) != NULL;
}

static void CompletePended(void* request, uint32_t error, uint32_t bytes) {
  IRP* irp = (IRP*)request;
  KIRQL irql;
  /* Under the lock, so that a cancel routine that has begun is done with the request. */
  IoAcquireCancelSpinLock(&irql);
  IoSetCancelRoutine(irp, NULL);
  IoReleaseCancelSpinLock(irql);
  Complete(irp, StatusOf(error), bytes);
}

static void Show(uint32_t slot, int present) {
  if (slots[slot] == NULL) return;
  IoSetDeviceInterfaceState(&ExtensionOf(slots[slot])->interface_name, present != 0);
}

static NTSTATUS NTAPI OnCreate(DEVICE_OBJECT* device, IRP* irp) {
  uint32_t file = 0;
  uint32_t error = 0;
  if (!ExtensionOf(device)->is_control) error = TwinOpen(ExtensionOf(device)->slot, &file);
  IoGetCurrentIrpStackLocation(irp)->FileObject->FsContext = (void*)(ULONG_PTR)file;
  return Complete(irp, StatusOf(error), 0);
}

static NTSTATUS NTAPI OnClose(DEVICE_OBJECT* device, IRP* irp) {
  if (!ExtensionOf(device)->is_control) TwinClose(FileOf(IoGetCurrentIrpStackLocation(irp)));
  return Complete(irp, STATUS_SUCCESS, 0);
}

static NTSTATUS NTAPI OnRead(DEVICE_OBJECT* device, IRP* irp) {
  const IO_STACK_LOCATION* stack = IoGetCurrentIrpStackLocation(irp);
  uint32_t error;
  if (ExtensionOf(device)->is_control) return Complete(irp, STATUS_INVALID_DEVICE_REQUEST, 0);
  error =
      TwinRead(FileOf(stack), irp, irp->AssociatedIrp.SystemBuffer, stack->Parameters.Read.Length);
  return error == TWIN_PENDING ? STATUS_PENDING : Complete(irp, StatusOf(error), 0);
}

static uint32_t StartedSlots(void) {
  uint32_t started = 0;
  for (ULONG slot = 0; slot < kTwinSlots; ++slot) {
    if (slots[slot] != NULL && ExtensionOf(slots[slot])->interface_name.Buffer != NULL) ++started;
  }
  return started;
}

static NTSTATUS NTAPI OnDeviceControl(DEVICE_OBJECT* device, IRP* irp) {
  const IO_STACK_LOCATION* stack = IoGetCurrentIrpStackLocation(irp);
  const ULONG code = stack->Parameters.DeviceIoControl.IoControlCode;
  const ULONG input_size = stack->Parameters.DeviceIoControl.InputBufferLength;
  const ULONG output_size = stack->Parameters.DeviceIoControl.OutputBufferLength;
  void* buffer = irp->AssociatedIrp.SystemBuffer;
  uint32_t bytes = 0;
  uint32_t error;
  if (!ExtensionOf(device)->is_control) {
    error = TwinControl(FileOf(stack), irp, code, buffer, input_size, buffer, output_size, &bytes);
    if (error == TWIN_PENDING) return STATUS_PENDING;
  } else if (code == VEXA_CONTROL_DEVICE_COMMAND) {
    error = TwinCommand(buffer, input_size, buffer, output_size, &bytes);
  } else if (code == VEXA_CONTROL_DEVICE_SLOTS && output_size >= sizeof(uint32_t)) {
    *(uint32_t*)buffer = StartedSlots();
    bytes = sizeof(uint32_t);
    error = 0;
  } else {
    return Complete(irp, STATUS_INVALID_DEVICE_REQUEST, 0);
  }
  return Complete(irp, StatusOf(error), bytes);
}

static NTSTATUS PassDown(Extension* extension, IRP* irp) {
  if (extension->lower == NULL) return Complete(irp, STATUS_NOT_SUPPORTED, 0);
  IoSkipCurrentIrpStackLocation(irp);
  return IoCallDriver(extension->lower, irp);
}

static NTSTATUS RemoveDevice(DEVICE_OBJECT* device, IRP* irp) {
  Extension* extension = ExtensionOf(device);
  DEVICE_OBJECT* lower = extension->lower;
  NTSTATUS status;
  slots[extension->slot] = NULL;
  if (extension->interface_name.Buffer != NULL) {
    IoSetDeviceInterfaceState(&extension->interface_name, FALSE);
    RtlFreeUnicodeString(&extension->interface_name);
  }
  irp->IoStatus.Status = STATUS_SUCCESS;
  status = PassDown(extension, irp);
  IoDetachDevice(lower);
  IoDeleteDevice(device);
  return status;
}

static NTSTATUS NTAPI OnPlugAndPlay(DEVICE_OBJECT* device, IRP* irp) {
  Extension* extension = ExtensionOf(device);
  switch (IoGetCurrentIrpStackLocation(irp)->MinorFunction) {
    case IRP_MN_START_DEVICE:
      /* The interface stays hidden until a camera is plugged into the slot. */
      irp->IoStatus.Status = IoRegisterDeviceInterface(extension->physical, &kCameraInterfaceClass,
                                                       NULL, &extension->interface_name);
      break;
    case IRP_MN_REMOVE_DEVICE:
      return RemoveDevice(device, irp);
    case IRP_MN_SURPRISE_REMOVAL:
    case IRP_MN_QUERY_REMOVE_DEVICE:
    case IRP_MN_CANCEL_REMOVE_DEVICE:
    case IRP_MN_QUERY_STOP_DEVICE:
    case IRP_MN_CANCEL_STOP_DEVICE:
    case IRP_MN_STOP_DEVICE:
      irp->IoStatus.Status = STATUS_SUCCESS;
      break;
    default:
      break;
  }
  return PassDown(extension, irp);
}

static NTSTATUS NTAPI OnOther(DEVICE_OBJECT* device, IRP* irp) {
  return PassDown(ExtensionOf(device), irp);
}

static NTSTATUS MakeDevice(DRIVER_OBJECT* driver, UNICODE_STRING* name, DEVICE_OBJECT** device) {
  const NTSTATUS status =
      IoCreateDevice(driver, sizeof(Extension), name, FILE_DEVICE_UNKNOWN, 0, FALSE, device);
  if (!NT_SUCCESS(status)) return status;
  RtlZeroMemory(ExtensionOf(*device), sizeof(Extension));
  (*device)->Flags |= DO_BUFFERED_IO;
  return status;
}

static NTSTATUS NTAPI AddDevice(DRIVER_OBJECT* driver, DEVICE_OBJECT* physical) {
  DEVICE_OBJECT* device;
  ULONG slot = 0;
  NTSTATUS status;
  while (slot < kTwinSlots && slots[slot] != NULL) ++slot;
  if (slot == kTwinSlots) return STATUS_INSUFFICIENT_RESOURCES;
  status = MakeDevice(driver, NULL, &device);
  if (!NT_SUCCESS(status)) return status;
  ExtensionOf(device)->slot = slot;
  ExtensionOf(device)->physical = physical;
  ExtensionOf(device)->lower = IoAttachDeviceToDeviceStack(device, physical);
  slots[slot] = device;
  device->Flags &= ~(ULONG)DO_DEVICE_INITIALIZING;
  return STATUS_SUCCESS;
}

static VOID NTAPI Unload(DRIVER_OBJECT* driver) {
  UNICODE_STRING link;
  UNREFERENCED_PARAMETER(driver);
  TwinStop();
  RtlInitUnicodeString(&link, VEXA_CONTROL_DEVICE_LINK);
  IoDeleteSymbolicLink(&link);
  IoDeleteDevice(control_device);
}

static NTSTATUS MakeControlDevice(DRIVER_OBJECT* driver) {
  UNICODE_STRING name, link;
  NTSTATUS status;
  RtlInitUnicodeString(&name, VEXA_CONTROL_DEVICE_NAME);
  status = MakeDevice(driver, &name, &control_device);
  if (!NT_SUCCESS(status)) return status;
  ExtensionOf(control_device)->is_control = TRUE;
  RtlInitUnicodeString(&link, VEXA_CONTROL_DEVICE_LINK);
  status = IoCreateSymbolicLink(&link, &name);
  if (!NT_SUCCESS(status)) IoDeleteDevice(control_device);
  return status;
}

NTSTATUS NTAPI DriverEntry(DRIVER_OBJECT* driver, UNICODE_STRING* registry_path) {
  static const TwinHost kHost = {Pend, CompletePended, Show};
  NTSTATUS status;
  UNREFERENCED_PARAMETER(registry_path);
  status = StatusOf(TwinStart(&kHost));
  if (!NT_SUCCESS(status)) return status;
  status = MakeControlDevice(driver);
  if (!NT_SUCCESS(status)) {
    TwinStop();
    return status;
  }
  driver->MajorFunction[IRP_MJ_CREATE] = OnCreate;
  driver->MajorFunction[IRP_MJ_CLOSE] = OnClose;
  driver->MajorFunction[IRP_MJ_READ] = OnRead;
  driver->MajorFunction[IRP_MJ_DEVICE_CONTROL] = OnDeviceControl;
  driver->MajorFunction[IRP_MJ_PNP] = OnPlugAndPlay;
  driver->MajorFunction[IRP_MJ_POWER] = OnOther;
  driver->MajorFunction[IRP_MJ_SYSTEM_CONTROL] = OnOther;
  driver->DriverExtension->AddDevice = AddDevice;
  driver->DriverUnload = Unload;
  return STATUS_SUCCESS;
}

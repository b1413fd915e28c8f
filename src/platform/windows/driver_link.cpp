#include <windows.h>

#include <setupapi.h>

#include <new>
#include <string>
#include <vector>

#include "platform/driver.hpp"
#include "platform/text.hpp"
#include "platform/windows/completion.hpp"
#include "platform/windows/device_interface.hpp"

namespace vexa::platform {
namespace {

/// A set of present devices; destroyed on every way out.
class DeviceInfoSet {
 public:
  explicit DeviceInfoSet(const GUID& interface_class)
      : set_(::SetupDiGetClassDevsW(&interface_class, nullptr, nullptr,
                                    DIGCF_PRESENT | DIGCF_DEVICEINTERFACE)) {}
  ~DeviceInfoSet() {
    if (*this) ::SetupDiDestroyDeviceInfoList(set_);
  }
  DeviceInfoSet(const DeviceInfoSet&) = delete;
  DeviceInfoSet& operator=(const DeviceInfoSet&) = delete;

  explicit operator bool() const { return set_ != INVALID_HANDLE_VALUE; }
  HDEVINFO get() const { return set_; }

 private:
  HDEVINFO set_;
};

// The fixed part is what SetupAPI recognises the structure's version by. Device paths hold ASCII
// only, so the narrow form of the call loses nothing.
using InterfaceDetail = SP_DEVICE_INTERFACE_DETAIL_DATA_A;
static_assert(sizeof(InterfaceDetail) == (sizeof(void*) == 4 ? 5 : 8));

Status ReadPath(HDEVINFO set, SP_DEVICE_INTERFACE_DATA& device_interface, std::string* path) {
  DWORD size = 0;
  if (::SetupDiGetDeviceInterfaceDetailA(set, &device_interface, nullptr, 0, &size, nullptr) ||
      LastSystemError() != error::kInsufficientBuffer || size < sizeof(InterfaceDetail)) {
    return error::kNoMoreItems;
  }
  // The structure ends in a string of open length, so it lives in a buffer that the system fills.
  std::vector<std::max_align_t> buffer(size / sizeof(std::max_align_t) + 1);
  auto* const detail = new (buffer.data()) InterfaceDetail;
  detail->cbSize = sizeof(InterfaceDetail);
  if (!::SetupDiGetDeviceInterfaceDetailA(set, &device_interface, detail, size, nullptr, nullptr)) {
    return error::kNoMoreItems;
  }
  path->assign(detail->DevicePath);
  return error::kNone;
}

/// The kernel's view of a span: null when it is empty.
template <typename Byte>
void* Pointer(std::span<Byte> bytes) {
  // The input of DeviceIoControl is not declared constant, but METHOD_BUFFERED only copies it.
  return bytes.empty() ? nullptr : const_cast<std::uint8_t*>(bytes.data());
}

class KernelDevice : public Device {
 public:
  explicit KernelDevice(UniqueHandle handle) : handle_(std::move(handle)) {}

  Status Control(ControlCode code, std::span<const std::uint8_t> input,
                 std::span<std::uint8_t> output, std::uint32_t* returned,
                 Completion& completion) override {
    OVERLAPPED& overlapped = Prepare(completion);
    const Status issued = Issue(code, input, output, returned, &overlapped);
    if (!issued.ok() && issued != error::kIoPending) {
      return issued;
    }
    return Finish(overlapped, returned);
  }

  Status ControlSynchronous(ControlCode code, std::span<const std::uint8_t> input,
                            std::span<std::uint8_t> output, std::uint32_t* returned) override {
    return Issue(code, input, output, returned, nullptr);
  }

  Status QueueRead(std::span<std::uint8_t> buffer, Completion& completion) override {
    OVERLAPPED& overlapped = Prepare(completion);
    // Success at once leaves event and byte count behind just as success later does.
    if (::ReadFile(handle_.get(), Pointer(buffer), static_cast<DWORD>(buffer.size()), nullptr,
                   &overlapped)) {
      return error::kIoPending;
    }
    return LastSystemError();
  }

  Status FinishRead(Completion& completion, std::uint32_t* transferred) override {
    return Finish(completion.native().overlapped, transferred);
  }

  void CancelReads() override { ::CancelIo(handle_.get()); }

 private:
  /// The completion's OVERLAPPED as for a new request: all zero but for the event, which the
  /// system resets when the request begins.
  static OVERLAPPED& Prepare(Completion& completion) {
    OVERLAPPED& overlapped = completion.native().overlapped;
    const HANDLE event = overlapped.hEvent;
    overlapped = {};
    overlapped.hEvent = event;
    return overlapped;
  }

  Status Issue(ControlCode code, std::span<const std::uint8_t> input,
               std::span<std::uint8_t> output, std::uint32_t* returned, OVERLAPPED* overlapped) {
    DWORD count = 0;
    const BOOL done = ::DeviceIoControl(handle_.get(), static_cast<DWORD>(code), Pointer(input),
                                        static_cast<DWORD>(input.size()), Pointer(output),
                                        static_cast<DWORD>(output.size()), &count, overlapped);
    const Status status = done ? error::kNone : LastSystemError();
    *returned = count;
    return status;
  }

  /// Waits for the request to end; what it has transferred counts also when it has failed.
  Status Finish(OVERLAPPED& overlapped, std::uint32_t* transferred) const {
    constexpr BOOL kWait = TRUE;
    DWORD count = 0;
    const BOOL done = ::GetOverlappedResult(handle_.get(), &overlapped, &count, kWait);
    const Status status = done ? error::kNone : LastSystemError();
    *transferred = count;
    return status;
  }

  UniqueHandle handle_;
};

class KernelDriver : public Driver {
 public:
  Status InterfacePath(std::uint32_t index, std::u16string* path) override try {
    const DeviceInfoSet devices(kCameraInterfaceClass);
    if (!devices) {
      return error::kNoMoreItems;
    }
    SP_DEVICE_INTERFACE_DATA device_interface{};
    device_interface.cbSize = sizeof(device_interface);
    if (!::SetupDiEnumDeviceInterfaces(devices.get(), nullptr, &kCameraInterfaceClass, index,
                                       &device_interface)) {
      return error::kNoMoreItems;
    }
    std::string narrow;
    const Status status = ReadPath(devices.get(), device_interface, &narrow);
    return status.ok() ? ToWide(narrow, path) : status;
  } catch (const std::bad_alloc&) {
    return error::kNotEnoughMemory;
  }

  Status Open(const std::u16string& path, std::unique_ptr<Device>* device) override {
    const HANDLE handle = ::CreateFileW(ToWideChars(path).c_str(), GENERIC_READ | GENERIC_WRITE,
                                        FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                                        FILE_FLAG_OVERLAPPED, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
      return LastSystemError();
    }
    *device = std::make_unique<KernelDevice>(UniqueHandle(handle));
    return error::kNone;
  }
};

constinit KernelDriver kernel_driver;

}  // namespace

Driver& SystemDriver() { return kernel_driver; }

}  // namespace vexa::platform

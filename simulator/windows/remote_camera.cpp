#include "simulator/windows/remote_camera.hpp"

#include <system_error>

#include "simulator/windows/control_device.h"

namespace vexa::simulator {
namespace {

constexpr std::size_t kUsualAnswer = std::size_t{1} << 16;
constexpr std::size_t kLongestAnswer = std::size_t{1} << 26;

[[noreturn]] void ThrowLastError(const char* what) {
  throw std::system_error(static_cast<int>(::GetLastError()), std::system_category(), what);
}

}  // namespace

ControlDevice::ControlDevice() {
  const DWORD last_error = ::GetLastError();
  device_ = ::CreateFileW(VEXA_CONTROL_DEVICE_PATH, GENERIC_READ | GENERIC_WRITE,
                          FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
  if (device_ == INVALID_HANDLE_VALUE) ThrowLastError("the camera driver's control device");
  ::SetLastError(last_error);
}

ControlDevice::~ControlDevice() {
  const DWORD last_error = ::GetLastError();
  ::CloseHandle(device_);
  ::SetLastError(last_error);
}

std::uint32_t ControlDevice::StartedSlots() const {
  std::uint32_t started = 0;
  DWORD bytes = 0;
  if (!::DeviceIoControl(device_, VEXA_CONTROL_DEVICE_SLOTS, nullptr, 0, &started, sizeof started,
                         &bytes, nullptr)) {
    ThrowLastError("the number of the camera driver's slots");
  }
  return started;
}

std::vector<std::uint8_t> ControlDevice::Exchange(const std::vector<std::uint8_t>& message) const {
  const DWORD last_error = ::GetLastError();
  // A longer answer than usual is one that may be asked for again: a log.
  for (std::size_t size = kUsualAnswer; size <= kLongestAnswer; size *= 32) {
    std::vector<std::uint8_t> answer(size);
    DWORD bytes = 0;
    if (::DeviceIoControl(device_, VEXA_CONTROL_DEVICE_COMMAND,
                          const_cast<std::uint8_t*>(message.data()),
                          static_cast<DWORD>(message.size()), answer.data(),
                          static_cast<DWORD>(answer.size()), &bytes, nullptr)) {
      answer.resize(bytes);
      ::SetLastError(last_error);
      return answer;
    }
    if (::GetLastError() != ERROR_INSUFFICIENT_BUFFER) break;
  }
  ThrowLastError("a command to the camera driver");
}

}  // namespace vexa::simulator

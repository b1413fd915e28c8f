#include "camera.hpp"

#include <utility>

#include "text.hpp"

namespace vexa::tool {
namespace {

HANDLE NoCamera() {
  return INVALID_HANDLE_VALUE;  // NOLINT(performance-no-int-to-ptr): that is what the value is
}

}  // namespace

Camera::Camera(Camera&& other) noexcept : handle_(std::exchange(other.handle_, NoCamera())) {}

Camera& Camera::operator=(Camera&& other) noexcept {
  std::swap(handle_, other.handle_);
  return *this;
}

Camera::~Camera() { Vexa_Close(handle_); }

OpenedCameras OpenCameras(std::size_t limit) {
  OpenedCameras opened;
  while (opened.cameras.size() < limit) {
    // Vexa_Open() takes the first free camera: the handles stay open so that the next is another.
    HANDLE handle = Vexa_Open();
    if (handle == NoCamera()) {
      opened.code = GetLastError();
      break;
    }
    opened.cameras.emplace_back(handle);
  }
  return opened;
}

Camera OpenCamera(std::size_t index) {
  OpenedCameras opened = OpenCameras(index + 1);
  if (opened.cameras.size() == index + 1) {
    return std::move(opened.cameras.back());
  }
  if (opened.cameras.empty()) {
    throw NoCameraError(opened.code);
  }
  throw ToolError(
      ExitCode::kNoCamera,
      Format("no camera has the index %zu: %zu free camera(s) found, Vexa_Open failed: ", index,
             opened.cameras.size()) +
          DescribeCode(opened.code),
      "Indexes begin with 0; \"vexa list\" shows them.");
}

ToolError NoCameraError(DWORD code) {
  return {ExitCode::kNoCamera, "Vexa_Open failed: " + DescribeCode(code),
          AdviceFor(code).empty() ? AdviceFor(259) : AdviceFor(code)};
}

}  // namespace vexa::tool

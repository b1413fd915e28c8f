/// \file
/// The frame of every exported call: handle check, last error, no exception across the boundary.
#pragma once

#include <exception>
#include <new>
#include <utility>

#include "VexaAPI.h"
#include "camera/vexa_camera.hpp"
#include "platform/last_error.hpp"
#include "platform/status.hpp"

namespace vexa::exports {

/// A live camera's handle is never null; besides INVALID_HANDLE_VALUE, the documented invalid
/// value, null is refused because it is what an uninitialised handle holds most often.
inline bool IsValid(HANDLE camera) { return camera != INVALID_HANDLE_VALUE && camera != nullptr; }

inline BOOL Report(Status status) {
  if (status.ok()) {
    return TRUE;
  }
  if (status != error::kLastErrorKept) {
    platform::SetLastErrorCode(status);
  }
  return FALSE;
}

/// What the system's functions leave in the last error on the way to a success (997 of a request
/// that had to wait) says nothing to the application: the code of before the call stays unless the
/// call fails with a code of its own.
class LastErrorGuard {
 public:
  LastErrorGuard() = default;
  LastErrorGuard(const LastErrorGuard&) = delete;
  LastErrorGuard& operator=(const LastErrorGuard&) = delete;
  ~LastErrorGuard() { platform::SetLastErrorCode(before_); }

 private:
  const Status before_ = platform::LastErrorCode();
};

/// Runs work that returns a Status, and turns it into result and last error.
template <typename Work>
BOOL Call(Work&& work) noexcept {
  const auto run = [&]() -> Status {
    const LastErrorGuard guard;
    try {
      return std::forward<Work>(work)();
    } catch (const std::bad_alloc&) {
      return error::kNotEnoughMemory;
    } catch (const std::exception&) {
      return error::kGeneralFailure;
    }
  };
  return Report(run());
}

/// The same for work on the camera behind a handle.
template <typename Work>
BOOL CallCamera(HANDLE handle, Work&& work) noexcept {
  if (!IsValid(handle)) {
    return Report(error::kInvalidParameter);
  }
  return Call([&] { return work(*static_cast<camera::CVexaCamera*>(handle)); });
}

/// Clears outputs that are defined whatever happens; null pointers are skipped.
template <typename... Outputs>
void Clear(Outputs*... outputs) {
  ((outputs != nullptr ? void(*outputs = {}) : void()), ...);
}

/// Stores a value in an output that may be left out.
template <typename Output, typename Value>
void Store(Output* output, Value value) {
  if (output != nullptr) {
    *output = static_cast<Output>(value);
  }
}

/// Stores a value in a required output; kInvalidParameter when it is null.
template <typename Output, typename Value>
Status Give(Output* output, Value value) {
  if (output == nullptr) {
    return error::kInvalidParameter;
  }
  *output = static_cast<Output>(value);
  return {};
}

/// Runs a getter of the camera's on a value of the library's own type. What the value holds after
/// it is handed on even when it fails; a getter that wrote nothing leaves the output as it was. A
/// null output is refused before anything is sent.
template <typename Value, typename Output, typename Getter>
BOOL CallGetter(HANDLE handle, Output* output, Getter&& getter) {
  return CallCamera(handle, [&](camera::CVexaCamera& camera) -> Status {
    if (output == nullptr) {
      return error::kInvalidParameter;
    }
    Value value = *output;
    const Status status = getter(camera, &value);
    *output = value;
    return status;
  });
}

}  // namespace vexa::exports

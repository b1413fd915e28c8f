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

/// Runs work that returns a Status, and turns it into result and last error.
template <typename Work>
BOOL Call(Work&& work) noexcept {
  try {
    return Report(std::forward<Work>(work)());
  } catch (const std::bad_alloc&) {
    return Report(error::kNotEnoughMemory);
  } catch (const std::exception&) {
    return Report(error::kGeneralFailure);
  }
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

}  // namespace vexa::exports

/** Cameras as owned objects, and calls of the library whose failures become exceptions. */
#pragma once

#include <VexaAPI.h>

#include <cstddef>
#include <vector>

#include "errors.hpp"

namespace vexa::tool {

/** An open camera; closes it when it goes. */
class Camera {
 public:
  /** Takes over an open handle. */
  explicit Camera(HANDLE handle) : handle_(handle) {}
  Camera(Camera&& other) noexcept;
  Camera& operator=(Camera&& other) noexcept;
  Camera(const Camera&) = delete;
  Camera& operator=(const Camera&) = delete;
  ~Camera();

  /** The library's handle. */
  HANDLE handle() const { return handle_; }

  /** Calls a function of the library on this camera. @param name for the message.
   *  @throws ApiError when it fails. */
  template <class... Parameters, class... Arguments>
  void Call(const char* name, BOOL(VEXA_CALL* function)(HANDLE, Parameters...),
            Arguments... arguments) const {
    if (function(handle_, arguments...) == 0) {
      throw ApiError(name, GetLastError());
    }
  }

  /** As Call(), for functions that not every model has. @return false when this one does not
   *  (error 87). @throws ApiError when the call fails for another reason. */
  template <class... Parameters, class... Arguments>
  bool TryCall(const char* name, BOOL(VEXA_CALL* function)(HANDLE, Parameters...),
               Arguments... arguments) const {
    if (function(handle_, arguments...) != 0) {
      return true;
    }
    constexpr DWORD kInvalidParameter = 87;
    if (const DWORD code = GetLastError(); code != kInvalidParameter) {
      throw ApiError(name, code);
    }
    return false;
  }

 private:
  HANDLE handle_;
};

/** Cameras that were opened one after the other, and why no further one was. */
struct OpenedCameras {
  std::vector<Camera> cameras; /**< In the order in which the system lists them. */
  DWORD code = 0;              /**< Error of the last Vexa_Open(), 0 when none failed. */
};

/** Opens free cameras until there are `limit` of them or none is left. */
OpenedCameras OpenCameras(std::size_t limit);

/** Opens the camera with an index (from 0) among the free ones.
 *  @throws ToolError (kNoCamera) when there is none. */
Camera OpenCamera(std::size_t index);

/** The error for a Vexa_Open() that opened nothing. */
ToolError NoCameraError(DWORD code);

}  // namespace vexa::tool

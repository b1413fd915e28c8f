/// \file
/// How the application hears of frames and errors: callbacks and posted messages.
#pragma once

#include <atomic>
#include <cstdint>

#include "VexaAPI.h"
#include "platform/mutex.hpp"
#include "platform/status.hpp"

namespace vexa::transfer {

/// What a transfer-end notification carries.
struct DeliveredFrame {
  std::uint32_t number = 0;
  std::uint32_t width = 0;   // pixels
  std::uint32_t height = 0;  // lines
  std::uint16_t color_array = 0;
  std::uint8_t* image = nullptr;
};

/// The registered callbacks and the message window. Each event calls the callback first and posts
/// the message after it has returned. A callback runs under the callback mutex: a registration from
/// another thread waits for it, one from inside the callback does not.
class Notifier {
 public:
  /// `camera` is the handle that callbacks and messages carry.
  explicit Notifier(HANDLE camera) : camera_(camera) {}

  void SetExposureEndCallback(VEXA_EXPOSURE_END_CALLBACK callback, void* context);
  void SetTransferEndCallback(VEXA_TRANSFER_END_CALLBACK callback, void* context);
  void SetReceiveErrorCallback(VEXA_RCV_ERROR_CALLBACK callback, void* context);
  void SetWindow(HWND window) { window_ = window; }

  void NotifyExposureEnd(std::uint32_t frame_number);
  void NotifyTransferEnd(const DeliveredFrame& frame);
  void NotifyReceiveError(Status status);

 private:
  template <typename Function>
  struct Registration {
    Function function = nullptr;
    void* context = nullptr;
  };

  template <typename Function>
  void Register(Registration<Function>& registration, Function function, void* context);
  template <typename Function, typename... Arguments>
  void Call(const Registration<Function>& registration, Arguments... arguments);
  void Post(std::uint32_t message, std::uint32_t parameter);

  const HANDLE camera_;
  std::atomic<HWND> window_ = nullptr;
  platform::Mutex callback_mutex_;
  Registration<VEXA_EXPOSURE_END_CALLBACK> exposure_end_;
  Registration<VEXA_TRANSFER_END_CALLBACK> transfer_end_;
  Registration<VEXA_RCV_ERROR_CALLBACK> receive_error_;
};

}  // namespace vexa::transfer

#include "transfer/notifier.hpp"

#include <mutex>

#include "platform/posted_message.hpp"

namespace vexa::transfer {

template <typename Function>
void Notifier::Register(Registration<Function>& registration, Function function, void* context) {
  const std::lock_guard lock(callback_mutex_);
  registration = {.function = function, .context = context};
}

template <typename Function, typename... Arguments>
void Notifier::Call(const Registration<Function>& registration, Arguments... arguments) {
  const std::lock_guard lock(callback_mutex_);
  if (registration.function != nullptr) {
    // The callback may replace its own registration while it runs.
    const Registration<Function> running = registration;
    running.function(camera_, arguments..., running.context);
  }
}

void Notifier::Post(std::uint32_t message, std::uint32_t parameter) {
  if (HWND window = window_; window != nullptr) {
    platform::PostWindowMessage(window, message, reinterpret_cast<std::uintptr_t>(camera_),
                                static_cast<std::intptr_t>(parameter));
  }
}

void Notifier::SetExposureEndCallback(VEXA_EXPOSURE_END_CALLBACK callback, void* context) {
  Register(exposure_end_, callback, context);
}

void Notifier::SetTransferEndCallback(VEXA_TRANSFER_END_CALLBACK callback, void* context) {
  Register(transfer_end_, callback, context);
}

void Notifier::SetReceiveErrorCallback(VEXA_RCV_ERROR_CALLBACK callback, void* context) {
  Register(receive_error_, callback, context);
}

void Notifier::NotifyExposureEnd(std::uint32_t frame_number) {
  Call(exposure_end_, frame_number);
  Post(VEXA_MSG_EXPOSURE_END, frame_number);
}

void Notifier::NotifyTransferEnd(const DeliveredFrame& frame) {
  Call(transfer_end_, frame.number, frame.width, frame.height, frame.color_array, frame.image);
  Post(VEXA_MSG_TRANSFER_END, frame.number);
}

void Notifier::NotifyReceiveError(Status status) {
  Call(receive_error_, status.code());
  Post(VEXA_MSG_RCV_ERROR, status.code());
}

}  // namespace vexa::transfer

/// \file
/// What a camera's callbacks were told.
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <vector>

#include "VexaAPI.h"

namespace vexa::test {

/// Registers itself for all three events of a camera and remembers them. Waits are generous bounds
/// for machines under load, not expectations of speed.
class Recorder {
 public:
  static constexpr std::chrono::seconds kPatience{60};

  explicit Recorder(HANDLE camera) : camera_(camera) {
    Vexa_SetExposureEndCallback(camera, OnExposureEnd, this);
    Vexa_SetTransferEndCallback(camera, OnTransferEnd, this);
    Vexa_SetRcvErrorCallback(camera, OnError, this);
  }

  ~Recorder() {
    Vexa_SetExposureEndCallback(camera_, nullptr, nullptr);
    Vexa_SetTransferEndCallback(camera_, nullptr, nullptr);
    Vexa_SetRcvErrorCallback(camera_, nullptr, nullptr);
  }

  Recorder(const Recorder&) = delete;
  Recorder& operator=(const Recorder&) = delete;

  struct Frame {
    DWORD number, width, height;
    WORD color_array;
    const BYTE* image;  // valid only inside on_frame
  };

  /// Runs in the transfer-end callback, on the transfer thread. Set before the transfer is started.
  std::function<void(const Frame&)> on_frame;

  bool AwaitFrames(std::size_t count) {
    return Await([&] { return frames_.size() >= count; });
  }
  bool AwaitHeaders(std::size_t count) {
    return Await([&] { return headers_.size() >= count; });
  }
  bool AwaitErrors(std::size_t count) {
    return Await([&] { return errors_.size() >= count; });
  }

  std::vector<Frame> frames() const { return Copy(frames_); }
  std::vector<DWORD> headers() const { return Copy(headers_); }
  std::vector<DWORD> errors() const { return Copy(errors_); }

  /// Forgets everything so far.
  void Clear() {
    const std::lock_guard lock(mutex_);
    frames_.clear();
    headers_.clear();
    errors_.clear();
  }

 private:
  template <typename Condition>
  bool Await(Condition condition) {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, kPatience, condition);
  }

  template <typename List>
  List Copy(const List& list) const {
    const std::lock_guard lock(mutex_);
    return list;
  }

  template <typename List>
  void Add(List& list, const typename List::value_type& value) {
    const std::lock_guard lock(mutex_);
    list.push_back(value);
    changed_.notify_all();
  }

  static void VEXA_CALL OnExposureEnd(HANDLE, DWORD number, void* context) {
    auto* self = static_cast<Recorder*>(context);
    self->Add(self->headers_, number);
  }

  static void VEXA_CALL OnTransferEnd(HANDLE, DWORD number, DWORD width, DWORD height,
                                      WORD color_array, BYTE* image, void* context) {
    auto* self = static_cast<Recorder*>(context);
    const Frame frame{number, width, height, color_array, image};
    if (self->on_frame) {
      self->on_frame(frame);
    }
    self->Add(self->frames_, frame);
  }

  static void VEXA_CALL OnError(HANDLE, DWORD code, void* context) {
    auto* self = static_cast<Recorder*>(context);
    self->Add(self->errors_, code);
  }

  HANDLE camera_;
  mutable std::mutex mutex_;
  std::condition_variable changed_;
  std::vector<Frame> frames_;
  std::vector<DWORD> headers_;
  std::vector<DWORD> errors_;
};

}  // namespace vexa::test

/** A running transfer: delivers frames and counts what came and what did not. */
#pragma once

#include <VexaAPI.h>

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <map>
#include <mutex>
#include <span>

#include "camera.hpp"
#include "frame_counter.hpp"

namespace vexa::tool {

using Clock = std::chrono::steady_clock;

/** A frame as the transfer-end callback brings it; valid only during the call. */
struct FrameView {
  std::uint32_t number = 0;
  bool consecutive = false; /**< Its number follows the frame before. */
  Clock::time_point arrival;
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  std::uint16_t color_array = 0;
  std::span<const BYTE> pixels;
};

/** What a stream has brought so far. */
struct StreamCounts {
  std::uint64_t frames = 0;
  std::uint64_t bytes = 0; /**< Of images, without frame headers. */
  std::uint64_t lost = 0;  /**< Missing frame numbers. */
  std::uint64_t restarts = 0;
  std::map<std::uint32_t, std::uint64_t> errors; /**< Receive errors by code. */
  Clock::time_point first_arrival;               /**< Of the first frame; of use with frames. */
  Clock::time_point last_arrival;                /**< Of the latest frame; of use with frames. */
  bool device_gone = false;                      /**< The camera has ended the transfer. */
  bool finished = false;                         /**< The consumer wants no more frames. */

  /** All receive errors together. */
  std::uint64_t ErrorTotal() const;
  /** Seconds from the first frame to the latest; 0 with fewer than two frames. */
  double Seconds() const;
  /** Frames per second between the first frame and the latest. */
  double FramesPerSecond() const;
  /** 10^6 bytes of image per second between the first frame and the latest. */
  double MegabytesPerSecond() const;
};

/** Streams from a camera between Start() and Stop(). */
class FrameStream {
 public:
  /** Takes each frame on the transfer thread. @return false when it was the last one wanted. */
  using Consumer = std::function<bool(const FrameView&)>;

  /** @param camera   outlives the stream. @param format the transfer format in force.
   *  @param consumer gets every frame until it returns false. */
  FrameStream(const Camera& camera, std::uint32_t format, Consumer consumer);
  FrameStream(const FrameStream&) = delete;
  FrameStream& operator=(const FrameStream&) = delete;
  /** Stops, if Stop() has not. */
  ~FrameStream();

  /** Registers the callbacks, discards what waits in the camera, and starts the transfer.
   *  @throws ApiError. */
  void Start();

  /** Stops the transfer and removes the callbacks; no frame comes afterwards. @throws ApiError. */
  void Stop();

  /** What has come so far. */
  StreamCounts Counts() const;

  /** When Start() was called. */
  Clock::time_point start_time() const { return start_time_; }

  /** Waits until the stream is finished, the camera is gone, the consumer has failed, or the time
   * is over. @return what has come. @throws what the consumer threw. */
  StreamCounts WaitFor(std::chrono::milliseconds time);

 private:
  static void VEXA_CALL OnFrame(HANDLE camera, DWORD frame_number, DWORD width, DWORD height,
                                WORD color_array, BYTE* raw_image, void* context);
  static void VEXA_CALL OnError(HANDLE camera, DWORD error_code, void* context);

  void Take(FrameView frame);

  const Camera& camera_;
  const std::uint32_t format_;
  const Consumer consumer_;
  bool started_ = false;
  Clock::time_point start_time_;

  mutable std::mutex mutex_;
  std::condition_variable changed_;
  StreamCounts counts_;
  FrameCounter frame_counter_;
  std::exception_ptr failure_;
};

}  // namespace vexa::tool

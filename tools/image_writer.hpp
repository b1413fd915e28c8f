/** Saving frames, also beside a transfer. */
#pragma once

#include <atomic>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <functional>
#include <thread>
#include <vector>

#include "frame_pool.hpp"
#include "save_plan.hpp"

namespace vexa::tool {

/** Saves one frame. @param color room for an interpolated frame, reused.
 *  @throws ApiError, ToolError. */
void SaveFrame(const StoredFrame& frame, const SavePlan& plan, const std::filesystem::path& path,
               std::vector<BYTE>& color);

/** A thread that saves the frames of a pool in their order. */
class ImageWriter {
 public:
  /** Saves a frame, on the writer's thread. */
  using Save = std::function<void(const StoredFrame&)>;

  /** @param pool outlives the writer. Starts the thread. */
  ImageWriter(FramePool& pool, Save save);
  ImageWriter(const ImageWriter&) = delete;
  ImageWriter& operator=(const ImageWriter&) = delete;
  /** Saves what is queued and ends. */
  ~ImageWriter();

  /** Frames saved so far. */
  std::uint32_t saved() const { return saved_; }

  /** Whether saving has failed; the writer then only empties the pool. */
  bool failed() const { return failed_; }

  /** Saves what is queued and ends. @throws what saving threw. */
  void Finish();

 private:
  void Run();

  FramePool& pool_;
  const Save save_;
  std::atomic<std::uint32_t> saved_{0};
  std::atomic<bool> failed_{false};
  std::exception_ptr failure_; /**< Written before failed_, read after the thread has ended. */
  std::thread thread_;
};

}  // namespace vexa::tool

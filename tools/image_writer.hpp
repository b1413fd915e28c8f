/** Saving captured frames beside the transfer. */
#pragma once

#include <atomic>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <thread>
#include <vector>

#include "frame_pool.hpp"
#include "output_pattern.hpp"
#include "save_plan.hpp"

namespace vexa::tool {

/** Saves one frame. @param color room for an interpolated frame, reused.
 *  @throws ApiError, ToolError. */
void SaveFrame(const StoredFrame& frame, const SavePlan& plan, const std::filesystem::path& path,
               std::vector<BYTE>& color);

/** A thread that saves the frames of a pool in their order. */
class ImageWriter {
 public:
  /** All three outlive the writer; starts the thread. */
  ImageWriter(FramePool& pool, const OutputPattern& pattern, const SavePlan& plan);
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
  const OutputPattern& pattern_;
  const SavePlan& plan_;
  std::atomic<std::uint32_t> saved_{0};
  std::atomic<bool> failed_{false};
  std::exception_ptr failure_; /**< Written before failed_, read after the thread has ended. */
  std::thread thread_;
};

}  // namespace vexa::tool

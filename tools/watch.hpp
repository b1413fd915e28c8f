/** Waiting for a stream to come to its end, whatever that is. */
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "camera_settings.hpp"
#include "frame_stream.hpp"
#include "progress.hpp"

namespace vexa::tool {

/** Why a stream was ended. */
enum class StreamEnd {
  kDone,        /**< Everything asked for has come. */
  kInterrupted, /**< The user ended it. */
  kTimeOut,     /**< No frame came in time. */
  kDeviceGone,  /**< The camera is gone. */
};

/** When to stop waiting, and what to show meanwhile. */
struct WatchOptions {
  double timeout_s = 0;                /**< Longest wait for a frame; 0 is without limit. */
  std::optional<double> run_s;         /**< How long to stream. */
  std::function<bool()> failed;        /**< True ends the stream as done. */
  std::function<std::string()> status; /**< The end of the progress line. */
};

/** Watches a started stream, showing progress, until it ends. Does not stop it. */
StreamEnd WatchStream(FrameStream& stream, Progress& progress, const WatchOptions& options);

/** A word for the end: "done", "interrupted", "time-out", "camera gone". */
const char* StreamEndName(StreamEnd end);

/** The exit code of an end other than a user's, given what has come. */
ExitCode ExitCodeOf(StreamEnd end, const StreamCounts& counts);

/** What went wrong, in full sentences for the standard error; empty when nothing did. */
std::string DescribeProblems(StreamEnd end, const StreamCounts& counts,
                             const FrameSettings& settings, double timeout_s);

}  // namespace vexa::tool

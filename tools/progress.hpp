/** The progress of a stream while it runs. */
#pragma once

#include <cstdint>
#include <deque>
#include <string>

#include "frame_stream.hpp"

namespace vexa::tool {

/** One line of progress, without a line end.
 *  @param counts so far. @param frames_per_second,megabytes_per_second at present.
 *  @param extra  more for the end of the line; may be empty. */
std::string ProgressText(const StreamCounts& counts, double frames_per_second,
                         double megabytes_per_second, const std::string& extra);

/** Shows progress on the standard error: on a terminal one line that changes, elsewhere a line
 * every second without control characters. */
class Progress {
 public:
  /** @param quiet shows nothing. */
  explicit Progress(bool quiet);
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  ~Progress() { Finish(); }

  /** Shows the present state when it is time to. */
  void Update(const StreamCounts& counts, const std::string& extra);

  /** Ends a line that changes, so that other text can follow. */
  void Finish();

 private:
  /** A state of the last second, for the present rates. */
  struct Sample {
    Clock::time_point time;
    std::uint64_t frames = 0;
    std::uint64_t bytes = 0;
  };

  const bool quiet_;
  const bool terminal_;
  Clock::time_point next_;
  std::deque<Sample> samples_;
  std::size_t line_length_ = 0;
};

}  // namespace vexa::tool

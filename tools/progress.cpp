#include "progress.hpp"

#include <algorithm>

#include "system.hpp"
#include "text.hpp"

namespace vexa::tool {
namespace {

using namespace std::chrono_literals;

constexpr auto kLivePeriod = 200ms;
constexpr auto kLinePeriod = 1000ms;
constexpr auto kRateSpan = 1000ms;

}  // namespace

std::string ProgressText(const StreamCounts& counts, double frames_per_second,
                         double megabytes_per_second, const std::string& extra) {
  std::string text = Format("%ju frames  %.1f frames/s  %.1f MB/s  lost %ju  errors %ju",
                            std::uintmax_t{counts.frames}, frames_per_second, megabytes_per_second,
                            std::uintmax_t{counts.lost}, std::uintmax_t{counts.ErrorTotal()});
  return extra.empty() ? text : text + "  " + extra;
}

Progress::Progress(bool quiet)
    : quiet_(quiet),
      terminal_(IsTerminal(Stream::kError)),
      next_(Clock::now() + (terminal_ ? kLivePeriod : kLinePeriod)),
      samples_{{.time = Clock::now()}} {}

void Progress::Update(const StreamCounts& counts, const std::string& extra) {
  const Clock::time_point now = Clock::now();
  if (quiet_ || now < next_) {
    return;
  }
  next_ = now + (terminal_ ? kLivePeriod : kLinePeriod);
  while (samples_.size() > 1 && samples_[1].time <= now - kRateSpan) {
    samples_.pop_front();
  }
  const Sample& before = samples_.front();
  const double seconds = std::chrono::duration<double>(now - before.time).count();
  std::string text =
      ProgressText(counts, static_cast<double>(counts.frames - before.frames) / seconds,
                   static_cast<double>(counts.bytes - before.bytes) * 1e-6 / seconds, extra);
  samples_.push_back({now, counts.frames, counts.bytes});
  if (terminal_) {
    const std::size_t length = text.size();
    text.append(line_length_ > length ? line_length_ - length : 0, ' ');
    line_length_ = length;
    text = "\r" + text;
  } else {
    text += "\n";
  }
  static_cast<void>(Write(Stream::kError, text));
}

void Progress::Finish() {
  if (line_length_ > 0) {
    static_cast<void>(Write(Stream::kError, "\n"));
    line_length_ = 0;
  }
}

}  // namespace vexa::tool

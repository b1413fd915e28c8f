#include "watch.hpp"

#include <algorithm>

#include "names.hpp"
#include "system.hpp"
#include "text.hpp"

namespace vexa::tool {
namespace {

using namespace std::chrono_literals;

constexpr auto kPollPeriod = 50ms;  // how late an interrupt or the end of the time is noticed

double SecondsSince(Clock::time_point time) {
  return std::chrono::duration<double>(Clock::now() - time).count();
}

}  // namespace

StreamEnd WatchStream(FrameStream& stream, Progress& progress, const WatchOptions& options) {
  while (true) {
    auto wait = std::chrono::milliseconds(kPollPeriod);
    if (options.run_s) {
      const double left = std::max(0.0, *options.run_s - SecondsSince(stream.start_time()));
      wait = std::min(wait,
                      std::chrono::milliseconds(static_cast<int>(std::min(left * 1e3, 1e3)) + 1));
    }
    const StreamCounts counts = stream.WaitFor(wait);
    progress.Update(counts, options.status ? options.status() : std::string());
    if (counts.device_gone) {
      return StreamEnd::kDeviceGone;
    }
    if (counts.finished || (options.failed && options.failed())) {
      return StreamEnd::kDone;
    }
    if (Interrupted()) {
      return StreamEnd::kInterrupted;
    }
    if (options.run_s && SecondsSince(stream.start_time()) >= *options.run_s) {
      return counts.frames > 0 ? StreamEnd::kDone : StreamEnd::kTimeOut;
    }
    const Clock::time_point latest = counts.frames > 0 ? counts.last_arrival : stream.start_time();
    if (options.timeout_s > 0 && SecondsSince(latest) >= options.timeout_s) {
      return StreamEnd::kTimeOut;
    }
  }
}

const char* StreamEndName(StreamEnd end) {
  switch (end) {
    case StreamEnd::kDone:
      return "done";
    case StreamEnd::kInterrupted:
      return "interrupted";
    case StreamEnd::kTimeOut:
      return "time-out";
    case StreamEnd::kDeviceGone:
      break;
  }
  return "camera gone";
}

ExitCode ExitCodeOf(StreamEnd end, const StreamCounts& counts) {
  if (end == StreamEnd::kDeviceGone) {
    return ExitCode::kFailure;
  }
  const bool complete = end != StreamEnd::kTimeOut && counts.lost == 0 && counts.ErrorTotal() == 0;
  return complete ? ExitCode::kSuccess : ExitCode::kIncomplete;
}

std::string DescribeProblems(StreamEnd end, const StreamCounts& counts,
                             const FrameSettings& settings, double timeout_s) {
  std::string text;
  if (end == StreamEnd::kDeviceGone) {
    text += "vexa: the camera has gone during the transfer\n  " + AdviceFor(VEXA_RCV_DEVICE_GONE) +
            "\n";
  }
  if (end == StreamEnd::kTimeOut) {
    text += counts.frames == 0 ? "vexa: no frame came"
                               : Format("vexa: no further frame came for %g s", timeout_s);
    text += (settings.trigger_mode & 0x3u) != 0
                ? "\n  The camera waits for triggers (" +
                      DescribeTriggerMode(settings.trigger_mode) +
                      "): send them, or set free run.\n"
                : "\n  Check the connection, or wait longer with --timeout; --exposure-ms sets a "
                  "shorter exposure.\n";
  }
  if (counts.lost > 0) {
    text += Format("vexa: %ju frame(s) were lost, by the camera's frame numbers\n",
                   std::uintmax_t{counts.lost}) +
            "  Connect the camera to a port of its own, or use a smaller --roi or a format with "
            "fewer bytes.\n";
  }
  for (const auto& [code, count] : counts.errors) {
    text += Format("vexa: receiving failed %ju time(s): ", std::uintmax_t{count}) +
            DescribeCode(code) + "\n";
  }
  return text;
}

}  // namespace vexa::tool

/// \file
/// The faults that a test has ordered from a twin.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <vector>

#include "platform/status.hpp"
#include "simulator/request_log.hpp"

namespace vexa::simulator {

/// As a count of a fault: until it is ordered anew with count 0.
inline constexpr std::uint32_t kForever = 0xFFFFFFFF;

/// Which I/O controls a fault concerns: those that have every value that is given.
struct RequestMatcher {
  std::optional<platform::ControlCode> code = std::nullopt;
  std::optional<std::uint8_t> request = std::nullopt;
  std::optional<std::uint16_t> value = std::nullopt;
  std::optional<std::uint16_t> index = std::nullopt;
  std::optional<bool> device_to_host = std::nullopt;

  bool Matches(const LoggedRequest& entry) const;
};

/// The next reads and frames that go wrong. Synchronised; the stream asks it once per frame or
/// read.
class Faults {
 public:
  void FailReads(Status status, std::uint32_t count);
  void RefuseReads(Status status, std::uint32_t count);
  void RefuseReset(std::uint32_t count);
  void ShortenFrames(std::uint32_t bytes, std::uint32_t count);
  void LengthenFrames(std::uint32_t bytes, std::uint32_t count);
  void ShortenHeaders(std::uint32_t bytes, std::uint32_t count);
  void DropFrames(std::uint32_t count);
  void FailControl(const RequestMatcher& matcher, Status status, std::uint32_t count);
  void DelayControl(const RequestMatcher& matcher, std::uint32_t milliseconds, std::uint32_t count);
  void LimitControl(const RequestMatcher& matcher, std::uint32_t bytes, std::uint32_t count);

  // Each Take... uses up one occurrence; without one it gives success or 0.
  Status TakeReadFailure();
  Status TakeReadRefusal();
  bool TakeResetRefusal();
  bool TakeDroppedFrame();
  /// Difference in bytes that the next frame's transfer is to have.
  std::int64_t TakeFrameDifference();
  std::uint32_t TakeHeaderShortage();
  Status TakeControlFailure(const LoggedRequest& entry);
  std::uint32_t TakeControlDelay(const LoggedRequest& entry);
  /// The most bytes that a request is to report.
  std::uint32_t TakeControlLimit(const LoggedRequest& entry);

 private:
  struct Order {
    std::uint32_t value = 0;
    std::uint32_t count = 0;

    std::uint32_t Take();
  };
  struct ControlOrder {
    RequestMatcher matcher;
    Order order;
  };

  static std::optional<std::uint32_t> TakeMatching(std::vector<ControlOrder>* orders,
                                                   const LoggedRequest& entry);

  std::mutex mutex_;
  Order read_failures_;
  Order read_refusals_;
  Order reset_refusals_;
  Order shortages_;
  Order excesses_;
  Order header_shortages_;
  Order dropped_frames_;
  std::vector<ControlOrder> control_failures_;
  std::vector<ControlOrder> control_delays_;
  std::vector<ControlOrder> control_limits_;
};

}  // namespace vexa::simulator

/// \file
/// What a twin remembers of the I/O controls that it was sent.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <mutex>
#include <vector>

#include "platform/driver.hpp"
#include "simulator/control_request.hpp"

namespace vexa::simulator {

/// One I/O control and its outcome. The fields of the record are those of a control request
/// (0x222058) and 0 for every other code.
struct LoggedRequest {
  platform::ControlCode code{};
  std::uint8_t type = 0;
  std::uint8_t request = 0;
  std::uint16_t value = 0;
  std::uint16_t index = 0;
  std::uint16_t length = 0;
  std::uint32_t timeout_ms = 0;
  std::vector<std::uint8_t> data;  // of the record's data stage
  std::size_t record_size = 0;     // size of the input buffer
  std::size_t output_size = 0;     // size of the output buffer
  Status status;
  std::uint32_t returned = 0;

  bool device_to_host() const { return (type & 0x80) != 0; }
};

/// A bounded list of requests; the oldest make room for new ones.
class RequestLog {
 public:
  static constexpr std::size_t kDefaultLimit = 4096;

  void Append(LoggedRequest entry);
  std::vector<LoggedRequest> Entries() const;
  void Clear();
  /// At most this many entries; 0 switches the log off.
  void SetLimit(std::size_t limit);

 private:
  mutable std::mutex mutex_;
  std::deque<LoggedRequest> entries_;
  std::size_t limit_ = kDefaultLimit;
};

}  // namespace vexa::simulator

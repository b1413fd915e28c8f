#include "output/jpeg/block_coder.hpp"

namespace vexa::output {

CodingStatus CodeTable::Build(std::span<const std::uint8_t, 16> counts,
                              std::span<const std::uint8_t> values) {
  entries_.fill({.bits = kNoCode, .length = 1});
  std::uint32_t code = 0;
  std::size_t next = 0;
  for (std::uint32_t length = 1; length <= counts.size(); ++length, code <<= 1) {
    for (std::uint32_t i = 0; i < counts[length - 1]; ++i, ++code, ++next) {
      const bool fits = code < (1U << length) - 1;  // the code of only 1-bits stays free
      if (!fits || next >= values.size()) {
        return CodingStatus::kCodingFailed;
      }
      const std::uint32_t size = values[next] & 15U;
      CodeEntry& entry = entries_[values[next]];
      if (entry.bits != kNoCode) {
        return CodingStatus::kCodingFailed;
      }
      entry = {.bits = code << size, .length = length + size};
    }
  }
  return CodingStatus::kOk;
}

CodingStatus FlushPendingBits(std::uint8_t* buffer, std::int32_t buffer_size,
                              std::int32_t* position, PendingBits* pending) {
  if (pending->count == 0) {
    return CodingStatus::kOk;
  }
  if (*position > buffer_size - 2) {
    return CodingStatus::kCodingFailed;
  }
  const std::uint32_t missing = 8 - pending->count;
  const std::uint32_t byte = (pending->bits << missing | ((1U << missing) - 1)) & 0xFF;
  buffer[(*position)++] = static_cast<std::uint8_t>(byte);
  if (byte == 0xFF) {
    buffer[(*position)++] = 0;
  }
  *pending = {};
  return CodingStatus::kOk;
}

}  // namespace vexa::output

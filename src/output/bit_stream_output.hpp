/// \file
/// The byte buffer in front of an output stream.
#pragma once

#include <cstdint>

#include "output/coding_status.hpp"
#include "output/memory_buffer.hpp"
#include "output/stream.hpp"

namespace vexa::output {

/// Collects bytes and passes them on to a stream in large pieces. Multi-byte numbers are
/// big-endian, as in every JPEG marker segment. The entropy coder writes into the buffer directly
/// and advances the position itself; between calls 0 <= position() <= buffer_size().
class CBitStreamOutput {
 public:
  CBitStreamOutput() = default;
  virtual ~CBitStreamOutput() = default;
  CBitStreamOutput(const CBitStreamOutput&) = delete;
  CBitStreamOutput& operator=(const CBitStreamOutput&) = delete;

  /// Starts anew, in front of `stream`, which must live as long as it is attached.
  CodingStatus Attach(CBaseStreamOutput* stream);
  /// Drops buffer and stream; bytes that were not flushed are lost.
  CodingStatus Detach();
  /// Provides an empty buffer of `size` bytes; kNoMemory leaves none.
  CodingStatus Init(std::int32_t size);

  /// Empties the buffer into the stream, unless `minimum_free` is not 0 and more than that many
  /// bytes are free. kBufferOverrun when the position lies beyond the buffer; kShortWrite when the
  /// stream did not take everything (or there is none): the bytes stay in the buffer.
  CodingStatus FlushBuffer(std::int32_t minimum_free);

  /// Appends a byte, flushing first when the buffer is full. Without Init: kBufferOverrun.
  CodingStatus WriteByte(std::uint8_t value);
  /// Appends the high byte, then the low one.
  CodingStatus WriteWord(std::uint16_t value);

  std::uint8_t* buffer() const { return buffer_.get(); }
  std::int32_t buffer_size() const { return buffer_size_; }
  std::int32_t& position() { return position_; }
  /// All bytes handed to the stream since Init; a file can pass 2 GiB.
  std::int64_t bytes_passed_on() const { return bytes_passed_on_; }

 private:
  CBaseStreamOutput* stream_ = nullptr;
  AlignedBlock buffer_;
  std::int32_t buffer_size_ = 0;
  std::int32_t position_ = 0;
  std::int64_t bytes_passed_on_ = 0;
};

}  // namespace vexa::output

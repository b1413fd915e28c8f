#include "output/bit_stream_output.hpp"

namespace vexa::output {

CodingStatus CBitStreamOutput::Attach(CBaseStreamOutput* stream) {
  const CodingStatus status = Detach();
  stream_ = stream;
  return status;
}

CodingStatus CBitStreamOutput::Detach() {
  stream_ = nullptr;
  buffer_.reset();
  buffer_size_ = 0;
  position_ = 0;
  bytes_passed_on_ = 0;
  return CodingStatus::kOk;
}

CodingStatus CBitStreamOutput::Init(std::int32_t size) {
  buffer_.reset();
  buffer_ = AllocateAligned(size);
  buffer_size_ = buffer_ == nullptr ? 0 : size;
  position_ = 0;
  bytes_passed_on_ = 0;
  return buffer_ == nullptr ? CodingStatus::kNoMemory : CodingStatus::kOk;
}

CodingStatus CBitStreamOutput::FlushBuffer(std::int32_t minimum_free) {
  if (position_ > buffer_size_) {
    return CodingStatus::kBufferOverrun;
  }
  if (minimum_free != 0 && buffer_size_ - position_ > minimum_free) {
    return CodingStatus::kOk;
  }
  std::int32_t written = 0;
  if (stream_ == nullptr ||
      stream_->Write(buffer_.get(), position_, &written) != CodingStatus::kOk ||
      written != position_) {
    return CodingStatus::kShortWrite;
  }
  bytes_passed_on_ += position_;
  position_ = 0;
  return CodingStatus::kOk;
}

CodingStatus CBitStreamOutput::WriteByte(std::uint8_t value) {
  if (buffer_ == nullptr) {
    return CodingStatus::kBufferOverrun;
  }
  if (position_ >= buffer_size_) {
    const CodingStatus status = FlushBuffer(0);
    if (status != CodingStatus::kOk) {
      return status;
    }
  }
  buffer_[static_cast<std::size_t>(position_++)] = value;
  return CodingStatus::kOk;
}

CodingStatus CBitStreamOutput::WriteWord(std::uint16_t value) {
  const CodingStatus status = WriteByte(static_cast<std::uint8_t>(value >> 8));
  return status == CodingStatus::kOk ? WriteByte(static_cast<std::uint8_t>(value & 0xFF)) : status;
}

}  // namespace vexa::output

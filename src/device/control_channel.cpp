#include "device/control_channel.hpp"

#include <algorithm>
#include <mutex>
#include <new>
#include <utility>
#include <vector>

#include "platform/bytes.hpp"

namespace vexa::device {
namespace {

// The record that the driver takes: request type, request, value, index, length, time-out, data.
constexpr std::size_t kRecordHeaderSize = 12;
constexpr std::uint32_t kRequestTimeoutMs = 1000;
constexpr std::size_t kReplyGranularity = 512;

bool IsDeviceToHost(const SetupPacket& setup) { return (setup.request_type & 0x80) != 0; }

std::vector<std::uint8_t> BuildRecord(const SetupPacket& setup, const std::uint8_t* data) {
  const std::size_t data_size = IsDeviceToHost(setup) ? 0 : setup.length;
  std::vector<std::uint8_t> record(kRecordHeaderSize + data_size);
  record[0] = setup.request_type;
  record[1] = setup.request;
  StoreLe16(record, 2, setup.value);
  StoreLe16(record, 4, setup.index);
  StoreLe16(record, 6, setup.length);
  StoreLe32(record, 8, kRequestTimeoutMs);
  std::copy_n(data, data_size, record.begin() + kRecordHeaderSize);
  return record;
}

// The driver wants room for whole packets and one more: 512 bytes below a length of 512, else the
// next multiple of 512 above it.
std::size_t ReplySize(std::uint16_t length) {
  return (length + kReplyGranularity) / kReplyGranularity * kReplyGranularity;
}

}  // namespace

void ControlChannel::Attach(std::unique_ptr<platform::Device> device) {
  device_ = std::move(device);
}

void ControlChannel::Detach() { device_.reset(); }

Status ControlChannel::Send(const SetupPacket& setup, std::uint8_t* data,
                            std::uint32_t* bytes_returned) {
  *bytes_returned = 0;
  try {
    const std::vector<std::uint8_t> record = BuildRecord(setup, data);
    std::vector<std::uint8_t> reply(ReplySize(setup.length));
    platform::Completion completion;
    const Status status = Exchange(record, reply, bytes_returned, completion);
    if (status.ok() && IsDeviceToHost(setup)) {
      std::copy_n(reply.begin(), std::min<std::size_t>(*bytes_returned, setup.length), data);
    }
    return status;
  } catch (const std::bad_alloc&) {
    return error::kNotEnoughMemory;
  }
}

Status ControlChannel::Exchange(std::span<const std::uint8_t> record, std::span<std::uint8_t> reply,
                                std::uint32_t* bytes_returned, platform::Completion& completion) {
  const std::lock_guard lock(request_mutex_);
  return device_->Control(platform::ControlCode::kControlRequest, record, reply, bytes_returned,
                          completion);
}

Status ControlChannel::Write(Request request, std::span<const std::uint8_t> data) {
  const SetupPacket setup{.request_type = kHostToDevice,
                          .request = static_cast<std::uint8_t>(request),
                          .length = static_cast<std::uint16_t>(data.size())};
  std::uint32_t returned = 0;
  // A host-to-device request only reads its data.
  return Send(setup, const_cast<std::uint8_t*>(data.data()), &returned);
}

Status ControlChannel::Read(Request request, std::span<std::uint8_t> data) {
  const SetupPacket setup{.request_type = kDeviceToHost,
                          .request = static_cast<std::uint8_t>(request),
                          .length = static_cast<std::uint16_t>(data.size())};
  std::uint32_t returned = 0;
  return Send(setup, data.data(), &returned);
}

}  // namespace vexa::device

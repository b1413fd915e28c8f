// One twin with an open device, and the requests and reads of a host, for the tests of the twin.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

#include "platform/bytes.hpp"
#include "platform/driver.hpp"
#include "simulator/twin.hpp"

namespace vexa::simulator {

using platform::Completion;
using platform::ControlCode;
using platform::Device;
using Bytes = std::vector<std::uint8_t>;

inline constexpr std::uint32_t kSoon = 20000;  // milliseconds; longer than anything here takes

/// A camera without noise, defects and moving parts that looks at white and never drops a frame.
inline CameraConfig PlainCamera(std::uint16_t product_id = 0x0510) {
  CameraConfig config = ForProduct(product_id);
  config.pace = Pace::kFastest;
  config.noise = false;
  config.moving_parts = false;
  config.defect_pixels = 0;
  return config;
}

/// One read: buffer, completion and outcome.
struct HostRead {
  explicit HostRead(std::size_t size) : buffer(size) {}

  Bytes buffer;
  Completion completion;
};

class TwinRig {
 public:
  explicit TwinRig(const CameraConfig& config) : camera(bus.Add(config)), device(OpenDevice()) {}
  ~TwinRig() {
    if (device != nullptr) device->CancelReads();
  }

  std::unique_ptr<Device> OpenDevice() {
    std::u16string path;
    std::unique_ptr<Device> opened;
    if (bus.InterfacePath(0, &path).ok()) static_cast<void>(bus.Open(path, &opened));
    return opened;
  }

  Status Control(ControlCode code, Bytes* reply = nullptr) {
    Completion completion;
    std::uint32_t returned = 0;
    Bytes output(reply == nullptr ? 0 : reply->size());
    const Status status = device->Control(code, {}, output, &returned, completion);
    if (reply != nullptr) reply->assign(output.begin(), output.begin() + returned);
    return status;
  }

  Status Send(const Bytes& record, Bytes* output, std::uint32_t* returned) {
    Completion completion;
    return device->Control(ControlCode::kControlRequest, record, *output, returned, completion);
  }

  Status Out(std::uint8_t request, std::uint16_t value, std::uint16_t index, const Bytes& data) {
    Bytes record = Record(0x40, request, value, index, static_cast<std::uint16_t>(data.size()));
    record.insert(record.end(), data.begin(), data.end());
    Bytes output(512);
    std::uint32_t returned = 0;
    return Send(record, &output, &returned);
  }

  Status In(std::uint8_t request, std::uint16_t value, std::uint16_t index, std::uint16_t length,
            Bytes* reply) {
    *reply = Bytes(8192);
    std::uint32_t returned = 0;
    const Status status = Send(Record(0xC0, request, value, index, length), reply, &returned);
    reply->resize(returned);
    return status;
  }

  Bytes Block(std::uint8_t request, std::uint16_t length) {
    Bytes block;
    EXPECT_TRUE(In(request, 0, 0, length, &block).ok());
    block.resize(length);
    return block;
  }

  /// Register of the main block, written in the block form and applied.
  void SetRegister(std::uint16_t number, std::uint16_t value) {
    EXPECT_TRUE(Out(0x80, number, 0, Word(value)).ok());
    EXPECT_TRUE(Out(0x80, 0x50, 0, Word(1)).ok());
  }
  /// A 32-bit register in the direct form.
  void SetDirect32(std::uint16_t number, std::uint32_t value) {
    Bytes data(4);
    StoreLe32(data, 0, value);
    EXPECT_TRUE(Out(0x80, static_cast<std::uint16_t>(0x8000 | number), 0, data).ok());
  }

  Status SetScan(std::uint32_t width, std::uint32_t height, std::uint32_t x = 0,
                 std::uint32_t y = 0, std::uint16_t mode = 1) {
    Bytes block(64);
    block[0] = 0x40;
    block[1] = 0x12;
    StoreLe32(block, 2, camera->config().scan_settings_tag);
    StoreLe32(block, 6, width);
    StoreLe32(block, 10, height);
    StoreLe32(block, 14, x);
    StoreLe32(block, 18, y);
    StoreLe16(block, 22, mode);
    return Out(0x12, 0, 0, block);
  }

  Status SetFormat(std::uint32_t format) {
    Bytes block{6, 0x13, 0, 0, 0, 0};
    StoreLe32(block, 2, format);
    return Out(0x13, 0, 0, block);
  }

  void SetLines(std::uint32_t lines, std::uint16_t gain = 0) {
    Bytes block = Block(0x21, 64);
    StoreLe16(block, 2, static_cast<std::uint16_t>(lines & 0xFFFF));
    StoreLe16(block, 10, static_cast<std::uint16_t>(lines >> 16));
    StoreLe16(block, 4, 0);
    StoreLe16(block, 6, gain);
    EXPECT_TRUE(Out(0x21, 0, 0, block).ok());
  }
  std::uint32_t Lines() { return LoadLe16(Block(0x21, 64), 2); }

  void Start() { EXPECT_TRUE(Control(ControlCode::kResetStream).ok()); }
  void Stop() { EXPECT_TRUE(Control(ControlCode::kStopStream).ok()); }

  void Queue(HostRead* read) {
    EXPECT_EQ(device->QueueRead(read->buffer, read->completion), error::kIoPending);
  }
  /// Outcome of a read; fails the test when it takes too long.
  Status Finish(HostRead* read, std::uint32_t* bytes) {
    *bytes = 0;
    if (!platform::Wait(read->completion.Done(), kSoon)) {
      ADD_FAILURE() << "read does not end";
      device->CancelReads();
    }
    return device->FinishRead(read->completion, bytes);
  }
  /// Queues one read, and gives what it got.
  Bytes Read(std::size_t size) {
    HostRead read(size);
    Queue(&read);
    std::uint32_t bytes = 0;
    EXPECT_TRUE(Finish(&read, &bytes).ok());
    read.buffer.resize(bytes);
    return read.buffer;
  }
  /// The next frame by one read that is larger than any here.
  Bytes Frame() {
    if (large_ == nullptr) large_ = std::make_unique<HostRead>(std::size_t{1} << 22);
    Queue(large_.get());
    std::uint32_t bytes = 0;
    EXPECT_TRUE(Finish(large_.get(), &bytes).ok());
    return {large_->buffer.begin(), large_->buffer.begin() + bytes};
  }
  /// Starts, takes one frame without its header, stops.
  Bytes Picture() {
    Start();
    Bytes frame = Frame();
    Stop();
    const std::size_t header = camera->config().header_size;
    if (frame.size() < header) return {};
    return {frame.begin() + static_cast<std::ptrdiff_t>(header), frame.end()};
  }

  static Bytes Record(std::uint8_t type, std::uint8_t request, std::uint16_t value,
                      std::uint16_t index, std::uint16_t length) {
    Bytes record(12);
    record[0] = type;
    record[1] = request;
    StoreLe16(record, 2, value);
    StoreLe16(record, 4, index);
    StoreLe16(record, 6, length);
    StoreLe32(record, 8, 1000);
    return record;
  }
  static Bytes Word(std::uint16_t value) {
    return {static_cast<std::uint8_t>(value & 0xFF), static_cast<std::uint8_t>(value >> 8)};
  }
  static std::uint32_t Number(const Bytes& frame) {
    return frame.size() < 16 ? 0xFFFFFFFF : LoadLe32(frame, 12);
  }

 private:
  std::unique_ptr<HostRead> large_;  // outlives the device, which may fill it

 public:
  CameraBus bus;
  std::shared_ptr<TwinCamera> camera;
  std::unique_ptr<Device> device;
};

}  // namespace vexa::simulator

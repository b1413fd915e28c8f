/// \file
/// Control of the cameras behind the driver from another program. The same names as TwinCamera and
/// CameraBus, so that a test can do without knowing which it has.
#pragma once

#include <windows.h>

#include <array>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "simulator/camera_config.hpp"
#include "simulator/faults.hpp"
#include "simulator/request_log.hpp"
#include "simulator/twin_camera.hpp"
#include "simulator/windows/archive.hpp"
#include "simulator/windows/commands.hpp"

namespace vexa::simulator {

/// The control device, open. Leaves the calling thread's last error as it was.
class ControlDevice {
 public:
  /// std::system_error when there is no driver.
  ControlDevice();
  ~ControlDevice();
  ControlDevice(const ControlDevice&) = delete;
  ControlDevice& operator=(const ControlDevice&) = delete;

  /// How many places for cameras are ready.
  std::uint32_t StartedSlots() const;

  /// Sends a command and gives its result. std::system_error when it is refused.
  template <typename Result = void, typename... Arguments>
  Result Send(Command command, const Arguments&... arguments) const {
    Writer message;
    message(command, arguments...);
    const std::vector<std::uint8_t> answer = Exchange(message.bytes());
    if constexpr (!std::is_void_v<Result>) {
      Result result{};
      Reader reader(answer);
      reader(result);
      return result;
    }
  }

 private:
  std::vector<std::uint8_t> Exchange(const std::vector<std::uint8_t>& message) const;

  HANDLE device_;
};

/// A camera that RemoteBus has added; see TwinCamera.
class RemoteCamera {
 public:
  RemoteCamera(std::shared_ptr<const ControlDevice> device, std::uint32_t number,
               CameraConfig config)
      : device_(std::move(device)), number_(number), config_(std::move(config)) {}
  ~RemoteCamera() { Send(Command::kForget); }
  RemoteCamera(const RemoteCamera&) = delete;
  RemoteCamera& operator=(const RemoteCamera&) = delete;

  const CameraConfig& config() const { return config_; }

  void Unplug() { Send(Command::kUnplug); }
  void Replug() { Send(Command::kReplug); }
  /// Unplugs for good.
  void Remove() { Send(Command::kRemove); }

  void FailReads(std::uint32_t code, std::uint32_t count) {
    Send(Command::kFailReads, code, count);
  }
  void RefuseReads(std::uint32_t code, std::uint32_t count) {
    Send(Command::kRefuseReads, code, count);
  }
  void RefuseReset(std::uint32_t count) { Send(Command::kRefuseReset, count); }
  void ShortenFrames(std::uint32_t bytes, std::uint32_t count) {
    Send(Command::kShortenFrames, bytes, count);
  }
  void LengthenFrames(std::uint32_t bytes, std::uint32_t count) {
    Send(Command::kLengthenFrames, bytes, count);
  }
  void ShortenHeaders(std::uint32_t bytes, std::uint32_t count) {
    Send(Command::kShortenHeaders, bytes, count);
  }
  void DropFrames(std::uint32_t count) { Send(Command::kDropFrames, count); }
  void Stall(bool stalled) { Send(Command::kStall, stalled); }

  void FailControl(const RequestMatcher& matcher, std::uint32_t code, std::uint32_t count) {
    Send(Command::kFailControl, matcher, code, count);
  }
  void DelayControl(const RequestMatcher& matcher, std::uint32_t milliseconds,
                    std::uint32_t count) {
    Send(Command::kDelayControl, matcher, milliseconds, count);
  }
  void LimitControl(const RequestMatcher& matcher, std::uint32_t bytes, std::uint32_t count) {
    Send(Command::kLimitControl, matcher, bytes, count);
  }
  void SetUnanswering(Wakes wakes, std::uint32_t code = 121) {
    Send(Command::kSetUnanswering, wakes, code);
  }
  void SetAnswering() { Send(Command::kSetAnswering); }
  void SetBusyElsewhere(bool busy) { Send(Command::kSetBusyElsewhere, busy); }
  void SetDriverVersion(const std::array<std::uint32_t, 4>& words) {
    Send(Command::kSetDriverVersion, words);
  }

  void PulsePin(unsigned pin) { Send(Command::kPulsePin, pin); }
  void SetPin(unsigned pin, bool high) { Send(Command::kSetPin, pin, high); }
  void SetScene(std::shared_ptr<const Picture> scene) { Send(Command::kSetScene, scene); }

  std::vector<LoggedRequest> Log() const { return Send<std::vector<LoggedRequest>>(Command::kLog); }
  void ClearLog() { Send(Command::kClearLog); }
  void SetLogLimit(std::size_t limit) { Send(Command::kSetLogLimit, limit); }
  std::uint16_t PeekRegister(std::uint16_t block, std::uint16_t number) const {
    return Send<std::uint16_t>(Command::kPeekRegister, block, number);
  }
  bool PokeRegister(std::uint16_t block, std::uint16_t number, std::uint16_t value) {
    return Send<bool>(Command::kPokeRegister, block, number, value);
  }
  std::uint64_t frames_made() const { return Send<std::uint64_t>(Command::kFramesMade); }
  std::uint64_t frames_dropped() const { return Send<std::uint64_t>(Command::kFramesDropped); }
  std::uint64_t reads_filled() const { return Send<std::uint64_t>(Command::kReadsFilled); }
  unsigned OpenHandles() const { return Send<unsigned>(Command::kOpenHandles); }
  std::size_t PendingReads() const { return Send<std::size_t>(Command::kPendingReads); }
  bool Streaming() const { return Send<bool>(Command::kStreaming); }

 private:
  template <typename Result = void, typename... Arguments>
  Result Send(Command command, const Arguments&... arguments) const {
    return device_->Send<Result>(command, number_, arguments...);
  }

  std::shared_ptr<const ControlDevice> device_;
  std::uint32_t number_;
  CameraConfig config_;
};

/// All cameras behind the driver; there is one such bus at a time.
class RemoteBus {
 public:
  /// Removes what others have left.
  RemoteBus() { device_->Send(Command::kReset); }
  ~RemoteBus() { device_->Send(Command::kReset); }
  RemoteBus(const RemoteBus&) = delete;
  RemoteBus& operator=(const RemoteBus&) = delete;

  std::shared_ptr<RemoteCamera> Add(CameraConfig config) {
    const auto number = device_->Send<std::uint32_t>(Command::kAdd, config);
    cameras_.push_back(std::make_shared<RemoteCamera>(device_, number, std::move(config)));
    return cameras_.back();
  }
  void Remove(const std::shared_ptr<RemoteCamera>& camera) {
    camera->Remove();
    std::erase(cameras_, camera);
  }

 private:
  std::shared_ptr<const ControlDevice> device_ = std::make_shared<const ControlDevice>();
  std::vector<std::shared_ptr<RemoteCamera>> cameras_;
};

}  // namespace vexa::simulator

/// \file
/// An open handle to a twin.
#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "platform/driver.hpp"
#include "simulator/twin_camera.hpp"

namespace vexa::simulator {

/// Passes everything on to its camera, which it keeps alive. Closing ends its reads.
class TwinDevice : public platform::Device {
 public:
  explicit TwinDevice(std::shared_ptr<TwinCamera> camera);
  ~TwinDevice() override;
  TwinDevice(const TwinDevice&) = delete;
  TwinDevice& operator=(const TwinDevice&) = delete;

  Status Control(platform::ControlCode code, std::span<const std::uint8_t> input,
                 std::span<std::uint8_t> output, std::uint32_t* returned,
                 platform::Completion& completion) override;
  Status ControlSynchronous(platform::ControlCode code, std::span<const std::uint8_t> input,
                            std::span<std::uint8_t> output, std::uint32_t* returned) override;
  Status QueueRead(std::span<std::uint8_t> buffer, platform::Completion& completion) override;
  Status FinishRead(platform::Completion& completion, std::uint32_t* transferred) override;
  void CancelReads() override;
  /// Asks for the end of one read, whichever thread has queued it.
  void CancelRead(const platform::Completion& completion);

 private:
  std::shared_ptr<TwinCamera> camera_;
  std::uint64_t plugging_;
};

}  // namespace vexa::simulator

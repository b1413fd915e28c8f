#include "simulator/twin_device.hpp"

#include <utility>

namespace vexa::simulator {

TwinDevice::TwinDevice(std::shared_ptr<TwinCamera> camera)
    : camera_(std::move(camera)), plugging_(camera_->OpenHandle()) {}

TwinDevice::~TwinDevice() { camera_->CloseHandle(this, plugging_); }

Status TwinDevice::Control(platform::ControlCode code, std::span<const std::uint8_t> input,
                           std::span<std::uint8_t> output, std::uint32_t* returned,
                           platform::Completion& completion) {
  completion.Begin();
  const Status status = camera_->Control(plugging_, code, input, output, returned);
  completion.Finish(status, *returned);
  return status;
}

Status TwinDevice::ControlSynchronous(platform::ControlCode code,
                                      std::span<const std::uint8_t> input,
                                      std::span<std::uint8_t> output, std::uint32_t* returned) {
  return camera_->Control(plugging_, code, input, output, returned);
}

Status TwinDevice::QueueRead(std::span<std::uint8_t> buffer, platform::Completion& completion) {
  return camera_->QueueRead(this, plugging_, buffer, completion);
}

Status TwinDevice::FinishRead(platform::Completion& completion, std::uint32_t* transferred) {
  return completion.Await(transferred);
}

void TwinDevice::CancelReads() { camera_->CancelReads(this); }

void TwinDevice::CancelRead(const platform::Completion& completion) {
  camera_->CancelRead(this, completion);
}

}  // namespace vexa::simulator

// Plugging, surroundings and inspection of a twin.
#include "simulator/twin_camera.hpp"

#include <utility>

namespace vexa::simulator {

TwinCamera::TwinCamera(CameraConfig config)
    : config_(std::move(config)),
      engine_(config_, faults_),
      state_(config_),
      driver_version_(config_.driver_version) {
  PublishSettings();
}

TwinCamera::~TwinCamera() = default;

void TwinCamera::PublishSettings() { engine_.Configure(state_.Settings()); }

void TwinCamera::Unplug() {
  {
    const std::lock_guard lock(mutex_);
    if (!plugged_) return;
    plugged_ = false;
    ++plugging_;
    open_handles_ = 0;
    plugging_changed_.notify_all();
  }
  engine_.Stop(error::kDeviceNotConnected);
  engine_.Execute(StreamCommand::kResetCounter);
}

void TwinCamera::Replug() {
  const std::lock_guard lock(mutex_);
  if (plugged_) return;
  plugged_ = true;
  silence_ = error::kNone;
  state_.LosePower();
  PublishSettings();
}

bool TwinCamera::IsPlugged() const {
  const std::lock_guard lock(mutex_);
  return plugged_;
}

void TwinCamera::SetUnanswering(Wakes wakes, std::uint32_t code) {
  const std::lock_guard lock(mutex_);
  wakes_ = wakes;
  silence_ = Status(code);
}

void TwinCamera::SetAnswering() {
  const std::lock_guard lock(mutex_);
  silence_ = error::kNone;
}

void TwinCamera::SetDriverVersion(const std::array<std::uint32_t, 4>& words) {
  const std::lock_guard lock(mutex_);
  driver_version_ = words;
}

void TwinCamera::PulsePin(unsigned pin) {
  SetPin(pin, true);
  SetPin(pin, false);
}

void TwinCamera::SetPin(unsigned pin, bool high) {
  const std::lock_guard lock(mutex_);
  if (plugged_) engine_.Execute(state_.SetPin(pin, high));
}

void TwinCamera::SetScene(std::shared_ptr<const Picture> scene) {
  const std::lock_guard lock(mutex_);
  state_.SetScene(std::move(scene));
  PublishSettings();
}

std::uint16_t TwinCamera::PeekRegister(std::uint16_t block, std::uint16_t number) const {
  const std::lock_guard lock(mutex_);
  return state_.PeekRegister(block, number);
}

bool TwinCamera::PokeRegister(std::uint16_t block, std::uint16_t number, std::uint16_t value) {
  const std::lock_guard lock(mutex_);
  if (!state_.PokeRegister(block, number, value)) return false;
  PublishSettings();
  return true;
}

unsigned TwinCamera::OpenHandles() const {
  const std::lock_guard lock(mutex_);
  return open_handles_;
}

}  // namespace vexa::simulator

// The cameras behind the driver: who has plugged them, and who has opened them.
#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

#include "simulator/windows/camera_commands.hpp"
#include "simulator/windows/commands.hpp"
#include "simulator/windows/open_file.hpp"
#include "simulator/windows/twin_interface.h"

namespace vexa::simulator {
namespace {

constexpr Status kFileNotFound{2};     // ERROR_FILE_NOT_FOUND
constexpr Status kTooManyDevices{56};  // ERROR_TOO_MANY_CMDS

class Cameras {
 public:
  explicit Cameras(const TwinHost& host) : host_(host) {}
  ~Cameras() { Reset(); }
  Cameras(const Cameras&) = delete;
  Cameras& operator=(const Cameras&) = delete;

  Status Open(std::uint32_t slot, std::uint32_t* file) {
    const std::lock_guard lock(mutex_);
    std::erase_if(leaving_, [](const auto& left) { return left->Idle(); });
    const auto camera = slot < kTwinSlots ? InSlot(slot) : nullptr;
    if (camera == nullptr || !camera->IsPlugged()) return kFileNotFound;
    *file = ++last_file_;
    files_[*file] = std::make_shared<OpenFile>(camera, host_);
    return error::kNone;
  }

  std::shared_ptr<OpenFile> File(std::uint32_t file) {
    const std::lock_guard lock(mutex_);
    const auto found = files_.find(file);
    return found == files_.end() ? nullptr : found->second;
  }

  void Close(std::uint32_t file) {
    const std::lock_guard lock(mutex_);
    const auto found = files_.find(file);
    if (found == files_.end()) return;
    const std::shared_ptr<OpenFile> closed = std::move(found->second);
    files_.erase(found);
    if (!closed->Close()) leaving_.push_back(closed);
  }

  Status Execute(Reader in, Writer* out) {
    Command command{};
    in(command);
    const std::lock_guard lock(mutex_);
    if (command == Command::kAdd) return Add(in, out);
    if (command == Command::kReset) {
      Reset();
      return error::kNone;
    }
    std::uint32_t number = 0;
    in(number);
    const auto found = cameras_.find(number);
    if (found == cameras_.end()) {
      // Whoever forgets a camera may come after somebody who has forgotten all.
      return command == Command::kForget ? error::kNone : kFileNotFound;
    }
    if (!ExecutePlugging(command, number)) {
      return ExecuteOnCamera(command, *found->second, in, out);
    }
    return error::kNone;
  }

 private:
  Status Add(Reader in, Writer* out) {
    CameraConfig config;
    in(config);
    // Behind the last one that is there, as programs find cameras in the order of the slots.
    const auto last = std::find_if(slots_.rbegin(), slots_.rend(),
                                   [](const auto& slot) { return slot.has_value(); });
    if (last == slots_.rbegin()) return kTooManyDevices;
    cameras_[++last_camera_] = std::make_shared<TwinCamera>(std::move(config));
    *last.base() = last_camera_;
    Show(last_camera_, true);
    (*out)(last_camera_);
    return error::kNone;
  }

  bool ExecutePlugging(Command command, std::uint32_t number) {
    switch (command) {
      case Command::kUnplug:
        Show(number, false);
        cameras_[number]->Unplug();
        return true;
      case Command::kReplug:
        cameras_[number]->Replug();
        Show(number, true);
        return true;
      case Command::kRemove:
        Remove(number);
        return true;
      case Command::kForget:
        Remove(number);
        cameras_.erase(number);
        return true;
      default:
        return false;
    }
  }

  void Remove(std::uint32_t number) {
    Show(number, false);
    cameras_[number]->Unplug();
    std::replace(slots_.begin(), slots_.end(), std::optional(number),
                 std::optional<std::uint32_t>());
  }

  void Reset() {
    while (!cameras_.empty()) {
      const std::uint32_t number = cameras_.begin()->first;
      Remove(number);
      cameras_.erase(number);
    }
  }

  void Show(std::uint32_t number, bool present) {
    const auto slot = std::find(slots_.begin(), slots_.end(), std::optional(number));
    if (slot != slots_.end()) {
      host_.show(static_cast<std::uint32_t>(slot - slots_.begin()), present ? 1 : 0);
    }
  }

  std::shared_ptr<TwinCamera> InSlot(std::uint32_t slot) {
    return slots_[slot] ? cameras_[*slots_[slot]] : nullptr;
  }

  const TwinHost host_;
  std::mutex mutex_;
  std::map<std::uint32_t, std::shared_ptr<TwinCamera>> cameras_;
  std::array<std::optional<std::uint32_t>, kTwinSlots> slots_;  // the cameras' numbers
  std::uint32_t last_camera_ = 0;
  std::map<std::uint32_t, std::shared_ptr<OpenFile>> files_;
  std::vector<std::shared_ptr<OpenFile>> leaving_;  // closed, but with an I/O control to answer
  std::uint32_t last_file_ = 0;
};

std::unique_ptr<Cameras> cameras;

std::span<const std::uint8_t> Bytes(const void* bytes, std::uint32_t size) {
  return {static_cast<const std::uint8_t*>(bytes), size};
}

std::span<std::uint8_t> Bytes(void* bytes, std::uint32_t size) {
  return {static_cast<std::uint8_t*>(bytes), size};
}

// Runs a function of the twin; no exception crosses into the driver.
template <typename Function>
std::uint32_t Guarded(Function&& function) try {
  return function().code();
} catch (const std::out_of_range&) {
  return error::kInvalidParameter.code();
} catch (const std::exception&) {
  return error::kNotEnoughMemory.code();
}

template <typename Function>
std::uint32_t OnFile(std::uint32_t file, Function&& function) {
  return Guarded([&] {
    const auto open = cameras->File(file);
    return open == nullptr ? error::kInvalidHandle : function(*open);
  });
}

}  // namespace
}  // namespace vexa::simulator

using namespace vexa;             // NOLINT: the C functions are outside of every namespace
using namespace vexa::simulator;  // NOLINT

std::uint32_t TwinStart(const TwinHost* host) {
  return Guarded([&] {
    cameras = std::make_unique<Cameras>(*host);
    return error::kNone;
  });
}

void TwinStop() { cameras.reset(); }

std::uint32_t TwinOpen(std::uint32_t slot, std::uint32_t* file) {
  return Guarded([&] { return cameras->Open(slot, file); });
}

void TwinClose(std::uint32_t file) {
  Guarded([&] {
    cameras->Close(file);
    return error::kNone;
  });
}

std::uint32_t TwinControl(std::uint32_t file, void* request, std::uint32_t code, const void* input,
                          std::uint32_t input_size, void* output, std::uint32_t output_size,
                          std::uint32_t* bytes) {
  return OnFile(file, [&](OpenFile& open) {
    return open.Control(request, platform::ControlCode(code), Bytes(input, input_size),
                        Bytes(output, output_size), bytes);
  });
}

std::uint32_t TwinRead(std::uint32_t file, void* request, void* buffer, std::uint32_t size) {
  return OnFile(file, [&](OpenFile& open) { return open.Read(request, Bytes(buffer, size)); });
}

void TwinCancel(std::uint32_t file, void* request) {
  OnFile(file, [&](OpenFile& open) {
    open.Cancel(request);
    return error::kNone;
  });
}

std::uint32_t TwinCommand(const void* input, std::uint32_t input_size, void* output,
                          std::uint32_t output_size, std::uint32_t* bytes) {
  return Guarded([&] {
    Writer answer;
    const Status status = cameras->Execute(Reader(Bytes(input, input_size)), &answer);
    if (!status.ok()) return status;
    if (answer.bytes().size() > output_size) return error::kInsufficientBuffer;
    std::copy(answer.bytes().begin(), answer.bytes().end(), static_cast<std::uint8_t*>(output));
    *bytes = static_cast<std::uint32_t>(answer.bytes().size());
    return error::kNone;
  });
}

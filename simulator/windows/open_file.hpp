/// \file
/// A handle that a program has to a camera: the requests that it keeps until they end.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <list>
#include <memory>
#include <mutex>
#include <span>
#include <thread>
#include <vector>

#include "platform/driver.hpp"
#include "simulator/twin_device.hpp"
#include "simulator/windows/twin_interface.h"

namespace vexa::simulator {

/// Two threads serve a file, each made when it is first needed: one hands on reads that have ended,
/// the other carries out I/O controls, which a camera may take its time for.
class OpenFile {
 public:
  OpenFile(std::shared_ptr<TwinCamera> camera, const TwinHost& host);
  /// Waits for an I/O control that is being carried out.
  ~OpenFile();
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;

  /// kIoPending: the read is kept. Any other answer refuses it.
  Status Read(void* request, std::span<std::uint8_t> buffer);
  void Cancel(void* request);
  /// kIoPending: kept. The synchronous one (open count) is answered at once.
  Status Control(void* request, platform::ControlCode code, std::span<const std::uint8_t> input,
                 std::span<std::uint8_t> output, std::uint32_t* returned);
  /// Ends all reads and waits for that. Answers whether no I/O control is left.
  bool Close();
  bool Idle();

 private:
  struct KeptRead {
    void* request = nullptr;
    platform::Completion completion;
  };
  struct KeptControl {
    void* request = nullptr;
    platform::ControlCode code{};
    std::vector<std::uint8_t> input;
    std::span<std::uint8_t> output;
  };
  using Reads = std::list<KeptRead>;

  Reads NewRead(void* request);
  void DeliverReads();
  void Deliver(std::size_t index);
  void AnswerControls();

  const TwinHost& host_;
  TwinDevice device_;
  platform::Event changed_;  // a read has been kept, or the file closed
  std::thread deliverer_;
  std::thread answerer_;

  std::mutex mutex_;  // guards what follows
  std::condition_variable control_kept_;
  Reads reads_;  // in the order in which they came; taken out by the deliverer alone
  Reads spare_;
  std::deque<KeptControl> controls_;
  bool answering_ = false;
  bool closed_ = false;
};

}  // namespace vexa::simulator

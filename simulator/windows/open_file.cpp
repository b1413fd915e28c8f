#include "simulator/windows/open_file.hpp"

#include <iterator>
#include <utility>

#include "platform/windows/windows_api.hpp"

namespace vexa::simulator {

using platform::ControlCode;

OpenFile::OpenFile(std::shared_ptr<TwinCamera> camera, const TwinHost& host)
    : host_(host), device_(std::move(camera)) {}

OpenFile::~OpenFile() {
  Close();
  if (answerer_.joinable()) answerer_.join();
}

OpenFile::Reads OpenFile::NewRead(void* request) {
  const std::lock_guard lock(mutex_);
  Reads read;
  if (spare_.empty()) {
    read.emplace_back();
  } else {
    read.splice(read.end(), spare_, spare_.begin());
  }
  read.front().request = request;
  return read;
}

Status OpenFile::Read(void* request, std::span<std::uint8_t> buffer) {
  if (!deliverer_.joinable()) deliverer_ = std::thread([this] { DeliverReads(); });
  Reads read = NewRead(request);
  const Status status = device_.QueueRead(buffer, read.front().completion);
  if (status != error::kIoPending) return status;
  const bool cancelled = host_.pend(request) != 0;
  {
    const std::lock_guard lock(mutex_);
    reads_.splice(reads_.end(), read);
  }
  changed_.Set();
  if (cancelled) Cancel(request);
  return error::kIoPending;
}

void OpenFile::Cancel(void* request) {
  const std::lock_guard lock(mutex_);
  for (const KeptRead& read : reads_) {
    if (read.request == request) device_.CancelRead(read.completion);
  }
}

void OpenFile::DeliverReads() {
  for (;;) {
    std::vector<HANDLE> events = {changed_.impl().handle.get()};
    {
      const std::lock_guard lock(mutex_);
      if (closed_ && reads_.empty()) return;
      for (const KeptRead& read : reads_) {
        if (events.size() == MAXIMUM_WAIT_OBJECTS) break;
        events.push_back(read.completion.Done().impl().handle.get());
      }
    }
    // Of several reads that have ended the first counts, so they end in order.
    const DWORD ended = ::WaitForMultipleObjects(static_cast<DWORD>(events.size()), events.data(),
                                                 FALSE, INFINITE) -
                        WAIT_OBJECT_0;
    if (ended == 0) {
      changed_.Reset();
    } else {
      Deliver(ended - 1);
    }
  }
}

void OpenFile::Deliver(std::size_t index) {
  Reads read;
  {
    const std::lock_guard lock(mutex_);
    read.splice(read.end(), reads_, std::next(reads_.begin(), static_cast<std::ptrdiff_t>(index)));
  }
  std::uint32_t bytes = 0;
  const Status status = device_.FinishRead(read.front().completion, &bytes);
  void* const request = read.front().request;
  {
    const std::lock_guard lock(mutex_);
    spare_.splice(spare_.end(), read);
  }
  host_.complete(request, status.code(), bytes);
}

Status OpenFile::Control(void* request, ControlCode code, std::span<const std::uint8_t> input,
                         std::span<std::uint8_t> output, std::uint32_t* returned) {
  const std::vector<std::uint8_t> copy(input.begin(), input.end());
  if (code == ControlCode::kOpenCount) {
    return device_.ControlSynchronous(code, copy, output, returned);
  }
  if (!answerer_.joinable()) answerer_ = std::thread([this] { AnswerControls(); });
  host_.pend(request);
  const std::lock_guard lock(mutex_);
  controls_.push_back({request, code, copy, output});
  control_kept_.notify_one();
  return error::kIoPending;
}

void OpenFile::AnswerControls() {
  std::unique_lock lock(mutex_);
  for (;;) {
    control_kept_.wait(lock, [this] { return closed_ || !controls_.empty(); });
    if (controls_.empty()) return;
    const KeptControl control = std::move(controls_.front());
    controls_.pop_front();
    answering_ = true;
    lock.unlock();
    std::uint32_t returned = 0;
    const Status status =
        device_.ControlSynchronous(control.code, control.input, control.output, &returned);
    lock.lock();
    // Before the program knows: it may close the file as soon as it does.
    answering_ = false;
    lock.unlock();
    host_.complete(control.request, status.code(), returned);
    lock.lock();
  }
}

bool OpenFile::Close() {
  {
    const std::lock_guard lock(mutex_);
    closed_ = true;
    for (const KeptRead& read : reads_) device_.CancelRead(read.completion);
    control_kept_.notify_one();
  }
  changed_.Set();
  if (deliverer_.joinable()) deliverer_.join();
  return Idle();
}

bool OpenFile::Idle() {
  const std::lock_guard lock(mutex_);
  return !answering_ && controls_.empty();
}

}  // namespace vexa::simulator

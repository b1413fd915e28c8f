#include "platform/driver.hpp"

namespace vexa::platform {

void Completion::Begin() {
  status_ = error::kNone;
  transferred_ = 0;
  done_.Reset();
  in_flight_.store(true, std::memory_order_release);
}

void Completion::Finish(Status status, std::uint32_t transferred) {
  if (!in_flight_.exchange(false, std::memory_order_acq_rel)) {
    return;
  }
  status_ = status;
  transferred_ = transferred;
  done_.Set();
}

Status Completion::Await(std::uint32_t* transferred) const {
  Wait(done_);
  *transferred = transferred_;
  return status_;
}

}  // namespace vexa::platform

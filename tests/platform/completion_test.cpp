#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "platform/driver.hpp"

namespace vexa::platform {
namespace {

TEST(Completion, TheFirstFinishAfterBeginCounts) {
  Completion completion;
  completion.Finish(error::kBusy, 1);  // nothing has begun
  EXPECT_FALSE(Wait(completion.Done(), 0));
  const struct {
    Status status;
    std::uint32_t transferred;
  } outcomes[] = {{error::kNone, 512}, {error::kOperationAborted, 7}};
  for (const auto& outcome : outcomes) {
    completion.Begin();
    EXPECT_FALSE(Wait(completion.Done(), 0));
    completion.Finish(outcome.status, outcome.transferred);
    completion.Finish(error::kGeneralFailure, 99);
    for (int repeat = 0; repeat < 2; ++repeat) {
      std::uint32_t transferred = 0;
      EXPECT_EQ(completion.Await(&transferred), outcome.status);
      EXPECT_EQ(transferred, outcome.transferred);
    }
  }
}

// A control request keeps its completion on the stack and leaves as soon as it is signalled, while
// the driver's thread may still be on its way out of Finish.
TEST(Completion, MayBeDestroyedAsSoonAsItIsSignalled) {
  constexpr std::uint32_t kRequests = 5'000;
  std::atomic<Completion*> request = nullptr;
  std::thread driver([&] {
    for (std::uint32_t i = 0; i < kRequests; ++i) {
      Completion* taken = nullptr;
      while ((taken = request.exchange(nullptr)) == nullptr) std::this_thread::yield();
      taken->Finish(error::kNone, i);
    }
  });
  for (std::uint32_t i = 0; i < kRequests; ++i) {
    Completion completion;
    completion.Begin();
    request = &completion;
    while (i % 2 == 0 && !Wait(completion.Done(), 0)) std::this_thread::yield();  // else block
    std::uint32_t transferred = 0;
    EXPECT_EQ(completion.Await(&transferred), error::kNone);
    EXPECT_EQ(transferred, i);
  }
  driver.join();
}

}  // namespace
}  // namespace vexa::platform

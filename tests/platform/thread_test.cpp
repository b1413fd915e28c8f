#include "platform/thread.hpp"

#include <gtest/gtest.h>

#include <mutex>
#include <thread>

#include "platform/last_error.hpp"
#include "platform/mutex.hpp"

namespace vexa::platform {
namespace {

TEST(Thread, RunsAtEitherPriorityAndItsEndCanBeWaitedFor) {
  for (const ThreadPriority priority : {ThreadPriority::kHighest, ThreadPriority::kTimeCritical}) {
    Event leave, never;
    bool is_current = false;
    std::unique_ptr<Thread> thread;
    const auto body = [&] {
      Wait(leave);
      is_current = thread->IsCurrent();
    };
    ASSERT_TRUE(Thread::Start(priority, body, &thread).ok());
    EXPECT_NE(thread->id(), 0u);
    EXPECT_FALSE(thread->IsCurrent());
    EXPECT_TRUE(WaitAny({&never, &thread->Ended()}, 0).timed_out());
    leave.Set();
    EXPECT_EQ(WaitAny({&never, &thread->Ended()}).index, 1u);
    thread->Join();
    thread->Join();
    EXPECT_TRUE(is_current);

    int work = 0;  // the destructor waits for it
    ASSERT_TRUE(Thread::Start(
                    priority, [&work] { work = 42; }, &thread)
                    .ok());
    thread.reset();
    EXPECT_EQ(work, 42);
  }
}

TEST(Mutex, ExcludesOthersAndLetsItsOwnerInAgain) {
  constexpr int kRounds = 5'000;
  Mutex mutex;
  int counter = 0;
  const auto count = [&] {
    for (int i = 0; i < kRounds; ++i) {
      const std::lock_guard outer(mutex);
      const std::lock_guard inner(mutex);
      ++counter;
    }
  };
  std::thread other(count);
  count();
  other.join();
  EXPECT_EQ(counter, 2 * kRounds);
}

TEST(LastError, BelongsToTheThread) {
  Event other_has_set, looked;
  Status fresh = error::kBusy, other_keeps;
  std::thread other([&] {
    fresh = LastErrorCode();
    SetLastErrorCode(error::kWaitTimeout);
    other_has_set.Set();
    Wait(looked);
    other_keeps = LastErrorCode();
  });
  SetLastErrorCode(error::kBusy);
  Wait(other_has_set);
  const Status own = LastErrorCode();
  SetLastErrorCode(error::kNone);
  looked.Set();
  other.join();
  EXPECT_EQ(fresh, error::kNone);
  EXPECT_EQ(own, error::kBusy);
  EXPECT_EQ(other_keeps, error::kWaitTimeout);
}

}  // namespace
}  // namespace vexa::platform

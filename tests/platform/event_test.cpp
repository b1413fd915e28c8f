#include "platform/event.hpp"

#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>

namespace vexa::platform {
namespace {

constexpr std::uint32_t kGenerous = 60'000;  // ms; reached only by a lost wake-up

TEST(Event, WaitAnyAnswersTheLowestSignalledIndexAndChangesNothing) {
  struct Case {
    bool set[3];
    std::size_t expected;
  };
  const Case cases[] = {{{false, false, false}, WaitResult::kTimedOut},
                        {{true, true, true}, 0},
                        {{false, true, true}, 1},
                        {{false, false, true}, 2}};
  for (const Case& c : cases) {
    Event a, b, d;
    Event* const events[] = {&a, &b, &d};
    for (int i = 0; i < 3; ++i) {
      if (c.set[i]) events[i]->Set();
    }
    for (const std::uint32_t timeout : {0u, 1u, 0u}) {
      EXPECT_EQ(WaitAny({&a, &b, &d}, timeout).index, c.expected);
    }
    for (int i = 0; i < 3; ++i) {
      EXPECT_EQ(events[i]->IsSet(), c.set[i]);
      EXPECT_EQ(Wait(*events[i], 0), c.set[i]);
    }
  }
  Event initially_set(Event::Initially::kSignalled);
  EXPECT_TRUE(Wait(initially_set));
  initially_set.Reset();
  EXPECT_FALSE(Wait(initially_set, 0));
}

TEST(Event, WaitAnyTakesOneToEightObjects) {
  Event idle, set(Event::Initially::kSignalled);
  EXPECT_EQ(WaitAny({&idle, &idle, &idle, &idle, &idle, &idle, &idle, &set}).index, 7u);
  EXPECT_THROW(WaitAny({}, 0), std::length_error);
  EXPECT_THROW(WaitAny({&set, &set, &set, &set, &set, &set, &set, &set, &set}, 0),
               std::length_error);
}

// The frame ring's protocol: each side clears its own event before it sets the other's, so the
// plain payload always belongs to one thread (ThreadSanitizer checks that it does).
TEST(Event, HandoverBetweenThreadsLosesNothing) {
  constexpr int kRounds = 20'000;
  Event stop, ready, free(Event::Initially::kSignalled);
  int payload = -1;
  std::thread consumer([&] {
    for (int expected = 0;; ++expected) {
      if (WaitAny({&stop, &ready}, kGenerous).index != 1) {
        EXPECT_EQ(expected, kRounds);
        return;
      }
      ASSERT_EQ(payload, expected);
      ready.Reset();
      free.Set();
    }
  });
  for (int round = 0; round < kRounds; ++round) {
    ASSERT_EQ(WaitAny({&stop, &free}, kGenerous).index, 1u);
    payload = round;
    free.Reset();
    ready.Set();
  }
  EXPECT_TRUE(Wait(free, kGenerous));
  stop.Set();
  consumer.join();
}

}  // namespace
}  // namespace vexa::platform

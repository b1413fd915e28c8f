#include <gtest/gtest.h>
#include <pthread.h>
#include <sched.h>

#include <atomic>
#include <thread>
#include <vector>

#include "VexaHost.h"
#include "platform/event.hpp"
#include "platform/output_file.hpp"
#include "platform/posted_message.hpp"
#include "platform/system_info.hpp"
#include "platform/thread.hpp"
#include "vexa_version.hpp"

namespace vexa::platform {
namespace {

// On one processor, and with waiters that never displace another thread, nobody runs between Set
// and Reset: a waiter that looked at the event again after being woken would always find it reset.
TEST(HostEvent, SetReleasesEveryWaiterEvenWhenResetFollowsAtOnce) {
  cpu_set_t all, one;
  ASSERT_EQ(sched_getaffinity(0, sizeof(all), &all), 0);
  CPU_ZERO(&one);
  CPU_SET(sched_getcpu(), &one);
  ASSERT_EQ(sched_setaffinity(0, sizeof(one), &one), 0);
  constexpr std::uint32_t kGenerous = 60'000;  // ms
  Event pulse, never, all_released;
  std::atomic<int> waiting = 4;
  std::vector<std::thread> waiters;
  for (int i = 0; i < 4; ++i) {
    waiters.emplace_back([&] {
      const sched_param batch{};
      EXPECT_EQ(sched_setscheduler(0, SCHED_BATCH, &batch), 0);
      EXPECT_EQ(WaitAny({&never, &pulse}, kGenerous).index, 1u);
      if (--waiting == 0) all_released.Set();
    });
  }
  do {
    pulse.Set();
    pulse.Reset();
  } while (!Wait(all_released, 20));
  for (std::thread& waiter : waiters) waiter.join();
  sched_setaffinity(0, sizeof(all), &all);
}

TEST(MessageQueue, KeepsOrderAndLosesWhatDoesNotFit) {
  const HWND queue = VexaHost_CreateMessageQueue();
  ASSERT_NE(queue, nullptr);
  for (DWORD i = 0; i < VEXA_HOST_QUEUE_CAPACITY + 5; ++i) {
    PostWindowMessage(queue, VEXA_MSG_TRANSFER_END, UINTPTR_MAX - i, -static_cast<intptr_t>(i));
  }
  VexaHostMessage message{};
  for (DWORD i = 0; i < VEXA_HOST_QUEUE_CAPACITY; ++i) {
    ASSERT_TRUE(VexaHost_WaitMessage(queue, &message, 0));
    ASSERT_EQ(message.message, VEXA_MSG_TRANSFER_END);
    ASSERT_EQ(message.wparam, UINTPTR_MAX - i);
    ASSERT_EQ(message.lparam, -static_cast<intptr_t>(i));
  }
  for (const DWORD timeout : {0u, 5u}) {
    SetLastError(0);
    EXPECT_FALSE(VexaHost_WaitMessage(queue, &message, timeout));
    EXPECT_EQ(GetLastError(), 258u);
  }
  EXPECT_FALSE(VexaHost_WaitMessage(queue, nullptr, 0));
  EXPECT_EQ(GetLastError(), 87u);
  EXPECT_TRUE(VexaHost_DestroyMessageQueue(queue));
}

TEST(MessageQueue, AQueueThatDoesNotExistSwallowsPostsAndRefusesTheRest) {
  const HWND gone = VexaHost_CreateMessageQueue();
  ASSERT_TRUE(VexaHost_DestroyMessageQueue(gone));
  const HWND next = VexaHost_CreateMessageQueue();
  EXPECT_NE(next, gone);
  VexaHostMessage message{};
  for (void* const handle : {static_cast<void*>(gone), static_cast<void*>(nullptr),
                             static_cast<void*>(&message), INVALID_HANDLE_VALUE}) {
    PostWindowMessage(handle, 1, 2, 3);
    SetLastError(0);
    EXPECT_FALSE(VexaHost_WaitMessage(static_cast<HWND>(handle), &message, INFINITE));
    EXPECT_EQ(GetLastError(), 1400u);
    SetLastError(0);
    EXPECT_FALSE(VexaHost_DestroyMessageQueue(static_cast<HWND>(handle)));
    EXPECT_EQ(GetLastError(), 1400u);
  }
  EXPECT_FALSE(VexaHost_WaitMessage(next, &message, 0)) << "a post went astray";
  VexaHost_DestroyMessageQueue(next);
}

TEST(MessageQueue, WakesWaitersOnPostAndOnDestruction) {
  constexpr int kMessages = 2'000;
  const HWND queue = VexaHost_CreateMessageQueue();
  std::vector<int> taken(3);
  std::vector<std::thread> readers;
  for (int& count : taken) {
    readers.emplace_back([&count, queue] {
      VexaHostMessage message{};
      while (VexaHost_WaitMessage(queue, &message, INFINITE)) {
        ++count;
        if (message.lparam == kMessages) VexaHost_DestroyMessageQueue(queue);
      }
      EXPECT_EQ(GetLastError(), 1400u);
    });
  }
  for (int i = 1; i <= kMessages; ++i) PostWindowMessage(queue, 1, 0, i);
  for (std::thread& reader : readers) reader.join();
  EXPECT_EQ(taken[0] + taken[1] + taken[2], kMessages);
}

TEST(HostThread, AThreadThatCannotBeCreatedIsAStatus) {
  pthread_attr_t ordinary, huge;
  ASSERT_EQ(pthread_getattr_default_np(&ordinary), 0);
  ASSERT_EQ(pthread_getattr_default_np(&huge), 0);
  ASSERT_EQ(pthread_attr_setstacksize(&huge, std::size_t{1} << 50), 0);
  ASSERT_EQ(pthread_setattr_default_np(&huge), 0);
  std::unique_ptr<Thread> thread;
  const Status status = Thread::Start(
      ThreadPriority::kHighest, [] {}, &thread);
  ASSERT_EQ(pthread_setattr_default_np(&ordinary), 0);
  EXPECT_EQ(status, error::kNotEnoughMemory);
  EXPECT_EQ(thread, nullptr);
  pthread_attr_destroy(&ordinary);
  pthread_attr_destroy(&huge);
}

TEST(HostFile, APathWithAnUnpairedSurrogateCannotBeOpened) {
  EXPECT_EQ(CreateOutputFile({u'/', u't', u'm', u'p', u'/', 0xD800}), nullptr);
}

TEST(HostSystem, ReportsTheBuildsVersion) {
  const ModuleVersion version = ReadModuleVersion();
  EXPECT_EQ(version.file_high, VEXA_VERSION_MAJOR * 65536u + VEXA_VERSION_MINOR);
  EXPECT_EQ(version.file_low, VEXA_VERSION_PATCH * 65536u);
  EXPECT_EQ(version.product_high, version.file_high);
  EXPECT_EQ(version.product_low, version.file_low);
}

}  // namespace
}  // namespace vexa::platform

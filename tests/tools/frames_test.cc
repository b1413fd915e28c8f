// Counting and timing frames, and the buffers between threads.

#include <gmock/gmock.h>

#include <numeric>
#include <thread>

#include "frame_counter.hpp"
#include "frame_pool.hpp"
#include "names.hpp"
#include "percentiles.hpp"
#include "text.hpp"

namespace vexa::tool {
namespace {

using namespace std::chrono_literals;

TEST(FrameCounter, CountsGapsAcrossTheWrapAndNotRestarts) {
  const struct {
    const char* name;
    std::vector<std::uint32_t> numbers;
    std::uint64_t lost;
    std::uint64_t restarts;
    std::vector<bool> consecutive;
  } kCases[] = {
      {"first number counts nothing", {4000000000u}, 0, 0, {false}},
      {"gaps", {1, 3, 4, 10}, 6, 0, {false, false, true, false}},
      {"wrap", {0xFFFFFFFEu, 0xFFFFFFFFu, 0, 1}, 0, 0, {false, true, true, true}},
      {"gap across the wrap", {0xFFFFFFFEu, 2}, 3, 0, {false, false}},
      {"largest gap", {0, 0x7FFFFFFFu}, 0x7FFFFFFEu, 0, {false, false}},
      {"repeated", {5, 5, 6}, 0, 1, {false, false, true}},
      {"counter reset", {900, 901, 0, 1}, 0, 1, {false, true, false, true}},
  };
  for (const auto& test_case : kCases) {
    FrameCounter counter;
    std::vector<bool> consecutive;
    for (const std::uint32_t number : test_case.numbers) {
      consecutive.push_back(counter.Add(number));
    }
    EXPECT_EQ(counter.lost(), test_case.lost) << test_case.name;
    EXPECT_EQ(counter.restarts(), test_case.restarts) << test_case.name;
    EXPECT_EQ(consecutive, test_case.consecutive) << test_case.name;
  }
}

TEST(Jitter, TakesNearestRanksOfTheDeviationFromTheMedian) {
  EXPECT_FALSE(JitterOf({}));

  // 100 intervals, of which 90 last 10 ms, nine 11 ms and one 3 ms; the order must not matter.
  std::vector<Nanoseconds> intervals(100, 10ms);
  std::fill_n(intervals.begin() + 20, 9, Nanoseconds(11ms));
  intervals[70] = 3ms;
  const Jitter jitter = *JitterOf(intervals);
  EXPECT_EQ(jitter.count, 100u);
  EXPECT_EQ(jitter.median, 10ms);
  EXPECT_EQ(jitter.p50, 0ms);
  EXPECT_EQ(jitter.p90, 0ms);  // the 90th of 100
  EXPECT_EQ(jitter.p99, 1ms);  // the 99th: the largest deviation is no 99 % value
  EXPECT_EQ(jitter.max, 7ms);

  std::vector<Nanoseconds> ranks(10);
  std::iota(ranks.begin(), ranks.end(), 1ns);
  EXPECT_EQ(NearestRank(ranks, 0), 1ns);
  EXPECT_EQ(NearestRank(ranks, 50), 5ns);
  EXPECT_EQ(NearestRank(ranks, 91), 10ns);
  EXPECT_EQ(NearestRank(ranks, 100), 10ns);
}

TEST(FramePool, HandsFramesOverInOrderAndRefusesWhenFull) {
  constexpr std::uint32_t kFrames = 500;
  FramePool pool(3, 4);
  const auto put = [&pool](std::uint32_t index) {
    const BYTE pixels[2] = {static_cast<BYTE>(index), 0xEE};
    return pool.Put({.index = index, .width = 2, .height = 1, .color_array = 1}, pixels);
  };
  EXPECT_TRUE(put(1) && put(2) && put(3));
  EXPECT_FALSE(put(4)) << "a fourth frame would overwrite one that is not saved";
  for (std::uint32_t index = 1; index <= 3; ++index) {
    pool.Release(pool.Take());
  }

  std::vector<std::uint32_t> taken;
  std::thread consumer([&] {
    while (StoredFrame* frame = pool.Take()) {
      EXPECT_EQ(frame->pixels[0], static_cast<BYTE>(frame->description.index));
      EXPECT_EQ(frame->size, 2u);
      taken.push_back(frame->description.index);
      pool.Release(frame);
    }
  });
  for (std::uint32_t index = 1; index <= kFrames; ++index) {
    while (!put(index)) {
      std::this_thread::yield();
    }
  }
  pool.Close();
  consumer.join();
  std::vector<std::uint32_t> expected(kFrames);
  std::iota(expected.begin(), expected.end(), 1u);
  EXPECT_EQ(taken, expected);
}

TEST(Names, FrameSizesFollowTheFormat) {
  EXPECT_EQ(ImageBytes(5, 3, VEXA_TRANSFER_8BIT), 15u);
  EXPECT_EQ(ImageBytes(5, 3, VEXA_TRANSFER_12BIT_B), 30u);
  EXPECT_EQ(ImageBytes(5, 3, VEXA_TRANSFER_YUV411), 22u);  // 15 + 15 / 2
  EXPECT_EQ(ImageBytes(5, 3, VEXA_TRANSFER_BGR24), 45u);
  EXPECT_EQ(ImageBytes(0xFFFF, 0xFFFF, VEXA_TRANSFER_BGR30), 4ull * 0xFFFF * 0xFFFF);
}

TEST(Text, Utf16BecomesUtf8) {
  EXPECT_EQ(Utf8FromUtf16(u"a\u00E4\u20AC\U0001F4F7"), "a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x93\xB7");
  const char16_t unpaired[] = {0xD83D, u'x', 0xDCF7, 0xD83D};
  EXPECT_EQ(Utf8FromUtf16({unpaired, 4}), "\xEF\xBF\xBDx\xEF\xBF\xBD\xEF\xBF\xBD");
}

}  // namespace
}  // namespace vexa::tool

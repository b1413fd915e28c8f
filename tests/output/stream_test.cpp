// The streams that encoders write through.

#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <vector>

#include "library/allocation_counter.hpp"
#include "output/bit_stream_output.hpp"
#include "output/encoding.hpp"
#include "output/std_file_output.hpp"

namespace vexa::test {
namespace {

using namespace output;

constexpr auto kOk = CodingStatus::kOk;

TEST(MemoryBuffer, IsAlignedAndSurvivesLackOfMemory) {
  CMemoryBuffer buffer;
  for (const std::int32_t size : {1, 31, 32, 33, 4096, 1000003}) {
    ASSERT_EQ(buffer.Allocate(size), kOk);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(buffer.data()) % 32, 0U);
    EXPECT_EQ(buffer.size(), size);
    buffer.data()[0] = buffer.data()[size - 1] = 1;
  }
  for (const std::int32_t size : {0, -1}) {
    EXPECT_EQ(buffer.Allocate(size), CodingStatus::kNoMemory);
    EXPECT_EQ(buffer.data(), nullptr);
    EXPECT_EQ(buffer.size(), 0);
  }
  ASSERT_EQ(buffer.Allocate(7), kOk);
  FailAllocation(1);
  EXPECT_EQ(buffer.Allocate(8), CodingStatus::kNoMemory);
  EXPECT_EQ(buffer.data(), nullptr);
  EXPECT_EQ(buffer.size(), 0);
}

TEST(BitStreamOutput, PassesFullBuffersOnInOrder) {
  MemoryStream stream;
  CBitStreamOutput out;
  EXPECT_EQ(out.WriteByte(1), CodingStatus::kBufferOverrun);  // no buffer yet
  ASSERT_EQ(out.Attach(&stream), kOk);
  ASSERT_EQ(out.Init(4096), kOk);
  std::vector<std::uint8_t> words;
  for (int i = 0; i < 2048; ++i) {
    ASSERT_EQ(out.WriteWord(static_cast<std::uint16_t>(i)), kOk);
    words.insert(words.end(), {static_cast<std::uint8_t>(i >> 8), static_cast<std::uint8_t>(i)});
  }
  EXPECT_TRUE(stream.bytes.empty());
  ASSERT_EQ(out.WriteByte(0xAB), kOk);
  EXPECT_EQ(stream.bytes, words);
  EXPECT_EQ(out.position(), 1);
  EXPECT_EQ(out.buffer()[0], 0xAB);

  // The buffer is emptied when that few bytes are free, and always for 0.
  out.position() = 4096 - 129;
  EXPECT_EQ(out.FlushBuffer(128), kOk);
  EXPECT_EQ(stream.bytes.size(), 4096U);
  out.position() = 4096 - 128;
  EXPECT_EQ(out.FlushBuffer(128), kOk);
  EXPECT_EQ(stream.bytes.size(), 4096U + 3968);
  out.position() = 3;
  EXPECT_EQ(out.FlushBuffer(0), kOk);
  EXPECT_EQ(out.bytes_passed_on(), 4096 + 3968 + 3);
  out.position() = 4097;
  EXPECT_EQ(out.FlushBuffer(0), CodingStatus::kBufferOverrun);

  FailAllocation(1);
  EXPECT_EQ(out.Init(4096), CodingStatus::kNoMemory);
  EXPECT_EQ(out.WriteByte(1), CodingStatus::kBufferOverrun);
}

TEST(BitStreamOutput, ShortWritesKeepTheBytes) {
  MemoryStream stream(1);
  CBitStreamOutput out;
  ASSERT_EQ(out.Attach(&stream), kOk);
  ASSERT_EQ(out.Init(2), kOk);
  ASSERT_EQ(out.WriteWord(0x1234), kOk);
  EXPECT_EQ(out.WriteWord(0x5678), CodingStatus::kShortWrite);
  EXPECT_EQ(out.position(), 2);
  EXPECT_EQ(out.bytes_passed_on(), 0);
  CBitStreamOutput unattached;
  ASSERT_EQ(unattached.Init(2), kOk);
  EXPECT_EQ(unattached.FlushBuffer(0), CodingStatus::kShortWrite);
}

TEST(StdFileOutput, WritesToAFileThatItDoesNotOwn) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::tmpfile(), std::fclose);
  ASSERT_NE(file, nullptr);
  const std::uint8_t bytes[] = {1, 2, 3};
  std::int32_t written = -1;
  {
    CStdFileOutput2 stream(file.get());
    EXPECT_EQ(stream.Open(nullptr), kOk);
    EXPECT_EQ(stream.Write(bytes, 3, &written), kOk);
    EXPECT_EQ(written, 3);
    EXPECT_EQ(stream.Write(bytes, 0, &written), kOk);
    EXPECT_EQ(stream.Write(bytes, -1, &written), CodingStatus::kShortWrite);
    EXPECT_EQ(stream.Close(), kOk);
    EXPECT_EQ(stream.Write(bytes, 3, &written), CodingStatus::kShortWrite);
    EXPECT_EQ(written, 0);
  }
  EXPECT_EQ(std::ftell(file.get()), 3);
  EXPECT_EQ(std::fputc(4, file.get()), 4);
}

}  // namespace
}  // namespace vexa::test

#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "platform/driver.hpp"
#include "platform/windows/windows_api.hpp"

namespace vexa::platform {
namespace {

// A named pipe stands in for the camera's device: it takes the same overlapped reads, ends them in
// order and early when less data comes, and answers I/O controls of its own.
const std::u16string kPipe = u"\\\\.\\pipe\\vexa-driver-link-test";
constexpr auto kPipePeek = static_cast<ControlCode>(0x11400C);     // FSCTL_PIPE_PEEK
constexpr auto kUnknownCode = static_cast<ControlCode>(0x22FFFC);  // nobody's

class DriverLinkTest : public ::testing::Test {
 protected:
  void SetUp() override {
    pipe_ = UniqueHandle(::CreateNamedPipeW(ToWideChars(kPipe).c_str(), PIPE_ACCESS_DUPLEX,
                                            PIPE_TYPE_BYTE | PIPE_WAIT, 1, 4096, 4096, 0, nullptr));
    ASSERT_NE(pipe_.get(), INVALID_HANDLE_VALUE);
    ASSERT_TRUE(SystemDriver().Open(kPipe, &device_).ok());
  }

  void Send(const std::vector<std::uint8_t>& bytes) {
    DWORD written = 0;
    ASSERT_TRUE(::WriteFile(pipe_.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written,
                            nullptr));
    ASSERT_EQ(written, bytes.size());
  }

  UniqueHandle pipe_;
  std::unique_ptr<Device> device_;
};

TEST_F(DriverLinkTest, QueuedReadsEndInOrderEachWithItsOwnBytes) {
  std::array<std::array<std::uint8_t, 4>, 3> buffers{};
  std::array<Completion, 3> reads;
  std::uint32_t transferred = 99;
  for (std::size_t i = 0; i < 2; ++i) {
    ASSERT_EQ(device_->QueueRead(buffers[i], reads[i]), error::kIoPending);
    EXPECT_FALSE(Wait(reads[i].Done(), 0));
  }
  Send({1, 2, 3, 4});
  EXPECT_EQ(WaitAny({&reads[1].Done(), &reads[0].Done()}).index, 1u);
  Send({5, 6});
  EXPECT_TRUE(Wait(reads[1].Done()));
  Send({7, 8, 9});
  // The data is there already: the read may succeed at once, and its bytes must not get lost.
  ASSERT_EQ(device_->QueueRead(buffers[2], reads[2]), error::kIoPending);
  EXPECT_TRUE(Wait(reads[2].Done()));
  const std::uint32_t expected[] = {4, 2, 3};
  for (std::size_t i = 0; i < 3; ++i) {
    for (int repeat = 0; repeat < 2; ++repeat) {
      EXPECT_EQ(device_->FinishRead(reads[i], &transferred), error::kNone);
      EXPECT_EQ(transferred, expected[i]);
    }
  }
  EXPECT_EQ(buffers[0], (std::array<std::uint8_t, 4>{1, 2, 3, 4}));
  EXPECT_EQ(buffers[1], (std::array<std::uint8_t, 4>{5, 6, 0, 0}));
  EXPECT_EQ(buffers[2], (std::array<std::uint8_t, 4>{7, 8, 9, 0}));
}

TEST_F(DriverLinkTest, CancelledAndRefusedReadsReportTheSystemsCode) {
  std::array<std::uint8_t, 4> buffer{};
  Completion read;
  std::uint32_t transferred = 99;
  ASSERT_EQ(device_->QueueRead(buffer, read), error::kIoPending);
  device_->CancelReads();
  EXPECT_EQ(device_->FinishRead(read, &transferred), error::kOperationAborted);
  EXPECT_EQ(transferred, 0u);
  pipe_ = UniqueHandle();
  EXPECT_EQ(device_->QueueRead(buffer, read), Status(ERROR_BROKEN_PIPE));
}

TEST_F(DriverLinkTest, ControlsReturnTheirBytesOrTheSystemsCode) {
  Send({0xAA, 0xBB, 0xCC});
  // FILE_PIPE_PEEK_BUFFER: 16 bytes of numbers, then the data.
  std::array<std::uint8_t, 32> output{};
  std::uint32_t returned = 0;
  for (const bool synchronous : {false, true}) {
    output = {};
    Completion completion;
    const Status status = synchronous
                              ? device_->ControlSynchronous(kPipePeek, {}, output, &returned)
                              : device_->Control(kPipePeek, {}, output, &returned, completion);
    ASSERT_EQ(status, error::kNone);
    EXPECT_EQ(returned, 19u);
    EXPECT_EQ(output[4], 3u);
    EXPECT_EQ(output[16], 0xAAu);
    EXPECT_EQ(output[18], 0xCCu);
  }
  Completion completion;
  const std::array<std::uint8_t, 2> input{1, 2};
  returned = 99;
  EXPECT_FALSE(device_->Control(kUnknownCode, input, output, &returned, completion).ok());
  EXPECT_EQ(returned, 0u);
  EXPECT_FALSE(device_->ControlSynchronous(kUnknownCode, input, {}, &returned).ok());
}

TEST(DriverLink, AnswersThatNothingIsThere) {
  std::u16string path = u"unchanged";
  EXPECT_EQ(SystemDriver().InterfacePath(0, &path), error::kNoMoreItems);
  EXPECT_EQ(path, u"unchanged");
  std::unique_ptr<Device> device;
  EXPECT_EQ(SystemDriver().Open(u"\\\\.\\pipe\\vexa-no-such-pipe", &device),
            Status(ERROR_FILE_NOT_FOUND));
  EXPECT_EQ(device, nullptr);
}

}  // namespace
}  // namespace vexa::platform

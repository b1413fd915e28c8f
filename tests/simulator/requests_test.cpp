#include <gmock/gmock.h>

#include "simulator/twin_rig.hpp"

namespace vexa::simulator {
namespace {

using ::testing::ElementsAre;

TEST(TwinRequests, RecordAndBufferSizesAreChecked) {
  TwinRig rig(PlainCamera());
  const auto send = [&](Bytes record, std::size_t output_size) {
    Bytes output(output_size);
    std::uint32_t returned = 0;
    return rig.Send(record, &output, &returned).code();
  };
  Bytes information = TwinRig::Record(0xC0, 0x11, 0, 0, 64);
  EXPECT_EQ(send(information, 512), 0u);
  EXPECT_EQ(send(information, 63), 87u);
  EXPECT_EQ(send(Bytes(11), 512), 87u);
  information.push_back(0);
  EXPECT_EQ(send(information, 512), 87u);
  EXPECT_EQ(send(TwinRig::Record(0x40, 0x80, 0x21, 0, 2), 512), 87u);  // no data stage
  // A stalled control pipe: unknown request, wrong type, value or index where none belongs.
  EXPECT_EQ(send(TwinRig::Record(0xC0, 0x77, 0, 0, 64), 512), 31u);
  EXPECT_EQ(send(TwinRig::Record(0xC1, 0x11, 0, 0, 64), 512), 31u);
  EXPECT_EQ(send(TwinRig::Record(0xC0, 0x11, 1, 0, 64), 512), 31u);
  // A reply is never longer than asked for.
  Bytes block;
  ASSERT_TRUE(rig.In(0x11, 0, 0, 6, &block).ok());
  EXPECT_EQ(block.size(), 6u);
}

TEST(TwinRequests, LogStaysBounded) {
  TwinRig rig(PlainCamera());
  EXPECT_FALSE(rig.Out(0x80, 0x0021, 99, {0x24, 0x13}).ok());
  const LoggedRequest failed = rig.camera->Log().at(0);
  EXPECT_EQ(failed.timeout_ms, 1000u);
  EXPECT_EQ(failed.status.code(), 31u);
  rig.camera->SetLogLimit(3);
  for (int i = 0; i < 5; ++i) rig.Block(0x11, 64);
  EXPECT_EQ(rig.camera->Log().size(), 3u);
  rig.camera->SetLogLimit(0);
  rig.Block(0x11, 64);
  EXPECT_TRUE(rig.camera->Log().empty());
}

TEST(TwinRequests, ScanSettingsTakeWhatTheSensorCanDo) {
  TwinRig rig(PlainCamera());  // 1280 x 964, colour
  const struct {
    std::uint32_t width, height, x, y;
    std::uint16_t mode;
    bool accepted;
  } cases[] = {
      {640, 480, 320, 240, 1, true},      {2, 2, 1278, 962, 1, true},    {1280, 964, 0, 0, 4, true},
      {640, 480, 641, 240, 1, false},     {640, 480, 0, 486, 1, false},  {0, 480, 0, 0, 1, false},
      {640, 0, 0, 0, 1, false},           {641, 480, 0, 0, 1, false},    {640, 481, 0, 0, 1, false},
      {640, 480, 1, 1, 1, true},          {640, 480, 0, 0, 0x10, false}, {640, 480, 0, 0, 3, false},
      {640, 480, 0xFFFFFFF0, 0, 1, false}};
  for (const auto& test : cases) {
    SCOPED_TRACE(testing::Message() << test.width << "x" << test.height << "+" << test.x << "+"
                                    << test.y << " mode " << test.mode);
    ASSERT_TRUE(rig.SetScan(1280, 964).ok());
    const Status status = rig.SetScan(test.width, test.height, test.x, test.y, test.mode);
    EXPECT_EQ(status, test.accepted ? error::kNone : error::kGeneralFailure);
    const Bytes block = rig.Block(0x12, 64);
    EXPECT_EQ(LoadLe32(block, 6), test.accepted ? test.width : 1280u);
    EXPECT_EQ(LoadLe32(block, 14), test.accepted ? test.x : 0u);
  }
  // Lines follow the height, clocks per line the sensor; a block with another tag is refused.
  ASSERT_TRUE(rig.SetScan(640, 480).ok());
  const std::uint16_t lines = LoadLe16(rig.Block(0x12, 64), 26);
  ASSERT_TRUE(rig.SetScan(640, 240).ok());
  EXPECT_EQ(LoadLe16(rig.Block(0x12, 64), 26), lines - 240);
  Bytes block = rig.Block(0x12, 64);
  EXPECT_EQ(LoadLe32(block, 36), 0u);  // limits are the host's business without capability 48
  StoreLe32(block, 2, 0);
  EXPECT_FALSE(rig.Out(0x12, 0, 0, block).ok());
}

TEST(TwinRequests, SkippingAndBinningKeepTheFrameWithinTheSensor) {
  TwinRig rig(PlainCamera());
  ASSERT_TRUE(rig.SetScan(1280, 960, 0, 4, 0x8000).ok());
  // Written but not applied; then applied; then gone again with the region as it was.
  EXPECT_TRUE(rig.Out(0x80, 33, 0, TwinRig::Word(0x1100)).ok());
  EXPECT_EQ(LoadLe32(rig.Block(0x12, 64), 6), 1280u);
  EXPECT_TRUE(rig.Out(0x80, 0x50, 0, TwinRig::Word(1)).ok());
  EXPECT_EQ(rig.Picture().size(), 320u * 960u);
  rig.SetRegister(33, 0x0003);
  const Bytes block = rig.Block(0x12, 64);
  EXPECT_EQ(LoadLe32(block, 6), 1280u);
  EXPECT_EQ(LoadLe32(block, 10), 236u) << "of 241 rows, from the fifth on, in whole cells";
  EXPECT_EQ(LoadLe32(block, 18), 4u);
  // A smaller region keeps its size; region and binning may come in either order.
  ASSERT_TRUE(rig.SetScan(640, 250, 0, 0, 0x8000).ok());
  EXPECT_EQ(LoadLe32(rig.Block(0x12, 64), 10), 240u);
  rig.SetRegister(33, 0x0101);
  EXPECT_EQ(LoadLe32(rig.Block(0x12, 64), 10), 250u);
}

TEST(TwinRegisters, TwoFormsReachTheMainBlock) {
  TwinRig rig(PlainCamera());
  // Direct writes carry bit 15, block reads bit 7; both reach the same registers.
  rig.SetDirect32(0x34, 0xAABBCCDD);
  Bytes data;
  ASSERT_TRUE(rig.In(0x80, 0x34, 0, 4, &data).ok());
  EXPECT_THAT(data, ElementsAre(0xDD, 0xCC, 0xBB, 0xAA));
  ASSERT_TRUE(rig.In(0x80, 0x80 | 0x35, 0, 2, &data).ok());
  EXPECT_THAT(data, ElementsAre(0xBB, 0xAA));

  constexpr std::uint16_t kBlocks[] = {0, 16, 32, 76, 129};
  // Every block holds its own 128 registers, and registers go several at a time.
  for (const std::uint16_t block : kBlocks) {
    const auto mark = static_cast<std::uint8_t>(block + 1);
    ASSERT_TRUE(rig.Out(0x80, 126, block, {mark, 1, mark, 2}).ok());
  }
  for (const std::uint16_t block : kBlocks) {
    ASSERT_TRUE(rig.In(0x80, 0x80 | 126, block, 4, &data).ok());
    const auto mark = static_cast<std::uint8_t>(block + 1);
    EXPECT_THAT(data, ElementsAre(mark, 1, mark, 2));
  }

  EXPECT_FALSE(rig.Out(0x80, 127, 0, {1, 2, 3, 4}).ok());  // beyond the block
  EXPECT_FALSE(rig.Out(0x80, 1, 17, {1, 2}).ok());         // no such block
  EXPECT_FALSE(rig.Out(0x80, 1, 0, {1}).ok());             // half a register
  EXPECT_FALSE(rig.Out(0x80, 0x8066, 0, {1, 2}).ok());     // read only
  EXPECT_FALSE(rig.Out(0x80, 0x8068, 0, {1, 2}).ok());     // read only
  EXPECT_FALSE(rig.Out(0x80, 0x8021, 0, {1, 2}).ok());     // no direct form
  EXPECT_FALSE(rig.In(0x80, 0x21, 0, 2, &data).ok());      // no direct form
  EXPECT_FALSE(rig.In(0x80, 0x8030, 0, 4, &data).ok());    // the write's form
}

TEST(TwinRegisters, PowerUpValuesComeBackByCommandAndByPower) {
  TwinRig rig(PlainCamera());
  const auto change = [&] {
    rig.SetRegister(77, 9);
    rig.SetLines(7, 3);
    ASSERT_TRUE(rig.SetFormat(2).ok());
    ASSERT_TRUE(rig.Out(0x22, 0, 0, {10, 0x22, 2, 0, 0, 0, 0x40, 0x4B, 0x4C, 0}).ok());
  };
  const auto gain = [&] { return LoadLe16(rig.Block(0x21, 64), 6); };
  const auto gamma = [&] { return rig.camera->PeekRegister(0, 77); };
  const auto command = [&](std::uint16_t word) {
    EXPECT_TRUE(rig.Out(0x80, 0x50, 0, TwinRig::Word(word)).ok());
  };
  change();
  EXPECT_EQ(LoadLe32(rig.Block(0x22, 10), 6), 5'000'000u);
  command(0x0010);
  EXPECT_EQ(gamma(), 0);
  EXPECT_EQ(gain(), 3);
  change();
  command(0x0020);
  EXPECT_EQ(gamma(), 9);
  EXPECT_EQ(gain(), 0);
  EXPECT_EQ(LoadLe32(rig.Block(0x13, 6), 2), 1u);
  EXPECT_EQ(LoadLe32(rig.Block(0x22, 10), 2), 1u);

  // Store, change, load; then factory settings.
  change();
  ASSERT_TRUE(rig.Out(0x81, 0, 0, TwinRig::Word(1)).ok());
  rig.SetLines(7, 4);
  ASSERT_TRUE(rig.Out(0x81, 0, 0, TwinRig::Word(2)).ok());
  EXPECT_EQ(gain(), 3);
  ASSERT_TRUE(rig.Out(0x81, 0, 0, TwinRig::Word(0)).ok());
  EXPECT_EQ(gain(), 0);
  EXPECT_EQ(gamma(), 0);

  change();
  ASSERT_TRUE(rig.Out(0xFA, 0x200, 0, {1, 2, 3}).ok());
  rig.camera->Unplug();
  rig.camera->Replug();
  rig.device = rig.OpenDevice();
  EXPECT_EQ(gamma(), 0);
  EXPECT_EQ(gain(), 0);
  Bytes data;
  ASSERT_TRUE(rig.In(0xFA, 0x200, 0, 3, &data).ok());
  EXPECT_THAT(data, ElementsAre(1, 2, 3));
}

TEST(TwinRequests, SettingsOutOfRangeAreRefused) {
  TwinRig rig(PlainCamera());
  EXPECT_FALSE(rig.SetFormat(0x0400).ok());  // not in the mask
  EXPECT_FALSE(rig.SetFormat(0x0003).ok());  // two at once
  Bytes block = rig.Block(0x21, 64);
  StoreLe16(block, 6, static_cast<std::uint16_t>(LoadLe16(rig.Block(0x12, 64), 30) + 1));
  EXPECT_FALSE(rig.Out(0x21, 0, 0, block).ok());
  EXPECT_FALSE(rig.Out(0x22, 0, 0, {10, 0x22, 1, 0, 0, 0, 0, 0, 0, 0}).ok());  // no frequency
  EXPECT_FALSE(rig.Out(0x22, 0, 0, {10, 0x22, 4, 0, 0, 0, 0, 0, 0, 1}).ok());  // no such mode
  EXPECT_FALSE(rig.Out(0x20, 0, 0, {1}).ok());
}

TEST(TwinMemory, ServesItsAddressesByFirmware) {
  CameraConfig config = PlainCamera();
  config.user_id = 0x12345678;
  config.user_name = "bench";
  TwinRig rig(config);
  config.firmware = 0x00FF;
  TwinRig old(config);
  const struct {
    std::uint8_t request;
    std::uint16_t address, index;
    bool served, served_by_old;
  } cases[] = {{0xA0, 0xE600, 0, true, true},   {0xF0, 0x4000, 0, true, true},
               {0xF0, 0x3FFF, 0, false, false}, {0xF0, 0xFFFF, 0, false, false},
               {0xFA, 0x05FE, 0, true, false},  {0xFA, 0x0800, 0, false, false},
               {0xFA, 0x0200, 1, false, false}, {0xF9, 0x7000, 0x151, false, true},
               {0xF9, 0x7000, 0, false, false}, {0x81, 0, 0, true, false}};
  for (const auto& test : cases) {
    SCOPED_TRACE(testing::Message() << +test.request << " at " << test.address);
    const Bytes value{3, 0};
    EXPECT_EQ(rig.Out(test.request, test.address, test.index, value).ok(), test.served);
    EXPECT_EQ(old.Out(test.request, test.address, test.index, value).ok(), test.served_by_old);
  }
  Bytes record;
  ASSERT_TRUE(rig.In(0xFA, 0x100, 0, 256, &record).ok());
  EXPECT_EQ(LoadLe32(record, 0), 0x12345678u);
  EXPECT_EQ(record[5], 6);
  EXPECT_EQ(std::string(record.begin() + 6, record.begin() + 11), "bench");
}

}  // namespace
}  // namespace vexa::simulator

#include <gtest/gtest.h>

#include "simulator/twin_rig.hpp"

namespace vexa::simulator {
namespace {

TEST(TwinIdentity, EveryModelStreamsAFrameOfItsSize) {
  EXPECT_EQ(KnownProducts().size(), 28u);
  for (const std::uint16_t product : KnownProducts()) {
    SCOPED_TRACE(product);
    TwinRig rig(PlainCamera(product));
    const SensorSize size = ProductSensorSize(product);
    // The largest sensors by a part of them, for the time it takes.
    const std::uint32_t width = std::min(size.width, 640u);
    const std::uint32_t height = std::min(size.height, 64u);
    ASSERT_TRUE(rig.SetScan(width, height, size.width - width, size.height - height).ok());
    rig.Start();
    EXPECT_EQ(rig.Frame().size(), 64u + width * height);
    Bytes mask;
    EXPECT_EQ(rig.In(0x80, 0x68, 0, 8, &mask).ok(), HasRegisterAccess(product));
  }
  EXPECT_EQ(ProductSensorSize(0x1234), (SensorSize{4092, 4092}));
}

TEST(TwinIdentity, DescriptorTellsTheSpeed) {
  const struct {
    UsbSpeed speed;
    unsigned packet;
  } cases[] = {{UsbSpeed::kFull, 64}, {UsbSpeed::kHigh, 512}, {UsbSpeed::kSuper, 1024}};
  for (const auto& test : cases) {
    CameraConfig config = PlainCamera();
    config.usb_speed = test.speed;
    TwinRig rig(config);
    Bytes descriptor(53);
    ASSERT_TRUE(rig.Control(ControlCode::kConfigurationDescriptor, &descriptor).ok());
    ASSERT_GE(descriptor.size(), 25u);
    EXPECT_EQ(LoadLe16(descriptor, 2), descriptor.size());
    EXPECT_EQ(descriptor[18] + 0u, 7u);      // an endpoint descriptor
    EXPECT_EQ(descriptor[20] & 0x80, 0x80);  // in
    EXPECT_EQ(descriptor[21] & 3, 2);        // bulk
    EXPECT_EQ(LoadLe16(descriptor, 22), test.packet);
  }
}

TEST(TwinBus, ListsPluggedCamerasInOrder) {
  CameraBus bus;
  const auto first = bus.Add(PlainCamera(0x0510));
  const auto second = bus.Add(PlainCamera(0x0710));
  std::u16string path;
  std::u16string path_of_second;
  ASSERT_TRUE(bus.InterfacePath(1, &path_of_second).ok());
  first->Unplug();
  ASSERT_TRUE(bus.InterfacePath(0, &path).ok());
  EXPECT_EQ(path, path_of_second);
  first->Replug();
  ASSERT_TRUE(bus.InterfacePath(0, &path).ok());
  EXPECT_NE(path, path_of_second);
  bus.Remove(second);
  EXPECT_EQ(bus.InterfacePath(1, &path), error::kNoMoreItems);
  std::unique_ptr<Device> device;
  EXPECT_FALSE(bus.Open(path_of_second, &device).ok());
}

TEST(TwinBus, SystemHasAColourAndAMonochromeCamera) {
  const auto cameras = CameraBus::System().Cameras();
  ASSERT_GE(cameras.size(), 2u);
  EXPECT_EQ(cameras[0]->config().product_id, 0x0510);
  EXPECT_EQ(SensorSizeOf(cameras[0]->config()), (SensorSize{1280, 964}));
  EXPECT_EQ(cameras[0]->config().colour_array, 2);
  EXPECT_EQ(cameras[1]->config().product_id, 0x0710);
  EXPECT_EQ(SensorSizeOf(cameras[1]->config()), (SensorSize{1360, 1040}));
  EXPECT_EQ(cameras[1]->config().colour_array, 1);
}

TEST(TwinIdentity, OldDriversLackStreamControlAndRecovery) {
  const struct {
    std::array<std::uint32_t, 4> version;
    bool stream_control;
    bool recovery;
  } cases[] = {{{1, 9, 0, 0}, false, false},         {{2, 0, 0, 0}, true, false},
               {{3, 1, 0, 0}, false, false},         {{3, 2, 0, 0}, true, false},
               {{0x00030000, 4, 0, 0}, true, false}, {{0x00030000, 5, 0, 0}, true, true},
               {{0x00030001, 0, 7, 9}, true, true}};
  for (const auto& test : cases) {
    TwinRig rig(PlainCamera());
    rig.camera->SetDriverVersion(test.version);
    EXPECT_EQ(rig.Control(ControlCode::kResetStream).ok(), test.stream_control);
    EXPECT_EQ(rig.Control(ControlCode::kStopStream).ok(), test.stream_control);
    EXPECT_EQ(rig.Control(ControlCode::kRecoverFirstStage).ok(), test.recovery);
  }
}

}  // namespace
}  // namespace vexa::simulator

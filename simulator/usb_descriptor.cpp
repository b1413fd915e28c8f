#include "simulator/usb_descriptor.hpp"

namespace vexa::simulator {
namespace {

constexpr std::uint8_t kConfigurationType = 2;
constexpr std::uint8_t kInterfaceType = 4;
constexpr std::uint8_t kEndpointType = 5;
constexpr std::uint8_t kCompanionType = 48;
constexpr std::uint8_t kBusPowered = 0x80;
constexpr std::uint8_t kVendorClass = 0xFF;
constexpr std::uint8_t kBulkIn = 0x82;  // endpoint 2, device to host: the image stream
constexpr std::uint8_t kBulk = 2;

std::uint16_t PacketSize(UsbSpeed speed) {
  switch (speed) {
    case UsbSpeed::kFull:
      return 64;
    case UsbSpeed::kHigh:
      return 512;
    case UsbSpeed::kSuper:
      return 1024;
  }
  return 512;
}

}  // namespace

std::vector<std::uint8_t> ConfigurationDescriptor(const CameraConfig& config) {
  if (!config.descriptor_override.empty()) return config.descriptor_override;
  const std::uint16_t packet = PacketSize(config.usb_speed);
  const bool super_speed = config.usb_speed == UsbSpeed::kSuper;
  // Current in units of 2 mA, or 8 mA on a SuperSpeed link.
  const std::uint8_t current = super_speed ? 112 : 250;
  std::vector<std::uint8_t> bytes{9,
                                  kConfigurationType,
                                  0,
                                  0,
                                  1,
                                  1,
                                  0,
                                  kBusPowered,
                                  current,
                                  9,
                                  kInterfaceType,
                                  0,
                                  0,
                                  1,
                                  kVendorClass,
                                  0,
                                  0,
                                  0,
                                  7,
                                  kEndpointType,
                                  kBulkIn,
                                  kBulk,
                                  static_cast<std::uint8_t>(packet & 0xFF),
                                  static_cast<std::uint8_t>(packet >> 8),
                                  0};
  if (super_speed) {
    constexpr std::uint8_t kBurst = 15;  // packets less one
    bytes.insert(bytes.end(), {6, kCompanionType, kBurst, 0, 0, 0});
  }
  bytes[2] = static_cast<std::uint8_t>(bytes.size());
  return bytes;
}

}  // namespace vexa::simulator

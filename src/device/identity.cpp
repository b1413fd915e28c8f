#include "device/identity.hpp"

#include "device/models.hpp"
#include "platform/bytes.hpp"

namespace vexa::device {
namespace {

constexpr std::uint16_t kCapabilityRegister = 0x68;
constexpr std::uint16_t kMonochrome = 1;

template <typename... Ids>
constexpr bool IsOneOf(std::uint16_t id, Ids... ids) {
  return ((id == ids) || ...);
}

}  // namespace

Status CameraIdentity::Read(ControlChannel& channel) {
  information_.fill(0);
  capabilities_.fill(0);
  const Status status = channel.Read(Request::kCameraInformation, information_);
  if (!status.ok()) {
    return status;
  }
  if (max_width() == 0 || max_height() == 0) {
    const Model& model = FindModel(product_id());
    StoreLe32(information_, kMaxWidthOffset, model.default_width);
    StoreLe32(information_, kMaxHeightOffset, model.default_height);
  }
  if (!HasRegisterAccess()) {
    return {};
  }
  const SetupPacket setup{.request_type = kDeviceToHost,
                          .request = static_cast<std::uint8_t>(Request::kRegister),
                          .value = kCapabilityRegister,
                          .length = static_cast<std::uint16_t>(capabilities_.size())};
  std::uint32_t returned = 0;
  return channel.Send(setup, capabilities_.data(), &returned);
}

std::uint16_t CameraIdentity::Word(std::size_t offset) const {
  return LoadLe16(information_, offset);
}

std::uint32_t CameraIdentity::DoubleWord(std::size_t offset) const {
  return LoadLe32(information_, offset);
}

bool CameraIdentity::MaskBit(std::uint32_t bit) const {
  return bit < 64 && ((capabilities_[bit / 8] >> (bit % 8)) & 1) != 0;
}

bool CameraIdentity::HasRegisterAccess() const { return device::HasRegisterAccess(product_id()); }

bool CameraIdentity::HasFunction(std::uint32_t function) const {
  const std::uint16_t id = product_id();
  if (!HasRegisterAccess()) {
    return function == 7;
  }
  switch (function) {
    case 0:
      return IsOneOf(id, 0x0110, 0x0210, 0x0906, 0x1006) && MaskBit(0);
    case 1:
      return (IsOneOf(id, 0x0906, 0x1006, 0x1106, 0x1206, 0x1506, 0x1606) && variant() == 0x000F) ||
             MaskBit(1);
    case 2:
    case 6:
      return (id == 0x0906 && variant() == 0x0010) || MaskBit(function);
    case 256:
    case 257:
    case 258:
    case 260:
    case 261:
      return true;
    case 259:
      return sensor_color_array() == kMonochrome;
    default:
      return MaskBit(function);
  }
}

}  // namespace vexa::device

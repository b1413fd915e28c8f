#include "settings/mirror.hpp"

#include "imaging/color_array.hpp"

namespace vexa::settings {
namespace {

using device::Function;

constexpr std::uint8_t kMirrorRegister = 63;  // bit 0 horizontal, bit 1 vertical
constexpr std::uint8_t kHorizontal = imaging::kMirrorHorizontal;
constexpr std::uint8_t kVertical = imaging::kMirrorVertical;

}  // namespace

Status Mirror::Refresh() {
  std::uint8_t mode = 0;
  const Status status = Get(&mode);
  cached_ = mode;
  return status;
}

Status Mirror::Set(std::uint8_t mode) {
  const bool horizontal = identity_.Has(Function::kHorizontalMirror);
  const bool vertical = identity_.Has(Function::kVerticalMirror);
  if (((mode & kHorizontal) != 0 && !horizontal) || ((mode & kVertical) != 0 && !vertical)) {
    return error::kInvalidParameter;
  }
  if (!horizontal && !vertical) {
    return {};
  }
  const auto bits = static_cast<std::uint8_t>(mode & (kHorizontal | kVertical));
  cached_ = bits;
  return registers_.WriteAndApply(kMirrorRegister, bits >> 4);
}

Status Mirror::Get(std::uint8_t* mode) {
  *mode = 0;
  if (!identity_.Has(Function::kHorizontalMirror) && !identity_.Has(Function::kVerticalMirror)) {
    return {};
  }
  std::uint16_t word = 0;
  const Status status = registers_.Read(kMirrorRegister, &word);
  if (status.ok()) {
    *mode = static_cast<std::uint8_t>((word & 3) << 4);
  }
  return status;
}

std::uint16_t Mirror::ColorArray() const {
  return imaging::EffectiveColorArray(identity_.sensor_color_array(), cached_);
}

}  // namespace vexa::settings

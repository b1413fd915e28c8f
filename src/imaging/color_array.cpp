#include "imaging/color_array.hpp"

namespace vexa::imaging {

std::uint16_t EffectiveColorArray(std::uint16_t sensor_code, std::uint8_t mirror_mode) {
  constexpr auto kFirstPhase = static_cast<std::uint16_t>(ColorArray::kRggb);
  constexpr auto kLastPhase = static_cast<std::uint16_t>(ColorArray::kBggr);
  const bool is_bayer = sensor_code >= kFirstPhase && sensor_code <= kLastPhase;
  const bool only_mirror_bits = (mirror_mode & ~(kMirrorHorizontal | kMirrorVertical)) == 0;
  if (!is_bayer || !only_mirror_bits) {
    return sensor_code;
  }
  // Counted from RGGB, bit 0 of a phase tells its columns apart and bit 1 its rows.
  const int exchange = ((mirror_mode & kMirrorHorizontal) != 0 ? 1 : 0) |
                       ((mirror_mode & kMirrorVertical) != 0 ? 2 : 0);
  return static_cast<std::uint16_t>(kFirstPhase + ((sensor_code - kFirstPhase) ^ exchange));
}

}  // namespace vexa::imaging

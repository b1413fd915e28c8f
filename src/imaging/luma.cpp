#include "imaging/luma.hpp"

namespace vexa::imaging {
namespace {

constexpr unsigned Rounded(unsigned weight, unsigned i) { return (weight * i + 5000) / 10000; }

constexpr unsigned RedPart(unsigned i) { return Rounded(kLumaRedWeight, i); }
constexpr unsigned BluePart(unsigned i) { return Rounded(kLumaBlueWeight, i); }
constexpr unsigned GreenPart(unsigned i) { return i - RedPart(i) - BluePart(i); }

constexpr std::array<std::uint8_t, 256> TableOf(unsigned (*part)(unsigned)) {
  std::array<std::uint8_t, 256> table{};
  for (unsigned i = 0; i < table.size(); ++i) {
    table[i] = static_cast<std::uint8_t>(part(i));
  }
  return table;
}

}  // namespace

constinit const std::array<std::uint8_t, 256> LumaRedTable = TableOf(RedPart);
constinit const std::array<std::uint8_t, 256> LumaGreenTable = TableOf(GreenPart);
constinit const std::array<std::uint8_t, 256> LumaBlueTable = TableOf(BluePart);

}  // namespace vexa::imaging

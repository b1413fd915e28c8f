#include "imaging/kernels/weight_tables.hpp"

#include <cstddef>

// Only PE images have sections that processes share.
#if defined(__ELF__)
#define VEXA_WEIGHT_SECTION __attribute__((section("VXCAM_Ba"), used))
#else
#define VEXA_WEIGHT_SECTION __attribute__((section("VXCAM_Ba"), shared, used))
#endif

namespace vexa::imaging {
namespace {

constexpr WeightTables MakeWeightTables() {
  WeightTables tables{};
  for (std::size_t i = 0; i < tables.FiveEighthsTable.size(); ++i) {
    tables.FiveEighthsTable[i] = static_cast<std::int16_t>((5 * i + 4) / 8);
    tables.MinusEighthTable[i] = static_cast<std::int16_t>(-static_cast<int>((i + 4) / 8));
  }
  return tables;
}

}  // namespace

// One object rather than two arrays: the linker can neither reorder nor separate the tables.
VEXA_WEIGHT_SECTION constinit WeightTables weight_tables = MakeWeightTables();

}  // namespace vexa::imaging

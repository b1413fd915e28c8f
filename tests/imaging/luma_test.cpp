#include "imaging/luma.hpp"

#include <gtest/gtest.h>

#include <cmath>

namespace vexa::test {
namespace {

TEST(Luma, PartsAddUpToTheLevel) {
  for (unsigned i = 0; i < 256; ++i) {
    ASSERT_EQ(imaging::LumaRedTable[i], std::floor(0.2989 * i + 0.5));
    ASSERT_EQ(imaging::LumaBlueTable[i], std::floor(0.1145 * i + 0.5));
    ASSERT_NEAR(imaging::LumaGreenTable[i], 0.5866 * i, 1.0);
    ASSERT_EQ(imaging::LumaRedTable[i] + imaging::LumaGreenTable[i] + imaging::LumaBlueTable[i], i);
  }
}

}  // namespace
}  // namespace vexa::test

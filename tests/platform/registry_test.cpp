#include "platform/registry.hpp"

#include <gtest/gtest.h>

#include "platform/registry_fixture.hpp"

namespace vexa::platform {
namespace {

constexpr std::uint32_t kAllAccess = 0xF003F;  // KEY_ALL_ACCESS
const std::u16string kKey = u"Software\\VexaPlatformTest";

class RegistryTest : public ::testing::Test {
 protected:
  ~RegistryTest() override { test::DeleteRegistryKey(kKey); }
};

TEST_F(RegistryTest, QueryReadsUpToFourBytesOverTheCallersValue) {
  test::SetRegistryValue(kKey, u"Full", {0x78, 0x56, 0x34, 0x12});
  test::SetRegistryValue(kKey, u"Short", {0xCD, 0xAB});
  test::SetRegistryValue(kKey, u"Long", {1, 2, 3, 4, 5});
  const struct {
    std::u16string name;
    std::uint32_t result;
    std::uint32_t value;
  } cases[] = {
      {u"fULL", 0, 0x12345678},
      {u"Short", 0, 0x1111ABCD},
      {u"Long", 234, 0x11111111},  // ERROR_MORE_DATA
      {u"Other", 2, 0x11111111},   // ERROR_FILE_NOT_FOUND
  };
  const CwRegKey key(RegistryRoot::kCurrentUser, u"SOFTWARE\\vexaplatformtest", kRegistryRead,
                     false);
  ASSERT_TRUE(key.is_open());
  for (const auto& c : cases) {
    std::uint32_t value = 0x11111111;
    EXPECT_EQ(key.QueryDword(c.name, &value), c.result);
    EXPECT_EQ(value, c.value);
  }
  std::uint32_t value = 5;
  const CwRegKey write_only(RegistryRoot::kCurrentUser, kKey, 0x0002, false);  // KEY_SET_VALUE
  EXPECT_EQ(write_only.QueryDword(u"Full", &value), 5u);  // ERROR_ACCESS_DENIED
}

TEST_F(RegistryTest, OpensOnlyWhatExistsUnlessToldToCreate) {
  std::uint32_t value = 7;
  for (const bool create : {false, true}) {
    CwRegKey key(RegistryRoot::kCurrentUser, kKey, kAllAccess, create);
    EXPECT_EQ(key.is_open(), create);
    EXPECT_EQ(key.QueryDword(u"Full", &value), create ? 2u : 87u);
    EXPECT_EQ(key.Close(), create ? 0u : 87u);
    EXPECT_FALSE(key.is_open());
    EXPECT_EQ(key.Close(), 87u);
  }
  EXPECT_EQ(value, 7u);
  EXPECT_TRUE(CwRegKey(RegistryRoot::kCurrentUser, kKey, kRegistryRead, false).is_open());
  EXPECT_FALSE(CwRegKey(RegistryRoot::kLocalMachine, kKey, kRegistryRead, false).is_open());
}

}  // namespace
}  // namespace vexa::platform

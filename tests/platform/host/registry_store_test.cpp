#include "platform/host/registry_store.hpp"

#include <gtest/gtest.h>

namespace vexa::platform {
namespace {

TEST(RegistryStore, DeletingReachesOpenKeysAndKeysBelow) {
  const auto root = RegistryRoot::kLocalMachine;
  const auto is_there = [root](const std::u16string& path) {
    return CwRegKey(root, path, kRegistryRead, false).is_open();
  };
  host::SetRegistryDword(root, u"Top\\Middle\\Leaf", u"Number", 9);
  host::SetRegistryDword(root, u"Top\\MiddleNot", u"Number", 9);
  EXPECT_TRUE(is_there(u"Top\\Middle\\"));
  EXPECT_FALSE(CwRegKey(RegistryRoot::kCurrentUser, u"Top", kRegistryRead, false).is_open());

  const CwRegKey leaf(root, u"Top\\Middle\\Leaf", kRegistryRead, false);
  std::uint32_t value = 0;
  EXPECT_EQ(leaf.QueryDword(u"NUMBER", &value), 0u);
  EXPECT_EQ(value, 9u);
  host::DeleteRegistryValue(root, u"Top\\Middle\\Leaf", u"number");
  EXPECT_EQ(leaf.QueryDword(u"Number", &value), 2u);  // ERROR_FILE_NOT_FOUND

  host::DeleteRegistryKey(root, u"TOP\\middle");
  EXPECT_EQ(leaf.QueryDword(u"Number", &value), 1018u);  // ERROR_KEY_DELETED
  EXPECT_FALSE(is_there(u"Top\\Middle\\Leaf"));
  EXPECT_FALSE(is_there(u"Top\\Middle"));
  EXPECT_TRUE(is_there(u"Top\\MiddleNot"));
  host::DeleteRegistryKey(root, u"Top");
}

}  // namespace
}  // namespace vexa::platform

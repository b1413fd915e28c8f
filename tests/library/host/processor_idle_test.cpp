// The processor idle state through the exports, on all kinds of system.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

#include "VexaAPI.h"
#include "platform/bytes.hpp"
#include "platform/host/power_store.hpp"
#include "platform/power_binding.hpp"

namespace vexa::test {
namespace {

using platform::host::PowerStore;
using platform::host::ThePowerStore;
using ::testing::Each;

// Flags of the first two entries of the AC and the DC policy in the processor scheme.
constexpr std::size_t kFlags[4] = {36, 56, 112, 132};

class ProcessorIdleTest : public ::testing::Test {
 protected:
  ProcessorIdleTest() { Start({}); }
  ~ProcessorIdleTest() override {
    platform::InstallPowerBinding(nullptr);
    store_ = PowerStore();
  }

  // A machine as it is when the library is loaded.
  void Start(PowerStore store) {
    store_ = std::move(store);
    platform::InstallPowerBinding(&binding_.emplace());
    SetLastError(0);
  }
  void StartVersion(platform::OsVersion version) {
    PowerStore store;
    store.version = version;
    Start(store);
  }

  std::pair<BOOL, BOOL> Get() {
    std::pair<BOOL, BOOL> state(-1, -1);
    EXPECT_TRUE(Vexa_GetProcessorIdleState(&state.first, &state.second)) << GetLastError();
    return state;
  }

  PowerStore& store_ = ThePowerStore();
  std::optional<platform::PowerBinding> binding_;
};

constexpr platform::OsVersion kVersions[] = {
    {1, 4, 10},              // not NT
    {2, 5, 0},  {2, 5, 1},   // before Vista
    {2, 6, 0},  {2, 10, 0},  // idle-state policies
    {2, 6, 1},  {2, 6, 2},   // idle disable
};

TEST_F(ProcessorIdleTest, EveryKindOfSystemKeepsBothStates) {
  for (const platform::OsVersion& version : kVersions) {
    StartVersion(version);
    const bool newer = version.platform_id == 2 && version.major >= 6;
    for (const int set : {0, 1, 2, 3, 0}) {
      const BOOL ac = set & 1;
      const BOOL dc = set >> 1;
      // Nonzero is enabled; before Vista the lowest bit counts.
      ASSERT_TRUE(Vexa_SetProcessorIdleState(newer ? 2 * ac : ac | 2, dc)) << GetLastError();
      EXPECT_EQ(Get(), std::pair(ac, dc)) << version.major << "." << version.minor;
      EXPECT_EQ(store_.calls.empty() ? "" : store_.calls.front().substr(0, 5),
                newer ? "Power" : "GetAc");
    }
    EXPECT_TRUE(Vexa_GetProcessorIdleState(nullptr, nullptr));
    EXPECT_EQ(store_.schemes_given, 0);
    EXPECT_EQ(GetLastError(), 0U);
  }
}

TEST_F(ProcessorIdleTest, OnlyTheirOwnBitsChange) {
  // Windows 7 and later.
  Start({});
  ASSERT_TRUE(Vexa_SetProcessorIdleState(0, 1));
  EXPECT_THAT(store_.idle_disable, ::testing::ElementsAre(1U, 0U));
  EXPECT_EQ(store_.calls,
            (std::vector<std::string>{"PowerGetActiveScheme", "PowerWriteACValueIndex",
                                      "PowerWriteDCValueIndex", "PowerSetActiveScheme"}));
  // Windows Vista: a policy that both share takes the state of DC, which is written last.
  PowerStore vista;
  vista.version = {2, 6, 0};
  vista.idle_policies.resize(3);
  vista.idle_policies[2] = {.type = 7, .data = std::vector<std::uint8_t>(256, 0xFF)};
  vista.idle_policy = {2, 2};
  Start(vista);
  ASSERT_TRUE(Vexa_SetProcessorIdleState(0, 1));
  std::vector<std::uint8_t> expected(256, 0xFF);
  expected[2] = 0xFD;
  EXPECT_EQ(store_.idle_policies[2].data, expected);
  EXPECT_EQ(store_.idle_policies[2].type, 7U);
  EXPECT_EQ(Get(), std::pair(1, 1));
  // Windows XP.
  StartVersion({2, 5, 1});
  store_.processor_policy.fill(0xA5);
  ASSERT_TRUE(Vexa_SetProcessorIdleState(1, 0));
  for (const std::size_t offset : kFlags) {
    EXPECT_EQ(store_.processor_policy[offset], offset < 100 ? 0xA7 : 0xA5);
    store_.processor_policy[offset] = 0xA5;
  }
  EXPECT_THAT(store_.processor_policy, Each(0xA5));
  StoreLe32(store_.processor_policy, kFlags[3], 2);
  EXPECT_EQ(Get(), std::pair(0, 1)) << "the second entry alone counts as well";
}

TEST_F(ProcessorIdleTest, EveryFailingStepEndsTheCallWithItsCode) {
  for (const platform::OsVersion& version : kVersions) {
    for (const bool set : {true, false}) {
      const auto call = [&] {
        BOOL ac = 7;
        BOOL dc = 7;
        const BOOL result =
            set ? Vexa_SetProcessorIdleState(0, 0) : Vexa_GetProcessorIdleState(&ac, &dc);
        EXPECT_TRUE(result || (ac == 7 && dc == 7));
        return result;
      };
      StartVersion(version);
      ASSERT_TRUE(call());
      const std::vector<std::string> steps = store_.calls;
      ASSERT_GE(steps.size(), 2U);
      for (std::size_t step = 0; step < steps.size(); ++step) {
        StartVersion(version);
        store_.failing_call = step;
        store_.failure = 1000 + static_cast<std::uint32_t>(step);
        EXPECT_FALSE(call()) << steps[step];
        EXPECT_EQ(GetLastError(), 1000 + step) << steps[step];
        EXPECT_EQ(store_.calls.size(), step + 1) << steps[step];
        EXPECT_EQ(store_.schemes_given, 0) << steps[step];
      }
    }
  }
  // A policy that ends before its flags, and one that does not fit.
  for (const auto& [size, code] : {std::pair<std::size_t, DWORD>{3, 13}, {257, 234}}) {
    StartVersion({2, 6, 0});
    store_.idle_policies[1].data.resize(size);
    EXPECT_FALSE(Vexa_SetProcessorIdleState(1, 1));
    EXPECT_EQ(GetLastError(), code);
    EXPECT_EQ(store_.schemes_given, 0);
  }
}

TEST_F(ProcessorIdleTest, AMissingLibraryOrFunctionFailsEveryCall) {
  const auto expect_failure = [](DWORD code, const std::string& what) {
    for (const bool set : {true, false}) {
      BOOL state = 0;
      SetLastError(0);
      EXPECT_FALSE(set ? Vexa_SetProcessorIdleState(1, 1)
                       : Vexa_GetProcessorIdleState(&state, &state));
      EXPECT_EQ(GetLastError(), code) << what;
    }
    EXPECT_THAT(ThePowerStore().calls, ::testing::IsEmpty());
  };
  PowerStore none;
  none.load_error = 126;
  Start(none);
  expect_failure(126, "no library");
  const std::pair<platform::OsVersion, std::vector<std::string>> required[] = {
      {{2, 6, 1},
       {"PowerGetActiveScheme", "PowerSetActiveScheme", "PowerReadACValueIndex",
        "PowerReadDCValueIndex", "PowerWriteACValueIndex", "PowerWriteDCValueIndex",
        "PowerReadPossibleValue", "PowerWritePossibleValue"}},
      {{2, 5, 1},
       {"GetActivePwrScheme", "SetActivePwrScheme", "ReadProcessorPwrScheme",
        "WriteProcessorPwrScheme"}},
  };
  for (const auto& [version, names] : required) {
    for (const std::string& name : names) {
      PowerStore store;
      store.version = version;
      store.missing = {name};
      Start(store);
      expect_failure(127, name);
    }
  }
  // A program that is told an older version than the library is made for.
  StartVersion({2, 6, 1});
  store_.version = {2, 5, 1};
  expect_failure(127, "new functions only");
}

}  // namespace
}  // namespace vexa::test

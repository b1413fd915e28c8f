// The processor idle state through the shipped DLL on every kind of Windows, with stand-ins for the
// system's PowrProf.dll. Wine takes the version that it plays from its registry when a program
// starts, so this one starts itself for each.

#include <gtest/gtest.h>
#include <process.h>

#include <cstddef>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

#define VEXA_BUILDING_LIBRARY  // plain declarations: the DLL is loaded by name
#include <VexaAPI.h>

#include "stand_in.h"

namespace {

constexpr std::string_view kNew = "new", kOld = "old";

struct Windows {
  const char* name;  // as Wine calls it
  DWORD platform, major, minor;
  std::string_view power;  // the stand-in with its functions
  const char *set, *get;
};
constexpr Windows kAll[] = {
    {"win98", 1, 4, 10, kOld, "GPQS", "GP"}, {"win2k", 2, 5, 0, kOld, "GPQS", "GP"},
    {"winxp", 2, 5, 1, kOld, "GPQS", "GP"},  {"vista", 2, 6, 0, kNew, "grRpqpqs", "grRpp"},
    {"win7", 2, 6, 1, kNew, "gwWs", "grR"},
};
const Windows* windows = nullptr;  // that this process is to see

using Module =
    std::unique_ptr<HINSTANCE__, decltype([](HMODULE module) { ::FreeLibrary(module); })>;

template <typename Pointer>
Pointer Find(const Module& module, const char* name) {
  return reinterpret_cast<Pointer>(reinterpret_cast<void*>(::GetProcAddress(module.get(), name)));
}

// How a call ended (its last error, 0 for success), and what it asked the system. An identifier
// that was given has to be freed.
using Ending = std::pair<DWORD, std::string>;

// The library with the stand-in of a folder, or with none. It takes a PowrProf.dll that is loaded.
struct Library {
  explicit Library(std::string_view folder)
      : power_module(::LoadLibraryA((std::string(folder) + "\\PowrProf.dll").c_str())) {}

  Ending Set(BOOL ac, BOOL dc, std::size_t fail_at = 0) {
    return Call(fail_at, [&] { return set(ac, dc); });
  }
  Ending Get(std::size_t fail_at = 0) {
    return Call(fail_at, [&] { return get(&ac_state, &dc_state); });
  }

  template <typename Function>
  Ending Call(std::size_t fail_at, Function function) {
    memset(power.calls, 0, sizeof power.calls);
    power.fail_at = fail_at;
    power.code = ERROR_GEN_FAILURE;
    power.scheme = nullptr;
    ::SetLastError(0);
    const DWORD code = function() ? 0 : ::GetLastError();
    const bool leak = power.scheme && ::HeapValidate(::GetProcessHeap(), 0, power.scheme);
    return {code, std::string(power.calls) + (leak ? " and keeps the identifier" : "")};
  }

  Module power_module;
  Module vexa{::LoadLibraryA("VexaAPI.dll")};
  decltype(&Vexa_SetProcessorIdleState) set =
      Find<decltype(set)>(vexa, "Vexa_SetProcessorIdleState");
  decltype(&Vexa_GetProcessorIdleState) get =
      Find<decltype(get)>(vexa, "Vexa_GetProcessorIdleState");
  PowerStandIn none{};
  PowerStandIn& power = power_module ? *Find<PowerStandIn*>(power_module, "stand_in") : none;
  BOOL ac_state = -1, dc_state = -1;  // that Get() has given
};

// Puts into the system's data what says whether idle states are allowed on AC (0) or DC (1).
void Allow(PowerStandIn* power, int supply, bool allowed) {
  if (windows->major < 6) {
    auto& policies = power->processor_scheme.policies[supply].Policy;
    policies[0].AllowPromotion = policies[1].AllowPromotion = allowed;
  } else if (windows->minor == 0) {
    power->policies[power->index[supply]].Flags.Disabled = !allowed;
  } else {
    power->index[supply] = !allowed;
  }
}

bool SameData(const PowerStandIn& one, const PowerStandIn& other) {
  return memcmp(one.index, other.index, sizeof one - offsetof(PowerStandIn, index)) == 0;
}

TEST(ProcessorIdle, IsSetAndReadThroughTheSystem) {
  Library library(windows->power);
  PowerStandIn& power = library.power;
  memset(&power.policies, 0xA5, sizeof power.policies + sizeof power.processor_scheme);
  power.index[0] = 1;  // in the list of policies: AC and DC the other way round
  for (const BOOL ac : {0, 1, 0}) {
    for (const BOOL dc : {1, 0}) {
      PowerStandIn expected = power;
      Allow(&expected, 0, ac);
      Allow(&expected, 1, dc);
      // Nonzero is enabled; before Vista the lowest bit counts.
      EXPECT_EQ(library.Set(windows->major < 6 ? ac | 2 : 2 * ac, dc), Ending(0, windows->set));
      EXPECT_TRUE(SameData(power, expected)) << ac << dc << ": other bits have changed";
      EXPECT_EQ(library.Get(), Ending(0, windows->get));
      EXPECT_EQ(std::pair(library.ac_state, library.dc_state), std::pair(ac, dc));
    }
  }
  power.processor_scheme.policies[1].Policy[1].AllowPromotion = 1;
  EXPECT_EQ(library.Get().first, 0U);
  EXPECT_EQ(library.dc_state, windows->major < 6) << "the second entry alone allows it, too";
}

TEST(ProcessorIdle, EveryFailureEndsTheCallWithItsCode) {
  Library library(windows->power);
  for (const std::string_view calls : {windows->set, windows->get}) {
    for (std::size_t i = 1; i <= calls.size(); ++i) {
      EXPECT_EQ(calls == windows->set ? library.Set(1, 0, i) : library.Get(i),
                Ending(ERROR_GEN_FAILURE, calls.substr(0, i)));
    }
  }
  EXPECT_EQ(library.ac_state, -1) << "a failed call stores nothing";
}

TEST(ProcessorIdle, WithoutItsFunctionsFailsAsLookingForThemHasFailed) {
  ASSERT_EQ(::LoadLibraryA("PowrProf.dll"), nullptr) << "the system's own is in the way";
  const DWORD not_found = ::GetLastError();
  for (const auto& [code, folder] :
       {Ending(ERROR_PROC_NOT_FOUND, windows->power == kNew ? kOld : kNew),
        Ending(ERROR_PROC_NOT_FOUND, "first"), Ending(not_found, "none")}) {
    Library library(folder);
    EXPECT_EQ(library.Set(1, 1), Ending(code, "")) << folder;
    EXPECT_EQ(library.Get(), Ending(code, "")) << folder;
    EXPECT_EQ(library.ac_state, -1) << folder;
  }
  EXPECT_EQ(::GetModuleHandleA("PowrProf.dll"), nullptr) << "not released with the library";
}

}  // namespace

int main(int count, char** arguments) {
  ::testing::InitGoogleTest(&count, arguments);
  char program[MAX_PATH] = {};
  ::GetModuleFileNameA(nullptr, program, MAX_PATH);
  const std::string key =
      std::string("Software\\Wine\\AppDefaults\\") + (strrchr(program, '\\') + 1);
  int failures = 0;
  for (const Windows& each : kAll) {
    if (count == 1) {
      ::RegSetKeyValueA(HKEY_CURRENT_USER, key.c_str(), "Version", REG_SZ, each.name,
                        static_cast<DWORD>(strlen(each.name) + 1));
      failures += ::_spawnl(_P_WAIT, program, "processor_idle", each.name, nullptr) != 0;
    } else if (std::string_view(arguments[1]) == each.name) {
      windows = &each;
    }
  }
  if (count == 1) return failures;
  OSVERSIONINFOA version{};
  version.dwOSVersionInfoSize = sizeof version;
  ::GetVersionExA(&version);
  printf("Windows %s: %lu, %lu.%lu\n", arguments[1], version.dwPlatformId, version.dwMajorVersion,
         version.dwMinorVersion);
  const bool right = windows != nullptr && version.dwPlatformId == windows->platform &&
                     version.dwMajorVersion == windows->major &&
                     version.dwMinorVersion == windows->minor;
  return right ? RUN_ALL_TESTS() : 2;
}

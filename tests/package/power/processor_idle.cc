// The processor idle state through the shipped DLL on every kind of Windows, with stand-ins for the
// system's PowrProf.dll. Wine takes the version that it plays from its registry when a program
// starts, so this one starts itself for each.

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>

#define VEXA_BUILDING_LIBRARY  // plain declarations: the DLL is loaded by name
#include <VexaAPI.h>

#include "stand_in.h"

namespace {

struct Windows {
  const char* name;  // as Wine calls it
  DWORD platform, major, minor;
  const char* power;  // the stand-in with its functions
  const char *set, *get;
};
constexpr Windows kAll[] = {
    {"win98", 1, 4, 10, "old", "GPQS", "GP"}, {"win2k", 2, 5, 0, "old", "GPQS", "GP"},
    {"winxp", 2, 5, 1, "old", "GPQS", "GP"},  {"vista", 2, 6, 0, "new", "grRpqpqs", "grRpp"},
    {"win7", 2, 6, 1, "new", "gwWs", "grR"},
};
const Windows* windows = nullptr;  // that this process is to see

// A loaded DLL; the library finds a PowrProf.dll that is loaded already.
class Module {
 public:
  explicit Module(const std::string& path) : module_(::LoadLibraryA(path.c_str())) {}
  ~Module() { ::FreeLibrary(module_); }
  Module(const Module&) = delete;
  Module& operator=(const Module&) = delete;

  template <typename Pointer>
  Pointer Find(const char* name) const {
    const auto address = ::GetProcAddress(module_, name);
    EXPECT_NE(address, nullptr) << name;
    return reinterpret_cast<Pointer>(reinterpret_cast<void*>(address));
  }

 private:
  HMODULE module_;
};

class Library {
 public:
  // `power` is a folder beside the program; one without a DLL leaves the system without.
  explicit Library(const std::string& power) : power_(power + "\\PowrProf.dll"), vexa_("VexaAPI") {}

  DWORD Set(BOOL ac, BOOL dc) const {
    return Call([&] { return set_(ac, dc); });
  }
  DWORD Get(BOOL* ac, BOOL* dc) const {
    return Call([&] { return get_(ac, dc); });
  }
  PowerStandIn& Power() const { return *power_.Find<PowerStandIn*>("stand_in"); }

 private:
  // The last error of a call that has failed, 0 after success.
  template <typename Function>
  static DWORD Call(Function function) {
    ::SetLastError(0);
    return function() ? 0 : ::GetLastError();
  }

  Module power_;
  Module vexa_;
  decltype(&Vexa_SetProcessorIdleState) set_ =
      vexa_.Find<decltype(set_)>("Vexa_SetProcessorIdleState");
  decltype(&Vexa_GetProcessorIdleState) get_ =
      vexa_.Find<decltype(get_)>("Vexa_GetProcessorIdleState");
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

// How a call ended (its last error, 0 for success), and what it asked the system. An identifier
// that was given has to be freed.
using Ending = std::pair<DWORD, std::string>;

class ProcessorIdle : public ::testing::Test {
 protected:
  ProcessorIdle() {
    memset(&power_.policies, 0xA5, sizeof power_.policies + sizeof power_.processor_scheme);
    power_.index[0] = 1;
    power_.index[1] = 0;
  }

  Ending Set(BOOL ac, BOOL dc, std::size_t fail_at = 0) {
    return Call(fail_at, [&] { return library_.Set(ac, dc); });
  }
  Ending Get(std::size_t fail_at = 0) {
    return Call(fail_at, [&] { return library_.Get(&state_[0], &state_[1]); });
  }

  const Library library_{windows->power};
  PowerStandIn& power_ = library_.Power();
  BOOL state_[2] = {-1, -1};  // that Get() has given

 private:
  template <typename Function>
  Ending Call(std::size_t fail_at, Function function) {
    memset(power_.calls, 0, sizeof power_.calls);
    power_.fail_at = fail_at;
    power_.code = ERROR_GEN_FAILURE;
    power_.scheme = nullptr;
    const DWORD code = function();
    const bool leak =
        power_.scheme != nullptr && ::HeapValidate(::GetProcessHeap(), 0, power_.scheme);
    return {code, std::string(power_.calls) + (leak ? " and keeps the identifier" : "")};
  }
};

TEST_F(ProcessorIdle, IsSetAndReadThroughTheSystem) {
  for (const BOOL ac : {0, 1, 0}) {
    for (const BOOL dc : {1, 0}) {
      PowerStandIn expected = power_;
      Allow(&expected, 0, ac);
      Allow(&expected, 1, dc);
      // Nonzero is enabled; before Vista the lowest bit counts.
      EXPECT_EQ(Set(windows->major < 6 ? ac | 2 : 2 * ac, dc), Ending(0, windows->set));
      EXPECT_TRUE(SameData(power_, expected)) << ac << dc << ": other bits have changed";
      EXPECT_EQ(Get(), Ending(0, windows->get));
      EXPECT_EQ(std::pair(state_[0], state_[1]), std::pair(ac, dc));
    }
  }
  power_.processor_scheme.policies[1].Policy[1].AllowPromotion = 1;
  EXPECT_EQ(Get().first, 0U);
  EXPECT_EQ(state_[1], windows->major < 6) << "the second entry alone allows it, too";
}

TEST_F(ProcessorIdle, EveryFailureEndsTheCallWithItsCode) {
  const auto check = [&](std::string_view calls, const auto& call) {
    for (std::size_t i = 1; i <= calls.size(); ++i) {
      EXPECT_EQ(call(i), Ending(ERROR_GEN_FAILURE, calls.substr(0, i)));
    }
  };
  check(windows->set, [&](std::size_t i) { return Set(1, 0, i); });
  check(windows->get, [&](std::size_t i) { return Get(i); });
  EXPECT_EQ(state_[0], -1) << "a failed call stores nothing";
}

TEST(ProcessorIdleWithoutFunctions, BothFailAsLookingForThemHasFailed) {
  ASSERT_EQ(::LoadLibraryA("PowrProf.dll"), nullptr) << "the system's own is in the way";
  const DWORD not_found = ::GetLastError();
  const std::string other = std::string(windows->power) == "new" ? "old" : "new";
  for (const auto& [code, power] :
       {Ending(ERROR_PROC_NOT_FOUND, other), Ending(ERROR_PROC_NOT_FOUND, "first"),
        Ending(not_found, "none")}) {
    const Library library(power);
    BOOL ac = -1, dc = -1;
    EXPECT_EQ(library.Set(1, 1), code) << power;
    EXPECT_EQ(library.Get(&ac, &dc), code) << power;
    EXPECT_EQ(std::pair(ac, dc), std::pair(-1, -1)) << power;
  }
  EXPECT_EQ(::GetModuleHandleA("PowrProf.dll"), nullptr) << "not released with the library";
}

// Runs this program in the Windows; the number of its failures.
DWORD RunIn(const Windows& windows, const char* program) {
  const std::string_view name(strrchr(program, '\\') + 1);
  const std::string key = "Software\\Wine\\AppDefaults\\" + std::string(name);
  ::RegSetKeyValueA(HKEY_CURRENT_USER, key.c_str(), "Version", REG_SZ, windows.name,
                    static_cast<DWORD>(strlen(windows.name) + 1));
  std::string line = "x " + std::string(windows.name);
  STARTUPINFOA startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process{};
  DWORD code = 1;
  if (::CreateProcessA(program, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup,
                       &process)) {
    ::WaitForSingleObject(process.hProcess, INFINITE);
    ::GetExitCodeProcess(process.hProcess, &code);
    ::CloseHandle(process.hProcess);
    ::CloseHandle(process.hThread);
  }
  return code;
}

}  // namespace

int main(int count, char** arguments) {
  ::testing::InitGoogleTest(&count, arguments);
  char program[MAX_PATH] = {};
  ::GetModuleFileNameA(nullptr, program, MAX_PATH);
  OSVERSIONINFOA version{};
  version.dwOSVersionInfoSize = sizeof version;
  ::GetVersionExA(&version);
  DWORD failures = 0;
  for (const Windows& each : kAll) {
    if (count == 1) {
      failures += RunIn(each, program);
    } else if (std::string_view(arguments[1]) == each.name) {
      windows = &each;
      printf("Windows %s: %lu, %lu.%lu\n", each.name, version.dwPlatformId, version.dwMajorVersion,
             version.dwMinorVersion);
    }
  }
  if (count == 1) return failures == 0 ? 0 : 1;
  const bool right = windows != nullptr && version.dwPlatformId == windows->platform &&
                     version.dwMajorVersion == windows->major &&
                     version.dwMinorVersion == windows->minor;
  return right ? RUN_ALL_TESTS() : 2;
}

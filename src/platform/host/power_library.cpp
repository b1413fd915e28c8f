#include "platform/power_library.hpp"

#include <algorithm>
#include <string_view>

#include "platform/host/power_store.hpp"
#include "platform/last_error.hpp"

namespace vexa::platform {
namespace host {

PowerStore& ThePowerStore() {
  static PowerStore store;
  return store;
}

namespace {

constexpr std::uint32_t kFileNotFound = 2;  // ERROR_FILE_NOT_FOUND
constexpr std::uint32_t kMoreData = 234;    // ERROR_MORE_DATA

// Settings of Windows, from its winnt.h.
constexpr Guid kProcessorSettings{
    0x54533251, 0x82BE, 0x4824, {0x96, 0xC1, 0x47, 0xB6, 0x0B, 0x74, 0x0D, 0x00}};
constexpr Guid kIdleDisable{
    0x5D76A2CA, 0xE8C0, 0x402F, {0xA1, 0x33, 0x21, 0x58, 0x49, 0x2D, 0x58, 0xAD}};
constexpr Guid kIdleStatePolicy{
    0x68F262A7, 0xF621, 0x4069, {0xB9, 0xA5, 0x48, 0x74, 0x16, 0x9B, 0xE2, 0x3C}};
// The scheme "Balanced", the one that there is.
constexpr Guid kBalanced{
    0x381B4222, 0xF694, 0x41F0, {0x96, 0x85, 0xFF, 0x5B, 0xB2, 0x60, 0xDF, 0x2E}};

/// Notes the call; what it is to fail with.
std::uint32_t Begin(const char* name) {
  PowerStore& store = ThePowerStore();
  store.calls.emplace_back(name);
  return store.calls.size() - 1 == store.failing_call ? store.failure : 0;
}

bool IsBalanced(const Guid* scheme) { return scheme != nullptr && *scheme == kBalanced; }

std::uint32_t GetActiveScheme(void* /*root*/, Guid** scheme) {
  const std::uint32_t failure = Begin("PowerGetActiveScheme");
  if (failure == 0) {
    *scheme = new Guid(kBalanced);  // the caller's, until FreeScheme
    ++ThePowerStore().schemes_given;
  }
  return failure;
}

std::uint32_t SetActiveScheme(void* /*root*/, const Guid* scheme) {
  const std::uint32_t failure = Begin("PowerSetActiveScheme");
  return failure != 0 || IsBalanced(scheme) ? failure : kFileNotFound;
}

std::uint32_t* FindIndex(const Guid* scheme, const Guid* subgroup, const Guid* setting,
                         std::size_t supply) {
  if (!IsBalanced(scheme) || *subgroup != kProcessorSettings) {
    return nullptr;
  }
  PowerStore& store = ThePowerStore();
  if (*setting == kIdleDisable) {
    return &store.idle_disable[supply];
  }
  return *setting == kIdleStatePolicy ? &store.idle_policy[supply] : nullptr;
}

template <std::size_t kSupply>
std::uint32_t ReadIndex(void* /*root*/, const Guid* scheme, const Guid* subgroup,
                        const Guid* setting, std::uint32_t* index) {
  if (const std::uint32_t failure =
          Begin(kSupply == 0 ? "PowerReadACValueIndex" : "PowerReadDCValueIndex")) {
    return failure;
  }
  const std::uint32_t* stored = FindIndex(scheme, subgroup, setting, kSupply);
  if (stored == nullptr) {
    return kFileNotFound;
  }
  *index = *stored;
  return 0;
}

template <std::size_t kSupply>
std::uint32_t WriteIndex(void* /*root*/, const Guid* scheme, const Guid* subgroup,
                         const Guid* setting, std::uint32_t index) {
  if (const std::uint32_t failure =
          Begin(kSupply == 0 ? "PowerWriteACValueIndex" : "PowerWriteDCValueIndex")) {
    return failure;
  }
  std::uint32_t* stored = FindIndex(scheme, subgroup, setting, kSupply);
  if (stored == nullptr) {
    return kFileNotFound;
  }
  *stored = index;
  return 0;
}

PowerStore::PossibleValue* FindPossibleValue(const Guid* subgroup, const Guid* setting,
                                             std::uint32_t index) {
  std::vector<PowerStore::PossibleValue>& values = ThePowerStore().idle_policies;
  const bool known = *subgroup == kProcessorSettings && *setting == kIdleStatePolicy;
  return known && index < values.size() ? &values[index] : nullptr;
}

std::uint32_t ReadPossibleValue(void* /*root*/, const Guid* subgroup, const Guid* setting,
                                std::uint32_t* type, std::uint32_t index, std::uint8_t* data,
                                std::uint32_t* size) {
  if (const std::uint32_t failure = Begin("PowerReadPossibleValue")) {
    return failure;
  }
  const PowerStore::PossibleValue* value = FindPossibleValue(subgroup, setting, index);
  if (value == nullptr) {
    return kFileNotFound;
  }
  const auto needed = static_cast<std::uint32_t>(value->data.size());
  const bool fits = needed <= *size;
  *size = needed;
  if (!fits) {
    return kMoreData;
  }
  *type = value->type;
  std::copy(value->data.begin(), value->data.end(), data);
  return 0;
}

std::uint32_t WritePossibleValue(void* /*root*/, const Guid* subgroup, const Guid* setting,
                                 std::uint32_t type, std::uint32_t index, std::uint8_t* data,
                                 std::uint32_t size) {
  if (const std::uint32_t failure = Begin("PowerWritePossibleValue")) {
    return failure;
  }
  PowerStore::PossibleValue* value = FindPossibleValue(subgroup, setting, index);
  if (value == nullptr) {
    return kFileNotFound;
  }
  *value = {.type = type, .data = {data, data + size}};
  return 0;
}

/// How the old functions answer.
std::uint8_t Answer(std::uint32_t failure) {
  if (failure != 0) {
    SetLastErrorCode(Status(failure));
  }
  return failure == 0 ? 1 : 0;
}

std::uint8_t GetActivePwrScheme(std::uint32_t* scheme) {
  *scheme = ThePowerStore().processor_scheme;
  return Answer(Begin("GetActivePwrScheme"));
}

std::uint8_t SetActivePwrScheme(std::uint32_t scheme, void* /*global*/, void* /*policy*/) {
  const std::uint32_t failure = Begin("SetActivePwrScheme");
  return Answer(failure != 0 || scheme == ThePowerStore().processor_scheme ? failure
                                                                           : kFileNotFound);
}

/// What moving a processor policy between the store and its user comes to.
template <typename Move>
std::uint8_t AccessProcessorScheme(const char* name, std::uint32_t scheme, Move move) {
  std::uint32_t failure = Begin(name);
  if (failure == 0 && scheme != ThePowerStore().processor_scheme) {
    failure = kFileNotFound;
  }
  if (failure == 0) {
    move(ThePowerStore().processor_policy);
  }
  return Answer(failure);
}

std::uint8_t ReadProcessorPwrScheme(std::uint32_t scheme, void* policy) {
  return AccessProcessorScheme("ReadProcessorPwrScheme", scheme, [policy](const auto& stored) {
    std::copy(stored.begin(), stored.end(), static_cast<std::uint8_t*>(policy));
  });
}

std::uint8_t WriteProcessorPwrScheme(std::uint32_t scheme, void* policy) {
  return AccessProcessorScheme("WriteProcessorPwrScheme", scheme, [policy](auto& stored) {
    std::copy_n(static_cast<const std::uint8_t*>(policy), stored.size(), stored.begin());
  });
}

template <typename Type>
PowerLibrary::Function Untyped(Type* function) {
  return reinterpret_cast<PowerLibrary::Function>(function);
}

struct Entry {
  std::string_view name;
  PowerLibrary::Function function;
  std::uint32_t since;  // major version of the system
};

class StoreLibrary : public PowerLibrary {
 public:
  Function Find(const char* name, Status* status) const override {
    static const Entry entries[] = {
        {"PowerGetActiveScheme", Untyped(GetActiveScheme), 6},
        {"PowerSetActiveScheme", Untyped(SetActiveScheme), 6},
        {"PowerReadACValueIndex", Untyped(ReadIndex<0>), 6},
        {"PowerReadDCValueIndex", Untyped(ReadIndex<1>), 6},
        {"PowerWriteACValueIndex", Untyped(WriteIndex<0>), 6},
        {"PowerWriteDCValueIndex", Untyped(WriteIndex<1>), 6},
        {"PowerReadPossibleValue", Untyped(ReadPossibleValue), 6},
        {"PowerWritePossibleValue", Untyped(WritePossibleValue), 6},
        {"GetActivePwrScheme", Untyped(GetActivePwrScheme), 0},
        {"SetActivePwrScheme", Untyped(SetActivePwrScheme), 0},
        {"ReadProcessorPwrScheme", Untyped(ReadProcessorPwrScheme), 0},
        {"WriteProcessorPwrScheme", Untyped(WriteProcessorPwrScheme), 0},
    };
    const PowerStore& store = ThePowerStore();
    for (const Entry& entry : entries) {
      if (entry.name == name && store.version.major >= entry.since &&
          !store.missing.contains(name)) {
        return entry.function;
      }
    }
    *status = error::kProcedureNotFound;
    return nullptr;
  }

  void FreeScheme(Guid* scheme) const override {
    const std::unique_ptr<Guid> owner(scheme);
    --ThePowerStore().schemes_given;
  }
};

}  // namespace
}  // namespace host

OsVersion ReadOsVersion() { return host::ThePowerStore().version; }

std::unique_ptr<PowerLibrary> OpenPowerLibrary(Status* status) {
  *status = Status(host::ThePowerStore().load_error);
  return status->ok() ? std::make_unique<host::StoreLibrary>() : nullptr;
}

}  // namespace vexa::platform

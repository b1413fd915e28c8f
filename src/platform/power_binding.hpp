/// \file
/// The functions of the power-management library, by name.
#pragma once

#include <cstdint>
#include <memory>

#include "VexaAPI.h"
#include "platform/power_library.hpp"
#include "platform/status.hpp"

namespace vexa::platform {

/// Functions of Windows Vista and later. They answer a system error code, 0 for success; the root
/// key is always null.
struct PowerSchemeFunctions {
  using ReadIndex = std::uint32_t(VEXA_CALL*)(void* root, const Guid* scheme, const Guid* subgroup,
                                              const Guid* setting, std::uint32_t* index);
  using WriteIndex = std::uint32_t(VEXA_CALL*)(void* root, const Guid* scheme, const Guid* subgroup,
                                               const Guid* setting, std::uint32_t index);

  std::uint32_t(VEXA_CALL* get_active_scheme)(void* root, Guid** scheme) = nullptr;
  std::uint32_t(VEXA_CALL* set_active_scheme)(void* root, const Guid* scheme) = nullptr;
  WriteIndex write_ac_value_index = nullptr;
  WriteIndex write_dc_value_index = nullptr;
  ReadIndex read_ac_value_index = nullptr;
  ReadIndex read_dc_value_index = nullptr;
  std::uint32_t(VEXA_CALL* read_possible_value)(void* root, const Guid* subgroup,
                                                const Guid* setting, std::uint32_t* type,
                                                std::uint32_t index, std::uint8_t* data,
                                                std::uint32_t* size) = nullptr;
  std::uint32_t(VEXA_CALL* write_possible_value)(void* root, const Guid* subgroup,
                                                 const Guid* setting, std::uint32_t type,
                                                 std::uint32_t index, std::uint8_t* data,
                                                 std::uint32_t size) = nullptr;
};

/// Functions of the systems before. They answer 0 for failure, with the last error set. A policy is
/// a MACHINE_PROCESSOR_POWER_POLICY.
struct ProcessorSchemeFunctions {
  std::uint8_t(VEXA_CALL* read_processor_scheme)(std::uint32_t scheme, void* policy) = nullptr;
  std::uint8_t(VEXA_CALL* write_processor_scheme)(std::uint32_t scheme, void* policy) = nullptr;
  std::uint8_t(VEXA_CALL* get_active_scheme)(std::uint32_t* scheme) = nullptr;
  std::uint8_t(VEXA_CALL* set_active_scheme)(std::uint32_t scheme, void* global_policy,
                                             void* policy) = nullptr;
};

/// The library with its resolved functions: the new ones when it has PowerGetActiveScheme, else the
/// old ones. Only read once it has been made.
class PowerBinding {
 public:
  PowerBinding();

  /// Why the binding is of no use: the library or one of the functions is missing.
  Status load_error() const { return load_error_; }
  /// Null when the library does not have these functions, or when there is a load error.
  const PowerSchemeFunctions* schemes() const { return has_new_ ? &new_ : nullptr; }
  const ProcessorSchemeFunctions* processor_schemes() const { return has_old_ ? &old_ : nullptr; }

  /// Frees what get_active_scheme has given.
  void FreeScheme(Guid* scheme) const { library_->FreeScheme(scheme); }

 private:
  void ResolveNew();
  void ResolveOld();
  template <typename Function>
  bool Resolve(const char* name, Function* function);

  Status load_error_;
  std::unique_ptr<PowerLibrary> library_;
  bool has_new_ = false;
  bool has_old_ = false;
  PowerSchemeFunctions new_;
  ProcessorSchemeFunctions old_;
};

/// The binding that the library uses: the one that it makes when it is loaded and releases when it
/// is unloaded, unless InstallPowerBinding has put another in its place.
const PowerBinding& CurrentPowerBinding();

/// Replaces the binding, for tests; null restores the library's own. The caller keeps ownership.
void InstallPowerBinding(const PowerBinding* binding);

}  // namespace vexa::platform

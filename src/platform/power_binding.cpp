#include "platform/power_binding.hpp"

#include <atomic>

namespace vexa::platform {
namespace {

std::atomic<const PowerBinding*> installed = nullptr;

// Made when the library is loaded, released when it is unloaded.
const PowerBinding own_binding;

}  // namespace

PowerBinding::PowerBinding() : library_(OpenPowerLibrary(&load_error_)) {
  if (library_ == nullptr) {
    return;
  }
  Status ignored;
  if (library_->Find("PowerGetActiveScheme", &ignored) != nullptr) {
    ResolveNew();
  } else {
    ResolveOld();
  }
}

template <typename Function>
bool PowerBinding::Resolve(const char* name, Function* function) {
  *function = reinterpret_cast<Function>(library_->Find(name, &load_error_));
  return *function != nullptr;
}

void PowerBinding::ResolveNew() {
  has_new_ = Resolve("PowerGetActiveScheme", &new_.get_active_scheme) &&
             Resolve("PowerSetActiveScheme", &new_.set_active_scheme) &&
             Resolve("PowerWriteACValueIndex", &new_.write_ac_value_index) &&
             Resolve("PowerWriteDCValueIndex", &new_.write_dc_value_index) &&
             Resolve("PowerReadACValueIndex", &new_.read_ac_value_index) &&
             Resolve("PowerReadDCValueIndex", &new_.read_dc_value_index) &&
             Resolve("PowerReadPossibleValue", &new_.read_possible_value) &&
             Resolve("PowerWritePossibleValue", &new_.write_possible_value);
}

void PowerBinding::ResolveOld() {
  has_old_ = Resolve("ReadProcessorPwrScheme", &old_.read_processor_scheme) &&
             Resolve("WriteProcessorPwrScheme", &old_.write_processor_scheme) &&
             Resolve("GetActivePwrScheme", &old_.get_active_scheme) &&
             Resolve("SetActivePwrScheme", &old_.set_active_scheme);
}

const PowerBinding& CurrentPowerBinding() {
  const PowerBinding* other = installed;
  return other != nullptr ? *other : own_binding;
}

void InstallPowerBinding(const PowerBinding* binding) { installed = binding; }

}  // namespace vexa::platform

#include "transfer/trigger_waits.hpp"

namespace vexa::transfer {

Status TimeOuts::Set(std::uint32_t index, std::uint32_t milliseconds) {
  if (index >= kCount) {
    return error::kInvalidParameter;
  }
  values_[index] = milliseconds;
  return {};
}

Status TimeOuts::Get(std::uint32_t index, std::uint32_t* milliseconds) const {
  if (index >= kCount) {
    return error::kInvalidParameter;
  }
  *milliseconds = values_[index];
  return {};
}

}  // namespace vexa::transfer

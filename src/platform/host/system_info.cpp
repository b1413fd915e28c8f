#include "platform/system_info.hpp"

#include "vexa_version.hpp"

namespace vexa::platform {

std::uint32_t OsMajorVersion() { return 10; }

ModuleVersion ReadModuleVersion() {
  constexpr std::uint32_t kHigh = (VEXA_VERSION_MAJOR << 16) | VEXA_VERSION_MINOR;
  constexpr std::uint32_t kLow = VEXA_VERSION_PATCH << 16;
  return {.file_high = kHigh, .file_low = kLow, .product_high = kHigh, .product_low = kLow};
}

void RecordModule(void* /*module*/) {}

}  // namespace vexa::platform

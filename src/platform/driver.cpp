#include "platform/driver.hpp"

#include <atomic>

namespace vexa::platform {
namespace {

std::atomic<Driver*> installed_driver = nullptr;

}  // namespace

Driver& CurrentDriver() {
  Driver* const driver = installed_driver.load(std::memory_order_acquire);
  return driver != nullptr ? *driver : SystemDriver();
}

void InstallDriver(Driver* driver) { installed_driver.store(driver, std::memory_order_release); }

}  // namespace vexa::platform

/// \file
/// The cameras of a test: twins in this process, behind the library that is linked in.
#pragma once

#include "platform/driver.hpp"
#include "simulator/twin.hpp"

/// Tests may look inside the library and count its allocations.
#define VEXA_TESTS_LOOK_INSIDE 1

namespace vexa::test {

using Twin = simulator::TwinCamera;

/// The library's only cameras as long as it lives.
class TestBus : public simulator::CameraBus {
 public:
  TestBus() { platform::InstallDriver(this); }
  ~TestBus() override { platform::InstallDriver(nullptr); }
};

}  // namespace vexa::test

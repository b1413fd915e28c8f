/// \file
/// The cameras of a test: twins behind the kernel-mode driver; the library is the finished DLL.
#pragma once

#include "simulator/windows/remote_camera.hpp"

/// The DLL shows its exports only.
#define VEXA_TESTS_LOOK_INSIDE 0

namespace vexa::test {

using Twin = simulator::RemoteCamera;
using TestBus = simulator::RemoteBus;

}  // namespace vexa::test

// Where there is no kernel-mode driver, the digital twin is the system's driver.
#include "simulator/camera_bus.hpp"

namespace vexa::platform {

Driver& SystemDriver() { return simulator::CameraBus::System(); }

}  // namespace vexa::platform

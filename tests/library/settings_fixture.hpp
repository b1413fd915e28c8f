/// \file
/// A twin with every capability whose settings are under test.
#pragma once

#include "camera_fixture.hpp"

namespace vexa::test {

class SettingsTest : public CameraTest {
 protected:
  // A camera with every capability.
  HANDLE OpenComplete(std::uint16_t product_id = 0x0510) {
    simulator::CameraConfig config = simulator::ForProduct(product_id);
    config.capabilities =
        ~std::uint64_t{1ULL << 48 | 1ULL << 20};  // the host computes limits, rate
    config.transfer_formats = 0x0007;
    return OpenOnly(config);
  }
};

}  // namespace vexa::test

/** Who a camera is. */
#pragma once

#include <cstdint>
#include <string>

#include "camera.hpp"

namespace vexa::tool {

/** What a camera says about itself; none of it changes with its settings but the colour array. */
struct Identity {
  std::string model;
  std::uint16_t version = 0; /**< Version word A. */
  std::uint16_t product_id = 0;
  std::uint16_t variant = 0;
  std::uint16_t firmware = 0;
  std::uint16_t color_array = 0; /**< Of the frames that the camera sends now. */
  std::uint32_t max_width = 0;
  std::uint32_t max_height = 0;
  std::uint8_t usb_speed = 0;
};

/** Reads the identity. @throws ApiError. */
Identity ReadIdentity(const Camera& camera);

}  // namespace vexa::tool

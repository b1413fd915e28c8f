/// \file
/// The camera models that the library knows.
#pragma once

#include <cstdint>
#include <string_view>

namespace vexa::device {

/// What the library knows of a model beyond what the camera says itself.
struct Model {
  std::uint16_t product_id;
  std::u16string_view name;
  /// Image size of cameras that leave theirs open, in pixels.
  std::uint32_t default_width;
  std::uint32_t default_height;
};

/// The model of a product ID; for an unknown one a model named "UNKNOWN" with the largest size.
const Model& FindModel(std::uint16_t product_id);

/// Whether a model has registers, and with them a capability mask and triggers. Four early models
/// have none.
bool HasRegisterAccess(std::uint16_t product_id);

}  // namespace vexa::device

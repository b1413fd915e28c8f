/// \file
/// What a digital twin is: identity, sensor, link and scene of one camera.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "simulator/picture.hpp"

namespace vexa::simulator {

/// Speed of the camera's USB link; it fixes the bulk packet size (64, 512 or 1024 bytes) of the
/// configuration descriptor.
enum class UsbSpeed { kFull, kHigh, kSuper };

/// When the camera makes frames.
enum class Pace {
  kRealTime,  ///< from pixel clock, lines and clocks per line; a frame without room is dropped
  kFastest,   ///< as soon as reads can take a frame; exposure and read-out take no time
};

/// Width and height in pixels.
struct SensorSize {
  std::uint32_t width = 0;
  std::uint32_t height = 0;

  friend bool operator==(const SensorSize&, const SensorSize&) = default;
};

/// One camera. The member values are those of an anonymous colour camera; ForProduct gives those
/// of a model.
struct CameraConfig {
  // Camera information block
  std::uint16_t product_id = 0x0510;
  std::uint16_t variant = 0;
  std::uint16_t firmware = 0x0100;
  std::uint16_t version_word_a = 0x0201;
  std::uint16_t colour_array = 2;  // 1 monochrome, 2 RGGB, 3 GRBG, 4 GBRG, 5 BGGR
  std::uint16_t header_size = 64;  // bytes before the image; the frame number needs 16
  std::uint32_t scan_settings_tag = 0x31564353;
  std::uint32_t transfer_formats = 0x0007;  // one bit per transfer format code
  std::uint16_t scan_modes = 0x8007;        // one bit per scan mode
  std::uint32_t clock_modes = 0x0003;       // one bit per clock mode
  std::uint32_t max_width = 1280;           // as reported; 0 leaves it to the model's table, which
  std::uint32_t max_height = 964;           // then also gives the real sensor size
  std::uint64_t capabilities = 0;           // capability bit n is bit n

  // Link and driver
  UsbSpeed usb_speed = UsbSpeed::kHigh;
  std::vector<std::uint8_t> descriptor_override;  // raw configuration descriptor; empty: built
  std::array<std::uint32_t, 4> driver_version{0x00030000, 6, 0, 0};
  Pace pace = Pace::kRealTime;

  // What the camera sees
  std::shared_ptr<const Picture> scene;  // null: the built-in scene
  bool moving_parts = true;              // moving object and frame counter over the scene
  bool noise = true;                     // shot and read noise
  unsigned defect_pixels = 6;            // by turns always bright and dead ones
  std::uint64_t seed = 1;                // of noise and defect pixels
  std::array<double, 3> illuminant{1.0, 1.0, 1.0};  // strength of the light in red, green, blue

  // User area
  std::uint32_t user_id = 0;
  std::string user_name;  // at most 249 bytes
};

/// The models without register access: no capability mask, no request 0x80.
bool HasRegisterAccess(std::uint16_t product_id);

/// Sensor size of a product; 4092 x 4092 for products that are not in the table.
SensorSize ProductSensorSize(std::uint16_t product_id);

/// The 28 products, in ascending order.
const std::vector<std::uint16_t>& KnownProducts();

/// A sensible camera of a product: size, colour array, capabilities, formats, speed. Products that
/// are not in the table give a monochrome camera without capabilities.
CameraConfig ForProduct(std::uint16_t product_id);

/// The cameras that are there when nobody has plugged others: one colour camera (product 0x0510,
/// 1280 x 964), one monochrome camera (0x0710, 1360 x 1040), and two colour cameras under a lamp's
/// light, the second with white balance of its own (0x0410, 0x0209).
std::vector<CameraConfig> StandardCameras();

/// Size of the camera's sensor: the reported maximum, or the product's when either is 0.
SensorSize SensorSizeOf(const CameraConfig& config);

}  // namespace vexa::simulator

/// \file
/// The settings that are in force in a camera, as the sensor and the stream need them.
#pragma once

#include <array>
#include <chrono>
#include <cstdint>

#include "simulator/camera_config.hpp"

namespace vexa::simulator {

/// Which sensor pixels become which pixels of the frame. An output pixel is the mean of
/// bin_x * bin_y sensor pixels (of its own filter colour); neighbouring output pixels (cells of
/// 2 x 2 pixels on a colour sensor) lie pitch_x and pitch_y sensor pixels (cells) apart.
struct Geometry {
  SensorSize sensor;
  std::uint16_t colour_array = 1;  // of the sensor, counted from its first pixel
  std::uint32_t width = 0;         // of the frame
  std::uint32_t height = 0;
  std::uint32_t origin_x = 0;  // first sensor column and row
  std::uint32_t origin_y = 0;
  std::uint32_t pitch_x = 1;
  std::uint32_t pitch_y = 1;
  std::uint32_t bin_x = 1;
  std::uint32_t bin_y = 1;
  bool mirror_x = false;
  bool mirror_y = false;

  friend bool operator==(const Geometry&, const Geometry&) = default;
};

/// How light becomes samples.
struct Tone {
  double exposure = 1.0;  // in units of the power-up exposure
  double gain = 1.0;      // analog times digital; 1 at power-up
  std::array<double, 4> balance{1.0, 1.0, 1.0,
                                1.0};  // of R, Gr, Gb, B samples, after the converter
  double black_level = 64.0;           // in counts of the 14-bit converter
  double gamma = 1.0;                  // exponent of the camera gamma

  friend bool operator==(const Tone&, const Tone&) = default;
};

/// Positions of sensor pixels.
struct PixelPosition {
  std::uint16_t x = 0;
  std::uint16_t y = 0;

  friend bool operator==(const PixelPosition&, const PixelPosition&) = default;
};

/// What the content of a frame depends on, beside its number.
struct ImageSettings {
  Geometry geometry;
  Tone tone;
  std::uint32_t transfer_format = 1;
  std::vector<PixelPosition> corrected_defects;  // replaced by their neighbours
  std::shared_ptr<const Picture> scene;

  friend bool operator==(const ImageSettings&, const ImageSettings&) = default;
};

/// When things happen.
struct FrameTiming {
  std::chrono::nanoseconds period{};           // from frame to frame in free run
  std::chrono::nanoseconds exposure{};         // of one frame
  std::chrono::nanoseconds read_out{};         // of the sensor
  std::chrono::microseconds exposure_delay{};  // from trigger to exposure
  std::chrono::microseconds read_out_delay{};  // from read-out start to read-out
};

/// The trigger mode word of direct register 0x30.
struct TriggerMode {
  std::uint32_t word = 0;

  bool free_run() const { return (word & 0x3) == 0; }
  bool read_out_trigger() const { return (word & 0x3) == 2 && (word & 0x40) == 0; }
  bool separate_header() const { return !free_run() && (word & 0x100) != 0; }
  bool sub_trigger() const { return (word & 0x3000) == 0x2000; }
  bool software() const { return (word & 0xC00) == 0x400; }
};

/// Everything that the stream takes from the camera's settings.
struct CameraSettings {
  ImageSettings image;
  FrameTiming timing;
  TriggerMode trigger;
  std::uint32_t exposure_clock = 0;
  std::uint16_t gain = 0;
};

}  // namespace vexa::simulator

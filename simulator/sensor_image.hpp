/// \file
/// The exposed sensor: what each pixel of the frame sees and how it responds, frame by frame.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "simulator/camera_settings.hpp"
#include "simulator/overlay.hpp"
#include "simulator/response.hpp"
#include "simulator/sampling.hpp"

namespace vexa::simulator {

class Lens;

/// One sample per pixel of the frame: what it sees without the moving parts, and mean and noise of
/// its sample with them.
struct Plane {
  std::vector<std::uint16_t> drive;
  std::vector<std::int16_t> mean;
  std::vector<std::int16_t> noise;
};

/// Keeps the planes of the present settings: one behind a filter pattern or on a monochrome
/// sensor, three (red, green, blue) when the camera sends colours. What does not move is computed
/// when settings change, the moving parts frame by frame.
class SensorImage {
 public:
  explicit SensorImage(const CameraConfig& config);

  /// Takes over settings; true when the still picture has changed.
  bool Configure(const ImageSettings& settings);
  /// Moves the parts to their places in a frame.
  void MoveTo(std::uint32_t frame_number);

  const std::vector<Plane>& planes() const { return planes_; }
  std::uint32_t width() const { return settings_.geometry.width; }
  std::uint32_t height() const { return settings_.geometry.height; }
  std::uint32_t format() const { return settings_.transfer_format; }
  /// Colour array code of the frame, counted from its first pixel.
  std::uint16_t colour_array() const { return frame_colour_array_; }

  /// Where the parts are, and the pixels of the frame that one covers.
  const Overlay::Placements& placements() const { return placements_; }
  struct Area {
    AxisMap::Range columns;
    AxisMap::Range rows;
  };
  Area AreaOf(const Placement& placement) const;

 private:
  bool HasColourFrames() const;
  void ExposeScene();
  void ExposeRow(std::size_t y, Lens* lens, std::vector<std::uint32_t>* sums);
  void AddDefects();
  void CorrectDefects();
  void Develop();
  void DevelopRow(std::size_t y, std::size_t first, std::size_t end);
  void DrawPart(const Placement& placement);
  std::size_t CurveOf(std::size_t plane, std::uint32_t sensor_x, std::uint32_t sensor_y) const;
  std::uint16_t DriveOf(const Light& light, std::size_t curve) const;

  const CameraConfig config_;
  bool configured_ = false;
  ImageSettings settings_;
  Sampling sampling_;
  std::uint16_t frame_colour_array_ = 1;
  Overlay overlay_;
  Response response_;
  std::vector<Plane> planes_;
  Overlay::Placements placements_;
};

}  // namespace vexa::simulator

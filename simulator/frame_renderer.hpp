/// \file
/// Makes frames: header and image, in the transfer format.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "simulator/camera_settings.hpp"
#include "simulator/noise.hpp"
#include "simulator/overlay.hpp"
#include "simulator/sensor_image.hpp"

namespace vexa::simulator {

/// A frame, and what the renderer needs to know to put the next one in its place.
struct FrameBuffer {
  std::vector<std::uint8_t> bytes;
  std::uint64_t picture = 0;  // which still picture it shows; 0: none yet
  Overlay::Placements placements;
};

/// Renders frames one after the other; a frame's bytes follow from configuration, settings and
/// frame number alone.
///
/// Frame header, little-endian, cut off or filled with zeros to the camera's header size:
/// 0 "VXFH", 4 header size (u32), 8 image bytes (u32), 12 frame number (u32), 16 start of the
/// frame in microseconds of camera time (u64: frame number times frame period), 24 exposure clock
/// (u32), 28 analog gain (u16), 30 colour array of the frame's first pixels (u16), 32 width (u32),
/// 36 height (u32), 40 transfer format code (u32), 44 trigger mode word (u32), 48 product ID
/// (u16).
class FrameRenderer {
 public:
  explicit FrameRenderer(const CameraConfig& config);

  /// Computes what does not change from frame to frame of these settings, so that the first frame
  /// does not take longer than the others.
  void Prepare(const std::shared_ptr<const CameraSettings>& settings);
  /// Puts a frame into a buffer, which it makes large enough.
  void Render(const std::shared_ptr<const CameraSettings>& settings, std::uint32_t number,
              FrameBuffer* frame);

 private:
  void WriteHeader(const CameraSettings& settings, std::uint32_t number, FrameBuffer* frame) const;
  void WriteAll(std::uint32_t number, FrameBuffer* frame);
  void WriteMoved(FrameBuffer* frame);
  void WriteArea(const SensorImage::Area& area, FrameBuffer* frame);
  // Pixels [first, end), counted through all rows; with noise one stretch of it.
  void WritePixels(std::uint32_t number, std::size_t first, std::size_t end, FrameBuffer* frame);

  const CameraConfig config_;
  NoiseSource noise_;
  SensorImage image_;
  std::shared_ptr<const CameraSettings> settings_;
  std::uint64_t picture_ = 0;
  std::vector<std::int16_t> stretch_[3];  // samples on their way into a colour or deep format
};

}  // namespace vexa::simulator

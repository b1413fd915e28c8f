#include "simulator/frame_renderer.hpp"

#include <algorithm>
#include <array>
#include <chrono>

#include "platform/bytes.hpp"
#include "simulator/pixel_format.hpp"

namespace vexa::simulator {
namespace {

constexpr std::size_t kHeaderFields = 64;
constexpr std::uint32_t kMagic = 0x48465856;  // "VXFH"
constexpr std::size_t kGroup = 4;             // pixels that the YUV layouts keep together

}  // namespace

FrameRenderer::FrameRenderer(const CameraConfig& config)
    : config_(config), noise_(config.seed), image_(config) {
  for (auto& samples : stretch_) samples.resize(NoiseSource::kLongestStretch);
}

void FrameRenderer::Prepare(const std::shared_ptr<const CameraSettings>& settings) {
  if (settings == settings_) return;
  if (image_.Configure(settings->image)) ++picture_;
  settings_ = settings;
}

void FrameRenderer::Render(const std::shared_ptr<const CameraSettings>& settings,
                           std::uint32_t number, FrameBuffer* frame) {
  Prepare(settings);
  image_.MoveTo(number);
  const ImageSettings& image = settings->image;
  frame->bytes.resize(
      config_.header_size +
      PixelBytes(image.transfer_format, std::size_t{image_.width()} * image_.height()));
  WriteHeader(*settings, number, frame);
  const bool whole_groups = IsOneSample(image.transfer_format) || image_.width() % kGroup == 0;
  if (config_.noise || frame->picture != picture_ || !whole_groups) {
    WriteAll(number, frame);
  } else {
    WriteMoved(frame);
  }
  frame->picture = picture_;
  frame->placements = image_.placements();
}

void FrameRenderer::WriteHeader(const CameraSettings& settings, std::uint32_t number,
                                FrameBuffer* frame) const {
  std::array<std::uint8_t, kHeaderFields> header{};
  const Geometry& geometry = settings.image.geometry;
  const auto period =
      std::chrono::duration_cast<std::chrono::microseconds>(settings.timing.period).count();
  const std::uint64_t start = std::uint64_t{number} * static_cast<std::uint64_t>(period);
  StoreLe32(header, 0, kMagic);
  StoreLe32(header, 4, config_.header_size);
  StoreLe32(header, 8, static_cast<std::uint32_t>(frame->bytes.size() - config_.header_size));
  StoreLe32(header, 12, number);
  StoreLe32(header, 16, static_cast<std::uint32_t>(start));
  StoreLe32(header, 20, static_cast<std::uint32_t>(start >> 32));
  StoreLe32(header, 24, settings.exposure_clock);
  StoreLe16(header, 28, settings.gain);
  StoreLe16(header, 30, image_.colour_array());
  StoreLe32(header, 32, geometry.width);
  StoreLe32(header, 36, geometry.height);
  StoreLe32(header, 40, settings.image.transfer_format);
  StoreLe32(header, 44, settings.trigger.word);
  StoreLe16(header, 48, config_.product_id);
  const std::size_t there = std::min<std::size_t>(header.size(), config_.header_size);
  std::copy_n(header.begin(), there, frame->bytes.begin());
}

void FrameRenderer::WriteAll(std::uint32_t number, FrameBuffer* frame) {
  // Rows follow each other without gaps, so that the image is one long row.
  const std::size_t pixels = std::size_t{image_.width()} * image_.height();
  for (std::size_t i = 0; i < pixels; i += NoiseSource::kLongestStretch) {
    WritePixels(number, i, std::min(i + NoiseSource::kLongestStretch, pixels), frame);
  }
}

void FrameRenderer::WriteMoved(FrameBuffer* frame) {
  const Overlay::Placements& placements = image_.placements();
  for (std::size_t i = 0; i < placements.size(); ++i) {
    if (frame->placements[i] == placements[i]) continue;
    for (const Placement& place : {frame->placements[i], placements[i]}) {
      SensorImage::Area area = image_.AreaOf(place);
      if (area.columns.first >= area.columns.end) continue;
      area.columns.first = area.columns.first / kGroup * kGroup;
      area.columns.end =
          std::min<std::size_t>((area.columns.end + kGroup - 1) / kGroup * kGroup, image_.width());
      WriteArea(area, frame);
    }
  }
}

void FrameRenderer::WriteArea(const SensorImage::Area& area, FrameBuffer* frame) {
  for (std::size_t y = area.rows.first; y < area.rows.end; ++y) {
    const std::size_t row = y * image_.width();
    WritePixels(0, row + area.columns.first, row + area.columns.end, frame);
  }
}

void FrameRenderer::WritePixels(std::uint32_t number, std::size_t first, std::size_t end,
                                FrameBuffer* frame) {
  const std::vector<Plane>& planes = image_.planes();
  std::uint8_t* out =
      frame->bytes.data() + config_.header_size + PixelBytes(image_.format(), first);
  std::span<const std::int16_t> samples[3];
  for (std::uint32_t p = 0; p < planes.size(); ++p) {
    samples[p] = std::span(planes[p].mean).subspan(first, end - first);
    if (!config_.noise) continue;
    const std::int16_t* noise = noise_.Stretch(number, p, first / NoiseSource::kLongestStretch);
    const std::int16_t* strength = planes[p].noise.data() + first;
    if (IsEightBit(image_.format())) return AddNoise8(samples[p], strength, noise, out);
    AddNoise(samples[p], strength, noise, stretch_[p].data());
    samples[p] = std::span(stretch_[p]).first(end - first);
  }
  if (planes.size() == 1) {
    PackSamples(image_.format(), samples[0], out);
  } else {
    PackColours(image_.format(), samples[0], samples[1], samples[2], out);
  }
}

}  // namespace vexa::simulator

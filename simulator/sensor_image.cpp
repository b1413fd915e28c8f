#include "simulator/sensor_image.hpp"

#include <algorithm>

#include "simulator/lens.hpp"
#include "simulator/noise.hpp"
#include "simulator/pixel_format.hpp"

namespace vexa::simulator {

SensorImage::SensorImage(const CameraConfig& config)
    : config_(config), overlay_(SensorSizeOf(config)) {}

bool SensorImage::HasColourFrames() const { return !IsOneSample(settings_.transfer_format); }

bool SensorImage::Configure(const ImageSettings& settings) {
  if (configured_ && settings == settings_) return false;
  ImageSettings same_light = settings;
  same_light.tone = settings_.tone;
  same_light.transfer_format = settings_.transfer_format;
  const bool colour_frames = HasColourFrames();
  const bool new_light = !configured_ || same_light != settings_ ||
                         colour_frames == IsOneSample(settings.transfer_format);
  const bool new_tone = !configured_ || settings.tone != settings_.tone;
  settings_ = settings;
  configured_ = true;
  placements_ = {};
  if (new_light) ExposeScene();
  if (new_tone) response_.Compute(settings_.tone, config_.illuminant);
  Develop();
  return true;
}

std::size_t SensorImage::CurveOf(std::size_t plane, std::uint32_t sensor_x,
                                 std::uint32_t sensor_y) const {
  if (HasColourFrames()) {
    constexpr Filter kFilterOfColour[] = {Filter::kRed, Filter::kGreenRed, Filter::kBlue};
    return static_cast<std::size_t>(kFilterOfColour[std::min<std::size_t>(plane, 2)]);
  }
  if (config_.colour_array == 1) return 1;
  return static_cast<std::size_t>(FilterAt(config_.colour_array, sensor_x, sensor_y));
}

std::uint16_t SensorImage::DriveOf(const Light& light, std::size_t curve) const {
  if (config_.colour_array == 1) return Luminance(light);
  if (curve == static_cast<std::size_t>(Filter::kRed)) return light.red;
  return curve == static_cast<std::size_t>(Filter::kBlue) ? light.blue : light.green;
}

void SensorImage::ExposeScene() {
  sampling_ = Sampling(settings_.geometry);
  frame_colour_array_ =
      ColourArrayFrom(config_.colour_array, sampling_.columns[0], sampling_.rows[0]);
  planes_.resize(HasColourFrames() ? 3 : 1);
  const std::size_t pixels = std::size_t{width()} * height();
  for (Plane& plane : planes_) {
    plane.drive.resize(pixels);
    plane.mean.resize(pixels);
    plane.noise.resize(pixels);
  }
  Lens lens(settings_.geometry.sensor, settings_.scene, sampling_.columns.Lowest(),
            sampling_.columns.Span());
  std::vector<std::uint32_t> sums(width() * planes_.size());
  for (std::size_t y = 0; y < height(); ++y) ExposeRow(y, &lens, &sums);
  AddDefects();
  CorrectDefects();
}

void SensorImage::ExposeRow(std::size_t y, Lens* lens, std::vector<std::uint32_t>* sums) {
  const AxisMap& columns = sampling_.columns;
  const std::uint32_t left = columns.Lowest();
  std::ranges::fill(*sums, 0u);
  for (std::uint32_t k = 0; k < sampling_.rows.bin(); ++k) {
    const std::uint32_t sensor_y = sampling_.rows.Binned(y, k);
    const std::span<const Light> lights = lens->Row(sensor_y);
    for (std::size_t p = 0; p < planes_.size(); ++p) {
      std::uint32_t* sum = sums->data() + p * width();
      for (std::size_t x = 0; x < width(); ++x) {
        const std::size_t curve = CurveOf(p, columns[x], sensor_y);
        for (std::uint32_t j = 0; j < columns.bin(); ++j) {
          sum[x] += DriveOf(lights[columns.Binned(x, j) - left], curve);
        }
      }
    }
  }
  const std::uint32_t pixels = std::max(columns.bin() * sampling_.rows.bin(), 1u);
  for (std::size_t p = 0; p < planes_.size(); ++p) {
    for (std::size_t x = 0; x < width(); ++x) {
      planes_[p].drive[y * width() + x] =
          static_cast<std::uint16_t>((*sums)[p * width() + x] / pixels);
    }
  }
}

void SensorImage::AddDefects() {
  const SensorSize size = settings_.geometry.sensor;
  for (unsigned i = 0; i < config_.defect_pixels; ++i) {
    const std::uint64_t place = Mix(config_.seed * 0x10001 + i);
    const auto x = static_cast<int>((place & 0xFFFFFFFF) % size.width);
    const auto y = static_cast<int>((place >> 32) % size.height);
    const AxisMap::Range columns = sampling_.columns.LinesIn(x, x + 1);
    const AxisMap::Range rows = sampling_.rows.LinesIn(y, y + 1);
    if (columns.first == columns.end || rows.first == rows.end) continue;
    // Bright and dead ones by turns. The bright ones shine in the dark, too, where they can be
    // found.
    const std::uint16_t drive = i % 2 == 0 ? kStuckDrive : 0;
    for (Plane& plane : planes_) plane.drive[rows.first * width() + columns.first] = drive;
  }
}

void SensorImage::CorrectDefects() {
  // The mean of the neighbours of the same filter to the left and right.
  const std::size_t step = config_.colour_array == 1 || HasColourFrames() ? 1 : 2;
  for (const PixelPosition& defect : settings_.corrected_defects) {
    const std::size_t x = defect.x;
    if (x >= width() || defect.y >= height()) continue;
    for (Plane& plane : planes_) {
      std::uint16_t* row = plane.drive.data() + std::size_t{defect.y} * width();
      const std::size_t left = x >= step ? x - step : x + step;
      const std::size_t right = x + step < width() ? x + step : left;
      if (left >= width()) continue;
      row[x] = static_cast<std::uint16_t>((row[left] + row[right]) / 2);
    }
  }
}

void SensorImage::Develop() {
  for (std::size_t y = 0; y < height(); ++y) DevelopRow(y, 0, width());
}

void SensorImage::DevelopRow(std::size_t y, std::size_t first, std::size_t end) {
  const std::uint32_t sensor_y = sampling_.rows[y];
  for (std::size_t p = 0; p < planes_.size(); ++p) {
    Plane& plane = planes_[p];
    // The filters of a row alternate.
    const std::size_t next = std::min(first + 1, std::size_t{width()} - 1);
    const Response::Curve* curves[] = {&response_[CurveOf(p, sampling_.columns[first], sensor_y)],
                                       &response_[CurveOf(p, sampling_.columns[next], sensor_y)]};
    const std::size_t row = y * width();
    for (std::size_t x = first; x < end; ++x) {
      const Sample sample = (*curves[(x - first) & 1])[plane.drive[row + x]];
      plane.mean[row + x] = sample.mean;
      plane.noise[row + x] = sample.noise;
    }
  }
}

SensorImage::Area SensorImage::AreaOf(const Placement& placement) const {
  if (placement.sprite < 0) return {};
  const Sprite& sprite = overlay_.Part(placement.sprite);
  return {sampling_.columns.LinesIn(placement.x, placement.x + sprite.width),
          sampling_.rows.LinesIn(placement.y, placement.y + sprite.height)};
}

void SensorImage::MoveTo(std::uint32_t frame_number) {
  if (!config_.moving_parts) return;
  const Overlay::Placements next = overlay_.At(frame_number);
  for (std::size_t i = 0; i < next.size(); ++i) {
    if (next[i] == placements_[i]) continue;
    const Area old = AreaOf(placements_[i]);
    if (old.columns.first < old.columns.end) {
      for (std::size_t y = old.rows.first; y < old.rows.end; ++y) {
        DevelopRow(y, old.columns.first, old.columns.end);
      }
    }
    DrawPart(next[i]);
  }
  placements_ = next;
}

void SensorImage::DrawPart(const Placement& placement) {
  const Sprite& sprite = overlay_.Part(placement.sprite);
  const Area area = AreaOf(placement);
  for (std::size_t y = area.rows.first; y < area.rows.end; ++y) {
    const std::uint32_t sensor_y = sampling_.rows[y];
    const auto sprite_row = static_cast<std::size_t>(static_cast<int>(sensor_y) - placement.y) *
                            static_cast<std::size_t>(sprite.width);
    for (std::size_t x = area.columns.first; x < area.columns.end; ++x) {
      const std::uint32_t sensor_x = sampling_.columns[x];
      const std::size_t dot =
          sprite_row + static_cast<std::size_t>(static_cast<int>(sensor_x) - placement.x);
      const std::uint32_t coverage = sprite.coverage[dot];
      if (coverage == 0) continue;
      const std::size_t pixel = y * width() + x;
      for (std::size_t p = 0; p < planes_.size(); ++p) {
        const std::size_t curve = CurveOf(p, sensor_x, sensor_y);
        const std::uint32_t drive = (planes_[p].drive[pixel] * (256 - coverage) +
                                     DriveOf(sprite.light[dot], curve) * coverage) >>
                                    8;
        const Sample sample = response_[curve][drive];
        planes_[p].mean[pixel] = sample.mean;
        planes_[p].noise[pixel] = sample.noise;
      }
    }
  }
}

}  // namespace vexa::simulator

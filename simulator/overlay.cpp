#include "simulator/overlay.hpp"

#include <algorithm>
#include <cmath>
#include <string_view>

namespace vexa::simulator {
namespace {

constexpr int kBall = 10;
constexpr int kGlyphWidth = 5;
constexpr int kGlyphHeight = 7;

constexpr std::array<std::string_view, 10> kGlyphs{
    ".###."
    "#...#"
    "#..##"
    "#.#.#"
    "##..#"
    "#...#"
    ".###.",
    "..#.."
    ".##.."
    "..#.."
    "..#.."
    "..#.."
    "..#.."
    ".###.",
    ".###."
    "#...#"
    "....#"
    "...#."
    "..#.."
    ".#..."
    "#####",
    ".###."
    "#...#"
    "....#"
    "..##."
    "....#"
    "#...#"
    ".###.",
    "...#."
    "..##."
    ".#.#."
    "#..#."
    "#####"
    "...#."
    "...#.",
    "#####"
    "#...."
    "####."
    "....#"
    "....#"
    "#...#"
    ".###.",
    "..##."
    ".#..."
    "#...."
    "####."
    "#...#"
    "#...#"
    ".###.",
    "#####"
    "....#"
    "...#."
    "..#.."
    ".#..."
    ".#..."
    ".#...",
    ".###."
    "#...#"
    "#...#"
    ".###."
    "#...#"
    "#...#"
    ".###.",
    ".###."
    "#...#"
    "#...#"
    ".####"
    "....#"
    "...#."
    ".##.."};

// Pixels per glyph dot: six digits with gaps of one dot, and a margin, fill the plate.
int DotSize(const Box& plate) {
  const int columns = static_cast<int>(Overlay::kDigits) * (kGlyphWidth + 1) + 3;
  return std::max(std::min(plate.width() / columns, plate.height() / (kGlyphHeight + 2)), 1);
}

Sprite MakeDigit(std::size_t digit, int dot) {
  Sprite sprite;
  sprite.width = kGlyphWidth * dot;
  sprite.height = kGlyphHeight * dot;
  const Light amber = DisplayColour(255, 196, 84);
  for (int y = 0; y < sprite.height; ++y) {
    for (int x = 0; x < sprite.width; ++x) {
      const int place = y / dot * kGlyphWidth + x / dot;
      sprite.light.push_back(amber);
      sprite.coverage.push_back(kGlyphs[digit][static_cast<std::size_t>(place)] == '#' ? 256 : 0);
    }
  }
  return sprite;
}

// A glossy red ball, lit from the upper left.
Sprite MakeBall(int diameter) {
  Sprite sprite;
  sprite.width = sprite.height = diameter;
  const double radius = diameter / 2.0;
  for (int y = 0; y < diameter; ++y) {
    for (int x = 0; x < diameter; ++x) {
      const double u = (x + 0.5 - radius) / radius;
      const double v = (y + 0.5 - radius) / radius;
      const double distance = std::hypot(u, v);
      const double depth = std::sqrt(std::max(1 - distance * distance, 0.0));
      const double facing = std::max(-0.45 * u - 0.6 * v + 0.66 * depth, 0.0);
      const double shine = 190 * std::pow(facing, 24);
      const double body = 0.22 + 0.78 * facing;
      sprite.light.push_back(
          DisplayColour(222 * body + shine, 52 * body + shine, 40 * body + shine));
      const double inside = std::clamp((1 - distance) * radius + 0.5, 0.0, 1.0);
      sprite.coverage.push_back(static_cast<std::uint16_t>(std::lround(256 * inside)));
    }
  }
  return sprite;
}

// To and fro between 0 and range, one pixel unit of `step` per frame.
int Swing(std::uint32_t frame, int step, int range) {
  if (range <= 0) return 0;
  const std::uint64_t turn = std::uint64_t{2} * static_cast<unsigned>(range);
  const auto place = static_cast<int>(std::uint64_t{frame} * static_cast<unsigned>(step) % turn);
  return place <= range ? place : 2 * range - place;
}

}  // namespace

Overlay::Overlay(SensorSize size) : layout_(size) {
  const int dot = DotSize(layout_.counter);
  for (std::size_t digit = 0; digit < 10; ++digit) sprites_.push_back(MakeDigit(digit, dot));
  sprites_.push_back(MakeBall(std::max(layout_.lane.height() * 2 / 5, 2)));
}

Overlay::Placements Overlay::At(std::uint32_t frame_number) const {
  Placements placements;
  const Box& plate = layout_.counter;
  const int dot = DotSize(plate);
  const int pitch = (kGlyphWidth + 1) * dot;
  const int digits = static_cast<int>(kDigits);
  const int left = plate.left + (plate.width() - digits * pitch + dot) / 2;
  const int top = plate.top + (plate.height() - kGlyphHeight * dot) / 2;
  std::uint32_t rest = frame_number;
  for (int i = digits - 1; i >= 0; --i) {
    placements[static_cast<std::size_t>(i)] = {static_cast<int>(rest % 10), left + i * pitch, top};
    rest /= 10;
  }
  const Box& lane = layout_.lane;
  const int size = Part(kBall).width;
  const int floor = lane.bottom - std::max(lane.height() / 12, 1) - size;
  const int rise = std::max(floor - lane.top - 1, 0);
  // The lane takes some 240 frames one way, a bounce 40.
  const int x =
      lane.left + Swing(frame_number, std::max(lane.width() / 240, 1), lane.width() - size);
  const double phase = (frame_number % 40) / 20.0 - 1;
  placements[kDigits] = {kBall, x, floor - static_cast<int>(rise * 0.95 * (1 - phase * phase))};
  return placements;
}

}  // namespace vexa::simulator

// The built-in scene: a test chart that shows at a glance whether colours, geometry, focus and
// gradation are right.
#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "simulator/scene.hpp"

namespace vexa::simulator {
namespace {

struct Srgb {
  double red;
  double green;
  double blue;
};

// Published sRGB values of the usual 24-patch colour chart, row by row.
constexpr std::array<Srgb, 24> kPatches{{
    {115, 82, 68},   {194, 150, 130}, {98, 122, 157}, {87, 108, 67},   {133, 128, 177},
    {103, 189, 170}, {214, 126, 44},  {80, 91, 166},  {193, 90, 99},   {94, 60, 108},
    {157, 188, 64},  {224, 163, 46},  {56, 61, 150},  {70, 148, 73},   {175, 54, 60},
    {231, 199, 31},  {187, 86, 149},  {8, 133, 161},  {243, 243, 242}, {200, 200, 200},
    {160, 160, 160}, {122, 122, 121}, {85, 85, 85},   {52, 52, 52},
}};
constexpr int kChartColumns = 6;
constexpr int kChartRows = 4;

constexpr Srgb kPaper{236, 236, 232};
constexpr Srgb kInk{24, 24, 26};
constexpr int kSpokes = 36;

Light Mix(const Srgb& from, const Srgb& to, double share) {
  const auto mix = [share](double a, double b) { return a + (b - a) * share; };
  return DisplayColour(mix(from.red, to.red), mix(from.green, to.green), mix(from.blue, to.blue));
}

Light Colour(const Srgb& colour) { return DisplayColour(colour.red, colour.green, colour.blue); }

// The part of a row that lies in a box: calls paint(x, light) for each of its pixels.
template <typename Paint>
void InBox(const Box& box, int x, int y, std::span<Light> row, Paint paint) {
  if (y < box.top || y >= box.bottom) return;
  const int first = std::max(x, box.left);
  const int end = std::min(x + static_cast<int>(row.size()), box.right);
  for (int i = first; i < end; ++i) paint(i, row[static_cast<std::size_t>(i - x)]);
}

// A grey wall, lit from above.
void PaintWall(const SceneLayout& layout, int x, int y, std::span<Light> row) {
  const double height = std::max(layout.whole.height(), 1);
  const Light wall = Mix({104, 107, 112}, {62, 64, 70}, y / height);
  std::ranges::fill(row, wall);
  // A one-pixel frame shows where the sensor ends.
  const bool edge_row = y == 0 || y == layout.whole.bottom - 1;
  InBox(layout.whole, x, y, row, [&](int i, Light& light) {
    if (edge_row || i == 0 || i == layout.whole.right - 1) light = Colour({220, 220, 220});
  });
}

void PaintChart(const Box& box, int x, int y, std::span<Light> row) {
  if (y < box.top || y >= box.bottom) return;
  const double cell_width = box.width() / (kChartColumns + 0.2);
  const double cell_height = box.height() / (kChartRows + 0.2);
  // Gaps of the same width both ways, half of them as margin.
  const double gap = 0.1 * std::min(cell_width, cell_height);
  const double v = y - box.top - 0.1 * cell_height;
  const int line = static_cast<int>(std::floor(v / cell_height));
  const double in_line = v - line * cell_height;
  const bool between =
      line < 0 || line >= kChartRows || in_line < gap || in_line >= cell_height - gap;
  InBox(box, x, y, row, [&](int i, Light& light) {
    light = Colour({30, 30, 31});
    const double u = i - box.left - 0.1 * cell_width;
    const int column = static_cast<int>(std::floor(u / cell_width));
    const double in_column = u - column * cell_width;
    if (between || column < 0 || column >= kChartColumns || in_column < gap ||
        in_column >= cell_width - gap) {
      return;
    }
    const int patch = line * kChartColumns + column;
    light = Colour(kPatches[static_cast<std::size_t>(patch)]);
  });
}

void PaintStar(const Box& box, int x, int y, std::span<Light> row) {
  const double centre_x = (box.left + box.right - 1) / 2.0;
  const double centre_y = (box.top + box.bottom - 1) / 2.0;
  const double radius = 0.46 * std::min(box.width(), box.height());
  const Light paper = Colour(kPaper);
  InBox(box, x, y, row, [&](int i, Light& light) {
    light = paper;
    const double dx = i - centre_x;
    const double dy = y - centre_y;
    const double distance = std::hypot(dx, dy);
    if (distance > radius + 1) return;
    // Edges one pixel wide: the phase of the spokes, scaled to pixels across the edge; towards the
    // centre the pattern fades to grey where it is finer than the pixels.
    const double phase = std::sin(std::atan2(dy, dx) * kSpokes);
    const double edge = phase * distance / kSpokes * 2;
    const double rim = std::clamp(radius + 0.5 - distance, 0.0, 1.0);
    light = Mix(kPaper, kInk, rim * std::clamp(0.5 + edge * 0.5, 0.0, 1.0));
  });
}

// Blocks of upright and level lines, from one pixel per line to eight.
void PaintLinePairs(const Box& box, int x, int y, std::span<Light> row) {
  constexpr std::array<int, 5> kLineWidths{1, 2, 3, 5, 8};
  const int blocks = static_cast<int>(kLineWidths.size());
  const int block_width = std::max(box.width() / blocks, 1);
  const int margin = std::max(block_width / 12, 1);
  const int half = box.height() / 2;
  const int v = y - box.top;
  const Light paper = Colour(kPaper);
  const Light ink = Colour(kInk);
  InBox(box, x, y, row, [&](int i, Light& light) {
    light = paper;
    const int u = i - box.left;
    const int block = u / block_width;
    const int in_block = u % block_width;
    const int in_half = v % std::max(half, 1);
    if (block >= blocks || in_block < margin || in_block >= block_width - margin ||
        in_half < margin || in_half >= half - margin || v >= 2 * half) {
      return;
    }
    const int width = kLineWidths[static_cast<std::size_t>(block)];
    const int across = v < half ? in_block - margin : in_half - margin;
    if (across / width % 2 == 0) light = ink;
  });
}

Srgb Hue(double turn) {
  const auto channel = [turn](double offset) {
    const double wave = std::cos((turn - offset) * 2 * std::numbers::pi);
    return 255 * std::clamp(0.5 + wave * 0.62, 0.02, 0.95);
  };
  return {channel(0), channel(1.0 / 3), channel(2.0 / 3)};
}

void PaintRamps(const SceneLayout& layout, int x, int y, std::span<Light> row) {
  const Box& grey = layout.grey_ramp;
  InBox(grey, x, y, row, [&](int i, Light& light) {
    const double share = (i - grey.left + 0.5) / grey.width();
    // Smooth above, eleven steps below.
    const bool steps = y >= (grey.top + grey.bottom) / 2;
    const double level = steps ? std::floor(share * 11) / 10 : share;
    light = Mix({0, 0, 0}, {250, 250, 250}, level);
  });
  const Box& hue = layout.hue_ramp;
  InBox(hue, x, y, row,
        [&](int i, Light& light) { light = Colour(Hue((i - hue.left + 0.5) / hue.width())); });
}

void PaintPlates(const SceneLayout& layout, int x, int y, std::span<Light> row) {
  const Box& lane = layout.lane;
  const double depth = lane.height() == 0 ? 0 : double{1} * (y - lane.top) / lane.height();
  const Light back = Mix({34, 44, 62}, {62, 78, 104}, depth);
  const Light floor = Colour({116, 104, 88});
  const int floor_top = lane.bottom - std::max(lane.height() / 12, 1);
  InBox(lane, x, y, row, [&](int, Light& light) { light = y < floor_top ? back : floor; });
  const Light plate = Colour({18, 20, 22});
  InBox(layout.counter, x, y, row, [&](int, Light& light) { light = plate; });
}

}  // namespace

void PaintBuiltInRow(const SceneLayout& layout, int x, int y, std::span<Light> row) {
  PaintWall(layout, x, y, row);
  PaintChart(layout.chart, x, y, row);
  PaintStar(layout.star, x, y, row);
  PaintLinePairs(layout.line_pairs, x, y, row);
  PaintRamps(layout, x, y, row);
  PaintPlates(layout, x, y, row);
}

}  // namespace vexa::simulator

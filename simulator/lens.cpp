#include "simulator/lens.hpp"

#include <algorithm>
#include <utility>

namespace vexa::simulator {
namespace {

// A quarter of the contrast is left at one pixel per line.
constexpr std::uint32_t kSide = 3;
constexpr std::uint32_t kCentre = 10;

template <typename Channel>
std::uint16_t Blur(const Light* const (&rows)[3], std::size_t left, std::size_t middle,
                   std::size_t right, Channel channel) {
  const auto across = [&](const Light* row) {
    return kSide * (channel(row[left]) + channel(row[right])) + kCentre * channel(row[middle]);
  };
  const std::uint32_t sum = kSide * (across(rows[0]) + across(rows[2])) + kCentre * across(rows[1]);
  return static_cast<std::uint16_t>((sum + 128) >> 8);
}

}  // namespace

Lens::Lens(SensorSize size, const std::shared_ptr<const Picture>& picture, std::uint32_t left,
           std::uint32_t columns)
    : size_(size), scene_(size, picture), blurs_(picture == nullptr), left_(left), row_(columns) {
  for (CachedRow& cached : cache_) cached.lights.resize(columns);
}

const std::vector<Light>& Lens::SharpRow(std::uint32_t y) {
  CachedRow& cached = cache_[y % cache_.size()];
  if (cached.y != y) {
    scene_.PaintRow(left_, y, cached.lights);
    cached.y = y;
  }
  return cached.lights;
}

std::span<const Light> Lens::Row(std::uint32_t y) {
  if (!blurs_) return SharpRow(y);
  const Light* const rows[3] = {SharpRow(y > 0 ? y - 1 : 0).data(), SharpRow(y).data(),
                                SharpRow(std::min(y + 1, size_.height - 1)).data()};
  for (std::size_t x = 0; x < row_.size(); ++x) {
    const std::size_t left = x > 0 ? x - 1 : x;
    const std::size_t right = std::min(x + 1, row_.size() - 1);
    const auto blur = [&](auto channel) {
      return Blur(rows, left, x, right,
                  [&](const Light& light) { return std::uint32_t{light.*channel}; });
    };
    row_[x] = {blur(&Light::red), blur(&Light::green), blur(&Light::blue)};
  }
  return row_;
}

}  // namespace vexa::simulator

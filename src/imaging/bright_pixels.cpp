#include "imaging/bright_pixels.hpp"

#include <algorithm>
#include <cstring>

namespace vexa::imaging {
namespace {

constexpr int kWhite = 255;

// Eight samples at once.
constexpr std::uint32_t kWord = sizeof(std::uint64_t);
constexpr std::uint64_t kEach = 0x0101010101010101;
constexpr std::uint64_t kHighBits = 0x80 * kEach;

// Whether any of eight samples is above a bound (0 to 254). Each sample, plus what the bound lacks
// to the middle, carries into its byte's high bit; samples above the middle have it already.
bool AnyAbove(const std::uint8_t* samples, int bound) {
  std::uint64_t word = 0;
  std::memcpy(&word, samples, kWord);
  if (bound < 128) {
    const std::uint64_t lack = static_cast<std::uint64_t>(127 - bound) * kEach;
    return (((word + lack) | word) & kHighBits) != 0;
  }
  const std::uint64_t lack = static_cast<std::uint64_t>(255 - bound) * kEach;
  return (((word & ~kHighBits) + lack) & word & kHighBits) != 0;
}

class Candidates {
 public:
  Candidates(std::uint16_t threshold, std::size_t capacity)
      : capacity_(capacity), bound_(threshold - 1) {
    pixels_.reserve(capacity);
  }

  /// Candidates are the pixels with a level above this.
  int bound() const { return bound_; }

  void Add(const BrightPixel& pixel) {
    const auto darker = [](const BrightPixel& a, const BrightPixel& b) {
      return a.level < b.level;
    };
    if (pixels_.size() == capacity_) {
      pixels_.erase(std::min_element(pixels_.begin(), pixels_.end(), darker));
    }
    pixels_.push_back(pixel);
    if (pixels_.size() == capacity_) {
      bound_ = std::min_element(pixels_.begin(), pixels_.end(), darker)->level;
    }
  }

  std::vector<BrightPixel> Take() { return std::move(pixels_); }

 private:
  std::size_t capacity_;
  int bound_;
  std::vector<BrightPixel> pixels_;
};

// Adds those of a row's pixels [first, end) that are bright enough.
void Collect(const std::uint8_t* row, std::uint32_t y, std::uint32_t first, std::uint32_t end,
             Candidates& candidates) {
  for (std::uint32_t x = first; x < end; ++x) {
    if (row[x] > candidates.bound()) {
      candidates.Add({.x = x, .y = y, .level = row[x]});
    }
  }
}

}  // namespace

std::vector<BrightPixel> FindBrightPixels(std::uint32_t width, std::uint32_t height,
                                          const std::uint8_t* frame, std::uint16_t threshold,
                                          std::size_t capacity) {
  Candidates candidates(threshold, capacity);
  if (capacity == 0) {
    return {};
  }
  const std::uint32_t words_end = width - width % kWord;
  for (std::uint32_t y = 0; y < height && candidates.bound() < kWhite; ++y) {
    const std::uint8_t* row = frame + std::size_t{y} * width;
    for (std::uint32_t x = 0; x < words_end && candidates.bound() < kWhite; x += kWord) {
      if (candidates.bound() < 0 || AnyAbove(row + x, candidates.bound())) {
        Collect(row, y, x, x + kWord, candidates);
      }
    }
    Collect(row, y, words_end, width, candidates);
  }
  return candidates.Take();
}

}  // namespace vexa::imaging

/// \file
/// Frames for the filters: what they show, and a buffer that notices stray writes.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

namespace vexa::test {

using Bytes = std::vector<std::uint8_t>;

/// Kind 0 is noise over all values; 1 black and white alone; 2 a ramp with impulses, where filters
/// find little to do; 3 bright noise around saturation.
inline Bytes MakeFrame(std::size_t n, unsigned kind) {
  std::mt19937 random(kind);
  Bytes frame(n);
  for (std::size_t i = 0; i < n; ++i) {
    const auto value = static_cast<std::uint8_t>(random() >> 8);
    const auto ramp = static_cast<std::uint8_t>(value < 8 ? value * 32 : i % 61 + 60);
    const std::uint8_t kinds[] = {value, static_cast<std::uint8_t>(value < 128 ? 0 : 255), ramp,
                                  static_cast<std::uint8_t>(248 | value)};
    frame[i] = kinds[kind % 4];
  }
  return frame;
}

/// A frame at an odd address between guard bytes.
class GuardedFrame {
 public:
  GuardedFrame(const Bytes& frame, std::size_t shift)
      : before_(kGuard + shift), size_(frame.size()) {
    bytes_ = Bytes(before_, kMark);
    bytes_.insert(bytes_.end(), frame.begin(), frame.end());
    bytes_.resize(bytes_.size() + kGuard, kMark);
  }
  std::uint8_t* data() { return bytes_.data() + before_; }
  Bytes Contents() const {
    const auto begin = bytes_.begin() + static_cast<std::ptrdiff_t>(before_);
    return {begin, begin + static_cast<std::ptrdiff_t>(size_)};
  }
  bool Intact() const {
    const auto size = static_cast<std::ptrdiff_t>(size_);
    const auto before = static_cast<std::ptrdiff_t>(before_);
    const auto marked = [](std::uint8_t byte) { return byte == kMark; };
    return std::all_of(bytes_.begin(), bytes_.begin() + before, marked) &&
           std::all_of(bytes_.begin() + before + size, bytes_.end(), marked);
  }

 private:
  static constexpr std::size_t kGuard = 40;
  static constexpr std::uint8_t kMark = 0xA5;
  std::size_t before_;
  std::size_t size_;
  Bytes bytes_;
};

/// Calls check(width, height) for all sizes up to 67 x 35.
template <class Check>
void ForAllSizes(Check check) {
  for (int height = 1; height <= 35; ++height) {
    for (int width = 1; width <= 67; ++width) {
      check(width, height);
      if (::testing::Test::HasFatalFailure()) {
        return;
      }
    }
  }
}

}  // namespace vexa::test

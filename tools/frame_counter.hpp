/** Lost frames from the numbers of the frames that came. */
#pragma once

#include <cstdint>
#include <optional>

namespace vexa::tool {

/** Counts the gaps in a camera's frame numbers, which wrap at 2^32. */
class FrameCounter {
 public:
  /** Takes the number of the next frame. @return whether it directly follows the one before. */
  bool Add(std::uint32_t number) {
    const std::uint32_t step = previous_ ? number - *previous_ : 0;  // modulo 2^32
    const bool first = !previous_;
    previous_ = number;
    if (first || step == 1) {
      return !first;
    }
    if (step >= 2 && step < kBackwards) {
      lost_ += step - 1;
    } else {
      ++restarts_;
    }
    return false;
  }

  /** Frames that are missing between those that came. */
  std::uint64_t lost() const { return lost_; }

  /** How often a number repeated or went back, as after a reset of the camera's counter. */
  std::uint64_t restarts() const { return restarts_; }

 private:
  /** A step of half the number range and more is one backwards. */
  static constexpr std::uint32_t kBackwards = 0x80000000u;

  std::optional<std::uint32_t> previous_;
  std::uint64_t lost_ = 0;
  std::uint64_t restarts_ = 0;
};

}  // namespace vexa::tool

/// \file
/// Sharpening in vectors; see vector_frames.hpp.
#pragma once

#include <cstddef>
#include <cstdint>

#include "imaging/kernels/frame_kernels.hpp"

namespace vexa::imaging {

template <class V>
struct VectorSharpness {
  using Vector = typename V::Vector;
  static constexpr std::size_t kWidth = V::kWidth;

  static void RowSums(const Sample* row, std::uint16_t* sums, std::size_t n) {
    constexpr std::size_t kWords = kWidth / 2;
    if (n < kWords) {
      return V::Smaller().row_sums(row, sums, n);
    }
    const auto step = [=](std::size_t i) {
      V::Store(sums + i, V::AddWords(V::AddWords(V::Widen(row + i), V::Widen(row + i + 1)),
                                     V::Widen(row + i + 2)));
    };
    for (std::size_t i = 0; i + kWords < n; i += kWords) {
      step(i);
    }
    step(n - kWords);
  }

  static void Mono(const Neighbourhood& at, Sample* pixels, std::size_t n) {
    ForAllPixels(at, pixels, n, V::Smaller().sharpen_mono, [=](std::size_t i, Steps steps) {
      V::Store(pixels + i, Move(V::Load(pixels + i), steps));
    });
  }

  template <std::size_t kStep>
  static void Bgr(const Neighbourhood& at, Sample* pixels, std::size_t n) {
    const auto smaller = kStep == 3 ? V::Smaller().sharpen_bgr24 : V::Smaller().sharpen_bgr32;
    if constexpr (V::kShuffles) {
      ForAllPixels(at, pixels, n, smaller,
                   [=](std::size_t i, Steps steps) { MoveBgr<kStep>(pixels + kStep * i, steps); });
    } else {
      smaller(at, pixels, n);
    }
  }

  template <std::size_t kStep>
  static void Luma(const Sample* pixels, Sample* luma, std::size_t n) {
    const auto smaller = kStep == 3 ? V::Smaller().luma_bgr24 : V::Smaller().luma_bgr32;
    if constexpr (V::kShuffles) {
      if (n >= kWidth) {
        for (std::size_t i = 0; i + kWidth < n; i += kWidth) {
          V::Store(luma + i, LumaOf<kStep>(pixels + kStep * i));
        }
        V::Store(luma + n - kWidth, LumaOf<kStep>(pixels + kStep * (n - kWidth)));
        return;
      }
    }
    smaller(pixels, luma, n);
  }

 private:
  /// How far pixels go up or down; one of the two is 0.
  struct Steps {
    Vector up;
    Vector down;
  };

  static Vector Move(Vector pixels, Steps steps) {
    return V::SubClamped(V::AddClamped(pixels, steps.up), steps.down);
  }

  template <std::size_t kStep>
  static void MoveBgr(Sample* low, Steps steps) {
    Sample* const high = low + kStep * 16;
    for (std::size_t k = 0; k < kStep; ++k) {
      const Vector order = V::LoadTwice(kSpread<kStep>.order[k]);
      const Vector moved = Move(V::LoadPair(low + 16 * k, high + 16 * k),
                                {V::Shuffle(steps.up, order), V::Shuffle(steps.down, order)});
      V::StorePair(low + 16 * k, high + 16 * k, moved);
    }
  }

  /// Means of the eight neighbours of kWidth / 2 pixels from i on, in words.
  [[gnu::always_inline]] static Vector Means(const Neighbourhood& at, std::size_t i) {
    const Vector beside = V::AddWords(V::Load(at.sums[0] + i), V::Load(at.sums[2] + i));
    const Vector here = V::SubWords(V::Load(at.sums[1] + i), V::Widen(at.luma + i));
    return V::template ShiftWordsRight<3>(V::AddWords(V::AddWords(beside, here), V::Words(4)));
  }

  [[gnu::always_inline]] static Steps StepsOf(const Neighbourhood& at, std::size_t i) {
    const Vector mean = V::Narrow(Means(at, i), Means(at, i + kWidth / 2));
    const Vector level = V::Load(at.luma + i);
    const Vector above = V::SubClamped(level, mean);
    const Vector below = V::SubClamped(mean, level);
    const Vector steps = V::LookUp(at.boost, V::Or(above, below));
    const Vector is_up = V::Equal(below, V::Zero());
    return {V::And(steps, is_up), V::AndNot(is_up, steps)};
  }

  /// Calls move(i, steps) for whole vectors of pixels. The last one is pushed back over pixels that
  /// have moved already, and there has steps of 0.
  template <class Rest, class MovePixels>
  static void ForAllPixels(const Neighbourhood& neighbourhood, Sample* pixels, std::size_t n,
                           Rest rest, MovePixels move) {
    if (n < kWidth) {
      return rest(neighbourhood, pixels, n);
    }
    // A copy, which no store of samples can change.
    const Neighbourhood at = neighbourhood;
    std::size_t i = 0;
    for (; i + kWidth <= n; i += kWidth) {
      move(i, StepsOf(at, i));
    }
    if (i < n) {
      const Vector is_new = V::Load(kLastLanes.mask + n - i);
      const Steps steps = StepsOf(at, n - kWidth);
      move(n - kWidth, Steps{V::And(steps.up, is_new), V::And(steps.down, is_new)});
    }
  }

  /// Loaded from entry k on: the last k lanes are set.
  struct LastLanes {
    Sample mask[2 * kWidth];
  };
  static constexpr LastLanes MakeLastLanes() {
    LastLanes lanes{};
    for (std::size_t i = kWidth; i < 2 * kWidth; ++i) {
      lanes.mask[i] = 0xFF;
    }
    return lanes;
  }
  static constexpr LastLanes kLastLanes = MakeLastLanes();

  /// Shuffles between one byte per pixel and kStep vectors of 16 / kStep pixels. 0x80 makes 0.
  struct Spread {
    Sample order[4][16];
  };
  template <std::size_t kStep>
  static constexpr Spread MakeSpread() {
    Spread spread{};
    for (std::size_t i = 0; i < 16 * kStep; ++i) {
      spread.order[i / 16][i % 16] = static_cast<Sample>(i % kStep < 3 ? i / kStep : 0x80);
    }
    return spread;
  }
  template <std::size_t kStep>
  static constexpr Spread kSpread = MakeSpread<kStep>();

  struct Gather {
    Sample order[3][4][16];  // of each channel, from each of kStep vectors
  };
  template <std::size_t kStep>
  static constexpr Gather MakeGather() {
    Gather gather{};
    for (std::size_t channel = 0; channel < 3; ++channel) {
      for (std::size_t lane = 0; lane < 16 * kStep; ++lane) {
        const std::size_t from = kStep * (lane % 16) + channel;
        const std::size_t vector = lane / 16;
        gather.order[channel][vector][lane % 16] =
            static_cast<Sample>(from / 16 == vector ? from % 16 : 0x80);
      }
    }
    return gather;
  }
  template <std::size_t kStep>
  static constexpr Gather kGather = MakeGather<kStep>();

  /// Luminance of kWidth pixels: of each channel the rounded share, of green what remains. The
  /// products round as the tables do, for all 256 values (32768 ths: 0.2989 and 0.1145).
  template <std::size_t kStep>
  static Vector LumaOf(const Sample* pixels) {
    Vector in[kStep];
    for (std::size_t k = 0; k < kStep; ++k) {
      in[k] = V::LoadPair(pixels + 16 * k, pixels + kStep * 16 + 16 * k);
    }
    const Vector blue = Channel<kStep>(in, 0);
    const Vector green = Channel<kStep>(in, 1);
    const Vector red = Channel<kStep>(in, 2);
    const Vector low_bytes = V::Words(0x00FF);
    const Vector even =
        LumaOfWords(V::And(blue, low_bytes), V::And(green, low_bytes), V::And(red, low_bytes));
    const Vector odd =
        LumaOfWords(V::template ShiftWordsRight<8>(blue), V::template ShiftWordsRight<8>(green),
                    V::template ShiftWordsRight<8>(red));
    return V::Or(even, V::template ShiftWordsLeft<8>(odd));
  }

  template <std::size_t kStep>
  static Vector Channel(const Vector (&in)[kStep], std::size_t channel) {
    Vector samples = V::Zero();
    for (std::size_t k = 0; k < kStep; ++k) {
      const Vector order = V::LoadTwice(kGather<kStep>.order[channel][k]);
      samples = V::Or(samples, V::Shuffle(in[k], order));
    }
    return samples;
  }

  static Vector LumaOfWords(Vector blue, Vector green, Vector red) {
    const Vector red_share = V::Words(9794);
    const Vector blue_share = V::Words(3752);
    const Vector more_red = V::SubWords(V::MultiplyHighRounded(red, red_share),
                                        V::MultiplyHighRounded(green, red_share));
    const Vector more_blue = V::SubWords(V::MultiplyHighRounded(blue, blue_share),
                                         V::MultiplyHighRounded(green, blue_share));
    return V::AddWords(green, V::AddWords(more_red, more_blue));
  }
};

}  // namespace vexa::imaging

// The plain version of every inner loop, by which the others are judged.
#include <algorithm>
#include <cstring>

#include "imaging/kernels/pixel_kernels.hpp"
#include "imaging/kernels/yuv_tables.hpp"
#include "imaging/luma.hpp"

namespace vexa::imaging {
namespace {

struct Pixel {
  std::uint8_t blue;
  std::uint8_t green;
  std::uint8_t red;
  std::uint8_t grey;  ///< the value in an 8-bit picture
};

std::uint8_t Clamped(int value) { return static_cast<std::uint8_t>(std::clamp(value, 0, 255)); }

Pixel FromYuv(std::uint8_t y, std::uint8_t u, std::uint8_t v) {
  return {.blue = Clamped(y + kYuvTables.blue_from_u[u]),
          .green = Clamped(y + kYuvTables.green_from_u[u] + kYuvTables.green_from_v[v]),
          .red = Clamped(y + kYuvTables.red_from_v[v]),
          .grey = y};
}

// Sources: how many pixels and bytes make a group, and pixel i of the group at p.

struct Grey8 {
  static constexpr std::size_t kPixels = 1;
  static constexpr std::size_t kBytes = 1;
  static Pixel At(const std::uint8_t* p, std::size_t) { return {p[0], p[0], p[0], p[0]}; }
};

struct Bgr24 {
  static constexpr std::size_t kPixels = 1;
  static constexpr std::size_t kBytes = 3;
  static Pixel At(const std::uint8_t* p, std::size_t) { return {p[0], p[1], p[2], p[1]}; }
};

/// The high 8 bits of each field of 10.
struct Bgr30 {
  static constexpr std::size_t kPixels = 1;
  static constexpr std::size_t kBytes = 4;
  static Pixel At(const std::uint8_t* p, std::size_t) {
    const std::uint32_t word = p[0] | p[1] << 8 | p[2] << 16 | std::uint32_t{p[3]} << 24;
    const auto green = static_cast<std::uint8_t>(word >> 12);
    return {static_cast<std::uint8_t>(word >> 2), green, static_cast<std::uint8_t>(word >> 22),
            green};
  }
};

struct Yuv411 {
  static constexpr std::size_t kPixels = 4;
  static constexpr std::size_t kBytes = 6;
  static Pixel At(const std::uint8_t* p, std::size_t i) {
    constexpr std::size_t kLuminance[] = {1, 2, 4, 5};
    return FromYuv(p[kLuminance[i]], p[0], p[3]);
  }
};

struct Yuv422 {
  static constexpr std::size_t kPixels = 2;
  static constexpr std::size_t kBytes = 4;
  static Pixel At(const std::uint8_t* p, std::size_t i) {
    return FromYuv(p[1 + 2 * i], p[0], p[2]);
  }
};

struct Yuv444 {
  static constexpr std::size_t kPixels = 1;
  static constexpr std::size_t kBytes = 3;
  static Pixel At(const std::uint8_t* p, std::size_t) { return FromYuv(p[1], p[0], p[2]); }
};

template <class Source, std::size_t kTargetBytes>
void Convert(const std::uint8_t* source, std::uint8_t* target, std::size_t n) {
  for (std::size_t i = 0; i < n; ++i) {
    const Pixel pixel =
        Source::At(source + i / Source::kPixels * Source::kBytes, i % Source::kPixels);
    std::uint8_t* out = target + i * kTargetBytes;
    if constexpr (kTargetBytes == 1) {
      out[0] = pixel.grey;
    } else {
      out[0] = pixel.blue;
      out[1] = pixel.green;
      out[2] = pixel.red;
    }
  }
}

template <std::size_t kBytes>
void Copy(const std::uint8_t* source, std::uint8_t* target, std::size_t n) {
  std::memcpy(target, source, n * kBytes);
}

void Narrow(const std::uint8_t* words, unsigned shift, std::uint8_t* target, std::size_t n) {
  for (std::size_t i = 0; i < n; ++i) {
    const unsigned word = words[2 * i] | unsigned{words[2 * i + 1]} << 8;
    target[i] = static_cast<std::uint8_t>(word >> shift);
  }
}

void LookUp(const std::uint8_t* table, std::uint8_t* samples, std::size_t n) {
  for (std::size_t i = 0; i < n; ++i) {
    samples[i] = table[samples[i]];
  }
}

void LookUpPairs(const std::uint8_t* even, const std::uint8_t* odd, std::uint8_t* samples,
                 std::size_t n) {
  for (std::size_t i = 0; i < n; i += 2) {
    samples[i] = even[samples[i]];
    samples[i + 1] = odd[samples[i + 1]];
  }
}

template <std::size_t kBytes>
void ShiftLuma(const std::uint8_t* table, std::uint8_t* pixels, std::size_t n) {
  for (std::size_t i = 0; i < n; ++i) {
    std::uint8_t* pixel = pixels + i * kBytes;
    const unsigned luma = Luma(pixel[kBlue], pixel[kGreen], pixel[kRed]);
    const int difference = table[luma] - static_cast<int>(luma);
    for (std::size_t c = 0; c < kPixelChannels; ++c) {
      pixel[c] = Clamped(pixel[c] + difference);
    }
  }
}

template <std::size_t kBytes>
void Mix(const ColorMix& mix, std::uint8_t* pixels, std::size_t n) {
  for (std::size_t i = 0; i < n; ++i) {
    std::uint8_t* pixel = pixels + i * kBytes;
    const std::int32_t* blue = mix.contributions[kBlue][pixel[kBlue]];
    const std::int32_t* green = mix.contributions[kGreen][pixel[kGreen]];
    const std::int32_t* red = mix.contributions[kRed][pixel[kRed]];
    for (std::size_t c = 0; c < kPixelChannels; ++c) {
      pixel[c] = Clamped(blue[c] + green[c] + red[c]);
    }
  }
}

}  // namespace

constinit const PixelKernels kReferencePixelKernels = {
    .name = "reference",
    .convert = {{Copy<1>, Convert<Grey8, 3>, Convert<Grey8, 4>},
                {Convert<Bgr24, 1>, Copy<3>, Convert<Bgr24, 4>},
                {Convert<Bgr30, 1>, Convert<Bgr30, 3>, Convert<Bgr30, 4>},
                {Convert<Yuv411, 1>, Convert<Yuv411, 3>, Convert<Yuv411, 4>},
                {Convert<Yuv422, 1>, Convert<Yuv422, 3>, Convert<Yuv422, 4>},
                {Convert<Yuv444, 1>, Convert<Yuv444, 3>, Convert<Yuv444, 4>}},
    .narrow = Narrow,
    .look_up = LookUp,
    .look_up_pairs = LookUpPairs,
    .shift_luma_bgr24 = ShiftLuma<3>,
    .shift_luma_bgr32 = ShiftLuma<4>,
    .mix_bgr24 = Mix<3>,
    .mix_bgr32 = Mix<4>,
};

}  // namespace vexa::imaging

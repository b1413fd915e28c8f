#include "simulator/pixel_format.hpp"

#include <algorithm>
#include <bit>

namespace vexa::simulator {
namespace {

constexpr unsigned kSourceBits = 14;

std::uint8_t ToByte(std::int16_t sample) {
  return static_cast<std::uint8_t>(sample >> (kSourceBits - 8));
}

void StoreWord(std::uint8_t* out, unsigned word) {
  out[0] = static_cast<std::uint8_t>(word & 0xFF);
  out[1] = static_cast<std::uint8_t>(word >> 8 & 0xFF);
}

void PackBgr24(std::span<const std::int16_t> red, std::span<const std::int16_t> green,
               std::span<const std::int16_t> blue, std::uint8_t* out) {
  for (std::size_t i = 0; i < red.size(); ++i) {
    out[3 * i] = ToByte(blue[i]);
    out[3 * i + 1] = ToByte(green[i]);
    out[3 * i + 2] = ToByte(red[i]);
  }
}

void PackBgr10(std::span<const std::int16_t> red, std::span<const std::int16_t> green,
               std::span<const std::int16_t> blue, std::uint8_t* out) {
  const auto ten = [](std::int16_t sample) {
    return static_cast<std::uint32_t>(sample >> (kSourceBits - 10));
  };
  for (std::size_t i = 0; i < red.size(); ++i) {
    const std::uint32_t word = ten(blue[i]) | ten(green[i]) << 10 | ten(red[i]) << 20;
    StoreWord(out + 4 * i, word & 0xFFFF);
    StoreWord(out + 4 * i + 2, word >> 16);
  }
}

struct Yuv {
  std::uint8_t y;
  int u;  // offset by 128, sums of several pixels are averaged by the layouts
  int v;
};

// Luminance weights and difference scales of ITU-R BT.601: U = (B - Y) / 1.772, V = (R - Y) /
// 1.402, in 1/65536.
Yuv ToYuv(std::int16_t red, std::int16_t green, std::int16_t blue) {
  const int r = ToByte(red);
  const int g = ToByte(green);
  const int b = ToByte(blue);
  const int y = (19595 * r + 38470 * g + 7471 * b + 32768) >> 16;
  const int u = ((b - y) * 36984 + (128 << 16) + 32768) >> 16;
  const int v = ((r - y) * 46745 + (128 << 16) + 32768) >> 16;
  return {static_cast<std::uint8_t>(y), std::clamp(u, 0, 255), std::clamp(v, 0, 255)};
}

std::uint8_t Mean(int sum, int count) {
  return static_cast<std::uint8_t>((sum + count / 2) / count);
}

void PackYuvGroup(std::uint32_t format, const Yuv (&p)[4], std::uint8_t* out) {
  switch (format) {
    case kFormatYuv411:
      out[0] = Mean(p[0].u + p[1].u + p[2].u + p[3].u, 4);
      out[1] = p[0].y;
      out[2] = p[1].y;
      out[3] = Mean(p[0].v + p[1].v + p[2].v + p[3].v, 4);
      out[4] = p[2].y;
      out[5] = p[3].y;
      break;
    case kFormatYuv422:
      for (std::size_t pair = 0; pair < 2; ++pair) {
        const Yuv& first = p[2 * pair];
        const Yuv& second = p[2 * pair + 1];
        out[4 * pair] = Mean(first.u + second.u, 2);
        out[4 * pair + 1] = first.y;
        out[4 * pair + 2] = Mean(first.v + second.v, 2);
        out[4 * pair + 3] = second.y;
      }
      break;
    default:
      for (std::size_t i = 0; i < 4; ++i) {
        out[3 * i] = static_cast<std::uint8_t>(p[i].u);
        out[3 * i + 1] = p[i].y;
        out[3 * i + 2] = static_cast<std::uint8_t>(p[i].v);
      }
  }
}

}  // namespace

unsigned SampleBits(std::uint32_t format) {
  if (!std::has_single_bit(format) || !IsOneSample(format)) return 8;
  return 8 + 2 * (static_cast<unsigned>(std::countr_zero(format)) % 5);
}

std::size_t PixelBytes(std::uint32_t format, std::size_t pixels) {
  switch (format) {
    case kFormatBgr24:
    case kFormatYuv444:
      return pixels * 3;
    case kFormatBgr10:
      return pixels * 4;
    case kFormatYuv411:
      return pixels + pixels / 2;
    case kFormatYuv422:
      return pixels * 2;
    default:
      return pixels * (SampleBits(format) == 8 ? 1 : 2);
  }
}

void PackSamples(std::uint32_t format, std::span<const std::int16_t> samples, std::uint8_t* out) {
  const unsigned bits = SampleBits(format);
  if (bits == 8) {
    for (std::size_t i = 0; i < samples.size(); ++i) out[i] = ToByte(samples[i]);
    return;
  }
  if (bits == 16) {
    for (std::size_t i = 0; i < samples.size(); ++i) {
      const unsigned sample = static_cast<unsigned>(samples[i]);
      StoreWord(out + 2 * i, sample << 2 | sample >> 12);
    }
    return;
  }
  const unsigned shift = kSourceBits - bits;
  for (std::size_t i = 0; i < samples.size(); ++i) {
    StoreWord(out + 2 * i, static_cast<unsigned>(samples[i]) >> shift);
  }
}

void PackColours(std::uint32_t format, std::span<const std::int16_t> red,
                 std::span<const std::int16_t> green, std::span<const std::int16_t> blue,
                 std::uint8_t* out) {
  if (format == kFormatBgr24) return PackBgr24(red, green, blue, out);
  if (format == kFormatBgr10) return PackBgr10(red, green, blue, out);
  const std::size_t group_bytes = PixelBytes(format, 4);
  for (std::size_t i = 0; i + 4 <= red.size(); i += 4) {
    Yuv pixels[4];
    for (std::size_t k = 0; k < 4; ++k) pixels[k] = ToYuv(red[i + k], green[i + k], blue[i + k]);
    PackYuvGroup(format, pixels, out + i / 4 * group_bytes);
  }
}

}  // namespace vexa::simulator

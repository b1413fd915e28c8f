#include "imaging/interpolation.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <optional>
#include <vector>

#include "imaging/color_array.hpp"
#include "imaging/demosaic.hpp"
#include "imaging/frames.hpp"
#include "imaging/kernels/weight_tables.hpp"

namespace vexa::imaging {
namespace {

using test::Bytes;

/// The written rules, one pixel and one channel at a time, in signed coordinates.
struct Model {
  int w, h;
  int array;
  const std::uint8_t* samples;

  int S(int x, int y) const { return samples[y * w + x]; }

  char Filter(int x, int y) const {
    static const char* const kPatterns[] = {"RGGB", "GRBG", "GBRG", "BGGR"};
    return kPatterns[array - 2][(y & 1) * 2 + (x & 1)];
  }
  bool RowHas(char c, int y) const { return Filter(0, y) == c || Filter(1, y) == c; }

  static int OnLine(const std::function<int(int)>& at, int p, int n, int method) {
    if (method == 4 && p - 3 >= 0 && p + 3 <= n - 1) {
      const int inner = 5 * (at(p - 1) + at(p + 1)) + 4;
      const int outer = at(p - 3) + at(p + 3) + 4;
      return std::clamp(inner / 8 - outer / 8, 0, 255);
    }
    if (p == 0) return at(1);
    if (p == n - 1) return at(n - 2);
    return (at(p - 1) + at(p + 1)) / 2;
  }

  int RowPass(char c, int x, int y, int method) const {
    if (Filter(x, y) == c) return S(x, y);
    return OnLine([&](int i) { return S(i, y); }, x, w, method);
  }

  int Separable(char c, int x, int y, int method) const {
    if (RowHas(c, y)) return RowPass(c, x, y, method);
    if (method == 3 && array == 3 && (x == 0 || x == w - 1) && y > 0 && y < h - 1) {
      return RowPass(c, x, y + 1, method);
    }
    return OnLine([&](int i) { return RowPass(c, x, i, method); }, y, h, method);
  }

  int InCell(char c, int x, int y) const {
    const int x0 = x & ~1;
    const int y0 = c == 'G' ? y : y & ~1;
    for (int j = y0; j < y0 + 2; ++j) {
      for (int i = x0; i < x0 + 2; ++i) {
        if (Filter(i, j) == c) return S(i, j);
      }
    }
    return -1;
  }

  int CellGreen(int x, int y) const {
    if (x == w - 1) {
      if (array != 2 && array != 5 && y == 0) return S(w - 1, 1);
      return Filter(x, y) == 'G' ? S(x, y) : S(x - 1, y);
    }
    if (y == h - 1) return Filter(x, y) == 'G' ? S(x, y) : S(x + 1, y);
    int sum = 0;
    for (int k = 0; k < 4; ++k) {
      if (Filter(x + k % 2, y + k / 2) == 'G') sum += S(x + k % 2, y + k / 2);
    }
    return sum / 2;
  }

  int CellColor(char c, int x, int y) const {
    if ((array == 3 || array == 4) && x == 0 && y % 2 == 0 && !RowHas(c, y)) {
      if (y == 0) return S(0, 1);
      return y + 1 < h ? (S(0, y - 1) + 3 * S(0, y + 1)) / 4 : S(0, y - 1);
    }
    int sum = 0;
    for (int j = y - 1; j <= y + 2; ++j) {
      for (int i = x - 1; i <= x + 2; ++i) {
        // Four of these sixteen carry the colour; unbounded, the pattern goes on outside.
        if (Filter(i & 1, j & 1) != c) continue;
        const auto inside = [](int p, int n) { return p < 0 ? p + 2 : p >= n ? p - 2 : p; };
        const int weight_x = i == x || i == x + 1 ? 3 : 1;
        const int weight_y = j == y || j == y + 1 ? 3 : 1;
        sum += weight_x * weight_y * S(inside(i, w), inside(j, h));
      }
    }
    return sum / 16;
  }

  int Value(char c, int x, int y, int method) const {
    switch (method) {
      case 1:
        return Filter(x, y) == c ? S(x, y) : 0;
      case 2:
        return InCell(c, x, y);
      case 5:
        return c == 'G' ? CellGreen(x, y) : CellColor(c, x, y);
      default:
        return method == 0 || array == 1 ? S(x, y) : Separable(c, x, y, method);
    }
  }

  /// The BGR24 image over what the buffer held before; nothing if the frame is too small.
  std::optional<Bytes> Image(int method, Bytes image) const {
    const bool grey = method == 0 || array == 1;
    if (!grey && h < 2) return image;
    if (!grey &&
        ((method >= 3 && w < 2) || (method == 3 && h < 4) || (method == 4 && (w < 6 || h < 6)))) {
      return std::nullopt;
    }
    const bool cells = !grey && method < 3;
    for (int y = 0; y < (cells ? h / 2 * 2 : h); ++y) {
      for (int x = 0; x < (cells ? w / 2 * 2 : w); ++x) {
        for (int c = 0; c < 3; ++c) {
          const int value = grey ? S(x, y) : Value("BGR"[c], x, y, method);
          image[static_cast<std::size_t>((y * w + x) * 3 + c)] = static_cast<std::uint8_t>(value);
        }
      }
    }
    return image;
  }
};

InterpolationRequest Request(int w, int h, int array, int method, unsigned format,
                             const std::uint8_t* source, std::uint8_t* destination) {
  return {static_cast<std::uint32_t>(w),
          static_cast<std::uint32_t>(h),
          static_cast<std::uint16_t>(array),
          static_cast<std::uint8_t>(method),
          format,
          source,
          destination};
}

/// Compares every method, array and format of one frame with the model. The frame ends with its
/// allocation and starts at any address, the image lies unaligned between guard bytes.
void CheckFrame(int w, int h, unsigned kind) {
  const auto pixels = static_cast<std::size_t>(w * h);
  const auto shift = static_cast<std::size_t>(w + h) % 4;
  const Bytes source = test::MakeFrame(pixels + shift, kind);
  const Bytes untouched = test::MakeFrame(pixels * 4, 4);
  const std::uint8_t* samples = source.data() + shift;
  for (int code = 0; code < 6 * 5; ++code) {
    const int method = code % 6;
    const int array = code / 6 + 1;
    const auto bgr = Model{w, h, array, samples}.Image(
        method, Bytes(untouched.data(), untouched.data() + pixels * 3));
    for (const unsigned format : {1U, 4U, 8U}) {
      Bytes expected = untouched;
      std::uint8_t* image = expected.data();
      for (std::size_t i = 0; i < pixels; ++i) {
        if (format == 1) {
          image[i] = samples[i];
        } else if (bgr && (h >= 2 || method == 0 || array == 1)) {
          std::copy_n(bgr->data() + 3 * i, 3, image + (format == 4 ? 3 : 4) * i);
          if (format == 8) image[4 * i + 3] = 0;
        }
      }
      for (const RowKernels* kernels : UsableRowKernels()) {
        test::GuardedFrame actual(untouched, shift);
        const Status status = InterpolateColor(
            Request(w, h, array, method, format, samples, actual.data()), *kernels);
        const Bytes made = actual.Contents();
        ASSERT_TRUE(status.ok() == (bgr || format == 1) && made == expected && actual.Intact())
            << w << "x" << h << " array " << array << " method " << method << " format " << format
            << " frame " << kind << " kernels " << kernels->name << " byte "
            << std::mismatch(made.begin(), made.end(), expected.begin()).first - made.begin();
      }
    }
  }
}

TEST(Interpolation, EveryMethodFollowsItsRulesOnAllSmallSizes) {
  for (int h = 1; h <= 20; ++h) {
    for (int w = 1; w <= 20; ++w) {
      ASSERT_NO_FATAL_FAILURE(CheckFrame(w, h, 0));
      ASSERT_NO_FATAL_FAILURE(CheckFrame(w, h, 1));
    }
  }
}

TEST(Interpolation, EveryMethodFollowsItsRulesAcrossVectorsAndStrips) {
  constexpr int kStrip = kStripWidth;
  const std::pair<int, int> sizes[] = {{67, 35},         {64, 32},        {98, 11},
                                       {131, 6},         {2592, 9},       {kStrip, 7},
                                       {kStrip + 1, 10}, {kStrip + 2, 8}, {2 * kStrip + 3, 7}};
  for (const auto& [w, h] : sizes) {
    for (unsigned kind = 0; kind < 2; ++kind) {
      ASSERT_NO_FATAL_FAILURE(CheckFrame(w, h, kind));
    }
  }
}

/// The BGR24 picture by the fastest kernels; pixel (x, y) starts at 3 (y w + x).
Bytes Interpolated(const Bytes& frame, int w, int array, int method) {
  Bytes image(frame.size() * 3, 77);
  const int h = static_cast<int>(frame.size()) / w;
  EXPECT_TRUE(InterpolateColor(Request(w, h, array, method, 4, frame.data(), image.data())).ok());
  return image;
}

TEST(Interpolation, KnownPictures) {
  // A step edge: the missing red at column 7 has 0, 0 | 255, 255 as neighbours, at 5 it has
  // 0, 0 | 0, 255 (undershoot), at 9 0, 255 | 255, 255 (overshoot).
  Bytes step(16 * 6);
  for (std::size_t i = 0; i < step.size(); ++i) step[i] = i % 16 >= 8 ? 255 : 0;
  const Bytes edge = Interpolated(step, 16, 2, 4);
  EXPECT_EQ(edge[5 * 3 + 2], 0);
  EXPECT_EQ(edge[7 * 3 + 2], 159 - 32);
  EXPECT_EQ(edge[9 * 3 + 2], 255);

  // One bright red sample spreads over 4 x 4 pixels, half a pixel up and to the left.
  Bytes spot(12 * 12);
  spot[4 * 12 + 6] = 160;
  const Bytes spread = Interpolated(spot, 12, 2, 5);
  for (int y = 0; y < 12; ++y) {
    for (int x = 0; x < 12; ++x) {
      const auto weight = [](int d) { return d < -2 || d > 1 ? 0 : d == -1 || d == 0 ? 3 : 1; };
      EXPECT_EQ(spread[static_cast<std::size_t>(y * 12 + x) * 3 + 2],
                10 * weight(x - 6) * weight(y - 4))
          << x << ", " << y;
    }
  }
}

TEST(Interpolation, RefusesWhatItCannotDoAndTouchesNothing) {
  constexpr std::uint32_t kHuge = 0xFFFFFFFF;
  Bytes source(64, 9);
  Bytes image(256, 5);
  const InterpolationRequest good = Request(8, 8, 2, 3, 4, source.data(), image.data());
  const auto with = [&](const auto& change) {
    InterpolationRequest request = good;
    change(request);
    return InterpolateColor(request);
  };
  using R = InterpolationRequest&;
  for (const std::uint32_t format : {0U, 2U, 3U, 5U, 9U, 12U, 0x10001U, kHuge}) {
    EXPECT_EQ(with([&](R r) { r.output_format = format; }), error::kInvalidParameter);
  }
  for (const std::uint16_t array : std::to_array<std::uint16_t>({0, 6, 0x102, 0xFFFF})) {
    EXPECT_EQ(with([&](R r) { r.color_array = array; }), error::kInvalidParameter);
    EXPECT_EQ(with([&](R r) { r.color_array = array, r.method = 0; }), error::kInvalidParameter);
    EXPECT_EQ(with([&](R r) { r.color_array = array, r.height = 1; }), error::kInvalidParameter);
  }
  EXPECT_EQ(with([](R r) { r.method = 6; }), error::kInvalidParameter);
  for (const std::uint32_t format : {1U, 4U}) {
    EXPECT_EQ(with([&](R r) { r.output_format = format, r.source = nullptr; }),
              error::kInvalidParameter);
    EXPECT_EQ(with([&](R r) { r.output_format = format, r.destination = nullptr; }),
              error::kInvalidParameter);
    EXPECT_EQ(with([&](R r) { r.output_format = format, r.width = r.height = kHuge; }),
              error::kInvalidParameter);
  }
  EXPECT_EQ(image, Bytes(256, 5));

  // Nothing to read or write needs no buffers.
  const auto absent = [](R r) { r.source = nullptr, r.destination = nullptr; };
  EXPECT_TRUE(with([&](R r) { absent(r), r.height = 1, r.width = kHuge; }).ok());
  EXPECT_TRUE(with([&](R r) { absent(r), r.method = 0, r.width = 0; }).ok());
  EXPECT_TRUE(with([&](R r) { absent(r), r.output_format = 1, r.height = 0; }).ok());

  // Codes that do not matter: a grey sensor's method, the codes of a plain copy.
  EXPECT_TRUE(with([](R r) { r.color_array = 1, r.method = 200; }).ok());
  EXPECT_EQ(image[3 * 64 - 1], 9);
  EXPECT_TRUE(with([](R r) { r.color_array = 99, r.method = 99, r.output_format = 1; }).ok());
}

TEST(Interpolation, OnlyMirroringExchangesThePatternsOfKnownArrays) {
  for (const std::uint16_t code : std::to_array<std::uint16_t>({0, 1, 6, 0xFFFF})) {
    EXPECT_EQ(EffectiveColorArray(code, 0x30), code);
  }
  EXPECT_EQ(EffectiveColorArray(3, 0x30), 4);
  EXPECT_EQ(EffectiveColorArray(3, 0x31), 3);
}

#if defined(__ELF__)
// The linker defines these for a section whose name is a C identifier.
extern "C" const std::int16_t __start_VXCAM_Ba[];
extern "C" const std::int16_t __stop_VXCAM_Ba[];

TEST(Interpolation, WeightTablesFillTheirSection) {
  ASSERT_EQ(__stop_VXCAM_Ba - __start_VXCAM_Ba, 1024);
  EXPECT_EQ(static_cast<const void*>(&weight_tables), __start_VXCAM_Ba);
  for (int i = 0; i < 512; ++i) {
    ASSERT_EQ(__start_VXCAM_Ba[i], (5 * i + 4) / 8);
    ASSERT_EQ(__start_VXCAM_Ba[512 + i], -((i + 4) / 8));
  }
}
#endif

}  // namespace
}  // namespace vexa::imaging

/// \file
/// The pixel kernels in vectors, for any number of lanes of 16 bytes. Included by one file per
/// instruction set, after that file has switched the compiler to it.
///
/// What comes from here is compiled for that instruction set, so none of it may be shared with
/// other files: V lives in an unnamed namespace, and nothing here uses templates or inline
/// functions of other headers.
///
/// A lane works on 16 pixels that follow one another. All lanes do the same, each on its own part
/// of the image, so that nothing ever crosses from lane to lane.
#pragma once

#include <emmintrin.h>

#include <cstddef>
#include <cstdint>

#include "imaging/kernels/pixel_kernels.hpp"

namespace vexa::imaging {

/// V describes the vectors: kWidth (bytes, and so pixels of one step), the types Bytes and Words
/// (unsigned, 8 and 16 bits) and Shorts (signed, 16 bits), and these functions, each like the SSE
/// instruction in its lanes:
///   LoadLanes, StoreLanes     16 bytes for each lane, from places a given step apart
///   UnpackLow, UnpackHigh     bytes of the lower or upper half of each lane in turn
///   UnpackLow16, UnpackHigh16 the same with pairs of bytes
///   Pack                      signed words to bytes, saturating
///   PackInts                  signed 32 bits to signed words, saturating
///   MulHigh, MulHighUnsigned, MulRounded  (a * b) >> 16, and (a * b + 2^14) >> 15
///   Count, ShiftRight         of words, by a number that is not known at compile time
///   AddSaturated, SubSaturated  of unsigned bytes
/// V::kShuffles tells whether there are shuffles of bytes. With them V has Shuffle, Select (by a
/// mask of whole bytes), Order (16 bytes of memory in
/// every lane) and SubSigned (signed bytes, saturating); without them UpperHalf (of each lane) and
/// StoreTriples (16 pixels of three bytes).
template <class V>
struct VectorPixels {
  using Bytes = typename V::Bytes;
  using Words = typename V::Words;
  using Shorts = typename V::Shorts;
  using Ints = typename V::Ints;

  static constexpr std::size_t kLane = 16;
  static constexpr std::size_t kStep = V::kWidth;

  struct Planes {
    Bytes blue;
    Bytes green;
    Bytes red;
    Bytes grey;
  };

  static Shorts Low(Bytes v) { return (Shorts)V::UnpackLow(v, Bytes{}); }
  static Shorts High(Bytes v) { return (Shorts)V::UnpackHigh(v, Bytes{}); }

  /// Bytes 0, 3, 6 ... of a, then of b from 1 and of c from 2.
  static Bytes InTurn(Bytes a, Bytes b, Bytes c) {
    static constexpr std::uint8_t kFirst[16] = {255, 0,   0, 255, 0,   0, 255, 0,
                                                0,   255, 0, 0,   255, 0, 0,   255};
    static constexpr std::uint8_t kSecond[16] = {0, 255, 0,   0, 255, 0,   0, 255,
                                                 0, 0,   255, 0, 0,   255, 0, 0};
    return V::Select(V::Order(kFirst), a, V::Select(V::Order(kSecond), b, c));
  }

  // --- layouts -------------------------------------------------------------------------------

  /// Takes 48 bytes per lane apart, every third byte together.
  static Planes LoadTriples(const std::uint8_t* p) {
    Bytes x = V::LoadLanes(p, 3 * kLane);
    Bytes y = V::LoadLanes(p + 16, 3 * kLane);
    Bytes z = V::LoadLanes(p + 32, 3 * kLane);
    if constexpr (V::kShuffles) {
      // In each vector, a channel has every third byte, and different ones in all three.
      static constexpr std::uint8_t kBlueOrder[16] = {0, 3,  6,  9, 12, 15, 2,  5,
                                                      8, 11, 14, 1, 4,  7,  10, 13};
      static constexpr std::uint8_t kGreenOrder[16] = {1, 4,  7,  10, 13, 0, 3,  6,
                                                       9, 12, 15, 2,  5,  8, 11, 14};
      static constexpr std::uint8_t kRedOrder[16] = {2,  5,  8, 11, 14, 1, 4,  7,
                                                     10, 13, 0, 3,  6,  9, 12, 15};
      const Bytes blue = V::Shuffle(InTurn(x, z, y), V::Order(kBlueOrder));
      const Bytes green = V::Shuffle(InTurn(y, x, z), V::Order(kGreenOrder));
      const Bytes red = V::Shuffle(InTurn(z, y, x), V::Order(kRedOrder));
      return {blue, green, red, green};
    } else {
      // Each round interleaves the two halves of the 48 bytes; after four, a byte has moved by
      // three times its place.
      for (int round = 0; round < 4; ++round) {
        const Bytes a = V::UnpackLow(x, V::UpperHalf(y));
        const Bytes b = V::UnpackLow(V::UpperHalf(x), z);
        const Bytes c = V::UnpackLow(y, V::UpperHalf(z));
        x = a;
        y = b;
        z = c;
      }
      return {x, y, z, y};
    }
  }

  static void StoreTriples(std::uint8_t* p, const Planes& planes) {
    if constexpr (V::kShuffles) {
      // Sample i belongs at byte 3 i of 48 (green and red 1 and 2 further); modulo 16 these are all
      // different, so that one shuffle per channel serves all three vectors.
      static constexpr std::uint8_t kBlueOrder[16] = {0, 11, 6,  1, 12, 7,  2,  13,
                                                      8, 3,  14, 9, 4,  15, 10, 5};
      static constexpr std::uint8_t kGreenOrder[16] = {5,  0, 11, 6,  1, 12, 7,  2,
                                                       13, 8, 3,  14, 9, 4,  15, 10};
      static constexpr std::uint8_t kRedOrder[16] = {10, 5,  0, 11, 6,  1, 12, 7,
                                                     2,  13, 8, 3,  14, 9, 4,  15};
      const Bytes blue = V::Shuffle(planes.blue, V::Order(kBlueOrder));
      const Bytes green = V::Shuffle(planes.green, V::Order(kGreenOrder));
      const Bytes red = V::Shuffle(planes.red, V::Order(kRedOrder));
      V::StoreLanes(p, 3 * kLane, InTurn(blue, green, red));
      V::StoreLanes(p + 16, 3 * kLane, InTurn(green, red, blue));
      V::StoreLanes(p + 32, 3 * kLane, InTurn(red, blue, green));
    } else {
      V::StoreTriples(p, planes.blue, planes.green, planes.red);
    }
  }

  /// Fields of 8 bits out of words of 32, the fields' lowest bits given. 64 bytes per lane.
  template <int kBlueBit, int kGreenBit, int kRedBit>
  static Planes LoadQuads(const std::uint8_t* p) {
    const Ints a = (Ints)V::LoadLanes(p, 4 * kLane);
    const Ints b = (Ints)V::LoadLanes(p + 16, 4 * kLane);
    const Ints c = (Ints)V::LoadLanes(p + 32, 4 * kLane);
    const Ints d = (Ints)V::LoadLanes(p + 48, 4 * kLane);
    const auto field = [=](int bit) {
      return V::Pack(V::PackInts((a >> bit) & 255, (b >> bit) & 255),
                     V::PackInts((c >> bit) & 255, (d >> bit) & 255));
    };
    const Bytes green = field(kGreenBit);
    return {field(kBlueBit), green, field(kRedBit), green};
  }

  /// The fourth bytes stay.
  static void StoreQuads(std::uint8_t* p, const Planes& planes) {
    const Bytes bg_low = V::UnpackLow(planes.blue, planes.green);
    const Bytes bg_high = V::UnpackHigh(planes.blue, planes.green);
    const Bytes r_low = V::UnpackLow(planes.red, Bytes{});
    const Bytes r_high = V::UnpackHigh(planes.red, Bytes{});
    const auto put = [p](std::size_t at, Bytes pixels) {
      const Ints old = (Ints)V::LoadLanes(p + at, 4 * kLane);
      V::StoreLanes(p + at, 4 * kLane, (Bytes)((old & (Ints{} + (0xFF << 24))) | (Ints)pixels));
    };
    put(0, V::UnpackLow16(bg_low, r_low));
    put(16, V::UnpackHigh16(bg_low, r_low));
    put(32, V::UnpackLow16(bg_high, r_high));
    put(48, V::UnpackHigh16(bg_high, r_high));
  }

  /// The colours of luminance and colour differences. Multiplying a difference by 4 leaves 14 bits
  /// of fraction to the weights, enough to find all 256 products rounded down; what truncation
  /// toward zero wants is one more where the product is negative.
  static Planes FromYuv(Bytes y, Bytes u, Bytes v) {
    struct Colors {
      Shorts blue, green, red;
    };
    const auto convert = [](Shorts luma, Shorts u_word, Shorts v_word) -> Colors {
      const Shorts cu = u_word - 128;
      const Shorts cv = v_word - 128;
      const Shorts blue = V::MulHigh(cu << 2, Shorts{} + 29029) - (Shorts)(cu < 0);
      const Shorts red = V::MulHigh(cv << 2, Shorts{} + 22970) - (Shorts)(cv < 0);
      const Shorts green = V::MulHigh(cu << 2, Shorts{} - 5639) - (Shorts)(cu > 0) +
                           V::MulHigh(cv << 2, Shorts{} - 11699) - (Shorts)(cv > 0);
      return {luma + blue, luma + green, luma + red};
    };
    const Colors low = convert(Low(y), Low(u), Low(v));
    const Colors high = convert(High(y), High(u), High(v));
    return {V::Pack(low.blue, high.blue), V::Pack(low.green, high.green),
            V::Pack(low.red, high.red), y};
  }

  /// Luminance in the odd bytes; in the even ones U and V in turn, each for two pixels.
  static Planes LoadYuv422(const std::uint8_t* p) {
    const Words a = (Words)V::LoadLanes(p, 2 * kLane);
    const Words b = (Words)V::LoadLanes(p + 16, 2 * kLane);
    const Bytes y = V::Pack((Shorts)(a >> 8), (Shorts)(b >> 8));
    const Words uv = (Words)V::Pack((Shorts)(a & 0xFF), (Shorts)(b & 0xFF));
    const Bytes u = (Bytes)((uv & 0x00FF) | (uv << 8));
    const Bytes v = (Bytes)((uv & 0xFF00) | (uv >> 8));
    return {y, u, v, y};
  }

  /// Groups of six bytes, U Y Y V Y Y, of which 24 bytes per lane hold four.
  static Planes LoadYuv411(const std::uint8_t* p) {
    constexpr std::uint8_t kNo = 0x80;
    static constexpr std::uint8_t kY[2][16] = {
        {1, 2, 4, 5, 7, 8, 10, 11, kNo, kNo, kNo, kNo, kNo, kNo, kNo, kNo},
        {kNo, kNo, kNo, kNo, kNo, kNo, kNo, kNo, 5, 6, 8, 9, 11, 12, 14, 15}};
    static constexpr std::uint8_t kU[2][16] = {
        {0, 0, 0, 0, 6, 6, 6, 6, kNo, kNo, kNo, kNo, kNo, kNo, kNo, kNo},
        {kNo, kNo, kNo, kNo, kNo, kNo, kNo, kNo, 4, 4, 4, 4, 10, 10, 10, 10}};
    static constexpr std::uint8_t kV[2][16] = {
        {3, 3, 3, 3, 9, 9, 9, 9, kNo, kNo, kNo, kNo, kNo, kNo, kNo, kNo},
        {kNo, kNo, kNo, kNo, kNo, kNo, kNo, kNo, 7, 7, 7, 7, 13, 13, 13, 13}};
    const Bytes front = V::LoadLanes(p, 24);
    const Bytes back = V::LoadLanes(p + 8, 24);
    const auto pick = [=](const std::uint8_t(&order)[2][16]) {
      return V::Shuffle(front, V::Order(order[0])) | V::Shuffle(back, V::Order(order[1]));
    };
    const Bytes y = pick(kY);
    return {y, pick(kU), pick(kV), y};
  }

  // Layouts: the bytes of kStep pixels, and how planes come from and go to them. Load gives the
  // planes as they are stored, those of YUV in the places of blue, green and red; Colors makes
  // colours of them.

  struct Grey8 {
    static constexpr std::size_t kBytes = kStep;
    static Planes Load(const std::uint8_t* p) {
      const Bytes v = V::LoadLanes(p, kLane);
      return {v, v, v, v};
    }
    static Planes Colors(const Planes& planes) { return planes; }
    static void Store(std::uint8_t* p, const Planes& planes) {
      V::StoreLanes(p, kLane, planes.grey);
    }
  };
  struct Bgr24 {
    static constexpr std::size_t kBytes = 3 * kStep;
    static Planes Load(const std::uint8_t* p) { return LoadTriples(p); }
    static Planes Colors(const Planes& planes) { return planes; }
    static void Store(std::uint8_t* p, const Planes& planes) { StoreTriples(p, planes); }
  };
  struct Bgr32 {
    static constexpr std::size_t kBytes = 4 * kStep;
    static Planes Load(const std::uint8_t* p) { return LoadQuads<0, 8, 16>(p); }
    static void Store(std::uint8_t* p, const Planes& planes) { StoreQuads(p, planes); }
  };
  struct Bgr30 {
    static constexpr std::size_t kBytes = 4 * kStep;
    static Planes Load(const std::uint8_t* p) { return LoadQuads<2, 12, 22>(p); }
    static Planes Colors(const Planes& planes) { return planes; }
  };
  struct Yuv411 {
    static constexpr std::size_t kBytes = kStep * 3 / 2;
    static Planes Load(const std::uint8_t* p) { return LoadYuv411(p); }
    static Planes Colors(const Planes& yuv) { return FromYuv(yuv.blue, yuv.green, yuv.red); }
  };
  struct Yuv422 {
    static constexpr std::size_t kBytes = kStep * 2;
    static Planes Load(const std::uint8_t* p) { return LoadYuv422(p); }
    static Planes Colors(const Planes& yuv) { return FromYuv(yuv.blue, yuv.green, yuv.red); }
  };
  /// U, Y, V: the luminance comes second.
  struct Yuv444 {
    static constexpr std::size_t kBytes = kStep * 3;
    static Planes Load(const std::uint8_t* p) { return LoadTriples(p); }
    static Planes Colors(const Planes& uyv) { return FromYuv(uyv.green, uyv.blue, uyv.red); }
  };
  // --- kernels -------------------------------------------------------------------------------

  /// The reference's conversion.
  template <std::size_t kFrom, std::size_t kTo>
  static void Plain(const std::uint8_t* source, std::uint8_t* target, std::size_t n) {
    kReferencePixelKernels.convert[kFrom][kTo](source, target, n);
  }

  /// What does not fill a step is left to the reference, as in all kernels.
  template <class Source, class Target, std::size_t kFrom, std::size_t kTo>
  static void Convert(const std::uint8_t* source, std::uint8_t* target, std::size_t n) {
    constexpr bool kPossible = V::kShuffles || kFrom != kFromYuv411;
    for (; kPossible && n >= kStep; n -= kStep) {
      if constexpr (kPossible) {
        const Planes planes = Source::Load(source);
        Target::Store(target, kTo == kToGrey8 ? planes : Source::Colors(planes));
      }
      source += Source::kBytes;
      target += Target::kBytes;
    }
    Plain<kFrom, kTo>(source, target, n);
  }

  /// Every byte three times.
  static void GreyToBgr24(const std::uint8_t* source, std::uint8_t* target, std::size_t n) {
    if constexpr (V::kShuffles) {
      static constexpr std::uint8_t kOrders[3][16] = {
          {0, 0, 0, 1, 1, 1, 2, 2, 2, 3, 3, 3, 4, 4, 4, 5},
          {5, 5, 6, 6, 6, 7, 7, 7, 8, 8, 8, 9, 9, 9, 10, 10},
          {10, 11, 11, 11, 12, 12, 12, 13, 13, 13, 14, 14, 14, 15, 15, 15}};
      for (; n >= kStep; n -= kStep, source += kStep, target += 3 * kStep) {
        const Bytes v = V::LoadLanes(source, kLane);
        V::StoreLanes(target, 3 * kLane, V::Shuffle(v, V::Order(kOrders[0])));
        V::StoreLanes(target + 16, 3 * kLane, V::Shuffle(v, V::Order(kOrders[1])));
        V::StoreLanes(target + 32, 3 * kLane, V::Shuffle(v, V::Order(kOrders[2])));
      }
    }
    Convert<Grey8, Bgr24, kFromGrey8, kToBgr24>(source, target, n);
  }

  static void Narrow(const std::uint8_t* words, unsigned shift, std::uint8_t* target,
                     std::size_t n) {
    const auto count = V::Count(shift);
    for (; n >= kStep; n -= kStep, words += 2 * kStep, target += kStep) {
      const Words a = V::ShiftRight((Words)V::LoadLanes(words, 2 * kLane), count) & 0xFF;
      const Words b = V::ShiftRight((Words)V::LoadLanes(words + 16, 2 * kLane), count) & 0xFF;
      V::StoreLanes(target, kLane, V::Pack((Shorts)a, (Shorts)b));
    }
    kReferencePixelKernels.narrow(words, shift, target, n);
  }

  /// A table of 256 in 16 vectors, for look-up by shuffles. A shuffle finds a byte's entry in one
  /// row of 16 and gives 0 for bytes of 128 and above, that is, negative ones. Subtracting 16 again
  /// and again (stopping at the most negative number) makes all rows above the byte's give 0; so
  /// with each row XORed to the one before, those up to the byte's row leave its entry. This does
  /// half of the 256 values; the other half does it with the byte's highest bit turned.
  struct Table {
    Bytes rows[2][8];

    explicit Table(const std::uint8_t* entries) {
      for (int half = 0; half < 2; ++half) {
        Bytes previous{};
        for (int row = 0; row < 8; ++row) {
          const Bytes own = V::Order(entries + 128 * half + 16 * row);
          rows[half][row] = own ^ previous;
          previous = own;
        }
      }
    }

    Bytes At(Bytes v) const {
      Bytes low = v;
      Bytes high = v ^ 0x80;
      Bytes low_entry = V::Shuffle(rows[0][0], low);
      Bytes high_entry = V::Shuffle(rows[1][0], high);
#pragma GCC unroll 7
      for (int row = 1; row < 8; ++row) {
        low = V::SubSigned(low, Bytes{} + 16);
        high = V::SubSigned(high, Bytes{} + 16);
        low_entry ^= V::Shuffle(rows[0][row], low);
        high_entry ^= V::Shuffle(rows[1][row], high);
      }
      return low_entry ^ high_entry;
    }
  };

  /// The same without shuffles.
  struct ScalarTable {
    const std::uint8_t* entries;

    explicit ScalarTable(const std::uint8_t* table) : entries(table) {}

    Bytes At(Bytes v) const {
      std::uint8_t values[kStep];
      __builtin_memcpy(values, &v, sizeof v);
      for (std::uint8_t& value : values) {
        value = entries[value];
      }
      __builtin_memcpy(&v, values, sizeof v);
      return v;
    }
  };

  static void LookUp(const std::uint8_t* table, std::uint8_t* samples, std::size_t n) {
    if constexpr (V::kShuffles) {
      if (n >= kStep) {
        const Table entries(table);
        for (; n >= kStep; n -= kStep, samples += kStep) {
          V::StoreLanes(samples, kLane, entries.At(V::LoadLanes(samples, kLane)));
        }
      }
    }
    kReferencePixelKernels.look_up(table, samples, n);
  }

  static void LookUpPairs(const std::uint8_t* even, const std::uint8_t* odd, std::uint8_t* samples,
                          std::size_t n) {
    if constexpr (V::kShuffles) {
      if (n >= 2 * kStep) {
        const Table even_entries(even);
        const Table odd_entries(odd);
        for (; n >= 2 * kStep; n -= 2 * kStep, samples += 2 * kStep) {
          const Words a = (Words)V::LoadLanes(samples, 2 * kLane);
          const Words b = (Words)V::LoadLanes(samples + 16, 2 * kLane);
          const Bytes e = even_entries.At(V::Pack((Shorts)(a & 0xFF), (Shorts)(b & 0xFF)));
          const Bytes o = odd_entries.At(V::Pack((Shorts)(a >> 8), (Shorts)(b >> 8)));
          V::StoreLanes(samples, 2 * kLane, V::UnpackLow(e, o));
          V::StoreLanes(samples + 16, 2 * kLane, V::UnpackHigh(e, o));
        }
      }
    }
    kReferencePixelKernels.look_up_pairs(even, odd, samples, n);
  }

  /// See LumaRedTable. 15 bits of fraction find the rounded weights of all 256 levels.
  static Shorts LumaOf(Shorts blue, Shorts green, Shorts red) {
    const Shorts red_weight = Shorts{} + 9794;
    const Shorts blue_weight = Shorts{} + 3752;
    return V::MulRounded(red, red_weight) + V::MulRounded(blue, blue_weight) + green -
           V::MulRounded(green, red_weight) - V::MulRounded(green, blue_weight);
  }

  /// Returns how many pixels are left.
  template <class Layout, class Entries>
  static std::size_t ShiftLumaBy(const Entries& entries, std::uint8_t* pixels, std::size_t n) {
    for (; n >= kStep; n -= kStep, pixels += Layout::kBytes) {
      Planes p = Layout::Load(pixels);
      const Bytes luma = V::Pack(LumaOf(Low(p.blue), Low(p.green), Low(p.red)),
                                 LumaOf(High(p.blue), High(p.green), High(p.red)));
      const Bytes wanted = entries.At(luma);
      // One of the two is 0.
      const Bytes more = V::SubSaturated(wanted, luma);
      const Bytes less = V::SubSaturated(luma, wanted);
      const auto shifted = [=](Bytes v) { return V::SubSaturated(V::AddSaturated(v, more), less); };
      Layout::Store(pixels, {shifted(p.blue), shifted(p.green), shifted(p.red), Bytes{}});
    }
    return n;
  }

  template <class Layout>
  static std::size_t ShiftLuma(const std::uint8_t* table, std::uint8_t* pixels, std::size_t n) {
    if (n < kStep) {
      return n;
    }
    if constexpr (V::kShuffles) {
      return ShiftLumaBy<Layout>(Table(table), pixels, n);
    } else {
      return ShiftLumaBy<Layout>(ScalarTable(table), pixels, n);
    }
  }

  static void ShiftLumaBgr24(const std::uint8_t* table, std::uint8_t* pixels, std::size_t n) {
    const std::size_t rest = ShiftLuma<Bgr24>(table, pixels, n);
    kReferencePixelKernels.shift_luma_bgr24(table, pixels + 3 * (n - rest), rest);
  }
  static void ShiftLumaBgr32(const std::uint8_t* table, std::uint8_t* pixels, std::size_t n) {
    const std::size_t rest = ShiftLuma<Bgr32>(table, pixels, n);
    kReferencePixelKernels.shift_luma_bgr32(table, pixels + 4 * (n - rest), rest);
  }

  // --- the formulas of a ColorMix ------------------------------------------------------------

  /// Pixels are mixed in strips, one output at a time: the loop over a strip knows the signs.
  static constexpr std::size_t kStripSteps = 16;

  struct Strip {
    Words low[kPixelChannels][kStripSteps];  // the values, the halves of each lane apart
    Words high[kPixelChannels][kStripSteps];
    Bytes mixed[kPixelChannels][kStripSteps];
    // For formulas with bits: where each value's byte is, in the lower and in the upper half of
    // them (0x80 where it is in the other, for which a shuffle gives 0), and the bit's mask.
    Bytes places[kPixelChannels][2][kStripSteps];
    Bytes masks[kPixelChannels][kStripSteps];
    Bytes bits[kStripSteps];  // of one output
  };

  static void FindPlaces(std::size_t in, std::size_t step, Bytes v, Strip* strip) {
    static constexpr std::uint8_t kMasks[16] = {1, 2, 4, 8, 16, 32, 64, 128,
                                                1, 2, 4, 8, 16, 32, 64, 128};
    strip->places[in][0][step] = v & 0x8F;
    strip->places[in][1][step] = (v & 0x8F) ^ 0x80;
    strip->masks[in][step] = V::Shuffle(V::Order(kMasks), (Bytes)((Words)v >> 4) & 15);
  }

  /// Adds the bits of one input to the sums so far, of which there are none at first.
  template <bool kFirst>
  static void AddBits(const std::uint8_t (&bits)[2][16], std::size_t in, Strip* strip,
                      std::size_t steps) {
    const Bytes lower_half = V::Order(bits[0]);
    const Bytes upper_half = V::Order(bits[1]);
    for (std::size_t step = 0; step < steps; ++step) {
      const Bytes byte = V::Shuffle(lower_half, strip->places[in][0][step]) |
                         V::Shuffle(upper_half, strip->places[in][1][step]);
      const Bytes mask = strip->masks[in][step];
      const Bytes sum = kFirst ? Bytes{} : strip->bits[step];
      strip->bits[step] = sum - (Bytes)((byte & mask) == mask);
    }
  }

  /// The sums of a formula's bits.
  static void SumBits(const ColorMix::Formula& formula, Strip* strip, std::size_t steps) {
    bool is_first = true;
    for (std::size_t in = 0; in < kPixelChannels; ++in) {
      if ((formula.has_bits >> in & 1) != 0) {
        (is_first ? AddBits<true> : AddBits<false>)(formula.bits[in], in, strip, steps);
        is_first = false;
      }
    }
  }

  /// What a formula adds as a multiple without a fraction.
  enum Whole { kNoWhole, kOneInput, kAnyWhole };

  /// kNegative: bit i if the product of input i is taken off.
  template <unsigned kNegative, Whole kWhole>
  static void MixOutput(const ColorMix::Formula& formula, Strip* strip, Bytes* mixed,
                        std::size_t steps) {
    Words factor[kPixelChannels];
    Words whole[kPixelChannels];
    std::size_t one = 0;
    for (std::size_t in = 0; in < kPixelChannels; ++in) {
      factor[in] = Words{} + formula.factor[in];
      whole[in] = Words{} + (std::uint16_t)formula.whole[in];
      one = formula.whole[in] != 0 ? in : one;
    }
    const Words base = Words{} + (std::uint16_t)formula.base;
    const bool has_base = formula.base != 0;
    const bool has_bits = formula.has_bits != 0;
    for (std::size_t step = 0; step < steps; ++step) {
      Words low{};
      Words high{};
#pragma GCC unroll 3
      for (std::size_t in = 0; in < kPixelChannels; ++in) {
        const Words product_low = V::MulHighUnsigned(strip->low[in][step], factor[in]);
        const Words product_high = V::MulHighUnsigned(strip->high[in][step], factor[in]);
        low = (kNegative >> in & 1) != 0 ? low - product_low : low + product_low;
        high = (kNegative >> in & 1) != 0 ? high - product_high : high + product_high;
        if constexpr (kWhole == kAnyWhole) {
          low += strip->low[in][step] * whole[in];
          high += strip->high[in][step] * whole[in];
        }
      }
      if constexpr (kWhole == kOneInput) {
        low += strip->low[one][step];
        high += strip->high[one][step];
      }
      if (has_base) {
        low += base;
        high += base;
      }
      if (has_bits) {
        low += (Words)Low(strip->bits[step]);
        high += (Words)High(strip->bits[step]);
      }
      mixed[step] = V::Pack((Shorts)low, (Shorts)high);
    }
  }

  static Whole WholeOf(const ColorMix::Formula& formula) {
    int sum = 0;
    for (const std::int16_t whole : formula.whole) {
      if (whole != 0 && whole != 1) {
        return kAnyWhole;
      }
      sum += whole;
    }
    return sum == 0 ? kNoWhole : sum == 1 ? kOneInput : kAnyWhole;
  }

  using MixStrip = void (*)(const ColorMix::Formula&, Strip*, Bytes*, std::size_t);

  template <Whole kWhole>
  static MixStrip MixStripFor(unsigned negative) {
    static constexpr MixStrip kBySigns[8] = {
        MixOutput<0, kWhole>, MixOutput<1, kWhole>, MixOutput<2, kWhole>, MixOutput<3, kWhole>,
        MixOutput<4, kWhole>, MixOutput<5, kWhole>, MixOutput<6, kWhole>, MixOutput<7, kWhole>};
    return kBySigns[negative];
  }

  static MixStrip MixStripOf(const ColorMix::Formula& formula) {
    switch (WholeOf(formula)) {
      case kNoWhole:
        return MixStripFor<kNoWhole>(formula.negative);
      case kOneInput:
        return MixStripFor<kOneInput>(formula.negative);
      default:
        return MixStripFor<kAnyWhole>(formula.negative);
    }
  }

  /// Returns how many pixels are left.
  template <class Layout, bool kBits>
  static std::size_t MixByFormulas(const ColorMix& mix, std::uint8_t* pixels, std::size_t n) {
    const MixStrip functions[kPixelChannels] = {MixStripOf(mix.formulas[kBlue]),
                                                MixStripOf(mix.formulas[kGreen]),
                                                MixStripOf(mix.formulas[kRed])};
    Strip strip;
    while (n >= kStep) {
      const std::size_t steps = n / kStep < kStripSteps ? n / kStep : kStripSteps;
      for (std::size_t step = 0; step < steps; ++step) {
        const Planes p = Layout::Load(pixels + step * Layout::kBytes);
        const Bytes v[kPixelChannels] = {p.blue, p.green, p.red};
#pragma GCC unroll 3
        for (std::size_t in = 0; in < kPixelChannels; ++in) {
          strip.low[in][step] = (Words)Low(v[in]);
          strip.high[in][step] = (Words)High(v[in]);
          if constexpr (kBits) {
            FindPlaces(in, step, v[in], &strip);
          }
        }
      }
      for (std::size_t out = 0; out < kPixelChannels; ++out) {
        if constexpr (kBits) {
          if (mix.formulas[out].has_bits != 0) {
            SumBits(mix.formulas[out], &strip, steps);
          }
        }
        functions[out](mix.formulas[out], &strip, strip.mixed[out], steps);
      }
      for (std::size_t step = 0; step < steps; ++step) {
        Layout::Store(pixels + step * Layout::kBytes,
                      {strip.mixed[kBlue][step], strip.mixed[kGreen][step], strip.mixed[kRed][step],
                       Bytes{}});
      }
      pixels += steps * Layout::kBytes;
      n -= steps * kStep;
    }
    return n;
  }

  /// Three entries of tables a pixel, for contributions without formulas.
  template <std::size_t kBytes>
  static void MixByTables(const ColorMix& mix, std::uint8_t* pixels, std::size_t n) {
    for (; n > 0; --n, pixels += kBytes) {
      const auto entry = [&](PixelChannel in) {
        return *(const __m128i*)mix.contributions[in][pixels[in]];
      };
      const __m128i sum = _mm_add_epi32(_mm_add_epi32(entry(kBlue), entry(kGreen)), entry(kRed));
      const __m128i words = _mm_packs_epi32(sum, sum);
      const int bytes = _mm_cvtsi128_si32(_mm_packus_epi16(words, words));
      __builtin_memcpy(pixels, &bytes, 3);
    }
  }

  static bool HasBits(const ColorMix& mix) {
    return (mix.formulas[kBlue].has_bits | mix.formulas[kGreen].has_bits |
            mix.formulas[kRed].has_bits) != 0;
  }

  /// Returns how many pixels are left to the tables.
  template <class Layout>
  static std::size_t MixByFormulas(const ColorMix& mix, std::uint8_t* pixels, std::size_t n) {
    if (!mix.has_formulas) {
      return n;
    }
    if (!HasBits(mix)) {
      return MixByFormulas<Layout, false>(mix, pixels, n);
    }
    if constexpr (V::kShuffles) {
      return MixByFormulas<Layout, true>(mix, pixels, n);
    }
    return n;
  }

  template <class Layout, std::size_t kBytes>
  static void Mix(const ColorMix& mix, std::uint8_t* pixels, std::size_t n) {
    const std::size_t rest = MixByFormulas<Layout>(mix, pixels, n);
    MixByTables<kBytes>(mix, pixels + kBytes * (n - rest), rest);
  }

  static void MixBgr24(const ColorMix& mix, std::uint8_t* pixels, std::size_t n) {
    Mix<Bgr24, 3>(mix, pixels, n);
  }
  static void MixBgr32(const ColorMix& mix, std::uint8_t* pixels, std::size_t n) {
    Mix<Bgr32, 4>(mix, pixels, n);
  }

  static constexpr PixelKernels Kernels(const char* name) {
    return {
        .name = name,
        .convert = {{Plain<kFromGrey8, kToGrey8>, GreyToBgr24,
                     Convert<Grey8, Bgr32, kFromGrey8, kToBgr32>},
                    {Convert<Bgr24, Grey8, kFromBgr24, kToGrey8>, Plain<kFromBgr24, kToBgr24>,
                     Convert<Bgr24, Bgr32, kFromBgr24, kToBgr32>},
                    {Convert<Bgr30, Grey8, kFromBgr30, kToGrey8>,
                     Convert<Bgr30, Bgr24, kFromBgr30, kToBgr24>,
                     Convert<Bgr30, Bgr32, kFromBgr30, kToBgr32>},
                    {Convert<Yuv411, Grey8, kFromYuv411, kToGrey8>,
                     Convert<Yuv411, Bgr24, kFromYuv411, kToBgr24>,
                     Convert<Yuv411, Bgr32, kFromYuv411, kToBgr32>},
                    {Convert<Yuv422, Grey8, kFromYuv422, kToGrey8>,
                     Convert<Yuv422, Bgr24, kFromYuv422, kToBgr24>,
                     Convert<Yuv422, Bgr32, kFromYuv422, kToBgr32>},
                    {Convert<Yuv444, Grey8, kFromYuv444, kToGrey8>,
                     Convert<Yuv444, Bgr24, kFromYuv444, kToBgr24>,
                     Convert<Yuv444, Bgr32, kFromYuv444, kToBgr32>}},
        .narrow = Narrow,
        .look_up = LookUp,
        .look_up_pairs = LookUpPairs,
        .shift_luma_bgr24 = ShiftLumaBgr24,
        .shift_luma_bgr32 = ShiftLumaBgr32,
        .mix_bgr24 = MixBgr24,
        .mix_bgr32 = MixBgr32,
    };
  }
};

}  // namespace vexa::imaging

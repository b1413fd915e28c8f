/// \file
/// Pixel layouts in vectors, for any number of lanes of 16 bytes. Included by one file per
/// instruction set, after that file has switched the compiler to it.
///
/// What comes from here is compiled for that instruction set, so none of it may be shared with
/// other files: V lives in an unnamed namespace, and nothing here uses templates or inline
/// functions of other headers.
///
/// A lane works on 16 pixels that follow one another. All lanes do the same, each on its own part
/// of the image, so that nothing ever crosses from lane to lane.
#pragma once

#include <cstddef>
#include <cstdint>

#include "imaging/kernels/pixel_kernels.hpp"

namespace vexa::imaging {

/// V describes the vectors: kWidth (bytes, and so pixels of one step), the types Bytes and Words
/// (unsigned, 8 and 16 bits) and Shorts (signed, 16 bits), and these functions, each like the SSE
/// instruction in its lanes:
///   LoadLanes, StoreLanes     16 bytes for each lane, from places a given step apart
///   UpdatePairs               stores two vectors, lane for lane beside each other (32 bytes at
///                             places a given step apart), and keeps bits of a mask as they are
///   UnpackLow, UnpackHigh     bytes of the lower or upper half of each lane in turn
///   UnpackLow16, UnpackHigh16 the same with pairs of bytes
///   Pack                      signed words to bytes, saturating
///   PackInts                  signed 32 bits to signed words, saturating
///   MulHigh, MulHighUnsigned, MulRounded  (a * b) >> 16, and (a * b + 2^14) >> 15
///   Count, ShiftRight         of words, by a number that is not known at compile time
///   AddSaturated, SubSaturated  of unsigned bytes
/// V::kShuffles tells whether there are shuffles of bytes. With them V has Shuffle, Select (by a
/// mask of whole bytes), Order (16 bytes of memory in every lane) and SubSigned (signed bytes,
/// saturating); without them UpperHalf (of each lane) and
/// StoreTriples (16 pixels of three bytes).
template <class V>
struct VectorLayouts {
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
    PutQuads(p, V::UnpackLow16(bg_low, r_low), V::UnpackHigh16(bg_low, r_low));
    PutQuads(p + 32, V::UnpackLow16(bg_high, r_high), V::UnpackHigh16(bg_high, r_high));
  }

  /// Pixels of 32 bits whose fourth bytes are 0 and stay in memory: four in each lane of each
  /// vector, those of the second vector after those of the first.
  static void PutQuads(std::uint8_t* p, Bytes first, Bytes second) {
    V::UpdatePairs(p, 4 * kLane, first, second, (Bytes)(Ints{} + (0xFF << 24)));
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

  /// Luminance, in the odd bytes.
  static Bytes LumaOfYuv422(const std::uint8_t* p) {
    const Words a = (Words)V::LoadLanes(p, 2 * kLane);
    const Words b = (Words)V::LoadLanes(p + 16, 2 * kLane);
    return V::Pack((Shorts)(a >> 8), (Shorts)(b >> 8));
  }

  /// The colours of 4:2:2: what U and V add is found once for the two pixels that share them. As in
  /// FromYuv, in vectors of U and V in turn.
  static Planes ColorsOfYuv422(const std::uint8_t* p) {
    struct Colors {
      Shorts blue, green, red;
    };
    const auto convert = [](Words yuv) -> Colors {
      const Shorts luma = (Shorts)(yuv >> 8);
      const Shorts c = (Shorts)(yuv & 0xFF) - 128;
      const Shorts own = V::MulHigh(c << 2, WordsInTurn(29029, 22970)) - (Shorts)(c < 0);
      const Shorts green = V::MulHigh(c << 2, WordsInTurn(-5639, -11699)) - (Shorts)(c > 0);
      return {luma + FirstTwice(own), luma + FirstTwice(green) + SecondTwice(green),
              luma + SecondTwice(own)};
    };
    const Words a = (Words)V::LoadLanes(p, 2 * kLane);
    const Words b = (Words)V::LoadLanes(p + 16, 2 * kLane);
    const Colors low = convert(a);
    const Colors high = convert(b);
    const Bytes green = V::Pack(low.green, high.green);
    return {V::Pack(low.blue, high.blue), green, V::Pack(low.red, high.red), green};
  }

  static Shorts WordsInTurn(int first, int second) {
    return (Shorts)(Ints{} + (int)((unsigned)second << 16 | ((unsigned)first & 0xFFFF)));
  }

  /// The first or second of each pair of words in both places.
  static Shorts FirstTwice(Shorts v) {
    if constexpr (V::kShuffles) {
      static constexpr std::uint8_t kOrder[16] = {0, 1, 0, 1, 4,  5,  4,  5,
                                                  8, 9, 8, 9, 12, 13, 12, 13};
      return (Shorts)V::Shuffle((Bytes)v, V::Order(kOrder));
    } else {
      return (Shorts)(((Ints)v & 0xFFFF) | ((Ints)v << 16));
    }
  }
  static Shorts SecondTwice(Shorts v) {
    if constexpr (V::kShuffles) {
      static constexpr std::uint8_t kOrder[16] = {2,  3,  2,  3,  6,  7,  6,  7,
                                                  10, 11, 10, 11, 14, 15, 14, 15};
      return (Shorts)V::Shuffle((Bytes)v, V::Order(kOrder));
    } else {
      const Words second = (Words)v & (Words)(Ints{} + (int)0xFFFF0000U);
      return (Shorts)(second | (Words)(((Ints)v >> 16) & 0xFFFF));
    }
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
  // planes as they are stored, those of YUV in the places of blue, green and red; LoadColors gives
  // colours.

  struct Grey8 {
    static constexpr std::size_t kBytes = kStep;
    static Planes Load(const std::uint8_t* p) {
      const Bytes v = V::LoadLanes(p, kLane);
      return {v, v, v, v};
    }
    static Planes LoadColors(const std::uint8_t* p) { return Load(p); }
    static void Store(std::uint8_t* p, const Planes& planes) {
      V::StoreLanes(p, kLane, planes.grey);
    }
  };
  struct Bgr24 {
    static constexpr std::size_t kBytes = 3 * kStep;
    static Planes Load(const std::uint8_t* p) { return LoadTriples(p); }
    static Planes LoadColors(const std::uint8_t* p) { return Load(p); }
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
    static Planes LoadColors(const std::uint8_t* p) { return Load(p); }
  };
  struct Yuv411 {
    static constexpr std::size_t kBytes = kStep * 3 / 2;
    static Planes Load(const std::uint8_t* p) { return LoadYuv411(p); }
    static Planes LoadColors(const std::uint8_t* p) {
      const Planes yuv = Load(p);
      return FromYuv(yuv.blue, yuv.green, yuv.red);
    }
  };
  struct Yuv422 {
    static constexpr std::size_t kBytes = kStep * 2;
    static Planes Load(const std::uint8_t* p) {
      return {Bytes{}, Bytes{}, Bytes{}, LumaOfYuv422(p)};
    }
    static Planes LoadColors(const std::uint8_t* p) { return ColorsOfYuv422(p); }
  };
  /// U, Y, V: the luminance comes second.
  struct Yuv444 {
    static constexpr std::size_t kBytes = kStep * 3;
    static Planes Load(const std::uint8_t* p) { return LoadTriples(p); }
    static Planes LoadColors(const std::uint8_t* p) {
      const Planes uyv = Load(p);
      return FromYuv(uyv.green, uyv.blue, uyv.red);
    }
  };
};

}  // namespace vexa::imaging

/// \file
/// Vectors of one lane for VectorLayouts, with what every x86 processor has. Included by the files
/// of the instruction sets that use it; see there for the rules.
#pragma once

#include <emmintrin.h>

#include <cstddef>
#include <cstdint>

namespace vexa::imaging {
namespace {

struct Lane {
  static constexpr std::size_t kWidth = 16;
  using Bytes = std::uint8_t __attribute__((vector_size(kWidth)));
  using Words = std::uint16_t __attribute__((vector_size(kWidth)));
  using Shorts = std::int16_t __attribute__((vector_size(kWidth)));
  using Ints = std::int32_t __attribute__((vector_size(kWidth)));

  static Bytes LoadLanes(const std::uint8_t* p, std::size_t) {
    return (Bytes)_mm_loadu_si128((const __m128i*)p);
  }
  static void StoreLanes(std::uint8_t* p, std::size_t, Bytes v) {
    _mm_storeu_si128((__m128i*)p, (__m128i)v);
  }
  static void UpdatePairs(std::uint8_t* p, std::size_t, Bytes first, Bytes second, Bytes kept) {
    StoreLanes(p, 0, first | (LoadLanes(p, 0) & kept));
    StoreLanes(p + kWidth, 0, second | (LoadLanes(p + kWidth, 0) & kept));
  }
  static Bytes UnpackLow(Bytes a, Bytes b) {
    return (Bytes)_mm_unpacklo_epi8((__m128i)a, (__m128i)b);
  }
  static Bytes UnpackHigh(Bytes a, Bytes b) {
    return (Bytes)_mm_unpackhi_epi8((__m128i)a, (__m128i)b);
  }
  static Bytes UnpackLow16(Bytes a, Bytes b) {
    return (Bytes)_mm_unpacklo_epi16((__m128i)a, (__m128i)b);
  }
  static Bytes UnpackHigh16(Bytes a, Bytes b) {
    return (Bytes)_mm_unpackhi_epi16((__m128i)a, (__m128i)b);
  }
  static Bytes Pack(Shorts a, Shorts b) { return (Bytes)_mm_packus_epi16((__m128i)a, (__m128i)b); }
  static Shorts PackInts(Ints a, Ints b) { return (Shorts)_mm_packs_epi32((__m128i)a, (__m128i)b); }
  static Shorts MulHigh(Shorts a, Shorts b) {
    return (Shorts)_mm_mulhi_epi16((__m128i)a, (__m128i)b);
  }
  static Words MulHighUnsigned(Words a, Words b) {
    return (Words)_mm_mulhi_epu16((__m128i)a, (__m128i)b);
  }
  static __m128i Count(unsigned shift) { return _mm_cvtsi32_si128((int)shift); }
  static Words ShiftRight(Words v, __m128i count) {
    return (Words)_mm_srl_epi16((__m128i)v, count);
  }
  static Bytes AddSaturated(Bytes a, Bytes b) {
    return (Bytes)_mm_adds_epu8((__m128i)a, (__m128i)b);
  }
  static Bytes SubSaturated(Bytes a, Bytes b) {
    return (Bytes)_mm_subs_epu8((__m128i)a, (__m128i)b);
  }
};

}  // namespace
}  // namespace vexa::imaging

// 16 bytes at a time: for every x86 processor that the library runs on.
#include "output/jpeg/kernels/dispatch.hpp"

#if defined(__SSE2__)
#include <emmintrin.h>

#include "output/jpeg/kernels/vector_block_coder.hpp"
#include "output/jpeg/kernels/vector_colours.hpp"
#include "output/jpeg/kernels/vector_transform.hpp"

namespace vexa::output {
namespace {

struct Sse2 {
  static constexpr std::size_t kLanes = 4;
  using Floats = float __attribute__((vector_size(16), may_alias));
  using Ints = std::int32_t __attribute__((vector_size(16), may_alias));

  static __m128i Get(const void* in) { return _mm_loadu_si128(static_cast<const __m128i*>(in)); }
  static void Put(void* out, __m128i v) { _mm_storeu_si128(static_cast<__m128i*>(out), v); }

  static Floats Load(const std::uint8_t* samples) {
    std::int32_t four = 0;
    std::memcpy(&four, samples, sizeof four);
    const __m128i zero = _mm_setzero_si128();
    const __m128i words = _mm_unpacklo_epi8(_mm_cvtsi32_si128(four), zero);
    return _mm_cvtepi32_ps(_mm_unpacklo_epi16(words, zero));
  }

  static void TransposeQuarter(Floats* rows) {
    __m128 a = rows[0];
    __m128 b = rows[1];
    __m128 c = rows[2];
    __m128 d = rows[3];
    _MM_TRANSPOSE4_PS(a, b, c, d);
    rows[0] = a;
    rows[1] = b;
    rows[2] = c;
    rows[3] = d;
  }

  static void Transpose(Floats (&parts)[2][8]) {
    for (std::size_t quarter = 0; quarter < 4; ++quarter) {
      TransposeQuarter(parts[quarter / 2] + 4 * (quarter % 2));
    }
    for (std::size_t i = 0; i < 4; ++i) {
      const Floats upper_right = parts[0][4 + i];
      parts[0][4 + i] = parts[1][i];
      parts[1][i] = upper_right;
    }
  }

  static void StoreColumns(const Ints (&columns)[8], std::int16_t* out) {
    __m128i pairs[4];  // of columns: two in each 32 bits
    for (std::size_t i = 0; i < 4; ++i) {
      pairs[i] = (__m128i)((columns[2 * i] & 0xFFFF) | columns[2 * i + 1] << 16);
    }
    const __m128i low_01 = _mm_unpacklo_epi32(pairs[0], pairs[1]);
    const __m128i high_01 = _mm_unpackhi_epi32(pairs[0], pairs[1]);
    const __m128i low_23 = _mm_unpacklo_epi32(pairs[2], pairs[3]);
    const __m128i high_23 = _mm_unpackhi_epi32(pairs[2], pairs[3]);
    Put(out, _mm_unpacklo_epi64(low_01, low_23));
    Put(out + 8, _mm_unpackhi_epi64(low_01, low_23));
    Put(out + 16, _mm_unpacklo_epi64(high_01, high_23));
    Put(out + 24, _mm_unpackhi_epi64(high_01, high_23));
  }

  static bool Any(Ints mask) {
    return _mm_movemask_epi8(_mm_cmpeq_epi32((__m128i)mask, _mm_setzero_si128())) != 0xFFFF;
  }

  static constexpr std::ptrdiff_t kCopied = 16;

  static std::uint32_t CopyFindingFullBytes(const std::uint8_t* in, std::uint8_t* out) {
    const __m128i bytes = Get(in);
    Put(out, bytes);
    return static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(bytes, _mm_set1_epi8(-1))));
  }

  static bool AreSmall(const std::int16_t* coefficients) {
    const __m128i range = _mm_set1_epi16(kCoefficientLimit);
    __m128i bits = _mm_setzero_si128();
    for (std::size_t row = 0; row < 8; ++row) {
      bits = _mm_or_si128(bits, _mm_add_epi16(Get(coefficients + 8 * row), range));
    }
    return !Any((Ints)_mm_srli_epi16(bits, 11));
  }

  struct Pixels {
    Ints blue_red;
    Ints green_green;
  };

  template <std::size_t kPixelSize>
  static Pixels LoadPixels(const std::uint8_t* bgr) {
    __m128i pixels = Get(bgr);
    if constexpr (kPixelSize == 3) {
      const __m128i pixels_01 = _mm_unpacklo_epi32(pixels, _mm_srli_si128(pixels, 3));
      const __m128i pixels_23 =
          _mm_unpacklo_epi32(_mm_srli_si128(pixels, 6), _mm_srli_si128(pixels, 9));
      pixels = _mm_unpacklo_epi64(pixels_01, pixels_23);
    }
    const Ints green = (Ints)_mm_srli_epi32(pixels, 8) & 0xFF;
    return {.blue_red = (Ints)pixels & 0x00FF00FF, .green_green = green | green << 16};
  }

  static Ints MultiplyAdd(Ints a, Ints b) { return (Ints)_mm_madd_epi16((__m128i)a, (__m128i)b); }

  static void PutBytes(std::uint8_t* out, const Ints (&four)[4]) {
    Put(out, _mm_packus_epi16(_mm_packs_epi32((__m128i)four[0], (__m128i)four[1]),
                              _mm_packs_epi32((__m128i)four[2], (__m128i)four[3])));
  }

  static std::uint64_t NonZero(const std::int16_t* coefficients) {
    std::uint64_t zeros = 0;
    for (std::size_t quarter = 0; quarter < 4; ++quarter) {
      const std::int16_t* rows = coefficients + 16 * quarter;
      const __m128i bytes = _mm_packs_epi16(Get(rows), Get(rows + 8));
      const int mask = _mm_movemask_epi8(_mm_cmpeq_epi8(bytes, _mm_setzero_si128()));
      zeros |= static_cast<std::uint64_t>(mask) << (16 * quarter);
    }
    return ~zeros;
  }
};

void Halve(const std::uint8_t* in, std::uint8_t* out, std::size_t n) {
  constexpr std::size_t kStep = 16;
  const __m128i low_bytes = _mm_set1_epi16(0xFF);
  const __m128i bias = _mm_set1_epi32(1 << 16);
  const auto eight = [&](const std::uint8_t* from) {
    const __m128i pairs = Sse2::Get(from);
    const __m128i sum = _mm_add_epi16(_mm_and_si128(pairs, low_bytes), _mm_srli_epi16(pairs, 8));
    return _mm_srli_epi16(_mm_add_epi16(sum, bias), 1);
  };
  std::size_t i = 0;
  for (; i + kStep <= n; i += kStep) {
    Sse2::Put(out + i, _mm_packus_epi16(eight(in + 2 * i), eight(in + 2 * i + kStep)));
  }
  kReferenceJpegKernels.halve(in + 2 * i, out + i, n - i);
}

}  // namespace

constinit const JpegKernels kSse2JpegKernels = {
    .name = "sse2",
    .convert_bgr24 = VectorColours<Sse2>::Convert<3>,
    .convert_bgr32 = VectorColours<Sse2>::Convert<4>,
    .halve = Halve,
    .transform = VectorTransform<Sse2>::Transform,
    .code_blocks = VectorBlockCoder<Sse2>::CodeBlocks,
};

}  // namespace vexa::output
#endif

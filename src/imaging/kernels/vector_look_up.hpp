/// \file
/// Table look-up in vectors, for processors that can shuffle and pick bytes; see vector_frames.hpp.
#pragma once

#include "imaging/kernels/frame_kernels.hpp"

namespace vexa::imaging {

/// V's Pick goes by the highest bit of each byte of its mask.
template <class V>
struct VectorLookUp {
  using Vector = typename V::Vector;

  /// table[index] for each index. Indices below 64, all that most pictures have, take a quarter of
  /// the work.
  static Vector Of(const Sample* table, Vector indices) {
    const Vector bit5 = V::template ShiftWordsLeft<2>(indices);
    const Vector bit4 = V::template ShiftWordsLeft<3>(indices);
    const Vector low = Quarter(table, indices, bit5, bit4);
    if (V::AllZero(V::And(indices, V::Bytes(0xC0)))) {
      return low;
    }
    // Shuffles give 0 for indices with bit 7 set, which makes the half that does not apply vanish.
    const Vector bit6 = V::template ShiftWordsLeft<1>(indices);
    const Vector upper = V::Xor(indices, V::Bytes(0x80));
    const Vector lower_half = V::Pick(bit6, Quarter(table + 64, indices, bit5, bit4), low);
    const Vector upper_half = V::Pick(bit6, Quarter(table + 192, upper, bit5, bit4),
                                      Quarter(table + 128, upper, bit5, bit4));
    return V::Or(lower_half, upper_half);
  }

 private:
  /// Of 64 entries, by bits 0 to 5 of the indices.
  static Vector Quarter(const Sample* table, Vector indices, Vector bit5, Vector bit4) {
    const auto sixteen = [=](int first) {
      return V::Shuffle(V::LoadTwice(table + first), indices);
    };
    return V::Pick(bit5, V::Pick(bit4, sixteen(48), sixteen(32)),
                   V::Pick(bit4, sixteen(16), sixteen(0)));
  }
};

}  // namespace vexa::imaging

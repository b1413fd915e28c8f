/// \file
/// Table look-up in vectors, for processors that can shuffle bytes; see vector_frames.hpp.
#pragma once

#include "imaging/kernels/frame_kernels.hpp"

namespace vexa::imaging {

/// The entries, from `first` on, of those indices that lie in 16 * first .. 16 * last + 15; zero
/// for the others. A shuffle looks 16 entries up and gives 0 where the index has bit 7 set: an
/// index that lies in the piece becomes 0x70..0x7F, all others more.
template <class V>
static typename V::Vector LookUpInPieces(const Sample* table, typename V::Vector indices, int first,
                                         int last) {
  typename V::Vector found = V::Zero();
#pragma GCC unroll 12
  for (int piece = first; piece <= last; ++piece) {
    const auto place = V::Xor(indices, V::Bytes(static_cast<std::uint8_t>(16 * piece)));
    found = V::Or(
        found, V::Shuffle(V::LoadTwice(table + 16 * piece), V::AddClamped(place, V::Bytes(0x70))));
  }
  return found;
}

/// table[index] for each index. Indices below 64, all that most pictures have, take a quarter of
/// the work.
template <class V>
static typename V::Vector LookUpByShuffles(const Sample* table, typename V::Vector indices) {
  const auto low = LookUpInPieces<V>(table, indices, 0, 3);
  if (V::AllZero(V::And(indices, V::Bytes(0xC0)))) {
    return low;
  }
  return V::Or(low, LookUpInPieces<V>(table, indices, 4, 15));
}

}  // namespace vexa::imaging

#include "imaging/kernels/dispatch.hpp"

#include <array>

namespace vexa::imaging {
namespace {

struct Choice {
  std::array<const RowKernels*, 1> versions{};
  std::size_t count = 0;

  Choice() { versions[count++] = &kReferenceRowKernels; }
};

const Choice& Chosen() {
  static const Choice choice;
  return choice;
}

}  // namespace

std::span<const RowKernels* const> UsableRowKernels() {
  return std::span(Chosen().versions).first(Chosen().count);
}

const RowKernels& BestRowKernels() { return *UsableRowKernels().back(); }

}  // namespace vexa::imaging

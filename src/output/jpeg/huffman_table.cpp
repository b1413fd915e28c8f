#include "output/jpeg/huffman_table.hpp"

#include <algorithm>
#include <new>
#include <numeric>

namespace vexa::output {

// Blocks hold their object from its creation on; the objects need no destruction.

CodingStatus CJPEGEncoderHuffmanTable::Create() {
  code_table_.reset();
  code_table_ = AllocateAligned(sizeof(CodeTable));
  if (code_table_ == nullptr) {
    return CodingStatus::kNoMemory;
  }
  new (code_table_.get()) CodeTable;
  return CodingStatus::kOk;
}

CodingStatus CJPEGEncoderHuffmanTable::Init(std::uint8_t identifier, HuffmanClass table_class,
                                            std::span<const std::uint8_t, 16> counts,
                                            std::span<const std::uint8_t> values) {
  identifier_ = identifier & 15U;
  class_ = table_class;
  std::copy(counts.begin(), counts.end(), counts_.begin());
  values_ = {};
  std::copy_n(values.begin(), std::min(values.size(), values_.size()), values_.begin());
  const bool sizes_only =
      std::all_of(values.begin(), values.end(), [](std::uint8_t value) { return value < 16; });
  if (code_table_ == nullptr || (class_ == HuffmanClass::kDc && !sizes_only)) {
    return CodingStatus::kCodingFailed;
  }
  return std::launder(reinterpret_cast<CodeTable*>(code_table_.get()))->Build(counts, values);
}

CodingStatus CJPEGEncoderHuffmanTable::Destroy() {
  identifier_ = 0;
  class_ = HuffmanClass::kDc;
  counts_ = {};
  values_ = {};
  code_table_.reset();
  return CodingStatus::kOk;
}

std::span<const std::uint8_t> CJPEGEncoderHuffmanTable::values() const {
  const std::size_t used = std::accumulate(counts_.begin(), counts_.end(), std::size_t{0});
  return std::span(values_).first(std::min(used, values_.size()));
}

const CodeTable& CJPEGEncoderHuffmanTable::codes() const {
  return *std::launder(reinterpret_cast<const CodeTable*>(code_table_.get()));
}

CodingStatus CJPEGEncoderHuffmanState::Create() {
  block_.reset();
  block_ = AllocateAligned(sizeof(PendingBits));
  if (block_ == nullptr) {
    return CodingStatus::kNoMemory;
  }
  new (block_.get()) PendingBits;
  return CodingStatus::kOk;
}

void CJPEGEncoderHuffmanState::Reset() { pending() = {}; }

CodingStatus CJPEGEncoderHuffmanState::Destroy() {
  block_.reset();
  return CodingStatus::kOk;
}

PendingBits& CJPEGEncoderHuffmanState::pending() {
  return *std::launder(reinterpret_cast<PendingBits*>(block_.get()));
}

}  // namespace vexa::output

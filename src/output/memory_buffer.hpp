/// \file
/// Memory for sample planes, coefficients and byte buffers: aligned as vector code likes it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "output/coding_status.hpp"

namespace vexa::output {

/// Every aligned block starts on a multiple of this many bytes: one AVX2 register.
inline constexpr std::size_t kBlockAlignment = 32;

struct AlignedBlockDeleter {
  void operator()(std::uint8_t* block) const;
};

/// Owns an aligned block. Its content starts out undefined.
using AlignedBlock = std::unique_ptr<std::uint8_t[], AlignedBlockDeleter>;

/// A block of `size` bytes; null when that is less than 1 or memory has run out.
AlignedBlock AllocateAligned(std::int32_t size);

/// An aligned block that knows its size.
class CMemoryBuffer {
 public:
  CMemoryBuffer() = default;
  virtual ~CMemoryBuffer() = default;
  CMemoryBuffer(const CMemoryBuffer&) = delete;
  CMemoryBuffer& operator=(const CMemoryBuffer&) = delete;

  /// Replaces the block by one of `size` bytes. kNoMemory leaves the buffer empty.
  CodingStatus Allocate(std::int32_t size);
  /// Leaves the buffer empty.
  CodingStatus Free();

  std::int32_t size() const { return size_; }
  std::uint8_t* data() const { return data_.get(); }

 private:
  std::int32_t size_ = 0;
  AlignedBlock data_;
};

}  // namespace vexa::output

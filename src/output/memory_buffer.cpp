#include "output/memory_buffer.hpp"

#include <cstring>
#include <new>

namespace vexa::output {

// The heap's own address of a block stands just below the aligned one.

void AlignedBlockDeleter::operator()(std::uint8_t* block) const {
  void* heap_block = nullptr;
  std::memcpy(&heap_block, block - sizeof heap_block, sizeof heap_block);
  ::operator delete(heap_block);
}

AlignedBlock AllocateAligned(std::int32_t size) {
  if (size < 1) {
    return nullptr;
  }
  const std::size_t heap_size = static_cast<std::size_t>(size) + kBlockAlignment + sizeof(void*);
  void* const heap_block = ::operator new(heap_size, std::nothrow);
  if (heap_block == nullptr) {
    return nullptr;
  }
  const std::uintptr_t lowest = reinterpret_cast<std::uintptr_t>(heap_block) + sizeof(void*);
  const std::size_t up = (kBlockAlignment - lowest % kBlockAlignment) % kBlockAlignment;
  std::uint8_t* const block = static_cast<std::uint8_t*>(heap_block) + sizeof(void*) + up;
  std::memcpy(block - sizeof heap_block, &heap_block, sizeof heap_block);
  return AlignedBlock(block);
}

CodingStatus CMemoryBuffer::Allocate(std::int32_t size) {
  data_.reset();
  data_ = AllocateAligned(size);
  size_ = data_ == nullptr ? 0 : size;
  return data_ == nullptr ? CodingStatus::kNoMemory : CodingStatus::kOk;
}

CodingStatus CMemoryBuffer::Free() {
  data_.reset();
  size_ = 0;
  return CodingStatus::kOk;
}

}  // namespace vexa::output

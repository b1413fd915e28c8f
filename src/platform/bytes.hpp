/// \file
/// Little-endian access to wire and file layouts.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace vexa {

constexpr std::uint16_t LoadLe16(std::span<const std::uint8_t> bytes, std::size_t offset) {
  return static_cast<std::uint16_t>(bytes[offset] | (bytes[offset + 1] << 8));
}

constexpr std::uint32_t LoadLe32(std::span<const std::uint8_t> bytes, std::size_t offset) {
  return static_cast<std::uint32_t>(LoadLe16(bytes, offset)) |
         (static_cast<std::uint32_t>(LoadLe16(bytes, offset + 2)) << 16);
}

constexpr void StoreLe16(std::span<std::uint8_t> bytes, std::size_t offset, std::uint16_t value) {
  bytes[offset] = static_cast<std::uint8_t>(value & 0xFF);
  bytes[offset + 1] = static_cast<std::uint8_t>(value >> 8);
}

constexpr void StoreLe32(std::span<std::uint8_t> bytes, std::size_t offset, std::uint32_t value) {
  StoreLe16(bytes, offset, static_cast<std::uint16_t>(value & 0xFFFF));
  StoreLe16(bytes, offset + 2, static_cast<std::uint16_t>(value >> 16));
}

}  // namespace vexa

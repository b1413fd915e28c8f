/// \file
/// The record with which an application names a camera.
#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "device/camera_memory.hpp"
#include "platform/status.hpp"

namespace vexa::device {

/// Width of the characters of a user ID's text.
enum class TextForm { kNarrow, kWide };  // narrow code page, UTF-16LE

/// A number and a text of up to 250 bytes. Texts are handled as their bytes.
class UserId {
 public:
  UserId() = default;
  /// Takes the text in a buffer: up to and including its first zero, else the whole buffer (its
  /// whole characters). More than 250 bytes are cut to 249, of wide text to 248.
  UserId(std::uint32_t number, std::span<const std::uint8_t> text, TextForm form);

  Status Read(CameraMemory& memory) { return memory.AccessUserId(MemoryAccess::kRead, record_); }
  Status Write(CameraMemory& memory) { return memory.AccessUserId(MemoryAccess::kWrite, record_); }

  std::uint32_t number() const;
  /// Copies the text into a buffer of zeros, converting it when it is stored in the other form.
  /// Text of the wanted form that does not fit is cut to leave a terminating zero. A record that
  /// holds no valid text, and a buffer of 0 bytes, succeed without any. Converted text has to fit,
  /// wide text with a terminating zero: kInsufficientBuffer, and the buffer keeps its zeros.
  Status CopyText(std::span<std::uint8_t> buffer, TextForm form) const;

 private:
  TextForm form() const;
  std::span<const std::uint8_t> text() const;

  std::array<std::uint8_t, CameraMemory::kUserIdSize> record_{};
};

}  // namespace vexa::device

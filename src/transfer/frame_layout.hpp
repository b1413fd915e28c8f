/// \file
/// Sizes of frames and of the reads that fetch them.
#pragma once

#include <cstddef>
#include <cstdint>

#include "device/driver_requests.hpp"

namespace vexa::transfer {

/// Bytes of an image of width x height pixels in a transfer format (one of its codes; any other
/// value counts as one byte per pixel).
std::uint64_t ImageSize(std::uint32_t transfer_format, std::uint32_t width, std::uint32_t height);

/// The sizes fixed when a transfer starts, in bytes.
struct FrameLayout {
  std::size_t header = 0;  // in front of the image, or a transfer of its own
  std::size_t image = 0;
  std::size_t buffer = 0;       // room for a frame, always more than a frame
  std::size_t read_length = 0;  // of one read request

  bool OneReadPerFrame() const { return read_length == buffer; }
};

/// The buffer is the next multiple of the link's alignment above header and image, so that every
/// frame ends with a short read; at least 16 KiB on SuperSpeed links. Throws std::bad_alloc when
/// the sizes exceed the address space.
FrameLayout MakeFrameLayout(std::uint32_t header, std::uint64_t image, device::UsbSpeed speed,
                            std::uint32_t max_transfer_size);

}  // namespace vexa::transfer

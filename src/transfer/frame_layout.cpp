#include "transfer/frame_layout.hpp"

#include <algorithm>
#include <new>

namespace vexa::transfer {

std::uint64_t ImageSize(std::uint32_t transfer_format, std::uint32_t width, std::uint32_t height) {
  const std::uint64_t pixels = std::uint64_t{width} * height;
  switch (transfer_format) {
    case 0x0002:
    case 0x0004:
    case 0x0008:
    case 0x0010:
    case 0x0040:
    case 0x0080:
    case 0x0100:
    case 0x0200:
    case 0x2000:
      return 2 * pixels;
    case 0x1000:
      return pixels + pixels / 2;
    case 0x0400:
    case 0x4000:
      return 3 * pixels;
    case 0x0800:
      return 4 * pixels;
    default:
      return pixels;
  }
}

FrameLayout MakeFrameLayout(std::uint32_t header, std::uint64_t image, device::UsbSpeed speed,
                            std::uint32_t max_transfer_size) {
  const bool super_speed = speed == device::UsbSpeed::kSuper;
  const std::uint64_t alignment = super_speed ? 1024 : 512;
  const std::uint64_t smallest = super_speed ? 16384 : 0;
  const std::uint64_t buffer =
      std::max(smallest, (image + header + alignment) / alignment * alignment);
  if (image > PTRDIFF_MAX || buffer > PTRDIFF_MAX) {
    throw std::bad_alloc();
  }
  return {
      .header = header,
      .image = static_cast<std::size_t>(image),
      .buffer = static_cast<std::size_t>(buffer),
      .read_length = std::min<std::size_t>(static_cast<std::size_t>(buffer), max_transfer_size)};
}

}  // namespace vexa::transfer

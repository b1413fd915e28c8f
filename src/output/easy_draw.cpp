#include "output/easy_draw.hpp"

#include <cstddef>

#include "platform/bytes.hpp"

namespace vexa::output {
namespace {

constexpr std::size_t kHeaderSize = 40;  // BITMAPINFOHEADER, and the places of its members
constexpr std::size_t kSize = 0;
constexpr std::size_t kWidth = 4;
constexpr std::size_t kHeight = 8;
constexpr std::size_t kPlanes = 12;
constexpr std::size_t kBitCount = 14;
constexpr std::size_t kPaletteEntries = 256;
constexpr std::uint32_t kGreyStep = 0x010101;  // one level more of blue, green and red

constexpr std::uint32_t kBgr24 = 4;
constexpr std::uint32_t kBgr32 = 8;

std::uint16_t BitCountOf(std::uint32_t format) {
  return static_cast<std::uint16_t>(format == kBgr24 ? 24 : format == kBgr32 ? 32 : 8);
}

/// From rows counted from the top to rows counted from the bottom. Modulo 2^32: any values come
/// in, and the system refuses or clips what makes no sense.
int FromBottom(std::uint32_t image_height, int y, int height) {
  return static_cast<int>(image_height - static_cast<std::uint32_t>(y) -
                          static_cast<std::uint32_t>(height));
}

}  // namespace

CEasyDraw::CEasyDraw() : info_(kHeaderSize + 4 * kPaletteEntries) {
  StoreLe32(info_, kSize, kHeaderSize);
  StoreLe16(info_, kPlanes, 1);
  for (std::uint32_t level = 0; level < kPaletteEntries; ++level) {
    StoreLe32(info_, kHeaderSize + 4 * level, level * kGreyStep);
  }
}

CEasyDraw::~CEasyDraw() = default;

int CEasyDraw::Draw(void* device_context, const platform::DrawArea& destination,
                    const platform::DrawArea& source, const Picture& picture) {
  StoreLe32(info_, kWidth, picture.width);
  StoreLe32(info_, kHeight, 0U - picture.height);  // negative: top row first
  StoreLe16(info_, kBitCount, BitCountOf(picture.format));
  const platform::Bitmap bitmap{.info = info_, .pixels = picture.pixels};
  if (destination.width == source.width && destination.height == source.height) {
    return platform::CopyBitmap(device_context, destination, source.x,
                                FromBottom(picture.height, 0, destination.height),
                                static_cast<std::uint32_t>(source.y), bitmap);
  }
  platform::DrawArea stretched = source;
  stretched.y = FromBottom(picture.height, source.y, source.height);
  const int earlier = platform::SetStretchMode(device_context, platform::kColorOnColor);
  const int lines = platform::StretchBitmap(device_context, destination, stretched, bitmap);
  if (earlier != 0) {  // else there is no device context, whose error stays
    platform::SetStretchMode(device_context, earlier);
  }
  return lines;
}

}  // namespace vexa::output

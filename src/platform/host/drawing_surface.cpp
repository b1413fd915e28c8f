#include "platform/host/drawing_surface.hpp"

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

#include "platform/bytes.hpp"
#include "platform/drawing_surface.hpp"
#include "platform/host/bitmap_reader.hpp"
#include "platform/host/pixel_map.hpp"
#include "platform/last_error.hpp"

namespace vexa::platform {
namespace {

using host::Run;
using host::Shrink;

constexpr std::size_t kPixelSize = 4;  // of what ReadSurface gives
constexpr int kBlackOnWhite = 1;       // the stretch modes and their range in GDI;
constexpr int kHalftone = 4;           // a new device context has the first

class Surface {
 public:
  Surface(std::uint32_t width, std::uint32_t height)
      : width_(width), height_(height), pixels_(std::size_t{width} * height) {}

  /// Result: the bitmap's scan lines; 0 when nothing of it was asked for.
  int Draw(const host::BitmapReader& bitmap, const Run& columns, const Run& rows,
           const Run& source_columns, const Run& source_rows) {
    if (!host::Overlaps(source_columns, bitmap.width()) ||
        !host::Overlaps(source_rows, bitmap.height())) {
      return 0;
    }
    const std::lock_guard lock(mutex_);
    const auto column_pairs =
        host::MapPixels(columns, width_, source_columns, bitmap.width(), Shrink::kLast);
    for (const auto& row :
         host::MapPixels(rows, height_, source_rows, bitmap.height(), Shrink::kFirst)) {
      for (const auto& column : column_pairs) {
        if (const auto color = bitmap.Pixel(column.source, row.source)) {
          pixels_[row.destination * width_ + column.destination] = *color;
        }
      }
    }
    return static_cast<int>(bitmap.height());
  }

  Status Read(std::span<std::uint8_t> pixels) const {
    const std::lock_guard lock(mutex_);
    if (pixels.size() / kPixelSize < pixels_.size()) {
      return error::kInsufficientBuffer;
    }
    for (std::size_t i = 0; i < pixels_.size(); ++i) {
      StoreLe32(pixels, kPixelSize * i, pixels_[i]);
    }
    return {};
  }

  int stretch_mode() const {
    const std::lock_guard lock(mutex_);
    return stretch_mode_;
  }

  int ExchangeStretchMode(int mode) {
    const std::lock_guard lock(mutex_);
    return std::exchange(stretch_mode_, mode);
  }

 private:
  mutable std::mutex mutex_;
  const std::uint32_t width_;
  const std::uint32_t height_;
  std::vector<std::uint32_t> pixels_;  // 0x00RRGGBB
  int stretch_mode_ = kBlackOnWhite;
};

/// The live surfaces by their numbers.
class SurfaceRegistry {
 public:
  void* Add(std::shared_ptr<Surface> surface) {
    const std::lock_guard lock(mutex_);
    next_number_ += kNumberStep;
    surfaces_.emplace(next_number_, std::move(surface));
    // A name in the form of a pointer, never followed. NOLINTNEXTLINE(performance-no-int-to-ptr)
    return reinterpret_cast<void*>(next_number_);
  }

  std::shared_ptr<Surface> Find(void* handle) {
    const std::lock_guard lock(mutex_);
    const auto found = surfaces_.find(reinterpret_cast<std::uintptr_t>(handle));
    return found != surfaces_.end() ? found->second : nullptr;
  }

  bool Remove(void* handle) {
    const std::lock_guard lock(mutex_);
    return surfaces_.erase(reinterpret_cast<std::uintptr_t>(handle)) != 0;
  }

 private:
  // Multiples of 4 and 1: neither addresses nor numbers of message queues, which stand for windows.
  static constexpr std::uintptr_t kNumberStep = 4;

  std::mutex mutex_;
  std::map<std::uintptr_t, std::shared_ptr<Surface>> surfaces_;
  std::uintptr_t next_number_ = 1;
};

SurfaceRegistry& Surfaces() {
  static SurfaceRegistry registry;
  return registry;
}

/// The surface behind a device context; null, with the last error, when there is none.
std::shared_ptr<Surface> FindSurface(void* device_context) {
  std::shared_ptr<Surface> surface = Surfaces().Find(device_context);
  if (surface == nullptr) {
    SetLastErrorCode(error::kInvalidHandle);
  }
  return surface;
}

/// A reader for a bitmap; nothing, with the last error, when it cannot be read.
std::optional<host::BitmapReader> ReaderOf(const Bitmap& bitmap) {
  auto reader = host::BitmapReader::Make(bitmap);
  if (!reader) {
    SetLastErrorCode(error::kInvalidParameter);
  }
  return reader;
}

/// The pixels of a size given with its direction; a mirrored run begins with the pixel given, too.
Run RunOf(std::int64_t first, std::int64_t size) {
  return size >= 0 ? Run{first, size, 1} : Run{first, -size, -1};
}

}  // namespace

int CopyBitmap(void* device_context, const DrawArea& destination, int source_x, int source_y,
               std::uint32_t first_scan, const Bitmap& bitmap) {
  const std::shared_ptr<Surface> surface = FindSurface(device_context);
  const auto reader = surface != nullptr ? ReaderOf(bitmap) : std::nullopt;
  if (!reader || first_scan >= reader->height()) {
    return 0;
  }
  const Run columns{source_x, destination.width};
  const Run rows{reader->height() - source_y - destination.height + first_scan, destination.height};
  return surface->Draw(*reader, {destination.x, destination.width},
                       {destination.y, destination.height}, columns, rows);
}

int StretchBitmap(void* device_context, const DrawArea& destination, const DrawArea& source,
                  const Bitmap& bitmap) {
  const std::shared_ptr<Surface> surface = FindSurface(device_context);
  const auto reader = surface != nullptr ? ReaderOf(bitmap) : std::nullopt;
  if (!reader) {
    return 0;
  }
  const std::int64_t top = reader->height() - source.y - source.height;
  return surface->Draw(*reader, RunOf(destination.x, destination.width),
                       RunOf(destination.y, destination.height), RunOf(source.x, source.width),
                       RunOf(top, source.height));
}

int SetStretchMode(void* device_context, int mode) {
  const std::shared_ptr<Surface> surface = FindSurface(device_context);
  if (surface == nullptr) {
    return 0;
  }
  if (mode < kBlackOnWhite || mode > kHalftone) {
    SetLastErrorCode(error::kInvalidParameter);
    return 0;
  }
  return surface->ExchangeStretchMode(mode);
}

namespace host {

void* CreateSurface(std::uint32_t width, std::uint32_t height) {
  const auto valid = [](std::uint32_t side) { return side >= 1 && side <= kMaxSurfaceSide; };
  if (!valid(width) || !valid(height)) {
    return nullptr;
  }
  return Surfaces().Add(std::make_shared<Surface>(width, height));
}

Status DestroySurface(void* surface) {
  return Surfaces().Remove(surface) ? error::kNone : error::kInvalidHandle;
}

Status ReadSurface(void* surface, std::span<std::uint8_t> pixels) {
  const std::shared_ptr<Surface> found = Surfaces().Find(surface);
  return found != nullptr ? found->Read(pixels) : error::kInvalidHandle;
}

int StretchModeOf(void* surface) {
  const std::shared_ptr<Surface> found = FindSurface(surface);
  return found != nullptr ? found->stretch_mode() : 0;
}

}  // namespace host
}  // namespace vexa::platform

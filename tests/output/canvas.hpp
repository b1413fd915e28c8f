/// \file
/// Something to draw on: on Windows a memory device context with a 32-bit bitmap, elsewhere a
/// drawing surface of the library.
#pragma once

#include <cstdint>
#include <vector>

#include "VexaAPI.h"

namespace vexa::test {

class Canvas {
 public:
  Canvas(int width, int height);
  Canvas(const Canvas&) = delete;
  Canvas& operator=(const Canvas&) = delete;
  ~Canvas();

  HDC context() const { return context_; }
  /// 0x00RRGGBB, top row first.
  std::vector<std::uint32_t> Pixels() const;
  int StretchMode() const;
  void SetStretchMode(int mode);

 private:
  const int width_;
  const int height_;
  HDC context_ = nullptr;
  void* bitmap_ = nullptr;  // handle and pixels of the bitmap, where the context has one
  void* pixels_ = nullptr;
};

}  // namespace vexa::test

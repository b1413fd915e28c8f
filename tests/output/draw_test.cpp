// Drawing: the same expectations for GDI and for the surfaces that stand in for it elsewhere.

#include <algorithm>

#include "cameras.hpp"
#include "library/allocation_counter.hpp"
#include "library/camera_fixture.hpp"
#include "output/canvas.hpp"

namespace vexa::test {
namespace {

using Pixels = std::vector<std::uint32_t>;
using Indexes = std::vector<int>;  // of source pixels, -1: nothing drawn

constexpr int kSide = 8;     // of the image
constexpr int kCanvas = 10;  // side of the canvas

struct Area {
  int x, y, width, height;
};

std::uint32_t Grey(int level) { return static_cast<std::uint32_t>(level) * 0x010101; }

class DrawTest : public CameraTest {
 protected:
  DrawTest() {
    Plug();
    camera_ = Open();
    for (int i = 0; i < kSide * kSide; ++i) {
      image_.push_back(static_cast<BYTE>(i + 1));
    }
  }

  int Draw(const Canvas& canvas, const Area& to, const Area& from, const BYTE* image,
           DWORD format = 1) {
    return Vexa_Draw(camera_, canvas.context(), to.x, to.y, to.width, to.height, from.x, from.y,
                     from.width, from.height, kSide, kSide, image, format);
  }

  /// What the canvas shows of the grey image.
  Pixels Expected(const Indexes& columns, const Indexes& rows) const {
    Pixels pixels(kCanvas * kCanvas);
    for (std::size_t y = 0; y < rows.size(); ++y) {
      for (std::size_t x = 0; x < columns.size(); ++x) {
        if (columns[x] >= 0 && rows[y] >= 0) {
          pixels[y * kCanvas + x] =
              Grey(image_[static_cast<std::size_t>(rows[y] * kSide + columns[x])]);
        }
      }
    }
    return pixels;
  }

  HANDLE camera_ = nullptr;
  Canvas canvas_{kCanvas, kCanvas};
  std::vector<BYTE> image_;  // grey, every pixel different
};

/// The source pixel of every canvas pixel when nothing is scaled.
Indexes Shifted(int to, int from, int size) {
  Indexes indexes(kCanvas, -1);
  for (int i = std::max(to, 0); i < std::min(to + size, kCanvas); ++i) {
    const int source = i - to + from;
    indexes[static_cast<std::size_t>(i)] = source < kSide ? source : -1;
  }
  return indexes;
}

TEST_F(DrawTest, CopiesUnscaledAndClipped) {
  struct Case {
    Area to, from;
    int lines;
  };
  for (const Case& test : {
           Case{{1, 2, 8, 8}, {0, 0, 8, 8}, 8},
           Case{{3, 1, 2, 4}, {5, 3, 2, 4}, 8},
           Case{{-3, 5, 8, 8}, {0, 0, 8, 8}, 8},
           Case{{-2, -1, 20, 30}, {0, 0, 20, 30}, 8},
           Case{{2, 2, 4, 4}, {6, 5, 4, 4}, 8},
           Case{{-9, 0, 8, 8}, {0, 0, 8, 8}, 8},
           Case{{0, 0, 4, 4}, {0, 8, 4, 4}, 0},
           Case{{0, 0, 4, 4}, {8, 0, 4, 4}, 0},
           Case{{0, 0, 4, 4}, {0, -1, 4, 4}, 0},
       }) {
    SCOPED_TRACE(testing::Message() << test.to.x << ", " << test.to.y);
    const Canvas canvas(kCanvas, kCanvas);
    EXPECT_EQ(Draw(canvas, test.to, test.from, image_.data()), test.lines);
    EXPECT_EQ(canvas.Pixels(), test.lines == 0
                                   ? Pixels(kCanvas * kCanvas)
                                   : Expected(Shifted(test.to.x, test.from.x, test.to.width),
                                              Shifted(test.to.y, test.from.y, test.to.height)));
  }
}

TEST_F(DrawTest, StretchesToTheNearestPixels) {
  constexpr int kNo = -1;
  struct Case {
    int to, to_size, from, from_size;  // on both axes
    Indexes columns, rows;             // no rows: as the columns
  };
  const Case kCases[] = {
      {0, 8, 2, 4, {2, 2, 3, 3, 4, 4, 5, 5}, {}},
      {1, 6, 0, 4, {kNo, 0, 0, 1, 2, 2, 3}, {}},
      {0, 5, 3, 4, {3, 4, 4, 5, 6}, {}},
      {0, 4, 0, 8, {1, 3, 5, 7}, {0, 2, 4, 6}},
      {2, 3, 4, 4, {kNo, kNo, 4, 6, 7}, {kNo, kNo, 4, 5, 7}},
      {0, 1, 0, 8, {7}, {0}},
      {-3, 8, 0, 4, {1, 2, 2, 3, 3}, {}},
      {7, 8, 0, 4, {kNo, kNo, kNo, kNo, kNo, kNo, kNo, 0, 0, 1}, {}},
      {-70, 160, 0, 8, {3, 3, 3, 3, 3, 3, 3, 3, 3, 3}, {}},
      {0, 8, -1, 4, {kNo, kNo, 0, 0, 1, 1, 2, 2}, {}},
      {0, 8, 6, 4, {6, 6, 7, 7}, {}},
      {7, -8, 0, 4, {3, 3, 2, 2, 1, 1, 0, 0}, {}},
      {0, 8, 4, -4, {4, 4, 3, 3, 2, 2, 1, 1}, {}},
  };
  for (const Case& test : kCases) {
    SCOPED_TRACE(testing::PrintToString(test.columns));
    Canvas canvas(kCanvas, kCanvas);
    EXPECT_EQ(Draw(canvas, {test.to, test.to, test.to_size, test.to_size},
                   {test.from, test.from, test.from_size, test.from_size}, image_.data()),
              kSide);
    EXPECT_EQ(canvas.Pixels(),
              Expected(test.columns, test.rows.empty() ? test.columns : test.rows));
  }
  // One axis differs: that is stretched, too.
  Canvas canvas(kCanvas, kCanvas);
  Draw(canvas, {0, 0, 4, 2}, {0, 0, 2, 2}, image_.data());
  EXPECT_EQ(canvas.Pixels(), Expected({0, 0, 1, 1}, {0, 1}));
}

TEST_F(DrawTest, PixelFormats) {
  std::vector<BYTE> image(4 * kSide * kSide);
  for (std::size_t i = 0; i < image.size(); ++i) {
    image[i] = static_cast<BYTE>(i * 37 + 11);
  }
  for (const auto& [format, size] :
       {std::pair<DWORD, std::size_t>{1, 1}, {2, 1}, {0, 1}, {77, 1}, {4, 3}, {8, 4}}) {
    for (const int zoom : {1, 2}) {
      SCOPED_TRACE(format * 10 + static_cast<DWORD>(zoom));
      Canvas canvas(kCanvas, kCanvas);
      EXPECT_EQ(Draw(canvas, {0, 0, 4 * zoom, 4 * zoom}, {1, 2, 4, 4}, image.data(), format),
                kSide);
      Pixels expected(kCanvas * kCanvas);
      for (int i = 0; i < 16 * zoom * zoom; ++i) {
        const int x = i % (4 * zoom);
        const int y = i / (4 * zoom);
        const BYTE* pixel =
            &image[static_cast<std::size_t>((2 + y / zoom) * kSide + 1 + x / zoom) * size];
        expected[static_cast<std::size_t>(y * kCanvas + x)] =
            size == 1 ? Grey(pixel[0])
                      : static_cast<std::uint32_t>(pixel[0] | pixel[1] << 8 | pixel[2] << 16);
      }
      EXPECT_EQ(canvas.Pixels(), expected);
    }
  }
}

TEST_F(DrawTest, KeepsTheStretchMode) {
  EXPECT_EQ(canvas_.StretchMode(), 1);
  for (const int mode : {1, 2, 4, 3}) {
    canvas_.SetStretchMode(mode);
    for (const BYTE* image : std::initializer_list<const BYTE*>{image_.data(), nullptr}) {
      EXPECT_EQ(Draw(canvas_, {0, 0, 10, 10}, {0, 0, 8, 8}, image), image != nullptr ? kSide : 0);
      EXPECT_EQ(canvas_.StretchMode(), mode);
    }
  }
}

TEST_F(DrawTest, RefusesAndRecovers) {
  const auto draw = [&](HANDLE camera, HDC context, int width, DWORD columns = kSide,
                        DWORD rows = kSide) {
    SetLastError(0);
    return Vexa_Draw(camera, context, 0, 0, width, 8, 0, 0, 8, 8, columns, rows, image_.data(), 1);
  };
  for (const int width : {8, 9}) {
    if (VEXA_TESTS_LOOK_INSIDE) {
      const AllocationLimit limit(256);
      EXPECT_EQ(draw(camera_, canvas_.context(), width), width == 8 ? 0 : kSide);
      EXPECT_EQ(GetLastError(), width == 8 ? 8U : 0U) << "the object is made once";
    }
    EXPECT_EQ(draw(INVALID_HANDLE_VALUE, canvas_.context(), width), 0);
    EXPECT_EQ(GetLastError(), 87U);
    EXPECT_EQ(draw(camera_, nullptr, width), 0);
    EXPECT_EQ(GetLastError(), 6U);
    EXPECT_EQ(Draw(canvas_, {0, 0, width, 8}, {0, 0, 8, 8}, nullptr), 0);
    EXPECT_EQ(draw(camera_, canvas_.context(), width, 0), 0);
    EXPECT_EQ(draw(camera_, canvas_.context(), width, kSide, 0), 0);
    if (width == 8) {
      EXPECT_EQ(canvas_.Pixels(), Pixels(kCanvas * kCanvas)) << "nothing drawn so far";
    }
    EXPECT_EQ(draw(camera_, canvas_.context(), width), kSide);
  }
  EXPECT_EQ(canvas_.Pixels(), Expected({0, 1, 2, 3, 3, 4, 5, 6, 7}, {0, 1, 2, 3, 4, 5, 6, 7}));
}

}  // namespace
}  // namespace vexa::test

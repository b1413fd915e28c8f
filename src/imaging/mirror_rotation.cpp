#include "imaging/mirror_rotation.hpp"

#include <cstring>
#include <utility>

#include "imaging/color_array.hpp"
#include "imaging/pixel_buffers.hpp"

namespace vexa::imaging {
namespace {

enum Operation : std::uint8_t {
  kNone = 0,
  kMirrorColumns = 1,
  kMirrorRows = 2,
  kHalfTurn = 3,
  kClockwise = 4,
  kCounterclockwise = 5,
  kAntidiagonal = 6,
  kDiagonal = 7,
};

enum Rotation : std::uint8_t { kNoTurn = 0, kTurnClockwise = 1, kTurnCounterclockwise = 2 };

/// The one operation that a mirror with a quarter turn after it comes to.
std::uint8_t Resolve(std::uint8_t operation, std::uint8_t rotation) {
  static constexpr std::uint8_t kTurned[2][4] = {
      {kClockwise, kAntidiagonal, kDiagonal, kCounterclockwise},
      {kCounterclockwise, kDiagonal, kAntidiagonal, kClockwise}};
  return rotation == kNoTurn ? operation : kTurned[rotation - kTurnClockwise][operation & 3];
}

/// The pattern's phase after the operation. Exact for even sizes.
std::uint16_t ColorArrayAfter(std::uint8_t operation, std::uint16_t code) {
  static constexpr std::uint8_t kBecomes[][4] = {{3, 2, 5, 4}, {4, 5, 2, 3}, {5, 4, 3, 2},
                                                 {3, 5, 2, 4}, {4, 2, 5, 3}, {5, 3, 4, 2},
                                                 {2, 4, 3, 5}};
  constexpr auto kFirst = static_cast<std::uint16_t>(ColorArray::kRggb);
  constexpr auto kLast = static_cast<std::uint16_t>(ColorArray::kBggr);
  return code < kFirst || code > kLast ? code : kBecomes[operation - 1][code - kFirst];
}

void MirrorRows(const FrameShape& shape, std::uint8_t* frame, const FrameKernels& kernels) {
  const std::size_t width = shape.width;
  for (std::size_t y = 0; y < shape.height / 2; ++y) {
    kernels.exchange(frame + y * width, frame + (shape.height - 1 - y) * width, width);
  }
}

void MirrorColumns(const FrameShape& shape, std::uint8_t* frame, const FrameKernels& kernels) {
  for (std::size_t y = 0; y < shape.height; ++y) {
    kernels.reverse(frame + y * shape.width, shape.width);
  }
}

/// Quarter turns are transposes that read the rows from the last one, or write them so.
void Turn(std::uint8_t operation, const FrameShape& shape, std::uint8_t* frame,
          const FrameKernels& kernels) {
  const std::size_t pixels = std::size_t{shape.width} * shape.height;
  const auto copy = AllocateWorkBuffer<std::uint8_t>(pixels);
  std::memcpy(copy.get(), frame, pixels);
  const std::uint8_t* in = copy.get();
  auto in_stride = static_cast<std::ptrdiff_t>(shape.width);
  auto out_stride = static_cast<std::ptrdiff_t>(shape.height);
  if (operation == kClockwise || operation == kAntidiagonal) {
    in += pixels - shape.width;
    in_stride = -in_stride;
  }
  if (operation == kCounterclockwise || operation == kAntidiagonal) {
    frame += pixels - shape.height;
    out_stride = -out_stride;
  }
  kernels.transpose(in, in_stride, frame, out_stride, shape.width, shape.height);
}

void Move(std::uint8_t operation, const FrameShape& shape, std::uint8_t* frame,
          const FrameKernels& kernels) {
  switch (operation) {
    case kMirrorColumns:
      return MirrorColumns(shape, frame, kernels);
    case kMirrorRows:
      return MirrorRows(shape, frame, kernels);
    case kHalfTurn:
      return kernels.reverse(frame, std::size_t{shape.width} * shape.height);
    default:
      return Turn(operation, shape, frame, kernels);
  }
}

}  // namespace

Status MirrorOrRotate(std::uint8_t operation, std::uint8_t rotation, FrameShape* shape,
                      std::uint8_t* frame, const FrameKernels& kernels) {
  if (rotation > kTurnCounterclockwise) {
    return error::kInvalidParameter;
  }
  operation = Resolve(operation, rotation);
  if (operation == kNone || operation > kDiagonal) {
    return error::kNone;
  }
  if (!FrameIsPossible(shape->width, shape->height, 1, frame)) {
    return error::kInvalidParameter;
  }
  if (shape->width != 0 && shape->height != 0) {
    Move(operation, *shape, frame, kernels);
  }
  if (operation >= kClockwise) {
    std::swap(shape->width, shape->height);
  }
  shape->color_array = ColorArrayAfter(operation, shape->color_array);
  return error::kNone;
}

}  // namespace vexa::imaging

// 16 samples at a time, for every x86 processor that the library runs on.
#include "imaging/kernels/frame_kernels.hpp"

#if defined(__SSE2__)
#include "imaging/kernels/vector_frames.hpp"
#include "imaging/kernels/vector_sse2.hpp"

namespace vexa::imaging {

constinit const FrameKernels kSse2FrameKernels = MakeFrameKernels<Sse2>("sse2");

}  // namespace vexa::imaging
#endif

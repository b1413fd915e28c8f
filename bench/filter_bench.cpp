// Filters, mirrors and turns of a 5 megapixel frame: every version of the inner loops beside the
// libraries that do something alike, and a copy of as many bytes. One thread.
//
// Names are <operation>/<case>/<who>; who is "ours" (the fastest version, which the exported
// functions take), a version of the inner loops, a peer, or memcpy. Ours work in place, peers from
// one buffer into another. Filters start each run from the same frame, which is copied back while
// the clock stands.
#include <cstring>
#include <ctime>
#include <functional>
#include <string>

#include "bench_support.hpp"
#include "imaging/mirror_rotation.hpp"
#include "imaging/noise_reduction.hpp"
#include "imaging/sharpness.hpp"

namespace {

using namespace vexa::imaging;
using namespace vexa::bench;

/// Slopes with the noise of a sensor on them, of which a few samples are impulses; or noise alone,
/// the worst case of filters that do less where there is less to do.
Bytes Picture(std::size_t channels, bool is_noise) {
  std::mt19937 random(1);
  Bytes picture(kPixels * channels);
  for (std::size_t i = 0; i < picture.size(); ++i) {
    const auto value = static_cast<std::uint32_t>(random());
    const std::size_t x = i / channels % kWidth;
    const std::size_t y = i / channels / kWidth;
    const auto slope = static_cast<std::uint32_t>((x / 9 + y / 5) % 200 + 20 + value % 9);
    picture[i] = static_cast<std::uint8_t>(is_noise || value % 5003 == 0 ? value >> 8 : slope);
  }
  return picture;
}

/// Times `work` on a copy of the picture, a fresh one for each run. In processor time: other
/// programs on the machine count less.
void InPlace(benchmark::State& state, const Bytes& picture,
             const std::function<bool(std::uint8_t*)>& work) {
  Bytes image = picture;
  for (auto _ : state) {
    std::memcpy(image.data(), picture.data(), image.size());
    const std::clock_t start = std::clock();
    const bool succeeded = work(image.data());
    const std::clock_t taken = std::clock() - start;
    if (!succeeded) {
      state.SkipWithError("refused");
      break;
    }
    state.SetIterationTime(static_cast<double>(taken) / CLOCKS_PER_SEC);
  }
}

template <class Work>
void AddTimed(const std::string& name, Work work) {
  benchmark::RegisterBenchmark(name.c_str(), [work](benchmark::State& state) { work(state); })
      ->UseManualTime()
      ->Unit(benchmark::kMicrosecond);
}

/// Ours with every version of the inner loops.
template <class Work>
void AddOurs(const std::string& name, std::size_t channels, bool is_noise, Work work) {
  const auto add = [&](const std::string& who, const FrameKernels* kernels) {
    AddTimed(name + "/" + who, [=](benchmark::State& state) {
      InPlace(state, Picture(channels, is_noise),
              [=](std::uint8_t* image) { return work(image, *kernels); });
    });
  };
  add("ours", &BestFrameKernels());
  for (const FrameKernels* kernels : UsableFrameKernels()) {
    add(kernels->name, kernels);
  }
}

/// A peer, or memcpy, from one buffer into another: work(from, to).
template <class Work>
void AddPeer(const std::string& name, std::size_t channels, bool is_noise, Work work) {
  AddTimed(name, [=](benchmark::State& state) {
    Bytes from = Picture(channels, is_noise);
    Bytes to(from.size());
    InPlace(state, to, [&](std::uint8_t* image) {
      work(from.data(), image);
      return true;
    });
  });
}

void AddMemcpy(const std::string& name, std::size_t channels) {
  AddPeer(name + "/memcpy", channels, false, [=](const std::uint8_t* from, std::uint8_t* to) {
    std::memcpy(to, from, kPixels * channels);
  });
}

#if defined(VEXA_BENCH_OPENCV)
cv::Mat Mat(std::uint8_t* pixels, std::size_t channels, bool is_turned = false) {
  const int width = is_turned ? kHeight : kWidth;
  const int height = is_turned ? kWidth : kHeight;
  return {height, width, CV_MAKETYPE(CV_8U, static_cast<int>(channels)), pixels};
}
#endif

void AddSharpness() {
  struct Case {
    std::string name;
    std::size_t channels;
    std::uint32_t format;
  };
  for (const auto& [layout, channels, format] :
       {Case{"mono", 1, 1}, Case{"bgr24", 3, 4}, Case{"bgr32", 4, 8}}) {
    for (const bool is_noise : {false, true}) {
      const std::string name = "sharpness/" + layout + (is_noise ? "_noise" : "");
      const BoostTable boost = MakeBoostTable(150, 2);
      AddOurs(name, channels, is_noise, [=](std::uint8_t* image, const FrameKernels& kernels) {
        return SharpenImage(boost, kWidth, kHeight, format, image, kernels).ok();
      });
#if defined(VEXA_BENCH_OPENCV)
      AddPeer(name + "/opencv", channels, is_noise, [=](std::uint8_t* from, std::uint8_t* to) {
        static const cv::Mat kernel = (cv::Mat_<float>(3, 3) << -0.1875, -0.1875, -0.1875, -0.1875,
                                       2.5, -0.1875, -0.1875, -0.1875, -0.1875);
        cv::Mat image = Mat(to, channels);
        cv::filter2D(Mat(from, channels), image, -1, kernel);
      });
#endif
      AddMemcpy(name, channels);
    }
  }
}

void AddNoiseReduction() {
  for (const auto array : std::to_array<std::uint16_t>({1, 2})) {
    const std::string name = array == 1 ? "median/mono" : "median/bayer";
    AddOurs(name, 1, true, [=](std::uint8_t* image, const FrameKernels& kernels) {
      return ReduceImpulses({kWidth, kHeight, array, image}, kernels).ok();
    });
#if defined(VEXA_BENCH_OPENCV)
    AddPeer(name + "/opencv", 1, true, [](std::uint8_t* from, std::uint8_t* to) {
      cv::Mat image = Mat(to, 1);
      cv::medianBlur(Mat(from, 1), image, 3);
    });
#endif
    AddMemcpy(name, 1);
  }
  const std::string name = "dark_frame/bayer";
  static const Bytes dark(kPixels, 4);
  AddOurs(name, 1, false, [](std::uint8_t* image, const FrameKernels& kernels) {
    return SubtractDark(dark.data(), {kWidth, kHeight, 2, image}, kernels).ok();
  });
#if defined(VEXA_BENCH_OPENCV)
  AddPeer(name + "/opencv", 1, false, [](std::uint8_t* from, std::uint8_t* to) {
    cv::Mat image = Mat(to, 1);
    cv::subtract(Mat(from, 1), Mat(const_cast<std::uint8_t*>(dark.data()), 1), image);
  });
#endif
  AddMemcpy(name, 1);
}

/// How the peers name an operation.
struct Reordering {
  std::string name;
  std::uint8_t operation;
  int opencv_flip = 2;     ///< cv::flip's code; 2 for none
  int opencv_rotate = -1;  ///< cv::rotate's code; -1 for none
  int libyuv_degrees = -1;
};

#if defined(VEXA_BENCH_OPENCV)
void AddOpenCvReordering(const std::string& name, const Reordering& each) {
  AddPeer(name + "/opencv", 1, true, [=](std::uint8_t* from, std::uint8_t* to) {
    cv::Mat image = Mat(to, 1, each.operation >= 4);
    if (each.opencv_flip != 2) {
      cv::flip(Mat(from, 1), image, each.opencv_flip);
    } else if (each.opencv_rotate >= 0) {
      cv::rotate(Mat(from, 1), image, each.opencv_rotate);
    } else {
      cv::transpose(Mat(from, 1), image);
    }
  });
}
#endif

#if defined(VEXA_BENCH_LIBYUV)
void AddLibyuvReordering(const std::string& name, const Reordering& each) {
  AddPeer(name + "/libyuv", 1, true, [=](const std::uint8_t* from, std::uint8_t* to) {
    constexpr int kStride = kWidth;
    const int stride = each.operation >= 4 ? kHeight : kStride;
    if (each.libyuv_degrees >= 0) {
      libyuv::RotatePlane(from, kStride, to, stride, kWidth, kHeight,
                          static_cast<libyuv::RotationMode>(each.libyuv_degrees));
    } else if (each.operation == 1) {
      libyuv::MirrorPlane(from, kStride, to, stride, kWidth, kHeight);
    } else if (each.operation == 2) {
      libyuv::CopyPlane(from, kStride, to, stride, kWidth, -static_cast<int>(kHeight));
    } else {
      libyuv::TransposePlane(from, kStride, to, stride, kWidth, kHeight);
    }
  });
}
#endif

void AddReordering() {
  const Reordering all[] = {
      {.name = "mirror/horizontal", .operation = 1, .opencv_flip = 1},
      {.name = "mirror/vertical", .operation = 2, .opencv_flip = 0},
      {.name = "rotation/180", .operation = 3, .opencv_flip = -1, .libyuv_degrees = 180},
      {.name = "rotation/clockwise", .operation = 4, .opencv_rotate = 0, .libyuv_degrees = 90},
      {.name = "rotation/counterclockwise",
       .operation = 5,
       .opencv_rotate = 2,
       .libyuv_degrees = 270},
      {.name = "rotation/transpose", .operation = 7},
  };
  for (const Reordering& each : all) {
    AddOurs(each.name, 1, true, [=](std::uint8_t* image, const FrameKernels& kernels) {
      FrameShape shape{kWidth, kHeight, 1};
      return MirrorOrRotate(each.operation, 0, &shape, image, kernels).ok();
    });
#if defined(VEXA_BENCH_OPENCV)
    AddOpenCvReordering(each.name, each);
#endif
#if defined(VEXA_BENCH_LIBYUV)
    AddLibyuvReordering(each.name, each);
#endif
    AddMemcpy(each.name, 1);
  }
}

void Register() {
  AddSharpness();
  AddNoiseReduction();
  AddReordering();
}

}  // namespace

int main(int argc, char** argv) { return RunAll(argc, argv, Register); }

// Colour interpolation of a 5 megapixel frame: every method with every version of the inner loops,
// beside OpenCV: the bilinear method beside OpenCV's, the others beside its edge-aware one. One
// thread.
#include <cstdlib>
#include <string>

#include "bench_support.hpp"
#include "imaging/color_array.hpp"
#include "imaging/interpolation.hpp"

namespace {

using namespace vexa::imaging;
using namespace vexa::bench;

void AddOurs(const std::string& name, const char* who, const RowKernels* kernels,
             std::uint8_t method, OutputFormat format) {
  Add(name, who, [=] {
    return [=, frame = Noise(kPixels), image = Bytes(kPixels * 4)]() mutable {
      const InterpolationRequest request{
          .width = kWidth,
          .height = kHeight,
          .color_array = static_cast<std::uint16_t>(ColorArray::kGrbg),
          .method = method,
          .output_format = static_cast<std::uint32_t>(format),
          .source = frame.data(),
          .destination = image.data(),
      };
      if (!InterpolateColor(request, *kernels).ok()) {
        std::abort();
      }
    };
  });
}

#if defined(VEXA_BENCH_OPENCV)
void AddOpenCv(const std::string& name, int code, int channels) {
  Add(name, "opencv", [=] {
    return [=, frame = Noise(kPixels), image = cv::Mat()]() mutable {
      const cv::Mat raw(static_cast<int>(kHeight), static_cast<int>(kWidth), CV_8UC1, frame.data());
      cv::cvtColor(raw, image, code, channels);
    };
  });
}
#endif

void Register() {
  const char* const methods[] = {"none",     "mosaic",   "nearest",
                                 "bilinear", "four_tap", "cell_centred"};
  for (std::uint8_t method = 0; method < std::size(methods); ++method) {
    for (const auto format : {OutputFormat::kBgr24, OutputFormat::kBgr32}) {
      const bool is_bgr24 = format == OutputFormat::kBgr24;
      const std::string name =
          std::string("interpolation/") + methods[method] + (is_bgr24 ? "_bgr24" : "_bgr32");
      for (const RowKernels* kernels : UsableRowKernels()) {
        AddOurs(name, kernels->name, kernels, method, format);
      }
      AddOurs(name, "ours", &BestRowKernels(), method, format);
      AddCopy(name, kPixels * (is_bgr24 ? 3 : 4));
#if defined(VEXA_BENCH_OPENCV)
      constexpr auto kBilinear = static_cast<std::uint8_t>(InterpolationMethod::kBilinear);
      if (method == kBilinear) {
        AddOpenCv(name, is_bgr24 ? cv::COLOR_BayerGB2BGR : cv::COLOR_BayerGB2BGRA,
                  is_bgr24 ? 3 : 4);
      } else if (method != 0 && is_bgr24) {
        AddOpenCv(name, cv::COLOR_BayerGB2BGR_EA, 3);  // writes three channels only
      }
#endif
    }
  }
}

}  // namespace

int main(int argc, char** argv) { return RunAll(argc, argv, Register); }

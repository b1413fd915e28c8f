// Pixel format conversion, tone curves and the colour matrix, beside OpenCV and libyuv. One thread.
// What works in place here is measured with OpenCV writing to a second image and in place.
#include <functional>
#include <string>

#include "bench_support.hpp"
#include "imaging/color_correction.hpp"
#include "imaging/conversion.hpp"
#include "imaging/gamma.hpp"

namespace {

using namespace vexa::imaging;
using namespace vexa::bench;

constexpr std::uint32_t kMono = 1;
constexpr std::uint32_t kBgr24 = 4;
constexpr std::uint32_t kBgr32 = 8;

std::size_t BytesOf(std::uint32_t format) { return format == kMono ? 1 : format == kBgr24 ? 3 : 4; }

using Run = std::function<vexa::Status(std::uint8_t* image, const PixelKernels& kernels)>;

/// Ours: the fastest version under that name, and each under its own.
void AddOurs(const std::string& name, std::size_t bytes, const Run& run) {
  const auto add = [&](const char* who, const PixelKernels* kernels) {
    Add(name, who, [=] {
      return [=, image = Noise(bytes)]() mutable {
        if (!run(image.data(), *kernels).ok()) {
          std::abort();
        }
      };
    });
  };
  for (const PixelKernels* kernels : UsablePixelKernels()) {
    add(kernels->name, kernels);
  }
  add("ours", &BestPixelKernels());
  AddCopy(name, bytes);
}

#if defined(VEXA_BENCH_OPENCV)
cv::Mat NoiseMat(int type) {
  cv::Mat mat(static_cast<int>(kHeight), static_cast<int>(kWidth), type);
  cv::randu(mat, 0, 256);
  return mat;
}

/// work(source, destination)
template <typename Work>
void AddOpenCv(const std::string& name, const char* who, int from, int to, Work work) {
  Add(name, who, [=] {
    return [=, source = NoiseMat(from), destination = NoiseMat(to)]() mutable {
      work(source, destination);
    };
  });
}

template <typename Work>
void AddOpenCvBothWays(const std::string& name, int type, Work work) {
  AddOpenCv(name, "opencv", type, type, work);
  AddOpenCv(name, "opencv_in_place", type, type,
            [work](cv::Mat& image, cv::Mat&) { work(image, image); });
}
#endif

void RegisterLookUp() {
  static Gamma gamma;
  static const Bytes table = Noise(256);
  for (std::uint8_t channel = 0; channel < kGammaChannels; ++channel) {
    if (!gamma.Set(channel, {.mode = 255}, table.data()).ok()) {
      std::abort();
    }
  }
  for (const auto& [name, format] : {std::pair("look_up/mono8", kMono),
                                     {"luma_curve/bgr24", kBgr24},
                                     {"luma_curve/bgr32", kBgr32}}) {
    AddOurs(name, kPixels * BytesOf(format), [format](auto* image, const auto& kernels) {
      return gamma.CorrectImage(kWidth, kHeight, format, image, kernels);
    });
  }
  AddOurs("look_up/raw", kPixels, [](auto* image, const auto& kernels) {
    return gamma.CorrectRaw(kWidth, kHeight, 2, image, kernels);
  });
#if defined(VEXA_BENCH_OPENCV)
  for (const char* name : {"look_up/mono8", "look_up/raw"}) {
    AddOpenCvBothWays(name, CV_8UC1, [](cv::Mat& source, cv::Mat& destination) {
      cv::LUT(source, cv::Mat(1, 256, CV_8UC1, const_cast<std::uint8_t*>(table.data())),
              destination);
    });
  }
#endif
}

void RegisterMatrix() {
  struct Case {
    const char* name;
    UserColorMatrix matrix;
    HueSaturationSetting hue_saturation;
  };
  static const Case cases[] = {
      {"color_matrix/hue", kIdentityColorMatrix, {1, 153, 135}},
      {"color_matrix/user", {150, -30, -20, 0, -25, 163, -38, 0, 3, -60, 157, 0}, {}},
      {"color_matrix/both", {150, -30, -20, 0, -25, 163, -38, 0, 3, -60, 157, 0}, {1, -80, 120}},
  };
  static ColorCorrection corrections[std::size(cases)];
  for (std::size_t i = 0; i < std::size(cases); ++i) {
    ColorCorrection& correction = corrections[i];
    if (!correction.SetMatrix(255, &cases[i].matrix).ok() ||
        !correction.SetHueSaturation(cases[i].hue_saturation).ok()) {
      std::abort();
    }
    for (const std::uint32_t format : {kBgr24, kBgr32}) {
      const std::string name =
          std::string(cases[i].name) + (format == kBgr24 ? "_bgr24" : "_bgr32");
      AddOurs(name, kPixels * BytesOf(format), [=, &correction](auto* image, const auto& kernels) {
        return correction.Correct(kWidth, kHeight, format, image, kernels);
      });
    }
#if defined(VEXA_BENCH_OPENCV)
    const cv::Mat matrix =
        (cv::Mat_<float>(3, 3) << 1.57, -.6, .03, -.38, 1.63, -.25, -.2, -.3, 1.5);
    AddOpenCvBothWays(std::string(cases[i].name) + "_bgr24", CV_8UC3,
                      [matrix](cv::Mat& source, cv::Mat& destination) {
                        cv::transform(source, destination, matrix);
                      });
#endif
  }
}

void RegisterConversions() {
  const struct {
    const char* name;
    std::uint32_t transfer;
  } sources[] = {{"deep12", 0x0004}, {"bgr30", 0x0800},  {"yuv411", 0x1000},
                 {"yuv422", 0x2000}, {"yuv444", 0x4000}, {"grey8", 0x0001}};
  static const Bytes source = Noise(kPixels * 4);
  for (const auto& [from, transfer] : sources) {
    for (const std::uint32_t output : {kMono, kBgr24, kBgr32}) {
      const std::string name = std::string(from) + "_to_" +
                               (output == kMono    ? "mono8"
                                : output == kBgr24 ? "bgr24"
                                                   : "bgr32");
      AddOurs("convert/" + name, kPixels * BytesOf(output),
              [=, transfer = transfer](auto* image, const auto& kernels) {
                return ConvertToImage({.width = kWidth,
                                       .height = kHeight,
                                       .transfer_format = transfer,
                                       .output_format = output,
                                       .source = source.data(),
                                       .destination = image},
                                      kernels);
              });
    }
  }
#if defined(VEXA_BENCH_OPENCV)
  AddOpenCv("convert/deep12_to_mono8", "opencv", CV_16UC1, CV_8UC1,
            [](cv::Mat& from, cv::Mat& to) { from.convertTo(to, CV_8U, 1 / 16.0); });
  const auto convert = [](int code) {
    return [code](cv::Mat& from, cv::Mat& to) { cv::cvtColor(from, to, code); };
  };
  AddOpenCv("convert/yuv422_to_bgr24", "opencv", CV_8UC2, CV_8UC3, convert(cv::COLOR_YUV2BGR_UYVY));
  AddOpenCv("convert/yuv422_to_bgr32", "opencv", CV_8UC2, CV_8UC4,
            convert(cv::COLOR_YUV2BGRA_UYVY));
  AddOpenCv("convert/yuv422_to_mono8", "opencv", CV_8UC2, CV_8UC1,
            convert(cv::COLOR_YUV2GRAY_UYVY));
  AddOpenCv("convert/yuv444_to_bgr24", "opencv", CV_8UC3, CV_8UC3, convert(cv::COLOR_YUV2BGR));
  AddOpenCv("convert/grey8_to_bgr24", "opencv", CV_8UC1, CV_8UC3, convert(cv::COLOR_GRAY2BGR));
  AddOpenCv("convert/grey8_to_bgr32", "opencv", CV_8UC1, CV_8UC4, convert(cv::COLOR_GRAY2BGRA));
#endif
#if defined(VEXA_BENCH_LIBYUV)
  Add("convert/yuv422_to_bgr32", "libyuv", [] {
    return [image = Bytes(kPixels * 4)]() mutable {
      libyuv::UYVYToARGB(source.data(), kWidth * 2, image.data(), kWidth * 4, kWidth, kHeight);
    };
  });
#endif
}

void Register() {
  RegisterLookUp();
  RegisterMatrix();
  RegisterConversions();
}

}  // namespace

int main(int argc, char** argv) { return RunAll(argc, argv, Register); }

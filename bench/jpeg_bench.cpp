// JPEG encoding of a 5 megapixel picture to memory, beside libjpeg-turbo with the same quality,
// sampling and tables. One thread. The environment of the process decides whether libjpeg-turbo
// uses its vector code; without it, the peer alone is measured. Names as in bench_support.hpp.
#include <benchmark/benchmark.h>

// jpeglib.h needs the first.
#include <cstdio>

#include <jpeglib.h>

#include <cstdlib>
#include <map>
#include <string>
#include <vector>

#include "output/encoding.hpp"
#include "output/pictures.hpp"

namespace {

using vexa::output::JpegKernels;
using vexa::test::Samples;

constexpr int kWidth = 2592;
constexpr int kHeight = 1944;

/// Memory that is there from the start, for both.
class FixedMemory final : public vexa::output::CBaseStreamOutput {
 public:
  explicit FixedMemory(Samples* memory) : memory_(memory) {}

  vexa::output::CodingStatus Open(void*) override { return vexa::output::CodingStatus::kOk; }
  vexa::output::CodingStatus Close() override { return vexa::output::CodingStatus::kOk; }
  vexa::output::CodingStatus Write(const std::uint8_t* bytes, std::int32_t count,
                                   std::int32_t* written) override {
    std::copy_n(bytes, count, memory_->data() + size_);
    size_ += static_cast<std::size_t>(count);
    *written = count;
    return vexa::output::CodingStatus::kOk;
  }
  std::size_t size() const { return size_; }

 private:
  Samples* memory_;
  std::size_t size_ = 0;
};

const Samples& Picture(int channels) {
  static std::map<int, Samples> pictures;
  Samples& picture = pictures[channels];
  if (picture.empty()) {
    picture = vexa::test::Photograph(kWidth, kHeight, channels);
  }
  return picture;
}

Samples OutputMemory(int channels) {
  return Samples(static_cast<std::size_t>(kWidth) * kHeight * static_cast<std::size_t>(channels) *
                 2);
}

void Ours(benchmark::State& state, const JpegKernels* kernels, int channels, int quality) {
  const Samples& picture = Picture(channels);
  Samples memory = OutputMemory(channels);
  std::size_t size = 0;
  for (auto _ : state) {
    FixedMemory stream(&memory);
    if (vexa::test::Encode(stream, picture.data(), kWidth, kHeight, channels, quality, *kernels) !=
        vexa::output::CodingStatus::kOk) {
      state.SkipWithError("refused");
      break;
    }
    size = stream.size();
    benchmark::ClobberMemory();
  }
  state.counters["bytes"] = static_cast<double>(size);
}

void Peer(benchmark::State& state, int channels, int quality) {
  Samples picture = Picture(channels);
  Samples memory = OutputMemory(channels);
  unsigned long size = 0;
  for (auto _ : state) {
    jpeg_compress_struct encoder{};
    jpeg_error_mgr errors{};
    encoder.err = jpeg_std_error(&errors);
    jpeg_create_compress(&encoder);
    unsigned char* out = memory.data();
    size = memory.size();
    jpeg_mem_dest(&encoder, &out, &size);
    encoder.image_width = kWidth;
    encoder.image_height = kHeight;
    encoder.input_components = channels;
    encoder.in_color_space = channels == 1 ? JCS_GRAYSCALE : JCS_EXT_BGR;
    jpeg_set_defaults(&encoder);
    jpeg_set_quality(&encoder, quality, TRUE);
    if (channels == 3) {
      encoder.comp_info[0].h_samp_factor = 2;
      encoder.comp_info[0].v_samp_factor = 1;
    }
    jpeg_start_compress(&encoder, TRUE);
    while (encoder.next_scanline < encoder.image_height) {
      JSAMPROW row = &picture[static_cast<std::size_t>(encoder.next_scanline) * kWidth *
                              static_cast<std::size_t>(channels)];
      jpeg_write_scanlines(&encoder, &row, 1);
    }
    jpeg_finish_compress(&encoder);
    jpeg_destroy_compress(&encoder);
  }
  state.counters["bytes"] = static_cast<double>(size);
}

/// With this variable set libjpeg-turbo goes without its vector code.
constexpr const char* kWithoutVectors = "JSIMD_FORCENONE";

void Register() {
  const auto add = [](const std::string& name, auto... arguments) {
    benchmark::RegisterBenchmark(name.c_str(), arguments...)->Unit(benchmark::kMicrosecond);
  };
  const bool plain_peer = std::getenv(kWithoutVectors) != nullptr;
  const struct {
    const char* name;
    int channels;
    int quality;
  } cases[] = {{"grey_90", 1, 90}, {"bgr_90", 3, 90}, {"grey_100", 1, 100}, {"bgr_100", 3, 100}};
  for (const auto& [name, channels, quality] : cases) {
    const std::string prefix = std::string("jpeg/") + name + "/";
    add(prefix + (plain_peer ? "libjpeg_plain" : "libjpeg"), Peer, channels, quality);
    if (!plain_peer) {
      for (const JpegKernels* kernels : vexa::output::UsableJpegKernels()) {
        add(prefix + kernels->name, Ours, kernels, channels, quality);
      }
      add(prefix + "ours", Ours, &vexa::output::BestJpegKernels(), channels, quality);
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  Register();
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}

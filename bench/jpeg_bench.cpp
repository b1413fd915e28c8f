// JPEG encoding of a 5 megapixel picture to memory, beside libjpeg-turbo with the same quality,
// sampling and tables; with and without its vector code. One thread. What it prints last are the
// ratios: above 1 means faster than the peer.
#include <benchmark/benchmark.h>

// jpeglib.h needs the first.
#include <cstdio>

#include <jpeglib.h>

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "output/encoding.hpp"
#include "output/pictures.hpp"

namespace {

using vexa::output::JpegKernels;
using vexa::test::Samples;

constexpr int kWidth = 2592;
constexpr int kHeight = 1944;
constexpr int kRepetitions = 5;

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

/// The case as it is called in names: colours and quality.
struct Case {
  std::string name;
  int channels;
  int quality;
};

const std::vector<Case>& Cases() {
  static const std::vector<Case> cases = {
      {"grey/90", 1, 90}, {"bgr/90", 3, 90}, {"grey/100", 1, 100}, {"bgr/100", 3, 100}};
  return cases;
}

void Register() {
  const auto add = [](const std::string& name, auto... arguments) {
    benchmark::RegisterBenchmark(name.c_str(), arguments...)
        ->Unit(benchmark::kMillisecond)
        ->MinTime(0.1)
        ->Repetitions(kRepetitions);
  };
  for (const Case& each : Cases()) {
    add("libjpeg/" + each.name, Peer, each.channels, each.quality);
    for (const JpegKernels* kernels : vexa::output::UsableJpegKernels()) {
      add(std::string(kernels->name) + "/" + each.name, Ours, kernels, each.channels, each.quality);
    }
  }
}

using Times = std::map<std::string, double>;

void KeepBest(Times* best, const std::string& name, double time) {
  const auto [place, is_new] = best->emplace(name, time);
  if (!is_new && time < place->second) {
    place->second = time;
  }
}

/// Prints as usual and keeps the best processor time of each benchmark: other programs on the
/// machine can only make it worse.
class BestTimes : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const auto& run : runs) {
      if (run.run_type == Run::RT_Iteration) {
        KeepBest(&best, run.run_name.function_name, run.GetAdjustedCPUTime());
      }
    }
    ConsoleReporter::ReportRuns(runs);
  }
  Times best;
};

constexpr const char* kWithoutVectors = "JSIMD_FORCENONE";
constexpr const char* kResult = "result ";

/// The peer reads its environment once; without vector code it needs a process of its own.
Times RunPeerWithoutVectors() {
  const std::string program = std::filesystem::read_symlink("/proc/self/exe").string();
  const std::string command =
      std::string(kWithoutVectors) + "=1 '" + program +
      "' --benchmark_filter=^libjpeg/ --benchmark_enable_random_interleaving";
  Times best;
  std::FILE* const child = popen(command.c_str(), "r");
  char line[512];
  while (child != nullptr && std::fgets(line, sizeof line, child) != nullptr) {
    std::istringstream words(line);
    std::string keyword;
    std::string name;
    double time = 0;
    if (words >> keyword >> name >> time && keyword + " " == kResult) {
      KeepBest(&best, name, time);
    }
  }
  if (child == nullptr || pclose(child) != 0) {
    std::cerr << "jpeg_bench: the run without vector code has failed\n";
    std::exit(1);
  }
  return best;
}

void PrintRatios(const Times& best, const Times& plain_peer) {
  const std::string fastest = vexa::output::BestJpegKernels().name;
  std::printf("\n%-10s %10s %14s %14s %8s %8s\n", "", fastest.c_str(), "libjpeg-turbo",
              "without SIMD", "ratio", "ratio");
  for (const Case& each : Cases()) {
    const auto ours = best.find(fastest + "/" + each.name);
    const auto peer = best.find("libjpeg/" + each.name);
    const auto plain = plain_peer.find("libjpeg/" + each.name);
    if (ours == best.end() || peer == best.end() || plain == plain_peer.end()) {
      continue;  // filtered out
    }
    std::printf("%-10s %7.2f ms %11.2f ms %11.2f ms %8.2f %8.2f\n", each.name.c_str(), ours->second,
                peer->second, plain->second, peer->second / ours->second,
                plain->second / ours->second);
  }
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  Register();
  if (std::getenv(kWithoutVectors) != nullptr) {
    BestTimes reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    for (const auto& [name, time] : reporter.best) {
      std::cout << "\n" << kResult << name << " " << time << "\n";
    }
    return 0;
  }
  BestTimes reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  PrintRatios(reporter.best, RunPeerWithoutVectors());
  return 0;
}

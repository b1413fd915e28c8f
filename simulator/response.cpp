#include "simulator/response.hpp"

#include <algorithm>
#include <cmath>

namespace vexa::simulator {
namespace {

constexpr double kFullWell = 20000;  // electrons; full scale at unity gain
constexpr double kReadNoise = 8;     // electrons, root mean square
constexpr double kCountsPerElectron = kFullScale / kFullWell;
// Full drive at the power-up exposure: 250 of 255, which leaves white room for its noise.
constexpr double kWhiteCounts = 250.0 * 64;
constexpr double kUsualBlack = 64;
constexpr double kWhiteElectrons = (kWhiteCounts - kUsualBlack) / kCountsPerElectron;
constexpr double kNoiseUnits = 8;  // per count
constexpr double kSteepestGamma = 8;

double Electrons(double light, const Tone& tone) {
  return std::min(light * tone.exposure * kWhiteElectrons, kFullWell);
}

Sample Respond(double electrons, const Tone& tone, double balance) {
  const double shot = electrons < kFullWell ? electrons : 0;
  const double scale = kCountsPerElectron * tone.gain;
  double mean = std::min(tone.black_level + electrons * scale, double{kFullScale});
  double noise = std::sqrt(shot + kReadNoise * kReadNoise) * scale * balance;
  mean =
      std::clamp(tone.black_level + (mean - tone.black_level) * balance, 0.0, double{kFullScale});
  if (tone.gamma != 1.0) {
    const double share = mean / kFullScale;
    noise *= std::min(tone.gamma * std::pow(std::max(share, 1e-6), tone.gamma - 1), kSteepestGamma);
    mean = kFullScale * std::pow(share, tone.gamma);
  }
  return {static_cast<std::int16_t>(std::lround(mean)),
          static_cast<std::int16_t>(std::lround(std::min(noise * kNoiseUnits, 32767.0)))};
}

}  // namespace

Response::Response() : curves_{} {}

void Response::Compute(const Tone& tone, const std::array<double, 3>& illuminant) {
  constexpr std::array<std::size_t, 4> kColourOfFilter{0, 1, 1, 2};
  for (std::size_t filter = 0; filter < curves_.size(); ++filter) {
    const double strength = illuminant[kColourOfFilter[filter]] / kFullDrive;
    for (std::size_t drive = 0; drive <= kFullDrive; ++drive) {
      const double electrons = Electrons(static_cast<double>(drive) * strength, tone);
      curves_[filter][drive] = Respond(electrons, tone, tone.balance[filter]);
    }
    curves_[filter][kStuckDrive] = Respond(kFullWell, tone, tone.balance[filter]);
  }
}

}  // namespace vexa::simulator

#include <array>
#include <cmath>
#include <initializer_list>
#include <stdexcept>
#include <string>
#include <vector>

#include "help_texts.hpp"
#include "names.hpp"
#include "option_parts.hpp"
#include "text.hpp"

namespace vexa::tool {
namespace {

/** Numbers between commas. @throws std::invalid_argument for other text, or a number outside. */
std::vector<double> ParseNumbers(const std::string& text, double low, double high) {
  std::vector<double> numbers;
  for (const std::string& part : CLI::detail::split(text, ',')) {
    double number = 0;
    if (!CLI::detail::lexical_cast(part, number) || !(number >= low && number <= high)) {
      throw std::invalid_argument("\"" + part + "\" is not a number from " +
                                  Format("%g to %g", low, high));
    }
    numbers.push_back(number);
  }
  return numbers;
}

BalanceOptions ParseBalance(const std::string& text) {
  if (text == "auto" || text == "once") {
    return {.source = text == "auto" ? GainSource::kAuto : GainSource::kOnce, .gains = {}};
  }
  if (text.empty() || text.find_first_not_of("0123456789,") != std::string::npos) {
    throw std::invalid_argument("\"" + text +
                                "\" is not auto, once, or three or four gains; gains are whole "
                                "numbers, and 128 changes nothing");
  }
  const std::vector<double> numbers = ParseNumbers(text, 0, 65535);
  if (numbers.size() != 3 && numbers.size() != 4) {
    throw std::invalid_argument("\"" + text + "\" has not three or four gains");
  }
  const auto gain = [&](std::size_t index) { return static_cast<std::uint16_t>(numbers[index]); };
  const std::size_t blue = numbers.size() - 1;
  return {.source = GainSource::kGiven, .gains = {gain(0), gain(1), gain(blue - 1), gain(blue)}};
}

std::array<std::int16_t, 12> ParseMatrix(const std::string& text) {
  constexpr double kMost = 327.67;  // hundredths in 16 bits
  const std::vector<double> numbers = ParseNumbers(text, -kMost, kMost);
  if (numbers.size() != 9 && numbers.size() != 12) {
    throw std::invalid_argument("a matrix has 9 numbers, or 12 with offsets");
  }
  const std::size_t columns = numbers.size() / 3;
  std::array<std::int16_t, 12> matrix{};
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    matrix[i / columns * 4 + i % columns] =
        static_cast<std::int16_t>(std::lround(numbers[i] * 100));
  }
  return matrix;
}

std::uint8_t ParseMirror(const std::string& text) {
  std::string known;
  for (const NamedCode& mirror : Mirrors()) {
    if (text == mirror.name) {
      return static_cast<std::uint8_t>(mirror.code);
    }
    known += (known.empty() ? "" : ", ") + std::string(mirror.name);
  }
  throw std::invalid_argument("\"" + text + "\" is no mirror; known: " + known);
}

void AddRawSteps(CLI::App& app, StepOptions& steps) {
  app.add_option("--dark-frame", steps.dark_frame, "Dark frame to subtract")->type_name("FILE");
  app.add_flag("--impulse-filter", steps.impulse_filter, "Take bright impulses down");
  AddParsed(
      app, "--white-balance",
      [&steps](const std::string& text) { steps.white_balance = ParseBalance(text); },
      "auto, once, or gains: R,GR,GB,B or R,G,B (128: unchanged)")
      ->type_name("HOW");
  AddParsed(
      app, "--grey-area",
      [&steps](const std::string& text) { steps.grey_area = ParseRegion(text); },
      "Where to find the gains: a part that should be grey")
      ->type_name("X,Y,W,H");
  app.add_option("--raw-gamma", steps.raw_gamma, "Gamma of the raw samples")
      ->type_name("G")
      ->check(NumberIn(0.01, 100).description(""));
  AddParsed(
      app, "--mirror", [&steps](const std::string& text) { steps.mirror = ParseMirror(text); },
      "horizontal, vertical, diagonal or antidiagonal")
      ->type_name("NAME");
  app.add_option("--rotate", steps.rotate, "Degrees clockwise: 90, 180 or 270")
      ->type_name("D")
      ->check(CLI::IsMember({90, 180, 270}).description(""));
}

void AddPictureSteps(CLI::App& app, StepOptions& steps) {
  AddMethodOption(app, steps.method);
  AddParsed(
      app, "--matrix", [&steps](const std::string& text) { steps.matrix = ParseMatrix(text); },
      "Colour matrix, 9 or 12 numbers")
      ->type_name("M,M,...");
  app.add_option("--hue", steps.hue, "Turn of the hues in degrees")
      ->type_name("D")
      ->check(NumberIn(-360, 360).description(""));
  app.add_option("--saturation", steps.saturation, "Saturation in per cent")
      ->type_name("P")
      ->check(NumberIn(0, 65535).description(""));
  app.add_option("--gamma", steps.gamma, "Gamma of the luminance")
      ->type_name("G")
      ->check(NumberIn(0.01, 100).description(""));
  app.add_option("--brightness", steps.brightness, "Levels to add, -255 to 255")
      ->type_name("L")
      ->check(CLI::Range(-255, 255).description(""));
  app.add_option("--contrast", steps.contrast, "Levels cut off at each end, 0 to 127")
      ->type_name("L")
      ->check(CLI::Range(0u, 127u).description(""));
  app.add_flag("--negative", steps.negative, "Dark for bright");
  app.add_option("--sharpen", steps.sharpen, "Sharpness in per cent")
      ->type_name("P")
      ->check(CLI::Range(0u, 65535u).description(""));
  app.add_option("--coring", steps.coring, "Levels of detail that stay, 0 to 255 (default 0)")
      ->type_name("L")
      ->check(CLI::Range(0u, 255u).description(""));
}

/** Whether the options fit where the frames come from, and each other. */
void CheckTogether(const CLI::App& app, const ProcessOptions& options) {
  const auto refuse = [&app](std::initializer_list<const char*> names, const char* why) {
    for (const char* name : names) {
      if (app.get_option(name)->count() > 0) {
        throw CLI::ValidationError(name, why);
      }
    }
  };
  if (options.inputs.empty()) {
    refuse({"--width", "--height", "--color-array"},
           "describes frames in files, and no file is named");
  } else {
    refuse({"--frames", "--exposure-ms", "--roi", "--scan-mode", "--timeout"},
           "is for frames from a camera, and files are named");
    for (const char* name : {"--width", "--height"}) {
      if (app.get_option(name)->count() == 0) {
        throw CLI::ValidationError(name, "missing: files do not tell the size of their frame");
      }
    }
  }
  const auto& balance = options.steps.white_balance;
  if (options.steps.grey_area && (!balance || balance->source == GainSource::kGiven)) {
    throw CLI::ValidationError("--grey-area", "goes with --white-balance auto or once");
  }
  if (!options.steps.sharpen) {
    refuse({"--coring"}, "goes with --sharpen");
  }
}

}  // namespace

void AddProcess(CLI::App& app, ProcessOptions& options) {
  app.add_option("INPUT", options.inputs, "Files with a frame's bytes (default: the camera)");
  AddSideOption(app, "--width", options.width, "Pixels per row of the frames in files");
  AddSideOption(app, "--height", options.height, "Rows of the frames in files");
  AddColorArrayOption(app, options.color_array);
  AddStreamOptions(app, options.stream);
  app.add_option("-n,--frames", options.frames, "Frames from the camera (default 1)")
      ->type_name("N")
      ->check(CLI::Range(1u, kMaxFrames).description(""));
  AddRawSteps(app, options.steps);
  AddPictureSteps(app, options.steps);
  app.add_option("-o,--output", options.output, "File names (default processed-%04d.bmp)")
      ->type_name("PATTERN");
  app.add_flag("--overwrite", options.overwrite, "Replace files that exist");
  app.add_flag("--json", options.json, "Print JSON");
  app.footer(kProcessFooter);
  app.parse_complete_callback([&app, &options] { CheckTogether(app, options); });
}

}  // namespace vexa::tool

#include "options.hpp"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <sstream>
#include <stdexcept>
#include <tuple>
#include <utility>

#include "help_texts.hpp"
#include "names.hpp"
#include "text.hpp"

namespace vexa::tool {
namespace {

constexpr std::uint32_t kMaxFrames = 1'000'000;
constexpr std::uint32_t kMaxSide = 65'535;  // of a frame; camera and file formats have 16 bits

std::uint32_t ParseNumber(std::string_view text) {
  std::uint32_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (text.empty() || error != std::errc() || end != text.data() + text.size()) {
    throw std::invalid_argument("\"" + std::string(text) + "\" is not a whole number from 0");
  }
  return number;
}

/** A finite number in a range; not a number is none. */
CLI::Validator NumberIn(double low, double high) {
  const std::string range = Format("%g to %g", low, high);
  return {[low, high, range](std::string& text) {
            double number = 0;
            const bool valid = CLI::detail::lexical_cast(text, number) && std::isfinite(number) &&
                               number >= low && number <= high;
            return valid ? std::string() : "\"" + text + "\" is not a number from " + range;
          },
          "NUMBER"};
}

/** Adds an option whose text a function turns into the value; its std::invalid_argument becomes a
 * usage error. */
template <class Parse>
CLI::Option* AddParsed(CLI::App& app, const std::string& name, Parse parse,
                       const std::string& description) {
  return app.add_option_function<std::string>(
      name,
      [name, parse](const std::string& text) {
        try {
          parse(text);
        } catch (const std::invalid_argument& error) {
          throw CLI::ValidationError(name, error.what());
        }
      },
      description);
}

void AddCameraOption(CLI::App& app, std::uint32_t& camera) {
  app.add_option("-c,--camera", camera, "Index of the camera, from 0 (default 0)")
      ->type_name("I")
      ->check(CLI::Range(0u, 255u).description(""));
}

void AddFormatOption(CLI::App& app, std::optional<std::uint32_t>& format,
                     const std::string& description) {
  AddParsed(
      app, "--format",
      [&format](const std::string& text) {
        format = ParseTransferFormat(text);
        if (!format) {
          throw std::invalid_argument(
              "\"" + text + "\" is no transfer format; known: " + TransferFormatNames(~0u));
        }
      },
      description)
      ->type_name("CODE");
}

void AddSettingOptions(CLI::App& app, SettingOptions& settings) {
  app.add_option("--exposure-ms", settings.exposure_ms, "Exposure time in milliseconds")
      ->type_name("X")
      ->check(NumberIn(1e-6, 3.6e6).description(""));
  AddParsed(
      app, "--roi", [&settings](const std::string& text) { settings.region = ParseRegion(text); },
      "Region of interest in pixels")
      ->type_name("X,Y,W,H");
  app.add_option("--scan-mode", settings.scan_mode, "Scan mode code, such as 0x0001")
      ->type_name("M");
  AddFormatOption(app, settings.format, "Transfer format: 8bit, 12bit, bgr24 ... or its code");
}

void AddStreamOptions(CLI::App& app, StreamOptions& options) {
  AddCameraOption(app, options.camera);
  AddSettingOptions(app, options.settings);
  app.add_option("--timeout", options.timeout_s, "Longest wait for a frame in seconds, 0: no limit")
      ->type_name("S")
      ->check(NumberIn(0, 86400).description(""));
  app.add_flag("-q,--quiet", options.quiet, "No progress and no summary");
}

template <class Options>
void AddMethodOption(CLI::App& app, Options& options) {
  AddParsed(
      app, "--method",
      [&options](const std::string& text) {
        std::string known;
        for (const NamedCode& method : InterpolationMethods()) {
          if (text == method.name) {
            options.method = static_cast<std::uint8_t>(method.code);
            return;
          }
          known += (known.empty() ? "" : ", ") + std::string(method.name);
        }
        throw std::invalid_argument("\"" + text + "\" is no method; known: " + known);
      },
      "Colour interpolation (default bilinear)")
      ->type_name("NAME");
}

void AddCapture(CLI::App& app, CaptureOptions& options) {
  AddStreamOptions(app, options.stream);
  app.add_option("-n,--frames", options.frames, "Frames to save (default 1)")
      ->type_name("N")
      ->check(CLI::Range(1u, kMaxFrames).description(""));
  app.add_option("-o,--output", options.output, "File name (default frame-%04d.bmp)")
      ->type_name("PATTERN");
  AddMethodOption(app, options);
  app.add_flag("--overwrite", options.overwrite, "Replace files that exist");
  app.footer(kCaptureFooter);
}

void AddConvert(CLI::App& app, ConvertOptions& options) {
  app.add_option("INPUT", options.input, "File with the frame's bytes")->required();
  app.add_option("OUTPUT", options.output, "File to write")->required();
  for (const auto& [name, number, what] : {std::tuple{"--width", &options.width, "Pixels per row"},
                                           std::tuple{"--height", &options.height, "Rows"}}) {
    app.add_option(name, *number, what)
        ->type_name("N")
        ->required()
        ->check(CLI::Range(1u, kMaxSide).description(""));
  }
  AddFormatOption(app, options.format, "Format of the frame: 8bit (default), 12bit, bgr24 ...");
  AddParsed(
      app, "--color-array",
      [&options](const std::string& text) {
        options.color_array = ParseColorArray(text);
        if (!options.color_array) {
          throw std::invalid_argument("\"" + text +
                                      "\" is no colour array; known: mono, RGGB, GRBG, GBRG, BGGR");
        }
      },
      "Colour filters of the first rows: mono (default), rggb, grbg, gbrg, bggr")
      ->type_name("NAME");
  AddMethodOption(app, options);
  app.add_flag("--overwrite", options.overwrite, "Replace a file that exists");
  app.footer(kConvertFooter);
}

void AddLevel(CLI::App& app, LevelOptions& options) {
  AddStreamOptions(app, options.stream);
  for (const auto& [name, value, low, high, what] :
       {std::tuple{"--mode", &options.mode, 1u, 6u, "What to adjust, 1 to 6 (default 1)"},
        std::tuple{"--target", &options.target, 0u, 255u, "Level to reach (default 128)"},
        std::tuple{"--max-steps", &options.max_steps, 1u, 10'000u, "Steps to try (default 50)"},
        std::tuple{"--skip", &options.skip, 0u, 1000u, "Frames between steps (default 3)"}}) {
    app.add_option(name, *value, what)
        ->type_name("N")
        ->check(CLI::Range(low, high).description(""));
  }
  for (const auto& [name, value, what] :
       {std::tuple{"--gain", &options.gain, "Gain value to start with"},
        std::tuple{"--min-gain", &options.min_gain, "Lowest gain value"},
        std::tuple{"--max-gain", &options.max_gain, "Highest gain value"}}) {
    app.add_option(name, *value, what)->type_name("N");
  }
  for (const auto& [name, value, what] :
       {std::tuple{"--min-exposure-ms", &options.min_exposure_ms, "Shortest exposure"},
        std::tuple{"--max-exposure-ms", &options.max_exposure_ms, "Longest exposure"}}) {
    app.add_option(name, *value, what)
        ->type_name("X")
        ->check(NumberIn(1e-6, 3.6e6).description(""));
  }
  app.add_flag("--json", options.json, "Print JSON");
  app.footer(kLevelFooter);
}

void AddCalibrate(CLI::App& app, CalibrateOptions& options) {
  AddStreamOptions(app, options.stream);
  app.add_flag("--white-balance", options.white_balance, "Find the white balance");
  app.add_flag("--defects", options.defects, "Find the defect pixels");
  app.add_option("--threshold", options.threshold,
                 "Least level of a defect pixel in the dark (default 64)")
      ->type_name("L")
      ->check(CLI::Range(1u, 255u).description(""));
  app.add_option("--dark-exposure-ms", options.dark_exposure_ms,
                 "Exposure time of the dark frame in milliseconds")
      ->type_name("X")
      ->check(NumberIn(1e-6, 3.6e6).description(""));
  app.add_option("-o,--output", options.output, "File names (default calibrate-%d.bmp)")
      ->type_name("PATTERN");
  AddMethodOption(app, options);
  app.add_flag("--overwrite", options.overwrite, "Replace files that exist");
  app.add_flag("--json", options.json, "Print JSON");
  app.footer(kCalibrateFooter);
}

void AddStats(CLI::App& app, StatsOptions& options) {
  AddStreamOptions(app, options.stream);
  app.add_option("-s,--seconds", options.seconds, "How long to stream (default 10)")
      ->type_name("S")
      ->check(NumberIn(0.001, 86400).description(""));
  app.add_flag("--json", options.json, "Print JSON");
  app.footer(kStatsFooter);
}

void AddParameters(CLI::App& app, GetOptions& get, SetOptions& set, ParametersOptions& list) {
  CLI::App* command = app.add_subcommand("parameters", "List the settings that have a number");
  command->add_flag("--json", list.json, "Print JSON");
  command = app.add_subcommand("get", "Print the value of a setting");
  AddCameraOption(*command, get.camera);
  command->add_option("NAME", get.parameter, "Name or number (default: all)");
  command = app.add_subcommand("set", "Change a setting, or carry out an action");
  AddCameraOption(*command, set.camera);
  command->add_option("NAME", set.parameter, "Name or number")->required();
  command->add_option("VALUE", set.value, "Number (decimal or 0x...), or text");
  command->footer(kSetFooter);
}

void AddSettings(CLI::App& app, SettingsOptions& options) {
  CLI::App* settings = app.add_subcommand("settings", "Save, load and compare setting files");
  settings->require_subcommand(1);
  const auto add = [&](SettingsAction action, const char* name, const char* what) {
    CLI::App* command = settings->add_subcommand(name, what);
    command->parse_complete_callback([&options, action] { options.action = action; });
    command->add_option("FILE", options.file, "Setting file")->required();
    return command;
  };
  AddCameraOption(*add(SettingsAction::kSave, "save", "Save a camera's settings"), options.camera);
  AddCameraOption(*add(SettingsAction::kLoad, "load", "Set a camera as a file says"),
                  options.camera);
  CLI::App* diff = add(SettingsAction::kDiff, "diff", "Compare two files; exit code 1: different");
  diff->add_option("OTHER", options.other_file, "Setting file")->required();
}

/** A usage error with where to read on. @param app the whole program. */
std::string UsageText(const CLI::App* app, const CLI::Error& error) {
  const std::vector<CLI::App*> commands = app->get_subcommands();
  if (!commands.empty()) {
    return std::string("vexa: ") + error.what() + "\n  \"vexa " + commands.front()->get_name() +
           " --help\" explains the options.\n";
  }
  const std::vector<std::string> rest = app->remaining();
  return "vexa: " + (rest.empty() ? "" : "\"" + rest.front() + "\" is not understood: ") +
         "a command is required\n  \"vexa --help\" lists and explains them.\n";
}

Answer AnswerOf(const CLI::App& app, const CLI::Error& error) {
  std::ostringstream output;
  std::ostringstream errors;
  const int code = app.exit(error, output, errors);
  return {code == 0 ? ExitCode::kSuccess : ExitCode::kUsage, output.str(), errors.str()};
}

}  // namespace

ParsedArguments ParseArguments(const std::vector<std::string>& arguments,
                               const std::function<std::string()>& version) {
  CLI::App app("Lists, inspects, captures from and measures Vexa cameras.", "vexa");
  app.footer(kMainFooter);
  app.set_version_flag("--version", version, "Print the version of the library and exit");
  app.require_subcommand(1);
  app.failure_message(UsageText);
  app.get_formatter()->column_width(28);

  ListOptions list;
  InfoOptions info;
  CaptureOptions capture;
  ConvertOptions convert;
  LevelOptions level;
  CalibrateOptions calibrate;
  StatsOptions stats;
  ParametersOptions parameters;
  GetOptions get;
  SetOptions set;
  SettingsOptions settings;
  app.add_subcommand("list", "List the cameras that are free")
      ->add_flag("--json", list.json, "Print JSON");
  CLI::App* info_command = app.add_subcommand("info", "Show what a camera is and how it is set");
  AddCameraOption(*info_command, info.camera);
  info_command->add_flag("--json", info.json, "Print JSON");
  AddCapture(*app.add_subcommand("capture", "Save frames as image files"), capture);
  AddConvert(*app.add_subcommand("convert", "Turn a frame's bytes into an image file"), convert);
  AddLevel(*app.add_subcommand("level", "Adjust exposure and gain to a brightness, step by step"),
           level);
  AddCalibrate(*app.add_subcommand("calibrate", "Find white balance and defect pixels"), calibrate);
  AddStats(*app.add_subcommand("stats", "Measure the transfer of frames"), stats);
  AddParameters(app, get, set, parameters);
  AddSettings(app, settings);

  try {
    app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
  } catch (const CLI::Error& error) {
    return AnswerOf(app, error);
  }
  const std::pair<const char*, ParsedArguments> commands[] = {
      {"list", list},        {"info", info},
      {"capture", capture},  {"convert", convert},
      {"level", level},      {"calibrate", calibrate},
      {"stats", stats},      {"parameters", parameters},
      {"get", get},          {"set", set},
      {"settings", settings}};
  const std::string name = app.get_subcommands().front()->get_name();
  return std::find_if(std::begin(commands), std::end(commands),
                      [&](const auto& command) { return command.first == name; })
      ->second;
}

Region ParseRegion(std::string_view text) {
  std::array<std::uint32_t, 4> numbers{};
  std::size_t count = 0;
  for (std::string_view rest = text;; ++count) {
    const std::size_t comma = rest.find(',');
    if (count == numbers.size()) {
      throw std::invalid_argument("a region has four numbers: X,Y,W,H");
    }
    numbers[count] = ParseNumber(rest.substr(0, comma));
    if (comma == std::string_view::npos) {
      break;
    }
    rest.remove_prefix(comma + 1);
  }
  if (count + 1 != numbers.size()) {
    throw std::invalid_argument("a region has four numbers: X,Y,W,H");
  }
  if (numbers[2] == 0 || numbers[3] == 0) {
    throw std::invalid_argument("width and height of a region are at least 1");
  }
  return {numbers[0], numbers[1], numbers[2], numbers[3]};
}

}  // namespace vexa::tool

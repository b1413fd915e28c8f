#include "options.hpp"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <sstream>
#include <tuple>
#include <utility>

#include "help_texts.hpp"
#include "option_parts.hpp"

namespace vexa::tool {
namespace {

void AddCapture(CLI::App& app, CaptureOptions& options) {
  AddStreamOptions(app, options.stream);
  app.add_option("-n,--frames", options.frames, "Frames to save (default 1)")
      ->type_name("N")
      ->check(CLI::Range(1u, kMaxFrames).description(""));
  app.add_option("-o,--output", options.output, "File name (default frame-%04d.bmp)")
      ->type_name("PATTERN");
  AddMethodOption(app, options.method);
  app.add_flag("--overwrite", options.overwrite, "Replace files that exist");
  app.footer(kCaptureFooter);
}

void AddConvert(CLI::App& app, ConvertOptions& options) {
  app.add_option("INPUT", options.input, "File with the frame's bytes")->required();
  app.add_option("OUTPUT", options.output, "File to write")->required();
  AddSideOption(app, "--width", options.width, "Pixels per row")->required();
  AddSideOption(app, "--height", options.height, "Rows")->required();
  AddFormatOption(app, options.format, "Format of the frame: 8bit (default), 12bit, bgr24 ...");
  AddColorArrayOption(app, options.color_array);
  AddMethodOption(app, options.method);
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
  AddMethodOption(app, options.method);
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
  ProcessOptions process;
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
  AddProcess(*app.add_subcommand("process", "Take frames through image operations and save them"),
             process);
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
  const std::pair<const char*, ParsedArguments> commands[] = {{"list", list},
                                                              {"info", info},
                                                              {"capture", capture},
                                                              {"convert", convert},
                                                              {"process", process},
                                                              {"level", level},
                                                              {"calibrate", calibrate},
                                                              {"stats", stats},
                                                              {"parameters", parameters},
                                                              {"get", get},
                                                              {"set", set},
                                                              {"settings", settings}};
  const std::string name = app.get_subcommands().front()->get_name();
  return std::find_if(std::begin(commands), std::end(commands),
                      [&](const auto& command) { return command.first == name; })
      ->second;
}

}  // namespace vexa::tool

#include <cstdint>
#include <filesystem>
#include <optional>
#include <system_error>
#include <vector>

#include "camera.hpp"
#include "camera_settings.hpp"
#include "commands.hpp"
#include "frame_file.hpp"
#include "frame_steps.hpp"
#include "image_writer.hpp"
#include "names.hpp"
#include "output_pattern.hpp"
#include "report.hpp"
#include "saved_stream.hpp"
#include "system.hpp"
#include "text.hpp"
#include "white_balance.hpp"

namespace vexa::tool {
namespace {

/** A result that was saved. */
struct Result {
  std::string input; /**< Empty for a frame of the camera. */
  std::string output;
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  std::string color_array; /**< Of a raw file; empty where there are pixels of three colours. */
  std::optional<Gains> gains;
};

/** Takes frames through the steps, saves them, and keeps what came of them. */
class ResultSaver {
 public:
  ResultSaver(const FrameSteps& steps, const OutputPattern& pattern)
      : steps_(steps), pattern_(pattern) {}

  void Save(const StoredFrame& frame, const std::string& input) {
    const FrameInWork result = steps_.Take(frame);
    const std::filesystem::path path = pattern_.PathOf(frame.description.index);
    SaveFrame(result.frame, steps_.plan(), path, color_);
    const FrameDescription& description = result.frame.description;
    results_.push_back({input, Utf8FromPath(path), description.width, description.height,
                        result.color ? "" : ColorArrayName(description.color_array), result.gains});
  }

  const std::vector<Result>& results() const { return results_; }

 private:
  const FrameSteps& steps_;
  const OutputPattern& pattern_;
  std::vector<BYTE> color_;
  std::vector<Result> results_;
};

std::string TextOf(const FrameSteps& steps, const std::vector<Result>& results) {
  std::string text = "Steps: ";
  const std::vector<std::string> names = steps.Names();
  for (std::size_t i = 0; i < names.size(); ++i) {
    text += (i > 0 ? "; " : "") + names[i];
  }
  text += names.empty() ? "none\n" : "\n";
  for (const Result& result : results) {
    text += result.output + Format(": %u x %u", result.width, result.height);
    text += (result.color_array.empty() ? "" : " ") + result.color_array;
    if (const auto& gains = result.gains) {
      text += Format(", white balance %u,%u,%u,%u", gains->red, gains->green_red, gains->green_blue,
                     gains->blue);
    }
    text += "\n";
  }
  return text;
}

Json DocumentOf(const FrameSteps& steps, const std::vector<Result>& results) {
  Json list = Json::array();
  for (const Result& result : results) {
    list.push_back({{"input", result.input.empty() ? Json() : Json(result.input)},
                    {"output", result.output},
                    {"width", result.width},
                    {"height", result.height},
                    {"color_array", result.color_array.empty() ? Json() : Json(result.color_array)},
                    {"gains", result.gains ? JsonOf(*result.gains) : Json()}});
  }
  return {{"steps", steps.Names()}, {"results", list}};
}

/** Refuses to replace a file that is still to be read. */
void CheckInputsStay(const ProcessOptions& options, const OutputPattern& pattern,
                     std::uint32_t frames) {
  for (std::uint32_t index = 1; index <= frames; ++index) {
    const std::filesystem::path output = pattern.PathOf(index);
    std::error_code error;
    if (!std::filesystem::exists(output, error)) {
      continue;
    }
    const auto check = [&](const std::string& input) {
      if (std::filesystem::equivalent(output, PathFromUtf8(input), error)) {
        throw ToolError(ExitCode::kUsage,
                        "\"" + Utf8FromPath(output) + "\" is a file to read and to write",
                        "Choose another --output.");
      }
    };
    for (const std::string& input : options.inputs) {
      check(input);
    }
    if (!options.steps.dark_frame.empty()) {
      check(options.steps.dark_frame);
    }
  }
}

Camera CameraForSteps(std::size_t index) {
  try {
    return OpenCamera(index);
  } catch (const ToolError& error) {
    throw ToolError(error.exit_code(), error.what(),
                    "These steps keep their settings in an open camera, so one has to be there. "
                    "The conversion to 8 bits, --mirror, --rotate and --method need none.");
  }
}

ExitCode ProcessFiles(const ProcessOptions& options, const OutputPattern& pattern) {
  const FrameKind kind{.width = options.width,
                       .height = options.height,
                       .format = options.stream.settings.format.value_or(VEXA_TRANSFER_8BIT),
                       .color_array = options.color_array.value_or(VEXA_COLOR_ARRAY_MONO)};
  constexpr const char* kAdvice = "Check --width, --height and --format.";
  const FileFormat format{kind.width, kind.height, kind.format};
  for (const std::string& input : options.inputs) {  // before anything is written
    CheckFrameFile(input, format, kAdvice);
  }
  std::optional<Camera> camera;
  if (NeedCamera(options.steps)) {
    camera.emplace(CameraForSteps(options.stream.camera));
  }
  const FrameSteps steps(options.steps, kind, pattern.type(), camera ? &*camera : nullptr);
  ResultSaver saver(steps, pattern);
  bool interrupted = false;
  for (std::uint32_t i = 0; i < options.inputs.size() && !interrupted; ++i) {
    StoredFrame frame;
    frame.description = {.index = i + 1,
                         .width = kind.width,
                         .height = kind.height,
                         .color_array = kind.color_array};
    frame.pixels = ReadFrameFile(options.inputs[i], format, kAdvice);
    frame.size = frame.pixels.size();
    saver.Save(frame, options.inputs[i]);
    interrupted = Interrupted();
  }
  if (options.json) {
    Print(Dump(DocumentOf(steps, saver.results())));
  } else if (!options.stream.quiet) {
    Print(TextOf(steps, saver.results()));
  }
  if (saver.results().size() < options.inputs.size()) {
    throw ToolError(ExitCode::kFailure, "interrupted");
  }
  return ExitCode::kSuccess;
}

ExitCode ProcessLive(const ProcessOptions& options, const OutputPattern& pattern) {
  const Camera camera = OpenCamera(options.stream.camera);
  PrintNotes(ApplySettings(camera, options.stream.settings));
  const FrameSettings settings = ReadFrameSettings(camera);
  const FrameSteps steps(options.steps,
                         {.width = settings.region.width,
                          .height = settings.region.height,
                          .format = settings.format,
                          .color_array = settings.color_array},
                         pattern.type(), &camera);
  ResultSaver saver(steps, pattern);
  const SavedStream stream = SaveStream(camera, settings, options.stream, options.frames,
                                        [&](const StoredFrame& frame) { saver.Save(frame, ""); });
  if (options.json) {
    Json document = DocumentOf(steps, saver.results());
    document["lost_frames"] = stream.counts.lost;
    document["receive_errors"] = stream.counts.ErrorTotal();
    document["unsaved_frames"] = stream.unsaved;
    Print(Dump(document));
  } else if (!options.stream.quiet) {
    Print(TextOf(steps, saver.results()) + Summary(stream, options.frames, pattern));
  }
  return Conclude(stream, settings, options.stream);
}

}  // namespace

ExitCode RunProcess(const ProcessOptions& options) {
  const std::uint32_t frames =
      options.inputs.empty() ? options.frames : static_cast<std::uint32_t>(options.inputs.size());
  const OutputPattern pattern = CheckedOutput(options.output, frames, options.overwrite);
  CheckInputsStay(options, pattern, frames);
  return options.inputs.empty() ? ProcessLive(options, pattern) : ProcessFiles(options, pattern);
}

}  // namespace vexa::tool

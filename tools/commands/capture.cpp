#include "camera.hpp"
#include "camera_settings.hpp"
#include "commands.hpp"
#include "image_writer.hpp"
#include "names.hpp"
#include "output_pattern.hpp"
#include "save_plan.hpp"
#include "saved_stream.hpp"
#include "text.hpp"

namespace vexa::tool {
namespace {

/** The options with which the other commands read a frame's bytes back; files do not tell. */
std::string ReadingOptions(const FrameSettings& settings) {
  const bool raw = IsEightBit(settings.format) || DeepOutputFormat(settings.format) != 0;
  return Format("Read with --width %u --height %u --format ", settings.region.width,
                settings.region.height) +
         TransferFormatNames(settings.format) +
         (raw ? " --color-array " + ColorArrayName(settings.color_array) : "") + "\n";
}

}  // namespace

ExitCode RunCapture(const CaptureOptions& options) {
  const OutputPattern pattern = CheckedOutput(options.output, options.frames, options.overwrite);
  if (const auto& format = options.stream.settings.format) {
    // What cannot be saved is refused before the camera is changed; the sensor plays no part in it.
    static_cast<void>(PlanSaving(pattern.type(), *format, VEXA_COLOR_ARRAY_RGGB, options.method));
  }
  const Camera camera = OpenCamera(options.stream.camera);
  PrintNotes(ApplySettings(camera, options.stream.settings));
  const FrameSettings settings = ReadFrameSettings(camera);
  const SavePlan plan =
      PlanSaving(pattern.type(), settings.format, settings.color_array, options.method);

  std::vector<BYTE> color;
  const SavedStream stream =
      SaveStream(camera, settings, options.stream, options.frames, [&](const StoredFrame& frame) {
        SaveFrame(frame, plan, pattern.PathOf(frame.description.index), color);
      });
  if (!options.stream.quiet) {
    Print(Summary(stream, options.frames, pattern) +
          (pattern.type() == FileType::kRaw ? ReadingOptions(settings) : ""));
  }
  return Conclude(stream, settings, options.stream);
}

}  // namespace vexa::tool

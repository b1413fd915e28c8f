#include <cstddef>

#include "commands.hpp"
#include "frame_file.hpp"
#include "frame_pool.hpp"
#include "image_writer.hpp"
#include "names.hpp"
#include "output_pattern.hpp"
#include "save_plan.hpp"

namespace vexa::tool {
namespace {

/** The upper 8 bits of samples in little-endian words; samples that exceed their bits are white. */
std::vector<BYTE> UpperBits(const std::vector<BYTE>& words, int bits) {
  std::vector<BYTE> samples(words.size() / 2);
  for (std::size_t i = 0; i < samples.size(); ++i) {
    const int sample = (words[2 * i] | words[2 * i + 1] << 8) >> (bits - 8);
    samples[i] = static_cast<BYTE>(sample > 0xFF ? 0xFF : sample);
  }
  return samples;
}

void CheckColor(const ConvertOptions& options, FileType type, std::uint32_t format) {
  const bool bayer = IsEightBit(format) || DeepOutputFormat(format) != 0;
  if (options.color_array && (type == FileType::kRaw || !bayer)) {
    throw ToolError(ExitCode::kUsage, "--color-array does not apply to this conversion",
                    "It is for frames of 8 to 16 bits per pixel that become pictures.");
  }
  if (options.method &&
      options.color_array.value_or(VEXA_COLOR_ARRAY_MONO) == VEXA_COLOR_ARRAY_MONO) {
    throw ToolError(ExitCode::kUsage, "--method needs a --color-array other than mono",
                    "\"vexa list\" shows the colour array of a camera.");
  }
}

}  // namespace

ExitCode RunConvert(const ConvertOptions& options) {
  const std::filesystem::path output = PathFromUtf8(options.output);
  const FileType type = FileTypeOf(output, "\"" + options.output + "\"");
  std::uint32_t format = options.format.value_or(VEXA_TRANSFER_8BIT);
  const std::uint16_t color_array = options.color_array.value_or(VEXA_COLOR_ARRAY_MONO);
  CheckColor(options, type, format);
  std::error_code error;
  if (!options.overwrite && std::filesystem::exists(output, error)) {
    throw ToolError(ExitCode::kUsage, "\"" + options.output + "\" exists",
                    "Choose another name, or replace the file with --overwrite.");
  }
  std::vector<BYTE> pixels = ReadFrameFile(options.input, {options.width, options.height, format},
                                           "Check --width, --height and --format.");
  const std::uint32_t deep = DeepOutputFormat(format);
  const bool stays =
      type == FileType::kRaw || (type == FileType::kTiff && color_array == VEXA_COLOR_ARRAY_MONO);
  if (deep != 0 && !stays) {
    pixels = UpperBits(pixels, DeepSampleBits(deep));
    format = VEXA_TRANSFER_8BIT;
  }
  const SavePlan plan = PlanSaving(type, format, color_array, options.method);
  StoredFrame frame;
  frame.description = {
      .index = 1, .width = options.width, .height = options.height, .color_array = color_array};
  frame.size = pixels.size();
  frame.pixels = std::move(pixels);
  std::vector<BYTE> color;
  SaveFrame(frame, plan, output, color);
  return ExitCode::kSuccess;
}

}  // namespace vexa::tool

#include "step_checks.hpp"

#include <algorithm>
#include <string>
#include <vector>

#include "errors.hpp"
#include "names.hpp"
#include "text.hpp"

namespace vexa::tool {
namespace {

/** What frames a step is for. */
enum class StepUse { kBayer, kRaw, kColor, kPicture };

/** An option, whether it was given, and the frames that it is for. */
struct OptionUse {
  const char* name;
  bool given;
  StepUse use;
  bool needs_camera = true;
};

std::vector<OptionUse> UsesOf(const StepOptions& options) {
  return {{"--dark-frame", !options.dark_frame.empty(), StepUse::kRaw},
          {"--impulse-filter", options.impulse_filter, StepUse::kRaw},
          {"--white-balance", options.white_balance.has_value(), StepUse::kBayer},
          {"--raw-gamma", options.raw_gamma.has_value(), StepUse::kBayer},
          {"--mirror", options.mirror.has_value(), StepUse::kRaw, false},
          {"--rotate", options.rotate.has_value(), StepUse::kRaw, false},
          {"--method", options.method.has_value(), StepUse::kBayer, false},
          {"--matrix", options.matrix.has_value(), StepUse::kColor},
          {"--hue", options.hue.has_value(), StepUse::kColor},
          {"--saturation", options.saturation.has_value(), StepUse::kColor},
          {"--gamma", options.gamma.has_value(), StepUse::kPicture},
          {"--brightness", options.brightness.has_value(), StepUse::kPicture},
          {"--contrast", options.contrast.has_value(), StepUse::kPicture},
          {"--negative", options.negative, StepUse::kPicture},
          {"--sharpen", options.sharpen.has_value(), StepUse::kPicture}};
}

ToolError DoesNotApply(const char* option, const std::string& why, const std::string& advice) {
  return {ExitCode::kUsage, std::string(option) + " does not apply to " + why, advice};
}

void CheckUses(const StepOptions& options, const FrameKind& kind, FileType type) {
  const bool raw = IsRaw(kind.format);
  for (const auto& [name, given, use, needs_camera] : UsesOf(options)) {
    if (!given) {
      continue;
    }
    if (!raw && (use == StepUse::kRaw || use == StepUse::kBayer)) {
      throw DoesNotApply(
          name, std::string("frames in the format ") + FindTransferFormat(kind.format)->name,
          "They are colour pictures already; the step is for raw frames, such as 8bit or 12bit.");
    }
    if (raw && !IsBayer(kind) && (use == StepUse::kBayer || use == StepUse::kColor)) {
      throw DoesNotApply(name, "monochrome frames",
                         "Frames in files are taken for monochrome unless --color-array says "
                         "otherwise; \"vexa list\" shows that of a camera.");
    }
    if (IsBayer(kind) && type == FileType::kRaw &&
        (use == StepUse::kColor || use == StepUse::kPicture || std::string(name) == "--method")) {
      throw DoesNotApply(name, "Bayer frames that are saved as .raw files",
                         "These hold the frame as it is before the interpolation; give --output "
                         "a name that ends with .bmp, .tif or .jpg.");
    }
  }
}

/** What the library's noise reduction and turns can do with a colour array. */
void CheckColorArray(const StepOptions& options, const FrameKind& kind) {
  const std::string frames = ColorArrayName(kind.color_array) + " frames";
  const bool whole =
      kind.color_array == VEXA_COLOR_ARRAY_MONO || kind.color_array == VEXA_COLOR_ARRAY_RGGB;
  if (!options.dark_frame.empty() && !whole) {
    throw DoesNotApply("--dark-frame", frames, "It is for mono and RGGB frames.");
  }
  if (options.impulse_filter && !whole && kind.color_array != VEXA_COLOR_ARRAY_BGGR) {
    throw DoesNotApply("--impulse-filter", frames, "It is for mono, RGGB and BGGR frames.");
  }
  if ((options.mirror || options.rotate) && IsBayer(kind) &&
      (kind.width % 2 != 0 || kind.height % 2 != 0)) {
    throw DoesNotApply(options.mirror ? "--mirror" : "--rotate",
                       "Bayer frames with an odd width or height",
                       "Their colours would come into the wrong places.");
  }
  if (const auto& area = options.grey_area) {
    if (area->x >= kind.width || area->y >= kind.height || area->width < 2 || area->height < 2 ||
        kind.width - area->x < 2 || kind.height - area->y < 2) {
      throw ToolError(ExitCode::kUsage,
                      Format("--grey-area: less than 2 x 2 pixels lie in the frame of %u x %u",
                             kind.width, kind.height));
    }
  }
}

}  // namespace

bool IsRaw(std::uint32_t format) { return IsEightBit(format) || DeepOutputFormat(format) != 0; }

bool IsBayer(const FrameKind& kind) {
  return IsRaw(kind.format) && kind.color_array != VEXA_COLOR_ARRAY_MONO;
}

bool NeedCamera(const StepOptions& options) {
  const std::vector<OptionUse> uses = UsesOf(options);
  return std::any_of(uses.begin(), uses.end(),
                     [](const OptionUse& option) { return option.given && option.needs_camera; });
}

void CheckSteps(const StepOptions& options, const FrameKind& kind, FileType type) {
  if (FindTransferFormat(kind.format) == nullptr) {
    throw ToolError(ExitCode::kUsage, Format("0x%04X is no transfer format", kind.format),
                    "Known: " + TransferFormatNames(~0u) + ".");
  }
  CheckUses(options, kind, type);
  CheckColorArray(options, kind);
}

}  // namespace vexa::tool

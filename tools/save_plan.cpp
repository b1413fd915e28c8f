#include "save_plan.hpp"

#include <VexaAPI.h>

#include "errors.hpp"
#include "names.hpp"
#include "text.hpp"

namespace vexa::tool {

SavePlan PlanSaving(FileType type, std::uint32_t format, std::uint16_t color_array,
                    std::optional<std::uint8_t> method) {
  using Content = SavePlan::Content;
  const TransferFormat* layout = FindTransferFormat(format);
  const std::string name = layout != nullptr ? layout->name : Format("0x%04X", format);
  if (type == FileType::kRaw) {
    if (method) {
      throw ToolError(ExitCode::kUsage, "--method does not apply to .raw files",
                      "They hold the frame as the camera sends it; use .bmp for a picture.");
    }
    return {.content = Content::kBytes};
  }
  if (format == VEXA_TRANSFER_BGR24) {
    if (method) {
      throw ToolError(ExitCode::kUsage, "--method does not apply to frames in the format " + name,
                      "The camera has interpolated them already; leave --method out.");
    }
    return {.content = Content::kColor};
  }
  const std::uint32_t deep_format = DeepOutputFormat(format);
  if (type == FileType::kTiff && deep_format != 0) {
    if (method) {
      throw ToolError(ExitCode::kUsage, "--method does not apply to frames in the format " + name,
                      "A .tif file holds their samples as they are; leave --method out.");
    }
    return {.content = Content::kDeep, .deep_format = deep_format};
  }
  if (!IsEightBit(format)) {
    throw ToolError(ExitCode::kUsage,
                    "frames in the format " + name + " can only be saved as " +
                        (deep_format != 0 ? ".tif and .raw files" : ".raw files"),
                    std::string("Give --output a name that ends with ") +
                        (deep_format != 0 ? ".tif or " : "") +
                        ".raw, or choose --format 8bit; \"vexa process\" makes pictures of them.");
  }
  if (color_array == VEXA_COLOR_ARRAY_MONO) {
    return {.content = Content::kGrey};
  }
  return {.content = Content::kInterpolate, .method = method.value_or(VEXA_INTERP_BILINEAR)};
}

}  // namespace vexa::tool

/** What is saved of a frame: the answer to file type, transfer format, sensor and method together.
 */
#pragma once

#include <cstdint>
#include <optional>

#include "output_pattern.hpp"

namespace vexa::tool {

/** How a frame becomes an image file. */
struct SavePlan {
  enum class Content {
    kBytes,       /**< The bytes as they are. */
    kGrey,        /**< 8-bit samples as a grey image. */
    kInterpolate, /**< 8-bit Bayer samples, interpolated to BGR. */
    kColor,       /**< BGR pixels as they are. */
    kDeep,        /**< Samples of 10 to 16 bits as they are. */
  };
  Content content = Content::kBytes;
  std::uint8_t method = 0;       /**< VEXA_INTERP_ code of kInterpolate. */
  std::uint32_t deep_format = 0; /**< VEXA_OUTPUT_ code of kDeep. */
};

/** Decides how frames are saved.
 *  @param type        the file type.
 *  @param format      the transfer format in force.
 *  @param color_array the colour array in force.
 *  @param method      the interpolation that the user asked for.
 *  @throws ToolError (kUsage) when the frames do not fit the file type. */
SavePlan PlanSaving(FileType type, std::uint32_t format, std::uint16_t color_array,
                    std::optional<std::uint8_t> method);

}  // namespace vexa::tool

/** White balance: what the colours of a frame are, and the gains that make them grey. */
#pragma once

#include <VexaAPI.h>

#include <functional>
#include <optional>

#include "frame_pool.hpp"
#include "options.hpp"
#include "report.hpp"

namespace vexa::tool {

/** Mean levels of a frame's colours. */
struct Colours {
  double red = 0;
  double green = 0;
  double blue = 0;
};

/** Measures an 8-bit Bayer frame. @param area its part, all of it if not given; cut at the frame's
 *  edges, and 0 in all colours where nothing is left. @throws ApiError. */
Colours MeasureColours(const StoredFrame& frame, const std::optional<Region>& area = std::nullopt);

/** Finds the gains under which the means of red, green and blue agree. Saturated samples do not
 *  follow a gain, so that it takes several rounds.
 *  @param colours without any gain. @param measure gives the means under some gains. */
Gains FindGains(Colours colours, const std::function<Colours(const Gains&)>& measure);

/** The gains by name. */
Json JsonOf(const Gains& gains);

}  // namespace vexa::tool

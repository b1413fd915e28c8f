/** From a frame to a result: the image operations of the library, one after the other. */
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "camera.hpp"
#include "frame_pool.hpp"
#include "options.hpp"
#include "output_pattern.hpp"
#include "save_plan.hpp"
#include "step_checks.hpp"

namespace vexa::tool {

/** A frame on its way through the steps, and what has been found out about it. */
struct FrameInWork {
  StoredFrame frame;  /**< Of 8-bit samples, or of BGR pixels, */
  bool color = false; /**< as this says. */
  std::optional<Gains> gains;
};

/** The steps, ready to be taken. */
class FrameSteps {
 public:
  /** Reads the dark frame, and sets the camera object up.
   *  @param kind   of the frames. @param type of the files that the results are for.
   *  @param camera outlives the steps, and is theirs alone; may be null unless NeedCamera().
   *  @throws ToolError (kUsage) for steps that such frames cannot take; ApiError. */
  FrameSteps(const StepOptions& options, const FrameKind& kind, FileType type,
             const Camera* camera);

  /** Takes a frame through all steps. @throws ApiError; ToolError for a frame of another size. */
  FrameInWork Take(const StoredFrame& frame) const;

  /** The steps in words, in their order. */
  std::vector<std::string> Names() const;

  /** How the results are saved. */
  const SavePlan& plan() const { return plan_; }

 private:
  struct Step {
    std::string name;
    std::function<void(FrameInWork&)> take;
  };

  void AddRawSteps(const StepOptions& options, const Camera* camera);
  void AddTones(const StepOptions& options, const Camera& camera);
  void AddTurns(const StepOptions& options);
  void AddColors(const StepOptions& options, const Camera& camera);
  void AddPictureSteps(const StepOptions& options, const Camera& camera);

  FrameKind kind_;
  std::vector<Step> steps_;
  SavePlan plan_;
};

}  // namespace vexa::tool

#include "frame_steps.hpp"

#include <VexaAPI.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <utility>

#include "errors.hpp"
#include "frame_file.hpp"
#include "names.hpp"
#include "text.hpp"
#include "white_balance.hpp"

namespace vexa::tool {
namespace {

using ToneTable = std::array<BYTE, 256>;

/** Gamma in the library's hundredths. */
WORD Hundredths(double value) { return static_cast<WORD>(std::lround(value * 100)); }

void Check(const char* name, BOOL result, const std::string& advice = {}) {
  if (result == 0) {
    throw ApiError(name, GetLastError(), advice);
  }
}

/** Gives a frame new pixels. */
void Replace(StoredFrame& frame, std::vector<BYTE>&& pixels) {
  frame.pixels = std::move(pixels);
  frame.size = frame.pixels.size();
}

/** Room for a frame's pixels in a VEXA_TRANSFER_ layout. */
std::vector<BYTE> RoomFor(const StoredFrame& frame, std::uint32_t layout) {
  return std::vector<BYTE>(ImageMemory(frame.description.width, frame.description.height, layout));
}

DWORD OutputFormat(const FrameInWork& work) {
  return work.color ? VEXA_OUTPUT_BGR24 : VEXA_OUTPUT_MONO8;
}

void ReduceToEightBits(StoredFrame& frame, std::uint32_t format) {
  std::vector<BYTE> samples = RoomFor(frame, VEXA_TRANSFER_8BIT);
  Check("Vexa_ConvTo8BitsImage",
        Vexa_ConvTo8BitsImage(frame.description.width, frame.description.height, format,
                              frame.pixels.data(), samples.data()));
  Replace(frame, std::move(samples));
}

void TurnIntoPicture(FrameInWork& work, std::uint32_t format) {
  const FrameDescription& description = work.frame.description;
  std::vector<BYTE> pixels = RoomFor(work.frame, VEXA_TRANSFER_BGR24);
  Check("Vexa_ConvYUVOrBGRToBGRImage",
        Vexa_ConvYUVOrBGRToBGRImage(description.width, description.height, format,
                                    work.frame.pixels.data(), VEXA_OUTPUT_BGR24, pixels.data()),
        "YUV frames need a width that is a multiple of 4.");
  Replace(work.frame, std::move(pixels));
  work.color = true;
}

void Interpolate(FrameInWork& work, std::uint8_t method) {
  const FrameDescription& description = work.frame.description;
  std::vector<BYTE> pixels = RoomFor(work.frame, VEXA_TRANSFER_BGR24);
  Check("Vexa_ColorInterpolation",
        Vexa_ColorInterpolation(description.width, description.height, description.color_array,
                                work.frame.pixels.data(), pixels.data(), method, VEXA_OUTPUT_BGR24),
        "Choose another --method or larger frames: the methods need up to 6 x 6 pixels.");
  Replace(work.frame, std::move(pixels));
  work.color = true;
}

void Turn(StoredFrame& frame, std::uint8_t operation) {
  DWORD width = frame.description.width;
  DWORD height = frame.description.height;
  WORD color_array = frame.description.color_array;
  Check("Vexa_MirrorRotation", Vexa_MirrorRotation(operation, VEXA_ROTATION_NONE, &width, &height,
                                                   &color_array, frame.pixels.data()));
  frame.description.width = width;
  frame.description.height = height;
  frame.description.color_array = color_array;
}

void ReduceNoise(const Camera& camera, DWORD mode, StoredFrame& frame) {
  const FrameDescription& description = frame.description;
  camera.Call("Vexa_NoiseReduction", Vexa_NoiseReduction, mode, DWORD{description.width},
              DWORD{description.height}, DWORD{description.color_array}, frame.pixels.data());
}

/** The tone curves of raw frames: the white balance, then a curve for all colours, in one table for
 * each. Unlike Vexa_WhiteBalance(), this takes frames of any size. */
void SetTones(const Camera& camera, const Gains& gains, const ToneTable& curve) {
  const std::pair<BYTE, std::uint16_t> channels[] = {{VEXA_GAMMA_CHANNEL_R, gains.red},
                                                     {VEXA_GAMMA_CHANNEL_GR, gains.green_red},
                                                     {VEXA_GAMMA_CHANNEL_GB, gains.green_blue},
                                                     {VEXA_GAMMA_CHANNEL_B, gains.blue}};
  for (const auto& [channel, gain] : channels) {
    ToneTable table{};
    for (std::uint32_t i = 0; i < table.size(); ++i) {
      table[i] = curve[std::min<std::uint32_t>(255, i * gain / kUnityGain)];
    }
    camera.Call("Vexa_SetGammaModeEx", Vexa_SetGammaModeEx, channel, BYTE{VEXA_GAMMA_MODE_TABLE},
                WORD{100}, short{0}, BYTE{0}, static_cast<const BYTE*>(table.data()));
  }
}

ToneTable CurveOf(const Camera& camera, double gamma) {
  constexpr BYTE kChannel = VEXA_GAMMA_CHANNEL_R;
  ToneTable table{};
  camera.Call("Vexa_SetGammaModeEx", Vexa_SetGammaModeEx, kChannel, BYTE{VEXA_GAMMA_MODE_CURVE},
              Hundredths(gamma), short{0}, BYTE{0}, static_cast<const BYTE*>(nullptr));
  camera.Call("Vexa_GetGammaModeEx", Vexa_GetGammaModeEx, kChannel, static_cast<BYTE*>(nullptr),
              static_cast<WORD*>(nullptr), static_cast<short*>(nullptr),
              static_cast<BYTE*>(nullptr), table.data());
  return table;
}

void ApplyTones(const Camera& camera, StoredFrame& frame) {
  const FrameDescription& description = frame.description;
  camera.Call("Vexa_RawColorGamma", Vexa_RawColorGamma, DWORD{description.width},
              DWORD{description.height}, WORD{description.color_array}, frame.pixels.data());
}

Gains GainsOf(const Camera& camera, const StoredFrame& frame, const std::optional<Region>& area) {
  const ToneTable linear = CurveOf(camera, 1);
  return FindGains(MeasureColours(frame, area), [&](const Gains& gains) {
    StoredFrame corrected = frame;
    SetTones(camera, gains, linear);
    ApplyTones(camera, corrected);
    return MeasureColours(corrected, area);
  });
}

SavePlan PlanFor(const FrameKind& kind, FileType type) {
  if (!IsRaw(kind.format) || (IsBayer(kind) && type != FileType::kRaw)) {
    return PlanSaving(type, VEXA_TRANSFER_BGR24, kind.color_array, std::nullopt);
  }
  return PlanSaving(type, VEXA_TRANSFER_8BIT, kind.color_array, std::nullopt);
}

}  // namespace

FrameSteps::FrameSteps(const StepOptions& options, const FrameKind& kind, FileType type,
                       const Camera* camera)
    : kind_(kind) {
  CheckSteps(options, kind, type);
  plan_ = PlanFor(kind, type);
  const std::string format = FindTransferFormat(kind.format)->name;
  if (!IsRaw(kind.format)) {
    if (kind.format != VEXA_TRANSFER_BGR24) {
      steps_.push_back({format + " to BGR",
                        [code = kind.format](FrameInWork& work) { TurnIntoPicture(work, code); }});
    }
  } else if (!IsEightBit(kind.format)) {
    steps_.push_back({format + " to 8 bits", [code = kind.format](FrameInWork& work) {
                        ReduceToEightBits(work.frame, code);
                      }});
  }
  AddRawSteps(options, camera);
  AddTurns(options);
  if (IsBayer(kind) && type != FileType::kRaw) {
    const std::uint8_t method = options.method.value_or(VEXA_INTERP_BILINEAR);
    steps_.push_back({"interpolation " + InterpolationName(method),
                      [method](FrameInWork& work) { Interpolate(work, method); }});
  }
  if (camera != nullptr) {
    AddColors(options, *camera);
    AddPictureSteps(options, *camera);
  }
}

void FrameSteps::AddRawSteps(const StepOptions& options, const Camera* camera) {
  if (camera == nullptr) {
    return;
  }
  if (!options.dark_frame.empty()) {
    StoredFrame dark;
    dark.description = {
        .index = 1, .width = kind_.width, .height = kind_.height, .color_array = kind_.color_array};
    Replace(dark, ReadFrameFile(options.dark_frame, {kind_.width, kind_.height, kind_.format},
                                "The dark frame needs the size and format of the other frames."));
    ReduceToEightBits(dark, kind_.format);
    ReduceNoise(*camera, VEXA_NOISE_REDUCTION_STORE_DARK_FRAME, dark);
    steps_.push_back({"dark frame", [camera](FrameInWork& work) {
                        ReduceNoise(*camera, VEXA_NOISE_REDUCTION_DARK_FRAME, work.frame);
                      }});
  }
  if (options.impulse_filter) {
    steps_.push_back({"impulse filter", [camera](FrameInWork& work) {
                        ReduceNoise(*camera, VEXA_NOISE_REDUCTION_IMPULSE, work.frame);
                      }});
  }
  if (options.white_balance || options.raw_gamma) {
    AddTones(options, *camera);
  }
}

void FrameSteps::AddTones(const StepOptions& options, const Camera& camera) {
  const ToneTable curve = CurveOf(camera, options.raw_gamma.value_or(1));
  const BalanceOptions balance = options.white_balance.value_or(BalanceOptions{});
  std::string name;
  if (options.white_balance) {
    name = std::string("white balance ") + (balance.source == GainSource::kGiven  ? "as given"
                                            : balance.source == GainSource::kAuto ? "auto"
                                                                                  : "once");
  }
  if (options.raw_gamma) {
    name += (name.empty() ? "" : ", ") + Format("raw gamma %g", *options.raw_gamma);
  }
  if (balance.source == GainSource::kGiven) {
    SetTones(camera, balance.gains, curve);
    const std::optional<Gains> gains =
        options.white_balance ? std::optional(balance.gains) : std::nullopt;
    steps_.push_back({name, [&camera, gains](FrameInWork& work) {
                        ApplyTones(camera, work.frame);
                        work.gains = gains;
                      }});
    return;
  }
  const auto found = std::make_shared<std::optional<Gains>>();  // those of the first frame
  steps_.push_back({name, [&camera, curve, found, once = balance.source == GainSource::kOnce,
                           area = options.grey_area](FrameInWork& work) {
                      if (!once || !*found) {
                        *found = GainsOf(camera, work.frame, area);
                        SetTones(camera, **found, curve);
                      }
                      ApplyTones(camera, work.frame);
                      work.gains = *found;
                    }});
}

void FrameSteps::AddTurns(const StepOptions& options) {
  if (const auto& mirror = options.mirror) {
    steps_.push_back({"mirror " + MirrorName(*mirror),
                      [operation = *mirror](FrameInWork& work) { Turn(work.frame, operation); }});
  }
  if (const auto& rotate = options.rotate) {
    const std::uint8_t operation = *rotate == 90    ? VEXA_ROTATE_CLOCKWISE
                                   : *rotate == 180 ? VEXA_ROTATE_180
                                                    : VEXA_ROTATE_COUNTERCLOCKWISE;
    steps_.push_back({Format("rotate %u", *rotate),
                      [operation](FrameInWork& work) { Turn(work.frame, operation); }});
  }
}

void FrameSteps::AddColors(const StepOptions& options, const Camera& camera) {
  std::string name;
  if (options.matrix) {
    const std::array<short, 12> matrix = *options.matrix;
    camera.Call("Vexa_SetColorMatrix", Vexa_SetColorMatrix, BYTE{VEXA_COLOR_MATRIX_USER},
                matrix.data());
    name = "matrix";
  }
  if (options.hue || options.saturation) {
    const double hue = options.hue.value_or(0);
    const double saturation = options.saturation.value_or(100);
    camera.Call("Vexa_SetHueSaturationMode", Vexa_SetHueSaturationMode,
                BYTE{VEXA_HUE_SATURATION_ON}, static_cast<short>(std::lround(hue * 10)),
                static_cast<WORD>(std::lround(saturation)));
    name += (name.empty() ? "" : ", ") + Format("hue %g, saturation %g", hue, saturation);
  }
  if (!name.empty()) {
    steps_.push_back({name, [&camera](FrameInWork& work) {
                        const FrameDescription& description = work.frame.description;
                        camera.Call("Vexa_HueSaturationColorMatrix", Vexa_HueSaturationColorMatrix,
                                    DWORD{description.width}, DWORD{description.height},
                                    OutputFormat(work), work.frame.pixels.data());
                      }});
  }
}

void FrameSteps::AddPictureSteps(const StepOptions& options, const Camera& camera) {
  if (options.gamma || options.brightness || options.contrast || options.negative) {
    const double gamma = options.gamma.value_or(1);
    const int brightness = options.brightness.value_or(0);
    const std::uint32_t contrast = options.contrast.value_or(0);
    camera.Call("Vexa_SetGammaModeEx", Vexa_SetGammaModeEx, BYTE{VEXA_GAMMA_CHANNEL_Y},
                options.negative ? BYTE{VEXA_GAMMA_MODE_REVERSE} : BYTE{VEXA_GAMMA_MODE_CURVE},
                Hundredths(gamma), static_cast<short>(brightness), static_cast<BYTE>(contrast),
                static_cast<const BYTE*>(nullptr));
    steps_.push_back({Format("%sgamma %g, brightness %d, contrast %u",
                             options.negative ? "negative " : "", gamma, brightness, contrast),
                      [&camera](FrameInWork& work) {
                        const FrameDescription& description = work.frame.description;
                        camera.Call("Vexa_BGRGamma", Vexa_BGRGamma, DWORD{description.width},
                                    DWORD{description.height}, OutputFormat(work),
                                    work.frame.pixels.data());
                      }});
  }
  if (options.sharpen) {
    camera.Call("Vexa_SetSharpnessMode", Vexa_SetSharpnessMode, BYTE{1},
                static_cast<WORD>(*options.sharpen), static_cast<BYTE>(options.coring));
    steps_.push_back({Format("sharpen %u, coring %u", *options.sharpen, options.coring),
                      [&camera](FrameInWork& work) {
                        const FrameDescription& description = work.frame.description;
                        camera.Call("Vexa_Sharpness", Vexa_Sharpness, DWORD{description.width},
                                    DWORD{description.height}, OutputFormat(work),
                                    work.frame.pixels.data());
                      }});
  }
}

FrameInWork FrameSteps::Take(const StoredFrame& frame) const {
  if (frame.description.width != kind_.width || frame.description.height != kind_.height) {
    throw ToolError(
        ExitCode::kFailure,
        Format("a frame of %u x %u pixels came in place of %u x %u", frame.description.width,
               frame.description.height, kind_.width, kind_.height),
        "The camera's settings were changed meanwhile; try again.");
  }
  FrameInWork work{
      .frame = frame, .color = kind_.format == VEXA_TRANSFER_BGR24, .gains = std::nullopt};
  for (const Step& step : steps_) {
    step.take(work);
  }
  return work;
}

std::vector<std::string> FrameSteps::Names() const {
  std::vector<std::string> names;
  for (const Step& step : steps_) {
    names.push_back(step.name);
  }
  return names;
}

}  // namespace vexa::tool

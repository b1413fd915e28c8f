#include <algorithm>
#include <cmath>
#include <optional>

#include "camera.hpp"
#include "camera_settings.hpp"
#include "commands.hpp"
#include "identity.hpp"
#include "names.hpp"
#include "report.hpp"
#include "text.hpp"

namespace vexa::tool {
namespace {

constexpr const char* kAbsent = "not available on this model";

Fact NumberFact(const char* key, const char* label, std::uint32_t value, const char* unit = "") {
  return {key, label, value, Format("%u%s", value, unit)};
}

Fact HexFact(const char* key, const char* label, std::optional<std::uint32_t> value) {
  return value ? Fact{key, label, *value, Format("0x%04X", *value)}
               : Fact{key, label, nullptr, kAbsent};
}

/** Reads a value that not every model has. */
std::optional<std::uint32_t> ReadOptional(const Camera& camera, const char* name,
                                          BOOL(VEXA_CALL* function)(HANDLE, DWORD*)) {
  DWORD value = 0;
  return camera.TryCall(name, function, &value) ? std::optional<std::uint32_t>(value)
                                                : std::nullopt;
}

std::uint32_t ReadNumber(const Camera& camera, const char* name,
                         BOOL(VEXA_CALL* function)(HANDLE, DWORD*)) {
  DWORD value = 0;
  camera.Call(name, function, &value);
  return value;
}

Section IdentitySection(const Camera& camera) {
  const Identity identity = ReadIdentity(camera);
  return {
      "identity",
      "Identity",
      {{"model", "Model", identity.model, identity.model},
       HexFact("product_id", "Product ID", identity.product_id),
       HexFact("variant", "Variant", identity.variant),
       HexFact("version", "Version word", identity.version),
       HexFact("firmware", "Firmware", identity.firmware),
       {"max_width", "Largest width", identity.max_width, Format("%u px", identity.max_width)},
       {"max_height", "Largest height", identity.max_height, Format("%u px", identity.max_height)},
       {"color_array", "Colour array", ColorArrayName(identity.color_array),
        ColorArrayName(identity.color_array)},
       {"usb_speed", "USB speed", UsbSpeedName(identity.usb_speed),
        UsbSpeedName(identity.usb_speed)}}};
}

Section CapabilitySection(const Camera& camera) {
  Json names = Json::array();
  std::string text;
  for (const NamedCode& function : CameraFunctions()) {
    BOOL present = 0;
    camera.Call("Vexa_HasFunction", Vexa_HasFunction, static_cast<DWORD>(function.code), &present);
    if (present != 0) {
      names.push_back(function.name);
      text += (text.empty() ? "" : ", ") + std::string(function.name);
    }
  }
  WORD scan_modes = 0;
  DWORD clock_modes = 0;
  DWORD formats = 0;
  camera.Call("Vexa_GetEnableScanMode", Vexa_GetEnableScanMode, &scan_modes);
  camera.Call("Vexa_GetEnableClockMode", Vexa_GetEnableClockMode, &clock_modes);
  camera.Call("Vexa_GetEnableTransferBitsPerPixel", Vexa_GetEnableTransferBitsPerPixel, &formats);
  Json format_names = Json::array();
  for (const TransferFormat& format : TransferFormats()) {
    if ((formats & format.code) != 0) {
      format_names.push_back(format.name);
    }
  }
  return {"capabilities",
          "Capabilities",
          {{"functions", "Functions", names, text.empty() ? "none" : text},
           {"scan_modes", "Scan modes", BitsOf(scan_modes), DescribeMask(scan_modes)},
           {"clock_modes", "Clock modes", BitsOf(clock_modes), DescribeMask(clock_modes)},
           {"transfer_formats", "Transfer formats", format_names, TransferFormatNames(formats)}}};
}

Section GeometrySection(const Camera& camera, const FrameSettings& settings) {
  const Region& region = settings.region;
  std::vector<Fact> facts = {
      HexFact("scan_mode", "Scan mode", settings.scan_mode),
      {"region",
       "Region",
       {{"x", region.x}, {"y", region.y}, {"width", region.width}, {"height", region.height}},
       Format("%u x %u px at %u, %u", region.width, region.height, region.x, region.y)}};
  BYTE horizontal_skipping = 0;
  BYTE vertical_skipping = 0;
  BYTE horizontal_binning = 0;
  BYTE vertical_binning = 0;
  const bool readable =
      camera.TryCall("Vexa_GetSkippingAndBinning", Vexa_GetSkippingAndBinning, &horizontal_skipping,
                     &vertical_skipping, &horizontal_binning, &vertical_binning);
  const auto pair = [&](const char* key, const char* label, unsigned horizontal,
                        unsigned vertical) {
    facts.push_back(readable ? Fact{key,
                                    label,
                                    {{"horizontal", horizontal}, {"vertical", vertical}},
                                    Format("%u horizontally, %u vertically", horizontal, vertical)}
                             : Fact{key, label, nullptr, kAbsent});
  };
  pair("skipping", "Skipping", horizontal_skipping, vertical_skipping);
  pair("binning", "Binning", horizontal_binning, vertical_binning);
  BYTE mirror = 0;
  const bool mirrors = camera.TryCall("Vexa_GetMirrorMode", Vexa_GetMirrorMode, &mirror);
  facts.push_back(HexFact("mirror_mode", "Mirror mode",
                          mirrors ? std::optional<std::uint32_t>(mirror) : std::nullopt));
  return {"geometry", "Geometry", facts};
}

Section TransferSection(const FrameSettings& settings) {
  const TransferFormat* format = FindTransferFormat(settings.format);
  const std::string name = format != nullptr ? format->name : Format("0x%04X", settings.format);
  const std::uint64_t bytes =
      ImageBytes(settings.region.width, settings.region.height, settings.format);
  return {"transfer",
          "Transfer",
          {{"format", "Format", name, Format("%s (0x%04X)", name.c_str(), settings.format)},
           {"format_code", "", settings.format, ""},
           {"image_bytes", "Image size", bytes, Format("%ju bytes", std::uintmax_t{bytes})}}};
}

/** An exposure in clocks and in milliseconds. */
void AddExposure(const Camera& camera, std::vector<Fact>& facts, const std::string& key,
                 const std::string& label, std::uint32_t clocks) {
  float seconds = 0;
  camera.Call("Vexa_GetExposureTimeFromClock", Vexa_GetExposureTimeFromClock,
              static_cast<DWORD>(clocks), &seconds);
  const double milliseconds = static_cast<double>(seconds) * 1e3;
  facts.push_back(
      {key + "_ms", label, milliseconds, Format("%.6g ms (%u clocks)", milliseconds, clocks)});
  facts.push_back({key + "_clocks", "", clocks, ""});
}

Section TimingSection(const Camera& camera, const FrameSettings& settings) {
  DWORD clock_mode = 0;
  DWORD frequency = 0;
  WORD lines = 0;
  WORD clocks = 0;
  camera.Call("Vexa_GetClock", Vexa_GetClock, &clock_mode, &frequency);
  camera.Call("Vexa_GetFrameClock", Vexa_GetFrameClock, &lines, &clocks);
  std::vector<Fact> facts = {
      NumberFact("clock_mode", "Clock mode", clock_mode),
      {"pixel_clock_hz", "Pixel clock", frequency,
       Format("%.6g MHz", static_cast<double>(frequency) * 1e-6)},
      NumberFact("lines_per_frame", "Lines per frame", lines),
      NumberFact("clocks_per_line", "Clocks per line", clocks),
      NumberFact("shutter_max_clock", "Shutter maximum clock",
                 ReadNumber(camera, "Vexa_GetShutterMaxClock", Vexa_GetShutterMaxClock))};
  AddExposure(camera, facts, "exposure", "Exposure",
              ReadNumber(camera, "Vexa_GetExposureClock", Vexa_GetExposureClock));
  AddExposure(camera, facts, "max_short_exposure", "Longest short exposure",
              ReadNumber(camera, "Vexa_GetMaxShortExposureClock", Vexa_GetMaxShortExposureClock));
  AddExposure(camera, facts, "max_long_exposure", "Longest exposure",
              ReadNumber(camera, "Vexa_GetMaxLongExposureClock", Vexa_GetMaxLongExposureClock));
  const auto blanking = ReadOptional(camera, "Vexa_GetVBlankForFPS", Vexa_GetVBlankForFPS);
  facts.push_back(
      blanking ? NumberFact("vertical_blanking_lines", "Vertical blanking", *blanking, " lines")
               : Fact{"vertical_blanking_lines", "Vertical blanking", nullptr, kAbsent});
  facts.push_back({"frame_rate_hz", "Frame rate", settings.frame_rate,
                   Format("%.3f frames/s", settings.frame_rate)});
  return {"timing", "Timing", facts};
}

Section TriggerSection(const Camera& camera, const FrameSettings& settings) {
  static constexpr struct {
    DWORD id;
    const char* key;
    const char* label;
  } kTimings[] = {
      {VEXA_TIMING_EXPOSURE_DELAY, "exposure_delay", "Exposure delay"},
      {VEXA_TIMING_STROBE_START_DELAY, "strobe_start_delay", "Strobe start delay"},
      {VEXA_TIMING_STROBE_END_DELAY, "strobe_end_delay", "Strobe end delay"},
      {VEXA_TIMING_TRIGGER_PULSE_DELAY, "trigger_pulse_delay", "Trigger pulse delay"},
      {VEXA_TIMING_TRIGGER_PULSE_DURATION, "trigger_pulse_duration", "Trigger pulse duration"},
      {VEXA_TIMING_READ_OUT_DELAY, "read_out_delay", "Read-out delay"},
  };
  const std::string mode = DescribeTriggerMode(settings.trigger_mode);
  std::vector<Fact> facts = {
      {"mode", "Mode", mode, Format("%s (0x%04X)", mode.c_str(), settings.trigger_mode)},
      {"mode_code", "", settings.trigger_mode, ""}};
  for (const auto& timing : kTimings) {
    DWORD value = 0;
    const bool present =
        camera.TryCall("Vexa_GetTriggerTiming", Vexa_GetTriggerTiming, timing.id, &value);
    facts.push_back(present ? NumberFact(timing.key, timing.label, value, " (camera's units)")
                            : Fact{timing.key, timing.label, nullptr, kAbsent});
  }
  return {"trigger", "Trigger", facts};
}

Section InputOutputSection(const Camera& camera) {
  std::vector<Fact> facts = {
      HexFact("direction", "Directions",
              ReadOptional(camera, "Vexa_GetIOPinDirection", Vexa_GetIOPinDirection)),
      HexFact("polarity", "Polarities",
              ReadOptional(camera, "Vexa_GetIOPinPolarity", Vexa_GetIOPinPolarity)),
      HexFact("levels", "Levels",
              ReadOptional(camera, "Vexa_GetIOPinStatus", Vexa_GetIOPinStatus))};
  constexpr DWORD kPins = 4;
  for (DWORD pin = 0; pin < kPins; ++pin) {
    DWORD mode = 0;
    const bool present = camera.TryCall("Vexa_GetIOPinMode", Vexa_GetIOPinMode, pin, &mode);
    const unsigned number = static_cast<unsigned>(pin);
    facts.push_back(HexFact(Format("pin_%u_mode", number).c_str(),
                            Format("Mode of pin %u", number).c_str(),
                            present ? std::optional<std::uint32_t>(mode) : std::nullopt));
  }
  facts.push_back(
      HexFact("led", "LED", ReadOptional(camera, "Vexa_GetLEDStatus", Vexa_GetLEDStatus)));
  facts.push_back(HexFact("software_status", "Software status",
                          ReadOptional(camera, "Vexa_GetSwStatus", Vexa_GetSwStatus)));
  return {"io", "Inputs and outputs", facts};
}

Section TimeOutSection(const Camera& camera) {
  static constexpr struct {
    DWORD index;
    const char* key;
    const char* label;
  } kTimeOuts[] = {
      {VEXA_TIMEOUT_ST2EE, "software_trigger_to_transfer_ms", "Software trigger to transfer"},
      {VEXA_TIMEOUT_TE2EE, "armed_to_transfer_ms", "Armed to transfer"},
      {VEXA_TIMEOUT_EE2TE, "exposure_end_to_image_ms", "Exposure end to image"},
      {VEXA_TIMEOUT_RO2TE, "read_out_to_image_ms", "Read-out trigger to image"},
  };
  std::vector<Fact> facts;
  for (const auto& time_out : kTimeOuts) {
    DWORD milliseconds = 0;
    camera.Call("Vexa_GetTimeOut", Vexa_GetTimeOut, time_out.index, &milliseconds);
    facts.push_back(milliseconds == INFINITE
                        ? Fact{time_out.key, time_out.label, nullptr, "without limit"}
                        : NumberFact(time_out.key, time_out.label, milliseconds, " ms"));
  }
  return {"time_outs", "Time-outs", facts};
}

}  // namespace

ExitCode RunInfo(const InfoOptions& options) {
  const Camera camera = OpenCamera(options.camera);
  const FrameSettings settings = ReadFrameSettings(camera);
  const std::vector<Section> sections = {
      IdentitySection(camera),           CapabilitySection(camera),
      GeometrySection(camera, settings), TransferSection(settings),
      TimingSection(camera, settings),   TriggerSection(camera, settings),
      InputOutputSection(camera),        TimeOutSection(camera)};
  Print(options.json ? ToJson(sections) : ToText(sections));
  return ExitCode::kSuccess;
}

}  // namespace vexa::tool

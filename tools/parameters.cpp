#include "parameters.hpp"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <iterator>
#include <optional>

#include "output_pattern.hpp"
#include "text.hpp"

namespace vexa::tool {
namespace {

using Kind = ParameterKind;
constexpr std::uint32_t k8 = 0xFF;
constexpr std::uint32_t k16 = 0xFFFF;
constexpr std::uint32_t k32 = 0xFFFFFFFF;

constexpr Parameter Action(DWORD id, const char* name, const char* what) {
  return {id, name, Kind::kAction, false, true, 0, "", what};
}
constexpr Parameter Setting(DWORD id, const char* name, Kind kind, std::uint32_t max,
                            const char* unit, const char* what) {
  return {id, name, kind, true, true, max, unit, what};
}
constexpr Parameter Fact(DWORD id, const char* name, Kind kind, const char* unit,
                         const char* what) {
  return {id, name, kind, true, false, kind == Kind::kDWord ? k32 : k16, unit, what};
}

constexpr Parameter kParameters[] = {
    Action(VEXA_PARAM_START_TRANSFER, "start-transfer", "start sending frames"),
    Action(VEXA_PARAM_STOP_TRANSFER, "stop-transfer", "stop sending frames"),
    Setting(VEXA_PARAM_GAIN, "gain", Kind::kWord, k16, "", "analog gain, the camera's value"),
    Setting(VEXA_PARAM_SCAN_MODE, "scan-mode", Kind::kWord, k16, "", "scan mode code"),
    Setting(VEXA_PARAM_OFFSET_X, "offset-x", Kind::kDWord, k32, "px", "left edge of the region"),
    Setting(VEXA_PARAM_OFFSET_Y, "offset-y", Kind::kDWord, k32, "px", "top edge of the region"),
    Setting(VEXA_PARAM_WIDTH, "width", Kind::kDWord, k32, "px", "width of the region"),
    Setting(VEXA_PARAM_HEIGHT, "height", Kind::kDWord, k32, "px", "height of the region"),
    Setting(VEXA_PARAM_CLOCK_MODE, "clock-mode", Kind::kDWord, k32, "", "pixel clock mode"),
    Setting(VEXA_PARAM_CLOCK_FREQUENCY, "clock-frequency", Kind::kDWord, k32, "Hz", "pixel clock"),
    Fact(VEXA_PARAM_LINES_PER_FRAME, "lines-per-frame", Kind::kWord, "lines", "with blanking"),
    Fact(VEXA_PARAM_CLOCKS_PER_LINE, "clocks-per-line", Kind::kWord, "clocks", "with blanking"),
    Setting(VEXA_PARAM_EXPOSURE_CLOCK, "exposure-clock", Kind::kDWord, k32, "clocks",
            "exposure; 0 is the longest short exposure"),
    Fact(VEXA_PARAM_COLOR_ARRAY, "color-array", Kind::kWord, "", "colour array code"),
    Setting(VEXA_PARAM_WHITE_BALANCE_GAIN_R, "white-balance-gain-r", Kind::kWord, k16, "/128",
            "red"),
    Setting(VEXA_PARAM_WHITE_BALANCE_GAIN_GR, "white-balance-gain-gr", Kind::kWord, k16, "/128",
            "green on red rows"),
    Setting(VEXA_PARAM_WHITE_BALANCE_GAIN_GB, "white-balance-gain-gb", Kind::kWord, k16, "/128",
            "green on blue rows"),
    Setting(VEXA_PARAM_WHITE_BALANCE_GAIN_B, "white-balance-gain-b", Kind::kWord, k16, "/128",
            "blue"),
    Setting(VEXA_PARAM_WHITE_BALANCE_MODE, "white-balance-mode", Kind::kByte, k8, "",
            "0 off, 1 manual, 2 every frame, 3 once"),
    Fact(VEXA_PARAM_CAMERA_VERSION, "camera-version", Kind::kWord, "", "version word"),
    Fact(VEXA_PARAM_PRODUCT_ID, "product-id", Kind::kWord, "", "model"),
    Fact(VEXA_PARAM_VARIANT, "variant", Kind::kWord, "", "variant word"),
    Fact(VEXA_PARAM_FIRMWARE_VERSION, "firmware-version", Kind::kWord, "", "firmware"),
    Setting(VEXA_PARAM_USER_ID_NUMBER, "user-id", Kind::kDWord, k32, "",
            "number kept in the camera for the user"),
    Setting(VEXA_PARAM_USER_ID_TEXT, "user-id-text", Kind::kText, 0, "",
            "text kept in the camera for the user"),
    Action(VEXA_PARAM_SOFT_TRIGGER, "soft-trigger", "software trigger"),
    Action(VEXA_PARAM_SOFT_SUB_TRIGGER, "soft-sub-trigger", "software sub-trigger"),
    Setting(VEXA_PARAM_TRIGGER_MODE, "trigger-mode", Kind::kDWord, k32, "", "trigger mode word"),
    Action(VEXA_PARAM_RESET_COUNTER, "reset-counter", "frame numbers begin anew"),
    Action(VEXA_PARAM_CLEAR_BUFFER, "clear-buffer", "discard the frames in the camera"),
    Action(VEXA_PARAM_TRIGGER_READ_OUT, "trigger-read-out", "read the exposed image out"),
    Setting(VEXA_PARAM_TRIGGER_TIMING + VEXA_TIMING_EXPOSURE_DELAY, "exposure-delay", Kind::kDWord,
            k32, "", "trigger timing, in the camera's units"),
    Setting(VEXA_PARAM_TRIGGER_TIMING + VEXA_TIMING_STROBE_START_DELAY, "strobe-start-delay",
            Kind::kDWord, k32, "", "trigger timing, in the camera's units"),
    Setting(VEXA_PARAM_TRIGGER_TIMING + VEXA_TIMING_STROBE_END_DELAY, "strobe-end-delay",
            Kind::kDWord, k32, "", "trigger timing, in the camera's units"),
    Setting(VEXA_PARAM_TRIGGER_TIMING + VEXA_TIMING_TRIGGER_PULSE_DELAY, "trigger-pulse-delay",
            Kind::kDWord, k32, "", "trigger timing, in the camera's units"),
    Setting(VEXA_PARAM_TRIGGER_TIMING + VEXA_TIMING_TRIGGER_PULSE_DURATION,
            "trigger-pulse-duration", Kind::kDWord, k32, "",
            "trigger timing, in the camera's units"),
    Setting(VEXA_PARAM_TRIGGER_TIMING + VEXA_TIMING_READ_OUT_DELAY, "read-out-delay", Kind::kDWord,
            k32, "", "trigger timing, in the camera's units"),
    Setting(VEXA_PARAM_TIMEOUT + VEXA_TIMEOUT_ST2EE, "timeout-software-trigger", Kind::kDWord, k32,
            "ms", "software trigger to data; the largest value is without limit"),
    Setting(VEXA_PARAM_TIMEOUT + VEXA_TIMEOUT_TE2EE, "timeout-armed", Kind::kDWord, k32, "ms",
            "armed to data; the largest value is without limit"),
    Setting(VEXA_PARAM_TIMEOUT + VEXA_TIMEOUT_EE2TE, "timeout-exposure-end", Kind::kDWord, k32,
            "ms", "end of exposure to image"),
    Setting(VEXA_PARAM_TIMEOUT + VEXA_TIMEOUT_RO2TE, "timeout-read-out", Kind::kDWord, k32, "ms",
            "read-out trigger to image"),
    Setting(VEXA_PARAM_DIGITAL_GAIN, "digital-gain", Kind::kWord, k16, "", "the camera's value"),
    Setting(VEXA_PARAM_IO_PIN_DIRECTION, "io-pin-direction", Kind::kDWord, k16, "",
            "the camera's word"),
    Setting(VEXA_PARAM_IO_PIN_POLARITY, "io-pin-polarity", Kind::kDWord, k16, "",
            "the camera's word"),
    Setting(VEXA_PARAM_IO_PIN_STATUS, "io-pin-status", Kind::kDWord, k16, "", "the camera's word"),
    Setting(VEXA_PARAM_IO_PIN_MODE, "io-pin-mode-0", Kind::kDWord, k16, "", "mode of pin 0"),
    Setting(VEXA_PARAM_IO_PIN_MODE + 1, "io-pin-mode-1", Kind::kDWord, k16, "", "mode of pin 1"),
    Setting(VEXA_PARAM_IO_PIN_MODE + 2, "io-pin-mode-2", Kind::kDWord, k16, "", "mode of pin 2"),
    Setting(VEXA_PARAM_IO_PIN_MODE + 3, "io-pin-mode-3", Kind::kDWord, k16, "", "mode of pin 3"),
    Fact(VEXA_PARAM_SOFTWARE_STATUS, "software-status", Kind::kDWord, "", "the camera's word"),
    {VEXA_PARAM_READ_SETTING_FILE, "read-setting-file", Kind::kFile, false, true, 0, "",
     "settings from a file"},
    {VEXA_PARAM_WRITE_SETTING_FILE, "write-setting-file", Kind::kFile, false, true, 0, "",
     "settings into a file"},
};

std::optional<std::uint32_t> ParseNumber(std::string_view text) {
  const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
  const std::string_view digits = hexadecimal ? text.substr(2) : text;
  std::uint32_t number = 0;
  const auto [end, error] =
      std::from_chars(digits.data(), digits.data() + digits.size(), number, hexadecimal ? 16 : 10);
  const bool whole =
      !digits.empty() && error == std::errc() && end == digits.data() + digits.size();
  return whole ? std::optional(number) : std::nullopt;
}

std::basic_string<WCHAR> Wide(std::string_view text) {
  const std::u16string units = PathFromUtf8(std::string(text)).u16string();
  return {units.begin(), units.end()};
}

ToolError NotAllowed(const Parameter& parameter, const char* what) {
  return {ExitCode::kUsage, Format("%s cannot be %s", parameter.name, what),
          "\"vexa parameters\" shows what can."};
}

/** UTF-16 units of the longest text that a camera keeps, with its terminator and room to spare. */
constexpr std::size_t kTextUnits = 128;

}  // namespace

std::span<const Parameter> Parameters() { return kParameters; }

const Parameter& FindParameter(const std::string& name_or_id) {
  const std::optional<std::uint32_t> id = ParseNumber(name_or_id);
  const auto* const found = std::find_if(
      std::begin(kParameters), std::end(kParameters),
      [&](const Parameter& entry) { return id ? entry.id == *id : entry.name == name_or_id; });
  if (found == std::end(kParameters)) {
    throw ToolError(ExitCode::kUsage, "\"" + name_or_id + "\" is no parameter",
                    "\"vexa parameters\" lists the names and numbers.");
  }
  return *found;
}

std::string AccessOf(const Parameter& parameter) {
  if (parameter.kind == Kind::kAction) {
    return "action";
  }
  return !parameter.readable ? "write" : parameter.writable ? "read, write" : "read";
}

std::string RangeOf(const Parameter& parameter) {
  switch (parameter.kind) {
    case Kind::kAction:
      return "";
    case Kind::kText:
      return "up to 124 characters";
    case Kind::kFile:
      return "path";
    default:
      return Format("0 to %u", parameter.max);
  }
}

std::string ReadParameter(const Camera& camera, const Parameter& parameter) {
  if (!parameter.readable) {
    throw NotAllowed(parameter, "read");
  }
  BYTE byte = 0;
  WORD word = 0;
  DWORD number = 0;
  switch (parameter.kind) {
    case Kind::kByte:
      camera.Call("Vexa_GetParamByte", Vexa_GetParamByte, parameter.id, &byte);
      number = byte;
      break;
    case Kind::kWord:
      camera.Call("Vexa_GetParamWord", Vexa_GetParamWord, parameter.id, &word);
      number = word;
      break;
    case Kind::kDWord:
      camera.Call("Vexa_GetParamDWord", Vexa_GetParamDWord, parameter.id, &number);
      break;
    default: {
      WCHAR text[kTextUnits] = {};
      camera.Call("Vexa_GetParamStringW", Vexa_GetParamStringW, parameter.id, &text[0],
                  static_cast<DWORD>(sizeof text));
      const std::basic_string<WCHAR> units(text);
      return Utf8FromUtf16(std::u16string(units.begin(), units.end()));
    }
  }
  const bool space = parameter.unit[0] != '\0' && parameter.unit[0] != '/';
  return Format("%u%s%s", static_cast<unsigned>(number), space ? " " : "", parameter.unit);
}

void WriteParameter(const Camera& camera, const Parameter& parameter, std::string_view value) {
  if (!parameter.writable) {
    throw NotAllowed(parameter, "set");
  }
  if (parameter.kind == Kind::kAction) {
    if (!value.empty()) {
      throw NotAllowed(parameter, "given a value");
    }
    camera.Call("Vexa_SetParamNone", Vexa_SetParamNone, parameter.id);
    return;
  }
  if (parameter.kind == Kind::kText || parameter.kind == Kind::kFile) {
    const std::basic_string<WCHAR> text = Wide(value);
    camera.Call("Vexa_SetParamStringW", Vexa_SetParamStringW, parameter.id, text.c_str(),
                static_cast<DWORD>((text.size() + 1) * sizeof(WCHAR)));
    return;
  }
  const std::optional<std::uint32_t> number = ParseNumber(value);
  if (!number || *number > parameter.max) {
    throw ToolError(ExitCode::kUsage,
                    Format("\"%s\" is no value of %s", std::string(value).c_str(), parameter.name),
                    "It is a whole number, " + RangeOf(parameter) + ", decimal or 0x...");
  }
  const DWORD id = parameter.id;
  const DWORD new_value = *number;
  if (parameter.kind == Kind::kByte) {
    camera.Call("Vexa_SetParamByte", Vexa_SetParamByte, id, new_value);
  } else if (parameter.kind == Kind::kWord) {
    camera.Call("Vexa_SetParamWord", Vexa_SetParamWord, id, new_value);
  } else {
    camera.Call("Vexa_SetParamDWord", Vexa_SetParamDWord, id, new_value);
  }
}

}  // namespace vexa::tool

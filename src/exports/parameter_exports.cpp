// Settings and actions by number: each identifier leads to the export that has its name.

#include <algorithm>
#include <array>
#include <iterator>

#include "VexaAPI.h"
#include "exports/call_frame.hpp"

using namespace vexa::exports;  // NOLINT(google-build-using-namespace): the frame of every function

namespace {

enum class Kind { kAction, kByte, kWord, kDWord };

using Setter = BOOL (*)(HANDLE camera, DWORD id, DWORD value);
using Getter = BOOL (*)(HANDLE camera, DWORD id, DWORD* value);

/// Identifiers in a row that are served alike.
struct Parameter {
  DWORD first;
  DWORD last;
  Kind kind;
  Setter set;  // null: cannot be set
  Getter get;  // null: cannot be read
};

template <BOOL(VEXA_CALL* kFunction)(HANDLE)>
BOOL Act(HANDLE camera, DWORD /*id*/, DWORD /*value*/) {
  return kFunction(camera);
}

template <typename Value, BOOL(VEXA_CALL* kFunction)(HANDLE, Value)>
BOOL Set(HANDLE camera, DWORD /*id*/, DWORD value) {
  return kFunction(camera, static_cast<Value>(value));
}

template <typename Value, BOOL(VEXA_CALL* kFunction)(HANDLE, Value*)>
BOOL Get(HANDLE camera, DWORD /*id*/, DWORD* value) {
  Value present = 0;
  const BOOL result = kFunction(camera, &present);
  *value = present;
  return result;
}

template <BOOL(VEXA_CALL* kFunction)(HANDLE, DWORD, DWORD), DWORD kFirst>
BOOL SetIndexed(HANDLE camera, DWORD id, DWORD value) {
  return kFunction(camera, id - kFirst, value);
}

template <BOOL(VEXA_CALL* kFunction)(HANDLE, DWORD, DWORD*), DWORD kFirst>
BOOL GetIndexed(HANDLE camera, DWORD id, DWORD* value) {
  return kFunction(camera, id - kFirst, value);
}

// Settings of several values. Reading fills all of them, so that one can be taken or replaced.

struct ScanMode {
  static constexpr DWORD kFirst = VEXA_PARAM_SCAN_MODE;
  WORD mode = 0;
  std::array<DWORD, 4> area{};  // offset x and y, width, height

  BOOL Read(HANDLE camera) {
    return Vexa_GetScanMode(camera, &mode, &area[0], &area[1], &area[2], &area[3]);
  }
  BOOL Write(HANDLE camera) const {
    return Vexa_SetScanMode(camera, mode, area[0], area[1], area[2], area[3]);
  }
  DWORD Field(DWORD index) const { return index == 0 ? mode : area[index - 1]; }
  void Replace(DWORD index, DWORD value) {
    if (index == 0) {
      mode = static_cast<WORD>(value);
    } else {
      area[index - 1] = value;
    }
  }
};

struct Clock {
  static constexpr DWORD kFirst = VEXA_PARAM_CLOCK_MODE;
  std::array<DWORD, 2> values{};  // mode, frequency

  BOOL Read(HANDLE camera) { return Vexa_GetClock(camera, &values[0], &values[1]); }
  BOOL Write(HANDLE camera) const { return Vexa_SetClock(camera, values[0], values[1]); }
  DWORD Field(DWORD index) const { return values[index]; }
  void Replace(DWORD index, DWORD value) { values[index] = value; }
};

/// Values of 16 bits.
template <std::size_t kCount>
struct Words {
  std::array<WORD, kCount> values{};

  DWORD Field(DWORD index) const { return values[index]; }
  void Replace(DWORD index, DWORD value) { values[index] = static_cast<WORD>(value); }
};

struct WhiteBalanceGain : Words<4> {
  static constexpr DWORD kFirst = VEXA_PARAM_WHITE_BALANCE_GAIN_R;

  BOOL Read(HANDLE camera) {
    return Vexa_GetWhiteBalanceGain(camera, &values[0], &values[1], &values[2], &values[3]);
  }
  BOOL Write(HANDLE camera) const {
    return Vexa_SetWhiteBalanceGain(camera, values[0], values[1], values[2], values[3]);
  }
};

struct FrameClock : Words<2> {
  static constexpr DWORD kFirst = VEXA_PARAM_LINES_PER_FRAME;
  BOOL Read(HANDLE camera) { return Vexa_GetFrameClock(camera, &values[0], &values[1]); }
};

struct CameraVersion : Words<4> {
  static constexpr DWORD kFirst = VEXA_PARAM_CAMERA_VERSION;
  BOOL Read(HANDLE camera) {
    return Vexa_GetCameraVersion(camera, &values[0], &values[1], &values[2], &values[3]);
  }
};

template <typename Setting>
BOOL SetField(HANDLE camera, DWORD id, DWORD value) {
  Setting setting;
  if (setting.Read(camera) == FALSE) {
    return FALSE;
  }
  setting.Replace(id - Setting::kFirst, value);
  return setting.Write(camera);
}

template <typename Setting>
BOOL GetField(HANDLE camera, DWORD id, DWORD* value) {
  Setting setting;
  const BOOL result = setting.Read(camera);
  *value = setting.Field(id - Setting::kFirst);
  return result;
}

/// The user ID's text is read into this many bytes where only its number is asked for.
constexpr DWORD kUserIdBytes = 255;

BOOL SetUserIdNumber(HANDLE camera, DWORD /*id*/, DWORD value) {
  WCHAR text[(kUserIdBytes + 1) / sizeof(WCHAR)] = {};
  DWORD present = 0;
  return Vexa_ReadCameraUserIDW(camera, &present, text, kUserIdBytes) != FALSE &&
         Vexa_WriteCameraUserIDW(camera, value, text, kUserIdBytes) != FALSE;
}

BOOL GetUserIdNumber(HANDLE camera, DWORD /*id*/, DWORD* value) {
  WCHAR text[(kUserIdBytes + 1) / sizeof(WCHAR)] = {};
  return Vexa_ReadCameraUserIDW(camera, value, text, kUserIdBytes);
}

template <BOOL(VEXA_CALL* kFunction)(HANDLE)>
constexpr Parameter Action(DWORD id) {
  return {id, id, Kind::kAction, Act<kFunction>, nullptr};
}

constexpr Parameter DWordSetting(DWORD id, Setter set, Getter get) {
  return {id, id, Kind::kDWord, set, get};
}

constexpr Parameter kParameters[] = {
    Action<Vexa_StartTransfer>(VEXA_PARAM_START_TRANSFER),
    Action<Vexa_StopTransfer>(VEXA_PARAM_STOP_TRANSFER),
    Action<Vexa_SoftTrigger>(VEXA_PARAM_SOFT_TRIGGER),
    Action<Vexa_SoftSubTrigger>(VEXA_PARAM_SOFT_SUB_TRIGGER),
    Action<Vexa_ResetCounter>(VEXA_PARAM_RESET_COUNTER),
    Action<Vexa_ClearBuffer>(VEXA_PARAM_CLEAR_BUFFER),
    Action<Vexa_TriggerReadOut>(VEXA_PARAM_TRIGGER_READ_OUT),
    {VEXA_PARAM_WHITE_BALANCE_MODE, VEXA_PARAM_WHITE_BALANCE_MODE, Kind::kByte,
     Set<DWORD, Vexa_SetWhiteBalanceMode>, Get<BYTE, Vexa_GetWhiteBalanceMode>},
    {VEXA_PARAM_GAIN, VEXA_PARAM_GAIN, Kind::kWord, Set<WORD, Vexa_SetGain>,
     Get<WORD, Vexa_GetGain>},
    {VEXA_PARAM_DIGITAL_GAIN, VEXA_PARAM_DIGITAL_GAIN, Kind::kWord, Set<WORD, Vexa_SetDigitalGain>,
     Get<WORD, Vexa_GetDigitalGain>},
    {VEXA_PARAM_SCAN_MODE, VEXA_PARAM_SCAN_MODE, Kind::kWord, SetField<ScanMode>,
     GetField<ScanMode>},
    {VEXA_PARAM_LINES_PER_FRAME, VEXA_PARAM_CLOCKS_PER_LINE, Kind::kWord, nullptr,
     GetField<FrameClock>},
    {VEXA_PARAM_COLOR_ARRAY, VEXA_PARAM_COLOR_ARRAY, Kind::kWord, nullptr,
     Get<WORD, Vexa_GetColorArray>},
    {VEXA_PARAM_WHITE_BALANCE_GAIN_R, VEXA_PARAM_WHITE_BALANCE_GAIN_B, Kind::kWord,
     SetField<WhiteBalanceGain>, GetField<WhiteBalanceGain>},
    {VEXA_PARAM_CAMERA_VERSION, VEXA_PARAM_FIRMWARE_VERSION, Kind::kWord, nullptr,
     GetField<CameraVersion>},
    {VEXA_PARAM_OFFSET_X, VEXA_PARAM_HEIGHT, Kind::kDWord, SetField<ScanMode>, GetField<ScanMode>},
    {VEXA_PARAM_CLOCK_MODE, VEXA_PARAM_CLOCK_FREQUENCY, Kind::kDWord, SetField<Clock>,
     GetField<Clock>},
    {VEXA_PARAM_TRIGGER_TIMING, VEXA_PARAM_TRIGGER_TIMING + VEXA_TIMING_READ_OUT_DELAY,
     Kind::kDWord, SetIndexed<Vexa_SetTriggerTiming, VEXA_PARAM_TRIGGER_TIMING>,
     GetIndexed<Vexa_GetTriggerTiming, VEXA_PARAM_TRIGGER_TIMING>},
    {VEXA_PARAM_TIMEOUT, VEXA_PARAM_TIMEOUT + VEXA_TIMEOUT_RO2TE, Kind::kDWord,
     SetIndexed<Vexa_SetTimeOut, VEXA_PARAM_TIMEOUT>,
     GetIndexed<Vexa_GetTimeOut, VEXA_PARAM_TIMEOUT>},
    {VEXA_PARAM_IO_PIN_MODE, VEXA_PARAM_IO_PIN_MODE + 3, Kind::kDWord,
     SetIndexed<Vexa_SetIOPinMode, VEXA_PARAM_IO_PIN_MODE>,
     GetIndexed<Vexa_GetIOPinMode, VEXA_PARAM_IO_PIN_MODE>},
    DWordSetting(VEXA_PARAM_EXPOSURE_CLOCK, Set<DWORD, Vexa_SetExposureClock>,
                 Get<DWORD, Vexa_GetExposureClock>),
    DWordSetting(VEXA_PARAM_USER_ID_NUMBER, SetUserIdNumber, GetUserIdNumber),
    DWordSetting(VEXA_PARAM_TRIGGER_MODE, Set<DWORD, Vexa_SetTriggerMode>,
                 Get<DWORD, Vexa_GetTriggerMode>),
    DWordSetting(VEXA_PARAM_IO_PIN_DIRECTION, Set<DWORD, Vexa_SetIOPinDirection>,
                 Get<DWORD, Vexa_GetIOPinDirection>),
    DWordSetting(VEXA_PARAM_IO_PIN_POLARITY, Set<DWORD, Vexa_SetIOPinPolarity>,
                 Get<DWORD, Vexa_GetIOPinPolarity>),
    DWordSetting(VEXA_PARAM_IO_PIN_STATUS, Set<DWORD, Vexa_SetIOPinStatus>,
                 Get<DWORD, Vexa_GetIOPinStatus>),
    DWordSetting(VEXA_PARAM_SOFTWARE_STATUS, nullptr, Get<DWORD, Vexa_GetSwStatus>),
};

const Parameter* Find(Kind kind, DWORD id) {
  const auto* const found =
      std::find_if(std::begin(kParameters), std::end(kParameters), [&](const Parameter& entry) {
        return entry.kind == kind && entry.first <= id && id <= entry.last;
      });
  return found == std::end(kParameters) ? nullptr : found;
}

BOOL SetValue(Kind kind, HANDLE camera, DWORD id, DWORD value) noexcept {
  const Parameter* const parameter = Find(kind, id);
  if (parameter == nullptr || parameter->set == nullptr) {
    return Report(vexa::error::kInvalidParameter);
  }
  return parameter->set(camera, id, value);
}

template <typename Value>
BOOL GetValue(Kind kind, HANDLE camera, DWORD id, Value* value) noexcept {
  Clear(value);
  const Parameter* const parameter = Find(kind, id);
  if (parameter == nullptr || parameter->get == nullptr || value == nullptr) {
    return Report(vexa::error::kInvalidParameter);
  }
  DWORD present = 0;
  const BOOL result = parameter->get(camera, id, &present);
  *value = static_cast<Value>(present);
  return result;
}

/// The exports that take text, by the width of its characters.
template <typename Character>
struct TextExports;

template <>
struct TextExports<CHAR> {
  static constexpr auto* kReadUserId = Vexa_ReadCameraUserIDA;
  static constexpr auto* kWriteUserId = Vexa_WriteCameraUserIDA;
  static constexpr auto* kReadSettingFile = Vexa_ReadSettingFileA;
  static constexpr auto* kWriteSettingFile = Vexa_WriteSettingFileA;
};

template <>
struct TextExports<WCHAR> {
  static constexpr auto* kReadUserId = Vexa_ReadCameraUserIDW;
  static constexpr auto* kWriteUserId = Vexa_WriteCameraUserIDW;
  static constexpr auto* kReadSettingFile = Vexa_ReadSettingFileW;
  static constexpr auto* kWriteSettingFile = Vexa_WriteSettingFileW;
};

template <typename Character>
BOOL SetText(HANDLE camera, DWORD id, const Character* text, DWORD size) noexcept {
  using Exports = TextExports<Character>;
  switch (id) {
    case VEXA_PARAM_USER_ID_TEXT: {
      Character present[(kUserIdBytes + 1) / sizeof(Character)] = {};
      DWORD number = 0;
      return Exports::kReadUserId(camera, &number, present, kUserIdBytes) != FALSE &&
             Exports::kWriteUserId(camera, number, text, size) != FALSE;
    }
    case VEXA_PARAM_READ_SETTING_FILE:
      return Exports::kReadSettingFile(camera, text);
    case VEXA_PARAM_WRITE_SETTING_FILE:
      return Exports::kWriteSettingFile(camera, text);
    default:
      return Report(vexa::error::kInvalidParameter);
  }
}

template <typename Character>
BOOL GetText(HANDLE camera, DWORD id, Character* text, DWORD size) noexcept {
  if (id != VEXA_PARAM_USER_ID_TEXT) {
    return Report(vexa::error::kInvalidParameter);
  }
  DWORD number = 0;
  return TextExports<Character>::kReadUserId(camera, &number, text, size);
}

}  // namespace

BOOL VEXA_CALL Vexa_SetParamNone(HANDLE camera, DWORD id) {
  return SetValue(Kind::kAction, camera, id, 0);
}

BOOL VEXA_CALL Vexa_SetParamByte(HANDLE camera, DWORD id, DWORD value) {
  return SetValue(Kind::kByte, camera, id, value);
}

BOOL VEXA_CALL Vexa_GetParamByte(HANDLE camera, DWORD id, BYTE* value) {
  return GetValue(Kind::kByte, camera, id, value);
}

BOOL VEXA_CALL Vexa_SetParamWord(HANDLE camera, DWORD id, DWORD value) {
  return SetValue(Kind::kWord, camera, id, value);
}

BOOL VEXA_CALL Vexa_GetParamWord(HANDLE camera, DWORD id, WORD* value) {
  return GetValue(Kind::kWord, camera, id, value);
}

BOOL VEXA_CALL Vexa_SetParamDWord(HANDLE camera, DWORD id, DWORD value) {
  return SetValue(Kind::kDWord, camera, id, value);
}

BOOL VEXA_CALL Vexa_GetParamDWord(HANDLE camera, DWORD id, DWORD* value) {
  return GetValue(Kind::kDWord, camera, id, value);
}

BOOL VEXA_CALL Vexa_SetParamStringW(HANDLE camera, DWORD id, const WCHAR* text, DWORD size) {
  return SetText(camera, id, text, size);
}

BOOL VEXA_CALL Vexa_GetParamStringW(HANDLE camera, DWORD id, WCHAR* text, DWORD size) {
  return GetText(camera, id, text, size);
}

BOOL VEXA_CALL Vexa_SetParamStringA(HANDLE camera, DWORD id, const CHAR* text, DWORD size) {
  return SetText(camera, id, text, size);
}

BOOL VEXA_CALL Vexa_GetParamStringA(HANDLE camera, DWORD id, CHAR* text, DWORD size) {
  return GetText(camera, id, text, size);
}

BOOL VEXA_CALL Vexa_SetParamPtr(HANDLE camera, DWORD id, void* pointer) {
  return id == VEXA_PARAM_WHITE_BALANCE ? Vexa_WhiteBalance(camera, static_cast<BYTE*>(pointer))
                                        : Report(vexa::error::kInvalidParameter);
}

BOOL VEXA_CALL Vexa_GetParamPtr(HANDLE /*camera*/, DWORD /*id*/, void** pointer) {
  Clear(pointer);
  return Report(vexa::error::kInvalidParameter);
}

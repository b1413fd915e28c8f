// Setting files.

#include <algorithm>
#include <string>

#include "VexaAPI.h"
#include "camera/vexa_camera.hpp"
#include "exports/call_frame.hpp"
#include "exports/wide_text.hpp"
#include "persist/setting_file.hpp"
#include "platform/last_error.hpp"
#include "platform/text.hpp"

using vexa::Status;
using vexa::camera::CVexaCamera;
using vexa::persist::CSettingFile;
using namespace vexa::exports;  // NOLINT(google-build-using-namespace): the frame of every function

namespace {

constexpr std::size_t kLongestPath = 259;  // characters, MAX_PATH without its end
constexpr Status kTransferRunning{0xE0000100};

Status CheckPath(const WCHAR* path) {
  if (path == nullptr || path[0] == 0) {
    return vexa::error::kInvalidParameter;
  }
  const WCHAR* limit = path + kLongestPath + 1;
  return std::find(path, limit, WCHAR{0}) != limit ? Status() : vexa::error::kFileNameTooLong;
}

/// Runs steps that reach the camera through other exports, which leave the reason of a failure in
/// the last error, or leave that alone where they are documented so.
template <typename Steps>
Status RunSteps(Steps&& steps) {
  vexa::platform::SetLastErrorCode({});
  if (steps()) {
    return {};
  }
  const Status reason = vexa::platform::LastErrorCode();
  return reason.ok() ? vexa::error::kLastErrorKept : reason;
}

/// Runs work on the camera's settings, captured.
template <typename Work>
BOOL CallSettings(HANDLE camera, const WCHAR* path, Work&& work) {
  return CallCamera(camera, [&](CVexaCamera& self) {
    if (self.transfer().IsStarted()) {
      vexa::platform::SetLastErrorWarning(kTransferRunning);
      return kTransferRunning;
    }
    const Status usable = CheckPath(path);
    if (!usable.ok()) {
      return usable;
    }
    CSettingFile settings(camera, CopyWide(path));
    const Status captured = RunSteps([&] { return settings.Capture(); });
    return captured.ok() ? work(settings) : captured;
  });
}

/// Calls the wide form of an export with a narrow path.
template <typename Export>
BOOL CallWide(Export&& wide_export, HANDLE camera, const CHAR* path) {
  std::basic_string<WCHAR> units;
  const BOOL converted = Call([&] {
    if (path == nullptr) {
      return vexa::error::kInvalidParameter;
    }
    std::u16string wide;
    const Status status = vexa::platform::ToWide(path, &wide);
    units.assign(wide.begin(), wide.end());
    return status;
  });
  return converted ? wide_export(camera, units.c_str()) : FALSE;
}

}  // namespace

BOOL VEXA_CALL Vexa_WriteSettingFileW(HANDLE camera, const WCHAR* file_name) {
  return CallSettings(camera, file_name, [](CSettingFile& settings) { return settings.Write(); });
}

BOOL VEXA_CALL Vexa_ReadSettingFileW(HANDLE camera, const WCHAR* file_name) {
  return CallSettings(camera, file_name, [](CSettingFile& settings) {
    settings.Read();
    return RunSteps([&] { return settings.Apply(); });
  });
}

BOOL VEXA_CALL Vexa_WriteSettingFileA(HANDLE camera, const CHAR* file_name) {
  return CallWide(Vexa_WriteSettingFileW, camera, file_name);
}

BOOL VEXA_CALL Vexa_ReadSettingFileA(HANDLE camera, const CHAR* file_name) {
  return CallWide(Vexa_ReadSettingFileW, camera, file_name);
}

#include "camera_settings.hpp"

#include <algorithm>
#include <cmath>

#include "names.hpp"
#include "text.hpp"

namespace vexa::tool {
namespace {

std::string RegionText(const Region& region) {
  return Format("%u,%u,%u,%u", region.x, region.y, region.width, region.height);
}

Region ReadRegion(const Camera& camera, std::uint16_t& scan_mode) {
  WORD mode = 0;
  DWORD x = 0;
  DWORD y = 0;
  DWORD width = 0;
  DWORD height = 0;
  camera.Call("Vexa_GetScanMode", Vexa_GetScanMode, &mode, &x, &y, &width, &height);
  scan_mode = mode;
  return {x, y, width, height};
}

void ApplyScanMode(const Camera& camera, const SettingOptions& settings,
                   std::vector<std::string>& notes) {
  std::uint16_t mode = 0;
  const Region present = ReadRegion(camera, mode);
  const Region region = settings.region.value_or(present);
  mode = settings.scan_mode.value_or(mode);
  if (Vexa_SetScanMode(camera.handle(), mode, region.x, region.y, region.width, region.height) ==
      0) {
    const DWORD code = GetLastError();
    WORD modes = 0;
    DWORD width = 0;
    DWORD height = 0;
    camera.Call("Vexa_GetEnableScanMode", Vexa_GetEnableScanMode, &modes);
    camera.Call("Vexa_GetMaximumImageSize", Vexa_GetMaximumImageSize, &width, &height);
    throw ApiError(
        Format("Vexa_SetScanMode(0x%04X, %s)", mode, RegionText(region).c_str()), code,
        Format("The camera has %u x %u pixels and the scan modes %s; it may also ask for sizes and "
               "offsets in steps. Set the region with --roi and the mode with --scan-mode.",
               static_cast<unsigned>(width), static_cast<unsigned>(height),
               DescribeMask(modes).c_str()));
  }
  std::uint16_t mode_in_force = 0;
  const Region in_force = ReadRegion(camera, mode_in_force);
  if (RegionText(in_force) != RegionText(region) || mode_in_force != mode) {
    notes.push_back(Format("the camera uses scan mode 0x%04X and the region %s", mode_in_force,
                           RegionText(in_force).c_str()));
  }
}

void ApplyFormat(const Camera& camera, std::uint32_t format) {
  if (Vexa_SetTransferBitsPerPixel(camera.handle(), format) != 0) {
    return;
  }
  const DWORD code = GetLastError();
  DWORD mask = 0;
  camera.Call("Vexa_GetEnableTransferBitsPerPixel", Vexa_GetEnableTransferBitsPerPixel, &mask);
  throw ApiError(Format("Vexa_SetTransferBitsPerPixel(0x%04X)", format), code,
                 "The camera has the transfer formats " + TransferFormatNames(mask) + ".");
}

void ApplyExposure(const Camera& camera, double milliseconds, std::vector<std::string>& notes) {
  DWORD clocks = 0;
  camera.Call("Vexa_GetExposureClockFromTime", Vexa_GetExposureClockFromTime,
              static_cast<float>(milliseconds * 1e-3), &clocks);
  camera.Call("Vexa_SetExposureClock", Vexa_SetExposureClock, clocks);
  camera.Call("Vexa_GetExposureClock", Vexa_GetExposureClock, &clocks);
  float seconds = 0;
  camera.Call("Vexa_GetExposureTimeFromClock", Vexa_GetExposureTimeFromClock, clocks, &seconds);
  const double in_force = static_cast<double>(seconds) * 1e3;
  constexpr double kWorthANote = 0.02;
  if (std::abs(in_force - milliseconds) > kWorthANote * milliseconds) {
    notes.push_back(
        Format("the exposure is %.6g ms, the nearest that the camera can do", in_force));
  }
}

}  // namespace

std::vector<std::string> ApplySettings(const Camera& camera, const SettingOptions& settings) {
  std::vector<std::string> notes;
  if (settings.region || settings.scan_mode) {
    ApplyScanMode(camera, settings, notes);
  }
  if (settings.format) {
    ApplyFormat(camera, *settings.format);
  }
  if (settings.exposure_ms) {  // last: its limits follow from the scan mode
    ApplyExposure(camera, *settings.exposure_ms, notes);
  }
  return notes;
}

FrameSettings ReadFrameSettings(const Camera& camera) {
  FrameSettings settings;
  settings.region = ReadRegion(camera, settings.scan_mode);
  DWORD format = 0;
  DWORD trigger_mode = 0;
  WORD color_array = 0;
  float frame_rate = 0;
  camera.Call("Vexa_GetTransferBitsPerPixel", Vexa_GetTransferBitsPerPixel, &format);
  camera.Call("Vexa_GetColorArray", Vexa_GetColorArray, &color_array);
  camera.Call("Vexa_GetOutputFPS", Vexa_GetOutputFPS, &frame_rate);
  camera.Call("Vexa_GetTriggerMode", Vexa_GetTriggerMode, &trigger_mode);
  settings.format = format;
  settings.color_array = color_array;
  settings.frame_rate = std::isfinite(frame_rate) ? static_cast<double>(frame_rate) : 0;
  settings.trigger_mode = trigger_mode;
  return settings;
}

double FrameTimeout(const StreamOptions& options, const FrameSettings& settings) {
  constexpr double kLeast = 5;
  constexpr double kFramePeriods = 3;
  if (options.timeout_s) {
    return *options.timeout_s;
  }
  return settings.frame_rate > 0 ? std::max(kLeast, kFramePeriods / settings.frame_rate) : kLeast;
}

}  // namespace vexa::tool

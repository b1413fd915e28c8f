#include "camera.hpp"
#include "commands.hpp"
#include "identity.hpp"
#include "names.hpp"
#include "report.hpp"
#include "system.hpp"
#include "text.hpp"

namespace vexa::tool {
namespace {

constexpr DWORD kNoMoreItems = 259;
constexpr std::size_t kMostCameras = 256;

Json JsonOf(std::size_t index, const Identity& identity) {
  return {{"index", index},
          {"model", identity.model},
          {"product_id", identity.product_id},
          {"variant", identity.variant},
          {"firmware", identity.firmware},
          {"color_array", ColorArrayName(identity.color_array)},
          {"max_width", identity.max_width},
          {"max_height", identity.max_height},
          {"usb_speed", UsbSpeedName(identity.usb_speed)}};
}

std::vector<std::string> RowOf(std::size_t index, const Identity& identity) {
  return {Format("%zu", index),
          identity.model,
          Format("0x%04X", identity.product_id),
          Format("0x%04X", identity.variant),
          Format("0x%04X", identity.firmware),
          ColorArrayName(identity.color_array),
          Format("%u x %u", identity.max_width, identity.max_height),
          UsbSpeedName(identity.usb_speed)};
}

}  // namespace

ExitCode RunList(const ListOptions& options) {
  const OpenedCameras opened = OpenCameras(kMostCameras);
  if (opened.cameras.empty()) {
    throw NoCameraError(opened.code);
  }
  Json json = Json::array();
  std::vector<std::vector<std::string>> rows = {
      {"index", "model", "product", "variant", "firmware", "sensor", "maximum size", "USB"}};
  for (std::size_t index = 0; index < opened.cameras.size(); ++index) {
    const Identity identity = ReadIdentity(opened.cameras[index]);
    json.push_back(JsonOf(index, identity));
    rows.push_back(RowOf(index, identity));
  }
  Print(options.json ? Dump(json) : FormatTable(rows));
  if (opened.code != 0 && opened.code != kNoMoreItems) {
    throw ApiError("the list may be incomplete: Vexa_Open", opened.code);
  }
  return ExitCode::kSuccess;
}

}  // namespace vexa::tool

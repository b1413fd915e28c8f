// The camera family: what tells its models apart.
#include <algorithm>
#include <initializer_list>

#include "simulator/camera_config.hpp"

namespace vexa::simulator {
namespace {

constexpr std::uint64_t Bits(std::initializer_list<unsigned> bits) {
  std::uint64_t mask = 0;
  for (const unsigned bit : bits) mask |= std::uint64_t{1} << bit;
  return mask;
}

// Capabilities come with the generation of the electronics. Bit numbers: 1 sub-trigger, 5 LED,
// 16/49 gain curve, 20 measures its frame rate, 21 vertical blanking, 22/23 mirror, 24 white
// balance, 25/26 automatic gain/exposure, 48 own exposure limits, 55 clamp, 57 gamma, 59 defect
// correction, 61 binning sum.
constexpr std::uint64_t kClassic = Bits({1, 5, 21, 22, 23, 55, 57, 59, 61});
constexpr std::uint64_t kClassicBasic = Bits({0, 5, 21, 22, 59});
constexpr std::uint64_t kCompact = Bits({2, 5, 6, 16, 21, 22, 23});
constexpr std::uint64_t kFast = Bits({1, 5, 20, 21, 22, 23, 24, 48, 49, 55, 57, 59, 61});
constexpr std::uint64_t kLarge = Bits({5, 20, 22, 23, 24, 25, 26, 48, 49, 55, 57, 59, 61});
constexpr std::uint64_t kLegacy = 0;

constexpr std::uint32_t kRaw8To12 = 0x0007;
constexpr std::uint32_t kRaw8To14 = 0x000F;
constexpr std::uint32_t kRaw8To16 = 0x001F;
constexpr std::uint32_t kInCameraColour = 0x7C00;  // BGR24, packed BGR, the three YUV layouts

struct Model {
  std::uint16_t product_id;
  std::uint16_t colour_array;
  SensorSize size;
  std::uint32_t transfer_formats;
  std::uint64_t capabilities;
  UsbSpeed speed;
  std::uint16_t scan_modes;
};

constexpr UsbSpeed kHigh = UsbSpeed::kHigh;
constexpr UsbSpeed kSuper = UsbSpeed::kSuper;

constexpr Model kModels[] = {
    {0x0109, 1, {1280, 964}, kRaw8To12, kFast, kSuper, 0x8007},
    {0x0110, 1, {640, 492}, kRaw8To12, kClassicBasic, kHigh, 0x8007},
    {0x0111, 1, {4092, 4092}, kRaw8To14, kLarge, kSuper, 0x8001},
    {0x0209, 2, {1280, 964}, kRaw8To12 | kInCameraColour, kFast, kSuper, 0x8007},
    {0x0210, 2, {640, 492}, kRaw8To12, kClassicBasic, kHigh, 0x8007},
    {0x0211, 3, {4092, 4092}, kRaw8To14 | kInCameraColour, kLarge, kSuper, 0x8001},
    {0x0305, 1, {640, 480}, 0x0001, kLegacy, kHigh, 0x0009},
    {0x0310, 1, {1024, 776}, kRaw8To12, kClassic, kHigh, 0x8007},
    {0x0410, 3, {1024, 776}, kRaw8To12, kClassic, kHigh, 0x8007},
    {0x0509, 1, {4092, 4092}, kRaw8To14, kFast, kSuper, 0x8025},
    {0x0510, 2, {1280, 964}, kRaw8To12, kClassic, kHigh, 0x8007},
    {0x0605, 1, {1024, 768}, 0x0001, kLegacy, kHigh, 0x0009},
    {0x0609, 2, {4092, 4092}, kRaw8To14 | kInCameraColour, kFast, kSuper, 0x8025},
    {0x0610, 1, {1280, 964}, kRaw8To12, kClassic, kHigh, 0x8007},
    {0x0705, 2, {640, 480}, 0x0001, kLegacy, kHigh, 0x0009},
    {0x0710, 1, {1360, 1040}, kRaw8To16, kClassic, kHigh, 0x8007},
    {0x0805, 2, {1024, 768}, 0x0001, kLegacy, kHigh, 0x0009},
    {0x0810, 4, {1360, 1040}, kRaw8To12, kClassic, kHigh, 0x8007},
    {0x0906, 1, {640, 492}, 0x0003, kCompact, kHigh, 0x00C3},
    {0x0910, 1, {1600, 1236}, kRaw8To12, kClassic, kHigh, 0x8007},
    {0x1006, 5, {640, 492}, 0x0003, kCompact, kHigh, 0x00C3},
    {0x1010, 5, {1600, 1236}, kRaw8To12, kClassic, kHigh, 0x8007},
    {0x1106, 1, {1024, 776}, 0x0003, kCompact, kHigh, 0x00C3},
    {0x1206, 2, {1024, 776}, 0x0003, kCompact, kHigh, 0x00C3},
    {0x1306, 1, {1360, 1040}, 0x0003, kCompact, kHigh, 0x00C3},
    {0x1406, 3, {1360, 1040}, 0x0003, kCompact, kHigh, 0x00C3},
    {0x1506, 1, {1600, 1236}, 0x0003, kCompact, kHigh, 0x00C3},
    {0x1606, 4, {1600, 1236}, 0x0003, kCompact, kHigh, 0x00C3},
};

const Model* FindModel(std::uint16_t product_id) {
  const auto* found = std::find_if(std::begin(kModels), std::end(kModels), [&](const Model& model) {
    return model.product_id == product_id;
  });
  return found == std::end(kModels) ? nullptr : found;
}

}  // namespace

bool HasRegisterAccess(std::uint16_t product_id) {
  return product_id != 0x0305 && product_id != 0x0605 && product_id != 0x0705 &&
         product_id != 0x0805;
}

SensorSize ProductSensorSize(std::uint16_t product_id) {
  const Model* model = FindModel(product_id);
  return model == nullptr ? SensorSize{4092, 4092} : model->size;
}

const std::vector<std::uint16_t>& KnownProducts() {
  static const std::vector<std::uint16_t> products = [] {
    std::vector<std::uint16_t> ids;
    for (const Model& model : kModels) ids.push_back(model.product_id);
    return ids;
  }();
  return products;
}

CameraConfig ForProduct(std::uint16_t product_id) {
  CameraConfig config;
  config.product_id = product_id;
  config.colour_array = 1;
  const SensorSize size = ProductSensorSize(product_id);
  config.max_width = size.width;
  config.max_height = size.height;
  if (const Model* model = FindModel(product_id)) {
    config.colour_array = model->colour_array;
    config.capabilities = model->capabilities;
    config.transfer_formats = model->transfer_formats;
    config.scan_modes = model->scan_modes;
    config.usb_speed = model->speed;
  }
  if (!HasRegisterAccess(product_id)) {
    config.firmware = 0x0085;
    config.clock_modes = 0x0001;
  }
  return config;
}

std::vector<CameraConfig> StandardCameras() {
  std::vector<CameraConfig> cameras;
  for (const std::uint16_t product_id :
       std::initializer_list<std::uint16_t>{0x0510, 0x0710, 0x0410, 0x0209}) {
    cameras.push_back(ForProduct(product_id));
  }
  for (std::size_t i = 2; i < cameras.size(); ++i) cameras[i].illuminant = {1.0, 0.72, 0.42};
  return cameras;
}

SensorSize SensorSizeOf(const CameraConfig& config) {
  if (config.max_width == 0 || config.max_height == 0) return ProductSensorSize(config.product_id);
  return {config.max_width, config.max_height};
}

}  // namespace vexa::simulator

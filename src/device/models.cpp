#include "device/models.hpp"

#include <algorithm>
#include <array>

namespace vexa::device {
namespace {

// Sorted by product ID. A name is VX, the generation (the ID's low byte), the sensor's size in
// units of 10,000 pixels, and C for a colour or M for a monochrome sensor.
constexpr std::array kModels = {
    Model{0x0109, u"VX9-125M", 1280, 964},    Model{0x0110, u"VX10-030M", 640, 492},
    Model{0x0111, u"VX11-1600M", 4092, 4092}, Model{0x0209, u"VX9-125C", 1280, 964},
    Model{0x0210, u"VX10-030C", 640, 492},    Model{0x0211, u"VX11-1600C", 4092, 4092},
    Model{0x0305, u"VX5-030M", 640, 480},     Model{0x0310, u"VX10-080M", 1024, 776},
    Model{0x0410, u"VX10-080C", 1024, 776},   Model{0x0509, u"VX9-1600M", 4092, 4092},
    Model{0x0510, u"VX10-125C", 1280, 964},   Model{0x0605, u"VX5-080M", 1024, 768},
    Model{0x0609, u"VX9-1600C", 4092, 4092},  Model{0x0610, u"VX10-125M", 1280, 964},
    Model{0x0705, u"VX5-030C", 640, 480},     Model{0x0710, u"VX10-145M", 1360, 1040},
    Model{0x0805, u"VX5-080C", 1024, 768},    Model{0x0810, u"VX10-145C", 1360, 1040},
    Model{0x0906, u"VX6-T", 640, 492},        Model{0x0910, u"VX10-200M", 1600, 1236},
    Model{0x1006, u"VX6-030C", 640, 492},     Model{0x1010, u"VX10-200C", 1600, 1236},
    Model{0x1106, u"VX6-T", 1024, 776},       Model{0x1206, u"VX6-080C", 1024, 776},
    Model{0x1306, u"VX6-145M", 1360, 1040},   Model{0x1406, u"VX6-145C", 1360, 1040},
    Model{0x1506, u"VX6-200M", 1600, 1236},   Model{0x1606, u"VX6-200C", 1600, 1236},
};

constexpr Model kUnknownModel{0, u"UNKNOWN", 4092, 4092};

constexpr bool IsSorted() {
  return std::is_sorted(kModels.begin(), kModels.end(),
                        [](const Model& a, const Model& b) { return a.product_id < b.product_id; });
}
static_assert(IsSorted());

}  // namespace

const Model& FindModel(std::uint16_t product_id) {
  const auto* found =
      std::lower_bound(kModels.begin(), kModels.end(), product_id,
                       [](const Model& model, std::uint16_t id) { return model.product_id < id; });
  return found != kModels.end() && found->product_id == product_id ? *found : kUnknownModel;
}

bool HasRegisterAccess(std::uint16_t product_id) {
  constexpr std::array<std::uint16_t, 4> kWithout = {0x0305, 0x0605, 0x0705, 0x0805};
  return std::find(kWithout.begin(), kWithout.end(), product_id) == kWithout.end();
}

}  // namespace vexa::device

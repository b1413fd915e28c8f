#include "identity.hpp"

#include <array>

#include "text.hpp"

namespace vexa::tool {

Identity ReadIdentity(const Camera& camera) {
  Identity identity;
  std::array<WCHAR, 64> name{};
  camera.Call("Vexa_GetProductNameW", Vexa_GetProductNameW, name.data(),
              static_cast<DWORD>(sizeof(name)));
  std::u16string model;
  for (std::size_t i = 0; i < name.size() && name[i] != 0; ++i) {
    model.push_back(static_cast<char16_t>(name[i]));
  }
  identity.model = Utf8FromUtf16(model);
  DWORD width = 0;
  DWORD height = 0;
  WORD color_array = 0;
  camera.Call("Vexa_GetCameraVersion", Vexa_GetCameraVersion, &identity.version,
              &identity.product_id, &identity.variant, &identity.firmware);
  camera.Call("Vexa_GetMaximumImageSize", Vexa_GetMaximumImageSize, &width, &height);
  camera.Call("Vexa_GetColorArray", Vexa_GetColorArray, &color_array);
  camera.Call("Vexa_GetUSBSpeed", Vexa_GetUSBSpeed, &identity.usb_speed);
  identity.max_width = width;
  identity.max_height = height;
  identity.color_array = color_array;
  return identity;
}

}  // namespace vexa::tool

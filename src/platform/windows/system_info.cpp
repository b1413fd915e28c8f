#include "platform/system_info.hpp"

#include <windows.h>

#include <array>
#include <cstddef>
#include <vector>

namespace vexa::platform {
namespace {

// Written by the entry point before any other function of the library can run.
HMODULE library_module = nullptr;

}  // namespace

std::uint32_t OsMajorVersion() {
  OSVERSIONINFOW version{};
  version.dwOSVersionInfoSize = sizeof(version);
  return ::GetVersionExW(&version) ? version.dwMajorVersion : 0;
}

ModuleVersion ReadModuleVersion() {
  std::array<wchar_t, 260> file_name{};
  const DWORD length =
      ::GetModuleFileNameW(library_module, file_name.data(), static_cast<DWORD>(file_name.size()));
  if (library_module == nullptr || length == 0 || length >= file_name.size()) {
    return {};
  }
  DWORD ignored = 0;
  const DWORD size = ::GetFileVersionInfoSizeW(file_name.data(), &ignored);
  std::vector<std::byte> data(size);
  VS_FIXEDFILEINFO* info = nullptr;
  UINT info_size = 0;
  if (size == 0 || !::GetFileVersionInfoW(file_name.data(), 0, size, data.data()) ||
      !::VerQueryValueW(data.data(), L"\\", reinterpret_cast<void**>(&info), &info_size) ||
      info_size < sizeof(*info)) {
    return {};
  }
  return {.file_high = info->dwFileVersionMS,
          .file_low = info->dwFileVersionLS,
          .product_high = info->dwProductVersionMS,
          .product_low = info->dwProductVersionLS};
}

void RecordModule(void* module) { library_module = static_cast<HMODULE>(module); }

}  // namespace vexa::platform

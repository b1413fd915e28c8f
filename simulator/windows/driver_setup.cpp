// Installs the simulated cameras' driver into a Wine prefix and plugs cameras, from the command
// line.
#include <windows.h>

#include <setupapi.h>

#include <charconv>
#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "simulator/windows/remote_camera.hpp"
#include "simulator/windows/twin_interface.h"

namespace vexa::simulator {
namespace {

constexpr wchar_t kService[] = L"VexaCamera";
constexpr wchar_t kHardware[] = L"ROOT\\VEXACAMERA\0";  // a list of strings: ends in two zeros
// Setup class of the devices, of the simulator's own: {7D0C3B55-6E0B-4C3C-9A54-54A6A2E5F2B1}.
constexpr GUID kSetupClass = {
    0x7D0C3B55, 0x6E0B, 0x4C3C, {0x9A, 0x54, 0x54, 0xA6, 0xA2, 0xE5, 0xF2, 0xB1}};
constexpr DWORD kPatience = 60000;  // milliseconds

void Check(BOOL succeeded, const char* what) {
  if (!succeeded) {
    throw std::system_error(static_cast<int>(::GetLastError()), std::system_category(), what);
  }
}

template <typename Character, std::size_t kSize>
void SetProperty(HDEVINFO set, SP_DEVINFO_DATA* device, DWORD property,
                 const Character (&text)[kSize]) {
  Check(::SetupDiSetDeviceRegistryPropertyW(set, device, property,
                                            reinterpret_cast<const BYTE*>(text), sizeof text),
        "a device's property");
}

void MakeDevice(unsigned slot) {
  const HDEVINFO set = ::SetupDiCreateDeviceInfoList(&kSetupClass, nullptr);
  Check(set != INVALID_HANDLE_VALUE, "a list of devices");
  const std::wstring instance = L"ROOT\\VEXACAMERA\\000" + std::to_wstring(slot);
  SP_DEVINFO_DATA device{};
  device.cbSize = sizeof device;
  if (::SetupDiCreateDeviceInfoW(set, instance.c_str(), &kSetupClass, nullptr, nullptr, 0,
                                 &device)) {
    SetProperty(set, &device, SPDRP_HARDWAREID, kHardware);
    SetProperty(set, &device, SPDRP_SERVICE, kService);
    Check(::SetupDiRegisterDeviceInfo(set, &device, 0, nullptr, nullptr, nullptr),
          "a device's registration");
  } else {
    Check(::GetLastError() == ERROR_DEVINST_ALREADY_EXISTS, "a device");
  }
  ::SetupDiDestroyDeviceInfoList(set);
}

// The system's work that goes on in the background is awaited by asking again.
template <typename Done>
void Await(const Done& done, const char* what) {
  const DWORD begin = ::GetTickCount();
  while (!done()) {
    Check(::GetTickCount() - begin < kPatience, what);
    ::Sleep(20);
  }
}

// The service manager answers that its database is locked while it starts Wine's own services.
void StartDriver(SC_HANDLE service) {
  const auto started = [service] {
    if (::StartServiceW(service, 0, nullptr)) return true;
    const DWORD error = ::GetLastError();
    Check(error == ERROR_SERVICE_DATABASE_LOCKED || error == ERROR_SERVICE_ALREADY_RUNNING,
          "the driver's start");
    return error == ERROR_SERVICE_ALREADY_RUNNING;
  };
  Await(started, "the driver's start");
}

void Install(const std::filesystem::path& driver) {
  for (unsigned slot = 0; slot < kTwinSlots; ++slot) MakeDevice(slot);
  const SC_HANDLE manager = ::OpenSCManagerW(nullptr, nullptr, SC_MANAGER_ALL_ACCESS);
  Check(manager != nullptr, "the service manager");
  SC_HANDLE service = ::CreateServiceW(
      manager, kService, kService, SERVICE_ALL_ACCESS, SERVICE_KERNEL_DRIVER, SERVICE_DEMAND_START,
      SERVICE_ERROR_NORMAL, driver.c_str(), nullptr, nullptr, nullptr, nullptr, nullptr);
  if (service == nullptr && ::GetLastError() == ERROR_SERVICE_EXISTS) {
    service = ::OpenServiceW(manager, kService, SERVICE_ALL_ACCESS);
  }
  Check(service != nullptr, "the driver's service");
  StartDriver(service);
  const ControlDevice device;
  Await([&device] { return device.StartedSlots() == kTwinSlots; }, "the start of the devices");
  ::CloseServiceHandle(service);
  ::CloseServiceHandle(manager);
}

void Remove() {
  const SC_HANDLE manager = ::OpenSCManagerW(nullptr, nullptr, SC_MANAGER_ALL_ACCESS);
  Check(manager != nullptr, "the service manager");
  const SC_HANDLE service = ::OpenServiceW(manager, kService, SERVICE_ALL_ACCESS);
  Check(service != nullptr, "the driver's service");
  SERVICE_STATUS status{};
  Check(::ControlService(service, SERVICE_CONTROL_STOP, &status), "the driver's end");
  Check(::DeleteService(service), "the service's removal");
  ::CloseServiceHandle(service);
  ::CloseServiceHandle(manager);
}

std::vector<CameraConfig> ParseCameras(const std::vector<std::string_view>& arguments) {
  std::vector<CameraConfig> cameras;
  for (const std::string_view argument : arguments) {
    std::uint16_t product = 0;
    const char* const end = argument.data() + argument.size();
    const auto parsed = std::from_chars(argument.data(), end, product, 16);
    if (parsed.ec != std::errc() || parsed.ptr != end) {
      throw std::invalid_argument("not a product number: " + std::string(argument));
    }
    cameras.push_back(ForProduct(product));
  }
  return cameras.empty() ? StandardCameras() : cameras;
}

void Plug(const std::vector<std::string_view>& arguments) {
  const ControlDevice device;
  for (const CameraConfig& config : ParseCameras(arguments)) device.Send(Command::kAdd, config);
}

int Run(const std::string_view command, const std::vector<std::string_view>& arguments) {
  if (command == "install" && arguments.size() == 1) {
    Install(std::filesystem::absolute(arguments[0]));
  } else if (command == "remove" && arguments.empty()) {
    Remove();
  } else if (command == "plug") {
    Plug(arguments);
  } else if (command == "clear" && arguments.empty()) {
    ControlDevice().Send(Command::kReset);
  } else {
    std::fputs(
        "usage: vexa_driver_setup install DRIVER.sys   devices and service, started\n"
        "       vexa_driver_setup remove\n"
        "       vexa_driver_setup plug [PRODUCT ...]   hexadecimal numbers; none: the standard "
        "cameras\n"
        "       vexa_driver_setup clear                unplugs all cameras\n",
        stderr);
    return 2;
  }
  return 0;
}

}  // namespace
}  // namespace vexa::simulator

int main(int argc, char** argv) try {
  return vexa::simulator::Run(argc > 1 ? argv[1] : "", {argv + (argc > 1 ? 2 : argc), argv + argc});
} catch (const std::exception& failure) {
  std::fprintf(stderr, "vexa_driver_setup: %s\n", failure.what());
  return 1;
}

#include "platform/power_library.hpp"

#include "platform/windows/windows_api.hpp"

namespace vexa::platform {
namespace {

class PowrProf : public PowerLibrary {
 public:
  explicit PowrProf(HMODULE module) : module_(module) {}
  ~PowrProf() override { ::FreeLibrary(module_); }
  PowrProf(const PowrProf&) = delete;
  PowrProf& operator=(const PowrProf&) = delete;

  Function Find(const char* name, Status* status) const override {
    const FARPROC function = ::GetProcAddress(module_, name);
    if (function == nullptr) {
      *status = LastSystemError();
    }
    return reinterpret_cast<Function>(function);
  }

  void FreeScheme(Guid* scheme) const override { ::LocalFree(scheme); }

 private:
  HMODULE module_;
};

}  // namespace

OsVersion ReadOsVersion() {
  OSVERSIONINFOA version{};
  version.dwOSVersionInfoSize = sizeof(version);
  if (!::GetVersionExA(&version)) {
    return {};
  }
  return {.platform_id = version.dwPlatformId,
          .major = version.dwMajorVersion,
          .minor = version.dwMinorVersion};
}

std::unique_ptr<PowerLibrary> OpenPowerLibrary(Status* status) {
  const HMODULE module = ::LoadLibraryA("PowrProf.dll");
  if (module == nullptr) {
    *status = LastSystemError();
    return nullptr;
  }
  return std::make_unique<PowrProf>(module);
}

}  // namespace vexa::platform

// The tool chain's thread library imports GetTickCount64, which Windows has had since Vista only;
// with that import XP would refuse to load the DLL. This definition of the import pointer comes
// before the one in the import library, so that the import does not arise. The 64-bit DLL is for
// Vista and later.
#if defined(__i386__)

#include <windows.h>

namespace {

/// Milliseconds of a clock that never goes back; only differences count for the callers.
ULONGLONG WINAPI TickCount64() {
  LARGE_INTEGER frequency, now;
  ::QueryPerformanceFrequency(&frequency);
  ::QueryPerformanceCounter(&now);
  const auto ticks_per_second = static_cast<ULONGLONG>(frequency.QuadPart);
  const auto ticks = static_cast<ULONGLONG>(now.QuadPart);
  return ticks / ticks_per_second * 1000 + ticks % ticks_per_second * 1000 / ticks_per_second;
}

}  // namespace

extern "C" {
extern ULONGLONG(WINAPI* const tick_count_64_import)() asm("__imp__GetTickCount64@0");
ULONGLONG(WINAPI* const tick_count_64_import)() = &TickCount64;
}

#endif

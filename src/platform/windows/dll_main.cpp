#include <windows.h>

#include "platform/system_info.hpp"

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID /*reserved*/) {
  if (reason == DLL_PROCESS_ATTACH) {
    vexa::platform::RecordModule(module);
  }
  return TRUE;
}

// The machine's power settings.

#include "VexaAPI.h"
#include "exports/call_frame.hpp"
#include "platform/power_binding.hpp"
#include "platform/power_library.hpp"
#include "transfer/processor_idle.hpp"

using vexa::Status;
using namespace vexa::exports;  // NOLINT(google-build-using-namespace): the frame of every function

BOOL VEXA_CALL Vexa_SetProcessorIdleState(BOOL ac_enabled, BOOL dc_enabled) {
  return Call([&] {
    return vexa::transfer::SetProcessorIdleState(
        vexa::platform::CurrentPowerBinding(),
        vexa::transfer::IdleInterfaceOf(vexa::platform::ReadOsVersion()),
        {.ac = static_cast<DWORD>(ac_enabled), .dc = static_cast<DWORD>(dc_enabled)});
  });
}

BOOL VEXA_CALL Vexa_GetProcessorIdleState(BOOL* ac_enabled, BOOL* dc_enabled) {
  return Call([&] {
    vexa::transfer::IdleState state;
    const Status status = vexa::transfer::GetProcessorIdleState(
        vexa::platform::CurrentPowerBinding(),
        vexa::transfer::IdleInterfaceOf(vexa::platform::ReadOsVersion()), &state);
    if (status.ok()) {
      Store(ac_enabled, state.ac);
      Store(dc_enabled, state.dc);
    }
    return status;
  });
}

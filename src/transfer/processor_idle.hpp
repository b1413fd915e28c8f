/// \file
/// Whether the machine's processors may go idle, which can cost frames on their way from the bus.
#pragma once

#include <cstdint>

#include "platform/power_binding.hpp"
#include "platform/power_library.hpp"
#include "platform/status.hpp"

namespace vexa::transfer {

/// Which of the three interfaces a system has for the processor's idle states.
enum class IdleInterface {
  kProcessorScheme,  // before Windows Vista: promotion to deeper states in the processor scheme
  kIdleStatePolicy,  // major version 6 or above, minor 0: the policies among the possible values
  kIdleDisable,      // later: a setting of its own
};

IdleInterface IdleInterfaceOf(const platform::OsVersion& version);

/// On mains (AC) and on battery power (DC); nonzero allows idle states.
struct IdleState {
  std::uint32_t ac = 0;
  std::uint32_t dc = 0;
};

/// Changes or reads the active power scheme of the machine. A load error of the binding fails
/// first; else the code of the first function that fails, kProcedureNotFound when the library lacks
/// the functions that this version of the system should have.
Status SetProcessorIdleState(const platform::PowerBinding& binding, IdleInterface kind,
                             const IdleState& state);
Status GetProcessorIdleState(const platform::PowerBinding& binding, IdleInterface kind,
                             IdleState* state);

}  // namespace vexa::transfer

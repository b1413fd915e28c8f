/// \file
/// The calling thread's last-error code.
#pragma once

#include "platform/status.hpp"

namespace vexa::platform {

void SetLastErrorCode(Status status);
Status LastErrorCode();

/// Sets the code as that of a warning: on Windows with SetLastErrorEx and SLE_WARNING, for
/// debuggers; elsewhere as SetLastErrorCode.
void SetLastErrorWarning(Status status);

}  // namespace vexa::platform

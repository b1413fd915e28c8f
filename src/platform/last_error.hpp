/// \file
/// The calling thread's last-error code.
#pragma once

#include "platform/status.hpp"

namespace vexa::platform {

void SetLastErrorCode(Status status);
Status LastErrorCode();

}  // namespace vexa::platform

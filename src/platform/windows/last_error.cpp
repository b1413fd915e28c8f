#include "platform/last_error.hpp"

#include "platform/windows/windows_api.hpp"

namespace vexa::platform {

void SetLastErrorCode(Status status) { ::SetLastError(status.code()); }

void SetLastErrorWarning(Status status) { ::SetLastErrorEx(status.code(), SLE_WARNING); }

Status LastErrorCode() { return LastSystemError(); }

}  // namespace vexa::platform

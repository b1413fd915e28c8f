#include "platform/last_error.hpp"

#include "platform/windows/windows_api.hpp"

namespace vexa::platform {

void SetLastErrorCode(Status status) { ::SetLastError(status.code()); }

Status LastErrorCode() { return LastSystemError(); }

}  // namespace vexa::platform

#include "platform/last_error.hpp"

namespace vexa::platform {
namespace {

thread_local Status last_error;

}  // namespace

void SetLastErrorCode(Status status) { last_error = status; }

void SetLastErrorWarning(Status status) { SetLastErrorCode(status); }

Status LastErrorCode() { return last_error; }

}  // namespace vexa::platform

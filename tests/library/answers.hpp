/// \file
/// How a call has ended, in one expression.
#pragma once

#include <gtest/gtest.h>

#include "VexaAPI.h"

namespace vexa::test {

/// The last error of a call that has failed, and 0 of one that has not. The next call starts with
/// none.
inline DWORD ErrorOf(BOOL result) {
  const DWORD error = result ? 0 : GetLastError();
  SetLastError(0);
  return error;
}

/// What a function with one output gives.
template <typename T>
T Get(HANDLE camera, BOOL(VEXA_CALL* getter)(HANDLE, T*)) {
  T value{};
  EXPECT_TRUE(getter(camera, &value)) << "error " << GetLastError();
  return value;
}

}  // namespace vexa::test

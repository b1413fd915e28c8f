/* Stands in for the system's PowrProf.dll, with the functions of Windows Vista and later (NEW), of
 * the systems before (OLD), or with the first of the new ones alone. Calls with other arguments
 * than the library should make fail with ERROR_INVALID_PARAMETER. */
#define INITGUID
#include "stand_in.h"

#include <string.h>

#define EXPORT __declspec(dllexport)

EXPORT struct PowerStandIn stand_in;

static DWORD Answer(char name, int valid) {
  const size_t count = strlen(stand_in.calls);
  stand_in.calls[count % (sizeof stand_in.calls - 1)] = name;
  if (stand_in.fail_at == count + 1) return stand_in.code;
  return valid ? ERROR_SUCCESS : ERROR_INVALID_PARAMETER;
}

#if !defined(OLD)
EXPORT DWORD WINAPI PowerGetActiveScheme(HKEY root, GUID** scheme) {
  const DWORD code = Answer('g', root == NULL);
  if (code == ERROR_SUCCESS) *scheme = stand_in.scheme = LocalAlloc(LMEM_FIXED, sizeof **scheme);
  return code;
}
#endif

#if defined(NEW)
static int IsActive(HKEY root, const GUID* scheme) {
  return root == NULL && scheme == stand_in.scheme && HeapValidate(GetProcessHeap(), 0, scheme);
}

static DWORD AnswerValue(char name, HKEY root, const GUID* scheme, const GUID* group,
                         const GUID* setting) {
  return Answer(name, IsActive(root, scheme) &&
                          IsEqualGUID(group, &GUID_PROCESSOR_SETTINGS_SUBGROUP) &&
                          (IsEqualGUID(setting, &GUID_PROCESSOR_IDLE_DISABLE) ||
                           IsEqualGUID(setting, &GUID_PROCESSOR_IDLESTATE_POLICY)));
}

EXPORT DWORD WINAPI PowerSetActiveScheme(HKEY root, const GUID* scheme) {
  return Answer('s', IsActive(root, scheme));
}

/* The read and the write function of one supply. */
#define VALUE_INDEX(supply, place, read, write)                                              \
  EXPORT DWORD WINAPI PowerRead##supply##ValueIndex(                                         \
      HKEY root, const GUID* scheme, const GUID* group, const GUID* setting, DWORD* index) { \
    *index = stand_in.index[place];                                                          \
    return AnswerValue(read, root, scheme, group, setting);                                  \
  }                                                                                          \
  EXPORT DWORD WINAPI PowerWrite##supply##ValueIndex(                                        \
      HKEY root, const GUID* scheme, const GUID* group, const GUID* setting, DWORD index) {  \
    stand_in.index[place] = index;                                                           \
    return AnswerValue(write, root, scheme, group, setting);                                 \
  }
VALUE_INDEX(AC, 0, 'r', 'w')
VALUE_INDEX(DC, 1, 'R', 'W')

static int IsPolicy(HKEY root, const GUID* group, const GUID* setting, DWORD index) {
  return root == NULL && IsEqualGUID(group, &GUID_PROCESSOR_SETTINGS_SUBGROUP) &&
         IsEqualGUID(setting, &GUID_PROCESSOR_IDLESTATE_POLICY) && index < 2;
}

EXPORT DWORD WINAPI PowerReadPossibleValue(HKEY root, const GUID* group, const GUID* setting,
                                           DWORD* type, DWORD index, BYTE* data, DWORD* size) {
  const DWORD code =
      Answer('p', IsPolicy(root, group, setting, index) && *size >= sizeof *stand_in.policies);
  if (code != ERROR_SUCCESS) return code;
  *type = REG_BINARY;
  *size = sizeof *stand_in.policies;
  memcpy(data, &stand_in.policies[index], *size);
  return code;
}

EXPORT DWORD WINAPI PowerWritePossibleValue(HKEY root, const GUID* group, const GUID* setting,
                                            DWORD type, DWORD index, BYTE* data, DWORD size) {
  const DWORD code = Answer('q', IsPolicy(root, group, setting, index) && type == REG_BINARY &&
                                     size == sizeof *stand_in.policies);
  if (code == ERROR_SUCCESS) memcpy(&stand_in.policies[index], data, size);
  return code;
}
#endif

#if defined(OLD)
enum { kActive = 3 };

static BOOLEAN AnswerOld(char name, int valid) {
  const DWORD code = Answer(name, valid);
  if (code != ERROR_SUCCESS) SetLastError(code);
  return code == ERROR_SUCCESS;
}

EXPORT BOOLEAN WINAPI GetActivePwrScheme(UINT* scheme) {
  *scheme = kActive;
  return AnswerOld('G', 1);
}

EXPORT BOOLEAN WINAPI ReadProcessorPwrScheme(UINT scheme, struct ProcessorScheme* policy) {
  *policy = stand_in.processor_scheme;
  return AnswerOld('P', scheme == kActive);
}

EXPORT BOOLEAN WINAPI WriteProcessorPwrScheme(UINT scheme, struct ProcessorScheme* policy) {
  stand_in.processor_scheme = *policy;
  return AnswerOld('Q', scheme == kActive);
}

EXPORT BOOLEAN WINAPI SetActivePwrScheme(UINT scheme, void* global_policy, void* policy) {
  return AnswerOld('S', scheme == kActive && global_policy == NULL && policy == NULL);
}
#endif

/* What a stand-in for PowrProf.dll shows to the test: exported as `stand_in`. */
#include <windows.h>

/* MACHINE_PROCESSOR_POWER_POLICY; powrprof.h has it, beside declarations of what is defined here.
 */
struct ProcessorScheme {
  ULONG revision;
  PROCESSOR_POWER_POLICY policies[2]; /* on AC, on DC */
};

struct PowerStandIn {
  char calls[32];                         /* a letter per call, in their order */
  size_t fail_at;                         /* the call that fails, counted from 1, 0 for none */
  DWORD code;                             /* its code */
  void* scheme;                           /* the identifier given last */
  DWORD index[2];                         /* of either setting, on AC and on DC */
  PROCESSOR_IDLESTATE_POLICY policies[2]; /* the possible values */
  struct ProcessorScheme processor_scheme;
};

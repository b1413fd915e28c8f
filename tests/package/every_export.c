/* Calls every function of VexaAPI.dll through its import library, as the header declares it, with
 * all arguments 0, and checks that the stack pointer comes back: on 32-bit Windows the called
 * function removes its arguments. Compiled without optimisation, which keeps the pointer still. */
#include <VexaAPI.h>
#include <stdio.h>

#if defined(__i386__)
#define READ_STACK_POINTER(value) __asm__ volatile("mov %%esp, %0" : "=r"(value))
#else
#define READ_STACK_POINTER(value) __asm__ volatile("mov %%rsp, %0" : "=r"(value))
#endif

static int calls = 0, failures = 0;

/* A crash tells which call it was. */
#define CALL(call)                                            \
  printf("%s\n", #call);                                      \
  READ_STACK_POINTER(before);                                 \
  call;                                                       \
  READ_STACK_POINTER(after);                                  \
  ++calls;                                                    \
  if (before != after) {                                      \
    printf("FAILED: %d bytes left\n", (int)(before - after)); \
    ++failures;                                               \
  }

#if defined(__i386__)
typedef void(__stdcall* CalleePops)(DWORD, DWORD);
static void __cdecl CallerPops(DWORD first, DWORD second) { (void)first, (void)second; }

/* Whether a function of the other convention is noticed. */
static int NoticesOtherConvention(void) {
  const char *before, *after;
  CalleePops function;
  *(void (**)(DWORD, DWORD)) & function = CallerPops;
  CALL(function(0, 0))
  calls = 0;
  return failures-- == 1 && before - after == 2 * sizeof(DWORD);
}
#endif

static void CallAll(void) {
  const char *before, *after;
#include "calls.inc"
}

int main(void) {
  setvbuf(stdout, NULL, _IONBF, 0);
#if defined(__i386__)
  if (!NoticesOtherConvention()) return 2;
#endif
  CallAll();
  printf("%d calls, %d failures\n", calls, failures);
  return calls == VEXA_EXPORTS && failures == 0 ? 0 : 1;
}

/* Windows build only: what -fstack-protector-strong calls. The toolchain's own library for it would bring a
   constructor and three more imports into every process that loads us. The guard is a fixed one of the kind
   that no copied text can carry whole: it holds a NUL, a line end and an 0xFF. */
#include "base/types.h"

extern "C" {

extern const u64 __stack_chk_guard;
const u64 __stack_chk_guard = 0xFF0D0A00A53CC35A;

/* Ends the process at once, as the system's own guard does: what is on the stack can no longer be trusted. */
[[noreturn]] void __stack_chk_fail(void);
[[noreturn]] void __stack_chk_fail(void)
{
    asm volatile("int $0x29" : : "c"(2ul)); /* FAST_FAIL_STACK_COOKIE_CHECK_FAILURE */
    __builtin_unreachable();
}
}

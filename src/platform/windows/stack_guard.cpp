/* Windows build only: what -fstack-protector-strong calls. The toolchain's own library for it would bring a
   constructor and three more imports into every process that loads us. */
#include "platform/stack_guard.h"

#include "platform/process.h"
#include "platform/types.h"

extern "C" {

extern u64 __stack_chk_guard;
u64 __stack_chk_guard = 0xFF0D0A0BA53C0000; /* until SetStackGuard, while nothing of ours runs */

/* Ends the process at once, as the system's own guard does: what is on the stack can no longer be trusted. */
[[noreturn]] void __stack_chk_fail(void);
[[noreturn]] void __stack_chk_fail(void)
{
    asm volatile("int $0x29" : : "c"(2ul)); /* FAST_FAIL_STACK_COOKIE_CHECK_FAILURE */
    __builtin_unreachable();
}
}

namespace {

/* Spreads every bit of what is known over the whole value. */
UNGUARDED u64 Mix(u64 ullState, u64 ullKnown)
{
    ullState = (ullState ^ ullKnown) * 0xD6E8FEB86659FD93;
    return ullState ^ ullState >> 32;
}

} // namespace

/* What another process cannot foresee: the moment, and where the system put the library and the stack. The lowest
   16-bit unit is zero. So a copied wide text ends before it has carried the guard whole, and a text that is read past
   its end does not show the guard. */
UNGUARDED void SetStackGuard()
{
    u64 ullHere = 0;
    u64 ullMixed = Mix(__builtin_ia32_rdtsc(), reinterpret_cast<std::uintptr_t>(&ullHere));
    ullMixed = Mix(ullMixed, reinterpret_cast<std::uintptr_t>(&__stack_chk_guard));
    ullMixed = Mix(ullMixed, GetTickCount());
    ullMixed = Mix(ullMixed, __builtin_ia32_rdtsc());
    __stack_chk_guard = ullMixed & ~u64{0xFFFF};
}

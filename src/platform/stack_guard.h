/* The value that guarded functions keep between their buffers and their return address. */
#ifndef TQUI_PLATFORM_STACK_GUARD_H
#define TQUI_PLATFORM_STACK_GUARD_H

/* Marks a function that is on the stack while the guard changes: it must not be guarded itself. */
#define UNGUARDED __attribute__((no_stack_protector))

#ifdef _WIN32

/* Gives the guard a value of this process. No guarded function may be running: it is called before anything else when
   the library is loaded, by functions that are UNGUARDED. */
void SetStackGuard();

#else

inline void SetStackGuard() {} /* the system's own library has set one */

#endif
#endif

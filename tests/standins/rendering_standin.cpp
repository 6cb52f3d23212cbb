/* Stand-in for the DLLs of the rendering half: TQRND.DLL, CRE.DLL, KRND.DLL, RDR.DLL, LAY.DLL.

   Not a product file and not a renderer. It lets the sample package install, and lets the user interface
   half find the files that it names to others; an integrator puts the real libraries in its place. The
   system's question for drawing functions is answered with a failure, so that nothing prints through it. */
#include <windows.h>

extern "C" __declspec(dllexport) BOOL WINAPI DrvEnableDriver(ULONG, ULONG, void*)
{
    SetLastError(ERROR_NOT_SUPPORTED);
    return FALSE;
}

extern "C" __declspec(dllexport) void WINAPI DrvDisableDriver(void) {}

/* Which of the files this copy stands for: narrow text, static. */
extern "C" __declspec(dllexport) const char* WINAPI StandInName(void)
{
    return STANDIN_NAME;
}

/* Stand-in for the watermark builder MRK.EXE: a program round the routine that the hosted machine runs. Not a product file:
   an integrator puts the real builder in its place.

   Its manners come from the variable TQUI_BUILDER: mode, result, font change and milliseconds of delay, as numbers with a
   blank between them. */
#include <cstdlib>

#include <windows.h>

#include "standins/builder_standin.h"

int main()
{
    BuilderManners manners;
    char cSwitches[64] = {};
    GetEnvironmentVariableA("TQUI_BUILDER", cSwitches, sizeof cSwitches);
    char* cAt = cSwitches;
    manners.mode = static_cast<BuilderManners::Mode>(std::strtol(cAt, &cAt, 10));
    manners.nResult = static_cast<int>(std::strtol(cAt, &cAt, 10));
    manners.nFontChange = static_cast<int>(std::strtol(cAt, &cAt, 10));
    Sleep(std::strtoul(cAt, &cAt, 10));
    manners.wcNonsense = L"abc";
    RunBuilderStandin(CommandFileOf(GetCommandLineW()), manners);
    return 0;
}

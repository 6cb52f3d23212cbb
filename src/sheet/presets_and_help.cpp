/* Empty until presets and help are built. */
#include "sheet/presets_and_help.h"

void InitPresets(HWND, UiSession*) {}

void ApplyPreset(HWND, UiSession*) {}

void ShowPageTopic(HWND, UiSession*, int) {}

INT_PTR ShowContextHelp(HWND, UiSession*, UINT, WPARAM, LPARAM)
{
    return 0;
}

void OpenWebPage(UiSession*) {}

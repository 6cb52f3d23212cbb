/* Texts of the registry. What is stored there is somebody else's: it may have any type and length, and no end. */
#ifndef TQUI_BASE_REGISTRY_TEXT_H
#define TQUI_BASE_REGISTRY_TEXT_H

#include "base/wide.h"
#include "platform/registry.h"

enum RegistryText : int {
    KEY_ABSENT,  /* the key cannot be opened */
    TEXT_ABSENT, /* it has no default value that is a text and fits */
    TEXT_STORED,
    TEXT_TO_EXPAND /* a text with names of the environment's values, which stand as they are */
};

/* The default value of a key: at most PATH_CHARS characters into PATH_CHARS + 1 of room, always ended by a NUL; "" when
   there is none. */
RegistryText ReadDefaultText(HKEY hRoot, const WCHAR* wcKey, WCHAR* wcOut);

#endif

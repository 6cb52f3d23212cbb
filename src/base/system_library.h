/* Libraries of the system that are loaded when they are first needed: by full path of the system's folder, so that a
   file of the same name elsewhere in the host's search order is never taken. */
#ifndef TQUI_BASE_SYSTEM_LIBRARY_H
#define TQUI_BASE_SYSTEM_LIBRARY_H

#include <cstring>

#include "base/owned.h"

/* Loads a library of the system's folder.
   wcName   plain file name, "version.dll"
   Result: the library, loaded until it is released; null when the system has none of that name or names no folder. */
OwnedModule OpenSystemLibrary(const WCHAR* wcName);

/* A routine of a loaded library as a function pointer of its type; null for no library and for an unknown routine.
   cName is a name, or a number as GetProcAddress takes one. */
template <class Routine> Routine FindRoutine(const OwnedModule& hLibrary, const char* cName)
{
    FARPROC fnFound = hLibrary ? GetProcAddress(hLibrary.get(), cName) : nullptr;
    Routine fnRoutine = nullptr;
    static_assert(sizeof fnRoutine == sizeof fnFound);
    if (fnFound) {
        std::memcpy(&fnRoutine, &fnFound, sizeof fnRoutine);
    }
    return fnRoutine;
}

#endif

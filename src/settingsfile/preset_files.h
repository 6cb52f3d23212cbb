/* Which files offer their settings as presets, and where a preset of a name and a kind lies. */
#ifndef TQUI_SETTINGSFILE_PRESET_FILES_H
#define TQUI_SETTINGSFILE_PRESET_FILES_H

#include "base/wide.h"

/* Kinds of presets; other numbers mean none. All but the first are files. */
enum PresetKind : int {
    PRESET_FACTORY = 1,  /* the default record without the driver's .INI file */
    PRESET_USER = 3,     /* a settings file in the user's folder */
    PRESET_USER_INI = 4, /* an .INI file there */
    PRESET_DRIVER = 5,   /* a settings file that came with the driver */
    PRESET_TEMP = 6,     /* a settings file in C:\TEMP, whoever put it there */
    PRESET_TEMP_INI = 7  /* an .INI file there */
};

/* None of the texts is null; where a folder or the extension is "", there are no presets of their kinds. */
struct PresetPlaces {
    const WCHAR* tcUserFolder;
    const WCHAR* tcDriverFolder;
    const WCHAR* wcExtension; /* of settings files, without a dot */
    const WCHAR* wcOwnFile;   /* name of the printer's own settings file, which is no preset of PRESET_USER */
    const WCHAR* wcDescription; /* file name of the description that presets are to be for */
};

/* Path of the file with a preset's settings. Result: 0 and "" for a name that leads out of the folder, for the factory's
   preset and unknown kinds, and when the path is too long. PATH_CHARS of room. */
int GetPresetPath(const PresetPlaces& places, int nKind, const WCHAR* wcName, WCHAR* tcOut);

/* Is handed each preset's name: that of its file without what follows the last dot. 0 ends the list. */
using PresetTaker = int (*)(void* pContext, const WCHAR* wcName);

/* Hands over the presets of one kind: files on a disk whose section of settings names the description, or none. A folder
   may hold anything, so at most PRESET_NAMES_MOST names and PRESET_BYTES_MOST bytes of it are looked at. */
constexpr int PRESET_NAMES_MOST = 1000;
constexpr u32 PRESET_BYTES_MOST = 0x1000000;
void ListPresets(const PresetPlaces& places, int nKind, PresetTaker pfnTake, void* pContext);

#endif

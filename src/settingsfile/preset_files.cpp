/* Looks through the folders of presets. */
#include "settingsfile/preset_files.h"

#include <utility>

#include "base/file_name.h"
#include "base/format.h"
#include "profile/profile_values.h"
#include "settingsfile/settings_keys.h"

namespace {

constexpr const WCHAR* tcTempFolder = TEXT("C:\\TEMP");
constexpr const WCHAR* wcIni = TEXT("INI");
constexpr u32 SECTION_NAMES =
    2048; /* characters of a file's section names; what lies behind them does not count */

struct PresetPlace {
    const WCHAR* tcFolder;
    const WCHAR* wcExtension;
};

PresetPlace PlaceOf(const PresetPlaces& places, int nKind)
{
    switch (nKind) {
    case PRESET_USER: return {places.tcUserFolder, places.wcExtension};
    case PRESET_USER_INI: return {places.tcUserFolder, wcIni};
    case PRESET_DRIVER: return {places.tcDriverFolder, places.wcExtension};
    case PRESET_TEMP: return {tcTempFolder, places.wcExtension};
    case PRESET_TEMP_INI: return {tcTempFolder, wcIni};
    default: return {TEXT(""), TEXT("")};
    }
}

/* "FOLDER\NAME.EXTENSION", with "*" for all names. */
int MakePath(const PresetPlace& place, const WCHAR* wcName, WCHAR* tcOut)
{
    if (!place.tcFolder[0] || !IsPlainName(place.wcExtension) ||
        !FormatWide(tcOut, PATH_CHARS, TEXT("%s\\%s.%s"), place.tcFolder, wcName, place.wcExtension)) {
        tcOut[0] = 0;
    }
    return tcOut[0] != 0;
}

int HasSettings(const ProfileFile& file)
{
    WCHAR wcNames[SECTION_NAMES];
    ListProfileSections(file, wcNames, SECTION_NAMES);
    for (const WCHAR* wcName = wcNames; *wcName; wcName += WideLength(wcName) + 1) {
        if (IsSameName(SpanOf(wcName), SpanOf(SETTINGS_SECTION))) {
            return 1;
        }
    }
    return 0;
}

/* A file that does not say what it is for fits every description. */
int IsPreset(const ProfileFile& file, const WCHAR* wcDescription)
{
    if (file.state != PROFILE_READ || !HasSettings(file)) {
        return 0;
    }
    WCHAR wcFor[PATH_CHARS];
    CopyWide(wcFor, PATH_CHARS, wcDescription);
    const ProfileSection section = OpenSection(file, SETTINGS_SECTION);
    ReadProfileText(section, TEXT("XPI"), wcFor, PATH_CHARS);
    return !section.bShort && SameWide(wcFor, wcDescription);
}

struct OwnedSearch {
    HANDLE hSearch;
    ~OwnedSearch()
    {
        if (IsOpen(hSearch)) {
            FindClose(hSearch);
        }
    }
};

/* Takes a file's size from what may still be read. 0 for what is no file, or too much. */
int MayRead(const WIN32_FIND_DATAW& found, u32* pcbLeft)
{
    if (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY || found.nFileSizeHigh ||
        found.nFileSizeLow > *pcbLeft) {
        return 0;
    }
    *pcbLeft -= found.nFileSizeLow;
    return 1;
}

} // namespace

int GetPresetPath(const PresetPlaces& places, int nKind, const WCHAR* wcName, WCHAR* tcOut)
{
    tcOut[0] = 0;
    return IsPlainName(wcName) && MakePath(PlaceOf(places, nKind), wcName, tcOut);
}

void ListPresets(const PresetPlaces& places, int nKind, PresetTaker pfnTake, void* pContext)
{
    const PresetPlace place = PlaceOf(places, nKind);
    WCHAR tcPath[PATH_CHARS];
    WIN32_FIND_DATAW found = {};
    if (!MakePath(place, TEXT("*"), tcPath)) {
        return;
    }
    const OwnedSearch search = {FindFirstFileW(tcPath, &found)};
    u32 cbLeft = PRESET_BYTES_MOST;
    int bMore = IsOpen(search.hSearch);
    for (int nLeft = PRESET_NAMES_MOST; bMore && nLeft > 0; nLeft--) {
        WCHAR* wcName = found.cFileName;
        wcName[PATH_CHARS - 1] = 0;
        int bOwn = nKind == PRESET_USER && SameFileName(wcName, places.wcOwnFile);
        if (!bOwn && MayRead(found, &cbLeft) &&
            FormatWide(tcPath, PATH_CHARS, TEXT("%s\\%s"), place.tcFolder,
                       static_cast<const WCHAR*>(wcName)) &&
            IsPreset(OpenProfile(tcPath), places.wcDescription)) {
            const WCHAR* wcEnd = BehindLast(wcName, '.');
            if (wcEnd != wcName) {
                wcName[wcEnd - wcName - 1] = 0;
            }
            if (!pfnTake(pContext, wcName)) {
                return;
            }
        }
        bMore = FindNextFileW(search.hSearch, &found) != 0;
    }
}

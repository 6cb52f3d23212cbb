/* Makes and deletes settings files.

   Deletion happens with the rights of the spooler, on files that users write: only what lies directly in the folder of
   a settings file and bears a watermark's extension goes with it, whatever its rows name. */
#include "entry/settings_file.h"

#include "base/file_name.h"
#include "base/format.h"
#include "description/language_dll.h"
#include "description/printer_store.h"
#include "description/string_ids.h"
#include "description/xpi_text.h"
#include "platform/text.h"
#include "settingsfile/settings_writer.h"
#include "settingsfile/watermark_rows.h"

namespace {

constexpr int NAME_TRIES = 16;

int IsThere(const WCHAR* tcPath)
{
    return GetFileAttributesW(tcPath) != INVALID_FILE_ATTRIBUTES;
}

/* Puts folder and name together; 0 and "" when they do not fit. */
int PathInFolder(WCHAR* tcOut, const WCHAR* tcFolder, const WCHAR* wcName)
{
    return CopyWideWhole(tcOut, PATH_CHARS, tcFolder) && AppendWideWhole(tcOut, PATH_CHARS, TEXT("\\")) &&
           AppendWideWhole(tcOut, PATH_CHARS, wcName);
}

/* Finds a name that no file of the folder bears and stores it with the printer. 1 with its path at tcOut. */
int NameSettingsFile(PrinterCall& call, const WCHAR* tcFolder, WCHAR* tcOut)
{
    WCHAR wcName[PATH_CHARS], wcExtension[TEXT_CHARS];
    OwnedModule hLanguage = OpenLanguageDll(call, nullptr);
    ReadLibraryString(hLanguage.get(), IDS_SETTINGS_EXTENSION, wcExtension, TEXT_CHARS);
    if (wcExtension[0] && !IsPlainName(wcExtension)) {
        wcExtension[0] = 0;
    }
    u32 ulTicks = GetTickCount();
    for (int nTry = 0; nTry < NAME_TRIES; nTry++) {
        FormatWide(wcName, PATH_CHARS, TEXT("%08lX.%s"), ulTicks++, static_cast<const WCHAR*>(wcExtension));
        if (!PathInFolder(tcOut, tcFolder, wcName)) {
            return 0;
        }
        if (!IsThere(tcOut)) {
            SetSettingsFileName(call, wcName);
            return 1;
        }
    }
    tcOut[0] = 0;
    return 0;
}

int HasEnding(const WCHAR* wcName, const WCHAR* wcEnding)
{
    int nAt = WideLength(wcName) - WideLength(wcEnding);
    return nAt > 0 && SameFileName(wcName + nAt, wcEnding);
}

/* Deletes a file that a row names if it lies directly in the folder and is a watermark's. */
void DeleteBuiltFile(const WCHAR* tcFolder, const WCHAR* tcFile)
{
    WCHAR tcOwn[PATH_CHARS], tcPath[PATH_CHARS];
    const WCHAR* wcName = BehindLast(tcFile, '\\');
    if (wcName == tcFile || !CopyWideWhole(tcOwn, PATH_CHARS, tcFile)) {
        return;
    }
    tcOwn[wcName - tcFile - 1] = 0;
    if (SameFileName(tcOwn, tcFolder) && IsPlainName(wcName) &&
        (HasEnding(wcName, TEXT(".WM")) || HasEnding(wcName, TEXT(".CWM"))) &&
        PathInFolder(tcPath, tcFolder, wcName)) {
        DeleteFileW(tcPath);
    }
}

void DeleteSettingsFile(const WCHAR* tcFolder, const WCHAR* wcName)
{
    WCHAR tcPath[PATH_CHARS];
    OwnedBlock<WatermarkEntry> pRows;
    if (!PathInFolder(tcPath, tcFolder, wcName) || !IsThere(tcPath)) {
        return;
    }
    i32 nRows = ReadWatermarks(tcPath, &pRows);
    for (i32 i = 0; i < nRows; i++) {
        DeleteBuiltFile(tcFolder, pRows.get()[i].WMFileName);
        DeleteBuiltFile(tcFolder, pRows.get()[i].WMColorFile);
    }
    DeleteFileW(tcPath);
}

/* A folder that is one, and not a link to one. */
int IsPlainFolder(DWORD dwAttributes)
{
    return dwAttributes != INVALID_FILE_ATTRIBUTES && dwAttributes & FILE_ATTRIBUTE_DIRECTORY &&
           !(dwAttributes & FILE_ATTRIBUTE_REPARSE_POINT);
}

/* The driver's folder in one profile. The profile's "Application Data" is a link on current systems; what lies below
   it is ours and may be none. */
void DeleteProfileSettings(const WCHAR* tcProfiles, const WCHAR* wcProfile, const WCHAR* wcDriver,
                           const WCHAR* wcFile)
{
    WCHAR tcFolder[PATH_CHARS];
    if (PathInFolder(tcFolder, tcProfiles, wcProfile) &&
        AppendWideWhole(tcFolder, PATH_CHARS, wcProfileFolder) &&
        AppendWideWhole(tcFolder, PATH_CHARS, wcMakerFolder) && IsPlainFolder(GetFileAttributesW(tcFolder)) &&
        AppendWideWhole(tcFolder, PATH_CHARS, TEXT("\\")) &&
        AppendWideWhole(tcFolder, PATH_CHARS, wcDriver) && IsPlainFolder(GetFileAttributesW(tcFolder))) {
        DeleteSettingsFile(tcFolder, wcFile);
    }
}

struct SearchDeleter {
    using pointer = HANDLE;
    void operator()(HANDLE hSearch) const
    {
        if (IsOpen(hSearch)) {
            FindClose(hSearch);
        }
    }
};
using OwnedSearch = std::unique_ptr<void, SearchDeleter>;

/* The folder of all profiles: the user's own without its last name. 1 when it can be had. */
int GetProfilesFolder(WCHAR* tcOut)
{
    DWORD cch = GetEnvironmentVariableW(TEXT("USERPROFILE"), tcOut, PATH_CHARS);
    if (cch == 0 || cch >= PATH_CHARS) {
        return 0;
    }
    tcOut[cch] = 0;
    const WCHAR* wcUser = BehindLast(tcOut, '\\');
    if (wcUser == tcOut) {
        return 0;
    }
    tcOut[wcUser - tcOut - 1] = 0;
    return tcOut[0] != 0;
}

} // namespace

int EnsureSettingsFile(PrinterCall& call, const DriverDevmode* pRecord, u16 usLanguage)
{
    WCHAR tcFolder[PATH_CHARS], wcName[PATH_CHARS], tcPath[PATH_CHARS];
    if (!GetUserFolder(call, tcFolder)) {
        return 0;
    }
    int bPath = GetSettingsFileName(call, wcName, PATH_CHARS) ? PathInFolder(tcPath, tcFolder, wcName)
                                                              : NameSettingsFile(call, tcFolder, tcPath);
    if (!bPath || IsThere(tcPath)) {
        return 0;
    }
    return !pRecord || WritePrinterSettings(tcPath, pRecord, usLanguage);
}

void DeleteUserSettings(PrinterCall& call)
{
    WCHAR tcFolder[PATH_CHARS], wcName[PATH_CHARS];
    if (GetSettingsFileName(call, wcName, PATH_CHARS) && GetUserFolder(call, tcFolder)) {
        DeleteSettingsFile(tcFolder, wcName);
    }
}

void DeleteAllSettings(PrinterCall& call)
{
    WCHAR tcProfiles[PATH_CHARS], tcPattern[PATH_CHARS], wcDriver[PATH_CHARS], wcFile[PATH_CHARS];
    if (!GetDriverFolderName(call, wcDriver) || !GetSettingsFileName(call, wcFile, PATH_CHARS) ||
        !GetProfilesFolder(tcProfiles) || !PathInFolder(tcPattern, tcProfiles, TEXT("*.*"))) {
        return;
    }
    WIN32_FIND_DATAW found = {};
    OwnedSearch hSearch(FindFirstFileW(tcPattern, &found));
    for (int bFound = IsOpen(hSearch.get()); bFound; bFound = FindNextFileW(hSearch.get(), &found)) {
        found.cFileName[PATH_CHARS - 1] = 0;
        if (IsPlainFolder(found.dwFileAttributes) && IsPlainName(found.cFileName)) {
            DeleteProfileSettings(tcProfiles, found.cFileName, wcDriver, wcFile);
        }
    }
}

/* Makes and deletes settings files.

   Deletion happens with the rights of the spooler, on files and folders that users write: only what lies directly in
   the folder of a settings file and bears a watermark's extension goes with it, whatever its rows name. A user can
   swap a folder for a link at any moment, so a file is opened, judged by the path that its handle has, and deleted by
   that handle; nothing is judged by one path and deleted by another. */
#include "entry/user_settings_file.h"

#include "base/file_name.h"
#include "base/format.h"
#include "description/language_dll.h"
#include "description/printer_store.h"
#include "description/string_ids.h"
#include "description/xpi_text.h"
#include "platform/text.h"
#include "settingsfile/settings_writer.h"
#include "watermark/watermark_rows.h"

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

/* 1 for the name of a file that the watermark builder makes. */
int IsBuiltName(const WCHAR* wcName)
{
    for (const WCHAR* wcEnding : {TEXT(".WM"), TEXT(".CWM")}) {
        int nAt = WideLength(wcName) - WideLength(wcEnding);
        if (nAt > 0 && IsPlainName(wcName) && SameFileName(wcName + nAt, wcEnding)) {
            return 1;
        }
    }
    return 0;
}

constexpr DWORD SHARE_ALL = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

/* Gives the path of what a handle is open on, as the system has it: links are resolved and names are long. 0 when
   the handle is none or the path is too long. */
int GetFinalPath(HANDLE hOpen, WCHAR (&tcOut)[PATH_CHARS])
{
    DWORD cch = IsOpen(hOpen) ? GetFinalPathNameByHandleW(hOpen, tcOut, PATH_CHARS, 0) : 0;
    if (cch >= PATH_CHARS) {
        cch = 0;
    }
    tcOut[cch] = 0;
    return cch != 0;
}

int GetFinalFolderPath(const WCHAR* tcFolder, DWORD dwFlags, WCHAR (&tcOut)[PATH_CHARS])
{
    OwnedFile hFolder(CreateFileW(tcFolder, 0, SHARE_ALL, nullptr, OPEN_EXISTING,
                                  FILE_FLAG_BACKUP_SEMANTICS | dwFlags, nullptr));
    return GetFinalPath(hFolder.get(), tcOut);
}

int LiesBelow(const WCHAR* tcPath, const WCHAR* tcFolder)
{
    WCHAR tcFront[PATH_CHARS];
    int nFolder = WideLength(tcFolder);
    CopyWide(tcFront, PATH_CHARS, tcPath);
    if (nFolder >= WideLength(tcFront) || tcFront[nFolder] != '\\') {
        return 0;
    }
    tcFront[nFolder] = 0;
    return SameFileName(tcFront, tcFolder);
}

/* The driver's folder in a profile: its path by the profile, and where it must really lie. */
struct SettingsFolder {
    WCHAR tcPath[PATH_CHARS], tcReal[PATH_CHARS];
};

/* The profile's "Application Data" is a link on current systems, so it is followed, but not out of the profile. What
   lies below it is the driver's own and must be no link. */
int FindSettingsFolder(const WCHAR* tcProfile, const WCHAR* wcDriver, SettingsFolder* pFolder)
{
    WCHAR tcRealProfile[PATH_CHARS];
    if (!CopyWideWhole(pFolder->tcPath, PATH_CHARS, tcProfile) ||
        !AppendWideWhole(pFolder->tcPath, PATH_CHARS, wcProfileFolder) ||
        !GetFinalFolderPath(tcProfile, FILE_FLAG_OPEN_REPARSE_POINT, tcRealProfile) ||
        !GetFinalFolderPath(pFolder->tcPath, 0, pFolder->tcReal) ||
        !LiesBelow(pFolder->tcReal, tcRealProfile)) {
        return 0;
    }
    for (WCHAR* tcEither : {pFolder->tcPath, pFolder->tcReal}) {
        if (!AppendWideWhole(tcEither, PATH_CHARS, wcMakerFolder) ||
            !AppendWideWhole(tcEither, PATH_CHARS, TEXT("\\")) ||
            !AppendWideWhole(tcEither, PATH_CHARS, wcDriver)) {
            return 0;
        }
    }
    return 1;
}

/* A file that was opened without following a link at its end, and where the handle says that it lies. */
struct FoundFile {
    OwnedFile hFile;
    WCHAR tcFolder[PATH_CHARS], wcName[PATH_CHARS];
};

/* Opens a file to read it, or with DELETE. 1 when it lies directly in the folder. */
int FindFileIn(const SettingsFolder& folder, const WCHAR* tcPath, DWORD dwAccess, FoundFile* pFound)
{
    pFound->hFile.reset(CreateFileW(tcPath, dwAccess, SHARE_ALL, nullptr, OPEN_EXISTING,
                                    FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
    if (!IsOpen(pFound->hFile.get()) || GetFileType(pFound->hFile.get()) != FILE_TYPE_DISK ||
        !GetFinalPath(pFound->hFile.get(), pFound->tcFolder)) {
        return 0;
    }
    const WCHAR* wcName = BehindLast(pFound->tcFolder, '\\');
    if (wcName == pFound->tcFolder) {
        return 0;
    }
    CopyWide(pFound->wcName, PATH_CHARS, wcName);
    pFound->tcFolder[wcName - pFound->tcFolder - 1] = 0;
    return SameFileName(pFound->tcFolder, folder.tcReal);
}

void DeleteFound(const FoundFile& found)
{
    FILE_DISPOSITION_INFO info = {1};
    SetFileInformationByHandle(found.hFile.get(), FileDispositionInfo, &info, sizeof info);
}

/* Deletes a file that a row names if it lies directly in the folder and is a watermark's, both by the row's text and
   by what was opened: a short name may end otherwise than the name that it stands for. */
void DeleteBuiltFile(const SettingsFolder& folder, const WCHAR* tcFile)
{
    FoundFile found;
    if (IsPlainPath(tcFile) && IsBuiltName(BehindLast(tcFile, '\\')) &&
        FindFileIn(folder, tcFile, DELETE, &found) && IsBuiltName(found.wcName)) {
        DeleteFound(found);
    }
}

/* Deletes the driver's settings in one profile. The rows are read from the file that was judged. */
void DeleteProfileSettings(const WCHAR* tcProfile, const WCHAR* wcDriver, const WCHAR* wcFile)
{
    SettingsFolder folder;
    WCHAR tcPath[PATH_CHARS];
    FoundFile found;
    OwnedBlock<WatermarkEntry> pRows;
    if (!FindSettingsFolder(tcProfile, wcDriver, &folder) || !PathInFolder(tcPath, folder.tcPath, wcFile) ||
        !FindFileIn(folder, tcPath, GENERIC_READ, &found) || !SameFileName(found.wcName, wcFile)) {
        return;
    }
    i32 nRows = ReadWatermarks(ReadProfile(found.hFile.get()), &pRows);
    for (i32 i = 0; i < nRows; i++) {
        DeleteBuiltFile(folder, pRows.get()[i].WMFileName);
        DeleteBuiltFile(folder, pRows.get()[i].WMColorFile);
    }
    if (FindFileIn(folder, tcPath, DELETE, &found) && SameFileName(found.wcName, wcFile)) {
        DeleteFound(found);
    }
}

/* A folder that is one, and not a link to one. */
int IsPlainFolder(DWORD dwAttributes)
{
    return dwAttributes & FILE_ATTRIBUTE_DIRECTORY && !(dwAttributes & FILE_ATTRIBUTE_REPARSE_POINT);
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

int GetUserProfile(WCHAR* tcOut)
{
    DWORD cch = GetEnvironmentVariableW(TEXT("USERPROFILE"), tcOut, PATH_CHARS);
    if (cch >= PATH_CHARS) {
        cch = 0;
    }
    tcOut[cch] = 0;
    return cch != 0;
}

/* The folder of all profiles: the user's own without its last name. 1 when it can be had. */
int GetProfilesFolder(WCHAR* tcOut)
{
    if (!GetUserProfile(tcOut)) {
        return 0;
    }
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
    ForgetUserSettings(call);
    return !pRecord || WritePrinterSettings(tcPath, pRecord, usLanguage);
}

void DeleteUserSettings(PrinterCall& call)
{
    WCHAR tcProfile[PATH_CHARS], wcDriver[PATH_CHARS], wcFile[PATH_CHARS];
    if (GetDriverFolderName(call, wcDriver) && GetSettingsFileName(call, wcFile, PATH_CHARS) &&
        GetUserProfile(tcProfile)) {
        DeleteProfileSettings(tcProfile, wcDriver, wcFile);
    }
}

void DeleteAllSettings(PrinterCall& call)
{
    WCHAR tcProfiles[PATH_CHARS], tcProfile[PATH_CHARS], wcDriver[PATH_CHARS], wcFile[PATH_CHARS];
    if (!GetDriverFolderName(call, wcDriver) || !GetSettingsFileName(call, wcFile, PATH_CHARS) ||
        !GetProfilesFolder(tcProfiles) || !PathInFolder(tcProfile, tcProfiles, TEXT("*.*"))) {
        return;
    }
    WIN32_FIND_DATAW found = {};
    OwnedSearch hSearch(FindFirstFileW(tcProfile, &found));
    for (int bFound = IsOpen(hSearch.get()); bFound; bFound = FindNextFileW(hSearch.get(), &found)) {
        found.cFileName[PATH_CHARS - 1] = 0;
        if (IsPlainFolder(found.dwFileAttributes) && IsPlainName(found.cFileName) &&
            PathInFolder(tcProfile, tcProfiles, found.cFileName)) {
            DeleteProfileSettings(tcProfile, wcDriver, wcFile);
        }
    }
}

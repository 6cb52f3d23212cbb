/* Finds and deletes what is left of builds. A build that is under way is known by its event, which bears the name of its
   command file. */
#include "watermark/build_leftovers.h"

#include "base/file_name.h"
#include "base/format.h"
#include "watermark/watermark_rows.h"

namespace {

constexpr int STEMS_MOST = 64;  /* that are looked at each time */
constexpr int FILES_MOST = 512; /* of a folder that can be judged */
constexpr int STEM_DIGITS = 8;
constexpr int COPY_NAMES = 8;

/* The folder, and the rows in memory whose files stay. */
struct UserFiles {
    const WCHAR* wcFolder;
    const WatermarkEntry* pRows;
    i32 nRows;
};

/* Calls fnSees with the name of each plain file of the folder that the pattern finds, until it answers 0.
   Result: 0 when it did, or when there are more than FILES_MOST. */
template <class Seer> int EachFile(const WCHAR* wcFolder, const WCHAR* wcPattern, Seer fnSees)
{
    WCHAR tcPattern[PATH_CHARS];
    WIN32_FIND_DATAW found = {};
    if (!FormatWide(tcPattern, PATH_CHARS, TEXT("%s\\%s"), wcFolder, wcPattern)) {
        return 0;
    }
    HANDLE hSearch = FindFirstFileW(tcPattern, &found);
    if (hSearch == INVALID_HANDLE_VALUE) {
        return GetLastError() == ERROR_FILE_NOT_FOUND;
    }
    int nSeen = 0, bGoesOn = 1;
    do {
        constexpr DWORD NO_FILE = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT;
        found.cFileName[sizeof found.cFileName / sizeof(WCHAR) - 1] = 0;
        if (!(found.dwFileAttributes & NO_FILE)) {
            bGoesOn = nSeen++ < FILES_MOST && fnSees(static_cast<const WCHAR*>(found.cFileName));
        }
    } while (bGoesOn && FindNextFileW(hSearch, &found));
    FindClose(hSearch);
    return bGoesOn;
}

int EndsIn(const WCHAR* wcName, const WCHAR* wcEnding)
{
    int nAt = WideLength(wcName) - WideLength(wcEnding);
    return nAt > 0 && SameFileName(wcName + nAt, wcEnding);
}

/* 1 for eight hexadecimal digits and ".INI"; the digits' value goes to *pulStem. */
int IsCommandName(const WCHAR* wcName, u32* pulStem)
{
    u32 ulStem = 0;
    for (int i = 0; i < STEM_DIGITS; i++) {
        WCHAR wcDigit = Capital(wcName[i]);
        int bLetter = wcDigit >= 'A' && wcDigit <= 'F';
        if (!bLetter && (wcDigit < '0' || wcDigit > '9')) {
            return 0;
        }
        ulStem = ulStem << 4 | static_cast<u32>(bLetter ? wcDigit - 'A' + 10 : wcDigit - '0');
    }
    *pulStem = ulStem;
    return SameFileName(wcName + STEM_DIGITS, TEXT(".INI"));
}

/* 1 when a build waits on this command file. Only an event that is certainly not there says that none does. */
int IsUnderWay(u32 ulStem)
{
    WCHAR wcEvent[TEXT_CHARS];
    FormatWide(wcEvent, TEXT_CHARS, TEXT("%08lX.INI"), ulStem);
    OwnedFile hEvent(OpenEventW(SYNCHRONIZE, 0, wcEvent));
    return hEvent || GetLastError() != ERROR_FILE_NOT_FOUND;
}

/* 1 when the text is that of a command file, or as much of one as reached the disk: zeros stand for the rest, and half of
   the mark in front reads as one character beyond ASCII. */
int IsCommandText(TextSpan text)
{
    const WCHAR* wcHead = TEXT("[MAKEWM]");
    u32 nMark = text.nLength && text.pText[0] > 0x7F;
    for (u32 i = 0; nMark + i < text.nLength && wcHead[i] && text.pText[nMark + i]; i++) {
        if (Capital(text.pText[nMark + i]) != wcHead[i]) {
            return 0;
        }
    }
    return 1;
}

int NamesFile(const WatermarkEntry* pRows, i32 nRows, const WCHAR* wcName)
{
    for (i32 i = 0; i < nRows; i++) {
        if (SameFileName(BehindLast(pRows[i].WMFileName, '\\'), wcName) ||
            SameFileName(BehindLast(pRows[i].WMColorFile, '\\'), wcName)) {
            return 1;
        }
    }
    return 0;
}

/* 1 when a list names the file, or may: one that cannot be read. */
int IsKept(const UserFiles& files, const WCHAR* wcName)
{
    return NamesFile(files.pRows, files.nRows, wcName) ||
           !EachFile(files.wcFolder, TEXT("*"), [&](const WCHAR* wcOther) -> int {
               WCHAR tcPath[PATH_CHARS];
               OwnedBlock<WatermarkEntry> pRows;
               if (EndsIn(wcOther, TEXT(".WM")) || EndsIn(wcOther, TEXT(".CWM")) ||
                   EndsIn(wcOther, TEXT(".INI"))) {
                   return 1;
               }
               if (!FormatWide(tcPath, PATH_CHARS, TEXT("%s\\%s"), files.wcFolder, wcOther)) {
                   return 0;
               }
               ProfileFile file = OpenProfile(tcPath);
               i32 nRows = ReadWatermarks(file, &pRows);
               return file.state == PROFILE_READ && pRows && !NamesFile(pRows.get(), nRows, wcName);
           });
}

/* 1 when nothing bears the path any more. */
int DeleteLeftover(const WCHAR* tcPath)
{
    return DeleteFileW(tcPath) || GetLastError() == ERROR_FILE_NOT_FOUND;
}

/* The built files first and the command file last: what is cut short here is found again. */
void DropBuild(const UserFiles& files, u32 ulStem)
{
    WCHAR tcCommand[PATH_CHARS], tcPath[PATH_CHARS];
    if (!BuildPath(files.wcFolder, ulStem, TEXT("INI"), tcCommand) || IsUnderWay(ulStem)) {
        return;
    }
    ProfileFile file = OpenProfile(tcCommand);
    if (file.state != PROFILE_READ || !IsCommandText(TextOf(file))) {
        return;
    }
    int bGone = 1;
    for (const WCHAR* wcExtension : {TEXT("WM"), TEXT("CWM")}) {
        if (BuildPath(files.wcFolder, ulStem, wcExtension, tcPath) &&
            GetFileAttributesW(tcPath) != INVALID_FILE_ATTRIBUTES &&
            !IsKept(files, BehindLast(tcPath, '\\'))) {
            bGone &= DeleteLeftover(tcPath);
        }
    }
    for (int nCopy = 0; nCopy < COPY_NAMES; nCopy++) {
        if (FormatWide(tcPath, PATH_CHARS, TEXT("%s.~%d"), static_cast<const WCHAR*>(tcCommand), nCopy)) {
            bGone &= DeleteLeftover(tcPath);
        }
    }
    if (bGone) {
        DeleteFileW(tcCommand);
    }
}

} // namespace

int BuildPath(const WCHAR* wcFolder, u32 ulStem, const WCHAR* wcExtension, WCHAR (&tcOut)[PATH_CHARS])
{
    if (!FormatWide(tcOut, PATH_CHARS, TEXT("%s\\%08lX.%s"), wcFolder, ulStem, wcExtension)) {
        tcOut[0] = 0;
    }
    return tcOut[0] != 0;
}

void DropBuildLeftovers(const WCHAR* wcUserFolder, const WatermarkEntry* pRows, i32 nRows)
{
    u32 aulStems[STEMS_MOST];
    int nStems = 0;
    EachFile(wcUserFolder, TEXT("*.INI"), [&](const WCHAR* wcName) {
        nStems += IsCommandName(wcName, aulStems + nStems);
        return nStems < STEMS_MOST;
    });
    for (int i = 0; i < nStems; i++) {
        DropBuild({wcUserFolder, pRows, nRows}, aulStems[i]);
    }
}

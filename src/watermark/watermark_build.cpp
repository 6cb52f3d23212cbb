/* Writes the command file, runs the builder and takes its answer. */
#include "watermark/watermark_build.h"

#include <cstring>

#include "base/format.h"
#include "base/short_path.h"
#include "base/started_program.h"
#include "description/driver_files.h"
#include "profile/profile_values.h"
#include "profile/section_file.h"
#include "watermark/build_leftovers.h"

namespace {

constexpr int NAME_TRIES = 16;
constexpr int READS_MOST = 100; /* without an event */
constexpr u32 WAIT_SLICE = 50;  /* milliseconds between two paintings */
constexpr int RELEASE_TRIES = 10;
constexpr DWORD RELEASE_MILLISECONDS = 20;
constexpr i32 NO_SAY = -1; /* a number that the builder has not written yet */

struct BuilderAnswer {
    i32 lWidth, lHeight, lResult, lFontChange;
};

/* One call's names and what it has found out. */
struct BuildRun {
    u32 ulStem;
    WCHAR tcCommand[PATH_CHARS];
    WCHAR tcBuilder[PATH_CHARS]; /* "": there is none */
    OwnedFile hCommand;          /* open while the command file is being made */
};

int IsThere(const WCHAR* tcPath)
{
    return GetFileAttributesW(tcPath) != INVALID_FILE_ATTRIBUTES;
}

/* The colour as the grey of its lightness. */
u32 GreyOf(u32 ulColor)
{
    u32 ulRed = ulColor & 0xFF, ulGreen = ulColor >> 8 & 0xFF, ulBlue = ulColor >> 16 & 0xFF;
    return (155 * ulGreen + 27 * ulBlue + 74 * ulRed) / 256 * 0x010101;
}

void WriteNumber(SectionLines* pLines, const WCHAR* wcKey, u32 ulValue)
{
    WriteProfileLong(pLines, wcKey, static_cast<i32>(ulValue));
}

void WriteTextKeys(SectionLines* pLines, const WatermarkEntry& row, u32 ulColor)
{
    WriteProfileText(pLines, TEXT("text.String"), row.WMString, 64);
    WriteProfileText(pLines, TEXT("text.Face"), row.WMFace, 32);
    WriteNumber(pLines, TEXT("text.CharSet"), row.WMCharSet);
    WriteNumber(pLines, TEXT("text.Outline"), row.WMOutline);
    WriteProfileLong(pLines, TEXT("text.PtSize"), row.WMSize);
    WriteNumber(pLines, TEXT("text.Color"), ulColor);
    WriteNumber(pLines, TEXT("text.Bold"), row.WMBold);
    WriteNumber(pLines, TEXT("text.Italic"), row.WMItalic);
    WriteNumber(pLines, TEXT("text.AutoFontChange"), 0);
    WriteNumber(pLines, TEXT("text.RightToLeft"), row.WMRTL);
}

/* What is to be made at tcOutput. The second run of a text takes back what the first has said of its font. */
void WriteCommand(SectionLines* pLines, const WatermarkBuild& build, const WatermarkEntry& row,
                  const WCHAR* tcOutput, int bSecond)
{
    int bImageDriver = build.usLanguage == 3;
    WriteProfileText(pLines, TEXT("Printer"), build.wcPrinterName, PATH_CHARS);
    WriteProfileText(pLines, TEXT("OutputFile"), tcOutput, PATH_CHARS);
    WriteNumber(pLines, TEXT("Type"), row.WMType);
    WriteNumber(pLines, TEXT("Resolution"), row.WMResolution);
    WriteNumber(pLines, TEXT("ImageDriver"), static_cast<u32>(bImageDriver));
    WriteNumber(pLines, TEXT("Angle"), row.WMAngle);
    if (row.WMType == ENTRY_IMAGE) {
        WriteProfileText(pLines, TEXT("image.File"), row.WMImageName, PATH_CHARS);
        WriteNumber(pLines, TEXT("image.Scale.x"), row.WMScaleX);
        WriteNumber(pLines, TEXT("image.Scale.y"), row.WMScaleY);
    } else {
        WriteTextKeys(pLines, row, bSecond || bImageDriver ? row.WMColor : GreyOf(row.WMColor));
    }
    for (const WCHAR* wcKey : {TEXT("Size.x"), TEXT("Size.y"), TEXT("Result")}) {
        WriteProfileLong(pLines, wcKey, NO_SAY);
    }
    if (bSecond && row.WMType == ENTRY_TEXT) {
        WriteNumber(pLines, TEXT("text.FontChange"), 0);
    }
}

/* Takes the first tick from now on of which no file bears the name, and makes the command file. 0 when there is none. */
int ReserveNames(const WatermarkBuild& build, BuildRun* pRun, WCHAR (&tcOutput)[PATH_CHARS])
{
    u32 ulStem = GetTickCount();
    for (int nTry = 0; nTry < NAME_TRIES; nTry++, ulStem++) {
        WCHAR tcColor[PATH_CHARS];
        if (!BuildPath(build.wcUserFolder, ulStem, TEXT("CWM"), tcColor) ||
            !BuildPath(build.wcUserFolder, ulStem, TEXT("WM"), tcOutput) ||
            !BuildPath(build.wcUserFolder, ulStem, TEXT("INI"), pRun->tcCommand)) {
            return 0;
        }
        if (IsThere(tcColor) || IsThere(tcOutput)) {
            continue;
        }
        pRun->hCommand.reset(CreateFileW(pRun->tcCommand, GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_NEW,
                                         FILE_ATTRIBUTE_NORMAL, nullptr));
        if (IsOpen(pRun->hCommand.get())) {
            pRun->ulStem = ulStem;
            return 1;
        }
        if (!IsThere(pRun->tcCommand)) {
            return 0;
        }
    }
    return 0;
}

int WriteAll(HANDLE hFile, const WCHAR* pText, u32 nLength)
{
    DWORD cb = static_cast<DWORD>(nLength * sizeof(WCHAR)), cbWritten = 0;
    return WriteFile(hFile, pText, cb, &cbWritten, nullptr) && cbWritten == cb;
}

/* Fills the command file that was just made. It need not reach the disk: one that a power loss has torn is known, too. */
int FillCommandFile(BuildRun* pRun, const SectionLines& lines)
{
    static const WCHAR wcHead[] = {0xFEFF, '[', 'M', 'A', 'K', 'E', 'W', 'M', ']', '\r', '\n'};
    HANDLE hFile = pRun->hCommand.get();
    int bDone = !lines.bShort && WriteAll(hFile, wcHead, sizeof wcHead / sizeof wcHead[0]) &&
                WriteAll(hFile, lines.pText.get(), lines.nLength);
    pRun->hCommand.reset();
    return bDone;
}

/* Deletes the command file. A builder that has just reported may still have it open. */
void DeleteCommandFile(const BuildRun& run)
{
    for (int nTry = 0; !DeleteFileW(run.tcCommand) && nTry < RELEASE_TRIES; nTry++) {
        if (GetLastError() != ERROR_SHARING_VIOLATION) {
            return;
        }
        Sleep(RELEASE_MILLISECONDS);
    }
}

/* Waits until the builder says that it is done, in slices between which the caller may paint. 0 when waiting is not
   possible. */
int AwaitBuilder(HANDLE hEvent, const WatermarkBuild& build)
{
    u32 ulBegun = GetTickCount(), ulGone = 0;
    while (ulGone < BUILDER_MILLISECONDS) {
        u32 ulLeft = BUILDER_MILLISECONDS - ulGone;
        DWORD dwWaited = WaitForSingleObject(hEvent, ulLeft < WAIT_SLICE ? ulLeft : WAIT_SLICE);
        if (dwWaited != WAIT_TIMEOUT) {
            return dwWaited == WAIT_OBJECT_0;
        }
        build.pfnWaiting(build.pContext);
        ulGone = GetTickCount() - ulBegun;
    }
    return 1;
}

/* 0 when the file cannot be read for want of memory. */
int ReadAnswer(const BuildRun& run, BuilderAnswer* pAnswer)
{
    ProfileFile file = OpenProfile(run.tcCommand);
    ProfileSection section = OpenSection(file, COMMAND_SECTION);
    pAnswer->lWidth = ReadProfileInt(section, TEXT("Size.x"), NO_SAY);
    pAnswer->lHeight = ReadProfileInt(section, TEXT("Size.y"), NO_SAY);
    pAnswer->lResult = ReadProfileInt(section, TEXT("Result"), NO_SAY);
    pAnswer->lFontChange = ReadProfileInt(section, TEXT("text.FontChange"), 0);
    return !section.bShort;
}

/* The event of this call's runs. One that is there already at the first run is somebody else's: none then. */
OwnedFile MakeEvent(const BuildRun& run, int bSecond)
{
    OwnedFile hEvent(CreateEventW(nullptr, 0, 0, BehindLast(run.tcCommand, '\\')));
    if (hEvent && GetLastError() == ERROR_ALREADY_EXISTS && !bSecond) {
        hEvent.reset();
    }
    return hEvent;
}

enum RunOutcome : int { RUN_DONE, RUN_NOT_STARTED, RUN_REFUSED /* memory or the disk did not suffice */ };

/* One run of the builder on the command file as it stands. */
RunOutcome RunBuilder(const WatermarkBuild& build, const BuildRun& run, int bSecond, BuilderAnswer* pAnswer)
{
    OwnedFile hEvent = MakeEvent(run, bSecond);
    if (!StartProgram(run.tcBuilder, run.tcCommand, SW_HIDE)) {
        return RUN_NOT_STARTED;
    }
    int bWaited = hEvent && AwaitBuilder(hEvent.get(), build);
    hEvent.reset();
    for (int nReads = bWaited ? 1 : READS_MOST; nReads > 0; nReads--) {
        if (!ReadAnswer(run, pAnswer)) {
            return RUN_REFUSED;
        }
        if (pAnswer->lWidth != NO_SAY && pAnswer->lHeight != NO_SAY && pAnswer->lResult != NO_SAY) {
            break;
        }
    }
    return RUN_DONE;
}

/* The colour file: the monochrome one, none, or one of its own that a second run makes. */
RunOutcome BuildColorFile(const WatermarkBuild& build, const BuildRun& run, WatermarkEntry* pRow)
{
    if (build.usLanguage == 3 || build.usLanguage == 4) {
        std::memcpy(pRow->WMColorFile, pRow->WMFileName, sizeof pRow->WMColorFile);
        return RUN_DONE;
    }
    if (build.bTrial || (build.usColorClass != 0 && build.usColorClass != 42)) {
        return RUN_DONE;
    }
    SectionLines lines = {};
    BuilderAnswer ignored = {};
    BuildPath(build.wcUserFolder, run.ulStem, TEXT("CWM"), pRow->WMColorFile);
    ShortPathName(pRow->WMColorFile, PATH_CHARS);
    WriteCommand(&lines, build, *pRow, pRow->WMColorFile, 1);
    return ReplaceSection(run.tcCommand, COMMAND_SECTION, lines) ? RunBuilder(build, run, 1, &ignored)
                                                                 : RUN_REFUSED;
}

/* Deletes files that no list keeps: a trial's, and those without sizes, whose names a settings file drops. 0 when one
   could not be deleted. */
int DropUnkeptFiles(const BuildRun& run, const WatermarkBuild& build, const WatermarkEntry& row)
{
    int bGone = 1;
    if (build.bTrial || !row.WMResolution || !row.WMWidth || !row.WMHeight) {
        for (const WCHAR* wcExtension : {TEXT("WM"), TEXT("CWM")}) {
            WCHAR tcPath[PATH_CHARS];
            BuildPath(build.wcUserFolder, run.ulStem, wcExtension, tcPath);
            bGone &= DeleteFileW(tcPath) || GetLastError() == ERROR_FILE_NOT_FOUND;
        }
    }
    return bGone;
}

void ForgetFiles(WatermarkEntry* pRow)
{
    std::memset(pRow->WMFileName, 0, sizeof pRow->WMFileName);
    std::memset(pRow->WMColorFile, 0, sizeof pRow->WMColorFile);
    pRow->WMWidth = pRow->WMHeight = 0;
}

} // namespace

int RunWatermarkBuild(PrinterCall& call, const WatermarkBuild& build, WatermarkEntry* pRow)
{
    BuildRun run = {};
    BuilderAnswer answer = {};
    SectionLines lines = {};
    DropBuildLeftovers(build.wcUserFolder, build.pRows, build.nRows);
    ForgetFiles(pRow);
    pRow->WMResolution = build.usResolution;
    if (!ReserveNames(build, &run, pRow->WMFileName)) {
        ForgetFiles(pRow);
        return 0;
    }
    ShortPathName(pRow->WMFileName, PATH_CHARS);
    WriteCommand(&lines, build, *pRow, pRow->WMFileName, 0);
    FindDriverFile(call, TEXT("MakeWM"), TEXT("MRK.EXE"), run.tcBuilder);
    RunOutcome outcome = FillCommandFile(&run, lines) ? RunBuilder(build, run, 0, &answer) : RUN_REFUSED;
    if (outcome == RUN_NOT_STARTED) {
        return 0; /* the command file stays, so that one sees what was asked of whom */
    }
    if (outcome == RUN_DONE) {
        pRow->WMWidth = static_cast<u32>(answer.lWidth);
        pRow->WMHeight = static_cast<u32>(answer.lHeight);
        pRow->bWMStale = pRow->WMType == ENTRY_TEXT ? static_cast<u32>(answer.lFontChange) : pRow->bWMStale;
        outcome = BuildColorFile(build, run, pRow);
    }
    if (outcome == RUN_REFUSED) {
        ForgetFiles(pRow);
    }
    if (DropUnkeptFiles(run, build, *pRow) && outcome != RUN_NOT_STARTED) {
        DeleteCommandFile(run); /* else the next build has to find what is left by it */
    }
    return outcome == RUN_DONE ? answer.lResult : 0;
}

/* The sheets in the system's own host. Variables beside those of end_to_end_test.cpp: TQUI_SHEET_CYCLES, how often the
   test of what is held opens and closes one (50). */
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include "description/control_ids.h"
#include "help_standin.h"
#include "page_user.h"
#include "settings/driver_devmode.h"
#include "sheet_user.h"

namespace {

using Record = std::vector<BYTE>;

constexpr size_t cbRecord = 4088, nCopiesAt = 86; /* dmCopies */

DEVMODEW* AsDevmode(Record& record)
{
    return reinterpret_cast<DEVMODEW*>(record.data());
}

/* What the sheet edits when it gets no record. */
Record Current(const InstalledPrinter& printer)
{
    Record record(cbRecord);
    const SheetVisit visit = VisitDocumentSheet(printer, AsDevmode(record), nullptr, PressCancel);
    EXPECT_TRUE(visit.bShown);
    return record;
}

/* Wine tells 0 where a system counts: so objects are made until there is no room for one more. */
template <class Make, class Drop> size_t RoomFor(Make make, Drop drop)
{
    constexpr size_t LIMIT = 0x20000; /* beyond any table of handles */
    std::vector<decltype(make())> made;
    while (made.size() < LIMIT) {
        const auto hObject = make();
        if (!hObject) {
            break;
        }
        made.push_back(hObject);
    }
    for (const auto hObject : made) {
        drop(hObject);
    }
    return made.size();
}

/* Open handles of the process. */
size_t CountHandles()
{
    struct Row {
        void* pObject;
        ULONG_PTR ulProcess, ulHandle;
        ULONG ulAccess;
        USHORT usTrace, usType;
        ULONG ulAttributes, ulReserved;
    };
    using Query = LONG(WINAPI*)(int, void*, ULONG, ULONG*);
    constexpr int EXTENDED_HANDLES = 64;
    const auto fnQuery = reinterpret_cast<Query>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtQuerySystemInformation")));
    std::vector<BYTE> block(4 << 20);
    ULONG cb = 0;
    if (fnQuery(EXTENDED_HANDLES, block.data(), static_cast<ULONG>(block.size()), &cb) != 0) {
        return 0;
    }
    const ULONG_PTR nRows = *reinterpret_cast<const ULONG_PTR*>(block.data());
    const auto* pRows = reinterpret_cast<const Row*>(block.data() + 2 * sizeof(ULONG_PTR));
    size_t nHandles = 0;
    for (ULONG_PTR n = 0; n < nRows; n++) {
        nHandles += pRows[n].ulProcess == GetCurrentProcessId();
    }
    return nHandles;
}

struct Held {
    size_t nHandles, nGdiRoom, nUserRoom;
};

Held CountHeld()
{
    return {CountHandles(), RoomFor([] { return CreateSolidBrush(1); }, [](HBRUSH h) { DeleteObject(h); }),
            RoomFor([] { return CreateMenu(); }, [](HMENU h) { DestroyMenu(h); })};
}

/* Without a window manager Wine waits for one whenever a window goes. Read when the first window is made. */
class WithoutManager : public ::testing::Environment {
    void SetUp() override
    {
        RegSetKeyValueW(HKEY_CURRENT_USER, L"Software\\Wine\\AppDefaults\\end_to_end_test.exe\\X11 Driver",
                        L"Managed", REG_SZ, L"N", 4);
    }
};
[[maybe_unused]] const auto* pEnvironment = ::testing::AddGlobalTestEnvironment(new WithoutManager);

} // namespace

/* The tabs of both sheets, in the user's language, with the texts of the library on them; all samples' are held by the
   hosted tests. */
TEST(Sheets, ShowTheirPages)
{
    const bool bGerman = PRIMARYLANGID(GetUserDefaultLangID()) == LANG_GERMAN;
    using Names = std::vector<std::wstring>;
    for (const char* cModel : {"T410A", "QPS"}) {
        SCOPED_TRACE(cModel);
        const InstalledPrinter printer = Install(cModel);
        const bool bFonts = std::string(cModel) == "T410A";
        Record record(cbRecord);
        Names tabs, labels, deviceTabs;
        EXPECT_TRUE(VisitDocumentSheet(printer, AsDevmode(record), nullptr, [&](HWND hSheet) {
                        tabs = SheetTabs(hSheet);
                        for (size_t n = 0; n < tabs.size(); n++) {
                            labels.push_back(
                                ControlText(ShowTab(hSheet, static_cast<int>(n)), IDC_PRESET_APPLY));
                        }
                        PressOk(hSheet);
                    }).bShown);
        EXPECT_TRUE(VisitDeviceSheet(printer, [&](HWND hSheet) {
                        deviceTabs = SheetTabs(hSheet);
                        PressCancel(hSheet);
                    }).bShown);
        EXPECT_EQ(tabs.size(), bFonts ? 5u : 4u);
        EXPECT_EQ(std::ranges::count(labels, std::wstring()), 0);
        if (!bGerman) {
            tabs.resize(4);
            EXPECT_EQ(tabs, (Names{L"Layout", L"Paper", L"Quality", L"Watermarks"}));
            EXPECT_EQ(labels[0], L"Apply Preset");
        }
        EXPECT_EQ(deviceTabs,
                  Names{bGerman ? (bFonts ? L"Schriften" : L"Info") : (bFonts ? L"Fonts" : L"About")});
    }
}

/* The record comes back through the host: merged from what went in, whichever way the sheet is left. */
TEST(Sheets, GiveTheRecordBack)
{
    const InstalledPrinter printer = Install("T410A");
    const Record current = Current(printer);
    Record in = current;
    in[nCopiesAt] = 7;
    for (const SheetUser& leave : {SheetUser(PressOk), SheetUser(PressCancel)}) {
        Record out(cbRecord, 0xA5);
        EXPECT_TRUE(VisitDocumentSheet(printer, AsDevmode(out), AsDevmode(in), leave).bShown);
        EXPECT_EQ(out, in);
    }
    Record refused = in, wanted = in, out(cbRecord, 0xA5);
    refused[68] = 0; /* dmSpecVersion */
    EXPECT_TRUE(VisitDocumentSheet(printer, AsDevmode(out), AsDevmode(refused), PressOk).bShown);
    EXPECT_EQ(out, current);
}

/* A user chooses both sides and two pages a sheet; the application finds that in the record. */
TEST(Sheets, StoreWhatTheUserChooses)
{
    const InstalledPrinter printer = Install("K100");
    Record out(cbRecord);
    std::string fault = "never shown";
    VisitDocumentSheet(printer, AsDevmode(out), nullptr, [&](HWND hSheet) {
        fault = DoSteps(hSheet,
                        "page 0,click LAYOUT_LONG_EDGE,pick LAYOUT_PAGES 2,page 1,type PAPER_COPIES 3,page 2,"
                        "keys QUALITY_CONTRAST -51,type QUALITY_BRIGHTNESS -,pick QUALITY_SCREENING 3,"
                        "open QUALITY_COLOR_FILES,pick FILES_PROFILE 1,pick FILES_FORMAT 2,end FILES_OK");
        PressOk(hSheet);
    });
    EXPECT_EQ(fault, "");
    const auto* pRecord = reinterpret_cast<const DriverDevmode*>(out.data());
    EXPECT_EQ(pRecord->dmDuplex, 2);
    EXPECT_EQ(pRecord->dmCopies, 3);
    EXPECT_EQ(pRecord->rPrivate.lPagesPerSheet, 2);
    EXPECT_EQ(pRecord->rPrivate.sContrast, -50);
    EXPECT_EQ(pRecord->rPrivate.sBrightness, 0);
    EXPECT_EQ(pRecord->rPrivate.sScreening, 3);
    EXPECT_EQ(pRecord->rPrivate.dwColorFormat, 2u);
}

/* The preset's button, and help by the key and by the menu, which reach the control that is registered. */
TEST(Sheets, BringAPresetAndHelp)
{
    WCHAR tcControl[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, tcControl, MAX_PATH);
    const std::wstring tcHelp = std::filesystem::path(tcControl).replace_filename("HELP.OCX").wstring();
    RegSetKeyValueW(HKEY_LOCAL_MACHINE,
                    L"SOFTWARE\\Classes\\CLSID\\{ADB880A6-D8FF-11CF-9377-00AA003B7A11}\\InprocServer32",
                    nullptr, REG_SZ, tcHelp.c_str(), static_cast<DWORD>((tcHelp.size() + 1) * sizeof(WCHAR)));
    const auto fnLast = reinterpret_cast<LastHelpRoutine>(
        reinterpret_cast<void*>(GetProcAddress(LoadLibraryW(tcHelp.c_str()), "GetLastHelp")));
    ASSERT_TRUE(fnLast);
    std::filesystem::create_directories("C:\\TEMP");
    std::ofstream("C:\\TEMP\\tqui_test.ini") << "[PrinterSettings]\nPagesPerSheet=4\nCopies=3\n";
    const InstalledPrinter printer = Install("K100");
    Record out(cbRecord);
    std::string fault = "never shown";
    std::wstring asked;
    VisitDocumentSheet(printer, AsDevmode(out), nullptr, [&](HWND hSheet) {
        fault = DoSteps(hSheet, "page 0,click PRESET_APPLY");
        for (const char* cStep : {"help LAYOUT_TYPE", "page 1,menu PAPER_COLLATE"}) {
            fault += DoSteps(hSheet, cStep);
            asked += std::to_wstring(fnLast()->uCommand) + L":" + std::to_wstring(fnLast()->dwTopic) + L" " +
                     std::filesystem::path(fnLast()->wcPath).filename().wstring() + L" ";
        }
        PressOk(hSheet);
    });
    std::filesystem::remove("C:\\TEMP\\tqui_test.ini");
    EXPECT_EQ(fault, "");
    EXPECT_EQ(asked, L"17:124 veldtopics.txt 16:104 veldtopics.txt ");
    const auto* pRecord = reinterpret_cast<const DriverDevmode*>(out.data());
    EXPECT_EQ(pRecord->dmCopies, 3);
    EXPECT_EQ(pRecord->rPrivate.lPagesPerSheet, 4);
}

/* What the printer cannot do keeps the sheet, below a notice. */
TEST(Sheets, StayWhenThePrinterRefuses)
{
    const InstalledPrinter printer = Install("T410A");
    Record out(cbRecord);
    std::string fault = "never shown";
    bool bKept = false;
    VisitDocumentSheet(printer, AsDevmode(out), nullptr, [&](HWND hSheet) {
        fault = DoSteps(hSheet, "page 0,click LAYOUT_LONG_EDGE");
        PressOk(hSheet);
        for (int n = 0; n < 2000 && UppermostWindow(hSheet) == hSheet; n++) {
            Sleep(5);
        }
        fault += DoSteps(hSheet, "end NOTICE_OK");
        Sleep(200);
        bKept = IsWindow(hSheet) && IsWindowVisible(hSheet);
        PressCancel(hSheet);
    });
    EXPECT_EQ(fault, "");
    EXPECT_TRUE(bKept);
}

/* Nothing stays behind a sheet. */
TEST(Sheets, HoldNothingWhenTheyAreClosed)
{
    const char* cCycles = std::getenv("TQUI_SHEET_CYCLES");
    const int nCycles = cCycles ? std::atoi(cCycles) : 50;
    ASSERT_GE(nCycles, 20);
    const InstalledPrinter printer = Install("T410A");
    Record record(cbRecord);
    auto visit = [&] {
        return VisitDocumentSheet(printer, AsDevmode(record), nullptr,
                                  [](HWND hSheet) {
                                      for (int n = 0; n < 5; n++) {
                                          ShowTab(hSheet, n);
                                      }
                                      PressOk(hSheet);
                                  })
            .bShown;
    };
    for (int n = 0; n < 5; n++) { /* what the system keeps for itself after the first ones */
        ASSERT_TRUE(visit());
    }
    const Held before = CountHeld();
    {
        const HBRUSH hBrush = CreateSolidBrush(2); /* the counts count */
        const HMENU hMenu = CreateMenu();
        const HANDLE hEvent = CreateEventW(nullptr, FALSE, FALSE, nullptr);
        const Held more = CountHeld();
        EXPECT_EQ(more.nGdiRoom + 1, before.nGdiRoom);
        EXPECT_EQ(more.nUserRoom + 1, before.nUserRoom);
        EXPECT_EQ(more.nHandles, before.nHandles + 1);
        DeleteObject(hBrush);
        DestroyMenu(hMenu);
        CloseHandle(hEvent);
    }
    /* The system keeps drawing objects now and then, and stops. What a sheet leaves behind shows in every stretch. */
    constexpr int STRETCH = 10;
    size_t nRoom = before.nGdiRoom, nLeastLost = nRoom;
    for (int n = 1; n <= nCycles; n++) {
        ASSERT_TRUE(visit()) << n;
        if (n % STRETCH == 0) {
            const size_t nLeft = CountHeld().nGdiRoom;
            nLeastLost = std::min(nLeastLost, nRoom > nLeft ? nRoom - nLeft : 0);
            nRoom = nLeft;
        }
    }
    const Held after = CountHeld();
    std::printf(
        "%d sheets: handles %zu to %zu, room for GDI objects %zu to %zu, for USER objects %zu to %zu\n",
        nCycles, before.nHandles, after.nHandles, before.nGdiRoom, after.nGdiRoom, before.nUserRoom,
        after.nUserRoom);
    EXPECT_EQ(nLeastLost, 0u) << "lost in each stretch of " << STRETCH << " sheets";
    EXPECT_EQ(after.nHandles, before.nHandles);
    EXPECT_EQ(after.nUserRoom, before.nUserRoom);
}

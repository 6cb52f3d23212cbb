/* Presets, help and the web page: what no row of a script can say. */
#include <set>

#include "description/control_ids.h"
#include "settings/checks.h"
#include "settingsfile/settings_keys.h"
#include "sheet/help_topics.h"
#include "support/sheet_script.h"
#include "support/sweep.h"

namespace {

class PresetsTest : public SheetScript {
  protected:
    static constexpr const WCHAR* wcBrowser = u"HKCU\\SOFTWARE\\Classes\\http\\shell\\open\\command";

    void PutRow(const WideText& wcName, int nKind)
    {
        const LRESULT nRow = SendDlgItemMessageW(Page(0), IDC_PRESET, CB_ADDSTRING, 0,
                                                 reinterpret_cast<LPARAM>(wcName.c_str()));
        SendDlgItemMessageW(Page(0), IDC_PRESET, CB_SETITEMDATA, static_cast<WPARAM>(nRow), nKind);
        SendDlgItemMessageW(Page(0), IDC_PRESET, CB_SETCURSEL, static_cast<WPARAM>(nRow), 0);
    }

    void ShowAndPaintAll()
    {
        for (size_t nPage = 0; nPage < SheetPageCount(pSheet); nPage++) {
            ShowSheetPage(pSheet, nPage);
            PaintWindows(Page(nPage));
        }
    }
};

TEST_F(PresetsTest, PresetsGoByTheirScript)
{
    Play("presets.txt");
}

TEST_F(PresetsTest, HelpGoesByItsScript)
{
    Play("help.txt");
}

TEST_F(PresetsTest, RowsThatNameNoFileDoNothing)
{
    PutFile(u"C:\\TEMP\\z.ini", "[PrinterSettings]\nPagesPerSheet=4\n");
    Begin("T410A", "");
    const std::pair<WideText, int> aRows[] = {{u"..\\temp\\z", 7},
                                              {u"../temp/z", 7},
                                              {u"C:z", 7},
                                              {u"", 7},
                                              {u"z", 2},
                                              {u"z", 0},
                                              {u"z", 8},
                                              {WideText(260, u'z'), 7},
                                              {WideText(250, u'z'), 7},
                                              {u"none", 7}};
    for (const auto& [wcName, nKind] : aRows) {
        PutRow(wcName, nKind);
        Do("click PRESET_APPLY");
        EXPECT_EQ(Seen("lPagesPerSheet=") + Seen("changed="), "lPagesPerSheet=1changed=0") << Narrow(wcName);
    }
    PutRow(u"z", 7);
    Do("click PRESET_APPLY");
    EXPECT_EQ(Seen("lPagesPerSheet="), "lPagesPerSheet=4");
}

TEST_F(PresetsTest, AFolderOfFilesIsLookedAtWithinBounds)
{
    const std::string large = "[PrinterSettings]\n;" + std::string(0x3F0000, 'x');
    for (int i = 0; i < 7; i++) {
        PutFile(u"C:\\TEMP\\" + Widen("a" + std::to_string(i)) + u".ini", large);
    }
    for (int i = 0; i < 1010; i++) {
        PutFile(u"C:\\TEMP\\" + Widen("n" + std::to_string(i)) + u".tqs", "[Other]");
    }
    PutFile(u"C:\\TEMP\\z.tqs", "[PrinterSettings]");
    PutFile(u"C:\\TEMP\\c.ini", "[" + std::string(2046, 's') + "]\n[PrinterSettings]");
    PutFile(u"C:\\TEMP\\d.ini", "[" + std::string(2020, 's') + "]\n[PrinterSettings]");
    Begin("T410A", "");
    EXPECT_EQ(Presets(), "a0:7/a1:7/a2:7/a3:7/d:7/Factory_settings:1");
}

/* The button gives the model's own default, whatever the driver's .INI file and the sheet had; OK then gives what it gives
   for pages that were filled from that default at once. */
TEST_F(PresetsTest, TheFactorysRecordIsTheModelsAlone)
{
    for (const char* cSample : {"K100", "T410A", "T440B", "QP5", "QPS", "IX300"}) {
        AddSample(cSample);
        PutFile(wcDriverFolder + Widen(cSample) + u".INI", "[PrinterSettings]\nCopies=5\n");
        DriverDevmode built, stored[2];
        PrinterCall call(hPrinter);
        BuildDefaultRecord(call, wcPrinter.data(), &built, 0);
        for (const int bReset : {0, 1}) {
            OpenDocument();
            record = bReset ? record : built;
            record.dmCopies = bReset ? i16{7} : record.dmCopies;
            ReloadAll();
            ShowAndPaintAll();
            ShowSheetPage(pSheet, 0);
            if (bReset) {
                EXPECT_TRUE(ClickControl(Page(0), IDC_PRESET_APPLY));
                EXPECT_TRUE(DifferingFields(built, record).empty()) << cSample;
            }
            std::fill(Session()->bPageDirty, Session()->bPageDirty + SLOT_FONTS, 0u);
            Session()->bPageDirty[SLOT_LAYOUT] = Session()->bPageDirty[SLOT_PAPER] = 1;
            EXPECT_TRUE(PressSheetOk(pSheet)) << cSample;
            stored[bReset] = record;
        }
        EXPECT_EQ(std::memcmp(&stored[0], &stored[1], sizeof built), 0) << cSample;
    }
}

/* Every key of a file with the same value: all pages are shown, painted and applied, and what comes out passes the checks
   or is mended or refused by them. */
TEST_F(PresetsTest, HostileFilesStayWithinBounds)
{
    for (const char* cSample : {"K100", "T410A", "T440B", "IX300"}) {
        AddSample(cSample);
        for (const char* cValue : {"-1", "-32768", "65535", "2147483647", "-2147483648", "255", "\"\""}) {
            std::string text = "[PrinterSettings]\n";
            for (const auto& run : aKeyRuns) {
                for (int i = 0; i < run.nKeys; i++) {
                    text += Narrow(run.pKeys[i].wcKey) + "=" + cValue + "\n";
                }
            }
            PutFile(u"C:\\TEMP\\hostile.ini", text);
            OpenDocument();
            ShowAndPaintAll();
            ShowSheetPage(pSheet, 0);
            ClickControl(Page(0), IDC_PRESET_APPLY);
            EXPECT_EQ(Session()->bSettingsLoaded, 1u);
            ShowAndPaintAll();
            PressSheetApply(pSheet);
            Close();
            PrinterCall call(hPrinter);
            OwnedModel pModel = LoadPrinterModel(call);
            ValidatePublicPart(call, &record, pModel.get());
            ValidatePrivatePart(call, &record.rPrivate, pModel.get());
        }
    }
}

TEST_F(PresetsTest, EveryControlOfOursHasATopicOrIsKnownToHaveNone)
{
    std::set<int> withTopic;
    for (const HelpTopic* pRow = aHelpTopics; pRow->dwControl; pRow++) {
        EXPECT_NE(pRow->dwTopic, 0u) << pRow->dwControl;
        withTopic.insert(static_cast<int>(pRow->dwControl));
    }
    EXPECT_EQ(withTopic.size(), HELP_TOPIC_COUNT - 1u) << "one control stands there twice";
    std::set<std::string> without, listed;
    for (const auto& [name, nNumber] : ControlNumbers()) {
        withTopic.contains(nNumber) ? void() : void(without.insert(name));
    }
    for (const DataRow& row : ReadRows("controls_without_topic.txt")) {
        listed.insert(row[0]);
    }
    EXPECT_EQ(without, listed);
}

TEST_F(PresetsTest, OnlyWebAddressesAreOpened)
{
    std::vector<DataRow> rows = ReadRows("web_addresses.txt");
    rows.push_back({"yes", "http://" + std::string(248, 'a')}); /* 255 characters */
    rows.push_back({"no", "http://" + std::string(249, 'a')});
    for (const DataRow& row : rows) {
        AddTestPrinter(CompileSample("T410A", {{"commands.web", "\"" + row[1] + "\""}}));
        SetKeyValue(wcBrowser, u"", REG_SZ, Bytes{'b', 0});
        const size_t nBefore = StartedPrograms().size();
        OpenDocument();
        ASSERT_NE(Session(), nullptr);
        Do("ask LOGO");
        EXPECT_EQ(StartedPrograms().size() - nBefore, row[0] == "yes") << row[1];
        Close();
    }
    /* The line: 260 characters in all, the command's own end or not. */
    Begin("T410A", "");
    for (size_t cch : {221u, 222u, 260u, 261u}) {
        const WideText wcCommand(cch, u'b');
        const auto* pBytes = reinterpret_cast<const u8*>(wcCommand.data());
        SetKeyValue(wcBrowser, u"", REG_SZ, Bytes(pBytes, pBytes + cch * sizeof(WCHAR)));
        const size_t nBefore = StartedPrograms().size();
        Do("ask LOGO");
        EXPECT_EQ(StartedPrograms().size() - nBefore, cch == 221) << cch;
    }
}

/* Opening, a preset, help and the web page while single calls fail or lie: nothing is held behind them. */
TEST_F(PresetsTest, EachCallMayFail)
{
    AddSample("T410A");
    PutFile(u"C:\\TEMP\\z.ini", "[PrinterSettings]\nPagesPerSheet=4\n");
    SetKeyValue(wcBrowser, u"", REG_SZ, Bytes{'b', 0});
    SetHelpControl(u"C:\\Users\\worker\\hh.ocx");
    const WideText wcPath = u"%USERPROFILE%\\hh.ocx";
    const auto* pPath = reinterpret_cast<const u8*>(wcPath.c_str());
    SetKeyValue(u"HKLM\\SOFTWARE\\Classes\\CLSID\\{ADB880A6-D8FF-11CF-9377-00AA003B7A11}\\InprocServer32",
                u"", REG_EXPAND_SZ, Bytes(pPath, pPath + 2 * wcPath.size()));
    const auto body = [&]() -> std::string {
        ForgetHelpControl();
        OpenDocument();
        if (!Session() || !Page(0)) {
            Close();
            return "";
        }
        ClickControl(Page(0), IDC_PRESET_APPLY);
        const bool bRead = record.rPrivate.lPagesPerSheet == 4, bTold = Session()->bSettingsLoaded;
        for (int nControl : {IDC_LOGO, IDC_LAYOUT_TYPE}) {
            HELPINFO info = {sizeof info, HELPINFO_WINDOW, nControl, GetDlgItem(Page(0), nControl), 0, {}};
            SendMessageW(Page(0), WM_HELP, 0, reinterpret_cast<LPARAM>(&info));
        }
        RightClick(Page(0), 20, 20);
        Close();
        return bTold && !bRead ? "told a preset that was not read; " : "";
    };
    EXPECT_EQ(HoldsNothing(body), "");
    for (CallId call :
         {CALL_FindFirstFileW, CALL_FindNextFileW, CALL_RegOpenKeyExW, CALL_RegQueryValueExW,
          CALL_ExpandEnvironmentStringsW, CALL_LoadLibraryExW, CALL_GetProcAddress, CALL_EnumChildWindows,
          CALL_GetCursorPos, CALL_WideCharToMultiByte, CALL_WinExec, CALL_CreateFileW}) {
        const FaultSweep sweep = SweepFaults(call, FAIL_ONCE, 60, body);
        EXPECT_EQ(sweep.fault, "");
        EXPECT_GT(sweep.nFaults, 0) << CallName(call);
        for (LieKind kind : {LIE_SHORT, LIE_UNTERMINATED, LIE_GROWS, LIE_TYPE, LIE_HUGE}) {
            EXPECT_EQ(SweepLie(kind, call, body), "");
        }
    }
}

} // namespace

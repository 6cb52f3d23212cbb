/* A printer's life by its events: what each leaves with the printer, in the spooler and on the disk. */
#include "document/defaults.h"
#include "entry/font_file.h"
#include "places.h"
#include "settingsfile/settings_reader.h"
#include "support/event_machine.h"
#include "support/machine_script.h"
#include "support/power_cuts.h"
#include "tools/tq/machine_text.h"

namespace {

class PrinterEvents : public EventTest<MachineTest> {
  protected:
    Bytes Value(std::u16string_view wcValue)
    {
        DWORD dwType;
        Bytes bytes;
        GetPrinterValue(wcPrinter, wcValue, &dwType, &bytes);
        return bytes;
    }

    std::string Text(std::u16string_view wcValue)
    {
        Bytes bytes = Value(wcValue);
        WideText wcText(bytes.size() / 2, u'\0');
        std::copy(bytes.begin(), bytes.end(), reinterpret_cast<u8*>(wcText.data()));
        return Narrow(wcText.substr(0, wcText.find(u'\0')));
    }

    Bytes BuiltDefault()
    {
        DriverDevmode record;
        PrinterCall call(hPrinter);
        BuildDefaultRecord(call, wcPrinter.data(), &record, 1);
        const u8* pRecord = reinterpret_cast<const u8*>(&record);
        return Bytes(pRecord, pRecord + sizeof record);
    }

    std::vector<std::string> FormNames() const
    {
        std::vector<std::string> names;
        for (const MachineForm& form : MachineForms()) {
            names.push_back(Narrow(form.wcName));
        }
        return names;
    }
};

/* The lines that tell files' sizes are other tests' business. */
std::string WithoutFiles(const std::string& text)
{
    return text.substr(0, text.find("\nfile ") + 1);
}

} // namespace

TEST_F(PrinterEvents, InitializeLeavesWithEachSampleWhatItsDescriptionSays)
{
    for (const char* cStem : acSamples) {
        SCOPED_TRACE(cStem);
        DropMachineForms();
        SetPrintProcessors({"winprint=localspl.dll"});
        InstallSample(cStem);
        ASSERT_EQ(Raise(INITIALIZE), 1);
        Bytes golden = ReadDiskFile(std::string(TQUI_SOURCE_DIR "/tests/golden/install/") + cStem + ".txt");
        EXPECT_EQ(WithoutFiles(DescribePrinter(wcPrinter)) + "font file " +
                      std::to_string(GetFile(tcFontFile).size()) + " bytes\n",
                  std::string(golden.begin(), golden.end()));
        /* The stored record is the built default, and the user's file reads back into it. */
        EXPECT_EQ(GetPrinterSetup(wcPrinter).devmode, BuiltDefault());
        EXPECT_EQ(GetPrinterSetup(wcPrinter).nSecurityWrites, 0) << "rights are for who means to change them";
        EXPECT_TRUE(HasFile(UserFolder(u"worker") + u"\\00abcdef.tqs"));
        EXPECT_EQ(AnnouncedPrinters().back(), Narrow(wcPrinter));
        EXPECT_EQ(StartedPrograms().back(), "C:\\WINDOWS\\SYSTEM32\\SPOOL\\DRIVERS\\X64\\3\\GLYF.EXE|hidden");
    }
}

TEST_F(PrinterEvents, TheFontFileGetsHalftonesThenFontsBehindItsBaseAndOnlyOnce)
{
    InstallSample("QP5");
    Bytes wanted(1000, 0x46);
    wanted.resize(1000 + 32 * (64 + 256 + 1024));
    const std::pair<size_t, u8> fonts[] = {{20000, 0x51}, {12767, 0x52}, {1, 0x53},
                                           {30000, 0x54}, {2767, 0x55},  {1, 0x56}};
    size_t cbFonts = 0;
    for (const auto& [cb, bFill] : fonts) {
        cbFonts += cb;
    }
    SetReadOnly(tcFontFile, true);
    Raise(INITIALIZE);
    Bytes extended = GetFile(tcFontFile);
    ASSERT_EQ(extended.size(), wanted.size() + cbFonts);
    EXPECT_TRUE(std::equal(wanted.begin(), wanted.end(), extended.begin()));
    size_t nEnd = wanted.size();
    for (const auto& [cb, bFill] : fonts) {
        nEnd += cb;
        EXPECT_EQ(extended[nEnd - 1], bFill);
    }
}

TEST_F(PrinterEvents, LostPowerLeavesTheFontFileBaseOrWhole)
{
    InstallSample("QP5");
    const Bytes base(1000, 0x46);
    Raise(INITIALIZE);
    const Bytes whole = GetFile(tcFontFile);
    PutFile(tcFontFile, base);
    int nBase = 0;
    const PowerSweep sweep = SweepPowerCuts(
        tcFontFile, 8, [&] { Raise(INITIALIZE); },
        [&] {
            const Bytes left = GetFile(tcFontFile);
            if (left == base && nBase++ % 16 == 0) { /* what was left beside it stands in nobody's way */
                Raise(INITIALIZE);
                EXPECT_EQ(GetFile(tcFontFile), whole);
                EXPECT_FALSE(HasFile(tcFontFile + u".new"));
            }
            return OldOrNew(left, base, whole);
        });
    EXPECT_EQ(sweep.fault, "");
    EXPECT_GT(sweep.nOld, 0u);
    EXPECT_GT(sweep.nNew, 0u);
}

TEST_F(PrinterEvents, ASecondImagePrinterImportsWatermarksAsFiles)
{
    for (const auto& [cStem, bFiles] : {std::pair("T440B", true), std::pair("K100", false)}) {
        InstallSample(cStem);
        Raise(INITIALIZE);
        Bytes file = GetFile(UserFolder(u"worker") + u"\\00abcdef.tqs");
        WideText wcText(file.size() / 2, u'\0');
        std::copy(file.begin(), file.end(), reinterpret_cast<u8*>(wcText.data()));
        EXPECT_EQ(wcText.find(u"WMFileName0=VERTRAULICH\r\n") != wcText.npos, bFiles);
        EXPECT_EQ(wcText.find(u"WMWidth0=1\r\n") != wcText.npos, bFiles);
        EXPECT_NE(wcText.find(u"NumWatermarks=2\r\n"), wcText.npos);
    }
}

TEST_F(PrinterEvents, AnIsolatedHostThatForbidsMostStillGetsItsDigest)
{
    InstallSample("K100");
    AddMachineForm(u"Card", FORM_USER, 100000, 150000);
    Raise(INITIALIZE);
    std::string honest = DescribePrinter(wcPrinter);
    PrinterSetup setup = GetPrinterSetup(wcPrinter);
    RemovePrinter(wcPrinter);
    setup.devmode.clear();
    setup.wcPrintProcessor = u"winprint";
    AddPrinter(setup);
    RefuseCalls({CALL_AddFormW, CALL_DeleteFormW, CALL_AddPrintProcessorW, CALL_SetPrinterW, CALL_WinExec,
                 CALL_WriteFile, CALL_MoveFileExW, CALL_CreateDirectoryW, CALL_LoadLibraryExW});
    EXPECT_EQ(Raise(INITIALIZE), 1);
    RefuseCalls({});
    std::string text = DescribePrinter(wcPrinter);
    for (const char* cValue : {"deviceinfo", "mediatypes", "papersizes", "pdfname"}) {
        size_t nAt = honest.find(std::string("value ") + cValue);
        ASSERT_NE(nAt, honest.npos);
        EXPECT_NE(text.find(honest.substr(nAt, honest.find("\nvalue", nAt) - nAt)), text.npos) << cValue;
    }
    EXPECT_EQ(StartedPrograms().size(), 1u);
}

/* Names that fill their fields without an end are cut: 14 and 31 bytes, and a NUL. */
TEST_F(PrinterEvents, NamesInTheDigestAreCut)
{
    DescriptionBuilder builder;
    MediaRow medium = {1, builder.Text("Name"), 0, {}, 1};
    std::memset(medium.cMediaName, 'm', sizeof medium.cMediaName);
    builder.Table<MediaRow>(offsetof(XpiModel, pMediaTypes), {medium, {}});
    builder.Table<PaperRow>(offsetof(XpiModel, pPaperTable),
                            {{1, 9, 2100, 2970, 1, 0, 0, 0, "ABCDEFGHIJKLMNOP"}, {}});
    AddTestPrinter(builder.Build());
    Raise(INITIALIZE);
    const std::string papers("\x09\0ABCDEFGHIJKLMN\0", 17),
        media = std::string(31, 'm') + std::string(2, '\0');
    EXPECT_EQ(Value(u"PaperNames"), Bytes(papers.begin(), papers.end()));
    EXPECT_EQ(Value(u"MediaTypes"), Bytes(media.begin(), media.end()));
}

/* The spooler asks the driver again while it takes the driver's own record: no state is held across its call. */
TEST_F(PrinterEvents, TheSpoolerMayCallBackWithinTheCall)
{
    static int nAgain;
    nAgain = 0;
    InstallSample("K100");
    SetSpoolerCallback([] {
        DriverDevmode out;
        DWORD cb = RECORD_SIZE;
        WCHAR wcName[] = u"Ostra K100";
        nAgain += DrvConvertDevMode(wcName, nullptr, reinterpret_cast<PDEVMODEW>(&out), &cb, 1) &&
                  DrvPrinterEvent(wcName, ADD_CONNECTION, 0, 0);
    });
    EXPECT_EQ(Raise(INITIALIZE), 1);
    SetSpoolerCallback(nullptr);
    EXPECT_EQ(nAgain, 2) << "the record and the print processor";
    EXPECT_EQ(GetPrinterSetup(wcPrinter).devmode, BuiltDefault());
    EXPECT_EQ(GetPrinterSetup(wcPrinter).wcPrintProcessor, u"JOB");
}

namespace {

class EventLives : public Scripted<PrinterEvents> {
  protected:
    BOOL RaiseBy(const std::string& event, WideText wcName)
    {
        static const std::map<std::string, int> events = {{"add-connection", ADD_CONNECTION},
                                                          {"delete-connection", DELETE_CONNECTION},
                                                          {"initialize", INITIALIZE},
                                                          {"delete-printer", DELETE_PRINTER}};
        const WideText wcBefore = wcName;
        const int nEvent = events.count(event) ? events.at(event) : static_cast<int>(ToNumber(event));
        const BOOL bDone = DrvPrinterEvent(wcName.empty() ? nullptr : wcName.data(), nEvent, 0, 0);
        EXPECT_EQ(wcName, wcBefore) << "the caller's text";
        return bDone;
    }
    WideText User(const Args& w) const { return UserFolder(WideWord(w[0])) + u"\\" + WideWord(w[1]); }
    std::string Change(const std::string& value)
    {
        const Bytes now = Value(Widen(value));
        return now == kept_ ? "none" : std::to_string(static_cast<long>(now.size() - kept_.size()));
    }
    /* The data file elsewhere, and copies of it in folders of other versions. */
    std::string Copies()
    {
        PrinterSetup setup = GetPrinterSetup(wcPrinter);
        setup.tcDataFile = u"C:\\drv\\W32X86\\3\\t.fdf";
        AddPrinter(setup);
        PutFile(setup.tcDataFile, Bytes(1000, 0x46));
        PutFile(u"C:\\drv\\W32X86\\2\\t.fdf", Bytes(999, 0x47));
        PutFile(u"C:\\drv\\W32X86\\4\\t.fdf", Bytes(1000000, 0x48));
        PrinterCall call(hPrinter);
        SyncDataFileCopies(call);
        return std::string(GetFile(u"C:\\drv\\W32X86\\2\\t.fdf") == GetFile(setup.tcDataFile) ? "followed"
                                                                                              : "stayed") +
               (GetFile(u"C:\\drv\\W32X86\\4\\t.fdf") == Bytes(1000000, 0x48) ? " stayed" : " followed");
    }
    Bytes kept_;
    HANDLE hHeld_ = nullptr;
};

SCRIPTED(EventLives, LeaveWhatIsWritten, "printer_events.txt")
{
    PlayBy({
        DEED("install", InstallSample(w[0].c_str())),
        VERB("raise", RaiseBy(w[0], wcPrinter)),
        VERB("raise-for", RaiseBy(w[0], w.size() > 1 ? WideWord(w[1]) : u"")),
        VERB("raise-shared", RaiseBy(w[0], u"\\\\WORKPC\\" + wcPrinter + u",LocalOnly")),
        VERB("announced", AnnouncedPrinters().back()),
        DEED("keep", kept_ = Value(Widen(w[0]))),
        VERB("change", Change(w[0])),
        VERB("value-text", Text(Widen(w[0]))),
        VERB("values", PrinterValues(wcPrinter).size()),
        VERB("forms", FormNames().size()),
        VERB("font-file", GetFile(tcFontFile).size()),
        DEED("put-font-file", PutFile(tcFontFile, Bytes(static_cast<size_t>(Int(w, 0)), 0x46))),
        VERB("new-font-file", HasFile(tcFontFile + u".new")),
        VERB("base-size", Peek<u32>(Value(u"BasePDFSize"), 0)),
        DEED("hold",
             hHeld_ = CreateFileW(tcFontFile.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                  nullptr, OPEN_EXISTING, 0, nullptr)),
        DEED("let-go", CloseHandle(hHeld_)),
        VERB("processor", Narrow(GetPrinterSetup(wcPrinter).wcPrintProcessor)),
        VERB("processors", PrintProcessors().size()),
        VERB("remove-processor", std::filesystem::remove(HostPath(tcProcessorFolder + u"JOB.DLL"))),
        DEED("ini", PutFile(wcDriverFolder + Widen(w[0]) + u".INI", Unescaped(w[1]))),
        DEED("ticks", SetTickCount(static_cast<u32>(ToNumber(w[0])))),
        DEED("put-user", PutFile(User(w), "taken")),
        VERB("has-user", HasFile(User(w))),
        VERB("remove-user", std::filesystem::remove(HostPath(User(w)))),
        VERB("network-list", DescribeValue(REG_MULTI_SZ, Value(u"TQNetworkInstall"))),
        VERB("marked", HasSemaphore(wcPrinter)),
        VERB("copies", Copies()),
    });
}

} // namespace

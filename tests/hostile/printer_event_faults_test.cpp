/* The four events while the system fails or lies: each call that they make fails once, and from then on, at each of
   its turns; every call gives each kind of false answer; the disk is full, names lead elsewhere. */
#include "support/event_machine.h"
#include "support/sweep.h"

namespace {

constexpr int anEvents[] = {ADD_CONNECTION, DELETE_CONNECTION, INITIALIZE, DELETE_PRINTER};
const WideText tcOther = u"C:\\Users\\worker\\other.ini";

class PrinterEventFaults : public EventTest<MachineTest> {
  protected:
    void Use(const char* cStem)
    {
        AddSample(cStem);
        setup = GetPrinterSetup(wcPrinter);
        tcFolder = UserFolder(u"worker");
        Arrange(INITIALIZE);
        Raise(INITIALIZE);
        whole = GetFile(setup.tcDataFile);
        values = PrinterValues(wcPrinter);
        settings = GetFile(tcFolder + u"\\00abcdef.tqs");
        ASSERT_FALSE(settings.empty());
    }

    /* The machine as the event finds it: empty for INITIALIZE, without a settings file for a new connection, whole for
       the others. */
    void Arrange(int nEvent)
    {
        AddPrinter(setup);
        DropMachineForms();
        SetPrintProcessors({"winprint=localspl.dll"});
        std::filesystem::remove_all(HostPath(u"C:\\Users"));
        PutFile(tcOther, "other");
        PutFile(tcFolder + u"\\a.wm", "watermark");
        SetReadOnly(tcFolder + u"\\a.wm", false);
        PutFile(setup.tcDataFile, base);
        for (const MachineValue& value : values) {
            if (nEvent != INITIALIZE) {
                SetPrinterValue(wcPrinter, value.wcName, value.dwType, value.bytes);
            }
        }
        if (nEvent == DELETE_CONNECTION || nEvent == DELETE_PRINTER) {
            const std::string rows =
                WatermarkRows({Narrow(tcFolder) + "\\a.wm"}) + "WMColorFile0=" + Narrow(tcOther) + "\r\n";
            PutFile(tcFolder + u"\\00abcdef.tqs", std::string_view(rows));
        }
    }

    std::string Verdict(int nEvent, int bResult)
    {
        std::string fault;
        if (bResult != 1 && (nEvent != INITIALIZE || bResult != 0)) {
            fault += "result " + std::to_string(bResult) + "; ";
        }
        Bytes left = GetFile(setup.tcDataFile);
        if (left != base && left != whole) {
            fault += "a font file of " + std::to_string(left.size()) + " bytes; ";
        }
        if (GetFile(tcOther) != Bytes({'o', 't', 'h', 'e', 'r'})) {
            fault += "another file was touched; ";
        }
        if (nEvent != DELETE_CONNECTION && nEvent != DELETE_PRINTER && !HasFile(tcFolder + u"\\a.wm")) {
            fault += "a watermark is gone; ";
        }
        return fault;
    }

    /* The event, on a machine that is arranged anew without a counted call, so that the fault meets the event. */
    Scenario Event(int nEvent, bool bJudged = true)
    {
        return {"event " + std::to_string(nEvent), [this, nEvent, bJudged] {
                    const int nBefore = CallCount(ANY_CALL);
                    Arrange(nEvent);
                    EXPECT_EQ(CallCount(ANY_CALL), nBefore);
                    int bResult = 0;
                    const std::string fault = AsGuest([&] { bResult = Raise(nEvent); });
                    DropSemaphores();
                    StopLies();
                    return fault + (bJudged ? Verdict(nEvent, bResult) : "");
                }};
    }

    PrinterSetup setup;
    WideText tcFolder;
    const Bytes base = Bytes(1000, 0x46);
    Bytes whole, settings;
    std::vector<MachineValue> values;
};

} // namespace

TEST_F(PrinterEventFaults, EveryCallFailsOnceAndFromThereOn)
{
    SetSystemVersion(4, 0);
    Use("QP5");
    sweepBudget.Plan(2 * std::size(anEvents));
    int nFaults = 0;
    for (int nEvent : anEvents) {
        nFaults += WalkFaults({Event(nEvent)}); /* allocations among them */
    }
    EXPECT_GT(nFaults, sweepBudget.IsSet() ? 0 : 1000);
}

TEST_F(PrinterEventFaults, CallsOfTheOtherKindsFail)
{
    const std::vector<CallId> calls = {
        CALL_HeapAlloc, CALL_SetPrinterDataW,      CALL_CreateFileW,      CALL_ReadFile,
        CALL_WriteFile, CALL_MoveFileExW,          CALL_GetPrinterW,      CALL_SetPrinterW,
        CALL_AddFormW,  CALL_EnumPrintProcessorsW, CALL_GetPrinterDriverW};
    sweepBudget.Plan(3 * 2 * calls.size());
    for (const char* cStem : {"T410A", "K100", "T440B"}) {
        SCOPED_TRACE(cStem);
        Use(cStem);
        EXPECT_GT(WalkFaults({Event(INITIALIZE)}, calls), sweepBudget.IsSet() ? 0 : 100);
    }
}

TEST_F(PrinterEventFaults, FalseAnswers)
{
    for (const char* cStem : {"T410A", "QP5", "K100", "T440B"}) {
        Use(cStem);
        for (int nLie = LIE_SHORT; nLie < LIE_KIND_COUNT; nLie++) {
            for (int nEvent : anEvents) {
                /* A file told shorter than it is is taken for its own base. */
                const Scenario event = Event(nEvent, nLie != LIE_SHORT && nLie != LIE_HUGE);
                EXPECT_EQ(SweepLie(static_cast<LieKind>(nLie), ANY_CALL, event.run), "")
                    << cStem << ", " << event.name;
            }
        }
    }
    SetSystemVersion(4, 0);
    sweepBudget.Plan(3);
    WalkLies({Event(ADD_CONNECTION, false), Event(DELETE_CONNECTION, false), Event(DELETE_PRINTER, false)});
}

TEST_F(PrinterEventFaults, AFullDiskLeavesWholeFilesOrNone)
{
    Use("QP5");
    for (i64 lRoom : {i64{0}, i64{1}, i64{999}, i64{1000}, i64{4096}, i64{50000}, i64{109000}, i64{200000}}) {
        Arrange(INITIALIZE);
        SetDiskRoom(lRoom);
        int bResult = Raise(INITIALIZE);
        SetDiskRoom(-1);
        EXPECT_EQ(Verdict(INITIALIZE, bResult), "") << lRoom;
        Bytes left = GetFile(tcFolder + u"\\00abcdef.tqs");
        EXPECT_TRUE(left.empty() || left == settings) << lRoom << ": " << left.size();
        EXPECT_FALSE(HasFile(setup.tcDataFile + u".new")) << lRoom;
    }
}

TEST_F(PrinterEventFaults, LinksInTheFontFilesPlaceAreNotFollowed)
{
    Use("QP5");
    namespace fs = std::filesystem;
    Arrange(INITIALIZE);
    /* What lies where the new file is made goes, not what it leads to. */
    fs::create_symlink(HostPath(tcOther), HostPath(setup.tcDataFile + u".new"));
    EXPECT_EQ(Verdict(INITIALIZE, Raise(INITIALIZE)), "");
    EXPECT_EQ(GetFile(setup.tcDataFile), whole);
    /* A folder there stands in the way: the file stays as shipped. */
    Arrange(INITIALIZE);
    fs::create_directories(HostPath(setup.tcDataFile + u".new"));
    EXPECT_EQ(Verdict(INITIALIZE, Raise(INITIALIZE)), "");
    EXPECT_EQ(GetFile(setup.tcDataFile), base);
}

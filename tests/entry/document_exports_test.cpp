/* The exports round the merge: sizes, conversion, and what is handed on to the system's spooler library. */
#include "entry/exports.h"

#include "document/defaults.h"
#include "settings/check_support.h"
#include "support/guarded_pages.h"
#include "tools/tq/record_text.h"

namespace {

/* What the system's routine was asked, and whether it asks us in turn. */
struct Asked {
    HANDLE hPrinter;
    void* pRecord;
    DWORD* pResult;
    BOOL bOurs;
} asked;

BOOL WINAPI SystemQuery(HANDLE hPrinter, PDEVMODEW pRecord, DWORD* pResult)
{
    DWORD dwOurs = 0;
    asked = {hPrinter, pRecord, pResult, DevQueryPrint(hPrinter, pRecord, &dwOurs)};
    return 5;
}

BOOL WINAPI SystemProperties(HWND, HANDLE hPrinter)
{
    asked = {hPrinter, nullptr, nullptr, PrinterProperties(nullptr, hPrinter)};
    return 6;
}

} // namespace

class DocumentExports : public CheckTest {
  protected:
    void SetUp() override
    {
        CheckTest::SetUp();
        UseModel(CheckModel());
    }

    /* Converts; "result error needed". */
    std::string Convert(DriverDevmode* pIn, DriverDevmode* pOut, DWORD cbRoom, const WCHAR* wcName = u"Test")
    {
        WideText wcOwn = wcName ? wcName : u"";
        SetLastError(777);
        BOOL bResult = DrvConvertDevMode(wcName ? wcOwn.data() : nullptr, reinterpret_cast<PDEVMODEW>(pIn),
                                         reinterpret_cast<PDEVMODEW>(pOut), &cbRoom, 0);
        return std::to_string(bResult) + " " + std::to_string(GetLastError()) + " " + std::to_string(cbRoom);
    }
};

TEST_F(DocumentExports, ConversionTellsItsFailuresInOrder)
{
    DriverDevmode out, untouched;
    std::memset(static_cast<void*>(&untouched), 0x77, sizeof untouched);
    out = untouched;
    EXPECT_FALSE(DrvConvertDevMode(nullptr, nullptr, nullptr, nullptr, 0));
    EXPECT_EQ(GetLastError(), 87u);
    EXPECT_EQ(Convert(nullptr, &out, 4087, u"nowhere"), "0 122 4088");
    EXPECT_EQ(Convert(nullptr, nullptr, 5000, u"nowhere"), "0 122 4088");
    EXPECT_EQ(Convert(&good, &out, 0, nullptr), "0 122 4088");
    EXPECT_EQ(Convert(nullptr, &out, 4088, u"nowhere"), "0 1801 4088");
    EXPECT_EQ(Convert(&good, &out, 0xFFFFFFFF, nullptr), "0 1801 4088");
    EXPECT_EQ(FirstDifference(out, untouched), -1);
    SetSystemVersion(4, 0);
    EXPECT_EQ(Convert(nullptr, &out, 0, u"\\\\SERVER\\Test"), "1 122 4088") << "an unlisted connection";
    EXPECT_EQ(Convert(nullptr, &out, 0, u"\\\\SERVER\\nowhere"), "1 1801 4088");
    EXPECT_EQ(FirstDifference(out, untouched), -1);
}

TEST_F(DocumentExports, ConversionGivesTheRecordOrTheWholeDefault)
{
    DriverDevmode standard, out;
    {
        PrinterCall call(hPrinter);
        WideText wcName = u"Test";
        BuildDefaultRecord(call, wcName.data(), &standard, 1);
    }
    EXPECT_EQ(Convert(nullptr, &out, 4088), "1 0 4088");
    EXPECT_EQ(FirstDifference(out, standard), -1);
    DriverDevmode in = good;
    in.dmScale = 50;
    in.dmSize = 4088;
    in.dmDriverExtra = 0;
    EXPECT_EQ(Convert(&in, &out, 4088), "1 0 4088");
    EXPECT_EQ(FirstDifference(in, good), -1) << "mended where it lies";
    EXPECT_EQ(FirstDifference(out, good), -1);
    in.dmCopies = 7;
    in.rPrivate.sContrast = 51;
    EXPECT_EQ(Convert(&in, &out, 4088), "1 0 4088");
    EXPECT_EQ(FirstDifference(out, standard), -1) << "nothing is kept of a refused record";
    EXPECT_EQ(in.rPrivate.sContrast, 51);
    in = good;
    Convert(&in, &in, 4088);
    EXPECT_EQ(FirstDifference(in, good), -1) << "one buffer for both";

    GuardedPages pages;
    for (u32 cb = 0; cb < RECORD_SIZE; cb += cb < 300 ? 1 : 61) {
        DriverDevmode claims = good;
        claims.dmSize = static_cast<u16>(cb < 220 ? cb : 220);
        claims.dmDriverExtra = static_cast<u16>(cb - claims.dmSize);
        ASSERT_EQ(Convert(pages.Place(claims, cb < 72 ? 72 : cb), &out, 4088), "1 0 4088");
        ASSERT_EQ(FirstDifference(out, standard), -1) << cb;
    }
    /* Without its description a printer has the template; the record's name loses its tail, and the caller's,
       which may lie in memory that cannot be written, stays. */
    std::filesystem::remove(HostPath(u"C:\\drv\\qa.xpi"));
    in = good;
    EXPECT_EQ(Convert(&in, &out, 4088), "1 0 4088");
    EXPECT_EQ(out.rPrivate.ulVersion, RECORD_STAMP);
    static constexpr WCHAR wcLocal[] = u"\\\\WORKPC\\Test,LocalOnly";
    DWORD cb = 4088;
    EXPECT_TRUE(
        DrvConvertDevMode(const_cast<WCHAR*>(wcLocal), nullptr, reinterpret_cast<PDEVMODEW>(&out), &cb, 0));
    EXPECT_EQ(FieldOf(out, "dmDeviceName").value, "\"Test\"");
}

TEST_F(DocumentExports, ThePropertyCallTellsASizeAndMergesOnePieceAlone)
{
    const auto ask = [&](void* pOut, DriverDevmode* pIn, DWORD dwMode) {
        return DrvDocumentProperties(nullptr, hPrinter, wcPrinter.data(), static_cast<PDEVMODEW>(pOut),
                                     reinterpret_cast<PDEVMODEW>(pIn), dwMode);
    };
    DriverDevmode out, untouched;
    std::memset(static_cast<void*>(&untouched), 0x77, sizeof untouched);
    out = untouched;
    EXPECT_EQ(ask(&out, &good, 0), 4088);
    EXPECT_EQ(ask(nullptr, &good, 10), 4088);
    EXPECT_EQ(ask(&out, &good, 10), 1);
    EXPECT_EQ(ask(&out, nullptr, 10), 1);
    EXPECT_EQ(ask(&out, nullptr, 2), 1);
    EXPECT_EQ(FirstDifference(out, untouched), -1);
    DriverDevmode whole = good;
    whole.dmSize = 4088;
    whole.dmDriverExtra = 0;
    EXPECT_EQ(ask(&out, &whole, 10), 1);
    EXPECT_EQ(out.dmSize, 220);
    EXPECT_EQ(out.dmCopies, good.dmCopies);

    DOCUMENTPROPERTYHEADER header = {};
    EXPECT_EQ(DrvDocumentPropertySheets(nullptr, reinterpret_cast<LPARAM>(&header)), 4088);
    EXPECT_EQ(header.cbOut, 4088u);
    EXPECT_EQ(DrvDocumentPropertySheets(nullptr, 0), 0);
    EXPECT_EQ(DrvAdvancedDocumentProperties(nullptr, hPrinter, wcPrinter.data(), nullptr, nullptr), 10);
    EXPECT_EQ(DevQueryPrintEx(nullptr), 1);
    EXPECT_EQ(DrvUpgradePrinter(2, nullptr), 1);
}

TEST_F(DocumentExports, ForwardersCallTheSystemsRoutineAndNotThemselves)
{
    DWORD dwResult = 9;
    PDEVMODEW pRecord = reinterpret_cast<PDEVMODEW>(&good);
    EXPECT_FALSE(DevQueryPrint(hPrinter, pRecord, &dwResult)) << "no library";
    SetSystemRoutine(u"winspool.drv", "Other", nullptr);
    EXPECT_FALSE(PrinterProperties(nullptr, hPrinter)) << "no routine";
    SetSystemRoutine(u"winspool.drv", "DevQueryPrint", reinterpret_cast<void*>(SystemQuery));
    SetSystemRoutine(u"winspool.drv", "PrinterProperties", reinterpret_cast<void*>(SystemProperties));
    for (int i = 0; i < 2; i++) {
        asked = {};
        EXPECT_EQ(DevQueryPrint(hPrinter, pRecord, &dwResult), 5);
        EXPECT_EQ(asked.hPrinter, hPrinter);
        EXPECT_EQ(asked.pRecord, pRecord);
        EXPECT_EQ(asked.pResult, &dwResult);
        EXPECT_EQ(asked.bOurs, 0);
        asked.bOurs = 9;
        EXPECT_EQ(PrinterProperties(nullptr, hPrinter), 6);
        EXPECT_EQ(asked.bOurs, 0);
    }
    for (CallId call : {CALL_LoadLibraryExW, CALL_GetProcAddress, CALL_FlsGetValue}) {
        FailCall(call, 1, FAIL_FROM_THERE);
        int bQuery = DevQueryPrint(hPrinter, pRecord, &dwResult);
        EXPECT_GT(StopFaults(), 0);
        EXPECT_EQ(bQuery, 0) << CallName(call);
    }
}

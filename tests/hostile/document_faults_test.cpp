/* Conversion, merge and document events while the system fails or lies: every call that they make fails once, and
   from then on, at each of its turns; every call gives each kind of false answer. What they then give is a whole
   record or none, and nothing is held behind them. */
#include "document/defaults.h"
#include "entry/connection.h"
#include "entry/exports.h"
#include "platform/sheet.h"
#include "support/guarded_pages.h"
#include "support/sample_machine.h"
#include "support/sweep.h"
#include "support/well_formed.h"

namespace {

constexpr u8 UNTOUCHED = 0x77;

BOOL WINAPI SystemProperties(HWND, HANDLE)
{
    return 6;
}

/* "" for a whole record, or for one that was left alone when that is allowed. */
std::string Verdict(const DriverDevmode& out, bool bMayBeUntouched)
{
    const u8* pOut = reinterpret_cast<const u8*>(&out);
    bool bUntouched = std::all_of(pOut, pOut + sizeof out, [](u8 bByte) { return bByte == UNTOUCHED; });
    return (bUntouched && bMayBeUntouched) || (!bUntouched && IsWellFormed(out)) ? "" : "half a record; ";
}

/* Where nothing can be asked GDI gets the built-in private part. */
bool IsTemplate(const DriverDevmode& record)
{
    return SameBytes(record.rPrivate, recordTemplate.rPrivate);
}

} // namespace

class DocumentFaults : public MachineTest {
  protected:
    /* A sample with a watermark, an overlay, a user's settings file and a stored default. */
    void Use(const char* cSample)
    {
        AddSample(cSample);
        SetSystemVersion(4, 0);
        SetPrinterText(wcPrinter, u"Settings", u"user.ini");
        PutFile(
            u"C:\\Users\\worker\\Application Data\\Corvantis Optics\\" + wcPrinter + u"\\user.ini",
            "[Watermarks]\nNumWatermarks=1\nWMType0=2\nWMString0=a\nWMImageName0=C:\\w\\a.bmp\n"
            "WMFileName0=C:\\w\\a.wm\nWMColorFile0=C:\\w\\c.wm\nWMResolution0=600\nWMWidth0=9\nWMHeight0=9\n");
        SetPrinterText(wcPrinter, u"DefaultSpoolDirectory", u"D:\\Spool");
        AddKey(u"HKLM\\SYSTEM\\CurrentControlSet\\Control\\Print\\Printers\\" + wcPrinter);
        SetSystemRoutine(u"winspool.drv", "PrinterProperties", reinterpret_cast<void*>(SystemProperties));
        SetKeyValue(u"HKCU\\SOFTWARE\\QuilonMonitor", u"Refresh_FeedEdge", REG_DWORD, {1, 0, 0, 0});
        const WCHAR awcList[] = u"OTHERPC\0WORKPC\0";
        const u8* pList = reinterpret_cast<const u8*>(awcList);
        SetPrinterValue(wcPrinter, u"TQNetworkInstall", REG_MULTI_SZ, Bytes(pList, pList + sizeof awcList));
        {
            PrinterCall call(hPrinter);
            BuildDefaultRecord(call, wcPrinter.data(), &good, 1);
        }
        const u8* pGood = reinterpret_cast<const u8*>(&good);
        SetPrinterRecord(wcPrinter, Bytes(pGood, pGood + sizeof good));
        good.rPrivate.ulWMType = 36;
        good.rPrivate.sWMResolution = 600;
        good.rPrivate.ulWMWidth = good.rPrivate.ulWMLength = 9;
        CopyWide(good.rPrivate.wcWMOverlayName, 96, u"C:\\w\\a.wm");
        good.rPrivate.sOverlay = 1;
        CopyWide(good.rPrivate.wcOverlayFile, 13, u"A.OVL");
        refused = good;
        refused.rPrivate.sContrast = 99;
        foreign = good;
        foreign.dmDriverExtra = 40;
    }

    std::string Merge(const DriverDevmode* pRecord, DWORD dwMode)
    {
        DriverDevmode in, out;
        std::memset(static_cast<void*>(&out), UNTOUCHED, sizeof out);
        in = pRecord ? *pRecord : good;
        DOCUMENTPROPERTYHEADER header = {};
        header.hPrinter = hPrinter;
        header.pszPrinterName = wcPrinter.data();
        header.pdmIn = pRecord ? reinterpret_cast<PDEVMODEW>(&in) : nullptr;
        header.pdmOut = reinterpret_cast<PDEVMODEW>(&out);
        header.cbOut = RECORD_SIZE;
        header.fMode = dwMode;
        LONG lResult = 0;
        std::string fault =
            AsGuest([&] { lResult = DrvDocumentPropertySheets(nullptr, reinterpret_cast<LPARAM>(&header)); });
        if (pRecord == &foreign) { /* its fields and nothing else */
            return fault +
                   (out.dmSize == 0x7777 && out.rPrivate.ulVersion == 0x77777777 ? "" : "too much written; ");
        }
        return fault + (lResult == 1 ? "" : "another result; ") + Verdict(out, true);
    }

    std::string Convert(const DriverDevmode* pRecord, DWORD cbRoom)
    {
        DriverDevmode in, out;
        std::memset(static_cast<void*>(&out), UNTOUCHED, sizeof out);
        in = pRecord ? *pRecord : good;
        WideText wcName = u"\\\\SERVER\\" + wcPrinter;
        BOOL bResult = 0;
        DWORD cb = cbRoom;
        std::string fault = WithinBounds([&] {
            bResult = DrvConvertDevMode(wcName.data(), pRecord ? reinterpret_cast<PDEVMODEW>(&in) : nullptr,
                                        reinterpret_cast<PDEVMODEW>(&out), &cb, 0);
        });
        DWORD dwError = GetLastError();
        bool bGood = cbRoom < RECORD_SIZE ? dwError == 122 || dwError == 1801 || dwError == 2
                     : bResult            ? dwError == 0
                                          : dwError == 1801;
        DropSemaphores();
        return fault + (cb == RECORD_SIZE ? "" : "another size; ") + (bGood ? "" : "another last error; ") +
               Verdict(out, !bResult || cbRoom < RECORD_SIZE);
    }

    /* Loads the library, lets the events of a document happen, unloads it. */
    std::string Events()
    {
        std::string fault;
        DllMain(nullptr, DLL_PROCESS_ATTACH, nullptr);
        for (const DriverDevmode* pRecord : {&good, &refused}) {
            DriverDevmode in = *pRecord;
            DriverDevmode* pIn = &in;
            DriverDevmode* apOut[2] = {pIn, pIn};
            DOCEVENT_CREATEDCPRE create = {nullptr, nullptr, reinterpret_cast<PDEVMODEW>(&in), 0};
            int nResults = 0;
            fault += AsGuest([&] {
                nResults += DrvDocumentEvent(hPrinter, nullptr, 1, 0, &create, 0, &apOut[0]);
                nResults += DrvDocumentEvent(hPrinter, nullptr, 5, 0, nullptr, 0, nullptr);
                nResults += DrvDocumentEvent(hPrinter, nullptr, 3, 0, &pIn, 0, &apOut[1]);
                PrinterProperties(nullptr, hPrinter);
            });
            fault += nResults == 3 ? "" : "another result; ";
            for (const DriverDevmode* pOut : apOut) {
                bool bGood = !pOut || (pOut != pIn && (IsWellFormed(*pOut) || IsTemplate(*pOut)));
                fault += bGood ? "" : "a bad record; ";
            }
        }
        DllMain(nullptr, DLL_PROCESS_DETACH, nullptr);
        TakeTraces();
        return fault;
    }

    /* The exports that ask another one or the spooler's library, and those that only answer. */
    std::string Properties()
    {
        DriverDevmode in = good, out = good;
        LONG lSize = 0, lMerged = 0;
        bool bFixed = false;
        std::string fault = AsGuest([&] {
            lSize = DrvDocumentProperties(nullptr, hPrinter, wcPrinter.data(), nullptr, nullptr, 0);
            lMerged =
                DrvDocumentProperties(nullptr, hPrinter, wcPrinter.data(), reinterpret_cast<PDEVMODEW>(&out),
                                      reinterpret_cast<PDEVMODEW>(&in), 10);
            DWORD dwReason = 0;
            DevQueryPrint(hPrinter, reinterpret_cast<PDEVMODEW>(&in), &dwReason);
            PROPSHEETUI_INFO info = {};
            info.Reason = PROPSHEETUI_REASON_INIT;
            DrvDevicePropertySheets(&info, 0);
            bFixed =
                DrvDocumentPropertySheets(&info, 0) <= 0 &&
                DrvAdvancedDocumentProperties(nullptr, hPrinter, wcPrinter.data(), nullptr, nullptr) == 10 &&
                DevQueryPrintEx(nullptr) == 1 && DrvUpgradePrinter(1, nullptr) == 1;
        });
        return fault + (lSize == RECORD_SIZE && lMerged == 1 && bFixed ? "" : "another result; ") +
               Verdict(out, false);
    }

    std::vector<Scenario> Scenarios()
    {
        return {{"merge", [this] { return Merge(&good, 10); }},
                {"merge of a refused record", [this] { return Merge(&refused, 9); }},
                {"merge of none", [this] { return Merge(nullptr, 2); }},
                {"merge of a foreign record", [this] { return Merge(&foreign, 8); }},
                {"conversion", [this] { return Convert(&good, 4088); }},
                {"conversion of a refused record", [this] { return Convert(&refused, 4088); }},
                {"conversion of none", [this] { return Convert(nullptr, 4088); }},
                {"conversion without room", [this] { return Convert(&good, 0); }},
                {"events", [this] { return Events(); }},
                {"properties", [this] { return Properties(); }},
                {"list of computers", [this] {
                     PrinterCall call(hPrinter);
                     return WithinBounds([&] {
                         RemoveFromConnectionList(call);
                         AddToConnectionList(call);
                     });
                 }}};
    }

    DriverDevmode good, refused, foreign;
};

TEST_F(DocumentFaults, EveryCallFailsInItsTurn)
{
    int nFaults = 0;
    sweepBudget.Plan(4 * 2 * Scenarios().size());
    for (const char* cSample : {"T410A", "K100"}) {
        for (int nVersion : {4, 10}) {
            SCOPED_TRACE(cSample);
            Use(cSample);
            SetSystemVersion(nVersion, 0);
            DllMain(nullptr, DLL_PROCESS_DETACH, nullptr);
            nFaults += WalkFaults(Scenarios());
        }
    }
    EXPECT_GT(nFaults, sweepBudget.IsSet() ? 0 : 2000);
}

TEST_F(DocumentFaults, EveryCallLiesInEveryWay)
{
    sweepBudget.Plan(2 * Scenarios().size());
    for (const char* cSample : {"T410A", "K100"}) {
        SCOPED_TRACE(cSample);
        Use(cSample);
        DllMain(nullptr, DLL_PROCESS_DETACH, nullptr);
        WalkLies(Scenarios());
    }
}

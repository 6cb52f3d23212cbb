/* The library is a guest in the spooler and in every program that prints: each export leaves process and thread as
   it found them. What the hosted machine does not know (error mode, thread token) the program under Wine asks. */
#include <clocale>

#include "support/job_machine.h"
#include "support/sheet_machine.h"

namespace {

constexpr DWORD LEFT_BY_CALLER = 777;

/* What must be the same before and behind a call. */
struct House {
    std::filesystem::path folder = std::filesystem::current_path();
    std::string locale = std::setlocale(LC_ALL, nullptr);
    DWORD dwError = GetLastError();
    int nShown = CallCount(CALL_DialogBoxParamW) + CallCount(CALL_MessageBoxW) + CallCount(CALL_ShowWindow);
    LiveCounts held = CountLive();
    bool operator==(const House&) const = default;
};

} // namespace

class GuestManners : public SheetTest {
  protected:
    void CallEveryExport()
    {
        DriverDevmode in = Defaults(), out = in;
        PDEVMODEW pIn = reinterpret_cast<PDEVMODEW>(&in), pOut = reinterpret_cast<PDEVMODEW>(&out);
        WideText wcName = wcPrinter, wcNone = u"No such printer";
        DWORD dwReason = 0, cb = RECORD_SIZE;
        DevQueryPrint(hPrinter, pIn, &dwReason); /* the thread's store is there from now on */
        for (WORD wQuestion = 0; wQuestion <= LAST_QUESTION + 1; wQuestion++) {
            Expect("capabilities", [&] {
                DrvDeviceCapabilities(hPrinter, wcName.data(), wQuestion, nullptr, nullptr);
                DrvDeviceCapabilities(nullptr, wcNone.data(), wQuestion, nullptr, nullptr);
            });
        }
        Expect("properties", [&] {
            DrvDocumentProperties(nullptr, hPrinter, wcName.data(), pOut, pIn, 10);
            DrvDocumentProperties(nullptr, nullptr, nullptr, pOut, pIn, 10);
            DrvAdvancedDocumentProperties(nullptr, hPrinter, wcName.data(), pOut, pIn);
            DrvDocumentPropertySheets(nullptr, 0);
            DrvDevicePropertySheets(nullptr, 0);
        });
        Expect("upgrade", [&] { DrvUpgradePrinter(1, nullptr); });
        Expect("queries", [&] {
            DevQueryPrintEx(nullptr);
            DevQueryPrint(hPrinter, pIn, &dwReason);
            PrinterProperties(nullptr, hPrinter);
        });
        for (int iEsc = 0; iEsc <= 14; iEsc++) {
            DOCEVENT_CREATEDCPRE create = {nullptr, nullptr, pIn, 0};
            void* pReset = pIn;
            void* pGiven = nullptr;
            Expect("document event", [&] {
                DrvDocumentEvent(hPrinter, nullptr, iEsc, 0,
                                 iEsc == 1 ? static_cast<void*>(&create) : &pReset, 0, &pGiven);
            });
        }
        Expect("job", [&] { RunJob({GuiStartJob, GuiStartSheet, GuiEndJob}, hPrinter, 7, &in); });
        Expect("job without a printer", [&] {
            RunJob({GuiStartJob, GuiStartSheet, GuiEndJob}, nullptr, 7, &in);
        });
        for (int nEvent = 0; nEvent <= 5; nEvent++) {
            Expect("printer event", [&] {
                DrvPrinterEvent(wcName.data(), nEvent, 0, 0);
                DrvPrinterEvent(wcNone.data(), nEvent, 0, 0);
            });
            DropSemaphores();
        }
        dwLeft = ERROR_SUCCESS; /* the one export that reports so */
        Expect("conversion", [&] { DrvConvertDevMode(wcName.data(), pIn, pOut, &cb, 0); });
        dwLeft = ERROR_INVALID_PRINTER_NAME;
        Expect("conversion for none", [&] { DrvConvertDevMode(wcNone.data(), nullptr, pOut, &cb, 0); });
        dwLeft = LEFT_BY_CALLER;
    }

    void Expect(const char* cExport, const std::function<void()>& call)
    {
        SetLastError(LEFT_BY_CALLER);
        House before;
        call();
        House after;
        EXPECT_EQ(after.dwError, dwLeft) << cExport;
        after.dwError = before.dwError;
        EXPECT_EQ(after.folder, before.folder) << cExport;
        EXPECT_EQ(after.locale, before.locale) << cExport;
        EXPECT_EQ(after.nShown, before.nShown) << cExport << " showed something";
        EXPECT_TRUE(after == before) << cExport << " holds something";
    }

    DWORD dwLeft = LEFT_BY_CALLER;
};

TEST_F(GuestManners, EveryExportLeavesTheHouseAsItWas)
{
    for (const char* cSample : {"T410A", "K100", ""}) {
        SCOPED_TRACE(cSample);
        if (*cSample) {
            AddSample(cSample);
            AddJob(wcPrinter, 7, u"Letter");
        } else {
            AddTestPrinter({});
            std::filesystem::remove(HostPath(u"C:\\drv\\qa.xpi"));
        }
        CallEveryExport();
    }
}

TEST_F(GuestManners, ASheetLeavesTheHouseAsItWas)
{
    AddSample("T410A");
    for (bool bDevice : {false, true}) {
        (bDevice ? OpenDevice() : OpenDocument()) ? void() : ADD_FAILURE() << "no sheet";
        Close(); /* what the first sheet of a user makes is made */
        Expect("sheet", [&] {
            bDevice ? OpenDevice() : OpenDocument();
            Close();
            SetLastError(LEFT_BY_CALLER); /* pages and host use it as they like between the calls */
        });
        /* The calls alone, as the host makes them. */
        Expect("no sheet", [&] {
            PROPSHEETUI_INFO info = {};
            info.Reason = PROPSHEETUI_REASON_INIT;
            bDevice ? DrvDevicePropertySheets(&info, 0) : DrvDocumentPropertySheets(&info, 0);
        });
    }
}

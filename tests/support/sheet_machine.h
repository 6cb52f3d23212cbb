/* Sheets of the hosted machine's printers in the test's property sheet host. */
#ifndef TQUI_TESTS_SHEET_MACHINE_H
#define TQUI_TESTS_SHEET_MACHINE_H

#include "document/defaults.h"
#include "entry/exports.h"
#include "hosted/sheet_host.h"
#include "sheet/session.h"
#include "support/sample_machine.h"
#include "tools/tq/record_text.h"

class SheetTest : public MachineTest {
  protected:
    static constexpr DWORD MODE_PROMPT = 4, MODE_COPY = 2, MODE_MODIFY = 8;

    void SetUp() override
    {
        MachineTest::SetUp();
        std::memset(&record, 0xA5, sizeof record);
    }

    void TearDown() override
    {
        Close();
        MachineTest::TearDown();
    }

    static LONG WINAPI DocumentEntry(PROPSHEETUI_INFO* pInfo, LPARAM lParam)
    {
        return DrvDocumentPropertySheets(pInfo, lParam);
    }
    static LONG WINAPI DeviceEntry(PROPSHEETUI_INFO* pInfo, LPARAM lParam)
    {
        return DrvDevicePropertySheets(pInfo, lParam);
    }

    /* Opens a sheet on the record of the test, which is what is edited; a sheet that is open is closed. */
    Sheet* OpenDocument(DriverDevmode* pIn = nullptr, int nRefusedPage = 0,
                        DWORD fMode = MODE_PROMPT | MODE_COPY | MODE_MODIFY,
                        SheetEntry pfnEntry = DocumentEntry)
    {
        Close();
        header = {sizeof header, 0,   hPrinter, wcPrinter.data(), reinterpret_cast<PDEVMODEW>(pIn),
                  Record(),      220, fMode};
        pSheet = ::OpenSheet({pfnEntry, reinterpret_cast<LPARAM>(&header), nRefusedPage});
        return pSheet;
    }
    Sheet* OpenDevice(int nRefusedPage = 0)
    {
        Close();
        deviceHeader = {sizeof deviceHeader, 0, hPrinter, wcPrinter.data()};
        pSheet = ::OpenSheet({DeviceEntry, reinterpret_cast<LPARAM>(&deviceHeader), nRefusedPage});
        return pSheet;
    }
    LONG_PTR Close() { return pSheet ? EndSheet(std::exchange(pSheet, nullptr)) : CPSUI_CANCEL; }

    PDEVMODEW Record() { return reinterpret_cast<PDEVMODEW>(&record); }
    UiSession* Session() const { return reinterpret_cast<UiSession*>(SheetInfo(pSheet).UserData); }
    HWND Page(size_t nPage) const { return SheetPageWindow(pSheet, nPage); }

    std::vector<std::string> Tabs() const
    {
        std::vector<std::string> tabs;
        for (size_t i = 0; i < SheetPageCount(pSheet); i++) {
            tabs.push_back(Narrow(SheetPageTitle(pSheet, i)));
        }
        return tabs;
    }

    DriverDevmode Defaults()
    {
        DriverDevmode defaults;
        PrinterCall call(hPrinter);
        FindPrinterDefaults(call, &defaults);
        return defaults;
    }

    /* Fields in which two records differ, but for the overlay folder, which a sheet settles. */
    static std::string Differing(const DriverDevmode& wanted, const DriverDevmode& found)
    {
        std::string names;
        for (const FieldValue& field : DifferingFields(wanted, found)) {
            names += field.name == "tcOverlayDir" ? "" : field.name + "=" + field.value + " ";
        }
        return names;
    }

    static WideText TextOf(HWND hDialog, int nControl)
    {
        WCHAR wcText[TEXT_CHARS] = {};
        GetDlgItemTextW(hDialog, nControl, wcText, TEXT_CHARS);
        return wcText;
    }

    DriverDevmode record;
    DOCUMENTPROPERTYHEADER header = {};
    DEVICEPROPERTYHEADER deviceHeader = {};
    Sheet* pSheet = nullptr;
};

#endif

/* What applications see of a printer: the system's common dialogs, device contexts and documents, over a spooler that
   tells the driver the room for a whole record (full_size_library.cpp). */
#include <algorithm>
#include <cstring>

#include "spooled_record.h"

#include <commdlg.h> /* needs the system's header in front */

namespace fs = std::filesystem;

namespace {

/* A record of the driver that a common dialog gave back in a global block, which goes with it. */
Record TakeRecord(HGLOBAL hBlock)
{
    Record record;
    if (const auto* pBlock = static_cast<const unsigned char*>(GlobalLock(hBlock))) {
        record.assign(pBlock, pBlock + GlobalSize(hBlock));
        GlobalUnlock(hBlock);
    }
    GlobalFree(hBlock);
    EXPECT_GE(record.size(), sizeof(DriverDevmode));
    record.resize(sizeof(DriverDevmode));
    return record;
}

HGLOBAL GiveRecord(const Record& record)
{
    const HGLOBAL hBlock = GlobalAlloc(GMEM_MOVEABLE, record.size());
    std::memcpy(GlobalLock(hBlock), record.data(), record.size());
    GlobalUnlock(hBlock);
    return hBlock;
}

/* The dialog's user agrees as soon as it is there. */
UINT_PTR CALLBACK PressOkHook(HWND hDialog, UINT uMessage, WPARAM, LPARAM)
{
    if (uMessage == WM_INITDIALOG) {
        PostMessageW(hDialog, WM_COMMAND, IDOK, 0);
    }
    return 0;
}

std::vector<WORD> PaperCodes(const InstalledPrinter& printer)
{
    const int nPapers = DeviceCapabilitiesW(printer.Name(), L"FILE:", DC_PAPERS, nullptr, nullptr);
    std::vector<WORD> codes(nPapers > 0 ? static_cast<size_t>(nPapers) : 0);
    DeviceCapabilitiesW(printer.Name(), L"FILE:", DC_PAPERS, reinterpret_cast<WCHAR*>(codes.data()), nullptr);
    return codes;
}

class Applications : public ::testing::TestWithParam<std::string> {
  protected:
    Applications()
        : printer(Install(GetParam(), "TQUI_FULL_SIZE_LIBRARY")), hosted(HostedRecord(GetParam(), ".stored"))
    {
        EXPECT_TRUE(SetDefaultPrinterW(printer.Name()));
    }

    void ExpectDefault(Record record, const char* cWhere)
    {
        EXPECT_EQ(Difference(record, hosted), -1) << cWhere << ": first byte that differs";
        EXPECT_EQ(AsDevmode(record)->dmFormName[0], 0);
        EXPECT_EQ(std::wstring(AsDevmode(record)->dmDeviceName), std::wstring(printer.Name()).substr(0, 31))
            << cWhere;
    }

    InstalledPrinter printer;
    Record hosted; /* the default, as the hosted build makes it */
};

} // namespace

/* Nobody has raised an event: the first record is what the installation itself was told. */
TEST_P(Applications, GetTheDefaultRecordFromEveryCommonDialog)
{
    std::vector<BYTE> block(32768);
    DWORD cb = 0;
    ASSERT_TRUE(GetPrinterW(printer.Handle(), 2, block.data(), static_cast<DWORD>(block.size()), &cb));
    const auto* pStored = reinterpret_cast<const unsigned char*>(
        reinterpret_cast<const PRINTER_INFO_2W*>(block.data())->pDevMode);
    ASSERT_TRUE(pStored);
    ExpectDefault(Record(pStored, pStored + sizeof(DriverDevmode)), "stored by the installation");

    PRINTDLGW print = {};
    print.lStructSize = sizeof print;
    print.Flags = PD_RETURNDEFAULT;
    ASSERT_TRUE(PrintDlgW(&print)) << CommDlgExtendedError();
    ExpectDefault(TakeRecord(print.hDevMode), "print dialog");
    GlobalFree(print.hDevNames);

    PAGESETUPDLGW page = {};
    page.lStructSize = sizeof page;
    page.Flags = PSD_RETURNDEFAULT;
    ASSERT_TRUE(PageSetupDlgW(&page)) << CommDlgExtendedError();
    Record record = TakeRecord(page.hDevMode);
    ExpectDefault(record, "page set-up dialog");
    GlobalFree(page.hDevNames);

    /* What the record says is among what the printer says that it can. */
    const std::vector<WORD> codes = PaperCodes(printer);
    EXPECT_TRUE(std::ranges::count(codes, static_cast<WORD>(AsDevmode(record)->dmPaperSize)));
    EXPECT_EQ(DeviceCapabilitiesW(printer.Name(), L"FILE:", DC_SIZE, nullptr, nullptr),
              AsDevmode(record)->dmSize);
    EXPECT_EQ(DeviceCapabilitiesW(printer.Name(), L"FILE:", DC_EXTRA, nullptr, nullptr),
              AsDevmode(record)->dmDriverExtra);
    EXPECT_EQ(static_cast<DWORD>(DeviceCapabilitiesW(printer.Name(), L"FILE:", DC_FIELDS, nullptr, nullptr)) &
                  AsDevmode(record)->dmFields & (DM_PAPERSIZE | DM_ORIENTATION | DM_COPIES),
              static_cast<DWORD>(DM_PAPERSIZE | DM_ORIENTATION | DM_COPIES));
}

TEST_P(Applications, KeepTheirChoicesThroughDialogContextAndDocument)
{
    Record chosen = hosted;
    std::memcpy(AsDevmode(chosen)->dmDeviceName, printer.Name(), 31 * sizeof(WCHAR));
    AsDevmode(chosen)->dmCopies = 123;
    PRINTDLGW print = {};
    print.lStructSize = sizeof print;
    print.Flags = PD_ENABLEPRINTHOOK | PD_USEDEVMODECOPIESANDCOLLATE;
    print.lpfnPrintHook = PressOkHook;
    print.hDevMode = GiveRecord(chosen);
    ASSERT_TRUE(PrintDlgW(&print)) << CommDlgExtendedError();
    Record kept = TakeRecord(print.hDevMode);
    GlobalFree(print.hDevNames);
    EXPECT_EQ(AsDevmode(kept)->dmCopies, 123);
    EXPECT_EQ(
        std::memcmp(kept.data() + PUBLIC_BYTES, chosen.data() + PUBLIC_BYTES, kept.size() - PUBLIC_BYTES), 0);

    const HDC hContext = CreateDCW(L"WINSPOOL", printer.Name(), nullptr, AsDevmode(kept));
    ASSERT_TRUE(hContext);
    AsDevmode(kept)->dmOrientation = DMORIENT_LANDSCAPE;
    EXPECT_EQ(ResetDCW(hContext, AsDevmode(kept)), hContext);

    const fs::path tcOutput = fs::temp_directory_path() / "tqui-application.prn";
    const std::wstring wcOutput = tcOutput.wstring();
    DOCINFOW document = {};
    document.cbSize = sizeof document;
    document.lpszDocName = L"Letter";
    document.lpszOutput = wcOutput.c_str();
    EXPECT_GT(StartDocW(hContext, &document), 0);
    EXPECT_GT(StartPage(hContext), 0);
    EXPECT_TRUE(TextOutW(hContext, 300, 300, L"Letter", 6));
    EXPECT_GT(EndPage(hContext), 0);
    EXPECT_GT(EndDoc(hContext), 0);
    EXPECT_TRUE(DeleteDC(hContext));
    EXPECT_GT(fs::file_size(tcOutput), 0u);
    fs::remove(tcOutput);
}

INSTANTIATE_TEST_SUITE_P(Package, Applications, ::testing::Values("T410A", "QP5", "K100"),
                         [](const auto& test) { return test.param; });

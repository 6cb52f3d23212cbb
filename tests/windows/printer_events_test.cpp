/* Printer events of the installed library in the system's own spooler; forms, print processors and the deletion of
   values come from the supplement. Values and forms are held against the expectations of the hosted tests. */
#include <cstring>

#include <gtest/gtest.h>

#include "entry/exports.h"
#include "installed_printer.h"
#include "places.h"

namespace fs = std::filesystem;

namespace {

enum : int { ADD_CONNECTION = 1, DELETE_CONNECTION, INITIALIZE, DELETE_PRINTER };

/* A value's bytes in rows of hex, as the expectations have them; "" when it is not there. */
std::string BinaryText(HANDLE hPrinter, const std::wstring& wcValue)
{
    std::vector<BYTE> bytes(65536);
    DWORD dwType = 0, cb = 0;
    if (GetPrinterDataW(hPrinter, const_cast<LPWSTR>(wcValue.c_str()), &dwType, bytes.data(),
                        static_cast<DWORD>(bytes.size()), &cb) != ERROR_SUCCESS) {
        return "";
    }
    std::string text = "binary " + std::to_string(cb);
    for (DWORD i = 0; i < cb; i++) {
        char cByte[16];
        std::snprintf(cByte, sizeof cByte, i % 32 ? " %02X" : "\n    %02X", bytes[i]);
        text += cByte;
    }
    return dwType == REG_BINARY ? text : "type " + std::to_string(dwType);
}

std::wstring Text(HANDLE hPrinter, const wchar_t* wcValue)
{
    WCHAR wcText[260] = {};
    DWORD dwType = 0, cb = 0;
    GetPrinterDataW(hPrinter, const_cast<LPWSTR>(wcValue), &dwType, reinterpret_cast<BYTE*>(wcText),
                    sizeof wcText - 2, &cb);
    return wcText;
}

bool HasPrinterForm(HANDLE hPrinter, const std::wstring& wcName)
{
    std::vector<BYTE> block(262144);
    DWORD cb = 0, nForms = 0;
    EXPECT_TRUE(EnumFormsW(hPrinter, 1, block.data(), static_cast<DWORD>(block.size()), &cb, &nForms));
    const FORM_INFO_1W* pForm = reinterpret_cast<const FORM_INFO_1W*>(block.data());
    for (DWORD i = 0; i < nForms; i++) {
        if (pForm[i].Flags == FORM_PRINTER && wcName == pForm[i].pName) {
            return true;
        }
    }
    return false;
}

class PrinterEvents : public ::testing::TestWithParam<std::string> {};

} // namespace

TEST_P(PrinterEvents, FromSettingUpToDeletion)
{
    const InstalledPrinter printer = Install(GetParam());
    const auto raise = EXPORT_OF(printer, DrvPrinterEvent);
    LPWSTR wcName = const_cast<LPWSTR>(printer.Name());
    const fs::path tcFontFile = printer.Files()[2];
    ASSERT_EQ(raise(wcName, INITIALIZE, 0, 0), 1);

    const std::string wanted = FileBytes("Z:" TQUI_SOURCE_DIR "/tests/golden/install/" + GetParam() + ".txt");
    ASSERT_NE(wanted, "");
    for (const char* cValue :
         {"deviceinfo", "margin", "papersizes", "stdpapers", "papernames", "colordata", "mediatypes"}) {
        size_t nAt = wanted.find(std::string("value ") + cValue + " ");
        std::string value;
        if (nAt != wanted.npos) {
            nAt += std::strlen(cValue) + 7;
            size_t nEnd = std::min(wanted.find("\nvalue", nAt), wanted.find("\nform", nAt));
            value = wanted.substr(nAt, std::min(nEnd, wanted.find("\nprocessor", nAt)) - nAt);
        }
        EXPECT_EQ(BinaryText(printer.Handle(), std::wstring(cValue, cValue + std::strlen(cValue))), value)
            << cValue;
    }
    EXPECT_EQ(Text(printer.Handle(), L"PDFName"), tcFontFile.filename().wstring());
    EXPECT_EQ("font file " + std::to_string(fs::file_size(tcFontFile)) + " bytes\n",
              wanted.substr(wanted.rfind("font file")));

    std::vector<BYTE> block(32768);
    DWORD cb = 0;
    EXPECT_TRUE(GetPrinterW(printer.Handle(), 2, block.data(), static_cast<DWORD>(block.size()), &cb));
    const PRINTER_INFO_2W& info = *reinterpret_cast<const PRINTER_INFO_2W*>(block.data());
    const bool bImage = wanted.find("processor JOB=") != wanted.npos;
    EXPECT_EQ(info.pPrintProcessor, std::wstring(bImage ? L"JOB" : L"winprint"));
    WCHAR wcDefault[256] = {};
    DWORD cchDefault = 256;
    EXPECT_TRUE(GetDefaultPrinterW(wcDefault, &cchDefault));
    EXPECT_EQ(wcDefault, std::wstring(printer.Name())) << "what the spooler's routine 204 is here";

    const fs::path tcFolder =
        fs::path(_wgetenv(L"USERPROFILE")) / "Application Data" / "Corvantis Optics" / info.pDriverName;
    const fs::path tcSettings = tcFolder / Text(printer.Handle(), L"Settings");
    EXPECT_TRUE(fs::is_regular_file(tcSettings)) << tcSettings;
    for (size_t nAt = 0; (nAt = wanted.find("form \"Card", nAt)) != wanted.npos; nAt++) {
        EXPECT_TRUE(HasPrinterForm(printer.Handle(), L"Card 5 x 7 in"));
    }
    /* The font installer was started: its stand-in leaves word. */
    fs::path tcStarted = tcFontFile.parent_path() / "GLYF.EXE.started";
    const auto waitForStart = [&] {
        for (int i = 0; i < 100 && !fs::exists(tcStarted); i++) {
            Sleep(50);
        }
        return fs::exists(tcStarted);
    };
    EXPECT_TRUE(waitForStart());
    fs::remove(tcStarted);

    const auto nExtended = fs::file_size(tcFontFile);
    EXPECT_EQ(raise(wcName, ADD_CONNECTION, 0, 0), 1);
    EXPECT_EQ(raise(wcName, INITIALIZE, 0, 0), 1);
    EXPECT_EQ(fs::file_size(tcFontFile), nExtended);
    EXPECT_EQ(raise(wcName, DELETE_CONNECTION, 0, 0), 1);
    EXPECT_FALSE(fs::exists(tcSettings));
    EXPECT_EQ(raise(wcName, ADD_CONNECTION, 0, 0), 1);
    EXPECT_TRUE(fs::exists(tcSettings));
    EXPECT_EQ(raise(wcName, DELETE_PRINTER, 0, 0), 1);
    EXPECT_FALSE(fs::exists(tcSettings));
    waitForStart();
    Sleep(200); /* the stand-ins end before their folder goes */
    fs::remove(tcStarted);
}

INSTANTIATE_TEST_SUITE_P(Samples, PrinterEvents, ::testing::Values("T410A", "QP5", "K100"));

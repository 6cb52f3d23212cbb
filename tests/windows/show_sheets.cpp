/* Opens the sheets of every printer of the package in the system's own host and takes a picture of each page:

     show_sheets FOLDER | --prepare

   The package and the library to install are named by TQUI_BUILT and TQUI_TEST_LIBRARY. scripts/show-sheets runs it;
   --prepare has Wine draw the title bars, which no window manager does here. */
#include <cstdio>

#include <windows.h>

#include <commctrl.h>

#include "page_user.h"
#include "sheet_user.h"
#include "support/data_file.h"
#include "window_picture.h"

namespace {

int nBad = 0;

std::string Plain(const std::wstring& wcText)
{
    std::string text;
    for (WCHAR wc : wcText) {
        text += wc > 0x20 && wc < 0x7F ? static_cast<char>(wc) : '_';
    }
    return text;
}

/* Wine paints the title of the window that is active; without a window manager none is. */
void Photograph(HWND hWnd, const std::string& path)
{
    SendMessageW(hWnd, WM_NCACTIVATE, 1, 0);
    RedrawWindow(hWnd, nullptr, nullptr, RDW_INVALIDATE | RDW_FRAME | RDW_ALLCHILDREN | RDW_UPDATENOW);
    Sleep(100);
    if (!WritePicture(hWnd, path)) {
        std::printf("%s: no picture\n", path.c_str());
        nBad++;
    }
}

/* Each page as it opens, then the states of the list. */
SheetUser Photographer(const std::string& stem, const std::string& model)
{
    return [stem, model](HWND hSheet) {
        SetWindowPos(hSheet, HWND_TOPMOST, 40, 40, 0, 0, SWP_NOSIZE);
        const std::vector<std::wstring> tabs = SheetTabs(hSheet);
        for (size_t n = 0; n < tabs.size(); n++) {
            ShowTab(hSheet, static_cast<int>(n));
            Photograph(hSheet, stem + "-" + std::to_string(n + 1) + "-" + Plain(tabs[n]) + ".bmp");
        }
        for (const DataRow& row : model.empty() ? std::vector<DataRow>() : ReadRows("show_states.txt")) {
            if (!row[1].empty() && row[1].find(model) == std::string::npos) {
                continue;
            }
            const std::string fault = DoSteps(hSheet, row[2]);
            if (!fault.empty()) {
                std::printf("%s %s: %s\n", model.c_str(), row[0].c_str(), fault.c_str());
                nBad++;
                break;
            }
            Photograph(UppermostWindow(hSheet), stem + "-" + row[0] + ".bmp");
        }
        std::printf("%s: %d pages\n", stem.c_str(), static_cast<int>(tabs.size()));
        PressCancel(hSheet);
    };
}

int Prepare()
{
    const wchar_t* wcKey = L"Software\\Wine\\AppDefaults\\show_sheets.exe\\X11 Driver";
    return RegSetKeyValueW(HKEY_CURRENT_USER, wcKey, L"Managed", REG_SZ, L"N", 4) == ERROR_SUCCESS ? 0 : 1;
}

void ShowModel(const InfModel& model, const std::string& folder)
{
    const InstalledPrinter printer(model, PathFromEnvironment("TQUI_BUILT"),
                                   PathFromEnvironment("TQUI_TEST_LIBRARY"));
    std::vector<BYTE> out(4088);
    const SheetVisit document =
        VisitDocumentSheet(printer, reinterpret_cast<DEVMODEW*>(out.data()), nullptr,
                           Photographer(folder + "/" + model.section + "-document", model.section));
    const SheetVisit device =
        VisitDeviceSheet(printer, Photographer(folder + "/" + model.section + "-printer", ""));
    if (!document.bShown || !device.bShown) {
        std::printf("%s: a sheet did not come up (%ld, %ld)\n", model.section.c_str(), document.lResult,
                    device.lResult);
        nBad++;
    }
}

} // namespace

int main(int nArguments, char** aArguments)
{
    if (nArguments != 2) {
        std::fprintf(stderr, "usage: show_sheets FOLDER | --prepare\n");
        return 2;
    }
    if (std::string(aArguments[1]) == "--prepare") {
        return Prepare();
    }
    InitCommonControls();
    try {
        for (const InfModel& model : ReadInf(PathFromEnvironment("TQUI_BUILT") / "tqui.inf")) {
            ShowModel(model, aArguments[1]);
        }
    } catch (const std::exception& error) {
        std::fprintf(stderr, "show_sheets: %s\n", error.what());
        return 2;
    }
    return nBad ? 1 : 0;
}

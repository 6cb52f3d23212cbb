/* Opens the sheets of every printer of the package in the system's own host and takes a picture of each page:

     show_sheets FOLDER | --prepare

   The package and the library to install are named by TQUI_BUILT and TQUI_TEST_LIBRARY. scripts/show-sheets runs it;
   --prepare has Wine draw the title bars, which no window manager does here. */
#include <cstdio>

#include <windows.h>

#include <commctrl.h>

#include "sheet_user.h"
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

SheetUser Photographer(const std::string& stem)
{
    return [stem](HWND hSheet) {
        SetWindowPos(hSheet, HWND_TOPMOST, 40, 40, 0, 0, SWP_NOSIZE);
        const std::vector<std::wstring> tabs = SheetTabs(hSheet);
        for (size_t n = 0; n < tabs.size(); n++) {
            const HWND hPage = ShowTab(hSheet, static_cast<int>(n));
            RedrawWindow(hSheet, nullptr, nullptr, RDW_INVALIDATE | RDW_ALLCHILDREN | RDW_UPDATENOW);
            Sleep(200);
            const std::string path = stem + "-" + std::to_string(n + 1) + "-" + Plain(tabs[n]) + ".bmp";
            if (!hPage || !WritePicture(hSheet, path)) {
                std::printf("%s: no picture\n", path.c_str());
                nBad++;
            }
        }
        std::printf("%s: %d pages\n", stem.c_str(), static_cast<int>(tabs.size()));
        PressOk(hSheet);
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
    const SheetVisit document = VisitDocumentSheet(printer, reinterpret_cast<DEVMODEW*>(out.data()), nullptr,
                                                   Photographer(folder + "/" + model.section + "-document"));
    const SheetVisit device =
        VisitDeviceSheet(printer, Photographer(folder + "/" + model.section + "-printer"));
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

/* Shows the dialogs of a language library and writes a picture of each state:

     show_templates LIBRARY FOLDER

   Pages stand in a property sheet of the system. Labels are loaded as the driver loads them, lists and fields
   get sample contents, and a line of every picture goes to standard output. scripts/show-templates runs it.
   With --prepare instead of arguments it has Wine draw the title bars, which no window manager does here. */
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include <windows.h>

#include <commctrl.h>

#include "window_picture.h"

namespace {

using Ids = std::vector<int>;

/* A template in one of its states. */
struct Picture {
    int nTemplate, nTitle; /* string of the tab or title */
    const char* cName;
    Ids shown, hidden, disabled;
};

const Ids CORRECTION = {1132, 1316, 1711};
const Ids INTENT = {1132, 1316, 1964, 1331};
const Ids TONE = {1128, 1945, 1530, 1612, 1946, 1531, 1613};
const Ids IMAGE_ONLY = {1151, 1216, 1217, 1863, 1304, 1983, 1342, 1809, 1738};

const Ids AT_MANY = {1998, 1306, 1803, 1919, 1323};

const std::vector<Picture> pages = {
    {1002, 1002, "layout-one-page", {}, {1819, 1803, 1919, 1323}, {}},
    {1002, 1002, "layout-pages", {}, {1819}, {}},
    {1002, 1002, "layout-poster", {1989, 1348}, {1998, 1306, 1803, 1919, 1323, 1819}, {1205, 1206, 1207}},
    {1002, 1002, "layout-booklet", {}, AT_MANY, {1205, 1206, 1207}},
    {1003, 1003, "paper", {}, {1811}, {}},
    {1003, 1003, "paper-image-zoomed", {1661, 1686}, {}, {}},
    {1004, 1004, "quality", CORRECTION, IMAGE_ONLY, {}},
    {1004, 1004, "quality-intent", INTENT, IMAGE_ONLY, {}},
    {1004, 1004, "quality-image-correction", CORRECTION, {}, {}},
    {1004, 1004, "quality-image-tone", TONE, {}, {}},
    {1040, 1040, "watermarks", {}, {1895, 1520, 1608, 1877}, {}},
    {1040, 1040, "watermarks-transparency", {}, {}, {}},
    {1030, 1030, "fonts", {}, {}, {1713, 1714}},
    {1030, 1030, "fonts-read-only", {}, {1712, 1713, 1714, 1715}, {}},
    {1031, 1030, "device-fonts", {}, {}, {1713, 1714}},
    {1031, 1030, "device-fonts-read-only", {}, {1712, 1713, 1714, 1715}, {}},
    {1098, 1099, "device-about", {}, {}, {}},
};

const std::vector<Picture> dialogs = {
    {1099, 1099, "about", {}, {}, {}},
    {1008, 1008, "papers", {}, {}, {}},
    {1011, 1011, "paper-new", {}, {1709}, {1710}},
    {1011, 1012, "paper-edit", {}, {1710}, {}},
    {1032, 1031, "fontpair-add", {}, {1880, 1518}, {}},
    {1032, 1032, "fontpair-edit", {}, {1881, 1319}, {}},
    {1041, 1041, "watermark-text-new-colour", {1654}, {1723, 1874, 1510, 1605, 1877}, {1722}},
    {1041, 1042, "watermark-text-edit-monochrome", {}, {1722, 1115, 1725}, {}},
    {1042, 1042, "watermark-image", {}, {1722}, {}},
    {1063, 1062, "options-three", {}, {}, {}},
    {1064, 1062, "options-four", {}, {}, {}},
    {1064, 1063, "options-fixed", {}, {1950, 1326, 1951, 1327, 1952, 1328, 1953, 1329}, {}},
    {1007, 1021, "colour-files", {}, {}, {}},
    {1090, 1090, "notice", {}, {}, {}},
    {1090, 1091, "notice-limits", {}, {}, {}},
    {1090, 1090, "notice-description", {1916}, {1921, 1922, 1923, 1924}, {}},
    {1091, 1092, "notice-choice", {}, {}, {}},
};

/* Labels whose string bears another number. */
const std::map<int, int> otherStrings = {{1892, 1132}, {1709, 1702}, {1723, 1702}, {1724, 1702},
                                         {1740, 1702}, {1710, 1752}, {1722, 1752}, {1717, 1752},
                                         {1725, 1755}, {1880, 1879}, {1881, 1879}, {1866, 2455},
                                         {1868, 2456}, {1980, 2455}, {1981, 2456}};

/* Rows of combo boxes from strings: first and last. */
const std::map<int, std::pair<int, int>> stringRows = {
    {1359, {2752, 2754}}, {1306, {2320, 2327}}, {1323, {2334, 2341}}, {1348, {2371, 2373}},
    {1400, {2755, 2757}}, {1316, {2201, 2204}}, {1331, {2207, 2208}}, {1357, {2519, 2526}},
    {1334, {2425, 2427}}, {1335, {2428, 2429}}, {1326, {2224, 2224}}, {1327, {2224, 2224}},
    {1328, {2224, 2224}}, {1329, {2224, 2224}}, {1320, {2310, 2310}}};

const std::map<int, const wchar_t*> sampleTexts = {
    {1301, L"A3 Extra 322 x 445 mm"},
    {1344, L"Heavy Coated Paper 2"},
    {1303, L"Finisher Upper Tray"},
    {1304, L"1200 x 1200 dpi"},
    {1342, L"Fine, 175 lines"},
    {1333, L"CMYK"},
    {1317, L"Liberation Sans Narrow"},
    {1319, L"Liberation Sans Narrow"},
    {1501, L"99"},
    {1506, L"141"},
    {1520, L"50"},
    {1530, L"-50"},
    {1531, L"50"},
    {1503, L"Index card 5 x 8"},
    {1504, L"215.9"},
    {1505, L"355.6"},
    {1507, L"CONFIDENTIAL"},
    {1508, L"300"},
    {1509, L"359"},
    {1510, L"100"},
    {1511, L"-250.0"},
    {1512, L"-250.0"},
    {1515, L"400"},
    {1516, L"Company emblem"},
    {1514, L"C:\\Users\\Public\\Pictures\\emblem.tif"},
    {1518, L"Liberation Sans"},
    {1538, L"C:\\Profiles\\Coated paper.icc"},
    {1539, L"C:\\Screens\\Stochastic.hft"},
    {1920, L"297.2 x 420.6 mm"},
    {1896, L"QP5 Printer Driver"},
    {1897, L"Copyright Corvantis Optics"},
    {1898, L"All rights reserved."},
    {1899, L"Rendering library"},
    {1900, L"Version 10.51.0.0"},
    {1901, L"www.example.com"},
    {1950, L"Colour reproduction"},
    {1951, L"Colour reproduction"},
    {1952, L"Colour reproduction"},
    {1953, L"Trapping"},
    {1403, L"Index card 5 x 8 (127.0 x 203.2 mm)"},
    {1404, L"Liberation Sans => Helvetica"},
    {1405, L"CONFIDENTIAL"},
    {1410, L"Black generation\tMaximum"},
    {1411, L"Rendering\tPhotographic"},
    {1412, L"Rendering\tSaturated"},
    {1413, L"Trapping\tDefault"},
    {1916,
     L"The finisher cannot staple transparencies or sheets of more than 128 g/m2 weight. Choose another "
     L"media type, or switch stapling off, before the document is printed with these settings."}};

/* The longest strings that these lines may get. */
const std::map<int, int> sampleStrings = {{1925, 2605}, {1926, 2614}, {1927, 2608},
                                          {1928, 2609}, {1929, 2603}, {1921, 2509},
                                          {1922, 2510}, {1923, 2506}, {1924, 2508}};

HMODULE hLibrary;
std::string folder;
const Picture* pPicture; /* of the dialog that is being opened */
int nBad = 0;

std::wstring LoadText(int nId)
{
    wchar_t wcText[128] = {};
    LoadStringW(hLibrary, static_cast<UINT>(nId), wcText, 128);
    return wcText;
}

void SetLabel(HWND hControl, int nId)
{
    const auto other = otherStrings.find(nId);
    const std::wstring text = LoadText(other == otherStrings.end() ? nId : other->second);
    const auto line = sampleStrings.find(nId);
    const auto sample = sampleTexts.find(nId);
    if (!text.empty()) {
        SetWindowTextW(hControl, text.c_str());
    } else if (line != sampleStrings.end()) {
        const bool bLimits = pPicture->nTitle == 1091 && nId >= 1921 && nId <= 1924;
        SetWindowTextW(hControl, LoadText(bLimits ? nId - 1921 + 2513 : line->second).c_str());
    } else if (sample != sampleTexts.end()) {
        SetWindowTextW(hControl, sample->second);
    }
}

void FillRows(HWND hControl, int nId, UINT uAdd, UINT uSelect)
{
    const auto rows = stringRows.find(nId);
    if (rows != stringRows.end()) {
        for (int n = rows->second.first; n <= rows->second.second; n++) {
            SendMessageW(hControl, uAdd, 0, reinterpret_cast<LPARAM>(LoadText(n).c_str()));
        }
    } else if (sampleTexts.count(nId)) {
        for (int n = 0; n < 4; n++) {
            SendMessageW(hControl, uAdd, 0, reinterpret_cast<LPARAM>(sampleTexts.at(nId)));
        }
    }
    SendMessageW(hControl, uSelect, 0, 0);
}

BOOL CALLBACK FillControl(HWND hControl, LPARAM)
{
    const int nId = GetDlgCtrlID(hControl);
    wchar_t wcClass[32] = {};
    GetClassNameW(hControl, wcClass, 32);
    const bool bList = !lstrcmpiW(wcClass, L"ListBox");
    const LONG lStyle = GetWindowLongW(hControl, GWL_STYLE);
    if (bList || !lstrcmpiW(wcClass, L"ComboBox")) {
        const int nTab = 80;
        if (bList && (lStyle & LBS_USETABSTOPS)) {
            SendMessageW(hControl, LB_SETTABSTOPS, 1, reinterpret_cast<LPARAM>(&nTab));
        }
        FillRows(hControl, nId, bList ? LB_ADDSTRING : CB_ADDSTRING, bList ? LB_SETCURSEL : CB_SETCURSEL);
    } else if (nId == 1692 || nId == 1653) {
        const UINT uFlags = LR_LOADMAP3DCOLORS | LR_LOADTRANSPARENT;
        const HANDLE hPicture =
            LoadImageW(hLibrary, nId == 1692 ? L"LOGOBITMAP" : L"DUPLONG", IMAGE_BITMAP, 0, 0, uFlags);
        SendMessageW(hControl, STM_SETIMAGE, IMAGE_BITMAP, reinterpret_cast<LPARAM>(hPicture));
    } else if (!lstrcmpiW(wcClass, L"Static") && (lStyle & SS_TYPEMASK) == SS_ICON) {
        const HICON hIcon = LoadIconW(nullptr, nId == 1652 ? IDI_HAND : IDI_ASTERISK);
        SendMessageW(hControl, STM_SETICON, reinterpret_cast<WPARAM>(hIcon), 0);
    } else {
        SetLabel(hControl, nId);
    }
    return TRUE;
}

/* The list of font pairs grows by half where it may not be written. */
void WidenFontList(HWND hDialog)
{
    RECT rect{};
    const HWND hList = GetDlgItem(hDialog, 1404);
    GetWindowRect(hList, &rect);
    SetWindowPos(hList, nullptr, 0, 0, (rect.right - rect.left) * 3 / 2, rect.bottom - rect.top,
                 SWP_NOMOVE | SWP_NOZORDER);
}

/* Draws a sheet in the frames, so that their place is seen. */
void DrawFrames(HWND hDialog)
{
    for (const int nId : {1651, 1684, 1654}) {
        const HWND hFrame = GetDlgItem(hDialog, nId);
        if (!hFrame || (nId == 1654 && IsWindowVisible(GetDlgItem(hDialog, 1725)) == 0)) {
            continue;
        }
        RECT rect{};
        GetWindowRect(hFrame, &rect);
        MapWindowPoints(nullptr, hDialog, reinterpret_cast<POINT*>(&rect), 2);
        const HDC hdc = GetDC(hDialog);
        FrameRect(hdc, &rect, static_cast<HBRUSH>(GetStockObject(GRAY_BRUSH)));
        const int nSide =
            rect.right - rect.left < rect.bottom - rect.top ? rect.right - rect.left : rect.bottom - rect.top;
        const int nX = (rect.left + rect.right) / 2, nY = (rect.top + rect.bottom) / 2;
        if (nId != 1654) {
            rect = {nX - nSide * 10 / 28, nY - nSide / 2, nX + nSide * 10 / 28, nY + nSide / 2};
        }
        FillRect(hdc, &rect, static_cast<HBRUSH>(GetStockObject(nId == 1654 ? GRAY_BRUSH : WHITE_BRUSH)));
        FrameRect(hdc, &rect, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
        ReleaseDC(hDialog, hdc);
    }
}

INT_PTR CALLBACK DialogProc(HWND hDialog, UINT uMsg, WPARAM, LPARAM)
{
    if (uMsg != WM_INITDIALOG) {
        return FALSE;
    }
    EnumChildWindows(hDialog, FillControl, 0);
    for (const int nId : pPicture->shown) {
        ShowWindow(GetDlgItem(hDialog, nId), nId == 1654 ? SW_HIDE : SW_SHOW);
    }
    for (const int nId : pPicture->hidden) {
        ShowWindow(GetDlgItem(hDialog, nId), SW_HIDE);
    }
    for (const int nId : pPicture->disabled) {
        EnableWindow(GetDlgItem(hDialog, nId), FALSE);
    }
    for (const int nId : {1221, 1206, 1208, 1216, 1203, 1218, 1801, 1804}) {
        CheckDlgButton(hDialog, nId, BST_CHECKED);
    }
    if (GetDlgItem(hDialog, 1404) && !pPicture->hidden.empty()) {
        WidenFontList(hDialog);
    }
    SetWindowTextW(hDialog, LoadText(pPicture->nTitle).c_str());
    return FALSE;
}

void Pump(DWORD dwMilliseconds)
{
    for (const DWORD dwBegin = GetTickCount(); GetTickCount() - dwBegin < dwMilliseconds;) {
        MSG msg{};
        while (PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) {
            TranslateMessage(&msg);
            DispatchMessageW(&msg);
        }
        Sleep(10);
    }
}

void TakePicture(HWND hWindow, HWND hDialog)
{
    ShowWindow(hWindow, SW_SHOW);
    SetForegroundWindow(hWindow);
    Pump(150);
    DrawFrames(hDialog);
    Pump(20);
    if (!WritePicture(hWindow, folder + "/" + pPicture->cName + ".bmp")) {
        std::printf("%s: not written\n", pPicture->cName);
        nBad++;
    }
    RECT rect{};
    GetWindowRect(hWindow, &rect);
    std::printf("%s: %ld x %ld\n", pPicture->cName, rect.right - rect.left, rect.bottom - rect.top);
}

void NotOpened()
{
    std::printf("%s: template %d could not be opened\n", pPicture->cName, pPicture->nTemplate);
    nBad++;
}

/* The page among all tabs of its sheet. */
void ShowPage()
{
    const bool bDevice = pPicture->nTemplate == 1031 || pPicture->nTemplate == 1098;
    const int aTemplates[] = {1002, 1003, 1004, 1040, 1030};
    const int aTitles[] = {1002, 1003, 1004, 1040, 1030};
    PROPSHEETPAGEW aPages[5] = {};
    std::wstring aTexts[5];
    UINT nPages = 0, nStart = 0;
    for (int n = 0; n < (bDevice ? 1 : 5); n++) {
        const int nTemplate = bDevice ? pPicture->nTemplate : aTemplates[n];
        aTexts[nPages] = LoadText(bDevice ? pPicture->nTitle : aTitles[n]);
        PROPSHEETPAGEW& page = aPages[nPages];
        page.dwSize = sizeof page;
        page.dwFlags = PSP_USETITLE;
        page.hInstance = hLibrary;
        page.pszTemplate = MAKEINTRESOURCEW(nTemplate);
        page.pszTitle = aTexts[nPages].c_str();
        page.pfnDlgProc = DialogProc;
        nStart = nTemplate == pPicture->nTemplate ? nPages : nStart;
        nPages++;
    }
    PROPSHEETHEADERW head{};
    head.dwSize = sizeof head;
    head.dwFlags = PSH_PROPSHEETPAGE | PSH_MODELESS;
    head.pszCaption = L"TQ";
    head.nPages = nPages;
    head.nStartPage = nStart;
    head.ppsp = aPages;
    const INT_PTR nResult = PropertySheetW(&head);
    const HWND hSheet = reinterpret_cast<HWND>(nResult);
    const HWND hPage = nResult > 0 ? PropSheet_GetCurrentPageHwnd(hSheet) : nullptr;
    if (!hPage) {
        NotOpened();
        return;
    }
    SetWindowPos(hSheet, HWND_TOPMOST, 40, 40, 0, 0, SWP_NOSIZE);
    TakePicture(hSheet, hPage);
    DestroyWindow(hSheet);
}

void ShowDialog()
{
    const HWND hDialog =
        CreateDialogParamW(hLibrary, MAKEINTRESOURCEW(pPicture->nTemplate), nullptr, DialogProc, 0);
    if (!hDialog) {
        NotOpened();
        return;
    }
    SetWindowPos(hDialog, HWND_TOPMOST, 40, 40, 0, 0, SWP_NOSIZE);
    TakePicture(hDialog, hDialog);
    DestroyWindow(hDialog);
}

int Prepare()
{
    const wchar_t* wcKey = L"Software\\Wine\\AppDefaults\\show_templates.exe\\X11 Driver";
    return RegSetKeyValueW(HKEY_CURRENT_USER, wcKey, L"Managed", REG_SZ, L"N", 4) == ERROR_SUCCESS ? 0 : 1;
}

} // namespace

int main(int nArguments, char** aArguments)
{
    if (nArguments == 2 && std::string(aArguments[1]) == "--prepare") {
        return Prepare();
    }
    if (nArguments != 3) {
        std::fprintf(stderr, "usage: show_templates LIBRARY FOLDER | --prepare\n");
        return 2;
    }
    InitCommonControls();
    hLibrary =
        LoadLibraryExA(aArguments[1], nullptr, LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE);
    if (!hLibrary) {
        std::fprintf(stderr, "show_templates: %s cannot be loaded\n", aArguments[1]);
        return 2;
    }
    folder = aArguments[2];
    for (const Picture& picture : pages) {
        pPicture = &picture;
        ShowPage();
    }
    for (const Picture& picture : dialogs) {
        pPicture = &picture;
        ShowDialog();
    }
    return nBad ? 1 : 0;
}

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

#include "description/control_ids.h"
#include "description/string_ids.h"
#include "window_picture.h"

namespace {

using Ids = std::vector<int>;

/* A template in one of its states. */
struct Picture {
    int nTemplate, nTitle; /* string of the tab or title */
    const char* cName;
    Ids shown, hidden, disabled;
};

const Ids CORRECTION = {IDC_QUALITY_CORRECTION_LABEL, IDC_QUALITY_CORRECTION, IDC_QUALITY_OPTIONS};
const Ids INTENT = {IDC_QUALITY_CORRECTION_LABEL, IDC_QUALITY_CORRECTION, IDC_QUALITY_INTENT_LABEL,
                    IDC_QUALITY_INTENT};
const Ids TONE = {IDC_QUALITY_TONE,           IDC_QUALITY_CONTRAST_LABEL,   IDC_QUALITY_CONTRAST,
                  IDC_QUALITY_CONTRAST_SPIN,  IDC_QUALITY_BRIGHTNESS_LABEL, IDC_QUALITY_BRIGHTNESS,
                  IDC_QUALITY_BRIGHTNESS_SPIN};
const Ids IMAGE_ONLY = {IDC_QUALITY_ADJUSTMENT,       IDC_QUALITY_ADJUSTMENT_ON, IDC_QUALITY_ADJUSTMENT_OFF,
                        IDC_QUALITY_RESOLUTION_LABEL, IDC_QUALITY_RESOLUTION,    IDC_QUALITY_SCREENING_LABEL,
                        IDC_QUALITY_SCREENING,        IDC_QUALITY_BLACK_TEXT,    IDC_QUALITY_COLOR_FILES};

const Ids DUPLEX = {IDC_LAYOUT_ONE_SIDE, IDC_LAYOUT_LONG_EDGE, IDC_LAYOUT_SHORT_EDGE};
const Ids AT_MANY = {IDC_LAYOUT_PAGES_LABEL, IDC_LAYOUT_PAGES, IDC_LAYOUT_BORDERS, IDC_LAYOUT_ORDER_LABEL,
                     IDC_LAYOUT_ORDER};
const Ids TRANSPARENCY = {IDC_WATERMARKS_TRANSPARENCY_LABEL, IDC_WATERMARKS_TRANSPARENCY,
                          IDC_WATERMARKS_TRANSPARENCY_SPIN, IDC_PERCENT};
const Ids FONT_BUTTONS = {IDC_FONTS_ADD, IDC_FONTS_EDIT, IDC_FONTS_DELETE, IDC_FONTS_DEFAULTS};
const Ids NO_FONT = {IDC_FONTS_EDIT, IDC_FONTS_DELETE};

const std::vector<Picture> pages = {
    {IDD_LAYOUT,
     IDS_TITLE_LAYOUT,
     "layout-one-page",
     {},
     {IDC_LAYOUT_BIND_RIGHT, IDC_LAYOUT_BORDERS, IDC_LAYOUT_ORDER_LABEL, IDC_LAYOUT_ORDER},
     {}},
    {IDD_LAYOUT, IDS_TITLE_LAYOUT, "layout-pages", {}, {IDC_LAYOUT_BIND_RIGHT}, {}},
    {IDD_LAYOUT,
     IDS_TITLE_LAYOUT,
     "layout-poster",
     {IDC_LAYOUT_POSTER_LABEL, IDC_LAYOUT_POSTER},
     {IDC_LAYOUT_PAGES_LABEL, IDC_LAYOUT_PAGES, IDC_LAYOUT_BORDERS, IDC_LAYOUT_ORDER_LABEL, IDC_LAYOUT_ORDER,
      IDC_LAYOUT_BIND_RIGHT},
     DUPLEX},
    {IDD_LAYOUT, IDS_TITLE_LAYOUT, "layout-booklet", {}, AT_MANY, DUPLEX},
    {IDD_PAPER, IDS_TITLE_PAPER, "paper", {}, {IDC_PAPER_IMAGE_OPTION}, {}},
    {IDD_PAPER, IDS_TITLE_PAPER, "paper-image-zoomed", {IDC_PAPER_ZOOM_ICON, IDC_PAPER_LAYOUT_ICON}, {}, {}},
    {IDD_QUALITY, IDS_TITLE_QUALITY, "quality", CORRECTION, IMAGE_ONLY, {}},
    {IDD_QUALITY, IDS_TITLE_QUALITY, "quality-intent", INTENT, IMAGE_ONLY, {}},
    {IDD_QUALITY, IDS_TITLE_QUALITY, "quality-image-correction", CORRECTION, {}, {}},
    {IDD_QUALITY, IDS_TITLE_QUALITY, "quality-image-tone", TONE, {}, {}},
    {IDD_WATERMARKS, IDS_TITLE_WATERMARKS, "watermarks", {}, TRANSPARENCY, {}},
    {IDD_WATERMARKS, IDS_TITLE_WATERMARKS, "watermarks-transparency", {}, {}, {}},
    {IDD_FONTS, IDS_TITLE_FONTS, "fonts", {}, {}, NO_FONT},
    {IDD_FONTS, IDS_TITLE_FONTS, "fonts-read-only", {}, FONT_BUTTONS, {}},
    {IDD_DEVICE_FONTS, IDS_TITLE_FONTS, "device-fonts", {}, {}, NO_FONT},
    {IDD_DEVICE_FONTS, IDS_TITLE_FONTS, "device-fonts-read-only", {}, FONT_BUTTONS, {}},
    {IDD_ABOUT_PAGE, IDS_TITLE_ABOUT, "device-about", {}, {}, {}},
};

const std::vector<Picture> dialogs = {
    {IDD_ABOUT, IDS_TITLE_ABOUT, "about", {}, {}, {}},
    {IDD_SIZES, IDS_TITLE_SIZES, "papers", {}, {}, {}},
    {IDD_SIZE, IDS_TITLE_NEW_SIZE, "paper-new", {}, {IDC_SIZE_CHANGE}, {IDC_SIZE_ADD}},
    {IDD_SIZE, IDS_TITLE_EDIT_SIZE, "paper-edit", {}, {IDC_SIZE_ADD}, {}},
    {IDD_PAIR, IDS_TITLE_ADD_PAIR, "fontpair-add", {}, {IDC_PAIR_NAME_LABEL, IDC_PAIR_NAME}, {}},
    {IDD_PAIR, IDS_TITLE_EDIT_PAIR, "fontpair-edit", {}, {IDC_PAIR_SYSTEM_LABEL, IDC_PAIR_SYSTEM}, {}},
    {IDD_TEXT_MARK,
     IDS_TITLE_NEW_MARK,
     "watermark-text-new-colour",
     {IDC_TEXT_MARK_COLOR_FRAME},
     {IDC_MARK_CHANGE, IDC_TEXT_MARK_DARKNESS_LABEL, IDC_TEXT_MARK_DARKNESS, IDC_TEXT_MARK_DARKNESS_SPIN,
      IDC_PERCENT},
     {IDC_MARK_ADD}},
    {IDD_TEXT_MARK,
     IDS_TITLE_EDIT_MARK,
     "watermark-text-edit-monochrome",
     {},
     {IDC_MARK_ADD, IDC_TEXT_MARK_COLOR, IDC_TEXT_MARK_COLOR_CHOOSE},
     {}},
    {IDD_IMAGE_MARK, IDS_TITLE_EDIT_MARK, "watermark-image", {}, {IDC_MARK_ADD}, {}},
    {IDD_OPTIONS3, IDS_TITLE_OPTIONS, "options-three", {}, {}, {}},
    {IDD_OPTIONS4, IDS_TITLE_OPTIONS, "options-four", {}, {}, {}},
    {IDD_OPTIONS4,
     IDS_TITLE_FIXED_OPTIONS,
     "options-fixed",
     {},
     {IDC_OPTIONS_TEXT_LABEL, IDC_OPTIONS_TEXT_VALUE, IDC_OPTIONS_IMAGE_LABEL, IDC_OPTIONS_IMAGE_VALUE,
      IDC_OPTIONS_GRAPHICS_LABEL, IDC_OPTIONS_GRAPHICS_VALUE, IDC_OPTIONS_GENERAL_LABEL,
      IDC_OPTIONS_GENERAL_VALUE},
     {}},
    {IDD_FILES, IDS_TITLE_FILES, "colour-files", {}, {}, {}},
    {IDD_NOTICE, IDS_TITLE_CONFLICT, "notice", {}, {}, {}},
    {IDD_NOTICE, IDS_TITLE_PAPER_SIZE, "notice-limits", {}, {}, {}},
    {IDD_NOTICE,
     IDS_TITLE_CONFLICT,
     "notice-description",
     {IDC_NOTICE_TEXT},
     {IDC_NOTICE_LINE1, IDC_NOTICE_LINE2, IDC_NOTICE_LINE3, IDC_NOTICE_LINE4},
     {}},
    {IDD_QUESTION, IDS_TITLE_OUTLINE, "notice-choice", {}, {}, {}},
};

/* Labels whose string bears another number. */
const std::map<int, int> otherStrings = {{IDC_QUALITY_CORRECTION_LABEL_ALONE, IDC_QUALITY_CORRECTION_LABEL},
                                         {IDC_SIZE_CHANGE, IDC_OK},
                                         {IDC_MARK_CHANGE, IDC_OK},
                                         {IDC_OPTIONS_OK, IDC_OK},
                                         {IDC_FILES_OK, IDC_OK},
                                         {IDC_SIZE_ADD, IDS_ADD},
                                         {IDC_MARK_ADD, IDS_ADD},
                                         {IDC_PAIR_OK, IDS_ADD},
                                         {IDC_TEXT_MARK_COLOR_CHOOSE, IDS_CHOOSE},
                                         {IDC_PAIR_NAME_LABEL, IDS_SYSTEM_FONT},
                                         {IDC_PAIR_SYSTEM_LABEL, IDS_SYSTEM_FONT},
                                         {IDC_SIZE_WIDTH_UNIT, IDS_UNIT_INCH},
                                         {IDC_SIZE_LENGTH_UNIT, IDS_UNIT_MM},
                                         {IDC_MARK_X_UNIT, IDS_UNIT_INCH},
                                         {IDC_MARK_Y_UNIT, IDS_UNIT_MM}};

/* Rows of combo boxes from strings: first and last. */
const std::map<int, std::pair<int, int>> stringRows = {
    {IDC_LAYOUT_TYPE, {IDS_LAYOUT_PAGES, IDS_LAYOUT_BOOKLET}},
    {IDC_LAYOUT_PAGES, {IDS_PAGES_1, IDS_PAGES_16}},
    {IDC_LAYOUT_ORDER, {IDS_ORDER_DOWN_RIGHT, IDS_ORDER_BOTTOM_TO_TOP}},
    {IDC_LAYOUT_POSTER, {IDS_POSTER_2, IDS_POSTER_4}},
    {IDC_PAPER_MEDICAL, {IDS_MEDICAL_OFF, IDS_MEDICAL_LANDSCAPE}},
    {IDC_QUALITY_CORRECTION, {IDS_MODE_SYSTEM, IDS_MODE_FIXED}},
    {IDC_QUALITY_INTENT, {IDS_INTENT_RELATIVE, IDS_INTENT_ABSOLUTE}},
    {IDC_IMAGE_MARK_PLACEMENT, {IDS_PLACE_TOP, IDS_PLACE_BOTTOM_RIGHT}},
    {IDC_FILES_PROFILE, {IDS_PROFILE_BUILT_IN, IDS_PROFILE_FILE}},
    {IDC_FILES_SCREEN, {IDS_SCREEN_BUILT_IN, IDS_SCREEN_FILE}},
    {IDC_OPTIONS_TEXT_VALUE, {IDS_OPTION_DEFAULT, IDS_OPTION_DEFAULT}},
    {IDC_OPTIONS_IMAGE_VALUE, {IDS_OPTION_DEFAULT, IDS_OPTION_DEFAULT}},
    {IDC_OPTIONS_GRAPHICS_VALUE, {IDS_OPTION_DEFAULT, IDS_OPTION_DEFAULT}},
    {IDC_OPTIONS_GENERAL_VALUE, {IDS_OPTION_DEFAULT, IDS_OPTION_DEFAULT}},
    {IDC_PAIR_PRINTER, {IDS_NO_PRINTER_FONT, IDS_NO_PRINTER_FONT}}};

const std::map<int, const wchar_t*> sampleTexts = {
    {IDC_PAPER_SIZE, L"A3 Extra 322 x 445 mm"},
    {IDC_PAPER_MEDIA, L"Heavy Coated Paper 2"},
    {IDC_PAPER_OUTPUT, L"Finisher Upper Tray"},
    {IDC_QUALITY_RESOLUTION, L"1200 x 1200 dpi"},
    {IDC_QUALITY_SCREENING, L"Fine, 175 lines"},
    {IDC_FILES_FORMAT, L"CMYK"},
    {IDC_TEXT_MARK_FONT, L"Liberation Sans Narrow"},
    {IDC_PAIR_SYSTEM, L"Liberation Sans Narrow"},
    {IDC_PAPER_COPIES, L"99"},
    {IDC_PAPER_ZOOM, L"141"},
    {IDC_WATERMARKS_TRANSPARENCY, L"50"},
    {IDC_QUALITY_CONTRAST, L"-50"},
    {IDC_QUALITY_BRIGHTNESS, L"50"},
    {IDC_SIZE_NAME, L"Index card 5 x 8"},
    {IDC_SIZE_WIDTH, L"215.9"},
    {IDC_SIZE_LENGTH, L"355.6"},
    {IDC_TEXT_MARK_TEXT, L"CONFIDENTIAL"},
    {IDC_TEXT_MARK_SIZE, L"300"},
    {IDC_TEXT_MARK_ANGLE, L"359"},
    {IDC_TEXT_MARK_DARKNESS, L"100"},
    {IDC_MARK_X, L"-250.0"},
    {IDC_MARK_Y, L"-250.0"},
    {IDC_IMAGE_MARK_SCALE, L"400"},
    {IDC_IMAGE_MARK_NAME, L"Company emblem"},
    {IDC_IMAGE_MARK_FILE, L"C:\\Users\\Public\\Pictures\\emblem.tif"},
    {IDC_PAIR_NAME, L"Liberation Sans"},
    {IDC_FILES_PROFILE_NAME, L"C:\\Profiles\\Coated paper.icc"},
    {IDC_FILES_SCREEN_NAME, L"C:\\Screens\\Stochastic.hft"},
    {IDC_PREVIEW_SIZE, L"297.2 x 420.6 mm"},
    {IDC_ABOUT_LINE1, L"QP5 Printer Driver"},
    {IDC_ABOUT_LINE2, L"Copyright Corvantis Optics"},
    {IDC_ABOUT_LINE3, L"All rights reserved."},
    {IDC_ABOUT_LINE4, L"Rendering library"},
    {IDC_ABOUT_LINE5, L"Version 10.51.0.0"},
    {IDC_ABOUT_LINE6, L"www.example.com"},
    {IDC_OPTIONS_TEXT_LABEL, L"Colour reproduction"},
    {IDC_OPTIONS_IMAGE_LABEL, L"Colour reproduction"},
    {IDC_OPTIONS_GRAPHICS_LABEL, L"Colour reproduction"},
    {IDC_OPTIONS_GENERAL_LABEL, L"Trapping"},
    {IDC_SIZES_LIST, L"Index card 5 x 8 (127.0 x 203.2 mm)"},
    {IDC_FONTS_LIST, L"Liberation Sans => Helvetica"},
    {IDC_WATERMARKS_LIST, L"CONFIDENTIAL"},
    {IDC_OPTIONS_TEXT_LIST, L"Black generation\tMaximum"},
    {IDC_OPTIONS_IMAGE_LIST, L"Rendering\tPhotographic"},
    {IDC_OPTIONS_GRAPHICS_LIST, L"Rendering\tSaturated"},
    {IDC_OPTIONS_GENERAL_LIST, L"Trapping\tDefault"},
    {IDC_NOTICE_TEXT,
     L"The finisher cannot staple transparencies or sheets of more than 128 g/m2 weight. Choose another "
     L"media type, or switch stapling off, before the document is printed with these settings."}};

/* The longest strings that these lines may get. */
const std::map<int, int> sampleStrings = {{IDC_PREVIEW_LINE1, IDS_STATUS_FRONT_COVER_EMPTY},
                                          {IDC_PREVIEW_LINE2, IDS_STATUS_BACK_COVER_EMPTY},
                                          {IDC_PREVIEW_LINE3, IDS_STATUS_SEPARATORS_PRINTED},
                                          {IDC_PREVIEW_LINE4, IDS_STATUS_LONG_EDGE},
                                          {IDC_PREVIEW_LINE5, IDS_STATUS_REVERSE},
                                          {IDC_NOTICE_LINE1, IDS_ENTRY_REFUSED},
                                          {IDC_NOTICE_LINE2, IDS_CONFLICT_LINE2},
                                          {IDC_NOTICE_LINE3, IDS_OUTLINE_LINE2},
                                          {IDC_NOTICE_LINE4, IDS_OUTLINE_LINE4}};

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
        const bool bLimits =
            pPicture->nTitle == IDS_TITLE_PAPER_SIZE && nId >= IDC_NOTICE_LINE1 && nId <= IDC_NOTICE_LINE4;
        SetWindowTextW(hControl,
                       LoadText(bLimits ? nId - IDC_NOTICE_LINE1 + IDS_LEAST_WIDTH : line->second).c_str());
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
    } else if (nId == IDC_LOGO || nId == IDC_LAYOUT_DUPLEX_PICTURE) {
        const UINT uFlags = LR_LOADMAP3DCOLORS | LR_LOADTRANSPARENT;
        const HANDLE hPicture =
            LoadImageW(hLibrary, nId == IDC_LOGO ? L"LOGOBITMAP" : L"DUPLONG", IMAGE_BITMAP, 0, 0, uFlags);
        SendMessageW(hControl, STM_SETIMAGE, IMAGE_BITMAP, reinterpret_cast<LPARAM>(hPicture));
    } else if (!lstrcmpiW(wcClass, L"Static") && (lStyle & SS_TYPEMASK) == SS_ICON) {
        const HICON hIcon = LoadIconW(nullptr, nId == IDC_NOTICE_ICON ? IDI_HAND : IDI_ASTERISK);
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
    const HWND hList = GetDlgItem(hDialog, IDC_FONTS_LIST);
    GetWindowRect(hList, &rect);
    SetWindowPos(hList, nullptr, 0, 0, (rect.right - rect.left) * 3 / 2, rect.bottom - rect.top,
                 SWP_NOMOVE | SWP_NOZORDER);
}

/* Draws a sheet in the frames, so that their place is seen. */
void DrawFrames(HWND hDialog)
{
    for (const int nId : {IDC_PREVIEW, IDC_MARK_PREVIEW, IDC_TEXT_MARK_COLOR_FRAME}) {
        const HWND hFrame = GetDlgItem(hDialog, nId);
        if (!hFrame || (nId == IDC_TEXT_MARK_COLOR_FRAME &&
                        IsWindowVisible(GetDlgItem(hDialog, IDC_TEXT_MARK_COLOR_CHOOSE)) == 0)) {
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
        if (nId != IDC_TEXT_MARK_COLOR_FRAME) {
            rect = {nX - nSide * 10 / 28, nY - nSide / 2, nX + nSide * 10 / 28, nY + nSide / 2};
        }
        FillRect(
            hdc, &rect,
            static_cast<HBRUSH>(GetStockObject(nId == IDC_TEXT_MARK_COLOR_FRAME ? GRAY_BRUSH : WHITE_BRUSH)));
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
        ShowWindow(GetDlgItem(hDialog, nId), nId == IDC_TEXT_MARK_COLOR_FRAME ? SW_HIDE : SW_SHOW);
    }
    for (const int nId : pPicture->hidden) {
        ShowWindow(GetDlgItem(hDialog, nId), SW_HIDE);
    }
    for (const int nId : pPicture->disabled) {
        EnableWindow(GetDlgItem(hDialog, nId), FALSE);
    }
    for (const int nId :
         {IDC_LAYOUT_PORTRAIT, IDC_LAYOUT_LONG_EDGE, IDC_QUALITY_COLOR, IDC_QUALITY_ADJUSTMENT_ON,
          IDC_WATERMARKS_EVERY_PAGE, IDC_FILES_USE1, IDC_PAPER_COLLATE, IDC_TEXT_MARK_BOLD}) {
        CheckDlgButton(hDialog, nId, BST_CHECKED);
    }
    if (GetDlgItem(hDialog, IDC_FONTS_LIST) && !pPicture->hidden.empty()) {
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
    const bool bDevice = pPicture->nTemplate == IDD_DEVICE_FONTS || pPicture->nTemplate == IDD_ABOUT_PAGE;
    const int aTemplates[] = {IDD_LAYOUT, IDD_PAPER, IDD_QUALITY, IDD_WATERMARKS, IDD_FONTS};
    const int aTitles[] = {IDS_TITLE_LAYOUT, IDS_TITLE_PAPER, IDS_TITLE_QUALITY, IDS_TITLE_WATERMARKS,
                           IDS_TITLE_FONTS};
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

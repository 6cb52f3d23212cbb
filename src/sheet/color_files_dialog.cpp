#include "sheet/color_files_dialog.h"

#include "description/color_formats.h"
#include "description/control_ids.h"
#include "description/string_ids.h"
#include "sheet/dialog_frame.h"
#include "sheet/dialog_services.h"
#include "sheet/quality_dialogs.h"
#include "sheet/system_dialogs.h"

namespace {

constexpr int NAME_CHARS = 200; /* room for a path in the file dialog */

constexpr ComboTableRow aProfiles[] = {
    {ALL_ROWS, IDS_PROFILE_BUILT_IN, 0, PROFILE_BUILT_IN},
    {ALL_ROWS, IDS_PROFILE_NONE, 0, PROFILE_OFF},
    {ALL_ROWS, IDS_PROFILE_FILE, 0, PROFILE_NAMED},
    {},
};
constexpr ComboTableRow aScreens[] = {
    {ALL_ROWS, IDS_SCREEN_BUILT_IN, 0, SCREEN_BUILT_IN},
    {ALL_ROWS, IDS_SCREEN_FILE, 0, SCREEN_NAMED},
    {},
};
constexpr int anUses[] = {IDC_FILES_USE1, IDC_FILES_USE2, IDC_FILES_USE3, 0}; /* sColorFilesMode 0, 1, 2 */

/* A list and the file that one of its rows is about. */
struct FileChoice {
    int nList, nName, nBrowse;
    const ComboTableRow* pTable;
    i32 lNamed; /* item data of that row */
    const WCHAR *wcKind, *wcPatterns;
};
constexpr FileChoice profileChoice = {IDC_FILES_PROFILE,
                                      IDC_FILES_PROFILE_NAME,
                                      IDC_FILES_PROFILE_BROWSE,
                                      aProfiles,
                                      PROFILE_NAMED,
                                      TEXT("Zeph Tone Realms and ICC Profiles"),
                                      TEXT("*.tr;*.icm;*.icc")};
constexpr FileChoice screenChoice = {IDC_FILES_SCREEN, IDC_FILES_SCREEN_NAME, IDC_FILES_SCREEN_BROWSE,
                                     aScreens,         SCREEN_NAMED,          TEXT("Zeph Screens"),
                                     TEXT("*.hft")};

/* Selects the row with that item data, or none. */
void SelectExactly(HWND hDialog, int nControl, i32 lValue)
{
    if (SelectComboValue(hDialog, nControl, lValue) < 0) {
        SendDlgItemMessageW(hDialog, nControl, CB_SETCURSEL, static_cast<WPARAM>(-1), 0);
    }
}

/* The format's names are those that the rendering half knows, in every language. */
void FillFormats(HWND hDialog)
{
    SendDlgItemMessageW(hDialog, IDC_FILES_FORMAT, CB_RESETCONTENT, 0, 0);
    for (const ColorFormat& format : aColorFormats) {
        WCHAR wcName[TEXT_CHARS] = {};
        for (int i = 0; format.cName[i] && i < TEXT_CHARS - 1; i++) {
            wcName[i] = static_cast<WCHAR>(format.cName[i]);
        }
        LRESULT nRow =
            SendDlgItemMessageW(hDialog, IDC_FILES_FORMAT, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(wcName));
        if (nRow >= 0) {
            SendDlgItemMessageW(hDialog, IDC_FILES_FORMAT, CB_SETITEMDATA, static_cast<WPARAM>(nRow),
                                static_cast<LPARAM>(format.ulCode));
        }
    }
}

/* A file can be named where its row is selected. */
void OfferName(HWND hDialog, const FileChoice& choice)
{
    const int anFile[] = {choice.nName, choice.nBrowse, 0};
    EnableControls(hDialog, anFile, GetComboValue(hDialog, choice.nList, nullptr) == choice.lNamed);
}

void InitChoice(HWND hDialog, const UiSession* pSession, const FileChoice& choice, i32 lValue,
                const WCHAR* wcName)
{
    FillComboFromTable(hDialog, pSession, choice.nList, choice.pTable, ALL_ROWS);
    SelectExactly(hDialog, choice.nList, lValue);
    SendDlgItemMessageW(hDialog, choice.nName, EM_LIMITTEXT, PATH_CHARS - 1, 0);
    SetDlgItemTextW(hDialog, choice.nName, wcName);
    OfferName(hDialog, choice);
}

void InitFiles(HWND hDialog, UiSession* pSession)
{
    const PrivateDevmode& part = pSession->pRecord->rPrivate;
    PlaceQualityDialog(hDialog, pSession);
    SetTitle(hDialog, pSession, IDS_TITLE_FILES);
    SetLabel(hDialog, pSession, IDC_FILES_OK, IDC_OK);
    FillFormats(hDialog);
    SelectExactly(hDialog, IDC_FILES_FORMAT, static_cast<i32>(part.dwColorFormat));
    InitChoice(hDialog, pSession, profileChoice, part.sProfile, pSession->wcProfileFile);
    InitChoice(hDialog, pSession, screenChoice, part.sScreen, pSession->wcScreenFile);
    CheckRadio(hDialog, anUses, part.sColorFilesMode < 3 ? anUses[part.sColorFilesMode] : IDC_FILES_USE3);
}

/* A path is taken whole or not at all. PATH_CHARS of room. */
void ReadPath(HWND hDialog, int nControl, WCHAR* tcPath)
{
    tcPath[0] = 0;
    LRESULT cch = SendDlgItemMessageW(hDialog, nControl, WM_GETTEXTLENGTH, 0, 0);
    if (cch > 0 && cch < PATH_CHARS) {
        UINT nGot = GetDlgItemTextW(hDialog, nControl, tcPath, PATH_CHARS);
        tcPath[nGot < PATH_CHARS ? nGot : 0] = 0;
    }
}

/* A list without a selection leaves its field alone; the name goes with the row that is about it. */
u16 TakeChoice(HWND hDialog, const FileChoice& choice, u16 usBefore, WCHAR* tcPath)
{
    Selection selection = ReadCombo(hDialog, choice.nList);
    u16 usValue = static_cast<u16>(ValueOr(selection, usBefore));
    tcPath[0] = 0;
    if (usValue == choice.lNamed) {
        ReadPath(hDialog, choice.nName, tcPath);
    }
    return usValue;
}

void EndWithOk(HWND hDialog, UiSession* pSession)
{
    PrivateDevmode* pPart = &pSession->pRecord->rPrivate;
    pPart->sColorFilesMode = IsChecked(hDialog, IDC_FILES_USE1)   ? u16{0}
                             : IsChecked(hDialog, IDC_FILES_USE2) ? u16{1}
                                                                  : u16{2};
    Selection format = ReadCombo(hDialog, IDC_FILES_FORMAT);
    pPart->dwColorFormat =
        format.bChosen ? static_cast<u32>(format.lValue) : static_cast<u32>(pPart->dwColorFormat);
    pPart->sProfile = TakeChoice(hDialog, profileChoice, pPart->sProfile, pSession->wcProfileFile);
    pPart->sScreen = TakeChoice(hDialog, screenChoice, pPart->sScreen, pSession->wcScreenFile);
    EndDialog(hDialog, DIALOG_OK);
}

void Browse(HWND hDialog, UiSession* pSession, const FileChoice& choice)
{
    WCHAR tcPath[PATH_CHARS];
    const FileQuestion question = {choice.wcKind, choice.wcPatterns, TEXT("C:\\"), TEXT("*"), NAME_CHARS};
    if (AskFile(hDialog, pSession, question, tcPath)) {
        SetDlgItemTextW(hDialog, choice.nName, tcPath);
    }
}

void FilesCommand(HWND hDialog, UiSession* pSession, WPARAM wParam, LPARAM)
{
    int nControl = LOWORD(wParam), nCode = HIWORD(wParam);
    if (nControl == IDC_FILES_OK && nCode == BN_CLICKED) {
        EndWithOk(hDialog, pSession);
        return;
    }
    for (const FileChoice* pChoice : {&profileChoice, &screenChoice}) {
        if (nControl == pChoice->nList && nCode == CBN_SELCHANGE) {
            OfferName(hDialog, *pChoice);
        } else if (nControl == pChoice->nBrowse && nCode == BN_CLICKED) {
            Browse(hDialog, pSession, *pChoice);
        }
    }
}

constexpr DialogRoutines colorFilesDialog = {
    .nSlot = SLOT_QUALITY_DIALOG, .pfnInit = InitFiles, .pfnCommand = FilesCommand};

} // namespace

void EditColorFiles(HWND hOwner, UiSession* pSession)
{
    RunDialog<colorFilesDialog>(pSession, hOwner, IDD_FILES, 0);
}

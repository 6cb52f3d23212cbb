#include "sheet/color_options_dialog.h"

#include "base/format.h"
#include "description/control_ids.h"
#include "description/string_ids.h"
#include "description/xpi_text.h"
#include "document/color_choices.h"
#include "sheet/dialog_frame.h"
#include "sheet/dialog_services.h"
#include "sheet/quality_dialogs.h"

namespace {

constexpr u16 NO_NAME = 0xFFFF;   /* usNameId of a value: the library has a text for it */
constexpr i32 VALUE_LIMIT = 1000; /* values of an option that are listed, whatever a description says */
constexpr int VALUE_COLUMN = 80;  /* of the list, in its own units */

/* A row's text: two names and the tab between them. */
constexpr int ROW_CHARS = 2 * TEXT_CHARS;

struct OptionSection {
    int nClass, nGroup, nList, nLabel, nValue;
};
constexpr OptionSection aSections[OBJECT_CLASSES] = {
    {OBJECTS_TEXT, IDC_OPTIONS_TEXT, IDC_OPTIONS_TEXT_LIST, IDC_OPTIONS_TEXT_LABEL, IDC_OPTIONS_TEXT_VALUE},
    {OBJECTS_IMAGE, IDC_OPTIONS_IMAGE, IDC_OPTIONS_IMAGE_LIST, IDC_OPTIONS_IMAGE_LABEL,
     IDC_OPTIONS_IMAGE_VALUE},
    {OBJECTS_GRAPHICS, IDC_OPTIONS_GRAPHICS, IDC_OPTIONS_GRAPHICS_LIST, IDC_OPTIONS_GRAPHICS_LABEL,
     IDC_OPTIONS_GRAPHICS_VALUE},
    {OBJECTS_GENERAL, IDC_OPTIONS_GENERAL, IDC_OPTIONS_GENERAL_LIST, IDC_OPTIONS_GENERAL_LABEL,
     IDC_OPTIONS_GENERAL_VALUE},
};

/* 1 when the dialog's mode, a row of the colour modes, lets the user choose. */
int IsEditable(const UiSession* pSession)
{
    return ColorModeKind(pSession->pXpi.get(), pSession->sDialogArg) == MODE_OWN;
}

void ReadName(UiSession* pSession, u16 usNameId, WCHAR* wcOut)
{
    if (usNameId == NO_NAME) {
        LoadUiText(pSession, IDS_OPTION_DEFAULT, wcOut, TEXT_CHARS);
    } else if (usNameId) {
        ReadXpiString(pSession->rXpiFile, pSession->rLanguage.usPrimary,
                      static_cast<HMODULE>(pSession->hLanguageDll.get()), usNameId, wcOut, TEXT_CHARS);
    } else {
        wcOut[0] = 0;
    }
}

void FormatRow(UiSession* pSession, const ColorOptionRow* pOption, i32 nValue, WCHAR (&wcRow)[ROW_CHARS])
{
    WCHAR wcName[TEXT_CHARS], wcValue[TEXT_CHARS];
    ReadName(pSession, pOption->usNameId, wcName);
    ReadName(pSession, FindOptionValue(pSession->pXpi.get(), pOption, nValue)->usNameId, wcValue);
    FormatWide(wcRow, ROW_CHARS, TEXT("%s\t%s"), static_cast<const WCHAR*>(wcName),
               static_cast<const WCHAR*>(wcValue));
}

/* Shows the selected option's name and values beside the list; without a selection the first option is selected. */
void ShowOption(HWND hDialog, UiSession* pSession, const OptionSection& section)
{
    const XpiModel* pModel = pSession->pXpi.get();
    WCHAR wcText[TEXT_CHARS];
    SendDlgItemMessageW(hDialog, section.nValue, CB_RESETCONTENT, 0, 0);
    LRESULT nOption = SendDlgItemMessageW(hDialog, section.nList, LB_GETCURSEL, 0, 0);
    if (nOption < 0 || nOption >= CHOICE_SLOTS) {
        nOption = 0;
        SendDlgItemMessageW(hDialog, section.nList, LB_SETCURSEL, 0, 0);
    }
    const ColorOptionRow* pOption = FindColorOption(pModel, section.nClass, static_cast<i32>(nOption));
    ReadName(pSession, pOption->usNameId, wcText);
    SetDlgItemTextW(hDialog, section.nLabel, wcText);
    for (i32 nValue = 0; nValue < VALUE_LIMIT; nValue++) {
        const OptionValueRow* pValue = FindOptionValue(pModel, pOption, nValue);
        if (!pValue->usNameId) {
            break;
        }
        ReadName(pSession, pValue->usNameId, wcText);
        SendDlgItemMessageW(hDialog, section.nValue, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(wcText));
    }
    i16 sChosen = GetColorChoice(pSession->pRecord->rPrivate, section.nClass, static_cast<i32>(nOption));
    SendDlgItemMessageW(hDialog, section.nValue, CB_SETCURSEL, static_cast<WPARAM>(sChosen), 0);
}

/* Where no value can be chosen the list takes its place. */
void HideValues(HWND hDialog, const OptionSection& section)
{
    const int anValues[] = {section.nLabel, section.nValue, 0};
    RECT list, value;
    OfferControls(hDialog, anValues, 0);
    if (ControlRect(hDialog, section.nList, &list) && ControlRect(hDialog, section.nValue, &value)) {
        MoveWindow(GetDlgItem(hDialog, section.nList), list.left, list.top, value.right - list.left,
                   list.bottom - list.top, 1);
    }
}

void FillOptionSection(HWND hDialog, UiSession* pSession, const OptionSection& section)
{
    const XpiModel* pModel = pSession->pXpi.get();
    const int anGroup[] = {section.nGroup, section.nList, 0};
    int nStop = VALUE_COLUMN, bEditable = IsEditable(pSession);
    SendDlgItemMessageW(hDialog, section.nList, LB_SETTABSTOPS, 1, reinterpret_cast<LPARAM>(&nStop));
    i32 nOption = 0;
    for (;; nOption++) {
        const ColorOptionRow* pOption = FindColorOption(pModel, section.nClass, nOption);
        if (!pOption->usNameId) {
            break;
        }
        i32 nValue = bEditable ? GetColorChoice(pSession->pRecord->rPrivate, section.nClass, nOption)
                               : PresetChoice(pModel, pSession->sDialogArg, section.nClass, nOption);
        WCHAR wcRow[ROW_CHARS];
        FormatRow(pSession, pOption, nValue, wcRow);
        SendDlgItemMessageW(hDialog, section.nList, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(wcRow));
    }
    EnableControls(hDialog, anGroup, nOption > 0);
    if (bEditable && nOption > 0) {
        ShowOption(hDialog, pSession, section);
    } else {
        HideValues(hDialog, section);
    }
}

void InitOptions(HWND hDialog, UiSession* pSession)
{
    PlaceQualityDialog(hDialog, pSession);
    SetTitle(hDialog, pSession, IsEditable(pSession) ? IDS_TITLE_OPTIONS : IDS_TITLE_FIXED_OPTIONS);
    SetLabel(hDialog, pSession, IDC_OPTIONS_OK, IDC_OK);
    for (const OptionSection& section : aSections) {
        if (section.nClass != OBJECTS_GENERAL || pSession->pXpi->pGeneralOptions) {
            FillOptionSection(hDialog, pSession, section);
        }
    }
}

/* The record has the new value at once; the row is replaced, the new one first, so that none is lost. */
void ChooseValue(HWND hDialog, UiSession* pSession, const OptionSection& section)
{
    LRESULT nOption = SendDlgItemMessageW(hDialog, section.nList, LB_GETCURSEL, 0, 0);
    LRESULT nValue = SendDlgItemMessageW(hDialog, section.nValue, CB_GETCURSEL, 0, 0);
    if (nOption < 0 || nOption >= CHOICE_SLOTS || nValue < 0 || nValue >= VALUE_LIMIT) {
        return;
    }
    const ColorOptionRow* pOption =
        FindColorOption(pSession->pXpi.get(), section.nClass, static_cast<i32>(nOption));
    if (!pOption->usNameId) {
        return;
    }
    WCHAR wcRow[ROW_CHARS];
    WPARAM uRow = static_cast<WPARAM>(nOption);
    SetColorChoice(&pSession->pRecord->rPrivate, section.nClass, static_cast<i32>(nOption),
                   static_cast<i16>(nValue));
    FormatRow(pSession, pOption, static_cast<i32>(nValue), wcRow);
    if (SendDlgItemMessageW(hDialog, section.nList, LB_INSERTSTRING, uRow, reinterpret_cast<LPARAM>(wcRow)) ==
        nOption) {
        SendDlgItemMessageW(hDialog, section.nList, LB_DELETESTRING, uRow + 1, 0);
        SendDlgItemMessageW(hDialog, section.nList, LB_SETCURSEL, uRow, 0);
    }
}

void OptionsCommand(HWND hDialog, UiSession* pSession, WPARAM wParam, LPARAM)
{
    int nControl = LOWORD(wParam), nCode = HIWORD(wParam);
    if (nControl == IDC_OPTIONS_OK && nCode == BN_CLICKED) {
        EndDialog(hDialog, DIALOG_OK);
        return;
    }
    static_assert(LBN_SELCHANGE == CBN_SELCHANGE);
    if (nCode != LBN_SELCHANGE || !IsEditable(pSession)) {
        return;
    }
    for (const OptionSection& section : aSections) {
        if (nControl == section.nList) {
            ShowOption(hDialog, pSession, section);
        } else if (nControl == section.nValue) {
            ChooseValue(hDialog, pSession, section);
        }
    }
}

constexpr DialogRoutines colorOptionsDialog = {
    .nSlot = SLOT_QUALITY_DIALOG, .pfnInit = InitOptions, .pfnCommand = OptionsCommand};

} // namespace

void EditColorOptions(HWND hOwner, UiSession* pSession, i32 nMode)
{
    constexpr i32 LAST_ARGUMENT = 0x7FFF;
    if (nMode < 0 || nMode > LAST_ARGUMENT) {
        return;
    }
    PrivateDevmode* pPart = &pSession->pRecord->rPrivate;
    const ColorChoices before = GetColorChoices(*pPart);
    int nTemplate = pSession->pXpi->pGeneralOptions ? IDD_OPTIONS4 : IDD_OPTIONS3;
    INT_PTR nEnd = RunDialog<colorOptionsDialog>(pSession, hOwner, nTemplate, static_cast<i16>(nMode));
    if (nEnd != DIALOG_OK && SessionOf(hOwner)) { /* the dialog may outlive the page */
        SetColorChoices(pPart, before);
    }
}

/* Fills the list of presets, and hands a chosen one to the record and the pages. */
#include "sheet/presets.h"

#include <cstring>

#include "description/control_ids.h"
#include "description/printer_store.h"
#include "description/string_ids.h"
#include "document/defaults.h"
#include "settingsfile/preset_files.h"
#include "settingsfile/settings_reader.h"
#include "sheet/dialog_services.h"
#include "sheet/page_windows.h"

namespace {

constexpr int XPI_NAME_CHARS = static_cast<int>(sizeof(PrivateDevmode::tcXPIName) / sizeof(WCHAR));

/* The places of this printer's presets, with the texts that they point to. */
struct SessionPlaces {
    WCHAR tcDriverFolder[PATH_CHARS], tcOwnFile[PATH_CHARS];
    WCHAR wcExtension[TEXT_CHARS];
    WCHAR tcDescription[XPI_NAME_CHARS + 1];
    PresetPlaces places;

    explicit SessionPlaces(const UiSession* pSession)
    {
        PrinterCall call(pSession->hPrinter);
        GetRenderCorePath(call, tcDriverFolder);
        const WCHAR* wcName = BehindLast(tcDriverFolder, '\\');
        tcDriverFolder[wcName == tcDriverFolder ? 0 : wcName - tcDriverFolder - 1] = 0;
        GetUserSettingsPath(call, tcOwnFile);
        LoadUiText(pSession, IDS_SETTINGS_EXTENSION, wcExtension, TEXT_CHARS);
        std::memcpy(tcDescription, pSession->pRecord->rPrivate.tcXPIName, sizeof(PrivateDevmode::tcXPIName));
        tcDescription[XPI_NAME_CHARS] = 0;
        places = {pSession->wcUserFolder, tcDriverFolder, wcExtension, BehindLast(tcOwnFile, '\\'),
                  BehindLast(tcDescription, '\\')};
    }
    SessionPlaces(const SessionPlaces&) = delete;
    SessionPlaces& operator=(const SessionPlaces&) = delete;
};

struct PresetList {
    HWND hPage;
    int nKind;
};

int AddPreset(void* pContext, const WCHAR* wcName)
{
    const PresetList* pList = static_cast<const PresetList*>(pContext);
    LRESULT nRow =
        SendDlgItemMessageW(pList->hPage, IDC_PRESET, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(wcName));
    if (nRow >= 0) {
        SendDlgItemMessageW(pList->hPage, IDC_PRESET, CB_SETITEMDATA, static_cast<WPARAM>(nRow),
                            pList->nKind);
    }
    return nRow >= 0;
}

void SelectPreset(HWND hPage, LRESULT nRow)
{
    SendDlgItemMessageW(hPage, IDC_PRESET, CB_SETCURSEL, static_cast<WPARAM>(nRow), 0);
}

void FillPresetList(HWND hPage, const UiSession* pSession)
{
    static constexpr int anKinds[] = {PRESET_TEMP_INI, PRESET_TEMP,    PRESET_DRIVER,
                                      PRESET_USER,     PRESET_FACTORY, PRESET_USER_INI};
    const SessionPlaces own(pSession);
    SendDlgItemMessageW(hPage, IDC_PRESET, CB_RESETCONTENT, 0, 0);
    for (int nKind : anKinds) {
        PresetList list = {hPage, nKind};
        if (nKind == PRESET_FACTORY) {
            WCHAR wcName[TEXT_CHARS];
            LoadUiText(pSession, IDS_PRESET_FACTORY, wcName, TEXT_CHARS);
            AddPreset(&list, wcName);
        } else {
            ListPresets(own.places, nKind, AddPreset, &list);
        }
    }
    SelectPreset(hPage, 0);
}

/* First row with that item data; -1 for none. */
LRESULT FindComboData(HWND hPage, int nControl, i32 lData)
{
    LRESULT nRows = SendDlgItemMessageW(hPage, nControl, CB_GETCOUNT, 0, 0);
    for (LRESULT nRow = 0; nRow < nRows; nRow++) {
        if (SendDlgItemMessageW(hPage, nControl, CB_GETITEMDATA, static_cast<WPARAM>(nRow), 0) == lData) {
            return nRow;
        }
    }
    return -1;
}

/* Fills the open pages again; nKind: the preset that they have chosen then, 0 for the one of before. */
void RefreshPagesFromRecord(UiSession* pSession, int nKind)
{
    static constexpr PageSlot aSlots[] = {SLOT_LAYOUT, SLOT_PAPER, SLOT_QUALITY, SLOT_WATERMARKS};
    for (PageSlot slot : aSlots) {
        HWND hPage = pSession->hPageWnd[slot];
        if (!hPage) {
            continue;
        }
        ReloadPage(pSession, slot);
        pSession->bPageDirty[slot] = 1;
        LRESULT nRow = nKind ? FindComboData(hPage, IDC_PRESET, nKind) : -1;
        if (nRow >= 0) {
            SelectPreset(hPage, nRow);
        }
        if (slot == SLOT_LAYOUT) {
            RepaintControl(hPage, IDC_LAYOUT_DUPLEX_PICTURE);
        }
    }
}

/* Path of the chosen file; 0 for a row without one. */
int ChosenFile(HWND hPage, const UiSession* pSession, LRESULT nRow, int nKind, WCHAR* tcPath)
{
    WCHAR wcName[PATH_CHARS];
    LRESULT cch = SendDlgItemMessageW(hPage, IDC_PRESET, CB_GETLBTEXTLEN, static_cast<WPARAM>(nRow), 0);
    if (cch < 1 || cch >= PATH_CHARS ||
        SendDlgItemMessageW(hPage, IDC_PRESET, CB_GETLBTEXT, static_cast<WPARAM>(nRow),
                            reinterpret_cast<LPARAM>(wcName)) != cch) {
        return 0;
    }
    const SessionPlaces own(pSession);
    return GetPresetPath(own.places, nKind, wcName, tcPath);
}

/* What is not a file on a disk by now has no settings. */
int ReadPreset(UiSession* pSession, const WCHAR* tcPath)
{
    const ProfileFile file = OpenProfile(tcPath);
    return file.state == PROFILE_READ &&
           ReadPrinterSettings(file, pSession->pRecord, pSession->bReadOnly != 0, pSession->pXpi->usLanguage);
}

void TellChange(HWND hPage)
{
    SendMessageW(GetParent(hPage), PSM_CHANGED, reinterpret_cast<WPARAM>(hPage), 0);
}

} // namespace

void InitPresets(HWND hPage, UiSession* pSession)
{
    static constexpr int anNeverShown[] = {IDC_PRESET_LABEL, IDC_PRESET, 0};
    FillPresetList(hPage, pSession);
    HWND hFirst = pSession->hPageWnd[SLOT_LAYOUT];
    if (hFirst && hFirst != hPage) {
        SelectPreset(hPage, SendDlgItemMessageW(hFirst, IDC_PRESET, CB_GETCURSEL, 0, 0));
    }
    OfferControls(hPage, anNeverShown, 0);
}

void ApplyPreset(HWND hPage, UiSession* pSession, int nSlot)
{
    LRESULT nRow = SendDlgItemMessageW(hPage, IDC_PRESET, CB_GETCURSEL, 0, 0);
    int bChosen;
    int nKind = GetComboValue(hPage, IDC_PRESET, &bChosen);
    WCHAR tcPath[PATH_CHARS];
    if (!bChosen) {
        return;
    }
    if (nKind == PRESET_FACTORY) {
        PrinterCall call(pSession->hPrinter);
        BuildDefaultRecord(call, pSession->wcPrinterName, pSession->pRecord, 0);
        RefreshPagesFromRecord(pSession, PRESET_FACTORY);
        TellChange(hPage);
        pSession->bPageDirty[nSlot] = 1;
        pSession->bStickyChange = 1;
    } else if (ChosenFile(hPage, pSession, nRow, nKind, tcPath) && ReadPreset(pSession, tcPath)) {
        RefreshPagesFromRecord(pSession, 0);
        TellChange(hPage);
        pSession->bSettingsLoaded = 1;
    }
}

#include "sheet/image_mark_editor.h"

#include <cstring>
#include <utility>

#include "description/control_ids.h"
#include "description/string_ids.h"
#include "sheet/dialog_frame.h"
#include "sheet/dialog_services.h"
#include "sheet/edit_keys.h"
#include "sheet/system_dialogs.h"
#include "sheet/watermark_choice.h"

namespace {

constexpr int NAME_LIMIT = 63, FILE_LIMIT = 260, NUMBER_LIMIT = 3; /* characters that can be typed */
constexpr int NAME_CHARS = sizeof WatermarkEntry::WMString / sizeof(WCHAR);
constexpr u32 FIRST_SCALE = 100; /* of a new image */

constexpr ComboTableRow aPlacements[] = {
    {ALL_ROWS, IDS_PLACE_CENTRE, 0, 0},
    {ALL_ROWS, IDS_PLACE_TILED, 0, 1},
    {ALL_ROWS, IDS_PLACE_TOP_LEFT, 0, 6},
    {ALL_ROWS, IDS_PLACE_TOP, 0, 2},
    {ALL_ROWS, IDS_PLACE_TOP_RIGHT, 0, 7},
    {ALL_ROWS, IDS_PLACE_RIGHT, 0, 3},
    {ALL_ROWS, IDS_PLACE_BOTTOM_RIGHT, 0, 9},
    {ALL_ROWS, IDS_PLACE_BOTTOM, 0, 4},
    {ALL_ROWS, IDS_PLACE_BOTTOM_LEFT, 0, 8},
    {ALL_ROWS, IDS_PLACE_LEFT, 0, 5},
    {},
};

/* All that the controls say, for the row and the picture alike. */
void ReadImageMark(HWND hDialog, const UiSession* pSession, WatermarkEntry* pShown)
{
    *pShown = {};
    pShown->WMType = ENTRY_IMAGE;
    ReadMarkText(hDialog, IDC_IMAGE_MARK_NAME, pShown->WMString, NAME_CHARS);
    ReadMarkText(hDialog, IDC_IMAGE_MARK_FILE, pShown->WMImageName, PATH_CHARS);
    i32 lScale = LimitNumber(IDC_IMAGE_MARK_SCALE, ReadNumber(hDialog, IDC_IMAGE_MARK_SCALE));
    pShown->WMScaleX = static_cast<u32>(lScale);
    pShown->WMScaleY = static_cast<u32>(lScale);
    const WatermarkEntry* pRow = EditedMark(pSession);
    Selection placement = ReadCombo(hDialog, IDC_IMAGE_MARK_PLACEMENT);
    pShown->WMPlacement = static_cast<u16>(ValueOr(placement, pRow ? pRow->WMPlacement : 0));
    ReadMarkPosition(hDialog, pSession, pShown);
}

void OfferImageConfirm(HWND hDialog, const UiSession* pSession)
{
    WatermarkEntry shown;
    ReadImageMark(hDialog, pSession, &shown);
    OfferMarkConfirm(hDialog, pSession, shown.WMString[0] && shown.WMImageName[0]);
}

void InitImageMark(HWND hDialog, UiSession* pSession)
{
    WatermarkEntry* pRow = EditedMark(pSession);
    if (!pRow) {
        return;
    }
    if (IsNewMark(pSession)) {
        std::memset(pRow->WMImageName, 0, sizeof pRow->WMImageName);
        pRow->WMScaleX = FIRST_SCALE;
    }
    InitMarkEditor(hDialog, pSession, *pRow);
    FillComboFromTable(hDialog, pSession, IDC_IMAGE_MARK_PLACEMENT, aPlacements, ALL_ROWS);
    SelectComboValue(hDialog, IDC_IMAGE_MARK_PLACEMENT, pRow->WMPlacement);
    SendDlgItemMessageW(hDialog, IDC_IMAGE_MARK_NAME, EM_LIMITTEXT, NAME_LIMIT, 0);
    SendDlgItemMessageW(hDialog, IDC_IMAGE_MARK_FILE, EM_LIMITTEXT, FILE_LIMIT, 0);
    SendDlgItemMessageW(hDialog, IDC_IMAGE_MARK_SCALE, EM_LIMITTEXT, NUMBER_LIMIT, 0);
    SubclassNumberEdit(hDialog, pSession, IDC_IMAGE_MARK_SCALE);
    SetDlgItemTextW(hDialog, IDC_IMAGE_MARK_NAME, pRow->WMString);
    SetDlgItemTextW(hDialog, IDC_IMAGE_MARK_FILE, pRow->WMImageName);
    ShowNumber(hDialog, IDC_IMAGE_MARK_SCALE, static_cast<i32>(pRow->WMScaleX));
    OfferImageConfirm(hDialog, pSession);
}

void PaintImageMark(HWND hDialog, UiSession* pSession)
{
    PAINTSTRUCT paint = {};
    HDC hdc = BeginPaint(hDialog, &paint);
    const WatermarkEntry* pRow = EditedMark(pSession);
    if (hdc && pRow) {
        WatermarkEntry shown;
        ReadImageMark(hDialog, pSession, &shown);
        PreviewRequest request = MarkRequest(pSession);
        FitImageScale(*pRow, pSession->pXpi.get(), request.sResolution, &shown);
        request.pWatermark = &shown;
        if (shown.WMImageName[0]) {
            DrawMark(hDialog, hdc, pSession, &request);
        }
    }
    EndPaint(hDialog, &paint);
}

void BrowseForImage(HWND hDialog, UiSession* pSession)
{
    WCHAR tcPath[PATH_CHARS], wcName[TEXT_CHARS];
    const WCHAR* wcPatterns =
        PrintsMarkItself(pSession->pXpi.get()) ? TEXT("*.JPG;*.TIF;*.PNG;*.WMP") : TEXT("*.BMP");
    LoadUiText(pSession, IDS_FILTER_IMAGES, wcName, TEXT_CHARS);
    const FileQuestion question = {wcName, wcPatterns, TEXT("My Documents"), wcPatterns, PATH_CHARS};
    if (AskFile(hDialog, pSession, question, tcPath)) {
        SetDlgItemTextW(hDialog, IDC_IMAGE_MARK_FILE, tcPath);
    }
}

void ConfirmImageMark(HWND hDialog, UiSession* pSession)
{
    WatermarkEntry shown;
    WatermarkEntry* pRow = EditedMark(pSession);
    ReadImageMark(hDialog, pSession, &shown);
    if (pRow && shown.WMString[0] && shown.WMImageName[0]) {
        StoreMark(shown, pSession->pXpi.get(), pRow);
        EndDialog(hDialog, DIALOG_OK);
    }
}

void ImageMarkClicked(HWND hDialog, UiSession* pSession, int nControl)
{
    if (nControl == IDC_IMAGE_MARK_BROWSE) {
        BrowseForImage(hDialog, pSession);
    } else if (nControl == MarkConfirmButton(pSession)) {
        ConfirmImageMark(hDialog, pSession);
    }
}

void ImageMarkTyped(HWND hDialog, UiSession* pSession, int nControl)
{
    switch (nControl) {
    case IDC_IMAGE_MARK_NAME: OfferImageConfirm(hDialog, pSession); return;
    case IDC_IMAGE_MARK_FILE: OfferImageConfirm(hDialog, pSession); break;
    case IDC_IMAGE_MARK_SCALE: CapNumber(hDialog, nControl, MARK_SCALE_MAX); break;
    default: return;
    }
    RepaintControl(hDialog, IDC_MARK_PREVIEW);
}

void ImageMarkCommand(HWND hDialog, UiSession* pSession, WPARAM wParam, LPARAM)
{
    int nControl = LOWORD(wParam), nCode = HIWORD(wParam);
    if (MarkEditorCommand(hDialog, pSession, nControl, nCode)) {
        return;
    }
    if (nCode == BN_CLICKED) {
        ImageMarkClicked(hDialog, pSession, nControl);
    } else if (nCode == EN_CHANGE) {
        ImageMarkTyped(hDialog, pSession, nControl);
    } else if (nCode == CBN_SELCHANGE && nControl == IDC_IMAGE_MARK_PLACEMENT) {
        RepaintControl(hDialog, IDC_MARK_PREVIEW);
    }
}

constexpr DialogRoutines imageMarkEditor = {
    .nSlot = -1, .pfnInit = InitImageMark, .pfnCommand = ImageMarkCommand, .pfnPaint = PaintImageMark};

} // namespace

int EditImageMark(HWND hOwner, UiSession* pSession, i32 nRow)
{
    MarkEdit edit = {nRow};
    void* pBefore = std::exchange(pSession->pDialogData, &edit);
    INT_PTR nEnd = EditedMark(pSession)
                       ? RunDialog<imageMarkEditor>(pSession, hOwner, IDD_IMAGE_MARK, static_cast<i16>(nRow))
                       : DIALOG_CANCEL;
    pSession->pDialogData = pBefore;
    return nEnd == DIALOG_OK;
}

#include "sheet/paper_lists.h"

#include "description/control_ids.h"
#include "description/paper.h"
#include "description/string_ids.h"
#include "description/xpi_text.h"
#include "sheet/dialog_services.h"
#include "sheet/saved_papers.h"

namespace {

constexpr LRESULT ROW_LIMIT = 0x7FFF; /* what a control says is not walked any further */
constexpr i32 LAST_CODE = 0x7FFF;
constexpr i32 NO_TARGET = -1;     /* item data; without such a row the first stands for it */
constexpr i32 NAMES_AT_ONCE = 16; /* of the model's papers, read together */

/* Room for a name, a size in the widest unit and the unit's name. */
constexpr int DETAIL_CHARS = 3 * TEXT_CHARS;

void AppendRow(HWND hList, int bListBox, const WCHAR* wcText, i32 lCode)
{
    LRESULT nRow =
        SendMessageW(hList, bListBox ? LB_ADDSTRING : CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(wcText));
    if (nRow >= 0) {
        SendMessageW(hList, bListBox ? LB_SETITEMDATA : CB_SETITEMDATA, static_cast<WPARAM>(nRow), lCode);
    }
}

void AppendModelPapers(HWND hCombo, UiSession* pSession)
{
    const XpiModel* pModel = pSession->pXpi.get();
    i32 nPapers = CountPaperRows(pModel);
    for (i32 nFirst = 0; nFirst < nPapers; nFirst += NAMES_AT_ONCE) {
        i16 asIds[NAMES_AT_ONCE];
        WCHAR wcNames[NAMES_AT_ONCE][TEXT_CHARS];
        i32 nNames = nPapers - nFirst < NAMES_AT_ONCE ? nPapers - nFirst : NAMES_AT_ONCE;
        for (i32 i = 0; i < nNames; i++) {
            asIds[i] = Row(pModel, pModel->pPaperTable, nFirst + i)->sNameId;
        }
        ReadXpiStrings(pSession->rXpiFile, pSession->rLanguage.usPrimary,
                       static_cast<HMODULE>(pSession->hLanguageDll.get()), asIds, nNames, wcNames[0],
                       TEXT_CHARS, TEXT_CHARS);
        for (i32 i = 0; i < nNames; i++) {
            AppendRow(hCombo, 0, wcNames[i], Row(pModel, pModel->pPaperTable, nFirst + i)->sPaperCode);
        }
    }
}

void FillOneCombo(HWND hPage, UiSession* pSession, int nControl, int bWithNone)
{
    HWND hCombo = GetDlgItem(hPage, nControl);
    if (!hCombo) {
        return;
    }
    SendMessageW(hCombo, CB_RESETCONTENT, 0, 0);
    if (bWithNone) {
        WCHAR wcNone[TEXT_CHARS];
        LoadUiText(pSession, IDS_NO_TARGET, wcNone, TEXT_CHARS);
        AppendRow(hCombo, 0, wcNone, NO_TARGET);
    }
    AppendModelPapers(hCombo, pSession);
    FillPaperList(hPage, pSession, nControl, 0);
}

/* Text of a combo box's row; "" for one that is longer than any of ours. */
void ReadRowText(HWND hCombo, LRESULT nRow, WCHAR* wcOut)
{
    wcOut[0] = 0;
    LRESULT nLength = SendMessageW(hCombo, CB_GETLBTEXTLEN, static_cast<WPARAM>(nRow), 0);
    if (nLength > 0 && nLength < TEXT_CHARS) {
        SendMessageW(hCombo, CB_GETLBTEXT, static_cast<WPARAM>(nRow), reinterpret_cast<LPARAM>(wcOut));
        wcOut[nLength] = 0;
    }
}

/* What a combo box has selected: a paper of the model is known by its code, a saved one by its name, since its code
   changes when a paper before it is deleted. */
struct ChosenPaper {
    int bChosen;
    i32 lCode;
    WCHAR wcName[TEXT_CHARS];
};

void NoteChosen(HWND hPage, int nControl, ChosenPaper* pChosen)
{
    HWND hCombo = GetDlgItem(hPage, nControl);
    pChosen->wcName[0] = 0;
    pChosen->lCode = GetComboValue(hPage, nControl, &pChosen->bChosen);
    if (pChosen->bChosen) {
        ReadRowText(hCombo, SendMessageW(hCombo, CB_GETCURSEL, 0, 0), pChosen->wcName);
    }
}

/* Selects the first row with exactly this text. Result: 1 when there is one. */
int SelectRowText(HWND hCombo, const WCHAR* wcText)
{
    LRESULT nRows = SendMessageW(hCombo, CB_GETCOUNT, 0, 0);
    for (LRESULT nRow = 0; nRow < nRows && nRow < ROW_LIMIT; nRow++) {
        WCHAR wcRow[TEXT_CHARS];
        ReadRowText(hCombo, nRow, wcRow);
        if (SameWide(wcRow, wcText)) {
            SendMessageW(hCombo, CB_SETCURSEL, static_cast<WPARAM>(nRow), 0);
            return 1;
        }
    }
    return 0;
}

void SelectAgain(HWND hPage, int nControl, const ChosenPaper& chosen, i32 lInstead)
{
    int bFound = 0;
    if (chosen.bChosen) {
        bFound = chosen.lCode < FIRST_SAVED_CODE ? SelectComboValue(hPage, nControl, chosen.lCode) >= 0
                                                 : SelectRowText(GetDlgItem(hPage, nControl), chosen.wcName);
    }
    if (!bFound) {
        SelectComboValue(hPage, nControl, lInstead);
    }
}

} // namespace

void FillPaperList(HWND hDialog, const UiSession* pSession, int nControl, int bDetail)
{
    HWND hList = GetDlgItem(hDialog, nControl);
    const PaperSizeRow* pRow = pSession->pCustomPapers.get();
    WCHAR wcMetric[TEXT_CHARS], wcInch[TEXT_CHARS], wcDetail[DETAIL_CHARS];
    LoadUiText(pSession, IDS_UNIT_MM, wcMetric, TEXT_CHARS);
    LoadUiText(pSession, IDS_UNIT_INCH, wcInch, TEXT_CHARS);
    for (i32 i = 0; hList && i < pSession->sCustomPaperCount && FIRST_SAVED_CODE + i <= LAST_CODE; i++) {
        if (bDetail) {
            FormatPaper(pRow[i], pSession->rLanguage.wcDecimal, pRow[i].ulMetric ? wcMetric : wcInch,
                        wcDetail, DETAIL_CHARS);
        }
        AppendRow(hList, nControl == IDC_SIZES_LIST, bDetail ? wcDetail : pRow[i].wcName,
                  FIRST_SAVED_CODE + i);
    }
}

void FillPaperCombo(HWND hPage, UiSession* pSession)
{
    FillOneCombo(hPage, pSession, IDC_PAPER_SIZE, 0);
    FillOneCombo(hPage, pSession, IDC_PAPER_TARGET, !pSession->bPaperHasTarget);
}

void RefreshPaperCombos(UiSession* pSession)
{
    HWND hPage = pSession->hPageWnd[SLOT_PAPER];
    ChosenPaper paper, target;
    if (!hPage) {
        return;
    }
    NoteChosen(hPage, IDC_PAPER_SIZE, &paper);
    NoteChosen(hPage, IDC_PAPER_TARGET, &target);
    FillPaperCombo(hPage, pSession);
    SelectAgain(hPage, IDC_PAPER_SIZE, paper, GetDefaultPaper());
    SelectAgain(hPage, IDC_PAPER_TARGET, target, NO_TARGET);
}

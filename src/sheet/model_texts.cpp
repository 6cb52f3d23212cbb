#include "sheet/model_texts.h"

#include "base/owned.h"
#include "description/xpi_text.h"

namespace {

constexpr i32 ROWS_AT_ONCE = 128;

struct TextRows {
    i32 nRows;
    i16 asNameIds[ROWS_AT_ONCE];
    i32 alValues[ROWS_AT_ONCE];
    WCHAR awcTexts[ROWS_AT_ONCE][TEXT_CHARS];
};

i32 AppendTexts(HWND hCombo, UiSession* pSession, TextRows* pRows)
{
    i32 nAppended = 0;
    ReadXpiStrings(pSession->rXpiFile, pSession->rLanguage.usPrimary,
                   static_cast<HMODULE>(pSession->hLanguageDll.get()), pRows->asNameIds, pRows->nRows,
                   pRows->awcTexts[0], TEXT_CHARS, TEXT_CHARS);
    for (i32 i = 0; i < pRows->nRows; i++) {
        LRESULT nRow = SendMessageW(hCombo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(pRows->awcTexts[i]));
        if (nRow >= 0) {
            SendMessageW(hCombo, CB_SETITEMDATA, static_cast<WPARAM>(nRow), pRows->alValues[i]);
            nAppended++;
        }
    }
    pRows->nRows = 0;
    return nAppended;
}

} // namespace

i32 AppendModelTexts(HWND hDialog, UiSession* pSession, int nControl, ModelRowSource pfnRow)
{
    HWND hCombo = GetDlgItem(hDialog, nControl);
    OwnedBlock<TextRows> pRows(static_cast<TextRows*>(AllocateBlock(sizeof(TextRows))));
    if (!hCombo || !pRows) {
        return 0;
    }
    i32 nAppended = 0;
    ModelTextRow row = {};
    ModelRowKind kind;
    for (i32 nRow = 0; (kind = pfnRow(pSession, nRow, &row)) != ROW_END; nRow++) {
        if (kind == ROW_LISTED) {
            pRows->asNameIds[pRows->nRows] = row.sNameId;
            pRows->alValues[pRows->nRows++] = row.lValue;
        }
        if (pRows->nRows == ROWS_AT_ONCE) {
            nAppended += AppendTexts(hCombo, pSession, pRows.get());
        }
    }
    return nAppended + AppendTexts(hCombo, pSession, pRows.get());
}

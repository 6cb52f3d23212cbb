/* The driver's one message box: five notices, told by a table, in two dialogs. */
#include "sheet/notices.h"

#include "base/format.h"
#include "base/measure.h"
#include "description/control_ids.h"
#include "description/paper.h"
#include "description/xpi_text.h"
#include "sheet/conflicts.h"
#include "sheet/dialog_frame.h"
#include "sheet/dialog_services.h"

namespace {

constexpr int LINES = 4;

enum NoticeIcon : u8 { SHOWS_STOP, SHOWS_WARNING };
enum NoticeBody : u8 { FIXED_LINES, CONFLICT_TEXT, PAPER_LIMITS };

struct NoticeRow {
    NoticeId id;
    u16 usTemplate;
    NoticeIcon icon;
    NoticeBody body;
    u16 usFirstString; /* of the lines, numbered on from here */
    u8 nLines;
    u8 bDuringJob; /* without an owner: brought to the foreground in place of being centred */
};
constexpr NoticeRow aNotices[] = {
    {NOTICE_CONFLICT, IDD_NOTICE, SHOWS_STOP, CONFLICT_TEXT, IDS_ENTRY_REFUSED, 4, 0},
    {NOTICE_PAPER_SIZE, IDD_NOTICE, SHOWS_STOP, PAPER_LIMITS, IDS_LEAST_WIDTH, 4, 0},
    {NOTICE_OUTLINE, IDD_QUESTION, SHOWS_WARNING, FIXED_LINES, IDS_OUTLINE_LINE1, 4, 0},
    {NOTICE_NAME, IDD_NOTICE, SHOWS_WARNING, FIXED_LINES, IDS_ENTRY_REFUSED, 1, 0},
    {NOTICE_NOT_PRINTED, IDD_NOTICE, SHOWS_STOP, FIXED_LINES, IDS_NOT_PRINTED_LINE1, 4, 1},
};

const NoticeRow* FindNotice(i16 sId)
{
    for (const NoticeRow& row : aNotices) {
        if (row.id == sId) {
            return &row;
        }
    }
    return nullptr;
}

void Show(HWND hDialog, int nControl, int nHow)
{
    if (HWND hControl = GetDlgItem(hDialog, nControl)) {
        ShowWindow(hControl, nHow);
    }
}

/* A limit of the model's own paper sizes, in both units, by a format of the library. */
void FormatLimit(const UiSession* pSession, const NoticeRow& row, int nLine, WCHAR* wcOut, int cch)
{
    const XpiModel* pModel = pSession->pXpi.get();
    wcOut[0] = 0;
    if (!pModel) {
        return;
    }
    const i16 asLimits[LINES] = {pModel->sMinCustomWidth, pModel->sMaxCustomWidth, pModel->sMinCustomLength,
                                 pModel->sMaxCustomLength};
    i32 lLimit = asLimits[nLine], lInches, lHundredths;
    WCHAR wcFormat[TEXT_CHARS];
    SplitMeasure(lLimit * 10, 0, nLine % 2 ? ROUND_DOWN : ROUND_UP, &lInches, &lHundredths);
    LoadUiText(pSession, row.usFirstString + nLine, wcFormat, TEXT_CHARS);
    FormatWide(wcOut, cch, wcFormat, lInches, lHundredths, lLimit / 10, lLimit % 10);
}

/* The text of a conflict stands alone; all else is lines. */
void FillBody(HWND hDialog, UiSession* pSession, const NoticeRow& row)
{
    WCHAR wcText[2 * TEXT_CHARS];
    int nLines = row.nLines;
    if (row.body == CONFLICT_TEXT && pSession->sNoticeText) {
        ReadXpiString(pSession->rXpiFile, pSession->rLanguage.usPrimary,
                      static_cast<HMODULE>(pSession->hLanguageDll.get()), pSession->sNoticeText, wcText,
                      TEXT_CHARS);
        SetDlgItemTextW(hDialog, IDC_NOTICE_TEXT, wcText);
        Show(hDialog, IDC_NOTICE_TEXT, SW_SHOW);
        nLines = 0;
    }
    for (int i = 0; i < LINES; i++) {
        if (i >= nLines) {
            Show(hDialog, IDC_NOTICE_LINE1 + i, SW_HIDE);
            continue;
        }
        if (row.body == PAPER_LIMITS) {
            FormatLimit(pSession, row, i, wcText, 2 * TEXT_CHARS);
        } else {
            LoadUiText(pSession, row.usFirstString + i, wcText, TEXT_CHARS);
        }
        SetDlgItemTextW(hDialog, IDC_NOTICE_LINE1 + i, wcText);
    }
}

void InitNotice(HWND hDialog, UiSession* pSession)
{
    const NoticeRow* pRow = FindNotice(pSession->sDialogArg);
    if (!pRow) {
        return;
    }
    SetTitle(hDialog, pSession, pRow->id);
    Show(hDialog, IDC_NOTICE_TEXT, SW_HIDE);
    HICON hIcon = LoadIconW(nullptr, pRow->icon == SHOWS_STOP ? IDI_HAND : IDI_EXCLAMATION);
    SendDlgItemMessageW(hDialog, IDC_NOTICE_ICON, STM_SETICON, reinterpret_cast<WPARAM>(hIcon), 0);
    FillBody(hDialog, pSession, *pRow);
    if (pRow->bDuringJob) {
        SetForegroundWindow(hDialog);
    } else {
        CentreDialog(hDialog, CENTRE_X, DIALOG_TOP);
    }
}

void NoticeCommand(HWND hDialog, UiSession*, WPARAM wParam, LPARAM)
{
    switch (LOWORD(wParam)) {
    case IDC_OK: EndDialog(hDialog, DIALOG_OK); break;
    case IDC_NOTICE_OK: EndDialog(hDialog, DIALOG_CANCEL); break;
    default: break;
    }
}

constexpr DialogRoutines noticeBox = {-1, InitNotice, NoticeCommand};

} // namespace

INT_PTR ShowNotice(UiSession* pSession, HWND hOwner, NoticeId notice)
{
    const NoticeRow* pRow = FindNotice(notice);
    return !pRow || RunDialog<noticeBox>(pSession, hOwner, pRow->usTemplate, notice) != DIALOG_OK;
}

int ShowJobNotice(HMODULE hLanguageDll, const LanguageChoice& choice)
{
    OwnedBlock<UiSession> pBlock(static_cast<UiSession*>(AllocateBlock(sizeof(UiSession))));
    if (!pBlock) {
        return 0;
    }
    UiSession* pSession = std::construct_at(pBlock.get());
    pSession->rLanguage = choice;
    pSession->hLanguageDll.reset(hLanguageDll);
    ShowNotice(pSession, nullptr, NOTICE_NOT_PRINTED);
    (void)pSession->hLanguageDll.release(); /* the caller's */
    std::destroy_at(pSession);
    return 1;
}

int CheckConstraints(HWND hPage, UiSession* pSession)
{
    PrinterCall call(pSession->hPrinter);
    Conflict conflict;
    i32 lKnownEnd = FIRST_SAVED_CODE + pSession->sCustomPaperCount + pSession->sFormCount;
    if (!FindConflict(call, pSession->pRecord, &pSession->rDeviceInfo, pSession->pXpi.get(), lKnownEnd,
                      &conflict)) {
        return 0;
    }
    pSession->sNoticeText = conflict.sMessageId;
    ShowNotice(pSession, hPage, NOTICE_CONFLICT);
    return 1;
}

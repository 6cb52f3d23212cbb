/* The Layout page's window. Its alternatives share one place on the page: what does not belong to the layout type that is
   chosen is hidden. */
#include "sheet/layout_page.h"

#include "description/control_ids.h"
#include "description/paper.h"
#include "description/string_ids.h"
#include "sheet/dialog_services.h"
#include "sheet/duplex_picture.h"
#include "sheet/edit_keys.h"
#include "sheet/layout_choice.h"
#include "sheet/preview_panel.h"
#include "sheet/zoom_and_layout.h"

namespace {

constexpr i32 FRONT_COVER_LIMIT = 4; /* a booklet of so many pages a group has no front cover of its own */

constexpr int anOrientations[] = {IDC_LAYOUT_PORTRAIT, IDC_LAYOUT_LANDSCAPE, 0};
constexpr int anSides[] = {IDC_LAYOUT_ONE_SIDE, IDC_LAYOUT_LONG_EDGE, IDC_LAYOUT_SHORT_EDGE, 0};
constexpr int anDuplexGroup[] = {IDC_LAYOUT_DUPLEX, IDC_LAYOUT_ONE_SIDE, IDC_LAYOUT_LONG_EDGE,
                                 IDC_LAYOUT_SHORT_EDGE, 0};
constexpr int anPages[] = {IDC_LAYOUT_PAGES_LABEL, IDC_LAYOUT_PAGES, 0};
constexpr int anPoster[] = {IDC_LAYOUT_POSTER_LABEL, IDC_LAYOUT_POSTER, 0};
constexpr int anOrder[] = {IDC_LAYOUT_BORDERS, IDC_LAYOUT_ORDER_LABEL, IDC_LAYOUT_ORDER, 0};
constexpr int anBooklet[] = {IDC_LAYOUT_BIND_RIGHT, 0};
constexpr int anBookletPages[] = {IDC_LAYOUT_BOOKLET, IDC_LAYOUT_BOOKLET_SPIN, 0};
constexpr int anHeldByZoom[] = {IDC_LAYOUT_PAGES_LABEL, IDC_LAYOUT_PAGES, IDC_LAYOUT_POSTER, 0};
constexpr int anArrangement[] = {IDC_LAYOUT_ARRANGEMENT, IDC_LAYOUT_PAGES, 0};

constexpr u32 ANY_PRINTER = 1, OWN_PRINTER = 2;
constexpr ComboTableRow aTypes[] = {
    {ALL_ROWS, IDS_LAYOUT_PAGES, 0, LAYOUT_N_UP},
    {ALL_ROWS, IDS_LAYOUT_POSTER, 0, LAYOUT_POSTER},
    {OWN_PRINTER, IDS_LAYOUT_BOOKLET, 0, LAYOUT_BOOKLET},
    {},
};
constexpr ComboTableRow aPages[] = {
    {ALL_ROWS, IDS_PAGES_1, 0, 1}, {ALL_ROWS, IDS_PAGES_2, 0, 2},   {ALL_ROWS, IDS_PAGES_4, 0, 4},
    {ALL_ROWS, IDS_PAGES_9, 0, 9}, {ALL_ROWS, IDS_PAGES_16, 0, 16}, {},
};
constexpr ComboTableRow aPosters[] = {
    {ALL_ROWS, IDS_POSTER_OFF, 0, 0},
    {ALL_ROWS, IDS_POSTER_2, 0, 2},
    {ALL_ROWS, IDS_POSTER_3, 0, 3},
    {ALL_ROWS, IDS_POSTER_4, 0, 4},
    {},
};
constexpr u32 TWO_BESIDE = 1, TWO_BELOW = 2, MANY_PAGES = 16;
constexpr ComboTableRow aOrders[] = {
    {MANY_PAGES, IDS_ORDER_RIGHT_DOWN, 0, 0},
    {MANY_PAGES, IDS_ORDER_RIGHT_UP, 0, 1},
    {MANY_PAGES, IDS_ORDER_LEFT_DOWN, 0, 2},
    {MANY_PAGES, IDS_ORDER_LEFT_UP, 0, 3},
    {MANY_PAGES, IDS_ORDER_DOWN_RIGHT, 0, 16},
    {MANY_PAGES, IDS_ORDER_UP_RIGHT, 0, 17},
    {MANY_PAGES, IDS_ORDER_DOWN_LEFT, 0, 18},
    {MANY_PAGES, IDS_ORDER_UP_LEFT, 0, 19},
    {TWO_BESIDE, IDS_ORDER_LEFT_TO_RIGHT, 0, 0},
    {TWO_BESIDE, IDS_ORDER_RIGHT_TO_LEFT, 0, 1},
    {TWO_BELOW, IDS_ORDER_TOP_TO_BOTTOM, 0, 0},
    {TWO_BELOW, IDS_ORDER_BOTTOM_TO_TOP, 0, 1},
    {},
};

LayoutDevice Device(const UiSession* pSession)
{
    return DescribeLayoutDevice(pSession->pXpi.get(), pSession->rDeviceInfo, pSession->bOnServer != 0);
}

int ShownOrientation(HWND hPage)
{
    return IsChecked(hPage, IDC_LAYOUT_PORTRAIT) ? 1 : 2;
}

u16 ReadDuplexRadio(HWND hPage)
{
    return IsChecked(hPage, IDC_LAYOUT_LONG_EDGE) ? 2 : IsChecked(hPage, IDC_LAYOUT_SHORT_EDGE) ? 3 : 1;
}

void SetDuplexRadio(HWND hPage, int nDuplex)
{
    CheckRadio(hPage, anSides,
               nDuplex == 2   ? IDC_LAYOUT_LONG_EDGE
               : nDuplex == 3 ? IDC_LAYOUT_SHORT_EDGE
                              : IDC_LAYOUT_ONE_SIDE);
}

/* All that the page's controls say, for the check, the apply and the preview alike. */
LayoutChoice ReadLayoutChoice(HWND hPage)
{
    LayoutChoice choice = {};
    choice.bLandscape = ShownOrientation(hPage) != 1;
    choice.bRotate180 = IsChecked(hPage, IDC_LAYOUT_ROTATE);
    choice.bBorders = IsChecked(hPage, IDC_LAYOUT_BORDERS);
    choice.type = ReadCombo(hPage, IDC_LAYOUT_TYPE);
    choice.pages = ReadCombo(hPage, IDC_LAYOUT_PAGES);
    choice.order = ReadCombo(hPage, IDC_LAYOUT_ORDER);
    choice.poster = ReadCombo(hPage, IDC_LAYOUT_POSTER);
    choice.bBindRight = IsChecked(hPage, IDC_LAYOUT_BIND_RIGHT);
    choice.lBooklet = ReadNumber(hPage, IDC_LAYOUT_BOOKLET);
    choice.usDuplex = ReadDuplexRadio(hPage);
    return choice;
}

/* A zoom on the Paper page holds the layout, whatever else has enabled it meanwhile. */
void HoldByZoom(HWND hPage)
{
    if (!IsWindowEnabled(GetDlgItem(hPage, IDC_LAYOUT_GROUP))) {
        EnableControls(hPage, anHeldByZoom, 0);
    }
}

/* Offers the controls of one layout type and hides all others. */
void ShowLayoutGroup(HWND hPage, const UiSession* pSession, i32 lType, i32 lPages, int nOrientation)
{
    int bPages = lType != LAYOUT_BOOKLET && lType != LAYOUT_POSTER;
    int bOrder = bPages && lPages > 1;
    OfferControls(hPage, anPages, bPages);
    OfferControls(hPage, anPoster, lType == LAYOUT_POSTER);
    OfferControls(hPage, anBooklet, lType == LAYOUT_BOOKLET);
    OfferControls(hPage, anOrder, bOrder);
    if (bOrder) {
        u32 ulFilter = lPages != 2 ? MANY_PAGES : nOrientation == 1 ? TWO_BESIDE : TWO_BELOW;
        FillComboFromTable(hPage, pSession, IDC_LAYOUT_ORDER, aOrders, ulFilter);
    }
    HoldByZoom(hPage);
}

/* The same for what the controls say now; the order is kept as far as the new rows have it. */
void ShowCurrentGroup(HWND hPage, const UiSession* pSession, i32 lType)
{
    Selection order = ReadCombo(hPage, IDC_LAYOUT_ORDER);
    i32 lPages = GetComboValue(hPage, IDC_LAYOUT_PAGES, nullptr);
    ShowLayoutGroup(hPage, pSession, lType, lPages, ShownOrientation(hPage));
    SelectComboValue(hPage, IDC_LAYOUT_ORDER, ValueOr(order, 0));
}

void InitDuplex(HWND hPage, UiSession* pSession, const LayoutDevice& device)
{
    DriverDevmode* pRecord = pSession->pRecord;
    ShowControls(hPage, anDuplexGroup, device.bDuplex);
    int bTwoSides = device.bDuplexUnit && !device.bOnServer;
    if (device.bDuplex && !bTwoSides) {
        pRecord->dmFields &= ~FIELDS_DUPLEX;
    } else if (device.bDuplex) {
        pRecord->dmFields |= FIELDS_DUPLEX;
    }
    SetDuplexRadio(hPage, bTwoSides ? pRecord->dmDuplex : 1);
    /* A poster and a booklet decide for themselves. */
    EnableControls(hPage, anSides, pRecord->rPrivate.sLayoutType == LAYOUT_N_UP && !device.bOnServer);
}

void InitLists(HWND hPage, UiSession* pSession, const LayoutDevice& device)
{
    PrivateDevmode* pPart = &pSession->pRecord->rPrivate;
    FillComboFromTable(hPage, pSession, IDC_LAYOUT_TYPE, aTypes,
                       device.bOnServer ? ANY_PRINTER : OWN_PRINTER);
    SelectComboValue(hPage, IDC_LAYOUT_TYPE, pPart->sLayoutType);
    pPart->sLayoutTypeShown = pPart->sLayoutType;
    if (device.bPosterSizes) {
        FillComboFromTable(hPage, pSession, IDC_LAYOUT_POSTER, aPosters, ALL_ROWS);
        SelectComboValue(hPage, IDC_LAYOUT_POSTER, static_cast<i16>(pPart->sPosterGrowth));
    }
    FillComboFromTable(hPage, pSession, IDC_LAYOUT_PAGES, aPages, ALL_ROWS);
}

/* By the layout type, then by what the record has in effect: a poster, a booklet, or pages on a sheet. */
void ShowType(HWND hPage, const PrivateDevmode& part)
{
    switch (part.sLayoutType) {
    case LAYOUT_N_UP:
        ShowControls(hPage, anPages, 1);
        ShowControls(hPage, anPoster, 0);
        break;
    case LAYOUT_POSTER:
        ShowControls(hPage, anPoster, 1);
        ShowControls(hPage, anPages, 0);
        ShowControls(hPage, anOrder, 0);
        break;
    case LAYOUT_BOOKLET:
        ShowControls(hPage, anPages, 0);
        ShowControls(hPage, anPoster, 0);
        ShowControls(hPage, anBookletPages, 0);
        break;
    default: break;
    }
}

void SelectPages(HWND hPage, UiSession* pSession)
{
    const PrivateDevmode& part = pSession->pRecord->rPrivate;
    int bPoster = static_cast<i16>(part.sPosterGrowth) >= 2;
    int bBooklet = !bPoster && part.sBookletPrint;
    int bPages = !bPoster && !bBooklet;
    i32 lBooklet = bBooklet ? BookletPages(part.sBookletPrint) : 0;
    SelectComboValue(hPage, IDC_LAYOUT_PAGES, bPages ? part.lPagesPerSheet : 1);
    SetChecked(hPage, IDC_LAYOUT_BORDERS, bPages && part.sPageBorders);
    SelectComboValue(hPage, IDC_LAYOUT_ORDER, bPages ? static_cast<i16>(part.sPageOrder) : 0);
    ShowNumber(hPage, IDC_LAYOUT_BOOKLET, lBooklet);
    SetChecked(hPage, IDC_LAYOUT_BIND_RIGHT, bBooklet && part.sPageOrder);
    if (lBooklet >= FRONT_COVER_LIMIT) {
        pSession->pRecord->rPrivate.sFrontCover = 0;
        pSession->rSnapshot.rPrivate.sFrontCover = 0; /* a repair is no edit of the user's */
    }
}

void InitLayout(HWND hPage, UiSession* pSession)
{
    DriverDevmode* pRecord = pSession->pRecord;
    const LayoutDevice device = Device(pSession);
    if (device.bOnServer) {
        RepairSharedLayout(pRecord);
    }
    const PrivateDevmode& part = pRecord->rPrivate;
    CheckRadio(hPage, anOrientations,
               pRecord->dmOrientation == 1 ? IDC_LAYOUT_PORTRAIT : IDC_LAYOUT_LANDSCAPE);
    EnableLayoutGroup(pSession, 1); /* a page that is filled again may be held by the zoom of before */
    InitLists(hPage, pSession, device);
    if (part.sBookletPrint == 0) {
        EnableControls(hPage, anArrangement, static_cast<i16>(part.sPosterGrowth) < 2);
    }
    ShowLayoutGroup(hPage, pSession, part.sBookletPrint ? i32{LAYOUT_BOOKLET} : i32{part.sLayoutType},
                    part.lPagesPerSheet, pRecord->dmOrientation);
    EnableLayoutGroup(pSession, IsZoom100(pSession));
    SetChecked(hPage, IDC_LAYOUT_ROTATE, part.sRotate180);
    InitDuplex(hPage, pSession, device);
    ShowType(hPage, part);
    SelectPages(hPage, pSession);
    HoldByZoom(hPage);
}

int CheckLayout(HWND hPage, UiSession* pSession)
{
    return LayoutDiffers(ReadLayoutChoice(hPage), Device(pSession), *pSession->pRecord, pSession->rSnapshot);
}

int ApplyLayout(HWND hPage, UiSession* pSession)
{
    DriverDevmode* pRecord = pSession->pRecord;
    PrinterCall call(pSession->hPrinter);
    i16 sWidth, sLength;
    GetPaperSize(call, pSession->pXpi.get(), pRecord->dmPaperSize, &sWidth, &sLength);
    pRecord->dmPaperWidth = sWidth;
    pRecord->dmPaperLength = sLength;
    StoreLayout(ReadLayoutChoice(hPage), Device(pSession), pRecord);
    if (pRecord->rPrivate.sLayoutType == LAYOUT_BOOKLET) {
        ShowNumber(hPage, IDC_LAYOUT_BOOKLET, pRecord->rPrivate.sBookletPrint);
        SetDuplexRadio(hPage, pRecord->dmDuplex);
    }
    return 1;
}

void LayoutApplied(HWND, UiSession* pSession)
{
    DropDuplexPictures(pSession);
}

void PreviewLayoutPage(HWND hPage, const UiSession* pSession, PreviewChoice* pShown)
{
    const LayoutChoice choice = ReadLayoutChoice(hPage);
    if (!choice.type.bChosen) {
        return;
    }
    i32 lType = choice.type.lValue;
    int bPoster = lType == LAYOUT_POSTER, bBooklet = lType == LAYOUT_BOOKLET;
    pShown->bBooklet = bBooklet;
    pShown->sPosterSize = bPoster ? static_cast<i16>(ValueOr(choice.poster, 0)) : i16{0};
    pShown->sLayout = static_cast<i16>(bPoster || bBooklet ? lType : ValueOr(choice.pages, 1));
    pShown->sPageOrder = static_cast<i16>(bBooklet  ? choice.bBindRight
                                          : bPoster ? 0
                                                    : ValueOr(choice.order, 0));
    pShown->usDuplex = HasDuplexOption(pSession->pXpi.get()) ? choice.usDuplex : u16{1};
    pShown->usOrientation = !choice.bLandscape;
    pShown->bRotate180 = choice.bRotate180;
    pShown->bBorders = choice.bBorders;
}

/* What one side means for all others: neither a booklet nor a poster lets the user choose. */
void ShowSides(HWND hPage, int nDuplex, int bEnable)
{
    EnableControls(hPage, anSides, bEnable);
    SetDuplexRadio(hPage, nDuplex);
    RepaintControl(hPage, IDC_LAYOUT_DUPLEX_PICTURE);
}

void SelectOnePage(HWND hPage)
{
    SelectComboValue(hPage, IDC_LAYOUT_PAGES, 1);
    SetChecked(hPage, IDC_LAYOUT_BORDERS, 0);
    SetChecked(hPage, IDC_LAYOUT_BIND_RIGHT, 0);
}

void ChangeType(HWND hPage, UiSession* pSession)
{
    PrivateDevmode* pPart = &pSession->pRecord->rPrivate;
    i32 lType = GetComboValue(hPage, IDC_LAYOUT_TYPE, nullptr);
    if (lType == LAYOUT_N_UP && pPart->sLayoutTypeShown != LAYOUT_N_UP) {
        pPart->sLayoutTypeShown = LAYOUT_N_UP;
        ShowCurrentGroup(hPage, pSession, lType);
        ShowSides(hPage, 1, !pSession->bOnServer);
        SelectComboValue(hPage, IDC_LAYOUT_POSTER, 0);
        SetChecked(hPage, IDC_LAYOUT_BIND_RIGHT, 0);
        RepaintControl(hPage, IDC_PREVIEW);
    } else if (lType == LAYOUT_POSTER || lType == LAYOUT_BOOKLET) {
        pPart->sLayoutTypeShown = static_cast<u16>(lType);
        ShowLayoutGroup(hPage, pSession, lType, 1, 1);
        SelectOnePage(hPage);
        if (lType == LAYOUT_BOOKLET) {
            SelectComboValue(hPage, IDC_LAYOUT_POSTER, 0);
        }
        ShowSides(hPage, lType == LAYOUT_BOOKLET ? 2 : 1, 0);
        RepaintControl(hPage, IDC_PREVIEW);
    }
    EnableScalingGroup(pSession, ScalingAllowed(pSession));
}

void ChangePages(HWND hPage, UiSession* pSession)
{
    ShowCurrentGroup(hPage, pSession, LAYOUT_N_UP);
    if (GetComboValue(hPage, IDC_LAYOUT_PAGES, nullptr) == 1) {
        SelectComboValue(hPage, IDC_LAYOUT_ORDER, 0);
        SetChecked(hPage, IDC_LAYOUT_BORDERS, 0);
    }
    RepaintControl(hPage, IDC_LAYOUT_DUPLEX_PICTURE);
    RepaintControl(hPage, IDC_PREVIEW);
    EnableScalingGroup(pSession, ScalingAllowed(pSession));
}

void ChangePoster(HWND hPage, UiSession* pSession)
{
    if (GetComboValue(hPage, IDC_LAYOUT_PAGES, nullptr) > 1) {
        pSession->pRecord->rPrivate.sPosterGrowth = 0;
    }
    RepaintControl(hPage, IDC_PREVIEW);
}

void ListChanged(HWND hPage, UiSession* pSession, int nControl)
{
    switch (nControl) {
    case IDC_LAYOUT_TYPE: ChangeType(hPage, pSession); break;
    case IDC_LAYOUT_PAGES: ChangePages(hPage, pSession); break;
    case IDC_LAYOUT_POSTER: ChangePoster(hPage, pSession); break;
    case IDC_LAYOUT_ORDER: RepaintControl(hPage, IDC_PREVIEW); break;
    default: break;
    }
}

void ButtonClicked(HWND hPage, UiSession* pSession, int nControl)
{
    switch (nControl) {
    case IDC_LAYOUT_ONE_SIDE:
    case IDC_LAYOUT_LONG_EDGE:
    case IDC_LAYOUT_SHORT_EDGE:
        RepaintControl(hPage, IDC_LAYOUT_DUPLEX_PICTURE);
        UpdatePreview(hPage, nullptr, pSession, 0);
        break;
    case IDC_LAYOUT_PORTRAIT:
    case IDC_LAYOUT_LANDSCAPE:
        ShowCurrentGroup(hPage, pSession, GetComboValue(hPage, IDC_LAYOUT_TYPE, nullptr));
        RepaintControl(hPage, IDC_PREVIEW);
        break;
    case IDC_LAYOUT_ROTATE:
    case IDC_LAYOUT_BORDERS:
    case IDC_LAYOUT_BIND_RIGHT: RepaintControl(hPage, IDC_PREVIEW); break;
    case IDC_UNIT: FlipPreviewUnit(hPage, pSession); break;
    default: break;
    }
}

} // namespace

constinit const PageRoutines layoutPage = {
    .slot = SLOT_LAYOUT,
    .nHelpKey = 50,
    .pfnInit = InitLayout,
    .pfnDiffers = CheckLayout,
    .pfnApply = ApplyLayout,
    .pfnApplied = LayoutApplied,
    .pfnPaint = PaintDuplexPage,
    .pfnPreview = PreviewLayoutPage,
};

void LayoutCommand(HWND hPage, UiSession* pSession, WPARAM wParam, LPARAM)
{
    int nControl = LOWORD(wParam), nCode = HIWORD(wParam);
    if (nControl == IDC_LAYOUT_BOOKLET) {
        if (nCode == EN_CHANGE && ReadNumber(hPage, IDC_LAYOUT_BOOKLET) >= FRONT_COVER_LIMIT) {
            pSession->pRecord->rPrivate.sFrontCover = 0;
        }
    } else if (nCode == CBN_SELCHANGE) {
        ListChanged(hPage, pSession, nControl);
    }
    if (nCode == BN_CLICKED) {
        ButtonClicked(hPage, pSession, nControl);
    }
}

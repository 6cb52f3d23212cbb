/* Builds and ends sessions. A session is one zeroed block with owners in it; what it owns is released in the order in
   which later parts may still need earlier ones: lists, the description, the language library, the block. */
#include "sheet/session.h"

#include <cstring>
#include <memory>

#include "base/file_name.h"
#include "description/installed_set.h"
#include "description/paper.h"
#include "description/printer_store.h"
#include "entry/install_import.h"
#include "entry/user_settings_file.h"
#include "platform/text.h"
#include "preview/preview_choice.h"
#include "watermark/watermark_store.h"

namespace {

constexpr int OVERLAY_CHARS = static_cast<int>(sizeof(PrivateDevmode::tcOverlayDir) / sizeof(WCHAR));
constexpr i32 FORM_LIMIT = 0x7FFF;

/* The user's files: the settings file comes into being before anything is read from it. */
void PrepareUserFiles(PrinterCall& call, UiSession* pSession)
{
    const XpiModel* pModel = pSession->pXpi.get();
    GetUserFolder(call, pSession->wcUserFolder);
    if (EnsureSettingsFile(call, pSession->pRecord, pModel->usLanguage)) {
        ImportInstallSettings(call, pModel);
    }
}

void ListFontFamilies(UiSession* pSession)
{
    if (HDC hDc = CreateDCW(TEXT("DISPLAY"), nullptr, nullptr, nullptr)) {
        pSession->bFontFamilies = static_cast<u32>(BuildFontFamilyList(hDc, &pSession->rFontFamilies));
        DeleteDC(hDc);
    }
}

/* What belongs to printer and user. 0 when a list could not be had for want of memory. */
int LoadLists(PrinterCall& call, UiSession* pSession)
{
    const XpiModel* pModel = pSession->pXpi.get();
    pSession->sWatermarkCount = static_cast<u16>(GetSavedWatermarks(call, &pSession->pWatermarks));
    pSession->sWatermarkSnapshotCount = pSession->sWatermarkCount;
    if (pModel->sResFontCount > 0) {
        pSession->ulFontSubsBytes = GetFontSubs(call, &pSession->pFontSubs);
    }
    ListFontFamilies(pSession);
    pSession->rDeviceInfo = *GetDeviceInfo(call, pModel);
    pSession->sCustomPaperCount = static_cast<i16>(GetSavedPapers(call, pModel, &pSession->pCustomPapers));
    i32 nForms = GetSpoolerForms(call, &pSession->pForms);
    pSession->sFormCount = static_cast<u16>(nForms < FORM_LIMIT ? nForms : FORM_LIMIT);
    return pSession->pWatermarks && pSession->pCustomPapers;
}

int IsFolder(const WCHAR* tcPath)
{
    DWORD dwAttributes = GetFileAttributesW(tcPath);
    return dwAttributes != INVALID_FILE_ATTRIBUTES && (dwAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

/* Gives the record an overlay folder that is there: its own, or the user's. A folder is made only where it says
   plainly where it lies, and a device is not even asked for: the record may come from anywhere. */
void SettleOverlayFolder(UiSession* pSession)
{
    WCHAR tcFolder[OVERLAY_CHARS + 1] = {};
    PrivateDevmode* pPrivate = &pSession->pRecord->rPrivate;
    std::memcpy(tcFolder, pPrivate->tcOverlayDir, OVERLAY_CHARS * sizeof(WCHAR));
    if (tcFolder[0] && !IsDevicePath(tcFolder) &&
        (IsFolder(tcFolder) || (IsPlainPath(tcFolder) && CreateDirectoryW(tcFolder, nullptr)))) {
        return;
    }
    std::memset(tcFolder, 0, sizeof tcFolder);
    CopyWideWhole(tcFolder, OVERLAY_CHARS, pSession->wcUserFolder);
    std::memcpy(pPrivate->tcOverlayDir, tcFolder, OVERLAY_CHARS * sizeof(WCHAR));
}

void FindLibraries(PrinterCall& call, UiSession* pSession)
{
    WCHAR tcOverlayLib[PATH_CHARS];
    FindDriverFile(call, TEXT("RenderLib"), TEXT("RDR.DLL"), pSession->wcRenderLib);
    if (FindDriverFile(call, TEXT("OverlayOcm"), TEXT("LAY.DLL"), tcOverlayLib) &&
        WideCharToMultiByte(CP_ACP, 0, tcOverlayLib, -1, pSession->cOverlayLib, PATH_CHARS, nullptr,
                            nullptr) <= 0) {
        pSession->cOverlayLib[0] = 0;
    }
}

u32 ColorModeMask(const XpiModel* pModel)
{
    u32 ulMask = 0;
    for (i32 i = 0;; i++) {
        u32 ulKind = Row(pModel, pModel->pColorModes, i)->ulKind;
        if (!ulKind) {
            return ulMask;
        }
        ulMask |= ulKind;
    }
}

void KnowRecord(PrinterCall& call, UiSession* pSession)
{
    const PRINTER_INFO_2W* pInfo = GetPrinterInfo(call);
    pSession->bOnServer = pInfo && PrinterText(call, pInfo->pServerName)[0];
    pSession->bPaperHasTarget = GetCompanionPaper(pSession->pXpi.get(), pSession->pRecord->dmPaperSize) > 0;
    GetScreenName(call, pSession->wcScreenFile, PATH_CHARS);
    GetProfileName(call, pSession->wcProfileFile, PATH_CHARS);
    CopyWide(pSession->wcScreenFileSnapshot, PATH_CHARS, pSession->wcScreenFile);
    CopyWide(pSession->wcProfileFileSnapshot, PATH_CHARS, pSession->wcProfileFile);
    pSession->ulColorModeMask = ColorModeMask(pSession->pXpi.get());
    SettleOverlayFolder(pSession);
    FindLibraries(call, pSession);
    pSession->rSnapshot = *pSession->pRecord;
}

} // namespace

void DeleteDuplexPictures(UiSession* pSession)
{
    for (HBITMAP& hBitmap : pSession->ahDuplexPicture) {
        if (hBitmap) {
            DeleteObject(hBitmap);
            hBitmap = nullptr;
        }
    }
}

UiSession* CreateUiSession(PrinterCall& call, OwnedModel pModel, DriverDevmode* pRecord)
{
    void* pBlock = pModel ? AllocateBlock(sizeof(UiSession)) : nullptr;
    if (!pBlock) {
        return nullptr;
    }
    UiSession* pSession = std::construct_at(static_cast<UiSession*>(pBlock));
    pSession->hPrinter = call.hPrinter;
    pSession->pXpi = std::move(pModel);
    pSession->pRecord = pRecord;
    PrepareUserFiles(call, pSession);
    pSession->hLanguageDll = OpenLanguageDll(call, &pSession->rLanguage);
    pSession->hCursorHand = LoadCursorW(nullptr, IDC_HAND);
    if (!pSession->hCursorHand) {
        pSession->hCursorHand = LoadCursorW(nullptr, IDC_SIZEWE);
    }
    pSession->hIconInfo = LoadIconW(nullptr, IDI_ASTERISK);
    if (!pSession->hLanguageDll || !LoadLists(call, pSession)) {
        DestroyUiSession(pSession);
        return nullptr;
    }
    KnowRecord(call, pSession);
    pSession->rXpiFile = std::move(call.rXpiFile);
    call.xpiState = NOT_ASKED;
    DescribePreviewDevice(pSession->rXpiFile, pSession->pXpi.get(), pSession->rLanguage.usPrimary,
                          static_cast<HMODULE>(pSession->hLanguageDll.get()), &pSession->rPreviewDevice);
    return pSession;
}

void DestroyUiSession(UiSession* pSession)
{
    if (!pSession) {
        return;
    }
    pSession->rFontFamilies = {};
    pSession->pFontSubs.reset();
    pSession->pFontSubsSnapshot.reset();
    pSession->pWatermarks.reset();
    pSession->pDeletedWatermarks.reset();
    pSession->pCustomPapers.reset();
    pSession->pXpi.reset();
    pSession->pForms.reset();
    pSession->rXpiFile.hFile.reset();
    pSession->hLanguageDll.reset();
    ReleasePreviewTools(&pSession->rPreview);
    if (pSession->hLogoBitmap) {
        DeleteObject(pSession->hLogoBitmap);
    }
    DeleteDuplexPictures(pSession);
    std::destroy_at(pSession);
    FreeBlock(pSession);
}

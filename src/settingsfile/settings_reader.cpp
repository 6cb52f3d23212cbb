/* Reads the section "PrinterSettings": the guard key, the runs of the table, and the keys between them. Nothing
   here can fail once the guard has passed, so the record is filled where it stands. */
#include "settingsfile/settings_reader.h"

#include <cstring>

#include "base/arithmetic.h"
#include "base/format.h"
#include "settingsfile/profile_values.h"
#include "settingsfile/settings_keys.h"

namespace {

constexpr int GUARD_CHARS = 32;
constexpr int LONGEST_TEXT = 96;           /* characters of the widest text field */
constexpr u32 FEATURE_OF_SESSION = 0x0002; /* of ulLanguageFeatures: not read in a read-only session */

/* 1 when the settings were made for the record's description, or for none in particular. */
int IsGuardPassed(const WCHAR* tcPath, const DriverDevmode* pRecord)
{
    WCHAR tcXpiName[sizeof pRecord->rPrivate.tcXPIName / sizeof(WCHAR) + 1] = {};
    std::memcpy(tcXpiName, pRecord->rPrivate.tcXPIName, sizeof pRecord->rPrivate.tcXPIName);
    const WCHAR* wcName = BehindLast(tcXpiName, '\\');
    WCHAR wcGuard[GUARD_CHARS];
    ReadProfileText(SETTINGS_SECTION, TEXT("XPI"), wcName, wcGuard, GUARD_CHARS, tcPath);
    return SameWide(wcGuard, wcName);
}

i32 ReadNumber(const WCHAR* tcPath, const WCHAR* wcKey, KeyForm form, i32 lDefault)
{
    switch (form) {
    case KEY_LONG: return ReadProfileLong(SETTINGS_SECTION, wcKey, lDefault, tcPath);
    case KEY_HEX:
        return static_cast<i32>(ReadProfileHex(SETTINGS_SECTION, wcKey, static_cast<u32>(lDefault), tcPath));
    default: return ReadProfileInt(SETTINGS_SECTION, wcKey, lDefault, tcPath);
    }
}

void ReadText(const WCHAR* tcPath, DriverDevmode* pRecord, const SettingKey& key)
{
    /* The field lies at no address in particular, and may lack its NUL. */
    WCHAR wcText[LONGEST_TEXT + 1] = {};
    u8* pField = reinterpret_cast<u8*>(pRecord) + key.usOffset;
    size_t cbField = size_t{key.bCount} * sizeof(WCHAR);
    std::memcpy(wcText, pField, cbField);
    ReadProfileText(SETTINGS_SECTION, key.wcKey, wcText, wcText, key.bCount, tcPath);
    std::memcpy(pField, wcText, cbField);
}

void ReadRun(const WCHAR* tcPath, DriverDevmode* pRecord, u16 usLanguage, KeyRun run)
{
    WCHAR wcKey[TEXT_CHARS];
    for (int nKey = 0; nKey < aKeyRuns[run].nKeys; nKey++) {
        const SettingKey& key = aKeyRuns[run].pKeys[nKey];
        if (!(key.bKindsRead & KindOf(usLanguage))) {
            continue;
        }
        if (key.form == KEY_TEXT) {
            ReadText(tcPath, pRecord, key);
            continue;
        }
        for (int i = 0; i < key.bCount; i++) {
            const WCHAR* wcName = key.wcKey;
            if (key.bCount > 1) {
                FormatWide(wcKey, TEXT_CHARS, TEXT("%s%d"), key.wcKey, i);
                wcName = wcKey;
            }
            i32 lDefault = GetKeyNumber(pRecord, key, i);
            SetKeyNumber(pRecord, key, i, ReadNumber(tcPath, wcName, key.form, lDefault));
        }
    }
}

} // namespace

int ReadPrinterSettings(const WCHAR* tcPath, DriverDevmode* pRecord, int bReadOnly, u16 usLanguage)
{
    if (!tcPath || !tcPath[0]) {
        return 1; /* no file was named, so none is read */
    }
    if (!IsGuardPassed(tcPath, pRecord)) {
        return 0;
    }
    auto Read = [=](KeyRun run) { ReadRun(tcPath, pRecord, usLanguage, run); };
    PrivateDevmode* pPrivate = &pRecord->rPrivate;
    u8 bKind = KindOf(usLanguage);

    Read(RUN_PAGE);
    pPrivate->ulWMType = ReadProfileHex(SETTINGS_SECTION, TEXT("WMType"), 0, tcPath);
    Read(RUN_WATERMARK);
    if (pPrivate->ulWMType & WM_TEXT) {
        Read(RUN_TEXT_WATERMARK);
    }
    Read(RUN_PLACEMENT);
    if (!(pPrivate->ulWMType & WM_TEXT)) {
        Read(RUN_FILE_WATERMARK);
    }
    Read(RUN_COVERS);
    if (!bReadOnly) {
        Read(RUN_MARGIN_MODE);
    }
    pPrivate->ulColorMode = 0;
    Read(RUN_MEDIA);
    if (!bReadOnly) {
        Read(RUN_MARGINS);
    }
    u32 ulKept = pPrivate->ulLanguageFeatures & FEATURE_OF_SESSION;
    Read(RUN_OUTPUT);
    if (bReadOnly) {
        pPrivate->ulLanguageFeatures = (pPrivate->ulLanguageFeatures & ~FEATURE_OF_SESSION) | ulKept;
    }
    if (bKind == ON_OTHERS) {
        pPrivate->sInsertPageOffset = LowWord(AbsoluteCode(pPrivate->sInsertPageOffset));
    }
    Read(RUN_INSERT);
    Read(RUN_COLOR_COMMANDS);
    Read(RUN_CHOICES);
    if (bKind != ON_OTHERS) {
        ReadStyles(tcPath, pRecord, usLanguage);
    }
    Read(RUN_TAIL);
    return 1;
}

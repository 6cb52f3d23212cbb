/* Reads the section "PrinterSettings": the guard key, the runs of the table, and the keys between them. Nothing
   here can fail once the guard has passed, so the record is filled where it stands. */
#include "settingsfile/settings_reader.h"

#include <cstring>

#include "base/arithmetic.h"
#include "profile/profile_values.h"
#include "settingsfile/settings_keys.h"

namespace {

constexpr int GUARD_CHARS = 32;
constexpr int LONGEST_TEXT = 96;           /* characters of the widest text field */
constexpr u32 FEATURE_OF_SESSION = 0x0002; /* of ulLanguageFeatures: not read in a read-only session */

/* 1 when the settings were made for the record's description, or for none in particular. */
int IsGuardPassed(const ProfileSection& section, const DriverDevmode* pRecord)
{
    WCHAR tcXpiName[sizeof pRecord->rPrivate.tcXPIName / sizeof(WCHAR) + 1] = {};
    std::memcpy(tcXpiName, pRecord->rPrivate.tcXPIName, sizeof pRecord->rPrivate.tcXPIName);
    const WCHAR* wcName = BehindLast(tcXpiName, '\\');
    WCHAR wcGuard[GUARD_CHARS];
    CopyWide(wcGuard, GUARD_CHARS, wcName);
    ReadProfileText(section, TEXT("XPI"), wcGuard, GUARD_CHARS);
    return SameWide(wcGuard, wcName);
}

i32 ReadNumber(const ProfileSection& section, const ProfileKey& name, KeyForm form, i32 lDefault)
{
    switch (form) {
    case KEY_LONG: return ReadProfileLong(section, name, lDefault);
    case KEY_HEX: return static_cast<i32>(ReadProfileHex(section, name, static_cast<u32>(lDefault)));
    default: return ReadProfileInt(section, name, lDefault);
    }
}

void ReadText(const ProfileSection& section, DriverDevmode* pRecord, const SettingKey& key)
{
    /* The field lies at no address in particular, and may lack its NUL. */
    WCHAR wcText[LONGEST_TEXT];
    u8* pField = reinterpret_cast<u8*>(pRecord) + key.usOffset;
    size_t cbField = size_t{key.bCount} * sizeof(WCHAR);
    std::memcpy(wcText, pField, cbField);
    if (ReadProfileText(section, key.wcKey, wcText, key.bCount)) {
        std::memcpy(pField, wcText, cbField);
    }
}

void ReadRun(const ProfileSection& section, DriverDevmode* pRecord, u16 usLanguage, KeyRun run)
{
    for (int nKey = 0; nKey < aKeyRuns[run].nKeys; nKey++) {
        const SettingKey& key = aKeyRuns[run].pKeys[nKey];
        if (!(key.bKindsRead & KindOf(usLanguage))) {
            continue;
        }
        if (key.form == KEY_TEXT) {
            ReadText(section, pRecord, key);
            continue;
        }
        for (int i = 0; i < key.bCount; i++) {
            ProfileKey name(key.wcKey, key.bCount > 1 ? i : -1);
            i32 lDefault = GetKeyNumber(pRecord, key, i);
            SetKeyNumber(pRecord, key, i, ReadNumber(section, name, key.form, lDefault));
        }
    }
}

} // namespace

int ReadPrinterSettings(const ProfileFile& file, DriverDevmode* pRecord, int bReadOnly, u16 usLanguage)
{
    ProfileSection section = OpenSection(file, SETTINGS_SECTION);
    if (section.bShort || !IsGuardPassed(section, pRecord)) {
        return 0;
    }
    auto Read = [&](KeyRun run) { ReadRun(section, pRecord, usLanguage, run); };
    PrivateDevmode* pPrivate = &pRecord->rPrivate;
    u8 bKind = KindOf(usLanguage);

    Read(RUN_PAGE);
    pPrivate->ulWMType = ReadProfileHex(section, TEXT("WMType"), 0);
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
        ReadStyles(section, pRecord, usLanguage);
    }
    Read(RUN_TAIL);
    return 1;
}

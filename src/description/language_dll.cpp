/* Finds and loads the language library. */
#include "description/language_dll.h"

#include "base/file_name.h"
#include "base/format.h"
#include "platform/process.h"
#include "platform/profile.h"
#include "platform/resources.h"

namespace {

constexpr u16 PRIMARY_ENGLISH = 9, SUB_US = 1;

/* Codes by primary language id, each row's sublanguages one behind the other. */
const WCHAR* const aLanguageCodes[] = {
    TEXT("NEUT NEUT NEUT"),
    TEXT("SAUD IRAQ EGYP LIBY ALGE MORO TUNI OMAN YEME SYRI JORD LEBA KUWA UAE BAHR QATA"),
    TEXT("BULG"),
    TEXT("CATA"),
    TEXT("CTRA CSIM CHON CSIN"),
    TEXT("CZEC"),
    TEXT("DANI"),
    TEXT("GERM GSWI GAUS GLUX GLIE"),
    TEXT("GREE"),
    TEXT("ENUS ENUK ENAU ENCA ENNZ ENEI ENSA ENJA ENCR ENBE ENTR"),
    TEXT(
        "SCAS SMEX SMOD SGUA SCOS SPAN SDOM SVEN SCOL SPER SARG SECU SCHI SURU SPAR SBOL SELS SHON SNIC SPUE"),
    TEXT("FINN"),
    TEXT("FREN FBEL FCAN FSWI FLUX"),
    TEXT("HEBR"),
    TEXT("HUNG"),
    TEXT("ICEL"),
    TEXT("ITAL ISWI"),
    TEXT("JAPA"),
    TEXT("KORE KJOH"),
    TEXT("DUTC DBEL"),
    TEXT("BOKM NYNO"),
    TEXT("POLI"),
    TEXT("BRAZ PORT"),
    TEXT("ROMA"),
    TEXT("RUSS"),
    TEXT("CROA"),
    TEXT("SERB SLAT SCYR"),
    TEXT("SLOK"),
    TEXT("ALBA"),
    TEXT("SWED SFIN"),
    TEXT("THAI"),
    TEXT("TURK"),
    TEXT("INDO"),
    TEXT("UKRA"),
    TEXT("BELA"),
    TEXT("SLON"),
    TEXT("ESTO"),
    TEXT("LATV"),
    TEXT("LITH"),
    TEXT("FARS"),
    TEXT("VIET"),
    TEXT("BASQ"),
    TEXT("AFRI"),
    TEXT("FAER"),
};
constexpr u16 LANGUAGE_COUNT = sizeof aLanguageCodes / sizeof aLanguageCodes[0];

/* Only a full path is loaded: for any other the system would search its folders. */
OwnedModule LoadAsData(const WCHAR* tcPath)
{
    int bShare = tcPath[0] == '\\' && tcPath[1] == '\\' && !IsDevicePath(tcPath);
    if (!IsDrivePath(tcPath) && !bShare) {
        return nullptr;
    }
    return OwnedModule(
        LoadLibraryExW(tcPath, nullptr, LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE));
}

} // namespace

u16 GetUserLanguage()
{
    return GetUserDefaultLangID() & 0x3FF;
}

LanguageCode GetLanguageCode(u16 usPrimary, u16 usSub)
{
    LanguageCode code = {};
    int nSkip = usPrimary == 0 ? usSub : usSub - 1;
    if (usPrimary >= LANGUAGE_COUNT || nSkip < 0) {
        return code;
    }
    const WCHAR* wcAt = aLanguageCodes[usPrimary];
    for (; nSkip > 0; nSkip--) {
        wcAt = FindWide(wcAt, TEXT(" "));
        if (!wcAt) {
            return code;
        }
        wcAt++;
    }
    for (int i = 0; i < 4 && wcAt[i] && wcAt[i] != ' '; i++) {
        code.wcText[i] = wcAt[i];
    }
    return code;
}

OwnedModule OpenLanguageDll(PrinterCall& call, LanguageChoice* pChoice)
{
    WCHAR tcPath[PATH_CHARS];
    LANGID usUser = GetUserDefaultLangID();
    u16 usPrimary = usUser & 0x3FF;
    u16 usSub = static_cast<u16>(usUser >> 10);
    OwnedModule hModule;
    if (FindDriverFile(call, TEXT(""), TEXT("txt.dll"), tcPath)) {
        hModule = LoadAsData(tcPath);
    }
    if (!hModule) {
        usPrimary = PRIMARY_ENGLISH;
        usSub = SUB_US;
        WCHAR wcFile[16];
        LanguageCode code = GetLanguageCode(usPrimary, usSub);
        FormatWide(wcFile, 16, TEXT("%s.DLL"), code.wcText);
        if (FindDriverFile(call, code.wcText, wcFile, tcPath)) {
            hModule = LoadAsData(tcPath);
        }
    }
    if (pChoice) {
        WCHAR wcDecimal[9]; /* 8 characters and NUL are asked for, of which 3 are kept */
        FindDriverFile(call, TEXT(""), TEXT(".CHM"), pChoice->tcHelpFile);
        pChoice->usPrimary = usPrimary;
        pChoice->usSub = usSub;
        DWORD nGot = GetProfileStringW(TEXT("intl"), TEXT("sDecimal"), TEXT("."), wcDecimal, 8);
        wcDecimal[nGot < 8 ? nGot : 7] = 0;
        CopyWide(pChoice->wcDecimal, 4, wcDecimal[0] ? wcDecimal : TEXT("."));
    }
    return hModule;
}

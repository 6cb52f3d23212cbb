/* Stand-ins for the profile calls: text files of "[section]" and "key=value" lines, read as the system does it. A parsed file is kept until the file on disk is another. */
#include <algorithm>
#include <cerrno>
#include <ctime>
#include <unordered_map>

#include <sys/stat.h>

#include "platform/hosted/standin.h"

namespace {

constexpr size_t KEPT_LIMIT = 8;
constexpr DWORD INT_CHARS = 30; /* room for a number's text, NUL included; the rest is not looked at */

/* A change within one tick of the file system's clock leaves no trace in the times, so a file is trusted by
   its times only when they were this old already. */
constexpr i64 SETTLED_NANOSECONDS = 20'000'000;

enum Encoding { ANSI, UTF16_LE, UTF16_BE, UTF8 };

struct Line {
    WideText wcKey; /* of a comment or a line without "=": the whole line */
    WideText wcValue;
    bool bValue;
};

struct Section {
    WideText wcName;
    std::vector<Line> lines;
    /* Names are found by their capitals; the first of equal ones counts. */
    std::unordered_map<WideText, size_t> keys;
};

/* Section 0 has no name: the lines in front of the first section. */
struct Profile {
    Encoding encoding = ANSI;
    std::vector<Section> sections;
    std::unordered_map<WideText, size_t> names;
};

struct KeptProfile {
    struct stat stamp;
    bool bSettled;
    WideText wcCodePage; /* what told the code page */
    Bytes bytes;
    Profile profile;
};

struct Profiles {
    std::unordered_map<std::string, KeptProfile> kept; /* by host path */
    WideText tcLastPath;
    std::string lastHost;
};

Profiles& profiles()
{
    static Profiles instance;
    return instance;
}

bool IsBlank(char16_t character)
{
    return character == u' ' || (character >= 9 && character <= 13) || character == 0x1A;
}

std::u16string_view TrimStart(std::u16string_view wcText)
{
    size_t nStart = 0;
    while (nStart < wcText.size() && IsBlank(wcText[nStart])) {
        nStart++;
    }
    return wcText.substr(nStart);
}

std::u16string_view Trim(std::u16string_view wcText)
{
    wcText = TrimStart(wcText);
    while (!wcText.empty() && IsBlank(wcText.back())) {
        wcText.remove_suffix(1);
    }
    return wcText;
}

std::u16string_view CutAtNul(std::u16string_view wcText)
{
    return wcText.substr(0, wcText.find(u'\0'));
}

WideText Fold(std::u16string_view wcName)
{
    WideText wcFolded(Trim(wcName));
    std::transform(wcFolded.begin(), wcFolded.end(), wcFolded.begin(), UpperChar);
    return wcFolded;
}

/* The encoding by the mark at the start. */
Encoding EncodingOf(std::string_view bytes)
{
    return bytes.substr(0, 3) == "\xEF\xBB\xBF" ? UTF8
           : bytes.substr(0, 2) == "\xFF\xFE"   ? UTF16_LE
           : bytes.substr(0, 2) == "\xFE\xFF"   ? UTF16_BE
                                                : ANSI;
}

WideText Decode(const Bytes& bytes, Encoding* pEncoding)
{
    std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    *pEncoding = EncodingOf(text);
    if (*pEncoding == ANSI || *pEncoding == UTF8) {
        return *pEncoding == ANSI ? FromCodePage(text.data(), text.size()) : Widen(text.substr(3));
    }
    size_t nLow = *pEncoding == UTF16_LE ? 0 : 1;
    WideText wcText(bytes.size() / 2 - 1, u'\0');
    for (size_t i = 0; i < wcText.size(); i++) {
        wcText[i] = static_cast<char16_t>(bytes[2 * i + 2 + nLow] | bytes[2 * i + 3 - nLow] << 8);
    }
    return wcText;
}

void StartSection(Profile* pProfile, std::u16string_view wcName)
{
    if (!pProfile->sections.empty() || !wcName.empty()) {
        pProfile->names.try_emplace(Fold(wcName), pProfile->sections.size());
    }
    pProfile->sections.push_back({WideText(wcName), {}, {}});
}

void AddLine(Section* pSection, std::u16string_view wcLine)
{
    size_t nEquals = wcLine.front() == u';' ? std::u16string_view::npos : wcLine.find(u'=');
    if (nEquals == std::u16string_view::npos) {
        pSection->lines.push_back({WideText(wcLine), {}, false});
    } else {
        std::u16string_view wcKey = Trim(wcLine.substr(0, nEquals));
        std::u16string_view wcValue = Trim(wcLine.substr(nEquals + 1));
        pSection->lines.push_back({WideText(wcKey), WideText(wcValue), true});
    }
    if (wcLine.front() != u';') {
        pSection->keys.try_emplace(Fold(pSection->lines.back().wcKey), pSection->lines.size() - 1);
    }
}

void Parse(const Bytes& bytes, Profile* pProfile)
{
    WideText wcText = Decode(bytes, &pProfile->encoding);
    std::u16string_view wcRest = wcText;
    pProfile->names.try_emplace(WideText(), 0);
    StartSection(pProfile, {});
    while (!wcRest.empty()) {
        size_t nEnd = std::min(wcRest.find_first_of(u"\r\n"), wcRest.size());
        std::u16string_view wcLine = Trim(CutAtNul(wcRest.substr(0, nEnd)));
        wcRest.remove_prefix(std::min(nEnd + 1, wcRest.size()));
        if (wcLine.empty()) {
            continue;
        }
        size_t nClose = wcLine.front() == u'[' ? wcLine.rfind(u']') : std::u16string_view::npos;
        if (nClose != std::u16string_view::npos) {
            StartSection(pProfile, Trim(wcLine.substr(1, nClose - 1)));
        } else {
            AddLine(&pProfile->sections.back(), wcLine);
        }
    }
}

Section* FindSection(Profile* pProfile, LPCWSTR wcName)
{
    auto found = pProfile->names.find(Fold(wcName));
    return found == pProfile->names.end() ? nullptr : &pProfile->sections[found->second];
}

Line* FindLine(Section* pSection, LPCWSTR wcKey)
{
    auto found = pSection->keys.find(Fold(wcKey));
    return found == pSection->keys.end() ? nullptr : &pSection->lines[found->second];
}

/* Where the file of a profile call lies: a bare name is one of the Windows folder. Empty for what is none. */
const std::string& ProfileOnHost(LPCWSTR tcFile)
{
    std::u16string_view tcPath = tcFile ? tcFile : u"win.ini";
    if (tcPath != profiles().tcLastPath || profiles().lastHost.empty()) {
        WideText tcFull(tcPath.find_first_of(u"\\/:") == tcPath.npos ? u"C:\\Windows\\" : u"");
        tcFull.append(tcPath);
        bool bFolder = tcFull.back() == u'\\' || tcFull.back() == u'/';
        profiles().lastHost = bFolder ? std::string() : HostPath(tcFull).native();
        profiles().tcLastPath = tcPath;
    }
    return profiles().lastHost;
}

bool IsSameStamp(const struct stat& one, const struct stat& other)
{
    return one.st_dev == other.st_dev && one.st_ino == other.st_ino && one.st_size == other.st_size &&
           one.st_mtim.tv_sec == other.st_mtim.tv_sec && one.st_mtim.tv_nsec == other.st_mtim.tv_nsec &&
           one.st_ctim.tv_sec == other.st_ctim.tv_sec && one.st_ctim.tv_nsec == other.st_ctim.tv_nsec;
}

bool IsSettled(const struct stat& stamp)
{
    timespec now;
    clock_gettime(CLOCK_REALTIME, &now);
    i64 lSeconds = now.tv_sec - stamp.st_ctim.tv_sec;
    i64 lNanoseconds = now.tv_nsec - stamp.st_ctim.tv_nsec;
    return lSeconds > 1 || lSeconds * 1'000'000'000 + lNanoseconds > SETTLED_NANOSECONDS;
}

/* The file as it stands on disk now. Result: 0 and the parsed file, valid until the next call of this; or an
   error and null. */
DWORD LoadProfile(const std::string& host, DWORD dwAccess, Profile** ppProfile)
{
    struct stat there;
    *ppProfile = nullptr;
    if (host.empty()) {
        return ERROR_PATH_NOT_FOUND;
    }
    if (stat(host.c_str(), &there) != 0) {
        return HostPathError(host, errno);
    }
    if (!S_ISREG(there.st_mode) || (dwAccess & GENERIC_WRITE && !(there.st_mode & S_IWUSR))) {
        return ERROR_ACCESS_DENIED;
    }
    if (HostSharingError(there.st_dev, there.st_ino, dwAccess, FILE_SHARE_READ | FILE_SHARE_WRITE)) {
        return ERROR_SHARING_VIOLATION;
    }
    auto& kept = profiles().kept;
    auto found = kept.find(host);
    WideText wcCodePage = FromCodePage("\x82\xA0\xC3", 3);
    bool bSameText = found != kept.end() && found->second.wcCodePage == wcCodePage;
    if (!bSameText || !found->second.bSettled || !IsSameStamp(found->second.stamp, there)) {
        Bytes bytes;
        bool bSettled = IsSettled(there);
        if (!ReadHostBytes(host, &bytes)) {
            return ERROR_ACCESS_DENIED;
        }
        if (!bSameText || found->second.bytes != bytes) {
            if (found == kept.end() && kept.size() >= KEPT_LIMIT) {
                kept.clear();
            }
            found = kept.insert_or_assign(host, KeptProfile()).first;
            found->second.wcCodePage = wcCodePage;
            Parse(bytes, &found->second.profile);
            found->second.bytes = std::move(bytes);
        }
        found->second.stamp = there;
        found->second.bSettled = bSettled;
    }
    *ppProfile = &found->second.profile;
    return 0;
}

/* Copies a text cut to the buffer. Result: characters without the NUL. */
DWORD CopyText(std::u16string_view wcText, LPWSTR wcOut, DWORD cchOut)
{
    size_t cch = std::min<size_t>(wcText.size(), cchOut - 1);
    std::copy_n(wcText.data(), cch, wcOut);
    wcOut[cch] = u'\0';
    return static_cast<DWORD>(cch);
}

/* The same without the pair of quotation marks round the text. */
DWORD CopyValue(std::u16string_view wcText, LPWSTR wcOut, DWORD cchOut)
{
    if (wcText.size() >= 2 && wcText.front() == wcText.back() && (wcText[0] == u'"' || wcText[0] == u'\'')) {
        wcText = wcText.substr(1, wcText.size() - 2);
    }
    return CopyText(wcText, wcOut, cchOut);
}

/* Copies texts that each end in a NUL, and one more NUL. What does not fit whole, that one included, is cut
   so that two NULs end the buffer, and the result is then cchOut - 2. */
DWORD CopyList(const WideText& wcList, LPWSTR wcOut, DWORD cchOut)
{
    size_t cch = wcList.size() + 1 < cchOut ? wcList.size() : std::max<DWORD>(cchOut, 2) - 2;
    std::copy_n(wcList.data(), cch, wcOut);
    std::fill_n(wcOut + cch, std::min<size_t>(2, cchOut - cch), u'\0');
    return static_cast<DWORD>(cch);
}

std::u16string_view DefaultText(LPCWSTR wcDefault)
{
    std::u16string_view wcText = wcDefault ? wcDefault : u"";
    while (wcText.size() > 1 && wcText.back() == u' ') {
        wcText.remove_suffix(1);
    }
    return wcText;
}

DWORD ReadText(Profile* pProfile, LPCWSTR wcSection, LPCWSTR wcKey, LPCWSTR wcDefault, LPWSTR wcOut,
               DWORD cchOut)
{
    WideText wcList;
    if (!wcSection) {
        for (size_t i = 1; pProfile && i < pProfile->sections.size(); i++) {
            if (!pProfile->sections[i].wcName.empty()) {
                wcList.append(pProfile->sections[i].wcName).push_back(u'\0');
            }
        }
        return CopyList(wcList, wcOut, cchOut);
    }
    Section* pSection = pProfile ? FindSection(pProfile, wcSection) : nullptr;
    if (wcKey) {
        Line* pLine = pSection ? FindLine(pSection, wcKey) : nullptr;
        return CopyValue(pLine && pLine->bValue ? pLine->wcValue : DefaultText(wcDefault), wcOut, cchOut);
    }
    for (size_t i = 0; pSection && i < pSection->lines.size(); i++) {
        if (pSection->lines[i].bValue) {
            wcList.append(pSection->lines[i].wcKey).push_back(u'\0');
        }
    }
    if (wcList.empty()) {
        return CopyValue(wcDefault ? wcDefault : u"", wcOut, cchOut);
    }
    return CopyList(wcList, wcOut, cchOut);
}

/* Blanks, one sign, digits; "0x", "0o" and "0b" change the base; what follows the last digit is not looked
   at, and what is beyond 32 bits is lost. */
UINT ParseInt(const WCHAR* wcText)
{
    while (*wcText && *wcText <= u' ') {
        wcText++;
    }
    bool bNegative = *wcText == u'-';
    wcText += *wcText == u'-' || *wcText == u'+';
    u32 ulBase = 10;
    if (wcText[0] == u'0' && (wcText[1] == u'x' || wcText[1] == u'o' || wcText[1] == u'b')) {
        ulBase = wcText[1] == u'x' ? 16 : wcText[1] == u'o' ? 8 : 2;
        wcText += 2;
    }
    u32 ulValue = 0;
    for (;; wcText++) {
        u32 ulDigit = *wcText >= u'0' && *wcText <= u'9'   ? static_cast<u32>(*wcText - u'0')
                      : *wcText >= u'A' && *wcText <= u'F' ? static_cast<u32>(*wcText - u'A' + 10)
                      : *wcText >= u'a' && *wcText <= u'f' ? static_cast<u32>(*wcText - u'a' + 10)
                                                           : ulBase;
        if (ulDigit >= ulBase) {
            return bNegative ? 0 - ulValue : ulValue;
        }
        ulValue = ulValue * ulBase + ulDigit;
    }
}

DWORD LieAboutText(CallId call, LPWSTR wcOut, DWORD cchOut, DWORD cchText)
{
    if (Lies(call, LIE_UNTERMINATED)) {
        std::fill(wcOut + cchText, wcOut + cchOut, u'x');
        return cchOut;
    }
    return Lies(call, LIE_HUGE) ? 0xFFFFFFF0 : cchText;
}

/* The profile of the system itself: the locale's values in "intl", nothing in other sections. */
DWORD ReadLocale(LPCWSTR wcSection, LPCWSTR wcKey, LPCWSTR wcDefault, LPWSTR wcOut, DWORD cchOut)
{
    WideText wcValue;
    bool bIntl = wcSection && wcKey && Fold(wcSection) == u"INTL";
    bool bFound = bIntl && GetLocaleValue(Trim(wcKey), &wcValue);
    return CopyValue(bFound ? wcValue : DefaultText(wcDefault), wcOut, cchOut);
}

} // namespace

void ResetProfile()
{
    profiles() = Profiles();
}

DWORD WINAPI GetPrivateProfileStringW(LPCWSTR wcSection, LPCWSTR wcKey, LPCWSTR wcDefault, LPWSTR wcOut,
                                      DWORD cchOut, LPCWSTR tcFile)
{
    FAILS(GetPrivateProfileStringW);
    if (!wcOut || !cchOut) {
        return 0;
    }
    Profile* pProfile;
    DWORD dwError = LoadProfile(ProfileOnHost(tcFile), GENERIC_READ, &pProfile);
    SetHostedError(dwError);
    /* A missing file counts as an empty one; from what cannot be opened the default comes as it is. */
    bool bNoFile = dwError && dwError != ERROR_FILE_NOT_FOUND;
    DWORD cchText = bNoFile && wcSection && wcKey
                        ? CopyText(DefaultText(wcDefault), wcOut, cchOut)
                        : ReadText(pProfile, wcSection, wcKey, wcDefault, wcOut, cchOut);
    return LieAboutText(CALL_GetPrivateProfileStringW, wcOut, cchOut, cchText);
}

UINT WINAPI GetPrivateProfileIntW(LPCWSTR wcSection, LPCWSTR wcKey, INT nDefault, LPCWSTR tcFile)
{
    FAILS(GetPrivateProfileIntW);
    WCHAR wcNumber[INT_CHARS];
    Profile* pProfile;
    SetHostedError(LoadProfile(ProfileOnHost(tcFile), GENERIC_READ, &pProfile));
    return ReadText(pProfile, wcSection, wcKey, u"", wcNumber, INT_CHARS) ? ParseInt(wcNumber)
                                                                          : static_cast<UINT>(nDefault);
}

DWORD WINAPI GetProfileStringW(LPCWSTR wcSection, LPCWSTR wcKey, LPCWSTR wcDefault, LPWSTR wcOut,
                               DWORD cchOut)
{
    FAILS(GetProfileStringW);
    if (!wcOut || !cchOut) {
        return 0;
    }
    DWORD cchText = ReadLocale(wcSection, wcKey, wcDefault, wcOut, cchOut);
    return LieAboutText(CALL_GetProfileStringW, wcOut, cchOut, cchText);
}

UINT WINAPI GetProfileIntW(LPCWSTR wcSection, LPCWSTR wcKey, INT nDefault)
{
    FAILS(GetProfileIntW);
    WCHAR wcNumber[INT_CHARS];
    return ReadLocale(wcSection, wcKey, u"", wcNumber, INT_CHARS) ? ParseInt(wcNumber)
                                                                  : static_cast<UINT>(nDefault);
}

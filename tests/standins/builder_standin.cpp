/* Reads the command file, renders, answers and signals. */
#include "standins/builder_standin.h"

#include <cstdlib>
#include <utility>
#include <vector>

#include "platform/files.h"
#include "platform/process.h"
#ifndef _WIN32
#include "hosted/machine.h"
#endif

namespace {

using WideString = std::basic_string<WCHAR>;

WideString Widened(const std::string& text)
{
    return WideString(text.begin(), text.end());
}

/* In the place of what the file held: like the system's own calls for such files this truncates nothing first. */
void StoreText(const WideString& tcPath, WideString wcText, size_t nBefore = 0)
{
    wcText.insert(wcText.begin(), WCHAR{0xFEFF});
    while (wcText.size() < nBefore) {
        wcText += Widened("\r\n");
    }
    HANDLE hFile =
        CreateFileW(tcPath.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_ALWAYS, 0, nullptr);
    if (hFile != INVALID_HANDLE_VALUE) {
        DWORD cbWritten;
        WriteFile(hFile, wcText.data(), static_cast<DWORD>(wcText.size() * sizeof(WCHAR)), &cbWritten,
                  nullptr);
        CloseHandle(hFile);
    }
}

WideString LoadText(const WideString& tcPath)
{
    WideString wcText(0x4000, 0);
    DWORD cbRead = 0;
    HANDLE hFile = CreateFileW(tcPath.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                               OPEN_EXISTING, 0, nullptr);
    if (hFile != INVALID_HANDLE_VALUE) {
        ReadFile(hFile, wcText.data(), static_cast<DWORD>(wcText.size() * sizeof(WCHAR)), &cbRead, nullptr);
        CloseHandle(hFile);
    }
    wcText.resize(cbRead / sizeof(WCHAR));
    return wcText.substr(!wcText.empty() && wcText[0] == 0xFEFF);
}

/* Keys and values of the one section, in their order. */
struct Command {
    std::vector<std::pair<WideString, WideString>> keys;

    explicit Command(const WideString& wcText)
    {
        for (size_t nAt = 0, nEnd; (nEnd = wcText.find('\r', nAt)) != WideString::npos; nAt = nEnd + 2) {
            const WideString wcLine = wcText.substr(nAt, nEnd - nAt);
            if (const size_t nEquals = wcLine.find('='); nEquals != WideString::npos) {
                keys.emplace_back(wcLine.substr(0, nEquals), wcLine.substr(nEquals + 1));
            }
        }
    }
    WideString Get(const std::string& key) const
    {
        for (const auto& [wcKey, wcValue] : keys) {
            if (wcKey == Widened(key)) {
                return wcValue;
            }
        }
        return {};
    }
    int Number(const std::string& key) const
    {
        const WideString wcText = Get(key);
        return std::atoi(std::string(wcText.begin(), wcText.end()).c_str());
    }
    void Set(const std::string& key, const WideString& wcValue)
    {
        for (auto& [wcKey, wcOld] : keys) {
            if (wcKey == Widened(key)) {
                wcOld = wcValue;
                return;
            }
        }
        keys.emplace_back(Widened(key), wcValue);
    }
    WideString Text() const
    {
        WideString wcText = Widened("[MAKEWM]\r\n");
        for (const auto& [wcKey, wcValue] : keys) {
            wcText += wcKey + Widened("=") + wcValue + Widened("\r\n");
        }
        return wcText;
    }
};

} // namespace

WideString CommandFileOf(const WideString& wcCommandLine)
{
    const size_t nQuote = wcCommandLine[0] == '"' ? wcCommandLine.find('"', 1) : 0;
    const size_t nBlank = wcCommandLine.find(' ', nQuote);
    return nBlank == WideString::npos ? WideString() : wcCommandLine.substr(nBlank + 1);
}

void RunBuilderStandin(const WideString& tcCommandFile, const BuilderManners& manners)
{
    const WideString wcBefore = LoadText(tcCommandFile);
    Command command(wcBefore);
    if (manners.mode == BuilderManners::SILENT) {
        return;
    }
    const bool bImage = command.Number("Type") == 2;
    const int nHeight = bImage ? command.Number("image.Scale.y") * 3
                               : command.Number("text.PtSize") * command.Number("Resolution") / 72;
    const int nWidth = bImage ? command.Number("image.Scale.x") * 4
                              : static_cast<int>(command.Get("text.String").size()) * nHeight / 2;
    WideString wcPicture = Widened(std::to_string(nWidth) + " x " + std::to_string(nHeight));
    for (const auto& [wcKey, wcValue] : command.keys) {
        if (wcKey != Widened("OutputFile") && wcKey != Widened("Size.x") && wcKey != Widened("Size.y") &&
            wcKey != Widened("Result")) {
            wcPicture += Widened("\r\n") + wcKey + Widened("=") + wcValue;
        }
    }
    const bool bCrashes = manners.mode == BuilderManners::CRASHING;
    if (const WideString tcOutput = command.Get("OutputFile"); !tcOutput.empty()) {
        StoreText(tcOutput, wcPicture.substr(0, bCrashes ? wcPicture.size() / 2 : wcPicture.size()));
    }
    if (bCrashes) {
        return;
    }
    const bool bNonsense = manners.mode == BuilderManners::NONSENSE;
    command.Set("Size.x", bNonsense ? manners.wcNonsense : Widened(std::to_string(nWidth)));
    command.Set("Size.y", bNonsense ? manners.wcNonsense : Widened(std::to_string(nHeight)));
    command.Set("Result", bNonsense ? manners.wcNonsense : Widened(std::to_string(manners.nResult)));
    if (!bImage && manners.nFontChange) {
        command.Set("text.FontChange", Widened(std::to_string(manners.nFontChange)));
    }
    StoreText(tcCommandFile, command.Text(), wcBefore.size() + 1);
    const WideString wcEvent = tcCommandFile.substr(tcCommandFile.rfind('\\') + 1);
    HANDLE hEvent =
        manners.mode == BuilderManners::QUIET ? nullptr : OpenEventW(EVENT_MODIFY_STATE, 0, wcEvent.c_str());
    if (hEvent) {
        SetEvent(hEvent);
        CloseHandle(hEvent);
    }
}

/* What the library relies on of files, folders, semaphores, the user's registry and libraries of resources, call by
   call: tests/data/conformance_system.txt. A path lies in the test's folder unless "=" begins it. */
#include <algorithm>

#include "platform/files.h"
#include "platform/process.h"
#include "platform/registry.h"
#include "platform/resources.h"
#include "support/script.h"

#ifndef _WIN32
#include "hosted/machine.h"
#endif

namespace {

std::string Error(DWORD dwError)
{
#define ERROR_NAME(name) std::pair(ERROR_##name, #name)
    static const std::map<DWORD, const char*> names = {
        ERROR_NAME(FILE_NOT_FOUND),      ERROR_NAME(PATH_NOT_FOUND),    ERROR_NAME(ACCESS_DENIED),
        ERROR_NAME(INVALID_HANDLE),      ERROR_NAME(SHARING_VIOLATION), ERROR_NAME(FILE_EXISTS),
        ERROR_NAME(INVALID_NAME),        ERROR_NAME(NEGATIVE_SEEK),     ERROR_NAME(ALREADY_EXISTS),
        ERROR_NAME(BAD_EXE_FORMAT),      ERROR_NAME(NO_MORE_FILES),     ERROR_NAME(INVALID_PARAMETER),
        ERROR_NAME(FILENAME_EXCED_RANGE)};
    return names.count(dwError) ? names.at(dwError) : "error " + std::to_string(dwError);
}

std::string Done(BOOL bDone)
{
    return bDone ? "done" : Error(GetLastError());
}

DWORD Number(const std::string& text)
{
    return static_cast<DWORD>(ToNumber(text));
}

DWORD Letters(const std::string& word, DWORD dwRead, DWORD dwWrite, DWORD dwDelete)
{
    return (word.find('r') != word.npos ? dwRead : 0) | (word.find('w') != word.npos ? dwWrite : 0) |
           (word.find('d') != word.npos ? dwDelete : 0);
}

std::string AttributeLetters(DWORD dwAttributes)
{
    return std::string(dwAttributes & FILE_ATTRIBUTE_DIRECTORY ? "D" : "") +
           (dwAttributes & FILE_ATTRIBUTE_READONLY ? "R" : "") +
           (dwAttributes & FILE_ATTRIBUTE_REPARSE_POINT ? "L" : "");
}

class System : public BothBuilds, public testing::WithParamInterface<Script> {
  protected:
    void SetUp() override
    {
        BothBuilds::SetUp();
        tcFolder_ = TestFolder();
        GetCurrentDirectoryW(300, tcFirst_);
        PutTestFile(Path("a.txt"), "0123456789");
        handles_ = {{"null", nullptr},
                    {"invalid", INVALID_HANDLE_VALUE},
                    {"odd", reinterpret_cast<HANDLE>(0x1234567)}};
    }

    WideString Path(const std::string& word) const
    {
        return word[0] == '=' ? WideWord(word.substr(1)) : tcFolder_ + TEXT("\\") + WideWord(word);
    }

    /* Keeps the handle under its name; "-" closes it at once. */
    std::string Keep(const std::string& name, HANDLE hNew, HANDLE hNone)
    {
        const DWORD dwError = GetLastError();
        if (hNew == hNone) {
            return Error(dwError);
        }
        handles_[name] = hNew;
        return name != "-" || CloseHandle(hNew) ? "done" : "cannot be closed";
    }

    /* NAME PATH ACCESS SHARE [new] [folder] [link] */
    std::string Open(const Args& words)
    {
        DWORD dwHow = OPEN_EXISTING, dwFlags = FILE_ATTRIBUTE_NORMAL;
        for (size_t i = 4; i < words.size(); i++) {
            dwHow = words[i] == "new" ? CREATE_NEW : dwHow;
            dwFlags |= words[i] == "folder" ? FILE_FLAG_BACKUP_SEMANTICS : 0;
            dwFlags |= words[i] == "link" ? FILE_FLAG_OPEN_REPARSE_POINT : 0;
        }
        return Keep(words[0],
                    CreateFileW(Path(words[1]).c_str(),
                                Letters(words[2], GENERIC_READ, GENERIC_WRITE, DELETE),
                                Letters(words[3], FILE_SHARE_READ, FILE_SHARE_WRITE, FILE_SHARE_DELETE),
                                nullptr, dwHow, dwFlags, nullptr),
                    INVALID_HANDLE_VALUE);
    }

    std::string Read(const Args& words)
    {
        std::string bytes(64, '~');
        DWORD cbRead = 0xDEAD;
        if (!ReadFile(handles_[words[0]], bytes.data(), Number(words[1]), &cbRead, nullptr)) {
            return Error(GetLastError());
        }
        EXPECT_EQ(bytes.find_first_not_of('~', cbRead), bytes.npos) << "written behind the bytes read";
        return bytes.substr(0, cbRead);
    }

    std::string Seek(const Args& words)
    {
        LARGE_INTEGER move, position;
        move.QuadPart = ToNumber(words[1]);
        position.QuadPart = -99;
        const DWORD dwFrom = words[2] == "begin" ? FILE_BEGIN : words[2] == "end" ? FILE_END : FILE_CURRENT;
        const BOOL bDone = SetFilePointerEx(handles_[words[0]], move, &position, dwFrom);
        EXPECT_TRUE(bDone || position.QuadPart == -99);
        return bDone ? std::to_string(position.QuadPart) : Error(GetLastError());
    }

    std::string Size(const Args& words)
    {
        LARGE_INTEGER size;
        size.QuadPart = -99;
        const BOOL bDone = GetFileSizeEx(handles_[words[0]], &size);
        EXPECT_TRUE(bDone || size.QuadPart == -99);
        return bDone ? std::to_string(size.QuadPart) : Error(GetLastError());
    }

    std::string Write(const Args& words)
    {
        DWORD cbDone = 77;
        const BOOL bDone = WriteFile(handles_[words[0]], words[1].data(), static_cast<DWORD>(words[1].size()),
                                     &cbDone, nullptr);
        return bDone ? std::to_string(cbDone) : Error(GetLastError());
    }

    /* The final path behind the test's folder, in small letters. */
    std::string Final(const Args& words)
    {
        WCHAR tcFinal[260];
        const DWORD cch = GetFinalPathNameByHandleW(handles_[words[0]], tcFinal, 260, 0);
        if (!cch) {
            return "none";
        }
        EXPECT_EQ(GetFinalPathNameByHandleW(handles_[words[0]], tcFinal, cch, 0), cch + 1)
            << "room for the NUL is missing";
        EXPECT_EQ(GetFinalPathNameByHandleW(handles_[words[0]], tcFinal, 260, 0), cch);
        std::string path = Ascii({tcFinal, cch}), front = "\\\\?\\" + Ascii(tcFolder_);
        EXPECT_EQ(path.substr(0, front.size()), front);
        path.erase(0, std::min(front.size(), path.size()));
        std::transform(path.begin(), path.end(), path.begin(),
                       [](unsigned char c) { return std::tolower(c); });
        return path;
    }

    std::string MarkDeleted(const Args& words)
    {
        FILE_DISPOSITION_INFO info = {1};
        return Done(SetFileInformationByHandle(handles_[words[0]], FileDispositionInfo, &info, sizeof info));
    }

    std::string Attributes(const Args& words)
    {
        const DWORD dwAttributes = GetFileAttributesW(Path(words[0]).c_str());
        return dwAttributes == INVALID_FILE_ATTRIBUTES ? Error(GetLastError())
                                                       : AttributeLetters(dwAttributes);
    }

    std::string Find(const Args& words)
    {
        WIN32_FIND_DATAW entry;
        std::string found;
        const HANDLE hSearch = FindFirstFileW(Path(words[0]).c_str(), &entry);
        if (hSearch == INVALID_HANDLE_VALUE) {
            return Error(GetLastError());
        }
        std::map<std::string, std::string> names;
        do {
            names[Ascii(entry.cFileName)] = AttributeLetters(entry.dwFileAttributes);
        } while (FindNextFileW(hSearch, &entry));
        EXPECT_EQ(GetLastError(), DWORD{ERROR_NO_MORE_FILES});
        EXPECT_TRUE(FindClose(hSearch));
        for (const auto& [name, letters] : names) {
            found += (found.empty() ? "" : " ") + name + (letters.empty() ? "" : ":" + letters);
        }
        return found;
    }

    /* The sharing of an open file against that of a second opening: read, write and both, each with no share, r, w, rw.
       "x" for a violation. */
    std::string Sharing(const Args& words)
    {
        std::string found;
        for (const char* cAccess : {"r", "w", "rw"}) {
            for (const char* cShare : {"-", "r", "w", "rw"}) {
                EXPECT_EQ(Open({"first", "a.txt", words[0], words[1]}), "done");
                const std::string second = Open({"-", "a.txt", cAccess, cShare});
                found += second == "done" ? '.' : second == "SHARING_VIOLATION" ? 'x' : '?';
                EXPECT_EQ(Open({"-", "a.txt", "-", "-"}), "done") << "no access asked for";
                CloseHandle(handles_["first"]);
            }
        }
        return found;
    }

    std::string Load(const Args& words)
    {
        const WideString tcPath = words[1][0] == '*' ? BuiltFile(words[1].c_str() + 1) : Path(words[1]);
        const DWORD dwHow = words[2] == "data"    ? DWORD{LOAD_LIBRARY_AS_DATAFILE}
                            : words[2] == "image" ? DWORD{LOAD_LIBRARY_AS_IMAGE_RESOURCE}
                            : words[2] == "run"   ? DWORD{LOAD_LIBRARY_SEARCH_SYSTEM32}
                                                  : LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE;
        const HMODULE hModule = LoadLibraryExW(tcPath.c_str(), nullptr, dwHow);
        handles_[words[0]] = hModule;
        return Done(hModule != nullptr);
    }

    /* LoadStringW into a room within a larger buffer: "6 Layout"; without its end, when the room has none. */
    std::string String(const Args& words)
    {
        constexpr WCHAR FILLER = 0x2588; /* in no text of the libraries */
        WideString wcBuffer(200, FILLER);
        const size_t cchRoom = words.size() > 2 ? Number(words[2]) : 128;
        const int cch = LoadStringW(static_cast<HMODULE>(handles_[words[0]]), Number(words[1]),
                                    wcBuffer.data(), static_cast<int>(cchRoom));
        const size_t cchEnd = wcBuffer.find(WCHAR{0});
        EXPECT_EQ(wcBuffer.find_first_not_of(FILLER, cchEnd == wcBuffer.npos ? 0 : cchEnd + 1),
                  wcBuffer.npos);
        const std::string text = cchEnd < cchRoom ? Ascii(wcBuffer.substr(0, cchEnd)) : "untouched";
        return std::to_string(cch) + (text.empty() ? "" : " " + text);
    }

    std::string Text(const Args& words)
    {
        const std::vector<unsigned char> bytes = ReadTestFile(Path(words[0]));
        return {bytes.begin(), bytes.end()};
    }

    /* A library that was cut. */
    void PutPart(const Args& words)
    {
        std::vector<unsigned char> bytes = ReadTestFile(BuiltFile("TXT.DLL"));
        bytes.resize(words[1] == "half" ? bytes.size() / 2 : Number(words[1]));
        PutTestFile(Path(words[0]), bytes);
    }

#ifndef _WIN32
    /* Where a file lies below the machine's root. */
    static std::string OnHost(const Args& words)
    {
        const std::string root = HostPath(u"C:\\").parent_path().string();
        const std::string host = HostPath(WideWord(words[0])).string();
        EXPECT_TRUE(host.empty() || host.starts_with(root + "/"));
        EXPECT_EQ((host + "/").find("/../"), host.npos);
        return HasFile(WideWord(words[0])) ? host.substr(root.size()) : "none";
    }
#endif

    std::string QueryValue(const Args& words)
    {
        HKEY hKey;
        BYTE abRoom[16] = {};
        DWORD dwType = 99, cb = Number(words[1]);
        if (LSTATUS lError = RegOpenKeyExW(HKEY_CURRENT_USER, KEY, 0, KEY_QUERY_VALUE, &hKey)) {
            return "no key " + std::to_string(lError);
        }
        const LSTATUS lError =
            RegQueryValueExW(hKey, WideWord(words[0]).c_str(), nullptr, &dwType, abRoom, &cb);
        EXPECT_EQ(RegCloseKey(hKey), 0);
        return lError == 0 ? std::to_string(dwType) + " " + std::to_string(cb)
               : lError == static_cast<LSTATUS>(ERROR_MORE_DATA) ? "more " + std::to_string(cb)
                                                                 : Error(static_cast<DWORD>(lError));
    }

    /* Makes or opens the key; sets a value of so many bytes. */
    std::string SetValue(const Args& words)
    {
        HKEY hKey;
        const BYTE abValue[4] = {7};
        LSTATUS lError = RegCreateKeyW(HKEY_CURRENT_USER, KEY, &hKey);
        lError +=
            RegSetValueExW(hKey, WideWord(words[0]).c_str(), 0, Number(words[1]), abValue, Number(words[2]));
        return std::to_string(lError + RegCloseKey(hKey));
    }

    /* The current folder behind the test's, and that it is told into the room that it needs. */
    std::string CurrentFolder()
    {
        WCHAR tcNow[300] = {};
        const DWORD cch = GetCurrentDirectoryW(300, tcNow);
        EXPECT_EQ(GetCurrentDirectoryW(cch, tcNow), cch + 1) << "what is needed, with the NUL";
        GetCurrentDirectoryW(300, tcNow);
        EXPECT_EQ(cch, WideString(tcNow).size());
        return tcNow == tcFolder_ ? "the test's" : "another";
    }

    static constexpr DWORD REPLACE = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
    static constexpr const WCHAR* KEY = TEXT("SOFTWARE\\TquiConformance\\");

    WideString tcFolder_;
    WCHAR tcFirst_[300] = {};
    std::map<std::string, HANDLE> handles_;
};

TEST_P(System, AnswersAsWritten)
{
#ifdef _WIN32
    RegDeleteKeyW(HKEY_CURRENT_USER, KEY);
#endif
    const auto file = [&](const Args& w, size_t n = 0) { return Path(w[n]); };
    const auto handle = [&](const Args& w) { return handles_[w[0]]; };
    const auto module = [&](const Args& w) { return static_cast<HMODULE>(handles_[w[0]]); };
    const Verbs verbs = {
        VERB("open", Open(w)),
        VERB("close", Done(CloseHandle(handle(w)))),
        VERB("read", Read(w)),
        VERB("seek", Seek(w)),
        VERB("size", Size(w)),
        VERB("type", GetFileType(handle(w))),
        VERB("write", Write(w)),
        VERB("flush", Done(FlushFileBuffers(handle(w)))),
        VERB("final", Final(w)),
        VERB("mark-deleted", MarkDeleted(w)),
        VERB("attributes", Attributes(w)),
        VERB("set-attributes", Done(SetFileAttributesW(file(w).c_str(), Number(w[1])))),
        VERB("folder", Done(CreateDirectoryW(file(w).c_str(), nullptr))),
        VERB("delete", Done(DeleteFileW(file(w).c_str()))),
        VERB("move", Done(MoveFileExW(file(w).c_str(), file(w, 1).c_str(), w.size() > 2 ? 0 : REPLACE))),
        VERB("copy", Done(CopyFileW(file(w).c_str(), file(w, 1).c_str(), w.size() > 2))),
        VERB("find", Find(w)),
        VERB("sharing", Sharing(w)),
        DEED("put", PutTestFile(file(w), w[1])),
        DEED("put-part", PutPart(w)),
        VERB("text", Text(w)),
        VERB("semaphore",
             Keep(w[0], CreateSemaphoreW(nullptr, w.size() > 2 ? 2 : 1, 1, WideWord(w[1]).c_str()), nullptr)),
        VERB("open-semaphore",
             Keep(w[0], OpenSemaphoreW(SEMAPHORE_ALL_ACCESS, 0, WideWord(w[1]).c_str()), nullptr)),
        VERB("event", Keep(w[0], CreateEventW(nullptr, 0, 0, WideWord(w[1]).c_str()), nullptr)),
        VERB("open-event",
             Keep(w[0], OpenEventW(EVENT_MODIFY_STATE | SYNCHRONIZE, 0, WideWord(w[1]).c_str()), nullptr)),
        VERB("set-event", SetEvent(handle(w)) != 0),
        VERB("wait", WaitForSingleObject(handle(w), Number(w[1]))),
        VERB("change-folder", SetCurrentDirectoryW(w[0] == "first" ? tcFirst_ : file(w).c_str()) != 0),
        VERB("attributes-here", GetFileAttributesW(WideWord(w[0]).c_str()) != INVALID_FILE_ATTRIBUTES),
        VERB("current-folder", CurrentFolder()),
        VERB("last-error", Error(GetLastError())),
        VERB("query-value", QueryValue(w)),
        VERB("set-value", SetValue(w)),
        VERB("load", Load(w)),
        VERB("free", FreeLibrary(module(w)) != 0),
        VERB("string", String(w)),
        VERB("routine", GetProcAddress(module(w), w[1].c_str()) != nullptr),
#ifndef _WIN32
        DEED("user", SetUserLanguage(static_cast<LANGID>(Number(w[0])))),
        DEED("link", std::filesystem::create_symlink(HostPath(file(w)), HostPath(file(w, 1)))),
        DEED("rename", std::filesystem::rename(HostPath(file(w)), HostPath(file(w, 1)))),
        DEED("host-put", PutFile(WideWord(w[0]), w[1])),
        VERB("host", OnHost(w)),
#endif
    };
    Play(GetParam(), verbs);
}

INSTANTIATE_TEST_SUITE_P(, System, testing::ValuesIn(ReadScripts("conformance_system.txt")), ScriptName);

using SystemFolder = BothBuilds;

TEST_F(SystemFolder, IsToldIntoTheRoomThatItNeeds)
{
    WideString tcSystem(300, '~'), tcShort(300, '~');
    const UINT cch = GetSystemDirectoryW(tcSystem.data(), 300);
    ASSERT_TRUE(cch > 3 && cch < 260);
    EXPECT_EQ(tcSystem[cch], 0);
    EXPECT_EQ(GetSystemDirectoryW(tcShort.data(), cch), cch + 1) << "what is needed";
    EXPECT_EQ(tcShort[cch], '~');
}

} // namespace

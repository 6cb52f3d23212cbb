/* Test support for both builds: on Windows the real system, hosted the machine of the stand-ins. */
#include "support/both_builds.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "places.h"
#include "platform/process.h"

#ifndef _WIN32
#include "hosted/machine.h"
#endif

namespace {

int nFolder = 0;

std::filesystem::path BuiltFolder()
{
    const char* cFolder = std::getenv("TQUI_BUILT");
    return cFolder ? cFolder : TQUI_SAMPLES;
}

std::vector<unsigned char> ReadAll(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void WriteAll(const std::filesystem::path& path, const std::vector<unsigned char>& bytes)
{
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    ASSERT_TRUE(file.good()) << path;
}

/* Where a Windows path lies for the C++ library. */
std::filesystem::path OnDisk(const WideString& tcPath)
{
#ifdef _WIN32
    return std::filesystem::path(tcPath);
#else
    return HostPath(tcPath);
#endif
}

} // namespace

#ifdef _WIN32

void BothBuilds::SetUp() {}
void BothBuilds::TearDown() {}

WideString BuiltFile(const char* cName)
{
    std::filesystem::path path = BuiltFolder() / cName;
    EXPECT_TRUE(std::filesystem::exists(path)) << path << " was not built";
    return std::filesystem::absolute(path).wstring();
}

#else

void BothBuilds::SetUp()
{
    StartMachine();
}

void BothBuilds::TearDown()
{
    EXPECT_EQ(CountLive().nBlocks, 0);
    EXPECT_EQ(CountLive().nFiles, 0);
    EXPECT_EQ(CountLive().nPrinters, 0);
    EXPECT_EQ(CountLive().nKeys, 0);
    EXPECT_EQ(CountLive().nModules, 0);
    EXPECT_EQ(CountLive().nSearches, 0);
    EXPECT_EQ(CountLive().nContexts, 0);
    EXPECT_EQ(CountLive().nSemaphores, 0);
    EXPECT_EQ(CountLive().nWindows, 0);
    EXPECT_EQ(CountLive().nGdiObjects, 0);
    StopMachine();
}

WideString BuiltFile(const char* cName)
{
    std::filesystem::path path = BuiltFolder() / cName;
    EXPECT_TRUE(std::filesystem::exists(path)) << path << " was not built";
    WideString tcPath = u"C:\\Package\\" + Wide(cName);
    PutFile(tcPath, ReadAll(path));
    return tcPath;
}

#endif

WideString TestFolder()
{
    char cFolder[64];
    std::snprintf(cFolder, sizeof cFolder, "C:\\tqui-test\\%03d", ++nFolder);
    WideString tcFolder = Wide(cFolder);
    std::filesystem::remove_all(OnDisk(tcFolder));
    std::filesystem::create_directories(OnDisk(tcFolder));
    return tcFolder;
}

void PutTestFile(const WideString& tcPath, const std::vector<unsigned char>& bytes)
{
    WriteAll(OnDisk(tcPath), bytes);
}

void PutTestFile(const WideString& tcPath, const std::string& text)
{
    WriteAll(OnDisk(tcPath), {text.begin(), text.end()});
}

std::vector<unsigned char> ReadTestFile(const WideString& tcPath)
{
    return ReadAll(OnDisk(tcPath));
}

WideString Wide(const std::string& text)
{
    return {text.begin(), text.end()};
}

std::string Ascii(const WideString& wcText)
{
    std::string text;
    for (WCHAR character : wcText) {
        if (character >= 0x20 && character < 0x7F) {
            text.push_back(static_cast<char>(character));
        } else {
            char cCode[8];
            std::snprintf(cCode, sizeof cCode, "\\u%04X", static_cast<unsigned>(character));
            text += cCode;
        }
    }
    return text;
}

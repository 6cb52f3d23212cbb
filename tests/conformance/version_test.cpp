/* Version resources: what the About box asks, on the built libraries, whose FileVersion is 10.51. */
#include <cstring>

#include "platform/version.h"
#include "support/both_builds.h"

namespace {

using Version = BothBuilds;

TEST_F(Version, ValuesLieInTheBlockThatWasRead)
{
    for (const char* cName : {"TXT.DLL", "ENUS.DLL"}) {
        const WideString tcPath = BuiltFile(cName);
        DWORD dwHandle = 7;
        const DWORD cb = GetFileVersionInfoSizeW(tcPath.c_str(), &dwHandle);
        ASSERT_GT(cb, 100u);
        EXPECT_EQ(dwHandle, 0u);
        std::vector<unsigned char> block(cb);
        ASSERT_TRUE(GetFileVersionInfoW(tcPath.c_str(), 0, cb, block.data()));
        const auto find = [&](const WCHAR* wcName, UINT* pnUnits) -> const unsigned char* {
            void* pValue = nullptr;
            *pnUnits = 99;
            if (!VerQueryValueW(block.data(), wcName, &pValue, pnUnits)) {
                return nullptr;
            }
            const auto* pFirst = static_cast<const unsigned char*>(pValue);
            EXPECT_TRUE(pFirst >= block.data() && pFirst < block.data() + cb);
            return pFirst;
        };
        UINT nUnits;
        const unsigned char* pTranslation = find(TEXT("\\VarFileInfo\\Translation"), &nUnits);
        ASSERT_TRUE(pTranslation);
        EXPECT_EQ(nUnits, 4u) << "bytes";
        EXPECT_EQ(std::memcmp(pTranslation, "\x09\x04\xB0\x04", 4), 0);
        const unsigned char* pText = find(TEXT("\\StringFileInfo\\040904b0\\fileversion"), &nUnits);
        ASSERT_TRUE(pText) << "case does not count";
        EXPECT_EQ(nUnits, 6u) << "characters with the NUL";
        EXPECT_EQ(std::memcmp(pText, TEXT("10.51"), 12), 0);
        EXPECT_FALSE(find(TEXT("\\StringFileInfo\\040904B0\\FileVer"), &nUnits));
        EXPECT_FALSE(find(TEXT("\\StringFileInfo\\040704B0\\FileVersion"), &nUnits));
        EXPECT_EQ(nUnits, 0u);
        ASSERT_TRUE(find(TEXT("\\"), &nUnits));
        EXPECT_EQ(nUnits, 52u);
    }
}

TEST_F(Version, WhatHasNone)
{
    const WideString tcFile = TestFolder() + TEXT("\\plain.dll");
    PutTestFile(tcFile, "no library");
    DWORD dwHandle = 7;
    EXPECT_EQ(GetFileVersionInfoSizeW(tcFile.c_str(), &dwHandle), 0u);
    EXPECT_EQ(GetFileVersionInfoSizeW((tcFile + TEXT("x")).c_str(), &dwHandle), 0u);
    unsigned char abRoom[64] = {};
    EXPECT_FALSE(GetFileVersionInfoW(tcFile.c_str(), 0, sizeof abRoom, abRoom));
}

} // namespace

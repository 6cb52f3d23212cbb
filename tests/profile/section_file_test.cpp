/* Changing a section or a key: what stays, what is refused, and what failing calls leave. */
#include "profile/section_file.h"

#include <filesystem>

#include "hosted/standin.h"
#include "profile/profile_values.h"
#include "support/both_builds.h"
#include "support/data_file.h"
#include "support/settings_text.h"
#include "support/sweep.h"

namespace {

constexpr WCHAR FILE_PATH[] = u"C:\\set\\a.ini";

class SectionFile : public BothBuilds {
  protected:
    void SetUp() override
    {
        BothBuilds::SetUp();
        PutFile(u"C:\\set\\keep.txt", std::string_view("x"));
    }

    int Section(const WCHAR* tcPath = FILE_PATH)
    {
        SectionLines lines = {};
        WriteProfileDecimal(&lines, u"N", -7);
        return ReplaceSection(tcPath, u"Own", lines);
    }

    static int Key(const WCHAR* wcText = u"v", const WCHAR* tcPath = FILE_PATH)
    {
        return ReplaceKey(tcPath, u"Own", u"Key", wcText);
    }

    static std::string Text(const WCHAR* tcPath = FILE_PATH) { return Utf16FileText(tcPath); }

    static std::string Files()
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(HostPath(u"C:\\set"))) {
            names.push_back(entry.path().filename().string());
        }
        std::sort(names.begin(), names.end());
        std::string all;
        for (const std::string& name : names) {
            all += name + " ";
        }
        return all;
    }
};

} // namespace

TEST_F(SectionFile, OnlyTheOwnLinesChange)
{
    for (const DataRow& row : ReadRows("own_lines.txt")) {
        ASSERT_EQ(row.size(), 3u) << row[0];
        const std::string before = Unescaped(row[0]), section = Unescaped(row[1]);
        PutFile(FILE_PATH, std::string_view(before));
        EXPECT_EQ(Section(), 1);
        EXPECT_EQ(Text(), section) << row[0];
        EXPECT_EQ(Section(), 1);
        EXPECT_EQ(Text(), section) << "written again: " << row[0];
        PutFile(FILE_PATH, std::string_view(before));
        EXPECT_EQ(Key(), 1);
        EXPECT_EQ(Text(), Unescaped(row[2])) << row[0];
    }
    EXPECT_EQ(Files(), "a.ini keep.txt ") << "the copy is gone";
}

TEST_F(SectionFile, EveryEncodingBecomesOne)
{
    const WideText wcExpected = u"[A]\r\nx=\u00E4\u20AC\r\n[Own]\r\nKey=v\r\n";
    std::string little = "\xFF\xFE", big = "\xFE\xFF";
    for (WCHAR character : wcExpected.substr(0, wcExpected.find(u"[Own]"))) {
        char cLow = static_cast<char>(character & 0xFF), cHigh = static_cast<char>(character >> 8);
        little.append({cLow, cHigh});
        big.append({cHigh, cLow});
    }
    for (const std::string& before : {std::string("[A]\r\nx=\xE4\x80\r\n"), little, little + "\r", big,
                                      std::string("\xEF\xBB\xBF[A]\r\nx=\xC3\xA4\xE2\x82\xAC\r\n")}) {
        PutFile(FILE_PATH, std::string_view(before));
        EXPECT_EQ(Key(), 1);
        EXPECT_EQ(Text(), Narrow(wcExpected));
        WCHAR wcValue[8];
        ReadProfileText(OpenSection(OpenProfile(FILE_PATH), u"A"), u"x", wcValue, 8);
        EXPECT_EQ(WideText(wcValue), u"\u00E4\u20AC");
    }
    SetCodePage(932);
    PutFile(FILE_PATH, std::string_view("[A]\r\nx=\x82\xA0\r\n"));
    EXPECT_EQ(Key(), 1);
    EXPECT_EQ(Text(), Narrow(u"[A]\r\nx=\u3042\r\n[Own]\r\nKey=v\r\n"));
    for (const char* cMarkOnly : {"\xFF\xFE", "\xFE\xFF", "\xEF\xBB\xBF"}) {
        PutFile(FILE_PATH, std::string_view(cMarkOnly));
        EXPECT_EQ(Key(), 1);
        EXPECT_EQ(Text(), "[Own]\r\nKey=v\r\n");
    }
}

TEST_F(SectionFile, ControlCharactersCannotMakeLines)
{
    EXPECT_EQ(Key(u"a\r\n[B]\t\u001Az\u007F\u0085\xD800"), 1);
    Bytes bytes = GetFile(FILE_PATH);
    EXPECT_EQ(std::count(bytes.begin(), bytes.end(), u8{'\n'}), 2);
    WCHAR wcValue[32];
    ReadProfileText(OpenSection(OpenProfile(FILE_PATH), u"Own"), u"Key", wcValue, 32);
    EXPECT_EQ(WideText(wcValue), u"a  [B]  z \u0085\xD800");
}

TEST_F(SectionFile, WhatCannotBeWrittenIsLeftAlone)
{
    const WideText tcLong = u"C:\\set\\" + WideText(246, u'n') + u".ini"; /* no room for the copy's name */
    PutFile(tcLong, std::string_view("[A]\r\n"));
    for (const WCHAR* tcPath : {static_cast<const WCHAR*>(nullptr), u"", u"a.ini", u"C:\\none\\a.ini",
                                u"C:\\set", u"C:\\set\\", u"C:\\set\\keep.txt\\a.ini", tcLong.c_str()}) {
        EXPECT_EQ(Section(tcPath), 0);
        EXPECT_EQ(Key(u"v", tcPath), 0);
    }
    EXPECT_EQ(Files(), "keep.txt " + Narrow(tcLong.substr(7)) + " ");

    PutFile(FILE_PATH, std::string_view("[A]\r\n"));
    SetReadOnly(FILE_PATH, true);
    EXPECT_EQ(Section(), 0);
    SetReadOnly(FILE_PATH, false);
    for (DWORD dwShare : {0u, FILE_SHARE_READ | FILE_SHARE_WRITE}) { /* at the reading, at the rename */
        ResetCallCounts();
        HANDLE hFile = CreateFileW(FILE_PATH, GENERIC_READ, dwShare, nullptr, OPEN_EXISTING, 0, nullptr);
        EXPECT_EQ(Section(), 0) << "held by another";
        EXPECT_EQ(CallCount(CALL_Sleep), 9) << "another moment is waited for";
        CloseHandle(hFile);
    }
    std::filesystem::resize_file(HostPath(FILE_PATH), PROFILE_BYTES_LIMIT + 1);
    EXPECT_EQ(Section(), 0) << "too large";
    std::filesystem::resize_file(HostPath(FILE_PATH), PROFILE_BYTES_LIMIT / 2);
    EXPECT_EQ(Section(), 0) << "too large once it is written";
    std::filesystem::resize_file(HostPath(FILE_PATH), 5);
    for (i64 lRoom = 0; lRoom < 38; lRoom++) {
        SetDiskRoom(lRoom);
        EXPECT_EQ(Section(), 0);
    }
    EXPECT_EQ(GetFile(FILE_PATH), (Bytes{'[', 'A', ']', '\r', '\n'}));
    EXPECT_EQ(Files(), "a.ini keep.txt " + Narrow(tcLong.substr(7)) + " ");
    SetDiskRoom(-1);
    EXPECT_EQ(Section(), 1);
}

TEST_F(SectionFile, NothingInTheCopysPlaceIsTouched)
{
    std::filesystem::create_directory(HostPath(u"C:\\set\\a.ini.~0"));
    std::filesystem::create_symlink(HostPath(u"C:\\set\\keep.txt"), HostPath(u"C:\\set\\a.ini.~1"));
    std::filesystem::create_symlink(HostPath(u"C:\\set\\made.txt"), HostPath(u"C:\\set\\a.ini.~2"));
    PutFile(u"C:\\set\\a.ini.~3", std::string_view("left behind"));
    EXPECT_EQ(Section(), 1);
    EXPECT_EQ(GetFile(u"C:\\set\\keep.txt"), Bytes{'x'});
    EXPECT_EQ(Files(), "a.ini a.ini.~0 a.ini.~1 a.ini.~2 a.ini.~3 keep.txt ");

    for (WCHAR wcName[] = u"C:\\set\\a.ini.~4"; wcName[14] < u'8'; wcName[14]++) {
        PutFile(wcName, std::string_view("left behind"));
    }
    EXPECT_EQ(Section(), 1) << "what was left behind makes room";
    EXPECT_EQ(GetFile(u"C:\\set\\keep.txt"), Bytes{'x'});
    EXPECT_FALSE(HasFile(u"C:\\set\\made.txt"));

    /* A link in the file's own place is not read, not written through, and not replaced. */
    std::filesystem::remove(HostPath(FILE_PATH));
    std::filesystem::create_symlink(HostPath(u"C:\\set\\keep.txt"), HostPath(FILE_PATH));
    EXPECT_EQ(Section(), 0);
    EXPECT_TRUE(std::filesystem::is_symlink(HostPath(FILE_PATH)));
}

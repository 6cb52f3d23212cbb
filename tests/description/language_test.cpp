/* The language library: which one is loaded, and what a sheet keeps of it. */
#include "description/language_dll.h"
#include "description/xpi_text.h"
#include "places.h"
#include "support/data_file.h"
#include "support/sample_machine.h"

namespace {

class LanguageTest : public MachineTest {
  protected:
    void SetUp() override
    {
        MachineTest::SetUp();
        AddTestPrinter(DescriptionBuilder().Build());
        setup.wcName = u"Test";
    }

    /* Opens the library of a printer with these files. Result: language and sublanguage kept, and the text
       2203, which tells the two languages apart; "none" without a library. */
    std::string Opened(const std::string& files, u16 usLangId)
    {
        setup.atcDependentFiles.clear();
        WideText wcEnglish;
        for (const std::string& word : Words(files)) {
            if (word.rfind("ENUS=", 0) == 0) {
                wcEnglish = Wide(word.substr(5));
            } else {
                setup.atcDependentFiles.push_back(word[0] == ':' ? Wide(word.substr(1))
                                                                 : u"C:\\drv\\" + Wide(word));
            }
        }
        AddPrinter(setup);
        if (!wcEnglish.empty()) {
            SetPrinterText(u"Test", u"ENUS", wcEnglish);
        }
        SetUserLanguage(usLangId);
        PrinterCall call(hPrinter);
        std::memset(&choice, 0xEE, sizeof choice);
        OwnedModule hModule = OpenLanguageDll(call, &choice);
        EXPECT_EQ(CountLive().nModules, hModule ? 1 : 0);
        WCHAR wcText[64];
        ReadLibraryString(hModule.get(), 2203, wcText, 64);
        return std::to_string(choice.usPrimary) + "/" + std::to_string(choice.usSub) + " " +
               (hModule ? Narrow(wcText) : "none");
    }

    PrinterSetup setup;
    LanguageChoice choice;
};

} // namespace

TEST_F(LanguageTest, TheUsersLibraryThenTheEnglishOne)
{
    PutFile(u"C:\\drv\\broken-txt.dll", "MZ but nothing else");
    for (const WCHAR* tcCopy : {u"C:\\drv\\alt.dll", u"\\\\server\\share\\txt.dll"}) {
        PutFile(tcCopy, ReadDiskFile(TQUI_SAMPLES "/TXT.DLL"));
    }
    for (const DataRow& row : ReadRows("language_libraries.txt")) {
        EXPECT_EQ(Opened(row[0], static_cast<u16>(ToNumber(row[1]))), row[2]) << row[0];
    }
    ResetCallCounts();
    EXPECT_EQ(Opened(":\\drv\\txt.dll :drv\\enus.dll", 0x0407), "9/1 none");
    EXPECT_EQ(CallCount(CALL_LoadLibraryExW), 0) << "neither whole paths on a drive nor of a server";
    FailCall(CALL_LoadLibraryExW, 1);
    EXPECT_EQ(Opened("txt.dll enus.dll", 0x0407), "9/1 Printer default");
    EXPECT_EQ(StopFaults(), 1);
    FailCall(CALL_LoadLibraryExW, 1, FAIL_FROM_THERE);
    EXPECT_EQ(Opened("txt.dll enus.dll", 0x0407), "9/1 none");
    EXPECT_EQ(StopFaults(), 2);
}

TEST_F(LanguageTest, WhatASheetKeeps)
{
    setup.tcHelpFile = u"C:\\drv\\qa.chm";
    SetLocaleValue(u"sDecimal", u",");
    Opened("txt.dll", 0x0407);
    EXPECT_EQ(WideText(choice.tcHelpFile), u"C:\\DRV\\QA.CHM");
    EXPECT_EQ(WideText(choice.wcDecimal), u",");
    setup.tcHelpFile.clear();
    Opened("", 0x0407);
    EXPECT_EQ(choice.tcHelpFile[0], 0) << "told without a library as well";
    for (const auto& [wcLocale, wcKept] : {std::pair<const WCHAR*, const WCHAR*>{u"", u"."},
                                           {u"\u066B", u"\u066B"},
                                           {u"abc", u"abc"},
                                           {u"abcd", u"abc"},
                                           {u"abcdefghijkl", u"abc"},
                                           {u"ab\xD83D\xDE00", u"ab"}}) {
        SetLocaleValue(u"sDecimal", wcLocale);
        Opened("txt.dll", 0x0409);
        EXPECT_EQ(WideText(choice.wcDecimal), wcKept);
    }
    for (LieKind lie : {LIE_UNTERMINATED, LIE_HUGE}) {
        TellLies(lie, CALL_GetProfileStringW);
        Opened("txt.dll", 0x0409);
        EXPECT_LT(WideText(choice.wcDecimal, 4).find(u'\0'), 4u) << lie;
        TellLies(LIE_NONE);
    }
    PrinterCall call(hPrinter);
    EXPECT_TRUE(OpenLanguageDll(call, nullptr)) << "nobody keeps anything";
}

TEST_F(LanguageTest, CodesOfTheLanguages)
{
    u16 usPrimary = 0;
    for (const DataRow& line : ReadRows("languages.txt")) {
        usPrimary = static_cast<u16>(ToNumber(line[0]));
        u16 usSub = 0;
        for (const std::string& code : Words(line[1])) {
            EXPECT_EQ(Ascii(GetLanguageCode(usPrimary, ++usSub).wcText), code) << usPrimary;
        }
        if (usPrimary != 0) {
            EXPECT_EQ(Ascii(GetLanguageCode(usPrimary, 0).wcText), "") << usPrimary;
            EXPECT_EQ(Ascii(GetLanguageCode(usPrimary, static_cast<u16>(usSub + 1)).wcText), "") << usPrimary;
        }
    }
    EXPECT_EQ(usPrimary, 43);
    for (u16 usSub : std::initializer_list<u16>{0, 1, 2, 3}) { /* the neutral language counts from 0 */
        EXPECT_EQ(Ascii(GetLanguageCode(0, usSub).wcText), usSub < 3 ? "NEUT" : "") << usSub;
    }
    for (const auto& [usOther, usSub] : {std::pair<u16, u16>{44, 1}, {0x3FF, 1}, {7, 63}, {0xFFFF, 0xFFFF}}) {
        EXPECT_EQ(Ascii(GetLanguageCode(usOther, usSub).wcText), "") << usOther;
    }
    SetUserLanguage(0xFC07);
    EXPECT_EQ(GetUserLanguage(), 7);
}

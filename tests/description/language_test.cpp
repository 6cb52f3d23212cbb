/* The language library: which one is loaded, and what a sheet keeps of it. */
#include <sstream>

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
    std::string Opened(const std::vector<WideText>& files, u16 usLangId)
    {
        setup.atcDependentFiles = files;
        AddPrinter(setup);
        if (!wcOverride.empty()) {
            SetPrinterText(u"Test", u"ENUS", wcOverride);
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
    WideText wcOverride;
    LanguageChoice choice;
};

const WideText TXT = u"C:\\drv\\txt.dll", ENUS = u"C:\\drv\\enus.dll", BROKEN = u"C:\\drv\\broken-txt.dll";

} // namespace

TEST_F(LanguageTest, TheUsersLibraryThenTheEnglishOne)
{
    PutFile(BROKEN, "MZ but nothing else");
    EXPECT_EQ(Opened({TXT, ENUS}, 0x0409), "9/1 Printer default");
    EXPECT_EQ(Opened({TXT, ENUS}, 0x0407), "7/1 Vorgabe des Druckers");
    EXPECT_EQ(Opened({TXT, ENUS}, 0x0C07), "7/3 Vorgabe des Druckers");
    EXPECT_EQ(Opened({ENUS}, 0x0407), "9/1 Printer default");
    EXPECT_EQ(Opened({BROKEN, ENUS}, 0x0407), "9/1 Printer default") << "found, but it does not load";
    EXPECT_EQ(Opened({u"C:\\gone\\txt.dll", ENUS}, 0x0407), "9/1 Printer default");
    EXPECT_EQ(Opened({BROKEN, TXT, ENUS}, 0x0407), "9/1 Printer default")
        << "the first match is the only one tried";
    EXPECT_EQ(Opened({BROKEN}, 0x0407), "9/1 none");
    EXPECT_EQ(Opened({}, 0x0407), "9/1 none");
    EXPECT_EQ(Opened({u"txt.dll", u"enus.dll"}, 0x0407), "9/1 none") << "a bare name would be searched for";
}

TEST_F(LanguageTest, TheEnglishOneCanBeNamedByAValue)
{
    PutFile(u"C:\\drv\\alt.dll", ReadDiskFile(TQUI_SAMPLES "/TXT.DLL")); /* has German too */
    wcOverride = u"ALT.DLL";
    EXPECT_EQ(Opened({ENUS, u"C:\\drv\\alt.dll"}, 0x0407), "9/1 Vorgabe des Druckers");
    wcOverride = u"GONE.DLL";
    EXPECT_EQ(Opened({ENUS}, 0x0407), "9/1 none");
    EXPECT_EQ(Opened({TXT, ENUS}, 0x0407), "7/1 Vorgabe des Druckers")
        << "not asked for when it is not needed";
}

TEST_F(LanguageTest, WhatASheetKeeps)
{
    setup.tcHelpFile = u"C:\\drv\\qa.chm";
    SetLocaleValue(u"sDecimal", u",");
    Opened({TXT}, 0x0407);
    EXPECT_EQ(WideText(choice.tcHelpFile), u"C:\\DRV\\QA.CHM");
    EXPECT_EQ(WideText(choice.wcDecimal), u",");
    setup.tcHelpFile.clear();
    Opened({}, 0x0407);
    EXPECT_EQ(choice.tcHelpFile[0], 0) << "told without a library as well";
    struct Case {
        const WCHAR* wcLocale;
        const WCHAR* wcKept;
    };
    for (Case row : {Case{u"", u"."}, Case{u"\u066B", u"\u066B"}, Case{u"abc", u"abc"}, Case{u"abcd", u"abc"},
                     Case{u"abcdefghijkl", u"abc"}, Case{u"ab\xD83D\xDE00", u"ab"}}) {
        SetLocaleValue(u"sDecimal", row.wcLocale);
        Opened({TXT}, 0x0409);
        EXPECT_EQ(WideText(choice.wcDecimal), row.wcKept);
    }
    for (LieKind lie : {LIE_UNTERMINATED, LIE_HUGE}) {
        TellLies(lie, CALL_GetProfileStringW);
        Opened({TXT}, 0x0409);
        EXPECT_LT(WideText(choice.wcDecimal, 4).find(u'\0'), 4u) << lie;
        TellLies(LIE_NONE);
    }
    PrinterCall call(hPrinter);
    EXPECT_TRUE(OpenLanguageDll(call, nullptr)) << "nobody keeps anything";
}

TEST_F(LanguageTest, LibrariesAreLoadedAsData)
{
    FailCall(CALL_LoadLibraryExW, 1);
    EXPECT_EQ(Opened({TXT, ENUS}, 0x0407), "9/1 Printer default");
    EXPECT_EQ(StopFaults(), 1);
    FailCall(CALL_LoadLibraryExW, 1, FAIL_FROM_THERE);
    EXPECT_EQ(Opened({TXT, ENUS}, 0x0407), "9/1 none");
    EXPECT_EQ(StopFaults(), 2);
}

TEST_F(LanguageTest, CodesOfTheLanguages)
{
    u16 usPrimary = 0;
    for (const DataRow& line : ReadRows("languages.txt")) {
        std::istringstream row(line[1]);
        std::string code;
        usPrimary = static_cast<u16>(ToNumber(line[0]));
        u16 usSub = 0;
        while (row >> code) {
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

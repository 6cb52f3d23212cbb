/* The language library: which one is loaded, and what a sheet keeps of it. */
#include "description/language_dll.h"
#include "description/xpi_text.h"
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
    struct Case {
        u16 usPrimary, usSub;
        const char* cCode;
    };
    constexpr Case aCases[] = {
        {0, 0, "NEUT"},  {0, 1, "NEUT"},  {0, 2, "NEUT"},  {0, 3, ""},      {1, 1, "SAUD"},
        {1, 14, "UAE"},  {1, 15, "BAHR"}, {1, 16, "QATA"}, {1, 17, ""},     {2, 1, "BULG"},
        {2, 2, ""},      {3, 1, "CATA"},  {4, 1, "CTRA"},  {4, 2, "CSIM"},  {4, 3, "CHON"},
        {4, 4, "CSIN"},  {5, 1, "CZEC"},  {6, 1, "DANI"},  {7, 1, "GERM"},  {7, 2, "GSWI"},
        {7, 5, "GLIE"},  {8, 1, "GREE"},  {9, 1, "ENUS"},  {9, 2, "ENUK"},  {9, 11, "ENTR"},
        {9, 12, ""},     {9, 0, ""},      {10, 1, "SCAS"}, {10, 6, "SPAN"}, {10, 20, "SPUE"},
        {10, 21, ""},    {11, 1, "FINN"}, {12, 5, "FLUX"}, {13, 1, "HEBR"}, {14, 1, "HUNG"},
        {15, 1, "ICEL"}, {16, 2, "ISWI"}, {17, 1, "JAPA"}, {18, 2, "KJOH"}, {19, 2, "DBEL"},
        {20, 2, "NYNO"}, {21, 1, "POLI"}, {22, 1, "BRAZ"}, {22, 2, "PORT"}, {23, 1, "ROMA"},
        {24, 1, "RUSS"}, {25, 1, "CROA"}, {26, 1, "SERB"}, {26, 3, "SCYR"}, {27, 1, "SLOK"},
        {28, 1, "ALBA"}, {29, 2, "SFIN"}, {30, 1, "THAI"}, {31, 1, "TURK"}, {32, 1, "INDO"},
        {33, 1, "UKRA"}, {34, 1, "BELA"}, {35, 1, "SLON"}, {36, 1, "ESTO"}, {37, 1, "LATV"},
        {38, 1, "LITH"}, {39, 1, "FARS"}, {40, 1, "VIET"}, {41, 1, "BASQ"}, {42, 1, "AFRI"},
        {43, 1, "FAER"}, {43, 2, ""},     {44, 1, ""},     {0x3FF, 1, ""},  {0xFFFF, 0xFFFF, ""},
        {7, 63, ""},     {1, 0, ""},
    };
    for (const Case& row : aCases) {
        EXPECT_EQ(Ascii(GetLanguageCode(row.usPrimary, row.usSub).wcText), row.cCode)
            << row.usPrimary << "/" << row.usSub;
    }
    SetUserLanguage(0xFC07);
    EXPECT_EQ(GetUserLanguage(), 7);
}

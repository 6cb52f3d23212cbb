/* Programs that are started, and the current folder meanwhile. */
#include "base/started_program.h"

#include "platform/window_messages.h"
#include "sheet/font_manager.h"
#include "support/sheet_script.h"

namespace {

class StartedProgramsTest : public SheetScript {
  protected:
    static std::string Current()
    {
        WCHAR tcFolder[PATH_CHARS] = {};
        GetCurrentDirectoryW(PATH_CHARS, tcFolder);
        return Narrow(tcFolder);
    }
};

} // namespace

TEST_F(StartedProgramsTest, CommandLinesAreExactOrNotStarted)
{
    const WideText tcLong = u"C:\\a.exe", wcFits(COMMAND_LINE_BYTES - tcLong.size() - 1, u'x');
    const std::tuple<WideText, WideText, std::string> starts[] = {
        {tcLong, wcFits, "C:\\a.exe " + Narrow(wcFits)},
        {tcLong, wcFits + u"x", ""},
        {u"C:\\a b.exe", u"C:\\c d.ini", "\"C:\\a b.exe\" C:\\c d.ini"},
        {u"C:\\a.exe", u"\u00FC", "C:\\a.exe \xFC"},
        {u"C:\\a.exe", u"\u4E2D", ""},
        {u"C:\\a\"b.exe", u"c", ""},
        {u"a.exe", u"c", ""}};
    for (const auto& [tcPath, wcArguments, line] : starts) {
        const size_t nRuns = StartedPrograms().size();
        EXPECT_EQ(StartProgram(tcPath.c_str(), wcArguments.c_str(), SW_SHOWNORMAL), !line.empty()) << line;
        ASSERT_EQ(StartedPrograms().size(), nRuns + !line.empty());
        EXPECT_TRUE(line.empty() || StartedPrograms().back() == line) << StartedPrograms().back();
    }
}

/* The font manager starts in its folder by its name alone; whatever fails, the current folder is as before. */
TEST_F(StartedProgramsTest, FontManagerStartsInItsFolder)
{
    Begin("T410A", "");
    EXPECT_FALSE(HasFontManager(Session()));
    EXPECT_FALSE(StartFontManager(Session())) << "no such folder";
    PutFile(u"C:\\Program Files\\Zeph Corvantis Font Manager\\ZephFmgr.exe", "x");
    EXPECT_TRUE(HasFontManager(Session()));
    EXPECT_TRUE(StartFontManager(Session()));
    EXPECT_EQ(StartedPrograms().back(), "ZephFmgr.exe|in C:\\Program Files\\Zeph Corvantis Font Manager");
    PrinterSetup setup = GetPrinterSetup(wcPrinter);
    setup.atcDependentFiles.push_back(u"C:\\Fonts\\My Fonts.exe");
    AddPrinter(setup);
    SetPrinterText(wcPrinter, u"FontManager", u"my fonts");
    PutFile(u"C:\\work\\readme.txt", "x");
    EXPECT_FALSE(HasFontManager(Session())) << "the driver's own is named, but not there";
    PutFile(u"C:\\Fonts\\My Fonts.exe", "x");
    ASSERT_TRUE(SetCurrentDirectoryW(u"C:\\work"));
    for (CallId call : {CALL_GetCurrentDirectoryW, CALL_SetCurrentDirectoryW, CALL_WinExec,
                        CALL_WideCharToMultiByte, CALL_MultiByteToWideChar, CALL_CreateFileW}) {
        FailCall(call, 1);
        const int bDone = call == CALL_CreateFileW ? HasFontManager(Session()) : StartFontManager(Session());
        EXPECT_EQ(StopFaults(), 1) << CallName(call);
        EXPECT_FALSE(bDone) << CallName(call);
        EXPECT_EQ(Current(), "C:\\work") << CallName(call);
    }
    EXPECT_TRUE(HasFontManager(Session()));
    EXPECT_TRUE(StartFontManager(Session()));
    EXPECT_EQ(StartedPrograms().back(), "\"MY FONTS.EXE\"|in C:\\FONTS");
    EXPECT_EQ(Current(), "C:\\work");
}

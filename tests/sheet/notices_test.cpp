/* The notices and the About box as the user sees them; the version resource that the box reads, also where it lies. */
#include "sheet/notices.h"

#include "description/control_ids.h"
#include "description/string_ids.h"
#include "places.h"
#include "sheet/about.h"
#include "sheet/version_text.h"
#include "support/sheet_dialogs.h"
#include "support/sweep.h"

namespace {

constexpr const WCHAR* tcCore = u"C:\\drv\\qrnd.dll";
const Bytes ENGLISH_UNICODE = {0x09, 0x04, 0xB0, 0x04};

class Notices : public SheetDialogs {
  protected:
    void SetUp() override
    {
        SheetDialogs::SetUp();
        Open(SizedModel());
    }

    void Open(const DescriptionBuilder& description)
    {
        CloseWindows();
        OpenSession(description);
        hFrame = OpenFrame(100, 50, 800, 600);
        pSession->sDialogArg = 77;
    }

    /* What a notice shows: title, icon, then the texts that are to be seen. */
    std::string Shown(NoticeId notice)
    {
        std::string shown;
        QueueModalStep([&](HWND hDialog) {
            shown = TitleOf(hDialog);
            const LRESULT lIcon = SendDlgItemMessageW(hDialog, IDC_NOTICE_ICON, STM_GETICON, 0, 0);
            shown += lIcon == reinterpret_cast<LRESULT>(LoadIconW(nullptr, IDI_HAND))          ? " (stop)"
                     : lIcon == reinterpret_cast<LRESULT>(LoadIconW(nullptr, IDI_EXCLAMATION)) ? " (warning)"
                                                                                               : " (?)";
            for (int nControl : {IDC_NOTICE_TEXT, IDC_NOTICE_LINE1, IDC_NOTICE_LINE2, IDC_NOTICE_LINE3,
                                 IDC_NOTICE_LINE4, IDC_NOTICE_OK, IDC_OK, IDC_CANCEL}) {
                if (IsSeen(hDialog, nControl)) {
                    shown += "|" + TextOf(hDialog, nControl);
                }
            }
            RECT rect;
            GetWindowRect(hDialog, &rect);
            EXPECT_EQ(rect.top, 75);
            EXPECT_EQ(rect.left, 100 + (800 - (rect.right - rect.left)) / 2);
        });
        EXPECT_EQ(ShowNotice(pSession.get(), hFrame, notice), 1);
        EXPECT_EQ(pSession->sDialogArg, 77);
        return shown;
    }

    /* The lines of the About box from IDC_ABOUT_LINE1 to IDC_ABOUT_LINE6. */
    std::vector<std::string> About()
    {
        std::vector<std::string> lines;
        QueueModalStep([&](HWND hDialog) {
            EXPECT_EQ(TitleOf(hDialog), "About");
            EXPECT_NE(SendDlgItemMessageW(hDialog, IDC_LOGO, STM_GETIMAGE, IMAGE_BITMAP, 0), 0);
            for (int i = 0; i < 6; i++) {
                lines.push_back(TextOf(hDialog, IDC_ABOUT_LINE1 + i));
            }
            RECT rect;
            GetWindowRect(hDialog, &rect);
            EXPECT_EQ(rect.top, 75);
            ClickControl(hDialog, IDC_NOTICE_OK);
        });
        ShowAbout(pSession.get(), hFrame);
        return lines;
    }

    HWND hFrame = nullptr;
};

using Lines = std::vector<std::string>;

TEST_F(Notices, TellTheirTextsInTheUsersLanguage)
{
    EXPECT_EQ(Shown(NOTICE_CONFLICT),
              "Settings Do Not Fit Together (stop)|This entry cannot be taken as it stands.|"
              "Some of the chosen settings exclude|each other on this printer.|"
              "Please change one of them.|OK");
    EXPECT_EQ(
        Shown(NOTICE_PAPER_SIZE),
        "Paper Size Out of Range (stop)|Smallest width: 3.00 in (76.2 mm)|Largest width: 12.59 in (320.0 mm)|"
        "Smallest length: 5.00 in (127.0 mm)|Largest length: 17.00 in (431.8 mm)|OK");
    EXPECT_EQ(
        Shown(NOTICE_OUTLINE),
        "Outline Not Available (warning)|The outline of this text cannot be made|in the chosen font and size.|"
        "OK keeps the watermark as it is set.|Cancel goes back to the watermark.|OK|Cancel");
    EXPECT_EQ(Shown(NOTICE_NAME),
              "Name Already in Use (warning)|This entry cannot be taken as it stands.|OK");

    SetUserLanguage(0x0407);
    Open(SizedModel());
    const Bytes built = ReadDiskFile(TQUI_SAMPLES "/TXT.DLL");
    const auto german = [&](u16 usId) {
        PeText text{};
        EXPECT_TRUE(FindPeString(built, usId, {{0x0007, 0x0407}}, &text)) << usId;
        WideText wcText(text.cch, u'\0');
        std::memcpy(wcText.data(), built.data() + text.nOffset, 2 * wcText.size());
        return Narrow(wcText);
    };
    EXPECT_NE(german(IDS_TITLE_NAME), "Name Already in Use");
    EXPECT_EQ(Shown(NOTICE_NAME), german(IDS_TITLE_NAME) + " (warning)|" + german(IDS_ENTRY_REFUSED) + "|" +
                                      german(IDC_NOTICE_OK));
    const std::string limits = Shown(NOTICE_PAPER_SIZE);
    for (const char* cPart : {"3,00", "76,2", "12,59", "320,0", "5,00", "127,0", "17,00", "431,8"}) {
        EXPECT_NE(limits.find(cPart), std::string::npos) << limits;
    }
    EXPECT_EQ(ForcedCloses(), 0);
}

TEST_F(Notices, OnlyTheFirstButtonOfAQuestionIsYes)
{
    const auto ended = [&](NoticeId notice, std::function<void(HWND)> step) {
        QueueModalStep(std::move(step));
        return ShowNotice(pSession.get(), hFrame, notice);
    };
    EXPECT_EQ(ended(NOTICE_OUTLINE, [](HWND h) { ClickControl(h, IDC_OK); }), 0);
    EXPECT_EQ(ended(NOTICE_OUTLINE, [](HWND h) { ClickControl(h, IDC_CANCEL); }), 1);
    EXPECT_EQ(ended(NOTICE_OUTLINE, [](HWND) { SendKey(VK_ESCAPE); }), 1);
    EXPECT_EQ(ended(NOTICE_OUTLINE, [](HWND) { SendKey(VK_RETURN); }), 0) << "the default button";
    EXPECT_EQ(ended(NOTICE_OUTLINE, [](HWND h) { CloseWindowByUser(h); }), 1);
    EXPECT_EQ(ended(NOTICE_NAME, [](HWND h) { ClickControl(h, IDC_NOTICE_OK); }), 1);
    EXPECT_EQ(ForcedCloses(), 0);
    const int nOpened = DialogsOpened();
    EXPECT_EQ(ShowNotice(pSession.get(), hFrame, static_cast<NoticeId>(IDS_TITLE_NAME + 1)), 1);
    const HWND hGone = OpenFrame();
    DestroyWindow(hGone);
    EXPECT_EQ(ShowNotice(pSession.get(), hGone, NOTICE_OUTLINE), 1)
        << "the system's 0 for a lost owner is no button";
    pSession->hLanguageDll.reset();
    EXPECT_EQ(ShowNotice(pSession.get(), hFrame, NOTICE_NAME), 1);
    ShowAbout(pSession.get(), hFrame);
    EXPECT_EQ(DialogsOpened(), nOpened);
}

/* A library of our own: formats that ask for other things than the four numbers, texts of every length. */
TEST_F(Notices, FormatsThatAskForMoreAreShownAsTheyStand)
{
    UseStrings({{IDS_LEAST_WIDTH, u"%d %d %d %d %d"},
                {IDS_LARGEST_WIDTH, u"%s"},
                {IDS_LEAST_LENGTH, u"%n%d"},
                {IDS_LARGEST_LENGTH, WideText(127, u'%')},
                {IDS_TITLE_PAPER_SIZE, u"T"}});
    EXPECT_EQ(Shown(NOTICE_PAPER_SIZE), "T (stop)|%d %d %d %d %d|%s|%n%d|" + std::string(127, '%') + "|OK");
    TellLies(LIE_UNTERMINATED, CALL_LoadStringW);
    EXPECT_NE(Shown(NOTICE_PAPER_SIZE), "");
    TellLies(LIE_NONE);
    pSession->pXpi.reset();
    EXPECT_EQ(Shown(NOTICE_PAPER_SIZE), "T (stop)|||||OK") << "without a model there are no limits";
}

TEST_F(Notices, AConflictIsShownWithTheModelsTextAndRefuses)
{
    DescriptionBuilder builder = SizedModel();
    ConstraintRow rule = {};
    rule.usUsed = 1;
    rule.sMessageId = static_cast<u16>(builder.Text("A5 and the large bin do not go together."));
    rule.ulInputs = 1;
    ConstraintRow mute = rule;
    mute.sMessageId = 0;
    mute.ulInputs = 2;
    builder.Table<ConstraintRow>(offsetof(XpiModel, pConstraints), {rule, mute, {}});
    builder.Table<BinRow>(offsetof(XpiModel, pInputBins), {{1, 1025, 1}, {2, 261, 2}, {4, 262, 3}, {}});
    Open(builder);
    const auto check = [&](u16 usSource) {
        std::string shown;
        QueueModalStep([&](HWND hDialog) {
            for (int nControl :
                 {IDC_NOTICE_TEXT, IDC_NOTICE_LINE1, IDC_NOTICE_LINE2, IDC_NOTICE_LINE3, IDC_NOTICE_LINE4}) {
                shown += IsSeen(hDialog, nControl) ? TextOf(hDialog, nControl) + "|" : "";
            }
            EXPECT_EQ(GetParent(hDialog), hFrame);
        });
        record.dmDefaultSource = static_cast<decltype(record.dmDefaultSource)>(usSource);
        const int bConflict = CheckConstraints(hFrame, pSession.get());
        EXPECT_EQ(pSession->sDialogArg, 77);
        EXPECT_EQ(ModalStepsLeft(), bConflict ? 0u : 1u);
        return std::to_string(bConflict) + " " + shown;
    };
    EXPECT_EQ(check(1025), "1 A5 and the large bin do not go together.|");
    EXPECT_EQ(pSession->sNoticeText, static_cast<i16>(rule.sMessageId));
    EXPECT_EQ(check(261), "1 This entry cannot be taken as it stands.|Some of the chosen settings exclude|"
                          "each other on this printer.|Please change one of them.|")
        << "no text of an earlier conflict";
    EXPECT_EQ(check(262), "0 ");
}

TEST_F(Notices, AboutMovesItsLinesWithTheModelsTexts)
{
    /* The module's name in its table stands in front of the version's. */
    PutFile(tcCore, VersionedFile(VersionResource(u"040904B0", u"3.14 beta", ENGLISH_UNICODE)));
    const auto about = [&](const std::vector<u16>& ids) {
        DescriptionBuilder builder = SizedModel();
        for (const char* cText : {"one", "two", "three", "four", "five", "six"}) {
            builder.Text(cText);
        }
        if (!ids.empty()) {
            builder.Table<u16>(offsetof(XpiModel, pAboutStrings), ids);
        }
        Open(builder);
        return About();
    };
    EXPECT_EQ(about({}), (Lines{"", "Version 3.14 beta", "", "", "", ""}));
    EXPECT_EQ(about({1, 0, 5, 4}), (Lines{"one", "", "Version 3.14 beta", "four", "", ""}));
    EXPECT_EQ(about({1, 2, 3, 4, 5, 6}), (Lines{"one", "two", "three", "four", "Version 3.14 beta", "six"}));
    EXPECT_EQ(about({0xFF87, 0, 0, 0, 0}), (Lines{"Letter", "", "Version 3.14 beta", "", "", ""}))
        << "a text of the language library";

    PutFile(tcCore, VersionedFile({}));
    EXPECT_EQ(about({1, 2, 3, 4, 5, 6}), (Lines{"one", "two", "three", "", "", ""})) << "it tells no version";

    /* On a page the same lines, in whatever was filled before. */
    PutFile(tcCore, VersionedFile(VersionResource(u"040904B0", u"7", ENGLISH_UNICODE)));
    const HWND hPage = OpenTemplate(IDD_ABOUT_PAGE, hFrame);
    FillAbout(hPage, pSession.get());
    EXPECT_EQ(TextOf(hPage, IDC_ABOUT_LINE1) + TextOf(hPage, IDC_ABOUT_LINE5), "oneVersion 7");
    pSession->pXpi.reset();
    FillAbout(hPage, pSession.get());
    EXPECT_EQ(TextOf(hPage, IDC_ABOUT_LINE1) + TextOf(hPage, IDC_ABOUT_LINE2), "Version 7")
        << "without a model there are no texts of it";
    EXPECT_EQ(CountLive().nGdiObjects, 0) << "the box took its logo with it";
}

class Versions : public MachineTest {
  protected:
    /* Result and text, or what the reader did wrong. */
    static std::string Read(const Bytes& resource)
    {
        PutFile(tcCore, VersionedFile(resource));
        WCHAR wcVersion[VERSION_CHARS + 1];
        std::fill_n(wcVersion, VERSION_CHARS + 1, u'~');
        const int bFound = ReadVersionText(tcCore, wcVersion);
        if (BoundedLength(wcVersion, VERSION_CHARS) == VERSION_CHARS || wcVersion[VERSION_CHARS] != '~') {
            return "no end";
        }
        return std::to_string(bFound) + Narrow(wcVersion);
    }
};

TEST_F(Versions, TheFirstTranslationThenEnglish)
{
    const Bytes GERMAN_ANSI = {0x07, 0x04, 0xE4, 0x04};
    const std::string longest(80, '8');
    EXPECT_EQ(Read(VersionResource(u"040704E4", u"1.5", GERMAN_ANSI)), "11.5");
    EXPECT_EQ(Read(VersionResource(u"040904E4", u"1.6", GERMAN_ANSI)), "11.6");
    EXPECT_EQ(Read(VersionResource(u"040904B0", u"1.7", GERMAN_ANSI)), "1") << "neither table";
    EXPECT_EQ(Read(VersionResource(u"040904B0", u"1.7", {})), "0") << "no translation";
    EXPECT_EQ(Read(VersionResource(u"040904B0", u"", ENGLISH_UNICODE)), "1");
    EXPECT_EQ(Read(VersionResource(u"040904B0", Widen(longest), ENGLISH_UNICODE)), "1" + longest);
    EXPECT_EQ(Read(VersionResource(u"040904B0", WideText(500, u'8'), ENGLISH_UNICODE)), "1" + longest);
    WCHAR wcVersion[VERSION_CHARS];
    EXPECT_EQ(ReadVersionText(u"C:\\drv\\none.dll", wcVersion), 0);
    EXPECT_EQ(ReadVersionText(u"", wcVersion), 0);
    EXPECT_EQ(wcVersion[0], 0);
}

/* Every word of a resource at its bounds, every length of it, and a system that lies: an end, and nothing outside. */
TEST_F(Versions, HostileResources)
{
    const Bytes good = VersionResource(u"040904B0", u"1.7", ENGLISH_UNICODE);
    ASSERT_EQ(Read(good), "11.7");
    int nOther = 0;
    for (size_t nAt = 0; nAt + 2 <= good.size(); nAt += 2) {
        for (unsigned nValue : {0u, 1u, 7u, 0x7FFFu, 0x8000u, 0xFFFFu}) {
            Bytes bad = good;
            Put16(&bad, nAt, nValue);
            const std::string answer = Read(bad);
            ASSERT_NE(answer, "no end") << nAt << " " << nValue;
            nOther += answer != "11.7";
        }
    }
    EXPECT_GT(nOther, 100);
    for (size_t cb = 0; cb < good.size(); cb++) {
        ASSERT_NE(Read(Bytes(good.begin(), good.begin() + static_cast<long>(cb))), "no end") << cb;
    }
    for (int nKind = LIE_NONE + 1; nKind < LIE_KIND_COUNT; nKind++) {
        TellLies(static_cast<LieKind>(nKind));
        EXPECT_NE(Read(good), "no end");
        TellLies(LIE_NONE);
    }
}

TEST_F(Notices, SurviveEveryFailure)
{
    DescriptionBuilder builder = SizedModel();
    const u16 usText = static_cast<u16>(builder.Text("one"));
    builder.Table<u16>(offsetof(XpiModel, pAboutStrings), {usText, 0, 0, usText});
    Open(builder);
    PutFile(tcCore, VersionedFile(VersionResource(u"040904B0", u"7", ENGLISH_UNICODE)));
    pSession->sNoticeText = static_cast<i16>(usText);
    const auto notice = [&](NoticeId id, HWND hOwner) {
        return [this, id, hOwner] {
            const INT_PTR nResult = ShowNotice(pSession.get(), hOwner, id);
            return nResult == 1 && pSession->sDialogArg == 77 ? std::string() : "another result; ";
        };
    };
    const std::function<std::string()> bodies[] = {
        notice(NOTICE_CONFLICT, hFrame), notice(NOTICE_PAPER_SIZE, hFrame), notice(NOTICE_OUTLINE, hFrame),
        notice(NOTICE_NOT_PRINTED, nullptr), [&] {
            ShowAbout(pSession.get(), hFrame);
            return std::string();
        }};
    for (FaultMode mode : {FAIL_ONCE, FAIL_FROM_THERE}) {
        for (const auto& body : bodies) {
            const FaultSweep sweep = SweepFaults(ANY_CALL, mode, 400, body);
            EXPECT_EQ(sweep.fault, "");
            EXPECT_GT(sweep.nFaults, 15);
        }
    }
    const int nBefore = ForcedCloses();
    EXPECT_EQ(notice(NOTICE_NAME, hFrame)(), "");
    EXPECT_EQ(ForcedCloses(), nBefore) << "and it still works";
}

} // namespace

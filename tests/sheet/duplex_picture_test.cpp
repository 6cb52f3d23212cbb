/* The duplex picture: which one is shown, loaded how often, and given back when. */
#include "sheet/duplex_picture.h"
#include "support/sheet_dialogs.h"

namespace {

constexpr int LAYOUT_PAGE = 1002, RADIO_NONE = 1205, RADIO_LONG = 1206, RADIO_SHORT = 1207, PICTURE = 1653;

class DuplexPicture : public SheetDialogs {
  protected:
    void SetUp() override
    {
        SheetDialogs::SetUp();
        OpenSession(SizedModel());
        hPage = OpenTemplate(LAYOUT_PAGE, OpenFrame());
        pSession->hPageWnd[SLOT_LAYOUT] = hPage;
    }
    void TearDown() override
    {
        DropDuplexPictures(pSession.get());
        SheetDialogs::TearDown();
    }

    HBITMAP ShownFor(int nRadio)
    {
        CheckRadioButton(hPage, RADIO_NONE, RADIO_SHORT, nRadio);
        ShowDuplexPicture(hPage, pSession.get());
        return Shown();
    }
    HBITMAP Shown() const
    {
        return reinterpret_cast<HBITMAP>(SendDlgItemMessageW(hPage, PICTURE, STM_GETIMAGE, IMAGE_BITMAP, 0));
    }
    Bytes Resource(LPCWSTR wcName) const
    {
        Bytes bytes;
        EXPECT_TRUE(FindModuleResource(Library(), PE_BITMAP, wcName, &bytes));
        return bytes;
    }

    HWND hPage = nullptr;
};

TEST_F(DuplexPicture, FollowsTheRadiosAndIsLoadedOnce)
{
    const std::pair<int, LPCWSTR> rows[] = {{RADIO_LONG, u"DUPLONG"},
                                            {RADIO_SHORT, u"DUPSHORT"},
                                            {RADIO_NONE, u"DUPSIMPLE"},
                                            {RADIO_LONG, u"DUPLONG"}};
    for (const auto& [nRadio, wcName] : rows) {
        PictureSize size;
        Bytes bytes;
        ASSERT_TRUE(GetPicture(ShownFor(nRadio), &size, &bytes)) << nRadio;
        EXPECT_EQ(bytes, Resource(wcName)) << nRadio;
        EXPECT_EQ(size.uFlags, LR_LOADTRANSPARENT | LR_LOADMAP3DCOLORS);
    }
    EXPECT_EQ(CallCount(CALL_LoadImageW), 3);
    PaintWindows(hPage);
    ShowDuplexPicture(hPage, pSession.get());
    RECT rInvalid;
    EXPECT_FALSE(GetInvalidRect(GetDlgItem(hPage, PICTURE), &rInvalid)) << "the same picture painted again";
}

TEST_F(DuplexPicture, TheControlLetsGoBeforePicturesAreDeleted)
{
    ShownFor(RADIO_LONG);
    ShownFor(RADIO_SHORT);
    DropDuplexPictures(pSession.get());
    EXPECT_EQ(Shown(), nullptr);
    EXPECT_EQ(CountLive().nGdiObjects, 0);
    EXPECT_NE(ShownFor(RADIO_SHORT), nullptr) << "loaded anew";
}

TEST_F(DuplexPicture, WithoutLibraryPictureOrControlNothingIsShown)
{
    FailCall(CALL_LoadImageW, 1);
    EXPECT_EQ(ShownFor(RADIO_LONG), nullptr);
    EXPECT_EQ(StopFaults(), 1);
    EXPECT_NE(ShownFor(RADIO_LONG), nullptr) << "tried again at the next painting";
    const int nLoaded = CallCount(CALL_LoadImageW);
    ShowDuplexPicture(OpenFrame(), pSession.get());
    pSession->hLanguageDll.reset();
    ShownFor(RADIO_SHORT);
    EXPECT_EQ(CallCount(CALL_LoadImageW), nLoaded);
}

} // namespace

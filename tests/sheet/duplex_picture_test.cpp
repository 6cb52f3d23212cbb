/* The duplex picture: which one is shown, loaded how often, and given back when. */
#include "description/control_ids.h"
#include "sheet/duplex_picture.h"
#include "support/sheet_dialogs.h"

namespace {

class DuplexPicture : public SheetDialogs {
  protected:
    void SetUp() override
    {
        SheetDialogs::SetUp();
        OpenSession(SizedModel());
        hPage = OpenTemplate(IDD_LAYOUT, OpenFrame());
        pSession->hPageWnd[SLOT_LAYOUT] = hPage;
    }
    void TearDown() override
    {
        DropDuplexPictures(pSession.get());
        SheetDialogs::TearDown();
    }

    HBITMAP ShownFor(int nRadio)
    {
        CheckRadioButton(hPage, IDC_LAYOUT_ONE_SIDE, IDC_LAYOUT_SHORT_EDGE, nRadio);
        ShowDuplexPicture(hPage, pSession.get());
        return Shown();
    }
    HBITMAP Shown() const
    {
        return reinterpret_cast<HBITMAP>(
            SendDlgItemMessageW(hPage, IDC_LAYOUT_DUPLEX_PICTURE, STM_GETIMAGE, IMAGE_BITMAP, 0));
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
    const std::pair<int, LPCWSTR> rows[] = {{IDC_LAYOUT_LONG_EDGE, u"DUPLONG"},
                                            {IDC_LAYOUT_SHORT_EDGE, u"DUPSHORT"},
                                            {IDC_LAYOUT_ONE_SIDE, u"DUPSIMPLE"},
                                            {IDC_LAYOUT_LONG_EDGE, u"DUPLONG"}};
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
    EXPECT_FALSE(GetInvalidRect(GetDlgItem(hPage, IDC_LAYOUT_DUPLEX_PICTURE), &rInvalid))
        << "the same picture painted again";
}

TEST_F(DuplexPicture, TheControlLetsGoBeforePicturesAreDeleted)
{
    ShownFor(IDC_LAYOUT_LONG_EDGE);
    ShownFor(IDC_LAYOUT_SHORT_EDGE);
    DropDuplexPictures(pSession.get());
    EXPECT_EQ(Shown(), nullptr);
    EXPECT_EQ(CountLive().nGdiObjects, 0);
    EXPECT_NE(ShownFor(IDC_LAYOUT_SHORT_EDGE), nullptr) << "loaded anew";
}

TEST_F(DuplexPicture, WithoutLibraryPictureOrControlNothingIsShown)
{
    FailCall(CALL_LoadImageW, 1);
    EXPECT_EQ(ShownFor(IDC_LAYOUT_LONG_EDGE), nullptr);
    EXPECT_EQ(StopFaults(), 1);
    EXPECT_NE(ShownFor(IDC_LAYOUT_LONG_EDGE), nullptr) << "tried again at the next painting";
    const int nLoaded = CallCount(CALL_LoadImageW);
    ShowDuplexPicture(OpenFrame(), pSession.get());
    pSession->hLanguageDll.reset();
    ShownFor(IDC_LAYOUT_SHORT_EDGE);
    EXPECT_EQ(CallCount(CALL_LoadImageW), nLoaded);
}

} // namespace

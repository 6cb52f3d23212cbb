/* A session for the tests of what dialogs share, made by hand, and windows from the built language library. */
#ifndef TQUI_TESTS_SHEET_DIALOGS_H
#define TQUI_TESTS_SHEET_DIALOGS_H

#include <memory>

#include "document/defaults.h"
#include "hosted/user_input.h"
#include "places.h"
#include "sheet/session.h"
#include "support/dialog_builder.h"
#include "support/sample_machine.h"
#include "support/tiny_pe.h"

class SheetDialogs : public MachineTest {
  protected:
    /* A session of the printer "Test" with this description; the language library is that of the user. */
    void OpenSession(const DescriptionBuilder& description)
    {
        pSession.reset();
        AddTestPrinter(description.Build());
        pSession = std::make_unique<UiSession>();
        PrinterCall call(hPrinter);
        record = recordTemplate;
        pSession->pRecord = &record;
        pSession->hPrinter = hPrinter;
        pSession->hLanguageDll = OpenLanguageDll(call, &pSession->rLanguage);
        ASSERT_TRUE(OpenXpiPath(pSession->rXpiFile, u"C:\\drv\\qa.xpi"));
        pSession->pXpi = LoadPrinterModel(call);
        ASSERT_TRUE(pSession->hLanguageDll && pSession->pXpi);
    }

    /* Paper sizes from 76.2 x 127.0 to 320.0 x 431.8 mm. */
    static DescriptionBuilder SizedModel()
    {
        DescriptionBuilder builder;
        builder.Set(offsetof(XpiModel, sMinCustomWidth), i16{762});
        builder.Set(offsetof(XpiModel, sMaxCustomWidth), i16{3200});
        builder.Set(offsetof(XpiModel, sMinCustomLength), i16{1270});
        builder.Set(offsetof(XpiModel, sMaxCustomLength), i16{4318});
        return builder;
    }

    HMODULE Library() const { return static_cast<HMODULE>(pSession->hLanguageDll.get()); }

    /* A library with the built one's dialogs and pictures, and these strings. */
    HMODULE UseStrings(const std::map<int, WideText>& strings)
    {
        const Bytes built = ReadDiskFile(TQUI_SAMPLES "/ENUS.DLL");
        std::map<int, std::vector<WideText>> blocks;
        for (const auto& [nId, wcText] : strings) {
            blocks[nId / 16 + 1].resize(16);
            blocks[nId / 16 + 1][static_cast<size_t>(nId % 16)] = wcText;
        }
        std::vector<TinyResource> list;
        for (const PeResource& resource : ListPeResources(built, 10000)) {
            if (resource.type == PeName(PE_DIALOG) || resource.type == PeName(PE_BITMAP)) {
                const auto first = built.begin() + static_cast<long>(resource.data.nOffset);
                list.push_back({resource.type, resource.name, 0x0409,
                                Bytes(first, first + static_cast<long>(resource.data.cbSize))});
            }
        }
        for (const auto& [nBlock, texts] : blocks) {
            list.push_back({PE_STRING, static_cast<u16>(nBlock), 0x0409, StringBlock(texts)});
        }
        PutFile(u"C:\\drv\\own.dll", TinyPe(list).bytes);
        pSession->hLanguageDll.reset(LoadLibraryExW(u"C:\\drv\\own.dll", nullptr, LOAD_LIBRARY_AS_DATAFILE));
        EXPECT_TRUE(pSession->hLanguageDll);
        return Library();
    }

    /* A window of its own that pages lie in. */
    HWND OpenFrame(int nX = 0, int nY = 0, int nWidth = 600, int nHeight = 500)
    {
        static const DialogBuilder form(WS_POPUP | WS_VISIBLE, 300, 250, {});
        const HWND hFrame = CreateDialogIndirectParamW(nullptr, form.Data(), nullptr, IgnoreAll, 0);
        MoveWindow(hFrame, nX, nY, nWidth, nHeight, 0);
        windows.push_back(hFrame);
        return hFrame;
    }

    /* A page or dialog of the library in the frame, with the session in it; a dialog's own procedure comes behind. */
    HWND OpenTemplate(int nTemplate, HWND hFrame, DLGPROC pfnDialog = IgnoreAll)
    {
        Bytes bytes;
        EXPECT_TRUE(FindModuleResource(Library(), PE_DIALOG, MAKEINTRESOURCEW(nTemplate), &bytes))
            << nTemplate;
        bytes.resize(0x10000);
        const HWND hDialog = CreateDialogIndirectParamW(Library(), bytes.data(), hFrame, pfnDialog, 0);
        EXPECT_TRUE(hDialog) << nTemplate;
        SetWindowLongPtrW(hDialog, DWLP_USER, reinterpret_cast<LONG_PTR>(pSession.get()));
        ShowWindow(hDialog, SW_SHOW);
        windows.push_back(hDialog);
        return hDialog;
    }

    void CloseWindows()
    {
        while (!windows.empty()) {
            if (IsWindow(windows.back())) {
                DestroyWindow(windows.back());
            }
            windows.pop_back();
        }
    }

    static std::string TitleOf(HWND hWnd)
    {
        WCHAR wcText[300];
        GetWindowTextW(hWnd, wcText, 300);
        return Narrow(wcText);
    }
    static std::string TextOf(HWND hDialog, int nControl) { return TitleOf(GetDlgItem(hDialog, nControl)); }
    static bool IsSeen(HWND hDialog, int nControl)
    {
        return (GetWindowLongPtrW(GetDlgItem(hDialog, nControl), GWL_STYLE) &
                static_cast<LONG_PTR>(WS_VISIBLE)) != 0;
    }

    static INT_PTR CALLBACK IgnoreAll(HWND, UINT, WPARAM, LPARAM) { return 0; }

    void TearDown() override
    {
        CloseWindows();
        pSession.reset();
        MachineTest::TearDown();
    }

    std::unique_ptr<UiSession> pSession;
    DriverDevmode record;
    std::vector<HWND> windows;
};

#endif

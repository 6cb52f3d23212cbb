/* Dialog templates in memory, in the extended form that resource compilers write, for both builds. */
#ifndef TQUI_TESTS_DIALOG_BUILDER_H
#define TQUI_TESTS_DIALOG_BUILDER_H

#include <string>
#include <vector>

#include "platform/window.h"
#include "support/both_builds.h"

struct BuiltItem {
    int nId;
    const WCHAR* wcClass;
    DWORD dwStyle; /* WS_CHILD and WS_VISIBLE are added; HIDDEN_ITEM leaves the second out */
    int nX, nY, nWidth, nHeight;
    const WCHAR* wcText = TEXT("");
};
constexpr DWORD HIDDEN_ITEM = 1u << 26; /* no style of ours */

class DialogBuilder {
  public:
    /* Size in dialog units. Font "MS Shell Dlg", 8 points. */
    DialogBuilder(DWORD dwStyle, int nWidth, int nHeight, const std::vector<BuiltItem>& items)
    {
        for (int nWord : {1, 0xFFFF, 0, 0, 0, 0}) {
            Put(nWord);
        }
        PutLong(dwStyle | DS_SETFONT);
        for (int nWord : {static_cast<int>(items.size()), 10, 10, nWidth, nHeight, 0, 0}) {
            Put(nWord);
        }
        PutText(TEXT("Dialog"));
        for (int nWord : {8, 400, 0x100}) {
            Put(nWord);
        }
        PutText(TEXT("MS Shell Dlg"));
        for (const BuiltItem& item : items) {
            PutItem(item);
        }
    }
    const void* Data() const { return words_.data(); }

  private:
    void Put(int nWord) { words_.push_back(static_cast<unsigned short>(nWord)); }
    void PutLong(DWORD dwLong)
    {
        Put(static_cast<int>(dwLong & 0xFFFF));
        Put(static_cast<int>(dwLong >> 16));
    }
    void PutText(const WCHAR* wcText)
    {
        for (; *wcText; wcText++) {
            Put(*wcText);
        }
        Put(0);
    }
    void PutItem(const BuiltItem& item)
    {
        if (words_.size() % 2) {
            Put(0);
        }
        PutLong(0);
        PutLong(0);
        PutLong((item.dwStyle & ~HIDDEN_ITEM) | WS_CHILD | (item.dwStyle & HIDDEN_ITEM ? 0 : WS_VISIBLE));
        for (int nWord : {item.nX, item.nY, item.nWidth, item.nHeight}) {
            Put(nWord);
        }
        PutLong(static_cast<DWORD>(item.nId));
        PutText(item.wcClass);
        PutText(item.wcText);
        Put(0);
    }
    std::vector<unsigned short> words_;
};

#endif

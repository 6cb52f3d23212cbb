/* The reader of dialog templates, on any bytes. The seeds are templates of the language library. */
#include "fuzz/require.h"
#include "hosted/dialog_template.h"

extern "C" int LLVMFuzzerTestOneInput(const u8* pData, size_t cbData)
{
    DialogTemplate read;
    if (!ReadDialogTemplate({pData, cbData}, &read)) {
        return 0;
    }
    /* Every item takes 30 bytes or more, so no count makes a list that the bytes do not hold. */
    size_t cbText = read.wcTitle.size() * 2;
    for (const DialogItem& item : read.items) {
        cbText += (item.text.wcName.size() + item.windowClass.wcName.size()) * 2;
    }
    Require(read.items.size() * 30 + cbText <= cbData);
    return 0;
}

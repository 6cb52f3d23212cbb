/* The text of a settings file that the library wrote. */
#ifndef TQUI_TESTS_SETTINGS_TEXT_H
#define TQUI_TESTS_SETTINGS_TEXT_H

#include "hosted/machine.h"

/* The file, which must be UTF-16 with its mark, without that; other characters than ASCII as Narrow shows them. */
inline std::string Utf16FileText(const WideText& tcPath)
{
    const Bytes bytes = GetFile(tcPath);
    if (bytes.size() < 2 || bytes.size() % 2 || bytes[0] != 0xFF || bytes[1] != 0xFE) {
        return "not UTF-16";
    }
    WideText wcText;
    for (size_t i = 2; i < bytes.size(); i += 2) {
        wcText.push_back(static_cast<WCHAR>(bytes[i] | bytes[i + 1] << 8));
    }
    return Narrow(wcText);
}

#endif

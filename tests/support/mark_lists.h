/* Lists of watermarks for the tests: made from names of rows, and what is stored of them. */
#ifndef TQUI_TESTS_MARK_LISTS_H
#define TQUI_TESTS_MARK_LISTS_H

#include <algorithm>
#include <set>
#include <sstream>

#include "description/printer_store.h"
#include "hosted/standin.h"
#include "sheet/session.h"
#include "watermark/watermark_store.h"

/* A row by its name: "text" and "image" have no files, "built" and "picture" are the same with both files, "arabic" runs
   from right to left, "faceless" has a face that the system lacks, "placed" is an image at the top left, off by both positions. */
inline WatermarkEntry MarkRow(const std::string& name, const WideText& tcFolder, int nRow)
{
    WatermarkEntry row;
    ResetWatermarkEntry(&row);
    row.bWMStale = 0;
    const bool bImage = name == "image" || name == "picture" || name == "placed";
    if (bImage) {
        row = {};
        CopyWide(row.WMImageName, PATH_CHARS, u"C:\\art\\logo.bmp");
        row.WMScaleX = row.WMScaleY = 50;
        row.WMTransparency = 50;
        row.WMPlacement = 3;
    }
    row.WMType = bImage ? ENTRY_IMAGE : ENTRY_TEXT;
    CopyWide(row.WMString, 64, name == "arabic" ? u"\u0633\u0631\u064A" : Widen(name).c_str());
    row.WMRTL = name == "arabic";
    if (name == "faceless") {
        CopyWide(row.WMFace, 32, u"Ari");
    }
    if (name == "placed") {
        row.WMPlacement = 6;
        row.WMPositionX = row.WMPositionY = 1000;
    }
    if (name == "built" || name == "picture") {
        const WideText tcBuilt = tcFolder + u"\\0000000" + static_cast<WCHAR>(u'A' + nRow);
        CopyWide(row.WMFileName, PATH_CHARS, (tcBuilt + u".WM").c_str());
        CopyWide(row.WMColorFile, PATH_CHARS, (tcBuilt + u".CWM").c_str());
        PutFile(row.WMFileName, "built");
        PutFile(row.WMColorFile, "built");
        row.WMResolution = 600;
        row.WMWidth = 1200;
        row.WMHeight = 300;
    }
    return row;
}

/* Gives the user's settings file these rows, by their names. */
inline void StoreMarks(UiSession* pSession, const std::string& names)
{
    std::istringstream list(names);
    std::vector<WatermarkEntry> rows;
    for (std::string name; list >> name;) {
        rows.push_back(MarkRow(name, pSession->wcUserFolder, static_cast<int>(rows.size())));
    }
    PrinterCall call(pSession->hPrinter);
    SetSavedWatermarks(call, rows.data(), static_cast<i32>(rows.size()));
}

inline void TakeStoredMarks(UiSession* pSession)
{
    PrinterCall call(pSession->hPrinter);
    pSession->sWatermarkCount = static_cast<u16>(GetSavedWatermarks(call, &pSession->pWatermarks));
}

/* The text of a key as it stands in the user's settings file; "-" when it has none. */
inline std::string StoredMark(const UiSession* pSession, const std::string& key)
{
    PrinterCall call(pSession->hPrinter);
    WCHAR tcPath[PATH_CHARS] = {};
    GetUserSettingsPath(call, tcPath);
    const Bytes bytes = GetFile(tcPath);
    WideText wcFile(bytes.size() / 2, u' ');
    std::copy_n(bytes.data(), wcFile.size() * 2, reinterpret_cast<u8*>(wcFile.data()));
    const std::string file = Narrow(wcFile), line = "\r\n" + key + "=";
    const size_t nAt = file.find(line);
    return nAt == std::string::npos
               ? "-"
               : file.substr(nAt + line.size(), file.find('\r', nAt + 2) - nAt - line.size());
}

inline std::set<std::filesystem::path> BuiltFiles(const UiSession* pSession)
{
    std::set<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(HostPath(pSession->wcUserFolder))) {
        const std::string extension = entry.path().extension().string();
        if (extension == ".wm" || extension == ".cwm") {
            files.insert(entry.path());
        }
    }
    return files;
}

/* Last letters of the names of the built files in the user's folder, split by commas. */
inline std::string BuiltMarks(const UiSession* pSession)
{
    std::string all;
    for (const std::filesystem::path& file : BuiltFiles(pSession)) {
        all += (all.empty() ? "" : ",") + file.filename().string().substr(7);
    }
    return all;
}

inline void DropBuiltMarks(const UiSession* pSession)
{
    for (const std::filesystem::path& file : BuiltFiles(pSession)) {
        std::filesystem::remove(file);
    }
}

#endif

/* Runs every reader of a printer's description, whatever is in it: for the sweeps over damaged files and the
   fuzz target. Buffers are blocks of just the told size, so that a sanitizer sees each byte too many. */
#ifndef TQUI_TESTS_EVERY_READER_H
#define TQUI_TESTS_EVERY_READER_H

#include <memory>
#include <string>

#include "description/installed_set.h"
#include "description/language_dll.h"
#include "description/margins.h"
#include "description/paper.h"
#include "description/xpi_text.h"

inline std::string ReadEveryString(XpiFile& file, const XpiModel* pModel, HMODULE hLanguageDll)
{
    std::string fault;
    constexpr int CCH = 24;
    constexpr i32 COUNT = 14;
    i16 aIds[COUNT] = {1, 2, 3, 0, -1, -121, -32768, 32767, 255, 40};
    auto wcBulk = std::make_unique<WCHAR[]>(COUNT * CCH);
    auto wcOne = std::make_unique<WCHAR[]>(CCH);
    for (i32 i = 10; i < COUNT; i++) {
        aIds[i] = Row(pModel, pModel ? pModel->pPaperTable : nullptr, i - 10)->sNameId;
    }
    for (u16 usLanguage : {u16{7}, u16{9}, u16{0xFFFF}}) {
        ReadXpiStrings(file, usLanguage, hLanguageDll, aIds, COUNT, wcBulk.get(), CCH, CCH);
        for (i32 i = 0; i < COUNT; i++) {
            ReadXpiString(file, usLanguage, hLanguageDll, aIds[i], wcOne.get(), CCH);
            if (BoundedLength(wcOne.get(), CCH) == CCH || !SameWide(wcOne.get(), wcBulk.get() + i * CCH)) {
                fault += "string " + std::to_string(aIds[i]) + " of language " + std::to_string(usLanguage) +
                         " is not the same alone and in a list; ";
            }
        }
    }
    ReadXpiString(file, 9, hLanguageDll, 1, wcOne.get(), 1);
    return fault;
}

inline std::string ReadEveryCommand(XpiFile& file)
{
    std::string fault;
    for (u16 usId : {u16{0}, u16{1}, u16{2}, u16{7}, u16{0x7FFF}, u16{0xFFFF}}) {
        for (int cb : {1, 12, SHORT_COMMAND_BYTES, COMMAND_BYTES}) {
            auto cOut = std::make_unique<char[]>(static_cast<size_t>(cb));
            int nLong = ReadXpiCommand(file, usId, cOut.get(), cb);
            bool bEnded = nLong >= 0 && nLong < cb &&
                          std::char_traits<char>::length(cOut.get()) == static_cast<size_t>(nLong);
            int nShort = ReadXpiShortCommand(file, usId, cOut.get(), cb);
            bEnded = bEnded && nShort >= 0 && nShort < cb && !cOut[static_cast<size_t>(nShort)];
            if (!bEnded || (nShort && nShort != nLong)) {
                fault += "command " + std::to_string(usId) + " in " + std::to_string(cb) + " bytes; ";
            }
        }
    }
    return fault;
}

inline std::string ReadEveryBlob(XpiFile& file, const XpiModel* pModel)
{
    std::string fault;
    auto pChunk = std::make_unique<u8[]>(FONT_CHUNK_BYTES);
    i32 nFonts = pModel ? pModel->sResFontCount : 0;
    for (i32 nFirst : {-1, 0, 1, 2, nFonts / 2, nFonts, nFonts + 1}) {
        u32 cbChunk = ReadXpiFontChunk(file, pModel, nullptr, nFirst);
        u32 cbRead = ReadXpiFontChunk(file, pModel, pChunk.get(), nFirst);
        if (cbChunk > FONT_CHUNK_BYTES || (cbRead && cbRead != cbChunk)) {
            fault += "font chunk from " + std::to_string(nFirst) + "; ";
        }
    }
    GetXpiFontDataSize(file, pModel);
    for (u16 usId : {u16{0}, u16{1}, u16{0xFFFF}}) {
        u32 cbBitmap;
        OwnedBlock<u8> pBitmap = ReadXpiBitmap(file, usId, &cbBitmap);
        if (!pBitmap != !cbBitmap) {
            fault += "bitmap " + std::to_string(usId) + "; ";
        }
    }
    u32 cbColor = ReadXpiColorData(file, nullptr);
    auto pColor = std::make_unique<u8[]>(cbColor);
    ReadXpiColorData(file, pColor.get());
    return fault;
}

/* Loads the printer's model as an entry call does and asks everything of it.
   Result: what contradicts itself; empty when nothing does. */
inline std::string ReadEverything(HANDLE hPrinter)
{
    PrinterCall call(hPrinter);
    XpiFile* pFile = OpenXpiFile(call);
    if (!pFile) {
        return "";
    }
    OwnedModel pOwned = LoadPrinterModel(call);
    const XpiModel* pModel = pOwned.get();
    OwnedModule hLanguageDll = OpenLanguageDll(call, nullptr);
    std::string fault = ReadEveryString(*pFile, pModel, hLanguageDll.get());
    fault += ReadEveryCommand(*pFile) + ReadEveryBlob(*pFile, pModel);
    for (i32 i : {-1, 0, 1, 1000, 0x7FFF, 0x7FFFFFFF}) {
        const FeatureValueRow* pRow = PjlValueRow(pModel, i);
        fault += pRow ? "" : "no value row; ";
        const void* pAbout = RowAt(pModel, pModel ? pModel->pAboutStrings : nullptr, i, 2);
        fault += pAbout ? "" : "no about row; ";
    }
    if (pModel) {
        for (const char* pText : {pModel->pDefaultFont, pModel->pDefaultPropFont, pModel->pFontSubs}) {
            if (std::char_traits<char>::length(BodyText(pModel, pText)) > 0xFFFF) {
                fault += "a text longer than a body; ";
            }
        }
    }
    LookupXpiMemory(pModel, 16);
    GetXpiHalftoneBytes(pModel);
    GetPaperExtents(pModel);
    GetDeviceInfo(call, pModel);
    for (i16 sCode :
         {i16{-32768}, i16{-9}, i16{0}, i16{1}, i16{118}, i16{119}, i16{256}, i16{448}, i16{32767}}) {
        i16 sWidth, sLength;
        GetPaperSize(call, pModel, sCode, &sWidth, &sLength);
        GetCompanionPaper(pModel, sCode);
        GetPrintableMargins(call, pModel, sCode, 1, sCode % 2 ? 600 : 0x7FFFFFFF);
        GetPrintableMargins(call, pModel, sCode, 2, sCode % 2 ? 25400 : 0);
    }
    return fault;
}

#endif

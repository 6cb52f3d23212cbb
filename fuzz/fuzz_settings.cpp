/* The bytes are a settings file, the last one says how it is asked: into a record of kind 0 to 4 and into each
   list. Nothing may be written outside the record's fields and the arrays, and reading the same file into its
   own result again (bit 7) changes nothing more. What was read is written, read and written until it is the same
   again, which it must be after the first time but for quotation marks, of which each reading takes a pair. */
#include <algorithm>
#include <cstring>

#include "description/custom_sizes.h"
#include "fuzz/require.h"
#include "settingsfile/font_substitutions.h"
#include "settingsfile/settings_reader.h"
#include "settingsfile/settings_writer.h"
#include "watermark/watermark_rows.h"

namespace {

constexpr char16_t FUZZ_FILE[] = u"C:\\fuzz\\s.ini";

constexpr char16_t COPY_FILE[] = u"C:\\fuzz\\copy.ini";

/* The round writes the file, reads it into what is written, and writes that. */
template <class Round> void Settles(Round round)
{
    round();
    Bytes once = GetFile(COPY_FILE);
    bool bQuoted =
        std::count(once.begin(), once.end(), u8{'"'}) || std::count(once.begin(), once.end(), u8{'\''});
    round();
    Require(bQuoted || GetFile(COPY_FILE) == once);
}

template <size_t N> bool HasEnd(const WCHAR (&wcField)[N])
{
    return std::find(wcField, wcField + N, 0) != wcField + N;
}

void ReadRecord(u16 usKind, u8 bFill, int bReadOnly, int bAgain, int bCopy)
{
    /* A block of its own, one byte off, so that the sanitizers see the record's ends and its addresses. */
    std::vector<u8> block(1 + sizeof(DriverDevmode), bFill);
    auto* pRecord = reinterpret_cast<DriverDevmode*>(block.data() + 1);
    std::memset(pRecord->rPrivate.tcXPIName, 0, sizeof pRecord->rPrivate.tcXPIName);
    pRecord->rPrivate.tcXPIName[0] = 'Q';
    const std::vector<u8> before = block;
    if (!ReadPrinterSettings(OpenProfile(FUZZ_FILE), pRecord, bReadOnly, usKind)) {
        Require(block == before);
        return;
    }
    const u8* pBytes = block.data() + 1;
    const auto Same = [&](int nFrom, int nEnd) {
        Require(std::equal(pBytes + nFrom, pBytes + nEnd, before.data() + 1 + nFrom));
    };
    for (const auto& [nFrom, nEnd] :
         {std::pair(0, 76), {684, 1720}, {1970, 2692}, {3716, 3718}, {3730, 3768}, {3770, 4088}}) {
        Same(nFrom, nEnd);
    }
    if (bReadOnly) { /* margins */
        Same(682, 684);
        Same(1790, 1798);
    }
    /* The region holds what its counts say. */
    if (usKind >= 3) {
        size_t nAt = 2982;
        for (u8 n = pRecord->rPrivate.bStyleCount; n; n--) {
            Require(nAt + 4 <= 3716);
            nAt += static_cast<size_t>(pBytes[nAt] | pBytes[nAt + 1] << 8);
        }
        for (u8 n = pRecord->rPrivate.bBlockCount; n; n--) {
            Require(nAt + 2 <= 3716);
            nAt += 2u + 2u * pBytes[nAt + 1];
        }
        Require(nAt <= 3716);
    }
    const std::vector<u8> once = block;
    Require(!bAgain ||
            (ReadPrinterSettings(OpenProfile(FUZZ_FILE), pRecord, bReadOnly, usKind) && block == once));
    auto Copy = [&] {
        Require(WritePrinterSettings(COPY_FILE, pRecord, usKind));
        Require(ReadPrinterSettings(OpenProfile(COPY_FILE), pRecord, 0, usKind));
        Require(WritePrinterSettings(COPY_FILE, pRecord, usKind));
    };
    if (bCopy) {
        Settles(Copy);
    }
}

void ReadLists(int bCopy)
{
    OwnedBlock<WatermarkEntry> pMarks;
    i32 nMarks = ReadWatermarks(OpenProfile(FUZZ_FILE), &pMarks);
    Require(pMarks && nMarks >= 0 && nMarks <= WATERMARK_LIMIT && pMarks.get()[nMarks].WMType == ENTRY_FREE);
    for (i32 i = 0; i < nMarks; i++) {
        const WatermarkEntry& row = pMarks.get()[i];
        Require(row.WMString[0] && HasEnd(row.WMString) && HasEnd(row.WMFileName) && HasEnd(row.WMColorFile));
        Require(row.WMType == ENTRY_IMAGE ? HasEnd(row.WMImageName) : HasEnd(row.WMFace));
        Require(!row.bWMStale &&
                (row.WMFileName[0] || row.WMColorFile[0] ? row.WMResolution && row.WMWidth && row.WMHeight
                                                         : !row.WMResolution && !row.WMWidth));
    }
    OwnedBlock<PaperSizeRow> pPapers;
    i32 nPapers = ReadCustomSizes(OpenProfile(FUZZ_FILE), nullptr, &pPapers);
    Require(pPapers && nPapers >= 0 && nPapers <= LIST_LIMIT);
    for (i32 i = 0; i < nPapers; i++) {
        Require(pPapers.get()[i].wcName[0] && HasEnd(pPapers.get()[i].wcName));
    }
    auto Copy = [&] {
        Require(WriteWatermarks(COPY_FILE, pMarks.get(), nMarks) &&
                WriteCustomSizes(COPY_FILE, pPapers.get(), nPapers));
        nMarks = ReadWatermarks(OpenProfile(COPY_FILE), &pMarks);
        nPapers = ReadCustomSizes(OpenProfile(COPY_FILE), nullptr, &pPapers);
        Require(WriteWatermarks(COPY_FILE, pMarks.get(), nMarks) &&
                WriteCustomSizes(COPY_FILE, pPapers.get(), nPapers));
    };
    if (bCopy) {
        Settles(Copy);
    }
    OwnedBlock<WCHAR> pFonts;
    u16 cbFonts = ReadFontSubstitutions(OpenProfile(FUZZ_FILE), &pFonts);
    Require(!pFonts == (cbFonts == NO_FONT_SUBSTITUTIONS));
    Require(!pFonts || (!pFonts.get()[cbFonts] && !pFonts.get()[cbFonts + 1]));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* pBytes, size_t cb)
{
    StartOnce();
    u8 bHow = cb ? pBytes[cb - 1] : 0;
    LiveCounts before = CountLive();
    SetCodePage(bHow & 1 ? 1252 : 932);
    PutFile(FUZZ_FILE, Bytes(pBytes, pBytes + cb));
    ReadRecord(static_cast<u16>((bHow >> 3 & 15) % 5), bHow & 2 ? 0xA5 : 0, bHow & 4, bHow & 128, bHow & 64);
    ReadLists(!(bHow & 64));
    Require(CountLive() == before);
    return 0;
}

/* Lays the sections of a description file one behind the other. */
#include "support/description_builder.h"

#include <algorithm>

namespace {

void Append(Bytes* pFile, const Bytes& bytes)
{
    size_t nAt = pFile->size();
    pFile->resize(nAt + bytes.size());
    std::copy(bytes.begin(), bytes.end(), pFile->begin() + static_cast<std::ptrdiff_t>(nAt));
}

/* An offset table of the given width over pieces that lie one behind the other; the end as a last row. */
template <class Number> void AppendOffsets(Bytes* pFile, const std::vector<Bytes>& pieces, bool bEndRow)
{
    size_t nAt = 0;
    for (const Bytes& piece : pieces) {
        Poke(pFile, pFile->size(), static_cast<Number>(nAt));
        nAt += piece.size();
    }
    if (bEndRow) {
        Poke(pFile, pFile->size(), static_cast<Number>(nAt));
    }
}

void AppendPieces(Bytes* pFile, size_t nHeaderField, const std::vector<Bytes>& pieces)
{
    Poke(pFile, nHeaderField, static_cast<u32>(pFile->size()));
    for (const Bytes& piece : pieces) {
        Append(pFile, piece);
    }
}

} // namespace

Bytes DescriptionBuilder::Build() const
{
    Bytes file(sizeof(XpiHeader));
    Poke(&file, AT_BODY, static_cast<u32>(file.size()));
    Append(&file, body);

    /* One list of pieces for all languages; row 0 of each language's offsets is the text of id 0, unused. */
    std::vector<Bytes> texts;
    std::map<u16, u16> bases;
    for (const auto& [usLanguage, list] : strings) {
        bases[usLanguage] = static_cast<u16>(texts.size());
        texts.push_back({0});
        for (const std::string& text : list) {
            texts.emplace_back(text.begin(), text.end());
            texts.back().push_back(0);
        }
    }
    Poke(&file, AT_STRING_BASE, static_cast<u32>(file.size()));
    for (u16 usLanguage = 0; usLanguage < nLanguages; usLanguage++) {
        auto own = bases.find(usLanguage);
        Poke(&file, file.size(),
             own != bases.end() ? own->second
             : bases.count(9)   ? bases[9]
                                : static_cast<u16>(0));
    }
    Poke(&file, AT_STRING_ID, static_cast<u32>(file.size()));
    AppendOffsets<u16>(&file, texts, false);
    AppendPieces(&file, AT_STRING_DATA, texts);
    Poke(&file, AT_FONT_TABLE, static_cast<u32>(file.size()));
    AppendOffsets<u32>(&file, fonts, true);
    Poke(&file, AT_COMMAND_TABLE, static_cast<u32>(file.size()));
    AppendOffsets<u16>(&file, commands, false);
    AppendPieces(&file, AT_COMMAND_DATA, commands);
    AppendPieces(&file, AT_FONT_DATA, fonts); /* where the command bytes end */
    Poke(&file, AT_BITMAP_TABLE, static_cast<u32>(file.size()));
    AppendOffsets<u32>(&file, bitmaps, false);
    AppendPieces(&file, AT_BITMAP_DATA, bitmaps);
    AppendPieces(&file, AT_COLOR_DATA, {colorData});
    Poke(&file, AT_COLOR_SIZE, static_cast<u32>(colorData.size()));
    return file;
}

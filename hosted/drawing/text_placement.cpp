/* Which letters a text is drawn with, and in which order: runs of one direction by FriBidi, their forms by HarfBuzz. */
#include <fribidi.h>
#include <hb.h>

#include <algorithm>
#include <utility>

#include "hosted/drawing/drawing_state.h"
#include "hosted/drawing/glyph_source.h"

namespace {

bool IsLowHalf(char16_t wcChar)
{
    return wcChar >= 0xDC00 && wcChar < 0xE000;
}

bool IsHighHalf(char16_t wcChar)
{
    return wcChar >= 0xD800 && wcChar < 0xDC00;
}

/* Embedding levels of the 16-bit characters; even: from left to right. */
std::vector<FriBidiLevel> Levels(std::u16string_view wcText, bool bReorder, bool bRightToLeft)
{
    std::vector<FriBidiLevel> levels(wcText.size(), 0);
    std::vector<FriBidiChar> chars;
    for (size_t i = 0; i < wcText.size(); i++) {
        bool bPair = IsHighHalf(wcText[i]) && i + 1 < wcText.size() && IsLowHalf(wcText[i + 1]);
        chars.push_back(bPair ? 0x10000u + ((wcText[i] - 0xD800u) << 10) + (wcText[i + 1] - 0xDC00u)
                              : wcText[i]);
        i += bPair;
    }
    if (chars.empty() || !bReorder) {
        return levels;
    }
    auto nChars = static_cast<FriBidiStrIndex>(chars.size());
    std::vector<FriBidiCharType> types(chars.size());
    std::vector<FriBidiBracketType> brackets(chars.size());
    std::vector<FriBidiLevel> found(chars.size(), 0);
    FriBidiParType paragraph = bRightToLeft ? FRIBIDI_PAR_RTL : FRIBIDI_PAR_LTR;
    fribidi_get_bidi_types(chars.data(), nChars, types.data());
    fribidi_get_bracket_types(chars.data(), nChars, types.data(), brackets.data());
    if (!fribidi_get_par_embedding_levels_ex(types.data(), brackets.data(), nChars, &paragraph,
                                             found.data())) {
        return levels;
    }
    for (size_t i = 0, j = 0; i < wcText.size(); i++, j++) {
        levels[i] = found[j];
        if (chars[j] > 0xFFFF) {
            levels[++i] = found[j];
        }
    }
    return levels;
}

struct Run {
    size_t nFrom, nTo;
    FriBidiLevel level;
};

/* From left to right: from the highest level down to the lowest odd one, what stands at it or above is turned. */
std::vector<Run> RunsInOrder(const std::vector<FriBidiLevel>& levels)
{
    std::vector<Run> runs;
    FriBidiLevel highest = 0;
    for (size_t i = 0; i < levels.size(); i++) {
        highest = std::max(highest, levels[i]);
        if (runs.empty() || runs.back().level != levels[i]) {
            runs.push_back({i, i, levels[i]});
        }
        runs.back().nTo = i + 1;
    }
    for (FriBidiLevel level = highest; level > 0; level--) {
        for (size_t i = 0; i < runs.size();) {
            size_t j = i;
            while (j < runs.size() && runs[j].level >= level) {
                j++;
            }
            std::reverse(runs.begin() + static_cast<ptrdiff_t>(i), runs.begin() + static_cast<ptrdiff_t>(j));
            i = j + 1;
        }
    }
    return runs;
}

/* The glyphs from left to right of a part of a run whose letters come from one face. */
void ShapePart(const GlyphFont& font, std::u16string_view wcText, const Run& run, bool bLinked, DWORD dwFlags,
               std::vector<u32>* pGlyphs)
{
    hb_buffer_t* pBuffer = hb_buffer_create();
    hb_buffer_add_utf16(pBuffer, reinterpret_cast<const uint16_t*>(wcText.data()),
                        static_cast<int>(wcText.size()), static_cast<unsigned>(run.nFrom),
                        static_cast<int>(run.nTo - run.nFrom));
    hb_buffer_set_direction(pBuffer, run.level & 1 ? HB_DIRECTION_RTL : HB_DIRECTION_LTR);
    hb_buffer_guess_segment_properties(pBuffer);
    hb_buffer_set_language(pBuffer, hb_language_from_string("en", -1));
    const hb_feature_t aFeatures[] = {
        {HB_TAG('k', 'e', 'r', 'n'), 0, HB_FEATURE_GLOBAL_START, HB_FEATURE_GLOBAL_END},
        {HB_TAG('l', 'i', 'g', 'a'), 0, HB_FEATURE_GLOBAL_START, HB_FEATURE_GLOBAL_END},
        {HB_TAG('c', 'l', 'i', 'g'), 0, HB_FEATURE_GLOBAL_START, HB_FEATURE_GLOBAL_END},
        {HB_TAG('r', 'l', 'i', 'g'), dwFlags & GCP_LIGATE ? 1u : 0u, HB_FEATURE_GLOBAL_START,
         HB_FEATURE_GLOBAL_END}};
    hb_shape(bLinked ? font.pLinked->pShaper : font.pShaper, pBuffer, aFeatures, std::size(aFeatures));
    unsigned nGlyphs = 0;
    const hb_glyph_info_t* aInfos = hb_buffer_get_glyph_infos(pBuffer, &nGlyphs);
    for (unsigned i = 0; i < nGlyphs; i++) {
        pGlyphs->push_back(aInfos[i].codepoint | (bLinked ? LINKED_GLYPH : 0));
    }
    hb_buffer_destroy(pBuffer);
}

/* One run's glyphs from left to right: part by part, from its end where it is turned. */
void ShapeRun(const GlyphFont& font, std::u16string_view wcText, const Run& run, DWORD dwFlags,
              std::vector<u32>* pGlyphs)
{
    std::vector<std::pair<Run, bool>> parts;
    for (size_t i = run.nFrom; i < run.nTo; i++) {
        const bool bLinked = GlyphOf(font, wcText[i]) & LINKED_GLYPH;
        if (parts.empty() || parts.back().second != bLinked) {
            parts.push_back({{i, i, run.level}, bLinked});
        }
        parts.back().first.nTo = i + 1;
    }
    if (run.level & 1) {
        std::reverse(parts.begin(), parts.end());
    }
    for (const auto& [part, bLinked] : parts) {
        ShapePart(font, wcText, part, bLinked, dwFlags, pGlyphs);
    }
}

} // namespace

PlacedText PlaceText(const GlyphFont& font, std::u16string_view wcText, DWORD dwFlags, bool bRightToLeft)
{
    PlacedText placed;
    for (const Run& run : RunsInOrder(Levels(wcText, dwFlags & GCP_REORDER, bRightToLeft))) {
        WideText wcRun(wcText.substr(run.nFrom, run.nTo - run.nFrom));
        if (run.level & 1) {
            std::reverse(wcRun.begin(), wcRun.end());
        }
        if (dwFlags & GCP_GLYPHSHAPE) {
            ShapeRun(font, wcText, run, dwFlags, &placed.glyphs);
        } else {
            for (WCHAR wcChar : wcRun) {
                FriBidiChar mirrored = wcChar;
                if (run.level & 1) {
                    fribidi_get_mirror_char(wcChar, &mirrored);
                }
                placed.glyphs.push_back(GlyphOf(font, static_cast<WCHAR>(mirrored)));
            }
        }
        placed.wcChars += wcRun;
    }
    return placed;
}

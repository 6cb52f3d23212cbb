/* Stand-ins for the display's list of font families. A list of the machine's own, the same on every computer. */
#include <set>

#include "hosted/drawing/drawing_state.h"
#include "hosted/drawing/glyph_source.h"
#include "hosted/standin.h"

namespace {

struct Display {
    std::vector<FontFamily> families = {{u"Arial", TRUETYPE_FONTTYPE, 0},
                                        {u"Courier New", TRUETYPE_FONTTYPE, 0},
                                        {u"Times New Roman", TRUETYPE_FONTTYPE, 0},
                                        {u"Symbol", TRUETYPE_FONTTYPE, 2},
                                        {u"Terminal", RASTER_FONTTYPE, 255}};
};

Display& display()
{
    static Display instance;
    return instance;
}

} // namespace

void ResetFonts()
{
    ResetGlyphs();
    display() = Display();
}

void SetFontFamilies(const std::vector<FontFamily>& families)
{
    display().families = families;
}

const std::vector<FontFamily>& FontFamilies()
{
    return display().families;
}

int WINAPI EnumFontFamiliesW(HDC hDc, LPCWSTR wcFamily, FONTENUMPROCW fnEach, LPARAM lParam)
{
    FAILS(EnumFontFamiliesW);
    if (!FindContext(hDc) || wcFamily) {
        return 0; /* nobody asks for one family */
    }
    std::vector<FontFamily> families = display().families;
    if (Lies(CALL_EnumFontFamiliesW, LIE_GROWS)) {
        static int nMore = 0;
        for (int i = ++nMore % 8 + 1; i > 0; i--) {
            families.push_back({u"More" + Widen(std::to_string(i)), TRUETYPE_FONTTYPE, 0});
        }
    }
    int nResult = 1;
    for (const FontFamily& family : families) {
        LOGFONTW font = {};
        family.wcName.copy(font.lfFaceName, LF_FACESIZE - 1);
        if (Lies(CALL_EnumFontFamiliesW, LIE_UNTERMINATED)) {
            std::fill_n(font.lfFaceName, LF_FACESIZE, u'F');
        }
        font.lfCharSet = family.bCharSet;
        nResult = fnEach(&font, nullptr, family.dwType, lParam);
        if (!nResult) {
            break;
        }
    }
    return nResult;
}

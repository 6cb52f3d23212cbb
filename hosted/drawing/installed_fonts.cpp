/* Font files by fontconfig. The list is made once a process: it stays the same, and holds no handle. */
#include "hosted/drawing/installed_fonts.h"

#include <fontconfig/fontconfig.h>

#include <algorithm>
#include <map>
#include <tuple>
#include <vector>

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_TRUETYPE_TABLES_H

#include "hosted/standin.h"

namespace {

struct InstalledFace {
    std::vector<std::string> families; /* small letters */
    std::string path;
    int nIndex, nWeight, nSlant, nWidth; /* FC_* */
    u32 aulCodePages[2];
};

constexpr const char* cConfiguration = "<?xml version=\"1.0\"?><fontconfig><dir>/usr/share/fonts</dir>"
                                       "<cachedir>/var/cache/fontconfig</cachedir></fontconfig>";
constexpr const char* cUsualFamily = "liberation sans";
constexpr const char* cLastFamily = "dejavu sans";

/* Families of Windows, and what has letters of the same widths. */
constexpr const char* aLikeFamilies[][2] = {{"times new roman", "liberation serif"},
                                            {"times", "liberation serif"},
                                            {"tms rmn", "liberation serif"},
                                            {"arial", "liberation sans"},
                                            {"helvetica", "liberation sans"},
                                            {"helv", "liberation sans"},
                                            {"courier new", "liberation mono"},
                                            {"courier", "liberation mono"},
                                            {"arial narrow", "liberation sans narrow"},
                                            {"system", "dejavu sans mono"}};

std::string SmallLetters(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    return text;
}

int Number(FcPattern* pPattern, const char* cObject, int nElse)
{
    double dValue = 0; /* FcPatternGetDouble reads integers, too */
    return FcPatternGetDouble(pPattern, cObject, 0, &dValue) == FcResultMatch ? static_cast<int>(dValue)
                                                                              : nElse;
}

bool ReadFace(FcPattern* pPattern, FT_Library library, InstalledFace* pFace)
{
    FcChar8* cText = nullptr;
    FcBool bVariable = FcFalse;
    if (FcPatternGetString(pPattern, FC_FONTFORMAT, 0, &cText) != FcResultMatch ||
        std::string(reinterpret_cast<char*>(cText)) != "TrueType" ||
        (FcPatternGetBool(pPattern, FC_VARIABLE, 0, &bVariable) == FcResultMatch && bVariable) ||
        FcPatternGetString(pPattern, FC_FILE, 0, &cText) != FcResultMatch) {
        return false;
    }
    pFace->path = reinterpret_cast<char*>(cText);
    for (int i = 0; FcPatternGetString(pPattern, FC_FAMILY, i, &cText) == FcResultMatch; i++) {
        pFace->families.push_back(SmallLetters(reinterpret_cast<char*>(cText)));
    }
    pFace->nIndex = Number(pPattern, FC_INDEX, 0);
    pFace->nWeight = Number(pPattern, FC_WEIGHT, FC_WEIGHT_REGULAR);
    pFace->nSlant = Number(pPattern, FC_SLANT, FC_SLANT_ROMAN);
    pFace->nWidth = Number(pPattern, FC_WIDTH, FC_WIDTH_NORMAL);
    FT_Face face = nullptr;
    if (FT_New_Face(library, pFace->path.c_str(), pFace->nIndex, &face) != 0) {
        return false;
    }
    const auto* pOs2 = static_cast<const TT_OS2*>(FT_Get_Sfnt_Table(face, FT_SFNT_OS2));
    bool bUsable = FT_IS_SCALABLE(face) && FT_IS_SFNT(face);
    pFace->aulCodePages[0] = pOs2 && pOs2->version >= 1 ? static_cast<u32>(pOs2->ulCodePageRange1) : 1;
    pFace->aulCodePages[1] = pOs2 && pOs2->version >= 1 ? static_cast<u32>(pOs2->ulCodePageRange2) : 0;
    FT_Done_Face(face);
    return bUsable;
}

std::vector<InstalledFace> ListFaces()
{
    std::vector<InstalledFace> faces;
    FT_Library library = nullptr;
    FcConfig* pConfig = FcConfigCreate();
    if (FT_Init_FreeType(&library) == 0 && pConfig &&
        FcConfigParseAndLoadFromMemory(pConfig, reinterpret_cast<const FcChar8*>(cConfiguration), FcTrue) &&
        FcConfigBuildFonts(pConfig)) {
        const FcFontSet* pFonts = FcConfigGetFonts(pConfig, FcSetSystem);
        for (int i = 0; pFonts && i < pFonts->nfont; i++) {
            InstalledFace face;
            if (ReadFace(pFonts->fonts[i], library, &face)) {
                faces.push_back(std::move(face));
            }
        }
    }
    if (pConfig) {
        FcConfigDestroy(pConfig);
    }
    FT_Done_FreeType(library);
    std::sort(faces.begin(), faces.end(), [](const InstalledFace& one, const InstalledFace& other) {
        return std::tie(one.path, one.nIndex) < std::tie(other.path, other.nIndex);
    });
    return faces;
}

const std::vector<InstalledFace>& Faces()
{
    static const std::vector<InstalledFace> faces = ListFaces();
    return faces;
}

/* The family's face nearest to what is wanted: the usual width, then the slant, then the weight. */
const InstalledFace* NearestFace(const std::string& family, bool bBold, bool bItalic)
{
    const InstalledFace* pBest = nullptr;
    std::tuple<int, int, int> best;
    for (const InstalledFace& face : Faces()) {
        if (std::find(face.families.begin(), face.families.end(), family) == face.families.end()) {
            continue;
        }
        std::tuple<int, int, int> distance = {
            std::abs(face.nWidth - FC_WIDTH_NORMAL), (face.nSlant != FC_SLANT_ROMAN) != bItalic,
            std::abs(face.nWeight - (bBold ? FC_WEIGHT_BOLD : FC_WEIGHT_REGULAR))};
        if (!pBest || distance < best) {
            pBest = &face;
            best = distance;
        }
    }
    return pBest;
}

const InstalledFace* ChooseFace(const std::string& wanted, u8 bCharSet, bool bBold, bool bItalic)
{
    std::string family = wanted;
    for (const auto& aLike : aLikeFamilies) {
        family = family == aLike[0] && !NearestFace(family, bBold, bItalic) ? aLike[1] : family;
    }
    for (const std::string& candidate : {family, std::string(cUsualFamily), std::string(cLastFamily)}) {
        const InstalledFace* pFace = NearestFace(candidate, bBold, bItalic);
        if (pFace && ClaimsCharSet(pFace->aulCodePages, bCharSet)) {
            return pFace;
        }
    }
    for (const InstalledFace& face : Faces()) {
        if (ClaimsCharSet(face.aulCodePages, bCharSet)) {
            return NearestFace(face.families.front(), bBold, bItalic);
        }
    }
    for (const std::string& candidate : {std::string(cUsualFamily), std::string(cLastFamily)}) {
        if (const InstalledFace* pFace = NearestFace(candidate, bBold, bItalic)) {
            return pFace;
        }
    }
    return Faces().empty() ? nullptr : &Faces().front();
}

bool IsBold(const LOGFONTW& font)
{
    return font.lfWeight > 550;
}

FontFile FileOf(const InstalledFace& face, bool bBold, bool bItalic)
{
    return {face.path,
            face.nIndex,
            bBold && face.nWeight < FC_WEIGHT_DEMIBOLD,
            bItalic && face.nSlant == FC_SLANT_ROMAN,
            {face.aulCodePages[0], face.aulCodePages[1]}};
}

} // namespace

bool FontFile::operator<(const FontFile& other) const
{
    return std::tie(path, nIndex, bBolder, bSlant) <
           std::tie(other.path, other.nIndex, other.bBolder, other.bSlant);
}

bool ClaimsCharSet(const u32 (&aulCodePages)[2], u8 bCharSet)
{
    static constexpr u8 aCharSetBits[][2] = {{0, 0},    {238, 1},  {204, 2},  {161, 3},  {162, 4},  {177, 5},
                                             {178, 6},  {186, 7},  {163, 8},  {222, 16}, {128, 17}, {134, 18},
                                             {129, 19}, {136, 20}, {130, 21}, {2, 31}};
    for (const auto& aRow : aCharSetBits) {
        if (aRow[0] == bCharSet) {
            return aulCodePages[0] >> aRow[1] & 1;
        }
    }
    return bCharSet == 1 || bCharSet == 255; /* the default one and the computer's own: any font will do */
}

bool FindLinkedFile(const LOGFONTW& font, FontFile* pFile)
{
    const InstalledFace* pFace =
        NearestFace(cLastFamily, IsBold(font), false); /* upright it has most letters */
    if (!pFace) {
        return false;
    }
    *pFile = FileOf(*pFace, IsBold(font), font.lfItalic != 0);
    return true;
}

bool FindFontFile(const LOGFONTW& font, FontFile* pFile)
{
    static std::map<std::tuple<std::string, u8, bool, bool>, FontFile> found;
    bool bBold = IsBold(font), bItalic = font.lfItalic != 0;
    const WCHAR* wcEnd = std::find(font.lfFaceName, font.lfFaceName + LF_FACESIZE, u'\0');
    std::string family =
        SmallLetters(Narrow({font.lfFaceName, static_cast<size_t>(wcEnd - font.lfFaceName)}));
    auto key = std::make_tuple(family, font.lfCharSet, bBold, bItalic);
    auto place = found.find(key);
    if (place == found.end()) {
        const InstalledFace* pFace = ChooseFace(family, font.lfCharSet, bBold, bItalic);
        if (!pFace) {
            return false;
        }
        if (found.size() >= 256) {
            found.clear();
        }
        place = found.insert({key, FileOf(*pFace, bBold, bItalic)}).first;
    }
    *pFile = place->second;
    return true;
}

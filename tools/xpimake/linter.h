/* The review of a finished file, spread over the file's sections, the tables as such and the meaning of rows.
 */
#pragma once

#include "xpi_format.h"
#include "xpi_view.h"

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace xpifile {

/* A language to review and those that share its texts. */
struct LintLanguage {
    u16 base;
    u16 id; /* the first of those that were asked for */
};

inline constexpr u64 LONGEST_TEXT = 2048;          /* texts without an end up to here are called broken */
inline constexpr std::size_t MOST_FINDINGS = 1000; /* a damaged file is not worth more */

struct Linter {
    XpiView view;
    std::vector<XpiFinding> findings;
    std::vector<LintLanguage> languages; /* one for each base row that is in use */
    std::map<std::size_t, std::optional<std::size_t>> commandLengths; /* by id; nothing for a broken one */

    void Say(const char* table, long row, const char* field, const std::string& consequence);

    /* Value of a field by its key; the keys are those of the layout table. */
    i64 Model(std::string_view field) const;
    i64 Get(const Table& table, std::size_t row, std::string_view field) const;
    std::size_t Count(std::string_view table) const;
    bool Has(std::string_view table) const;
    std::vector<i64> Column(std::string_view table, std::string_view field) const;

    /* lint_file.cpp */
    void CheckSections();
    void CheckLanguages(std::span<const std::uint16_t> wanted);
    void CheckFonts();
    void CheckBitmaps();
    void CheckColorData();
    void CheckName(const char* table, long row, const Field& field, i64 id);
    void CheckCommand(const char* table, long row, const Field& field, i64 id);

    /* lint_body.cpp */
    void CheckSlots();
    void CheckFields();
    void CheckModel();
    void CheckMemory();
    void CheckAbout();
    void CheckFontTexts();

    /* lint_rows.cpp */
    void CheckPapers();
    void CheckBins();
    void CheckMedia();
    void CheckResolutions();
    void CheckConstraints();
    void CheckMargins();

    /* lint_choices.cpp */
    void CheckFeatures();
    void CheckColorModes();
    void CheckColorOptions();
    void CheckScreens();
};

/* A number in a sentence. */
template <class Integer> std::string Text(Integer number)
{
    return std::to_string(number);
}

} // namespace xpifile

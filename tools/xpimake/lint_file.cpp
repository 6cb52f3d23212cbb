/* Review of the sections of a file: header, texts, commands, fonts, bitmaps, colour data. */
#include "linter.h"

#include <algorithm>

using namespace xpifile;

void Linter::Say(const char* table, long row, const char* field, const std::string& consequence)
{
    if (findings.size() < MOST_FINDINGS) {
        findings.push_back({table, static_cast<int>(row), field, consequence});
    }
}

void Linter::CheckSections()
{
    u64 size = view.file.size();
    if (size < HEADER_BYTES) {
        Say("header", -1, "", "The file ends inside its 64 header bytes; the driver sees an empty model.");
        return;
    }
    u64 body = view.header[BODY], bodyEnd = view.header[STRING_BASES];
    if (body >= size) {
        Say("header", -1, "body",
            "The body begins behind the end of the file; the driver sees an empty model.");
    } else if (body + view.body.size() > size) {
        Say("header", -1, "body", "The file ends inside the body; the missing bytes read as zero.");
    }
    if (bodyEnd < body || bodyEnd - body > MAX_BODY_BYTES) {
        Say("header", -1, "string_bases",
            "The body spans " + Text(static_cast<i64>(bodyEnd) - static_cast<i64>(body)) +
                " bytes, but only the low 16 bits count: the driver loads " + Text(view.body.size()) +
                " bytes of it.");
    }
    if (view.body.size() < FIXED_BODY_BYTES) {
        Say("header", -1, "string_bases",
            "The body is shorter than its 315 fixed bytes; the fields behind its end read as zero.");
    }
    if (view.header[STRING_OFFSETS] < bodyEnd || bodyEnd > size) {
        Say("header", -1, "string_offsets",
            "There is no table of base rows; every text of the model is empty.");
    }
    if (view.header[STRING_BYTES] < view.header[STRING_OFFSETS] || view.header[STRING_BYTES] > size) {
        Say("header", -1, "string_bytes",
            "There is no table of text offsets; every text of the model is empty.");
    }
    if (view.header[COMMAND_BYTES] < view.header[COMMAND_OFFSETS] || view.header[COMMAND_OFFSETS] > size) {
        Say("header", -1, "command_offsets", "There is no table of command offsets; no command is sent.");
    }
    if (view.header[FONT_BYTES] < view.header[COMMAND_BYTES]) {
        Say("header", -1, "font_bytes",
            "The font bytes, which end the commands, begin before them; every command reads as empty.");
    }
}

void Linter::CheckLanguages(std::span<const std::uint16_t> wanted)
{
    std::vector<u16> all;
    for (u16 id = 0; wanted.empty() && id <= 0x7F; id++) {
        all.push_back(id);
    }
    std::map<u16, unsigned> shared;
    unsigned missing = 0;
    u16 firstMissing = 0;
    for (u16 id : wanted.empty() ? std::span<const u16>(all) : wanted) {
        std::optional<u16> base = StringBase(view, id & 0x3FFu);
        if (base) {
            if (shared[*base]++ == 0) {
                languages.push_back({*base, id});
            }
        } else {
            firstMissing = missing++ == 0 ? id : firstMissing;
        }
    }
    if (missing > 0 && view.file.size() >= HEADER_BYTES) {
        Say("strings", -1, "base_rows",
            Text(missing) + (missing == 1 ? " language" : " languages") + " from id " + Text(firstMissing) +
                " on have no base row; every text of the model is empty or foreign in them.");
    }
}

/* A text that a field names, in every language. */
void Linter::CheckName(const char* table, long row, const Field& field, i64 id)
{
    if (id <= 0 || findings.size() == MOST_FINDINGS) {
        return; /* not above 0: a text of the language library */
    }
    std::size_t limit = field.limit ? field.limit : NAME_CHARACTERS;
    bool bin = std::string_view(table) == "input_bins";
    if (bin && !view.image && Has("media_types")) {
        limit--; /* a blank is put before the name */
    }
    std::size_t missing = 0;
    u16 firstMissing = 0;
    for (const LintLanguage& language : languages) {
        std::optional<std::string> text =
            StringRow(view, std::size_t{language.base} + static_cast<std::size_t>(id), LONGEST_TEXT);
        if (!text || text->empty()) {
            firstMissing = missing++ == 0 ? language.id : firstMissing;
        } else if (text->size() >= limit) {
            Say(table, row, field.key,
                "The text has " + Text(text->size()) + " characters in language " + Text(language.id) +
                    " and is cut to " + Text(limit - 1) + ".");
        }
    }
    if (missing > 0) {
        Say(table, row, field.key,
            "Text " + Text(id) + " is missing or empty in language " + Text(firstMissing) +
                (missing > 1 ? " and others" : "") + "; nothing is shown.");
    }
}

/* A command that a field names: there, closed, and short enough for the buffer that takes it. */
void Linter::CheckCommand(const char* table, long row, const Field& field, i64 id)
{
    if (id == 0) {
        return;
    }
    std::size_t limit = field.limit ? field.limit : VALUE_BYTES;
    auto index = static_cast<std::size_t>(id & 0xFFFF);
    auto [known, fresh] = commandLengths.try_emplace(index);
    if (fresh) {
        std::optional<std::string> text = CommandText(view, index, LONGEST_TEXT);
        known->second = text ? std::optional(text->size()) : std::nullopt;
    }
    if (index >= SectionRows(view, COMMAND_OFFSETS, COMMAND_BYTES, 2)) {
        Say(table, row, field.key,
            "There is no command " + Text(id) + "; it reads as empty and is not sent.");
    } else if (!known->second) {
        Say(table, row, field.key,
            "Command " + Text(id) + " has no NUL before the font bytes; it is dropped or cut.");
    } else if (*known->second >= limit) {
        Say(table, row, field.key,
            "Command " + Text(id) + " has " + Text(*known->second) + " bytes where " + Text(limit - 1) +
                " fit; it reads as empty.");
    } else if (*known->second == 0) {
        Say(table, row, field.key, "Command " + Text(id) + " is empty; nothing is sent for it.");
    }
}

void Linter::CheckFonts()
{
    i64 count = Model("res_font_count");
    std::size_t rows = SectionRows(view, FONT_OFFSETS, FONT_BYTES, 4);
    if (count < 0) {
        Say("model", -1, "res_font_count",
            "A negative number of fonts counts as none; the fonts are not offered.");
        return;
    }
    if (count > 0 && static_cast<std::size_t>(count) >= rows) {
        Say("fonts", -1, "",
            "The model counts " + Text(count) + " fonts, but the offset table has " + Text(rows) +
                " rows where one more than the fonts is needed.");
    }
    u64 start = view.header[FONT_BYTES];
    std::size_t total = 0, chunks = count > 0 ? 1 : 0;
    std::size_t fonts = std::min<std::size_t>(static_cast<std::size_t>(count), rows > 0 ? rows - 1 : 0);
    for (std::size_t i = 0; i < fonts; i++) {
        auto row = static_cast<long>(i);
        u64 from = FileNumber(view, view.header[FONT_OFFSETS] + u64{4} * i, 4);
        u64 to = FileNumber(view, view.header[FONT_OFFSETS] + u64{4} * (i + 1), 4);
        if (to < from) {
            Say("fonts", row, "size",
                "The next offset is lower; the size wraps and the font's chunk is unusable.");
            continue;
        }
        if (to - from > 32767) {
            Say("fonts", row, "size",
                "A font of " + Text(to - from) + " bytes is over 32767; no chunk can carry it.");
        }
        if (start + to > view.file.size()) {
            Say("fonts", row, "size", "The font reaches behind the end of the file and is not sent.");
        } else if (to - from < FONT_NAMED_BYTES) {
            Say("fonts", row, "face",
                "The block is too short for a face name and a character set; no face is offered.");
        } else if (FileNumber(view, start + from, 1) == 0) {
            Say("fonts", row, "face", "The face name is empty; no face is offered.");
        }
        std::size_t fontBytes = static_cast<u16>(to - from);
        chunks += total + fontBytes > 32767 ? 1 : 0;
        total = total + fontBytes > 32767 ? fontBytes : total + fontBytes;
    }
    const Table& cells = *FindTable("font_page_cells");
    Extent extent = ExtentOf(view, cells);
    std::size_t room = static_cast<std::size_t>(extent.next - extent.start) / 2;
    if (extent.present && extent.start < FIXED_BODY_BYTES) {
        Say("font_page_cells", -1, "", "The space lies over the fixed fields; the driver does not fill it.");
    } else if (extent.present && room < std::max<std::size_t>(chunks, 1)) {
        Say("font_page_cells", -1, "",
            "The fonts take " + Text(chunks) + " chunks, but there is space for " + Text(room) +
                "; the numbers run over what lies behind.");
    }
}

void Linter::CheckBitmaps()
{
    std::size_t rows = SectionRows(view, BITMAP_OFFSETS, BITMAP_BYTES, 4);
    u64 size = view.file.size();
    for (std::size_t i = 0; i < rows; i++) {
        u64 at = view.header[BITMAP_BYTES] + FileNumber(view, view.header[BITMAP_OFFSETS] + u64{4} * i, 4);
        u64 length = FileNumber(view, at + 2, 4);
        if (at + 14 > size || FileNumber(view, at, 2) != 0x4D42 || length < 14 || at + length > size) {
            Say("bitmaps", static_cast<long>(i), "bytes",
                "This is no whole BMP file; the picture is not shown.");
        }
    }
}

void Linter::CheckColorData()
{
    u64 size = view.header[COLOR_SIZE];
    if (size > 65535) {
        Say("color_data", -1, "",
            "Only the low 16 bits of the size count: " + Text(size & 0xFFFF) + " of " + Text(size) +
                " bytes are used.");
    }
    if (size > 0 && view.header[COLOR_DATA] + size > view.file.size()) {
        Say("color_data", -1, "",
            "The colour data reaches behind the end of the file; the colour commands are lost.");
    }
}

std::vector<XpiFinding> LintXpi(std::span<const std::uint8_t> file, std::span<const std::uint16_t> languages)
{
    Linter linter;
    linter.view = OpenView(file);
    linter.CheckSections();
    linter.CheckLanguages(languages);
    linter.CheckSlots();
    linter.CheckFields();
    linter.CheckModel();
    linter.CheckPapers();
    linter.CheckBins();
    linter.CheckMedia();
    linter.CheckMemory();
    linter.CheckAbout();
    linter.CheckFontTexts();
    linter.CheckConstraints();
    linter.CheckMargins();
    linter.CheckResolutions();
    linter.CheckFeatures();
    linter.CheckColorModes();
    linter.CheckColorOptions();
    linter.CheckScreens();
    linter.CheckFonts();
    linter.CheckBitmaps();
    linter.CheckColorData();
    return linter.findings;
}

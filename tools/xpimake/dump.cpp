/* The dump: a file back to the canonical text that compiles to the same bytes. */
#include "ansi_text.h"
#include "xpi_format.h"
#include "xpi_view.h"

#include <algorithm>
#include <cstdio>

using namespace xpifile;

namespace {

constexpr std::size_t PIECE_BYTES = 48;

struct Dumper {
    XpiView view;
    std::string text;
    std::size_t budget = 0; /* a damaged file may name the same bytes many times; the work ends somewhere */
    std::size_t spent = 0;  /* bytes looked at that did not become text */
    std::size_t names = 0;  /* texts of the first language */
    std::size_t commands = 0;

    bool Room() { return text.size() + spent < budget; }
    std::string Number(i64 value, const Field& field);
    std::string Value(u64 rowOffset, const Field& field);
    std::string Row(u64 rowOffset, const Table& table, bool closing);
    std::string ListKey(const Table& table, i64 firstRow);
    void Model();
    void RowTable(const Table& table);
    void ListTable(const Table& table);
    void PairTable(const Table& table);
    void Strings();
    void Commands();
    void Font(std::span<const u8> block);
    void Blocks(const char* section, Section table, Section bytes, u64 end, bool endRow);
    void ColorData();
    void Run();
};

/* Rows of a table of lists that lie before the next table; zero rows end the lists. */
std::size_t AllRows(const XpiView& view, const Table& table)
{
    Extent extent = ExtentOf(view, table);
    return extent.present
               ? static_cast<std::size_t>((extent.next - extent.start) / RowBytes(table, view.image))
               : 0;
}

/* "v12" for a list that begins at row 12; empty when no list does. */
std::string Dumper::ListKey(const Table& table, i64 firstRow)
{
    if (firstRow < 0 || static_cast<std::size_t>(firstRow) >= AllRows(view, table)) {
        return "";
    }
    auto first = static_cast<std::size_t>(firstRow);
    bool start = first == 0 || BodyNumber(view, RowOffset(view, table, first - 1), table.endBytes) == 0;
    return start ? "v" + std::to_string(first) : "";
}

std::string Dumper::Number(i64 value, const Field& field)
{
    for (const EnumName& name : field.names) {
        if (value == name.value) {
            return std::string("\"") + name.name + '"';
        }
    }
    auto known = static_cast<u64>(value);
    if (field.kind == Kind::Name && value > 0 && known <= names) {
        return "\"s" + std::to_string(value) + '"';
    }
    if ((field.kind == Kind::Command || field.kind == Kind::Number) && value > 0 && known <= commands) {
        return "\"c" + std::to_string(value) + '"';
    }
    if (field.kind == Kind::ListStart) {
        std::string key = ListKey(*FindTable(field.list), value);
        return key.empty() ? std::to_string(value) : '"' + key + '"';
    }
    if (field.kind == Kind::Flags) {
        char hex[20];
        std::snprintf(hex, sizeof hex, "0x%llX", static_cast<unsigned long long>(value));
        return hex;
    }
    return std::to_string(value);
}

/* The value of a field as TOML; empty when it is what an absent field means. */
std::string Dumper::Value(u64 rowOffset, const Field& field)
{
    if (field.kind == Kind::Text) {
        std::string narrow = FieldText(view, rowOffset, field);
        return narrow.empty() ? "" : QuoteAnsi(narrow.substr(0, field.width - 1u));
    }
    if (field.kind == Kind::Papers) {
        std::string codes;
        for (unsigned code = 0; code < 256; code++) {
            if (BodyNumber(view, rowOffset + field.offset + code / 8, 1) & 0x80u >> code % 8) {
                codes += (codes.empty() ? "[" : ", ") + std::to_string(code);
            }
        }
        return codes.empty() ? "" : codes + "]";
    }
    i64 value = FieldValue(view, rowOffset, field);
    bool quiet = field.kind == Kind::Used
                     ? value == 1
                     : value == 0 && field.kind != Kind::ListStart && field.names.empty();
    return quiet ? "" : Number(value, field);
}

std::string Dumper::Row(u64 rowOffset, const Table& table, bool closing)
{
    std::string row;
    for (const Field& field : table.fields) {
        bool used =
            field.kind != Kind::Slice && FieldApplies(field, view.image) && !(closing && field.offset == 0);
        std::string value = used ? Value(rowOffset, field) : "";
        if (!value.empty()) {
            row += (row.empty() ? "{ " : ", ") + std::string(field.key) + " = " + value;
        }
    }
    return row.empty() ? "{}" : row + " }";
}

void Dumper::Model()
{
    text += "[model]\n";
    for (const Field& field : MODEL_FIELDS) {
        std::string value = Value(0, field);
        if (!value.empty() || std::string_view(field.key) == "res_font_count") {
            text += std::string(field.key) + " = " + (value.empty() ? "0" : value) + '\n';
        }
    }
    for (const Table& table : TABLES) {
        Extent extent = ExtentOf(view, table);
        if (!extent.present || HasSection(table)) {
            continue;
        }
        if (extent.start >= view.body.size()) {
            text += std::string("# ") + table.key + ": the slot points behind the body\n";
            continue;
        }
        text += std::string(table.key) + " = ";
        if (table.form == Form::Text) {
            u64 end = extent.start;
            std::string narrow;
            for (char c; (c = static_cast<char>(BodyNumber(view, end, 1))) != '\0'; end++) {
                narrow += c;
            }
            text += QuoteAnsi(narrow) + '\n';
        } else if (table.form == Form::Space) {
            text += std::to_string(std::max<u64>((extent.next - extent.start) / 2, 1)) + '\n';
        } else {
            std::string ids;
            for (u64 at = extent.start; at + 2 <= extent.next || ids.empty(); at += 2) {
                ids += (ids.empty() ? "[" : ", ") +
                       Number(FieldValue(view, at, table.fields[0]), table.fields[0]);
            }
            text += ids + "]\n";
        }
    }
}

void Dumper::RowTable(const Table& table)
{
    std::size_t rows = CountRows(view, table);
    text += "rows = [\n";
    for (std::size_t i = 0; i < rows && Room(); i++) {
        text += "    " + Row(RowOffset(view, table, i), table, false) + ",\n";
    }
    text += "]\n";
    std::string closing = Row(RowOffset(view, table, rows), table, true);
    if (table.form == Form::ClosingRows && closing != "{}") {
        text += "closing = " + closing + '\n';
    }
}

void Dumper::ListTable(const Table& table)
{
    std::size_t all = AllRows(view, table);
    for (std::size_t i = 0; i < all && Room();) {
        text += ListKey(table, static_cast<i64>(i)) + " = [";
        bool some = false;
        while (i < all && BodyNumber(view, RowOffset(view, table, i), table.endBytes) != 0) {
            text += std::string(some ? "" : "\n") + "    " + Row(RowOffset(view, table, i++), table, false) +
                    ",\n";
            some = true;
        }
        text += i < all ? "]\n" : "] # the last list has no closing row\n";
        i++;
    }
}

void Dumper::PairTable(const Table& table)
{
    u64 at = ExtentOf(view, table).start;
    auto next = [&] {
        std::string narrow;
        for (char c; (c = static_cast<char>(BodyNumber(view, at, 1))) != '\0'; at++) {
            narrow += c;
        }
        at++;
        return narrow;
    };
    text += "rows = [\n";
    for (std::string screen = next(); !screen.empty() && Room(); screen = next()) {
        std::string device = next();
        if (device.empty()) {
            text += "    # " + QuoteAnsi(screen) + " has no device font\n";
        } else {
            text += "    { screen = " + QuoteAnsi(screen) + ", device = " + QuoteAnsi(device) + " },\n";
        }
    }
    text += "]\n";
}

/* The first language is one whose base row is 0; each other base that occurs is a language with texts. */
void Dumper::Strings()
{
    std::size_t bases =
        std::min<std::size_t>(SectionRows(view, STRING_BASES, STRING_OFFSETS, 2), LANGUAGE_ROWS);
    std::size_t rows = SectionRows(view, STRING_OFFSETS, STRING_BYTES, 2);
    if (bases == 0 || rows == 0) {
        return;
    }
    if (bases != LANGUAGE_ROWS) {
        text += "\n[strings]\nbase_rows = " + std::to_string(bases) + '\n';
    }
    int first = -1;
    for (unsigned id : {9u, 7u}) {
        first = first < 0 && StringBase(view, id) == u16{0} ? static_cast<int>(id) : first;
    }
    std::vector<std::pair<unsigned, unsigned>> others; /* base, language */
    for (unsigned id = 0; id < bases; id++) {
        unsigned base = *StringBase(view, id);
        if (base == 0 && first < 0 && (id > 0 || bases == 1)) {
            first = static_cast<int>(id);
        } else if (base != 0) {
            others.emplace_back(base, id);
        }
    }
    std::sort(others.begin(), others.end());
    if (first < 0) {
        text += "# no language has its base at row 0\n";
        return;
    }
    others.insert(others.begin(), {0, static_cast<unsigned>(first)});
    for (const auto& [base, language] : others) {
        text += "\n[strings." + LanguageKey(language) + "]\n";
        for (std::size_t id = 1; id <= names && Room(); id++) {
            std::optional<std::string> narrow = StringRow(view, base + id);
            if (base != 0 && narrow == StringRow(view, id)) {
                spent += narrow.value_or("").size() + 16;
                continue;
            }
            text += 's' + std::to_string(id) + " = " + QuoteAnsi(narrow.value_or("")) + '\n';
        }
    }
}

void Dumper::Commands()
{
    if (commands > 0) {
        text += "\n[commands]\n";
    }
    for (std::size_t id = 1; id <= commands && Room(); id++) {
        std::optional<std::string> command = CommandText(view, id);
        text += 'c' + std::to_string(id) + " = " + QuoteAnsi(command.value_or("")) +
                (command ? "\n" : " # the file has no such text\n");
    }
}

/* A font block by face, character set and filling if that says it all, else byte by byte. */
void Dumper::Font(std::span<const u8> block)
{
    auto uniform = [](std::span<const u8> part) {
        return std::all_of(part.begin(), part.end(), [&](u8 byte) { return byte == part[0]; });
    };
    auto nul = std::find(block.begin(), block.end(), u8{0}) - block.begin();
    auto length = static_cast<std::size_t>(nul);
    bool named = block.size() >= FONT_NAMED_BYTES && length > 0 && length < FONT_FACE_BYTES &&
                 uniform(block.subspan(length, FONT_FACE_BYTES - length)) &&
                 uniform(block.subspan(FONT_NAMED_BYTES));
    u8 fill = 0;
    text += "    { ";
    if (named) {
        std::string face(block.begin(), block.begin() + nul);
        text += "face = " + QuoteAnsi(face) + ", charset = " + std::to_string(block[FONT_FACE_BYTES]) + ", ";
        fill = block.size() > FONT_NAMED_BYTES ? block[FONT_NAMED_BYTES] : u8{0};
    } else if (uniform(block)) {
        fill = block.empty() ? u8{0} : block[0];
    } else {
        text += "bytes = \"" + ToHex(block) + "\" },\n";
        return;
    }
    text += "size = " + std::to_string(block.size());
    text += fill ? ", fill = " + std::to_string(fill) + " },\n" : " },\n";
}

/* Fonts and bitmaps: a table of u32 offsets and the blocks behind it. The last bitmap ends at `end`; fonts
   have a row more for that. */
void Dumper::Blocks(const char* section, Section table, Section bytes, u64 end, bool endRow)
{
    std::size_t rows = SectionRows(view, table, bytes, 4);
    u64 start = view.header[bytes];
    auto offsetOf = [&](std::size_t row) {
        return start + FileNumber(view, view.header[table] + u64{4} * row, 4);
    };
    std::size_t blocks = endRow && rows > 0 ? rows - 1 : rows;
    if (blocks == 0) {
        return;
    }
    text += std::string("\n[") + section + "]\nrows = [\n";
    for (std::size_t i = 0; i < blocks && Room(); i++) {
        u64 size = view.file.size();
        u64 from = std::min<u64>(offsetOf(i), size);
        u64 to = std::min<u64>(i + 1 < rows ? offsetOf(i + 1) : end, size);
        if (to < from) {
            text += "    # the block ends before it begins\n";
            to = from;
        }
        std::span<const u8> block = view.file.subspan(from, to - from);
        spent += block.size();
        if (endRow) {
            Font(block);
        } else {
            text += "    { bytes = \"" + ToHex(block) + "\" },\n";
        }
    }
    text += "]\n";
}

void Dumper::ColorData()
{
    u64 start = std::min<u64>(view.header[COLOR_DATA], view.file.size());
    u64 end = std::min<u64>(start + view.header[COLOR_SIZE], view.file.size());
    if (start < end) {
        text += "\n[color_data]\n";
    }
    for (u64 at = start; at < end && Room(); at += PIECE_BYTES) {
        std::span<const u8> piece = view.file.subspan(at, std::min<u64>(PIECE_BYTES, end - at));
        text += 'd' + std::to_string(at - start) + " = " +
                QuoteAnsi(std::string(piece.begin(), piece.end())) + '\n';
    }
}

void Dumper::Run()
{
    budget = 0x800000 + 8 * view.file.size();
    std::size_t rows = SectionRows(view, STRING_OFFSETS, STRING_BYTES, 2);
    std::size_t limit = rows > 0 ? std::min<std::size_t>(rows - 1, 32767) : 0;
    names = limit;
    for (unsigned id = 0; id < LANGUAGE_ROWS; id++) {
        std::size_t base = StringBase(view, id).value_or(0);
        names = base > 0 ? std::min(names, base) : names;
    }
    rows = SectionRows(view, COMMAND_OFFSETS, COMMAND_BYTES, 2);
    commands = rows > 0 ? rows - 1 : 0;
    if (view.file.size() < HEADER_BYTES) {
        text += "# The file is too short for a header.\n";
    }
    Model();
    for (const Table& table : TABLES) {
        Extent extent = ExtentOf(view, table);
        if (!extent.present || !HasSection(table)) {
            continue;
        }
        text += std::string("\n[") + table.key + "]\n";
        if (extent.start >= view.body.size()) {
            text += "# the slot points behind the body\n";
        }
        switch (table.form) {
        case Form::Lists: ListTable(table); break;
        case Form::Pairs: PairTable(table); break;
        default: RowTable(table); break;
        }
    }
    Strings();
    Commands();
    Blocks("fonts", FONT_OFFSETS, FONT_BYTES, 0, true);
    Blocks("bitmaps", BITMAP_OFFSETS, BITMAP_BYTES, view.header[COLOR_DATA], false);
    ColorData();
    if (!Room()) {
        text += "# The text has been cut here.\n";
    }
}

} // namespace

std::string DumpXpi(std::span<const std::uint8_t> file)
{
    Dumper dumper;
    dumper.view = OpenView(file);
    dumper.Run();
    return dumper.text;
}

/* Bounded reading of a finished file. */
#include "xpi_view.h"

#include "xpi_format.h"

#include <algorithm>
#include <bit>
#include <cstdio>
#include <cstring>

namespace xpifile {

static_assert(std::endian::native == std::endian::little);

static u64 Number(std::span<const u8> bytes, u64 offset, std::size_t width)
{
    u64 value = 0;
    if (offset + width <= bytes.size() && offset <= bytes.size()) {
        std::memcpy(&value, bytes.data() + offset, width); /* the usual case; the tools run little-endian */
        return value;
    }
    for (std::size_t i = 0; i < width; i++) {
        if (offset + i < bytes.size()) {
            value |= static_cast<u64>(bytes[offset + i]) << (8 * i);
        }
    }
    return value;
}

u64 FileNumber(const XpiView& view, u64 offset, std::size_t width)
{
    return Number(view.file, offset, width);
}

u64 BodyNumber(const XpiView& view, u64 offset, std::size_t width)
{
    return Number(view.body, offset, width);
}

XpiView OpenView(std::span<const u8> file)
{
    XpiView view;
    view.file = file;
    for (unsigned i = 0; i < view.header.size(); i++) {
        view.header[i] = static_cast<u32>(FileNumber(view, u64{4} * i, 4));
    }
    view.body.assign((view.header[STRING_BASES] - view.header[BODY]) & 0xFFFF, 0);
    u64 start = std::min<u64>(view.header[BODY], file.size());
    std::size_t there = std::min<std::size_t>(view.body.size(), file.size() - start);
    std::copy_n(file.begin() + static_cast<std::ptrdiff_t>(start), there, view.body.begin());
    view.image = FieldValue(view, 0, MODEL_FIELDS[0]) == IMAGE_KIND;
    return view;
}

i64 FieldValue(const XpiView& view, u64 rowOffset, const Field& field)
{
    u64 value = BodyNumber(view, rowOffset + field.offset, field.width);
    bool isSigned = field.kind == Kind::Signed || field.kind == Kind::Name || field.kind == Kind::Command ||
                    field.kind == Kind::ListStart;
    u64 top = u64{1} << (8 * field.width - 1);
    return isSigned && (value & top) ? static_cast<i64>(value) - static_cast<i64>(top << 1)
                                     : static_cast<i64>(value);
}

std::string FieldText(const XpiView& view, u64 rowOffset, const Field& field)
{
    std::string text;
    for (std::size_t i = 0; i < field.width; i++) {
        char c = static_cast<char>(BodyNumber(view, rowOffset + field.offset + i, 1));
        if (c == '\0') {
            break;
        }
        text += c;
    }
    return text;
}

Extent ExtentOf(const XpiView& view, const Table& table)
{
    Extent extent;
    extent.present = BodyNumber(view, table.slot, 8) != 0;
    extent.start = BodyNumber(view, table.slot, 4);
    extent.next = std::max<u64>(extent.start, view.body.size());
    for (const Table& other : TABLES) {
        u64 start = BodyNumber(view, other.slot, 4);
        if (start > extent.start && BodyNumber(view, other.slot, 8) != 0) {
            extent.next = std::min(extent.next, start);
        }
    }
    return extent;
}

u64 RowOffset(const XpiView& view, const Table& table, std::size_t row)
{
    return BodyNumber(view, table.slot, 4) + u64{row} * RowBytes(table, view.image);
}

std::size_t CountRows(const XpiView& view, const Table& table)
{
    std::size_t rows = 0;
    if (BodyNumber(view, table.slot, 8) != 0) {
        while (RowOffset(view, table, rows + 1) <= view.body.size() &&
               BodyNumber(view, RowOffset(view, table, rows), table.endBytes) != 0) {
            rows++;
        }
    }
    return rows;
}

std::size_t CountList(const XpiView& view, const Table& table, i64 firstRow, bool& closed)
{
    std::size_t rows = 0;
    closed = false;
    if (firstRow < 0 || BodyNumber(view, table.slot, 8) == 0) {
        return 0;
    }
    auto first = static_cast<std::size_t>(firstRow);
    while (RowOffset(view, table, first + rows + 1) <= view.body.size()) {
        if (BodyNumber(view, RowOffset(view, table, first + rows), table.endBytes) == 0) {
            closed = true;
            break;
        }
        rows++;
    }
    return rows;
}

std::size_t SectionRows(const XpiView& view, Section first, Section behind, std::size_t width)
{
    u64 start = view.header[first];
    u64 end = std::min<u64>(view.header[behind], view.file.size());
    return start < end ? static_cast<std::size_t>((end - start) / width) : 0;
}

std::optional<std::string> TextAt(const XpiView& view, u64 offset, u64 end, u64 most)
{
    end = std::min<u64>(end, view.file.size());
    if (offset >= end) {
        return std::nullopt;
    }
    end = offset + std::min(end - offset, most);
    auto first = view.file.begin() + static_cast<std::ptrdiff_t>(offset);
    auto last = view.file.begin() + static_cast<std::ptrdiff_t>(end);
    auto nul = std::find(first, last, u8{0});
    return nul == last ? std::nullopt : std::optional<std::string>(std::string(first, nul));
}

std::optional<u16> StringBase(const XpiView& view, unsigned language)
{
    if (language >= SectionRows(view, STRING_BASES, STRING_OFFSETS, 2)) {
        return std::nullopt;
    }
    return static_cast<u16>(FileNumber(view, view.header[STRING_BASES] + u64{2} * language, 2));
}

std::optional<std::string> StringRow(const XpiView& view, std::size_t row, u64 most)
{
    if (row >= SectionRows(view, STRING_OFFSETS, STRING_BYTES, 2)) {
        return std::nullopt;
    }
    u64 offset = FileNumber(view, view.header[STRING_OFFSETS] + u64{2} * row, 2);
    return TextAt(view, view.header[STRING_BYTES] + offset, view.file.size(), most);
}

std::optional<std::string> CommandText(const XpiView& view, std::size_t id, u64 most)
{
    if (id >= SectionRows(view, COMMAND_OFFSETS, COMMAND_BYTES, 2)) {
        return std::nullopt;
    }
    u64 offset = FileNumber(view, view.header[COMMAND_OFFSETS] + u64{2} * id, 2);
    return TextAt(view, view.header[COMMAND_BYTES] + offset, view.header[FONT_BYTES], most);
}

} // namespace xpifile

bool ReadXpiBytes(const std::string& path, std::vector<std::uint8_t>& bytes)
{
    bytes.clear();
    std::FILE* file = std::fopen(path.c_str(), "rb");
    if (!file) {
        return false;
    }
    std::uint8_t piece[65536];
    for (std::size_t got; (got = std::fread(piece, 1, sizeof piece, file)) > 0;) {
        bytes.insert(bytes.end(), piece, piece + got);
    }
    bool whole = std::ferror(file) == 0; /* a folder opens, but does not read */
    std::fclose(file);
    return whole;
}

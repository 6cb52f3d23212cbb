/* Bounded reading of a finished file, as the driver reads it: what lies outside the file or the body is zero.
 */
#pragma once

#include "xpi_layout.h"

#include <array>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace xpifile {

struct XpiView {
    std::span<const u8> file;
    std::array<u32, 16> header = {};
    std::vector<u8> body; /* as many bytes as the driver loads, zero where the file has ended */
    bool image = false;
};

XpiView OpenView(std::span<const u8> file);

/* A little-endian number of 1 to 8 bytes; bytes outside count as zero. */
u64 FileNumber(const XpiView& view, u64 offset, std::size_t width);
u64 BodyNumber(const XpiView& view, u64 offset, std::size_t width);

/* The value of a number field of the row at a body offset, with its sign where the field has one. */
i64 FieldValue(const XpiView& view, u64 rowOffset, const Field& field);

/* Narrow text of a fixed-width field of the row. */
std::string FieldText(const XpiView& view, u64 rowOffset, const Field& field);

struct Extent {
    bool present = false; /* any of the slot's eight bytes is set */
    u64 start = 0;        /* body offset; may lie behind the body */
    u64 next = 0;         /* where the next table or the body ends it at the latest; never below start */
};
Extent ExtentOf(const XpiView& view, const Table& table);

/* Rows before the first one whose end mark is zero, all of them inside the body. */
std::size_t CountRows(const XpiView& view, const Table& table);

/* Rows of the list that begins at a row of a table of lists. `closed` says whether a zero row inside the body
   ends it. A negative first row gives an empty, open list. */
std::size_t CountList(const XpiView& view, const Table& table, i64 firstRow, bool& closed);

u64 RowOffset(const XpiView& view, const Table& table, std::size_t row);

/* Whole rows of `width` bytes between two sections, cut at the end of the file. */
std::size_t SectionRows(const XpiView& view, Section first, Section behind, std::size_t width);

inline constexpr u64 ANY_LENGTH = ~u64{0};

/* The narrow text at a file offset up to its NUL. Nothing without a NUL before `end`, the end of the file and
   `most` bytes. */
std::optional<std::string> TextAt(const XpiView& view, u64 offset, u64 end, u64 most = ANY_LENGTH);

/* Base row of a language; nothing when the table of bases does not reach that far. */
std::optional<u16> StringBase(const XpiView& view, unsigned language);

/* The text in a row of the string offset table. Nothing when row or text are not in the file. */
std::optional<std::string> StringRow(const XpiView& view, std::size_t row, u64 most = ANY_LENGTH);

/* The text of a command, held before the font bytes. Nothing when id or text are not in the file. */
std::optional<std::string> CommandText(const XpiView& view, std::size_t id, u64 most = ANY_LENGTH);

} // namespace xpifile

/* The layout of a description file, once, for the compiler, the dump and the review.

   HEADER, sixteen u32: 8 body, 12 string bases (end of the body), 16 string offsets, 20 string bytes,
   24 command offsets, 28 command bytes, 32 font offsets, 36 font bytes (end of the commands), 40 bitmap
   offsets, 44 bitmap bytes, 48 colour data, 52 size of the colour data. All little-endian, all else zero.
   BODY, 315 fixed bytes, then the tables. A table hangs from an 8-byte slot: low half the offset from the
   start of the body, all zero when the table is absent. */
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace xpifile {

using u8 = std::uint8_t;
using u16 = std::uint16_t;
using u32 = std::uint32_t;
using u64 = std::uint64_t;
using i64 = std::int64_t;

enum Section : unsigned {
    BODY = 2,
    STRING_BASES = 3,
    STRING_OFFSETS = 4,
    STRING_BYTES = 5,
    COMMAND_OFFSETS = 6,
    COMMAND_BYTES = 7,
    FONT_OFFSETS = 8,
    FONT_BYTES = 9,
    BITMAP_OFFSETS = 10,
    BITMAP_BYTES = 11,
    COLOR_DATA = 12,
    COLOR_SIZE = 13,
};
inline constexpr std::size_t HEADER_BYTES = 64;
inline constexpr std::size_t FIXED_BODY_BYTES = 315;
inline constexpr std::size_t MAX_BODY_BYTES = 65535;
inline constexpr std::size_t FONT_FACE_BYTES = 32;  /* face name at the start of a font block, NUL padded */
inline constexpr std::size_t FONT_NAMED_BYTES = 33; /* the face and its character set */
inline constexpr std::size_t LANGUAGE_ROWS = 1024;  /* every value of the low 10 bits of a LANGID */
inline constexpr i64 IMAGE_KIND = 3;

enum class Kind : u8 {
    Used, /* non-zero in every row that counts; written as 1 when not named */
    Signed,
    Unsigned,
    Flags,     /* unsigned, dumped in hexadecimal */
    Name,      /* string id: a key of [strings], or a number; 0 and below are the language library's */
    Command,   /* command id: a key of [commands], or a number */
    Number,    /* u32 that may also be a command id */
    Text,      /* narrow text in a field of fixed width, NUL padded */
    Papers,    /* 256 bits, high bit first: a list of paper codes */
    ListStart, /* row number in a table of lists: the list's key, or a number */
    Slice, /* offset and length of a piece of [color_data], by its key; a second way to write two numbers */
};

enum class Only : u8 { Always, Image, NotImage };

struct EnumName {
    i64 value;
    const char* name;
};

struct Field {
    const char* key;
    u16 offset;
    u8 width;
    Kind kind;
    Only only = Only::Always;
    u16 limit = 0;              /* Name: characters, Command: bytes, both with the NUL; 0 the widest */
    const char* list = nullptr; /* ListStart: the table of lists */
    std::span<const EnumName> names = {}; /* values that have a name of their own */
};

enum class Form : u8 {
    Rows,        /* closed by a row whose first field is zero */
    ClosingRows, /* the same, and the closing row carries data */
    Lists,       /* lists one behind the other, each closed by a row whose first field is zero */
    Ids,         /* u16 ids without an end mark */
    Text,        /* one narrow string */
    Space,       /* u16 cells that the driver fills at load */
    Pairs,       /* narrow strings two by two, closed by an empty one */
};

struct Table {
    const char* key;
    u16 slot;
    u8 rowBytes;
    u8 endBytes; /* width of the first field, which ends the table at zero */
    Form form;
    std::span<const Field> fields;
};

inline constexpr u16 NAME_CHARACTERS = 128; /* text buffer of most lists */
inline constexpr u16 VALUE_BYTES = 128;     /* keys and values of job lines */
inline constexpr u16 LINE_BYTES = 512;      /* commands that are sent as they stand */
inline constexpr u16 PCL_NAME_CHARACTERS = 14;

inline constexpr EnumName LANGUAGE_NAMES[] = {
    {0, "pcl6"}, {1, "pcl5"}, {2, "postscript"}, {3, "image"}, {4, "image2"}};
inline constexpr EnumName TARGET_NAMES[] = {{1, "text"}, {2, "image"}, {3, "graphics"}, {4, "general"}};

/* Fixed part of the body; [model] in the text. */
inline constexpr Field MODEL_FIELDS[] = {
    {"language", 2, 2, Kind::Unsigned, Only::Always, 0, nullptr, LANGUAGE_NAMES},
    {"language_level", 4, 2, Kind::Unsigned},
    {"min_custom_width", 16, 2, Kind::Signed},
    {"max_custom_width", 18, 2, Kind::Signed},
    {"min_custom_length", 20, 2, Kind::Signed},
    {"max_custom_length", 22, 2, Kind::Signed},
    {"std_inputs", 56, 4, Kind::Flags},
    {"std_outputs", 60, 4, Kind::Flags},
    {"std_options", 64, 4, Kind::Flags},
    {"opt_inputs", 68, 4, Kind::Flags},
    {"opt_outputs", 72, 4, Kind::Flags},
    {"opt_options", 76, 4, Kind::Flags},
    {"more_inputs", 80, 4, Kind::Flags},
    {"more_outputs", 84, 4, Kind::Flags},
    {"more_options", 88, 4, Kind::Flags},
    {"std_memory", 92, 2, Kind::Signed},
    {"opt_memory", 94, 2, Kind::Unsigned},
    {"default_bin", 116, 2, Kind::Unsigned},
    {"default_output_bin", 118, 2, Kind::Command, Only::Always, VALUE_BYTES},
    {"default_resolution", 120, 2, Kind::Signed},
    {"default_font_size", 122, 2, Kind::Signed},
    {"res_font_count", 156, 2, Kind::Signed},
    {"output_bin_command", 182, 2, Kind::Command, Only::Always, VALUE_BYTES},
    {"collate_command", 184, 2, Kind::Command, Only::Always, 12},
    {"disk_memory", 186, 2, Kind::Signed},
    {"language_features", 216, 4, Kind::Flags},
    {"intent_mask", 276, 4, Kind::Flags},
    {"default_color_mode", 280, 2, Kind::Unsigned},
    {"web_link_command", 282, 2, Kind::Command, Only::Always, 256},
    {"default_screen", 292, 2, Kind::Unsigned},
    {"default_color_format", 298, 4, Kind::Flags},
    {"color_class", 302, 2, Kind::Unsigned},
    {"default_intent", 306, 4, Kind::Unsigned},
    {"preview_label", 310, 2, Kind::Name},
    {"default_media", 312, 2, Kind::Signed},
    {"model_flags", 314, 1, Kind::Flags},
};

inline constexpr Field PAPER_FIELDS[] = {
    {"name", 0, 2, Kind::Name, Only::Always, 64},
    {"code", 2, 2, Kind::Signed},
    {"width", 4, 2, Kind::Signed},
    {"length", 6, 2, Kind::Signed},
    {"metric", 8, 2, Kind::Signed},
    {"envelope", 10, 2, Kind::Signed},
    {"pcl_code", 12, 2, Kind::Signed},
    {"companion", 14, 2, Kind::Signed},
    {"pcl_name", 16, 32, Kind::Text},
};
inline constexpr Field INPUT_BIN_FIELDS[] = {
    {"mask", 0, 4, Kind::Flags},
    {"id", 4, 2, Kind::Unsigned},
    {"name", 6, 2, Kind::Name, Only::Always, 24},
};
inline constexpr Field OUTPUT_BIN_FIELDS[] = {
    {"mask", 0, 4, Kind::Flags},
    {"command", 4, 2, Kind::Command, Only::Always, VALUE_BYTES},
    {"name", 6, 2, Kind::Name},
};
inline constexpr Field OPTION_FIELDS[] = {
    {"mask", 0, 4, Kind::Flags},
    {"name", 4, 2, Kind::Name},
};
inline constexpr Field MEDIA_FIELDS[] = {
    {"mask", 0, 4, Kind::Flags},
    {"name", 4, 2, Kind::Name, Only::Always, 64},
    {"command", 6, 2, Kind::Command, Only::Always, LINE_BYTES},
    {"data_name", 8, 32, Kind::Text},
    {"code", 40, 4, Kind::Unsigned},
};
inline constexpr Field MEMORY_FIELDS[] = {
    {"key", 0, 2, Kind::Unsigned},
    {"value", 2, 2, Kind::Unsigned},
};
inline constexpr Field ABOUT_FIELDS[] = {
    {"name", 0, 2, Kind::Name},
};
inline constexpr Field CONSTRAINT_FIELDS[] = {
    {"used", 0, 2, Kind::Used},          {"papers", 4, 32, Kind::Papers},
    {"min_width", 36, 2, Kind::Signed},  {"max_width", 38, 2, Kind::Signed},
    {"min_length", 40, 2, Kind::Signed}, {"max_length", 42, 2, Kind::Signed},
    {"inputs", 44, 4, Kind::Flags},      {"outputs", 48, 4, Kind::Flags},
    {"media", 52, 4, Kind::Flags},       {"options", 56, 4, Kind::Flags},
    {"message", 60, 2, Kind::Name},
};
inline constexpr Field MARGIN_FIELDS[] = {
    {"used", 0, 2, Kind::Used},
    {"papers", 2, 32, Kind::Papers},
    {"min_width", 34, 2, Kind::Signed},
    {"max_width", 36, 2, Kind::Signed},
    {"min_length", 38, 2, Kind::Signed},
    {"max_length", 40, 2, Kind::Signed},
    {"modes", 42, 2, Kind::Unsigned},
    {"resolution", 44, 2, Kind::Signed},
    {"margin_x", 46, 2, Kind::Signed},
    {"margin_y", 48, 2, Kind::Signed},
    {"margin_x_rotated", 50, 2, Kind::Signed},
    {"margin_y_rotated", 52, 2, Kind::Signed},
};
inline constexpr Field RESOLUTION_FIELDS[] = {
    {"used", 0, 4, Kind::Used},
    {"dpi", 4, 2, Kind::Signed},
    {"command", 6, 2, Kind::Command, Only::Always, LINE_BYTES},
    {"name", 8, 2, Kind::Name},
    {"dpi_x", 10, 2, Kind::Unsigned},
    {"dpi_y", 12, 2, Kind::Unsigned},
    {"halftone_dim", 14, 2, Kind::Signed},
    {"halftone_id", 16, 2, Kind::Unsigned},
};
inline constexpr Field FEATURE_FIELDS[] = {
    {"name", 0, 2, Kind::Name},
    {"command", 2, 2, Kind::Command, Only::Always, VALUE_BYTES},
    {"mask", 4, 4, Kind::Flags},
    {"first_value", 8, 2, Kind::ListStart, Only::Always, 0, "feature_values"},
};
inline constexpr Field FEATURE_VALUE_FIELDS[] = {
    {"name", 0, 2, Kind::Name},
    {"command", 2, 2, Kind::Command, Only::Always, VALUE_BYTES},
    {"data", 4, 2, Kind::Unsigned, Only::Image},
};
inline constexpr Field COLOR_MODE_FIELDS[] = {
    {"kind", 0, 4, Kind::Unsigned},
    {"name", 4, 2, Kind::Name},
    {"first_preset", 6, 2, Kind::ListStart, Only::Always, 0, "color_presets"},
};
inline constexpr Field COLOR_OPTION_FIELDS[] = {
    {"name", 0, 2, Kind::Name},
    {"first_value", 2, 2, Kind::ListStart, Only::Always, 0, "option_values"},
};
inline constexpr Field OPTION_VALUE_FIELDS[] = {
    {"name", 0, 2, Kind::Name},
    {"offset", 2, 2, Kind::Unsigned, Only::NotImage},
    {"length", 4, 2, Kind::Unsigned, Only::NotImage},
    {"offset2", 6, 2, Kind::Unsigned},
    {"length2", 8, 2, Kind::Unsigned},
    {"value", 2, 4, Kind::Number, Only::Image, VALUE_BYTES},
    {"slice", 2, 4, Kind::Slice, Only::NotImage},
    {"slice2", 6, 4, Kind::Slice, Only::NotImage},
};
inline constexpr Field PRESET_FIELDS[] = {
    {"target", 0, 2, Kind::Signed, Only::Always, 0, nullptr, TARGET_NAMES},
    {"slot", 2, 2, Kind::Signed},
    {"value", 4, 2, Kind::Signed},
};
inline constexpr Field SCREEN_FIELDS[] = {
    {"name", 0, 2, Kind::Name},
    {"command", 2, 2, Kind::Command, Only::Always, VALUE_BYTES},
};

/* In the order of the slots, which is also the order of the tables in a body that xpimake writes. */
inline constexpr Table TABLES[] = {
    {"papers", 8, 48, 2, Form::Rows, PAPER_FIELDS},
    {"input_bins", 24, 8, 4, Form::Rows, INPUT_BIN_FIELDS},
    {"output_bins", 32, 8, 4, Form::Rows, OUTPUT_BIN_FIELDS},
    {"options", 40, 8, 4, Form::Rows, OPTION_FIELDS},
    {"media_types", 48, 44, 4, Form::Rows, MEDIA_FIELDS},
    {"memory", 96, 4, 2, Form::ClosingRows, MEMORY_FIELDS},
    {"about_strings", 104, 2, 2, Form::Ids, ABOUT_FIELDS},
    {"default_font", 124, 1, 1, Form::Text, {}},
    {"default_prop_font", 132, 1, 1, Form::Text, {}},
    {"font_page_cells", 140, 2, 2, Form::Space, {}},
    {"font_subs", 148, 1, 1, Form::Pairs, {}},
    {"constraints", 158, 64, 2, Form::Rows, CONSTRAINT_FIELDS},
    {"margins", 166, 54, 2, Form::ClosingRows, MARGIN_FIELDS},
    {"resolutions", 174, 18, 4, Form::Rows, RESOLUTION_FIELDS},
    {"features", 188, 12, 2, Form::Rows, FEATURE_FIELDS},
    {"feature_values", 196, 6, 2, Form::Lists, FEATURE_VALUE_FIELDS},
    {"color_modes", 220, 8, 4, Form::Rows, COLOR_MODE_FIELDS},
    {"text_options", 228, 4, 2, Form::Rows, COLOR_OPTION_FIELDS},
    {"image_options", 236, 4, 2, Form::Rows, COLOR_OPTION_FIELDS},
    {"graphics_options", 244, 4, 2, Form::Rows, COLOR_OPTION_FIELDS},
    {"general_options", 252, 4, 2, Form::Rows, COLOR_OPTION_FIELDS},
    {"option_values", 260, 10, 2, Form::Lists, OPTION_VALUE_FIELDS},
    {"color_presets", 268, 6, 2, Form::Lists, PRESET_FIELDS},
    {"screens", 284, 6, 2, Form::Rows, SCREEN_FIELDS},
};

/* True for tables that have a TOML section of their own; the others are values of [model]. */
constexpr bool HasSection(const Table& table)
{
    return table.form != Form::Ids && table.form != Form::Text && table.form != Form::Space;
}

/* Bytes of a row: the values of printer options are the one table whose rows depend on the kind of model. */
constexpr std::size_t RowBytes(const Table& table, bool image)
{
    return table.slot == 196 && !image ? 4 : table.rowBytes;
}

constexpr bool FieldApplies(const Field& field, bool image)
{
    return field.only == Only::Always || (field.only == Only::Image) == image;
}

constexpr const Table* FindTable(std::string_view key)
{
    for (const Table& table : TABLES) {
        if (key == table.key) {
            return &table;
        }
    }
    return nullptr;
}

constexpr const Field* FindField(std::span<const Field> fields, std::string_view key)
{
    for (const Field& field : fields) {
        if (key == field.key) {
            return &field;
        }
    }
    return nullptr;
}

/* Every field inside its row and every row kind led by its end mark. */
constexpr bool LayoutHolds()
{
    for (const Table& table : TABLES) {
        for (const Field& field : table.fields) {
            if (field.offset + field.width > table.rowBytes) {
                return false;
            }
        }
        if (!table.fields.empty() && table.fields[0].width != table.endBytes) {
            return false;
        }
        if (table.slot + 8u > FIXED_BODY_BYTES) {
            return false;
        }
    }
    for (const Field& field : MODEL_FIELDS) {
        if (field.offset + field.width > FIXED_BODY_BYTES) {
            return false;
        }
    }
    return true;
}
static_assert(LayoutHolds());

} // namespace xpifile

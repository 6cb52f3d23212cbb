/* Review of the choices that a model offers: features, colour modes and options, screens. */
#include "linter.h"

#include <algorithm>

using namespace xpifile;

/* Rows looked at where each one leads to a list of its own; records hold 32 choices at most. */
static constexpr std::size_t MOST_ROWS = 64;

void Linter::CheckFeatures()
{
    const Table& table = *FindTable("features");
    const Table& values = *FindTable("feature_values");
    i64 known = Model("std_options") | Model("opt_options") | Model("more_options");
    std::size_t rows = CountRows(view, table), typed = 0;
    if (rows > 32) {
        Say("features", 32, "", "A record holds 32 choices; rows from here on are not offered.");
    }
    std::set<i64> seen;
    for (std::size_t i = 0; i < std::min(rows, MOST_ROWS); i++) {
        auto row = static_cast<long>(i);
        i64 mask = Get(table, i, "mask"), first = Get(table, i, "first_value");
        bool margins = mask == 8 && !view.image;
        bool closed = false;
        std::size_t count = CountList(view, values, first, closed);
        if (Get(table, i, "command") == 0) {
            Say("features", row, "command",
                "Without the variable's name the choice is sent with an empty key.");
        }
        if (mask != 0 && !margins && (mask & known) == 0) {
            Say("features", row, "mask",
                "None of the model's option words has this bit; the row never applies.");
        }
        if (!closed && Has("feature_values")) {
            Say("features", row, "first_value",
                first < 0 || RowOffset(view, values, static_cast<std::size_t>(first) + 1) > view.body.size()
                    ? "The values begin outside the body; the row turns into one whose value is typed."
                    : "The list of values has no closing row up to the end of the body.");
        } else if (RowOffset(view, values, static_cast<std::size_t>(std::max<i64>(first, 0)) + count + 1) >
                   ExtentOf(view, values).next) {
            Say("features", row, "first_value",
                "The list of values has no closing row of its own; what lies behind is read as values.");
        }
        if (margins && count < 2) {
            Say("features", row, "first_value",
                "The margin row sends its first or second value; this list has fewer than two.");
        } else if (count == 0 && ++typed == 9) {
            Say("features", row, "first_value",
                "A record has room for 8 typed values; this row shares none of them.");
        }
        if (!seen.insert(first).second) {
            continue;
        }
        for (std::size_t k = 0; k < count && findings.size() < MOST_FINDINGS; k++) {
            u64 at = RowOffset(view, values, static_cast<std::size_t>(first) + k);
            long valueRow = static_cast<long>(first) + static_cast<long>(k);
            CheckName("feature_values", valueRow, values.fields[0], FieldValue(view, at, values.fields[0]));
            CheckCommand("feature_values", valueRow, values.fields[1],
                         FieldValue(view, at, values.fields[1]));
        }
    }
}

void Linter::CheckColorModes()
{
    static constexpr const char* TARGETS[] = {"text_options", "image_options", "graphics_options",
                                              "general_options"};
    const Table& table = *FindTable("color_modes");
    const Table& presets = *FindTable("color_presets");
    const Table& values = *FindTable("option_values");
    std::vector<i64> kinds = Column("color_modes", "kind");
    i64 standard = Model("default_color_mode");
    if (kinds.empty() ? standard != 0 : standard >= static_cast<i64>(kinds.size())) {
        Say("model", -1, "default_color_mode",
            "The default is no row of the colour modes; every check repairs it.");
    } else if (standard > 3) {
        Say("model", -1, "default_color_mode",
            "Records with a colour mode above row 3 are refused; the default is one.");
    }
    if (Model("intent_mask") != 0 && std::find(kinds.begin(), kinds.end(), 2) == kinds.end()) {
        Say("model", -1, "intent_mask",
            "Intents are offered for a colour mode of kind 2, and there is none.");
    }
    for (std::size_t i = 0; i < std::min(kinds.size(), MOST_ROWS); i++) {
        auto row = static_cast<long>(i);
        i64 kind = kinds[i], first = Get(table, i, "first_preset");
        if (kind != 1 && kind != 2 && kind != 4 && kind != 8) {
            Say("color_modes", row, "kind",
                "Kinds are 1, 2, 4 and 8; a mode of kind " + Text(kind) + " has no text.");
        }
        if (i == 4) {
            Say("color_modes", row, "",
                "Records with a colour mode above row 3 are refused; this one cannot be kept.");
        }
        bool closed = false;
        std::size_t count = CountList(view, presets, first, closed);
        if (first >= 0 && !closed) {
            Say("color_modes", row, "first_preset",
                "The presets lie outside the body or have no closing row.");
        }
        for (std::size_t k = 0; k < count && findings.size() < MOST_FINDINGS; k++) {
            std::size_t at = static_cast<std::size_t>(first) + k;
            auto presetRow = static_cast<long>(at);
            i64 target = Get(presets, at, "target"), slot = Get(presets, at, "slot"),
                value = Get(presets, at, "value");
            if (target < 1 || target > 4 || slot < 0 || slot > 3) {
                Say("color_presets", presetRow, target < 1 || target > 4 ? "target" : "slot",
                    "A preset goes into slot 0 to 3 of target 1 to 4; this one goes nowhere.");
                continue;
            }
            const Table& options = *FindTable(TARGETS[target - 1]);
            if (static_cast<std::size_t>(slot) >= CountRows(view, options)) {
                Say("color_presets", presetRow, "slot",
                    std::string(options.key) + " has no such row; every check repairs the record.");
                continue;
            }
            bool whole = false;
            std::size_t list =
                CountList(view, values, Get(options, static_cast<std::size_t>(slot), "first_value"), whole);
            if (value < 0 || static_cast<std::size_t>(value) >= list) {
                Say("color_presets", presetRow, "value",
                    "The option has " + Text(list) + " values; every check repairs the record.");
            } else if (slot < 2 && value > 3) {
                Say("color_presets", presetRow, "value",
                    "Values above 3 in the first two slots make a record that is refused.");
            }
        }
    }
}

void Linter::CheckColorOptions()
{
    const Table& values = *FindTable("option_values");
    i64 data = view.header[COLOR_SIZE] & 0xFFFF;
    bool binary = view.image && !(Model("model_flags") & 8);
    std::set<i64> seen;
    for (const char* key : {"text_options", "image_options", "graphics_options", "general_options"}) {
        const Table& table = *FindTable(key);
        bool general = &table == FindTable("general_options");
        std::size_t rows = CountRows(view, table), pairs = 0;
        if (rows > 4) {
            Say(key, 4, "", "A record holds four choices for each table; rows from here on are not offered.");
        }
        for (std::size_t i = 0; i < std::min(rows, MOST_ROWS); i++) {
            auto row = static_cast<long>(i);
            i64 first = Get(table, i, "first_value");
            bool closed = false, paired = false;
            std::size_t count = CountList(view, values, first, closed);
            if (!closed || count == 0) {
                Say(key, row, "first_value",
                    count == 0 ? "The option has no values; every check counts a fault."
                               : "The list of values has no closing row up to the end of the body.");
            }
            if (i < 2 && count > 4) {
                Say(key, row, "first_value",
                    "Values from the fifth on in the first two options make a record that is refused.");
            }
            bool fresh = seen.insert(first).second;
            for (std::size_t k = 0; k < count && findings.size() < MOST_FINDINGS; k++) {
                std::size_t at = static_cast<std::size_t>(first) + k;
                auto valueRow = static_cast<long>(at);
                u64 place = RowOffset(view, values, at);
                i64 offset = Get(values, at, "offset"), length = Get(values, at, "length");
                i64 offset2 = Get(values, at, "offset2"), length2 = Get(values, at, "length2");
                if (!view.image && general && length2 != 0) {
                    Say("option_values", valueRow, "length2",
                        "General options send one piece; the second one is ignored.");
                }
                paired = paired || (!general && length2 != 0);
                if (!fresh) {
                    continue;
                }
                CheckName("option_values", valueRow, values.fields[0],
                          FieldValue(view, place, values.fields[0]));
                if (view.image) {
                    Field command = *FindField(values.fields, "value");
                    command.width = 2;
                    if (!binary) {
                        CheckCommand("option_values", valueRow, command, offset);
                    }
                    continue;
                }
                if (offset + length > data || (length2 != 0 && offset2 + length2 > data)) {
                    Say("option_values", valueRow, offset + length > data ? "length" : "length2",
                        "The piece reaches behind the " + Text(data) +
                            " bytes of colour data; the check clears it.");
                } else if (length2 == 0 && length >= 0x2000) {
                    Say("option_values", valueRow, "length",
                        "Lengths from 8192 up run into the flags of the record.");
                }
            }
            pairs += paired ? 1 : 0;
            if (paired && pairs == 2 && !view.image) {
                Say(key, row, "first_value",
                    "A later option with two pieces takes the place of an earlier one.");
            }
        }
    }
}

void Linter::CheckScreens()
{
    const Table& table = *FindTable("screens");
    std::size_t rows = CountRows(view, table);
    i64 standard = Model("default_screen");
    if (rows == 0 ? standard != 0 : standard >= static_cast<i64>(rows)) {
        Say("model", -1, "default_screen",
            "The default is no row of the screens; every check repairs it to 0.");
    }
    if (rows > 0 && !view.image) {
        Say("screens", -1, "", "Only image models offer screens; the table is not shown.");
    }
    if (!view.image || !(Model("model_flags") & 8)) {
        return; /* the binary form takes the number as it stands */
    }
    for (std::size_t i = 0; i < rows && findings.size() < MOST_FINDINGS; i++) {
        auto id = static_cast<std::size_t>(Get(table, i, "command") & 0xFFFF);
        std::string text = CommandText(view, id, LONGEST_TEXT).value_or("");
        std::size_t digit = text.find_first_not_of(" \t");
        digit = digit != std::string::npos && (text[digit] == '+' || text[digit] == '-') ? digit + 1 : digit;
        if (digit >= text.size() || text[digit] < '0' || text[digit] > '9') {
            Say("screens", static_cast<long>(i), "command",
                "The command is no number and counts as 0, a halftone screen.");
        }
    }
}

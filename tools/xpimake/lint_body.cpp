/* Review of the body: its slots, the fields that name texts and commands, the single values of the model. */
#include "linter.h"

#include <algorithm>

using namespace xpifile;

i64 Linter::Model(std::string_view field) const
{
    return FieldValue(view, 0, *FindField(MODEL_FIELDS, field));
}

i64 Linter::Get(const Table& table, std::size_t row, std::string_view field) const
{
    return FieldValue(view, RowOffset(view, table, row), *FindField(table.fields, field));
}

std::size_t Linter::Count(std::string_view table) const
{
    return CountRows(view, *FindTable(table));
}

bool Linter::Has(std::string_view table) const
{
    return BodyNumber(view, FindTable(table)->slot, 8) != 0;
}

std::vector<i64> Linter::Column(std::string_view table, std::string_view field) const
{
    const Table& rows = *FindTable(table);
    std::vector<i64> values;
    for (std::size_t i = 0, count = CountRows(view, rows); i < count; i++) {
        values.push_back(Get(rows, i, field));
    }
    return values;
}

/* Where a table lies and whether it ends before the next one. */
void Linter::CheckSlots()
{
    for (const Table& table : TABLES) {
        Extent extent = ExtentOf(view, table);
        if (!extent.present) {
            continue;
        }
        if (BodyNumber(view, table.slot + 4u, 4) != 0) {
            Say(table.key, -1, "",
                "The high half of the slot is not zero; it is ignored, the table stays present.");
        }
        if (extent.start >= view.body.size()) {
            Say(table.key, -1, "", "The slot points behind the body; the table is present but empty.");
            continue;
        }
        if (extent.start < FIXED_BODY_BYTES) {
            Say(table.key, -1, "",
                "The table lies over the fixed fields of the body and reads them as rows.");
        }
        if (table.form == Form::Rows || table.form == Form::ClosingRows) {
            std::size_t rows = CountRows(view, table);
            u64 end = RowOffset(view, table, rows);
            bool closed = end + table.endBytes <= view.body.size();
            u64 closingBytes = table.form == Form::ClosingRows ? RowBytes(table, view.image) : table.endBytes;
            if (!closed || end + closingBytes > extent.next) {
                u64 inside = (extent.next - extent.start) / RowBytes(table, view.image);
                Say(table.key, static_cast<long>(std::min<u64>(rows, inside)), "",
                    closed && extent.next < view.body.size()
                        ? "The table has no closing row before the next table, whose bytes are read as rows."
                        : "The table has no whole closing row up to the end of the body.");
            }
        }
    }
}

/* Every name, command and text of every row, by the kinds of the layout. */
void Linter::CheckFields()
{
    auto check = [&](const char* table, long row, u64 rowOffset, std::span<const Field> fields) {
        for (const Field& field : fields) {
            if (!FieldApplies(field, view.image)) {
                continue;
            }
            if (field.kind == Kind::Name) {
                CheckName(table, row, field, FieldValue(view, rowOffset, field));
            } else if (field.kind == Kind::Command) {
                CheckCommand(table, row, field, FieldValue(view, rowOffset, field));
            } else if (field.kind == Kind::Text && FieldText(view, rowOffset, field).size() == field.width) {
                Say(table, row, field.key, "The text fills its field without a NUL and is cut.");
            }
        }
    };
    check("model", -1, 0, MODEL_FIELDS);
    bool imageText = view.image && (Model("model_flags") & 8);
    for (const Table& table : TABLES) {
        bool numbers = std::string_view(table.key) == "screens" && !imageText;
        std::size_t rows =
            table.form == Form::Rows || table.form == Form::ClosingRows ? CountRows(view, table) : 0;
        u64 next = ExtentOf(view, table).next;
        /* Commands of the binary form are plain numbers. */
        auto fields = numbers ? table.fields.first(1) : table.fields;
        for (std::size_t i = 0; i < rows && RowOffset(view, table, i) < next; i++) {
            check(table.key, static_cast<long>(i), RowOffset(view, table, i), fields);
        }
    }
}

void Linter::CheckModel()
{
    i64 kind = Model("language"), colorClass = Model("color_class"), flags = Model("model_flags");
    if (kind > 4) {
        Say("model", -1, "language",
            "No printer language has the number " + Text(kind) + "; the job head is guesswork.");
    }
    for (const char* side : {"width", "length"}) {
        std::string low = std::string("min_custom_") + side, high = std::string("max_custom_") + side;
        if (Model(high) != 0 && Model(low) > Model(high)) {
            Say("model", -1, FindField(MODEL_FIELDS, low)->key,
                "The smallest custom " + std::string(side) +
                    " is above the largest; no paper passes the size check.");
        }
        if (Model(low) < 0 || Model(high) < 0) {
            Say("model", -1, FindField(MODEL_FIELDS, low)->key,
                "A custom limit below 0 refuses papers that exist.");
        }
    }
    if ((Model("max_custom_width") > 0) != (Model("max_custom_length") > 0)) {
        Say("model", -1, "max_custom_width",
            "Papers of the user's own need both maxima above 0; with one of them they are not offered.");
    }
    if ((flags & 2) && (colorClass != 0 || view.image)) {
        Say("model", -1, "model_flags",
            "Bit 0x02 adds to a render mode line that this kind of model does not send.");
    }
    if ((flags & 8) && !view.image) {
        Say("model", -1, "model_flags", "Bit 0x08 asks for a text block that only image models send.");
    }
    if (flags & ~i64{0x0A}) {
        Say("model", -1, "model_flags", "Bits other than 0x02 and 0x08 mean nothing.");
    }
    if (Model("intent_mask") & ~i64{15}) {
        Say("model", -1, "intent_mask",
            "There are four intents, bits 0x01 to 0x08; further bits show nothing.");
    }
    i64 intent = Model("default_intent");
    if (intent >= 5 && intent <= 255) {
        Say("model", -1, "default_intent", "Intents 5 to 255 are repaired at every check.");
    }
    if ((Model("language_features") & 0x40) && kind != 2) {
        Say("model", -1, "language_features", "Bit 0x40 drops the job wrapper of PostScript models only.");
    }
    for (const char* word : {"inputs", "outputs", "options"}) {
        i64 standard = Model(std::string("std_") + word), optional = Model(std::string("opt_") + word);
        if ((standard | optional) & Model(std::string("more_") + word)) {
            Say("model", -1, FindField(MODEL_FIELDS, std::string("more_") + word)->key,
                "An option that can be added is already standard or installed by default.");
        }
    }
}

void Linter::CheckMemory()
{
    const Table& table = *FindTable("memory");
    std::vector<i64> keys = Column("memory", "key");
    if (!Has("memory")) {
        if (Model("std_memory") || Model("opt_memory") || Model("disk_memory")) {
            Say("model", -1, "std_memory", "Without a memory table the printer tells no memory size.");
        }
        return;
    }
    i64 key = (Model("std_memory") + Model("opt_memory")) & 0xFFFF;
    if (std::find(keys.begin(), keys.end(), key) == keys.end()) {
        Say("memory", -1, "key",
            "No row has the default size " + Text(key) + "; the first row's value is told.");
    }
    for (std::size_t i = 0; i < keys.size(); i++) {
        if (std::find(keys.begin(), keys.begin() + static_cast<long>(i), keys[i]) !=
            keys.begin() + static_cast<long>(i)) {
            Say("memory", static_cast<long>(i), "key",
                "The key stands further up already; this row is never read.");
        }
        if (Get(table, i, "value") > 32767) {
            Say("memory", static_cast<long>(i), "value",
                "A value over 32767 is stored as a negative number.");
        }
    }
}

/* Up to three lines, then the ids that stand one and three places behind the last line shown. */
void Linter::CheckAbout()
{
    const Table& table = *FindTable("about_strings");
    Extent extent = ExtentOf(view, table);
    if (!extent.present || extent.start >= view.body.size()) {
        return;
    }
    std::size_t ids = static_cast<std::size_t>(extent.next - extent.start) / 2;
    std::size_t lines = 0;
    while (lines < 3 && lines < ids && Get(table, lines, "name") != 0) {
        lines++;
    }
    for (std::size_t i = 0; i < std::min(ids, lines + 3); i++) {
        CheckName("about_strings", static_cast<long>(i), table.fields[0], Get(table, i, "name"));
    }
    if (ids < lines + 3) {
        Say("about_strings", -1, "",
            "The page reads " + Text(lines + 3) + " ids, the table has " + Text(ids) +
                "; what lies behind is shown as a text.");
    }
}

/* Default fonts and substitution pairs: names of at most 31 characters. */
void Linter::CheckFontTexts()
{
    auto textAt = [&](u64& at) {
        std::size_t length = 0;
        while (BodyNumber(view, at + length, 1) != 0) {
            length++;
        }
        at += length + 1;
        return length;
    };
    for (const char* key : {"default_font", "default_prop_font"}) {
        Extent extent = ExtentOf(view, *FindTable(key));
        u64 at = extent.start;
        std::size_t length = extent.present && at < view.body.size() ? textAt(at) : 0;
        if (length > 31) {
            Say(key, -1, "", "A font name has room for 31 characters; this one has " + Text(length) + ".");
        }
        if (extent.present && extent.start < view.body.size() && at > extent.next) {
            Say(key, -1, "", "The name has no NUL of its own and takes in what lies behind it.");
        }
    }
    Extent extent = ExtentOf(view, *FindTable("font_subs"));
    if (!extent.present || extent.start >= view.body.size()) {
        return;
    }
    if (Model("res_font_count") < 1) {
        Say("font_subs", -1, "",
            "A model without resident fonts has no use for substitutions; they are not stored.");
    }
    u64 at = extent.start;
    for (long row = 0; at < view.body.size(); row++) {
        std::size_t screen = textAt(at);
        if (screen == 0) {
            break;
        }
        std::size_t device = textAt(at);
        if (device == 0) {
            Say("font_subs", row, "device",
                "The pair lacks its device font; the rest of the list shifts by one name.");
        }
        if (screen > 31 || device > 31) {
            Say("font_subs", row, screen > 31 ? "screen" : "device",
                "A font name has room for 31 characters.");
        }
    }
    if (at > extent.next) {
        Say("font_subs", -1, "",
            "The list is not closed by an empty name; what lies behind is read as names.");
    }
}

/* Review of what the rows of the tables say: values out of range, rows that are never reached, references
 * that miss. */
#include "linter.h"

#include <algorithm>

using namespace xpifile;

/* Row of the first equal value before position i, or -1. */
static long Earlier(const std::vector<i64>& values, std::size_t i)
{
    auto end = values.begin() + static_cast<std::ptrdiff_t>(i);
    auto found = std::find(values.begin(), end, values[i]);
    return found == end ? -1 : static_cast<long>(found - values.begin());
}

static bool Contains(const std::vector<i64>& values, i64 value)
{
    return std::find(values.begin(), values.end(), value) != values.end();
}

static i64 Union(const std::vector<i64>& masks)
{
    i64 all = 0;
    for (i64 mask : masks) {
        all |= mask;
    }
    return all;
}

void Linter::CheckPapers()
{
    const Table& table = *FindTable("papers");
    std::vector<i64> codes = Column("papers", "code");
    i64 top[2] = {Model("max_custom_width"), Model("max_custom_length")};
    i64 low[2] = {Model("min_custom_width"), Model("min_custom_length")};
    auto fits = [&](i64 width, i64 length) {
        return width >= low[0] && length >= low[1] && width <= (top[0] ? top[0] : 32767) &&
               length <= (top[1] ? top[1] : 32767);
    };
    for (std::size_t i = 0; i < codes.size(); i++) {
        auto row = static_cast<long>(i);
        i64 code = codes[i], width = Get(table, i, "width"), length = Get(table, i, "length");
        i64 companion = Get(table, i, "companion");
        if (code < 1 || (code >= 119 && code <= 255)) {
            Say("papers", row, "code",
                "Code " + Text(code) + " is not valid; records with it get the default paper.");
        } else if (code >= 448) {
            Say("papers", row, "code",
                "Codes from 448 up number saved papers and forms; theirs and this one mix up.");
        } else if (Earlier(codes, i) >= 0) {
            Say("papers", row, "code",
                "Row " + Text(Earlier(codes, i)) + " has this code already; this size is never used.");
        }
        if (width <= 0 || length <= 0) {
            Say("papers", row, width <= 0 ? "width" : "length",
                "A paper without extent cannot be drawn or printed on.");
        } else if (!fits(width, length)) {
            Say("papers", row, "width",
                "The size lies outside the custom limits; a record with this paper gets the default paper's "
                "size.");
        }
        if (companion > 0 && !Contains(codes, companion)) {
            Say("papers", row, "companion",
                "No row has code " + Text(companion) + "; scaling to it takes the default paper.");
        }
        std::string name = FieldText(view, RowOffset(view, table, i), *FindField(table.fields, "pcl_name"));
        if (name.size() > PCL_NAME_CHARACTERS) {
            Say("papers", row, "pcl_name",
                "The name has " + Text(name.size()) + " characters; the printer knows names of at most 14.");
        }
    }
    for (i64 code : {i64{1}, i64{9}}) {
        i64 width = code == 9 ? 2100 : 2159, length = code == 9 ? 2970 : 2794;
        if (!Contains(codes, code)) {
            Say("papers", -1, "code",
                "Paper " + Text(code) +
                    ", a default paper, has no row; new records start with it all the same.");
            if (!fits(width, length)) {
                Say("model", -1, "max_custom_width",
                    "Default paper " + Text(code) +
                        " lies outside the custom limits; every check of a new record "
                        "repairs its size.");
            }
        }
    }
}

void Linter::CheckBins()
{
    const Table& inputs = *FindTable("input_bins");
    std::vector<i64> ids = Column("input_bins", "id");
    i64 bin = Model("default_bin");
    if (!Contains(ids, bin) && bin != 1028) {
        Say("model", -1, "default_bin",
            "No input bin has id " + Text(bin) + "; every check of a new record counts it.");
    }
    if (!Contains(ids, 1025)) {
        Say("input_bins", -1, "id", "No bin has id 1025, the one that a repaired cover is fed from.");
    }
    i64 known = Model("std_inputs") | Model("opt_inputs") | Model("more_inputs");
    for (std::size_t i = 0; i < ids.size(); i++) {
        auto row = static_cast<long>(i);
        if (Earlier(ids, i) >= 0) {
            Say("input_bins", row, "id",
                "Row " + Text(Earlier(ids, i)) + " has this id already; this bin cannot be told apart.");
        }
        if (ids[i] >= 2000) {
            Say("input_bins", row, "id", "Ids from 2000 up stand for media rows; this bin cannot be chosen.");
        } else if (ids[i] >= 16 && ids[i] <= 255) {
            Say("input_bins", row, "id", "Ids 16 to 255 are refused for covers, which fall back to 1025.");
        }
        if ((Get(inputs, i, "mask") & known) == 0) {
            Say("input_bins", row, "mask",
                "None of the model's input words has this bit; the bin is never listed.");
        }
    }
    const Table& outputs = *FindTable("output_bins");
    std::vector<i64> commands = Column("output_bins", "command");
    i64 output = Model("default_output_bin");
    if (Has("output_bins") ? !Contains(commands, output) || output < 0 : output != 0) {
        Say("model", -1, "default_output_bin",
            "The value is no row of the output bins; every check repairs it to 0 and counts a fault.");
    }
    if (!commands.empty() && Model("output_bin_command") == 0) {
        Say("model", -1, "output_bin_command",
            view.image ? "Without the variable's name the chosen output bin is not sent."
                       : "Without the variable's name the output bin's line is sent with an empty key.");
    }
    known = Model("std_outputs") | Model("opt_outputs") | Model("more_outputs");
    for (std::size_t i = 0; i < commands.size(); i++) {
        auto row = static_cast<long>(i);
        if (commands[i] == 0 || Earlier(commands, i) >= 0) {
            Say("output_bins", row, "command",
                "The command is what tells bins apart; this row cannot be chosen.");
        }
        if ((Get(outputs, i, "mask") & known) == 0) {
            Say("output_bins", row, "mask",
                "None of the model's output words has this bit; the bin is never listed.");
        }
        if (i == 32) {
            Say("output_bins", row, "", "The conflict check looks at the first 32 rows only.");
        }
    }
}

void Linter::CheckMedia()
{
    const Table& table = *FindTable("media_types");
    std::vector<i64> codes = Column("media_types", "code");
    i64 standard = Model("default_media"), count = static_cast<i64>(codes.size());
    if (!Has("media_types")) {
        if (standard != 0) {
            Say("model", -1, "default_media",
                "Without media types the default must be 0; every check repairs it.");
        }
        return;
    }
    if (standard < 1 || standard > count) {
        Say("model", -1, "default_media",
            "The default is none of the rows 1 to " + Text(count) +
                "; every check counts a fault and sets 1.");
    }
    for (std::size_t i = 0; i < codes.size(); i++) {
        auto row = static_cast<long>(i);
        if (codes[i] >= 4 && codes[i] <= 255) {
            Say("media_types", row, "code",
                "Codes 4 to 255 are repaired by every check; use 1 to 3 or 256 and up.");
        }
        if (Earlier(codes, i) >= 0) {
            Say("media_types", row, "code",
                "Row " + Text(Earlier(codes, i)) + " has this code already; programs see one medium twice.");
        }
        if (FieldText(view, RowOffset(view, table, i), *FindField(table.fields, "data_name")).empty()) {
            Say("media_types", row, "data_name",
                "An empty name ends the stored list of media; later rows are lost.");
        }
    }
}

void Linter::CheckResolutions()
{
    const Table& table = *FindTable("resolutions");
    std::size_t rows = Count("resolutions");
    i64 standard = Model("default_resolution");
    if (rows == 0) {
        Say("resolutions", -1, "",
            "Without a resolution every check counts a fault, and pages have no scale.");
        return;
    }
    if (standard < 0 || standard >= static_cast<i64>(rows)) {
        Say("model", -1, "default_resolution",
            "The default is none of the rows 0 to " + Text(rows - 1) +
                "; new records start without a resolution.");
    }
    std::vector<i64> pairs;
    for (std::size_t i = 0; i < rows; i++) {
        auto row = static_cast<long>(i);
        i64 dpi = Get(table, i, "dpi"), x = Get(table, i, "dpi_x"), y = Get(table, i, "dpi_y");
        i64 dim = Get(table, i, "halftone_dim");
        pairs.push_back(x << 16 | y);
        if (dpi == 0) {
            Say("resolutions", row, "dpi",
                "A resolution of 0 ends the table for the lists; this and later rows are missing there.");
        } else if (dpi < 0) {
            Say("resolutions", row, "dpi", "A negative resolution turns every size on the page negative.");
        }
        if (x == 0 || y == 0 || x > 32767 || y > 32767) {
            Say("resolutions", row, x == 0 || x > 32767 ? "dpi_x" : "dpi_y",
                "Dots per inch must lie in 1 to 32767.");
        } else if (Earlier(pairs, i) >= 0) {
            Say("resolutions", row, "dpi_x",
                "Row " + Text(Earlier(pairs, i)) +
                    " has the same dots per inch; programs cannot choose this one.");
        }
        if (dim != 0 && dim != 8 && dim != 16 && dim != 32) {
            Say("resolutions", row, "halftone_dim",
                dim < 1 || dim > 1024 ? "A dimension outside 1 to 1024 counts as no halftone."
                                      : "Records hold halftone dimensions of 8, 16 and 32 only.");
        }
    }
}

void Linter::CheckConstraints()
{
    const Table& table = *FindTable("constraints");
    const std::pair<const char*, i64> masks[] = {{"inputs", Union(Column("input_bins", "mask"))},
                                                 {"outputs", Union(Column("output_bins", "mask"))},
                                                 {"media", Union(Column("media_types", "mask"))}};
    for (std::size_t i = 0, rows = CountRows(view, table); i < rows; i++) {
        auto row = static_cast<long>(i);
        u64 at = RowOffset(view, table, i);
        u64 papers = 0;
        for (u64 part = 0; part < 32; part += 8) {
            papers |= BodyNumber(view, at + 4 + part, 8);
        }
        bool sized = (BodyNumber(view, at + 4, 1) & 0x80) != 0;
        i64 inputs = Get(table, i, "inputs"), outputs = Get(table, i, "outputs");
        i64 media = Get(table, i, "media"), options = Get(table, i, "options");
        if (papers == 0 && inputs == 0 && outputs == 0 && media == 0 && options == 0) {
            Say("constraints", row, "", "A row without conditions forbids every job.");
        }
        bool upsideDown = Get(table, i, "min_width") > Get(table, i, "max_width") ||
                          Get(table, i, "min_length") > Get(table, i, "max_length");
        if (sized && upsideDown) {
            Say("constraints", row, "min_width",
                "The smallest size is above the largest; no custom paper meets the row.");
        }
        bool range = Get(table, i, "max_width") || Get(table, i, "max_length");
        if (!sized && range) {
            Say("constraints", row, "max_width", "A size range counts only together with paper code 0.");
        }
        for (auto [field, known] : masks) {
            i64 mask = Get(table, i, field);
            if (mask != 0 && (mask & known) == 0) {
                Say("constraints", row, field,
                    "No row that could be chosen has such a bit; the conflict never arises.");
            }
        }
        if ((options & ~i64{1}) && !Has("features")) {
            Say("constraints", row, "options",
                "Installed options conflict by their features, and there are none.");
        } else if ((options & ~i64{1}) && view.image) {
            Say("constraints", row, "options",
                "On image models the values of features are misread by the conflict check.");
        }
        if (Get(table, i, "message") == 0) {
            Say("constraints", row, "message", "Without a message the user is shown a general text only.");
        }
    }
}

void Linter::CheckMargins()
{
    const Table& table = *FindTable("margins");
    Extent extent = ExtentOf(view, table);
    if (!extent.present || extent.start >= view.body.size()) {
        return;
    }
    std::size_t rows = CountRows(view, table);
    for (std::size_t i = 0; i < rows; i++) {
        auto row = static_cast<long>(i);
        u64 papers = 0;
        for (u64 part = 0; part < 32; part += 8) {
            papers |= BodyNumber(view, RowOffset(view, table, i) + 2 + part, 8);
        }
        bool sized = (BodyNumber(view, RowOffset(view, table, i) + 2, 1) & 0x80) != 0;
        bool upsideDown = Get(table, i, "min_width") > Get(table, i, "max_width") ||
                          Get(table, i, "min_length") > Get(table, i, "max_length");
        i64 modes = Get(table, i, "modes");
        if (papers == 0) {
            Say("margins", row, "papers", "A row for no paper is never used.");
        }
        if (sized && upsideDown) {
            Say("margins", row, "min_width",
                "The smallest size is above the largest; no custom paper gets these margins.");
        }
        if ((modes & 3) == 0 || (modes & ~i64{3})) {
            Say("margins", row, "modes",
                "The orientations are 1 portrait and 2 landscape; others are never asked for.");
        }
        if (Get(table, i, "resolution") <= 0) {
            Say("margins", row, "resolution",
                "Margins need a resolution above 0 to be converted; these read as none.");
        }
    }
    bool zero = true;
    for (std::size_t at = 2; at < table.rowBytes; at++) {
        zero = zero && BodyNumber(view, RowOffset(view, table, rows) + at, 1) == 0;
    }
    if (zero) {
        Say("margins", static_cast<long>(rows), "",
            "The closing row holds the model's default margins and is all zero; other papers get no "
            "margins.");
    } else if (Get(table, rows, "resolution") <= 0) {
        Say("margins", static_cast<long>(rows), "resolution",
            "The default margins in the closing row need a resolution above 0 to be converted; they read as "
            "none.");
    }
}

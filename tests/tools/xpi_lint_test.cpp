/* The review of description files: healthy models, single faults, damage, and input made to hurt. */
#include "lint.h"
#include "xpi_support.h"

#include <algorithm>
#include <array>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

static std::string Where(const XpiFinding& finding)
{
    return finding.table + "/" + (finding.row < 0 ? "-" : std::to_string(finding.row)) + "/" + finding.field;
}

static bool Has(const std::vector<XpiFinding>& findings, const std::string& where,
                const std::string& part = "")
{
    return std::any_of(findings.begin(), findings.end(), [&](const XpiFinding& finding) {
        return Where(finding) == where && finding.consequence.find(part) != std::string::npos;
    });
}

static std::string List(const std::vector<XpiFinding>& findings)
{
    std::string text;
    for (const XpiFinding& finding : findings) {
        text += Where(finding) + ": " + finding.consequence + "\n";
    }
    return text;
}

/* All that the healthy models do on purpose, and nothing else. */
TEST(XpiLint, ModelsHaveOnlyTheirDeliberateFindings)
{
    const std::map<std::string, std::vector<std::string>> deliberate = {
        {"T410A",
         {"input_bins/3/mask", "memory/3/value", "constraints/8/message", "margins/5/min_width",
          "color_modes/4/", "text_options/0/first_value", "option_values/32/length2"}},
        {"QP5", {"memory/-/key", "fonts/2/face", "fonts/5/face"}},
        {"QPS",
         {"papers/-/code", "model/-/max_custom_width", "papers/-/code", "model/-/max_custom_width",
          "input_bins/-/id", "memory/-/key"}},
        {"K100", {"features/1/mask", "screens/3/command"}},
        {"IX300", {}},
        {"T440B", {"model/-/model_flags", "model/-/model_flags"}},
    };
    for (const auto& [model, expected] : deliberate) {
        std::vector<XpiFinding> findings = LintXpi(CompileModel(model).bytes);
        std::vector<std::string> found;
        for (const XpiFinding& finding : findings) {
            found.push_back(Where(finding));
        }
        EXPECT_EQ(found, expected) << model << "\n" << List(findings);
    }
}

/* One change of a healthy model each, and where the author is told. */
TEST(XpiLint, AuthorIsToldOfEachFault)
{
    struct Fault {
        const char* model;
        std::vector<XpiOverride> changes;
        const char* where;
        const char* part;
    };
    const std::string longText(64, 'x'), longCommand(512, 'x');
    const Fault faults[] = {
        {"T410A", {{"strings.de.letter", "\"" + longText + "\""}}, "papers/0/name", "language 7"},
        {"T410A",
         {{"strings.en.bin_tray1", "\"" + longText.substr(0, 23) + "\""}},
         "input_bins/1/name",
         "cut to 22"},
        {"K100",
         {{"strings.en.bin_auto", "\"" + longText.substr(0, 24) + "\""}},
         "input_bins/0/name",
         "cut to 23"},
        {"T410A",
         {{"strings.en.save", "\"\""}, {"features.rows[0].name", "\"save\""}},
         "features/0/name",
         "missing"},
        {"T410A", {{"papers.rows[1].name", "900"}}, "papers/1/name", "missing"},
        {"T410A", {{"papers.rows[1].pcl_name", "\"LEGAL-14-INCHES\""}}, "papers/1/pcl_name", "15 characters"},
        {"T410A", {{"papers.rows[1].code", "1"}}, "papers/1/code", "Row 0"},
        {"T410A", {{"papers.rows[1].code", "119"}}, "papers/1/code", "not valid"},
        {"T410A", {{"papers.rows[13].code", "448"}}, "papers/13/code", "448"},
        {"T410A", {{"papers.rows[1].length", "0"}}, "papers/1/length", "extent"},
        {"T410A", {{"papers.rows[1].width", "4000"}}, "papers/1/width", "custom limits"},
        {"T410A", {{"papers.rows[3].companion", "66"}}, "papers/3/companion", "66"},
        {"T410A", {{"model.min_custom_width", "3200"}}, "model/-/min_custom_width", "above"},
        {"T410A", {{"model.default_bin", "7"}}, "model/-/default_bin", "id 7"},
        {"T410A", {{"input_bins.rows[1].id", "2001"}}, "input_bins/1/id", "2000"},
        {"T410A", {{"model.default_output_bin", "0"}}, "model/-/default_output_bin", "repairs"},
        {"QP5", {{"model.default_output_bin", "1"}}, "model/-/default_output_bin", "repairs"},
        {"T410A", {{"model.output_bin_command", "0"}}, "model/-/output_bin_command", "empty key"},
        {"T410A", {{"media_types.rows[1].code", "200"}}, "media_types/1/code", "4 to 255"},
        {"T410A", {{"media_types.rows[1].data_name", "\"\""}}, "media_types/1/data_name", "later rows"},
        {"QPS", {{"media_types.rows", "[]"}}, "model/-/default_media", "none of the rows"},
        {"QP5", {{"model.default_media", "1"}}, "model/-/default_media", "must be 0"},
        {"T410A", {{"model.default_resolution", "4"}}, "model/-/default_resolution", "0 to 3"},
        {"T410A", {{"resolutions.rows[2].dpi", "0"}}, "resolutions/2/dpi", "later rows"},
        {"T410A", {{"resolutions.rows[3].dpi_y", "600"}}, "resolutions/3/dpi_x", "Row 1"},
        {"QP5", {{"resolutions.rows[0].halftone_dim", "2000"}}, "resolutions/0/halftone_dim", "1024"},
        {"T410A", {{"constraints.rows[9]", "{ message = \"no_film\" }"}}, "constraints/9/", "every job"},
        {"T410A", {{"constraints.rows[4].media", "0x80"}}, "constraints/4/media", "never arises"},
        {"T410A", {{"margins.rows[1].resolution", "0"}}, "margins/1/resolution", "above 0"},
        {"T410A", {{"margins.closing.resolution", "0"}}, "margins/7/resolution", "closing row"},
        {"T410A", {{"margins.closing", ""}}, "margins/7/", "all zero"},
        {"T410A", {{"margins.rows[0].modes", "0"}}, "margins/0/modes", ""},
        {"T410A", {{"features.rows[0].first_value", "30000"}}, "features/0/first_value", "outside the body"},
        {"T410A", {{"features.rows[1].first_value", "\"pin\""}}, "features/1/first_value", "margin row"},
        {"T410A",
         {{"commands.key_save", "\"" + longCommand.substr(0, 128) + "\""}},
         "features/0/command",
         "127 fit"},
        {"T410A", {{"commands.res_300", "\"" + longCommand + "\""}}, "resolutions/0/command", "511 fit"},
        {"T410A", {{"commands.collate", "\"TWELVE BYTES\""}}, "model/-/collate_command", "11 fit"},
        {"T410A", {{"commands.value_two", "\"\""}}, "feature_values/8/command", "empty"},
        {"T410A", {{"features.rows[0].command", "999"}}, "features/0/command", "no command 999"},
        {"T410A", {{"model.default_color_mode", "4"}}, "model/-/default_color_mode", "refused"},
        {"T410A", {{"color_presets.photo[0].slot", "4"}}, "color_presets/0/slot", "nowhere"},
        {"T410A", {{"color_presets.photo[0].value", "6"}}, "color_presets/0/value", "6 values"},
        {"T410A", {{"color_presets.photo[0].value", "4"}}, "color_presets/0/value", "refused"},
        {"T410A", {{"color_presets.photo[3].slot", "2"}}, "color_presets/3/slot", "image_options"},
        {"T410A",
         {{"text_options.rows[4]", "{ name = \"on\", first_value = 0 }"}},
         "text_options/4/",
         "four"},
        {"T410A",
         {{"option_values.trap[0]", "{ name = \"on\", offset = 590, length = 40 }"}},
         "option_values/31/length",
         "behind"},
        {"T410A",
         {{"text_options.rows[2].first_value", "\"text_black\""}},
         "text_options/2/first_value",
         "takes the place"},
        {"K100", {{"model.default_screen", "4"}}, "model/-/default_screen", "no row"},
        {"K100",
         {{"strings.en.val_some", "\"\""}, {"strings.de.val_some", ""}},
         "option_values/8/name",
         "missing"},
        {"T410A", {{"model.about_strings", "[\"about_1\"]"}}, "about_strings/-/", "ids"},
        {"T410A", {{"model.default_font", "\"" + longText.substr(0, 32) + "\""}}, "default_font/-/", "31"},
        {"T410A",
         {{"font_subs.rows[1].device", "\"" + longText.substr(0, 32) + "\""}},
         "font_subs/1/device",
         "31"},
        {"QP5", {{"model.font_page_cells", "2"}}, "font_page_cells/-/", "3 chunks"},
        {"QP5", {{"fonts.rows[3].size", "32768"}}, "fonts/3/size", "32767"},
        {"T410A", {{"fonts.rows[0].face", "\"\""}}, "fonts/0/face", "empty"},
        {"T410A", {{"bitmaps.rows[0].bytes", "\"424D\""}}, "bitmaps/0/bytes", "BMP"},
        {"T410A", {{"memory.rows[2].key", "8"}}, "memory/2/key", "never read"},
        {"T410A", {{"strings.base_rows", "100"}}, "strings/-/base_rows", "28 languages from id 100"},
    };
    for (const Fault& fault : faults) {
        std::vector<XpiFinding> findings = LintXpi(CompileModel(fault.model, fault.changes).bytes);
        EXPECT_TRUE(Has(findings, fault.where, fault.part))
            << fault.changes[0].path << " wants " << fault.where << ", found\n"
            << List(findings);
    }
    const std::uint16_t asked[] = {7, 9, 99};
    Bytes few = CompileModel("IX300", {{"strings.base_rows", "100"}}).bytes;
    EXPECT_TRUE(LintXpi(few, asked).empty());
}

/* Damage that no text can express: single numbers of a finished file. */
TEST(XpiLint, DamagedFilesAreExplained)
{
    const Bytes good = CompileModel("T410A").bytes;
    auto poked = [&](std::initializer_list<std::array<std::uint32_t, 3>> pokes) {
        Bytes file = good;
        for (const auto& [at, width, value] : pokes) {
            Put(file, at, width, value);
        }
        std::string text = DumpXpi(file);
        EXPECT_FALSE(text.empty());
        CompileXpi(text, "damaged");
        return LintXpi(file);
    };
    auto at = [](std::size_t offset) { return static_cast<std::uint32_t>(offset); };
    EXPECT_TRUE(Has(LintXpi({}), "header/-/", "64 header bytes"));
    EXPECT_TRUE(Has(LintXpi(Bytes(good.begin(), good.begin() + 64)), "header/-/body", "end of the file"));
    EXPECT_TRUE(Has(poked({{12, 4, 64 + 100}}), "header/-/string_bases", "315"));
    EXPECT_TRUE(Has(poked({{12, 4, 0x20040}}), "header/-/string_bases", "16 bits"));
    EXPECT_TRUE(Has(poked({{BODY + 8, 4, 60000}}), "papers/-/", "behind the body"));
    EXPECT_TRUE(Has(poked({{BODY + 8, 4, 100}}), "papers/-/", "fixed fields"));
    EXPECT_TRUE(Has(poked({{BODY + 12, 4, 1}}), "papers/-/", "high half"));
    std::uint32_t closing = at(Table(good, 8) + 14 * 48);
    EXPECT_TRUE(Has(poked({{closing, 2, 1}}), "papers/15/", "next table"));
    EXPECT_TRUE(Has(poked({{12, 4, closing}}), "papers/14/", "end of the body"));
    std::uint32_t strings = Get(good, 16, 4), commands = Get(good, 28, 4);
    EXPECT_TRUE(Has(poked({{strings + 2, 2, 0xFFFF}}), "papers/0/name", "missing"));
    EXPECT_TRUE(Has(poked({{20, 4, 0}}), "header/-/string_bytes", "empty"));
    EXPECT_TRUE(Has(poked({{36, 4, commands - 1}}), "header/-/font_bytes", "every command"));
    EXPECT_TRUE(Has(poked({{36, 4, commands + 3}}), "model/-/output_bin_command", "no NUL"));
    std::uint32_t values = at(Table(good, 260) + 34 * 10 - 2); /* into the closing row of the last list */
    EXPECT_TRUE(Has(poked({{12, 4, values - 10}}), "general_options/0/first_value", "closing row"));
    std::uint32_t fonts = Get(good, 32, 4);
    EXPECT_TRUE(Has(poked({{fonts + 8, 4, 10}}), "fonts/1/size", "lower"));
    EXPECT_TRUE(Has(poked({{fonts + 12, 4, 20000}}), "fonts/2/size", "end of the file"));
    EXPECT_TRUE(Has(poked({{BODY + 156, 2, 9}}), "fonts/-/", "9 fonts"));
    EXPECT_TRUE(Has(poked({{BODY + 156, 2, 0xFFFF}}), "model/-/res_font_count", "negative"));
    EXPECT_TRUE(Has(poked({{52, 4, 0x10005}}), "color_data/-/", "16 bits"));
    std::uint32_t name = at(Table(good, 8) + 16);
    EXPECT_TRUE(Has(poked({{name + 6, 4, 0x41414141},
                           {name + 10, 4, 0x41414141},
                           {name + 14, 4, 0x41414141},
                           {name + 18, 4, 0x41414141},
                           {name + 22, 4, 0x41414141},
                           {name + 26, 4, 0x41414141},
                           {name + 30, 2, 0x4141}}),
                    "papers/0/pcl_name", "without a NUL"));
}

static void LookAt(const Bytes& file)
{
    Bytes exact(file); /* no spare bytes behind, so that the sanitizer sees a read beyond */
    exact.shrink_to_fit();
    ASSERT_FALSE(DumpXpi(exact).empty());
    LintXpi(exact);
}

TEST(XpiHostile, EveryTruncationIsReadable)
{
    for (const char* model : MODELS) {
        Bytes good = CompileModel(model).bytes;
        std::size_t dense = std::min<std::size_t>(good.size(), 10000); /* behind, QP5 has nothing but fonts */
        for (std::size_t size = 0; size <= good.size(); size += size < dense ? 1 : 4999) {
            LookAt(Bytes(good.begin(), good.begin() + static_cast<long>(size)));
        }
    }
}

/* Numbers at their limits in every place of the header and the body, and files of one repeated byte: no look
   takes long. */
TEST(XpiHostile, WildNumbersStayBounded)
{
    std::clock_t slowest = 0; /* of the processor: others use it as well */
    auto timed = [&](const Bytes& file) {
        const std::clock_t start = std::clock();
        LookAt(file);
        slowest = std::max(slowest, std::clock() - start);
    };
    const Bytes good = CompileModel("T410A").bytes;
    for (std::uint32_t value : {0u, 1u, 0x7FFFu, 0x8000u, 0xFFFFu}) {
        for (std::size_t at = 0; at < BODY + 315; at += 2) {
            Bytes file = good;
            Put(file, at, 2, value);
            timed(file);
        }
    }
    for (unsigned fill : {1u, 0x40u, 0x7Fu, 0xFFu}) {
        Bytes file(200000, static_cast<std::uint8_t>(fill));
        for (std::size_t i = 2; i < 14; i++) { /* every section long, every table over the whole body */
            Put(file, 4 * i, 4, static_cast<std::uint32_t>(i < 3 ? 64 : 64 + 65000 + (i - 3) * 10000));
        }
        timed(file);
        for (std::size_t slot = 8; slot < 292; slot += 4) {
            Put(file, BODY + slot, 4, 320);
        }
        timed(file);
    }
    EXPECT_LT(slowest, 10 * CLOCKS_PER_SEC);
}

TEST(TqLint, PrintsATableAndTellsByItsExitCode)
{
    std::string path = (std::filesystem::temp_directory_path() / "xpi_test_lint.XPI").string();
    auto run = [&](const char* model) {
        Bytes bytes = CompileModel(model).bytes;
        std::ofstream(path, std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        std::ostringstream out, err;
        int code = RunLint(path, out, err);
        EXPECT_EQ(err.str(), "");
        return std::pair(code, out.str());
    };
    auto [clean, nothing] = run("IX300");
    EXPECT_EQ(clean, 0);
    EXPECT_EQ(nothing, path + ": nothing to say\n");
    auto [faulty, text] = run("K100");
    EXPECT_EQ(faulty, 1);
    EXPECT_NE(text.find("TABLE     ROW  FIELD    CONSEQUENCE\nfeatures    1  mask     None"),
              std::string::npos)
        << text;
    EXPECT_NE(text.find(": 2 findings\n"), std::string::npos);
    std::filesystem::remove(path);
    std::ostringstream out, err;
    EXPECT_EQ(RunLint(path, out, err), 1);
    EXPECT_EQ(err.str(), path + ": cannot be read\n");
    EXPECT_EQ(RunLint(std::filesystem::temp_directory_path().string(), out, err), 1);
}

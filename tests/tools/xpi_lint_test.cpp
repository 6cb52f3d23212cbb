/* The review of description files: healthy models, single faults, damage, and input made to hurt. */
#include "lint.h"
#include "support/data_file.h"
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
    for (const DataRow& row : ReadRows("xpi_faults.txt")) {
        std::vector<XpiOverride> changes;
        for (std::size_t i = 3; i < row.size(); i++) {
            const std::size_t equals = row[i].find(" =");
            std::string value = row[i].substr(std::min(equals + 3, row[i].size()));
            if (const std::size_t mark = value.find("<x"); mark != std::string::npos) {
                const std::size_t end = value.find('>', mark);
                value.replace(mark, end + 1 - mark, std::stoul(value.substr(mark + 2)), 'x');
            }
            changes.push_back({row[i].substr(0, equals), value});
        }
        std::vector<XpiFinding> findings = LintXpi(CompileModel(row[0], changes).bytes);
        EXPECT_TRUE(Has(findings, row[1], row[2])) << changes.at(0).path << " wants " << row[1] << ", found\n"
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

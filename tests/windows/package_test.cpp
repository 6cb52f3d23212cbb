/* The package's INF and its reader. */
#include <algorithm>
#include <cstring>
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

#include "places.h"
#include "support/data_file.h"
#include "tools/tq/inf.h"

namespace fs = std::filesystem;

namespace {

std::string PackageInf()
{
    std::ifstream file(fs::path(TQUI_SOURCE_DIR) / "package/tqui.inf", std::ios::binary);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

/* The reader's refusal of a text; "" when it takes it. */
std::string Refusal(const std::string& text)
{
    const fs::path path = fs::path(::testing::TempDir()) / "try.inf";
    std::ofstream(path, std::ios::binary) << text;
    try {
        ReadInf(path);
    } catch (const InfError& error) {
        return error.what();
    }
    return "";
}

/* The package's INF with one piece replaced, which must be there. */
std::string Changed(const std::string& piece, const std::string& by)
{
    std::string text = PackageInf();
    const size_t place = text.find(piece);
    if (place == std::string::npos) {
        throw std::logic_error("not in the INF: " + piece);
    }
    return text.replace(place, piece.size(), by);
}

int LineOf(const std::string& text, const std::string& piece)
{
    return 1 + static_cast<int>(std::count(
                   text.begin(), text.begin() + static_cast<std::ptrdiff_t>(text.find(piece)), '\n'));
}

} // namespace

TEST(Package, EveryFileIsFoundByItsOwnNameAlone)
{
    const auto models = ReadInf(fs::path(TQUI_SOURCE_DIR) / "package/tqui.inf");
    EXPECT_EQ(models.size(), 6u);
    for (const InfModel& model : models) {
        EXPECT_EQ(FindAmbiguousNames(model), std::vector<std::string>());
        EXPECT_EQ(model.configFile, "TQUI.dll");
        const fs::path tcModels = fs::path(TQUI_SOURCE_DIR) / "package/models";
        const auto has = [&model](const std::string& name) {
            return std::ranges::count(model.dependentFiles, name) == 1;
        };
        EXPECT_TRUE(has(model.section + ".XPI")) << model.name;
        EXPECT_EQ(has(model.section + ".INI"), fs::exists(tcModels / (model.section + ".INI"))) << model.name;
        EXPECT_NE(has("TXT.DLL"), has("ENUS.DLL")) << model.name;
        EXPECT_EQ(model.processorFiles, std::vector<std::string>(has("JOB.DLL"), "JOB.DLL")) << model.name;
    }
}

TEST(Package, AmbiguousNamesAreFound)
{
    InfModel model = ReadInf(fs::path(TQUI_SOURCE_DIR) / "package/tqui.inf").front();
    model.dependentFiles.push_back("OVERLAY.DLL");
    EXPECT_EQ(FindAmbiguousNames(model).size(), 1u);
    model.driverFile = "other.xpi.dll";
    EXPECT_EQ(FindAmbiguousNames(model).size(), 2u);
}

/* What the system would read in its own way, or not at all, is refused with its line. */
TEST(InfReader, RefusesWithTheLine)
{
    ASSERT_EQ(Refusal(PackageInf()), "");
    std::string crlf;
    for (const char c : PackageInf()) {
        crlf += c == '\n' ? "\r\n" : std::string(1, c);
    }
    ASSERT_EQ(Refusal(crlf), "");

    const auto lines = [](std::string text) {
        for (size_t nAt; (nAt = text.find("\u00B6")) != text.npos;) {
            text.replace(nAt, std::strlen("\u00B6"), "\n");
        }
        return text;
    };
    for (const DataRow& row : ReadRows("inf_refusals.txt")) {
        const std::string refusal = Refusal(Changed(lines(row[0]), lines(row[1])));
        EXPECT_NE(refusal, "") << "taken: " << row[1];
        EXPECT_NE(refusal.find(row[2]), std::string::npos) << refusal;
    }
    EXPECT_EQ(Refusal(Changed("Class       =", "Klass       ="))
                  .rfind("try.inf:" + std::to_string(LineOf(PackageInf(), "Class       =")) + ":", 0),
              0u);
    EXPECT_NE(Refusal(""), "");
}

/* The package's INF and its reader. */
#include <algorithm>
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

#include "places.h"
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

    const struct {
        const char *cPiece, *cBy, *cSays;
    } cases[] = {
        {"[Version]\n", "[Version\n", "not a section"},
        {"Class       =", "Klass       =", "key unknown"},
        {"$Windows NT$", "$Chicago$", "not $Windows NT$"},
        {"%Maker% = Models", "%Make% = Models, NTx86 ;", "NTamd64"},
        {"= T410A, Corv", "= T410, Corv", "[T410] is missing"},
        {"\"Quill PS\"  ", "\"Quill P5\"  ", "model twice"},
        {"DataFile    = QP5.FDF", "DataFile    = QP5.FDX", "QP5.FDX is not in CopyFiles"},
        {"HelpFile    = TQUI.CHM", "HelpFile    = TQUI.CHM\nHelpFile = X.CHM", "twice"},
        {"GLYF.EXE\nMRK.EXE", "GLYF.EXE\nGLYF.EXE", "copied twice"},
        {"GLYF.EXE\nMRK.EXE", "GLYF.EXE\nnew\\MRK.EXE", "plain file name"},
        {"\nJOB.DLL   = 1", "", "JOB.DLL is not in [SourceDisksFiles]"},
        {"JOB.DLL   = 1", "JOB.DLL   = 1\nODD.DLL = 1", "ODD.DLL is copied for no model"},
        {"[Job_Files]", "[Odd_Files]\nODD.DLL\n[Job_Files]", "nothing refers to"},
        {"%Disk%", "%Dusk%", "%Dusk%"},
        {"PnpLockdown = 1", "PnpLockdown = 0", "not 1"},
        {"PnpLockdown = 1\n", "", "a key is missing in [Version]"},
        {"PackageAware = TRUE", "PackageAware = FALSE", "TRUE is expected"},
        {"Processor_Files = 66001", "Processor_Files = 66000", "66001"},
        {"\"JOB,JOB.DLL\"", "\"JOB,JOBS.DLL\"", "name,file"},
        {"\"JOB,JOB.DLL\"", "JOB.DLL", "name,file"},
        {"Job_Files, Processor_Files", "Processor_Files", "without a PrintProcessor"},
        {"Job_Files, Processor_Files", "Job_Files", "not copied to the print processors"},
        {"Program_Files, Processor_Files", "Processor_Files", "installs other files"},
        {"[K100_Processor]", "[K101_Processor]", "nothing refers to"},
        {"Provider    = %Maker%", "Provider    = %Macher%", "[Strings] has no %Macher%"},
        {"\"Corvantis Optics\"", "\"Corvantis Optics", "quote is not closed"},
        {"DefaultDestDir  = 66000", "DefaultDestDir  = 11", "66000"},
    };
    for (const auto& row : cases) {
        const std::string text = Changed(row.cPiece, row.cBy);
        const std::string refusal = Refusal(text);
        EXPECT_NE(refusal, "") << "taken: " << row.cBy;
        EXPECT_NE(refusal.find(row.cSays), std::string::npos) << refusal;
    }
    EXPECT_EQ(Refusal(Changed("Class       =", "Klass       ="))
                  .rfind("try.inf:" + std::to_string(LineOf(PackageInf(), "Class       =")) + ":", 0),
              0u);
    EXPECT_NE(Refusal(""), "");
}

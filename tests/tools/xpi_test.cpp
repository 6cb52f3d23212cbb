/* The description compiler and its dump, on the six sample models and on texts made to be wrong. */
#include "support/data_file.h"
#include "xpi_support.h"

#include <cstring>
#include <span>
#include <sstream>

TEST(Xpi, ModelsComeBackToTheSameBytes)
{
    for (const char* model : MODELS) {
        SCOPED_TRACE(model);
        Bytes bytes = CompileModel(model).bytes;
        std::string text = DumpXpi(bytes);
        XpiCompiled again = CompileXpi(text, "dump");
        ASSERT_TRUE(again.errors.empty()) << FormatXpiError("dump", again.errors[0]);
        EXPECT_TRUE(again.bytes == bytes);
        EXPECT_EQ(DumpXpi(again.bytes), text);
    }
}

/* Tables that are there without rows, one without texts, and a model of nothing at all. */
TEST(Xpi, OddFilesComeBackToTheSameBytes)
{
    const std::vector<XpiOverride> changes[] = {
        {{"papers.rows", "[]"}, {"features.rows", "[]"}, {"feature_values", "{}"}, {"font_subs.rows", "[]"}},
        {{"strings.base_rows", "20"}, {"strings.fr", "{ letter = \"Lettre\" }"}, {"strings.15", "{}"}},
        {{"model.about_strings", "[-5, 0, 700]"},
         {"model.font_page_cells", "9"},
         {"memory.closing", "{ value = 9 }"}},
        {{"fonts.rows", "[{ bytes = \"00 41 42\" }, { size = 0 }, { face = \"A\", size = 33, charset = 2 }]"},
         {"model.res_font_count", "-4"}},
        {{"features.rows[0].first_value", "-3"},
         {"features.rows[1].first_value", "5"},
         {"color_data", ""},
         {"option_values.trap", "[{ name = \"on\", offset = 65535, length2 = 7 }]"},
         {"option_values.text_intent", "[]"},
         {"option_values.text_black", ""},
         {"option_values.text_edge", ""},
         {"option_values.text_tone", ""},
         {"option_values.image_intent", ""},
         {"option_values.image_black", ""},
         {"option_values.graphics_intent", ""},
         {"option_values.graphics_black", ""},
         {"text_options", ""},
         {"image_options", ""},
         {"graphics_options", ""},
         {"general_options.rows[0].first_value", "\"trap\""}},
    };
    for (const auto& change : changes) {
        SCOPED_TRACE(change[0].path);
        Bytes bytes = CompileModel("T410A", change).bytes;
        EXPECT_TRUE(CompileXpi(DumpXpi(bytes), "dump").bytes == bytes);
    }
    XpiCompiled nothing = CompileXpi("[model]\n", "nothing");
    ASSERT_TRUE(nothing.errors.empty());
    EXPECT_TRUE(CompileXpi(DumpXpi(nothing.bytes), "dump").bytes == nothing.bytes);
}

TEST(Xpi, TextsAnswerInEveryLanguage)
{
    XpiCompiled compiled = CompileModel("T410A");
    unsigned owner = compiled.strings.at("feat_owner"), a4 = compiled.strings.at("a4");
    EXPECT_EQ(FileString(compiled.bytes, 9, owner), "Owner");
    EXPECT_EQ(FileString(compiled.bytes, 7, owner), "Eigent\xFCmer"); /* code page 1252 */
    EXPECT_EQ(FileString(compiled.bytes, 7, a4), "A4");               /* falls back */
    for (unsigned language = 0; language < 1024; language++) {
        if (language != 7) {
            ASSERT_EQ(FileString(compiled.bytes, language, owner), "Owner") << language;
        }
    }
    XpiCompiled euro = CompileXpi("[model]\n[strings.en]\na = \"\\u20AC \\u201Ex\\u201C\"\n", "euro");
    EXPECT_EQ(FileString(euro.bytes, 1, 1), "\x80 \x84x\x93");
}

TEST(Xpi, FontsFillTheirChunks)
{
    Bytes file = CompileModel("QP5").bytes;
    std::size_t table = Get(file, 32, 4), bytes = Get(file, 36, 4);
    const std::uint32_t sizes[] = {20000, 12767, 1, 30000, 2767, 1};
    std::uint32_t offset = 0;
    for (std::size_t i = 0; i < 6; i++) {
        EXPECT_EQ(Get(file, table + 4 * i, 4), offset);
        offset += sizes[i];
    }
    EXPECT_EQ(Get(file, table + 24, 4), 65536u);
    EXPECT_EQ(bytes + 65536, Get(file, 40, 4));
    EXPECT_EQ(TextAt(file, bytes + 20000), "Quill Sans");
    EXPECT_EQ(Get(file, bytes + 20000 + 32, 1), 161u);
    EXPECT_EQ(TextAt(file, Table(file, 124)).size(), 31u);
    EXPECT_EQ(Table(file, 148) - Table(file, 140), 6u); /* space for three chunk numbers */
}

TEST(Xpi, ErrorsTellLineAndField)
{
    for (const DataRow& row : ReadRows("xpi_errors.txt")) {
        std::string text = row[3] + "\n";
        for (const auto& [mark, by] : {std::pair{"\u00B6", "\n"}, {"<01>", "\x01"}}) {
            for (std::size_t at; (at = text.find(mark)) != std::string::npos;) {
                text.replace(at, std::strlen(mark), by);
            }
        }
        SCOPED_TRACE(text);
        XpiCompiled compiled = CompileXpi(text, "wrong.toml");
        ASSERT_FALSE(compiled.errors.empty());
        EXPECT_TRUE(compiled.bytes.empty());
        EXPECT_EQ(compiled.errors[0].line, ToNumber(row[0]));
        EXPECT_EQ(compiled.errors[0].field, row[1]);
        EXPECT_NE(compiled.errors[0].message.find(row[2]), std::string::npos) << compiled.errors[0].message;
    }
    EXPECT_EQ(FormatXpiError("a.toml", {3, "x.y", "No."}), "a.toml:3: x.y: No.");
    EXPECT_EQ(FormatXpiError("a.toml", {0, "x.y", "No."}), "a.toml: x.y: No.");
}

TEST(Xpi, OverridesChangeSingleValues)
{
    Bytes file = CompileModel("T410A", {{"model.color_class", "42"},
                                        {"papers.rows[2].width", "2111"},
                                        {"papers.rows[14]", "{ name = \"a4\", code = 70, width = 1050 }"},
                                        {"strings.de.a4", "\"DIN A4\""},
                                        {"screens.rows", "[{ name = \"on\" }]"},
                                        {"media_types", ""}})
                     .bytes;
    EXPECT_EQ(Get(file, BODY + 302, 2), 42u);
    EXPECT_EQ(Get(file, Table(file, 8) + 2 * 48 + 4, 2), 2111u);
    EXPECT_EQ(Get(file, Table(file, 8) + 14 * 48 + 2, 2), 70u);
    EXPECT_EQ(FileString(file, 7, 3), "DIN A4");
    EXPECT_NE(Get(file, BODY + 284, 4), 0u);
    EXPECT_EQ(Get(file, BODY + 48, 4), 0u);
    const XpiOverride wrong[] = {{"model.nothing.more", "1"},
                                 {"model.color_class", "1\nb = 2"},
                                 {"a..b", "1"},
                                 {"papers.rows[99].code", "1"},
                                 {"papers.rows[15]", "{}"},
                                 {"gone", ""},
                                 {"model.color_class", "one"},
                                 {"papers[0]", "1"},
                                 {"", "1"},
                                 {"model.", "1"}};
    std::string text = ReadText(ModelPath("T410A.toml"));
    for (const XpiOverride& change : wrong) {
        SCOPED_TRACE(change.path + " = " + change.value);
        XpiCompiled compiled = CompileXpi(text, "", std::span(&change, 1));
        ASSERT_FALSE(compiled.errors.empty());
        EXPECT_EQ(compiled.errors[0].line, 0);
    }
}

/* The companion settings files: lines end as the system's profile functions want them, and the sizes that
   they tell are those of what they list. */
TEST(Models, CompanionFilesAreWellFormed)
{
    for (const char* model : {"T410A", "QP5", "K100", "IX300", "T440B"}) {
        std::string text = ReadText(ModelPath(std::string(model) + ".INI"));
        for (std::size_t i = 0; i < text.size(); i++) {
            ASSERT_EQ(text[i] == '\n', i > 0 && text[i - 1] == '\r') << model << " at " << i;
        }
    }
    std::istringstream lines(ReadText(ModelPath("QP5.INI")));
    std::size_t size = 0, told = 0, names = 0, pairs = 0;
    for (std::string line; std::getline(lines, line);) {
        std::string value = line.substr(std::min(line.find('=') + 1, line.size()));
        value.pop_back();
        told = line.starts_with("FontSubSize=") ? std::stoul(value) : told;
        pairs = line.starts_with("NumFontSubs=") ? std::stoul(value) : pairs;
        bool name = line.starts_with("FontSubSys") || line.starts_with("FontSubPrt");
        size += name ? 2 * (value.size() + 1) : 0;
        names += name ? 1 : 0;
    }
    EXPECT_EQ(told, size + 2);
    EXPECT_EQ(names, 2 * pairs);
}

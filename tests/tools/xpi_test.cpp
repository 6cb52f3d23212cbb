/* The description compiler and its dump, on the six sample models and on texts made to be wrong. */
#include "xpi_support.h"

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

/* What the driver reads, at the places where it reads it. */
TEST(Xpi, FieldsLieWhereTheDriverReadsThem)
{
    XpiCompiled compiled = CompileModel("T410A");
    const Bytes& file = compiled.bytes;
    EXPECT_EQ(Get(file, 8, 4), BODY);
    EXPECT_EQ(Get(file, BODY + 4, 2), 3u);      /* language level */
    EXPECT_EQ(Get(file, BODY + 22, 2), 12000u); /* largest custom length */
    EXPECT_EQ(Get(file, BODY + 88, 4), 0x30u);  /* options that can be added */
    EXPECT_EQ(Get(file, BODY + 156, 2), 3u);    /* resident fonts, counted from the fonts */
    EXPECT_EQ(Get(file, BODY + 276, 4), 0xFu);  /* intents */
    EXPECT_EQ(Get(file, BODY + 306, 4), 2u);    /* default intent */
    EXPECT_EQ(Get(file, BODY + 314, 1), 2u);    /* model flags */
    EXPECT_EQ(FileCommand(file, Get(file, BODY + 118, 2)), "UPPER");
    EXPECT_EQ(FileCommand(file, Get(file, BODY + 282, 2)), "https://support.halden.example/t410a");
    EXPECT_EQ(TextAt(file, Table(file, 124)), "Halden Mono");
    EXPECT_STREQ(TextAt(file, Table(file, 148) + 12).c_str(), "Halden Mono");

    std::size_t legal = Table(file, 8) + 48, a3 = legal + 2 * 48;
    EXPECT_EQ(TextAt(file, legal + 16), "US-LEGAL-PAPER");
    EXPECT_EQ(Get(file, a3 + 2, 2), 8u);
    EXPECT_EQ(Get(file, a3 + 8, 2), 1u);  /* metric */
    EXPECT_EQ(Get(file, a3 + 14, 2), 9u); /* companion */
    EXPECT_EQ(Get(file, Table(file, 8) + 14 * 48, 2), 0u);
    std::size_t media = Table(file, 48);
    EXPECT_EQ(Get(file, media + 3 * 44 + 4, 2), 0x10000u - 2203);
    EXPECT_EQ(FileCommand(file, Get(file, media + 44 + 6, 2)), "@PJL SET MEDIATYPE=TRANSPARENCY\r\n");
    EXPECT_EQ(Get(file, media + 2 * 44 + 40, 4), 256u);
    std::size_t constraints = Table(file, 158), margins = Table(file, 166);
    EXPECT_EQ(Get(file, constraints + 4 + 14, 1), 0x02u); /* paper 118 */
    EXPECT_EQ(Get(file, constraints + 64 + 4, 1), 0x80u); /* sizes */
    EXPECT_EQ(Get(file, margins, 2), 1u);
    EXPECT_EQ(Get(file, margins + 2 + 1, 1), 0xD0u); /* papers 8, 9, 11 */
    EXPECT_EQ(Get(file, margins + 7 * 54, 2), 0u);
    EXPECT_EQ(Get(file, margins + 7 * 54 + 52, 2), 139u); /* the closing row has data */
    std::size_t features = Table(file, 188), values = Table(file, 196);
    EXPECT_EQ(Get(file, features + 2 * 12 + 8, 2), 6u); /* behind two lists of two and their ends */
    EXPECT_EQ(FileCommand(file, Get(file, values + 7 * 4 + 2, 2)), "ONE");
    EXPECT_EQ(Get(file, values + Get(file, features + 3 * 12 + 8, 2) * 4, 2), 0u); /* typed */
    std::size_t last = Table(file, 260) + 32 * 10, data = Get(file, 48, 4), size = Get(file, 52, 4);
    EXPECT_EQ(Get(file, last + 6, 2) + Get(file, last + 8, 2), size);
    EXPECT_EQ(data + size, file.size());
    EXPECT_EQ(std::string(file.begin() + static_cast<long>(data), file.begin() + static_cast<long>(data) + 7),
              "\x1B*b15m:");

    Bytes image = CompileModel("K100").bytes;
    EXPECT_EQ(Get(image, Table(image, 196) + 6 + 4, 2), 2u); /* six bytes a value on image models */
    EXPECT_EQ(FileCommand(image, Get(image, Table(image, 260) + 2, 2)), "PHOTO");
    Bytes binary = CompileModel("IX300").bytes;
    EXPECT_EQ(Get(binary, Table(binary, 260) + 12, 4), 0x8001FFFFu);
    EXPECT_EQ(Get(binary, Table(binary, 284) + 2, 2), 0xFFFBu);
    Bytes postscript = CompileModel("QPS").bytes;
    EXPECT_EQ(Get(postscript, Table(postscript, 96), 4), 77u << 16);
    EXPECT_EQ(Get(postscript, BODY + 48, 4), 0u); /* no media types at all */
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
    struct Case {
        const char* text;
        int line;
        const char* field;
        const char* part;
    };
    const Case cases[] = {
        {"[model]\nlanguage = \n", 2, "", ""},
        {"[papers]\nrows = []\n", 0, "model", "missing"},
        {"[model]\nlanguage = 1 # \x01\n", 2, "", "control"},
        {"[model]\n# \xC3\xBC 'x\n\xC3\xBC = \"\"\n", 3, "", "ASCII"},
        {"[model]\nx = '''\n\xC3\xBC''''\ny = \"\\\"\xC3\xBC\" \xC3\xBC\n", 4, "", "ASCII"},
        {"[model]\n[paper]\n", 2, "paper", "no such section"},
        {"[model]\ncolour = 1\n", 2, "model.colour", "no such field"},
        {"[model]\nlanguage = \"pcl7\"\n", 2, "model.language", "pcl6, pcl5"},
        {"[model]\nmin_custom_width = 40000\n", 2, "model.min_custom_width", "-32768 to 32767"},
        {"[model]\nstd_inputs = \"1\"\n", 2, "model.std_inputs", "number"},
        {"[model]\npreview_label = \"x\"\n[strings.en]\ny = \"y\"\n", 2, "model.preview_label", "\"x\""},
        {"[model]\n[papers]\nrows = [\n{ name = -1, code = 1 },\n{ code = 9 } ]\n", 5, "papers.rows[1]",
         "end the table"},
        {"[model]\n[papers]\nrows = [\n{ name = -1, size = 1 } ]\n", 4, "papers.rows[0].size",
         "no such field"},
        {"[model]\n[papers]\n", 2, "papers.rows", "array of rows"},
        {"[model]\n[margins]\nrows = [\n{ papers = [1, 256] } ]\n", 4, "margins.rows[0].papers[1]",
         "0 to 255"},
        {"[model]\n[memory]\nrows = []\nclosing = { key = 1 }\n", 4, "memory.closing.key", "zero"},
        {"[model]\n[features]\nrows = [{ name = -1, first_value = \"a\" }]\n", 3,
         "features.rows[0].first_value", "\"a\""},
        {"[model]\n[feature_values]\na = [{ name = -1, data = 1 }]\n", 3, "feature_values.a[0].data",
         "kind of model"},
        {"[model]\n[option_values]\na = [{ name = -1, length = 1, slice = \"b\" }]\n[color_data]\nb = \"\"\n",
         3, "option_values.a[0].slice", "already"},
        {"[model]\n[strings.en]\na = \"\\u0416\"\n", 3, "strings.en.a", "1252"},
        {"[model]\n[strings.en]\na = \"\"\n[strings.de]\nb = \"\"\n", 5, "strings.de.b", "first language"},
        {"[model]\n[strings.english]\n", 2, "strings.english", "language"},
        {"[model]\n[commands]\na = \"x\\u0000\"\n", 3, "commands.a", "NUL"},
        {"[model]\n[fonts]\nrows = [{ face = \"x\", size = 20 }]\n", 3, "fonts.rows[0].size", "33"},
        {"[model]\n[fonts]\nrows = [{ bytes = \"4\" }]\n", 3, "fonts.rows[0].bytes", "two by two"},
    };
    for (const Case& wrong : cases) {
        SCOPED_TRACE(wrong.text);
        XpiCompiled compiled = CompileXpi(wrong.text, "wrong.toml");
        ASSERT_FALSE(compiled.errors.empty());
        EXPECT_TRUE(compiled.bytes.empty());
        EXPECT_EQ(compiled.errors[0].line, wrong.line);
        EXPECT_EQ(compiled.errors[0].field, wrong.field);
        EXPECT_NE(compiled.errors[0].message.find(wrong.part), std::string::npos)
            << compiled.errors[0].message;
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

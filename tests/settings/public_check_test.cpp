/* The public check against its rules, written down as data: what each poke into a good record leads to. */
#include "settings/check_support.h"

namespace {

constexpr size_t AT_FIELDS = 72;

/* Fields of the last rules; each bad one costs a repair. */
const std::vector<size_t> aFillers = {216, 212, 208, 204, 200, 84};

constexpr CheckRow aIdentity[] = {
    {"name empty", {{0, 2, 0}}, REFUSED, {}},
    {"name of one character", {{2, 2, 0}}, KEPT, {}},
    {"layout version 1024", {{64, 2, 1024}}, REFUSED, {}},
    {"layout version 1026", {{64, 2, 1026}}, REFUSED, {}},
    {"driver 10.52", {{66, 2, 2612}}, REFUSED, {}},
    {"driver 11.0", {{66, 2, 0x0B00}}, REFUSED, {}},
    {"driver 128.0", {{66, 2, 0x8000}}, REFUSED, {}},
    {"driver 10.0", {{66, 2, 2560}}, KEPT, {}},
    {"driver 9.99", {{66, 2, 0x0963}}, KEPT, {}},
    {"driver 9.255", {{66, 2, 0x09FF}}, KEPT, {}},
    {"size 219", {{68, 2, 219}}, REFUSED, {}},
    {"size 4088 and nothing behind", {{68, 2, 4088}, {70, 2, 0}}, KEPT, {{68, 2, 220}, {70, 2, 3868}}},
    {"size 4088 and a private part", {{68, 2, 4088}}, REFUSED, {}},
    {"size 4088 and one byte", {{68, 2, 4088}, {70, 2, 1}}, REFUSED, {}},
    {"size 4087 and nothing behind", {{68, 2, 4087}, {70, 2, 0}}, REFUSED, {}},
    {"no private part", {{70, 2, 0}}, REFUSED, {}},
    {"private part too long", {{70, 2, 3869}}, REFUSED, {}},
    {"no field bits", {{AT_FIELDS, 4, 0}}, REFUSED, {}},
    {"one piece, and no field bits",
     {{68, 2, 4088}, {70, 2, 0}, {AT_FIELDS, 4, 0}},
     REFUSED,
     {{68, 2, 220}, {70, 2, 3868}}},
};

/* On a colour model of custom range 762..3112 x 1270..12000 and a locale of inches; bins 1025 and 261, three
   media, resolutions 300 x 300, 600 x 600 (default), 1200 x 600. Lengths stand at 80, widths at 82. */
constexpr CheckRow aColorRows[] = {
    {"nothing", {}, KEPT, {}},
    {"orientation bit", {{72, 4, 0x0380FF0E}, {76, 2, 9}}, KEPT, {{72, 4, 0x0380FF0F}, {76, 2, 1}}},
    {"paper bit", {{72, 4, 0x0380FF0D}, {78, 2, 200}}, KEPT, {{72, 4, 0x0380FF0F}, {78, 2, 1}}},
    {"copies bit", {{72, 4, 0x0380FE0F}, {86, 2, 0}}, KEPT, {{72, 4, 0x0380FF0F}, {86, 2, 1}}},
    {"source bit", {{72, 4, 0x0380FD0F}, {88, 2, 4}}, KEPT, {{72, 4, 0x0380FF0F}, {88, 2, 1025}}},
    {"collate bit", {{72, 4, 0x03807F0F}, {100, 2, 5}}, KEPT, {{72, 4, 0x0380FF0F}, {100, 2, 0}}},
    {"colour bit", {{72, 4, 0x0380F70F}, {92, 2, 1}}, KEPT, {{72, 4, 0x0380FF0F}, {92, 2, 2}}},
    {"all bits but the last few: those of the size stay away",
     {{72, 4, 0x03807C00}, {80, 2, 5000}},
     KEPT,
     {{72, 4, 0x0380FF03}}},
    {"other bits stay", {{72, 4, 0xFFFFFFFF}}, KEPT, {}},

    {"portrait", {{76, 2, 1}}, KEPT, {}},
    {"landscape", {{76, 2, 2}}, KEPT, {}},
    {"orientation 0", {{76, 2, 0}}, MENDED, {{76, 2, 1}}},
    {"orientation 3", {{76, 2, 3}}, MENDED, {{76, 2, 1}}},
    {"paper 118", {{78, 2, 118}}, KEPT, {}},
    {"paper 256", {{78, 2, 256}}, KEPT, {}},
    {"paper 32767", {{78, 2, 32767}}, KEPT, {}},
    {"paper 0", {{78, 2, 0}}, MENDED, {{78, 2, 1}}},
    {"paper 119", {{78, 2, 119}}, MENDED, {{78, 2, 1}}},
    {"paper 255", {{78, 2, 255}}, MENDED, {{78, 2, 1}}},
    {"paper above the sign", {{78, 2, 0x9C40}}, MENDED, {{78, 2, 1}}},
    {"smallest size", {{80, 2, 1270}, {82, 2, 762}}, KEPT, {}},
    {"largest size", {{80, 2, 12000}, {82, 2, 3112}}, KEPT, {}},
    {"too short", {{80, 2, 1269}}, MENDED, {{80, 2, 2794}}},
    {"too long", {{80, 2, 12001}, {82, 2, 1000}}, MENDED, {{80, 2, 2794}, {82, 2, 2159}}},
    {"too narrow", {{80, 2, 1300}, {82, 2, 761}}, MENDED, {{80, 2, 2794}, {82, 2, 2159}}},
    {"too wide", {{82, 2, 3113}}, MENDED, {{82, 2, 2159}}},
    {"length above the sign", {{80, 2, 0x8000}}, MENDED, {{80, 2, 2794}}},
    {"own size outside the range stays an own size",
     {{78, 2, 256}, {80, 2, 1}, {82, 2, 1}},
     MENDED,
     {{80, 2, 2794}, {82, 2, 2159}}},
    {"any size from the source without a bin", {{88, 2, 1028}, {80, 2, 1}, {82, 2, 0x8000}}, KEPT, {}},
    {"scale 50", {{84, 2, 50}}, MENDED, {{84, 2, 100}}},
    {"copies 32767", {{86, 2, 32767}}, KEPT, {}},
    {"copies 0", {{86, 2, 0}}, MENDED, {{86, 2, 1}}},
    {"copies above the sign", {{86, 2, 0x8000}}, MENDED, {{86, 2, 1}}},
    {"a bin that is not installed", {{88, 2, 261}}, KEPT, {}},
    {"no such bin", {{88, 2, 262}}, MENDED, {{88, 2, 1025}}},
    {"last number of bins", {{88, 2, 1999}}, MENDED, {{88, 2, 1025}}},
    {"source above the sign", {{88, 2, 0xFFFF}}, MENDED, {{88, 2, 1025}}},
    {"first medium as source", {{88, 2, 2000}}, KEPT, {}},
    {"last medium as source", {{88, 2, 2002}}, KEPT, {}},
    {"medium behind the table", {{88, 2, 2003}}, MENDED, {{88, 2, 1025}}},
    {"resolution of another row", {{90, 2, 1200}}, KEPT, {}},
    {"resolution of two rows", {{90, 2, 1200}, {96, 2, 1200}}, MENDED, {{90, 2, 600}, {96, 2, 600}}},
    {"resolution of two rows, the other way", {{90, 2, 300}}, MENDED, {{90, 2, 600}}},
    {"monochrome", {{92, 2, 1}}, KEPT, {}},
    {"colour 0", {{92, 2, 0}}, MENDED, {{92, 2, 2}}},
    {"colour 3", {{92, 2, 3}}, MENDED, {{92, 2, 2}}},
    {"duplex 3", {{94, 2, 3}}, KEPT, {}},
    {"duplex 7 with its bit", {{94, 2, 7}}, MENDED, {{94, 2, 1}}},
    {"duplex 4 without its bit", {{72, 4, 0x0380EF0F}, {94, 2, 4}}, MENDED, {{94, 2, 0}}},
    {"fonts 1", {{98, 2, 1}}, KEPT, {}},
    {"fonts 4", {{98, 2, 4}}, KEPT, {}},
    {"fonts 0", {{98, 2, 0}}, MENDED, {{98, 2, 2}}},
    {"fonts 5", {{98, 2, 5}}, MENDED, {{98, 2, 2}}},
    {"collate", {{100, 2, 1}}, KEPT, {}},
    {"collate 2", {{100, 2, 2}}, MENDED, {{100, 2, 0}}},
    {"form name behind its end", {{104, 2, 'A'}}, KEPT, {}},
    {"form name", {{102, 8, 0x0041004100410041}, {164, 2, 'Z'}}, MENDED, {{102, 8, 0}, {164, 2, 0}}},
    {"dots per inch of the screen", {{166, 2, 96}}, MENDED, {{166, 2, 0}}},
    {"bits of a pixel", {{168, 4, 24}}, MENDED, {{168, 4, 0}}},
    {"pixels across", {{172, 4, 1}}, MENDED, {{172, 4, 0}}},
    {"pixels down", {{176, 4, 1}}, MENDED, {{176, 4, 0}}},
    {"display flags", {{180, 4, 0x10000}}, MENDED, {{180, 4, 0}}},
    {"display frequency", {{184, 4, 1}}, MENDED, {{184, 4, 0}}},
    {"method 4", {{188, 4, 4}}, KEPT, {}},
    {"method 256", {{188, 4, 256}}, KEPT, {}},
    {"method above the sign", {{188, 4, 0xFFFFFFFF}}, KEPT, {}},
    {"method 5", {{188, 4, 5}}, MENDED, {{188, 4, 1}}},
    {"method 255 without its bit", {{72, 4, 0x0300FF0F}, {188, 4, 255}}, MENDED, {{188, 4, 0}}},
    {"intent 4", {{192, 4, 4}}, KEPT, {}},
    {"intent 5", {{192, 4, 5}}, MENDED, {{192, 4, 1}}},
    {"intent 255 without its bit", {{72, 4, 0x0280FF0F}, {192, 4, 255}}, MENDED, {{192, 4, 0}}},
    {"medium 3", {{196, 4, 3}}, KEPT, {}},
    {"medium 256", {{196, 4, 256}}, KEPT, {}},
    {"medium 4", {{196, 4, 4}}, MENDED, {{196, 4, 1}}},
    {"medium 255 without its bit", {{72, 4, 0x0180FF0F}, {196, 4, 255}}, MENDED, {{196, 4, 0}}},
    {"method, intent and medium 4", {{188, 4, 4}, {192, 4, 4}, {196, 4, 4}}, MENDED, {{196, 4, 1}}},
    {"dither type", {{200, 4, 1}}, MENDED, {{200, 4, 0}}},
    {"first reserved number", {{204, 4, 1}}, MENDED, {{204, 4, 0}}},
    {"second reserved number", {{208, 4, 0x1000000}}, MENDED, {{208, 4, 0}}},
    {"panning width", {{212, 4, 1}}, MENDED, {{212, 4, 0}}},
    {"panning height", {{216, 4, 1}}, MENDED, {{216, 4, 0}}},

    {"two bad fields", {{84, 2, 50}, {86, 2, 0}}, MENDED_TWICE, {{84, 2, 100}, {86, 2, 1}}},
    {"the third repair is the last thing done",
     {{76, 2, 3}, {78, 2, 200}, {84, 2, 50}, {86, 2, 0}},
     REFUSED,
     {{76, 2, 1}, {78, 2, 1}, {84, 2, 100}}},
    {"fields that are kept 0 count one by one",
     {{166, 2, 1}, {172, 4, 1}, {204, 4, 1}, {208, 4, 1}},
     REFUSED,
     {{166, 2, 0}, {172, 4, 0}, {204, 4, 0}}},
    {"a missing bit before the budget",
     {{72, 4, 0x0380FF0E}, {76, 2, 9}, {84, 2, 50}, {86, 2, 0}},
     MENDED_TWICE,
     {{72, 4, 0x0380FF0F}, {76, 2, 1}, {84, 2, 100}, {86, 2, 1}}},
};

/* On a monochrome model; the good record has no colour bit and dmColor 0. */
constexpr CheckRow aMonoRows[] = {
    {"nothing", {}, KEPT, {}},
    {"colour bit", {{72, 4, 0x0000FF0F}, {92, 2, 2}}, KEPT, {{72, 4, 0x0000F70F}, {92, 2, 0}}},
    {"colour 1 without the bit", {{92, 2, 1}}, MENDED, {{92, 2, 0}}},
    {"colour 2 without the bit", {{92, 2, 2}}, MENDED, {{92, 2, 0}}},
};

/* A model whose record cannot be set right: no bin, no medium, no resolution. */
constexpr CheckRow aBareRows[] = {
    {"nothing", {}, MENDED_TWICE, {}}, /* source and resolution, each time anew */
    {"an absent medium as source", {{88, 2, 2000}}, MENDED_TWICE, {{88, 2, 1025}}},
    {"resolution", {{90, 2, 300}}, MENDED_TWICE, {}},
    {"any size up to the sign", {{80, 2, 32767}, {82, 2, 0}}, MENDED_TWICE, {}},
    {"size below the smallest", {{80, 2, -1}}, REFUSED, {{80, 2, 2794}, {88, 2, 1025}}},
};

} // namespace

class PublicCheck : public CheckTest {
  protected:
    template <size_t n> void RunRows(const CheckRow (&aRows)[n])
    {
        for (const CheckRow& row : aRows) {
            RunRow(row, &PublicCheck::CheckPublic, aFillers);
        }
    }
};

TEST_F(PublicCheck, Identity)
{
    UseModel(CheckModel());
    RunRows(aIdentity);
}

TEST_F(PublicCheck, FieldsOfAColourModel)
{
    UseModel(CheckModel());
    RunRows(aColorRows);
}

TEST_F(PublicCheck, FieldsOfAMonochromeModel)
{
    for (u16 usClass : {u16{1}, u16{2}, u16{42}}) {
        SCOPED_TRACE(usClass);
        UseModel(CheckModel(KIND_PCL6, usClass));
        RunRows(aMonoRows);
    }
}

TEST_F(PublicCheck, ModelWithoutTablesOrRanges)
{
    DescriptionBuilder bare;
    bare.Set<u16>(302, 0).Set<u16>(116, 1025);
    UseModel(bare);
    for (const CheckRow& row : aBareRows) {
        RunRow(row, &PublicCheck::CheckPublic, aFillers);
    }
}

TEST_F(PublicCheck, RepairsTakeTheDefaultsOfModelAndLocale)
{
    /* The paper's built-in size, not the one of the model's own row. */
    DescriptionBuilder b = CheckModel();
    b.Table<PaperRow>(8, {{1, 9, 2111, 2999, 1, 0, 0, 0, {}}, {}});
    UseModel(b.Set<u16>(116, 261).Set<i16>(120, 0));
    SetLocaleValue(u"iMeasure", u"0");
    RunRow({"paper code", {{78, 2, 200}}, MENDED, {{78, 2, 9}}}, &PublicCheck::CheckPublic, aFillers);
    RunRow({"paper size", {{80, 2, 1}}, MENDED, {{80, 2, 2970}, {82, 2, 2100}}}, &PublicCheck::CheckPublic,
           aFillers);
    RunRow({"source", {{88, 2, 4}}, MENDED, {{88, 2, 261}}}, &PublicCheck::CheckPublic, aFillers);
    RunRow({"resolution", {{90, 2, 4}}, MENDED, {{90, 2, 300}, {96, 2, 300}}}, &PublicCheck::CheckPublic,
           aFillers);

    UseModel(CheckModel().Set<i16>(120, 3)); /* the default is the row that closes the table */
    Put(&good, {90, 2, 600});
    Put(&good, {96, 2, 600});
    RunRow({"no default row", {{90, 2, 4}}, MENDED, {}}, &PublicCheck::CheckPublic, aFillers);
}

TEST_F(PublicCheck, WithoutADescription)
{
    UseModel(CheckModel());
    std::filesystem::remove(HostPath(u"C:\\drv\\qa.xpi"));
    DriverDevmode record = good;
    Put(&record, {68, 2, 4088});
    Put(&record, {70, 2, 0});
    DriverDevmode before = record;
    EXPECT_EQ(CheckPublic(&record, nullptr), 0);
    EXPECT_EQ(FirstDifference(record, before), -1);
    EXPECT_EQ(CheckPublic(&record, pModel.get()), 1) << "a model at hand is all it needs";
}

/* Measures: what a user reads and types, in both units. Expected texts were worked out by hand. */
#include <gtest/gtest.h>

#include "base/measure.h"
#include "support/both_builds.h"
#include "support/data_file.h"

namespace {

std::string Shown(i32 lValue, int bMetric, RoundingMode mode, const WCHAR* wcDecimal = TEXT("."))
{
    WCHAR wcText[64];
    FormatMeasure(lValue, bMetric, mode, wcDecimal, wcText, 64);
    return Ascii(wcText);
}

i32 Typed(const char* text, int bMetric, const WCHAR* wcDecimal = TEXT("."))
{
    return MeasureOfText(Wide(text).c_str(), wcDecimal, bMetric);
}

TEST(Measure, IsShownInBothUnits)
{
    for (const DataRow& row : ReadRows("measures.txt")) {
        const std::vector<std::string> value = Words(row[0]);
        const i32 lValue = static_cast<i32>(ToNumber(value[0]));
        const int bMetric = value[1] == "mm";
        EXPECT_EQ(Shown(lValue, bMetric, ROUND_NEAREST), row[1]) << row[0];
        EXPECT_EQ(Shown(lValue, bMetric, ROUND_DOWN), row[2]) << row[0];
        EXPECT_EQ(Shown(lValue, bMetric, ROUND_UP), row[3]) << row[0];
    }
    EXPECT_EQ(Shown(2100, 1, ROUND_NEAREST, TEXT(",")), "21,0");
    EXPECT_EQ(Shown(static_cast<i32>(0x80000000), 1, ROUND_NEAREST), "-21474836.5");
}

TEST(Measure, IsReadAsTyped)
{
    EXPECT_EQ(Typed("12,5", 1), 0) << "a comma under a point is no number's end";
    EXPECT_EQ(Typed("21 mm", 1), 2100);
    EXPECT_EQ(Typed(" \t+3.07", 0), 7797);
    EXPECT_EQ(Typed("1.5", 0), 3810);
    EXPECT_EQ(Typed("12.x5", 0), 30607) << "a foreign character takes the place of a digit";
    EXPECT_EQ(Typed("1.57", 1), 150);
    EXPECT_EQ(Typed("7x", 1), 0);
    EXPECT_EQ(Typed("-1.5", 1), -150);
    EXPECT_EQ(Typed("1;5", 0, TEXT(",;")), 0) << "only the first character of the separator counts";
    EXPECT_EQ(Typed("1.5", 0, TEXT("")), 3810);
    EXPECT_EQ(Typed("", 1), 0);
    EXPECT_EQ(Typed("-99999999999999999999", 0), -0x7FFFFFFF);
    i32 lWhole, lFraction;
    EXPECT_EQ(ParseMeasure(TEXT("-0.0"), TEXT("."), 1, &lWhole, &lFraction), 0);
    EXPECT_EQ(ParseMeasure(TEXT("-0.1"), TEXT("."), 1, &lWhole, &lFraction), 1);
}

/* What is shown reads back to a value that is shown the same, over every value a page may hold. */
TEST(Measure, RoundTripsOverTheRange)
{
    for (const WCHAR* wcDecimal : {TEXT("."), TEXT(","), TEXT("'"), TEXT("/")}) {
        for (int bMetric = 0; bMetric < 2; bMetric++) {
            i32 lWorst = 0;
            for (i32 lValue = -25400; lValue <= 50000; lValue++) {
                WCHAR wcText[64], wcAgain[64];
                FormatMeasure(lValue, bMetric, ROUND_NEAREST, wcDecimal, wcText, 64);
                i32 lRead = MeasureOfText(wcText, wcDecimal, bMetric);
                lWorst = std::max(lWorst, std::abs(lRead - lValue));
                FormatMeasure(lRead, bMetric, ROUND_NEAREST, wcDecimal, wcAgain, 64);
                ASSERT_EQ(WideString(wcText), WideString(wcAgain)) << lValue;
            }
            EXPECT_LE(lWorst, bMetric ? 5 : 13); /* half of the smallest step that is shown */
        }
    }
}

TEST(Measure, SpinStepsShowAHundredthOfAnInchEach)
{
    for (int nCode : {SPIN_UP, SPIN_DOWN}) {
        std::string text = "0.00";
        for (int i = 1; i <= 5; i++) {
            RoundingMode mode;
            i32 lValue = StepMeasure(Typed(text.c_str(), 0), nCode, -25400, 25400, 0, &mode);
            text = Shown(lValue, 0, mode);
            EXPECT_EQ(text, (nCode == SPIN_UP ? "0.0" : "-0.0") + std::to_string(i));
        }
    }
    RoundingMode mode; /* how a step wants to be shown: known only behind it */
    const i32 lHighest = StepMeasure(Typed("12.60", 0), SPIN_UP, 7620, 32000, 0, &mode);
    EXPECT_EQ(Shown(lHighest, 0, mode), "12.59");
    const i32 lLowest = StepMeasure(Typed("3.00", 0), SPIN_DOWN, 7620, 32000, 0, &mode);
    EXPECT_EQ(Shown(lLowest, 0, mode), "3.00");
    EXPECT_EQ(StepMeasure(2000, 8, 0, 32000, 1, &mode), 2000);
    EXPECT_EQ(StepMeasure(0x7FFFFFFF, SPIN_UP, 0, 0x7FFFFFFF, 1, &mode), 0x7FFFFFFF);
    EXPECT_EQ(StepNumber(32762, SPIN_UP, 4, 0, 32764), 32764);
    EXPECT_EQ(StepNumber(-50, SPIN_DOWN, 1, -50, 50), -50);
    EXPECT_EQ(StepNumber(250, 8, 1, 1, 99), 99) << "other codes hold the limits all the same";
}

TEST(Measure, KeysStepAndWrap)
{
    const NumberRange copies = {1, 1, 99}, tone = {-50, 0, 50}, angle = {0, 45, 359};
    const std::tuple<NumberRange, i32, int, i32> aCases[] = {
        {copies, 5, KEY_NEXT, 99},   {copies, 10, KEY_NEXT, 1},  {copies, 11, KEY_NEXT, 1},
        {copies, 98, KEY_PRIOR, 99}, {tone, 5, KEY_NEXT, 50},    {tone, 10, KEY_NEXT, 0},
        {tone, 0, KEY_DOWN, -1},     {tone, -45, KEY_NEXT, -50}, {angle, 3, KEY_NEXT, 359},
        {angle, 3, KEY_HOME, 45},    {angle, 3, KEY_END, 359},   {angle, 3, KEY_UP, 4},
    };
    for (const auto& [range, lFrom, nKey, lTo] : aCases) {
        i32 lValue = lFrom;
        EXPECT_EQ(PressNumberKey(nKey, range, &lValue), 1);
        EXPECT_EQ(lValue, lTo) << lFrom << " key " << nKey;
    }
    i32 lValue = 5;
    EXPECT_EQ(PressNumberKey('7', copies, &lValue), 0);
    EXPECT_EQ(lValue, 5);

    RoundingMode mode;
    NumberRange side = PaperSideRange(1000, 3200, 0);
    lValue = Typed("3.94", 0);
    EXPECT_EQ(PressMeasureKey(KEY_NEXT, side, 0, &lValue, &mode), 1);
    EXPECT_EQ(Shown(lValue, 0, mode), "3.94");
    EXPECT_EQ(PressMeasureKey(KEY_END, side, 0, &lValue, &mode), 1);
    EXPECT_EQ(Shown(lValue, 0, mode), "12.59");
    EXPECT_EQ(PressMeasureKey(0x41, side, 0, &lValue, &mode), 0);
    EXPECT_EQ(PaperSideRange(762, 3112, 1).lHome, 7700);
    EXPECT_EQ(PaperSideRange(762, 3112, 0).lHome, 10160);
    EXPECT_EQ(PaperSideRange(760, 3112, 0).lHome, 7620);
    EXPECT_EQ(PaperSideRange(762, 3112, 0).lMin, 7620);
}

} // namespace

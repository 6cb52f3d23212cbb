#include "base/measure.h"

#include "base/arithmetic.h"
#include "base/format.h"

namespace {

constexpr i32 HUNDREDTHS_PER_MM = 100;
constexpr i32 LARGEST = 0x7FFFFFFF;

i32 Clamp(i64 llValue, i64 llMin, i64 llMax)
{
    return static_cast<i32>(llValue < llMin ? llMin : llValue > llMax ? llMax : llValue);
}

int EndsNumber(WCHAR wc)
{
    return !wc || wc == ' ' || wc == '\t' || wc == '\r' || wc == '\n';
}

int IsDigit(WCHAR wc)
{
    return wc >= '0' && wc <= '9';
}

} // namespace

void SplitMeasure(i32 lValue, int bMetric, RoundingMode mode, i32* plWhole, i32* plFraction)
{
    i64 llValue = lValue < 0 ? -static_cast<i64>(lValue) : lValue;
    i64 llWhole, llFraction;
    i64 llLimit = bMetric ? 10 : 100;
    if (bMetric) {
        llWhole = llValue / HUNDREDTHS_PER_MM;
        llFraction = (llValue % HUNDREDTHS_PER_MM + (mode == ROUND_NEAREST ? 5 : 0)) / 10;
    } else {
        i64 llRest = llValue % HUNDREDTHS_PER_INCH;
        llWhole = llValue / HUNDREDTHS_PER_INCH;
        llFraction =
            (llRest * 100 + (mode == ROUND_NEAREST ? HUNDREDTHS_PER_INCH / 2 : 0)) / HUNDREDTHS_PER_INCH;
        if (mode == ROUND_UP && llValue * 10 % 254) {
            llFraction++;
        }
    }
    if (llFraction >= llLimit) {
        llFraction = 0;
        llWhole++;
    }
    if (lValue < 0) {
        llFraction = llWhole ? llFraction : -llFraction;
        llWhole = -llWhole;
    }
    *plWhole = static_cast<i32>(llWhole);
    *plFraction = static_cast<i32>(llFraction);
}

void FormatMeasure(i32 lValue, int bMetric, RoundingMode mode, const WCHAR* wcDecimal, WCHAR* wcOut, int cch)
{
    i32 lWhole, lFraction;
    SplitMeasure(lValue, bMetric, mode, &lWhole, &lFraction);
    if (lFraction < 0) {
        FormatWide(wcOut, cch, bMetric ? TEXT("-0%s%d") : TEXT("-0%s%02d"), wcDecimal, -lFraction);
    } else {
        FormatWide(wcOut, cch, bMetric ? TEXT("%d%s%d") : TEXT("%d%s%02d"), lWhole, wcDecimal, lFraction);
    }
}

int ParseMeasure(const WCHAR* wcText, const WCHAR* wcDecimal, int bMetric, i32* plWhole, i32* plFraction)
{
    WCHAR wcSeparator = *wcDecimal ? *wcDecimal : static_cast<WCHAR>('.');
    while (*wcText == ' ' || *wcText == '\t') {
        wcText++;
    }
    int bMinus = *wcText == '-';
    wcText += bMinus || *wcText == '+';
    i64 llWhole = 0;
    for (; IsDigit(*wcText); wcText++) {
        llWhole = Clamp(llWhole * 10 + (*wcText - '0'), 0, LARGEST);
    }
    i32 lFraction = 0;
    if (*wcText == wcSeparator) {
        wcText++;
        for (i32 lWeight = bMetric ? 1 : 10; lWeight && !EndsNumber(*wcText); lWeight /= 10, wcText++) {
            lFraction += IsDigit(*wcText) ? (*wcText - '0') * lWeight : 0;
        }
    } else if (!EndsNumber(*wcText)) {
        llWhole = 0;
    }
    *plWhole = static_cast<i32>(llWhole);
    *plFraction = lFraction;
    return bMinus && (llWhole || lFraction);
}

i32 MeasureOfText(const WCHAR* wcText, const WCHAR* wcDecimal, int bMetric)
{
    i32 lWhole, lFraction;
    int bMinus = ParseMeasure(wcText, wcDecimal, bMetric, &lWhole, &lFraction);
    i64 llValue = bMetric ? (static_cast<i64>(lWhole) * 10 + lFraction) * 10
                          : (static_cast<i64>(lWhole) * 100 + lFraction) * 254 / 10;
    return Clamp(bMinus ? -llValue : llValue, -static_cast<i64>(LARGEST), LARGEST);
}

i32 StepMeasure(i32 lValue, int nCode, i32 lMin, i32 lMax, int bMetric, RoundingMode* pMode)
{
    /* Steps that show as a hundredth of an inch each, wherever the value stands. */
    constexpr i32 alInchSteps[] = {25, 26, 25, 25, 26};
    i64 llValue = lValue;
    i32 lStep = bMetric ? 10 : alInchSteps[(llValue < 0 ? -llValue : llValue) % 5];
    llValue += nCode == SPIN_UP ? lStep : nCode == SPIN_DOWN ? -lStep : 0;
    llValue = llValue < lMin ? lMin : llValue;
    *pMode = llValue >= lMax ? ROUND_DOWN : ROUND_NEAREST;
    return static_cast<i32>(llValue >= lMax ? lMax : llValue);
}

i32 StepNumber(i32 lValue, int nCode, i32 lStep, i32 lMin, i32 lMax)
{
    i64 llMove = nCode == SPIN_UP ? lStep : nCode == SPIN_DOWN ? -static_cast<i64>(lStep) : 0;
    return Clamp(lValue + llMove, lMin, lMax);
}

namespace {

/* The step that a key makes; 0 for the keys that set a value and for all others. */
i32 KeyStep(int nKey, i32 lSmall, i32 lLarge)
{
    switch (nKey) {
    case KEY_UP: return lSmall;
    case KEY_DOWN: return -lSmall;
    case KEY_PRIOR: return lLarge;
    case KEY_NEXT: return -lLarge;
    default: return 0;
    }
}

} // namespace

int PressNumberKey(int nKey, const NumberRange& range, i32* plValue)
{
    if (nKey == KEY_HOME || nKey == KEY_END) {
        *plValue = nKey == KEY_HOME ? range.lHome : range.lMax;
        return 1;
    }
    i32 lStep = KeyStep(nKey, 1, 10);
    if (!lStep) {
        return 0;
    }
    i64 llValue = static_cast<i64>(*plValue) + lStep;
    *plValue = *plValue > 0 && llValue < 0 ? range.lMax : Clamp(llValue, range.lMin, range.lMax);
    return 1;
}

int PressMeasureKey(int nKey, const NumberRange& range, int bMetric, i32* plValue, RoundingMode* pMode)
{
    i32 lStep =
        bMetric ? KeyStep(nKey, 10, 100) : KeyStep(nKey, HUNDREDTHS_PER_INCH / 10, HUNDREDTHS_PER_INCH);
    i64 llValue = static_cast<i64>(*plValue) + lStep;
    if (nKey == KEY_HOME || nKey == KEY_END) {
        llValue = nKey == KEY_HOME ? range.lHome : range.lMax;
    } else if (!lStep) {
        return 0;
    }
    *pMode = llValue >= range.lMax ? ROUND_DOWN : llValue < range.lMin ? ROUND_UP : ROUND_NEAREST;
    *plValue = llValue >= range.lMax  ? range.lMax
               : llValue < range.lMin ? range.lMin
                                      : static_cast<i32>(llValue);
    return 1;
}

NumberRange PaperSideRange(i16 sMin, i16 sMax, int bMetric)
{
    i32 lStep = bMetric ? 10 : 254;
    return {sMin * 10, (sMin / lStep + 1) * lStep * 10, sMax * 10};
}

/* Measures and whole numbers of numeric edit controls, as plain arithmetic.

   A measure is a length in hundredths of a millimetre, whichever unit it is shown in. On screen it is a whole part
   and a fraction: millimetres with one digit behind the decimal separator, inches with two. */
#ifndef TQUI_BASE_MEASURE_H
#define TQUI_BASE_MEASURE_H

#include "platform/basic.h"
#include "platform/types.h"

constexpr i32 HUNDREDTHS_PER_INCH = 2540;

/* Rounding to what is shown. In metric both directions cut. */
enum RoundingMode : int { ROUND_NEAREST, ROUND_DOWN, ROUND_UP };

/* Splits a measure. A negative value below one unit gives a negative fraction. */
void SplitMeasure(i32 lValue, int bMetric, RoundingMode mode, i32* plWhole, i32* plFraction);

/* The measure as text of at most cch - 1 characters. */
void FormatMeasure(i32 lValue, int bMetric, RoundingMode mode, const WCHAR* wcDecimal, WCHAR* wcOut, int cch);

/* Reads blanks, one sign, digits, and behind the first character of the separator ("." when that is empty) the
   fraction; in it a foreign character takes up a digit's place. Both parts are 0 when anything else but a blank,
   a tab or a line end stands behind the digits. Digits beyond 32 bits stop at the limit.
   Result: 1 for a minus sign before a value that is not 0. */
int ParseMeasure(const WCHAR* wcText, const WCHAR* wcDecimal, int bMetric, i32* plWhole, i32* plFraction);

/* The same as a measure. */
i32 MeasureOfText(const WCHAR* wcText, const WCHAR* wcDecimal, int bMetric);

/* Codes of a spin button, as the scroll bar sends them; others move nothing. */
enum SpinCode : int { SPIN_UP = 0, SPIN_DOWN = 1 };

/* A step of a spin button on a measure, held within the limits; *pMode is how the result is shown. */
i32 StepMeasure(i32 lValue, int nCode, i32 lMin, i32 lMax, int bMetric, RoundingMode* pMode);

/* A step of a spin button on a whole number, held within the limits. */
i32 StepNumber(i32 lValue, int nCode, i32 lStep, i32 lMin, i32 lMax);

/* Keys of a numeric edit control, in the order of their codes. */
enum NumericKey : int { KEY_PRIOR = 0x21, KEY_NEXT, KEY_END, KEY_HOME, KEY_UP = 0x26, KEY_DOWN = 0x28 };

struct NumberRange {
    i32 lMin, lHome, lMax;
};

/* 1 when the key is one of the six; *plValue is then the new value. A step from a positive value to below 0
   gives the maximum. */
int PressNumberKey(int nKey, const NumberRange& range, i32* plValue);

/* The same for a measure; *pMode is how the result is shown. */
int PressMeasureKey(int nKey, const NumberRange& range, int bMetric, i32* plValue, RoundingMode* pMode);

/* Limits of a paper's side as a range of measures, from tenths of a millimetre: home is the first whole
   millimetre or inch above the minimum. */
NumberRange PaperSideRange(i16 sMin, i16 sMax, int bMetric);

#endif

/* The bytes are a request, a frame and a device, then a text that is typed as a measure. The picture's geometry must stay
   within what device contexts take, whatever they hold. */
#include "base/measure.h"
#include "fuzz/preview_inputs.h"
#include "preview/preview_choice.h"

namespace {

void CheckMeasures(const PreviewInput& input, const WCHAR* wcTyped)
{
    const int bMetric = input.bitFlags >> 5 & 1;
    const WCHAR* wcDecimal = input.bitFlags >> 6 & 1 ? TEXT(",") : TEXT(".");
    PreviewSizes sizes = {};
    sizes.lTargetWidth = input.lTargetWidth;
    sizes.lTargetLength = input.lTargetLength;
    PreviewChoice choice = {};
    choice.usOrientation = input.sOrientation;
    choice.sLayout = input.sLayout;
    WCHAR wcText[TEXT_CHARS];
    FormatSizeLine(sizes, choice, bMetric, wcTyped, wcDecimal, wcText);
    Require(BoundedLength(wcText, TEXT_CHARS) < TEXT_CHARS);

    /* What was read is shown and read again as the same. */
    const i32 lRead = MeasureOfText(wcTyped, wcDecimal, bMetric);
    FormatMeasure(lRead, bMetric, ROUND_NEAREST, wcDecimal, wcText, TEXT_CHARS);
    const i64 llAgain = MeasureOfText(wcText, wcDecimal, bMetric);
    Require(llAgain - lRead >= -26 && llAgain - lRead <= 26);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* pBytes, size_t cb)
{
    PreviewInput input = {};
    std::memcpy(&input, pBytes, std::min(cb, sizeof input));
    WCHAR wcTyped[300] = {};
    for (size_t i = sizeof input; i < cb && i - sizeof input < 299; i++) {
        wcTyped[i - sizeof input] = pBytes[i];
    }
    TryPreviewRequest(input);
    CheckMeasures(input, wcTyped);
    return 0;
}

/* Defaults of the locale, and the row of a new paper. */
#include "description/paper_row.h"

#include "platform/profile.h"

int IsMetricLocale()
{
    return GetProfileIntW(TEXT("intl"), TEXT("iMeasure"), 1) != 1;
}

i16 GetDefaultPaper()
{
    return IsMetricLocale() ? PAPER_A4 : PAPER_LETTER;
}

int GetDefaultPaperSize(i16* psWidth, i16* psLength)
{
    int bMetric = IsMetricLocale();
    *psWidth = bMetric ? 2100 : 2159;
    *psLength = bMetric ? 2970 : 2794;
    return bMetric;
}

void NewPaperRow(PaperSizeRow* pRow, const XpiModel* pModel)
{
    *pRow = {};
    pRow->ulMetric = static_cast<u32>(IsMetricLocale());
    i32 lWidth = pModel->sMinCustomWidth;
    i32 lLength = pModel->sMinCustomLength;
    if (pRow->ulMetric) {
        pRow->ulWidth = static_cast<u32>((lWidth + 5) / 10 * 100);
        pRow->ulLength = static_cast<u32>((lLength + 5) / 10 * 100);
    } else {
        pRow->ulWidth = static_cast<u32>((lWidth + 127) / 254 * 2540);
        pRow->ulLength = static_cast<u32>((lLength + 127) / 254 * 2540);
    }
}

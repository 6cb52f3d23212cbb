/* Asks capabilities and writes the answers down. */
#include "tools/tq/ask.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "entry/exports.h"
#include "hosted/standin.h"

namespace {

constexpr size_t GUARD_BYTES = 64;
constexpr u8 GUARD_BYTE = 0xA5;

struct Question {
    const char* cName;
    size_t cbRow; /* 0: a number */
};
constexpr Question aQuestions[] = {
    {"", 0},
    {"DC_FIELDS", 0},
    {"DC_PAPERS", 2},
    {"DC_PAPERSIZE", 8},
    {"DC_MINEXTENT", 0},
    {"DC_MAXEXTENT", 0},
    {"DC_BINS", 2},
    {"DC_DUPLEX", 0},
    {"DC_SIZE", 0},
    {"DC_EXTRA", 0},
    {"DC_VERSION", 0},
    {"DC_DRIVER", 0},
    {"DC_BINNAMES", 48},
    {"DC_ENUMRESOLUTIONS", 8},
    {"DC_FILEDEPENDENCIES", 0},
    {"DC_TRUETYPE", 0},
    {"DC_PAPERNAMES", 128},
    {"DC_ORIENTATION", 0},
    {"DC_COPIES", 0},
    {"DC_BINADJUST", 0},
    {"DC_EMF_COMPLIANT", 0},
    {"DC_DATATYPE_PRODUCED", 0},
    {"DC_COLLATE", 0},
    {"DC_MANUFACTURER", 0},
    {"DC_MODEL", 0},
    {"DC_PERSONALITY", 64},
    {"DC_PRINTRATE", 0},
    {"DC_PRINTRATEUNIT", 0},
    {"DC_PRINTERMEM", 0},
    {"DC_MEDIAREADY", 128},
    {"DC_STAPLE", 0},
    {"DC_PRINTRATEPPM", 0},
    {"DC_COLORDEVICE", 0},
    {"DC_NUP", 4},
    {"DC_MEDIATYPENAMES", 128},
    {"DC_MEDIATYPES", 4},
};
static_assert(std::size(aQuestions) == LAST_QUESTION + 1);

struct Field {
    DWORD dwBit;
    const char* cName;
};
constexpr Field aFields[] = {{0x1, "orientation"},     {0x2, "paper size"},       {0x4, "length"},
                             {0x8, "width"},           {0x100, "copies"},         {0x200, "source"},
                             {0x400, "quality"},       {0x800, "colour"},         {0x1000, "duplex"},
                             {0x2000, "y resolution"}, {0x4000, "TrueType"},      {0x8000, "collate"},
                             {0x800000, "ICM method"}, {0x1000000, "ICM intent"}, {0x2000000, "media type"}};

template <class Number> Number Take(const Bytes& rows, size_t nAt)
{
    Number number = 0;
    if (nAt + sizeof number <= rows.size()) {
        std::memcpy(&number, rows.data() + nAt, sizeof number);
    }
    return number;
}

std::string RowText(const Bytes& rows, size_t nAt, size_t cbRow)
{
    WideText wcText;
    for (size_t i = nAt; i < nAt + cbRow; i += sizeof(WCHAR)) {
        WCHAR wcChar = Take<u16>(rows, i);
        if (!wcChar) {
            break;
        }
        wcText += wcChar;
    }
    return Narrow(wcText);
}

std::string Millimetres(i32 lTenths)
{
    return std::to_string(lTenths / 10) + "." + std::to_string(std::abs(lTenths % 10));
}

/* One row of a list, or the meaning of a number where it has one. */
std::string Explain(const CapabilityAnswer& answer, size_t nRow)
{
    size_t cbRow = RowBytes(answer.wQuestion);
    size_t nAt = nRow * cbRow;
    switch (answer.wQuestion) {
    case DC_PAPERS:
    case DC_BINS: return std::to_string(Take<i16>(answer.rows, nAt));
    case DC_PAPERSIZE:
        return Millimetres(Take<i32>(answer.rows, nAt)) + " x " +
               Millimetres(Take<i32>(answer.rows, nAt + 4)) + " mm";
    case DC_ENUMRESOLUTIONS:
        return std::to_string(Take<i32>(answer.rows, nAt)) + " x " +
               std::to_string(Take<i32>(answer.rows, nAt + 4));
    case DC_NUP:
    case DC_MEDIATYPES: return std::to_string(Take<u32>(answer.rows, nAt));
    default: return "\"" + RowText(answer.rows, nAt, cbRow) + "\"";
    }
}

std::string ExplainNumber(const CapabilityAnswer& answer)
{
    char cText[64];
    DWORD dwResult = answer.dwResult;
    switch (answer.wQuestion) {
    case DC_FIELDS: {
        std::snprintf(cText, sizeof cText, "0x%08X:", dwResult);
        std::string text = cText;
        for (const Field& field : aFields) {
            if (dwResult & field.dwBit) {
                text += std::string(text.back() == ':' ? " " : ", ") + field.cName;
            }
        }
        return text;
    }
    case DC_MINEXTENT:
    case DC_MAXEXTENT:
        return Millimetres(static_cast<i16>(dwResult & 0xFFFF)) + " x " +
               Millimetres(static_cast<i16>(dwResult >> 16)) + " mm";
    case DC_DUPLEX:
    case DC_STAPLE:
    case DC_COLORDEVICE:
    case DC_COLLATE: return dwResult ? "yes" : "no";
    case DC_SIZE:
    case DC_EXTRA: return std::to_string(dwResult) + " bytes";
    case DC_PRINTRATE:
    case DC_PRINTRATEPPM: return std::to_string(dwResult) + " pages a minute";
    case DC_PRINTERMEM: return std::to_string(dwResult) + " KB";
    case DC_ORIENTATION: return std::to_string(dwResult) + " degrees";
    default: return std::to_string(dwResult);
    }
}

} // namespace

const char* QuestionName(WORD wQuestion)
{
    return wQuestion < std::size(aQuestions) ? aQuestions[wQuestion].cName : "";
}

size_t RowBytes(WORD wQuestion)
{
    return wQuestion < std::size(aQuestions) ? aQuestions[wQuestion].cbRow : 0;
}

CapabilityAnswer AskCapability(HANDLE hPrinter, const WideText& wcPrinter, WORD wQuestion)
{
    WideText wcName = wcPrinter;
    LPWSTR pName = wcName.empty() ? nullptr : wcName.data();
    CapabilityAnswer answer = {
        wQuestion, DrvDeviceCapabilities(hPrinter, pName, wQuestion, nullptr, nullptr), {}};
    size_t cbRow = RowBytes(wQuestion);
    if (!cbRow || !answer.dwResult) {
        return answer;
    }
    size_t cb = cbRow * answer.dwResult;
    Bytes buffer(cb + 2 * GUARD_BYTES, GUARD_BYTE);
    std::fill(buffer.begin() + GUARD_BYTES, buffer.end() - GUARD_BYTES, static_cast<u8>(0));
    DWORD dwFilled = DrvDeviceCapabilities(hPrinter, pName, wQuestion, buffer.data() + GUARD_BYTES, nullptr);
    bool bWhole =
        std::all_of(buffer.begin(), buffer.begin() + GUARD_BYTES, [](u8 b) { return b == GUARD_BYTE; }) &&
        std::all_of(buffer.end() - GUARD_BYTES, buffer.end(), [](u8 b) { return b == GUARD_BYTE; });
    if (!bWhole) {
        std::fprintf(stderr, "%s wrote outside its %zu bytes\n", QuestionName(wQuestion), cb);
        std::abort();
    }
    answer.dwResult = dwFilled;
    answer.rows =
        Bytes(buffer.begin() + GUARD_BYTES,
              buffer.begin() + static_cast<std::ptrdiff_t>(GUARD_BYTES + std::min(cb, cbRow * dwFilled)));
    return answer;
}

std::string RawLine(const CapabilityAnswer& answer)
{
    std::string line = std::to_string(answer.wQuestion) + " " + std::to_string(answer.dwResult) + " ";
    for (u8 bByte : answer.rows) {
        char cHex[3];
        std::snprintf(cHex, sizeof cHex, "%02x", bByte);
        line += cHex;
    }
    return answer.rows.empty() ? line + "-" : line;
}

std::string ReadableLines(const std::vector<CapabilityAnswer>& answers)
{
    constexpr size_t INDENT = 27, WIDTH = 110;
    std::string text;
    for (const CapabilityAnswer& answer : answers) {
        char cHead[64];
        std::snprintf(cHead, sizeof cHead, " %2d  %-22s", answer.wQuestion, QuestionName(answer.wQuestion));
        std::string line = cHead;
        if (!RowBytes(answer.wQuestion)) {
            text += line + ExplainNumber(answer) + "\n";
            continue;
        }
        line += std::to_string(answer.dwResult) + (answer.dwResult == 1 ? " row: " : " rows: ");
        for (size_t nRow = 0; nRow < answer.dwResult; nRow++) {
            std::string row = Explain(answer, nRow) + (nRow + 1 < answer.dwResult ? ", " : "");
            if (line.size() + row.size() > WIDTH) {
                text += line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
                line = std::string(INDENT, ' ');
            }
            line += row;
        }
        text += line + "\n";
    }
    return text;
}

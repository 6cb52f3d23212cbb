/* The command `tq job`. */
#include "tools/tq/job.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <ostream>

#include "document/defaults.h"
#include "entry/render_parameters.h"
#include "hosted/standin.h"
#include "standins/job_core.h"
#include "tools/tq/explain.h"
#include "tools/tq/record.h"
#include "tools/tq/record_text.h"

namespace {

constexpr DWORD JOB_ID = 1;

/* A field of RenderParameterRecord. cbEach 1 is a text, else the width of each of its numbers. */
struct RenderField {
    const char* cName;
    size_t nOffset, cb, cbEach;
    bool bSigned;
    const char* cMeaning;
};
#define RENDER_FIELD(field, cbEach, bSigned, meaning) \
    { \
#field, offsetof(RenderParameterRecord, field), sizeof(RenderParameterRecord::field), cbEach, \
            bSigned, meaning \
    }
constexpr RenderField aRenderFields[] = {
    RENDER_FIELD(cModelName, 1, false, "name of the printer's driver"),
    RENDER_FIELD(cXpiName, 1, false, "path of the description file that the settings were made for"),
    RENDER_FIELD(dwColorFormat, 4, false, "colour format"),
    RENDER_FIELD(usScreen, 2, false, "number of the chosen screen"),
    RENDER_FIELD(adwTextOptions, 4, false, "number of the chosen value, for each text option"),
    RENDER_FIELD(adwImageOptions, 4, false, "the same for images"),
    RENDER_FIELD(adwGraphicsOptions, 4, false, "the same for graphics"),
    RENDER_FIELD(adwGeneralOptions, 4, false, "the same for general options"),
    RENDER_FIELD(sProfile, 2, false, "choice of the colour profile"),
    RENDER_FIELD(cProfileName, 1, false, "its file, when the choice is 2"),
    RENDER_FIELD(sScreen, 2, false, "choice of the halftone screen"),
    RENDER_FIELD(cScreenName, 1, false, "its file, when the choice is 1"),
    RENDER_FIELD(usDpiX, 2, false, "dots per inch across"),
    RENDER_FIELD(usDpiY, 2, false, "dots per inch down"),
    RENDER_FIELD(usContrast, 2, true, "-50 to 50"),
    RENDER_FIELD(usBrightness, 2, true, "-50 to 50"),
    RENDER_FIELD(usColorRadio, 2, false, "the record's sColorRadio"),
    RENDER_FIELD(dwOCMFlags, 4, false, "the record's, as it is"),
    RENDER_FIELD(sOCMData1, 2, false, "the record's, as it is"),
    RENDER_FIELD(sOCMData2, 2, false, "the record's, as it is"),
    RENDER_FIELD(sOCMData3, 2, false, "the record's, as it is"),
    RENDER_FIELD(sOCMData4, 2, false, "the record's, as it is"),
    RENDER_FIELD(dwJobId, 4, false, "the spooler's job; 0 but at the start of a job that has a name"),
};
#undef RENDER_FIELD

/* Line ends and other bytes that a terminal does not show, in sight; the rest is the code page's. */
std::string Visible(const std::string& bytes)
{
    std::string text;
    for (char c : bytes) {
        unsigned nByte = static_cast<unsigned char>(c);
        if (nByte >= 0x20 && nByte != 0x7F) {
            text += Narrow(FromCodePage(&c, 1));
        } else {
            char cCode[8];
            std::snprintf(cCode, sizeof cCode, "\\x%02X", nByte);
            text += c == '\r' ? "\\r" : c == '\n' ? "\\n" : c == '\0' ? "\\0" : cCode;
        }
    }
    return text;
}

/* One line for each piece that ends with cEnd. */
std::string Pieces(const std::string& bytes, char cEnd)
{
    std::string lines;
    for (size_t nAt = 0; nAt < bytes.size();) {
        size_t nEnd = bytes.find(cEnd, nAt);
        nEnd = nEnd == std::string::npos ? bytes.size() : nEnd + 1;
        lines += "    " + Visible(bytes.substr(nAt, nEnd - nAt)) + "\n";
        nAt = nEnd;
    }
    return lines;
}

/* The fields that are not zero. */
std::string Fields(const std::string& bytes)
{
    std::string lines;
    for (const RenderField& field : aRenderFields) {
        std::string part = bytes.substr(field.nOffset, field.cb), value;
        if (part.find_first_not_of('\0') == std::string::npos) {
            continue;
        }
        for (size_t nAt = 0; field.cbEach > 1 && nAt < part.size(); nAt += field.cbEach) {
            u32 ulNumber = 0;
            std::memcpy(&ulNumber, part.data() + nAt, field.cbEach);
            value += (nAt ? " " : "") +
                     (field.bSigned ? std::to_string(static_cast<i16>(ulNumber)) : std::to_string(ulNumber));
        }
        if (field.cbEach == 1) {
            value = "\"" + Visible(part.substr(0, part.find('\0'))) + "\"";
        }
        while (value.size() > 2 && value.substr(value.size() - 2) == " 0") {
            value.resize(value.size() - 2); /* a row of numbers up to its last that is not zero */
        }
        char cLine[64];
        std::snprintf(cLine, sizeof cLine, "    %4zu  %-18s  ", field.nOffset, field.cName);
        lines += cLine + value + "\n";
    }
    return lines;
}

std::string Hex(const std::string& bytes)
{
    std::string lines;
    for (size_t nAt = 0; nAt < bytes.size(); nAt += 16) {
        char cPiece[32];
        std::snprintf(cPiece, sizeof cPiece, "    %04zX ", nAt);
        std::string line = cPiece, text;
        for (size_t i = nAt; i < std::min(nAt + 16, bytes.size()); i++) {
            std::snprintf(cPiece, sizeof cPiece, " %02X", static_cast<unsigned char>(bytes[i]));
            line += cPiece;
            text += bytes[i] >= 0x20 && bytes[i] < 0x7F ? bytes[i] : '.';
        }
        line.resize(58, ' ');
        lines += line + "  " + text + "\n";
    }
    return lines;
}

std::string PartText(const char* cName, const JobPart& part, bool bParameters, bool bHex)
{
    std::string text = std::string(cName) + ": result " + std::to_string(part.dwResult) + ", " +
                       std::to_string(part.bytes.size()) + (part.bytes.size() == 1 ? " byte\n" : " bytes\n");
    if (bHex) {
        return text + Hex(part.bytes);
    }
    if (bParameters) {
        return text + (part.bytes.size() == sizeof(RenderParameterRecord) ? Fields(part.bytes)
                                                                          : Pieces(part.bytes, '\0'));
    }
    return text + Pieces(part.bytes, '\n');
}

} // namespace

int RunJobCommand(const JobOptions& options, std::ostream& out)
{
    DriverDevmode record;
    WideText wcName = StartModel(options.model, options.package, options.bMetric).wcName;
    JobOutput output;
    {
        OpenSample printer(wcName);
        if (options.record.empty()) {
            PrinterCall call(printer.hPrinter);
            WideText wcCopy = wcName;
            BuildDefaultRecord(call, wcCopy.data(), &record, 1);
        } else {
            record = ReadRecordFile(options.record);
        }
        for (const std::string& assignment : options.assignments) {
            SetRecordField(&record, assignment);
        }
        if (!options.jobName.empty()) {
            AddJob(wcName, JOB_ID, Widen(options.jobName).c_str());
        }
        output = RunJob({GuiStartJob, GuiStartSheet, GuiEndJob}, printer.hPrinter, JOB_ID, &record);
    }
    bool bParameters = !output.sheet.bytes.empty();
    out << PartText("head", output.head, bParameters, options.bHex)
        << PartText("sheet", output.sheet, bParameters, options.bHex)
        << PartText("tail", output.tail, bParameters, options.bHex);
    if (output.bNamed) {
        out << "job name: " << Narrow(output.wcJobName) << "\n";
    }
    StopMachine();
    bool bDone = output.head.dwResult == JOB_DONE && output.sheet.dwResult == JOB_DONE &&
                 output.tail.dwResult == JOB_DONE;
    return bDone ? 0 : 1;
}

std::string RenderRecordTable()
{
    std::string rows = "| Offset | Width | Field | Meaning |\n|---|---|---|---|\n";
    size_t nEnd = 0;
    const auto reserved = [&](size_t nNext) {
        if (nNext > nEnd) {
            rows +=
                "| " + std::to_string(nEnd) + " | " + std::to_string(nNext - nEnd) + " bytes | | zero |\n";
        }
    };
    for (const RenderField& field : aRenderFields) {
        size_t nCount = field.cb / field.cbEach;
        std::string width = field.cbEach == 1   ? "char[" + std::to_string(nCount) + "]"
                            : field.cbEach == 2 ? (field.bSigned ? "i16" : "u16")
                                                : "u32";
        if (field.cbEach > 1 && nCount > 1) {
            width += " x " + std::to_string(nCount);
        }
        reserved(field.nOffset);
        rows += "| " + std::to_string(field.nOffset) + " | " + width + " | `" + field.cName + "` | " +
                field.cMeaning + " |\n";
        nEnd = field.nOffset + field.cb;
    }
    reserved(sizeof(RenderParameterRecord));
    return rows;
}

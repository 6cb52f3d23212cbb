/* Asks for a job's commands in two calls a part. */
#include "standins/job_core.h"

#include <functional>
#include <vector>

#include "platform/process.h"

namespace {

/* call(pBuffer, pcbLength) makes one call. */
JobPart AskPart(const std::function<DWORD(void*, DWORD*)>& call)
{
    DWORD cbLength = 0;
    JobPart part = {call(nullptr, &cbLength), {}};
    if (part.dwResult != JOB_TOO_SMALL || cbLength == 0) {
        return part;
    }
    std::vector<char> buffer(cbLength); /* zeros: it begins with a NUL */
    DWORD cbUsed = cbLength;
    part.dwResult = call(buffer.data(), &cbUsed);
    if (part.dwResult == JOB_DONE && cbUsed <= cbLength) {
        part.bytes.assign(buffer.data(), cbUsed);
    }
    return part;
}

} // namespace

DWORD CallStart(const JobExports& exports, HANDLE hPrinter, DWORD dwJobId, DriverDevmode* pRecord,
                void* pBuffer, DWORD* pcbLength, JobOutput* pOutput)
{
    GuiJobRecord job = {};
    job.hPrinter = hPrinter;
    job.dwJobId = dwJobId;
    DWORD dwResult = exports.pStartJob(pRecord, pBuffer, pcbLength, &job);
    WCHAR* wcName = job.pJobName;
    if (pOutput) {
        pOutput->bNamed = wcName != nullptr;
        pOutput->wcJobName = wcName ? wcName : std::basic_string<WCHAR>();
    }
    if (wcName) {
        HeapFree(GetProcessHeap(), 0, wcName);
    }
    return dwResult;
}

DWORD CallSheet(const JobExports& exports, HANDLE hPrinter, DriverDevmode* pRecord, void* pBuffer,
                DWORD* pcbLength)
{
    GuiSheetRecord sheet = {};
    sheet.hPrinter = hPrinter;
    sheet.pBuffer = pBuffer;
    sheet.cbBuffer = *pcbLength;
    DWORD dwResult = exports.pStartSheet(pRecord, &sheet);
    *pcbLength = sheet.cbBuffer;
    return dwResult;
}

DWORD CallEnd(const JobExports& exports, HANDLE hPrinter, DWORD dwJobId, DriverDevmode* pRecord,
              void* pBuffer, DWORD* pcbLength)
{
    GuiJobRecord job = {};
    job.hPrinter = hPrinter;
    job.dwJobId = dwJobId;
    return exports.pEndJob(pRecord, pBuffer, pcbLength, &job);
}

JobOutput RunJob(const JobExports& exports, HANDLE hPrinter, DWORD dwJobId, DriverDevmode* pRecord)
{
    JobOutput output = {};
    output.head = AskPart([&](void* pBuffer, DWORD* pcbLength) {
        return CallStart(exports, hPrinter, dwJobId, pRecord, pBuffer, pcbLength, &output);
    });
    output.sheet = AskPart([&](void* pBuffer, DWORD* pcbLength) {
        return CallSheet(exports, hPrinter, pRecord, pBuffer, pcbLength);
    });
    output.tail = AskPart([&](void* pBuffer, DWORD* pcbLength) {
        return CallEnd(exports, hPrinter, dwJobId, pRecord, pBuffer, pcbLength);
    });
    return output;
}

std::string JobLines(const JobOutput& output)
{
    std::string lines;
    const auto put = [&lines](const char* cName, const JobPart& part) {
        static constexpr char cDigits[] = "0123456789ABCDEF";
        lines +=
            std::string(cName) + " " + std::to_string(part.dwResult) + " " + (part.bytes.empty() ? "-" : "");
        for (char c : part.bytes) {
            unsigned nByte = static_cast<unsigned char>(c);
            lines += cDigits[nByte >> 4];
            lines += cDigits[nByte & 15];
        }
        lines += "\n";
    };
    put("head", output.head);
    put("sheet", output.sheet);
    put("tail", output.tail);
    return lines;
}

/* What the tests of the job path share: default records, a job between guard bytes, comparison with the
   goldens. */
#ifndef TQUI_TESTS_JOB_MACHINE_H
#define TQUI_TESTS_JOB_MACHINE_H

#include "document/defaults.h"
#include "standins/job_core.h"
#include "support/job_golden.h"
#include "support/sample_machine.h"
#include "support/sweep.h"
#include "tools/tq/record_text.h"

inline const JobExports OWN = {GuiStartJob, GuiStartSheet, GuiEndJob};

class JobTest : public MachineTest {
  protected:
    DriverDevmode DefaultRecord()
    {
        DriverDevmode record;
        WideText wcName = wcPrinter;
        PrinterCall call(hPrinter);
        BuildDefaultRecord(call, wcName.data(), &record, 1);
        return record;
    }

    /* Fields in which a record is not what was wanted. */
    static std::string Differing(const DriverDevmode& wanted, const DriverDevmode& found)
    {
        std::string names;
        for (const FieldValue& field : DifferingFields(wanted, found)) {
            names += field.name + "=" + field.value + " ";
        }
        return names;
    }

    static void ExpectPart(const JobGolden& golden, const char* cPart, const JobPart& found)
    {
        EXPECT_EQ(found.dwResult, 1u) << cPart;
        const std::string& wanted = golden.parts.at(cPart);
        size_t nAt = 0;
        while (nAt < wanted.size() && nAt < found.bytes.size() && wanted[nAt] == found.bytes[nAt]) {
            nAt++;
        }
        EXPECT_TRUE(wanted == found.bytes)
            << golden.stem << ", " << cPart << ": differs at byte " << nAt << " of " << wanted.size()
            << " and " << found.bytes.size() << "\n  wanted " << wanted.substr(nAt, 60) << "\n  found  "
            << found.bytes.substr(nAt, 60);
    }
};

/* A part of a job, in the order of the calls. */
enum JobPartId { JOB_HEAD, JOB_SHEET, JOB_TAIL };

/* What one call of a part gave, for a buffer between guards. */
struct PartCall {
    DWORD dwResult = 99, cbLength; /* as the call left them */
    std::string buffer;            /* whole */
    bool bNamed;
    WideText wcJobName;
    std::string fault; /* of a guest, or of the guards */
    std::string Bytes() const { return buffer.substr(0, cbLength); }
};

inline PartCall CallPart(JobPartId part, HANDLE hPrinter, DriverDevmode* pRecord, DWORD cbRoom,
                         char cFill = '\0', DWORD dwJobId = 7)
{
    const std::string guard(64, '#');
    std::string buffer = guard + std::string(cbRoom, cFill) + guard;
    void* pBuffer = buffer.data() + guard.size();
    PartCall call;
    GuiJobRecord job = {};
    GuiSheetRecord sheet = {};
    job.hPrinter = sheet.hPrinter = hPrinter;
    job.dwJobId = dwJobId;
    sheet.pBuffer = pBuffer;
    sheet.cbBuffer = call.cbLength = cbRoom;
    const auto fnJob = part == JOB_HEAD ? GuiStartJob : GuiEndJob;
    call.fault = AsGuest([&] {
        call.dwResult = part == JOB_SHEET ? GuiStartSheet(pRecord, &sheet)
                                          : fnJob(pRecord, pBuffer, &call.cbLength, &job);
    });
    if (part == JOB_SHEET) {
        call.cbLength = sheet.cbBuffer;
    }
    call.bNamed = job.pJobName != nullptr;
    if (call.bNamed) {
        call.wcJobName = job.pJobName;
        HeapFree(GetProcessHeap(), 0, job.pJobName);
    }
    call.buffer = buffer.substr(guard.size(), cbRoom);
    call.fault += buffer.starts_with(guard) && buffer.ends_with(guard) ? "" : "wrote outside; ";
    return call;
}

/* The part with every buffer size from 0 to some more than needed: the whole, or a larger size asked for with whole
   pieces from the front. Result: what is wrong. */
inline std::string CheckEverySize(JobPartId part, HANDLE hPrinter, const DriverDevmode& record,
                                  const std::string& whole, bool bText)
{
    std::string faults;
    for (DWORD cbSize = 0; cbSize <= whole.size() + 8; cbSize++) {
        DriverDevmode copy = record;
        const PartCall call = CallPart(part, hPrinter, &copy, cbSize, bText ? '\0' : '~');
        const std::string front = call.buffer.c_str();
        const bool bPieces = front.empty() || (front.ends_with("\r\n") && whole.starts_with(front));
        const bool bWhole = call.dwResult == JOB_DONE && call.cbLength <= cbSize && call.Bytes() == whole;
        const bool bAsks = call.dwResult == JOB_TOO_SMALL && call.cbLength > cbSize &&
                           call.cbLength >= whole.size() &&
                           (!bText || whole.empty() || (bPieces && call.cbLength == whole.size()));
        if (!call.fault.empty() || !(bWhole || bAsks)) {
            faults += "size " + std::to_string(cbSize) + " gives " + std::to_string(call.dwResult) + "; " +
                      call.fault;
        }
    }
    return faults;
}

#endif

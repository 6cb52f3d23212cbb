/* What the tests of the job path share: default records, a job between guard bytes, comparison with the
   goldens. */
#ifndef TQUI_TESTS_JOB_MACHINE_H
#define TQUI_TESTS_JOB_MACHINE_H

#include "document/defaults.h"
#include "standins/job_core.h"
#include "support/job_golden.h"
#include "support/sample_machine.h"
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

/* One call with a buffer of cbSize bytes between guards; call(pBuffer, pcbLength, pRecord). Result: what is
   wrong. */
template <class Call>
std::string CheckSize(Call call, DWORD cbSize, DriverDevmode record, const std::string& whole, bool bText)
{
    constexpr size_t GUARD = 64;
    const std::string guard(GUARD, '#');
    std::string buffer =
        guard + std::string(cbSize, bText ? '\0' : '~') + guard; /* parameters clear the buffer */
    DWORD cbLength = cbSize;
    const DWORD dwResult = call(buffer.data() + GUARD, &cbLength, &record);
    const std::string written = buffer.substr(GUARD, cbSize), front = written.c_str();
    const bool bPieces = front.empty() || (front.ends_with("\r\n") && whole.starts_with(front));
    const bool bWhole = dwResult == 1 && cbLength <= cbSize && written.substr(0, cbLength) == whole;
    const bool bAsks = dwResult == 2 && cbLength > cbSize && cbLength >= whole.size() &&
                       (!bText || whole.empty() || (bPieces && cbLength == whole.size()));
    std::string fault = bWhole || bAsks ? "" : "neither the whole nor a larger size with whole pieces; ";
    if (!buffer.starts_with(guard) || !buffer.ends_with(guard)) {
        fault += "wrote outside; ";
    }
    return fault.empty() ? ""
                         : "size " + std::to_string(cbSize) + ", " + std::to_string(dwResult) + ": " + fault;
}

/* The three parts with every buffer size from 0 to some more than needed. */
inline std::string CheckEverySize(const JobExports& exports, HANDLE hPrinter, DWORD dwJobId,
                                  const DriverDevmode& record, const JobOutput& whole)
{
    std::string fault;
    const auto start = [&](void* pBuffer, DWORD* pcbLength, DriverDevmode* pRecord) {
        return CallStart(exports, hPrinter, dwJobId, pRecord, pBuffer, pcbLength, nullptr);
    };
    const auto sheet = [&](void* pBuffer, DWORD* pcbLength, DriverDevmode* pRecord) {
        return CallSheet(exports, hPrinter, pRecord, pBuffer, pcbLength);
    };
    const auto end = [&](void* pBuffer, DWORD* pcbLength, DriverDevmode* pRecord) {
        return CallEnd(exports, hPrinter, dwJobId, pRecord, pBuffer, pcbLength);
    };
    bool bText = whole.sheet.bytes.empty(); /* printer job language, which has nothing for a sheet */
    for (DWORD cbSize = 0; cbSize <= whole.head.bytes.size() + 8; cbSize++) {
        fault += CheckSize(start, cbSize, record, whole.head.bytes, bText);
        fault += CheckSize(sheet, cbSize, record, whole.sheet.bytes, bText);
        fault += CheckSize(end, cbSize, record, whole.tail.bytes, bText);
    }
    return fault;
}

#endif

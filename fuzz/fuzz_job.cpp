/* Any bytes as what a job is made from: the first picks a sample, the second what is done to its description,
   the third the size of the buffer, then come patches of the description and the rest lies over a record. The
   sizing call and a call with what it told are the oracle: the second succeeds, writes no more than it tells
   and nothing outside. */
#include <map>

#include "base/owned.h"
#include "document/defaults.h"
#include "entry/exports.h"
#include "fuzz/fuzz_samples.h"
#include "support/same_bytes.h"

namespace {

constexpr size_t PATCH_BYTES = 4; /* offset in the file, u16; value; reserved */
constexpr DWORD JOB_ID = 7;

/* The sample's default record; with a job of its printer. */
const DriverDevmode& DefaultOf(FuzzSample& sample)
{
    static std::map<WideText, DriverDevmode> records;
    const auto [found, bNew] = records.try_emplace(sample.wcName);
    if (bNew) {
        AddJob(sample.wcName, JOB_ID, u"Fuzz \u00E9");
        WideText wcName = sample.wcName;
        BuildDefaultRecord(*sample.call, wcName.data(), &found->second, 0);
    }
    return found->second;
}

/* One call with a block of just cb bytes, so that a sanitizer sees each byte too many. */
DWORD Call(int nCall, const FuzzSample& sample, DriverDevmode* pRecord, DWORD cb, DWORD* pcbLength,
           Bytes* pWritten)
{
    OwnedBlock<char> pBuffer(static_cast<char*>(AllocateBlock(cb)));
    GuiJobRecord job = {};
    GuiSheetRecord sheet = {};
    job.hPrinter = sheet.hPrinter = sample.printer->hPrinter;
    job.dwJobId = JOB_ID;
    sheet.pBuffer = pBuffer.get();
    sheet.cbBuffer = cb;
    *pcbLength = cb;
    DWORD dwResult;
    if (nCall == 1) {
        dwResult = GuiStartSheet(pRecord, &sheet);
        *pcbLength = sheet.cbBuffer;
    } else {
        dwResult = (nCall ? GuiEndJob : GuiStartJob)(pRecord, pBuffer.get(), pcbLength, &job);
    }
    FreeBlock(job.pJobName);
    pWritten->assign(pBuffer.get(), pBuffer.get() + (pBuffer ? cb : 0));
    return dwResult;
}

void CheckTwoCalls(int nCall, const FuzzSample& sample, const DriverDevmode& record, DWORD cbSmall)
{
    DriverDevmode first = record, second = record, small = record;
    DWORD cbNeeded, cbUsed, cbTold;
    Bytes written, whole;
    DWORD dwSizing = Call(nCall, sample, &first, 0, &cbNeeded, &written);
    Require(dwSizing == 2 || (dwSizing <= 1 && cbNeeded == 0));
    DWORD dwResult = Call(nCall, sample, &second, cbNeeded, &cbUsed, &whole);
    Require(dwSizing == 2 ? dwResult == 1 && cbUsed <= cbNeeded && cbUsed > 0 : dwResult == dwSizing);
    Require(SameBytes(first, second));
    if (dwSizing != 2) {
        return;
    }
    whole.resize(cbUsed);
    Require(whole.back() == 0);
    DWORD dwSmall = Call(nCall, sample, &small, cbSmall, &cbTold, &written);
    if (dwSmall == 1) {
        Require(cbTold == cbUsed && cbTold <= cbSmall &&
                std::memcmp(written.data(), whole.data(), cbTold) == 0);
    } else {
        Require(dwSmall == 2 && cbTold > cbSmall && cbTold >= cbUsed);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* pBytes, size_t cb)
{
    if (cb < 3) {
        return 0;
    }
    FuzzSample& sample = SampleOf(pBytes[0]);
    DriverDevmode record = DefaultOf(sample);
    size_t nPatches = pBytes[1] % 16, nAt = 3;
    Bytes description = sample.description;
    for (; nPatches > 0 && nAt + PATCH_BYTES <= cb; nPatches--, nAt += PATCH_BYTES) {
        u16 usPlace;
        std::memcpy(&usPlace, pBytes + nAt, sizeof usPlace);
        description[usPlace % description.size()] = pBytes[nAt + 2];
    }
    PutFile(sample.tcXpi, description);
    /* Either the bytes themselves, or pairs of place and value, which a check lets pass more often. */
    if (pBytes[1] & 0x80) {
        LayOver(&record, pBytes + nAt, cb - nAt);
    } else {
        for (; nAt + 3 <= cb; nAt += 3) {
            u16 usPlace;
            std::memcpy(&usPlace, pBytes + nAt, sizeof usPlace);
            reinterpret_cast<u8*>(&record)[usPlace % sizeof record] = pBytes[nAt + 2];
        }
    }
    for (int nCall = 0; nCall < 3; nCall++) {
        CheckTwoCalls(nCall, sample, record, pBytes[2] * 8u);
    }
    return 0;
}

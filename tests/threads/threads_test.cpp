/* Many threads in one process: each with its own merged record, all with the same printers. For the build under
   the thread sanitizer; TQUI_THREAD_CALLS says how many calls each of the eight makes. */
#include <cstdlib>
#include <random>
#include <set>
#include <thread>

#include "entry/exports.h"
#include "support/sample_machine.h"
#include "support/well_formed.h"

namespace {

constexpr int THREADS = 8;
constexpr int SETTLED_CALLS = 2000; /* each, where nobody asks for more */

BOOL WINAPI SystemProperties(HWND, HANDLE)
{
    return PrinterProperties(nullptr, nullptr) == 0 ? 6 : 0;
}

struct Worker {
    WideText wcPrinter;
    DriverDevmode base;
    int nNumber, nCalls;
    DriverDevmode* pMerged = nullptr;
    std::string fault = {};

    void Fail(const char* cWhat)
    {
        if (fault.empty()) {
            fault = cWhat;
        }
    }

    void Check(const DriverDevmode* pOut, const DriverDevmode& in)
    {
        pMerged = pMerged ? pMerged : const_cast<DriverDevmode*>(pOut);
        if (!pOut || pOut != pMerged) {
            Fail("another record than this thread's");
        } else if (!IsWellFormed(*pOut) || pOut->dmCopies != in.dmCopies ||
                   pOut->dmOrientation != in.dmOrientation) {
            Fail("a record that is not what this thread asked for");
        }
    }

    void Call(HANDLE hPrinter, unsigned nWhich, unsigned nRandom)
    {
        DriverDevmode in = base, out;
        DriverDevmode* pIn = &in;
        DriverDevmode* pOut = nullptr;
        DWORD cb = RECORD_SIZE;
        WideText wcName = wcPrinter;
        in.dmCopies = static_cast<i16>(1 + nNumber);
        in.dmOrientation = static_cast<u16>(1 + nRandom % 2);
        PDEVMODEW pdmIn = reinterpret_cast<PDEVMODEW>(&in), pdmOut = reinterpret_cast<PDEVMODEW>(&out);
        DOCEVENT_CREATEDCPRE create = {nullptr, nullptr, pdmIn, 0};
        DOCUMENTPROPERTYHEADER header = {48, 0, hPrinter, wcName.data(), pdmIn, pdmOut, RECORD_SIZE, 10};
        switch (nWhich) {
        case 0:
            DrvDocumentEvent(hPrinter, nullptr, 1, 0, &create, 0, &pOut);
            Check(pOut, in);
            break;
        case 1:
            DrvDocumentEvent(hPrinter, nullptr, 3, 0, &pIn, 0, &pOut);
            Check(pOut, in);
            break;
        case 2: DrvDocumentEvent(hPrinter, nullptr, 5, 0, nullptr, 0, nullptr); break;
        case 3:
            if (!DrvConvertDevMode(wcName.data(), pdmIn, pdmOut, &cb, 0) || !IsWellFormed(out)) {
                Fail("no conversion");
            }
            break;
        case 4:
            DrvDocumentPropertySheets(nullptr, reinterpret_cast<LPARAM>(&header));
            if (!IsWellFormed(out) || out.dmCopies != in.dmCopies) {
                Fail("no merge");
            }
            break;
        case 5:
            if (PrinterProperties(nullptr, hPrinter) != 6) {
                Fail("a forwarder that thinks it is called by itself");
            }
            break;
        default:
            DrvDeviceCapabilities(hPrinter, wcName.data(), static_cast<WORD>(1 + nRandom % 35), nullptr,
                                  nullptr);
        }
        if (pMerged && pMerged->dmCopies != in.dmCopies) {
            Fail("another thread wrote to this thread's record");
        }
    }

    void Run()
    {
        std::minstd_rand random(static_cast<unsigned>(nNumber + 1));
        OpenSample printer(wcPrinter);
        for (int i = 0; i < nCalls; i++) {
            unsigned nWhich = static_cast<unsigned>(random()) % 7;
            Call(printer.hPrinter, nWhich, static_cast<unsigned>(random() >> 8));
        }
    }
};

} // namespace

class ThreadsTest : public MachineTest {};

TEST_F(ThreadsTest, EightThreadsOfMixedCallsKeepToTheirRecords)
{
    const char* cCalls = std::getenv("TQUI_THREAD_CALLS");
    int nCalls = cCalls ? static_cast<int>(std::strtol(cCalls, nullptr, 10)) : SETTLED_CALLS;
    ASSERT_GT(nCalls, 100);
    std::vector<Worker> workers;
    for (int i = 0; i < THREADS; i++) {
        AddSample(i % 2 ? "K100" : "T410A");
        SetPrinterText(wcPrinter, u"DefaultSpoolDirectory", u"D:\\Spool");
        AddKey(u"HKLM\\SYSTEM\\CurrentControlSet\\Control\\Print\\Printers\\" + wcPrinter);
        DriverDevmode base;
        DWORD cb = RECORD_SIZE;
        ASSERT_TRUE(DrvConvertDevMode(wcPrinter.data(), nullptr, reinterpret_cast<PDEVMODEW>(&base), &cb, 0));
        workers.push_back({wcPrinter, base, i, nCalls});
    }
    SetSystemRoutine(u"winspool.drv", "PrinterProperties", reinterpret_cast<void*>(SystemProperties));
    LiveCounts before = CountLive();
    std::vector<std::thread> threads;
    for (Worker& worker : workers) {
        threads.emplace_back([&worker] { worker.Run(); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    std::set<DriverDevmode*> records;
    for (const Worker& worker : workers) {
        EXPECT_EQ(worker.fault, "") << "thread " << worker.nNumber;
        EXPECT_NE(worker.pMerged, nullptr);
        records.insert(worker.pMerged);
    }
    EXPECT_TRUE(CountLive() == before) << "blocks " << CountLive().nBlocks - before.nBlocks;
}

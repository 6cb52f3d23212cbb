/* Records which places of the library each test reaches, for scripts/mutants. The compiler calls
   __sanitizer_cov_trace_pc at every branch of the library in that build. With TQUI_TESTED_LINES in the environment
   the file of that name gets a line a test: its name, its milliseconds of processor time, and the places as offsets into the program. */
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <set>

#include <gtest/gtest.h>

extern "C" {
extern char __executable_start; /* the linker's name */
void __sanitizer_cov_trace_pc();
}

namespace {

constexpr std::uintptr_t SLOTS = 1 << 17; /* several times the branches of the library */
std::atomic<std::uintptr_t> aPlaces[SLOTS];
std::atomic<bool> bRecording;

std::set<std::uintptr_t> TakePlaces()
{
    std::set<std::uintptr_t> places;
    for (std::atomic<std::uintptr_t>& place : aPlaces) {
        if (std::uintptr_t nPlace = place.exchange(0)) {
            places.insert(nPlace);
        }
    }
    return places;
}

class Recorder : public ::testing::EmptyTestEventListener {
  public:
    explicit Recorder(const char* cFile) : out(cFile) {}

    void OnTestSuiteStart(const ::testing::TestSuite&) override { suite = TakePlaces(); }

    /* What was reached before the first test of a suite belongs to all of its tests. */
    void OnTestStart(const ::testing::TestInfo&) override
    {
        suite.merge(TakePlaces());
        nBegun = std::clock();
    }

    void OnTestEnd(const ::testing::TestInfo& info) override
    {
        std::set<std::uintptr_t> places = TakePlaces();
        places.insert(suite.begin(), suite.end());
        out << info.test_suite_name() << '.' << info.name() << ' '
            << (std::clock() - nBegun) / (CLOCKS_PER_SEC / 1000);
        for (std::uintptr_t nPlace : places) {
            out << ' ' << std::hex << nPlace - reinterpret_cast<std::uintptr_t>(&__executable_start);
        }
        out << std::dec << std::endl;
    }

  private:
    std::ofstream out;
    std::set<std::uintptr_t> suite;
    std::clock_t nBegun = 0;
};

const bool bStarted = [] {
    if (const char* cFile = std::getenv("TQUI_TESTED_LINES")) {
        ::testing::UnitTest::GetInstance()->listeners().Append(new Recorder(cFile));
        bRecording = true;
    }
    return true;
}();

} // namespace

void __sanitizer_cov_trace_pc()
{
    if (!bRecording.load(std::memory_order_relaxed)) {
        return;
    }
    std::uintptr_t nPlace = reinterpret_cast<std::uintptr_t>(__builtin_return_address(0));
    for (std::uintptr_t i = nPlace * 0x9E3779B97F4A7C15u >> 47;; i = (i + 1) % SLOTS) {
        std::uintptr_t nFound = aPlaces[i].load(std::memory_order_relaxed);
        if (nFound == nPlace ||
            (!nFound && (aPlaces[i].compare_exchange_strong(nFound, nPlace) || nFound == nPlace))) {
            return;
        }
    }
}

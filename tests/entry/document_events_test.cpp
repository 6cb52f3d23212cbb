/* Document events: the record that GDI gets, the three values for the port monitor, the traces, word for word. */
#include "entry/document_events.h"

#include <thread>

#include "document/defaults.h"
#include "document/merge.h"
#include "entry/exports.h"
#include "settings/check_support.h"
#include "support/guarded_pages.h"
#include "support/machine_script.h"
#include "support/well_formed.h"

namespace {

constexpr const WCHAR* wcKey = u"HKCU\\SOFTWARE\\QuilonMonitor";
constexpr int A5 = 11, A4 = 9, SQUARE = 20, WIDE = 21, LONG_ONE = 22; /* papers of the model */

} // namespace

class DocumentEvents : public CheckTest {
  protected:
    void SetUp() override
    {
        CheckTest::SetUp();
        DescriptionBuilder b = CheckModel();
        b.Table<PaperRow>(8, {{1, 1, 2159, 2794, 0, 0, -1, 0, ""},
                              {1, A4, 2100, 2970, 1, 0, -1, 0, ""},
                              {1, A5, 1480, 2100, 1, 0, -1, 0, ""},
                              {1, SQUARE, 2160, 2160, 1, 0, -1, 0, ""},
                              {1, WIDE, 2161, 2160, 1, 0, -1, 0, ""},
                              {1, LONG_ONE, 2160, 2161, 1, 0, -1, 0, ""},
                              {}});
        UseModel(b);
    }

    void Set(const WCHAR* wcValue, DWORD dwValue, DWORD dwType = REG_DWORD, size_t cb = 4)
    {
        Bytes bytes(cb);
        for (size_t n = 0; n < std::min(cb, sizeof dwValue); n++) {
            bytes[n] = static_cast<u8>(dwValue >> 8 * n);
        }
        SetKeyValue(wcKey, wcValue, dwType, bytes);
    }

    /* FeedEdge, Refresh_FeedEdge and 33PPM as they stand, "-" for none. */
    std::string Values()
    {
        std::string text;
        for (const WCHAR* wcValue : {u"FeedEdge", u"Refresh_FeedEdge", u"33PPM"}) {
            DWORD dwType = 0;
            Bytes bytes;
            bool bThere = GetKeyValue(wcKey, wcValue, &dwType, &bytes);
            text += bThere ? std::to_string(Peek<u32>(bytes, 0)) : "-";
        }
        return text;
    }

    /* The pointer that is left at pvOut, which begins as the given one. */
    DriverDevmode* Create(DriverDevmode* pRecord, DriverDevmode* pBefore = nullptr)
    {
        DOCEVENT_CREATEDCPRE create = {nullptr, nullptr, reinterpret_cast<PDEVMODEW>(pRecord), 0};
        DriverDevmode* pOut = pBefore;
        EXPECT_EQ(DrvDocumentEvent(hPrinter, nullptr, 1, 0, &create, 0, &pOut), 1);
        return pOut;
    }

    DriverDevmode* Reset(DriverDevmode* pRecord, DriverDevmode* pBefore = nullptr)
    {
        DriverDevmode* pOut = pBefore;
        EXPECT_EQ(DrvDocumentEvent(hPrinter, nullptr, 3, 0, &pRecord, 0, &pOut), 1);
        return pOut;
    }

    void Start() { EXPECT_EQ(DrvDocumentEvent(hPrinter, nullptr, 5, 0, nullptr, 0, nullptr), 1); }

    DriverDevmode OnPaper(int nPaper)
    {
        DriverDevmode record = good;
        record.dmPaperSize = static_cast<i16>(nPaper);
        return record;
    }
};

TEST_F(DocumentEvents, TheRecordIsSettledHalfByHalf)
{
    DriverDevmode standard;
    {
        PrinterCall call(hPrinter);
        ASSERT_EQ(FindPrinterDefaults(call, &standard), DEFAULT_BUILT);
    }
    DriverDevmode in = OnPaper(A4), kept = in;
    in.dmScale = 50;
    const DriverDevmode* pMerged = Create(&in);
    ASSERT_NE(pMerged, nullptr);
    EXPECT_EQ(FirstDifference(in, kept), -1) << "the public repair is the caller's";
    kept.dmPaperWidth = 2100;
    kept.dmPaperLength = 2970;
    EXPECT_EQ(FirstDifference(*pMerged, kept), -1);

    in = OnPaper(A4);
    in.dmCopies = 7;
    in.rPrivate.sContrast = 60;
    EXPECT_EQ(Reset(&in), pMerged) << "one record a thread";
    EXPECT_EQ(in.rPrivate.sContrast, 60);
    EXPECT_EQ(pMerged->dmCopies, 7);
    EXPECT_TRUE(SameBytes(pMerged->rPrivate, standard.rPrivate));
    in.dmSpecVersion = 1024;
    Create(&in);
    EXPECT_EQ(FirstDifference(*pMerged, standard), -1);
    in = good;
    in.dmDriverExtra = 100;
    Create(&in);
    EXPECT_EQ(FirstDifference(*pMerged, standard), -1);

    /* A record that was handed out comes back. */
    in = OnPaper(A4);
    in.dmCopies = 5;
    DriverDevmode* pOurs = Create(&in);
    DriverDevmode before = *pOurs;
    DriverDevmode* pMark = &in;
    EXPECT_EQ(Create(pOurs, pMark), pMark) << "not stored: it is the one that was given";
    EXPECT_EQ(Reset(pOurs, pMark), pOurs) << "stored in any case";
    EXPECT_EQ(FirstDifference(*pOurs, before), -1);

    /* Without a printer the template stands in. */
    hPrinter = nullptr;
    ASSERT_EQ(Create(&in), pOurs);
    EXPECT_EQ(pOurs->rPrivate.ulVersion, RECORD_STAMP);
    EXPECT_EQ(pOurs->dmPaperWidth, 2159);
}

TEST_F(DocumentEvents, OtherSizesEventsAndPointersDoNothing)
{
    GuardedPages pages;
    for (int nSize : {0, 72, 219, 221, 4088, 65535}) {
        DriverDevmode in = good;
        in.dmSize = static_cast<u16>(nSize);
        in.dmDriverExtra = 0;
        size_t cb = std::min<size_t>(std::max<size_t>(static_cast<size_t>(nSize), 72), RECORD_SIZE);
        DriverDevmode* pIn = pages.Place(in, cb);
        EXPECT_EQ(Create(pIn, &good), nullptr) << nSize;
        EXPECT_EQ(Reset(pIn, &good), nullptr) << nSize;
        EXPECT_EQ(std::memcmp(pIn, &in, cb), 0);
    }
    EXPECT_EQ(Create(nullptr, &good), &good);
    EXPECT_EQ(Reset(nullptr, &good), &good);
    EXPECT_EQ(Values(), "---");
    TakeTraces();
    DriverDevmode in = good;
    DriverDevmode* pIn = &in;
    u8 abOut[8] = {1, 2, 3, 4, 5, 6, 7, 8}, abBefore[8];
    std::memcpy(abBefore, abOut, 8);
    for (int iEsc : {-1, 0, 2, 4, 6, 7, 8, 9, 10, 11, 12, 13, 14, 65537}) {
        EXPECT_EQ(DrvDocumentEvent(hPrinter, nullptr, iEsc, 8, &pIn, 8, abOut), 1);
    }
    for (int iEsc : {1, 3}) {
        EXPECT_EQ(DrvDocumentEvent(hPrinter, nullptr, iEsc, 8, nullptr, 8, abOut), 1);
    }
    EXPECT_EQ(std::memcmp(abOut, abBefore, 8), 0);
    EXPECT_TRUE(TakeTraces().empty());
    EXPECT_EQ(DrvDocumentEvent(hPrinter, nullptr, 3, 0, &pIn, 0, nullptr), 1) << "nowhere to store";
    DllMain(nullptr, DLL_PROCESS_DETACH, nullptr);
    DllMain(nullptr, DLL_PROCESS_ATTACH, nullptr);
    FailCall(CALL_HeapAlloc, 1);
    EXPECT_EQ(Create(&in, &good), nullptr) << "no memory for the thread's records";
    EXPECT_EQ(StopFaults(), 1);
    EXPECT_NE(Create(&in), nullptr);
}

TEST_F(DocumentEvents, FeedEdgeFollowsTheStateOfTheDocument)
{
    for (u32 ulStarted : {0u, 1u, 2u, 0xFFFFFFFFu}) {
        for (u32 ulBefore : {0u, 1u, 9u}) {
            for (const auto& [nPaper, ulTest] :
                 {std::pair(A5, 0u), {A4, 1u}, {SQUARE, 0u}, {WIDE, 1u}, {LONG_ONE, 1u}}) {
                DriverDevmode in = OnPaper(nPaper);
                const std::string tail = std::to_string(ulStarted) + "-";
                Set(u"Refresh_FeedEdge", ulStarted);
                Set(u"FeedEdge", ulBefore);
                Create(&in);
                EXPECT_EQ(Values(), std::to_string(ulStarted == 0 ? ulTest : ulBefore) + tail);
                Set(u"FeedEdge", ulBefore);
                Reset(&in);
                const bool bWritten = ulStarted == 0 || (ulStarted == 1 && ulTest);
                EXPECT_EQ(Values(), std::to_string(bWritten ? ulTest : ulBefore) + tail);
            }
        }
    }
}

class EventScripts : public Scripted<DocumentEvents> {
  protected:
    std::string Raise(bool bReset, const Args& w)
    {
        static const std::map<std::string, int> papers = {{"A4", A4}, {"A5", A5}, {"own", 256}};
        DriverDevmode in = w[0] == "none" ? good : OnPaper(papers.at(w[0]));
        in.dmOrientation = w.size() > 1 ? 2 : in.dmOrientation;
        if (w[0] == "own") {
            in.dmPaperWidth = in.dmPaperLength = 1300;
        }
        DriverDevmode* pRecord = w[0] == "none" ? nullptr : &in;
        bReset ? Reset(pRecord) : Create(pRecord);
        return Values();
    }
    static std::string Traces()
    {
        std::string all;
        for (const std::string& trace : TakeTraces()) {
            all += (all.empty() ? "" : "; ") + trace;
        }
        std::replace(all.begin(), all.end(), '\n', '/');
        return all;
    }
    std::string Rate()
    {
        std::string rates;
        for (WORD wQuestion : {DC_PRINTRATE, DC_PRINTRATEPPM}) {
            rates += (rates.empty() ? "" : " ") +
                     std::to_string(
                         DrvDeviceCapabilities(hPrinter, wcPrinter.data(), wQuestion, nullptr, nullptr));
        }
        return rates;
    }
};

SCRIPTED(EventScripts, TellThePortMonitor, "document_events.txt")
{
    PlayBy({
        VERB("create", Raise(false, w)),
        VERB("reset", Raise(true, w)),
        VERB("start", (Start(), Values())),
        VERB("edge", Values().substr(0, 1)),
        VERB("traces", Traces()),
        VERB("set", (Set(WideWord(w[0]).c_str(), static_cast<DWORD>(ToNumber(w[1])),
                         static_cast<DWORD>(w.size() > 2 ? Int(w, 2) : int{REG_DWORD}),
                         w.size() > 3 ? static_cast<size_t>(Int(w, 3)) : 4),
                     Values())),
        DEED("drop-key", DropKey(wcKey)),
        DEED("no-printer", hPrinter = nullptr),
        VERB("rate", Rate()),
    });
}

/* Each thread has its record: freed when the thread ends, and with the library those of threads that run. */
TEST_F(DocumentEvents, RecordsBelongToTheirThread)
{
    DriverDevmode in = OnPaper(A4), other = OnPaper(A5);
    DriverDevmode* pOurs = Create(&in);
    int nBlocks = CountLive().nBlocks;
    std::thread([&] {
        DriverDevmode* pTheirs = Create(&other);
        EXPECT_NE(pTheirs, pOurs);
        EXPECT_EQ(pTheirs->dmPaperSize, A5);
        EXPECT_EQ(CountLive().nBlocks, nBlocks + 1);
    }).join();
    EXPECT_EQ(pOurs->dmPaperSize, A4);
    EXPECT_EQ(CountLive().nBlocks, nBlocks);
    int nHeld = nBlocks;
    std::thread([&] {
        Create(&other);
        DllMain(nullptr, DLL_PROCESS_DETACH, nullptr);
        nHeld = CountLive().nBlocks;
    }).join();
    EXPECT_EQ(nHeld, nBlocks - 1) << "both threads' records go with the library";
    EXPECT_EQ(Create(&in), nullptr) << "an unloaded library keeps nothing";
    EXPECT_EQ(DllMain(nullptr, 4, nullptr), 0);
    EXPECT_EQ(DllMain(nullptr, DLL_THREAD_ATTACH, nullptr), 1);
    EXPECT_EQ(DllMain(nullptr, DLL_THREAD_DETACH, nullptr), 1);
}

/* Records of any content: each byte and each field at its edges, for every sample. The checks keep within the
   record's own bytes, of which none lies behind the end of a page that may be read, and what they accept they
   accept again without a repair. */
#include <set>

#include "settings/check_support.h"
#include "support/guarded_pages.h"
#include "support/sweep.h"

namespace {

constexpr size_t WHOLE = sizeof(DriverDevmode);

/* Widths of the fields in their order; W is a text of so many characters, B bytes, each swept by its ends. */
struct FieldRun {
    size_t nFirst, nEnd;
    u8 bWidth;
};
constexpr FieldRun aFieldRuns[] = {
    {0, 2, 2},       {62, 72, 2},     {72, 76, 4},     {76, 104, 2},    {164, 168, 2},   {168, 220, 4},
    {220, 232, 4},   {294, 296, 2},   {358, 360, 2},   {360, 384, 4},   {384, 400, 2},   {400, 424, 4},
    {424, 430, 2},   {554, 558, 2},   {618, 620, 2},   {620, 632, 4},   {632, 640, 2},   {640, 648, 4},
    {648, 684, 2},   {684, 685, 1},   {695, 697, 1},   {823, 825, 1},   {1463, 1465, 1}, {1719, 1720, 1},
    {1720, 1724, 4}, {1724, 1726, 2}, {1740, 1742, 2}, {1756, 1758, 2}, {1772, 1774, 2}, {1788, 1824, 2},
    {1824, 1828, 4}, {1828, 1832, 2}, {1854, 1892, 2}, {1906, 1918, 2}, {1940, 1948, 2}, {1948, 1952, 4},
    {1952, 1954, 2}, {1954, 1962, 4}, {1962, 1970, 2}, {2040, 2052, 4}, {2052, 2054, 2}, {2370, 2374, 2},
    {2690, 2692, 2}, {2692, 2696, 4}, {2696, 2828, 2}, {2839, 2840, 1}, {2923, 2924, 1}, {2924, 2936, 2},
    {2936, 2940, 4}, {2940, 2980, 2}, {2980, 2982, 1}, {2982, 2998, 2}, {3718, 3720, 2}, {3720, 3728, 4},
    {3728, 3730, 1}, {3768, 3778, 2},
};

constexpr u8 abByteValues[] = {0x00, 0x01, 0x10, 0x7F, 0x80, 0xC8, 0xFE, 0xFF};
constexpr i64 alFieldValues[] = {0,      1,      2,      3,          0xFF,       0x100,
                                 0x7FFF, 0x8000, 0xFFFF, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF};

/* The repairs that come again at each check, since what the field is set to is not good either. */
struct Sample {
    const char* cSection;
    std::set<int> returning;
};
const int PAPER_SIZE = RuleNumber(PUBLIC_FIELDS, 3);   /* the default paper is outside the custom range */
const int MEDIUM = RuleNumber(PRIVATE_FIELDS, 31);     /* set to 1, and there is no media table */
const int OUTPUT_BIN = RuleNumber(PRIVATE_FIELDS, 53); /* set to 0, and no bin has that command */
const std::vector<Sample> aSamples = {
    {"T410A", {OUTPUT_BIN}}, {"QP5", {MEDIUM}}, {"QPS", {PAPER_SIZE, MEDIUM, OUTPUT_BIN}},
    {"K100", {OUTPUT_BIN}},  {"IX300", {}},     {"T440B", {OUTPUT_BIN}},
};

} // namespace

class HostileRecords : public CheckTest {
  protected:
    void UseSample(const Sample& sample)
    {
        pModel.reset();
        AddSample(sample.cSection);
        call.emplace(hPrinter);
        pModel = LoadPrinterModel(*call);
        ASSERT_NE(pModel, nullptr);
        good = GoodRecord(pModel.get(), GetXpiPath(*call));
        returning = sample.returning;
        RuleLog log;
        DriverDevmode record = good;
        ASSERT_EQ(Settle(&record, &log), 1) << sample.cSection;
        ASSERT_TRUE(log.rules.empty()) << sample.cSection << ", rule " << log.rules[0];
    }

    void TearDown() override
    {
        call.reset();
        CheckTest::TearDown();
    }

    /* The good record with everything on: what the checks look at only then. */
    DriverDevmode BusyRecord() const
    {
        DriverDevmode record = good;
        i64 lMedium = pModel->pMediaTypes ? 1 : 0;
        for (FieldPoke poke :
             {FieldPoke{388, 4, 0xFFFF0001}, FieldPoke{400, 4, 4}, FieldPoke{412, 4, 5},
              FieldPoke{620, 4, 72}, FieldPoke{648, 2, 1}, FieldPoke{662, 2, 1}, FieldPoke{1740, 2, lMedium},
              FieldPoke{1756, 2, lMedium}, FieldPoke{1828, 2, 1}, FieldPoke{1962, 4, 0x00010001},
              FieldPoke{1966, 2, 1}, FieldPoke{2980, 2, 0x0101}, FieldPoke{2982, 4, 0x00060008},
              FieldPoke{2990, 2, 0x0202}}) {
            Put(&record, poke);
        }
        return record;
    }

    int Settle(DriverDevmode* pRecord, RuleLog* pLog)
    {
        return ValidatePublicPartNoted(*call, pRecord, pModel.get(), pLog->Recorder()) &&
               ValidatePrivatePartNoted(*call, &pRecord->rPrivate, pModel.get(), pLog->Recorder());
    }

    /* Settles a record that ends where the page ends, and again what was accepted. */
    std::string SettleTwice(const DriverDevmode& record)
    {
        RuleLog first, second;
        DriverDevmode* pRecord = pages.Place(record, WHOLE);
        if (!Settle(pRecord, &first)) {
            nRefused++;
            return first.Counted() > 5 ? "more repairs than two budgets hold" : "";
        }
        nMended += first.Counted() > 0;
        if (!Settle(pRecord, &second)) {
            return "refused what was accepted";
        }
        for (size_t i = 0; i < second.rules.size(); i++) {
            if (!returning.count(second.rules[i])) {
                return "rule " + std::to_string(second.rules[i]) + " again";
            }
            cameBack.insert(second.rules[i]);
        }
        return "";
    }

    std::optional<PrinterCall> call;
    GuardedPages pages;
    std::set<int> returning, cameBack;
    int nRefused = 0, nMended = 0;
};

TEST_F(HostileRecords, EveryByteAndEveryFieldAtItsEdges)
{
    int nRecords = 0;
    for (const Sample& sample : aSamples) {
        UseSample(sample);
        ASSERT_FALSE(HasFatalFailure());
        LiveCounts before = CountLive();
        cameBack.clear();
        nRefused = nMended = 0;
        for (const DriverDevmode& base : {good, BusyRecord()}) {
            ASSERT_EQ(SettleTwice(base), "") << sample.cSection;
            ASSERT_EQ(nMended, 0) << sample.cSection;
            for (size_t nAt = 0; nAt < WHOLE; nAt++) {
                for (u8 bValue : abByteValues) {
                    DriverDevmode record = base;
                    Put(&record, {nAt, 1, bValue});
                    nRecords++;
                    ASSERT_EQ(SettleTwice(record), "")
                        << sample.cSection << ", byte " << nAt << " = " << int{bValue};
                }
            }
            for (const FieldRun& run : aFieldRuns) {
                for (size_t nAt = run.nFirst; nAt < run.nEnd; nAt += run.bWidth) {
                    for (i64 lValue : alFieldValues) {
                        DriverDevmode record = base;
                        Put(&record, {nAt, run.bWidth, lValue});
                        nRecords++;
                        ASSERT_EQ(SettleTwice(record), "")
                            << sample.cSection << ", field " << nAt << " = " << lValue;
                    }
                }
            }
            EXPECT_GT(nRefused, 500) << sample.cSection;
            EXPECT_GT(nMended, 1000) << sample.cSection;
            nMended = 0;
        }
        EXPECT_EQ(cameBack, returning) << sample.cSection << ": a repair that is listed and never came back";
        EXPECT_EQ(CountLive(), before);
    }
    EXPECT_GE(nRecords, 400000);
}

/* Many fields at once, most of them what lets the check go on into its groups. */
TEST_F(HostileRecords, RandomFieldsTogether)
{
    u64 ullSeed = 0x9E3779B97F4A7C15;
    const auto random = [&ullSeed](u64 ullBelow) {
        ullSeed = ullSeed * 6364136223846793005 + 1442695040888963407;
        return (ullSeed >> 33) % ullBelow;
    };
    const size_t anGates[] = {388, 400, 412, 648, 662, 1828, 1962, 1964, 2980, 2981};
    for (const Sample& sample : aSamples) {
        UseSample(sample);
        ASSERT_FALSE(HasFatalFailure());
        for (int n = 0; n < 3000; n++) {
            DriverDevmode record = good;
            for (size_t nGate : anGates) {
                if (random(3) == 0) {
                    Put(&record, {nGate, 1, static_cast<i64>(random(7))});
                }
            }
            for (size_t i = random(6); i > 0; i--) {
                const FieldRun& run = aFieldRuns[random(std::size(aFieldRuns))];
                size_t nField = random((run.nEnd - run.nFirst) / run.bWidth);
                Put(&record, {run.nFirst + nField * run.bWidth, run.bWidth,
                              random(2) ? alFieldValues[random(std::size(alFieldValues))]
                                        : static_cast<i64>(random(64))});
            }
            for (size_t i = 0; i < 12; i++) { /* records of a few bytes in the exception region */
                Put(&record, {2982 + random(60), 1, static_cast<i64>(random(9))});
            }
            ASSERT_EQ(SettleTwice(record), "") << sample.cSection << ", record " << n;
        }
    }
}

TEST_F(HostileRecords, NoMoreIsTouchedThanIsClaimed)
{
    for (const Sample& sample : aSamples) {
        UseSample(sample);
        ASSERT_FALSE(HasFatalFailure());
        RuleLog log;
        /* Behind the public part nothing, behind dmFields nothing until the identity is proved. */
        DriverDevmode* pRecord = pages.Place(good, 220);
        EXPECT_EQ(ValidatePublicPart(*call, pRecord, pModel.get()), 1) << sample.cSection;
        for (FieldPoke wrong : {FieldPoke{0, 2, 0}, FieldPoke{64, 2, 0}, FieldPoke{66, 2, 2612},
                                FieldPoke{68, 2, 76}, FieldPoke{70, 2, 0}, FieldPoke{72, 4, 0}}) {
            DriverDevmode record = good;
            Put(&record, wrong);
            pRecord = pages.Place(record, 76);
            EXPECT_EQ(ValidatePublicPart(*call, pRecord, pModel.get()), 0) << sample.cSection << wrong.nAt;
        }
        /* Styles and blocks that lead as far as they may, in a part that ends with the page. */
        for (u16 usSize :
             {u16{0}, u16{1}, u16{3}, u16{4}, u16{366}, u16{367}, u16{733}, u16{734}, u16{735}, u16{65535}}) {
            for (int nCounts : {0x0000, 0x0101, 0x0303, 0x0300, 0x0003, 0xFFFF, 0x0103}) {
                for (i64 lType : {0, 6, 7, 255}) {
                    DriverDevmode record = good;
                    Put(&record, {2980, 2, nCounts});
                    for (size_t nAt = 2982; nAt < 3718; nAt += 4) {
                        Put(&record, {nAt, 4, usSize | lType << 16});
                    }
                    pRecord = pages.Place(record, WHOLE);
                    int nResult = ValidatePrivatePart(*call, &pRecord->rPrivate, pModel.get());
                    EXPECT_TRUE(!nResult || !Get(*pRecord, 2980, 2)) << sample.cSection << usSize;
                }
            }
        }
    }
}

/* Records of any content: each byte and each field at its edges, for every sample. The checks keep within the
   record's own bytes, of which none lies behind the end of a page that may be read, and what they accept they
   accept again without a repair. */
#include <set>

#include "settings/check_support.h"
#include "support/guarded_pages.h"
#include "support/sweep.h"
#include "tools/tq/record_fields.h"

namespace {

constexpr size_t WHOLE = sizeof(DriverDevmode);

/* A number of the record, by its place and width. */
struct Number {
    size_t nAt;
    u8 bWidth;
};

/* Every number, and of texts and bytes the first and the last. */
const std::vector<Number>& RecordNumbers()
{
    static const std::vector<Number> numbers = [] {
        std::vector<Number> found;
        for (const FieldPlace& place : RecordPlaces()) {
            const bool bNumber = place.nBytes == 1 || place.nBytes == 2 || place.nBytes == 4;
            const u8 bWidth = bNumber                   ? static_cast<u8>(place.nBytes)
                              : place.kind == WIDE_TEXT ? u8{2}
                                                        : u8{1};
            for (size_t nAt : {size_t{place.nOffset}, size_t{place.nOffset} + place.nBytes - bWidth}) {
                if (found.empty() || found.back().nAt != nAt) {
                    found.push_back({nAt, bWidth});
                }
            }
        }
        return found;
    }();
    return numbers;
}

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
    std::vector<FieldPoke> pokes;
    for (size_t nAt = 0; nAt < WHOLE; nAt++) {
        for (u8 bValue : abByteValues) {
            pokes.push_back({nAt, 1, bValue});
        }
    }
    for (const Number& number : RecordNumbers()) {
        for (i64 lValue : alFieldValues) {
            pokes.push_back({number.nAt, number.bWidth, lValue});
        }
    }
    int nRecords = 0;
    sweepBudget.Plan(2 * aSamples.size());
    for (const Sample& sample : aSamples) {
        UseSample(sample);
        ASSERT_FALSE(HasFatalFailure());
        cameBack.clear();
        nRefused = nMended = 0;
        for (const DriverDevmode& base : {good, BusyRecord()}) {
            ASSERT_EQ(SettleTwice(base), "") << sample.cSection;
            ASSERT_EQ(nMended, 0) << sample.cSection;
            sweepBudget.Visit(pokes.size(), [&](size_t nStep) {
                DriverDevmode record = base;
                Put(&record, pokes[nStep]);
                nRecords++;
                EXPECT_EQ(SettleTwice(record), "")
                    << sample.cSection << ", " << pokes[nStep].nAt << " = " << pokes[nStep].lValue;
            });
            EXPECT_GT(nRefused, sweepBudget.IsSet() ? 0 : 500) << sample.cSection;
            EXPECT_GT(nMended, sweepBudget.IsSet() ? 0 : 1000) << sample.cSection;
            nMended = 0;
        }
        EXPECT_TRUE(sweepBudget.IsSet() || cameBack == returning)
            << sample.cSection << ": a repair that is listed and never came back";
    }
    EXPECT_GE(nRecords, sweepBudget.IsSet() ? 8000 : 400000);
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

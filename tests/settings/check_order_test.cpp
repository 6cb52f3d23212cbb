/* What the two checks do around their rules: the order of the repairs, what a recorder is told, the cost in
   platform calls, and failing calls. */
#include "settings/check_support.h"
#include "support/sweep.h"
#include "tools/tq/rule_names.h"

namespace {

/* A field, a bad value that costs one repair of this field alone, and what is right for it: in the order in
   which the checks come to them. */
struct OrderRow {
    FieldPoke bad;
    i64 lMended;
};

const std::vector<OrderRow> aPublicOrder = {
    {{76, 2, 9}, 1},    {{78, 2, 200}, 1}, {{80, 2, 1}, 2794}, {{84, 2, 9}, 100}, {{86, 2, 0}, 1},
    {{88, 2, 4}, 1025}, {{90, 2, 9}, 600}, {{92, 2, 9}, 2},    {{94, 2, 9}, 1},   {{98, 2, 9}, 2},
    {{100, 2, 9}, 0},   {{102, 2, 9}, 0},  {{166, 2, 9}, 0},   {{168, 4, 9}, 0},  {{172, 4, 9}, 0},
    {{176, 4, 9}, 0},   {{180, 4, 9}, 0},  {{184, 4, 9}, 0},   {{188, 4, 9}, 1},  {{192, 4, 9}, 1},
    {{196, 4, 9}, 1},   {{200, 4, 9}, 0},  {{204, 4, 9}, 0},   {{208, 4, 9}, 0},  {{212, 4, 9}, 0},
    {{216, 4, 9}, 0},
};

/* On a record with 4 pages, a text watermark, both covers, an overlay and a poster of 1 x 1. Of the fields
   whose repair also changes another row's field one is left out. */
const std::vector<FieldPoke> aBusy = {{400, 4, 4},  {380, 4, 400}, {412, 4, 5},  {620, 4, 72},
                                      {648, 2, 1},  {662, 2, 1},   {1740, 2, 1}, {1756, 2, 1},
                                      {1828, 2, 1}, {1962, 2, 1},  {1964, 2, 1}, {1966, 2, 1}};

const std::vector<OrderRow> aPrivateOrder = {
    {{1812, 2, 9}, 0},    {{1880, 2, 9}, 0},  {{224, 4, 9}, 2},     {{364, 4, 9}, 0},   {{368, 4, 9}, 0},
    {{372, 4, 9}, 0},     {{376, 4, 9}, 0},   {{384, 2, 9}, 0},     {{386, 2, 9}, 0},   {{388, 2, 9}, 0},
    {{396, 2, -9}, 0},    {{398, 2, 9}, 0},   {{1808, 2, 4}, 0},    {{1882, 2, -9}, 0}, {{1968, 2, -9}, 0},
    {{424, 2, 9}, 0},     {{636, 2, 99}, 0},  {{650, 2, 16}, 1025}, {{658, 2, 3}, 1},   {{660, 2, 9}, 1},
    {{664, 2, 16}, 1025}, {{1806, 2, 9}, 1},  {{682, 2, 9}, 0},     {{695, 1, 9}, 0},   {{823, 1, 9}, 0},
    {{1463, 1, 9}, 0},    {{1719, 1, 9}, 0},  {{1800, 2, 9}, 0},    {{1724, 2, 9}, 1},  {{1802, 2, 9}, 0},
    {{1804, 2, 9}, 0},    {{1810, 2, 9}, 0},  {{1822, 2, -9}, 0},   {{1854, 2, 9}, 0},  {{1940, 2, 9}, 0},
    {{1856, 2, -9}, 0},   {{1862, 2, -9}, 0}, {{1864, 2, -9}, 0},   {{1870, 2, -9}, 0}, {{1872, 2, -9}, 0},
    {{1878, 2, -9}, 0},   {{1944, 2, -9}, 0}, {{1946, 2, 9}, 0},    {{1966, 2, 9}, 1},  {{1952, 2, 9}, 0},
    {{2696, 2, 9}, 0},    {{2698, 2, 9}, 0},  {{2700, 2, -9}, 0},   {{2760, 2, -9}, 0}, {{2764, 2, 9}, 0},
    {{2766, 2, 9}, -1},   {{2839, 1, 9}, 0},  {{2923, 1, 9}, 0},    {{2924, 2, 9}, 0},  {{2926, 2, 9}, 0},
    {{2928, 2, 9}, 0},    {{2930, 2, 9}, 1},  {{2932, 2, 9}, 1},    {{2934, 2, 9}, 0},  {{2948, 2, 9}, 0},
    {{2956, 2, 9}, 0},    {{2964, 2, 9}, 0},  {{2972, 2, 9}, 0},    {{2996, 2, 9}, 0},  {{3718, 2, 101}, 50},
    {{3720, 4, -1}, 100}, {{3724, 4, -1}, 0},
};

constexpr i64 BUDGET = 3;

} // namespace

class CheckOrder : public CheckTest {
  protected:
    void SetUp() override
    {
        CheckTest::SetUp();
        UseModel(CheckModel());
    }

    /* Each four neighbours are bad at once: the first three are right behind the check, the fourth is not. */
    void RunOrder(const std::vector<OrderRow>& rows, Check check)
    {
        for (size_t nFirst = 0; nFirst + BUDGET < rows.size(); nFirst++) {
            DriverDevmode record = good;
            for (size_t i = 0; i <= BUDGET; i++) {
                Put(&record, rows[nFirst + i].bad);
            }
            DriverDevmode poked = record;
            EXPECT_EQ((this->*check)(&record, pModel.get()), 0) << "from " << rows[nFirst].bad.nAt;
            for (size_t i = 0; i <= BUDGET; i++) {
                const FieldPoke& bad = rows[nFirst + i].bad;
                DriverDevmode mended = poked;
                Put(&mended, {bad.nAt, bad.bWidth, rows[nFirst + i].lMended});
                EXPECT_EQ(Get(record, bad.nAt, bad.bWidth),
                          Get(i < BUDGET ? mended : poked, bad.nAt, bad.bWidth))
                    << "byte " << bad.nAt << " of the four from " << rows[nFirst].bad.nAt;
            }
        }
    }
};

TEST_F(CheckOrder, OfThePublicPart)
{
    RunOrder(aPublicOrder, &CheckOrder::CheckPublic);
}

TEST_F(CheckOrder, OfThePrivatePart)
{
    for (const FieldPoke& poke : aBusy) {
        Put(&good, poke);
    }
    DriverDevmode record = good;
    ASSERT_EQ(CheckPrivate(&record, pModel.get()), 1);
    ASSERT_EQ(FirstDifference(record, good), -1);
    RunOrder(aPrivateOrder, &CheckOrder::CheckPrivate);

    record = good; /* the font offset, whose repair takes the font count along, comes first */
    for (const FieldPoke& poke :
         {FieldPoke{228, 4, -1}, FieldPoke{1812, 2, 9}, FieldPoke{1880, 2, 9}, FieldPoke{364, 4, 9}}) {
        Put(&record, poke);
    }
    EXPECT_EQ(CheckPrivate(&record, pModel.get()), 0);
    EXPECT_EQ(Get(record, 228, 4), 0u);
    EXPECT_EQ(Get(record, 364, 4), 9u);
}

TEST_F(CheckOrder, HardRulesAtTheirPlace)
{
    /* Contrast refuses behind rule 34 and before rule 37, whatever the count; margins at the very end. */
    for (FieldPoke hard : {FieldPoke{1814, 2, 51}, FieldPoke{1816, 2, -51}}) {
        DriverDevmode record = good;
        Put(&record, hard);
        Put(&record, {1810, 2, 9});
        Put(&record, {1822, 2, -9});
        EXPECT_EQ(CheckPrivate(&record, pModel.get()), 0);
        EXPECT_EQ(Get(record, 1810, 2), 0u);
        EXPECT_EQ(Get(record, 1822, 2), 0xFFF7u);
    }
    DriverDevmode record = good;
    Put(&record, {1790, 2, 1});
    Put(&record, {3724, 4, -1});
    Put(&record, {2980, 2, 5});
    EXPECT_EQ(CheckPrivate(&record, pModel.get()), 0);
    EXPECT_EQ(Get(record, 3724, 4), 0u);
    EXPECT_EQ(Get(record, 2980, 2), 5u) << "the region lives as long as the record is refused before it";
    record = good;
    Put(&record, {2930, 2, 4});
    Put(&record, {2980, 2, 5});
    EXPECT_EQ(CheckPrivate(&record, pModel.get()), 0);
    EXPECT_EQ(Get(record, 2980, 2), 0u) << "the colour mode comes behind it";
}

TEST_F(CheckOrder, EachPartHasItsOwnBudget)
{
    DriverDevmode record = good;
    for (const FieldPoke& poke :
         {FieldPoke{84, 2, 50}, FieldPoke{86, 2, 0}, FieldPoke{384, 2, 9}, FieldPoke{386, 2, 9}}) {
        Put(&record, poke);
    }
    PrinterCall call(hPrinter);
    EXPECT_EQ(ValidatePublicPart(call, &record, pModel.get()), 1);
    EXPECT_EQ(ValidatePrivatePart(call, &record.rPrivate, pModel.get()), 1);
    EXPECT_EQ(FirstDifference(record, good), -1);
}

TEST_F(CheckOrder, ARecorderIsToldWhatChanged)
{
    PrinterCall call(hPrinter);
    RuleLog log;
    DriverDevmode record = good;
    for (const FieldPoke& poke : {FieldPoke{68, 2, 4088}, FieldPoke{70, 2, 0}, FieldPoke{72, 4, 0x0380FF0E},
                                  FieldPoke{84, 2, 50}, FieldPoke{168, 4, 1}, FieldPoke{216, 4, 1}}) {
        Put(&record, poke);
    }
    EXPECT_EQ(ValidatePublicPartNoted(call, &record, pModel.get(), log.Recorder()), 0);
    EXPECT_EQ(log.rules, (std::vector<int>{10401, 20100, 30400, 31401, 31805}));
    EXPECT_EQ(log.outcomes,
              (std::vector<int>{RULE_FORCED, RULE_FORCED, RULE_MENDED, RULE_MENDED, RULE_LAST}));

    log = {};
    record = good;
    for (const FieldPoke& poke : {FieldPoke{2058, 2, 'X'}, FieldPoke{400, 4, 4}, FieldPoke{1882, 2, 9},
                                  FieldPoke{2966, 2, 1}, FieldPoke{2968, 2, 1}, FieldPoke{1790, 2, 1}}) {
        Put(&record, poke);
    }
    EXPECT_EQ(ValidatePrivatePartNoted(call, &record.rPrivate, pModel.get(), log.Recorder()), 0);
    EXPECT_EQ(log.rules, (std::vector<int>{40600, 51505, 56100, 56100, 56705}));
    EXPECT_EQ(log.outcomes,
              (std::vector<int>{RULE_FORCED, RULE_FORCED, RULE_MENDED, RULE_MENDED, RULE_REFUSED}));
    for (int nRule : log.rules) {
        EXPECT_STRNE(RuleFieldName(nRule), "");
    }

    log = {};
    record = good;
    EXPECT_EQ(ValidatePublicPartNoted(call, &record, nullptr, log.Recorder()) +
                  ValidatePrivatePartNoted(call, &record.rPrivate, nullptr, log.Recorder()),
              2);
    EXPECT_TRUE(log.rules.empty()) << "nothing to tell of a good record";
}

TEST_F(CheckOrder, ACheckAsksForNothingTwice)
{
    DriverDevmode record = good;
    PrinterCall call(hPrinter);
    ASSERT_EQ(ValidatePrivatePart(call, &record.rPrivate, pModel.get()), 1);
    ResetCallCounts();
    EXPECT_EQ(ValidatePublicPart(call, &record, pModel.get()), 1);
    EXPECT_EQ(ValidatePrivatePart(call, &record.rPrivate, pModel.get()), 1);
    EXPECT_EQ(CallCount(ANY_CALL), 0) << "with a model at hand and a call that was used nothing";

    PrinterCall fresh(hPrinter);
    ResetCallCounts();
    EXPECT_EQ(ValidatePublicPart(fresh, &record, nullptr) +
                  ValidatePrivatePart(fresh, &record.rPrivate, nullptr),
              2);
    EXPECT_EQ(CallCount(CALL_CreateFileW), 1) << "one opening serves both";
    EXPECT_EQ(CallCount(CALL_GetPrinterDriverW), 1);
    EXPECT_EQ(CallCount(CALL_GetPrinterDataW), 1);
    EXPECT_EQ(CallCount(CALL_GetProfileIntW), 0) << "a good record asks for no default";
}

TEST_F(CheckOrder, RecordsAtOddAddresses)
{
    std::vector<u8> room(sizeof good + 1);
    DriverDevmode* pRecord = reinterpret_cast<DriverDevmode*>(room.data() + 1);
    for (const FieldPoke& poke : aBusy) {
        Put(&good, poke);
    }
    std::vector<OrderRow> rows = aPublicOrder;
    rows.insert(rows.end(), aPrivateOrder.begin(), aPrivateOrder.end());
    for (const OrderRow& row : rows) {
        DriverDevmode expected = good;
        Put(&expected, {row.bad.nAt, row.bad.bWidth, row.lMended});
        std::memcpy(room.data() + 1, &good, sizeof good);
        Put(pRecord, row.bad);
        PrinterCall call(hPrinter);
        EXPECT_EQ(ValidatePublicPart(call, pRecord, pModel.get()), 1) << row.bad.nAt;
        EXPECT_EQ(ValidatePrivatePart(call, &pRecord->rPrivate, pModel.get()), 1) << row.bad.nAt;
        EXPECT_EQ(Get(*pRecord, row.bad.nAt, row.bad.bWidth), Get(expected, row.bad.nAt, row.bad.bWidth));
    }
}

/* A description that gives no model is no reason to mend a record to nothing. */
TEST_F(CheckOrder, AnEmptyDescription)
{
    pModel.reset();
    PutFile(u"C:\\drv\\qa.xpi", Bytes());
    DriverDevmode record = good;
    EXPECT_EQ(CheckPublic(&record, nullptr), 0);
    EXPECT_EQ(CheckPrivate(&record, nullptr), 0);
    EXPECT_EQ(FirstDifference(record, good), -1);
}

/* While calls fail a check refuses, or makes of the record what it makes when nothing fails. Two answers have
   a stand-in: without the locale the other default paper is taken, without the font file its offsets pass. */
TEST_F(CheckOrder, FailingCalls)
{
    DriverDevmode bad = good, metric = good, offset = good;
    for (const FieldPoke& poke : {FieldPoke{82, 2, 1}, FieldPoke{228, 4, 5001}, FieldPoke{384, 2, 9}}) {
        Put(&bad, poke);
    }
    Put(&metric, {80, 2, 2970});
    Put(&metric, {82, 2, 2100});
    Put(&offset, {228, 4, 5001});
    DriverDevmode metricOffset = metric;
    Put(&metricOffset, {228, 4, 5001});
    pModel.reset();
    for (const DriverDevmode* pStart : {&good, &bad}) {
        int nAccepted = 0;
        const auto body = [&]() -> std::string {
            DriverDevmode record = *pStart;
            PrinterCall call(hPrinter);
            int nPublic = ValidatePublicPart(call, &record, nullptr);
            DriverDevmode half = record; /* what is kept of it when the private part is refused */
            int nPrivate = nPublic ? ValidatePrivatePart(call, &record.rPrivate, nullptr) : 0;
            nAccepted += nPrivate;
            if (nPublic && memcmp(&half, &good, 220) != 0 && memcmp(&half, &metric, 220) != 0) {
                return "accepted a public part that is not as it should be; ";
            }
            for (const DriverDevmode* pRight : {&good, &metric, &offset, &metricOffset}) {
                if (FirstDifference(record, *pRight) == -1) {
                    return "";
                }
            }
            return nPrivate ? "accepted a record that is not as it should be; " : "";
        };
        for (FaultMode mode : {FAIL_ONCE, FAIL_FROM_THERE}) {
            FaultSweep sweep = SweepFaults(ANY_CALL, mode, 200, body);
            EXPECT_EQ(sweep.fault, "");
            EXPECT_GT(sweep.nFaults, 10);
        }
        EXPECT_GT(nAccepted, 2);
    }
}

/* What the two checks do around their rules: where they refuse, what a recorder is told, the cost in platform
   calls, and failing calls. */
#include "settings/check_support.h"
#include "support/sweep.h"
#include "tools/tq/rule_names.h"

class CheckOrder : public CheckTest {
  protected:
    void SetUp() override
    {
        CheckTest::SetUp();
        UseModel(CheckModel());
    }
};

/* Contrast refuses behind the reversed order and before the page features, whatever the count. Margins refuse at the
   very end, where the region still stands; the colour mode comes behind it. */
TEST_F(CheckOrder, HardRulesAtTheirPlace)
{
    const std::pair<const char*, const char*> aCases[] = {
        {"sContrast=51 sReverseOrder=9 sMaxPageFeature=-9", "sReverseOrder=0"},
        {"sBrightness=-51 sReverseOrder=9 sMaxPageFeature=-9", "sReverseOrder=0"},
        {"sMarginLeft=1 szlWMScale.cy=-1 bExceptionRegion:2=5", "szlWMScale.cy=0"},
        {"sColorCorrection=4 bExceptionRegion:2=5", "bExceptionRegion:2=0"},
    };
    for (const auto& [cPokes, cAfter] : aCases) {
        DriverDevmode record = good, expected = good;
        Put(&record, cPokes);
        Put(&expected, cPokes);
        Put(&expected, cAfter);
        EXPECT_EQ(CheckPrivate(&record, pModel.get()), 0);
        EXPECT_EQ(FirstDifference(record, expected), -1) << cPokes;
    }
}

TEST_F(CheckOrder, ARecorderIsToldWhatChanged)
{
    PrinterCall call(hPrinter);
    RuleLog log;
    DriverDevmode record = good; /* each part has its own budget */
    Put(&record, "dmScale=50 dmCopies=0 sRotate180=9 sCollate=9");
    EXPECT_EQ(CheckPublic(&record, pModel.get()) + CheckPrivate(&record, pModel.get()), 2);
    EXPECT_EQ(FirstDifference(record, good), -1);
    Put(&record,
        "dmSize=4088 dmDriverExtra=0 dmFields=0x0380FF0E dmScale=50 dmBitsPerPel=1 dmPanningHeight=1");
    EXPECT_EQ(ValidatePublicPartNoted(call, &record, pModel.get(), log.Recorder()), 0);
    EXPECT_EQ(log.rules, (std::vector<int>{10401, 20100, 30400, 31401, 31805}));
    EXPECT_EQ(log.outcomes,
              (std::vector<int>{RULE_FORCED, RULE_FORCED, RULE_MENDED, RULE_MENDED, RULE_LAST}));

    log = {};
    record = good;
    Put(&record, "tcXPIName+6:2='X' lPagesPerSheet=4 sPageBorderWidth=9 sImageOption[1]=1 sImageOption[2]=1 "
                 "sMarginLeft=1");
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

/* While calls fail a check refuses, or makes of the record what it makes when nothing fails. Two answers have
   a stand-in: without the locale the other default paper is taken, without the font file its offsets pass. */
TEST_F(CheckOrder, FailingCalls)
{
    DriverDevmode bad = good, metric = good, offset = good;
    Put(&bad, "dmPaperWidth=1 ulResFontOffset=5001 sRotate180=9");
    Put(&metric, "dmPaperLength=2970 dmPaperWidth=2100");
    Put(&offset, "ulResFontOffset=5001");
    DriverDevmode metricOffset = metric;
    Put(&metricOffset, "ulResFontOffset=5001");
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
        FaultSweep sweep = SweepFaultsBothWays(ANY_CALL, 200, body);
        EXPECT_EQ(sweep.fault, "");
        EXPECT_GT(sweep.nFaults, 20);
        EXPECT_GT(nAccepted, 2);
    }
}

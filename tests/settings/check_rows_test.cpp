/* The two checks against their rules, written down as data: what each change of a good record leads to, and the order
   in which bad fields are mended. */
#include "settings/check_support.h"

namespace {

/* What becomes of a record: accepted with none, one or two counted repairs, or refused. */
constexpr const char* aOutcomes[] = {"kept", "mended", "twice", "refused"};
constexpr int REFUSED = 3;

/* Fields whose value 0x7777 costs one repair each, at the end of the public check and within the private one. */
const std::vector<size_t> aPublicFillers = {216, 212, 208, 204, 200, 84};
const std::vector<size_t> aPrivateFillers = {1802, 1810, 384, 386, 1800};

/* The model that a line of a data file describes. */
DescriptionBuilder DescribedModel(const std::string& line)
{
    unsigned nKind = 0, nClass = 0;
    EXPECT_EQ(std::sscanf(line.c_str(), "kind %u class %u", &nKind, &nClass), 2) << line;
    auto Has = [&line](const char* cWords) { return line.find(cWords) != std::string::npos; };
    DescriptionBuilder b = CheckModel(static_cast<u16>(nKind), static_cast<u16>(nClass));
    if (Has(" without tables")) {
        b = DescriptionBuilder().Set<u16>(2, static_cast<u16>(nKind)).Set<u16>(302, 0).Set<u16>(116, 1025);
    } else if (Has(" with its own A4")) {
        b.Table<PaperRow>(8, {{1, 9, 2111, 2999, 1, 0, 0, 0, {}}, {}});
        b.Set<u16>(116, 261).Set<i16>(120, 0);
    } else if (Has(" without a default resolution")) {
        b.Set<i16>(120, 3);
    } else if (Has(" with empty media")) {
        b.Table<MediaRow>(48, {{}});
    } else if (Has(" with empty colour modes")) {
        b.Table<ColorModeRow>(220, {{}});
    } else if (Has(" with empty screens")) {
        b.Table<ScreenRow>(284, {{}});
    } else if (Has(" with empty option values")) {
        b.Table<OptionValueRow>(260, {{}});
    } else if (Has(" with 40 features")) {
        std::vector<FeatureRow> rows(40, FeatureRow{1, 1, 0, 0, 0});
        rows.emplace_back();
        b.Table<FeatureRow>(188, rows);
    } else if (Has(" without feature values")) {
        b.Set<u64>(196, 0);
    } else if (Has(" with values outside their table")) {
        b.Table<FeatureRow>(188, {{1, 1, 0, -1, 0}, {1, 1, 0, 32767, 0}, {}});
    } else {
        EXPECT_TRUE(!Has(" with") || Has(" without a font file")) << line;
    }
    return b;
}

} // namespace

class CheckRows : public CheckTest {
  protected:
    void RunFile(const char* cFile, Check check, const std::vector<size_t>& fillers)
    {
        for (const DataRow& row : ReadRows(cFile)) {
            if (row.size() > 1) {
                Run(row, check, fillers);
                continue;
            }
            UseModel(DescribedModel(row[0]));
            SetLocaleValue(u"iMeasure", row[0].find(" own A4") != std::string::npos ? u"0" : u"1");
            if (row[0].find(" without a font file") != std::string::npos) {
                std::filesystem::remove(HostPath(u"C:\\drv\\qa.fdf"));
            }
        }
    }

    /* Runs a row with the model at hand and with none. How many repairs it counts is seen from outside: up to
       two may be made, so k bad fields more let the record through while all are fewer than three. */
    void Run(const DataRow& row, Check check, const std::vector<size_t>& fillers)
    {
        SCOPED_TRACE(row[0]);
        const int nOutcome = static_cast<int>(std::find(std::begin(aOutcomes), std::end(aOutcomes), row[1]) -
                                              std::begin(aOutcomes));
        ASSERT_LE(nOutcome, REFUSED) << row[1];
        const std::vector<FieldPoke> pokes = ToPokes(row.size() > 2 ? row[2] : "");
        DriverDevmode poked = good;
        Put(&poked, pokes);
        DriverDevmode expected = poked;
        Put(&expected, ToPokes(row.size() > 3 ? row[3] : ""));
        for (const XpiModel* pOf : {static_cast<const XpiModel*>(pModel.get()), NO_MODEL}) {
            DriverDevmode record = poked;
            EXPECT_EQ((this->*check)(&record, pOf), nOutcome != REFUSED);
            EXPECT_EQ(FirstDifference(record, expected), -1) << "first differing byte";
        }
        std::vector<FieldPoke> free;
        for (size_t nFiller : fillers) {
            if (std::none_of(pokes.begin(), pokes.end(),
                             [=](const FieldPoke& poke) { return poke.nAt == nFiller; })) {
                free.push_back({nFiller, 2, 0x7777});
            }
        }
        ASSERT_GE(free.size(), 3u);
        for (size_t nMore = 1; nMore <= 3 && nOutcome != REFUSED; nMore++) {
            DriverDevmode record = poked;
            Put(&record, std::vector<FieldPoke>(free.begin(), free.begin() + static_cast<i64>(nMore)));
            EXPECT_EQ((this->*check)(&record, pModel.get()), nOutcome + static_cast<int>(nMore) < 3)
                << "with " << nMore << " more";
        }
    }

    static constexpr const XpiModel* NO_MODEL = nullptr;
};

TEST_F(CheckRows, PublicPart)
{
    RunFile("public_check.txt", &CheckRows::CheckPublic, aPublicFillers);
}

TEST_F(CheckRows, PrivatePart)
{
    RunFile("private_check.txt", &CheckRows::CheckPrivate, aPrivateFillers);
}

/* Each four neighbours of the order are bad at once: the first three are right behind the check, the fourth is not.
   Each by itself, in a record at an odd address, is mended by the two checks. */
TEST_F(CheckRows, OrderOfTheRepairs)
{
    struct OrderRow {
        FieldPoke bad, mended;
    };
    constexpr size_t BUDGET = 3;
    UseModel(CheckModel());
    DriverDevmode record = good;
    std::map<std::string, std::vector<OrderRow>> parts;
    for (const DataRow& row : ReadRows("check_order.txt")) {
        if (row[0] == "busy") {
            Put(&record, ToPokes(row[1]));
            continue;
        }
        const FieldPoke bad = ToPoke(row[1]);
        parts[row[0]].push_back({bad, {bad.nAt, bad.bWidth, ToNumber(row[2])}});
    }
    ASSERT_EQ(parts.size(), 2u);
    good = record;
    EXPECT_EQ(CheckPrivate(&record, pModel.get()), 1);
    EXPECT_EQ(FirstDifference(record, good), -1);
    std::vector<u8> room(sizeof good + 1);
    DriverDevmode* pOdd = reinterpret_cast<DriverDevmode*>(room.data() + 1);
    for (const auto& [part, rows] : parts) {
        const Check check = part == "public" ? &CheckRows::CheckPublic : &CheckRows::CheckPrivate;
        for (size_t nFirst = 0; nFirst < rows.size(); nFirst++) {
            SCOPED_TRACE("byte " + std::to_string(rows[nFirst].bad.nAt));
            DriverDevmode expected = good;
            Put(&expected, rows[nFirst].mended);
            std::memcpy(room.data() + 1, &good, sizeof good);
            Put(pOdd, rows[nFirst].bad);
            EXPECT_EQ(CheckPublic(pOdd, pModel.get()) + CheckPrivate(pOdd, pModel.get()), 2);
            EXPECT_EQ(Get(*pOdd, rows[nFirst].bad), Get(expected, rows[nFirst].bad));
            if (nFirst + BUDGET >= rows.size()) {
                continue;
            }
            record = good;
            for (size_t i = nFirst; i <= nFirst + BUDGET; i++) {
                Put(&record, rows[i].bad);
            }
            expected = record;
            for (size_t i = nFirst; i < nFirst + BUDGET; i++) {
                Put(&expected, rows[i].mended);
            }
            EXPECT_EQ((this->*check)(&record, pModel.get()), 0);
            for (size_t i = nFirst; i <= nFirst + BUDGET; i++) {
                EXPECT_EQ(Get(record, rows[i].bad), Get(expected, rows[i].bad)) << "byte " << rows[i].bad.nAt;
            }
        }
    }
}

TEST_F(CheckRows, TheDescriptionsPathFollowsTheDriver)
{
    UseModel(CheckModel());
    const auto WithPath = [this](const WideText& tcPath) {
        DriverDevmode record = good;
        WideText tcWhole = tcPath;
        tcWhole.resize(160);
        std::memcpy(record.rPrivate.tcXPIName, tcWhole.data(), 320);
        return record;
    };
    const std::pair<WideText, bool> aCases[] = {{u"D:\\OLD\\QA.XPI", true},
                                                {u"\\QA.XPI", true},
                                                {u"C:\\DRV\\QA2.XPI", false},
                                                {u"c:\\drv\\qa.xpi", false},
                                                {u"QA.XPI", false},
                                                {u"", false},
                                                {u"C:\\DRV\\QA.XPI\\", false},
                                                {u"C:\\DRV\\QA.XPI.", false},
                                                {u"D:\\OLD\\QA.XPI" + WideText(1, 0) + WideText(120, u'x'),
                                                 true}}; /* what lay behind it goes with it */
    for (const auto& [tcHeld, bTaken] : aCases) {
        DriverDevmode record = WithPath(tcHeld);
        EXPECT_EQ(CheckPrivate(&record, pModel.get()), bTaken) << Narrow(tcHeld);
        EXPECT_EQ(FirstDifference(record, bTaken ? good : WithPath(tcHeld)), -1) << Narrow(tcHeld);
    }
    /* The path is brought up to date before the overlay folder refuses. */
    DriverDevmode record = WithPath(u"D:\\OLD\\QA.XPI"), expected = good;
    Put(&record, "tcOverlayDir+318:2='X'");
    Put(&expected, "tcOverlayDir+318:2='X'");
    EXPECT_EQ(CheckPrivate(&record, pModel.get()), 0);
    EXPECT_EQ(FirstDifference(record, expected), -1);

    /* A path too long for the record is cut once. */
    const WideText tcLong = u"C:\\" + WideText(170, u'D') + u"\\QA.XPI";
    PrinterSetup setup;
    setup.wcName = u"Test";
    setup.wcDriverName = u"Test Driver";
    setup.tcDriverPath = u"C:\\drv\\qrnd.dll";
    setup.atcDependentFiles = {tcLong};
    PutFile(tcLong, CheckModel().Build());
    AddPrinter(setup);
    OpenSample printer(u"Test");
    PrinterCall call(printer.hPrinter);
    record = good;
    ASSERT_EQ(ValidatePrivatePart(call, &record.rPrivate, pModel.get()), 1);
    EXPECT_EQ(Get(record, {2368, 4, 0}), u64{u'D'});
}

/* A description that is gone or empty is no reason to mend a record to nothing. */
TEST_F(CheckRows, WithoutADescription)
{
    UseModel(CheckModel());
    DriverDevmode record = good;
    Put(&record, "dmSize=4088 dmDriverExtra=0 sRotate180=2 tcXPIName:2='D'");
    const DriverDevmode before = record;
    std::filesystem::remove(HostPath(u"C:\\drv\\qa.xpi"));
    EXPECT_EQ(CheckPublic(&record, nullptr) + CheckPrivate(&record, nullptr), 0);
    EXPECT_EQ(CheckPrivate(&record, pModel.get()), 0) << "the colour data's size stands in the file alone";
    EXPECT_EQ(FirstDifference(record, before), -1);
    EXPECT_EQ(CheckPublic(&record, pModel.get()), 1) << "a model at hand is all it needs";
    pModel.reset();
    PutFile(u"C:\\drv\\qa.xpi", Bytes());
    record = before;
    EXPECT_EQ(CheckPublic(&record, nullptr) + CheckPrivate(&record, nullptr), 0);
    EXPECT_EQ(FirstDifference(record, before), -1);
}

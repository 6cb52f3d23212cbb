/* What the tests of the two checks share: changes of fields by name, a model with every table, and a record that is
   good for a model. */
#ifndef TQUI_TESTS_CHECK_SUPPORT_H
#define TQUI_TESTS_CHECK_SUPPORT_H

#include <algorithm>
#include <array>

#include "description/driver_files.h"
#include "settings/check_core.h"
#include "support/data_file.h"
#include "support/sample_machine.h"
#include "tools/tq/record_fields.h"

/* A number put into the record: offset from its first byte, width, value. */
struct FieldPoke {
    size_t nAt;
    u8 bWidth;
    i64 lValue;
};

inline void Put(DriverDevmode* pRecord, const FieldPoke& poke)
{
    std::memcpy(reinterpret_cast<u8*>(pRecord) + poke.nAt, &poke.lValue, poke.bWidth);
}

inline u64 Get(const DriverDevmode& record, size_t nAt, u8 bWidth)
{
    u64 ullValue = 0;
    std::memcpy(&ullValue, reinterpret_cast<const u8*>(&record) + nAt, bWidth);
    return ullValue;
}

/* What stands at the place of a poke. */
inline u64 Get(const DriverDevmode& record, const FieldPoke& poke)
{
    return Get(record, poke.nAt, poke.bWidth);
}

/* A change as data files name it: "field=value", or for a part of a field "field+delta:width=value". Values are
   numbers or a character in quotation marks. */
inline FieldPoke ToPoke(const std::string& word)
{
    const size_t nEquals = word.find('='), nNameEnd = word.find_first_of("+:=");
    const std::string value = word.substr(nEquals + 1);
    const long long llValue = value[0] == '\'' ? value[1] : ToNumber(value);
    for (const FieldPlace& place : RecordPlaces()) {
        if (place.name == word.substr(0, nNameEnd)) {
            const size_t nColon = word.find(':');
            const char* cDelta = word[nNameEnd] == '+' ? word.c_str() + nNameEnd : "0";
            const unsigned nWidth =
                nColon < nEquals ? static_cast<unsigned>(std::atoi(word.c_str() + nColon + 1)) : place.nBytes;
            EXPECT_LE(nWidth, 8u) << word;
            return {place.nOffset + static_cast<size_t>(std::atoi(cDelta)), static_cast<u8>(nWidth), llValue};
        }
    }
    ADD_FAILURE() << "no such field: " << word;
    return {};
}

inline std::vector<FieldPoke> ToPokes(const std::string& words)
{
    std::vector<FieldPoke> pokes;
    for (const std::string& word : Words(words)) {
        pokes.push_back(ToPoke(word));
    }
    return pokes;
}

inline void Put(DriverDevmode* pRecord, const std::vector<FieldPoke>& pokes)
{
    for (const FieldPoke& poke : pokes) {
        Put(pRecord, poke);
    }
}
inline void Put(DriverDevmode* pRecord, const char* cPokes)
{
    Put(pRecord, ToPokes(cPokes));
}

/* First byte at which two records differ; -1 for none. */
inline int FirstDifference(const DriverDevmode& one, const DriverDevmode& other)
{
    const u8* pOne = reinterpret_cast<const u8*>(&one);
    const u8* pOther = reinterpret_cast<const u8*>(&other);
    for (int i = 0; i < static_cast<int>(sizeof one); i++) {
        if (pOne[i] != pOther[i]) {
            return i;
        }
    }
    return -1;
}

/* Rules in the order in which they were told, as "number/outcome". */
struct RuleLog {
    std::vector<int> rules, outcomes;

    RuleRecorder Recorder() { return {Note, this}; }
    int Counted() const
    {
        return static_cast<int>(std::count_if(outcomes.begin(), outcomes.end(), [](int nOutcome) {
            return nOutcome == RULE_MENDED || nOutcome == RULE_LAST;
        }));
    }

  private:
    static void Note(void* pContext, int nRule, int nOutcome)
    {
        RuleLog* pLog = static_cast<RuleLog*>(pContext);
        pLog->rules.push_back(nRule);
        pLog->outcomes.push_back(nOutcome);
    }
};

/* A record that both checks pass without a repair for a model whose default paper fits its custom range. The
   values that go with the model are set by hand from it. */
inline DriverDevmode GoodRecord(const XpiModel* pModel, const WideText& tcXpiPath)
{
    DriverDevmode record = recordTemplate;
    PrivateDevmode part = record.rPrivate;
    int bColor = pModel->usColorClass == CLASS_COLOR;
    const ResolutionRow* pResolution = Row(pModel, pModel->pResolutions, pModel->sDefaultResolution);
    record.dmFields = bColor ? 0x0380FF0F : 0x0000F70F;
    record.dmColor = bColor ? 2 : 0;
    record.dmPaperWidth = 2159;
    record.dmPaperLength = 2794;
    if (pModel->sMaxCustomWidth && pModel->sMaxCustomWidth < record.dmPaperWidth) {
        record.dmPaperWidth = pModel->sMaxCustomWidth;
    }
    record.dmDefaultSource = static_cast<i16>(pModel->sDefaultBin);
    record.dmPrintQuality = pResolution->usDpiX;
    record.dmYResolution = pResolution->usDpiY;

    part.ulResolution = static_cast<u32>(pResolution->sDpi);
    part.sOverlayDirOffset = 332;
    part.sGenColorCmdOffset = 660;
    part.OEMData = {1, 1744, 304};
    std::memcpy(part.tcXPIName, tcXpiPath.data(), tcXpiPath.size() * sizeof(WCHAR));
    part.sPageBorderLength = 118;
    part.sMediaTypeIndex = pModel->pMediaTypes ? 1 : 0;
    part.sOutputPJLsid =
        pModel->pOutputBins ? Row(pModel, pModel->pOutputBins, 0)->usCmdId : static_cast<u16>(0);
    part.sColorCorrection = static_cast<i16>(pModel->sDefaultColorMode);
    part.sResolution = pModel->sDefaultResolution;
    for (int i = 0; i < 32 && Row(pModel, pModel->pPjlFeatures, i)->usNameId; i++) {
        int bTyped = !PjlValueRow(pModel, Row(pModel, pModel->pPjlFeatures, i)->sFirstValue)->usNameId;
        part.sPJLValueIndex[i] = bTyped ? -1 : 0;
    }
    std::memcpy(reinterpret_cast<u8*>(&record) + 220, &part, sizeof part);
    return record;
}

/* A model with every table that the checks look at, of numbers that tell its rows apart. */
inline DescriptionBuilder CheckModel(u16 usKind = KIND_PCL6, u16 usClass = CLASS_COLOR)
{
    DescriptionBuilder b;
    b.Set<u16>(2, usKind).Set<u16>(302, usClass);
    b.Set<i16>(16, 762).Set<i16>(18, 3112).Set<i16>(20, 1270).Set<i16>(22, 12000);
    b.Set<u16>(116, 1025).Set<u16>(118, 5).Set<i16>(120, 1).Set<u16>(280, 1).Set<i16>(312, 1);
    b.Set<i16>(156, 2);                                   /* fonts */
    b.Table<BinRow>(24, {{1, 1025, 1}, {8, 261, 1}, {}}); /* no mask has the second's bit */
    b.Table<OutputBinRow>(32, {{1, 5, 1}, {2, 7, 1}, {4, 0x9000, 1}, {}});
    b.Table<MediaRow>(48, {{1, 1, 0, "PLAIN", 1}, {2, 1, 0, "FILM", 300}, {4, 1, 0, "HEAVY", 256}, {}});
    b.Table<ResolutionRow>(174, {{1, 300, 0, 1, 300, 300, 0, 0},
                                 {1, 600, 0, 1, 600, 600, 0, 0},
                                 {1, 1200, 0, 1, 1200, 600, 0, 0},
                                 {}});
    b.Table<FeatureRow>(188, {{1, 1, 0, 0, 0}, {1, 1, 0, 3, 0}, {1, 1, 0, 4, 0}, {}});
    if (usKind == KIND_IMAGE) { /* 3 values, none, 2 */
        b.Table<std::array<u16, 3>>(
            196, {{1, 0, 9}, {1, 1, 9}, {1, 2, 9}, {0, 0, 0}, {1, 0, 9}, {1, 1, 9}, {0, 0, 0}});
    } else {
        b.Table<FeatureValueRow>(196, {{1, 0}, {1, 1}, {1, 2}, {0, 0}, {1, 0}, {1, 1}, {0, 0}});
    }
    b.Table<ColorModeRow>(220, {{2, 1, -1}, {1, 1, -1}, {4, 1, -1}, {8, 1, -1}, {8, 1, -1}, {8, 1, -1}, {}});
    OptionValueRow value = {1, 0, 0, 0, 0};
    b.Table<OptionValueRow>(260, {value, value, value, value, value, value, {}, value, value, {}});
    b.Table<ColorOptionRow>(228, {{1, 0}, {1, 0}, {1, 0}, {1, 7}, {}}); /* 6, 6, 6, 2 values */
    b.Table<ColorOptionRow>(236, {{1, 0}, {}});
    b.Table<ColorOptionRow>(244, {{1, 0}, {1, 7}, {}});
    b.Table<ColorOptionRow>(252, {{1, 0}, {}});
    b.Table<ScreenRow>(284, {{1, 0, 0}, {1, 1, 0}, {}});
    b.colorData = Bytes(200, 'C');
    b.fonts = {Bytes(10, 'F'), Bytes(10, 'G')};
    return b;
}

/* The machine of the checks: the printer "Test" with a description, and a font file of 5000 bytes. */
class CheckTest : public MachineTest {
  protected:
    void TearDown() override
    {
        pModel.reset();
        MachineTest::TearDown();
    }

    void UseModel(const DescriptionBuilder& builder)
    {
        pModel.reset();
        AddTestPrinter(builder.Build());
        PutFile(u"C:\\drv\\qa.fdf", Bytes(5000));
        PrinterCall call(hPrinter);
        pModel = LoadPrinterModel(call);
        ASSERT_NE(pModel, nullptr);
        good = GoodRecord(pModel.get(), u"C:\\DRV\\QA.XPI");
    }

  public:
    int CheckPublic(DriverDevmode* pRecord, const XpiModel* pOf)
    {
        PrinterCall call(hPrinter);
        return ValidatePublicPart(call, pRecord, pOf);
    }

    int CheckPrivate(DriverDevmode* pRecord, const XpiModel* pOf)
    {
        PrinterCall call(hPrinter);
        return ValidatePrivatePart(call, &pRecord->rPrivate, pOf);
    }

  protected:
    using Check = int (CheckTest::*)(DriverDevmode*, const XpiModel*);

    OwnedModel pModel;
    DriverDevmode good;
};

#endif

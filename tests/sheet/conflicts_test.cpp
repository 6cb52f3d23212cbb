/* The conflict table: rules in a model built here, one record, and which sheet of it does not fit. */
#include "sheet/conflicts.h"

#include <sstream>

#include "description/paper.h"
#include "support/data_file.h"
#include "support/sample_machine.h"
#include "tools/tq/record_text.h"

namespace {

constexpr const char* SHEET_NAMES[SHEET_KINDS] = {"body", "front", "back", "separator", "insert"};

ConstraintRow ReadRule(const std::string& text)
{
    ConstraintRow rule = {};
    rule.usUsed = 1;
    rule.sMessageId = 7;
    std::vector<i64> sizes;
    std::istringstream words(text);
    for (std::string word, key; words >> word;) {
        if (std::isalpha(static_cast<unsigned char>(word[0]))) {
            key = word;
            continue;
        }
        const i64 lNumber = ToNumber(word);
        u32* pulBits = key == "inputs"    ? &rule.ulInputs
                       : key == "outputs" ? &rule.ulOutputs
                       : key == "media"   ? &rule.ulMedia
                                          : &rule.ulOptions;
        if (key == "sizes") {
            sizes.push_back(lNumber);
        } else if (key == "papers") {
            rule.bPapers[lNumber / 8] = static_cast<u8>(rule.bPapers[lNumber / 8] | 0x80 >> lNumber % 8);
        } else {
            *pulBits = static_cast<u32>(lNumber);
        }
    }
    i16* const aSizes[] = {&rule.sMinWidth, &rule.sMaxWidth, &rule.sMinLength, &rule.sMaxLength};
    for (size_t i = 0; i < sizes.size(); i++) {
        *aSizes[i] = static_cast<i16>(sizes[i]);
    }
    return rule;
}

class ConflictsTest : public MachineTest {
  protected:
    std::string Ask(const DriverDevmode& record, u32 ulInstalled, const std::string& rules)
    {
        std::vector<ConstraintRow> rows;
        for (const std::string& text : SplitTrimmed(rules, ';')) {
            rows.push_back(ReadRule(text));
        }
        rows.push_back({});
        DescriptionBuilder builder;
        builder.Table(offsetof(XpiModel, pConstraints), rows);
        builder.Table<PaperRow>(
            offsetof(XpiModel, pPaperTable),
            {{1, 9, 2100, 2970, 1, 0, 0, 0, {}}, {2, 11, 1480, 2100, 1, 0, 0, 0, {}}, {}});
        builder.Table<BinRow>(offsetof(XpiModel, pInputBins), {{1, 1025, 1}, {2, 261, 2}, {}});
        builder.Table<OutputBinRow>(offsetof(XpiModel, pOutputBins), {{1, 5, 1}, {2, 6, 2}, {}});
        builder.Table<MediaRow>(offsetof(XpiModel, pMediaTypes), {{1, 1, 0, {}, 1}, {2, 2, 0, {}, 2}, {}});
        builder.Table<FeatureRow>(offsetof(XpiModel, pPjlFeatures),
                                  {{1, 1, 0x10, 0, 0}, {1, 2, 0x10, 2, 0}, {1, 3, 0x40, 0, 0}, {}});
        builder.Table<FeatureValueRow>(offsetof(XpiModel, pPjlValues), {{1, 0}, {1, 8}, {1, 0}, {1, 9}, {}});
        PrinterCall call(AddTestPrinter(builder.Build()));
        OwnedModel pModel = LoadPrinterModel(call);
        const DeviceInfo installed = {3, 3, ulInstalled, 0};
        Conflict found = {SHEET_KINDS, -1, -1};
        if (!FindConflict(call, &record, &installed, pModel.get(), FIRST_SAVED_CODE + 2, &found)) {
            return "-";
        }
        EXPECT_EQ(found.sMessageId, 7);
        return SHEET_NAMES[found.kind] + (" " + std::to_string(found.nRule));
    }
};

TEST_F(ConflictsTest, TheTable)
{
    for (const DataRow& row : ReadRows("conflicts.txt")) {
        DriverDevmode record = recordTemplate;
        record.dmPaperSize = 9;
        record.dmDefaultSource = 1025;
        record.dmDuplex = 1;
        record.rPrivate.sMediaTypeIndex = 1;
        record.rPrivate.sScale = 0;
        record.rPrivate.sOutputPJLsid = 5;
        u32 ulInstalled = 0x11;
        std::istringstream fields(row.at(0));
        for (std::string field; fields >> field;) {
            if (field.starts_with("installed=")) {
                ulInstalled = static_cast<u32>(ToNumber(field.substr(10)));
            } else {
                SetRecordField(&record, field);
            }
        }
        EXPECT_EQ(Ask(record, ulInstalled, row.at(1)), row.at(2)) << row[0] << " | " << row[1];
    }
}

} // namespace

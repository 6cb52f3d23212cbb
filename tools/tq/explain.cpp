/* The command `tq explain`. */
#include "tools/tq/explain.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <ostream>
#include <stdexcept>
#include <vector>

#include "description/driver_files.h"
#include "description/paper.h"
#include "description/xpi_text.h"
#include "hosted/standin.h"
#include "settings/check_core.h"
#include "sheet/conflicts.h"
#include "tools/tq/record.h"
#include "tools/tq/record_text.h"
#include "tools/tq/rule_names.h"

namespace {

using Line = std::array<std::string, 5>; /* rule, outcome, field, offset, values */

/* What the checks tell while they run. */
struct Account {
    const DriverDevmode* pRecord;
    DriverDevmode before; /* as it was at the last note */
    int nRepairs;         /* of the part that is being checked */
    bool bTold;           /* a rule of that part refused */
    bool bInsertList; /* the model keeps the list of inserted pages where others have the exception region */
    std::vector<Line> lines;
};

std::string OutcomeText(Account* pAccount, int nOutcome)
{
    switch (nOutcome) {
    case RULE_FORCED: return "set";
    case RULE_MENDED: return "repair " + std::to_string(++pAccount->nRepairs);
    case RULE_LAST: return "repair " + std::to_string(++pAccount->nRepairs) + ", one too many";
    default: return "refused";
    }
}

/* The field that a rule looks at, with its value where the rule names just one. */
Line FieldLine(const DriverDevmode& record, int nRule)
{
    std::string name = RuleFieldName(nRule);
    try {
        FieldValue field = FieldOf(record, name.substr(0, name.find(',')));
        return {"", "", name, std::to_string(field.nOffset), field.value};
    } catch (const RecordTextError&) {
        return {"", "", name, "", ""};
    }
}

/* The fields that a rule changed, old and new value. */
std::vector<Line> ChangedFields(const Account& account)
{
    std::vector<Line> lines;
    const auto add = [&](const std::string& name) {
        FieldValue before = FieldOf(account.before, name), now = FieldOf(*account.pRecord, name);
        if (before.value != now.value) {
            lines.push_back({"", "", name, std::to_string(now.nOffset), before.value + " -> " + now.value});
        }
    };
    for (const FieldValue& field : DifferingFields(account.before, *account.pRecord)) {
        if (account.bInsertList && field.name == "bExceptionRegion") {
            for (size_t i = 0; i < std::size(account.pRecord->rPrivate.sInsertPageList); i++) {
                add("sInsertPageList[" + std::to_string(i) + "]");
            }
        } else {
            add(field.name);
        }
    }
    return lines;
}

void NoteLines(void* pContext, int nRule, int nOutcome)
{
    Account* pAccount = static_cast<Account*>(pContext);
    std::vector<Line> lines = ChangedFields(*pAccount);
    if (lines.empty()) {
        lines.push_back(FieldLine(*pAccount->pRecord, nRule));
        if (nOutcome != RULE_REFUSED) { /* the repair is what the record had */
            lines[0][4] += lines[0][4].empty() ? "as before" : ", as before";
        }
    }
    lines[0][0] = RuleLabel(nRule);
    lines[0][1] = OutcomeText(pAccount, nOutcome);
    pAccount->lines.insert(pAccount->lines.end(), lines.begin(), lines.end());
    pAccount->bTold |= nOutcome == RULE_LAST || nOutcome == RULE_REFUSED;
    pAccount->before = *pAccount->pRecord;
}

/* The sentence on a part; the check's result decides. */
std::string Verdict(const char* cPart, int bAccepted, const Account& account, const char* cInstead)
{
    std::string text = std::string(cPart) + " part: ";
    if (!bAccepted) {
        return text + (account.bTold ? "refused. " : "refused, since the description cannot be read. ") +
               cInstead + "\n";
    }
    return text + (account.nRepairs == 0 ? "accepted\n"
                   : account.nRepairs == 1
                       ? "accepted with 1 repair\n"
                       : "accepted with " + std::to_string(account.nRepairs) + " repairs\n");
}

void PrintLines(const std::vector<Line>& lines, std::ostream& out)
{
    std::array<size_t, 5> widths = {};
    for (const Line& line : lines) {
        for (size_t n = 0; n < line.size(); n++) {
            widths[n] = std::max(widths[n], line[n].size());
        }
    }
    for (const Line& line : lines) {
        std::string text;
        for (size_t n = 0; n < line.size(); n++) {
            std::string gap(widths[n] - line[n].size(), ' ');
            text += n == 3 ? gap + line[n] + "  " : line[n] + gap + "  ";
        }
        out << text.substr(0, text.find_last_not_of(' ') + 1) << "\n";
    }
}

struct SheetFields {
    const char* cName;
    std::vector<const char*> fields;
};
const SheetFields aSheets[SHEET_KINDS] = {
    {"the body of the job", {"dmPaperSize", "dmDefaultSource", "sMediaTypeIndex", "dmDuplex"}},
    {"the front cover", {"sFrontPaperSize", "sFrontBin", "sFrontMediaIndex", "sFrontDuplex", "dmDuplex"}},
    {"the back cover", {"sBackPaperSize", "sBackBin", "sBackMediaIndex", "sBackDuplex", "dmDuplex"}},
    {"separators", {"sSeparatorPaper", "sSeparatorBin", "sSeparatorMediaIndex", "dmDuplex"}},
    {"inserted pages",
     {"sInsertPaper", "sInsertPageBin", "sInsertPageMediaIndex", "sInsertPages", "dmDuplex"}},
};

/* What the sheets would say of an accepted record when they store it. */
std::string ConflictVerdict(PrinterCall& call, const DriverDevmode& record, const XpiModel* pModel)
{
    OwnedBlock<PaperSizeRow> pSaved, pForms;
    i32 lKnown = FIRST_SAVED_CODE + GetSavedPapers(call, nullptr, &pSaved) + GetSpoolerForms(call, &pForms);
    Conflict conflict;
    if (!FindConflict(call, &record, GetDeviceInfo(call, pModel), pModel, lKnown, &conflict)) {
        return "conflicts: none\n";
    }
    const SheetFields& sheet = aSheets[conflict.kind];
    std::string text = "conflicts: rule " + std::to_string(conflict.nRule) + " on " + sheet.cName;
    const char* cJoint = ", ";
    auto name = [&](const char* cField) {
        text += cJoint + std::string(cField) + " " + FieldOf(record, cField).value;
        cJoint = ", ";
    };
    for (const char* cField : sheet.fields) {
        name(cField);
    }
    for (const char* cField : {"sOutputPJLsid", "sScale", "sScaleTarget"}) {
        name(cField);
    }
    WCHAR wcMessage[TEXT_CHARS] = {};
    if (conflict.sMessageId) {
        ReadXpiString(*OpenXpiFile(call), 9, nullptr, conflict.sMessageId, wcMessage, TEXT_CHARS);
    }
    return text + "\n" + (*wcMessage ? "    " + Narrow(wcMessage) + "\n" : "");
}

} // namespace

int RunExplain(const ExplainOptions& options, std::ostream& out)
{
    return ExplainRecord(ReadRecordFile(options.file), options.model, options.package, options.bMetric, out);
}

int ExplainRecord(DriverDevmode record, const std::string& model, const std::string& package, bool bMetric,
                  std::ostream& out)
{
    Account account = {&record, record, 0, false, false, {}};
    std::string verdicts;
    int bAccepted;
    WideText wcName = StartModel(model, package, bMetric).wcName;
    {
        OpenSample printer(wcName);
        PrinterCall call(printer.hPrinter);
        OwnedModel pModel = LoadPrinterModel(call);
        account.bInsertList =
            pModel && pModel->usLanguage != KIND_IMAGE && pModel->usLanguage != KIND_IMAGE_SECOND;
        RuleRecorder recorder = {NoteLines, &account};
        bAccepted = ValidatePublicPartNoted(call, &record, pModel.get(), recorder);
        verdicts = Verdict("public", bAccepted, account,
                           "The printer's defaults take the place of the whole record.");
        if (bAccepted) {
            account.nRepairs = 0;
            bAccepted = ValidatePrivatePartNoted(call, &record.rPrivate, pModel.get(), recorder);
            verdicts += Verdict("private", bAccepted, account, "The printer's defaults take its place.");
        }
        if (bAccepted) {
            verdicts += ConflictVerdict(call, record, pModel.get());
        }
    }
    StopMachine();
    if (!account.lines.empty()) {
        account.lines.insert(account.lines.begin(), {"RULE", "OUTCOME", "FIELD", "OFFSET", "VALUE"});
    }
    PrintLines(account.lines, out);
    out << verdicts;
    return bAccepted ? 0 : 1;
}

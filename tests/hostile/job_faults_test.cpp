/* The job path while the system fails or lies, on all kinds of printers, with a good record and with one that
   has to be replaced: a documented answer, whole lines that an honest machine would send too, nothing held
   behind the call but the job's name, which the stand-in rendering core frees. */
#include <set>

#include "support/job_machine.h"

namespace {

constexpr DWORD ROOM = 4096;
bool IsText(const JobOutput& output)
{
    return output.sheet.bytes.empty();
}

/* Lines of a text in job language, entries of parameters; the binary form is one piece. */
std::set<std::string> PiecesOf(const std::string& bytes, bool bText)
{
    std::set<std::string> pieces;
    if (!bText && bytes.size() == 1040) {
        return {bytes};
    }
    size_t nAt = 0;
    while (nAt < bytes.size()) {
        size_t nEnd = bytes.find(bText ? '\n' : '\0', nAt);
        nEnd = nEnd == std::string::npos ? bytes.size() : nEnd + 1;
        pieces.insert(bytes.substr(nAt, nEnd - nAt));
        nAt = nEnd;
    }
    return pieces;
}

} // namespace

class JobFaults : public JobTest {
  protected:
    void Use(const char* cSection)
    {
        StartMachine();
        AddSample(cSection);
        SetEnvironmentValue(u"USERPROFILE", u"C:\\Users\\ada");
        AddJob(wcPrinter, 7, u"Brief an Gr\u00F6\u00DFe");
        good = DefaultRecord();
        DriverDevmode copy = good;
        honest = RunJob(OWN, hPrinter, 7, &copy);
        /* What a fault can make of it: a refused record that stays for want of a default, a default without
           its description (the template) or with zeros from its .INI file, a path that was not brought into
           capitals. */
        others.clear();
        const DriverDevmode zero = {}, refused = Refused();
        for (const DriverDevmode& record : {zero, refused, recordTemplate, good}) {
            for (CallId call : {CALL_GetPrinterW, CALL_CharUpperBuffW}) {
                copy = record;
                FailCall(call, 1, FAIL_FROM_THERE);
                JobOutput output = RunJob(OWN, hPrinter, 7, &copy);
                StopFaults();
                for (const JobPart* pPart : {&output.head, &output.sheet, &output.tail}) {
                    others.merge(PiecesOf(pPart->bytes, IsText(honest)));
                }
            }
        }
    }

    DriverDevmode Refused() const
    {
        DriverDevmode record = good;
        record.rPrivate.sContrast = 51;
        return record;
    }

    /* A piece of an honest machine, with its value missing where that could not be read, or with the other
       answer of a decision that hangs on a command. */
    bool IsHonest(const std::string& piece, const std::set<std::string>& pieces) const
    {
        if (pieces.count(piece) || piece == std::string(1, '\0') || IsText(honest)) {
            return pieces.count(piece) || piece == std::string(1, '\0');
        }
        if (piece.size() == 1040) { /* names may be missing, and the job's number with its name */
            const auto strip = [](std::string record) {
                for (auto [nAt, nBytes] :
                     {std::pair<size_t, size_t>{0, 232}, {496, 200}, {698, 200}, {996, 4}}) {
                    record.replace(nAt, nBytes, nBytes, '\0');
                }
                return record;
            };
            return std::any_of(pieces.begin(), pieces.end(),
                               [&](const std::string& other) { return strip(piece) == strip(other); });
        }
        std::string key = piece.substr(0, piece.find('=') + 1);
        bool bKnown = std::any_of(pieces.begin(), pieces.end(), [&](const std::string& other) {
            return other.substr(0, key.size()) == key;
        });
        return bKnown && (piece == key + '\0' || key == "hts=" || key == "errDiff=");
    }

    std::string Judge(const char* cPart, DWORD dwResult, DWORD cbLength, const std::string& bytes,
                      const JobPart& whole) const
    {
        if (dwResult == 0) {
            return cbLength == ROOM ? "" : std::string(cPart) + ": failed and told a length; ";
        }
        if (dwResult == 2) { /* a name that could not be converted */
            return !IsText(honest) && cbLength == ROOM ? ""
                                                       : std::string(cPart) + ": no room in a large buffer; ";
        }
        std::string fault = dwResult == 1 && cbLength <= ROOM ? "" : std::string(cPart) + ": wrong answer; ";
        std::set<std::string> pieces = others;
        pieces.merge(PiecesOf(whole.bytes, IsText(honest)));
        for (const std::string& piece : PiecesOf(bytes.substr(0, cbLength), IsText(honest))) {
            if (!IsHonest(piece, pieces)) {
                fault += std::string(cPart) + ": " + piece + "; ";
            }
        }
        return fault;
    }

    /* The three calls, each with a large buffer. */
    std::string PlayJob(DriverDevmode record)
    {
        const std::pair<const char*, const JobPart*> aParts[] = {
            {"head", &honest.head}, {"sheet", &honest.sheet}, {"tail", &honest.tail}};
        std::string fault;
        for (JobPartId part : {JOB_HEAD, JOB_SHEET, JOB_TAIL}) {
            const PartCall call = CallPart(part, hPrinter, &record, ROOM);
            fault += call.fault;
            if (bLying) {
                fault += call.dwResult > 2 || call.cbLength > ROOM ? "wrong answer; " : "";
                continue;
            }
            if (call.bNamed && call.wcJobName != u"Brief an Gr\u00F6\u00DFe") {
                fault += "another job name; ";
            }
            fault +=
                Judge(aParts[part].first, call.dwResult, call.cbLength, call.buffer, *aParts[part].second);
        }
        return fault;
    }

    DriverDevmode good;
    JobOutput honest;
    std::set<std::string> others; /* pieces of machines on which something is not to be had */
    bool bLying = false;
};

TEST_F(JobFaults, EveryCallFailsOnceAndFromThenOn)
{
    const std::vector<CallId> calls = {ANY_CALL, CALL_HeapAlloc, CALL_ReadFile};
    sweepBudget.Plan(std::size(acSamples) * 3 * 2 * calls.size());
    for (const char* cSection : acSamples) {
        SCOPED_TRACE(cSection);
        Use(cSection);
        EXPECT_GT(WalkFaults({{"a good record", [this] { return PlayJob(good); }},
                              {"zeros", [this] { return PlayJob({}); }},
                              {"a refused record", [this] { return PlayJob(Refused()); }}},
                             calls),
                  sweepBudget.IsSet() ? 0 : 300);
    }
}

TEST_F(JobFaults, LyingCalls)
{
    bLying = true;
    sweepBudget.Plan(8);
    for (const char* cSection : {"T410A", "QPS", "K100", "IX300"}) {
        SCOPED_TRACE(cSection);
        Use(cSection);
        WalkLies(
            {{"a good record", [this] { return PlayJob(good); }}, {"zeros", [this] { return PlayJob({}); }}});
    }
}

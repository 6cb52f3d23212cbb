/* Description files that are cut or patched: every question, a job's head and every reader keep within their buffers,
   their time and their memory. What a wrong table, text or command reads as, the tests of the description say. Under
   sanitizers some of the lengths are asked everything; with TQUI_EVERY_LOAD set, each of them. */
#include <cstdlib>
#include <fstream>
#include <map>

#include "document/defaults.h"
#include "places.h"
#include "support/every_reader.h"
#include "support/job_machine.h"
#include "support/sweep_totals.h"
#include "xpi_layout.h"

namespace {

const bool bEveryLoad = std::getenv("TQUI_EVERY_LOAD") != nullptr;
[[maybe_unused]] const auto* const pTotals = ExpectTotals(0, 0, bEveryLoad ? 100000 : 10000);

/* Questions whose answers draw on the file: tables, texts of both sources, options. */
constexpr WORD aHeavy[] = {DC_PAPERNAMES, DC_BINNAMES, DC_MEDIATYPENAMES, DC_ENUMRESOLUTIONS,
                           DC_PAPERSIZE,  DC_BINS,     DC_MAXEXTENT,      DC_PRINTERMEM};

/* A number that is patched: its place in the file or the body. */
struct Field {
    size_t nAt, cb;
};

std::vector<Field> HeaderFields()
{
    std::vector<Field> fields;
    for (size_t nAt = 0; nAt < xpifile::HEADER_BYTES; nAt += 4) {
        fields.push_back({nAt, 4});
    }
    return fields;
}

/* The model's numbers and the slots of its tables; what lies between them by twos. */
std::vector<Field> BodyFields()
{
    std::map<size_t, size_t> widths;
    for (const xpifile::Field& field : xpifile::MODEL_FIELDS) {
        widths[field.offset] = field.width;
    }
    for (const xpifile::Table& table : xpifile::TABLES) {
        widths[table.slot] = 8;
    }
    std::vector<Field> fields;
    for (size_t nAt = 0; nAt < xpifile::FIXED_BODY_BYTES; nAt += fields.back().cb) {
        const auto next = widths.lower_bound(nAt);
        const size_t nNext = next == widths.end() ? xpifile::FIXED_BODY_BYTES : next->first;
        fields.push_back({nAt, nNext == nAt ? next->second : std::min<size_t>(nNext - nAt, 2)});
    }
    return fields;
}

/* Bytes that are put at an offset of the file. */
using BytesAt = std::pair<size_t, Bytes>;

/* Each field at boundary values of a number, and around a size. */
void AddBoundaryValues(std::vector<BytesAt>* pPatches, size_t nBase, const std::vector<Field>& fields,
                       u32 ulSize)
{
    for (const Field& field : fields) {
        for (u64 ullValue :
             {u64{0}, u64{1}, u64{0x7FFF}, u64{0x8000}, u64{0xFFFF}, u64{0x7FFFFFFF}, u64{0x80000000},
              u64{0xFFFFFFFF}, u64{ulSize - 1}, u64{ulSize}, u64{ulSize + 1}, u64{1} << 63}) {
            Bytes bytes;
            Poke(&bytes, 0, ullValue);
            bytes.resize(field.cb);
            pPatches->push_back({nBase + field.nAt, bytes});
        }
    }
}

/* 1 within some bytes of where a section begins. */
bool IsSectionEdge(const Bytes& description, size_t nAt)
{
    for (size_t nField = AT_BODY; nField <= AT_COLOR_DATA; nField += 4) {
        size_t nEdge = Peek<u32>(description, nField);
        if (nAt + 4 >= nEdge && nAt <= nEdge + 4) {
            return true;
        }
    }
    return false;
}

} // namespace

class HostileDescriptions : public MachineTest {
  protected:
    /* A printer whose description is rewritten many times: with all that the answers draw on beside it. */
    void UseDescription(const Bytes& description)
    {
        AddTestPrinter(description, "[CustomSizes]\nNumCustomSizes=1\nCustomName0=Card\nCustomWidth0=20009\n"
                                    "CustomLength0=30000\nCustomMetric0=1\n");
        SetPrinterValue(wcPrinter, u"Memory", REG_DWORD, {98, 0, 0, 0});
        host = HostPath(u"C:\\drv\\qa.xpi");
        AddJob(wcPrinter, 7, u"Letter");
        PrinterCall call(hPrinter);
        BuildDefaultRecord(call, wcPrinter.data(), &settings, 1);
    }

    /* Puts some bytes into the file, at an offset. */
    void Write(size_t nAt, const u8* pBytes, size_t cb)
    {
        std::fstream file(host, std::ios::binary | std::ios::in | std::ios::out);
        file.seekp(static_cast<std::streamoff>(nAt));
        file.write(reinterpret_cast<const char*>(pBytes), static_cast<std::streamsize>(cb));
        ASSERT_TRUE(file.flush().good());
    }

    std::string AskOne(WORD wQuestion)
    {
        GuardedAnswer answer = AskGuarded(ByHandle(hPrinter, wcPrinter, wQuestion), wQuestion);
        if (answer.dwCounted != answer.dwFilled) {
            answer.fault +=
                "counts " + std::to_string(answer.dwCounted) + ", fills " + std::to_string(answer.dwFilled);
        }
        return answer.fault.empty() ? "" : std::string(QuestionName(wQuestion)) + ": " + answer.fault + "\n";
    }

    /* Some of the heavy questions, in turns. */
    std::string AskSome(size_t nTurn, size_t nQuestions)
    {
        std::string fault;
        for (size_t i = 0; i < nQuestions; i++) {
            fault += AskOne(aHeavy[(nTurn * nQuestions + i) % std::size(aHeavy)]);
        }
        return fault;
    }

    std::string AskAll()
    {
        std::string fault;
        for (WORD wQuestion = FIRST_QUESTION; wQuestion <= LAST_QUESTION; wQuestion++) {
            fault += AskOne(wQuestion);
        }
        return fault;
    }

    std::string JobHead()
    {
        DriverDevmode record = settings;
        const PartCall head = CallPart(JOB_HEAD, hPrinter, &record, 4096);
        return head.fault +
               (head.dwResult <= 1 ? "" : "job head: result " + std::to_string(head.dwResult) + "; ");
    }

    /* One state of the file, asked all questions and for a job's head. */
    std::string AskLoad(bool bReaders = true)
    {
        sweepTotals.nLoads++;
        return HoldsNothing([&] { return AskAll() + JobHead() + (bReaders ? ReadAll() : ""); });
    }

    std::string ReadAll()
    {
        std::string fault;
        std::string late = WithinBounds([&] { fault = ReadEverything(hPrinter); });
        return fault + late;
    }

    /* Each patch in turn, taken back before the next one; everything is asked of it, or what ask() does. */
    void SweepPatches(const std::string& stem,
                      const std::function<std::vector<BytesAt>(const Bytes& whole)>& patches,
                      const std::function<std::string(size_t nAt)>& ask = {})
    {
        const Bytes whole = ReadDiskFile(TQUI_SAMPLES "/" + stem + ".XPI");
        UseDescription(whole);
        SweepClock clock(&sweepTotals.dLoadSeconds);
        const std::vector<BytesAt> all = patches(whole);
        sweepBudget.Visit(all.size(), [&](size_t nStep) {
            const auto& [nAt, bytes] = all[nStep];
            Write(nAt, bytes.data(), bytes.size());
            EXPECT_EQ(ask ? ask(nAt) : AskLoad(), "")
                << stem << ", " << nAt << ": " << ::testing::PrintToString(bytes);
            Write(nAt, whole.data() + nAt, bytes.size());
        });
        ASSERT_EQ(GetFile(u"C:\\drv\\qa.xpi"), whole) << "the patches were not taken back";
    }

    std::filesystem::path host;
    DriverDevmode settings; /* the default of the whole description */
};

TEST_F(HostileDescriptions, EverySampleCutAtEveryLength)
{
    sweepBudget.Plan(std::size(acSamples));
    for (const std::string stem : acSamples) {
        Bytes whole = ReadDiskFile(TQUI_SAMPLES "/" + stem + ".XPI");
        /* Behind the last command the questions read nothing more: there one a length is enough. */
        size_t nTexts = Peek<u32>(whole, AT_FONT_DATA);
        UseDescription(whole);
        SweepClock clock(&sweepTotals.dLoadSeconds);
        ASSERT_EQ(AskLoad(), "") << stem;
        sweepBudget.Visit(whole.size(), [&](size_t nStep) {
            const size_t nLength = whole.size() - 1 - nStep;
            if (sweepBudget.IsSet()) { /* a shorter one may have come before */
                PutFile(u"C:\\drv\\qa.xpi", whole);
            }
            std::filesystem::resize_file(host, nLength);
            bool bReaders = nLength % (nLength < nTexts ? 8 : 64) == 0 || IsSectionEdge(whole, nLength);
            std::string fault =
                bEveryLoad || bReaders ? AskLoad(bReaders) : AskSome(nLength, nLength < nTexts ? 3 : 1);
            EXPECT_EQ(fault, "") << stem << " cut to " << nLength;
        });
        ASSERT_EQ(CountLive().nBlocks + CountLive().nFiles + CountLive().nModules, 0) << stem;
    }
}

TEST_F(HostileDescriptions, EveryHeaderAndBodyFieldAtBoundaryValues)
{
    sweepBudget.Plan(std::size(acSamples));
    for (const std::string stem : acSamples) {
        SweepPatches(stem, [](const Bytes& whole) {
            const u32 ulBody = Peek<u32>(whole, AT_BODY);
            std::vector<BytesAt> patches;
            AddBoundaryValues(&patches, 0, HeaderFields(), static_cast<u32>(whole.size()));
            AddBoundaryValues(&patches, ulBody, BodyFields(), Peek<u32>(whole, AT_STRING_BASE) - ulBody);
            return patches;
        });
    }
}

/* The row that ends a table is made one more row, and then there is no end up to that of the body either. */
TEST_F(HostileDescriptions, EveryTableWithoutItsEnd)
{
    sweepBudget.Plan(std::size(acSamples));
    for (const std::string stem : acSamples) {
        SweepPatches(stem, [&](const Bytes& whole) {
            const size_t nBody = Peek<u32>(whole, AT_BODY), nEnd = Peek<u32>(whole, AT_STRING_BASE);
            const bool bImage = Peek<u16>(whole, nBody + 2) == KIND_IMAGE;
            std::vector<BytesAt> patches;
            for (const xpifile::Table& table : xpifile::TABLES) {
                if (!Peek<u64>(whole, nBody + table.slot)) {
                    continue;
                }
                size_t nAt = nBody + Peek<u32>(whole, nBody + table.slot);
                while (nAt < nEnd && (table.endBytes == 1 ? Peek<u8>(whole, nAt) : Peek<u16>(whole, nAt))) {
                    nAt += xpifile::RowBytes(table, bImage);
                }
                EXPECT_LT(nAt, nEnd) << stem << ", slot " << table.slot;
                for (u8 bFirst : {u8{0x01}, u8{0x7F}, u8{0xFF}}) {
                    Bytes rest(whole.begin() + static_cast<std::ptrdiff_t>(nAt),
                               whole.begin() + static_cast<std::ptrdiff_t>(nEnd));
                    std::fill_n(rest.begin(), table.endBytes, bFirst);
                    patches.push_back({nAt, rest});
                    std::replace(rest.begin(), rest.end(), u8{0}, bFirst);
                    patches.push_back({nAt, rest});
                }
            }
            EXPECT_GE(patches.size(), 5u * 6u) << stem;
            return patches;
        });
    }
}

/* Rows, offset tables, texts and commands: every word up to the font bytes. */
TEST_F(HostileDescriptions, EveryWordAtBoundaryValues)
{
    sweepBudget.Plan(std::size(acSamples));
    for (const std::string stem : acSamples) {
        SweepPatches(
            stem,
            [](const Bytes& whole) {
                std::vector<BytesAt> patches;
                for (size_t nAt = Peek<u32>(whole, AT_BODY); nAt + 2 <= Peek<u32>(whole, AT_FONT_DATA);
                     nAt += 2) {
                    patches.push_back({nAt, {0x00, 0x80}});
                    patches.push_back({nAt, {0xFF, 0xFF}});
                }
                return patches;
            },
            [&](size_t nAt) {
                return bEveryLoad ? AskLoad() : AskSome(nAt / 2, 2) + (nAt % 8 == 0 ? ReadAll() : "");
            });
    }
}

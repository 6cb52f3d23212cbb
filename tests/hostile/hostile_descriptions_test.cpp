/* Description files that are cut, patched or made wrong: every question, a job's head and every reader keep within
   their buffers, their time and their memory, and the answers are those of an absent table or model.
   Under sanitizers some of the lengths are asked everything; with TQUI_EVERY_LOAD set, each of them. */
#include <cstdlib>
#include <fstream>
#include <span>

#include "document/defaults.h"
#include "places.h"
#include "support/every_reader.h"
#include "support/sample_machine.h"
#include "support/sweep_totals.h"
#include "xpi_layout.h"

namespace {

const bool bEveryLoad = std::getenv("TQUI_EVERY_LOAD") != nullptr;
[[maybe_unused]] const auto* const pTotals = ExpectTotals(0, 0, bEveryLoad ? 100000 : 10000);

const std::vector<std::string> aSamples = {"T410A", "QP5", "QPS", "K100", "IX300", "T440B"};

/* Questions whose answers draw on the file: tables, texts of both sources, options. */
constexpr WORD aHeavy[] = {DC_PAPERNAMES, DC_BINNAMES, DC_MEDIATYPENAMES, DC_ENUMRESOLUTIONS,
                           DC_PAPERSIZE,  DC_BINS,     DC_MAXEXTENT,      DC_PRINTERMEM};

struct Field {
    size_t nAt, cb;
};
constexpr Field aHeaderFields[] = {{0, 4},  {4, 4},  {8, 4},  {12, 4}, {16, 4}, {20, 4}, {24, 4}, {28, 4},
                                   {32, 4}, {36, 4}, {40, 4}, {44, 4}, {48, 4}, {52, 4}, {56, 4}, {60, 4}};
constexpr Field aBodyFields[] = {
    {0, 2},   {2, 2},   {4, 2},   {6, 2},   {8, 8},   {16, 2},  {18, 2},  {20, 2},  {22, 2},  {24, 8},
    {32, 8},  {40, 8},  {48, 8},  {56, 4},  {60, 4},  {64, 4},  {68, 4},  {72, 4},  {76, 4},  {80, 4},
    {84, 4},  {88, 4},  {92, 2},  {94, 2},  {96, 8},  {104, 8}, {112, 4}, {116, 2}, {118, 2}, {120, 2},
    {122, 2}, {124, 8}, {132, 8}, {140, 8}, {148, 8}, {156, 2}, {158, 8}, {166, 8}, {174, 8}, {182, 2},
    {184, 2}, {186, 2}, {188, 8}, {196, 8}, {204, 4}, {208, 4}, {212, 4}, {216, 4}, {220, 8}, {228, 8},
    {236, 8}, {244, 8}, {252, 8}, {260, 8}, {268, 8}, {276, 4}, {280, 2}, {282, 2}, {284, 8}, {292, 2},
    {294, 4}, {298, 4}, {302, 2}, {304, 2}, {306, 4}, {310, 2}, {312, 2}, {314, 1}};

/* Boundary values of a number, and around a size. */
std::vector<u64> BoundaryValues(u32 ulSize)
{
    return {0,          1,          0x7FFF,     0x8000, 0xFFFF,     0x7FFFFFFF,
            0x80000000, 0xFFFFFFFF, ulSize - 1, ulSize, ulSize + 1, u64{1} << 63};
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

    /* Puts some bytes of the description at an offset of the file. */
    void Patch(const void* pBytes, size_t nAt, size_t cb)
    {
        std::fstream file(host, std::ios::binary | std::ios::in | std::ios::out);
        file.seekp(static_cast<std::streamoff>(nAt));
        file.write(static_cast<const char*>(pBytes), static_cast<std::streamsize>(cb));
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
        constexpr size_t ROOM = 4096, GUARD_BYTES = 64;
        std::string buffer(ROOM + GUARD_BYTES, '#');
        buffer[0] = '\0';
        DriverDevmode record = settings;
        GuiJobRecord job = {};
        job.hPrinter = hPrinter;
        job.dwJobId = 7;
        DWORD cbLength = ROOM, dwResult = 0;
        std::string fault =
            WithinBounds([&] { dwResult = GuiStartJob(&record, buffer.data(), &cbLength, &job); });
        if (job.pJobName) {
            HeapFree(GetProcessHeap(), 0, job.pJobName);
        }
        bool bGood = buffer.find_first_not_of('#', ROOM) == buffer.npos && (dwResult == 0 || dwResult == 1);
        return fault + (bGood ? "" : "job head: result " + std::to_string(dwResult) + "; ");
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

    /* Patches each field with each boundary value and asks everything. */
    void SweepFields(const std::string& stem, std::span<const Field> fields, bool bBody)
    {
        Bytes whole = ReadDiskFile(TQUI_SAMPLES "/" + stem + ".XPI");
        u32 ulBody = Peek<u32>(whole, AT_BODY);
        size_t nBase = bBody ? ulBody : 0;
        u32 ulSize = bBody ? Peek<u32>(whole, AT_STRING_BASE) - ulBody : static_cast<u32>(whole.size());
        UseDescription(whole);
        SweepClock clock(&sweepTotals.dLoadSeconds);
        for (const Field& field : fields) {
            for (u64 ullValue : BoundaryValues(ulSize)) {
                Patch(&ullValue, nBase + field.nAt, field.cb);
                ASSERT_EQ(AskLoad(), "") << stem << ": " << nBase << "+" << field.nAt << " = " << ullValue;
            }
            Patch(whole.data() + nBase + field.nAt, nBase + field.nAt, field.cb);
        }
        ASSERT_EQ(GetFile(u"C:\\drv\\qa.xpi"), whole) << "the patches were not taken back";
    }

    std::filesystem::path host;
    DriverDevmode settings; /* the default of the whole description */
};

TEST_F(HostileDescriptions, EverySampleCutAtEveryLength)
{
    for (const std::string& stem : aSamples) {
        Bytes whole = ReadDiskFile(TQUI_SAMPLES "/" + stem + ".XPI");
        /* Behind the last command the questions read nothing more: there one a length is enough. */
        size_t nTexts = Peek<u32>(whole, AT_FONT_DATA);
        UseDescription(whole);
        SweepClock clock(&sweepTotals.dLoadSeconds);
        ASSERT_EQ(AskLoad(), "") << stem;
        for (size_t nLength = whole.size(); nLength-- > 0;) {
            std::filesystem::resize_file(host, nLength);
            bool bReaders = nLength % (nLength < nTexts ? 8 : 64) == 0 || IsSectionEdge(whole, nLength);
            std::string fault =
                bEveryLoad || bReaders ? AskLoad(bReaders) : AskSome(nLength, nLength < nTexts ? 3 : 1);
            ASSERT_EQ(fault, "") << stem << " cut to " << nLength;
        }
        ASSERT_EQ(CountLive().nBlocks + CountLive().nFiles + CountLive().nModules, 0) << stem;
    }
}

TEST_F(HostileDescriptions, EveryHeaderFieldAtBoundaryValues)
{
    for (const std::string& stem : aSamples) {
        SweepFields(stem, aHeaderFields, false);
    }
}

TEST_F(HostileDescriptions, EveryBodyFieldAtBoundaryValues)
{
    for (const std::string& stem : aSamples) {
        SweepFields(stem, aBodyFields, true);
    }
}

/* The row that ends a table is made one more row, and then there is no end up to that of the body either. */
TEST_F(HostileDescriptions, EveryTableWithoutItsEnd)
{
    SweepClock clock(&sweepTotals.dLoadSeconds);
    for (const std::string& stem : aSamples) {
        const Bytes whole = ReadDiskFile(TQUI_SAMPLES "/" + stem + ".XPI");
        const size_t nBody = Peek<u32>(whole, AT_BODY), nEnd = Peek<u32>(whole, AT_STRING_BASE);
        const bool bImage = Peek<u16>(whole, nBody + 2) == KIND_IMAGE;
        UseDescription(whole);
        int nTables = 0;
        for (const xpifile::Table& table : xpifile::TABLES) {
            if (!Peek<u64>(whole, nBody + table.slot)) {
                continue;
            }
            size_t nAt = nBody + Peek<u32>(whole, nBody + table.slot);
            const auto first = [&] {
                return table.endBytes == 1 ? Peek<u8>(whole, nAt) : Peek<u16>(whole, nAt);
            };
            while (nAt < nEnd && first()) {
                nAt += xpifile::RowBytes(table, bImage);
            }
            ASSERT_LT(nAt, nEnd) << stem << ", slot " << table.slot;
            nTables++;
            for (int nFirst : {0x01, 0x7F, 0xFF}) {
                Bytes rest(whole.begin() + static_cast<std::ptrdiff_t>(nAt),
                           whole.begin() + static_cast<std::ptrdiff_t>(nEnd));
                std::fill_n(rest.begin(), table.endBytes, static_cast<u8>(nFirst));
                Patch(rest.data(), nAt, rest.size());
                ASSERT_EQ(AskLoad(), "") << stem << ", slot " << table.slot << ", first " << nFirst;
                std::replace(rest.begin(), rest.end(), u8{0}, static_cast<u8>(nFirst));
                Patch(rest.data(), nAt, rest.size());
                ASSERT_EQ(AskLoad(), "") << stem << ", slot " << table.slot << ", all " << nFirst;
            }
            Patch(whole.data() + nAt, nAt, nEnd - nAt);
        }
        EXPECT_GE(nTables, 5) << stem;
    }
}

/* Rows, offset tables, texts and commands: every word up to the font bytes. */
TEST_F(HostileDescriptions, EveryWordAtBoundaryValues)
{
    for (const std::string& stem : aSamples) {
        Bytes whole = ReadDiskFile(TQUI_SAMPLES "/" + stem + ".XPI");
        UseDescription(whole);
        SweepClock clock(&sweepTotals.dLoadSeconds);
        for (size_t nAt = Peek<u32>(whole, AT_BODY); nAt + 2 <= Peek<u32>(whole, AT_FONT_DATA); nAt += 2) {
            for (u16 usValue : {u16{0x8000}, u16{0xFFFF}}) {
                Patch(&usValue, nAt, sizeof usValue);
                std::string fault =
                    bEveryLoad ? AskLoad() : AskSome(nAt / 2, 2) + (nAt % 8 == 0 ? ReadAll() : "");
                ASSERT_EQ(fault, "") << stem << ": word at " << nAt << " = " << usValue;
            }
            Patch(whole.data() + nAt, nAt, sizeof(u16));
        }
    }
}

/* ---- files that are wrong in one way each ---- */

namespace {

/* Two papers, two bins, one medium; each thing that a case below makes wrong. */
DescriptionBuilder Good()
{
    DescriptionBuilder builder;
    builder.Set<u16>(2, KIND_PCL5).Set<u16>(302, 1).Set<u32>(56, 3).Set<i16>(156, 2);
    i16 sLetter = builder.Text("Letter"), sA4 = builder.Text("A4"), sTray = builder.Text("Tray"),
        sHeavy = builder.Text("Heavy");
    builder.Table<PaperRow>(
        8, {{sLetter, 1, 2159, 2794, 0, 0, 0, 0, {}}, {sA4, 9, 2100, 2970, 1, 0, 0, 0, {}}, {}});
    builder.Table<BinRow>(24, {{1, 1025, sTray}, {2, 261, sTray}, {}});
    builder.Table<MediaRow>(48, {{1, sHeavy, 0, {}, 256}, {}});
    builder.Table<ResolutionRow>(174, {{1, 600, 0, 0, 600, 600, 8, 0}, {}});
    builder.Table<FeatureRow>(188, {{1, 1, 0, 0, 0}, {}});
    builder.Table<FeatureValueRow>(196, {{1, 1}, {}});
    MarginRow closing = {};
    closing.sResolution = 600;
    closing.sMarginX = 120;
    closing.sMarginY = 60;
    builder.Table<MarginRow>(166, {closing});
    builder.Command("ABC");
    builder.fonts = {Bytes(100), Bytes(50)};
    return builder;
}

/* What a file answers; of lists the texts or numbers. */
struct Answers {
    std::vector<std::string> papers = {"Letter", "A4"};
    std::vector<std::string> bins = {" Tray", " Tray", "Heavy"};
    DWORD dwMinimum = 2794u << 16 | 2100, dwMaximum = 2970u << 16 | 2159;
    DWORD dwFields = 0xE70F;
    DWORD nResolutions = 1;
    std::string command = "ABC";
    u32 cbFonts = 150;
    i32 lMargin = 120; /* at 600 dots per inch */
    bool operator==(const Answers&) const = default;
};
Answers With(void (*fnChange)(Answers&))
{
    Answers answers;
    fnChange(answers);
    return answers;
}
const Answers emptyModel = With([](Answers& a) { a = {{}, {}, 0xFFFFFFFF, 0, 0x0380EF0F, 0, "", 0, 150}; });

void PrintTo(const Answers& a, std::ostream* pOut)
{
    *pOut << ::testing::PrintToString(a.papers) << " " << ::testing::PrintToString(a.bins) << " "
          << a.dwMinimum << " " << a.dwMaximum << " " << a.dwFields << " " << a.nResolutions << " \""
          << a.command << "\" " << a.cbFonts << " " << a.lMargin;
}

struct WrongFile {
    const char* cName;
    Bytes (*fnBuild)();
    Answers expected;
};

Bytes Patched(size_t nAt, u32 ulValue)
{
    Bytes bytes = Good().Build();
    Poke(&bytes, nAt, ulValue);
    return bytes;
}

u32 FileSize()
{
    return static_cast<u32>(Good().Build().size());
}

const std::vector<WrongFile> aWrongFiles = {
    {"nothing wrong", [] { return Good().Build(); }, {}},
    {"empty file", [] { return Bytes(); }, emptyModel},
    {"header alone",
     [] {
         Bytes bytes = Good().Build();
         bytes.resize(64);
         return bytes;
     },
     emptyModel},
    {"body of 100 bytes, tables behind it", [] { return Patched(AT_STRING_BASE, 64 + 100); },
     /* Also the strings are lost with the base table, and what lies behind byte 100 of the body. */
     With([](Answers& a) { a = {{}, {}, 0xFFFFFFFF, 0, 0x0380EF0F, 0, "ABC", 0, 150}; })},
    {"paper table behind the body", [] { return Good().Set<u64>(8, 60000).Build(); }, With([](Answers& a) {
         a.papers = {};
         a.dwMinimum = 0xFFFFFFFF;
         a.dwMaximum = 0;
     })},
    {"paper table at the end of the body",
     [] {
         auto b = Good();
         b.Set<u64>(8, b.body.size());
         return b.Build();
     },
     With([](Answers& a) {
         a.papers = {};
         a.dwMinimum = 0xFFFFFFFF;
         a.dwMaximum = 0;
     })},
    {"table without a closing row up to the end of the body",
     [] {
         auto b = Good();
         b.Table<PaperRow>(8, {{2, 9, 2100, 2970, 1, 0, 0, 0, {}}, {1, 1, 2159, 2794, 0, 0, 0, 0, {}}});
         return b.Build();
     },
     With([](Answers& a) {
         a.papers = {"A4", "Letter"};
     })},
    {"feature whose first value lies behind the body",
     [] {
         auto b = Good();
         b.Table<FeatureRow>(188, {{1, 1, 0, 0x7FFF, 0}, {}});
         return b.Build();
     },
     {}},
    {"strings behind the file", [] { return Patched(AT_STRING_DATA, FileSize() + 1); }, With([](Answers& a) {
         a.papers = {"", ""};
         a.bins = {" ", " ", ""};
     })},
    {"string offsets behind the file", [] { return Patched(AT_STRING_ID, 0xFFFFFFF0); }, With([](Answers& a) {
         a.papers = {"", ""};
         a.bins = {" ", " ", ""};
     })},
    {"command without an end before the fonts",
     [] {
         auto b = Good();
         b.commands[1] = {'A', 'B', 'C'};
         return b.Build();
     },
     {}},
    {"command without an end within its limit",
     [] {
         auto b = Good();
         b.commands[1] = Bytes(1024, 'A');
         return b.Build();
     },
     With([](Answers& a) { a.command = ""; })},
    {"fonts before the commands",
     [] {
         Bytes good = Good().Build();
         return Patched(AT_FONT_DATA, Peek<u32>(good, AT_COMMAND_DATA) - 1);
     },
     With([](Answers& a) { a.command = ""; })},
    {"closing margin row without a resolution",
     [] {
         auto b = Good();
         b.Table<MarginRow>(166, {MarginRow{}});
         return b.Build();
     },
     With([](Answers& a) { a.lMargin = 150; })},
    {"default resolution and medium out of range",
     [] { return Good().Set<i16>(120, 0x7FFF).Set<i16>(312, -32768).Build(); },
     {}},
    {"font offsets that fall",
     [] {
         Bytes bytes = Good().Build();
         u32 ulTable = Peek<u32>(bytes, AT_FONT_TABLE);
         Poke(&bytes, ulTable, u32{500});
         return bytes;
     },
     With([](Answers& a) { a.cbFonts = 0; })},
    {"font offsets beyond the file",
     [] {
         Bytes bytes = Good().Build();
         u32 ulTable = Peek<u32>(bytes, AT_FONT_TABLE);
         Poke(&bytes, ulTable + 8, 0x7FFFFFFFu);
         return bytes;
     },
     With([](Answers& a) { a.cbFonts = 0; })},
};

} // namespace

TEST_F(HostileDescriptions, FilesThatAreWrongAnswerAsWithAnAbsentTable)
{
    for (const WrongFile& wrong : aWrongFiles) {
        UseDescription(wrong.fnBuild());
        EXPECT_EQ(AskAll() + ReadAll(), "") << wrong.cName;

        PrinterCall call(hPrinter);
        OwnedModel pModel = LoadPrinterModel(call);
        char cCommand[COMMAND_BYTES];
        ASSERT_NE(pModel, nullptr) << wrong.cName;
        ReadXpiCommand(*OpenXpiFile(call), 1, cCommand, sizeof cCommand);
        Answers answers = {Texts(Ask(DC_PAPERNAMES)),
                           Texts(Ask(DC_BINNAMES)),
                           Ask(DC_MINEXTENT).dwResult,
                           Ask(DC_MAXEXTENT).dwResult,
                           Ask(DC_FIELDS).dwResult,
                           Ask(DC_ENUMRESOLUTIONS).dwResult,
                           cCommand,
                           GetXpiFontDataSize(*OpenXpiFile(call), pModel.get()),
                           GetPrintableMargins(call, pModel.get(), 9, 1, 600).lX};
        EXPECT_EQ(answers, wrong.expected) << wrong.cName;
    }
}

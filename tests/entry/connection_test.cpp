/* Connections on Windows NT 4: the marker, the printer's list of computers, the check of a size call. */
#include "entry/connection.h"

#include "support/sample_machine.h"

namespace {

class ConnectionTest : public MachineTest {
  protected:
    void SetUp() override
    {
        MachineTest::SetUp();
        SetSystemVersion(4, 0);
        AddSample("T410A");
    }

    void TearDown() override
    {
        DropSemaphores();
        MachineTest::TearDown();
    }

    void SetList(std::u16string_view wcNames)
    {
        const u8* pBytes = reinterpret_cast<const u8*>(wcNames.data());
        SetPrinterValue(wcPrinter, u"TQNetworkInstall", REG_MULTI_SZ,
                        Bytes(pBytes, pBytes + wcNames.size() * sizeof(WCHAR)));
    }

    /* The list with a bar for each NUL; "(gone)" without a value. */
    std::string List()
    {
        DWORD dwType = 0;
        Bytes bytes;
        if (!GetPrinterValue(wcPrinter, u"TQNetworkInstall", &dwType, &bytes)) {
            return "(gone)";
        }
        EXPECT_EQ(dwType, REG_MULTI_SZ);
        std::string text;
        for (size_t nAt = 0; nAt + 1 < bytes.size(); nAt += sizeof(WCHAR)) {
            text += bytes[nAt] ? static_cast<char>(bytes[nAt]) : '|';
        }
        return text;
    }

    std::string Added(std::u16string_view wcComputer)
    {
        SetComputerName(wcComputer);
        PrinterCall call(hPrinter);
        AddToConnectionList(call);
        return List();
    }

    std::string Removed(std::u16string_view wcComputer)
    {
        SetComputerName(wcComputer);
        PrinterCall call(hPrinter);
        RemoveFromConnectionList(call);
        return List();
    }

    /* "result error" of the check for this printer behind a server. */
    std::string Checked(std::u16string_view wcServer = u"\\\\SERVER\\")
    {
        ConnectionAnswer answer = CheckConnection((WideText(wcServer) + wcPrinter).c_str());
        return std::to_string(answer.bResult) + " " + std::to_string(answer.dwError);
    }
};

} // namespace

TEST_F(ConnectionTest, TheListGrowsAndShrinksByWholeNames)
{
    EXPECT_EQ(Added(u"A"), "A||");
    EXPECT_EQ(Added(u"B"), "A|B||");
    EXPECT_EQ(Added(u"B"), "A|B|B||") << "no look for a name that is there";
    EXPECT_EQ(Removed(u"B"), "A|B||") << "one of two";
    EXPECT_EQ(Removed(u"C"), "A|B||");
    EXPECT_EQ(Removed(u"A"), "B||");
    EXPECT_EQ(Removed(u"B"), "(gone)");
    EXPECT_EQ(Removed(u"B"), "(gone)");

    SetList({u"PC10\0XPC1\0PC1\0\0", 15});
    EXPECT_EQ(Removed(u"PC1"), "PC10|XPC1||") << "whole names";
    EXPECT_EQ(Removed(u"pc10"), "PC10|XPC1||");
    /* Lists without their NULs, and values that are no list. */
    SetList(u"PC1");
    EXPECT_EQ(Added(u"PC2"), "PC1|PC2||");
    SetList({u"PC1\0", 4});
    EXPECT_EQ(Removed(u"PC1"), "(gone)");
    SetList({u"\0", 1});
    EXPECT_EQ(Added(u"PC1"), "PC1||");
    for (size_t cb : {size_t{0}, size_t{1}, size_t{7}}) {
        SetPrinterValue(wcPrinter, u"TQNetworkInstall", REG_MULTI_SZ, Bytes(cb, 'x'));
        std::string before = List();
        EXPECT_EQ(Removed(u"PC1"), before) << cb;
        EXPECT_EQ(Added(u"PC1"), "PC1||") << cb;
    }
    /* What cannot be read is not written over; a computer without a name joins nothing. */
    for (int nTh : {1, 2}) {
        FailCall(CALL_GetPrinterDataW, nTh);
        EXPECT_EQ(Added(u"PC2"), "PC1||") << nTh;
        EXPECT_EQ(StopFaults(), 1);
    }
    EXPECT_EQ(Added(u""), "PC1||");
    for (int nMajor : {3, 5, 10}) {
        SetSystemVersion(nMajor, 0);
        EXPECT_EQ(Added(u"PC2") + Removed(u"PC1"), "PC1||PC1||") << nMajor;
    }
}

TEST_F(ConnectionTest, TheCheckMarksAConnectionThatTheListHas)
{
    EXPECT_EQ(Checked(), "1 122") << "no list";
    SetList({u"WORKPC2\0\0", 9});
    EXPECT_EQ(Checked(), "1 122");
    EXPECT_EQ(CountLive().nSemaphores, 0);
    SetList({u"WORKPC2\0WORKPC\0\0", 16});
    EXPECT_EQ(Checked(), "0 122");
    EXPECT_TRUE(HasSemaphore(u"//SERVER/" + wcPrinter));
    SetList({u"\0", 1});
    EXPECT_EQ(Checked(), "0 122") << "marked: the list is not asked";
    EXPECT_EQ(CountLive().nSemaphores, 1) << "the marker alone";
    DropSemaphores();
    EXPECT_EQ(Checked(), "1 122");
    for (int nTh : {1, 2}) {
        SetList({u"WORKPC\0\0", 8});
        FailCall(CALL_GetPrinterDataW, nTh);
        EXPECT_EQ(Checked(), "0 2") << nTh;
        EXPECT_EQ(StopFaults(), 1);
    }
    FailCall(CALL_CreateSemaphoreW, 1);
    EXPECT_EQ(Checked(), "0 122");
    EXPECT_EQ(StopFaults(), 1);
    wcPrinter = u"Elsewhere";
    EXPECT_EQ(Checked(), "1 1801");
    wcPrinter = WideText(300, u'n');
    EXPECT_EQ(Checked(), "1 1801") << "no semaphore can bear that name";

    /* Where there is nothing to check. */
    for (const WCHAR* wcServer : {u"", u"\\", u"\\\\WORKPC\\"}) {
        EXPECT_EQ(Checked(wcServer), "0 122") << Narrow(wcServer);
    }
    EXPECT_EQ(Checked(u"\\\\WORKPC2\\"), "1 1801") << "this computer's name is only its beginning";
    EXPECT_EQ(CheckConnection(nullptr).dwError, ERROR_INSUFFICIENT_BUFFER);
    SetSystemVersion(5, 0);
    ResetCallCounts();
    EXPECT_EQ(Checked(), "0 122");
    EXPECT_EQ(CallCount(ANY_CALL), 1) << "only the version";
}

TEST_F(ConnectionTest, TheMarkerStaysAndOnlyOnThatSystem)
{
    for (int nMajor : {3, 5}) {
        SetSystemVersion(nMajor, 0);
        MakeConnectionMarker(u"\\\\S\\P");
    }
    SetSystemVersion(4, 0);
    FailCall(CALL_GetVersionExW, 1);
    MakeConnectionMarker(u"\\\\S\\P");
    EXPECT_EQ(StopFaults(), 1);
    MakeConnectionMarker(nullptr);
    MakeConnectionMarker(u"");
    EXPECT_EQ(CountLive().nSemaphores, 0);
    MakeConnectionMarker(u"\\\\S\\P");
    EXPECT_TRUE(HasSemaphore(u"//S/P"));
}

/* Connections on Windows NT 4: the marker, the printer's list of computers, the check of a size call. The steps are those
   of tests/data/connections.txt. */
#include "entry/connection.h"

#include "support/machine_script.h"

namespace {

class Connections : public Scripted<MachineTest> {
  protected:
    void SetUp() override
    {
        MachineTest::SetUp();
        SetSystemVersion(4, 0);
        AddSample("T410A");
    }

    /* A comma for each NUL. */
    void SetList(std::string names)
    {
        Bytes bytes;
        for (const char c : names) {
            bytes.insert(bytes.end(), {static_cast<u8>(c == ',' ? 0 : c), 0});
        }
        SetPrinterValue(wcPrinter, u"TQNetworkInstall", REG_MULTI_SZ, bytes);
    }
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
            text += bytes[nAt] ? static_cast<char>(bytes[nAt]) : ',';
        }
        return text;
    }
    std::string After(void (*change)(PrinterCall&), const std::string& computer)
    {
        SetComputerName(WideWord(computer));
        PrinterCall call(hPrinter);
        change(call);
        return List();
    }
    std::string Check(const std::string& server)
    {
        const ConnectionAnswer answer = CheckConnection((WideWord(server) + wcPrinter).c_str());
        return std::to_string(answer.bResult) + " " + std::to_string(answer.dwError);
    }
};

SCRIPTED(Connections, AreListedCheckedAndMarked, "connections.txt")
{
    PlayBy({DEED("list", SetList(w[0])), VERB("add", After(AddToConnectionList, w[0])),
            VERB("remove-name", After(RemoveFromConnectionList, w[0])),
            VERB("check", Check(w.empty() ? "\\\\SERVER\\" : w[0])),
            DEED("printer", wcPrinter = WideWord(w[0])),
            VERB("check-nothing", CheckConnection(nullptr).dwError),
            VERB("marked", HasSemaphore(u"//SERVER/" + wcPrinter)),
            DEED("mark", MakeConnectionMarker(w.empty() ? nullptr : WideWord(w[0]).c_str()))});
}

} // namespace

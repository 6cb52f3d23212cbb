/* Scripts on a hosted machine: the verbs that set it up, make its calls fail or lie, and tell what it holds. */
#ifndef TQUI_TESTS_MACHINE_SCRIPT_H
#define TQUI_TESTS_MACHINE_SCRIPT_H

#include "support/sample_machine.h"
#include "support/script.h"

inline CallId CallOf(const std::string& name)
{
    for (int nCall = 0; nCall < CALL_COUNT; nCall++) {
        if (name == CallName(static_cast<CallId>(nCall))) {
            return static_cast<CallId>(nCall);
        }
    }
    EXPECT_EQ(name, "any");
    return ANY_CALL;
}

inline LieKind LieOf(const std::string& name)
{
    static const std::map<std::string, LieKind> kinds = {
        {"short", LIE_SHORT}, {"unterminated", LIE_UNTERMINATED},
        {"grows", LIE_GROWS}, {"null", LIE_NULL_MEMBERS},
        {"type", LIE_TYPE},   {"huge", LIE_HUGE}};
    return kinds.at(name);
}

/* Base: MachineTest or one made from it. Each scenario has a machine of its own. */
template <class Base> class Scripted : public Base, public testing::WithParamInterface<Script> {
  protected:
    static int Int(const Args& w, size_t n) { return static_cast<int>(ToNumber(w.at(n))); }

    void TearDown() override
    {
        TellLies(LIE_NONE);
        DropSemaphores();
        Base::TearDown();
    }

    /* The scenario by these verbs and those of the machine. */
    void PlayBy(Verbs verbs)
    {
        verbs.merge(Verbs{
            DEED("version", SetSystemVersion(Int(w, 0), Int(w, 1))),
            DEED("computer", SetComputerName(WideWord(w[0]))),
            DEED("profile", SetEnvironmentValue(u"USERPROFILE", WideWord(w[0]))),
            DEED("locale", SetLocaleValue(WideWord(w[0]), WideWord(w[1]))),
            DEED("user", SetUserLanguage(static_cast<u16>(Int(w, 0)))),
            DEED("code-page", SetCodePage(static_cast<UINT>(Int(w, 0)))),
            DEED("deny", DenyPrinterAccess(static_cast<DWORD>(Int(w, 0)), static_cast<DWORD>(Int(w, 1)))),
            DEED("fail", FailCall(CallOf(w[0]), Int(w, 1), w.size() > 2 ? FAIL_FROM_THERE : FAIL_ONCE)),
            VERB("failed", StopFaults()),
            DEED("lie", TellLies(LieOf(w[0]), CallOf(w.size() > 1 ? w[1] : "any"))),
            DEED("honest", TellLies(LIE_NONE)),
            DEED("put", PutFile(WideWord(w[0]), Unescaped(w.size() > 1 ? w[1] : ""))),
            VERB("remove", std::filesystem::remove(HostPath(WideWord(w[0])))),
            VERB("exists", std::filesystem::exists(HostPath(WideWord(w[0])))),
            DEED("text", SetPrinterText(this->wcPrinter, WideWord(w[0]), WideWord(w[1]))),
            DEED("binary", SetPrinterValue(this->wcPrinter, WideWord(w[0]), static_cast<DWORD>(Int(w, 1)),
                                           FromHex<Bytes>(w.size() > 2 ? w[2] : ""))),
            VERB("stored", Stored(WideWord(w[0]))),
            DEED("drop-value", DropPrinterValue(this->wcPrinter, WideWord(w[0]))),
            DEED("form", AddMachineForm(WideWord(w[1]),
                                        static_cast<DWORD>(w[0] == "user"      ? FORM_USER
                                                           : w[0] == "printer" ? FORM_PRINTER
                                                                               : FORM_BUILTIN),
                                        Int(w, 2), Int(w, 3))),
            DEED("driver", NameDriver(WideWord(w[0]))),
            DEED("count", ResetCallCounts()),
            VERB("calls", CallCount(CallOf(w[0]))),
            VERB("semaphores", CountLive().nSemaphores),
            VERB("semaphore", HasSemaphore(WideWord(w[0]))),
            DEED("drop-semaphores", DropSemaphores()),
        });
        Play(GetParam(), verbs);
    }

    /* Type and size of a printer's value. */
    std::string Stored(const WideText& wcValue)
    {
        DWORD dwType = 0;
        Bytes bytes;
        const bool bThere = GetPrinterValue(this->wcPrinter, wcValue, &dwType, &bytes);
        return bThere ? std::to_string(dwType) + " " + std::to_string(bytes.size()) : "none";
    }

    /* The printer with another driver name; its values and files are gone. */
    void NameDriver(const WideText& wcDriver)
    {
        PrinterSetup setup;
        setup.wcName = this->wcPrinter;
        setup.wcDriverName = wcDriver;
        AddPrinter(setup);
    }
};

#endif

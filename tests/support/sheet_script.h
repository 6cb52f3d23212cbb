/* Sheets worked by scripts in text files: a row says on which sample, what the record holds, what the user does and what
   is then to be seen. Columns: title | sample | fields of the record | steps | expectations. A row without a sample goes
   on in the sheet of the row before.

   Steps, separated by commas; controls by their names in control_ids.h without IDC_, on the page that the name begins
   with, else on the one that is shown:
     page N            shows the page of slot N
     pick NAME N       chooses the row with that item data
     select NAME N     the same without the user, for lists that are never shown
     click NAME        a button, check box, radio button
     type NAME TEXT    replaces an edit control's text, "_" is a blank; without a text it is emptied
     spin NAME N       a movement of a spin button or scroll bar by its code; "spin NAME 5 120" moves the thumb there
     key N             a key to the control with the focus
     leave NAME        the focus goes to that control
     set FIELD=VALUE   in the record that is edited
     nohelpfile        the driver has none
     readonly          the user may not write printer data
     server, options N the printer is on a server, has these options; the pages are filled again
     reload            fills the pages again
     apply, ok, cancel of the sheet
     open NAME [N]     a button, or the row of a list that is double-clicked; opens a dialog, in which the steps are
                       done from here to the one that ends it
     end NAME          a button that ends a dialog; "end enter" and "end escape" by key, "end cross" by its caption
     choose NAME TEXT  the row of a list with that text
     ltr NAME, rtl NAME  turns an edit control's reading
     hit NAME          a click where that control lies
     file PATH, color N, file, color   what the system's dialogs answer from now on; without: Cancel
     marks ROWS, stored ROWS  the user's watermarks, also in the sheet or in the file alone; see mark_lists.h
     look              keeps the picture of the dialog
     text NAME TEXT    another program gives a control a text
     tell NAME N       another program sends the control's notification of that code
     row NAME N        the row of a list by its number
     right NAME        a double click of the right button where that control lies
     readonly          the user may not write the printer's data; the pages are filled again
     reopen            the sheet is closed and opened again on the same record
     value NAME TEXT   a multi-string of the printer, with "/" for each NUL
     see EXPECTATIONS  holds them at this step, within a dialog
     put PATH TEXT     makes a file whose lines end with ";"; "user:" is the user's folder for the driver, "core:" that of
                       the rendering half
     drop PATH         removes it
     registry KEY TYPE TEXT   the default value of a key
     control PATH      the help control lies there
     ask NAME          help for a control, as by F1 or the question mark of a title bar; "askitem": for
                       a menu's item of that handle
     menu NAME         the right button over a control; "menu at 200 100" over that point of the page
     help              the sheet's Help button

   In names of keys, paths and texts of these six "_" stands for a blank.

   Expectations, separated by blanks:
     NAME=N            item data of the selection, state of a check box or radio button, text of an edit control
     NAME#N            number of the row that is selected
     NAME:TEXT         text of a control, of the row that is selected, or of a record's field; NAME[N]:TEXT of a row of a
                       list; blanks and tabs as "_"
     title:TEXT        of the dialog
     WMKey0:TEXT       of the stored watermarks; "-" when there is no such key
     built:A,B         built files of watermarks in the user's folder, in alphabetical order
     rows.NAME:TEXT    all rows of a list, each with "/" behind it
     value.NAME:TEXT   a multi-string of the printer
     default=NAME      the button that Enter presses; focus=NAME
     NAME- NAME~ NAME+ hidden; shown and disabled; shown and enabled
     field=value       of the record
     dirty0=1          page with edits, by slot
     changed=1         the sheet's Apply button
     results=N messages=N dialogs=N since the sheet was opened
     rows=NAME:KIND/...      the list of presets
     loaded=1 sticky=1       what keeps the sheet changed
     asked=COMMAND:TOPIC/... of the help control since the last look; TOPIC is the page's for command 0
     started=LINE/...        programs since then */
#ifndef TQUI_TESTS_SHEET_SCRIPT_H
#define TQUI_TESTS_SHEET_SCRIPT_H

#include <map>
#include <sstream>

#include "description/control_ids.h"
#include "description/driver_files.h"
#include "hosted/pictures.h"
#include "hosted/user_input.h"
#include "platform/help.h"
#include "sheet/dialog_services.h"
#include "sheet/help.h"
#include "sheet/page_windows.h"
#include "support/control_names.h"
#include "support/data_file.h"
#include "support/mark_lists.h"
#include "support/sheet_machine.h"

class SheetScript : public SheetTest {
  protected:
    void Play(const char* cDataFile)
    {
        std::string title;
        for (const DataRow& row : ReadRows(cDataFile)) {
            ASSERT_EQ(row.size(), 5u) << row[0];
            title = row[0].empty() ? title : row[0];
            SCOPED_TRACE(title + " | " + row[3]);
            if (!row[1].empty()) {
                Begin(row[1], row[2]);
            }
            DoAll(SplitTrimmed(row[3], ','));
            Expect(row[4]);
            if (HasFatalFailure()) {
                return;
            }
        }
        Close();
    }

    /* Opens a sheet on a sample's default record with these fields, separated by blanks; "/device" behind the sample's name:
       the printer's own sheet. */
    void Begin(const std::string& sampleAndSheet, const std::string& fields)
    {
        const std::string sample = sampleAndSheet.substr(0, sampleAndSheet.find('/'));
        const bool bDevice = sampleAndSheet.ends_with("/device");
        Close();
        if (sample != opened) {
            AddSample(sample);
            opened = sample;
        }
        DriverDevmode in = Defaults();
        ForgetHelpControl();
        bDevice ? OpenDevice() : OpenDocument(&in);
        std::istringstream list(fields);
        for (std::string field; list >> field;) {
            SetRecordField(&record, field);
        }
        ASSERT_NE(Session(), nullptr);
        Session()->rSnapshot = record; /* as if the caller had given it so */
        Session()->bPaperHasTarget = 0;
        ReloadAll();
        nMessages = ShownMessages().size();
        nDialogs = DialogsOpened();
    }

    /* A dialog is up while the step that opens it is done, so the steps within it are told beforehand. */
    void DoAll(const std::vector<std::string>& steps)
    {
        for (size_t i = 0; i < steps.size(); i++) {
            const size_t nOpener = i;
            for (int nDeep = Deeper(steps[i]); nDeep > 0 && i + 1 < steps.size(); nDeep += Deeper(steps[i])) {
                QueueStep(steps[++i]);
            }
            if (!steps[nOpener].empty()) {
                Do(steps[nOpener]);
                EXPECT_EQ(ModalStepsLeft(), 0u) << "no dialog was up for a step behind " << steps[nOpener];
            }
        }
    }
    /* A step to be done in the dialog that is up then. */
    void QueueStep(const std::string& step)
    {
        QueueModalStep([this, step](HWND hDialog) {
            const HWND hBefore = std::exchange(hModal, hDialog);
            Do(step);
            hModal = hBefore;
        });
    }
    static int Deeper(const std::string& step)
    {
        return step.starts_with("open ") || step.starts_with("right ") ? 1
               : step.starts_with("end ")                              ? -1
                                                                       : 0;
    }

    void Expect(const std::string& tokens)
    {
        std::istringstream expected(tokens);
        std::string wanted, seen;
        for (std::string token; expected >> token;) {
            const std::string found = Seen(token);
            if (!SaysTheSame(found, token)) {
                wanted += token + " ";
                seen += found + " ";
            }
        }
        EXPECT_EQ(seen, wanted);
    }

    void Do(const std::string& step)
    {
        std::istringstream words(step);
        std::string verb, name, text;
        words >> verb >> name;
        std::getline(words >> std::ws, text);
        if (verb == "page") {
            EXPECT_TRUE(ShowSlot(std::stoi(name))) << step;
        } else if (verb == "pick") {
            EXPECT_TRUE(Pick(name, std::stoi(text, nullptr, 0)))
                << step << ": no such row, or the list cannot be reached";
        } else if (verb == "select") {
            EXPECT_GE(SelectComboValue(PageOf(name), Id(name), std::stoi(text)), 0) << step;
        } else if (verb == "nohelpfile") {
            Session()->rLanguage.tcHelpFile[0] = 0;
        } else if (verb == "click") {
            EXPECT_TRUE(ClickControl(PageOf(name), Id(name))) << step;
        } else if (verb == "type") {
            std::replace(text.begin(), text.end(), '_', ' ');
            EXPECT_TRUE(TypeText(PageOf(name), Id(name), Widen(text))) << step;
        } else if (verb == "spin") {
            const size_t nBlank = text.find(' ');
            const int nPos = nBlank == std::string::npos ? 0 : std::stoi(text.substr(nBlank));
            EXPECT_TRUE(SpinControl(PageOf(name), Id(name), std::stoi(text), nPos)) << step;
        } else if (verb == "key") {
            SendKey(static_cast<WPARAM>(std::stoi(name)));
        } else if (verb == "leave") {
            SetFocus(GetDlgItem(PageOf(name), Id(name)));
        } else if (verb == "see") {
            SCOPED_TRACE(step);
            Expect(name + " " + text);
        } else if (verb == "open" || verb == "end") {
            EXPECT_TRUE(OpenOrEnd(name, text)) << step;
        } else if (verb == "choose") {
            EXPECT_TRUE(Choose(name, text)) << step;
        } else if (verb == "look") {
            PaintWindows(hModal);
            EXPECT_TRUE(WindowPicture(hModal, &pictures.emplace_back()));
        } else if (verb == "ltr" || verb == "rtl") {
            EXPECT_TRUE(TurnReading(PageOf(name), Id(name), verb == "rtl")) << step;
        } else if (verb == "hit") {
            RECT place;
            ASSERT_TRUE(ControlRect(PageOf(name), Id(name), &place)) << step;
            MoveMouse(PageOf(name), place.left + 1, place.top + 1);
            PressMouse(PageOf(name), place.left + 1, place.top + 1);
            ReleaseMouse(PageOf(name), place.left + 1, place.top + 1);
        } else if (verb == "file") {
            AnswerFileDialog(Widen(name + (text.empty() ? "" : " " + text)));
        } else if (verb == "color") {
            AnswerColorDialog(name.empty() ? CLR_INVALID
                                           : static_cast<COLORREF>(std::stoul(name, nullptr, 0)));
        } else if (verb == "stored") {
            StoreMarks(Session(), name + " " + text);
        } else if (verb == "marks") {
            DropBuiltMarks(Session());
            StoreMarks(Session(), name + " " + text);
            TakeStoredMarks(Session());
            ReloadAll();
        } else if (verb == "text") {
            SetDlgItemTextW(PageOf(name), Id(name), Widen(text).c_str());
        } else if (verb == "tell") {
            SendMessageW(PageOf(name), WM_COMMAND, MAKEWPARAM(Id(name), std::stoi(text)),
                         reinterpret_cast<LPARAM>(GetDlgItem(PageOf(name), Id(name))));
        } else if (verb == "row") {
            EXPECT_TRUE(PickRow(PageOf(name), Id(name), std::stoi(text))) << step;
        } else if (verb == "right") {
            RECT place;
            ASSERT_TRUE(ControlRect(PageOf(name), Id(name), &place)) << step;
            RightClick(PageOf(name), place.left + 1, place.top + 1, true);
        } else if (verb == "value") {
            std::replace(text.begin(), text.end(), '/', '\0');
            const WideText wcValue = Widen(text);
            const auto* pBytes = reinterpret_cast<const u8*>(wcValue.data());
            SetPrinterValue(wcPrinter, Widen(name), REG_MULTI_SZ,
                            Bytes(pBytes, pBytes + wcValue.size() * sizeof(WCHAR)));
        } else if (verb == "reopen") {
            DriverDevmode in = record;
            Session()->bDeviceSheet ? OpenDevice() : OpenDocument(&in);
        } else if (verb == "set") {
            SetRecordField(Session()->pRecord, name);
        } else if (verb == "server" || verb == "options" || verb == "reload" || verb == "readonly") {
            Session()->bReadOnly |= verb == "readonly";
            Session()->bOnServer |= verb == "server";
            Session()->rDeviceInfo.ulOptions =
                verb == "options" ? static_cast<u32>(std::stoi(name)) : Session()->rDeviceInfo.ulOptions;
            ReloadAll();
        } else if (verb == "apply") {
            PressSheetApply(pSheet);
        } else if (verb == "ok") {
            PressSheetOk(pSheet);
        } else if (verb == "cancel") {
            PressSheetCancel(pSheet);
        } else if (verb == "put") {
            std::string lines = text;
            std::replace(lines.begin(), lines.end(), ';', '\n');
            PutFile(Place(name), lines);
        } else if (verb == "drop") {
            EXPECT_TRUE(std::filesystem::remove(HostPath(Place(name)))) << step;
        } else if (verb == "registry") {
            const WideText wcValue = Blanks(text.substr(text.find(' ') + 1));
            const auto* pBytes = reinterpret_cast<const u8*>(wcValue.c_str());
            SetKeyValue(Blanks(name), u"", static_cast<DWORD>(std::stoi(text)),
                        Bytes(pBytes, pBytes + (wcValue.size() + 1) * sizeof(WCHAR)));
        } else if (verb == "control") {
            SetHelpControl(Blanks(name));
        } else if (verb == "ask" || verb == "askitem") {
            const HWND hControl = GetDlgItem(PageOf(name), Id(name));
            HELPINFO info = {sizeof info, verb == "ask" ? HELPINFO_WINDOW : 2, Id(name), hControl, 0, {}};
            SendMessageW(hControl, WM_HELP, 0, reinterpret_cast<LPARAM>(&info));
        } else if (verb == "menu") {
            RECT rect = {};
            const HWND hPage = PageOf(name);
            if (name != "at") {
                EXPECT_TRUE(ControlRect(hPage, Id(name), &rect)) << step;
            }
            std::istringstream(text) >> rect.left >> rect.top;
            RightClick(hPage, static_cast<int>(rect.left) + 1, static_cast<int>(rect.top) + 1);
        } else if (verb == "help") {
            NMHDR note = {SheetWindow(pSheet), 0, PSN_HELP};
            SendMessageW(PageOf(""), WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&note));
        } else {
            ADD_FAILURE() << "no such step: " << step;
        }
    }

    static WideText Blanks(std::string text)
    {
        std::replace(text.begin(), text.end(), '_', ' ');
        return Widen(text);
    }
    WideText Place(const std::string& path) const
    {
        WCHAR tcCore[PATH_CHARS];
        PrinterCall call(hPrinter);
        GetRenderCorePath(call, tcCore);
        const WideText tcWhole = tcCore;
        return path.starts_with("user:") ? Session()->wcUserFolder + Blanks("\\" + path.substr(5))
               : path.starts_with("core:")
                   ? tcWhole.substr(0, tcWhole.rfind(u'\\') + 1) + Blanks(path.substr(5))
                   : Blanks(path);
    }
    static std::string Underlined(std::u16string_view wcText)
    {
        std::string text = Narrow(wcText);
        std::replace(text.begin(), text.end(), ' ', '_');
        return text;
    }
    std::string Presets()
    {
        std::string rows;
        const auto nRows =
            static_cast<WPARAM>(SendDlgItemMessageW(PageOf(""), IDC_PRESET, CB_GETCOUNT, 0, 0));
        for (WPARAM nRow = 0; nRow < nRows; nRow++) {
            WCHAR wcName[PATH_CHARS] = {};
            SendDlgItemMessageW(PageOf(""), IDC_PRESET, CB_GETLBTEXT, nRow, reinterpret_cast<LPARAM>(wcName));
            rows += (nRow ? "/" : "") + Underlined(wcName) + ":" +
                    std::to_string(SendDlgItemMessageW(PageOf(""), IDC_PRESET, CB_GETITEMDATA, nRow, 0));
        }
        return rows;
    }
    std::string Asked()
    {
        std::string asked;
        for (; nAsked < AskedHelps().size(); nAsked++) {
            const AskedHelp& help = AskedHelps()[nAsked];
            EXPECT_TRUE(help.uCommand == HH_DISPLAY_TOPIC || help.wcPath.ends_with(u".CHM::/veldtopics.txt"));
            EXPECT_EQ(help.uCommand == HH_DISPLAY_TOPIC, help.hWindow == DESKTOP_WINDOW);
            asked += (asked.empty() ? "" : "/") + std::to_string(help.uCommand) + ":" +
                     (help.uCommand == HH_DISPLAY_TOPIC
                          ? Underlined(help.wcPath.substr(help.wcPath.find(u"::/") + 3))
                          : std::to_string(help.dwTopic));
        }
        return asked;
    }
    std::string Started()
    {
        std::string started;
        for (; nStarted < StartedPrograms().size(); nStarted++) {
            started += (started.empty() ? "" : "/") + Underlined(Widen(StartedPrograms()[nStarted]));
        }
        return started;
    }

    /* Flags are shown as hex numbers, and a script may say them as it likes. */
    static bool SaysTheSame(const std::string& found, const std::string& token)
    {
        const size_t nEqual = token.find('=');
        if (found == token || nEqual == std::string::npos ||
            found.substr(0, nEqual) != token.substr(0, nEqual)) {
            return found == token;
        }
        char *pFound, *pToken;
        const long long llFound = std::strtoll(found.c_str() + nEqual + 1, &pFound, 0);
        const long long llToken = std::strtoll(token.c_str() + nEqual + 1, &pToken, 0);
        return !*pFound && !*pToken && llFound == llToken;
    }

    /* The expectation as it stands after what was found. */
    std::string Seen(const std::string& token)
    {
        if (const size_t nColon = token.find(':'); nColon < token.find('=')) {
            std::string text = TextSeen(token.substr(0, nColon));
            std::replace_if(
                text.begin(), text.end(), [](char c) { return c == ' ' || c == '\t'; }, '_');
            return token.substr(0, nColon + 1) + text;
        }
        if (const size_t nHash = token.find('#'); nHash < token.find('=')) {
            const std::string list = token.substr(0, nHash);
            const HWND hList = GetDlgItem(PageOf(list), Id(list));
            const bool bCombo = HostedClassName(hList) == u"ComboBox";
            return list + "#" +
                   std::to_string(SendMessageW(hList, bCombo ? CB_GETCURSEL : LB_GETCURSEL, 0, 0));
        }
        const size_t nEqual = token.find('=');
        const std::string name = token.substr(0, nEqual);
        if (nEqual == std::string::npos) {
            const std::string control = token.substr(0, token.size() - 1);
            const HWND hControl = GetDlgItem(PageOf(control), Id(control));
            const auto lStyle = static_cast<DWORD>(GetWindowLongPtrW(hControl, GWL_STYLE));
            return control + (!(lStyle & WS_VISIBLE) ? "-" : lStyle & WS_DISABLED ? "~" : "+");
        }
        if (name.starts_with("dirty")) {
            return name + "=" + std::to_string(Session()->bPageDirty[std::stoi(name.substr(5))]);
        }
        if (name == "default" || name == "focus") {
            const int nControl =
                name == "focus" ? GetDlgCtrlID(GetFocus()) : LOWORD(SendMessageW(hModal, DM_GETDEFID, 0, 0));
            return name + "=" +
                   (Id(token.substr(nEqual + 1)) == nControl ? token.substr(nEqual + 1)
                                                             : std::to_string(nControl));
        }
        if (name == "changed") {
            return name + "=" + std::to_string(CanApplySheet(pSheet));
        }
        if (name == "results") {
            return name + "=" + std::to_string(SheetResults(pSheet).size());
        }
        if (name == "messages") {
            return name + "=" + std::to_string(ShownMessages().size() - nMessages);
        }
        if (name == "dialogs") {
            return name + "=" + std::to_string(DialogsOpened() - nDialogs);
        }
        if (name == "rows" || name == "asked" || name == "started") {
            return name + "=" + (name == "rows" ? Presets() : name == "asked" ? Asked() : Started());
        }
        if (name == "loaded" || name == "sticky") {
            return name + "=" +
                   std::to_string(name == "loaded" ? Session()->bSettingsLoaded : Session()->bStickyChange);
        }
        if (std::isupper(static_cast<unsigned char>(name[0])) && ControlNumber(name)) {
            return name + "=" + Value(PageOf(name), Id(name));
        }
        return name + "=" + FieldOf(record, name).value;
    }

    std::string AllRows(const std::string& name)
    {
        const HWND hList = GetDlgItem(PageOf(name), Id(name));
        const bool bCombo = HostedClassName(hList) == u"ComboBox";
        const LRESULT nRows = SendMessageW(hList, bCombo ? CB_GETCOUNT : LB_GETCOUNT, 0, 0);
        std::string rows;
        for (LRESULT nRow = 0; nRow < nRows; nRow++) {
            WCHAR wcRow[3 * TEXT_CHARS] = {};
            SendMessageW(hList, bCombo ? CB_GETLBTEXT : LB_GETTEXT, static_cast<WPARAM>(nRow),
                         reinterpret_cast<LPARAM>(wcRow));
            rows += Narrow(wcRow) + "/";
        }
        return rows;
    }

    std::string TextSeen(const std::string& token)
    {
        const size_t nBracket = token.find('[');
        const std::string name = token.substr(0, nBracket);
        if (name == "built") {
            return BuiltMarks(Session());
        }
        if (name.starts_with("WM") || name == "NumWatermarks") {
            return StoredMark(Session(), name);
        }
        if (name == "title") {
            WCHAR wcTitle[TEXT_CHARS] = {};
            GetWindowTextW(hModal, wcTitle, TEXT_CHARS);
            return Narrow(wcTitle);
        }
        if (name.starts_with("value.")) {
            DWORD dwType;
            Bytes value;
            GetPrinterValue(wcPrinter, Widen(name.substr(6)), &dwType, &value);
            WideText wcValue(value.size() / sizeof(WCHAR), u'\0');
            std::memcpy(wcValue.data(), value.data(), wcValue.size() * sizeof(WCHAR));
            std::replace(wcValue.begin(), wcValue.end(), u'\0', u'/');
            return Narrow(wcValue);
        }
        if (name.starts_with("rows.")) {
            return AllRows(name.substr(5));
        }
        if (!ControlNumber(name)) {
            return FieldOf(record, token).value;
        }
        const HWND hPage = PageOf(name);
        const HWND hList = GetDlgItem(hPage, Id(name));
        const bool bCombo = HostedClassName(hList) == u"ComboBox",
                   bList = HostedClassName(hList) == u"ListBox";
        if (!bList && nBracket == std::string::npos) {
            return Narrow(TextOf(hPage, Id(name)));
        }
        WCHAR wcRow[3 * TEXT_CHARS] = {};
        const LRESULT nRow = nBracket == std::string::npos ? SendMessageW(hList, LB_GETCURSEL, 0, 0)
                                                           : std::stoi(token.substr(nBracket + 1));
        SendMessageW(hList, bCombo ? CB_GETLBTEXT : LB_GETTEXT, static_cast<WPARAM>(nRow),
                     reinterpret_cast<LPARAM>(wcRow));
        return Narrow(wcRow);
    }

    bool OpenOrEnd(const std::string& name, const std::string& text)
    {
        if (name == "enter" || name == "escape") {
            SendKey(name == "enter" ? VK_RETURN : VK_ESCAPE);
        } else if (name == "cross") {
            CloseWindowByUser(hModal);
        } else if (!text.empty()) {
            const LRESULT nRow = RowOf(GetDlgItem(PageOf(name), Id(name)), std::stoi(text));
            return nRow >= 0 && DoubleClickRow(PageOf(name), Id(name), static_cast<int>(nRow));
        } else {
            return ClickControl(PageOf(name), Id(name));
        }
        return true;
    }

    bool Choose(const std::string& name, const std::string& text)
    {
        const HWND hList = GetDlgItem(PageOf(name), Id(name));
        const bool bCombo = HostedClassName(hList) == u"ComboBox";
        const LRESULT nRow =
            SendMessageW(hList, bCombo ? CB_FINDSTRINGEXACT : LB_FINDSTRINGEXACT, static_cast<WPARAM>(-1),
                         reinterpret_cast<LPARAM>(Widen(text).c_str()));
        return nRow >= 0 && PickRow(PageOf(name), Id(name), static_cast<int>(nRow));
    }

    static std::string Value(HWND hPage, int nControl)
    {
        const HWND hControl = GetDlgItem(hPage, nControl);
        const WideText wcClass = HostedClassName(hControl);
        if (wcClass == u"Button") {
            return std::to_string(IsChecked(hPage, nControl));
        }
        if (wcClass == u"ComboBox" || wcClass == u"ListBox") {
            int bChosen;
            const i32 lValue = wcClass == u"ComboBox" ? GetComboValue(hPage, nControl, &bChosen)
                                                      : GetListValue(hPage, nControl, &bChosen);
            return bChosen ? std::to_string(lValue) : "none";
        }
        return Narrow(TextOf(hPage, nControl));
    }

    bool Pick(const std::string& name, i32 lValue)
    {
        const HWND hPage = PageOf(name);
        const LRESULT nRow = RowOf(GetDlgItem(hPage, Id(name)), lValue);
        return nRow >= 0 && PickRow(hPage, Id(name), static_cast<int>(nRow));
    }

    /* The row with that item data; -1 without one. */
    static LRESULT RowOf(HWND hList, i32 lValue)
    {
        const bool bCombo = HostedClassName(hList) == u"ComboBox";
        LRESULT nRow = SendMessageW(hList, bCombo ? CB_GETCOUNT : LB_GETCOUNT, 0, 0);
        while (--nRow >= 0 && static_cast<i32>(SendMessageW(hList, bCombo ? CB_GETITEMDATA : LB_GETITEMDATA,
                                                            static_cast<WPARAM>(nRow), 0)) != lValue) {
        }
        return nRow;
    }

    bool ShowSlot(int nSlot)
    {
        for (size_t nPage = 0; nPage < SheetPageCount(pSheet); nPage++) {
            if (SheetPageHandle(pSheet, nPage) == Session()->hPage[nSlot]) {
                return ShowSheetPage(pSheet, nPage);
            }
        }
        return false;
    }

    void ReloadAll()
    {
        for (int nSlot = 0; nSlot < SLOT_COUNT; nSlot++) {
            ReloadPage(Session(), nSlot);
        }
    }

    /* The window of the page that a control's name begins with; a page that is not there yet is shown for it. */
    HWND PageOf(const std::string& name)
    {
        if (hModal) {
            return hModal;
        }
        static const std::map<std::string, int> slots = {{"LAYOUT", SLOT_LAYOUT},
                                                         {"PAPER", SLOT_PAPER},
                                                         {"QUALITY", SLOT_QUALITY},
                                                         {"WATERMARKS", SLOT_WATERMARKS},
                                                         {"FONTS", SLOT_FONTS}};
        const auto slot = slots.find(name.substr(0, name.find('_')));
        if (slot == slots.end()) {
            return Page(static_cast<size_t>(ActiveSheetPage(pSheet)));
        }
        const HWND hActive = Page(static_cast<size_t>(ActiveSheetPage(pSheet)));
        if (Session()->hPageWnd[slot->second] != hActive) {
            EXPECT_TRUE(ShowSlot(slot->second)) << name;
        }
        return Session()->hPageWnd[slot->second];
    }

    static int Id(const std::string& name)
    {
        EXPECT_NE(ControlNumber(name), 0) << name;
        return ControlNumber(name);
    }

    std::string opened;            /* sample */
    std::vector<Picture> pictures; /* that were looked at */
    HWND hModal = nullptr;         /* the dialog that is up */
    size_t nMessages = 0;
    int nDialogs = 0;
    size_t nAsked = 0, nStarted = 0;
};

#endif

/* Scripts of calls and what they answer, from files under tests/data, for both builds. A line "[Name]" begins a
   scenario; each row below it is a step of words, and behind '|' the answer that is wanted: "one or other" where the
   systems differ. A step without '|' is only done; blanks at an answer's end do not count. Scenarios named
   "... hosted" are left out on Windows. */
#ifndef TQUI_TESTS_SCRIPT_H
#define TQUI_TESTS_SCRIPT_H

#include <functional>
#include <map>

#include "support/both_builds.h"
#include "support/data_file.h"

using Args = std::vector<std::string>;
using Verbs = std::map<std::string, std::function<std::string(const Args&)>>;

struct Script {
    std::string name;
    std::vector<DataRow> steps;
};

inline void PrintTo(const Script& scenario, std::ostream* pOut)
{
    *pOut << scenario.name;
}

inline std::vector<Script> ReadScripts(const char* cFile)
{
    std::vector<Script> scenarios;
    for (const DataRow& row : ReadRows(cFile)) {
        if (row[0].front() == '[') {
            scenarios.push_back({row[0].substr(1, row[0].size() - 2), {}});
        } else {
            scenarios.back().steps.push_back(row);
        }
    }
#ifdef _WIN32
    std::erase_if(scenarios, [](const Script& each) { return each.name.ends_with(" hosted"); });
#endif
    return scenarios;
}

/* For INSTANTIATE_TEST_SUITE_P: a scenario's name without blanks. */
inline std::string ScriptName(const testing::TestParamInfo<Script>& info)
{
    std::string name = info.param.name;
    std::erase(name, ' ');
    return name;
}

/* Words are separated by blanks; quotation marks hold blanks together, or nothing. */
inline Args WordsOf(const std::string& text)
{
    Args words;
    bool bInside = false, bOpen = false;
    for (const char c : text) {
        if (c == '"') {
            bInside = !bInside;
        }
        if (c == ' ' && !bInside) {
            bOpen = false;
            continue;
        }
        if (!bOpen) {
            words.emplace_back();
            bOpen = true;
        }
        if (c != '"') {
            words.back() += c;
        }
    }
    return words;
}

/* A word with each \uXXXX as the character that it names. */
inline WideString WideWord(const std::string& word)
{
    WideString wcText;
    for (size_t i = 0; i < word.size(); i++) {
        const std::string code = word.compare(i, 2, "\\u") ? "" : word.substr(i + 2, 4);
        if (code.size() == 4 && code.find_first_not_of("0123456789ABCDEF") == std::string::npos) {
            wcText += static_cast<WCHAR>(std::stoi(code, nullptr, 16));
            i += 5;
        } else {
            wcText += static_cast<WCHAR>(word[i]);
        }
    }
    return wcText;
}

/* The answer of a verb, as scripts write it. */
inline std::string Said(const std::string& text)
{
    return text;
}
inline std::string Said(bool bYes)
{
    return bYes ? "yes" : "no";
}
template <class Number> std::enable_if_t<std::is_arithmetic_v<Number>, std::string> Said(Number number)
{
    return std::to_string(static_cast<long long>(number));
}

/* An entry of Verbs: the name, and what it answers to the words w. DEED is one that answers nothing. */
#define VERB(name, ...) \
    { \
        name, [&]([[maybe_unused]] const Args& w) { return Said(__VA_ARGS__); } \
    }
#define DEED(name, ...) \
    { \
        name, [&]([[maybe_unused]] const Args& w) { return __VA_ARGS__, std::string(); } \
    }

/* Takes the steps one after the other, each by the verb that its first word names. */
inline void Play(const Script& scenario, const Verbs& verbs)
{
    for (const DataRow& row : scenario.steps) {
        const Args words = WordsOf(row[0]);
        const auto verb = verbs.find(words[0]);
        ASSERT_NE(verb, verbs.end()) << row[0];
        std::string answer = verb->second({words.begin() + 1, words.end()});
        answer.erase(answer.find_last_not_of(' ') + 1);
        const size_t nOr = row.size() < 2 ? std::string::npos : row[1].find(" or ");
        const bool bOther = nOr != std::string::npos && answer == row[1].substr(nOr + 4);
        EXPECT_TRUE(row.size() < 2 || bOther || answer == row[1].substr(0, nOr))
            << row[0] << "\nanswers: " << answer << "\nwanted:  " << row[1];
    }
}

/* One test for each scenario of a file. */
#define SCRIPTED(Suite, Test, file) \
    INSTANTIATE_TEST_SUITE_P(, Suite, testing::ValuesIn(ReadScripts(file)), ScriptName); \
    TEST_P(Suite, Test)

#endif

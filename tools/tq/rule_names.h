/* Names of the rules of the two checks, for people: what a rule looks at. The library itself knows numbers
   only. */
#ifndef TQUI_TOOLS_TQ_RULE_NAMES_H
#define TQUI_TOOLS_TQ_RULE_NAMES_H

#include <span>
#include <string>

struct RuleName {
    int nRule;          /* as RuleNumber of settings/check_core.h makes it */
    const char* cField; /* field of the record, with the piece of it that is meant */
};

/* All rules, in the order in which they are applied. */
std::span<const RuleName> AllRules();

/* Field of a rule; "" for a number that is none. */
const char* RuleFieldName(int nRule);

/* "public 3", "private 15.2", "public identity 4.1": group, row and part of a rule's number. */
std::string RuleLabel(int nRule);

#endif

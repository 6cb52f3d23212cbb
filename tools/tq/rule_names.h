/* Names of the rules of the two checks, for people: what a rule looks at. The library itself knows numbers
   only. */
#ifndef TQUI_TOOLS_TQ_RULE_NAMES_H
#define TQUI_TOOLS_TQ_RULE_NAMES_H

#include <string>

/* Field of a rule; "" for a number that is none. */
const char* RuleFieldName(int nRule);

/* "public 3", "private 15.2", "public identity 4.1": group, row and part of a rule's number. */
std::string RuleLabel(int nRule);

#endif

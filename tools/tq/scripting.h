/* The page for people who script printers: each public field of a record changed alone, and what comes back. */
#ifndef TQUI_TOOLS_TQ_SCRIPTING_H
#define TQUI_TOOLS_TQ_SCRIPTING_H

#include <string>

/* The page as text, for the samples of this folder. */
std::string ScriptingPage(const std::string& package);

#endif

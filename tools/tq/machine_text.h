/* A hosted machine as text: what its spooler, its registry and its users' folders hold. The same lines are stored,
   read back and shown.

     printer NAME              opens a printer; its lines are indented
       driver NAME             driver, as the user's folder sees it
       file ROLE PATH          path, config, data, help or depend
       comment TEXT, location TEXT, processor NAME
       record HEX              the stored default record
       value TYPE NAME HEX     TYPE is the number of REG_SZ and so on
     form FLAGS WIDTH LENGTH LEFT TOP RIGHT BOTTOM NAME
     processor NAME=FILE
     key PATH                  a registry key; its values are indented "value" lines
     family KIND CHARSET NAME  a font family of the display */
#ifndef TQUI_TOOLS_TQ_MACHINE_TEXT_H
#define TQUI_TOOLS_TQ_MACHINE_TEXT_H

#include <string>

#include "hosted/machine.h"

/* All that those lines hold of the running machine. */
std::string MachineText();

/* Brings a machine that was just started into that state. Throws std::runtime_error with the line's number for a line
   that cannot be read. */
void ReadMachineText(const std::string& text);

/* For readers: a printer's values, texts as text, numbers as numbers and the rest in rows of hex; its forms, its print
   processor, and the files of all users with their sizes. */
std::string DescribePrinter(const WideText& wcPrinter);

/* One value as a reader wants it: "sz \"text\"", "dword 64", "multi ...", "binary 12: 01 00 ..." */
std::string DescribeValue(DWORD dwType, const Bytes& bytes);

#endif

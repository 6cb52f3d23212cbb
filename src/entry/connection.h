/* What Windows NT 4 needs for a connection to a printer of another computer. Two things keep it: the marker, a
   named semaphore that lives as long as the process that made it, and the printer's list of the computers that
   are connected (value "TQNetworkInstall", REG_MULTI_SZ, each name and the list closed by a NUL). On any other
   major version nothing here does or changes anything. */
#ifndef TQUI_ENTRY_CONNECTION_H
#define TQUI_ENTRY_CONNECTION_H

#include "description/printer_call.h"

/* 1 when the system's major version is 4; 0 also when it does not tell. */
int IsConnectionSystem();

/* Makes the marker of a connection to this printer: a semaphore with count and maximum 1 that bears the printer's
   name, each backslash a slash. Its handle stays open for the life of the process. Nothing for a null name or
   one that no semaphore can bear. */
void MakeConnectionMarker(const WCHAR* wcPrinterName);

/* Adds this computer's name to the printer's list, also when it is there already; an empty or absent list begins
   with it. A list that cannot be read stays as it is. */
void AddToConnectionList(PrinterCall& call);

/* Takes this computer's first entry out of the list, the order of the others kept; the value goes with its last
   name. Nothing is written when the name is not in it. */
void RemoveFromConnectionList(PrinterCall& call);

/* How the size call of a record's conversion ends. */
struct ConnectionAnswer {
    int bResult;
    u32 dwError; /* last error */
};

/* The check that goes with that call: an unmarked connection of this computer is marked, and one that is not in
   the printer's list is told with result 1. Everything else, a printer of this computer among it, is answered
   with result 0 and ERROR_INSUFFICIENT_BUFFER. */
ConnectionAnswer CheckConnection(const WCHAR* wcPrinterName);

#endif

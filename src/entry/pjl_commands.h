/* The texts in printer job language round a job, for all printers but those that take render parameters. */
#ifndef TQUI_ENTRY_PJL_COMMANDS_H
#define TQUI_ENTRY_PJL_COMMANDS_H

#include "description/printer_call.h"
#include "settings/driver_devmode.h"

/* The buffer of these texts is one of bytes and their number; null counts as of no size. Pieces are appended
   behind its first NUL, so the caller hands in a buffer that begins with one. Every piece is measured; once
   one has not fitted none behind it fits, so that whole pieces stand in the buffer, from the first on. */

/* Appends one piece. ulOffset is the length of all pieces before it, written or not: the piece is written
   when offset, piece and NUL are not more than cbBuffer, the buffer has a NUL, and it fits behind that.
   Result: the length of the piece in every case. */
size_t AppendPjlText(char* cBuffer, size_t cbBuffer, size_t nOffset, const char* cText);

/* The same with the line "@PJL SET key=value". Nothing, and 0, when one of the two is over 127 bytes. */
size_t AppendPjlSetting(char* cBuffer, size_t cbBuffer, size_t nOffset, const char* cKey, const char* cValue);

/* The job head: colour, resolution, media, output bin and the printer's own features, as the record chooses
   them.
   *pcbLength   IO   size of the buffer; needed size, NUL included
   Result: 1 when it fitted. */
int BuildPjlJobHead(PrinterCall& call, char* cBuffer, u32* pcbLength, const DriverDevmode* pRecord,
                    const XpiModel* pModel, XpiFile& file);

/* The job's end; nothing, and a length of 0, for a bare PostScript job. Same lengths, same result. */
int BuildPjlJobEnd(char* cBuffer, u32* pcbLength, const DriverDevmode* pRecord, const XpiModel* pModel);

/* The typed value of a choice from -1 down, as both kinds of job take it: "" for a choice that has none, and
   for a value with a control character, which could begin a line of its own. */
constexpr int TYPED_BYTES = 12; /* of one value, its NUL included */
void ReadTypedValue(const PrivateDevmode& part, i16 sChoice, char (&cOut)[TYPED_BYTES]);

/* The key of a setting. 0 when there is none to be had, so that the setting is left out: too long, or it
   cannot be read. Id 0 goes without a key, as its model asks for. */
int ReadSettingKey(XpiCommands& commands, u16 usId, char (&cKey)[SHORT_COMMAND_BYTES]);

/* Printer features that a record has a choice for. */
constexpr i32 FEATURE_SLOTS = 32;

#endif

/* The lines of a settings file: where they end, and what they are. For the units of this folder. */
#ifndef TQUI_PROFILE_PROFILE_LINES_H
#define TQUI_PROFILE_PROFILE_LINES_H

#include "base/wide.h"

/* A piece of a text. */
struct TextSpan {
    const WCHAR* pText;
    u32 nLength;
};

TextSpan TrimSpan(TextSpan span);

inline WCHAR Capital(WCHAR wcChar)
{
    return wcChar >= 'a' && wcChar <= 'z' ? static_cast<WCHAR>(wcChar - ('a' - 'A')) : wcChar;
}

/* 1 when both are the same but for the case of ASCII letters. */
inline int IsSameName(TextSpan one, TextSpan other)
{
    u32 i = 0;
    if (one.nLength != other.nLength) {
        return 0;
    }
    while (i < one.nLength &&
           (one.pText[i] == other.pText[i] || Capital(one.pText[i]) == Capital(other.pText[i]))) {
        i++;
    }
    return i == one.nLength;
}

/* Where the line that holds the position ends, and where the next one begins. */
u32 FindLineEnd(TextSpan text, u32 nAt);
u32 FindNextLine(TextSpan text, u32 nLineEnd);

/* Takes the line at *pnAt, without the blanks around it, and moves *pnAt to the next one. Result: the line, empty
   for a blank one; the caller sees to it that *pnAt is below nLength. */
TextSpan TakeLine(TextSpan text, u32* pnAt);

/* 1 when the line opens a section, with its name. */
int IsHeader(TextSpan line, TextSpan* pName);

/* 1 when the line is a comment or blank. */
inline int IsRemark(TextSpan line)
{
    return !line.nLength || line.pText[0] == ';';
}

/* Takes a line that is neither header nor remark apart: its key, and the value without blanks, whose pText is null
   when the line has no "=". */
void SplitLine(TextSpan line, TextSpan* pKey, TextSpan* pValue);

/* The value that begins at nAt, behind the "=", as SplitLine gives it. */
TextSpan ValueAt(TextSpan text, u32 nAt);

/* Where the section's lines begin; nLength when there is no such section. An empty name is that of the lines in
   front of the first section. pnHeader, which may be null: where its header line begins. */
u32 FindSectionBody(TextSpan text, TextSpan name, u32* pnHeader);

/* Adds a name and its NUL to a list of cch characters of which *pnUsed are taken, where it fits whole and leaves room
   for the list's own NUL. Result: 1 when it was added. */
int AddListName(TextSpan name, WCHAR* wcOut, u32 cch, u32* pnUsed);

inline TextSpan SpanOf(const WCHAR* wcText)
{
    return {wcText, static_cast<u32>(WideLength(wcText))};
}

#endif

/* Dialog templates of a resource library, as the stand-in of the dialog calls and the tests of the library
   read them: the extended form, which resource compilers make of DIALOGEX. All numbers are little-endian, all
   offsets count from the template's first byte.

   OFFSET  SIZE  HEAD
        0     2  version, 1
        2     2  mark of the extended form, 0xFFFF
        4     4  help id
        8     4  extended style
       12     4  style
       16     2  number of items
       18     8  x, y, width, height in dialog units, i16 each
       26        menu, window class, title: each a name, see below
                 with DS_SETFONT: u16 points, u16 weight, u8 italic, u8 character set, face with its NUL

   OFFSET  SIZE  ITEM, each at the next multiple of 4
        0     4  help id
        4     4  extended style
        8     4  style
       12     8  x, y, width, height
       20     4  id
       24        window class, text: each a name
                 u16 size of creation data, creation data

   A name is u16 0xFFFF and a u16 number, or characters up to their NUL (a NUL alone: none). */
#ifndef TQUI_HOSTED_DIALOG_TEMPLATE_H
#define TQUI_HOSTED_DIALOG_TEMPLATE_H

#include <span>
#include <string>
#include <vector>

#include "hosted/pe_resources.h"
#include "platform/types.h"

/* Numbers of the window classes that every system has; other classes go by name. */
constexpr u16 CLASS_BUTTON = 0x80;
constexpr u16 CLASS_EDIT = 0x81;
constexpr u16 CLASS_STATIC = 0x82;
constexpr u16 CLASS_LISTBOX = 0x83;
constexpr u16 CLASS_SCROLLBAR = 0x84;
constexpr u16 CLASS_COMBOBOX = 0x85;

/* In dialog units; may be negative or empty as the template has it. */
struct DialogRect {
    i16 x, y, cx, cy;
    bool operator==(const DialogRect&) const = default;
};

struct DialogFont {
    u16 usPoints, usWeight;
    u8 bItalic, bCharSet;
    std::u16string wcFace;
};

struct DialogItem {
    u32 ulId;
    PeName windowClass; /* one of CLASS_*, also where the template has its name; else a name */
    u32 ulStyle, ulExStyle;
    DialogRect rect;
    PeName text; /* text, empty for none; a number names a picture */
};

struct DialogTemplate {
    u32 ulStyle = 0, ulExStyle = 0;
    DialogRect rect{};
    PeName menu = u16{0}, windowClass = u16{0}; /* 0: none; the class of every dialog */
    std::u16string wcTitle;
    DialogFont font{}; /* 0 points without DS_SETFONT */
    std::vector<DialogItem> items;
};

/* Reads a template. bytes: the resource's, of any content; nothing behind them is looked at. Result: 1 and
   *pTemplate; 0 with *pTemplate untouched when they are of another form or end before the last item does. */
int ReadDialogTemplate(std::span<const u8> bytes, DialogTemplate* pTemplate);

#endif

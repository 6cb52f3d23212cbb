/* Resources in a PE file held in memory as it lies on disk: 32-bit (PE32) and 64-bit (PE32+). The reader
   trusts nothing: every offset, size and count of the file is held against the bytes before it is followed,
   and a file that leads outside them has no such resource.

   The resource section is a tree of three levels: type, name, language. Each level is a directory of 16 bytes
   (number of named entries at 12, of numbered ones at 14) with 8 bytes for each entry: name or number, then
   the offset of what is below. The high bit of the first says that it is the offset of a name (u16 length,
   characters); that of the second, that a directory follows and not a data entry. A data entry is 16 bytes:
   address when loaded, size. Offsets count from the section's first directory. */
#ifndef TQUI_HOSTED_PE_RESOURCES_H
#define TQUI_HOSTED_PE_RESOURCES_H

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/types.h"

constexpr u16 PE_BITMAP = 2;
constexpr u16 PE_DIALOG = 5;
constexpr u16 PE_STRING = 6; /* block n holds the strings from 16 * (n - 1) up */

/* Type or name of a resource: a text (in capitals, as resource compilers store it) or, if that is empty, a
   number. */
struct PeName {
    std::u16string wcName;
    u16 usId = 0;

    PeName(u16 usNumber) : usId(usNumber) {}
    PeName(std::u16string_view wcText) : wcName(wcText) {}
    PeName(const char16_t* wcText) : wcName(wcText) {}
    bool operator==(const PeName&) const = default;
};

/* A piece of the file's bytes; wholly inside them. */
struct PePiece {
    size_t nOffset, cbSize;
};

/* Wide text of a string block; its 2 * cch bytes lie inside the file's, at any alignment. */
struct PeText {
    size_t nOffset;
    u16 cch;
};

struct PeResource {
    PeName type, name;
    u16 usLanguage;
    PePiece data;
};

/* 1 when the bytes start as a PE file does: "MZ", and "PE" where offset 60 says. */
int IsPeFile(std::span<const u8> file);

/* 1 when also every section that the headers tell of lies inside the bytes, as loading as an image needs. */
int IsWholePeImage(std::span<const u8> file);

/* Languages in the order in which the system looks for a resource that was asked for without one: neutral,
   the user's, its primary language alone, English (United States). */
std::vector<u16> LanguageOrder(u16 usUserLanguage);

/* Finds a resource in the first language of the list that has it, else in the first that the file has.
   Result: 1 and *pPiece, or 0 with *pPiece untouched. */
int FindPeResource(std::span<const u8> file, const PeName& type, const PeName& name,
                   std::span<const u16> aLanguages, PePiece* pPiece);

/* Finds a string in the same way. A string that its block leaves out is there with 0 characters.
   Result: 1 and *pText; 0 with *pText untouched when there is no such block or the text would reach beyond
   it. */
int FindPeString(std::span<const u8> file, u16 usId, std::span<const u16> aLanguages, PeText* pText);

/* All resources in file order, as far as they lie inside the bytes; at most nLimit directory entries are
   looked at, since entries may share what is below them. */
std::vector<PeResource> ListPeResources(std::span<const u8> file, int nLimit);

#endif

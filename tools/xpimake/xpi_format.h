/* Readable text to .XPI printer descriptions and back, and a reviewer for finished files.
   The text form is TOML; README.md beside this file describes it. Nothing here is part of the driver library:
   the programs xpimake and tq use it, and tests that need a printer description of their own. */
#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/* One thing that keeps a text from becoming a description. */
struct XpiError {
    int line; /* 1-based line of the text; 0 when the value came from an override or stands nowhere */
    std::string field;   /* path of the value, such as papers.rows[3].width; empty for a syntax error */
    std::string message; /* one sentence for the author */
};

/* A change to the parsed text before it is compiled.
   path    keys joined by dots, array elements in brackets: "model.color_class", "papers.rows[2].code".
           An index one behind the last element appends; tables on the way are made
   value   TOML for the new value: "42", "\"letter\"", "[]", "{ name = \"a4\", code = 9 }"; empty to remove */
struct XpiOverride {
    std::string path;
    std::string value;
};

struct XpiCompiled {
    std::vector<std::uint8_t> bytes;               /* the whole file; empty when there are errors */
    std::vector<XpiError> errors;                  /* in the order in which they were met */
    std::map<std::string, std::uint16_t> strings;  /* string id of every key of the [strings] tables */
    std::map<std::string, std::uint16_t> commands; /* command id of every key of [commands] */
};

/* Compiles a text.
   toml       I   text in UTF-8
   fileName   I   used in messages of the TOML parser only; may be empty
   overrides  I   applied in their order before compiling
   Result: the bytes, or at least one error. Never throws for a fault of the text. */
XpiCompiled CompileXpi(std::string_view toml, std::string_view fileName,
                       std::span<const XpiOverride> overrides = {});

/* "file:line: field: message", the form that editors jump to. */
std::string FormatXpiError(std::string_view fileName, const XpiError& error);

/* Gives the canonical text of a file: compiled again it yields the same bytes if xpimake made them. A damaged
   file comes out as far as it makes sense, with comments where it does not; nothing is read outside the
   bytes. */
std::string DumpXpi(std::span<const std::uint8_t> file);

/* One thing that the driver will quietly drop, cut or repair. */
struct XpiFinding {
    std::string table;       /* table or section, such as "papers", "model", "commands" */
    int row;                 /* 0-based row; -1 when the finding is about the whole table or a single value */
    std::string field;       /* field of the row; may be empty */
    std::string consequence; /* what the user or the author will see */
};

/* Reviews a file.
   languages  I   primary language ids (low 10 bits of a LANGID) whose texts must be there;
                  an empty list asks for all from 0 to 0x7F
   Result: findings in the order of the body, the strings and the other sections. Empty when there is
   nothing to say. */
std::vector<XpiFinding> LintXpi(std::span<const std::uint8_t> file,
                                std::span<const std::uint16_t> languages = {});

/* Reads a whole file; false when it cannot be read. */
bool ReadXpiBytes(const std::string& path, std::vector<std::uint8_t>& bytes);
